// The client's item interface (IMvxClientItem), as the library reads it from
// objects that callers hand in.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <string>

namespace mvsup::types::client_item {

// The item's class word / server key; empty when the object is null, does
// not have the interface, or the getter fails. No reference is kept.
std::wstring class_string(IUnknown* object) noexcept;
std::wstring server_key(IUnknown* object) noexcept;

}  // namespace mvsup::types::client_item
