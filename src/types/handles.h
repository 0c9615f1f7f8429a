// Handle recognisers and formatting: "<word>-<number>" in the forms that
// callers meet (full words, one-letter short forms, bare numbers, handles
// inside longer text). Untraced implementations behind the exports.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "types/item_types.h"

namespace mvsup::types::handles {

inline constexpr long kNoHandle = -1;
inline constexpr WORD kNoHandleType = 0xFFFF;
inline constexpr size_t kMaxPrefixLength = 31;
// Longest type word that formatting uses.
inline constexpr size_t kMaxFormattedWord = 320;
// Longest token that a search inside longer text parses.
inline constexpr size_t kMaxFoundToken = 96;

// An optional sign and decimal digits only; a lone sign counts, empty text
// does not.
bool is_number(std::wstring_view text) noexcept;
// ToNumber: the value after a 1-31 character prefix (ignoring case), or -1.
long number_after_prefix(std::wstring_view text, std::wstring_view prefix) noexcept;

long collection(std::wstring_view text, bool allow_bare, bool allow_short) noexcept;
long file(std::wstring_view text, bool allow_bare, long* version, bool allow_short) noexcept;
long group(std::wstring_view text, bool allow_bare) noexcept;
long user(std::wstring_view text, bool allow_bare) noexcept;

struct Found {
  WORD type = kNoHandleType;
  long number = kNoHandle;
};
// ToHandle.
Found find(std::wstring_view text, long* version, bool allow_short) noexcept;

// "<word>-<number>" with at most 320 characters of word; http: type 3 writes
// "File".
std::wstring format(ItemType type, DWORD number, bool http) noexcept;

}  // namespace mvsup::types::handles
