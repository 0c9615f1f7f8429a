// Hexadecimal text both ways and the fixed-length checksum.
#include <windows.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "MvSup2u.h"
#include "codec/codec_calls.h"

namespace mvsup::test {
namespace {

struct HexResult {
  HRESULT hr;
  std::basic_string<BYTE> bytes;
  bool buffer;
};

HexResult binary_from_hex(const wchar_t* text) {
  BYTE* out = reinterpret_cast<BYTE*>(1);
  DWORD length = 0xdeadbeef;
  HexResult result{BinaryStringFromHexString(text, &out, &length), {}, out != nullptr};
  if (out) {
    EXPECT_EQ(GlobalSize(out), length);
    result.bytes.assign(out, length);
    GlobalFree(out);
  } else {
    EXPECT_EQ(length, 0u);
  }
  return result;
}

TEST(HexText, BinaryToUpperCaseHex) {
  const BYTE data[] = {0x00, 0xAB, 0x7F, 0x10, 0xFF};
  BSTR hex = nullptr;
  ASSERT_EQ(HexStringFromBinaryString(data, sizeof(data), &hex), S_OK);
  EXPECT_EQ(SysStringLen(hex), 10u);
  EXPECT_STREQ(hex, L"00AB7F10FF");
  SysFreeString(hex);

  hex = reinterpret_cast<BSTR>(1);
  EXPECT_EQ(HexStringFromBinaryString(nullptr, 3, &hex), E_INVALIDARG);
  EXPECT_EQ(hex, nullptr);
  EXPECT_EQ(HexStringFromBinaryString(data, 0, &hex), E_INVALIDARG);
  EXPECT_EQ(HexStringFromBinaryString(data, 1, nullptr), E_POINTER);
}

TEST(HexText, HexToBinaryReadsPairsWithoutValidation) {
  auto r = binary_from_hex(L"0aFF1");  // a trailing odd digit is ignored
  EXPECT_EQ(r.hr, S_OK);
  EXPECT_EQ(r.bytes, (std::basic_string<BYTE>{0x0A, 0xFF}));

  // Pair by pair, as base-16 wcstol reads a two-character string.
  r = binary_from_hex(L"zz1zG0 5-1+f0x");
  EXPECT_EQ(r.hr, S_OK);
  EXPECT_EQ(r.bytes, (std::basic_string<BYTE>{0x00, 0x01, 0x00, 0x05, 0xFF, 0x0F, 0x00}));

  r = binary_from_hex(L"a");
  EXPECT_EQ(r.hr, S_OK);
  EXPECT_FALSE(r.buffer);
  EXPECT_EQ(binary_from_hex(L"").hr, E_INVALIDARG);
  EXPECT_EQ(binary_from_hex(nullptr).hr, E_INVALIDARG);
  DWORD length = 5;
  EXPECT_EQ(BinaryStringFromHexString(L"00", nullptr, &length), E_POINTER);
  EXPECT_EQ(length, 0u);
}

TEST(HexText, RoundTripOnRandomData) {
  std::mt19937 random(16);
  for (int round = 0; round < 500; ++round) {
    const std::string data = random_bytes(random, 1 + random() % 300);
    BSTR hex = nullptr;
    ASSERT_EQ(HexStringFromBinaryString(reinterpret_cast<const BYTE*>(data.data()), static_cast<DWORD>(data.size()),
                                        &hex),
              S_OK);
    std::wstring text(hex, SysStringLen(hex));
    SysFreeString(hex);
    std::string upper = hex_lower(data);
    for (char& c : upper) c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
    ASSERT_EQ(text, widen(upper));
    // Lower case reads back the same.
    const auto back = binary_from_hex(widen(hex_lower(data)).c_str());
    ASSERT_EQ(back.hr, S_OK);
    ASSERT_EQ(std::string(back.bytes.begin(), back.bytes.end()), data);
  }
}

TEST(FixedLengthDigest, AccumulatesBytesPlusPositionIntoFourLanes) {
  EXPECT_EQ(GetFixedLengthDataDigestA("\x01\x01\x01\x01\x01", 5), 0x04030206u);
  EXPECT_EQ(GetFixedLengthDataDigest(L"\x01\x01\x01\x01\x01", 5), 0x04030206u);
  // Lanes wrap at 256: a0 = (0xFF+0) + (0xFF+4), a1 = 0xFF+1, ...
  EXPECT_EQ(GetFixedLengthDataDigestA("\xFF\xFF\xFF\xFF\xFF", 5), 0x02010002u);
  // The wide form adds whole units and keeps the low byte.
  EXPECT_EQ(GetFixedLengthDataDigest(L"\x0141\x7F02", 2), 0x0341u);
  EXPECT_EQ(GetFixedLengthDataDigestA("abc", 0), 0u);
  EXPECT_EQ(GetFixedLengthDataDigestA("abc", -3), 0u);
  EXPECT_EQ(GetFixedLengthDataDigest(nullptr, 4), 0u);
  EXPECT_EQ(GetFixedLengthDataDigestA(nullptr, 4), 0u);
}

TEST(FixedLengthDigest, NarrowAndWideAgreeOnAsciiText) {
  std::mt19937 random(4);
  for (int round = 0; round < 200; ++round) {
    std::string text(1 + random() % 600, '\0');
    for (char& c : text) c = static_cast<char>(random() % 128);
    const std::wstring wide = widen(text);
    ASSERT_EQ(GetFixedLengthDataDigestA(text.data(), static_cast<int>(text.size())),
              GetFixedLengthDataDigest(wide.data(), static_cast<int>(wide.size())));
  }
}

}  // namespace
}  // namespace mvsup::test
