// Custom item types: the numbers, labels and class records that the client
// keeps per user under the component settings key "MVSUP\CustomTypes".
// Untraced implementations behind the exported custom-type functions. No
// state in memory: every call reads the registry, so several processes see
// one another's assignments at once.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <string>
#include <string_view>

#include "types/item_types.h"

namespace mvsup::types::custom {

inline constexpr const wchar_t* kRootComponent = L"MVSUP\\CustomTypes";
inline constexpr const wchar_t* kMapsComponent = L"MVSUP\\CustomTypes\\Maps";
inline constexpr const wchar_t* kNamesComponent = L"MVSUP\\CustomTypes\\Names";
inline constexpr const wchar_t* kClassesComponent = L"MVSUP\\CustomTypes\\Classes";
inline constexpr const wchar_t* kFlagsValue = L"Flags";

// Type numbers are the assignment plus this.
inline constexpr ItemType kAssignmentBase = 32;
// Enumerations of "Maps" look at this many values at most.
inline constexpr DWORD kMaxAssignments = 223;
inline constexpr size_t kMaxClassWordLength = 383;
// Capacity of a superclass buffer of MvxGetClientDefinedCustomItemType.
inline constexpr size_t kSuperclassCapacity = 40;
inline constexpr size_t kLabelLength = 80;

// The text before the first '-', at most 383 characters.
std::wstring_view class_word(std::wstring_view text) noexcept;
// Four upper-case hex digits per UTF-16 unit: "Foo" -> "0046006F006F".
std::wstring encode(std::wstring_view word);
// The reverse for a name of at least 2 hex digits whose length is a multiple
// of 4; any other name as it stands.
std::wstring decode(std::wstring_view name);

// The type of a class word; 16 when it has none.
ItemType type_from_word(std::wstring_view text) noexcept;
// The class word of a custom type; empty below 33 or when unassigned.
std::wstring word_from_type(ItemType type) noexcept;
// The class word, or its label from "Names" (read under the plain word).
std::wstring display_from_type(ItemType type) noexcept;

// MvxCreateCustomItemType. *type receives the new type (16 on failure).
int create(std::wstring_view text, ItemType* type) noexcept;
int set_label(std::wstring_view text, std::wstring_view label) noexcept;
int remove(std::wstring_view text) noexcept;

// MvxGetClientDefinedCustomItemType. superclass: null or 40 characters.
ItemType client_defined(std::wstring_view text, std::wstring_view class_key, wchar_t* superclass,
                        DWORD* flags) noexcept;
ItemType superclass_type(std::wstring_view text, IUnknown* object) noexcept;
int is_container(std::wstring_view text, IUnknown* object) noexcept;
int map_child_types(std::wstring_view server, std::wstring_view class_word, bool has_children,
                    const wchar_t* const* child_types) noexcept;
int map_superclass(std::wstring_view server, std::wstring_view class_word, std::wstring_view superclass) noexcept;

// The custom string property of an item info that names its base type.
inline constexpr std::wstring_view kBaseTypeProperty = L"MVClient BaseType";
// MvxGetSuperclassFromItemInfo.
ItemType superclass_of_item_info(const BYTE* item_info) noexcept;

}  // namespace mvsup::types::custom
