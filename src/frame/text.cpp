#include "frame/text.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cwchar>
#include <vector>

namespace mvsup::text {

namespace {
template <typename Char>
size_t copy_truncated_impl(Char* buffer, size_t capacity, std::basic_string_view<Char> source) noexcept {
  if (buffer == nullptr || capacity == 0) return 0;
  const size_t count = std::min(source.size(), capacity - 1);
  std::copy_n(source.data(), count, buffer);
  buffer[count] = Char{};
  return count;
}
}  // namespace

size_t copy_truncated(wchar_t* buffer, size_t capacity, std::wstring_view source) noexcept {
  return copy_truncated_impl(buffer, capacity, source);
}

size_t copy_truncated(char* buffer, size_t capacity, std::string_view source) noexcept {
  return copy_truncated_impl(buffer, capacity, source);
}

namespace {
template <typename Char>
bool copy_whole_impl(Char* buffer, size_t capacity, std::basic_string_view<Char> source) noexcept {
  if (buffer == nullptr || capacity == 0) return false;
  if (source.size() >= capacity) {
    buffer[0] = Char{};
    return false;
  }
  copy_truncated_impl(buffer, capacity, source);
  return true;
}
}  // namespace

bool copy_whole(wchar_t* buffer, size_t capacity, std::wstring_view source) noexcept {
  return copy_whole_impl(buffer, capacity, source);
}

bool copy_whole(char* buffer, size_t capacity, std::string_view source) noexcept {
  return copy_whole_impl(buffer, capacity, source);
}

void clear_prefix(wchar_t* buffer, size_t capacity, size_t count) noexcept {
  if (buffer == nullptr) return;
  std::fill_n(buffer, std::min(capacity, count), L'\0');
}

std::wstring_view view_or_empty(const wchar_t* text) noexcept {
  return text ? std::wstring_view(text) : std::wstring_view();
}

std::string_view view_or_empty(const char* text) noexcept {
  return text ? std::string_view(text) : std::string_view();
}

std::wstring to_wide(std::string_view text, UINT code_page) {
  if (text.empty()) return {};
  const int size = static_cast<int>(std::min<size_t>(text.size(), INT_MAX));
  const int needed = ::MultiByteToWideChar(code_page, 0, text.data(), size, nullptr, 0);
  if (needed <= 0) return {};
  std::wstring result(static_cast<size_t>(needed), L'\0');
  ::MultiByteToWideChar(code_page, 0, text.data(), size, result.data(), needed);
  return result;
}

std::string to_narrow(std::wstring_view text, UINT code_page) {
  if (text.empty()) return {};
  const int size = static_cast<int>(std::min<size_t>(text.size(), INT_MAX));
  const int needed = ::WideCharToMultiByte(code_page, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  if (needed <= 0) return {};
  std::string result(static_cast<size_t>(needed), '\0');
  ::WideCharToMultiByte(code_page, 0, text.data(), size, result.data(), needed, nullptr, nullptr);
  return result;
}

namespace {
// Bytes that the first `units` code units of text convert to.
size_t narrow_length(const wchar_t* text, size_t units, UINT code_page) noexcept {
  if (units == 0) return 0;
  const int bytes = ::WideCharToMultiByte(code_page, 0, text, static_cast<int>(units), nullptr, 0, nullptr, nullptr);
  return bytes > 0 ? static_cast<size_t>(bytes) : 0;
}

bool is_high_surrogate(wchar_t unit) noexcept { return unit >= 0xD800 && unit <= 0xDBFF; }
}  // namespace

size_t copy_narrow_truncated(char* buffer, size_t capacity, std::wstring_view source, UINT code_page) noexcept {
  if (buffer == nullptr || capacity == 0) return 0;
  const size_t room = std::min<size_t>(capacity - 1, INT_MAX);
  size_t units = std::min<size_t>(source.size(), INT_MAX);
  if (narrow_length(source.data(), units, code_page) > room) {
    // The longest prefix that fits: the converted length grows with the
    // prefix, so a binary search finds it.
    size_t fits = 0;
    size_t too_long = units;
    while (too_long - fits > 1) {
      const size_t middle = fits + (too_long - fits) / 2;
      (narrow_length(source.data(), middle, code_page) <= room ? fits : too_long) = middle;
    }
    units = fits;
    if (units != 0 && is_high_surrogate(source[units - 1])) --units;
  }
  size_t written = 0;
  if (units != 0) {
    const int bytes = ::WideCharToMultiByte(code_page, 0, source.data(), static_cast<int>(units), buffer,
                                            static_cast<int>(room), nullptr, nullptr);
    written = bytes > 0 ? static_cast<size_t>(bytes) : 0;
  }
  buffer[written] = '\0';
  return written;
}

size_t bounded_length(const wchar_t* text, size_t max_length) noexcept {
  if (text == nullptr) return 0;
  size_t n = 0;
  while (n < max_length && text[n] != L'\0') ++n;
  return n;
}

bool equals_ignore_case(std::wstring_view a, std::wstring_view b) noexcept {
  if (a.size() != b.size()) return false;
  if (a.empty()) return true;
  return ::CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(),
                                static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

bool starts_with_ignore_case(std::wstring_view text, std::wstring_view prefix) noexcept {
  return text.size() >= prefix.size() && equals_ignore_case(text.substr(0, prefix.size()), prefix);
}

std::string vformat(const char* format, va_list args) {
  va_list copy;
  va_copy(copy, args);
  const int needed = std::vsnprintf(nullptr, 0, format, copy);
  va_end(copy);
  if (needed <= 0) return {};
  std::string result(static_cast<size_t>(needed) + 1, '\0');
  std::vsnprintf(result.data(), result.size(), format, args);
  result.resize(static_cast<size_t>(needed));
  return result;
}

std::wstring vformat(const wchar_t* format, va_list args) {
  // vswprintf does not report the needed size; grow until it fits.
  std::vector<wchar_t> buffer(256);
  for (;;) {
    va_list copy;
    va_copy(copy, args);
    const int written = std::vswprintf(buffer.data(), buffer.size(), format, copy);
    va_end(copy);
    if (written >= 0 && static_cast<size_t>(written) < buffer.size())
      return std::wstring(buffer.data(), static_cast<size_t>(written));
    if (buffer.size() > (1u << 24)) return {};
    buffer.resize(buffer.size() * 2);
  }
}

std::string format(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::string result = vformat(format, args);
  va_end(args);
  return result;
}

std::wstring format(const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  std::wstring result = vformat(format, args);
  va_end(args);
  return result;
}

}  // namespace mvsup::text
