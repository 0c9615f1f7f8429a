// Content types for the rest of the library: the machine's MIME database
// (HKEY_CLASSES_ROOT "MIME\Database\Content Type") is asked first, the
// built-in tables of content_tables.h answer where it has nothing.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace mvsup::content {

inline constexpr const wchar_t* kMimeDatabaseKey = L"MIME\\Database\\Content Type";

enum class Source { none, registry, table };

struct Answer {
  std::wstring text;  // empty when nothing answered
  Source source = Source::none;
};

// The extension of a file name with its dot: the file title (after the last
// '\' or '/') from its last '.' on; empty when the title has no '.' or ends
// in one.
std::wstring_view extension_of(std::wstring_view file_name) noexcept;

// The MIME type for an extension (with its dot). Walks the database on every
// call; nothing is cached, so a change to the registry shows at once.
Answer mime_type_for_extension(std::wstring_view extension);

// The extension (with its dot) for a MIME type, and the HRESULT of
// GetFileExtFromMimeType2: S_OK, S_FALSE for "application/octet-stream",
// E_INVALIDARG for an empty type, E_UNEXPECTED when the database path would
// reach MAX_PATH, E_FAIL when nothing answers.
struct ExtensionAnswer {
  HRESULT hr = E_FAIL;
  Answer answer;
};
ExtensionAnswer extension_for_mime_type(std::wstring_view mime_type);

// The format name shown for a file: constant text (a table name or a fixed
// name for an extension), or text built for this call (a localised resource
// string, or the extension in upper case cut to 7 or 39 characters).
struct FormatName {
  std::wstring_view constant;  // NUL-terminated; lives as long as the library
  std::wstring built;
  std::wstring_view text() const noexcept { return constant.empty() ? std::wstring_view(built) : constant; }
};
FormatName doc_format_for_file_name(std::wstring_view file_name);

}  // namespace mvsup::content
