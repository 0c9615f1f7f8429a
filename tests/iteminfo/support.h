// Helpers of the item info tests: short forms of the property exports, and
// a look inside an open item info for the few tests that need one (the
// library's inline internals compiled into the test).
#pragma once

#include <windows.h>

#include <string_view>

#include "MvSup2u.h"
#include "common/item_info_blocks.h"
#include "iteminfo/item_info.h"

namespace mvsup::test {

HMVXPROP AddProperty(HMVXINFO info, DWORD id);
HMVXPROP AddCustomProperty(HMVXINFO info, std::wstring_view name);
HMVXPROP FindProperty(HMVXINFO info, DWORD id);
HMVXPROP FindCustomProperty(HMVXINFO info, std::wstring_view name);
void DeleteProperty(HMVXINFO info, DWORD id);
void DeleteCustomProperty(HMVXINFO info, std::wstring_view name);

inline iteminfo::ItemInfo& Internals(HMVXINFO info) { return *iteminfo::from_handle(info); }

}  // namespace mvsup::test
