// The built-in content-type tables: file extension to MIME type, and MIME
// type to format name. Both are searched in row order and the first match
// wins, so the order of rows is part of the behaviour (".xls" is
// "application/ms-excel", not one of the later spellings).
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "frame/text.h"

namespace mvsup::content {

// Every text below is a string literal, so view.data() is NUL-terminated
// and may be handed to callers as constant text.
struct ExtensionRow {
  std::wstring_view extension;  // with its leading dot
  std::wstring_view mime_type;
};

struct FormatRow {
  std::wstring_view mime_type;
  std::wstring_view format_name;
};

inline constexpr std::array kExtensionTable = std::to_array<ExtensionRow>({
    {L".txt", L"text/plain"},
    {L".htm", L"text/html"},
    {L".html", L"text/html"},
    {L".rtf", L"application/rtf"},
    {L".doc", L"application/msword"},
    {L".wri", L"application/mswrite"},
    {L".mdb", L"application/msaccess"},
    {L".wri", L"application/ms-write"},
    {L".xls", L"application/ms-excel"},
    {L".ppt", L"application/ms-powerpoint"},
    {L".obd", L"application/ms-officebinder"},
    {L".mpp", L"application/ms-project"},
    {L".xls", L"application/x-msexcel"},
    {L".ppt", L"application/x-mspowerpoint"},
    {L".mdb", L"application/vnd.ms-access"},
    {L".xls", L"application/vnd.ms-excel"},
    {L".ppt", L"application/vnd.ms-powerpoint"},
    {L".mpp", L"application/vnd.ms-project"},
    {L".wks", L"application/vnd.ms-works"},
    {L".cdr", L"application/vnd.corel-draw"},
    {L".shw", L"application/vnd.corel-presentations"},
    {L".mif", L"application/vnd.framemaker"},
    {L".123", L"application/vnd.lotus-123"},
    {L".sam", L"application/vnd.lotus-amipro"},
    {L".lwp", L"application/vnd.lotus-wordpro"},
    {L".prz", L"application/vnd.lotus-freelance"},
    {L".wb3", L"application/vnd.quattro-pro"},
    {L".wrk", L"application/vnd.symphony"},
    {L".wpd", L"application/vnd.wordperfect"},
    {L".ws", L"application/vnd.wordstar"},
    {L".psd", L"application/vnd.photoshop"},
    {L".vsd", L"application/vnd.visio"},
    {L".jpg", L"image/jpeg"},
    {L".jpeg", L"image/jpeg"},
    {L".jpeg", L"image/pjpeg"},
    {L".tif", L"image/tiff"},
    {L".tiff", L"image/tiff"},
    {L".gif", L"image/gif"},
    {L".ps", L"application/postscript"},
    {L".eps", L"application/postscript"},
    {L".pdf", L"application/pdf"},
    {L".m", L"application/x-matlab"},
    {L".msg", L"application/octet-stream"},
    {L".exe", L"application/octet-stream"},
    {L".dll", L"application/octet-stream"},
    {L".com", L"application/octet-stream"},
    {L".cdf", L"application/cdf"},
    {L".cdf", L"application/x-cdf"},
    {L".fif", L"application/fractals"},
    {L".hqx", L"application/mac-binhex40"},
    {L".z", L"application/x-compress"},
    {L".tgz", L"application/x-compressed"},
    {L".nsc", L"application/x-conference"},
    {L".gz", L"application/x-gzip"},
    {L".ins", L"application/x-internet-signup"},
    {L".nix", L"application/x-mix-transfer"},
    {L".sit", L"application/x-stuffit"},
    {L".tar", L"application/x-tar"},
    {L".man", L"application/x-troff-man"},
    {L".crt", L"application/x-x509-ca-cert"},
    {L".zip", L"application/x-zip-compressed"},
    {L".aiff", L"audio/aiff"},
    {L".aiff", L"audio/x-aiff"},
    {L".au", L"audio/basic"},
    {L".wav", L"audio/wav"},
    {L".wav", L"audio/x-wav"},
    {L".ram", L"audio/x-pn-realaudio"},
    {L".bmp", L"image/bmp"},
    {L".xbm", L"image/xbm"},
    {L".xbm", L"image/x-xbitmap"},
    {L".art", L"image/x-jg"},
    {L".css", L"text/css"},
    {L".htt", L"text/webviewhtml"},
    {L".avi", L"video/avi"},
    {L".avi", L"video/x-msvideo"},
    {L".mpeg", L"video/mpeg"},
    {L".mov", L"video/quicktime"},
    {L".eml", L"message/rfc822"},
});

// The last row is never searched by MIME type: executables take their format
// name from the extension instead. It is only reachable by format name.
inline constexpr std::array kFormatTable = std::to_array<FormatRow>({
    {L"text/plain", L"Text"},
    {L"text/html", L"HTML"},
    {L"application/rtf", L"Rich text format"},
    {L"application/msword", L"MS Word"},
    {L"application/ms-excel", L"MS Excel"},
    {L"application/x-msexcel", L"MS Excel"},
    {L"application/vnd.ms-excel", L"MS Excel"},
    {L"application/ms-powerpoint", L"MS PowerPoint"},
    {L"application/x-mspowerpoint", L"MS PowerPoint"},
    {L"application/vnd.ms-powerpoint", L"MS PowerPoint"},
    {L"application/ms-officebinder", L"MS Binder"},
    {L"application/ms-project", L"MS Project"},
    {L"application/mswrite", L"MS Write"},
    {L"application/vnd.wordperfect", L"WordPerfect"},
    {L"application/vnd.quattro-pro", L"QPW"},
    {L"application/vnd.corel-presentations", L"Presentations"},
    {L"application/vnd.lotus-wordpro", L"Lotus Word Pro"},
    {L"application/vnd.lotus-freelance", L"FREELANCE"},
    {L"application/vnd.visio", L"Visio"},
    {L"image/jpeg", L"JPEG"},
    {L"image/tiff", L"Tiff"},
    {L"image/gif", L"Gif"},
    {L"application/postscript", L"PostScript"},
    {L"image/bmp", L"Windows bitmap"},
    {L"application/octet-stream", L"Executable file"},
});

inline constexpr size_t kMaxTableExtension = 5;
inline constexpr size_t kMaxTableMimeType = 42;
inline constexpr size_t kMaxFormatMimeType = 79;
inline constexpr size_t kMaxFormatName = 39;

constexpr bool extension_rows_fit() {
  for (const ExtensionRow& row : kExtensionTable)
    if (row.extension.size() > kMaxTableExtension || row.extension.empty() || row.extension[0] != L'.' ||
        row.mime_type.size() > kMaxTableMimeType)
      return false;
  return true;
}
constexpr bool format_rows_fit() {
  for (const FormatRow& row : kFormatTable)
    if (row.mime_type.size() > kMaxFormatMimeType || row.format_name.size() > kMaxFormatName) return false;
  return true;
}
static_assert(kExtensionTable.size() == 78 && extension_rows_fit());
static_assert(kFormatTable.size() == 25 && format_rows_fit());
static_assert(kFormatTable.back().mime_type == L"application/octet-stream");

// The `value` of the first row whose `key` equals `wanted`, ignoring case;
// an empty view when no row matches.
template <typename Row>
std::wstring_view first_match(std::span<const Row> rows, std::wstring_view Row::*key, std::wstring_view Row::*value,
                              std::wstring_view wanted) noexcept {
  for (const Row& row : rows)
    if (text::equals_ignore_case(row.*key, wanted)) return row.*value;
  return {};
}

inline std::wstring_view table_mime_type_for_extension(std::wstring_view extension) noexcept {
  return first_match<ExtensionRow>(kExtensionTable, &ExtensionRow::extension, &ExtensionRow::mime_type, extension);
}

inline std::wstring_view table_extension_for_mime_type(std::wstring_view mime_type) noexcept {
  return first_match<ExtensionRow>(kExtensionTable, &ExtensionRow::mime_type, &ExtensionRow::extension, mime_type);
}

// The last row ("application/octet-stream") is left out on purpose.
inline std::wstring_view table_format_for_mime_type(std::wstring_view mime_type) noexcept {
  return first_match<FormatRow>(std::span(kFormatTable).first(kFormatTable.size() - 1), &FormatRow::mime_type,
                                &FormatRow::format_name, mime_type);
}

inline std::wstring_view table_mime_type_for_format(std::wstring_view format_name) noexcept {
  return first_match<FormatRow>(kFormatTable, &FormatRow::format_name, &FormatRow::mime_type, format_name);
}

}  // namespace mvsup::content
