// One-call registry access: each function opens (or creates) a key, does one
// query or set, and closes the key. These are the untraced implementations
// behind the exported registry helpers; the rest of the library calls them
// directly so that its own reads never show up as calls in the trace log.
#pragma once

#include <windows.h>

#include <string>

namespace mvsup::registry {

LONG get_dword(HKEY root, const wchar_t* sub_key, const wchar_t* name, DWORD* value) noexcept;
DWORD get_dword_or(HKEY root, const wchar_t* sub_key, const wchar_t* name, DWORD fallback) noexcept;
LONG set_dword(HKEY root, const wchar_t* sub_key, const wchar_t* name, DWORD value) noexcept;

LONG get_string(HKEY root, const wchar_t* sub_key, const wchar_t* name, wchar_t* buffer,
                DWORD capacity) noexcept;
LONG get_string_or(HKEY root, const wchar_t* sub_key, const wchar_t* name, const wchar_t* fallback,
                   wchar_t* buffer, DWORD capacity) noexcept;
LONG set_string(HKEY root, const wchar_t* sub_key, const wchar_t* name, const wchar_t* text) noexcept;

LONG get_binary(HKEY root, const wchar_t* sub_key, const wchar_t* name, HGLOBAL* data,
                DWORD* size) noexcept;
LONG set_binary(HKEY root, const wchar_t* sub_key, const wchar_t* name, const void* data,
                DWORD size) noexcept;

LONG delete_sub_key(HKEY root, const wchar_t* sub_key, const wchar_t* child) noexcept;
LONG delete_value(HKEY root, const wchar_t* sub_key, const wchar_t* name) noexcept;

LONG find_dword(HKEY root, const wchar_t* sub_key, DWORD match_flags, int max_values,
                const wchar_t* pattern, DWORD* value) noexcept;

// Reads a string value of any length (REG_EXPAND_SZ expanded); empty when the
// value is missing or not a string. For the library's own use.
std::wstring read_string(HKEY root, const wchar_t* sub_key, const wchar_t* name);

// Expands environment references; the text unchanged when expansion fails.
std::wstring expand_environment(const wchar_t* text);

}  // namespace mvsup::registry
