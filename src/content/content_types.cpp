#include "content/content_types.h"

#include <string>

#include "MvSupContent.h"
#include "content/content_tables.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "resources/resource_ids.h"
#include "types/item_types.h"

namespace mvsup::content {

namespace {

// An "Extension" value is read with 256 bytes of room, as it always was; a
// longer value never matches.
constexpr DWORD kExtensionValueBytes = 256;
constexpr size_t kDatabasePathLimit = MAX_PATH;
constexpr std::wstring_view kOctetStream = L"application/octet-stream";

// Format names of extensions that have a MIME type but no table name.
struct ExtensionFormat {
  std::wstring_view extension;  // without its dot
  std::wstring_view format_name;
  UINT string_id;  // a localised name instead, when not 0
};
constexpr ExtensionFormat kExtensionFormats[] = {
    {L"rft", L"DCA RFT", 0},
    {L"pcx", L"PCX", 0},
    {L"cgm", L"CGM", 0},
    {L"pcl", L"PCL", 0},
    {L"exe", {}, IDS_FORMAT_EXECUTABLE},
    {L"dll", {}, IDS_FORMAT_SYSTEM_EXTENSION},
};
constexpr size_t kShortFormatLength = 7;
constexpr size_t kFormatBufferLength = 40;

// The text of a key's "Extension" value up to its first NUL; empty when the
// value is missing, not a string, or longer than 256 bytes. The view points
// into `buffer`.
std::wstring_view read_extension_value(HKEY key, wchar_t (&buffer)[kExtensionValueBytes / 2 + 1]) noexcept {
  DWORD type = 0;
  DWORD size = kExtensionValueBytes;
  if (::RegQueryValueExW(key, L"Extension", nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size) != ERROR_SUCCESS ||
      (type != REG_SZ && type != REG_EXPAND_SZ))
    return {};
  buffer[size / sizeof(wchar_t)] = L'\0';
  return std::wstring_view(buffer);
}

// The first subkey of the database, in index order, whose extension equals
// the given one. A subkey that cannot be opened ends the walk.
std::wstring walk_database(std::wstring_view extension) {
  unique_hkey database;
  if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, kMimeDatabaseKey, 0, KEY_READ, database.put()) != ERROR_SUCCESS) return {};
  wchar_t name[256];
  wchar_t value[kExtensionValueBytes / 2 + 1];
  for (DWORD index = 0;; ++index) {
    DWORD length = static_cast<DWORD>(std::size(name));
    if (::RegEnumKeyExW(database.get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
      return {};
    unique_hkey type_key;
    if (::RegOpenKeyExW(database.get(), name, 0, KEY_READ, type_key.put()) != ERROR_SUCCESS) return {};
    if (text::equals_ignore_case(read_extension_value(type_key.get(), value), extension))
      return std::wstring(name, length);
  }
}

std::wstring upper_case(std::wstring_view text, size_t max_length) {
  size_t length = std::min(text.size(), max_length);
  // Never keep half of a surrogate pair.
  if (length > 0 && length < text.size() && IS_HIGH_SURROGATE(text[length - 1])) --length;
  std::wstring result(text.substr(0, length));
  if (!result.empty()) ::CharUpperBuffW(result.data(), static_cast<DWORD>(result.size()));
  return result;
}

std::wstring load_format_string(UINT id) {
  wchar_t buffer[kFormatBufferLength];
  types::load_string(id, buffer, static_cast<int>(std::size(buffer)));
  return buffer;
}

}  // namespace

std::wstring_view extension_of(std::wstring_view file_name) noexcept {
  const size_t separator = file_name.find_last_of(L"\\/");
  const std::wstring_view title = separator == std::wstring_view::npos ? file_name : file_name.substr(separator + 1);
  const size_t dot = title.rfind(L'.');
  if (dot == std::wstring_view::npos || dot + 1 == title.size()) return {};
  return title.substr(dot);
}

Answer mime_type_for_extension(std::wstring_view extension) {
  if (extension.empty()) return {};
  if (std::wstring found = walk_database(extension); !found.empty()) return {std::move(found), Source::registry};
  if (const std::wstring_view row = table_mime_type_for_extension(extension); !row.empty())
    return {std::wstring(row), Source::table};
  return {};
}

ExtensionAnswer extension_for_mime_type(std::wstring_view mime_type) {
  if (mime_type.empty()) return {E_INVALIDARG, {}};
  if (text::equals_ignore_case(mime_type, kOctetStream)) return {S_FALSE, {}};
  std::wstring path = std::wstring(kMimeDatabaseKey) + L"\\";
  path += mime_type;
  if (path.size() >= kDatabasePathLimit) return {E_UNEXPECTED, {}};
  unique_hkey key;
  if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, key.put()) == ERROR_SUCCESS) {
    wchar_t value[kExtensionValueBytes / 2 + 1];
    if (const std::wstring_view stored = read_extension_value(key.get(), value); stored.starts_with(L'.'))
      return {S_OK, {std::wstring(stored), Source::registry}};
  }
  if (const std::wstring_view row = table_extension_for_mime_type(mime_type); !row.empty())
    return {S_OK, {std::wstring(row), Source::table}};
  return {E_FAIL, {}};
}

FormatName doc_format_for_file_name(std::wstring_view file_name) {
  const std::wstring_view dotted = extension_of(file_name);
  const std::wstring_view extension = dotted.empty() ? dotted : dotted.substr(1);
  if (extension == L"*") return {{}, load_format_string(IDS_FORMAT_ALL_FILES)};
  const Answer mime_type = mime_type_for_extension(dotted);
  if (mime_type.text.empty()) return {{}, upper_case(extension, kFormatBufferLength - 1)};
  if (const std::wstring_view name = table_format_for_mime_type(mime_type.text); !name.empty()) return {name, {}};
  for (const ExtensionFormat& entry : kExtensionFormats) {
    if (!text::equals_ignore_case(entry.extension, extension)) continue;
    if (entry.string_id) return {{}, load_format_string(entry.string_id)};
    return {entry.format_name, {}};
  }
  return {{}, upper_case(extension, kShortFormatLength)};
}

}  // namespace mvsup::content

// ---- Exports ------------------------------------------------------------------

using namespace mvsup;

namespace {

wchar_t g_extension_buffer[16];
wchar_t g_format_buffer[content::kFormatBufferLength];

// Result of the MIME type getters: the length written, or minus the capacity
// the type needs when it does not fit (the buffer is then emptied).
template <typename Char>
int hand_out(std::basic_string_view<Char> type, Char* buffer, int capacity) noexcept {
  if (buffer != nullptr && capacity > 0 && text::copy_whole(buffer, static_cast<size_t>(capacity), type))
    return static_cast<int>(type.size());
  return type.empty() ? 0 : -static_cast<int>(type.size() + 1);
}

HRESULT extension_into(LPCWSTR mime_type, LPWSTR buffer, int capacity) noexcept {
  if (buffer == nullptr) return E_POINTER;
  if (capacity < 1) return E_INVALIDARG;
  buffer[0] = L'\0';
  try {
    const content::ExtensionAnswer found = content::extension_for_mime_type(text::view_or_empty(mime_type));
    if (found.hr != S_OK) return found.hr;
    if (!text::copy_whole(buffer, static_cast<size_t>(capacity), found.answer.text))
      return HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER);
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace

int WINAPI GetMimeTypeFromFileName(LPCWSTR fileName, LPWSTR buffer, int capacity) {
  trace::CallScope scope("GetMimeTypeFromFileName");
  if (buffer != nullptr && capacity > 0) buffer[0] = L'\0';
  try {
    const content::Answer type = content::mime_type_for_extension(content::extension_of(text::view_or_empty(fileName)));
    return scope.res(hand_out(std::wstring_view(type.text), buffer, capacity));
  } catch (...) {
    return scope.res(0);
  }
}

int WINAPI GetMimeTypeFromFileNameA(LPCSTR fileName, LPSTR buffer, int capacity) {
  trace::CallScope scope("GetMimeTypeFromFileNameA");
  if (buffer != nullptr && capacity > 0) buffer[0] = '\0';
  try {
    const std::wstring wide_name = text::to_wide(text::view_or_empty(fileName));
    const content::Answer type = content::mime_type_for_extension(content::extension_of(wide_name));
    const std::string narrow = text::to_narrow(type.text);
    return scope.res(hand_out(std::string_view(narrow), buffer, capacity));
  } catch (...) {
    return scope.res(0);
  }
}

HRESULT WINAPI GetFileExtFromMimeType2(LPCWSTR mimeType, LPWSTR buffer, int capacity) {
  trace::CallScope scope("GetFileExtFromMimeType2");
  return scope.hr(extension_into(mimeType, buffer, capacity));
}

LPCWSTR WINAPI GetFileExtFromMimeType(LPCWSTR mimeType) {
  trace::CallScope scope("GetFileExtFromMimeType");
  scope.hr(extension_into(mimeType, g_extension_buffer, static_cast<int>(std::size(g_extension_buffer))));
  return g_extension_buffer;
}

LPCWSTR WINAPI GetMimeTypeFromDocFormat(LPCWSTR formatName) {
  const std::wstring_view type = content::table_mime_type_for_format(text::view_or_empty(formatName));
  return type.empty() ? L"" : type.data();
}

LPCWSTR WINAPI GetDocFormatFromMimeType(LPCWSTR mimeType) {
  const std::wstring_view name = content::table_format_for_mime_type(text::view_or_empty(mimeType));
  return name.empty() ? L"" : name.data();
}

LPCWSTR WINAPI GetDocFormatFromFileName(LPCWSTR fileName) {
  trace::CallScope scope("GetDocFormatFromFileName");
  try {
    const content::FormatName name = content::doc_format_for_file_name(text::view_or_empty(fileName));
    if (!name.constant.empty()) return name.constant.data();
    text::copy_truncated(g_format_buffer, std::size(g_format_buffer), name.built);
  } catch (...) {
    g_format_buffer[0] = L'\0';
  }
  return g_format_buffer;
}
