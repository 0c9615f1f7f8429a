// Properties and custom properties of an open item info: adding, finding,
// counting, walking and deleting them, and filling one from the server's
// text. Pure in-memory accessors are not traced; filling from text is (type
// words may be looked up in the settings).
#include <charconv>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "MvSupProperties.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "iteminfo/item_info.h"
#include "iteminfo/property_accessors.h"
#include "iteminfo/property_catalogue.h"
#include "iteminfo/value_kinds.h"
#include "time/conversions.h"
#include "time/date_text.h"
#include "types/item_types.h"

namespace mvsup::iteminfo {

namespace {

constexpr uint32_t kUnknownNameType = 1;
constexpr uint32_t kClientDataType = 2;
constexpr int kHandleType = 11;
constexpr int kDateType = 8;

bool is_c_space(wchar_t c) noexcept { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

// Decimal floating-point text as the C locale reads it, whatever locale the
// host process has set: blanks, a sign, then what from_chars takes. Text
// without a number, or out of a double's range, reads as 0.0.
double float_of(std::wstring_view text) noexcept {
  size_t i = 0;
  while (i < text.size() && is_c_space(text[i])) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == L'+' || text[i] == L'-')) negative = text[i++] == L'-';
  // from_chars reads narrow text; the number's characters are all ASCII.
  char narrow[512];
  size_t length = 0;
  for (; i < text.size() && length < sizeof narrow && text[i] > 0x20 && text[i] < 0x7F; ++i)
    narrow[length++] = static_cast<char>(text[i]);
  if (length > 0 && (narrow[0] == '+' || narrow[0] == '-')) return 0.0;  // a second sign
  double value = 0.0;
  if (std::from_chars(narrow, narrow + length, value).ec != std::errc()) value = 0.0;
  return negative ? -value : value;
}

// "title (Handle-N)": the handle between the last '(' and the last ')' after
// it, the title before that '(' without trailing blanks.
struct TitledHandle {
  std::wstring_view title;
  types::Handle handle;
};

std::optional<TitledHandle> titled_handle(std::wstring_view text) noexcept {
  const size_t open = text.rfind(L'(');
  const size_t close = text.rfind(L')');
  if (open == std::wstring_view::npos || close == std::wstring_view::npos || close < open) return std::nullopt;
  const types::Handle handle = types::parse_handle(text.substr(open + 1, close - open - 1));
  if (handle.number == 0) return std::nullopt;
  std::wstring_view title = text.substr(0, open);
  while (!title.empty() && (title.back() == L' ' || title.back() == L'\t')) title.remove_suffix(1);
  return TitledHandle{title, handle};
}

template <typename Encoding>
bool add(ItemInfo& info, Attribute& values, const Encoding& value) noexcept {
  return add_value(info, values, value) != nullptr;
}

// Converts one text by the property's type and adds it; false only when
// memory runs out (a text that converts to nothing adds nothing).
bool add_converted(ItemInfo& info, Attribute& values, uint32_t id, int type, std::wstring_view text) noexcept {
  switch (value_kind_of_type(static_cast<uint32_t>(type))) {
    case ValueKind::String:
      return add(info, values, encoding::String{text});
    case ValueKind::Integer:
      return add(info, values, encoding::Word{static_cast<uint32_t>(types::leading_decimal(text))});
    case ValueKind::Float: {
      uint32_t halves[2];
      const double number = float_of(text);
      static_assert(sizeof halves == sizeof number);
      std::memcpy(halves, &number, sizeof number);
      return add(info, values, encoding::WordPair{halves[0], halves[1]});
    }
    case ValueKind::DateTime: {
      if (type != kDateType) return true;
      if (text.empty()) return add(info, values, encoding::WordPair{0, 0});
      SYSTEMTIME system_time{};
      const bool read = id == catalogue::id::kLastModified ? time::parse_modified_date(text, system_time) != 0
                                                           : time::parse_creation_date(text, system_time);
      FILETIME file_time;
      if (!read || !time::file_time_from_system_time(system_time, file_time)) return true;
      return add(info, values, encoding::WordPair{file_time.dwHighDateTime, file_time.dwLowDateTime});
    }
    case ValueKind::Handle: {
      if (type == kHandleType) {
        const types::Handle handle = types::parse_handle(text);
        return add(info, values,
                   encoding::Handle{static_cast<uint16_t>(handle.type), static_cast<uint32_t>(handle.number), {}});
      }
      const std::optional<TitledHandle> titled = titled_handle(text);
      if (!titled) return true;
      return add(info, values,
                 encoding::Handle{static_cast<uint16_t>(titled->handle.type),
                                  static_cast<uint32_t>(titled->handle.number), titled->title});
    }
    default:
      return true;
  }
}

// Attribute 1 emptied and given the type.
bool set_type(ItemInfo& info, Property& property, uint32_t type) noexcept {
  Attribute* attribute = add_attribute(info, property, kTypeAttribute);
  if (attribute == nullptr) return false;
  delete_all_values(info, *attribute);
  return add(info, *attribute, encoding::Word{type});
}

int fill_from_text(ItemInfo& info, std::wstring_view name, std::span<const LPCWSTR> texts) noexcept {
  const uint32_t id = catalogue::id_from_name(name);
  Property* property = nullptr;
  int type = 0;
  if (id == catalogue::id::kClientData) {
    // Kept as a custom property, where the one-call accessors look for it.
    property = add_custom_property(info, accessors::kClientDataName);
    type = kClientDataType;
    if (property == nullptr || !set_type(info, *property, kClientDataType)) return 0;
  } else if (id != 0) {
    property = add_property(info, id);
    type = catalogue::type_from_id(id);
    if (property == nullptr) return 0;
  } else {
    property = add_custom_property(info, name);
    type = kUnknownNameType;
    if (property == nullptr || !set_type(info, *property, kUnknownNameType)) return 0;
  }
  Attribute* values = add_attribute(info, *property, kValuesAttribute);
  if (values == nullptr) return 0;
  delete_all_values(info, *values);
  for (const LPCWSTR text : texts)
    if (!add_converted(info, *values, id, type, text::view_or_empty(text))) return 0;
  return 1;
}

}  // namespace

}  // namespace mvsup::iteminfo

using namespace mvsup;
using namespace mvsup::iteminfo;

extern "C" {

HMVXPROP WINAPI MvxAddProperty(HMVXINFO info, DWORD propId) {
  if (info == nullptr) return nullptr;
  return to_handle(add_property(*from_handle(info), propId));
}

HMVXPROP WINAPI MvxAddCustomProperty(HMVXINFO info, LPCWSTR name) {
  if (info == nullptr || name == nullptr) return nullptr;
  return to_handle(add_custom_property(*from_handle(info), name));
}

HMVXPROP WINAPI MvxFindProperty(HMVXINFO info, DWORD propId) {
  if (info == nullptr) return nullptr;
  return to_handle(find_property(*from_handle(info), propId));
}

HMVXPROP WINAPI MvxFindCustomProperty(HMVXINFO info, LPCWSTR name) {
  if (info == nullptr || name == nullptr) return nullptr;
  return to_handle(find_custom_property(*from_handle(info), name));
}

SHORT WINAPI MvxGetPropertyCount(HMVXINFO info) {
  if (info == nullptr || !from_handle(info)->properties) return 0;
  return static_cast<SHORT>(from_handle(info)->properties->size());
}

SHORT WINAPI MvxGetCustomPropertyCount(HMVXINFO info) {
  if (info == nullptr || !from_handle(info)->custom_properties) return 0;
  return static_cast<SHORT>(from_handle(info)->custom_properties->size());
}

HMVXPOS WINAPI MvxGetHeadProperty(HMVXINFO info) {
  if (info == nullptr) return nullptr;
  return head_property(*from_handle(info));
}

HMVXPROP WINAPI MvxGetNextProperty(HMVXINFO info, DWORD* propId, HMVXPOS* position) {
  if (info == nullptr) return nullptr;
  return to_handle(next_property(*from_handle(info), propId, position));
}

HMVXPOS WINAPI MvxGetHeadCustomProperty(HMVXINFO info) {
  if (info == nullptr) return nullptr;
  return head_custom_property(*from_handle(info));
}

HMVXPROP WINAPI MvxGetNextCustomProperty(HMVXINFO info, LPWSTR* name, HMVXPOS* position) {
  if (name != nullptr) *name = nullptr;
  if (info == nullptr) return nullptr;
  auto* element = next_custom_property(*from_handle(info), position);
  if (element == nullptr) return nullptr;
  Property& property = element->second;
  if (name != nullptr) {
    // The name as stored in attribute 2, which the caller may have changed.
    const Attribute* attribute = find_attribute(property, kNameAttribute);
    if (attribute != nullptr && attribute->value_count() != 0) {
      BYTE* value = attribute->values().front();
      if (terminated_units(value_data(value), value_length(value)))
        *name = reinterpret_cast<LPWSTR>(value_data(value));
    }
  }
  return to_handle(&property);
}

void WINAPI MvxDeleteProperty(HMVXINFO info, DWORD propId) {
  if (info == nullptr) return;
  delete_property(*from_handle(info), propId);
}

void WINAPI MvxDeleteCustomProperty(HMVXINFO info, LPCWSTR name) {
  if (info == nullptr || name == nullptr) return;
  delete_custom_property(*from_handle(info), name);
}

int WINAPI AddItemPropToMvxInfo(DWORD, HMVXINFO info, LPCWSTR name, int count, const LPCWSTR* values) {
  trace::CallScope scope("AddItemPropToMvxInfo", reinterpret_cast<uintptr_t>(info));
  if (info == nullptr || name == nullptr || *name == L'\0' || count < 0 || (count > 0 && values == nullptr))
    return scope.res(0);
  return scope.res(fill_from_text(*from_handle(info), name,
                                  std::span<const LPCWSTR>(values, static_cast<size_t>(count))));
}

}  // extern "C"
