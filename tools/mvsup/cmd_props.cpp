// mvsup props: the property catalogue, listed or looked up.
#include <windows.h>

#include <cwchar>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "command.h"
#include "iteminfo/property_catalogue.h"
#include "output.h"

namespace mvsup::tool {
namespace {

struct Entry {
  DWORD id;
  std::wstring name;                   // as the library gives it for the id
  std::vector<std::wstring> accepted;  // names that read back as the id
  int type;
};

// The table gives the names that read back; the library answers the rest.
std::vector<Entry> all_entries() {
  std::vector<Entry> entries;
  for (const catalogue::Property& property : catalogue::kProperties) {
    Entry entry{property.id, PropertyNameFromPropId(property.id), {}, PropTypeFromPropId(property.id)};
    for (std::wstring_view name : property.accepted)
      if (!name.empty() && PropIdFromPropertyName(std::wstring(name).c_str()) == property.id)
        entry.accepted.emplace_back(name);
    entries.push_back(std::move(entry));
  }
  return entries;
}

bool parse_id(const std::wstring& text, DWORD& id) {
  if (text.empty()) return false;
  wchar_t* end = nullptr;
  const unsigned long value = std::wcstoul(text.c_str(), &end, 0);
  if (end == nullptr || *end != L'\0' || text[0] == L'-') return false;
  id = static_cast<DWORD>(value);
  return true;
}

std::wstring entry_line(const Entry& entry) {
  std::wstring line = hex32(entry.id) + L"  type " + std::to_wstring(entry.type);
  if (entry.type < 10) line += L' ';
  line += L"  " + (entry.name.empty() ? std::wstring(L"(no name)") : entry.name);
  std::wstring others;
  bool name_read_back = false;
  for (const std::wstring& name : entry.accepted) {
    if (name == entry.name)
      name_read_back = true;
    else
      others += (others.empty() ? L"" : L", ") + name;
  }
  if (!entry.name.empty() && !name_read_back)
    line += others.empty() ? L"  (not read back)" : L"  (read back only as: " + others + L")";
  else if (!others.empty())
    line += L"  (also read: " + others + L")";
  return line + L"\n";
}

void print(const std::vector<Entry>& entries, bool as_json) {
  if (!as_json) {
    std::wstring out;
    for (const Entry& entry : entries) out += entry_line(entry);
    write_out(out);
    return;
  }
  JsonWriter json;
  json.begin_array();
  for (const Entry& entry : entries) {
    json.begin_object().string(L"id", hex32(entry.id));
    if (entry.name.empty())
      json.null(L"name");
    else
      json.string(L"name", entry.name);
    json.begin_array(L"accepted");
    for (const std::wstring& name : entry.accepted) json.string_item(name);
    json.end_array().number(L"type", entry.type).end_object();
  }
  json.end_array();
  write_out(json.str());
}

int run_props(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().size() > 1) return fail(L"props takes at most one NAME or ID");
  const std::vector<Entry> entries = all_entries();
  if (args.rest().empty()) {
    print(entries, as_json);
    return 0;
  }
  const std::wstring& query = args.rest().front();
  DWORD id = 0;
  if (!parse_id(query, id)) {
    id = PropIdFromPropertyName(query.c_str());
    if (id == 0) return fail(L"\"" + query + L"\" is not a property name of the catalogue");
  }
  for (const Entry& entry : entries) {
    if (entry.id != id) continue;
    print({entry}, as_json);
    return 0;
  }
  return fail(L"no property has the id " + hex32(id));
}

const CommandRegistration kProps{{
    L"props",
    L"list or look up the property catalogue",
    L"Usage: mvsup props [--json] [NAME|ID]\n\n"
    L"Without an argument, lists every property id of the catalogue with its\n"
    L"property-type code, the name that the library gives the id, and the names\n"
    L"that it reads back as the id. With a NAME (any case, e.g. \"title\") or an\n"
    L"ID (decimal or 0x hex, e.g. 0x80000040), shows that one entry.\n\n"
    L"  --json   the same as a JSON array\n",
    run_props,
}};

}  // namespace
}  // namespace mvsup::tool
