// One property of a committed item info, found without opening it, and the
// untraced implementations behind the one-call property accessors, for the
// library's own use (the custom types read "MVClient BaseType" with them).
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "iteminfo/block_format.h"

namespace mvsup::iteminfo::accessors {

inline constexpr std::wstring_view kClientDataName = L"client_data";
// The writers' answer for a block that cannot be opened.
inline constexpr HRESULT kCannotOpen = 1;

// What a committed item info holds for one property. Pointers are value
// blocks (u32 length, then the data) inside the committed item info.
struct CommittedProperty {
  bool exists = false;
  const BYTE* type_value = nullptr;  // first value of attribute 1
  bool has_values = false;           // attribute 16 is there
  uint16_t value_count = 0;
  const BYTE* first_value = nullptr;  // first value of attribute 16
};

// The property as MvxOpen would load it: the first entry with the id (or
// name), the first attribute 1 and 16 of that entry. nullopt when the block
// does not hold together; a null block holds nothing.
std::optional<CommittedProperty> find_property(const BYTE* block, uint32_t id) noexcept;
std::optional<CommittedProperty> find_custom_property(const BYTE* block, std::wstring_view name) noexcept;

// The item type in the header (offset 6); nullopt for a null block or one
// whose size field is below 40.
std::optional<WORD> header_item_type(const BYTE* block) noexcept;

// MvxGetCustomStringProp without the trace.
HRESULT custom_string(const BYTE* block, std::wstring_view name, LPWSTR* text) noexcept;

}  // namespace mvsup::iteminfo::accessors
