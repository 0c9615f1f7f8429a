// Value blocks: a u32 length L, then L bytes, made on the process heap by
// the add and replace functions. Each kind is a small encoding type with its
// data length and a writer, so that add and replace share one rule.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <string_view>

#include "block_format.h"

namespace mvsup::iteminfo {

// Process heap, not the C++ allocator: blocks that MvxClose leaves behind
// belong to the caller, who frees them with HeapFree.
inline BYTE* allocate_value_block(uint32_t length) noexcept {
  if (length > UINT32_MAX - kLengthSize) return nullptr;
  auto* block = static_cast<BYTE*>(::HeapAlloc(::GetProcessHeap(), 0, size_t{kLengthSize} + length));
  if (block != nullptr) store_u32(block, length);
  return block;
}

inline void free_value_block(BYTE* block) noexcept { ::HeapFree(::GetProcessHeap(), 0, block); }

inline uint32_t value_length(const BYTE* block) noexcept { return load_u32(block); }
inline BYTE* value_data(BYTE* block) noexcept { return block + kLengthSize; }
// What a value adds to a commit.
inline uint32_t value_cost(const BYTE* block) noexcept { return kLengthSize + value_length(block); }

namespace encoding {

inline void write_text(BYTE* data, std::wstring_view text) noexcept {
  if (!text.empty()) std::memcpy(data, text.data(), text.size() * sizeof(wchar_t));
  store_u16(data + text.size() * sizeof(wchar_t), 0);
}

inline uint64_t text_bytes(std::wstring_view text) noexcept { return (uint64_t{text.size()} + 1) * sizeof(wchar_t); }

struct String {
  std::wstring_view text;
  uint64_t length() const noexcept { return text_bytes(text); }
  void write(BYTE* data) const noexcept { write_text(data, text); }
};

// Integer and property-type code.
struct Word {
  uint32_t value;
  uint64_t length() const noexcept { return 4; }
  void write(BYTE* data) const noexcept { store_u32(data, value); }
};

// Float (low half, high half of the double) and date-time (high half, low
// half of the FILETIME): two u32 in the order given.
struct WordPair {
  uint32_t first;
  uint32_t second;
  uint64_t length() const noexcept { return 8; }
  void write(BYTE* data) const noexcept {
    store_u32(data, first);
    store_u32(data + 4, second);
  }
};

struct Binary {
  const void* bytes;
  uint32_t size;
  uint64_t length() const noexcept { return size; }
  void write(BYTE* data) const noexcept {
    if (size != 0) std::memcpy(data, bytes, size);
  }
};

struct Handle {
  uint16_t type;
  uint32_t number;
  std::wstring_view title;
  uint64_t length() const noexcept { return kHandleTitleOffset + text_bytes(title); }
  void write(BYTE* data) const noexcept {
    store_u16(data, type);
    store_u32(data + kHandleNumberOffset, number);
    write_text(data + kHandleTitleOffset, title);
  }
};

// u16 principal type, u32 principal number, name with terminator, u32 access.
struct AccessControlEntry {
  uint16_t type;
  uint32_t number;
  std::wstring_view name;
  uint32_t access;
  uint64_t length() const noexcept { return kHandleTitleOffset + text_bytes(name) + 4; }
  void write(BYTE* data) const noexcept {
    store_u16(data, type);
    store_u32(data + kHandleNumberOffset, number);
    write_text(data + kHandleTitleOffset, name);
    store_u32(data + kHandleTitleOffset + text_bytes(name), access);
  }
};

}  // namespace encoding

// A new heap block holding one encoded value; null when memory runs out or
// the value does not fit a 32-bit length.
template <typename Encoding>
BYTE* make_value_block(const Encoding& value) noexcept {
  const uint64_t length = value.length();
  if (length > UINT32_MAX - kLengthSize) return nullptr;
  BYTE* block = allocate_value_block(static_cast<uint32_t>(length));
  if (block != nullptr) value.write(value_data(block));
  return block;
}

}  // namespace mvsup::iteminfo
