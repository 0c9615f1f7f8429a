// mvsup handle: what the library recognises in handle text.
#include <windows.h>

#include <string>
#include <vector>

#include "MvSup2u.h"
#include "command.h"
#include "output.h"

namespace mvsup::tool {
namespace {

constexpr WORD kNothingFound = 0xFFFF;
constexpr long kNoVersion = -1;

struct Recognised {
  std::wstring text;
  bool found = false;
  bool word_only = false;  // a type word without a number
  MVXITEMTYPE type = MVXITEMTYPE_UNKNOWN;
  long number = -1;
  long version = kNoVersion;
  LONG object_type = -1;
  std::wstring word, handle, http_handle, display;
  MVXITEMTYPE parent = -1;
  MVXITEMTYPE parent_with_context = -1;  // with both deciding context values set
};

std::wstring word_of(MVXITEMTYPE type) {
  wchar_t buffer[400];
  return GetMvxItemTypeAsStringTS(type, buffer, 400);
}

std::wstring type_text(MVXITEMTYPE type) {
  const std::wstring word = word_of(type);
  return std::to_wstring(type) + (word.empty() ? L"" : L" " + word);
}

Recognised recognise(const std::wstring& text, bool allow_short) {
  Recognised r;
  r.text = text;
  WORD type = kNothingFound;
  ToHandle(text.c_str(), &type, &r.number, &r.version, allow_short);
  if (type != kNothingFound) {
    r.found = true;
    r.type = type;
  } else if (const MVXITEMTYPE word_type = GetMvxItemTypeFromString(text.c_str()); word_type != MVXITEMTYPE_UNKNOWN) {
    r.found = r.word_only = true;
    r.type = word_type;
    r.number = -1;
  }
  if (!r.found) return r;
  r.word = word_of(r.type);
  r.object_type = GetMvxObjTypeFromItemType(r.type);
  if (!r.word_only) {
    wchar_t buffer[400];
    GetMvxItemHandleAsString(r.type, static_cast<DWORD>(r.number), buffer, 400);
    r.handle = buffer;
    GetMvxItemHandleAsHttpString(r.type, static_cast<DWORD>(r.number), buffer, 400);
    r.http_handle = buffer;
  }
  wchar_t display[256];
  GetMvxItemTypeAsDisplayString(r.type, display, 256);
  r.display = display;
  r.parent = GetMvxParentItemType(r.type, 0, 0, 0, nullptr);
  r.parent_with_context = GetMvxParentItemType(r.type, 1, 1, 0, nullptr);
  return r;
}

void print_text(const std::vector<Recognised>& results) {
  std::wstring out;
  for (const Recognised& r : results) {
    out += L"\"" + r.text + L"\"\n";
    if (!r.found) {
      out += L"  nothing recognised\n";
      continue;
    }
    out += L"  type         " + type_text(r.type) + (r.word_only ? L" (type word, no number)" : L"") + L"\n";
    out += L"  object type  " + std::to_wstring(r.object_type) + L"\n";
    if (!r.word_only) {
      out += L"  number       " + std::to_wstring(r.number) + L"\n";
      if (r.version != kNoVersion) out += L"  version      " + std::to_wstring(r.version) + L"\n";
      out += L"  handle       " + r.handle + L"\n";
      out += L"  http form    " + r.http_handle + L"\n";
    }
    out += L"  display      " + r.display + L"\n";
    out += L"  parent       " + type_text(r.parent);
    if (r.parent_with_context != r.parent) out += L" (" + type_text(r.parent_with_context) + L" when nested)";
    out += L"\n";
  }
  write_out(out);
}

void print_json(const std::vector<Recognised>& results) {
  JsonWriter json;
  json.begin_array();
  for (const Recognised& r : results) {
    json.begin_object().string(L"text", r.text).boolean(L"recognised", r.found);
    if (r.found) {
      json.number(L"type", r.type).string(L"word", r.word).number(L"objectType", r.object_type);
      if (r.word_only) {
        json.null(L"number");
      } else {
        json.number(L"number", r.number).string(L"handle", r.handle).string(L"httpHandle", r.http_handle);
      }
      if (r.version != kNoVersion)
        json.number(L"version", r.version);
      else
        json.null(L"version");
      json.string(L"display", r.display).number(L"parent", r.parent);
      json.number(L"parentWhenNested", r.parent_with_context);
    }
    json.end_object();
  }
  json.end_array();
  write_out(json.str());
}

int run_handle(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  const bool allow_short = args.take_flag(L"--short");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().empty()) return fail(L"handle needs at least one TEXT (see mvsup handle --help)");
  std::vector<Recognised> results;
  for (const std::wstring& text : args.rest()) results.push_back(recognise(text, allow_short));
  if (as_json)
    print_json(results);
  else
    print_text(results);
  for (const Recognised& r : results)
    if (!r.found) return fail(L"nothing recognised in \"" + r.text + L"\"");
  return 0;
}

const CommandRegistration kHandle{{
    L"handle",
    L"show what the library recognises in handle text",
    L"Usage: mvsup handle [--short] [--json] TEXT...\n\n"
    L"For each TEXT, finds a handle the way the client does (a handle such as\n"
    L"\"Collection-123\", or one inside longer text such as a file path) and shows\n"
    L"its item type (number and word), object type, number, version (after a '/'),\n"
    L"the handle and its http form, the display name and the parent type. A bare\n"
    L"type word (\"Collection\") is shown without a number. Custom types of the\n"
    L"current user are recognised too.\n\n"
    L"  --short  also accept the short forms c<digits> and f<digits>\n"
    L"  --json   the same as a JSON array\n\n"
    L"Exit code 1 when a TEXT holds neither a handle nor a type word.\n",
    run_handle,
}};

}  // namespace
}  // namespace mvsup::tool
