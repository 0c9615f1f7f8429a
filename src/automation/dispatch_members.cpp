// The member helpers: each export names its flags, its argument layout and
// its result rule; call_member() does the rest.
#include "MvSupDispatch.h"
#include "automation/dispatch_helper.h"

namespace mvsup::automation {
namespace {

constexpr WORD kGet = DISPATCH_PROPERTYGET;
constexpr WORD kPut = DISPATCH_PROPERTYPUT;
constexpr WORD kMethod = DISPATCH_METHOD;

long read_long(const VARIANT& v) { return v.lVal; }
BOOL read_bool(const VARIANT& v) { return v.boolVal != 0 ? 1 : 0; }
DATE read_date(const VARIANT& v) { return v.date; }

template <typename... V>
Values<sizeof...(V)> values(V... natural) noexcept {
  return {{natural...}};
}

CallerArray by_reference(int count, VARIANT* args) noexcept { return {count, args, true}; }
CallerArray as_given(int count, VARIANT* args) noexcept { return {count, args, false}; }

}  // namespace
}  // namespace mvsup::automation

using namespace mvsup::automation;

extern "C" {

// ---- Property gets -------------------------------------------------------------

HRESULT WINAPI DispatchPropertyGet(IDispatch* pdisp, LPOLESTR name, VARTYPE vt, VARIANT* pResult) {
  return call_member(__func__, pdisp, name, kGet, NoArguments{}, WantedType{vt, pResult});
}

HRESULT WINAPI DispatchPropertyGetBool(IDispatch* pdisp, LPOLESTR name, BOOL* pOut, BOOL def) {
  return call_member(__func__, pdisp, name, kGet, NoArguments{},
                     TypedWithDefault<BOOL, VT_BOOL, read_bool>{pOut, def});
}

HRESULT WINAPI DispatchPropertyGetI4(IDispatch* pdisp, LPOLESTR name, long* pOut, long def) {
  return call_member(__func__, pdisp, name, kGet, NoArguments{},
                     TypedWithDefault<long, VT_I4, read_long>{pOut, def});
}

HRESULT WINAPI DispatchPropertyGetDate(IDispatch* pdisp, LPOLESTR name, DATE* pOut, DATE def) {
  return call_member(__func__, pdisp, name, kGet, NoArguments{},
                     TypedWithDefault<DATE, VT_DATE, read_date>{pOut, def});
}

HRESULT WINAPI DispatchPropertyGetBSTR(IDispatch* pdisp, LPOLESTR name, BSTR* pOut) {
  return call_member(__func__, pdisp, name, kGet, NoArguments{}, BstrOut{pOut});
}

HRESULT WINAPI DispatchPropertyGetBSTRByIndex(IDispatch* pdisp, LPOLESTR name, long index, BSTR* pOut) {
  VARIANT index_value = i4_variant(index);
  return call_member(__func__, pdisp, name, kGet, values(variant_reference(&index_value)), BstrOut{pOut});
}

// ---- Property puts ---------------------------------------------------------------

HRESULT WINAPI DispatchPropertyPut(IDispatch* pdisp, LPOLESTR name, const VARIANT* pv) {
  Values<1> value{{pv != nullptr ? *pv : VARIANT{}}, pv != nullptr ? S_OK : E_POINTER};
  return call_member(__func__, pdisp, name, kPut, value, InvokeResult{});
}

HRESULT WINAPI DispatchPropertyPutBSTR(IDispatch* pdisp, LPOLESTR name, BSTR value) {
  return call_member(__func__, pdisp, name, kPut, values(bstr_variant(value)), InvokeResult{});
}

HRESULT WINAPI DispatchPropertyPutBool(IDispatch* pdisp, LPOLESTR name, BOOL value) {
  return call_member(__func__, pdisp, name, kPut, values(bool_variant(value)), InvokeResult{});
}

HRESULT WINAPI DispatchPropertyPutI4(IDispatch* pdisp, LPOLESTR name, long value) {
  return call_member(__func__, pdisp, name, kPut, values(i4_variant(value)), InvokeResult{});
}

HRESULT WINAPI DispatchPropertyPutDate(IDispatch* pdisp, LPOLESTR name, DATE value) {
  return call_member(__func__, pdisp, name, kPut, values(date_variant(value)), InvokeResult{});
}

HRESULT WINAPI DispatchPropertyPutBSTRByIndex(IDispatch* pdisp, LPOLESTR name, long index, BSTR value) {
  VARIANT index_value = i4_variant(index);
  return call_member(__func__, pdisp, name, kPut, values(variant_reference(&index_value), bstr_variant(value)),
                     InvokeResult{});
}

HRESULT WINAPI DispatchPropertyPutObject(IDispatch* pdisp, LPOLESTR name, IDispatch* obj) {
  return call_member(__func__, pdisp, name, kPut, values(dispatch_variant(obj)), InvokeResult{});
}

// ---- Object results ----------------------------------------------------------------

HRESULT WINAPI DispatchPropertyGetObject(IDispatch* pdisp, LPOLESTR name, IDispatch** ppOut) {
  return call_member(__func__, pdisp, name, kGet, NoArguments{}, ObjectOut{ppOut});
}

HRESULT WINAPI DispatchPropertyGetObjectL1(IDispatch* pdisp, LPOLESTR name, long a, IDispatch** ppOut) {
  return call_member(__func__, pdisp, name, kGet, values(i4_variant(a)), ObjectOut{ppOut});
}

HRESULT WINAPI DispatchPropertyGetObjectB1(IDispatch* pdisp, LPOLESTR name, BSTR a, IDispatch** ppOut) {
  return call_member(__func__, pdisp, name, kGet, values(bstr_variant(a)), ObjectOut{ppOut});
}

HRESULT WINAPI DispatchPropertyGetObjectV(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args,
                                          IDispatch** ppOut) {
  return call_member(__func__, pdisp, name, kGet, by_reference(count, args), ObjectOut{ppOut});
}

HRESULT WINAPI DispatchMethodGetObject(IDispatch* pdisp, LPOLESTR name, IDispatch** ppOut) {
  return call_member(__func__, pdisp, name, kMethod, NoArguments{}, ObjectOut{ppOut});
}

HRESULT WINAPI DispatchMethodGetObjectL1(IDispatch* pdisp, LPOLESTR name, long a, IDispatch** ppOut) {
  return call_member(__func__, pdisp, name, kMethod, values(i4_variant(a)), ObjectOut{ppOut});
}

HRESULT WINAPI DispatchMethodGetObjectB1(IDispatch* pdisp, LPOLESTR name, BSTR a, IDispatch** ppOut) {
  return call_member(__func__, pdisp, name, kMethod, values(bstr_variant(a)), ObjectOut{ppOut});
}

HRESULT WINAPI DispatchMethodGetObjectB2(IDispatch* pdisp, LPOLESTR name, BSTR a, BSTR b, IDispatch** ppOut) {
  return call_member(__func__, pdisp, name, kMethod, values(bstr_variant(a), bstr_variant(b)), ObjectOut{ppOut});
}

HRESULT WINAPI DispatchMethodGetObjectV(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args,
                                        IDispatch** ppOut) {
  return call_member(__func__, pdisp, name, kMethod, by_reference(count, args), ObjectOut{ppOut});
}

// ---- Long results --------------------------------------------------------------------

HRESULT WINAPI DispatchMethodPutObject(IDispatch* pdisp, LPOLESTR name, IDispatch* obj, long* pResult) {
  return call_member(__func__, pdisp, name, kMethod, values(dispatch_variant(obj)), LongOut{pResult});
}

HRESULT WINAPI DispatchDoVerb(IDispatch* pdisp, LPOLESTR name, long* pResult) {
  return call_member(__func__, pdisp, name, kMethod, NoArguments{}, LongOut{pResult, true});
}

HRESULT WINAPI DispatchDoVerbI4(IDispatch* pdisp, LPOLESTR name, long a, long* pResult) {
  return call_member(__func__, pdisp, name, kMethod, values(i4_variant(a)), LongOut{pResult});
}

HRESULT WINAPI DispatchDoVerbBSTR(IDispatch* pdisp, LPOLESTR name, BSTR a, long* pResult) {
  return call_member(__func__, pdisp, name, kMethod, values(bstr_variant(a)), LongOut{pResult});
}

HRESULT WINAPI DispatchDoVerbL2B1(IDispatch* pdisp, LPOLESTR name, long a, long b, VARIANT_BOOL* c,
                                  long* pResult) {
  Values<3> arguments{{i4_variant(a), i4_variant(b), bool_reference(c)}, c != nullptr ? S_OK : E_POINTER};
  return call_member(__func__, pdisp, name, kMethod, arguments, LongOut{pResult});
}

HRESULT WINAPI DispatchDoVerbObjL1(IDispatch* pdisp, LPOLESTR name, IDispatch* obj, long a, long* pResult) {
  return call_member(__func__, pdisp, name, kMethod, values(dispatch_variant(obj), i4_variant(a)),
                     LongOut{pResult});
}

HRESULT WINAPI DispatchDoVerbV(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args, long* pResult) {
  return call_member(__func__, pdisp, name, kMethod, by_reference(count, args), LongOut{pResult});
}

HRESULT WINAPI DispatchDoVerbArgs(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args, long* pResult) {
  return call_member(__func__, pdisp, name, kMethod, as_given(count, args), LongOut{pResult});
}

// ---- Whole VARIANT results ---------------------------------------------------------

HRESULT WINAPI DispatchDoVerbArgsV(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args, VARIANT* pResult) {
  return call_member(__func__, pdisp, name, kMethod, as_given(count, args), VariantOut{pResult});
}

HRESULT WINAPI DispatchPropertyGetArgsV(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args,
                                        VARIANT* pResult) {
  return call_member(__func__, pdisp, name, kGet, as_given(count, args), VariantOut{pResult});
}

HRESULT WINAPI DispatchPropertyPutArgsV(IDispatch* pdisp, LPOLESTR name, int count, VARIANT* args,
                                        VARIANT* pResult) {
  return call_member(__func__, pdisp, name, kPut, as_given(count, args), VariantOut{pResult});
}

}  // extern "C"
