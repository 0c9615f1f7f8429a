// mvsup types: the built-in item types and the current user's custom types.
#include <windows.h>

#include <string>
#include <vector>

#include "MvSup2u.h"
#include "command.h"
#include "output.h"

namespace mvsup::tool {
namespace {

constexpr const wchar_t* kClassesComponent = L"MVSUP\\CustomTypes\\Classes";

struct Builtin {
  MVXITEMTYPE type;
  std::wstring word, http_word, display;
  LONG object_type;
  MVXITEMTYPE parent, parent_when_nested;
};

struct ClassRecord {
  std::wstring server;
  std::wstring superclass;
  DWORD flags;
};

struct Custom {
  MVXITEMTYPE type;
  std::wstring word, label;
  std::vector<ClassRecord> records;
};

std::wstring word_of(MVXITEMTYPE type) {
  wchar_t buffer[400];
  return GetMvxItemTypeAsStringTS(type, buffer, 400);
}

std::vector<std::wstring> servers() {
  std::vector<std::wstring> names;
  HKEY key = nullptr;
  if (OpenSettingsKey(kClassesComponent, 0, KEY_READ, &key) != ERROR_SUCCESS) return names;
  for (DWORD index = 0;; ++index) {
    wchar_t name[256];
    DWORD length = 256;
    if (RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    names.emplace_back(name, length);
  }
  RegCloseKey(key);
  return names;
}

// Read directly: the library's reader assigns numbers as a side effect.
bool read_record(const std::wstring& server, const std::wstring& word, ClassRecord& record) {
  const std::wstring component = std::wstring(kClassesComponent) + L"\\" + server + L"\\" + word;
  HKEY key = nullptr;
  if (OpenSettingsKey(component.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  record.server = server;
  wchar_t superclass[256] = {};
  DWORD size = sizeof(superclass) - sizeof(wchar_t);
  DWORD type = 0;
  if (RegQueryValueExW(key, nullptr, nullptr, &type, reinterpret_cast<BYTE*>(superclass), &size) == ERROR_SUCCESS &&
      type == REG_SZ)
    record.superclass = superclass;
  DWORD flags = 0;
  size = sizeof(flags);
  if (RegQueryValueExW(key, L"Flags", nullptr, &type, reinterpret_cast<BYTE*>(&flags), &size) != ERROR_SUCCESS ||
      type != REG_DWORD)
    flags = 0;
  record.flags = flags;
  RegCloseKey(key);
  return true;
}

std::vector<Builtin> builtins() {
  std::vector<Builtin> list;
  for (MVXITEMTYPE type = 0; type <= 22; ++type) {
    Builtin b{type, word_of(type), {}, {}, GetMvxObjTypeFromItemType(type), 0, 0};
    wchar_t buffer[256];
    b.http_word = GetMvxItemTypeAsHttpStringTS(type, buffer, 256);
    GetMvxItemTypeAsDisplayString(type, buffer, 256);
    b.display = buffer;
    b.parent = GetMvxParentItemType(type, 0, 0, 0, nullptr);
    b.parent_when_nested = GetMvxParentItemType(type, 1, 1, 0, nullptr);
    list.push_back(std::move(b));
  }
  return list;
}

std::vector<Custom> customs() {
  std::vector<Custom> list;
  const std::vector<std::wstring> server_names = servers();
  for (MVXITEMTYPE type = MVXITEMTYPE_FIRSTCUSTOM; type <= MVXITEMTYPE_LASTCUSTOM; ++type) {
    wchar_t buffer[400];
    const std::wstring word = MvxGetCustomItemTypeAsStringTS(type, buffer, 400);
    if (word.empty()) continue;
    Custom c{type, word, MvxGetCustomItemTypeAsDisplayStringTS(type, buffer, 400), {}};
    if (c.label == c.word) c.label.clear();
    for (const std::wstring& server : server_names) {
      ClassRecord record;
      if (read_record(server, word, record)) c.records.push_back(std::move(record));
    }
    list.push_back(std::move(c));
  }
  return list;
}

std::wstring flags_text(DWORD flags) {
  std::wstring text = hex32(flags);
  if (flags & MVXCLASSFLAG_CONTAINER) text += L" container";
  if (flags & MVXCLASSFLAG_CHILDRENMAPPED) text += L" children-mapped";
  return text;
}

std::wstring padded(std::wstring text, size_t width) {
  if (text.size() < width) text.resize(width, L' ');
  return text;
}

void print_text(const std::vector<Builtin>& built_in, const std::vector<Custom>& custom) {
  std::wstring out = L"Built-in item types (type, word, object type, parent, display name)\n";
  for (const Builtin& b : built_in) {
    std::wstring word = b.word.empty() ? L"(none)" : b.word;
    if (b.http_word != b.word) word += L" / http " + b.http_word;
    std::wstring parent = std::to_wstring(b.parent);
    if (b.parent_when_nested != b.parent) parent += L" or " + std::to_wstring(b.parent_when_nested);
    out += L"  " + padded(std::to_wstring(b.type), 4) + padded(word, 24) + padded(std::to_wstring(b.object_type), 5) +
           padded(parent, 9) + b.display + L"\n";
  }
  out += L"  23-32  unknown; 33-255 custom\n\nCustom item types of this user\n";
  if (custom.empty()) out += L"  none\n";
  for (const Custom& c : custom) {
    out += L"  " + padded(std::to_wstring(c.type), 5) + c.word;
    if (!c.label.empty()) out += L" (label \"" + c.label + L"\")";
    out += L"\n";
    for (const ClassRecord& record : c.records)
      out += L"       server " + record.server + L": superclass " +
             (record.superclass.empty() ? L"(none)" : record.superclass) + L", flags " + flags_text(record.flags) +
             L"\n";
  }
  write_out(out);
}

void print_json(const std::vector<Builtin>& built_in, const std::vector<Custom>& custom) {
  JsonWriter json;
  json.begin_object().begin_array(L"builtin");
  for (const Builtin& b : built_in) {
    json.begin_object()
        .number(L"type", b.type)
        .string(L"word", b.word)
        .string(L"httpWord", b.http_word)
        .number(L"objectType", b.object_type)
        .number(L"parent", b.parent)
        .number(L"parentWhenNested", b.parent_when_nested)
        .string(L"display", b.display)
        .end_object();
  }
  json.end_array().begin_array(L"custom");
  for (const Custom& c : custom) {
    json.begin_object().number(L"type", c.type).string(L"word", c.word);
    if (c.label.empty())
      json.null(L"label");
    else
      json.string(L"label", c.label);
    json.begin_array(L"classes");
    for (const ClassRecord& record : c.records) {
      json.begin_object()
          .string(L"server", record.server)
          .string(L"superclass", record.superclass)
          .number(L"flags", record.flags)
          .boolean(L"container", (record.flags & MVXCLASSFLAG_CONTAINER) != 0)
          .end_object();
    }
    json.end_array().end_object();
  }
  json.end_array().end_object();
  write_out(json.str());
}

int run_types(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (!args.rest().empty()) return fail(L"types takes no arguments");
  const std::vector<Builtin> built_in = builtins();
  const std::vector<Custom> custom = customs();
  if (as_json)
    print_json(built_in, custom);
  else
    print_text(built_in, custom);
  return 0;
}

const CommandRegistration kTypes{{
    L"types",
    L"list the built-in item types and this user's custom types",
    L"Usage: mvsup types [--json]\n\n"
    L"Lists the built-in item types 0-22 with their word (and http word where it\n"
    L"differs), object type, parent type (both where a context decides) and\n"
    L"display name; then the custom types of the current user (number, class word,\n"
    L"label) with, per server, the recorded superclass and class flags.\n"
    L"Nothing is written: the class records are read as they are stored.\n\n"
    L"  --json   the same as one JSON object\n",
    run_types,
}};

}  // namespace
}  // namespace mvsup::tool
