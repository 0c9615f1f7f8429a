// Base64 and MD5 of 1 MiB, side by side with Windows' own implementations
// (crypt32, advapi32) in the same run.
//
// Both Base64 sides hand the caller a new GlobalAlloc block per call, as the
// library must: ours inside the call, crypt32's by the caller with the size
// computed up front. A 1 MiB call's output block is fresh from the system on
// every call, so its first-touch cost is printed as well, and crypt32 once
// more writing into one reused buffer (no allocation at all: its best case);
// the 64 KiB rows get their blocks from the warm heap and show the codecs
// themselves.
#include <windows.h>
#include <wincrypt.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "bench.h"
#include "common/windows_md5.h"

namespace mvsup::bench {
namespace {


constexpr size_t kTotal = 1 << 20;

double mb_per_s(double seconds) { return kTotal / seconds / 1e6; }
size_t encoded_length(size_t bytes) { return (bytes + 2) / 3 * 4; }

void report(const char* what, double ours, double theirs, const char* peer) {
  std::printf("  %-30s MvSup2u %8.1f MB/s   %-8s %8.1f MB/s   ratio %6.2fx\n", what, mb_per_s(ours), peer,
              mb_per_s(theirs), theirs / ours);
}

// Seconds to process kTotal bytes in calls of `chunk` bytes.
double per_total(const std::function<void(size_t offset)>& call, size_t chunk, int rounds) {
  return seconds_per_call(
      [&] {
        for (size_t offset = 0; offset < kTotal; offset += chunk) call(offset);
      },
      rounds);
}

void base64_rows(const std::vector<BYTE>& data, size_t chunk, int rounds) {
  const DWORD n = static_cast<DWORD>(chunk);
  const DWORD flags = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
  const char* label_encode = chunk == kTotal ? "Base64 encode, 1 MiB calls" : "Base64 encode, 64 KiB calls";
  const char* label_decode = chunk == kTotal ? "Base64 decode, 1 MiB calls" : "Base64 decode, 64 KiB calls";

  const double encode_ours = per_total(
      [&](size_t offset) {
        LPSTR text = nullptr;
        DWORD length = 0;
        Base64Encode(data.data() + offset, n, &text, &length);
        keep(text);
        GlobalFree(text);
      },
      chunk, rounds);
  const double encode_theirs = per_total(
      [&](size_t offset) {
        DWORD size = static_cast<DWORD>(encoded_length(n) + 1);
        LPSTR text = static_cast<LPSTR>(GlobalAlloc(GMEM_FIXED, size));
        CryptBinaryToStringA(data.data() + offset, n, flags, text, &size);
        keep(text);
        GlobalFree(text);
      },
      chunk, rounds);
  report(label_encode, encode_ours, encode_theirs, "crypt32");
  std::vector<char> reused_text(encoded_length(n) + 1);
  if (chunk == kTotal) {
    const double encode_reused = per_total(
        [&](size_t offset) {
          DWORD size = static_cast<DWORD>(reused_text.size());
          CryptBinaryToStringA(data.data() + offset, n, flags, reused_text.data(), &size);
          keep(reused_text[0]);
        },
        chunk, rounds);
    report("  crypt32 into a reused buffer", encode_ours, encode_reused, "crypt32");
  }

  // Encoded chunks, each decoded as one call.
  std::vector<std::string> encoded;
  for (size_t offset = 0; offset < kTotal; offset += chunk) {
    LPSTR text = nullptr;
    DWORD length = 0;
    Base64Encode(data.data() + offset, n, &text, &length);
    encoded.emplace_back(text, length);
    GlobalFree(text);
  }
  const double decode_ours = per_total(
      [&](size_t offset) {
        const std::string& text = encoded[offset / chunk];
        BYTE* bytes = nullptr;
        DWORD length = 0;
        Base64Decode(text.data(), static_cast<DWORD>(text.size()), &bytes, &length);
        keep(bytes);
        GlobalFree(bytes);
      },
      chunk, rounds);
  const double decode_theirs = per_total(
      [&](size_t offset) {
        const std::string& text = encoded[offset / chunk];
        DWORD size = static_cast<DWORD>(text.size() / 4 * 3);
        BYTE* bytes = static_cast<BYTE*>(GlobalAlloc(GMEM_FIXED, size));
        CryptStringToBinaryA(text.data(), static_cast<DWORD>(text.size()), CRYPT_STRING_BASE64, bytes, &size,
                             nullptr, nullptr);
        keep(bytes);
        GlobalFree(bytes);
      },
      chunk, rounds);
  report(label_decode, decode_ours, decode_theirs, "crypt32");
  if (chunk == kTotal) {
    std::vector<BYTE> reused_bytes(n);
    const double decode_reused = per_total(
        [&](size_t offset) {
          const std::string& text = encoded[offset / chunk];
          DWORD size = n;
          CryptStringToBinaryA(text.data(), static_cast<DWORD>(text.size()), CRYPT_STRING_BASE64,
                               reused_bytes.data(), &size, nullptr, nullptr);
          keep(reused_bytes[0]);
        },
        chunk, rounds);
    report("  crypt32 into a reused buffer", decode_ours, decode_reused, "crypt32");
  }
}

void run() {
  std::mt19937 random(1);
  std::vector<BYTE> data(kTotal);
  for (BYTE& b : data) b = static_cast<BYTE>(random());

  base64_rows(data, kTotal, 15);
  const size_t encoded_size = encoded_length(kTotal);
  const double touch = seconds_per_call(
      [&] {
        char* block = static_cast<char*>(GlobalAlloc(GMEM_FIXED, encoded_size));
        for (size_t i = 0; i < encoded_size; i += 4096) block[i] = 1;
        keep(block);
        GlobalFree(block);
      },
      15);
  std::printf("  %-30s %.2f ms (%.1f MB/s of input at best for any 1 MiB encoder here)\n",
              "fresh 1.33 MiB block, touch", touch * 1e3, mb_per_s(touch));
  base64_rows(data, 64 * 1024, 15);

  const double md5_ours = seconds_per_call(
      [&] {
        BYTE digest[16];
        MD5GetDigest(data.data(), kTotal, digest);
        keep(digest);
      },
      20);
  const double md5_theirs = seconds_per_call(
      [&] {
        AdvapiMd5Context context;
        MD5Init(&context);
        MD5Update(&context, data.data(), kTotal);
        MD5Final(&context);
        keep(context.digest);
      },
      20);
  report("MD5, 1 MiB", md5_ours, md5_theirs, "advapi32");
}

const BenchRegistration kCodec("codec", run);

}  // namespace
}  // namespace mvsup::bench
