// The interface id is defined here for the test program: <initguid.h> must
// come before the first inclusion of the library's header.
#include <windows.h>
#include <initguid.h>

#include "MvSupTypes.h"
#include "fake_client_item.h"

namespace mvsup::test {

STDMETHODIMP FakeClientItem::QueryInterface(REFIID riid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (IsEqualIID(riid, IID_IUnknown) || (with_interface_ && IsEqualIID(riid, IID_IMvxClientItem))) {
    *object = static_cast<IMvxClientItem*>(this);
    AddRef();
    return S_OK;
  }
  return E_NOINTERFACE;
}

STDMETHODIMP FakeClientItem::GetClassString(BSTR* text) {
  ++class_calls_;
  *text = SysAllocString(class_string_.c_str());
  return S_OK;
}

STDMETHODIMP FakeClientItem::GetServerKeyString(BSTR* text) {
  ++server_calls_;
  *text = SysAllocString(server_key_.c_str());
  return S_OK;
}

}  // namespace mvsup::test
