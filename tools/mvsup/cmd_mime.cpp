// mvsup mime: the content type, extension and format name the library gives
// a file name, and whether the machine's MIME database or a built-in table
// answered.
#include <windows.h>

#include <string>
#include <vector>

#include "MvSup2u.h"
#include "binary_io.h"
#include "command.h"
#include "frame/text.h"
#include "output.h"

namespace mvsup::tool {
namespace {

constexpr const wchar_t* kDatabase = L"MIME\\Database\\Content Type";

struct Described {
  std::wstring file;
  std::wstring extension;  // of the file name, with its dot
  std::wstring type;
  bool type_from_registry = false;
  std::wstring type_extension;  // the type's own extension
  HRESULT type_extension_hr = E_FAIL;
  bool type_extension_from_registry = false;
  std::wstring format;
};

std::wstring extension_of(const std::wstring& file) {
  const size_t separator = file.find_last_of(L"\\/");
  const size_t start = separator == std::wstring::npos ? 0 : separator + 1;
  const size_t dot = file.rfind(L'.');
  if (dot == std::wstring::npos || dot < start || dot + 1 == file.size()) return {};
  return file.substr(dot);
}

std::wstring stored_extension(const std::wstring& type) {
  wchar_t value[300] = {};
  DWORD size = sizeof(value) - sizeof(wchar_t);
  const std::wstring key = std::wstring(kDatabase) + L"\\" + type;
  if (RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), L"Extension", RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND,
                   nullptr, value, &size) != ERROR_SUCCESS)
    return {};
  return value;
}

// The database answers with the first type that lists the extension, so the
// answer came from there exactly when the answer's own key lists it; a type
// from the table has no such key, or the walk would have found it.
Described describe(const std::wstring& file) {
  Described d;
  d.file = file;
  d.extension = extension_of(file);
  wchar_t buffer[300];
  if (GetMimeTypeFromFileName(file.c_str(), buffer, 300) > 0) {
    d.type = buffer;
    d.type_from_registry = text::equals_ignore_case(stored_extension(d.type), d.extension);
    d.type_extension_hr = GetFileExtFromMimeType2(d.type.c_str(), buffer, 300);
    d.type_extension = buffer;
    d.type_extension_from_registry = d.type_extension_hr == S_OK && stored_extension(d.type).starts_with(L'.');
  }
  d.format = GetDocFormatFromFileName(file.c_str());
  return d;
}

const wchar_t* source(bool from_registry) { return from_registry ? L"registry" : L"table"; }

void print_text(const std::vector<Described>& all) {
  std::wstring out;
  for (const Described& d : all) {
    out += L"\"" + d.file + L"\"\n";
    out += L"  extension         " + (d.extension.empty() ? L"(none)" : d.extension) + L"\n";
    if (d.type.empty()) {
      out += L"  type              (none known)\n";
    } else {
      out += L"  type              " + d.type + L"  [" + source(d.type_from_registry) + L"]\n";
      out += L"  type's extension  ";
      if (d.type_extension_hr == S_OK)
        out += d.type_extension + L"  [" + source(d.type_extension_from_registry) + L"]\n";
      else
        out += L"(none: " + hresult_text(d.type_extension_hr) + L")\n";
    }
    out += L"  format            " + (d.format.empty() ? L"(none)" : d.format) + L"\n";
  }
  write_out(out);
}

void print_json(const std::vector<Described>& all) {
  JsonWriter json;
  json.begin_array();
  for (const Described& d : all) {
    json.begin_object().string(L"file", d.file).string(L"extension", d.extension);
    if (d.type.empty()) {
      json.null(L"type").null(L"typeSource").null(L"typeExtension").null(L"typeExtensionSource");
    } else {
      json.string(L"type", d.type).string(L"typeSource", source(d.type_from_registry));
      if (d.type_extension_hr == S_OK)
        json.string(L"typeExtension", d.type_extension)
            .string(L"typeExtensionSource", source(d.type_extension_from_registry));
      else
        json.null(L"typeExtension").null(L"typeExtensionSource");
    }
    json.string(L"format", d.format).end_object();
  }
  json.end_array();
  write_out(json.str());
}

int run_mime(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().empty()) return fail(L"mime needs at least one FILE (see mvsup mime --help)");
  std::vector<Described> all;
  for (const std::wstring& file : args.rest()) all.push_back(describe(file));
  if (as_json)
    print_json(all);
  else
    print_text(all);
  return 0;
}

const CommandRegistration kMime{{
    L"mime",
    L"show the content type and format name the library gives file names",
    L"Usage: mvsup mime [--json] FILE...\n\n"
    L"For each FILE (a name or path; the file need not exist) shows its\n"
    L"extension, the MIME type the library gives it and where that came from\n"
    L"(\"registry\": the machine's MIME database, HKEY_CLASSES_ROOT\\MIME\\Database\\\n"
    L"Content Type; \"table\": the library's built-in table), the extension the\n"
    L"library gives that type back (and where from), and the format name shown\n"
    L"to users. A file without a known type still has a format name (its\n"
    L"extension in upper case).\n\n"
    L"  --json  the same as a JSON array (null where there is no type)\n",
    run_mime,
}};

}  // namespace
}  // namespace mvsup::tool
