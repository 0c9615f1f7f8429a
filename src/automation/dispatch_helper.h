// The call record of the late-bound helpers and the pieces every helper is
// made of: how its arguments are laid into DISPPARAMS and how its result is
// handed back. Each exported helper is one call_member() with one argument
// layout and one result rule.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <array>
#include <cstddef>

#include "frame/trace.h"

namespace mvsup::automation {

// One Invoke, built on the caller's stack. Field order and ownership are part
// of the library's contract with servers that inspect what they are handed:
// the argument VARIANTs are shallow copies (the array is freed, its contents
// never cleared); the result is cleared on destruction unless a rule took it
// out; the exception texts are traced and freed on destruction.
class CDispatchHelper {
 public:
  CDispatchHelper(DISPID member, WORD flags) noexcept;
  virtual ~CDispatchHelper();
  CDispatchHelper(const CDispatchHelper&) = delete;
  CDispatchHelper& operator=(const CDispatchHelper&) = delete;

  // Makes room for count arguments, each VariantInit'ed. E_OUTOFMEMORY when
  // the array cannot be had.
  HRESULT reserve_arguments(UINT count) noexcept;

  // IDispatch::Invoke with locale 0; an exception thrown out of the server
  // becomes E_FAIL.
  HRESULT Invoke(IDispatch* pdisp) noexcept;

  // Moves all 16 bytes of the result out and leaves it empty with a zero
  // value, so that destruction clears nothing.
  VARIANT take_result() noexcept;

  DISPID dispid;
  WORD wFlags;
  DISPPARAMS params;
  DISPID dispidPut = DISPID_PROPERTYPUT;
  VARIANT result;
  EXCEPINFO excepInfo;
  UINT argErr = 0xFFFFFFFF;
};

// GetIDsOfNames for one name; 0 (the default member) when it fails.
DISPID get_dispid(IDispatch* pdisp, LPOLESTR name) noexcept;

// TRUE for a VT_DATE whose year lies in 1970-2036.
BOOL validate_date(const VARIANT& value) noexcept;

// ---- Argument layouts ----------------------------------------------------
// Each has check() (S_OK or why the call cannot be made), count() and
// place(rgvarg), which fills the record's argument array.

struct NoArguments {
  HRESULT check() const noexcept { return S_OK; }
  UINT count() const noexcept { return 0; }
  void place(VARIANT*) const noexcept {}
};

// Fixed arguments in the caller's (natural) order; laid in reverse, so that
// the last one is rgvarg[0]. status carries a check made by the export (a
// required pointer that was null).
template <size_t N>
struct Values {
  std::array<VARIANT, N> natural;
  HRESULT status = S_OK;
  HRESULT check() const noexcept { return status; }
  UINT count() const noexcept { return N; }
  void place(VARIANT* rgvarg) const noexcept {
    for (size_t i = 0; i < N; ++i) rgvarg[N - 1 - i] = natural[i];
  }
};

// The caller's array of count VARIANTs, in natural order (reversed = true,
// each passed by reference) or already in DISPPARAMS order (copied as is).
struct CallerArray {
  int size;
  VARIANT* args;
  bool by_reference;
  HRESULT check() const noexcept;
  UINT count() const noexcept { return static_cast<UINT>(size); }
  void place(VARIANT* rgvarg) const noexcept;
};

VARIANT i4_variant(long value) noexcept;
VARIANT bstr_variant(BSTR value) noexcept;
VARIANT bool_variant(BOOL value) noexcept;
VARIANT date_variant(DATE value) noexcept;
VARIANT dispatch_variant(IDispatch* value) noexcept;
VARIANT bool_reference(VARIANT_BOOL* value) noexcept;
VARIANT variant_reference(VARIANT* value) noexcept;

// ---- Result rules ----------------------------------------------------------
// Each has ready() (false: a required out pointer is null), prepare() (what
// is written before the call) and finish(hr, call), which hands the result
// over and gives the helper's HRESULT.

// Getters of a typed property: the default first, the value only for S_OK
// with the expected type.
template <typename T, VARTYPE Expected, T (*Read)(const VARIANT&)>
struct TypedWithDefault {
  T* out;
  T fallback;
  bool ready() const noexcept { return out != nullptr; }
  void prepare() const noexcept { *out = fallback; }
  HRESULT finish(HRESULT hr, CDispatchHelper& call) const noexcept {
    if (hr != S_OK) return hr;
    if (call.result.vt != Expected) return E_UNEXPECTED;
    *out = Read(call.result);
    return S_OK;
  }
};

struct BstrOut {
  BSTR* out;
  bool ready() const noexcept { return out != nullptr; }
  void prepare() const noexcept {}
  HRESULT finish(HRESULT hr, CDispatchHelper& call) const noexcept;
};

struct LongOut {
  long* out;
  bool lenient = false;
  bool ready() const noexcept { return true; }
  void prepare() const noexcept {}
  HRESULT finish(HRESULT hr, CDispatchHelper& call) const noexcept;
};

struct ObjectOut {
  IDispatch** out;
  bool ready() const noexcept { return out != nullptr; }
  void prepare() const noexcept {}
  HRESULT finish(HRESULT hr, CDispatchHelper& call) const noexcept;
};

struct VariantOut {
  VARIANT* out;
  bool ready() const noexcept { return true; }
  void prepare() const noexcept {}
  HRESULT finish(HRESULT hr, CDispatchHelper& call) const noexcept;
};

// The general getter: any result for VT_EMPTY, else a copy of a result of
// the wanted type.
struct WantedType {
  VARTYPE vt;
  VARIANT* out;
  bool ready() const noexcept { return out != nullptr; }
  void prepare() const noexcept { ::VariantInit(out); }
  HRESULT finish(HRESULT hr, CDispatchHelper& call) const noexcept;
};

struct InvokeResult {
  bool ready() const noexcept { return true; }
  void prepare() const noexcept {}
  HRESULT finish(HRESULT hr, CDispatchHelper&) const noexcept { return hr; }
};

// One helper call, traced under the export's name: check, look the name up,
// lay the arguments, Invoke, hand the result over.
template <typename Arguments, typename Rule>
HRESULT call_member(const char* export_name, IDispatch* pdisp, LPOLESTR name, WORD flags,
                    const Arguments& arguments, const Rule& rule) noexcept {
  trace::CallScope scope(export_name);
  if (!rule.ready()) return scope.hr(E_POINTER);
  rule.prepare();
  if (pdisp == nullptr) return scope.hr(E_POINTER);
  if (const HRESULT hr = arguments.check(); FAILED(hr)) return scope.hr(hr);
  CDispatchHelper call(get_dispid(pdisp, name), flags);
  if (const HRESULT hr = call.reserve_arguments(arguments.count()); FAILED(hr)) return scope.hr(hr);
  arguments.place(call.params.rgvarg);
  return scope.hr(rule.finish(call.Invoke(pdisp), call));
}

}  // namespace mvsup::automation
