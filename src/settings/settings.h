// Component settings: registry access relative to the client key under the
// user registry root. Untraced implementations behind the exported settings
// functions, for the library's own use.
#pragma once

#include <windows.h>

#include <string>

namespace mvsup::settings {

inline constexpr const wchar_t* kClientKeyPath = L"Software\\Corvell\\Mervane Client";

// "Software\Corvell\Mervane Client\<component>".
std::wstring compose_path(const wchar_t* component);

DWORD get_dword(const wchar_t* component, const wchar_t* name, DWORD fallback) noexcept;
LONG set_dword(const wchar_t* component, const wchar_t* name, DWORD value) noexcept;
LONG get_string(const wchar_t* component, const wchar_t* name, const wchar_t* fallback, wchar_t* buffer,
                DWORD capacity) noexcept;
LONG get_string_narrow(const wchar_t* component, const wchar_t* name, const wchar_t* fallback, char* buffer,
                       DWORD capacity) noexcept;
LONG set_string(const wchar_t* component, const wchar_t* name, const wchar_t* text) noexcept;
LONG get_expanded_string(const wchar_t* component, const wchar_t* name, const wchar_t* fallback,
                         wchar_t* buffer, DWORD capacity) noexcept;
LONG get_binary(const wchar_t* component, const wchar_t* name, HGLOBAL* data, DWORD* size) noexcept;
LONG set_binary(const wchar_t* component, const wchar_t* name, const void* data, DWORD size) noexcept;
LONG find_dword(const wchar_t* component, DWORD match_flags, int max_values, const wchar_t* pattern,
                DWORD* value) noexcept;
LONG delete_value(const wchar_t* component, const wchar_t* name) noexcept;
LONG delete_key(const wchar_t* component, const wchar_t* child) noexcept;
BOOL key_exists(const wchar_t* component, const wchar_t* sub_key) noexcept;
LONG open_key(const wchar_t* component, DWORD options, REGSAM access, HKEY* key) noexcept;
LONG create_key(const wchar_t* component, wchar_t* key_class, DWORD options, REGSAM access,
                SECURITY_ATTRIBUTES* security, HKEY* key, DWORD* disposition) noexcept;

// A string setting of any length, environment references expanded; empty
// when missing.
std::wstring read_expanded(const wchar_t* component, const wchar_t* name);

}  // namespace mvsup::settings
