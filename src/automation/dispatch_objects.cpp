// Getting hold of automation objects (by ProgID, or a running instance from
// the running-object table), the name lookup and date check on their own,
// and the property copy between two objects.
#include "MvSupDispatch.h"
#include "automation/dispatch_helper.h"
#include "frame/win32_handles.h"

namespace mvsup::automation {
namespace {

constexpr DWORD kCreateContext = CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER;

HRESULT create_dispatch(LPCOLESTR prog_id, IDispatch** out) noexcept {
  *out = nullptr;
  trace::line(L"ProgId: %ls\n", prog_id);
  if (prog_id == nullptr) return E_INVALIDARG;
  CLSID clsid;
  const HRESULT hr = ::CLSIDFromProgID(prog_id, &clsid);
  if (FAILED(hr)) return hr;
  return ::CoCreateInstance(clsid, nullptr, kCreateContext, IID_IDispatch, reinterpret_cast<void**>(out));
}

HRESULT query_app(LPCOLESTR prog_id_or_clsid, DWORD flags, IDispatch** out) noexcept {
  *out = nullptr;
  trace::line(L"ProgId: %ls (Flags=%X)\n", prog_id_or_clsid, static_cast<unsigned>(flags));
  if (prog_id_or_clsid == nullptr) return E_INVALIDARG;
  CLSID clsid;
  if (const HRESULT hr = ::CLSIDFromString(prog_id_or_clsid, &clsid); hr != S_OK) return hr;

  com_ptr<IUnknown> unknown;
  if (!(flags & MVSUP_QUERYAPP_NEW_INSTANCE) && SUCCEEDED(::GetActiveObject(clsid, nullptr, unknown.put())) &&
      unknown)
    return unknown->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(out));

  if (!(flags & MVSUP_QUERYAPP_RUN))
    return ::CoCreateInstance(clsid, nullptr, CLSCTX_SERVER, IID_IDispatch, reinterpret_cast<void**>(out));
  HRESULT hr = ::CoCreateInstance(clsid, nullptr, CLSCTX_SERVER, IID_IUnknown, unknown.put_void());
  if (FAILED(hr)) return hr;
  // Servers that start hidden become visible to GetActiveObject only once
  // running; whether that worked is the server's business.
  ::OleRun(unknown.get());
  return unknown->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(out));
}

HRESULT copy_property(IDispatch* source, IDispatch* target, LPOLESTR source_name, LPOLESTR target_name) noexcept {
  if (source == nullptr || target == nullptr) return E_POINTER;
  CDispatchHelper get(get_dispid(source, source_name), DISPATCH_PROPERTYGET);
  const HRESULT hr = get.Invoke(source);
  if (hr != S_OK) return hr;
  return DispatchPropertyPut(target, target_name, &get.result);
}

}  // namespace
}  // namespace mvsup::automation

using namespace mvsup::automation;

extern "C" {

HRESULT WINAPI DispatchCreateDispatch(LPCOLESTR progId, IDispatch** ppOut) {
  mvsup::trace::CallScope scope(__func__);
  if (ppOut == nullptr) return scope.hr(E_POINTER);
  return scope.hr(create_dispatch(progId, ppOut));
}

HRESULT WINAPI DispatchQueryApp(LPCOLESTR progIdOrClsid, DWORD flags, IDispatch** ppOut) {
  mvsup::trace::CallScope scope(__func__);
  if (ppOut == nullptr) return scope.hr(E_POINTER);
  return scope.hr(query_app(progIdOrClsid, flags, ppOut));
}

DISPID WINAPI DispatchGetDISPID(IDispatch* pdisp, LPOLESTR name) { return get_dispid(pdisp, name); }

BOOL WINAPI DispatchValidateDate(VARIANT v) { return validate_date(v); }

HRESULT WINAPI DispatchPropertyCopy(IDispatch* source, IDispatch* target, LPOLESTR sourceName, LPOLESTR targetName) {
  mvsup::trace::CallScope scope(__func__);
  return scope.hr(copy_property(source, target, sourceName, targetName));
}

}  // extern "C"
