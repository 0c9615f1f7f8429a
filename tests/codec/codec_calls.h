// Calls of the codec exports with their outputs collected and freed, and
// Windows' own implementations used as oracles in the same run.
#pragma once

#include <windows.h>
#include <wincrypt.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

#include "MvSup2u.h"
#include "common/windows_md5.h"

namespace mvsup::test {

// One call's result. size is GlobalSize of the handed-out block (0 when none).
template <typename Char>
struct CodecResult {
  HRESULT hr = E_UNEXPECTED;
  std::basic_string<Char> data;
  size_t size = 0;
  bool buffer = false;  // a buffer was handed out
  std::string block;    // the whole block as bytes
};

// Runs fn(input, count, &out, &length) with sentinel-filled outs, copies the
// result and frees the buffer. Outs must be cleared when no buffer comes back.
template <typename Char, typename In, typename Fn>
CodecResult<Char> call_codec(Fn fn, const In* input, DWORD count) {
  CodecResult<Char> result;
  Char* out = reinterpret_cast<Char*>(static_cast<uintptr_t>(0xdeadbeef));
  DWORD length = 0xdeadbeef;
  result.hr = fn(input, count, &out, &length);
  if (out == nullptr) {
    EXPECT_EQ(length, 0u) << "length set without a buffer";
    return result;
  }
  if (reinterpret_cast<uintptr_t>(out) == 0xdeadbeef) {
    ADD_FAILURE() << "output pointer not cleared";
    return result;
  }
  result.buffer = true;
  result.size = GlobalSize(out);
  result.block.assign(reinterpret_cast<const char*>(out), result.size);
  EXPECT_LE(size_t{length} * sizeof(Char), result.size) << "length beyond the buffer";
  result.data.assign(out, std::min<size_t>(length, result.size / sizeof(Char)));
  GlobalFree(out);
  return result;
}

// S_OK with `expected` (one unit per character) in a block of `units` units
// that is zero-filled after the data; with `units` 0, in a block of any size
// that holds a NUL after the data.
template <typename Char>
void expect_ok(const CodecResult<Char>& r, std::string_view expected, size_t units = 0) {
  std::basic_string<Char> want;
  for (unsigned char c : expected) want += static_cast<Char>(c);
  EXPECT_EQ(r.hr, S_OK);
  EXPECT_EQ(r.data, want);
  if (units) {
    EXPECT_EQ(r.size, units * sizeof(Char));
  }
  std::string block(reinterpret_cast<const char*>(want.data()), want.size() * sizeof(Char));
  block.resize(units ? r.size : block.size() + sizeof(Char), '\0');
  EXPECT_EQ(r.block.substr(0, block.size()), block);
}

template <typename Out, typename Fn, typename Char>
CodecResult<Out> call_on(Fn fn, std::basic_string_view<Char> in) {
  return call_codec<Out>(fn, in.data(), static_cast<DWORD>(in.size()));
}
inline CodecResult<char> b64_encode(std::string_view in) {
  return call_codec<char>(Base64Encode, reinterpret_cast<const BYTE*>(in.data()), static_cast<DWORD>(in.size()));
}
inline auto b64_decode(std::string_view in) { return call_on<BYTE>(Base64Decode, in); }
inline auto b64_encode_w(std::wstring_view in) { return call_on<wchar_t>(Base64EncodeW, in); }
inline auto b64_decode_w(std::wstring_view in) { return call_on<wchar_t>(Base64DecodeW, in); }
inline auto qp_decode(std::string_view in) { return call_on<char>(QuotedPrintable_DecodeA, in); }
inline auto qp_decode_w(std::wstring_view in) { return call_on<wchar_t>(QuotedPrintable_Decode, in); }

inline std::wstring widen(std::string_view text) {
  std::wstring out;
  for (char c : text) out += static_cast<wchar_t>(static_cast<unsigned char>(c));
  return out;
}

inline std::string crypt32_encode(std::string_view in) {
  DWORD size = 0;
  const auto* data = reinterpret_cast<const BYTE*>(in.data());
  const DWORD flags = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
  if (!CryptBinaryToStringA(data, static_cast<DWORD>(in.size()), flags, nullptr, &size)) return "<crypt32 failed>";
  std::string out(size, '\0');
  if (!CryptBinaryToStringA(data, static_cast<DWORD>(in.size()), flags, out.data(), &size)) return "<crypt32 failed>";
  out.resize(size);
  return out;
}

inline std::string advapi_md5(std::string_view in) {
  AdvapiMd5Context context;
  MD5Init(&context);
  MD5Update(&context, reinterpret_cast<const unsigned char*>(in.data()), static_cast<unsigned>(in.size()));
  MD5Final(&context);
  return std::string(reinterpret_cast<const char*>(context.digest), 16);
}

inline std::string hex_lower(std::string_view data) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string out;
  for (unsigned char c : data) {
    out += kDigits[c >> 4];
    out += kDigits[c & 15];
  }
  return out;
}

inline std::string random_bytes(std::mt19937& random, size_t length) {
  std::string out(length, '\0');
  for (char& c : out) c = static_cast<char>(random() & 0xFF);
  return out;
}

}  // namespace mvsup::test
