// Quoted-printable decoding through the exports, narrow and wide.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "MvSup2u.h"
#include "codec/codec_calls.h"

namespace mvsup::test {
namespace {

using namespace std::string_literals;

// Checks one decode in both forms: status, result, and that the buffer holds
// a NUL after the result and is no larger than the input.
void expect_decodes(const std::string& input, HRESULT hr, const std::string& expected = {}) {
  SCOPED_TRACE(testing::Message() << "input \"" << input << "\"");
  const auto narrow = qp_decode(input);
  EXPECT_EQ(narrow.hr, hr);
  const auto wide = qp_decode_w(widen(input));
  EXPECT_EQ(wide.hr, hr);
  if (hr != S_OK) {
    EXPECT_FALSE(narrow.buffer);
    EXPECT_FALSE(wide.buffer);
    return;
  }
  EXPECT_EQ(narrow.data, expected);
  EXPECT_EQ(wide.data, widen(expected));
  EXPECT_GT(narrow.size, expected.size());
  EXPECT_LE(narrow.size, input.size());
  EXPECT_GT(wide.size, expected.size() * sizeof(wchar_t));
  EXPECT_LE(wide.size, input.size() * sizeof(wchar_t));
}

TEST(QuotedPrintable, InputWithoutEqualsSignIsLeftToTheCaller) {
  expect_decodes("abc", S_FALSE);
  expect_decodes("line\r\nbreak\r\n", S_FALSE);
  expect_decodes("", S_FALSE);
  // The whole count is searched, past embedded NULs.
  expect_decodes("a\0b=41"s, S_OK, "a");
}

TEST(QuotedPrintable, EscapesAndSoftLineBreaks) {
  expect_decodes("a=3Db", S_OK, "a=b");
  expect_decodes("=41=42=43xyz", S_OK, "ABCxyz");
  expect_decodes("a=\r\nb", S_OK, "ab");
  expect_decodes("a=\nb", S_OK, "ab");
  expect_decodes("a= \t \r\nb", S_OK, "ab");    // blanks between '=' and the line feed go too
  expect_decodes("one=\r\ntwo=\r\n", S_OK, "onetwo");  // soft break at the very end
  expect_decodes("a=\r\n=41", S_OK, "aA");
  expect_decodes("x=E9t=E9", S_OK, "x\xE9t\xE9");
  expect_decodes("hard\r\nbreak=2E", S_OK, "hard\r\nbreak.");
}

TEST(QuotedPrintable, LineFeedAfterAnEscapeIsDroppedButCarriageReturnKept) {
  expect_decodes("x=41\r\ny", S_OK, "xA\ry");
  // Any non-blank character after the pending '=' has the same effect.
  expect_decodes("a=b\nc", S_OK, "abc");
  // Only the most recent '=' is pending: here it starts a blank tail, so
  // this is a soft break although the text after the first '=' is not blank.
  expect_decodes("a=Q x= \r\ny", S_OK, "aQ xy");
  // A '=' at position 0 is never pending: its line feed stays.
  expect_decodes("=\r\nA", S_OK, "\r\nA");
}

TEST(QuotedPrintable, MalformedEscapes) {
  expect_decodes("a=3d", E_INVALIDARG);  // lower-case digits are not an escape
  expect_decodes("a=3dxx", E_INVALIDARG);
  expect_decodes("a=zz", S_OK, "azz");   // '=' before a non-digit is dropped
  expect_decodes("a==41", S_OK, "a=41");  // ... and the character after it copied as it is
  expect_decodes("ab=4", E_FAIL);        // cut off at the end
  expect_decodes("abc=", E_FAIL);
  expect_decodes("=", E_FAIL);
  expect_decodes("=A", E_FAIL);
  // The end is measured on the input as passed: after a soft break the same
  // escape is no longer at the end and fails on its missing second digit.
  expect_decodes("ab=\r\n=4", E_INVALIDARG);
}

TEST(QuotedPrintable, ResultEndsAtTheFirstNul) {
  expect_decodes("a=00b", S_OK, "a");
  expect_decodes("a=41\0=42"s, S_OK, "aA");
  // '=' before a NUL: the NUL is copied and ends the result.
  expect_decodes("a=\0bcd"s, S_OK, "a");
}

TEST(QuotedPrintable, WideFormKeepsUnitsAboveTheByteRange) {
  const auto r = qp_decode_w(L"\x20AC=3D\x4E2D=\r\n\x00E9");
  EXPECT_EQ(r.hr, S_OK);
  EXPECT_EQ(r.data, L"\x20AC=\x4E2D\x00E9");
  // A unit whose low byte is '=' is not an escape.
  EXPECT_EQ(qp_decode_w(L"a\x013D" L"41").hr, S_FALSE);
  // Full-width digits are not hex digits.
  EXPECT_EQ(qp_decode_w(L"a=\xFF14\xFF11z").data, L"a\xFF14\xFF11z");
}

TEST(QuotedPrintable, NullArgumentsAndEncoders) {
  EXPECT_EQ(call_codec<char>(QuotedPrintable_DecodeA, static_cast<const char*>(nullptr), 4).hr, E_POINTER);
  EXPECT_EQ(call_codec<wchar_t>(QuotedPrintable_Decode, static_cast<const wchar_t*>(nullptr), 0).hr, E_POINTER);
  DWORD length = 0xdeadbeef;
  EXPECT_EQ(QuotedPrintable_DecodeA("a=41", 4, nullptr, &length), E_POINTER);
  EXPECT_EQ(length, 0u);

  LPWSTR wide = reinterpret_cast<LPWSTR>(1);
  LPSTR narrow = reinterpret_cast<LPSTR>(1);
  length = 7;
  EXPECT_EQ(QuotedPrintable_Encode(L"a=b", 3, &wide, &length), E_NOTIMPL);
  EXPECT_EQ(QuotedPrintable_EncodeA("a=b", 3, &narrow, &length), E_NOTIMPL);
  EXPECT_EQ(QuotedPrintable_EncodeA(nullptr, 0, nullptr, nullptr), E_NOTIMPL);
}

}  // namespace
}  // namespace mvsup::test
