// Base64 over bytes and over 16-bit cells holding one byte each.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "MvSupCodec.h"
#include "codec/global_block.h"
#include "frame/trace.h"

namespace mvsup::codec {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
constexpr uint32_t kPadValue = 64;

// Two output characters for every 12-bit input value, first one in the low
// byte, so that a little-endian store writes them in order.
constexpr std::array<uint16_t, 4096> make_pair_table() {
  std::array<uint16_t, 4096> table{};
  for (unsigned i = 0; i < 4096; ++i)
    table[i] = static_cast<uint16_t>(static_cast<unsigned char>(kAlphabet[i >> 6]) |
                                     static_cast<unsigned char>(kAlphabet[i & 63]) << 8);
  return table;
}
alignas(64) constexpr std::array<uint16_t, 4096> kPairs = make_pair_table();

// Decoding: one table per position in a group, holding the character's value
// already shifted into place, so that a group is the OR of four lookups. A
// '=' in the first two positions is the value 64 (its bits fall where they
// fall); in the last two it marks padding.
constexpr uint32_t kInvalid = 0x80000000u;
constexpr uint32_t kPadding = 0x40000000u;
constexpr uint32_t kFlags = kInvalid | kPadding;

constexpr std::array<uint32_t, 256> make_decode_table(int position) {
  std::array<uint32_t, 256> table{};
  for (auto& entry : table) entry = kInvalid;
  const int shift = 18 - 6 * position;
  for (uint32_t value = 0; value < 64; ++value)
    table[static_cast<unsigned char>(kAlphabet[value])] = value << shift;
  table['='] = position < 2 ? kPadValue << shift : kPadding;
  return table;
}
alignas(64) constexpr std::array<uint32_t, 256> kDecode0 = make_decode_table(0);
alignas(64) constexpr std::array<uint32_t, 256> kDecode1 = make_decode_table(1);
alignas(64) constexpr std::array<uint32_t, 256> kDecode2 = make_decode_table(2);
alignas(64) constexpr std::array<uint32_t, 256> kDecode3 = make_decode_table(3);

inline uint32_t lookup(const std::array<uint32_t, 256>& table, unsigned char c) noexcept { return table[c]; }
// Wide characters above 0xFF are outside the alphabet, not aliases of their low byte.
inline uint32_t lookup(const std::array<uint32_t, 256>& table, wchar_t c) noexcept {
  return c > 0xFF ? kInvalid : table[c];
}

inline unsigned char low_byte(unsigned char c) noexcept { return c; }
inline unsigned char low_byte(wchar_t c) noexcept { return static_cast<unsigned char>(c); }

uint64_t encoded_length(DWORD count) noexcept { return (static_cast<uint64_t>(count) + 2) / 3 * 4; }

// Encodes whole groups and the final partial group, one group at a time.
template <typename In, typename Out>
void encode_groups(const In* in, size_t count, Out* out) noexcept {
  size_t i = 0;
  for (; i + 3 <= count; i += 3, out += 4) {
    const uint32_t group = low_byte(in[i]) << 16 | low_byte(in[i + 1]) << 8 | low_byte(in[i + 2]);
    out[0] = static_cast<Out>(kAlphabet[group >> 18]);
    out[1] = static_cast<Out>(kAlphabet[(group >> 12) & 63]);
    out[2] = static_cast<Out>(kAlphabet[(group >> 6) & 63]);
    out[3] = static_cast<Out>(kAlphabet[group & 63]);
  }
  if (i == count) return;
  const uint32_t second = i + 1 < count ? low_byte(in[i + 1]) : 0;
  const uint32_t group = low_byte(in[i]) << 16 | second << 8;
  out[0] = static_cast<Out>(kAlphabet[group >> 18]);
  out[1] = static_cast<Out>(kAlphabet[(group >> 12) & 63]);
  out[2] = static_cast<Out>(i + 1 < count ? kAlphabet[(group >> 6) & 63] : '=');
  out[3] = static_cast<Out>('=');
}

// Bytes to characters, six input bytes per step through the pair table.
void encode_bytes(const unsigned char* in, size_t count, char* out) noexcept {
  size_t i = 0;
  // An 8-byte load of which 6 bytes are used: stop while 8 remain readable.
  for (; i + 8 <= count; i += 6, out += 8) {
    uint64_t word;
    std::memcpy(&word, in + i, sizeof(word));
    word = __builtin_bswap64(word);
    const uint64_t chars = static_cast<uint64_t>(kPairs[(word >> 52) & 0xFFF]) |
                           static_cast<uint64_t>(kPairs[(word >> 40) & 0xFFF]) << 16 |
                           static_cast<uint64_t>(kPairs[(word >> 28) & 0xFFF]) << 32 |
                           static_cast<uint64_t>(kPairs[(word >> 16) & 0xFFF]) << 48;
    std::memcpy(out, &chars, sizeof(chars));
  }
  encode_groups(in + i, count - i, out);
}

template <typename Out>
inline void put_bytes(Out* out, uint32_t group, int count) noexcept {
  out[0] = static_cast<Out>(static_cast<unsigned char>(group >> 16));
  if (count > 1) out[1] = static_cast<Out>(static_cast<unsigned char>(group >> 8));
  if (count > 2) out[2] = static_cast<Out>(static_cast<unsigned char>(group));
}

template <typename In>
inline uint32_t decode_group(const In* in) noexcept {
  return lookup(kDecode0, in[0]) | lookup(kDecode1, in[1]) | lookup(kDecode2, in[2]) | lookup(kDecode3, in[3]);
}

// A group with a flag set: invalid character or padding, which ends decoding.
// Returns the bytes it yields, or -1 for an invalid character.
template <typename In>
int finish_group(const In* in, uint32_t group) noexcept {
  if (group & kInvalid) return -1;
  return in[2] == static_cast<In>('=') ? 1 : 2;
}

// Decodes whole groups; returns the bytes produced, or -1 when a character
// is outside the alphabet.
template <typename In, typename Out>
int64_t decode_groups(const In* in, size_t groups, Out* out) noexcept {
  Out* const start = out;
  for (size_t g = 0; g < groups; ++g, in += 4, out += 3) {
    const uint32_t group = decode_group(in);
    if (group & kFlags) {
      const int tail = finish_group(in, group);
      if (tail < 0) return -1;
      put_bytes(out, group, tail);
      return out - start + tail;
    }
    put_bytes(out, group, 3);
  }
  return out - start;
}

int64_t decode_bytes(const unsigned char* in, size_t groups, unsigned char* out) noexcept {
  unsigned char* const start = out;
  // Two groups per step, each stored as 4 bytes of which the fourth is
  // overwritten next: keep at least one group for the exact tail below.
  size_t g = 0;
  for (; g + 3 <= groups; g += 2, in += 8, out += 6) {
    const uint32_t first = decode_group(in);
    const uint32_t second = decode_group(in + 4);
    if ((first | second) & kFlags) break;
    const uint32_t a = __builtin_bswap32(first << 8);
    const uint32_t b = __builtin_bswap32(second << 8);
    std::memcpy(out, &a, 4);
    std::memcpy(out + 3, &b, 4);
  }
  const int64_t rest = decode_groups(in, groups - g, out);
  return rest < 0 ? -1 : out - start + rest;
}

template <typename In, typename Out>
HRESULT encode(const In* in, DWORD count, Out** out, DWORD* out_length) noexcept {
  const uint64_t length = encoded_length(count);
  GlobalBlock<Out> block;
  if (length > MAXDWORD || !block.allocate(length, Fill::WrittenByCaller)) return E_OUTOFMEMORY;
  if constexpr (sizeof(In) == 1 && sizeof(Out) == 1)
    encode_bytes(reinterpret_cast<const unsigned char*>(in), count, block.get());
  else
    encode_groups(in, count, block.get());
  *out = block.release();
  *out_length = static_cast<DWORD>(length);
  return S_OK;
}

template <typename In, typename Out>
HRESULT decode(const In* in, DWORD count, Out** out, DWORD* out_length) noexcept {
  if (count % 4 != 0) return E_INVALIDARG;
  const size_t groups = count / 4;
  GlobalBlock<Out> block;
  if (!block.allocate(static_cast<uint64_t>(groups) * 3, Fill::WrittenByCaller)) return E_OUTOFMEMORY;
  int64_t produced;
  if constexpr (sizeof(In) == 1 && sizeof(Out) == 1)
    produced = decode_bytes(reinterpret_cast<const unsigned char*>(in), groups,
                            reinterpret_cast<unsigned char*>(block.get()));
  else
    produced = decode_groups(in, groups, block.get());
  if (produced < 0) return E_FAIL;
  std::fill(block.get() + produced, block.get() + groups * 3, Out{});
  *out = block.release();
  *out_length = static_cast<DWORD>(produced);
  return S_OK;
}

template <typename Out>
bool clear_outputs(Out** out, DWORD* out_length) noexcept {
  if (out) *out = nullptr;
  if (out_length) *out_length = 0;
  return out && out_length;
}

HRESULT base64_encode(const BYTE* bytes, DWORD count, char** chars, DWORD* char_count) noexcept {
  return encode(bytes, count, chars, char_count);
}
HRESULT base64_encode(const wchar_t* units, DWORD count, wchar_t** chars, DWORD* char_count) noexcept {
  return encode(units, count, chars, char_count);
}
HRESULT base64_decode(const char* chars, DWORD count, BYTE** bytes, DWORD* byte_count) noexcept {
  return decode(reinterpret_cast<const unsigned char*>(chars), count, bytes, byte_count);
}
HRESULT base64_decode(const wchar_t* chars, DWORD count, wchar_t** units, DWORD* unit_count) noexcept {
  return decode(chars, count, units, unit_count);
}

template <typename In, typename Out>
HRESULT checked(const char* name, const In* in, DWORD count, Out** out, DWORD* out_length,
                HRESULT (*run)(const In*, DWORD, Out**, DWORD*) noexcept) noexcept {
  trace::CallScope scope(name);
  if (!clear_outputs(out, out_length) || in == nullptr || count == 0) return scope.hr(E_POINTER);
  return scope.hr(run(in, count, out, out_length));
}

}  // namespace
}  // namespace mvsup::codec

extern "C" {

HRESULT WINAPI Base64Encode(const BYTE* bytes, DWORD count, LPSTR* chars, DWORD* charCount) {
  using namespace mvsup::codec;
  return checked<BYTE, char>("Base64Encode", bytes, count, chars, charCount, base64_encode);
}

HRESULT WINAPI Base64EncodeW(LPCWSTR units, DWORD count, LPWSTR* chars, DWORD* charCount) {
  using namespace mvsup::codec;
  return checked<wchar_t, wchar_t>("Base64EncodeW", units, count, chars, charCount, base64_encode);
}

HRESULT WINAPI Base64Decode(LPCSTR chars, DWORD count, BYTE** bytes, DWORD* byteCount) {
  using namespace mvsup::codec;
  return checked<char, BYTE>("Base64Decode", chars, count, bytes, byteCount, base64_decode);
}

HRESULT WINAPI Base64DecodeW(LPCWSTR chars, DWORD count, LPWSTR* units, DWORD* unitCount) {
  using namespace mvsup::codec;
  return checked<wchar_t, wchar_t>("Base64DecodeW", chars, count, units, unitCount, base64_decode);
}

}  // extern "C"
