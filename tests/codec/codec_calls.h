// Calls of the codec exports with their outputs collected and freed, and
// Windows' own implementations used as oracles in the same run.
#pragma once

#include <windows.h>
#include <wincrypt.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

#include "MvSup2u.h"
#include "common/windows_md5.h"

namespace mvsup::test {

using bytes = std::string;  // raw bytes, NULs included

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
  if (static_cast<size_t>(length) * sizeof(Char) <= result.size) {
    result.data.assign(out, length);
  } else {
    ADD_FAILURE() << "length " << length << " beyond the buffer of " << result.size << " bytes";
  }
  GlobalFree(out);
  return result;
}

inline CodecResult<char> b64_encode(std::string_view in) {
  return call_codec<char>(Base64Encode, reinterpret_cast<const BYTE*>(in.data()), static_cast<DWORD>(in.size()));
}
inline CodecResult<BYTE> b64_decode(std::string_view in) {
  return call_codec<BYTE>(Base64Decode, in.data(), static_cast<DWORD>(in.size()));
}
inline CodecResult<wchar_t> b64_encode_w(std::wstring_view in) {
  return call_codec<wchar_t>(Base64EncodeW, in.data(), static_cast<DWORD>(in.size()));
}
inline CodecResult<wchar_t> b64_decode_w(std::wstring_view in) {
  return call_codec<wchar_t>(Base64DecodeW, in.data(), static_cast<DWORD>(in.size()));
}
inline CodecResult<char> qp_decode(std::string_view in) {
  return call_codec<char>(QuotedPrintable_DecodeA, in.data(), static_cast<DWORD>(in.size()));
}
inline CodecResult<wchar_t> qp_decode_w(std::wstring_view in) {
  return call_codec<wchar_t>(QuotedPrintable_Decode, in.data(), static_cast<DWORD>(in.size()));
}

inline std::string as_text(const std::basic_string<BYTE>& data) { return std::string(data.begin(), data.end()); }
inline std::wstring widen(std::string_view text) {
  std::wstring out;
  for (char c : text) out += static_cast<wchar_t>(static_cast<unsigned char>(c));
  return out;
}

// ---- Oracles: crypt32 and advapi32 ----

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

inline std::string crypt32_decode(std::string_view in) {
  DWORD size = 0;
  if (!CryptStringToBinaryA(in.data(), static_cast<DWORD>(in.size()), CRYPT_STRING_BASE64, nullptr, &size, nullptr,
                            nullptr))
    return "<crypt32 failed>";
  std::string out(size, '\0');
  if (!CryptStringToBinaryA(in.data(), static_cast<DWORD>(in.size()), CRYPT_STRING_BASE64,
                            reinterpret_cast<BYTE*>(out.data()), &size, nullptr, nullptr))
    return "<crypt32 failed>";
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

inline std::string our_md5(std::string_view in) {
  BYTE digest[16];
  EXPECT_EQ(MD5GetDigest(in.data(), static_cast<DWORD>(in.size()), digest), S_OK);
  return std::string(reinterpret_cast<const char*>(digest), 16);
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
