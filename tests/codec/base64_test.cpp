// Base64 through the exports: RFC 4648 vectors, the padding rules, exact
// buffer sizes, and crypt32 as an oracle on random data.
#include <windows.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "MvSup2u.h"
#include "codec/codec_calls.h"

namespace mvsup::test {
namespace {

struct Vector {
  const char* plain;
  const char* encoded;
};
// RFC 4648, section 10 (the empty string is the encoder's E_POINTER case).
constexpr Vector kRfc4648[] = {{"f", "Zg=="},     {"fo", "Zm8="},         {"foo", "Zm9v"},
                               {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"}};

size_t encoded_size(size_t count) { return (count + 2) / 3 * 4; }

TEST(Base64, Rfc4648VectorsBothWaysNarrowAndWide) {
  for (const Vector& v : kRfc4648) {
    SCOPED_TRACE(v.plain);
    const std::string plain = v.plain;
    const std::string encoded = v.encoded;

    const auto enc = b64_encode(plain);
    EXPECT_EQ(enc.hr, S_OK);
    EXPECT_EQ(enc.data, encoded);
    EXPECT_EQ(enc.size, encoded.size());  // exactly the characters, no terminator

    const auto dec = b64_decode(encoded);
    EXPECT_EQ(dec.hr, S_OK);
    EXPECT_EQ(as_text(dec.data), plain);
    EXPECT_EQ(dec.size, encoded.size() / 4 * 3);

    const auto enc_w = b64_encode_w(widen(plain));
    EXPECT_EQ(enc_w.hr, S_OK);
    EXPECT_EQ(enc_w.data, widen(encoded));
    EXPECT_EQ(enc_w.size, encoded.size() * sizeof(wchar_t));

    const auto dec_w = b64_decode_w(widen(encoded));
    EXPECT_EQ(dec_w.hr, S_OK);
    EXPECT_EQ(dec_w.data, widen(plain));
    EXPECT_EQ(dec_w.size, encoded.size() / 4 * 3 * sizeof(wchar_t));
  }
}

TEST(Base64, EncoderRejectsNullAndEmptyInput) {
  const BYTE data[] = {1, 2, 3};
  EXPECT_EQ(call_codec<char>(Base64Encode, static_cast<const BYTE*>(nullptr), 3).hr, E_POINTER);
  const auto empty = call_codec<char>(Base64Encode, data, 0);
  EXPECT_EQ(empty.hr, E_POINTER);
  EXPECT_FALSE(empty.buffer);
  EXPECT_EQ(call_codec<wchar_t>(Base64EncodeW, L"abc", 0).hr, E_POINTER);

  DWORD length = 0xdeadbeef;
  EXPECT_EQ(Base64Encode(data, 3, nullptr, &length), E_POINTER);
  EXPECT_EQ(length, 0u);
  char* out = reinterpret_cast<char*>(1);
  EXPECT_EQ(Base64Encode(data, 3, &out, nullptr), E_POINTER);
  EXPECT_EQ(out, nullptr);

  // An output longer than a DWORD can count is refused before any input is read.
  const auto huge = call_codec<char>(Base64Encode, data, 0xFFFFFFFFu);
  EXPECT_EQ(huge.hr, E_OUTOFMEMORY);
  EXPECT_FALSE(huge.buffer);
}

TEST(Base64, WideEncoderUsesOnlyTheLowByteOfEachUnit) {
  const wchar_t units[] = {0x014D, 0xFF61, 0x006E, 0x0100};  // low bytes 'M' 'a' 'n' 0
  const auto enc = b64_encode_w(std::wstring_view(units, 4));
  EXPECT_EQ(enc.hr, S_OK);
  EXPECT_EQ(enc.data, L"TWFuAA==");
}

TEST(Base64, DecoderStatusCodes) {
  EXPECT_EQ(b64_decode("TWFu\r\nTWFu").hr, E_INVALIDARG);  // 10 characters
  EXPECT_EQ(b64_decode("TWF").hr, E_INVALIDARG);
  EXPECT_EQ(b64_decode("TWF*").hr, E_FAIL);
  EXPECT_EQ(b64_decode("TWFuTW u").hr, E_FAIL);  // white space is not skipped
  EXPECT_EQ(b64_decode(std::string("TW\0u", 4)).hr, E_FAIL);
  EXPECT_EQ(b64_decode("TWFu\xC3\xA9==").hr, E_FAIL);
  EXPECT_EQ(b64_decode("-_AA").hr, E_FAIL);  // the URL-safe alphabet is not ours
  EXPECT_EQ(b64_decode("").hr, E_POINTER);
  EXPECT_EQ(call_codec<BYTE>(Base64Decode, static_cast<const char*>(nullptr), 4).hr, E_POINTER);
  // A failure late in a long input hands out nothing either.
  const auto late = b64_decode(std::string(4000, 'A') + "AAA!");
  EXPECT_EQ(late.hr, E_FAIL);
  EXPECT_FALSE(late.buffer);

  // Wide characters above 0xFF do not alias their low byte.
  EXPECT_EQ(b64_decode_w(L"TWF\x0175").hr, E_FAIL);
  EXPECT_EQ(b64_decode_w(L"TWF\xFF75").hr, E_FAIL);
  EXPECT_EQ(b64_decode_w(L"TWFu").hr, S_OK);
  EXPECT_EQ(b64_decode_w(L"TWFuT").hr, E_INVALIDARG);
}

TEST(Base64, DecodingStopsAfterTheFirstPaddedGroup) {
  auto r = b64_decode("TWE=");
  EXPECT_EQ(r.hr, S_OK);
  EXPECT_EQ(as_text(r.data), "Ma");
  EXPECT_EQ(r.size, 3u);  // count/4*3, not what was produced

  r = b64_decode("TQ==TWFu");
  EXPECT_EQ(r.hr, S_OK);
  EXPECT_EQ(as_text(r.data), "M");
  EXPECT_EQ(r.block, std::string("M\0\0\0\0\0", 6));  // zero-filled after the data

  const auto w = b64_decode_w(L"TQ==TWFuTWFu");
  EXPECT_EQ(w.hr, S_OK);
  EXPECT_EQ(w.data, L"M");
  EXPECT_EQ(w.block, std::string("M\0", 2) + std::string(16, '\0'));

  // Whatever follows the padded group is not looked at.
  r = b64_decode("TWFuTQ==!!!!\r\n\r\n");
  EXPECT_EQ(r.hr, S_OK);
  EXPECT_EQ(as_text(r.data), "ManM");

  // A third-position pad ends the group whatever the fourth character is,
  // as long as it is in the alphabet.
  r = b64_decode("TQ=A");
  EXPECT_EQ(r.hr, S_OK);
  EXPECT_EQ(as_text(r.data), "M");
  EXPECT_EQ(b64_decode("TQ=*").hr, E_FAIL);

  // Bits beyond the pad are kept, not checked for zero.
  r = b64_decode("TR==");
  EXPECT_EQ(r.hr, S_OK);
  EXPECT_EQ(as_text(r.data), "M");
}

TEST(Base64, PadInFirstOrSecondPositionCountsAs64) {
  // Values OR-ed into place: b0 = v0<<2 | v1>>4, b1 = v1<<4 | v2>>2,
  // b2 = v2<<6 | v3, each cut to 8 bits; '=' is 64.
  struct Case {
    const char* encoded;
    std::basic_string<BYTE> bytes;
  };
  const Case cases[] = {
      {"=AAA", {0x00, 0x00, 0x00}},     // 64<<2 = 0x100 falls off the byte
      {"A=AA", {0x04, 0x00, 0x00}},     // 64>>4 = 4; 64<<4 = 0x400 falls off
      {"/=//", {0xFC, 0x0F, 0xFF}},     // 0xFC | 4 = 0xFC (OR, not a sum)
      {"==AA", {0x04, 0x00, 0x00}},
      {"A===", {0x04}},                 // third-position pad: one byte
      {"B=B=", {0x04, 0x00}},           // fourth-position pad: two bytes
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.encoded);
    const auto r = b64_decode(c.encoded);
    EXPECT_EQ(r.hr, S_OK);
    EXPECT_EQ(r.data, c.bytes);
    const auto w = b64_decode_w(widen(c.encoded));
    EXPECT_EQ(w.hr, S_OK);
    EXPECT_EQ(w.data, std::wstring(c.bytes.begin(), c.bytes.end()));
  }
}

TEST(Base64, AgreesWithCrypt32OnRandomData) {
  std::mt19937 random(20240607);
  for (int round = 0; round < 3000; ++round) {
    // Mostly short inputs around the group boundaries, some long ones that
    // exercise the wide steps of the codec.
    const size_t length = round % 10 == 0 ? 1 + random() % 5000 : 1 + random() % 64;
    const std::string plain = random_bytes(random, length);
    SCOPED_TRACE(testing::Message() << "round " << round << ", length " << length);

    const std::string expected = crypt32_encode(plain);
    const auto enc = b64_encode(plain);
    ASSERT_EQ(enc.hr, S_OK);
    ASSERT_EQ(enc.data, expected);
    ASSERT_EQ(enc.size, encoded_size(length));

    const auto dec = b64_decode(expected);
    ASSERT_EQ(dec.hr, S_OK);
    ASSERT_EQ(as_text(dec.data), crypt32_decode(expected));
    ASSERT_EQ(as_text(dec.data), plain);

    if (round % 4 == 0) {
      const auto enc_w = b64_encode_w(widen(plain));
      ASSERT_EQ(enc_w.hr, S_OK);
      ASSERT_EQ(enc_w.data, widen(expected));
      const auto dec_w = b64_decode_w(widen(expected));
      ASSERT_EQ(dec_w.hr, S_OK);
      ASSERT_EQ(dec_w.data, widen(plain));
    }
  }
}

TEST(Base64, AnyBadCharacterAnywhereFails) {
  // A valid encoding with one character replaced, at every position of a
  // long input (the codec takes several groups per step).
  std::mt19937 random(7);
  const std::string valid = crypt32_encode(random_bytes(random, 96));
  for (size_t i = 0; i < valid.size(); ++i) {
    std::string broken = valid;
    broken[i] = (i % 3 == 0) ? '\n' : (i % 3 == 1) ? '.' : '\0';
    SCOPED_TRACE(i);
    EXPECT_EQ(b64_decode(broken).hr, E_FAIL);
  }
}

}  // namespace
}  // namespace mvsup::test
