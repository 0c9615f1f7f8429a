// Committed item infos in tests: owners for committed and open item infos,
// a little-endian writer for layouts written out by hand from the format
// tables, and an exact commit against a guard page. Everything goes through
// the exports.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "MvSup2u.h"

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
  // The slot itself, for the in/out argument of the one-call writers.
  BYTE** slot() { return &block_; }
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
