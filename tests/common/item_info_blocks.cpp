#include "common/item_info_blocks.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "common/guard_page.h"

namespace mvsup::test {

Committed::Committed(const ByteVector& bytes) {
  block_ = static_cast<BYTE*>(GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, bytes.size() + 4));
  if (block_ != nullptr && !bytes.empty()) std::memcpy(block_, bytes.data(), bytes.size());
}

Committed& Committed::operator=(Committed&& other) noexcept {
  if (this != &other) reset(other.release());
  return *this;
}

Committed Committed::create() {
  Committed created;
  EXPECT_EQ(MvxCreateItemInfo(created.put()), S_OK);
  return created;
}

void Committed::reset(BYTE* block) {
  if (block_ != nullptr) {
    EXPECT_EQ(FreeMvxInfo(block_), nullptr);
  }
  block_ = block;
}

uint32_t Committed::size() const { return block_ ? LoadU32(block_) : 0; }

ByteVector Committed::bytes() const { return block_ ? ByteVector(block_, block_ + size()) : ByteVector(); }

Bytes& Bytes::u8(uint8_t value) {
  data_.push_back(value);
  return *this;
}

Bytes& Bytes::u16(uint16_t value) {
  data_.push_back(static_cast<uint8_t>(value));
  data_.push_back(static_cast<uint8_t>(value >> 8));
  return *this;
}

Bytes& Bytes::u32(uint32_t value) {
  u16(static_cast<uint16_t>(value));
  return u16(static_cast<uint16_t>(value >> 16));
}

Bytes& Bytes::text(std::wstring_view value) {
  for (wchar_t c : value) u16(static_cast<uint16_t>(c));
  return u16(0);
}

Bytes& Bytes::zeros(size_t count) {
  data_.insert(data_.end(), count, 0);
  return *this;
}

Bytes& Bytes::header(uint32_t size) { return u32(size).zeros(36); }

ByteVector CommitExactly(HMVXINFO info, Committed& into) {
  const DWORD space = MvxGetCommitSpace(info);
  ByteVector first;
  {
    GuardedBuffer guarded(space);
    std::memset(guarded.data(), 0xff, space);
    const DWORD written = MvxCommit(info, guarded.data());
    EXPECT_EQ(written, space) << "the commit size was not exact";
    EXPECT_EQ(LoadU32(guarded.data()), written);
    first.assign(guarded.data(), guarded.data() + written);
    // Move the item info off the guarded block before it goes away.
    into.reset(static_cast<BYTE*>(GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, space)));
    EXPECT_EQ(MvxCommit(info, into.get()), written);
  }
  EXPECT_EQ(Hex(into.bytes()), Hex(first)) << "committing a committed item info changed it";
  return first;
}

ByteVector ValueBytes(PMVXVALUE value) { return ByteVector(value, value + 4 + LoadU32(value)); }

std::string Hex(const ByteVector& bytes) {
  std::string out;
  char digits[4];
  for (size_t i = 0; i < bytes.size(); ++i) {
    std::snprintf(digits, sizeof digits, "%02x", bytes[i]);
    if (i != 0) out += (i % 16 == 0) ? '\n' : ' ';
    out += digits;
  }
  return out;
}

uint32_t LoadU32(const BYTE* at) {
  uint32_t value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

uint16_t LoadU16(const BYTE* at) {
  uint16_t value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

}  // namespace mvsup::test
