#include "codec/md5.h"

#include <cstring>

namespace mvsup::md5 {

namespace {

template <int S>
inline uint32_t rotate(uint32_t x) noexcept {
  return x << S | x >> (32 - S);
}

template <int S>
inline void step_f(uint32_t& a, uint32_t b, uint32_t c, uint32_t d, uint32_t x, uint32_t k) noexcept {
  a = b + rotate<S>(a + (d ^ (b & (c ^ d))) + x + k);
}
// (b & d) and (c & ~d) never share a bit, so their sum is their OR and the
// two halves can be added separately.
template <int S>
inline void step_g(uint32_t& a, uint32_t b, uint32_t c, uint32_t d, uint32_t x, uint32_t k) noexcept {
  a = b + rotate<S>(a + (c & ~d) + x + k + (b & d));
}
template <int S>
inline void step_h(uint32_t& a, uint32_t b, uint32_t c, uint32_t d, uint32_t x, uint32_t k) noexcept {
  a = b + rotate<S>(a + (b ^ c ^ d) + x + k);
}
template <int S>
inline void step_i(uint32_t& a, uint32_t b, uint32_t c, uint32_t d, uint32_t x, uint32_t k) noexcept {
  a = b + rotate<S>(a + (c ^ (b | ~d)) + x + k);
}

void transform(uint32_t state[4], const uint8_t* blocks, size_t count) noexcept {
  uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
  for (; count > 0; --count, blocks += 64) {
    uint32_t x[16];
    std::memcpy(x, blocks, sizeof(x));  // little-endian words on every target we build
    const uint32_t a0 = a, b0 = b, c0 = c, d0 = d;

    step_f<7>(a, b, c, d, x[0], 0xd76aa478);
    step_f<12>(d, a, b, c, x[1], 0xe8c7b756);
    step_f<17>(c, d, a, b, x[2], 0x242070db);
    step_f<22>(b, c, d, a, x[3], 0xc1bdceee);
    step_f<7>(a, b, c, d, x[4], 0xf57c0faf);
    step_f<12>(d, a, b, c, x[5], 0x4787c62a);
    step_f<17>(c, d, a, b, x[6], 0xa8304613);
    step_f<22>(b, c, d, a, x[7], 0xfd469501);
    step_f<7>(a, b, c, d, x[8], 0x698098d8);
    step_f<12>(d, a, b, c, x[9], 0x8b44f7af);
    step_f<17>(c, d, a, b, x[10], 0xffff5bb1);
    step_f<22>(b, c, d, a, x[11], 0x895cd7be);
    step_f<7>(a, b, c, d, x[12], 0x6b901122);
    step_f<12>(d, a, b, c, x[13], 0xfd987193);
    step_f<17>(c, d, a, b, x[14], 0xa679438e);
    step_f<22>(b, c, d, a, x[15], 0x49b40821);

    step_g<5>(a, b, c, d, x[1], 0xf61e2562);
    step_g<9>(d, a, b, c, x[6], 0xc040b340);
    step_g<14>(c, d, a, b, x[11], 0x265e5a51);
    step_g<20>(b, c, d, a, x[0], 0xe9b6c7aa);
    step_g<5>(a, b, c, d, x[5], 0xd62f105d);
    step_g<9>(d, a, b, c, x[10], 0x02441453);
    step_g<14>(c, d, a, b, x[15], 0xd8a1e681);
    step_g<20>(b, c, d, a, x[4], 0xe7d3fbc8);
    step_g<5>(a, b, c, d, x[9], 0x21e1cde6);
    step_g<9>(d, a, b, c, x[14], 0xc33707d6);
    step_g<14>(c, d, a, b, x[3], 0xf4d50d87);
    step_g<20>(b, c, d, a, x[8], 0x455a14ed);
    step_g<5>(a, b, c, d, x[13], 0xa9e3e905);
    step_g<9>(d, a, b, c, x[2], 0xfcefa3f8);
    step_g<14>(c, d, a, b, x[7], 0x676f02d9);
    step_g<20>(b, c, d, a, x[12], 0x8d2a4c8a);

    step_h<4>(a, b, c, d, x[5], 0xfffa3942);
    step_h<11>(d, a, b, c, x[8], 0x8771f681);
    step_h<16>(c, d, a, b, x[11], 0x6d9d6122);
    step_h<23>(b, c, d, a, x[14], 0xfde5380c);
    step_h<4>(a, b, c, d, x[1], 0xa4beea44);
    step_h<11>(d, a, b, c, x[4], 0x4bdecfa9);
    step_h<16>(c, d, a, b, x[7], 0xf6bb4b60);
    step_h<23>(b, c, d, a, x[10], 0xbebfbc70);
    step_h<4>(a, b, c, d, x[13], 0x289b7ec6);
    step_h<11>(d, a, b, c, x[0], 0xeaa127fa);
    step_h<16>(c, d, a, b, x[3], 0xd4ef3085);
    step_h<23>(b, c, d, a, x[6], 0x04881d05);
    step_h<4>(a, b, c, d, x[9], 0xd9d4d039);
    step_h<11>(d, a, b, c, x[12], 0xe6db99e5);
    step_h<16>(c, d, a, b, x[15], 0x1fa27cf8);
    step_h<23>(b, c, d, a, x[2], 0xc4ac5665);

    step_i<6>(a, b, c, d, x[0], 0xf4292244);
    step_i<10>(d, a, b, c, x[7], 0x432aff97);
    step_i<15>(c, d, a, b, x[14], 0xab9423a7);
    step_i<21>(b, c, d, a, x[5], 0xfc93a039);
    step_i<6>(a, b, c, d, x[12], 0x655b59c3);
    step_i<10>(d, a, b, c, x[3], 0x8f0ccc92);
    step_i<15>(c, d, a, b, x[10], 0xffeff47d);
    step_i<21>(b, c, d, a, x[1], 0x85845dd1);
    step_i<6>(a, b, c, d, x[8], 0x6fa87e4f);
    step_i<10>(d, a, b, c, x[15], 0xfe2ce6e0);
    step_i<15>(c, d, a, b, x[6], 0xa3014314);
    step_i<21>(b, c, d, a, x[13], 0x4e0811a1);
    step_i<6>(a, b, c, d, x[4], 0xf7537e82);
    step_i<10>(d, a, b, c, x[11], 0xbd3af235);
    step_i<15>(c, d, a, b, x[2], 0x2ad7d2bb);
    step_i<21>(b, c, d, a, x[9], 0xeb86d391);

    a += a0;
    b += b0;
    c += c0;
    d += d0;
  }
  state[0] = a;
  state[1] = b;
  state[2] = c;
  state[3] = d;
}

}  // namespace

void init(Context& context) noexcept {
  std::memset(&context, 0, sizeof(context));
  context.state[0] = 0x67452301;
  context.state[1] = 0xefcdab89;
  context.state[2] = 0x98badcfe;
  context.state[3] = 0x10325476;
}

void update(Context& context, const void* data, size_t length) noexcept {
  if (length == 0) return;
  const auto* in = static_cast<const uint8_t*>(data);
  const size_t used = (context.bit_count[0] >> 3) & 63;
  const uint64_t bits = (static_cast<uint64_t>(context.bit_count[1]) << 32 | context.bit_count[0]) +
                        (static_cast<uint64_t>(length) << 3);
  context.bit_count[0] = static_cast<uint32_t>(bits);
  context.bit_count[1] = static_cast<uint32_t>(bits >> 32);

  if (used != 0) {
    const size_t room = 64 - used;
    if (length < room) {
      std::memcpy(context.buffer + used, in, length);
      return;
    }
    std::memcpy(context.buffer + used, in, room);
    transform(context.state, context.buffer, 1);
    in += room;
    length -= room;
  }
  transform(context.state, in, length / 64);
  std::memcpy(context.buffer, in + (length & ~size_t{63}), length & 63);
}

void final(Context& context, uint8_t digest[kDigestSize]) noexcept {
  const uint32_t bit_count[2] = {context.bit_count[0], context.bit_count[1]};
  const size_t used = (bit_count[0] >> 3) & 63;
  static constexpr uint8_t kPadding[64] = {0x80};
  update(context, kPadding, used < 56 ? 56 - used : 120 - used);
  update(context, bit_count, sizeof(bit_count));
  std::memcpy(digest, context.state, kDigestSize);
  // The context may hold key material (digest authentication hashes passwords).
  std::memset(&context, 0, sizeof(context));
  asm volatile("" : : "r"(&context) : "memory");
}

void digest(const void* data, size_t length, uint8_t out[kDigestSize]) noexcept {
  Context context;
  init(context);
  update(context, data, length);
  final(context, out);
}

}  // namespace mvsup::md5
