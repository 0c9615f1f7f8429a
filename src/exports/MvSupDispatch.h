/** @file
   MvSup2u: late-bound calls on automation objects through IDispatch.

   Each member helper takes the object and a member name, looks the name up
   with GetIDsOfNames (LOCALE_SYSTEM_DEFAULT, nothing cached), builds the
   arguments, calls IDispatch::Invoke (locale 0) and hands back a plain value.
   A name the object does not know is not an error: the call goes to the
   object's default member (DISPID 0).

   Arguments: the suffix of a name tells what follows the member name. L1, L2
   and I4 are longs sent as VT_I4; B1, B2 and BSTR are BSTRs sent as VT_BSTR
   (the caller keeps them); Obj is an IDispatch* sent as VT_DISPATCH without
   AddRef; V is a count and an array in natural order, each element sent as
   VT_BYREF|VT_VARIANT pointing at the caller's VARIANT, so that the server
   can write back; Args is a count and an array already in DISPPARAMS order
   (last argument first), copied as it is. Every put sends its value as the
   named argument DISPID_PROPERTYPUT.

   Results: BSTRs handed out are freed by the caller with SysFreeString,
   objects released by the caller, VARIANTs cleared by the caller with
   VariantClear. Exception details a server reports go to the call-trace log
   and are freed; they are not returned.

   Null arguments: a null object gives E_POINTER and calls nothing; a null
   member name calls the default member. A null out pointer that the rule
   needs gives E_POINTER before anything is called (the long results of the
   DoVerb and PutObject helpers are optional). A negative count gives
   E_INVALIDARG; a positive count with a null array E_POINTER.

   Threads: the helpers keep no state; call them on a thread where COM is
   initialised, in the apartment of the object. */
#ifndef MVSUP_DISPATCH_H
#define MVSUP_DISPATCH_H

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Flags of DispatchQueryApp. */
#define MVSUP_QUERYAPP_RUN          0x01 /**< create through IUnknown and OleRun the new server */
#define MVSUP_QUERYAPP_NEW_INSTANCE 0x10 /**< never attach to a running instance */

/* ---- Objects ---- */

/** Creates an object by ProgID (CLSIDFromProgID, then CoCreateInstance with
    CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER) and asks it for IDispatch.
    Returns the HRESULT of the last step; *ppOut is set to null first and
    holds the object, which the caller releases, only on success. E_POINTER
    for a null ppOut, E_INVALIDARG for a null progId. Traced. */
HRESULT WINAPI DispatchCreateDispatch(LPCOLESTR progId, IDispatch** ppOut);

/** Attaches to a running server or starts one. progIdOrClsid is a braced
    CLSID or a ProgID (CLSIDFromString); any result of that other than S_OK
    is returned as it is. Unless MVSUP_QUERYAPP_NEW_INSTANCE is set, an
    instance in the running-object table (GetActiveObject) is asked for
    IDispatch. Otherwise, or when none runs, a new one is created with
    CLSCTX_SERVER: with MVSUP_QUERYAPP_RUN through IUnknown, put in the
    running state with OleRun (whose result is not checked) and then asked
    for IDispatch; without it directly for IDispatch. Returns the HRESULT of
    the last step; *ppOut is null unless it succeeded, and the caller
    releases the object. E_POINTER for a null ppOut, E_INVALIDARG for a null
    string. Traced. */
HRESULT WINAPI DispatchQueryApp(LPCOLESTR progIdOrClsid, DWORD flags, IDispatch** ppOut);

/** The DISPID of member name (GetIDsOfNames, LOCALE_SYSTEM_DEFAULT). When
    the lookup fails, or pdisp is null, the answer is 0, the default member:
    a misspelled name is deliberately not an error. A null name gives 0
    without asking. Traced; the trace's STOP record carries the lookup's
    HRESULT. */
DISPID WINAPI DispatchGetDISPID(IDispatch* pdisp, LPOLESTR name);

/** TRUE only when v is a VT_DATE that VariantTimeToSystemTime accepts and
    whose year lies in 1970-2036. The VARIANT is passed by value and not
    cleared. */
BOOL WINAPI DispatchValidateDate(VARIANT v);

/* ---- Property gets ----
   "Typed with default": *pOut is set to def first; the value is stored only
   when Invoke returns exactly S_OK with the expected type; another type gives
   E_UNEXPECTED, another HRESULT is returned as it is. "BSTR out": on S_OK
   with VT_BSTR the string is handed over; another type gives E_UNEXPECTED;
   *pOut is written only on success. */

/** The most general getter. *pResult is initialised first. vt VT_EMPTY
    takes any result: the whole VARIANT is handed over and Invoke's HRESULT
    returned, failure or not. Otherwise the result is copied (VariantCopy,
    whose HRESULT is returned) only when Invoke returned S_OK with type vt; a
    VT_DATE outside 1970-2036 (see DispatchValidateDate) gives S_FALSE and an
    empty *pResult; another type gives S_OK and an empty *pResult; a failed
    HRESULT is returned as it is. The caller clears *pResult. Traced. */
HRESULT WINAPI DispatchPropertyGet(IDispatch* pdisp, LPOLESTR name, VARTYPE vt, VARIANT* pResult);

/** A VT_BOOL property as 1 (any non-zero value) or 0; typed with default. Traced. */
HRESULT WINAPI DispatchPropertyGetBool(IDispatch* pdisp, LPOLESTR name, BOOL* pOut, BOOL def);

/** A VT_I4 property; typed with default. Traced. */
HRESULT WINAPI DispatchPropertyGetI4(IDispatch* pdisp, LPOLESTR name, long* pOut, long def);

/** A VT_DATE property, any year; typed with default. Traced. */
HRESULT WINAPI DispatchPropertyGetDate(IDispatch* pdisp, LPOLESTR name, DATE* pOut, DATE def);

/** A VT_BSTR property; BSTR out. Traced. */
HRESULT WINAPI DispatchPropertyGetBSTR(IDispatch* pdisp, LPOLESTR name, BSTR* pOut);

/** An indexed VT_BSTR property: the index travels as VT_BYREF|VT_VARIANT
    pointing at a VT_I4. BSTR out. Traced. */
HRESULT WINAPI DispatchPropertyGetBSTRByIndex(IDispatch* pdisp, LPOLESTR name, long index, BSTR* pOut);

/* ---- Property puts: each returns the HRESULT of Invoke ---- */

/** Puts a shallow copy of *pv (the caller keeps what it holds). Traced. */
HRESULT WINAPI DispatchPropertyPut(IDispatch* pdisp, LPOLESTR name, const VARIANT* pv);

/** Puts a VT_BSTR (the caller keeps the string). Traced. */
HRESULT WINAPI DispatchPropertyPutBSTR(IDispatch* pdisp, LPOLESTR name, BSTR value);

/** Puts a VT_BOOL: VARIANT_TRUE for any non-zero value, else VARIANT_FALSE. Traced. */
HRESULT WINAPI DispatchPropertyPutBool(IDispatch* pdisp, LPOLESTR name, BOOL value);

/** Puts a VT_I4. Traced. */
HRESULT WINAPI DispatchPropertyPutI4(IDispatch* pdisp, LPOLESTR name, long value);

/** Puts a VT_DATE. Traced. */
HRESULT WINAPI DispatchPropertyPutDate(IDispatch* pdisp, LPOLESTR name, DATE value);

/** Puts value (VT_BSTR, the named value) into an indexed property; the index
    travels as VT_BYREF|VT_VARIANT pointing at a VT_I4. Traced. */
HRESULT WINAPI DispatchPropertyPutBSTRByIndex(IDispatch* pdisp, LPOLESTR name, long index, BSTR value);

/** Puts obj as VT_DISPATCH with DISPATCH_PROPERTYPUT (not PUTREF), without
    AddRef. Traced. */
HRESULT WINAPI DispatchPropertyPutObject(IDispatch* pdisp, LPOLESTR name, IDispatch* obj);

/* ---- Object results ("object out") ----
   Only when Invoke returns S_OK: the pointer in the result's value field is
   taken whatever the result's type says, AddRef'ed and stored in *ppOut (the
   caller releases it); a null pointer gives S_FALSE with *ppOut null. On any
   other HRESULT *ppOut is not written. */

/** Property get without arguments. Traced. */
HRESULT WINAPI DispatchPropertyGetObject(IDispatch* pdisp, LPOLESTR name, IDispatch** ppOut);
/** Property get with one VT_I4. Traced. */
HRESULT WINAPI DispatchPropertyGetObjectL1(IDispatch* pdisp, LPOLESTR name, long a, IDispatch** ppOut);
/** Property get with one VT_BSTR. Traced. */
HRESULT WINAPI DispatchPropertyGetObjectB1(IDispatch* pdisp, LPOLESTR name, BSTR a, IDispatch** ppOut);
/** Property get with count VARIANTs by reference (natural order). Traced. */
HRESULT WINAPI DispatchPropertyGetObjectV(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args,
                                          IDispatch** ppOut);
/** Method without arguments. Traced. */
HRESULT WINAPI DispatchMethodGetObject(IDispatch* pdisp, LPOLESTR name, IDispatch** ppOut);
/** Method with one VT_I4. Traced. */
HRESULT WINAPI DispatchMethodGetObjectL1(IDispatch* pdisp, LPOLESTR name, long a, IDispatch** ppOut);
/** Method with one VT_BSTR. Traced. */
HRESULT WINAPI DispatchMethodGetObjectB1(IDispatch* pdisp, LPOLESTR name, BSTR a, IDispatch** ppOut);
/** Method with two VT_BSTRs, a first. Traced. */
HRESULT WINAPI DispatchMethodGetObjectB2(IDispatch* pdisp, LPOLESTR name, BSTR a, BSTR b, IDispatch** ppOut);
/** Method with count VARIANTs by reference (natural order). Traced. */
HRESULT WINAPI DispatchMethodGetObjectV(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args,
                                        IDispatch** ppOut);

/* ---- Methods with a long result ("long out") ----
   Only when pResult is non-null and Invoke did not fail: a VT_I4 result is
   stored; any other type stores 0 and turns S_OK into E_UNEXPECTED.
   Otherwise the HRESULT of Invoke. pResult may be null. */

/** Method with obj as VT_DISPATCH (no AddRef). Traced. */
HRESULT WINAPI DispatchMethodPutObject(IDispatch* pdisp, LPOLESTR name, IDispatch* obj, long* pResult);
/** Method without arguments, lenient about the result: VT_I2 is stored sign
    extended, VT_EMPTY stores 0 without error, VT_BSTR is read as a decimal
    integer (leading blanks and a sign, up to the first other character; 0
    without digits). Traced. */
HRESULT WINAPI DispatchDoVerb(IDispatch* pdisp, LPOLESTR name, long* pResult);
/** Method with one VT_I4. Traced. */
HRESULT WINAPI DispatchDoVerbI4(IDispatch* pdisp, LPOLESTR name, long a, long* pResult);
/** Method with one VT_BSTR. Traced. */
HRESULT WINAPI DispatchDoVerbBSTR(IDispatch* pdisp, LPOLESTR name, BSTR a, long* pResult);
/** Method with a and b as VT_I4 and c as VT_BYREF|VT_BOOL, which the server
    may change. E_POINTER for a null c. Traced. */
HRESULT WINAPI DispatchDoVerbL2B1(IDispatch* pdisp, LPOLESTR name, long a, long b, VARIANT_BOOL* c,
                                  long* pResult);
/** Method with obj (VT_DISPATCH, no AddRef) and a (VT_I4). Traced. */
HRESULT WINAPI DispatchDoVerbObjL1(IDispatch* pdisp, LPOLESTR name, IDispatch* obj, long a, long* pResult);
/** Method with count VARIANTs by reference (natural order); what the server
    writes into them is the caller's afterwards. Traced. */
HRESULT WINAPI DispatchDoVerbV(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args, long* pResult);
/** Method with count VARIANTs in DISPPARAMS order, copied as they are. Traced. */
HRESULT WINAPI DispatchDoVerbArgs(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args, long* pResult);

/* ---- Whole VARIANT results ("VARIANT out") ----
   Arguments in DISPPARAMS order, copied as they are. When pResult is non-null
   and Invoke did not fail, the result VARIANT is moved into *pResult as it is
   (the target is neither initialised nor cleared first: pass an empty or
   cleared VARIANT); the caller clears it. Returns the HRESULT of Invoke. */

/** Method. Traced. */
HRESULT WINAPI DispatchDoVerbArgsV(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args, VARIANT* pResult);
/** Property get (indexed by the arguments). Traced. */
HRESULT WINAPI DispatchPropertyGetArgsV(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args,
                                        VARIANT* pResult);
/** Property put; args[0] is the value put (the named argument). Traced. */
HRESULT WINAPI DispatchPropertyPutArgsV(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args,
                                        VARIANT* pResult);

/** Reads property sourceName of source and, only when that returned S_OK,
    puts the value as it came, whatever its type, into property targetName
    of target. Returns the get's HRESULT when it was not S_OK, else the
    put's. Both objects come first, then both names. E_POINTER for a null
    object. Traced. */
HRESULT WINAPI DispatchPropertyCopy(IDispatch* source, IDispatch* target, LPOLESTR sourceName,
                                    LPOLESTR targetName);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_DISPATCH_H */
