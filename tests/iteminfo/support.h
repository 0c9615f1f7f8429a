// Helpers of the item info tests: owners for committed and open item infos,
// a little-endian writer for layouts written out by hand, and access to
// properties through the library's own inline primitives, compiled into
// the test (no property function is exported yet; every item info still
// comes from the DLL, and both sides allocate through the same C runtime).
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "MvSup2u.h"
#include "iteminfo/item_info.h"

namespace mvsup::test {

using ByteVector = std::vector<uint8_t>;

// A committed item info freed with FreeMvxInfo.
class Committed {
 public:
  Committed() = default;
  explicit Committed(BYTE* block) : block_(block) {}
  // A GlobalAlloc copy of the bytes (4 spare zero bytes, as the library's own).
  explicit Committed(const ByteVector& bytes);
  Committed(Committed&& other) noexcept : block_(other.release()) {}
  Committed& operator=(Committed&& other) noexcept;
  Committed(const Committed&) = delete;
  Committed& operator=(const Committed&) = delete;
  ~Committed() { reset(); }

  static Committed create();
  BYTE* get() const { return block_; }
  BYTE** put() {
    reset();
    return &block_;
  }
  BYTE* release() { return std::exchange(block_, nullptr); }
  void reset(BYTE* block = nullptr);
  uint32_t size() const;
  // The first size() bytes.
  ByteVector bytes() const;

 private:
  BYTE* block_ = nullptr;
};

// An open item info closed with MvxClose.
class Opened {
 public:
  explicit Opened(BYTE* block) : info_(MvxOpen(block)) {}
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;
  ~Opened() { MvxClose(info_); }
  HMVXINFO get() const { return info_; }
  operator HMVXINFO() const { return info_; }
  iteminfo::ItemInfo& internals() const { return *iteminfo::from_handle(info_); }

 private:
  HMVXINFO info_;
};

// Little-endian bytes, written field by field from the format tables.
class Bytes {
 public:
  Bytes& u8(uint8_t value);
  Bytes& u16(uint16_t value);
  Bytes& u32(uint32_t value);
  // UTF-16 with its terminator.
  Bytes& text(std::wstring_view value);
  Bytes& zeros(size_t count);
  // The 40-byte header with only its size field set.
  Bytes& header(uint32_t size);
  size_t size() const { return data_.size(); }
  const ByteVector& data() const { return data_; }
  operator const ByteVector&() const { return data_; }

 private:
  ByteVector data_;
};

HMVXPROP AddProperty(HMVXINFO info, DWORD id);
HMVXPROP AddCustomProperty(HMVXINFO info, std::wstring_view name);
HMVXPROP FindProperty(HMVXINFO info, DWORD id);
HMVXPROP FindCustomProperty(HMVXINFO info, std::wstring_view name);
void DeleteProperty(HMVXINFO info, DWORD id);
void DeleteCustomProperty(HMVXINFO info, std::wstring_view name);

// Commits into a block of exactly MvxGetCommitSpace bytes that lies flush
// against a guard page, checks that the whole space was written, and
// returns the bytes. The item info then refers to `into`.
ByteVector CommitExactly(HMVXINFO info, Committed& into);

// The value block's bytes: its length field and data.
ByteVector ValueBytes(PMVXVALUE value);

// "0a 1b ..." for readable comparisons.
std::string Hex(const ByteVector& bytes);

uint32_t LoadU32(const BYTE* at);
uint16_t LoadU16(const BYTE* at);

}  // namespace mvsup::test
