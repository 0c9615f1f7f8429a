// Icons of repository items and server-map entries: the index rules and
// copies of the library's own icon pairs.
#include "shell/icons.h"

#include <cstring>

#include "MvSupShell.h"
#include "frame/library_state.h"
#include "frame/trace.h"
#include "iteminfo/property_accessors.h"
#include "types/item_types.h"

namespace mvsup::shell::icons {

namespace {

// Server-map flags.
constexpr DWORD kConnectedBit = 0x00000800;
constexpr DWORD kErrorBit = 0x00001000;
constexpr DWORD kBusyBit = 0x00002000;
constexpr DWORD kLinkedBit = 0x08000000;
constexpr DWORD kMapNodeBase = 0x10000000;
constexpr int kMapNodeShift = 26;
constexpr UINT kLinkedServerIndex = 5;

// The item header's 32-bit size field, which tells a rendition with content
// (shown by its file type) from one without.
constexpr size_t kContentSizeOffset = 8;

constexpr const wchar_t* kBaseTypeProperty = L"MVClient BaseType";
constexpr const wchar_t* kFolderClassProperty = L"OutlookFolderClass";

// Item types whose icon does not depend on anything else, with the index of
// their unselected icon.
struct TypeIcon {
  types::ItemType type;
  UINT index;
};
constexpr TypeIcon kTypeIcons[] = {
    {1, item_index::kServer},     {5, item_index::kCalendar},   {6, item_index::kDiscussion},
    {7, item_index::kUrl},        {8, item_index::kTopic},      {9, item_index::kSavedQuery},
    {10, item_index::kEvent},     {14, item_index::kUser},      {15, item_index::kGroup},
    {20, item_index::kWorkspace}, {21, item_index::kWiki},      {22, item_index::kWeblog},
    {30, item_index::kLink},
};

UINT server_map_index(short level, DWORD flags, bool selected) noexcept {
  UINT index;
  if (level >= 2) {
    index = ((flags & kLinkedBit) | kMapNodeBase) >> kMapNodeShift;
  } else if (flags & kLinkedBit) {
    index = kLinkedServerIndex;
  } else {
    // The later tests win, as they always have.
    index = 0;
    if (!(flags & kConnectedBit)) index = 1;
    if (flags & kBusyBit) index = 2;
    if (flags & kErrorBit) index = 3;
  }
  return selected ? index + kServerMapSelectedOffset : index;
}

types::ItemType item_type(const BYTE* item) {
  const std::optional<WORD> stored = iteminfo::accessors::header_item_type(item);
  types::ItemType type = stored ? *stored : 0;
  if (type >= types::kFirstCustom && type <= types::kLastCustom) {
    const std::wstring base = custom_text(item, kBaseTypeProperty);
    if (!base.empty()) type = types::type_from_string(base);
  }
  return type;
}

// A document's index: its file type's key unless selected.
UINT document_index(const BYTE* item, bool selected) noexcept {
  return selected ? item_index::kDocument + kSelectedOffset : file_icon_index(item);
}

UINT item_icon_index(const BYTE* item, bool selected) {
  const UINT selected_offset = selected ? kSelectedOffset : 0;
  const types::ItemType type = item_type(item);
  switch (type) {
    case 2: {
      const UINT folder_class = class_index(kMailFolderClasses, custom_text(item, kFolderClassProperty));
      return (folder_class != 0 ? folder_class : item_index::kCollection) + selected_offset;
    }
    case 3:
    case 4:
    case 18:
      return document_index(item, selected);
    case 11: {
      DWORD content_size = 0;
      std::memcpy(&content_size, item + kContentSizeOffset, sizeof(content_size));
      if (content_size == 0) return item_index::kRendition + selected_offset;
      return document_index(item, selected);
    }
    default:
      for (const TypeIcon& entry : kTypeIcons)
        if (entry.type == type) return entry.index + selected_offset;
      return item_index::kOther + selected_offset;
  }
}

// Copies of one table pair into the outputs that were asked for; a missing
// resource falls back to the generic document pair.
void load_pair(uint32_t large_entry, uint32_t small_entry, HICON* large, HICON* small) noexcept {
  if (large != nullptr) {
    *large = load_icon(large_entry, true);
    if (*large == nullptr) *large = load_icon(kGenericLargeIcon, true);
  }
  if (small != nullptr) {
    *small = load_icon(small_entry, false);
    if (*small == nullptr) *small = load_icon(kGenericSmallIcon, false);
  }
}

void load_item_pair(UINT index, HICON* large, HICON* small) noexcept {
  load_pair(kItemLargeIcons[index], kItemSmallIcons[index], large, small);
}

}  // namespace

HICON load_icon(uint32_t table_entry, bool large) noexcept {
  const int edge = ::GetSystemMetrics(large ? SM_CXICON : SM_CXSMICON);
  return static_cast<HICON>(::LoadImageW(frame::own_module(), MAKEINTRESOURCEW(table_entry & 0xFFFF), IMAGE_ICON,
                                         edge, edge, LR_DEFAULTCOLOR));
}

UINT class_index(std::span<const MailClass> classes, std::wstring_view text) noexcept {
  for (const MailClass& entry : classes)
    if (text.substr(0, entry.prefix.size()) == entry.prefix) return entry.index;
  return 0;
}

std::wstring custom_text(const BYTE* item, const wchar_t* name) {
  LPWSTR text = nullptr;
  if (item == nullptr || iteminfo::accessors::custom_string(item, name, &text) != S_OK || text == nullptr) return {};
  return text;
}

namespace {

HRESULT choose_item_index(const BYTE* item, BOOL selected, UINT* index) noexcept {
  try {
    *index = item_icon_index(item, selected != FALSE);
  } catch (...) {
    *index = item_index::kOther + (selected ? kSelectedOffset : 0);
  }
  return S_OK;
}

HRESULT load_item_icon(const BYTE* item, BOOL selected, HICON* large, HICON* small, UINT* index) noexcept {
  UINT chosen = 0;
  choose_item_index(item, selected, &chosen);
  if (index != nullptr) *index = chosen;
  if (chosen < kItemIconCount) {
    load_item_pair(chosen, large, small);
    return S_OK;
  }
  // A file type's key: the icons Windows shows for the type, else the
  // document pair.
  HICON file_large = nullptr, file_small = nullptr;
  if (load_file_icons(item, &file_large, &file_small)) {
    if (large != nullptr) *large = file_large; else if (file_large) ::DestroyIcon(file_large);
    if (small != nullptr) *small = file_small; else if (file_small) ::DestroyIcon(file_small);
    return S_OK;
  }
  load_item_pair(item_index::kDocument, large, small);
  return S_OK;
}

}  // namespace
}  // namespace mvsup::shell::icons

using namespace mvsup::shell::icons;

extern "C" {

HRESULT WINAPI GetServerMapIconIndex(short level, DWORD flags, const void* selected, UINT* index) {
  if (index == nullptr) return E_POINTER;
  *index = server_map_index(level, flags, selected != nullptr);
  return S_OK;
}

HRESULT WINAPI LoadServerMapIcon(short level, DWORD flags, HICON* large, HICON* small, UINT* index) {
  mvsup::trace::CallScope scope("LoadServerMapIcon");
  if (large != nullptr) *large = nullptr;
  if (small != nullptr) *small = nullptr;
  // The large icon's slot is the selection argument: a caller that wants a
  // large icon always gets the selected one, as callers have always seen.
  const UINT chosen = server_map_index(level, flags, large != nullptr);
  load_pair(kServerMapLargeIcons[chosen], kServerMapSmallIcons[chosen], large, small);
  if (index != nullptr) *index = chosen;
  return scope.hr(S_OK);
}

HRESULT WINAPI GetMvxItemIconIndex(const BYTE* item, BOOL selected, UINT* index) {
  mvsup::trace::CallScope scope("GetMvxItemIconIndex");
  if (index == nullptr) return scope.hr(E_POINTER);
  return scope.hr(choose_item_index(item, selected, index));
}

HRESULT WINAPI LoadMvxItemIcon(const BYTE* item, BOOL selected, HICON* large, HICON* small, UINT* index) {
  mvsup::trace::CallScope scope("LoadMvxItemIcon");
  if (large != nullptr) *large = nullptr;
  if (small != nullptr) *small = nullptr;
  return scope.hr(load_item_icon(item, selected, large, small, index));
}

}  // extern "C"
