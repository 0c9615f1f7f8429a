// mvsup item make: a committed item info from the server's property text,
// filled the way a client component fills one (AddItemPropToMvxInfo).
#include <windows.h>

#include <cwchar>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "binary_io.h"
#include "frame/text.h"
#include "frame/win32_handles.h"
#include "item_commands.h"
#include "output.h"

namespace mvsup::tool {

namespace {

// One property's text values, in the order given.
struct Group {
  PropertyName property;
  std::vector<std::wstring> values;
};

// The library keeps "client_data" as a custom property of that name.
constexpr DWORD kClientDataId = MVX_PROP_CLIENT_DATA;

bool same_property(const PropertyName& a, const PropertyName& b) {
  return a.custom() ? b.custom() && a.name == b.name : a.id == b.id;
}

std::wstring trimmed(std::wstring_view text) {
  const size_t first = text.find_first_not_of(L" \t");
  if (first == std::wstring_view::npos) return {};
  const size_t last = text.find_last_not_of(L" \t");
  return std::wstring(text.substr(first, last - first + 1));
}

// "NAME=VALUE": adds VALUE to NAME's group. Returns an error, or "".
std::wstring add_assignment(std::vector<Group>& groups, std::wstring_view line) {
  const size_t equals = line.find(L'=');
  if (equals == std::wstring_view::npos) return L"expected NAME=VALUE";
  const std::wstring name = trimmed(line.substr(0, equals));
  if (name.empty()) return L"the name before '=' is empty";
  const PropertyName property = resolve_property(name, false);
  const std::wstring value(line.substr(equals + 1));
  for (Group& group : groups) {
    if (!same_property(group.property, property)) continue;
    group.values.push_back(value);
    return {};
  }
  groups.push_back({property, {value}});
  return {};
}

// A UTF-8 file of NAME=VALUE lines; blank lines and lines starting with '#'
// are skipped.
std::wstring read_assignments(const std::wstring& path, std::vector<Group>& groups) {
  std::wstring error;
  const std::optional<std::string> bytes = read_input(path, &error);
  if (!bytes) return error;
  std::string_view utf8(*bytes);
  if (utf8.substr(0, 3) == "\xEF\xBB\xBF") utf8.remove_prefix(3);
  const std::wstring text = text::to_wide(utf8, CP_UTF8);
  if (text.empty() && !utf8.empty()) return path + L": not UTF-8 text";
  size_t number = 0;
  for (size_t start = 0; start <= text.size();) {
    size_t end = text.find(L'\n', start);
    if (end == std::wstring::npos) end = text.size();
    std::wstring_view line(text.data() + start, end - start);
    if (!line.empty() && line.back() == L'\r') line.remove_suffix(1);
    ++number;
    start = end + 1;
    const std::wstring content = trimmed(line);
    if (content.empty() || content[0] == L'#') continue;
    if (std::wstring message = add_assignment(groups, line); !message.empty())
      return path + L":" + std::to_wstring(number) + L": " + message;
  }
  return {};
}

// How many values attribute 16 of the property holds after filling.
int stored_values(HMVXINFO info, const PropertyName& property) {
  HMVXPROP found = nullptr;
  if (property.id == kClientDataId)
    found = MvxFindCustomProperty(info, L"client_data");
  else if (property.custom())
    found = MvxFindCustomProperty(info, property.name.c_str());
  else
    found = MvxFindProperty(info, property.id);
  return MvxGetAttributeValuesCount(info, MvxFindAttribute(info, found, MVX_ATTRIBUTE_VALUES));
}

std::wstring label(const PropertyName& property) {
  if (property.custom()) return L"custom \"" + property.name + L"\"";
  const std::wstring name = PropertyNameFromPropId(property.id);
  return (name.empty() ? property.name : name) + L" (" + hex32(property.id) + L")";
}

std::wstring write_block(const std::wstring& path, const BYTE* block, bool overwrite) {
  const DWORD size = *reinterpret_cast<const DWORD UNALIGNED*>(block);
  unique_file file(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, overwrite ? CREATE_ALWAYS : CREATE_NEW,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
  DWORD written = 0;
  if (file && ::WriteFile(file.get(), block, size, &written, nullptr) && written == size) return {};
  const DWORD error = ::GetLastError();
  if (error == ERROR_FILE_EXISTS) return path + L" exists; not overwritten (--force overwrites)";
  return L"cannot write " + path + L" (error " + std::to_wstring(error) + L")";
}

}  // namespace

int run_item_make(Args& args) {
  const std::optional<std::wstring> from = args.take_option(L"--from");
  const bool overwrite = args.take_flag(L"--force");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().empty()) return fail(L"item make needs an output file (see mvsup item --help)");
  const std::wstring& path = args.rest()[0];

  std::vector<Group> groups;
  if (from) {
    if (std::wstring error = read_assignments(*from, groups); !error.empty()) return fail(error);
  }
  for (size_t i = 1; i < args.rest().size(); ++i) {
    if (std::wstring error = add_assignment(groups, args.rest()[i]); !error.empty())
      return fail(L"\"" + args.rest()[i] + L"\": " + error);
  }

  BYTE* block = nullptr;
  if (const HRESULT hr = MvxCreateItemInfo(&block); FAILED(hr)) return fail(L"MvxCreateItemInfo: " + hresult_text(hr));
  HMVXINFO info = MvxOpen(block);
  if (info == nullptr) {
    FreeMvxInfo(block);
    return fail(L"MvxOpen failed");
  }
  std::wstring notes;
  for (const Group& group : groups) {
    std::vector<LPCWSTR> values;
    for (const std::wstring& value : group.values) values.push_back(value.c_str());
    if (!AddItemPropToMvxInfo(0, info, group.property.name.c_str(), static_cast<int>(values.size()), values.data())) {
      MvxClose(info);
      FreeMvxInfo(block);
      return fail(L"AddItemPropToMvxInfo failed for " + label(group.property));
    }
    const int stored = stored_values(info, group.property);
    if (stored != static_cast<int>(values.size()))
      notes += L"  note: " + label(group.property) + L": " + std::to_wstring(stored) + L" of " +
               std::to_wstring(values.size()) + L" values stored (the others do not convert to its type)\n";
  }
  const SHORT properties = MvxGetPropertyCount(info);
  const SHORT custom = MvxGetCustomPropertyCount(info);
  const HRESULT hr = MvxUpdateItemInfo(info, &block);
  MvxClose(info);
  if (FAILED(hr)) {
    FreeMvxInfo(block);
    return fail(L"MvxUpdateItemInfo: " + hresult_text(hr));
  }
  const std::wstring error = write_block(path, block, overwrite);
  const DWORD size = *reinterpret_cast<const DWORD UNALIGNED*>(block);
  FreeMvxInfo(block);
  if (!error.empty()) return fail(error);
  const auto count = [](SHORT n, const wchar_t* what) {
    return std::to_wstring(n) + L" " + what + (n == 1 ? L"y" : L"ies");
  };
  write_out(path + L": committed item info, " + std::to_wstring(size) + L" bytes, " + count(properties, L"propert") +
            L", " + count(custom, L"custom propert") + L"\n" + notes);
  return 0;
}

}  // namespace mvsup::tool
