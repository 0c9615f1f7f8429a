#include "settings/settings.h"

#include <string_view>

#include "MvSupSettings.h"
#include "frame/library_state.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "settings/registry.h"

namespace mvsup::settings {

namespace {

// Runs op(root, path) on the composed path; a path that cannot be built
// (null component, no memory) gives ERROR_INVALID_PARAMETER / out of memory.
template <typename Op>
LONG on_component(const wchar_t* component, Op&& op) noexcept {
  if (component == nullptr) return ERROR_INVALID_PARAMETER;
  try {
    const std::wstring path = compose_path(component);
    return op(frame::user_root(), path.c_str());
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

}  // namespace

std::wstring compose_path(const wchar_t* component) {
  std::wstring path = kClientKeyPath;
  path += L'\\';
  path += text::view_or_empty(component);
  return path;
}

DWORD get_dword(const wchar_t* component, const wchar_t* name, DWORD fallback) noexcept {
  DWORD value = fallback;
  on_component(component, [&](HKEY root, const wchar_t* path) {
    value = registry::get_dword_or(root, path, name, fallback);
    return ERROR_SUCCESS;
  });
  return value;
}

LONG set_dword(const wchar_t* component, const wchar_t* name, DWORD value) noexcept {
  return on_component(component,
                      [&](HKEY root, const wchar_t* path) { return registry::set_dword(root, path, name, value); });
}

LONG get_string(const wchar_t* component, const wchar_t* name, const wchar_t* fallback, wchar_t* buffer,
                DWORD capacity) noexcept {
  const LONG rc = on_component(component, [&](HKEY root, const wchar_t* path) {
    return registry::get_string_or(root, path, name, fallback, buffer, capacity);
  });
  if (component == nullptr && buffer != nullptr && capacity != 0)
    text::copy_truncated(buffer, capacity, text::view_or_empty(fallback));
  return rc;
}

LONG get_string_narrow(const wchar_t* component, const wchar_t* name, const wchar_t* fallback, char* buffer,
                       DWORD capacity) noexcept {
  if (buffer == nullptr || capacity == 0) return ERROR_INVALID_PARAMETER;
  buffer[0] = '\0';
  try {
    // Read with two characters of headroom, then convert into the caller's
    // buffer, truncating on a character boundary of the narrow text.
    std::wstring wide(static_cast<size_t>(capacity) + 2, L'\0');
    const LONG rc = get_string(component, name, fallback, wide.data(), capacity + 2);
    wide.resize(text::bounded_length(wide.c_str(), wide.size()));
    text::copy_narrow_truncated(buffer, capacity, wide);
    return rc;
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

LONG set_string(const wchar_t* component, const wchar_t* name, const wchar_t* text) noexcept {
  return on_component(component,
                      [&](HKEY root, const wchar_t* path) { return registry::set_string(root, path, name, text); });
}

LONG get_expanded_string(const wchar_t* component, const wchar_t* name, const wchar_t* fallback,
                         wchar_t* buffer, DWORD capacity) noexcept {
  wchar_t stored[MAX_PATH] = {};
  if (LONG rc = get_string(component, name, fallback, stored, MAX_PATH)) return rc;
  if (buffer == nullptr || capacity == 0) return ERROR_INVALID_PARAMETER;
  try {
    text::copy_truncated(buffer, capacity, registry::expand_environment(stored));
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
  return ERROR_SUCCESS;
}

LONG get_binary(const wchar_t* component, const wchar_t* name, HGLOBAL* data, DWORD* size) noexcept {
  if (data) *data = nullptr;
  if (size) *size = 0;
  return on_component(
      component, [&](HKEY root, const wchar_t* path) { return registry::get_binary(root, path, name, data, size); });
}

LONG set_binary(const wchar_t* component, const wchar_t* name, const void* data, DWORD size) noexcept {
  return on_component(
      component, [&](HKEY root, const wchar_t* path) { return registry::set_binary(root, path, name, data, size); });
}

LONG find_dword(const wchar_t* component, DWORD match_flags, int max_values, const wchar_t* pattern,
                DWORD* value) noexcept {
  if (value) *value = 0;
  return on_component(component, [&](HKEY root, const wchar_t* path) {
    return registry::find_dword(root, path, match_flags, max_values, pattern, value);
  });
}

LONG delete_value(const wchar_t* component, const wchar_t* name) noexcept {
  return on_component(component,
                      [&](HKEY root, const wchar_t* path) { return registry::delete_value(root, path, name); });
}

LONG delete_key(const wchar_t* component, const wchar_t* child) noexcept {
  if (component == nullptr) return ERROR_INVALID_PARAMETER;
  const std::wstring_view key(component);
  try {
    std::wstring parent;
    if (key.empty() || key.front() != L'.')
      parent = compose_path(component);
    else if (key == L"..")
      parent = kClientKeyPath;
    else if (key == L"..\\..")
      parent = L"Software\\Corvell";
    else
      return ERROR_FILE_NOT_FOUND;
    return registry::delete_sub_key(frame::user_root(), parent.c_str(), child);
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

BOOL key_exists(const wchar_t* component, const wchar_t* sub_key) noexcept {
  if (component == nullptr) return FALSE;
  try {
    std::wstring path = compose_path(component);
    if (sub_key != nullptr && *sub_key != L'\0') {
      path += L'\\';
      path += sub_key;
    }
    unique_hkey key;
    return ::RegOpenKeyExW(frame::user_root(), path.c_str(), 0, KEY_ALL_ACCESS, key.put()) == ERROR_SUCCESS;
  } catch (...) {
    return FALSE;
  }
}

LONG open_key(const wchar_t* component, DWORD options, REGSAM access, HKEY* key) noexcept {
  if (key == nullptr) return ERROR_INVALID_PARAMETER;
  *key = nullptr;
  return on_component(component, [&](HKEY root, const wchar_t* path) {
    return ::RegOpenKeyExW(root, path, options, access, key);
  });
}

LONG create_key(const wchar_t* component, wchar_t* key_class, DWORD options, REGSAM access,
                SECURITY_ATTRIBUTES* security, HKEY* key, DWORD* disposition) noexcept {
  if (key == nullptr) return ERROR_INVALID_PARAMETER;
  *key = nullptr;
  return on_component(component, [&](HKEY root, const wchar_t* path) {
    return ::RegCreateKeyExW(root, path, 0, key_class, options, access, security, key, disposition);
  });
}

std::wstring read_expanded(const wchar_t* component, const wchar_t* name) {
  if (component == nullptr) return {};
  const std::wstring path = compose_path(component);
  return registry::expand_environment(registry::read_string(frame::user_root(), path.c_str(), name).c_str());
}

}  // namespace mvsup::settings

using namespace mvsup;

extern "C" {

DWORD WINAPI GetDwordSetting(LPCWSTR component, LPCWSTR name, DWORD defaultValue) {
  trace::CallScope scope("GetDwordSetting");
  return scope.res(settings::get_dword(component, name, defaultValue));
}

LONG WINAPI SetDwordSetting(LPCWSTR component, LPCWSTR name, DWORD value) {
  trace::CallScope scope("SetDwordSetting");
  return scope.res(settings::set_dword(component, name, value));
}

LONG WINAPI GetStringSetting(LPCWSTR component, LPCWSTR name, LPCWSTR defaultText, LPWSTR buffer, DWORD capacity) {
  trace::CallScope scope("GetStringSetting");
  return scope.res(settings::get_string(component, name, defaultText, buffer, capacity));
}

LONG WINAPI GetStringSettingA(LPCWSTR component, LPCWSTR name, LPCWSTR defaultText, LPSTR buffer, DWORD capacity) {
  trace::CallScope scope("GetStringSettingA");
  return scope.res(settings::get_string_narrow(component, name, defaultText, buffer, capacity));
}

LONG WINAPI SetStringSetting(LPCWSTR component, LPCWSTR name, LPCWSTR text) {
  trace::CallScope scope("SetStringSetting");
  return scope.res(settings::set_string(component, name, text));
}

LONG WINAPI GetExpandedStringSetting(LPCWSTR component, LPCWSTR name, LPCWSTR defaultText, LPWSTR buffer,
                                     DWORD capacity) {
  trace::CallScope scope("GetExpandedStringSetting");
  return scope.res(settings::get_expanded_string(component, name, defaultText, buffer, capacity));
}

LONG WINAPI GetBinarySetting(LPCWSTR component, LPCWSTR name, HGLOBAL* data, DWORD* size) {
  trace::CallScope scope("GetBinarySetting");
  return scope.res(settings::get_binary(component, name, data, size));
}

LONG WINAPI SetBinarySetting(LPCWSTR component, LPCWSTR name, LPCVOID data, DWORD size) {
  trace::CallScope scope("SetBinarySetting");
  return scope.res(settings::set_binary(component, name, data, size));
}

LONG WINAPI FindDwordSetting(LPCWSTR component, DWORD matchFlags, int maxValues, LPCWSTR pattern, DWORD* value) {
  trace::CallScope scope("FindDwordSetting");
  return scope.res(settings::find_dword(component, matchFlags, maxValues, pattern, value));
}

LONG WINAPI DeleteSetting(LPCWSTR component, LPCWSTR name) {
  trace::CallScope scope("DeleteSetting");
  return scope.res(settings::delete_value(component, name));
}

LONG WINAPI DeleteSettingsKey(LPCWSTR component, LPCWSTR childKey) {
  trace::CallScope scope("DeleteSettingsKey");
  return scope.res(settings::delete_key(component, childKey));
}

BOOL WINAPI SettingsKeyExists(LPCWSTR component, LPCWSTR subKey) {
  trace::CallScope scope("SettingsKeyExists");
  return scope.res(settings::key_exists(component, subKey));
}

LONG WINAPI OpenSettingsKey(LPCWSTR component, DWORD options, REGSAM access, HKEY* key) {
  trace::CallScope scope("OpenSettingsKey");
  return scope.res(settings::open_key(component, options, access, key));
}

LONG WINAPI CreateSettingsKey(LPCWSTR component, LPWSTR keyClass, DWORD options, REGSAM access,
                              LPSECURITY_ATTRIBUTES security, HKEY* key, DWORD* disposition) {
  trace::CallScope scope("CreateSettingsKey");
  return scope.res(settings::create_key(component, keyClass, options, access, security, key, disposition));
}

LONG WINAPI GetModulePathFromRegistry(LPCWSTR classId, LPWSTR buffer, DWORD capacity) {
  trace::CallScope scope("GetModulePathFromRegistry");
  if (classId == nullptr) {
    if (buffer != nullptr && capacity != 0) buffer[0] = L'\0';
    return scope.res(ERROR_INVALID_PARAMETER);
  }
  try {
    const std::wstring_view id(classId);
    const std::wstring key = (!id.empty() && id.front() == L'{')
                                 ? L"CLSID\\" + std::wstring(id) + L"\\LocalServer32"
                                 : L"CLSID\\{" + std::wstring(id) + L"}\\LocalServer32";
    return scope.res(registry::get_string_or(HKEY_CLASSES_ROOT, key.c_str(), nullptr, nullptr, buffer, capacity));
  } catch (...) {
    return scope.res(ERROR_NOT_ENOUGH_MEMORY);
  }
}

}  // extern "C"
