#include "types/custom_types.h"

#include <algorithm>
#include <optional>

#include "MvSupTypes.h"
#include "frame/library_state.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "iteminfo/block_format.h"
#include "iteminfo/property_accessors.h"
#include "settings/registry.h"
#include "settings/settings.h"
#include "types/client_item.h"

namespace mvsup::types::custom {

namespace {

constexpr std::wstring_view kServerCut = L"mvcgi/mv.py/";
// "MVSUP\CustomTypes\Classes" with its separator, as the key-length limit
// counts it.
constexpr size_t kClassesPrefixLength = 26;
constexpr size_t kMaxRecordKeyLength = 254;
constexpr DWORD kMaxServers = 256;
// Registry value names have at most 16383 characters; a buffer of that size
// lets long class words pass through an enumeration instead of ending it.
constexpr DWORD kValueNameCapacity = 16384;

constexpr std::wstring_view kLeafChildTypes[] = {L"Version", L"Rendition", L"ContElem"};

struct MapValue {
  std::wstring name;
  DWORD type = 0;
  DWORD data = 0;  // 0 unless a 4-byte DWORD
};

// One value of "Maps" by index. ERROR_MORE_DATA: the value's data is longer
// than a DWORD.
class MapReader {
 public:
  explicit MapReader(HKEY key) : key_(key), name_(kValueNameCapacity, L'\0') {}

  LONG read(DWORD index, MapValue& value) {
    DWORD name_length = kValueNameCapacity;
    DWORD type = 0;
    DWORD data = 0;
    DWORD size = sizeof(data);
    const LONG rc = ::RegEnumValueW(key_, index, name_.data(), &name_length, nullptr, &type,
                                    reinterpret_cast<BYTE*>(&data), &size);
    if (rc != ERROR_SUCCESS) return rc;
    value.name.assign(name_.data(), name_length);
    value.type = type;
    value.data = (type == REG_DWORD && size == sizeof(data)) ? data : 0;
    return ERROR_SUCCESS;
  }

  // The highest DWORD assignment among the first `limit` values; values
  // whose data is not a DWORD are passed over.
  DWORD highest(DWORD limit, bool count_unnamed) {
    DWORD highest = 0;
    MapValue value;
    for (DWORD index = 0; index < limit; ++index) {
      const LONG rc = read(index, value);
      if (rc == ERROR_MORE_DATA) continue;
      if (rc != ERROR_SUCCESS) break;
      if (value.type == REG_DWORD && (count_unnamed || !value.name.empty()) && value.data > highest)
        highest = value.data;
    }
    return highest;
  }

 private:
  HKEY key_;
  std::wstring name_;
};

ItemType type_of_assignment(DWORD assignment) noexcept {
  return static_cast<ItemType>(assignment + static_cast<DWORD>(kAssignmentBase));
}

LONG open_or_create(const wchar_t* component, REGSAM access, unique_hkey& key, bool* created = nullptr) noexcept {
  if (created) *created = false;
  LONG rc = settings::open_key(component, 0, access, key.put());
  if (rc == ERROR_SUCCESS) return rc;
  DWORD disposition = 0;
  rc = settings::create_key(component, nullptr, 0, access, nullptr, key.put(), &disposition);
  if (rc == ERROR_SUCCESS && created) *created = disposition == REG_CREATED_NEW_KEY;
  return rc;
}

LONG set_dword_value(HKEY key, const wchar_t* name, DWORD value) noexcept {
  return ::RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value));
}

LONG set_string_value(HKEY key, const wchar_t* name, std::wstring_view text) {
  const std::wstring stored(text);
  return ::RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(stored.c_str()),
                          static_cast<DWORD>((stored.size() + 1) * sizeof(wchar_t)));
}

// A string value into a buffer of `capacity` characters; left empty when it
// is missing, not a string, or does not fit with its terminator.
void read_string_value(HKEY key, const wchar_t* name, wchar_t* buffer, size_t capacity) noexcept {
  buffer[0] = L'\0';
  DWORD type = 0;
  DWORD size = static_cast<DWORD>(capacity * sizeof(wchar_t));
  const LONG rc = ::RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size);
  const size_t length = size / sizeof(wchar_t);
  if (rc != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ) ||
      (length == capacity && buffer[capacity - 1] != L'\0')) {
    buffer[0] = L'\0';
    return;
  }
  buffer[length < capacity ? length : capacity - 1] = L'\0';
}

// Unlike the shared settings helper, closes the key it opened.
LONG delete_value(const wchar_t* component, const wchar_t* name) noexcept {
  unique_hkey key;
  if (const LONG rc = settings::open_key(component, 0, KEY_SET_VALUE, key.put())) return rc;
  return ::RegDeleteValueW(key.get(), name);
}

DWORD read_dword_value(HKEY key, const wchar_t* name) noexcept {
  DWORD type = 0;
  DWORD data = 0;
  DWORD size = sizeof(data);
  if (::RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&data), &size) != ERROR_SUCCESS ||
      type != REG_DWORD)
    return 0;
  return data;
}

// The component of a class record,
//   MVSUP\CustomTypes\Classes\<server part>\<class word>
// nothing when the names are too long or empty. The length limit counts the
// server text before the cut, as it always has.
std::optional<std::wstring> record_component(std::wstring_view server, std::wstring_view word, bool cut_server) {
  if (kClassesPrefixLength + server.size() + word.size() > kMaxRecordKeyLength) return std::nullopt;
  if (cut_server) server = server.substr(0, server.find(kServerCut));
  if (server.empty() || word.empty()) return std::nullopt;
  std::wstring component = kClassesComponent;
  component += L'\\';
  component += server;
  component += L'\\';
  component += word;
  return component;
}

// Calls visit(server key) for the subkeys of "Classes" in index order until
// it returns true.
template <typename Visit>
void for_each_server(Visit&& visit) {
  unique_hkey classes;
  if (settings::open_key(kClassesComponent, 0, KEY_READ, classes.put()) != ERROR_SUCCESS) return;
  for (DWORD index = 0; index < kMaxServers; ++index) {
    wchar_t name[256];
    DWORD length = static_cast<DWORD>(std::size(name));
    const LONG rc = ::RegEnumKeyExW(classes.get(), index % kMaxServers, name, &length, nullptr, nullptr, nullptr,
                                    nullptr);
    if (rc == ERROR_MORE_DATA) continue;
    if (rc != ERROR_SUCCESS) return;
    if (visit(std::wstring_view(name, length))) return;
  }
}

// The class record of a class word: the object's server when an object is
// given, else the first server that has one. `read` is called with each
// server key until it returns non-zero.
template <typename Read>
void find_record(IUnknown* object, Read&& read) {
  if (object != nullptr) {
    const std::wstring server = client_item::server_key(object);
    if (!server.empty()) read(server);
    return;
  }
  for_each_server([&](std::wstring_view server) { return read(server) != 0; });
}

bool is_hex_digit(wchar_t c) noexcept {
  return (c >= L'0' && c <= L'9') || (c >= L'A' && c <= L'F') || (c >= L'a' && c <= L'f');
}

unsigned hex_value(wchar_t c) noexcept {
  if (c <= L'9') return c - L'0';
  if (c <= L'F') return c - L'A' + 10;
  return c - L'a' + 10;
}

}  // namespace

std::wstring_view class_word(std::wstring_view text) noexcept {
  return text.substr(0, std::min(text.find(L'-'), kMaxClassWordLength));
}

std::wstring encode(std::wstring_view word) {
  static constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
  std::wstring encoded;
  encoded.reserve(word.size() * 4);
  for (const wchar_t unit : word)
    for (int shift = 12; shift >= 0; shift -= 4) encoded += kDigits[(unit >> shift) & 0xF];
  return encoded;
}

std::wstring decode(std::wstring_view name) {
  if (name.size() < 2 || name.size() % 4 != 0 || !std::all_of(name.begin(), name.end(), is_hex_digit))
    return std::wstring(name);
  std::wstring word;
  word.reserve(name.size() / 4);
  for (size_t i = 0; i < name.size(); i += 4) {
    unsigned unit = 0;
    for (size_t j = i; j < i + 4; ++j) unit = unit * 16 + hex_value(name[j]);
    word += static_cast<wchar_t>(unit);
  }
  return word;
}

ItemType type_from_word(std::wstring_view text) noexcept {
  try {
    const std::wstring_view word = class_word(text);
    if (word.empty()) return kUnknown;
    const std::wstring encoded = encode(word);
    if (const DWORD assignment = settings::get_dword(kMapsComponent, encoded.c_str(), 0))
      return type_of_assignment(assignment);
    if (trace::level() >= 2)
      trace::line(L"MvxGetCustomItemType detected MVXITEMTYPE_UNKNOWN.\nInputType: %ls\nNormalizedType: %ls\n",
                  std::wstring(text).c_str(), encoded.c_str());
  } catch (...) {
  }
  return kUnknown;
}

std::wstring word_from_type(ItemType type) noexcept {
  if (type < kFirstCustom) return {};
  const long assignment = static_cast<long>(type) - kAssignmentBase;
  try {
    unique_hkey maps;
    if (const LONG rc = settings::open_key(kMapsComponent, 0, KEY_READ, maps.put())) {
      trace::line("MvxGetCustomItemTypeAsStringTS detected an error from OpenSettingsKey\nErrorCode: %ld\n"
                  "InputType: %ld\n",
                  static_cast<long>(rc), assignment);
      return {};
    }
    MapReader reader(maps.get());
    MapValue value;
    // Unlike numbering, the look-up ends at a value that is not a DWORD.
    for (DWORD index = 0; index < kMaxAssignments && reader.read(index, value) == ERROR_SUCCESS; ++index)
      if (!value.name.empty() && value.type == REG_DWORD && value.data == static_cast<DWORD>(assignment))
        return decode(value.name);
    trace::line("MvxGetCustomItemTypeAsStringTS failed to map ItemType\nInputType: %ld\n", assignment);
  } catch (...) {
  }
  return {};
}

std::wstring display_from_type(ItemType type) noexcept {
  try {
    std::wstring word = word_from_type(type);
    if (word.empty()) return word;
    // Read under the plain word, although labels are written under the
    // encoded one: callers have long relied on the class word showing.
    const std::wstring names = settings::compose_path(kNamesComponent);
    std::wstring label = registry::read_string(frame::user_root(), names.c_str(), word.c_str());
    if (label.empty()) return word;
    if (label.size() > kLabelLength) label.resize(kLabelLength);
    return label;
  } catch (...) {
    return {};
  }
}

int create(std::wstring_view text, ItemType* type) noexcept {
  if (type != nullptr) *type = kUnknown;
  try {
    const std::wstring_view word = class_word(text);
    if (word.empty()) return 0;
    unique_hkey maps;
    LONG rc = settings::open_key(kMapsComponent, 0, KEY_READ | KEY_WRITE, maps.put());
    if (rc == ERROR_FILE_NOT_FOUND)
      rc = settings::create_key(kMapsComponent, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, maps.put(), nullptr);
    if (rc != ERROR_SUCCESS) return 0;
    // One above the highest assignment: gaps are never reused, and a word
    // created again gets a new number, so that stale numbers held by other
    // components never alias a different class.
    const DWORD assignment = MapReader(maps.get()).highest(kMaxAssignments, false) + 1;
    set_dword_value(maps.get(), encode(word).c_str(), assignment);
    maps.reset();
    if (type != nullptr) *type = type_from_word(text);
    return 1;
  } catch (...) {
    return 0;
  }
}

int set_label(std::wstring_view text, std::wstring_view label) noexcept {
  try {
    const std::wstring_view word = class_word(text);
    if (word.empty()) return 0;
    const std::wstring encoded = encode(word);
    if (label.empty() || text::equals_ignore_case(label, text)) {
      delete_value(kNamesComponent, encoded.c_str());
      return 1;
    }
    unique_hkey names;
    if (open_or_create(kNamesComponent, KEY_WRITE, names) != ERROR_SUCCESS) return 0;
    return set_string_value(names.get(), encoded.c_str(), label) == ERROR_SUCCESS ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

int remove(std::wstring_view text) noexcept {
  try {
    const std::wstring_view word = class_word(text);
    if (word.empty()) return 0;
    const std::wstring encoded = encode(word);
    delete_value(kNamesComponent, encoded.c_str());
    return delete_value(kMapsComponent, encoded.c_str()) == ERROR_SUCCESS ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

ItemType client_defined(std::wstring_view text, std::wstring_view class_key, wchar_t* superclass,
                        DWORD* flags) noexcept {
  if (superclass != nullptr) superclass[0] = L'\0';
  if (flags != nullptr) *flags = 0;
  try {
    const std::optional<std::wstring> component = record_component(class_key, class_word(text), false);
    if (!component) return 0;
    {
      unique_hkey record;
      if (const LONG rc = settings::open_key(component->c_str(), 0, KEY_READ, record.put())) {
        trace::line("MvxGetClientDefinedCustomItemType: OpenSettingsKey failed: RES=%ld\n", static_cast<long>(rc));
        return 0;
      }
      if (superclass != nullptr) read_string_value(record.get(), nullptr, superclass, kSuperclassCapacity);
      if (flags != nullptr) *flags = read_dword_value(record.get(), kFlagsValue);
    }
    ItemType type = type_from_string(text);
    if (type == kUnknown) create(text, &type);
    return type;
  } catch (...) {
    return 0;
  }
}

ItemType superclass_type(std::wstring_view text, IUnknown* object) noexcept {
  if (text.empty()) return 0;
  try {
    wchar_t superclass[kSuperclassCapacity] = {};
    find_record(object, [&](std::wstring_view server) { return client_defined(text, server, superclass, nullptr); });
    if (superclass[0] == L'\0') return 0;
    ItemType type = type_from_string(superclass);
    if (type == kUnknown) create(superclass, &type);
    return type;
  } catch (...) {
    return 0;
  }
}

ItemType superclass_of_item_info(const BYTE* item_info) noexcept {
  const std::optional<WORD> type = iteminfo::accessors::header_item_type(item_info);
  if (!type) return kUnknown;
  if (*type < kFirstCustom || *type > kLastCustom) return *type;
  LPWSTR stored = nullptr;
  if (iteminfo::accessors::custom_string(item_info, kBaseTypeProperty, &stored) != S_OK) return kUnknown;
  try {
    // The string may sit at an odd address inside the block.
    std::wstring word;
    const auto* bytes = reinterpret_cast<const BYTE*>(stored);
    for (uint16_t unit; (unit = iteminfo::load_u16(bytes)) != 0; bytes += 2) word += static_cast<wchar_t>(unit);
    return word.empty() ? kUnknown : type_from_string(word);
  } catch (...) {
    return kUnknown;
  }
}

int is_container(std::wstring_view text, IUnknown* object) noexcept {
  if (text.empty()) return 0;
  try {
    DWORD flags = 0;
    find_record(object, [&](std::wstring_view server) { return client_defined(text, server, nullptr, &flags); });
    return (flags & MVXCLASSFLAG_CONTAINER) ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

int map_child_types(std::wstring_view server, std::wstring_view class_word_text, bool has_children,
                    const wchar_t* const* child_types) noexcept {
  try {
    const std::optional<std::wstring> component = record_component(server, class_word(class_word_text), true);
    if (!component) return 0;
    unique_hkey record;
    if (open_or_create(component->c_str(), KEY_WRITE, record) != ERROR_SUCCESS) return 0;
    DWORD flags = 0;
    if (has_children) {
      // Children that are only versions, renditions or content elements make
      // a document-like leaf; anything else a container.
      flags = MVXCLASSFLAG_CHILDRENMAPPED | MVXCLASSFLAG_CONTAINER;
      const wchar_t* first = child_types != nullptr ? child_types[0] : nullptr;
      for (std::wstring_view leaf : kLeafChildTypes)
        if (first != nullptr && text::equals_ignore_case(first, leaf)) flags = MVXCLASSFLAG_CHILDRENMAPPED;
    }
    return set_dword_value(record.get(), kFlagsValue, flags) == ERROR_SUCCESS ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

int map_superclass(std::wstring_view server, std::wstring_view class_word_text,
                   std::wstring_view superclass) noexcept {
  try {
    const std::wstring_view word = class_word(class_word_text);
    const std::optional<std::wstring> component = record_component(server, word, true);
    if (!component) return 0;
    {
      unique_hkey record;
      if (open_or_create(component->c_str(), KEY_WRITE, record) != ERROR_SUCCESS) return 0;
      if (set_string_value(record.get(), nullptr, superclass) != ERROR_SUCCESS) return 0;
    }
    unique_hkey maps;
    bool created = false;
    if (open_or_create(kMapsComponent, KEY_READ | KEY_WRITE, maps, &created) != ERROR_SUCCESS) return 0;
    const std::wstring encoded = encode(word);
    if (!created && ::RegQueryValueExW(maps.get(), encoded.c_str(), nullptr, nullptr, nullptr, nullptr) ==
                        ERROR_SUCCESS)
      return 1;
    const DWORD assignment = created ? 1 : MapReader(maps.get()).highest(MAXDWORD, true) + 1;
    return set_dword_value(maps.get(), encoded.c_str(), assignment) == ERROR_SUCCESS ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

}  // namespace mvsup::types::custom

using namespace mvsup;
namespace custom = mvsup::types::custom;

namespace {

wchar_t g_custom_word_buffer[80];
wchar_t g_custom_display_buffer[320];

LPWSTR copy_out(LPWSTR buffer, int capacity, std::wstring_view text) noexcept {
  if (buffer != nullptr && capacity > 0) text::copy_truncated(buffer, static_cast<size_t>(capacity), text);
  return buffer;
}

}  // namespace

extern "C" {

MVXITEMTYPE WINAPI MvxGetCustomItemType(LPCWSTR text) {
  trace::CallScope scope("MvxGetCustomItemType");
  return scope.res(custom::type_from_word(text::view_or_empty(text)));
}

LPWSTR WINAPI MvxGetCustomItemTypeAsStringTS(MVXITEMTYPE type, LPWSTR buffer, int capacity) {
  trace::CallScope scope("MvxGetCustomItemTypeAsStringTS");
  return copy_out(buffer, capacity, custom::word_from_type(type));
}

LPCWSTR WINAPI MvxGetCustomItemTypeAsString(MVXITEMTYPE type) {
  trace::CallScope scope("MvxGetCustomItemTypeAsString");
  return copy_out(g_custom_word_buffer, static_cast<int>(std::size(g_custom_word_buffer)),
                  custom::word_from_type(type));
}

LPWSTR WINAPI MvxGetCustomItemTypeAsDisplayStringTS(MVXITEMTYPE type, LPWSTR buffer, int capacity) {
  trace::CallScope scope("MvxGetCustomItemTypeAsDisplayStringTS");
  return copy_out(buffer, capacity, custom::display_from_type(type));
}

LPCWSTR WINAPI MvxGetCustomItemTypeAsDisplayString(MVXITEMTYPE type) {
  trace::CallScope scope("MvxGetCustomItemTypeAsDisplayString");
  return copy_out(g_custom_display_buffer, static_cast<int>(std::size(g_custom_display_buffer)),
                  custom::display_from_type(type));
}

int WINAPI MvxCreateCustomItemType(LPCWSTR text, MVXITEMTYPE* type) {
  trace::CallScope scope("MvxCreateCustomItemType");
  return scope.res(custom::create(text::view_or_empty(text), type));
}

int WINAPI MvxSetCustomItemLabel(LPCWSTR text, LPCWSTR label) {
  trace::CallScope scope("MvxSetCustomItemLabel");
  return scope.res(custom::set_label(text::view_or_empty(text), text::view_or_empty(label)));
}

int WINAPI MvxDeleteCustomItemType(LPCWSTR text) {
  trace::CallScope scope("MvxDeleteCustomItemType");
  return scope.res(custom::remove(text::view_or_empty(text)));
}

MVXITEMTYPE WINAPI MvxGetClientDefinedCustomItemType(LPCWSTR text, LPCWSTR classKey, LPWSTR superclass,
                                                     DWORD* flags) {
  trace::CallScope scope("MvxGetClientDefinedCustomItemType");
  return scope.res(custom::client_defined(text::view_or_empty(text), text::view_or_empty(classKey), superclass, flags));
}

MVXITEMTYPE WINAPI MvxGetSuperclassItemType(LPCWSTR text, IUnknown* object) {
  trace::CallScope scope("MvxGetSuperclassItemType");
  return scope.res(custom::superclass_type(text::view_or_empty(text), object));
}

MVXITEMTYPE WINAPI MvxGetSuperclassItemTypeA(LPCSTR text, IUnknown* object) {
  trace::CallScope scope("MvxGetSuperclassItemTypeA");
  try {
    return scope.res(custom::superclass_type(text::to_wide(text::view_or_empty(text)), object));
  } catch (...) {
    return scope.res(0);
  }
}

int WINAPI MvxIsCustomContainerType(LPCWSTR text, IUnknown* object) {
  trace::CallScope scope("MvxIsCustomContainerType");
  return scope.res(custom::is_container(text::view_or_empty(text), object));
}

int WINAPI MvxMapChildItemTypes(LPCWSTR server, LPCWSTR classWord, BOOL hasChildren, const LPCWSTR* childTypes) {
  trace::CallScope scope("MvxMapChildItemTypes");
  return scope.res(custom::map_child_types(text::view_or_empty(server), text::view_or_empty(classWord),
                                           hasChildren != FALSE, childTypes));
}

MVXITEMTYPE WINAPI MvxGetSuperclassFromItemInfo(const BYTE* itemInfo) {
  trace::CallScope scope("MvxGetSuperclassFromItemInfo", reinterpret_cast<uintptr_t>(itemInfo));
  return scope.res(custom::superclass_of_item_info(itemInfo));
}

int WINAPI MvxMapSuperclassItemType(LPCWSTR server, LPCWSTR classWord, LPCWSTR superclassWord) {
  trace::CallScope scope("MvxMapSuperclassItemType");
  return scope.res(custom::map_superclass(text::view_or_empty(server), text::view_or_empty(classWord),
                                          text::view_or_empty(superclassWord)));
}

}  // extern "C"
