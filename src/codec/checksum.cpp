// The fixed-length checksum: four byte accumulators over the data.
#include <cstdint>

#include "MvSupCodec.h"

namespace mvsup::codec {

namespace {

// The wide form adds whole units and keeps the low byte, so both forms agree
// on ASCII text.
template <typename T>
DWORD fixed_length_digest(const T* data, int count) noexcept {
  if (data == nullptr || count < 1) return 0;
  uint8_t sums[4] = {};
  for (int i = 0; i < count; ++i)
    sums[i & 3] = static_cast<uint8_t>(sums[i & 3] + static_cast<unsigned>(data[i]) + static_cast<unsigned>(i));
  return static_cast<DWORD>(sums[0]) | static_cast<DWORD>(sums[1]) << 8 | static_cast<DWORD>(sums[2]) << 16 |
         static_cast<DWORD>(sums[3]) << 24;
}

}  // namespace
}  // namespace mvsup::codec

extern "C" {

DWORD WINAPI GetFixedLengthDataDigest(LPCWSTR units, int count) {
  return mvsup::codec::fixed_length_digest(units, count);
}

DWORD WINAPI GetFixedLengthDataDigestA(LPCSTR bytes, int count) {
  return mvsup::codec::fixed_length_digest(reinterpret_cast<const unsigned char*>(bytes), count);
}

}  // extern "C"
