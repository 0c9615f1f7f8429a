// MD5 message digest. The context is laid out as callers of the classic
// three-step interface expect: chaining words, bit count (low word first),
// block buffer.
#pragma once

#include <cstddef>
#include <cstdint>

namespace mvsup::md5 {

struct Context {
  uint32_t state[4];
  uint32_t bit_count[2];
  uint8_t buffer[64];
};

inline constexpr size_t kDigestSize = 16;

void init(Context& context) noexcept;
void update(Context& context, const void* data, size_t length) noexcept;
// Writes the digest and clears the whole context.
void final(Context& context, uint8_t digest[kDigestSize]) noexcept;

void digest(const void* data, size_t length, uint8_t out[kDigestSize]) noexcept;

}  // namespace mvsup::md5
