// One-call accessors: each reads or writes one property of a committed item
// info. Readers walk the block in place (validating it as MvxOpen does) and
// allocate nothing unless its bodies are out of order; writers open,
// change, commit into a new block and close, and never write to the
// caller's block.
#include "iteminfo/property_accessors.h"

#include <climits>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "MvSupProperties.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "iteminfo/item_info.h"
#include "iteminfo/property_catalogue.h"
#include "iteminfo/value_kinds.h"
#include "time/conversions.h"
#include "time/local_time.h"

namespace mvsup::iteminfo::accessors {

namespace {

// ---- Finding a property in a committed block --------------------------------

bool name_equals(const EntryView& entry, std::wstring_view name) noexcept {
  if (entry.name_units != name.size()) return false;
  for (size_t i = 0; i < name.size(); ++i)
    if (load_u16(entry.name + 2 * i) != static_cast<uint16_t>(name[i])) return false;
  return true;
}

// Keeps what MvxOpen keeps: the first entry with the key or name and, in it,
// the first attribute of each id.
class PropertyFinder {
 public:
  explicit PropertyFinder(uint32_t id) : id_(id) {}
  explicit PropertyFinder(std::wstring_view name) : custom_(true), name_(name) {}

  void on_header(uint32_t) noexcept {}
  void on_section(uint16_t, uint16_t) noexcept {}
  bool on_entry(const EntryView& entry) noexcept {
    if (found_.exists || entry.custom != custom_) return false;
    if (custom_ ? entry.name == nullptr || !name_equals(entry, name_) : entry.key != id_) return false;
    found_.exists = true;
    return true;
  }
  bool on_attribute(const EntryView&, const AttributeView& attribute) noexcept {
    if (attribute.id == kTypeAttribute && !type_seen_) {
      type_seen_ = true;
      return true;
    }
    if (attribute.id == kValuesAttribute && !found_.has_values) {
      found_.has_values = true;
      found_.value_count = attribute.value_count;
      return true;
    }
    return false;
  }
  void on_value(const AttributeView& attribute, const ValueView& value) noexcept {
    if (value.index != 0) return;
    (attribute.id == kTypeAttribute ? found_.type_value : found_.first_value) = value.block;
  }

  const CommittedProperty& found() const noexcept { return found_; }

 private:
  bool custom_ = false;
  uint32_t id_ = 0;
  std::wstring_view name_;
  bool type_seen_ = false;
  CommittedProperty found_;
};

std::optional<CommittedProperty> find(const BYTE* block, PropertyFinder& finder) noexcept {
  if (block == nullptr) return CommittedProperty{};
  try {
    if (walk_committed(block, finder)) return std::nullopt;
  } catch (...) {  // the walk itself never throws; the finder does not either
    return std::nullopt;
  }
  return finder.found();
}

// ---- Reading values -----------------------------------------------------------

uint32_t length_of(const BYTE* value) noexcept { return load_u32(value); }
const BYTE* data_of(const BYTE* value) noexcept { return value + kLengthSize; }

// The string at data offset `offset` when its terminator lies inside the value.
LPWSTR terminated_text(const BYTE* value, uint32_t offset) noexcept {
  const uint32_t length = length_of(value);
  if (offset > length || !terminated_units(data_of(value) + offset, length - offset)) return nullptr;
  return reinterpret_cast<LPWSTR>(const_cast<BYTE*>(data_of(value) + offset));
}

// Readers hand out "" for empty answers; it lives as long as any block.
LPWSTR empty_text() noexcept { return const_cast<LPWSTR>(L""); }

struct HandleValue {
  WORD type;
  DWORD number;
  LPWSTR title;  // terminated; possibly at an odd address
  size_t title_units;

  bool title_equals(std::wstring_view text) const noexcept {
    if (text.size() != title_units) return false;
    for (size_t i = 0; i < title_units; ++i)
      if (load_u16(reinterpret_cast<const BYTE*>(title) + 2 * i) != static_cast<uint16_t>(text[i])) return false;
    return true;
  }
};

std::optional<HandleValue> handle_of(const BYTE* value) noexcept {
  if (value == nullptr || length_of(value) < kHandleTitleOffset) return std::nullopt;
  const BYTE* title = data_of(value) + kHandleTitleOffset;
  const std::optional<size_t> units = terminated_units(title, length_of(value) - kHandleTitleOffset);
  if (!units) return std::nullopt;
  return HandleValue{load_u16(data_of(value)), load_u32(data_of(value) + kHandleNumberOffset),
                     reinterpret_cast<LPWSTR>(const_cast<BYTE*>(title)), *units};
}

std::optional<FILETIME> date_of(const BYTE* value) noexcept {
  if (value == nullptr || length_of(value) < 8) return std::nullopt;
  // Stored high half first.
  return FILETIME{load_u32(data_of(value) + 4), load_u32(data_of(value))};
}

// The first 4 data bytes; bytes past a shorter value read as 0.
LONG first_four_bytes(const BYTE* value) noexcept {
  BYTE bytes[4] = {};
  std::memcpy(bytes, data_of(value), length_of(value) < 4 ? length_of(value) : 4);
  return static_cast<LONG>(load_u32(bytes));
}

bool is_zero(const FILETIME& file_time) noexcept {
  return file_time.dwHighDateTime == 0 && file_time.dwLowDateTime == 0;
}

// The stored date as a SYSTEMTIME, in local time unless keep_gmt; 0/0 is the
// all-zero SYSTEMTIME.
bool system_time_of(const FILETIME& file_time, bool keep_gmt, SYSTEMTIME& out) noexcept {
  if (is_zero(file_time)) {
    out = SYSTEMTIME{};
    return true;
  }
  SYSTEMTIME utc;
  if (!::FileTimeToSystemTime(&file_time, &utc)) return false;
  if (keep_gmt) {
    out = utc;
    return true;
  }
  return time::gmt_to_local(utc, out);
}

bool ole_date_of(const FILETIME& file_time, bool keep_gmt, DATE& out) noexcept {
  SYSTEMTIME system_time;
  if (!system_time_of(file_time, keep_gmt, system_time)) return false;
  if (system_time.wYear == 0 && system_time.wMonth == 0 && system_time.wDay == 0 && system_time.wHour == 0 &&
      system_time.wMinute == 0 && system_time.wSecond == 0 && system_time.wMilliseconds == 0) {
    out = 0.0;
    return true;
  }
  return time::ole_date_from_system_time(system_time, out);
}

// The stored form of an OLE date taken as UTC; 0.0 is 0/0.
std::optional<FILETIME> file_time_of(DATE date) noexcept {
  if (date == 0.0) return FILETIME{0, 0};
  SYSTEMTIME system_time;
  FILETIME file_time;
  if (!time::system_time_from_ole_date(date, system_time) || !time::file_time_from_system_time(system_time, file_time))
    return std::nullopt;
  return file_time;
}

// ---- Text as a number, for MvxGetCustomIntegerProp ------------------------------

// UTF-16 text at a possibly odd address, read unit by unit.
class UnitText {
 public:
  UnitText(const BYTE* bytes, size_t units) : bytes_(bytes), units_(units) {}
  size_t size() const noexcept { return units_; }
  wchar_t operator[](size_t i) const noexcept { return static_cast<wchar_t>(load_u16(bytes_ + 2 * i)); }

 private:
  const BYTE* bytes_;
  size_t units_;
};

bool is_c_space(wchar_t c) noexcept { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

int hex_digit(wchar_t c) noexcept {
  if (c >= L'0' && c <= L'9') return c - L'0';
  if (c >= L'a' && c <= L'f') return c - L'a' + 10;
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  return -1;
}

// wcstol(text, nullptr, 10): white space, a sign, digits; clamped to a LONG.
LONG decimal_of(const UnitText& text) noexcept {
  size_t i = 0;
  while (i < text.size() && is_c_space(text[i])) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == L'+' || text[i] == L'-')) negative = text[i++] == L'-';
  long long value = 0;
  for (; i < text.size() && text[i] >= L'0' && text[i] <= L'9'; ++i)
    if (value <= static_cast<long long>(LONG_MAX) + 1) value = value * 10 + (text[i] - L'0');
  if (negative) value = -value;
  if (value > LONG_MAX) return LONG_MAX;
  if (value < LONG_MIN) return LONG_MIN;
  return static_cast<LONG>(value);
}

// The digits after "0x", unsigned, clamped to 0xFFFFFFFF.
LONG hexadecimal_of(const UnitText& text) noexcept {
  unsigned long long value = 0;
  for (size_t i = 2; i < text.size() && hex_digit(text[i]) >= 0; ++i) {
    value = value * 16 + static_cast<unsigned>(hex_digit(text[i]));
    if (value > UINT32_MAX) value = UINT32_MAX + 1ULL;
  }
  return static_cast<LONG>(static_cast<uint32_t>(value > UINT32_MAX ? UINT32_MAX : value));
}

LONG integer_of_text(const BYTE* value) noexcept {
  const uint32_t length = length_of(value);
  const std::optional<size_t> units = terminated_units(data_of(value), length);
  const UnitText text(data_of(value), units ? *units : length / 2);
  if (text.size() >= 2 && text[0] == L'0' && text[1] == L'x') return hexadecimal_of(text);
  const LONG decimal = decimal_of(text);
  if (decimal == 0 && (text.size() == 0 || text[0] != L'0')) return first_four_bytes(value);
  return decimal;
}

// ---- Writing ------------------------------------------------------------------

struct CloseItemInfo {
  void operator()(ItemInfo* info) const noexcept { close_item_info(info); }
};
using OpenedItemInfo = std::unique_ptr<ItemInfo, CloseItemInfo>;

// A change that wrote nothing: the writer keeps the caller's block.
constexpr HRESULT kUnchanged = MAKE_HRESULT(SEVERITY_SUCCESS, FACILITY_ITF, 0x200);

// Opens *committed, applies change (which answers S_OK to have the result
// committed), commits into a new block that replaces *committed, and closes.
template <typename Change>
HRESULT rewrite(BYTE** committed, Change&& change) noexcept {
  if (committed == nullptr) return E_POINTER;
  const OpenedItemInfo info(open_item_info(*committed));
  if (!info) return kCannotOpen;
  const HRESULT hr = change(*info);
  if (hr != S_OK) return hr;
  return update_item_info(*info, committed);
}

// Attribute `id` of the property emptied and given one value.
template <typename Encoding>
HRESULT set_only_value(ItemInfo& info, Property* property, uint32_t id, const Encoding& value) noexcept {
  if (property == nullptr) return E_OUTOFMEMORY;
  Attribute* attribute = add_attribute(info, *property, id);
  if (attribute == nullptr) return E_OUTOFMEMORY;
  delete_all_values(info, *attribute);
  return add_value(info, *attribute, value) != nullptr ? S_OK : E_OUTOFMEMORY;
}

template <typename Encoding>
HRESULT set_property_value(DWORD id, const Encoding& value, BYTE** committed) noexcept {
  return rewrite(committed,
                 [&](ItemInfo& info) { return set_only_value(info, add_property(info, id), kValuesAttribute, value); });
}

// A custom property with its type in attribute 1 and one value in 16.
template <typename Encoding>
HRESULT set_custom_value(std::wstring_view name, uint32_t type, const Encoding& value, BYTE** committed) noexcept {
  return rewrite(committed, [&](ItemInfo& info) {
    Property* property = add_custom_property(info, name);
    if (const HRESULT hr = set_only_value(info, property, kTypeAttribute, encoding::Word{type}); hr != S_OK)
      return hr;
    return set_only_value(info, property, kValuesAttribute, value);
  });
}

encoding::WordPair stored(const FILETIME& file_time) noexcept {
  return {file_time.dwHighDateTime, file_time.dwLowDateTime};
}

constexpr uint32_t kHandleValuedIds[] = {catalogue::id::kHandle, catalogue::id::kParents,
                                         catalogue::id::kEntityOwner, catalogue::id::kModifiedBy,
                                         catalogue::id::kLockDiscovery};

bool is_handle_valued(uint32_t id) noexcept {
  for (const uint32_t candidate : kHandleValuedIds)
    if (candidate == id) return true;
  return false;
}

constexpr uint32_t kStringPropertyType = 1;
constexpr uint32_t kClientDataType = 2;
constexpr uint32_t kIntegerPropertyType = 5;
constexpr uint32_t kDatePropertyType = 8;
constexpr DWORD kHandleFields = MVX_HANDLE_TYPE | MVX_HANDLE_NUMBER | MVX_HANDLE_TITLE;

bool is_custom_string_type(DWORD type) noexcept {
  return value_kind_of_type(type) == ValueKind::String;
}

}  // namespace

std::optional<CommittedProperty> find_property(const BYTE* block, uint32_t id) noexcept {
  PropertyFinder finder(id);
  return find(block, finder);
}

std::optional<CommittedProperty> find_custom_property(const BYTE* block, std::wstring_view name) noexcept {
  PropertyFinder finder(name);
  return find(block, finder);
}

std::optional<WORD> header_item_type(const BYTE* block) noexcept {
  if (block == nullptr || load_u32(block) < kHeaderSize) return std::nullopt;
  return load_u16(block + header::kItemType);
}

HRESULT custom_string(const BYTE* block, std::wstring_view name, LPWSTR* text) noexcept {
  const std::optional<CommittedProperty> found = find_custom_property(block, name);
  if (!found) return E_UNEXPECTED;
  if (!found->exists || !found->has_values) return E_FAIL;
  if (found->first_value == nullptr) {
    if (text != nullptr) *text = empty_text();
    return S_OK;
  }
  LPWSTR string = terminated_text(found->first_value, 0);
  if (string == nullptr) return E_FAIL;
  if (text != nullptr) *text = string;
  return S_OK;
}

namespace {

// ---- The accessors, untraced ------------------------------------------------------

int get_integer(const BYTE* block, DWORD id, LONG* value) noexcept {
  const std::optional<CommittedProperty> found = find_property(block, id);
  if (!found || found->first_value == nullptr || length_of(found->first_value) < 4) return 1;
  if (value != nullptr) *value = first_four_bytes(found->first_value);
  return 0;
}

int get_string(const BYTE* block, DWORD id, LPWSTR* text) noexcept {
  if (is_handle_valued(id)) {
    const std::optional<CommittedProperty> found = find_property(block, id);
    if (!found) return 1;
    const std::optional<HandleValue> handle = handle_of(found->first_value);
    if (!handle) return 1;
    if (text != nullptr) *text = handle->number == MVX_HANDLE_CLEARED_NUMBER ? empty_text() : handle->title;
    return 0;
  }
  const std::optional<CommittedProperty> found =
      id == catalogue::id::kClientData ? find_custom_property(block, kClientDataName) : find_property(block, id);
  if (!found || !found->has_values) return 1;
  // An attribute without values reads as the empty string, deliberately.
  LPWSTR string = found->first_value ? terminated_text(found->first_value, 0) : empty_text();
  if (string == nullptr) return 1;
  if (text != nullptr) *text = string;
  return 0;
}

std::optional<FILETIME> first_date(const BYTE* block, DWORD id) noexcept {
  const std::optional<CommittedProperty> found = find_property(block, id);
  return found ? date_of(found->first_value) : std::nullopt;
}

int get_date_as_system_time(const BYTE* block, DWORD id, SYSTEMTIME* out, bool keep_gmt) noexcept {
  const std::optional<FILETIME> file_time = first_date(block, id);
  SYSTEMTIME system_time;
  if (!file_time || !system_time_of(*file_time, keep_gmt, system_time)) return 1;
  if (out != nullptr) *out = system_time;
  return 0;
}

int get_date(const BYTE* block, DWORD id, DATE* out, bool keep_gmt) noexcept {
  const std::optional<FILETIME> file_time = first_date(block, id);
  DATE date;
  if (!file_time || !ole_date_of(*file_time, keep_gmt, date)) return 1;
  if (out != nullptr) *out = date;
  return 0;
}

// The first selected handle-valued property that holds a handle, walked in
// the fixed order. nullopt for a block that cannot be opened.
struct SelectedHandle {
  uint32_t id = 0;
  std::optional<HandleValue> handle;
};

template <typename Selects>
std::optional<SelectedHandle> first_selected_handle(const BYTE* block, Selects&& selects) noexcept {
  for (const uint32_t id : kHandleValuedIds) {
    if (!selects(id)) continue;
    const std::optional<CommittedProperty> found = find_property(block, id);
    if (!found) return std::nullopt;
    if (std::optional<HandleValue> handle = handle_of(found->first_value)) return SelectedHandle{id, handle};
  }
  return SelectedHandle{};
}

int get_handle(const BYTE* block, DWORD mask, DWORD* id, MVXITEMTYPE* type, DWORD* number, LPWSTR* title) noexcept {
  const std::optional<SelectedHandle> selected =
      first_selected_handle(block, [mask](uint32_t candidate) { return (candidate & mask) != 0; });
  if (!selected || !selected->handle) return 1;
  const HandleValue& handle = *selected->handle;
  const bool cleared = handle.number == MVX_HANDLE_CLEARED_NUMBER;
  if (id != nullptr) *id = selected->id;
  if (type != nullptr) *type = handle.type;
  if (number != nullptr) *number = cleared ? 0 : handle.number;
  if (title != nullptr) *title = cleared ? empty_text() : handle.title;
  return 0;
}

// The first handle's fields that flags names, compared and, when any
// differs, replaced. The value gets a new block (the old one's bytes may
// lie in the caller's block, which is not written to); the property's
// other values are kept in their order.
HRESULT modify_handle(ItemInfo& info, uint32_t id, DWORD flags, const encoding::Handle& wanted) noexcept {
  Property* property = find_property(info, id);
  Attribute* values = property ? find_attribute(*property, kValuesAttribute) : nullptr;
  if (values == nullptr || values->value_count() == 0) return E_FAIL;  // cannot happen: the walk found it
  const ValueList& list = values->values();
  const std::optional<HandleValue> old = handle_of(list.front());
  if (!old) return E_FAIL;
  const bool same_type = !(flags & MVX_HANDLE_TYPE) || wanted.type == old->type;
  const bool same_number = !(flags & MVX_HANDLE_NUMBER) || wanted.number == old->number;
  const bool same_title = !(flags & MVX_HANDLE_TITLE) || old->title_equals(wanted.title);
  if (same_type && same_number && same_title) return kUnchanged;
  const encoding::Handle changed{(flags & MVX_HANDLE_TYPE) ? wanted.type : old->type,
                                 (flags & MVX_HANDLE_NUMBER) ? wanted.number : old->number,
                                 (flags & MVX_HANDLE_TITLE) ? wanted.title
                                                            : std::wstring_view(old->title, old->title_units)};

  // Copies first: deleting frees the heap blocks they are made from.
  std::vector<BYTE*> copies;
  const auto free_copies = [&copies]() noexcept {
    for (BYTE* copy : copies) free_value_block(copy);
    copies.clear();
  };
  try {
    copies.reserve(list.size());
    copies.push_back(make_value_block(changed));
    for (size_t i = 1; i < list.size(); ++i) {
      const BYTE* value = list[i];
      copies.push_back(make_value_block(encoding::Binary{data_of(value), length_of(value)}));
    }
  } catch (...) {
    free_copies();
    return E_OUTOFMEMORY;
  }
  for (BYTE* copy : copies) {
    if (copy == nullptr) {
      free_copies();
      return E_OUTOFMEMORY;
    }
  }
  delete_all_values(info, *values);
  for (size_t i = 0; i < copies.size(); ++i) {
    if (append_value(info, *values, copies[i]) == nullptr) {  // frees copies[i]
      for (size_t j = i + 1; j < copies.size(); ++j) free_value_block(copies[j]);
      return E_OUTOFMEMORY;
    }
  }
  return S_OK;
}

HRESULT modify_handle_property(DWORD mask, DWORD class_mask, DWORD* id_out, DWORD flags, MVXITEMTYPE type,
                               DWORD number, std::wstring_view title, BYTE** committed) noexcept {
  if (committed == nullptr) return E_POINTER;
  if ((flags & kHandleFields) == 0 || (flags & ~kHandleFields) != 0) return E_INVALIDARG;
  const std::optional<SelectedHandle> selected = first_selected_handle(*committed, [&](uint32_t candidate) {
    return (candidate & (candidate <= 0x0FFFFFFF ? mask : class_mask)) != 0;
  });
  if (!selected || !selected->handle) return kCannotOpen;
  if (id_out != nullptr) *id_out = selected->id;
  const encoding::Handle wanted{static_cast<uint16_t>(type), number, title};
  const HRESULT hr =
      rewrite(committed, [&](ItemInfo& info) { return modify_handle(info, selected->id, flags, wanted); });
  return hr == kUnchanged ? S_OK : hr;
}

HRESULT put_string(DWORD id, std::wstring_view text, BYTE** committed) noexcept {
  if (id != catalogue::id::kClientData) return set_property_value(id, encoding::String{text}, committed);
  return set_custom_value(kClientDataName, kClientDataType, encoding::String{text}, committed);
}

HRESULT put_date(DWORD id, DATE date, BYTE** committed) noexcept {
  if (committed == nullptr) return E_POINTER;
  const std::optional<FILETIME> file_time = file_time_of(date);
  if (!file_time) return E_INVALIDARG;
  return set_property_value(id, stored(*file_time), committed);
}

HRESULT put_handle(DWORD id, MVXITEMTYPE type, DWORD number, std::wstring_view title, BYTE** committed) noexcept {
  return set_property_value(id, encoding::Handle{static_cast<uint16_t>(type), number, title}, committed);
}

HRESULT put_custom_string(std::wstring_view name, std::wstring_view text, DWORD type, BYTE** committed) noexcept {
  if (type == 0) type = kStringPropertyType;
  if (!is_custom_string_type(type)) return E_INVALIDARG;
  return set_custom_value(name, type, encoding::String{text}, committed);
}

HRESULT put_custom_date(std::wstring_view name, DATE date, BYTE** committed) noexcept {
  if (committed == nullptr) return E_POINTER;
  const std::optional<FILETIME> file_time = file_time_of(date);
  if (!file_time) return E_INVALIDARG;
  return set_custom_value(name, kDatePropertyType, stored(*file_time), committed);
}

HRESULT delete_property_of(DWORD id, BYTE** committed) noexcept {
  return rewrite(committed, [id](ItemInfo& info) {
    delete_property(info, id);
    if (id == catalogue::id::kClientData) delete_custom_property(info, kClientDataName);
    return S_OK;
  });
}

HRESULT has_property(const BYTE* block, DWORD id) noexcept {
  const std::optional<CommittedProperty> found =
      id == catalogue::id::kClientData ? find_custom_property(block, kClientDataName) : find_property(block, id);
  if (!found) return E_UNEXPECTED;
  return found->exists ? S_OK : S_FALSE;
}

HRESULT clear_property(DWORD id, BYTE** committed) noexcept {
  const int type = catalogue::type_from_id(id);
  switch (value_kind_of_type(static_cast<uint32_t>(type))) {
    case ValueKind::String:
      return put_string(id, {}, committed);
    case ValueKind::Integer:
      return set_property_value(id, encoding::Word{0}, committed);
    case ValueKind::DateTime:
      return put_date(id, 0.0, committed);
    case ValueKind::Handle: {
      const bool classless = id <= 0x0FFFFFFF;
      const HRESULT hr = modify_handle_property(classless ? id : 0, classless ? 0 : id, nullptr, MVX_HANDLE_NUMBER, 0,
                                                MVX_HANDLE_CLEARED_NUMBER, {}, committed);
      if (hr != kCannotOpen) return hr;
      return put_handle(id, 0, 0, {}, committed);
    }
    default:
      return 1;
  }
}

HRESULT clear_custom_property(std::wstring_view name, DWORD type, BYTE** committed) noexcept {
  switch (value_kind_of_type(type)) {
    case ValueKind::Integer:
      return set_custom_value(name, kIntegerPropertyType, encoding::Word{0}, committed);
    case ValueKind::DateTime:
      return set_custom_value(name, kDatePropertyType, encoding::WordPair{0, 0}, committed);
    default:
      return set_custom_value(name, type == 0 ? kStringPropertyType : type, encoding::String{}, committed);
  }
}

std::optional<FILETIME> first_custom_date(const BYTE* block, std::wstring_view name, HRESULT& hr) noexcept {
  const std::optional<CommittedProperty> found = find_custom_property(block, name);
  if (!found) {
    hr = E_UNEXPECTED;
    return std::nullopt;
  }
  const std::optional<FILETIME> file_time = date_of(found->first_value);
  hr = file_time ? S_OK : E_FAIL;
  return file_time;
}

HRESULT get_custom_integer(const BYTE* block, std::wstring_view name, LONG* value) noexcept {
  const std::optional<CommittedProperty> found = find_custom_property(block, name);
  if (!found) return E_UNEXPECTED;
  if (found->first_value == nullptr) return E_FAIL;
  const bool text = found->type_value != nullptr && length_of(found->type_value) >= 4 &&
                    load_u32(data_of(found->type_value)) == kStringPropertyType;
  const LONG result = text ? integer_of_text(found->first_value) : first_four_bytes(found->first_value);
  if (value != nullptr) *value = result;
  return S_OK;
}

template <typename T>
void clear(T* out) noexcept {
  if (out != nullptr) *out = T{};
}

}  // namespace

}  // namespace mvsup::iteminfo::accessors

using namespace mvsup;
using namespace mvsup::iteminfo;
using namespace mvsup::iteminfo::accessors;

namespace {

uintptr_t id_of(const void* block) noexcept { return reinterpret_cast<uintptr_t>(block); }
uintptr_t id_of(BYTE* const* committed) noexcept { return committed ? id_of(*committed) : 0; }

}  // namespace

extern "C" {

int WINAPI MvxGetIntegerPropValue(const BYTE* itemInfo, DWORD propId, LONG* value) {
  trace::CallScope scope("MvxGetIntegerPropValue", id_of(itemInfo));
  clear(value);
  return scope.res(get_integer(itemInfo, propId, value));
}

int WINAPI MvxGetStringPropValue(const BYTE* itemInfo, DWORD propId, LPWSTR* text) {
  trace::CallScope scope("MvxGetStringPropValue", id_of(itemInfo));
  clear(text);
  return scope.res(get_string(itemInfo, propId, text));
}

int WINAPI MvxGetDatePropValueAsSystemTime(const BYTE* itemInfo, DWORD propId, SYSTEMTIME* systemTime,
                                           BOOL keepGmt) {
  trace::CallScope scope("MvxGetDatePropValueAsSystemTime", id_of(itemInfo));
  clear(systemTime);
  return scope.res(get_date_as_system_time(itemInfo, propId, systemTime, keepGmt != FALSE));
}

int WINAPI MvxGetDatePropValue(const BYTE* itemInfo, DWORD propId, DATE* date, BOOL keepGmt) {
  trace::CallScope scope("MvxGetDatePropValue", id_of(itemInfo));
  clear(date);
  return scope.res(get_date(itemInfo, propId, date, keepGmt != FALSE));
}

int WINAPI MvxGetMvHandlePropValue(const BYTE* itemInfo, DWORD mask, DWORD* propId, MVXITEMTYPE* type,
                                   DWORD* number, LPWSTR* title) {
  trace::CallScope scope("MvxGetMvHandlePropValue", id_of(itemInfo));
  clear(propId);
  clear(type);
  clear(number);
  clear(title);
  return scope.res(get_handle(itemInfo, mask, propId, type, number, title));
}

HRESULT WINAPI MvxGetCustomStringProp(const BYTE* itemInfo, LPCWSTR name, LPWSTR* text) {
  trace::CallScope scope("MvxGetCustomStringProp", id_of(itemInfo));
  clear(text);
  if (name == nullptr) return scope.hr(E_POINTER);
  return scope.hr(custom_string(itemInfo, name, text));
}

HRESULT WINAPI MvxGetCustomIntegerProp(const BYTE* itemInfo, LPCWSTR name, LONG* value) {
  trace::CallScope scope("MvxGetCustomIntegerProp", id_of(itemInfo));
  trace::line(L"PropName: %ls\n", name ? name : L"(null)");
  clear(value);
  if (name == nullptr) return scope.hr(E_POINTER);
  return scope.hr(get_custom_integer(itemInfo, name, value));
}

HRESULT WINAPI MvxGetCustomFileTimeProp(const BYTE* itemInfo, LPCWSTR name, FILETIME* fileTime) {
  trace::CallScope scope("MvxGetCustomFileTimeProp", id_of(itemInfo));
  clear(fileTime);
  if (name == nullptr) return scope.hr(E_POINTER);
  HRESULT hr = S_OK;
  const std::optional<FILETIME> stored_time = first_custom_date(itemInfo, name, hr);
  if (stored_time && fileTime != nullptr) *fileTime = *stored_time;
  return scope.hr(hr);
}

HRESULT WINAPI MvxGetCustomSystemTimeProp(const BYTE* itemInfo, LPCWSTR name, SYSTEMTIME* systemTime,
                                          BOOL keepGmt) {
  trace::CallScope scope("MvxGetCustomSystemTimeProp", id_of(itemInfo));
  clear(systemTime);
  if (name == nullptr) return scope.hr(E_POINTER);
  HRESULT hr = S_OK;
  const std::optional<FILETIME> stored_time = first_custom_date(itemInfo, name, hr);
  SYSTEMTIME converted;
  if (!stored_time) return scope.hr(hr);
  if (!system_time_of(*stored_time, keepGmt != FALSE, converted)) return scope.hr(E_FAIL);
  if (systemTime != nullptr) *systemTime = converted;
  return scope.hr(S_OK);
}

HRESULT WINAPI MvxGetCustomDateProp(const BYTE* itemInfo, LPCWSTR name, DATE* date, BOOL keepGmt) {
  trace::CallScope scope("MvxGetCustomDateProp", id_of(itemInfo));
  clear(date);
  if (name == nullptr) return scope.hr(E_POINTER);
  HRESULT hr = S_OK;
  const std::optional<FILETIME> stored_time = first_custom_date(itemInfo, name, hr);
  DATE converted;
  if (!stored_time) return scope.hr(hr);
  if (!ole_date_of(*stored_time, keepGmt != FALSE, converted)) return scope.hr(E_FAIL);
  if (date != nullptr) *date = converted;
  return scope.hr(S_OK);
}

HRESULT WINAPI MvxHasProp(const BYTE* itemInfo, DWORD propId) {
  trace::CallScope scope("MvxHasProp", id_of(itemInfo));
  return scope.hr(has_property(itemInfo, propId));
}

HRESULT WINAPI MvxHasCustomProp(const BYTE* itemInfo, LPCWSTR name) {
  trace::CallScope scope("MvxHasCustomProp", id_of(itemInfo));
  if (name == nullptr) return scope.hr(E_POINTER);
  const std::optional<CommittedProperty> found = find_custom_property(itemInfo, name);
  return scope.hr(!found ? E_UNEXPECTED : found->exists ? S_OK : S_FALSE);
}

HRESULT WINAPI MvxPutIntegerPropValue(DWORD propId, LONG value, BYTE** itemInfo) {
  trace::CallScope scope("MvxPutIntegerPropValue", id_of(itemInfo));
  return scope.hr(set_property_value(propId, encoding::Word{static_cast<uint32_t>(value)}, itemInfo));
}

HRESULT WINAPI MvxPutStringPropValue(DWORD propId, LPCWSTR text, BYTE** itemInfo) {
  trace::CallScope scope("MvxPutStringPropValue", id_of(itemInfo));
  return scope.hr(put_string(propId, text::view_or_empty(text), itemInfo));
}

HRESULT WINAPI MvxPutDatePropValue(DWORD propId, DATE date, BYTE** itemInfo) {
  trace::CallScope scope("MvxPutDatePropValue", id_of(itemInfo));
  return scope.hr(put_date(propId, date, itemInfo));
}

HRESULT WINAPI MvxPutMvHandlePropValue(DWORD propId, MVXITEMTYPE type, DWORD number, LPCWSTR title,
                                       BYTE** itemInfo) {
  trace::CallScope scope("MvxPutMvHandlePropValue", id_of(itemInfo));
  return scope.hr(put_handle(propId, type, number, text::view_or_empty(title), itemInfo));
}

HRESULT WINAPI MvxModifyMvHandlePropValue(DWORD mask, DWORD classMask, DWORD* propId, DWORD flags,
                                          MVXITEMTYPE type, DWORD number, LPCWSTR title, BYTE** itemInfo) {
  trace::CallScope scope("MvxModifyMvHandlePropValue", id_of(itemInfo));
  clear(propId);
  return scope.hr(
      modify_handle_property(mask, classMask, propId, flags, type, number, text::view_or_empty(title), itemInfo));
}

HRESULT WINAPI MvxPutCustomStringProp(LPCWSTR name, LPCWSTR text, DWORD type, BYTE** itemInfo) {
  trace::CallScope scope("MvxPutCustomStringProp", id_of(itemInfo));
  if (name == nullptr || itemInfo == nullptr) return scope.hr(E_POINTER);
  return scope.hr(put_custom_string(name, text::view_or_empty(text), type, itemInfo));
}

HRESULT WINAPI MvxPutCustomIntegerProp(LPCWSTR name, LONG value, BYTE** itemInfo) {
  trace::CallScope scope("MvxPutCustomIntegerProp", id_of(itemInfo));
  if (name == nullptr) return scope.hr(E_POINTER);
  return scope.hr(set_custom_value(name, kIntegerPropertyType, encoding::Word{static_cast<uint32_t>(value)}, itemInfo));
}

HRESULT WINAPI MvxPutCustomFileTimeProp(LPCWSTR name, const FILETIME* fileTime, BYTE** itemInfo) {
  trace::CallScope scope("MvxPutCustomFileTimeProp", id_of(itemInfo));
  if (name == nullptr || fileTime == nullptr) return scope.hr(E_POINTER);
  return scope.hr(set_custom_value(name, kDatePropertyType, stored(*fileTime), itemInfo));
}

HRESULT WINAPI MvxPutCustomSystemTimeProp(LPCWSTR name, const SYSTEMTIME* systemTime, BYTE** itemInfo) {
  trace::CallScope scope("MvxPutCustomSystemTimeProp", id_of(itemInfo));
  if (name == nullptr || systemTime == nullptr || itemInfo == nullptr) return scope.hr(E_POINTER);
  FILETIME file_time;
  if (!time::file_time_from_system_time(*systemTime, file_time)) return scope.hr(E_INVALIDARG);
  return scope.hr(set_custom_value(name, kDatePropertyType, stored(file_time), itemInfo));
}

HRESULT WINAPI MvxPutCustomDateProp(LPCWSTR name, DATE date, BYTE** itemInfo) {
  trace::CallScope scope("MvxPutCustomDateProp", id_of(itemInfo));
  if (name == nullptr) return scope.hr(E_POINTER);
  return scope.hr(put_custom_date(name, date, itemInfo));
}

HRESULT WINAPI MvxDeleteProp(DWORD propId, BYTE** itemInfo) {
  trace::CallScope scope("MvxDeleteProp", id_of(itemInfo));
  trace::line("PropId: %08lX\n", static_cast<unsigned long>(propId));
  return scope.hr(delete_property_of(propId, itemInfo));
}

HRESULT WINAPI MvxDeleteCustomProp(LPCWSTR name, BYTE** itemInfo) {
  trace::CallScope scope("MvxDeleteCustomProp", id_of(itemInfo));
  if (name == nullptr) return scope.hr(E_POINTER);
  const std::wstring_view key(name);
  return scope.hr(rewrite(itemInfo, [key](iteminfo::ItemInfo& info) {
    iteminfo::delete_custom_property(info, key);
    return S_OK;
  }));
}

HRESULT WINAPI MvxClearProp(DWORD propId, BYTE** itemInfo) {
  trace::CallScope scope("MvxClearProp", id_of(itemInfo));
  return scope.hr(clear_property(propId, itemInfo));
}

HRESULT WINAPI MvxClearCustomProp(LPCWSTR name, DWORD type, BYTE** itemInfo) {
  trace::CallScope scope("MvxClearCustomProp", id_of(itemInfo));
  if (name == nullptr) return scope.hr(E_POINTER);
  return scope.hr(clear_custom_property(name, type, itemInfo));
}

}  // extern "C"
