#include "storage/directories.h"

#include <string>
#include <string_view>

#include "MvSupStorage.h"
#include "frame/library_state.h"
#include "frame/mode_bits.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "settings/settings.h"

namespace mvsup::directories {

namespace {

constexpr const wchar_t* kLocationKey = L"Location";
constexpr std::wstring_view kDataSuffix = L"\\~DATA~";
constexpr std::wstring_view kScriptsSuffix = L"\\Scripts";
constexpr std::wstring_view kLogsFolder = L"Logs";
constexpr int kLanguageSuffixLength = 5;  // "\%04X"

int fail(wchar_t* buffer, int capacity) noexcept {
  if (capacity > 0) text::clear_prefix(buffer, static_cast<size_t>(capacity), 2);
  return 0;
}

bool usable(const wchar_t* buffer, int capacity) noexcept { return buffer != nullptr && capacity >= 1; }

// Writes a whole path or nothing: a path that does not fit with its
// terminator gives 0 rather than a truncated directory.
int put_path(wchar_t* buffer, int capacity, std::wstring_view path) noexcept {
  if (path.empty() || !text::copy_whole(buffer, static_cast<size_t>(capacity), path)) return fail(buffer, capacity);
  return static_cast<int>(path.size());
}

int read_location(const wchar_t* value_name, wchar_t* buffer, int capacity) noexcept {
  if (!usable(buffer, capacity)) return 0;
  try {
    return put_path(buffer, capacity, settings::read_expanded(kLocationKey, value_name));
  } catch (...) {
    return fail(buffer, capacity);
  }
}

// Appends suffix to a path of `length` characters already in the buffer.
int append(wchar_t* buffer, int capacity, int length, std::wstring_view suffix) noexcept {
  if (length <= 0) return fail(buffer, capacity);
  if (static_cast<size_t>(length) + suffix.size() >= static_cast<size_t>(capacity)) return fail(buffer, capacity);
  text::copy_truncated(buffer + length, static_cast<size_t>(capacity - length), suffix);
  return length + static_cast<int>(suffix.size());
}

// Runs an inner getter with the capacity reduced by the suffix it is about to
// receive, then appends the suffix.
template <typename Inner>
int with_suffix(wchar_t* buffer, int capacity, std::wstring_view suffix, Inner inner) noexcept {
  if (!usable(buffer, capacity)) return 0;
  const int length = inner(buffer, capacity - static_cast<int>(suffix.size()));
  return append(buffer, capacity, length, suffix);
}

bool is_directory(const wchar_t* path) noexcept {
  const DWORD attributes = ::GetFileAttributesW(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::wstring shell_personal_folder() {
  unique_pidl list;
  if (FAILED(::SHGetSpecialFolderLocation(nullptr, CSIDL_PERSONAL, list.put()))) return {};
  wchar_t path[MAX_PATH] = {};
  if (!::SHGetPathFromIDListW(list.get(), path)) return {};
  return path;
}

}  // namespace

WORD language_id() noexcept { return LOWORD(settings::get_dword(L"MvAxess\\Settings", L"LangId", 0)); }

int program(wchar_t* buffer, int capacity) noexcept { return read_location(L"Programs", buffer, capacity); }

int program_language(wchar_t* buffer, int capacity) noexcept {
  if (!usable(buffer, capacity)) return 0;
  const int length = program(buffer, capacity - kLanguageSuffixLength);
  if (length == 0) return fail(buffer, capacity);
  const WORD language = language_id();
  if (language == 0) return length;
  wchar_t suffix[8];
  ::wsprintfW(suffix, L"\\%04X", language);
  return append(buffer, capacity, length, suffix);
}

int data(wchar_t* buffer, int capacity) noexcept {
  if (!usable(buffer, capacity)) return 0;
  try {
    const std::wstring value = settings::read_expanded(kLocationKey, L"Data");
    if (!value.empty()) return put_path(buffer, capacity, value);
  } catch (...) {
    return fail(buffer, capacity);
  }
  return with_suffix(buffer, capacity, kDataSuffix, program);
}

int data_language(wchar_t* buffer, int capacity) noexcept {
  return with_suffix(buffer, capacity, kDataSuffix, program_language);
}

int work(wchar_t* buffer, int capacity) noexcept { return read_location(L"Work", buffer, capacity); }

int cache(wchar_t* buffer, int capacity) noexcept { return read_location(L"Cache", buffer, capacity); }

int home(wchar_t* buffer, int capacity) noexcept {
  const int length = work(buffer, capacity);
  if (length == 0) return 0;
  const std::wstring_view path(buffer, static_cast<size_t>(length));
  const size_t slash = path.rfind(L'\\');
  if (slash == std::wstring_view::npos) return length;
  buffer[slash] = L'\0';
  return static_cast<int>(slash);
}

int script(wchar_t* buffer, int capacity) noexcept {
  if (frame::mode_word() & mode::kLiteSDK) return with_suffix(buffer, capacity, kScriptsSuffix, home);
  return with_suffix(buffer, capacity, kScriptsSuffix, program);
}

int script_language(wchar_t* buffer, int capacity) noexcept {
  return with_suffix(buffer, capacity, kScriptsSuffix, program_language);
}

int log(wchar_t* buffer, int capacity) noexcept {
  if (!(frame::mode_word() & (mode::kLiteSDK | mode::kPrivateLogDir))) return data(buffer, capacity);
  if (!usable(buffer, capacity)) return 0;
  int length = home(buffer, capacity - static_cast<int>(kLogsFolder.size()) - 1);
  if (length == 0) return fail(buffer, capacity);
  if (buffer[length - 1] != L'\\') length = append(buffer, capacity, length, L"\\");
  return append(buffer, capacity, length, kLogsFolder);
}

BOOL personal(wchar_t* buffer, int capacity) noexcept {
  if (!usable(buffer, capacity)) return FALSE;
  try {
    std::wstring path = settings::read_expanded(L"MvNsx\\Settings", L"LocalDocDir");
    if (path.empty()) path = shell_personal_folder();
    if (path.empty() || !is_directory(path.c_str())) {
      fail(buffer, capacity);
      return FALSE;
    }
    text::copy_truncated(buffer, static_cast<size_t>(capacity), path);
    return TRUE;
  } catch (...) {
    fail(buffer, capacity);
    return FALSE;
  }
}

}  // namespace mvsup::directories

using namespace mvsup;

extern "C" {

#define MVSUP_DIRECTORY_EXPORT(ExportName, getter)      \
  int WINAPI ExportName(LPWSTR buffer, int capacity) {  \
    trace::CallScope scope(#ExportName);                \
    return scope.res(directories::getter(buffer, capacity)); \
  }

MVSUP_DIRECTORY_EXPORT(GetProgramDirectoryPath, program)
MVSUP_DIRECTORY_EXPORT(GetProgramLangDirectoryPath, program_language)
MVSUP_DIRECTORY_EXPORT(GetDataDirectoryPath, data)
MVSUP_DIRECTORY_EXPORT(GetDataLangDirectoryPath, data_language)
MVSUP_DIRECTORY_EXPORT(GetWorkDirectoryPath, work)
MVSUP_DIRECTORY_EXPORT(GetCacheDirectoryPath, cache)
MVSUP_DIRECTORY_EXPORT(GetHomeDirectoryPath, home)
MVSUP_DIRECTORY_EXPORT(GetScriptDirectoryPath, script)
MVSUP_DIRECTORY_EXPORT(GetScriptLangDirectoryPath, script_language)
MVSUP_DIRECTORY_EXPORT(GetLogDirectoryPath, log)

#undef MVSUP_DIRECTORY_EXPORT

BOOL WINAPI GetPersonalDirectory(LPWSTR buffer, int capacity) {
  trace::CallScope scope("GetPersonalDirectory");
  return scope.res(directories::personal(buffer, capacity));
}

}  // extern "C"
