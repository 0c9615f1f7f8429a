#include "types/client_item.h"

// The interface id is defined here, once for the library.
#include <initguid.h>

#include "MvSupTypes.h"
#include "frame/text.h"
#include "frame/win32_handles.h"

namespace mvsup::types::client_item {

namespace {

template <typename Getter>
std::wstring read(IUnknown* object, Getter getter) noexcept {
  if (object == nullptr) return {};
  try {
    com_ptr<IMvxClientItem> item;
    if (FAILED(object->QueryInterface(IID_IMvxClientItem, item.put_void())) || !item) return {};
    unique_bstr text;
    if (FAILED(getter(item.get(), text.put())) || !text) return {};
    return std::wstring(text.get(), text::bounded_length(text.get(), ::SysStringLen(text.get())));
  } catch (...) {
    return {};
  }
}

}  // namespace

std::wstring class_string(IUnknown* object) noexcept {
  return read(object, [](IMvxClientItem* item, BSTR* text) { return item->GetClassString(text); });
}

std::wstring server_key(IUnknown* object) noexcept {
  return read(object, [](IMvxClientItem* item, BSTR* text) { return item->GetServerKeyString(text); });
}

}  // namespace mvsup::types::client_item
