// The call record of the late-bound helpers, its argument layouts and its
// result rules.
#include "automation/dispatch_helper.h"

#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string_view>

#include "automation/invoke_guard.h"
#include "types/item_types.h"

namespace mvsup::automation {

namespace {

constexpr WORD kPutFlags = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
constexpr int kFirstValidYear = 1970;
constexpr int kLastValidYear = 2036;

void write_exception_text(const wchar_t* format, BSTR& text) noexcept {
  if (text == nullptr) return;
  trace::line(format, text);
  ::SysFreeString(text);
  text = nullptr;
}

}  // namespace

CDispatchHelper::CDispatchHelper(DISPID member, WORD flags) noexcept : dispid(member), wFlags(flags) {
  params.rgvarg = nullptr;
  params.cArgs = 0;
  // A put sends its value as the named argument DISPID_PROPERTYPUT, so the
  // value is always rgvarg[0].
  const bool put = (flags & kPutFlags) != 0;
  params.rgdispidNamedArgs = put ? &dispidPut : nullptr;
  params.cNamedArgs = put ? 1 : 0;
  // All 16 bytes, not only the type: a server that answers VT_EMPTY without
  // touching the value leaves a null pointer for the object rule to find.
  std::memset(&result, 0, sizeof(result));
  ::VariantInit(&result);
  std::memset(&excepInfo, 0, sizeof(excepInfo));
}

CDispatchHelper::~CDispatchHelper() {
  // A server may defer filling the texts in until someone looks at them.
  if (excepInfo.pfnDeferredFillIn != nullptr && excepInfo.bstrSource == nullptr &&
      excepInfo.bstrDescription == nullptr && excepInfo.bstrHelpFile == nullptr)
    excepInfo.pfnDeferredFillIn(&excepInfo);
  write_exception_text(L"ExcepInfo.Source: %ls\n", excepInfo.bstrSource);
  write_exception_text(L"ExcepInfo.Description: %ls\n", excepInfo.bstrDescription);
  write_exception_text(L"ExcepInfo.HelpFile: %ls\n", excepInfo.bstrHelpFile);
  trace::line("ExcepInfo.Scode: %X\n", static_cast<unsigned>(excepInfo.scode));
  ::VariantClear(&result);
  // The arguments are the caller's: only the array goes.
  std::unique_ptr<VARIANT[]> arguments(params.rgvarg);
}

HRESULT CDispatchHelper::reserve_arguments(UINT count) noexcept {
  if (count == 0) return S_OK;
  std::unique_ptr<VARIANT[]> owned;
  try {
    owned = std::make_unique<VARIANT[]>(count);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  for (UINT i = 0; i < count; ++i) ::VariantInit(&owned[i]);
  std::unique_ptr<VARIANT[]> previous(params.rgvarg);
  params.rgvarg = owned.release();
  params.cArgs = count;
  return S_OK;
}

namespace {

struct InvokeCall {
  CDispatchHelper& record;
  IDispatch* pdisp;
  bool thrown = false;
};

// Our own catch-all: C++ exceptions of servers built with our compiler
// arrive here; the structured frame around this call takes those of others.
HRESULT invoke_catching(void* context) noexcept {
  InvokeCall& call = *static_cast<InvokeCall*>(context);
  CDispatchHelper& r = call.record;
  try {
    return call.pdisp->Invoke(r.dispid, IID_NULL, 0, r.wFlags, &r.params, &r.result, &r.excepInfo, &r.argErr);
  } catch (...) {
    call.thrown = true;
    return E_FAIL;
  }
}

}  // namespace

HRESULT CDispatchHelper::Invoke(IDispatch* pdisp) noexcept {
  trace::CallScope scope("CDispatchHelper::Invoke");
  InvokeCall call{*this, pdisp};
  bool caught = false;
  HRESULT hr = call_with_exception_frame(invoke_catching, &call, &caught);
  if (call.thrown || caught) {
    trace::line("Caught exception from IDispatch::Invoke\n");
    hr = E_FAIL;
  }
  return scope.hr(hr);
}

VARIANT CDispatchHelper::take_result() noexcept {
  VARIANT taken;
  std::memcpy(&taken, &result, sizeof(taken));
  std::memset(&result, 0, sizeof(result));
  result.vt = VT_EMPTY;
  return taken;
}

DISPID get_dispid(IDispatch* pdisp, LPOLESTR name) noexcept {
  trace::CallScope scope("DispatchGetDISPID");
  trace::line(L"Name: %ls\n", name);
  if (pdisp == nullptr) {
    scope.hr(E_POINTER);
    return DISPID_VALUE;
  }
  if (name == nullptr) return DISPID_VALUE;
  DISPID dispid = DISPID_VALUE;
  // A name the object does not know goes to its default member.
  if (const HRESULT hr = pdisp->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_SYSTEM_DEFAULT, &dispid); FAILED(hr)) {
    scope.hr(hr);
    return DISPID_VALUE;
  }
  return dispid;
}

BOOL validate_date(const VARIANT& value) noexcept {
  if (value.vt != VT_DATE) return FALSE;
  SYSTEMTIME time;
  if (!::VariantTimeToSystemTime(value.date, &time)) return FALSE;
  return time.wYear >= kFirstValidYear && time.wYear <= kLastValidYear ? TRUE : FALSE;
}

// ---- Argument layouts --------------------------------------------------------

HRESULT CallerArray::check() const noexcept {
  if (size < 0) return E_INVALIDARG;
  if (size > 0 && args == nullptr) return E_POINTER;
  return S_OK;
}

void CallerArray::place(VARIANT* rgvarg) const noexcept {
  for (int i = 0; i < size; ++i) {
    if (by_reference)
      rgvarg[size - 1 - i] = variant_reference(&args[i]);
    else
      rgvarg[i] = args[i];
  }
}

namespace {
VARIANT typed(VARTYPE vt) noexcept {
  VARIANT value;
  std::memset(&value, 0, sizeof(value));
  value.vt = vt;
  return value;
}
}  // namespace

VARIANT i4_variant(long value) noexcept {
  VARIANT v = typed(VT_I4);
  v.lVal = value;
  return v;
}

VARIANT bstr_variant(BSTR value) noexcept {
  VARIANT v = typed(VT_BSTR);
  v.bstrVal = value;
  return v;
}

VARIANT bool_variant(BOOL value) noexcept {
  VARIANT v = typed(VT_BOOL);
  v.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return v;
}

VARIANT date_variant(DATE value) noexcept {
  VARIANT v = typed(VT_DATE);
  v.date = value;
  return v;
}

VARIANT dispatch_variant(IDispatch* value) noexcept {
  VARIANT v = typed(VT_DISPATCH);
  v.pdispVal = value;
  return v;
}

VARIANT bool_reference(VARIANT_BOOL* value) noexcept {
  VARIANT v = typed(VT_BYREF | VT_BOOL);
  v.pboolVal = value;
  return v;
}

VARIANT variant_reference(VARIANT* value) noexcept {
  VARIANT v = typed(VT_BYREF | VT_VARIANT);
  v.pvarVal = value;
  return v;
}

// ---- Result rules ------------------------------------------------------------

HRESULT BstrOut::finish(HRESULT hr, CDispatchHelper& call) const noexcept {
  if (hr != S_OK) return hr;
  if (call.result.vt != VT_BSTR) return E_UNEXPECTED;
  *out = call.take_result().bstrVal;
  return S_OK;
}

namespace {

std::optional<long> strict_long(const VARIANT& value) noexcept {
  if (value.vt == VT_I4) return value.lVal;
  return std::nullopt;
}

// DoVerb's reading: servers answer its verbs with shorts, nothing at all or
// digits in a string as often as with a long.
std::optional<long> lenient_long(const VARIANT& value) noexcept {
  switch (value.vt) {
    case VT_I4:
      return value.lVal;
    case VT_I2:
      return static_cast<long>(value.iVal);
    case VT_EMPTY:
      return 0L;
    case VT_BSTR:
      return types::leading_decimal(std::wstring_view(value.bstrVal ? value.bstrVal : L"",
                                                      value.bstrVal ? ::SysStringLen(value.bstrVal) : 0));
    default:
      return std::nullopt;
  }
}

}  // namespace

HRESULT LongOut::finish(HRESULT hr, CDispatchHelper& call) const noexcept {
  if (out == nullptr || FAILED(hr)) return hr;
  if (const std::optional<long> value = lenient ? lenient_long(call.result) : strict_long(call.result)) {
    *out = *value;
    return hr;
  }
  *out = 0;
  return hr == S_OK ? E_UNEXPECTED : hr;
}

HRESULT ObjectOut::finish(HRESULT hr, CDispatchHelper& call) const noexcept {
  if (hr != S_OK) return hr;
  // The interface pointer is taken whatever flavour of object the result
  // claims to be; a result that holds no interface pointer at all counts as
  // no object (its value field would be a number or a string).
  const VARTYPE vt = call.result.vt;
  IDispatch* object = (vt == VT_DISPATCH || vt == VT_UNKNOWN) ? call.result.pdispVal : nullptr;
  if (object == nullptr) {
    *out = nullptr;
    return S_FALSE;
  }
  object->AddRef();
  *out = object;
  return S_OK;
}

HRESULT VariantOut::finish(HRESULT hr, CDispatchHelper& call) const noexcept {
  if (out != nullptr && SUCCEEDED(hr)) *out = call.take_result();
  return hr;
}

HRESULT WantedType::finish(HRESULT hr, CDispatchHelper& call) const noexcept {
  if (vt == VT_EMPTY) {
    *out = call.take_result();
    return hr;
  }
  if (hr != S_OK || call.result.vt != vt) return hr;
  if (vt == VT_DATE && !validate_date(call.result)) return S_FALSE;
  return ::VariantCopy(out, &call.result);
}

}  // namespace mvsup::automation
