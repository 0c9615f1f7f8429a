#include "settings/registry.h"

#include <shlwapi.h>

#include <climits>
#include <vector>

#include "MvSupSettings.h"
#include "frame/library_state.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"

namespace mvsup::registry {

namespace {

// The largest capacity whose size in bytes still fits a DWORD.
DWORD bytes_for(DWORD capacity) noexcept {
  return capacity > MAXDWORD / sizeof(wchar_t) ? MAXDWORD - 1 : capacity * static_cast<DWORD>(sizeof(wchar_t));
}

LONG open_for_read(HKEY root, const wchar_t* sub_key, unique_hkey& key) noexcept {
  return ::RegOpenKeyExW(root, sub_key, 0, KEY_READ, key.put());
}

LONG create_for_write(HKEY root, const wchar_t* sub_key, unique_hkey& key) noexcept {
  return ::RegCreateKeyExW(root, sub_key ? sub_key : L"", 0, nullptr, 0, KEY_WRITE, nullptr, key.put(), nullptr);
}

// Name comparison of FindRegistryDWORD: bit 0 compares only the length of the
// shorter name, bit 1 makes the comparison case-sensitive.
bool names_match(std::wstring_view name, std::wstring_view pattern, DWORD flags) noexcept {
  const bool prefix = (flags & 1) != 0;
  const bool case_sensitive = (flags & 2) != 0;
  if (prefix) {
    const size_t n = name.size() < pattern.size() ? name.size() : pattern.size();
    name = name.substr(0, n);
    pattern = pattern.substr(0, n);
  }
  if (case_sensitive) return name == pattern;
  return text::equals_ignore_case(name, pattern);
}

}  // namespace

LONG get_dword(HKEY root, const wchar_t* sub_key, const wchar_t* name, DWORD* value) noexcept {
  if (value == nullptr) return ERROR_INVALID_PARAMETER;
  *value = 0;
  unique_hkey key;
  if (LONG rc = open_for_read(root, sub_key, key)) return rc;
  DWORD type = 0;
  DWORD data = 0;
  DWORD size = sizeof(data);
  const LONG rc = ::RegQueryValueExW(key.get(), name, nullptr, &type, reinterpret_cast<BYTE*>(&data), &size);
  // A longer value of another type is still "not a DWORD", not "more data".
  if ((rc == ERROR_SUCCESS || rc == ERROR_MORE_DATA) && type != REG_DWORD) return ERROR_INVALID_PARAMETER;
  if (rc != ERROR_SUCCESS) return rc;
  *value = data;
  return ERROR_SUCCESS;
}

DWORD get_dword_or(HKEY root, const wchar_t* sub_key, const wchar_t* name, DWORD fallback) noexcept {
  DWORD value = 0;
  return get_dword(root, sub_key, name, &value) == ERROR_SUCCESS ? value : fallback;
}

LONG set_dword(HKEY root, const wchar_t* sub_key, const wchar_t* name, DWORD value) noexcept {
  unique_hkey key;
  if (LONG rc = create_for_write(root, sub_key, key)) return rc;
  return ::RegSetValueExW(key.get(), name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value));
}

std::wstring expand_environment(const wchar_t* text) {
  if (text == nullptr || *text == L'\0') return {};
  std::vector<wchar_t> expanded(256);
  for (;;) {
    const DWORD needed = ::ExpandEnvironmentStringsW(text, expanded.data(), static_cast<DWORD>(expanded.size()));
    if (needed == 0) return text;
    if (needed <= expanded.size()) return std::wstring(expanded.data());
    expanded.resize(needed);
  }
}

LONG get_string(HKEY root, const wchar_t* sub_key, const wchar_t* name, wchar_t* buffer, DWORD capacity) noexcept {
  if (buffer == nullptr || capacity == 0) return ERROR_INVALID_PARAMETER;
  buffer[0] = L'\0';
  unique_hkey key;
  if (LONG rc = open_for_read(root, sub_key, key)) return rc;
  DWORD type = 0;
  DWORD size = bytes_for(capacity);
  if (LONG rc = ::RegQueryValueExW(key.get(), name, nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size)) {
    buffer[0] = L'\0';
    return rc;
  }
  const DWORD units = size / sizeof(wchar_t);
  if (units < capacity) {
    buffer[units] = L'\0';
  } else if (buffer[capacity - 1] != L'\0') {
    // Stored without a terminator and filling the whole buffer: it does not
    // fit, so the caller gets the same answer as for a longer value.
    buffer[0] = L'\0';
    return ERROR_MORE_DATA;
  }
  if (type == REG_EXPAND_SZ) {
    try {
      const std::wstring stored(buffer);
      text::copy_truncated(buffer, capacity, expand_environment(stored.c_str()));
    } catch (...) {
      buffer[0] = L'\0';
      return ERROR_NOT_ENOUGH_MEMORY;
    }
  }
  return ERROR_SUCCESS;
}

LONG get_string_or(HKEY root, const wchar_t* sub_key, const wchar_t* name, const wchar_t* fallback,
                   wchar_t* buffer, DWORD capacity) noexcept {
  const LONG rc = get_string(root, sub_key, name, buffer, capacity);
  if (rc != ERROR_SUCCESS && buffer != nullptr && capacity != 0)
    text::copy_truncated(buffer, capacity, text::view_or_empty(fallback));
  return rc;
}

LONG set_string(HKEY root, const wchar_t* sub_key, const wchar_t* name, const wchar_t* text) noexcept {
  unique_hkey key;
  if (LONG rc = create_for_write(root, sub_key, key)) return rc;
  const std::wstring_view value = text::view_or_empty(text);
  if (value.size() >= MAXDWORD / sizeof(wchar_t)) return ERROR_INVALID_PARAMETER;
  const DWORD bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
  return ::RegSetValueExW(key.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text ? text : L""), bytes);
}

LONG get_binary(HKEY root, const wchar_t* sub_key, const wchar_t* name, HGLOBAL* data, DWORD* size) noexcept {
  if (data == nullptr || size == nullptr) return ERROR_INVALID_PARAMETER;
  *data = nullptr;
  *size = 0;
  unique_hkey key;
  if (LONG rc = open_for_read(root, sub_key, key)) return rc;
  DWORD needed = 0;
  if (LONG rc = ::RegQueryValueExW(key.get(), name, nullptr, nullptr, nullptr, &needed)) return rc;
  unique_hglobal memory(::GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, needed));
  if (!memory) return ERROR_NOT_ENOUGH_MEMORY;
  DWORD read = needed;
  const LONG rc =
      ::RegQueryValueExW(key.get(), name, nullptr, nullptr, static_cast<BYTE*>(memory.get()), &read);
  // Handed out even when the second query failed: the caller owns the block
  // from the moment its size was known.
  *data = memory.release();
  *size = needed;
  return rc;
}

LONG set_binary(HKEY root, const wchar_t* sub_key, const wchar_t* name, const void* data, DWORD size) noexcept {
  if (data == nullptr && size != 0) return ERROR_INVALID_PARAMETER;
  unique_hkey key;
  if (LONG rc = create_for_write(root, sub_key, key)) return rc;
  return ::RegSetValueExW(key.get(), name, 0, REG_BINARY, static_cast<const BYTE*>(data), size);
}

LONG delete_sub_key(HKEY root, const wchar_t* sub_key, const wchar_t* child) noexcept {
  // An empty child would make SHDeleteKey remove the parent itself.
  if (child == nullptr || *child == L'\0') return ERROR_INVALID_PARAMETER;
  unique_hkey key;
  if (LONG rc = ::RegOpenKeyExW(root, sub_key, 0, KEY_ALL_ACCESS, key.put())) return rc;
  return static_cast<LONG>(::SHDeleteKeyW(key.get(), child));
}

LONG delete_value(HKEY root, const wchar_t* sub_key, const wchar_t* name) noexcept {
  HKEY key = nullptr;
  if (LONG rc = ::RegOpenKeyExW(root, sub_key, 0, KEY_WRITE, &key)) return rc;
  // The key stays open after the deletion: callers of this helper have always
  // seen it behave so, and nothing here relies on closing it.
  return ::RegDeleteValueW(key, name);
}

LONG find_dword(HKEY root, const wchar_t* sub_key, DWORD match_flags, int max_values, const wchar_t* pattern,
                DWORD* value) noexcept {
  if (value == nullptr) return ERROR_INVALID_PARAMETER;
  *value = 0;
  unique_hkey key;
  if (LONG rc = ::RegOpenKeyExW(root, sub_key, 0, KEY_QUERY_VALUE, key.put())) return rc;
  const std::wstring_view wanted = text::view_or_empty(pattern);
  for (int index = 0; index < max_values; ++index) {
    wchar_t name[256];
    DWORD name_length = 256;
    DWORD type = 0;
    DWORD data = 0;
    DWORD size = sizeof(data);
    const LONG rc = ::RegEnumValueW(key.get(), static_cast<DWORD>(index), name, &name_length, nullptr, &type,
                                    reinterpret_cast<BYTE*>(&data), &size);
    if (rc != ERROR_SUCCESS) return rc;
    if (type != REG_DWORD) continue;
    if (names_match(std::wstring_view(name, name_length), wanted, match_flags)) {
      *value = data;
      return ERROR_SUCCESS;
    }
  }
  return ERROR_SUCCESS;
}

std::wstring read_string(HKEY root, const wchar_t* sub_key, const wchar_t* name) {
  unique_hkey key;
  if (open_for_read(root, sub_key, key) != ERROR_SUCCESS) return {};
  DWORD type = 0;
  DWORD size = 0;
  if (::RegQueryValueExW(key.get(), name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) return {};
  if (type != REG_SZ && type != REG_EXPAND_SZ) return {};
  std::vector<wchar_t> data(size / sizeof(wchar_t) + 1, L'\0');
  if (::RegQueryValueExW(key.get(), name, nullptr, nullptr, reinterpret_cast<BYTE*>(data.data()), &size) !=
      ERROR_SUCCESS)
    return {};
  std::wstring value(data.data());
  return type == REG_EXPAND_SZ ? expand_environment(value.c_str()) : value;
}

}  // namespace mvsup::registry

using namespace mvsup;

extern "C" {

LONG WINAPI GetRegistryDWORD(HKEY root, LPCWSTR subKey, LPCWSTR name, DWORD* value) {
  trace::CallScope scope("GetRegistryDWORD");
  return scope.res(registry::get_dword(root, subKey, name, value));
}

DWORD WINAPI GetRegistryDWORDEx(HKEY root, LPCWSTR subKey, LPCWSTR name, DWORD defaultValue) {
  trace::CallScope scope("GetRegistryDWORDEx");
  return scope.res(registry::get_dword_or(root, subKey, name, defaultValue));
}

LONG WINAPI SetRegistryDWORD(HKEY root, LPCWSTR subKey, LPCWSTR name, DWORD value) {
  trace::CallScope scope("SetRegistryDWORD");
  return scope.res(registry::set_dword(root, subKey, name, value));
}

LONG WINAPI GetRegistryString(HKEY root, LPCWSTR subKey, LPCWSTR name, LPWSTR buffer, DWORD capacity) {
  trace::CallScope scope("GetRegistryString");
  return scope.res(registry::get_string(root, subKey, name, buffer, capacity));
}

LONG WINAPI GetRegistryStringEx(HKEY root, LPCWSTR subKey, LPCWSTR name, LPCWSTR defaultText, LPWSTR buffer,
                                DWORD capacity) {
  trace::CallScope scope("GetRegistryStringEx");
  return scope.res(registry::get_string_or(root, subKey, name, defaultText, buffer, capacity));
}

LONG WINAPI SetRegistryString(HKEY root, LPCWSTR subKey, LPCWSTR name, LPCWSTR text) {
  trace::CallScope scope("SetRegistryString");
  return scope.res(registry::set_string(root, subKey, name, text));
}

LONG WINAPI GetRegistryBinary(HKEY root, LPCWSTR subKey, LPCWSTR name, HGLOBAL* data, DWORD* size) {
  trace::CallScope scope("GetRegistryBinary");
  const LONG rc = registry::get_binary(root, subKey, name, data, size);
  if (data != nullptr && *data != nullptr) trace::dump(*data, *size);
  return scope.res(rc);
}

LONG WINAPI SetRegistryBinary(HKEY root, LPCWSTR subKey, LPCWSTR name, LPCVOID data, DWORD size) {
  trace::CallScope scope("SetRegistryBinary");
  if (data != nullptr) trace::dump(data, size);
  return scope.res(registry::set_binary(root, subKey, name, data, size));
}

LONG WINAPI DeleteRegistrySubKey(HKEY root, LPCWSTR subKey, LPCWSTR childKey) {
  trace::CallScope scope("DeleteRegistrySubKey");
  return scope.res(registry::delete_sub_key(root, subKey, childKey));
}

LONG WINAPI DeleteRegistryValue(HKEY root, LPCWSTR subKey, LPCWSTR name) {
  trace::CallScope scope("DeleteRegistryValue");
  return scope.res(registry::delete_value(root, subKey, name));
}

LONG WINAPI FindRegistryDWORD(HKEY root, LPCWSTR subKey, DWORD matchFlags, int maxValues, LPCWSTR pattern,
                              DWORD* value) {
  trace::CallScope scope("FindRegistryDWORD");
  return scope.res(registry::find_dword(root, subKey, matchFlags, maxValues, pattern, value));
}

HKEY WINAPI GetRootUserRegistryKey(void) { return frame::user_root(); }

}  // extern "C"
