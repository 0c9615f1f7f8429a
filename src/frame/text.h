// Small text helpers shared by every family: bounded copies into callers'
// buffers and conversions between UTF-16 and the ANSI code page.
#pragma once

#include <windows.h>

#include <cstdarg>
#include <cstddef>
#include <string>
#include <string_view>

namespace mvsup::text {

// Copies at most capacity - 1 characters of source and terminates. Returns the
// number of characters copied. Nothing is written when capacity is 0.
size_t copy_truncated(wchar_t* buffer, size_t capacity, std::wstring_view source) noexcept;
size_t copy_truncated(char* buffer, size_t capacity, std::string_view source) noexcept;

// Copies source with its terminator only when all of it fits; otherwise
// empties the buffer (when it has room for that) and returns false.
bool copy_whole(wchar_t* buffer, size_t capacity, std::wstring_view source) noexcept;
bool copy_whole(char* buffer, size_t capacity, std::string_view source) noexcept;

// Clears the first min(count, capacity) characters of a caller's buffer.
void clear_prefix(wchar_t* buffer, size_t capacity, size_t count) noexcept;

std::wstring_view view_or_empty(const wchar_t* text) noexcept;
std::string_view view_or_empty(const char* text) noexcept;

std::wstring to_wide(std::string_view text, UINT code_page = CP_ACP);
std::string to_narrow(std::wstring_view text, UINT code_page = CP_ACP);

// Converts source into a caller's narrow buffer of `capacity` bytes and
// terminates it, dropping whole characters from the end until the rest
// fits: a double-byte character (or a surrogate pair) is never cut in two.
// Nothing is written past the terminator. Returns the bytes written before
// the terminator; nothing is written when capacity is 0.
size_t copy_narrow_truncated(char* buffer, size_t capacity, std::wstring_view source,
                             UINT code_page = CP_ACP) noexcept;

// Length of a string of at most max_length characters (no read past that).
size_t bounded_length(const wchar_t* text, size_t max_length) noexcept;

bool equals_ignore_case(std::wstring_view a, std::wstring_view b) noexcept;
bool starts_with_ignore_case(std::wstring_view text, std::wstring_view prefix) noexcept;

// printf-style formatting into a std::string / std::wstring.
std::string format(const char* format, ...) __attribute__((format(__MINGW_PRINTF_FORMAT, 1, 2)));
std::wstring format(const wchar_t* format, ...);
std::string vformat(const char* format, va_list args);
std::wstring vformat(const wchar_t* format, va_list args);

}  // namespace mvsup::text
