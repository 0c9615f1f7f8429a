// The open item info and the primitives that every member function goes
// through. The commit size is kept exact here and nowhere else: each
// primitive changes it by what it adds to or removes from a commit, and
// marks the property whose layout it changes. Change attributes and values
// only through these primitives.
//
// Self-contained (standard library, <windows.h> and the public header) and
// inline: the property layer builds on these, and the tests and benchmarks
// reach properties through them while no property function is exported.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "MvSupItemInfo.h"
#include "block_format.h"
#include "value_blocks.h"

namespace mvsup::iteminfo {

// References to value blocks, in list order.
using ValueList = std::vector<BYTE*>;

struct Property;

class Attribute {
 public:
  explicit Attribute(Property* owner) noexcept : owner(owner) {}

  // The value references, brought up to date first (see Property::shift).
  ValueList& values() noexcept;
  const ValueList& values() const noexcept;
  size_t value_count() const noexcept { return values_.size(); }

  Property* owner;  // told of every change to the values

 private:
  friend struct Property;
  ValueList values_;
};
// Keys are ids compared as signed 32-bit.
using AttributeMap = std::map<int32_t, Attribute>;

struct Property {
  AttributeMap attributes;
  // Offset and length of this property's body in the item info's buffer
  // while it is still byte for byte what a commit would write (0: changed
  // since, or never there). A commit then copies the body whole.
  uint32_t unchanged_body = 0;
  uint32_t unchanged_length = 0;
  // A commit that copies the body whole moves the body's values by this many
  // bytes; the references are moved the next time they are looked at rather
  // than one by one in every commit. All of them lie inside the body then.
  uintptr_t shift = 0;
  // Moves of the whole item info (ItemInfo::moved, which this points to)
  // apply the same way; moved_seen is how much of them the references have.
  const uintptr_t* item_moved = nullptr;
  uintptr_t moved_seen = 0;

  void settle() noexcept {
    uintptr_t total = shift;
    if (item_moved != nullptr) {
      total += *item_moved - moved_seen;
      moved_seen = *item_moved;
    }
    shift = 0;
    if (total == 0) return;
    for (auto& [id, attribute] : attributes)
      for (BYTE*& value : attribute.values_) value = reinterpret_cast<BYTE*>(reinterpret_cast<uintptr_t>(value) + total);
  }
};

inline ValueList& Attribute::values() noexcept {
  if (owner != nullptr) owner->settle();
  return values_;
}
inline const ValueList& Attribute::values() const noexcept {
  if (owner != nullptr) owner->settle();
  return values_;
}

using PropertyMap = std::map<int32_t, Property>;
// Plain code-unit order of the names: case-sensitive, no locale.
using CustomPropertyMap = std::map<std::wstring, Property, std::less<>>;

template <typename Map>
struct MapCursor {
  typename Map::iterator current{};
  typename Map::iterator end{};
};

// Index-based, so that values deleted during an iteration end it instead of
// reading freed storage.
struct ValueCursor {
  Attribute* attribute = nullptr;
  size_t current = 0;
};

struct ItemInfo {
  // The committed item info it was opened over or last committed into.
  BYTE* buffer = nullptr;
  uint32_t commit_size = kHeaderSize;
  std::unique_ptr<PropertyMap> properties;
  std::unique_ptr<CustomPropertyMap> custom_properties;
  // Set when a property, custom property or attribute is inserted.
  uint32_t modified = 0;
  // True while the buffer holds byte for byte what a commit would write
  // (the header's summary fields aside): a commit then copies it whole and
  // adds the distance to `moved`, which every property's references follow
  // the next time they are looked at. Every change clears it.
  bool buffer_current = false;
  uintptr_t moved = 0;
  MapCursor<AttributeMap> attribute_cursor;
  ValueCursor value_cursor;
  MapCursor<PropertyMap> property_cursor;
  MapCursor<CustomPropertyMap> custom_property_cursor;
};

// A new property whose references follow the item info's whole moves.
inline Property make_property(const ItemInfo& info) noexcept {
  Property property;
  property.item_moved = &info.moved;
  property.moved_seen = info.moved;
  return property;
}

// Every change of a property's layout goes through here: its body can no
// longer be copied whole, nor can the item info's buffer.
inline void mark_changed(ItemInfo& info, Property& property) noexcept {
  property.unchanged_body = 0;
  info.buffer_current = false;
}
inline void mark_changed(ItemInfo& info, Attribute& attribute) noexcept {
  info.buffer_current = false;
  if (attribute.owner != nullptr) attribute.owner->unchanged_body = 0;
}

// ---- Handles ---------------------------------------------------------------

inline ItemInfo* from_handle(HMVXINFO info) noexcept { return reinterpret_cast<ItemInfo*>(info); }
inline Property* from_handle(HMVXPROP property) noexcept { return reinterpret_cast<Property*>(property); }
inline Attribute* from_handle(HMVXATTR attribute) noexcept { return reinterpret_cast<Attribute*>(attribute); }
inline HMVXINFO to_handle(ItemInfo* info) noexcept { return reinterpret_cast<HMVXINFO>(info); }
inline HMVXPROP to_handle(Property* property) noexcept { return reinterpret_cast<HMVXPROP>(property); }
inline HMVXATTR to_handle(Attribute* attribute) noexcept { return reinterpret_cast<HMVXATTR>(attribute); }
template <typename Cursor>
HMVXPOS to_position(Cursor& cursor) noexcept {
  return reinterpret_cast<HMVXPOS>(&cursor);
}

// ---- Commit size -----------------------------------------------------------

// The commit size is a u32: a change that would take it past 4 GB is refused.
inline bool can_grow(const ItemInfo& info, uint64_t bytes) noexcept {
  return uint64_t{info.commit_size} + bytes <= UINT32_MAX;
}

// ---- Value blocks ----------------------------------------------------------

inline uint32_t buffer_size(const ItemInfo& info) noexcept { return info.buffer ? load_u32(info.buffer) : 0; }

// Inside means from buffer + 40 to buffer + its size, both ends included.
inline bool lies_inside(const BYTE* buffer, uint32_t size, const BYTE* block) noexcept {
  if (buffer == nullptr) return false;
  const auto at = reinterpret_cast<uintptr_t>(block);
  const auto start = reinterpret_cast<uintptr_t>(buffer);
  return at >= start + kHeaderSize && at <= start + size;
}

// Blocks inside the committed item info are part of it and never freed alone.
inline void release_value_block(const ItemInfo& info, BYTE* block) noexcept {
  if (!lies_inside(info.buffer, buffer_size(info), block)) free_value_block(block);
}

// Takes ownership of block (from make_value_block) and appends it. Null,
// with the block freed, when block is null, memory runs out or the commit
// size would pass 4 GB.
inline BYTE* append_value(ItemInfo& info, Attribute& attribute, BYTE* block) noexcept {
  if (block == nullptr) return nullptr;
  const uint32_t cost = value_cost(block);
  if (!can_grow(info, cost)) {
    free_value_block(block);
    return nullptr;
  }
  try {
    attribute.values().push_back(block);
  } catch (...) {
    free_value_block(block);
    return nullptr;
  }
  info.commit_size += cost;
  mark_changed(info, attribute);
  return block;
}

template <typename Encoding>
BYTE* add_value(ItemInfo& info, Attribute& attribute, const Encoding& value) noexcept {
  if (!can_grow(info, kLengthSize + value.length())) return nullptr;
  return append_value(info, attribute, make_value_block(value));
}

// Writes the new value into the old block when it fits in the block's L (L
// and the bytes after the new data stay); otherwise a new block takes the
// old one's place. Null for an index out of range or on failure (the old
// value then stays).
template <typename Encoding>
BYTE* replace_value(ItemInfo& info, Attribute& attribute, size_t index, const Encoding& value) noexcept {
  ValueList& values = attribute.values();
  if (index >= values.size()) return nullptr;
  BYTE*& slot = values[index];
  const uint32_t old_length = value_length(slot);
  const uint64_t length = value.length();
  if (length <= old_length) {
    value.write(value_data(slot));
    return slot;
  }
  if (!can_grow(info, length - old_length)) return nullptr;
  BYTE* block = make_value_block(value);
  if (block == nullptr) return nullptr;
  release_value_block(info, slot);
  slot = block;
  info.commit_size += static_cast<uint32_t>(length - old_length);
  mark_changed(info, attribute);
  return block;
}

inline void delete_value(ItemInfo& info, Attribute& attribute, size_t index) noexcept {
  ValueList& values = attribute.values();
  if (index >= values.size()) return;
  BYTE* block = values[index];
  info.commit_size -= value_cost(block);
  release_value_block(info, block);
  values.erase(values.begin() + static_cast<std::ptrdiff_t>(index));
  mark_changed(info, attribute);
}

inline void delete_all_values(ItemInfo& info, Attribute& attribute) noexcept {
  const uint32_t size = buffer_size(info);
  ValueList& values = attribute.values();
  for (BYTE* block : values) {
    info.commit_size -= value_cost(block);
    if (!lies_inside(info.buffer, size, block)) free_value_block(block);
  }
  values.clear();
  mark_changed(info, attribute);
}

// ---- Attributes ------------------------------------------------------------

inline Attribute* find_attribute(Property& property, uint32_t id) noexcept {
  const auto it = property.attributes.find(static_cast<int32_t>(id));
  return it == property.attributes.end() ? nullptr : &it->second;
}

// The attribute with that id; created when absent.
inline Attribute* add_attribute(ItemInfo& info, Property& property, uint32_t id) noexcept {
  const int32_t key = static_cast<int32_t>(id);
  auto it = property.attributes.lower_bound(key);
  if (it != property.attributes.end() && it->first == key) return &it->second;
  if (!can_grow(info, kEntryCost)) return nullptr;
  try {
    it = property.attributes.emplace_hint(it, key, Attribute(&property));
  } catch (...) {
    return nullptr;
  }
  info.commit_size += kEntryCost;
  info.modified = 1;
  mark_changed(info, property);
  return &it->second;
}

// Positions into storage that is going away are dropped (or, for an
// attribute cursor about to reach a deleted attribute, moved past it), so
// that a later next-function answers null or moves on instead of reading
// freed storage.
inline void forget_value_position(ItemInfo& info, const Attribute& attribute) noexcept {
  if (info.value_cursor.attribute == &attribute) info.value_cursor = {};
}

inline void delete_attribute(ItemInfo& info, Property& property, uint32_t id) noexcept {
  const auto it = property.attributes.find(static_cast<int32_t>(id));
  if (it == property.attributes.end()) return;
  if (info.attribute_cursor.current == it) ++info.attribute_cursor.current;
  forget_value_position(info, it->second);
  delete_all_values(info, it->second);
  info.commit_size -= kEntryCost;
  property.attributes.erase(it);
  mark_changed(info, property);
}

inline void delete_all_attributes(ItemInfo& info, Property& property) noexcept {
  if (info.attribute_cursor.end == property.attributes.end()) info.attribute_cursor = {};
  for (auto& [id, attribute] : property.attributes) {
    forget_value_position(info, attribute);
    delete_all_values(info, attribute);
    info.commit_size -= kEntryCost;
  }
  property.attributes.clear();
  mark_changed(info, property);
}

// ---- Properties ------------------------------------------------------------

namespace detail {

// Creates `map` on first use; the first of the two maps brings the section
// header (marker and entry count) into the commit.
template <typename Map>
bool ensure_map(ItemInfo& info, std::unique_ptr<Map>& map, bool other_map_exists) noexcept {
  if (map) return true;
  const uint32_t section = other_map_exists ? 0 : kSectionHeaderSize;
  if (!can_grow(info, section + kEntryCost)) return false;
  try {
    map = std::make_unique<Map>();
  } catch (...) {
    return false;
  }
  info.commit_size += section;
  return true;
}

template <typename Map, typename Key>
Property* add_to_map(ItemInfo& info, Map& map, Key&& key) noexcept {
  auto it = map.lower_bound(key);
  if (it != map.end() && !map.key_comp()(key, it->first)) return &it->second;
  if (!can_grow(info, kEntryCost)) return nullptr;
  try {
    it = map.emplace_hint(it, std::forward<Key>(key), make_property(info));
  } catch (...) {
    return nullptr;
  }
  info.commit_size += kEntryCost;
  info.modified = 1;
  info.buffer_current = false;
  return &it->second;
}

// Deletes every value and attribute, then the property; a map that becomes
// empty is destroyed, and with the other one absent too the section header
// leaves the commit, which is then 40 bytes again.
template <typename Map, typename OtherMap>
void delete_from_map(ItemInfo& info, std::unique_ptr<Map>& map, MapCursor<Map>& cursor,
                     const std::unique_ptr<OtherMap>& other, typename Map::iterator it) noexcept {
  // A cursor about to reach the property steps over it.
  if (cursor.current == it) ++cursor.current;
  delete_all_attributes(info, it->second);
  info.commit_size -= kEntryCost;
  info.buffer_current = false;
  map->erase(it);
  if (!map->empty()) return;
  map.reset();
  cursor = {};
  if (!other) info.commit_size -= kSectionHeaderSize;
}

}  // namespace detail

inline Property* find_property(ItemInfo& info, uint32_t id) noexcept {
  if (!info.properties) return nullptr;
  const auto it = info.properties->find(static_cast<int32_t>(id));
  return it == info.properties->end() ? nullptr : &it->second;
}

// The property with that id; created (with the map on first use) when absent.
inline Property* add_property(ItemInfo& info, uint32_t id) noexcept {
  if (!detail::ensure_map(info, info.properties, info.custom_properties != nullptr)) return nullptr;
  return detail::add_to_map(info, *info.properties, static_cast<int32_t>(id));
}

inline void delete_property(ItemInfo& info, uint32_t id) noexcept {
  if (!info.properties) return;
  const auto it = info.properties->find(static_cast<int32_t>(id));
  if (it == info.properties->end()) return;
  detail::delete_from_map(info, info.properties, info.property_cursor, info.custom_properties, it);
}

inline Property* find_custom_property(ItemInfo& info, std::wstring_view name) noexcept {
  if (!info.custom_properties) return nullptr;
  const auto it = info.custom_properties->find(name);
  return it == info.custom_properties->end() ? nullptr : &it->second;
}

// The custom property with that name; when created, its attribute 2 gets the
// name as one string value.
inline Property* add_custom_property(ItemInfo& info, std::wstring_view name) noexcept {
  if (Property* existing = find_custom_property(info, name)) return existing;
  if (!detail::ensure_map(info, info.custom_properties, info.properties != nullptr)) return nullptr;
  Property* property = nullptr;
  try {
    property = detail::add_to_map(info, *info.custom_properties, std::wstring(name));
  } catch (...) {  // the key's copy
    return nullptr;
  }
  if (property == nullptr) return nullptr;
  Attribute* name_attribute = add_attribute(info, *property, kNameAttribute);
  if (name_attribute == nullptr || add_value(info, *name_attribute, encoding::String{name}) == nullptr) {
    detail::delete_from_map(info, info.custom_properties, info.custom_property_cursor, info.properties,
                            info.custom_properties->find(name));
    return nullptr;
  }
  return property;
}

inline void delete_custom_property(ItemInfo& info, std::wstring_view name) noexcept {
  if (!info.custom_properties) return;
  const auto it = info.custom_properties->find(name);
  if (it == info.custom_properties->end()) return;
  detail::delete_from_map(info, info.custom_properties, info.custom_property_cursor, info.properties, it);
}

// ---- Cursors ---------------------------------------------------------------
// A position is the address of one of the item info's cursors; starting an
// iteration resets that cursor. The next-functions answer null for any
// other address, so a position of one kind cannot walk another.

namespace detail {

template <typename Map>
HMVXPOS start(MapCursor<Map>& cursor, Map* map) noexcept {
  if (map == nullptr || map->empty()) return nullptr;
  cursor.current = map->begin();
  cursor.end = map->end();
  return to_position(cursor);
}

template <typename Map>
typename Map::value_type* advance(MapCursor<Map>& cursor, HMVXPOS* position) noexcept {
  if (position == nullptr || *position != to_position(cursor) || cursor.current == cursor.end) return nullptr;
  typename Map::value_type* element = &*cursor.current;
  if (++cursor.current == cursor.end) *position = nullptr;
  return element;
}

}  // namespace detail

inline HMVXPOS head_property(ItemInfo& info) noexcept {
  return detail::start(info.property_cursor, info.properties.get());
}
inline Property* next_property(ItemInfo& info, DWORD* id, HMVXPOS* position) noexcept {
  auto* element = detail::advance(info.property_cursor, position);
  if (element == nullptr) return nullptr;
  if (id != nullptr) *id = static_cast<DWORD>(element->first);
  return &element->second;
}

inline HMVXPOS head_custom_property(ItemInfo& info) noexcept {
  return detail::start(info.custom_property_cursor, info.custom_properties.get());
}
// The element holds the name (the map key) and the property.
inline CustomPropertyMap::value_type* next_custom_property(ItemInfo& info, HMVXPOS* position) noexcept {
  return detail::advance(info.custom_property_cursor, position);
}

inline HMVXPOS head_attribute(ItemInfo& info, Property& property) noexcept {
  return detail::start(info.attribute_cursor, &property.attributes);
}
inline Attribute* next_attribute(ItemInfo& info, DWORD* id, HMVXPOS* position) noexcept {
  auto* element = detail::advance(info.attribute_cursor, position);
  if (element == nullptr) return nullptr;
  if (id != nullptr) *id = static_cast<DWORD>(element->first);
  return &element->second;
}

inline HMVXPOS head_value(ItemInfo& info, Attribute& attribute) noexcept {
  if (attribute.value_count() == 0) return nullptr;
  info.value_cursor = {&attribute, 0};
  return to_position(info.value_cursor);
}
inline BYTE* next_value(ItemInfo& info, HMVXPOS* position) noexcept {
  ValueCursor& cursor = info.value_cursor;
  if (position == nullptr || *position != to_position(cursor) || cursor.attribute == nullptr) return nullptr;
  const ValueList& values = cursor.attribute->values();
  if (cursor.current >= values.size()) return nullptr;
  BYTE* block = values[cursor.current++];
  if (cursor.current >= values.size()) *position = nullptr;
  return block;
}

// ---- Lifecycle (item_info.cpp) ---------------------------------------------

// Opens a committed item info (null: an empty one). Null when memory runs
// out or the block does not hold together (then *fault, when given, says
// where).
ItemInfo* open_item_info(BYTE* block, Fault* fault = nullptr) noexcept;
// Writes the committed form into destination (at least commit_size bytes,
// not overlapping the current buffer) and moves the item info onto it.
// Returns the bytes written, 0 when destination overlaps the buffer.
uint32_t commit_item_info(ItemInfo& info, BYTE* destination) noexcept;
// Commits into a new block and swaps it into *committed, freeing the old one.
HRESULT update_item_info(ItemInfo& info, BYTE** committed) noexcept;
void close_item_info(ItemInfo* info) noexcept;
// A new committed item info: 4 bytes more than `size` zero-filled, the
// first `size` bytes copied from source (or only the size field set when
// source is null).
BYTE* allocate_committed(uint32_t size, const BYTE* source) noexcept;

}  // namespace mvsup::iteminfo
