/* MvSup2u: properties and custom properties of an item info.

   Properties are keyed by a property id (see MvSupCatalogue.h), custom
   properties by a name compared exactly (case-sensitive, code unit by code
   unit). A property keeps its property-type code in attribute 1, its values
   in attribute 16 and, when custom, its name in attribute 2 (see
   MvSupItemInfo.h for item infos, attributes and values).

   Two sets of functions:
   - on an open item info (HMVXINFO): adding, finding, counting, iterating and
     deleting properties, and filling one from the server's text. Not traced.
   - one-call accessors on a committed item info (BYTE*): each reads or
     writes one property without the caller opening anything. Traced.

   The committed-item-info readers never allocate: they validate the whole
   block as MvxOpen does (a block that does not hold together "cannot be
   opened") and hand out pointers into it, valid as long as the block. A null
   block reads as an empty item info. Every out pointer is optional; outputs
   are cleared first (pointers to null, numbers and structures to zero) and
   written only on success. A string is handed out only when its terminator
   lies inside its value; a value too short for its kind (a handle below 6
   bytes or without a terminated title, an integer below 4 bytes, a date
   below 8) counts as missing.

   The writers take the committed item info by an in/out argument: they open
   *itemInfo (null: start from an empty item info), change the property, and
   commit into a new block that replaces *itemInfo (the old block is freed
   with GlobalFree; the new one is the caller's, freed with FreeMvxInfo).
   The caller's block is never written to: on any failure *itemInfo and its
   bytes stay as they were and the failure is returned - 1 when the block
   cannot be opened, E_OUTOFMEMORY or E_FAIL from committing, E_POINTER for a
   null itemInfo or name. A writer empties attribute 16 and then adds the one
   new value, so a property with several values ends with one. */
#ifndef MVSUP_PROPERTIES_H
#define MVSUP_PROPERTIES_H

#include <windows.h>
#include <oleauto.h>

#include "MvSupItemInfo.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Property ids with a meaning of their own to these functions. */
#define MVX_PROP_HANDLE 0x00000020u       /* "handle": the item's own handle */
#define MVX_PROP_ENTITYOWNER 0x00000040u  /* "entityowner" */
#define MVX_PROP_MODIFIED_BY 0x00000200u  /* "modified_by" */
#define MVX_PROP_PARENTS 0x00000400u      /* "parents" */
#define MVX_PROP_CLIENT_DATA 0x00010000u  /* "client_data": kept as a custom property */
#define MVX_PROP_LOCKED_BY 0x80000800u    /* "lockdiscovery" / "locked_by" */

/* Fields of a handle value, for MvxModifyMvHandlePropValue. */
#define MVX_HANDLE_TYPE 0x1u
#define MVX_HANDLE_NUMBER 0x2u
#define MVX_HANDLE_TITLE 0x4u
/* The handle number that the readers give as number 0 with an empty title:
   what MvxClearProp writes into a handle it clears. */
#define MVX_HANDLE_CLEARED_NUMBER 0xFFFFFFFFu

/* ---- On an open item info ----------------------------------------------- */

/* The property with that id, created when absent (the existing one when
   present). Null for a null info or when memory runs out. */
HMVXPROP WINAPI MvxAddProperty(HMVXINFO info, DWORD propId);
/* The custom property with that name; when created, its attribute 2 holds
   the name as a string. Null for a null info or name, or when memory runs
   out. */
HMVXPROP WINAPI MvxAddCustomProperty(HMVXINFO info, LPCWSTR name);
HMVXPROP WINAPI MvxFindProperty(HMVXINFO info, DWORD propId);
HMVXPROP WINAPI MvxFindCustomProperty(HMVXINFO info, LPCWSTR name);
/* Number of properties (custom properties) as a signed 16-bit count; 0 for
   a null info. */
SHORT WINAPI MvxGetPropertyCount(HMVXINFO info);
SHORT WINAPI MvxGetCustomPropertyCount(HMVXINFO info);

/* Iteration: the head function resets the item info's one cursor of its
   kind and returns its position (null when there is nothing to walk); each
   next call returns the element at the position and moves on, setting
   *position to null after the last one. Null when *position is null, at its
   end, or not this item info's position of that kind. Ids go in ascending
   order compared as signed 32-bit (ids with the top bit set first), names
   in code-unit order. Deleting properties during a walk is safe: the walk
   goes on with the properties that remain. */
HMVXPOS WINAPI MvxGetHeadProperty(HMVXINFO info);
/* *propId (optional) receives the property's id. */
HMVXPROP WINAPI MvxGetNextProperty(HMVXINFO info, DWORD* propId, HMVXPOS* position);
HMVXPOS WINAPI MvxGetHeadCustomProperty(HMVXINFO info);
/* *name (optional) receives a pointer to the string in the first value of
   the property's attribute 2 (valid as long as that value), or null when
   that attribute or value is missing or holds no terminated string. */
HMVXPROP WINAPI MvxGetNextCustomProperty(HMVXINFO info, LPWSTR* name, HMVXPOS* position);

/* Delete the property with every attribute and value; nothing when absent.
   An item info emptied this way commits to 40 bytes again. */
void WINAPI MvxDeleteProperty(HMVXINFO info, DWORD propId);
void WINAPI MvxDeleteCustomProperty(HMVXINFO info, LPCWSTR name);

/* Fills one property from the server's text values (count entries of
   values; a null entry counts as empty text). A name of the catalogue
   (PropIdFromPropertyName, any case) gives the id-keyed property and its
   type - except "client_data", kept as the custom property "client_data"
   with type 2; any other name gives a custom property of that name with
   type 1 in attribute 1. Attribute 16 is emptied and each text converted by
   the type and added:
     1 2 3 7 9 10 14  the text as a string
     4 5              integer: wcstol rules, base 10 (clamped to a LONG)
     6                double: optional blanks and sign, then decimal
                      floating-point text (no locale); 0.0 when none
     8                empty text: date-time 0/0; for "getlastmodified"
                      (0x100) the HTTP date form, time as written with its
                      zone ignored; for any other id the creation-date form.
                      A text that does not read as a date stores nothing.
     11               a handle string ("File-12"): type and number, no title
     12 19            "title (Handle-N)": the handle string between the last
                      '(' and the last ')' after it, the title before that
                      '(' without trailing blanks; nothing when there is no
                      such pair or the number is 0
     any other        nothing
   Returns 1; 0 (nothing changed) for a null info, a null or empty name, a
   negative count, or null values with a positive count; 0 also when memory
   runs out (what was added stays). reserved is not used. */
int WINAPI AddItemPropToMvxInfo(DWORD reserved, HMVXINFO info, LPCWSTR name, int count, const LPCWSTR* values);

/* ---- Readers of a committed item info ----------------------------------- */

/* The first 4 bytes of the first value of attribute 16. 0, or 1 when the
   property, attribute 16 or a value is missing or the block cannot be
   opened. */
int WINAPI MvxGetIntegerPropValue(const BYTE* itemInfo, DWORD propId, LONG* value);
/* The string of the first value of attribute 16, a pointer into itemInfo.
   0x10000 ("client_data") is read from the custom property "client_data".
   For the handle-valued ids 0x20, 0x400, 0x40, 0x200 and 0x80000800 it is
   the title of the first handle, or "" when that handle's number is
   0xFFFFFFFF. An attribute 16 without values gives "" and 0 (not for the
   handle-valued ids, where it is missing). 1 when the property, attribute
   or value is missing or the block cannot be opened. */
int WINAPI MvxGetStringPropValue(const BYTE* itemInfo, DWORD propId, LPWSTR* text);
/* The first date-time value as a SYSTEMTIME: UTC when keepGmt is non-zero,
   else converted to local time. Both halves 0 give an all-zero SYSTEMTIME.
   0, or 1 when missing, when the block cannot be opened, or when the value
   is no date the platform can convert (*systemTime all zero). */
int WINAPI MvxGetDatePropValueAsSystemTime(const BYTE* itemInfo, DWORD propId, SYSTEMTIME* systemTime,
                                           BOOL keepGmt);
/* The same as an OLE date; an all-zero SYSTEMTIME gives 0.0. Dates outside
   the OLE range (years 100-9999) give 1. */
int WINAPI MvxGetDatePropValue(const BYTE* itemInfo, DWORD propId, DATE* date, BOOL keepGmt);
/* The first handle of the first of the handle-valued properties, tried in
   the order 0x20, 0x400, 0x40, 0x200, 0x80000800, that the mask selects
   (mask AND id not 0) and whose attribute 16 holds a handle: its id, type,
   number and title (a pointer into itemInfo) are written out; a number of
   0xFFFFFFFF is written as 0 with the title "". 0, or 1 when no property
   qualifies or the block cannot be opened. */
int WINAPI MvxGetMvHandlePropValue(const BYTE* itemInfo, DWORD mask, DWORD* propId, MVXITEMTYPE* type,
                                   DWORD* number, LPWSTR* title);

/* The string of the first value of the custom property's attribute 16 (a
   pointer into itemInfo; "" when the attribute has no values). S_OK;
   E_FAIL when the property or its attribute 16 is missing or the value
   holds no terminated string; E_UNEXPECTED when the block cannot be opened;
   E_POINTER for a null name. */
HRESULT WINAPI MvxGetCustomStringProp(const BYTE* itemInfo, LPCWSTR name, LPWSTR* text);
/* The custom property as an integer. When its type (attribute 1) is 1, the
   first value is read as text: "0x" (exactly these two characters) and
   hexadecimal digits as an unsigned number (clamped to 0xFFFFFFFF), other
   text by wcstol rules, base 10; when that gives 0 and the text does not
   begin with the digit '0', the result is the first 4 bytes of the text (its
   first two code units) - kept for callers that store short codes as text.
   For any other type, the first 4 bytes of the first value. Bytes that lie
   past a value shorter than 4 bytes read as 0. Codes as
   MvxGetCustomStringProp; no value is E_FAIL. Traced with the line
   "PropName: <name>". */
HRESULT WINAPI MvxGetCustomIntegerProp(const BYTE* itemInfo, LPCWSTR name, LONG* value);
/* The first date-time value of the custom property: as stored (UTC), or as a
   SYSTEMTIME / OLE date converted to local time unless keepGmt is non-zero;
   0/0 gives a zero FILETIME, an all-zero SYSTEMTIME, 0.0. Codes as
   MvxGetCustomStringProp; a value that cannot be converted is E_FAIL. */
HRESULT WINAPI MvxGetCustomFileTimeProp(const BYTE* itemInfo, LPCWSTR name, FILETIME* fileTime);
HRESULT WINAPI MvxGetCustomSystemTimeProp(const BYTE* itemInfo, LPCWSTR name, SYSTEMTIME* systemTime,
                                          BOOL keepGmt);
HRESULT WINAPI MvxGetCustomDateProp(const BYTE* itemInfo, LPCWSTR name, DATE* date, BOOL keepGmt);

/* S_OK when the property exists (its values are not looked at), S_FALSE
   when not, E_UNEXPECTED when the block cannot be opened. 0x10000 is
   answered for the custom property "client_data". */
HRESULT WINAPI MvxHasProp(const BYTE* itemInfo, DWORD propId);
/* The same for a custom property; E_POINTER for a null name. */
HRESULT WINAPI MvxHasCustomProp(const BYTE* itemInfo, LPCWSTR name);

/* ---- Writers of a committed item info ----------------------------------- */

/* Attribute 16 of the id-keyed property set to one integer. */
HRESULT WINAPI MvxPutIntegerPropValue(DWORD propId, LONG value, BYTE** itemInfo);
/* Attribute 16 set to one string (null: ""). 0x10000 goes to the custom
   property "client_data", whose attribute 1 is set to the type 2. */
HRESULT WINAPI MvxPutStringPropValue(DWORD propId, LPCWSTR text, BYTE** itemInfo);
/* Attribute 16 set to one date-time: 0.0 stores 0/0; any other date is
   taken as UTC (no zone conversion), to the second. E_INVALIDARG, with the
   block untouched, for a date that has no FILETIME (before 1601, after
   9999, not a number). */
HRESULT WINAPI MvxPutDatePropValue(DWORD propId, DATE date, BYTE** itemInfo);
/* Attribute 16 set to one handle (type stored as its low 16 bits; null
   title: ""). */
HRESULT WINAPI MvxPutMvHandlePropValue(DWORD propId, MVXITEMTYPE type, DWORD number, LPCWSTR title,
                                       BYTE** itemInfo);
/* Changes fields of the first handle of one handle-valued property. The ids
   0x20, 0x400, 0x40, 0x200, 0x80000800 are walked in this order; an id is
   selected when it ANDed with its mask is not 0 (mask for ids up to
   0x0FFFFFFF, classMask for the others). The first selected property whose
   attribute 16 holds a handle is the one worked on; its id goes to *propId
   (optional). flags is a combination of MVX_HANDLE_TYPE, MVX_HANDLE_NUMBER
   and MVX_HANDLE_TITLE: the fields it names are compared with type, number
   and title (null: "") and, when any differs, replaced by them; the fields
   it does not name and the property's other values stay as they are.
   Returns S_OK, with *itemInfo replaced by a new block when a field
   changed and left as it is when every named field already held its value;
   1 when no selected property holds a handle or the block cannot be opened
   (nothing changed); E_INVALIDARG when flags names no field or has other
   bits. MvxClearProp uses MVX_HANDLE_NUMBER (2) alone, with the number
   MVX_HANDLE_CLEARED_NUMBER. */
HRESULT WINAPI MvxModifyMvHandlePropValue(DWORD mask, DWORD classMask, DWORD* propId, DWORD flags,
                                          MVXITEMTYPE type, DWORD number, LPCWSTR title, BYTE** itemInfo);

/* The custom property's attribute 1 set to type (0 is taken as 1) and
   attribute 16 to one string (null: ""). E_INVALIDARG, with the block
   untouched, for a type other than 0, 1, 2, 3, 7, 9, 10 or 14. */
HRESULT WINAPI MvxPutCustomStringProp(LPCWSTR name, LPCWSTR text, DWORD type, BYTE** itemInfo);
/* Attribute 1 set to 5, attribute 16 to the integer. */
HRESULT WINAPI MvxPutCustomIntegerProp(LPCWSTR name, LONG value, BYTE** itemInfo);
/* Attribute 1 set to 8, attribute 16 to one date-time. The FILETIME is
   stored as it is; the SYSTEMTIME and the OLE date are taken as UTC (an OLE
   date of 0.0 stores 0/0). E_POINTER for a null time; E_INVALIDARG, with
   the block untouched, for an impossible SYSTEMTIME or a date without a
   FILETIME. */
HRESULT WINAPI MvxPutCustomFileTimeProp(LPCWSTR name, const FILETIME* fileTime, BYTE** itemInfo);
HRESULT WINAPI MvxPutCustomSystemTimeProp(LPCWSTR name, const SYSTEMTIME* systemTime, BYTE** itemInfo);
HRESULT WINAPI MvxPutCustomDateProp(LPCWSTR name, DATE date, BYTE** itemInfo);

/* Deletes the property (as MvxDeleteProperty) and replaces the block, also
   when there was nothing to delete. 0x10000 deletes the custom property
   "client_data" as well, so that MvxHasProp answers S_FALSE afterwards.
   Traced with the line "PropId: <id as 8 hex digits>". */
HRESULT WINAPI MvxDeleteProp(DWORD propId, BYTE** itemInfo);
HRESULT WINAPI MvxDeleteCustomProp(LPCWSTR name, BYTE** itemInfo);

/* Stores the empty value of the type that the catalogue gives the id:
   "" for the string types (1 2 3 7 9 10 14), the integer 0 for 4 and 5,
   the date 0.0 for 8 and 17. For the handle types (11 12 19) the first
   handle of the property, when it has one, gets the number
   MVX_HANDLE_CLEARED_NUMBER (MvxModifyMvHandlePropValue with the id as its
   mask and MVX_HANDLE_NUMBER), so that it keeps its type and reads as
   number 0 with an empty title; a property without a handle gets one handle
   of type 0, number 0, no title. Any other type returns 1 and changes
   nothing. */
HRESULT WINAPI MvxClearProp(DWORD propId, BYTE** itemInfo);
/* By type: 4 and 5 the integer 0 (stored with type 5), 8 and 17 the date
   0/0 (type 8), any other type the empty string with that type (0 is taken
   as 1). */
HRESULT WINAPI MvxClearCustomProp(LPCWSTR name, DWORD type, BYTE** itemInfo);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_PROPERTIES_H */
