#include "iteminfo/property_catalogue.h"

#include <bit>

#include "MvSupCatalogue.h"
#include "frame/text.h"

namespace mvsup::catalogue {

namespace {

constexpr bool ids_are_one_bit_each() {
  for (const Property& property : kProperties) {
    const uint32_t bit = property.id & ~kClassMask;
    if (!std::has_single_bit(bit)) return false;
  }
  return true;
}

constexpr bool ids_are_unique() {
  for (size_t i = 0; i < std::size(kProperties); ++i)
    for (size_t j = i + 1; j < std::size(kProperties); ++j)
      if (kProperties[i].id == kProperties[j].id) return false;
  return true;
}

static_assert(ids_are_one_bit_each(), "a property id is class bits and exactly one property bit");
static_assert(ids_are_unique(), "each id appears once in the catalogue");

struct ClassBits {
  LONG item_type;
  uint32_t bits;
};

constexpr ClassBits kClassBits[] = {
    {1, 0xE0000000},  {2, 0x40000000},  {3, 0x80000000},  {5, 0x20000000},
    {6, 0xC0000000},  {7, 0xA0000000},  {8, 0xD0000000},  {9, 0x50000000},
    {10, 0x30000000}, {14, 0x10000000}, {15, 0x90000000}, {20, 0x70000000},
};

}  // namespace

uint32_t class_bits(LONG item_type) noexcept {
  for (const ClassBits& entry : kClassBits)
    if (entry.item_type == item_type) return entry.bits;
  return 0;
}

const Property* find(uint32_t property_id) noexcept {
  for (const Property& property : kProperties)
    if (property.id == property_id) return &property;
  return nullptr;
}

uint32_t id_from_name(std::wstring_view name) noexcept {
  if (name.empty()) return 0;
  for (const Property& property : kProperties)
    for (std::wstring_view accepted : property.accepted)
      if (!accepted.empty() && text::equals_ignore_case(accepted, name)) return property.id;
  return 0;
}

std::wstring_view name_from_id(uint32_t property_id) noexcept {
  const Property* property = find(property_id);
  return property ? property->name : std::wstring_view();
}

int type_from_id(uint32_t property_id) noexcept {
  const Property* property = find(property_id);
  return property ? property->type : 0;
}

uint32_t item_prop_id(uint32_t bits, LONG item_type) noexcept { return bits | class_bits(item_type); }

}  // namespace mvsup::catalogue

using namespace mvsup;

extern "C" {

DWORD WINAPI PropIdFromPropertyName(LPCWSTR name) { return catalogue::id_from_name(text::view_or_empty(name)); }

LPCWSTR WINAPI PropertyNameFromPropId(DWORD propId) {
  // Every name in the table is a literal, so its view is terminated.
  const std::wstring_view name = catalogue::name_from_id(propId);
  return name.empty() ? L"" : name.data();
}

int WINAPI PropTypeFromPropId(DWORD propId) { return catalogue::type_from_id(propId); }

DWORD WINAPI GetItemPropId(DWORD bits, LONG itemType) { return catalogue::item_prop_id(bits, itemType); }

}  // extern "C"
