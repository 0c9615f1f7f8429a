// The committed item info layout and its one reader. Self-contained (no
// library internals) so that the support tool walks blocks with the same
// code as MvxOpen.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

namespace mvsup::iteminfo {

inline constexpr uint32_t kHeaderSize = 40;
inline constexpr uint32_t kSectionStart = 40;
inline constexpr uint32_t kEntryTableStart = 44;
inline constexpr uint32_t kSectionHeaderSize = kEntryTableStart - kSectionStart;  // marker + entry count
inline constexpr uint16_t kEntryTableMarker = 254;
inline constexpr uint32_t kTableEntrySize = 8;
inline constexpr uint32_t kCountSize = 2;
// What one property or one attribute adds to a commit: table entry + count.
inline constexpr uint32_t kEntryCost = kTableEntrySize + kCountSize;
inline constexpr uint32_t kLengthSize = 4;
// Key of a custom property's table entry; readers test bit 0 only.
inline constexpr uint32_t kCustomPropertyKey = 1;

inline constexpr uint32_t kTypeAttribute = 1;
inline constexpr uint32_t kNameAttribute = 2;
inline constexpr uint32_t kValuesAttribute = 16;

// Header summary fields (byte offsets).
namespace header {
inline constexpr uint32_t kSize = 0;
inline constexpr uint32_t kCarried4 = 4;
inline constexpr uint32_t kItemType = 6;
inline constexpr uint32_t kContentSize = 8;
inline constexpr uint32_t kModifiedDate = 12;
inline constexpr uint32_t kModifiedTime = 14;
inline constexpr uint32_t kCreatedDate = 16;
inline constexpr uint32_t kCreatedTime = 18;
inline constexpr uint32_t kCarried20 = 20;
inline constexpr uint32_t kFirstParent = 24;
inline constexpr uint32_t kParentCount = 28;
inline constexpr uint32_t kItemNumber = 32;
inline constexpr uint32_t kOwnerNumber = 36;
}  // namespace header

// Properties whose first value the header summarises.
namespace summary {
inline constexpr uint32_t kTitle = 2;  // not in the header; MvxFindTitleValue
inline constexpr uint32_t kHandle = 32;
inline constexpr uint32_t kOwner = 64;
inline constexpr uint32_t kCreationDate = 128;
inline constexpr uint32_t kLastModified = 256;
inline constexpr uint32_t kParents = 1024;
inline constexpr uint32_t kContentLengthIds[] = {0x80000040, 0x40000010, 0xC0000010, 0x20000010, 0x70000002};
}  // namespace summary

// Handle value: u16 item type, u32 number at data offset 2, then the title.
inline constexpr uint32_t kHandleNumberOffset = 2;
inline constexpr uint32_t kHandleTitleOffset = 6;

inline uint16_t load_u16(const BYTE* p) noexcept {
  uint16_t v;
  std::memcpy(&v, p, sizeof v);
  return v;
}
inline uint32_t load_u32(const BYTE* p) noexcept {
  uint32_t v;
  std::memcpy(&v, p, sizeof v);
  return v;
}
inline void store_u16(BYTE* p, uint16_t v) noexcept { std::memcpy(p, &v, sizeof v); }
inline void store_u32(BYTE* p, uint32_t v) noexcept { std::memcpy(p, &v, sizeof v); }

// Number of UTF-16 code units before the first zero unit within `bytes`
// bytes at p (read unit by unit: p may be odd); nullopt when there is none.
inline std::optional<size_t> terminated_units(const BYTE* p, size_t bytes) noexcept {
  const size_t units = bytes / 2;
  for (size_t i = 0; i < units; ++i)
    if (load_u16(p + 2 * i) == 0) return i;
  return std::nullopt;
}

// The first place where a block does not hold together.
struct Fault {
  uint32_t offset;     // of the field whose value is wrong
  const char* reason;  // lower-case phrase
};

struct EntryView {
  uint32_t index;
  uint32_t key;
  uint32_t table_offset;  // of the entry's table slot
  uint32_t body_offset;   // absolute
  uint32_t end_offset;    // just past the furthest of its attribute bodies
  uint16_t attribute_count;
  bool custom;            // bit 0 of the key
  // Custom entries: the name from the first attribute 2 that has a value,
  // as bytes (maybe odd-aligned) and code units before its terminator.
  const BYTE* name = nullptr;
  size_t name_units = 0;
};

struct AttributeView {
  uint32_t index;
  uint32_t id;
  uint32_t table_offset;
  uint32_t body_offset;
  uint16_t value_count;
};

struct ValueView {
  uint32_t index;
  uint32_t offset;  // of the value block (its length field)
  uint32_t length;  // L
  const BYTE* block;
};

namespace detail {

// One stretch of a block that a commit writes again: the entry table, an
// entry's count and attribute table, or an attribute's count and values.
struct Piece {
  uint32_t start;
  uint32_t end;
  uint32_t placed_by;  // offset of the field that puts it there
  const char* reason;  // should it overlap another
};

inline constexpr const char* kEntryOverlap = "entry body overlaps another part of the block";
inline constexpr const char* kAttributeOverlap = "attribute body overlaps another part of the block";

// Checks one entry (its attribute table, attribute bodies and values)
// against the size field, fills `entry` and hands each piece it occupies to
// place(Piece).
template <typename Place>
std::optional<Fault> check_entry(const BYTE* block, uint32_t size, uint32_t index, EntryView& entry,
                                 Place&& place) noexcept(noexcept(place(Piece{}))) {
  const uint32_t slot = kEntryTableStart + kTableEntrySize * index;
  entry = EntryView{};
  entry.index = index;
  entry.key = load_u32(block + slot);
  entry.table_offset = slot;
  entry.custom = (entry.key & kCustomPropertyKey) != 0;
  const uint64_t body = uint64_t{kEntryTableStart} + load_u32(block + slot + 4);
  if (body + kCountSize > size) return Fault{slot + 4, "entry body lies outside the block"};
  entry.body_offset = static_cast<uint32_t>(body);
  entry.attribute_count = load_u16(block + body);

  const uint64_t attribute_table = body + kCountSize;
  const uint64_t attribute_table_end = attribute_table + uint64_t{kTableEntrySize} * entry.attribute_count;
  if (attribute_table_end > size)
    return Fault{static_cast<uint32_t>(body), "attribute table runs past the end of the block"};
  place(Piece{static_cast<uint32_t>(body), static_cast<uint32_t>(attribute_table_end), slot + 4, kEntryOverlap});
  uint64_t furthest = attribute_table_end;
  bool named = false;
  for (uint32_t j = 0; j < entry.attribute_count; ++j) {
    const uint32_t attribute_slot = static_cast<uint32_t>(attribute_table + kTableEntrySize * j);
    const uint32_t id = load_u32(block + attribute_slot);
    const uint64_t attribute_body = attribute_table + load_u32(block + attribute_slot + 4);
    if (attribute_body + kCountSize > size)
      return Fault{attribute_slot + 4, "attribute body lies outside the block"};
    const uint16_t value_count = load_u16(block + attribute_body);
    uint64_t position = attribute_body + kCountSize;
    for (uint32_t k = 0; k < value_count; ++k) {
      if (position + kLengthSize > size)
        return Fault{static_cast<uint32_t>(position), "value length field lies outside the block"};
      const uint32_t length = load_u32(block + position);
      if (position + kLengthSize + length > size)
        return Fault{static_cast<uint32_t>(position), "value length runs past the end of the block"};
      if (entry.custom && !named && id == kNameAttribute && k == 0) {
        const std::optional<size_t> units = terminated_units(block + position + kLengthSize, length);
        if (!units) return Fault{static_cast<uint32_t>(position), "custom property name is not terminated"};
        entry.name = block + position + kLengthSize;
        entry.name_units = *units;
        named = true;
      }
      position += kLengthSize + length;
    }
    place(Piece{static_cast<uint32_t>(attribute_body), static_cast<uint32_t>(position), attribute_slot + 4,
                kAttributeOverlap});
    if (position > furthest) furthest = position;
  }
  entry.end_offset = static_cast<uint32_t>(furthest);
  return std::nullopt;
}

// For blocks whose pieces do not come in ascending order: collects every
// piece, sorts them by where they start and finds the first that begins
// before an earlier one ends.
inline std::optional<Fault> find_overlap(const BYTE* block, uint32_t size, uint16_t entry_count) noexcept {
  try {
    std::vector<Piece> pieces;
    pieces.push_back(Piece{kEntryTableStart, kEntryTableStart + kTableEntrySize * entry_count, kSectionStart + 2,
                           "entry table overlaps a body"});
    EntryView entry;
    for (uint32_t i = 0; i < entry_count; ++i)
      check_entry(block, size, i, entry, [&](const Piece& piece) { pieces.push_back(piece); });
    // Stable: of two pieces that start together, the one placed later is at fault.
    std::stable_sort(pieces.begin(), pieces.end(),
                     [](const Piece& a, const Piece& b) { return a.start < b.start; });
    uint32_t furthest = 0;
    for (const Piece& piece : pieces) {
      if (piece.start == piece.end) continue;
      if (piece.start < furthest) return Fault{piece.placed_by, piece.reason};
      furthest = std::max(furthest, piece.end);
    }
    return std::nullopt;
  } catch (...) {  // std::bad_alloc
    return Fault{kSectionStart + 2, "too many bodies out of order to check"};
  }
}

}  // namespace detail

// Walks a committed item info of which `available` bytes can be read. Every
// count, offset and length is checked against the size field, and the size
// field against `available`, before it is used: nothing outside the first
// min(size, available) bytes is read. A size field of 40 or less is an empty
// item info. Bodies may lie in any order, with gaps between them (a table
// whose 16-bit count wrapped leaves one), but no two of them, and no body
// and a table, may overlap: so what the block holds never commits to more
// than its size. Pieces that come in ascending order (as in every block a
// commit writes) are checked as they come; only a block that has them in
// another order is checked once more at the end, which allocates.
//
// An entry is validated whole before the visitor sees it; the visitor then
// gets on_entry, and when that returns true on_attribute for each attribute
// and, when that returns true, on_value for each of its values. Visitor:
//   void on_header(uint32_t size);
//   void on_section(uint16_t marker, uint16_t entry_count);   // size > 40
//   bool on_entry(const EntryView&);
//   bool on_attribute(const EntryView&, const AttributeView&);
//   void on_value(const AttributeView&, const ValueView&);
// On a fault the visitor may have seen part or all of the block.
template <typename Visitor>
std::optional<Fault> walk_block(const BYTE* block, size_t available, Visitor& visitor) {
  if (block == nullptr || available < 4) return Fault{0, "block shorter than its size field"};
  const uint32_t size = load_u32(block);
  if (size > available) return Fault{header::kSize, "size field larger than the block"};
  visitor.on_header(size);
  if (size <= kHeaderSize) return std::nullopt;
  if (size < kEntryTableStart) return Fault{kSectionStart, "section header cut short"};

  const uint16_t entry_count = load_u16(block + kSectionStart + 2);
  visitor.on_section(load_u16(block + kSectionStart), entry_count);
  const uint64_t table_end = uint64_t{kEntryTableStart} + uint64_t{kTableEntrySize} * entry_count;
  if (table_end > size) return Fault{kSectionStart + 2, "entry table runs past the end of the block"};

  uint32_t previous_end = static_cast<uint32_t>(table_end);
  bool in_order = true;
  const auto place = [&](const detail::Piece& piece) noexcept {
    if (piece.start < previous_end) in_order = false;
    previous_end = piece.end;
  };
  EntryView entry;
  for (uint32_t i = 0; i < entry_count; ++i) {
    if (const std::optional<Fault> fault = detail::check_entry(block, size, i, entry, place)) return fault;
    if (!visitor.on_entry(entry)) continue;
    const uint32_t attribute_table = entry.body_offset + kCountSize;
    for (uint32_t j = 0; j < entry.attribute_count; ++j) {
      const uint32_t attribute_slot = attribute_table + kTableEntrySize * j;
      AttributeView attribute{};
      attribute.index = j;
      attribute.id = load_u32(block + attribute_slot);
      attribute.table_offset = attribute_slot;
      attribute.body_offset = attribute_table + load_u32(block + attribute_slot + 4);
      attribute.value_count = load_u16(block + attribute.body_offset);
      if (!visitor.on_attribute(entry, attribute)) continue;
      uint32_t position = attribute.body_offset + kCountSize;
      for (uint32_t k = 0; k < attribute.value_count; ++k) {
        const uint32_t length = load_u32(block + position);
        visitor.on_value(attribute, ValueView{k, position, length, block + position});
        position += kLengthSize + length;
      }
    }
  }
  if (!in_order) return detail::find_overlap(block, size, entry_count);
  return std::nullopt;
}

// Walks a block handed to the library, which has nothing but its size field
// to say how long it is (that field, at least, is there).
template <typename Visitor>
std::optional<Fault> walk_committed(const BYTE* block, Visitor& visitor) {
  return walk_block(block, block == nullptr ? 0 : std::max<size_t>(load_u32(block), sizeof(uint32_t)), visitor);
}

// A visitor that only validates.
struct NullVisitor {
  void on_header(uint32_t) noexcept {}
  void on_section(uint16_t, uint16_t) noexcept {}
  bool on_entry(const EntryView&) noexcept { return false; }
  bool on_attribute(const EntryView&, const AttributeView&) noexcept { return false; }
  void on_value(const AttributeView&, const ValueView&) noexcept {}
};

}  // namespace mvsup::iteminfo
