// Base64 and quoted-printable through the exports: RFC 4648 vectors and
// crypt32 as an oracle, the padding and escape rules, exact buffer sizes, and
// every decoder on random and mutated inputs placed flush against an
// inaccessible page.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "MvSup2u.h"
#include "codec/codec_calls.h"
#include "common/guard_page.h"

namespace mvsup::test {
namespace {

using namespace std::string_literals;

// Both directions, narrow and wide: the encoded characters without a
// terminator, count/4*3 decoded units.
void expect_both_ways(const std::string& plain, const std::string& encoded) {
  expect_ok(b64_encode(plain), encoded, encoded.size());
  expect_ok(b64_decode(encoded), plain, encoded.size() / 4 * 3);
  expect_ok(b64_encode_w(widen(plain)), encoded, encoded.size());
  expect_ok(b64_decode_w(widen(encoded)), plain, encoded.size() / 4 * 3);
}

TEST(Base64, AgreesWithRfc4648AndCrypt32) {
  // RFC 4648, section 10 (the empty string is the encoder's E_POINTER case).
  for (const auto& [plain, encoded] : {std::pair{"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foob", "Zm9vYg=="},
                                       {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"}}) {
    SCOPED_TRACE(plain);
    expect_both_ways(plain, encoded);
  }
  // Mostly short inputs around the group boundaries, some long ones that
  // exercise the wide steps of the codec.
  std::mt19937 random(20240607);
  for (int round = 0; round < 3000 && !HasFailure(); ++round) {
    const size_t length = round % 10 == 0 ? 1 + random() % 5000 : 1 + random() % 64;
    const std::string plain = random_bytes(random, length);
    SCOPED_TRACE(testing::Message() << "round " << round << ", length " << length);
    expect_both_ways(plain, crypt32_encode(plain));
  }
  // The wide encoder uses only the low byte of each unit.
  const wchar_t units[] = {0x014D, 0xFF61, 0x006E, 0x0100};
  expect_ok(b64_encode_w(std::wstring_view(units, 4)), "TWFuAA==", 8);
}

// Groups are looked up whole before the pad is looked at; decoding stops
// after the first padded group; '=' in the first two positions is 64 OR-ed
// into place (b0 = v0<<2 | v1>>4, b1 = v1<<4 | v2>>2, b2 = v2<<6 | v3).
TEST(Base64, PaddingRules) {
  const std::pair<std::string, std::string> cases[] = {
      {"TWE=", "Ma"},
      {"TQ==TWFu", "M"},
      {"TWFuTQ==!!!!\r\n\r\n", "ManM"},  // nothing after the padded group is looked at
      {"TQ=A", "M"},                     // a third-position pad ends the group
      {"TR==", "M"},                     // bits beyond the pad are not checked for zero
      {"=AAA", "\0\0\0"s},               // 64<<2 = 0x100 falls off the byte
      {"A=AA", "\x04\0\0"s},             // 64>>4 = 4; 64<<4 = 0x400 falls off
      {"/=//", "\xFC\x0F\xFF"},          // 0xFC | 4 = 0xFC (OR, not a sum)
      {"==AA", "\x04\0\0"s},
      {"A===", "\x04"},
      {"B=B=", "\x04\0"s},
  };
  for (const auto& [encoded, bytes] : cases) {
    SCOPED_TRACE(encoded);
    expect_ok(b64_decode(encoded), bytes, encoded.size() / 4 * 3);
    expect_ok(b64_decode_w(widen(encoded)), bytes, encoded.size() / 4 * 3);
  }
}

TEST(Base64, DecoderFailures) {
  const std::pair<std::string, HRESULT> cases[] = {
      {"TWFu\r\nTWFu", E_INVALIDARG},  // 10 characters
      {"TWF", E_INVALIDARG},
      {"TWF*", E_FAIL},
      {"TQ=*", E_FAIL},
      {"TWFuTW u", E_FAIL},  // white space is not skipped
      {"TW\0u"s, E_FAIL},
      {"TWFu\xC3\xA9==", E_FAIL},
      {"-_AA", E_FAIL},  // the URL-safe alphabet is not ours
      {std::string(4000, 'A') + "AAA!", E_FAIL},
      {"", E_POINTER},
  };
  for (const auto& [input, hr] : cases) {
    SCOPED_TRACE(input.substr(0, 20));
    const auto r = b64_decode(input);
    EXPECT_EQ(r.hr, hr);
    EXPECT_FALSE(r.buffer);
    EXPECT_EQ(b64_decode_w(widen(input)).hr, hr);
  }
  // Wide characters above 0xFF do not alias their low byte.
  EXPECT_EQ(b64_decode_w(L"TWF\x0175").hr, E_FAIL);
  EXPECT_EQ(b64_decode_w(L"TWF\xFF75").hr, E_FAIL);

  // One character replaced at every position of a long input (the codec
  // takes several groups per step).
  std::mt19937 random(7);
  const std::string valid = crypt32_encode(random_bytes(random, 96));
  for (size_t i = 0; i < valid.size(); ++i) {
    std::string broken = valid;
    broken[i] = "\n.\0"[i % 3];
    EXPECT_EQ(b64_decode(broken).hr, E_FAIL) << "position " << i;
  }
}

// Null inputs, outs and empty counts of every buffer-returning codec.
TEST(Codecs, NullArgumentsGivePointerErrorsAndClearTheOuts) {
  const auto refused = [](const auto& r, HRESULT hr) {
    EXPECT_EQ(r.hr, hr);
    EXPECT_FALSE(r.buffer);
  };
  const BYTE data[] = {1, 2, 3};
  refused(call_codec<char>(Base64Encode, static_cast<const BYTE*>(nullptr), 3), E_POINTER);
  refused(call_codec<char>(Base64Encode, data, 0), E_POINTER);
  refused(call_codec<wchar_t>(Base64EncodeW, L"abc", 0), E_POINTER);
  refused(call_codec<BYTE>(Base64Decode, static_cast<const char*>(nullptr), 4), E_POINTER);
  refused(call_codec<char>(QuotedPrintable_DecodeA, static_cast<const char*>(nullptr), 4), E_POINTER);
  refused(call_codec<wchar_t>(QuotedPrintable_Decode, static_cast<const wchar_t*>(nullptr), 0), E_POINTER);
  // An output longer than a DWORD can count is refused before any input is read.
  refused(call_codec<char>(Base64Encode, data, 0xFFFFFFFFu), E_OUTOFMEMORY);
  DWORD length = 0xdeadbeef;
  EXPECT_EQ(Base64Encode(data, 3, nullptr, &length), E_POINTER);
  EXPECT_EQ(length, 0u);
  length = 0xdeadbeef;
  EXPECT_EQ(QuotedPrintable_DecodeA("a=41", 4, nullptr, &length), E_POINTER);
  EXPECT_EQ(length, 0u);
  char* out = reinterpret_cast<char*>(1);
  EXPECT_EQ(Base64Encode(data, 3, &out, nullptr), E_POINTER);
  EXPECT_EQ(out, nullptr);

  LPWSTR wide = reinterpret_cast<LPWSTR>(1);
  LPSTR narrow = reinterpret_cast<LPSTR>(1);
  EXPECT_EQ(QuotedPrintable_Encode(L"a=b", 3, &wide, &length), E_NOTIMPL);
  EXPECT_EQ(QuotedPrintable_EncodeA("a=b", 3, &narrow, &length), E_NOTIMPL);
  EXPECT_EQ(QuotedPrintable_EncodeA(nullptr, 0, nullptr, nullptr), E_NOTIMPL);
}

// Each case narrow and wide (no buffer for a failure or S_FALSE); the block
// is no larger than the input.
void expect_qp(std::initializer_list<std::tuple<std::string, HRESULT, std::string>> cases) {
  for (const auto& [input, hr, expected] : cases) {
    SCOPED_TRACE(testing::Message() << "input \"" << input << "\"");
    const auto narrow = qp_decode(input);
    const auto wide = qp_decode_w(widen(input));
    EXPECT_EQ(narrow.hr, hr);
    EXPECT_EQ(wide.hr, hr);
    EXPECT_EQ(narrow.buffer, hr == S_OK);
    EXPECT_EQ(wide.buffer, hr == S_OK);
    if (hr != S_OK) continue;
    expect_ok(narrow, expected);
    expect_ok(wide, expected);
    EXPECT_LE(narrow.size, input.size());
    EXPECT_LE(wide.size, input.size() * sizeof(wchar_t));
  }
}

TEST(QuotedPrintable, EscapesSoftBreaksAndNuls) {
  expect_qp({
      {"abc", S_FALSE, ""},  // no '=': the input is left to the caller
      {"", S_FALSE, ""},
      {"a\0b=41"s, S_OK, "a"},  // the whole count is searched, past a NUL
      {"a=3Db", S_OK, "a=b"},
      {"=41=42=43xyz", S_OK, "ABCxyz"},
      {"x=E9t=E9", S_OK, "x\xE9t\xE9"},
      {"hard\r\nbreak=2E", S_OK, "hard\r\nbreak."},
      {"a=\r\nb", S_OK, "ab"},
      {"a=\nb", S_OK, "ab"},
      {"a= \t \r\nb", S_OK, "ab"},  // blanks between '=' and the line feed go too
      {"one=\r\ntwo=\r\n", S_OK, "onetwo"},
      {"a=00b", S_OK, "a"},  // the result ends at its first NUL
      {"a=41\0=42"s, S_OK, "aA"},
      {"a=\0bcd"s, S_OK, "a"},  // '=' before a NUL: the NUL is copied
  });
}

TEST(QuotedPrintable, LineFeedAfterAnEscapeAndMalformedEscapes) {
  expect_qp({
      {"x=41\r\ny", S_OK, "xA\ry"},  // the line feed goes, the carriage return stays
      {"a=b\nc", S_OK, "abc"},
      // Only the most recent '=' is pending, and here it starts a blank tail.
      {"a=Q x= \r\ny", S_OK, "aQ xy"},
      {"=\r\nA", S_OK, "\r\nA"},   // a '=' at position 0 is never pending
      {"a=3d", E_INVALIDARG, ""},  // lower-case digits are not an escape
      {"a=zz", S_OK, "azz"},    // '=' before a non-digit is dropped
      {"a==41", S_OK, "a=41"},  // ... and the character after it copied as it is
      {"ab=4", E_FAIL, ""},     // cut off at the end
      {"abc=", E_FAIL, ""},
      {"=", E_FAIL, ""},
      // The end is measured on the input as passed: after a soft break the
      // escape is no longer at the end and fails on its missing digit.
      {"ab=\r\n=4", E_INVALIDARG, ""},
  });
  // The wide form keeps units above the byte range; a unit whose low byte
  // is '=' is not an escape, nor are full-width digits hex digits.
  EXPECT_EQ(qp_decode_w(L"\x20AC=3D\x4E2D=\r\n\x00E9").data, L"\x20AC=\x4E2D\x00E9");
  EXPECT_EQ(qp_decode_w(L"a\x013D" L"41").hr, S_FALSE);
  EXPECT_EQ(qp_decode_w(L"a=\xFF14\xFF11z").data, L"a\xFF14\xFF11z");
}

// Mostly `common` characters, some padding, line breaks, blanks, NULs and
// arbitrary units.
template <typename Char>
std::basic_string<Char> random_text(std::mt19937& random, const char* common, size_t length) {
  std::basic_string<Char> text(length, Char{});
  const size_t common_count = std::char_traits<char>::length(common);
  for (Char& c : text) {
    const unsigned pick = random() % 100;
    if (pick < 70) c = static_cast<Char>(common[random() % common_count]);
    else if (pick < 80) c = static_cast<Char>('=');
    else if (pick < 86) c = static_cast<Char>(pick % 2 ? '\r' : '\n');
    else if (pick < 90) c = static_cast<Char>(' ');
    else if (pick < 93) c = Char{};
    else c = static_cast<Char>(random() & (sizeof(Char) == 1 ? 0xFF : 0xFFFF));
  }
  return text;
}

// A valid encoding with a few characters replaced, dropped or duplicated.
std::string mutated_base64(std::mt19937& random) {
  std::string text = crypt32_encode(random_bytes(random, 1 + random() % 40));
  const int edits = random() % 3;
  for (int i = 0; i < edits && !text.empty(); ++i) {
    const size_t at = random() % text.size();
    switch (random() % 3) {
      case 0: text[at] = "=*\r\0A"[random() % 5]; break;
      case 1: text.erase(at, 1); break;
      default: text.insert(at, 1, text[at]); break;
    }
  }
  return text;
}

// A defined status for every input, a buffer exactly on success. A zero
// count is E_POINTER, whatever the pointer.
template <typename Out, typename Char, typename Fn>
void run_guarded(Fn fn, const std::basic_string<Char>& input, std::initializer_list<HRESULT> allowed, bool base64) {
  GuardedBuffer guarded(input.data(), input.size() * sizeof(Char));
  const auto r = call_codec<Out>(fn, guarded.as<const Char>(), static_cast<DWORD>(input.size()));
  ASSERT_NE(std::find(allowed.begin(), allowed.end(), r.hr), allowed.end()) << std::hex << "HRESULT 0x" << r.hr;
  ASSERT_EQ(r.buffer, r.hr == S_OK);
  if (base64 && r.buffer) {
    EXPECT_EQ(r.size, input.size() / 4 * 3 * sizeof(Out));
  }
}

TEST(GuardedDecoders, Base64AndQuotedPrintable) {
  constexpr char kBase64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::mt19937 random(64);
  for (int round = 0; round < 4000 && !HasFatalFailure(); ++round) {
    SCOPED_TRACE(round);
    const std::string text =
        round % 2 ? mutated_base64(random) : random_text<char>(random, kBase64Alphabet, random() % 40);
    run_guarded<BYTE>(Base64Decode, text, {S_OK, E_FAIL, E_INVALIDARG, E_POINTER}, true);
    run_guarded<wchar_t>(Base64DecodeW, widen(text), {S_OK, E_FAIL, E_INVALIDARG, E_POINTER}, true);
    if (round % 4 == 0) {
      run_guarded<wchar_t>(Base64DecodeW, random_text<wchar_t>(random, kBase64Alphabet, 4 * (random() % 10)),
                           {S_OK, E_FAIL, E_POINTER}, true);
    }
    const size_t length = random() % 24;
    run_guarded<char>(QuotedPrintable_DecodeA, random_text<char>(random, "0123456789ABCDEFabz \t", length),
                      {S_OK, S_FALSE, E_FAIL, E_INVALIDARG}, false);
    run_guarded<wchar_t>(QuotedPrintable_Decode, random_text<wchar_t>(random, "0123456789ABCDEF=\r\n", length),
                         {S_OK, S_FALSE, E_FAIL, E_INVALIDARG}, false);
  }
}

TEST(GuardedDecoders, HexText) {
  std::mt19937 random(16);
  for (int round = 0; round < 4000; ++round) {
    SCOPED_TRACE(round);
    std::wstring text = random_text<wchar_t>(random, "0123456789abcdefABCDEF+- x", random() % 30);
    text.resize(std::find(text.begin(), text.end(), L'\0') - text.begin());
    // The terminator is the last readable unit.
    GuardedBuffer guarded(text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    BYTE* out = reinterpret_cast<BYTE*>(1);
    DWORD length = 0xdeadbeef;
    ASSERT_EQ(BinaryStringFromHexString(guarded.as<const wchar_t>(), &out, &length),
              text.empty() ? E_INVALIDARG : S_OK);
    ASSERT_EQ(length, text.size() / 2);
    ASSERT_EQ(out != nullptr, length != 0);
    if (out) {
      ASSERT_EQ(GlobalSize(out), length);
      GlobalFree(out);
    }
  }
}

}  // namespace
}  // namespace mvsup::test
