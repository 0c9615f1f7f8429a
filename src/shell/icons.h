// The icon choices of the library: indexes into its icon tables, the icons
// of file types, and copies of its own icon resources.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>
#include <string>

#include "shell/icon_tables.h"

namespace mvsup::shell::icons {

// A new copy of one of the library's icons at the system's large or small
// icon size; the caller destroys it. Null when the resource is missing.
HICON load_icon(uint32_t table_entry, bool large) noexcept;

// The index of the first class whose name begins text; 0 when none does.
UINT class_index(std::span<const MailClass> classes, std::wstring_view text) noexcept;

// The item's custom string property, or empty.
std::wstring custom_text(const BYTE* item, const wchar_t* name);

// The file icon index of an item (GetMvxFileIconIndex without its checks).
UINT file_icon_index(const BYTE* item) noexcept;

// The file-type icons of an item (LoadMvxFileIcon): true when found. Both
// outputs are set (null when not found).
bool load_file_icons(const BYTE* item, HICON* large, HICON* small) noexcept;

// ExtractIconFor without its call scope; outputs may be null.
BOOL extract_icon_for(const wchar_t* extension, HICON* large, HICON* small) noexcept;

}  // namespace mvsup::shell::icons
