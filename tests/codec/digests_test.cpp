// MD5 against the RFC 1321 suite and advapi32's MD5, HTTP digest
// authentication against RFC 2617 and values computed independently, hex
// text both ways and the fixed-length checksum.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <utility>

#include "MvSup2u.h"
#include "codec/codec_calls.h"
#include "codec/md5.h"

namespace mvsup::test {
namespace {

using namespace std::string_literals;

std::string our_md5(const char* data, DWORD length) {
  BYTE digest[17];
  std::memset(digest, 0xff, sizeof(digest));
  EXPECT_EQ(MD5GetDigest(data, length, digest), S_OK);
  EXPECT_EQ(digest[16], 0xff);
  return hex_lower(std::string(reinterpret_cast<char*>(digest), 16));
}
std::string our_md5(const std::string& data) { return our_md5(data.data(), static_cast<DWORD>(data.size())); }

TEST(Md5, Rfc1321TestSuiteAndNullArguments) {
  const std::pair<const char*, const char*> vectors[] = {
      {"", "d41d8cd98f00b204e9800998ecf8427e"},
      {"a", "0cc175b9c0f1b6a831c399e269772661"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57edf4a22be3c955ac49da2e2107b67a"},
  };
  for (const auto& [message, digest] : vectors) EXPECT_EQ(our_md5(message), digest) << message;
  // Null data is the empty input whatever the length says; a null digest is
  // not written.
  EXPECT_EQ(our_md5(nullptr, 100), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(MD5GetDigest("abc", 3, nullptr), S_OK);
}

// Every length around the padding boundaries, then random lengths; every
// sixth input also in random pieces through the internal context, which the
// final step clears.
TEST(Md5, AgreesWithAdvapi32OnRandomData) {
  std::mt19937 random(1321);
  for (int round = 0; round < 3200; ++round) {
    const size_t length = round <= 200 ? round : round % 50 == 0 ? random() % 100000 : random() % 2048;
    const std::string data = random_bytes(random, length);
    const std::string expected = advapi_md5(data);
    ASSERT_EQ(our_md5(data), hex_lower(expected)) << "round " << round << ", length " << length;
    if (round % 6 != 0) continue;
    md5::Context context;
    md5::init(context);
    for (size_t at = 0, piece = 0; at < data.size(); at += piece) {
      piece = std::min<size_t>(data.size() - at, random() % 130);
      md5::update(context, data.data() + at, piece);
    }
    uint8_t digest[16];
    md5::final(context, digest);
    ASSERT_EQ(std::string(reinterpret_cast<char*>(digest), 16), expected) << "pieces, round " << round;
    const md5::Context zero{};
    ASSERT_EQ(std::memcmp(&context, &zero, sizeof(context)), 0) << "context not cleared";
  }
}

// The record's C layout is fixed for callers in other languages: a DWORD,
// nine pointers in field order, the response (x64: 120 bytes, x86: 76).
using Request = MVSUP_DIGEST_REQUEST;
constexpr size_t P = sizeof(void*);
static_assert(offsetof(Request, nonce) == P && offsetof(Request, cnonce) == 2 * P && offsetof(Request, user) == 3 * P &&
              offsetof(Request, realm) == 4 * P && offsetof(Request, password) == 5 * P &&
              offsetof(Request, algorithm) == 6 * P && offsetof(Request, method) == 7 * P &&
              offsetof(Request, qop) == 8 * P && offsetof(Request, digestUri) == 9 * P);
static_assert(offsetof(Request, response) == 10 * P && sizeof(Request) == (P == 8 ? 120 : 76));

// RFC 2617, section 3.5.
const Request kRfc2617{1, "dcd98b7102dd2f0e8b11d0f600bfb0c093", "0a4f113b", "Mufasa", "testrealm@host.com",
                       "Circle Of Life", "MD5", "GET", "auth", "/dir/index.html", {}};

std::string response_of(Request request) {
  std::memset(request.response, 'x', sizeof(request.response));
  EXPECT_EQ(WWWAuthDigestCalcResponse(&request), S_OK);
  EXPECT_EQ(request.response[32], '\0');
  return std::string(request.response, strnlen(request.response, sizeof(request.response)));
}

TEST(DigestAuth, Rfc2617WorkedExampleAndVariants) {
  // Beyond the RFC's own, expected values computed with Python's hashlib.
  struct Case {
    const char* algorithm;
    const char* qop;
    DWORD nonce_count;
    const char* response;
  } const cases[] = {
      {"MD5", "auth", 1, "6629fae49393a05397450978507c4ef1"},  // the RFC's
      {"MD5", "", 1, "670fd8c2df070c60b045671b8b24ff02"},      // MD5(HA1 ":" nonce ":" HA2)
      // Session variant over the raw first digest; nonce count as "%08x";
      // integrity protection with 32 NUL bytes for the entity hash.
      {"md5-sess", "auth-int", 0x1a2b, "52669705bdc74464cc95b0582e918b17"},
      // Names compared ignoring case; the qop text is hashed as given.
      {"MD5-SESS", "AUTH-INT", 1, "a8d234ec4f49798d074234395afab3b3"},
      // Any other algorithm name, empty included, is plain MD5.
      {"", "auth", 1, "6629fae49393a05397450978507c4ef1"},
      {"md5-sess-not", "auth", 1, "6629fae49393a05397450978507c4ef1"},
  };
  for (const Case& c : cases) {
    Request request = kRfc2617;
    request.algorithm = c.algorithm;
    request.qop = c.qop;
    request.nonceCount = c.nonce_count;
    EXPECT_EQ(response_of(request), c.response) << c.algorithm << " " << c.qop;
  }
}

TEST(DigestAuth, AgreesWithAdvapi32ForRandomFields) {
  std::mt19937 random(2617);
  auto token = [&random]() {
    std::string text(random() % 40, '\0');
    for (char& c : text) c = static_cast<char>(' ' + random() % 95);
    return text;
  };
  for (int round = 0; round < 300; ++round) {
    const std::string nonce = token(), cnonce = token(), user = token(), realm = token(), password = token(),
                      method = token(), uri = token();
    const bool session = round % 2 == 1;
    const char* qop = round % 3 == 0 ? "" : round % 3 == 1 ? "auth" : "auth-int";
    const Request request{static_cast<DWORD>(random()), nonce.c_str(), cnonce.c_str(), user.c_str(), realm.c_str(),
                          password.c_str(), session ? "md5-sess" : "md5", method.c_str(), qop, uri.c_str(), {}};

    std::string ha1 = advapi_md5(user + ":" + realm + ":" + password);
    ha1 = hex_lower(session ? advapi_md5(ha1 + ":" + nonce + ":" + cnonce) : ha1);
    std::string a2 = method + ":" + uri;
    if (std::string(qop) == "auth-int") a2 += ":" + std::string(32, '\0');
    char nc[16];
    std::snprintf(nc, sizeof(nc), "%08lx", static_cast<unsigned long>(request.nonceCount));
    const std::string middle = *qop ? std::string(nc) + ":" + cnonce + ":" + qop + ":" : std::string();
    const std::string expected = hex_lower(advapi_md5(ha1 + ":" + nonce + ":" + middle + hex_lower(advapi_md5(a2))));
    ASSERT_EQ(response_of(request), expected) << "round " << round;
  }
}

TEST(DigestAuth, NullRequestOrFields) {
  EXPECT_EQ(WWWAuthDigestCalcResponse(nullptr), E_POINTER);
  for (LPCSTR Request::*field : {&Request::nonce, &Request::cnonce, &Request::user, &Request::realm,
                                 &Request::password, &Request::algorithm, &Request::method, &Request::qop,
                                 &Request::digestUri}) {
    Request request = kRfc2617;
    request.*field = nullptr;
    std::memset(request.response, 'x', sizeof(request.response));
    EXPECT_EQ(WWWAuthDigestCalcResponse(&request), E_INVALIDARG);
    EXPECT_EQ(request.response[0], '\0');
  }
}

// The bytes, or "<none>" when no buffer comes back.
std::string binary_from_hex(const wchar_t* text, HRESULT expected = S_OK) {
  BYTE* out = reinterpret_cast<BYTE*>(1);
  DWORD length = 0xdeadbeef;
  EXPECT_EQ(BinaryStringFromHexString(text, &out, &length), expected);
  if (out == nullptr) {
    EXPECT_EQ(length, 0u);
    return "<none>";
  }
  EXPECT_EQ(GlobalSize(out), length);
  std::string bytes(reinterpret_cast<char*>(out), length);
  GlobalFree(out);
  return bytes;
}

TEST(HexText, ConversionsAndBadArguments) {
  const BYTE data[] = {1, 2, 3};
  BSTR hex = reinterpret_cast<BSTR>(1);
  EXPECT_EQ(HexStringFromBinaryString(nullptr, 3, &hex), E_INVALIDARG);
  EXPECT_EQ(hex, nullptr);
  EXPECT_EQ(HexStringFromBinaryString(data, 0, &hex), E_INVALIDARG);
  EXPECT_EQ(HexStringFromBinaryString(data, 1, nullptr), E_POINTER);

  // Pair by pair as base-16 wcstol reads a two-character string, a trailing
  // odd digit ignored.
  EXPECT_EQ(binary_from_hex(L"0aFF1"), "\x0A\xFF");
  EXPECT_EQ(binary_from_hex(L"zz1zG0 5-1+f0x"), "\0\x01\0\x05\xFF\x0F\0"s);
  EXPECT_EQ(binary_from_hex(L"a"), "<none>");
  EXPECT_EQ(binary_from_hex(L"", E_INVALIDARG), "<none>");
  EXPECT_EQ(binary_from_hex(nullptr, E_INVALIDARG), "<none>");
  DWORD length = 5;
  EXPECT_EQ(BinaryStringFromHexString(L"00", nullptr, &length), E_POINTER);
  EXPECT_EQ(length, 0u);

  // Every byte value, upper case out; lower case reads back the same.
  std::string all(256, '\0');
  for (int i = 0; i < 256; ++i) all[i] = static_cast<char>(i);
  ASSERT_EQ(HexStringFromBinaryString(reinterpret_cast<const BYTE*>(all.data()), 256, &hex), S_OK);
  std::string upper = hex_lower(all);
  for (char& c : upper) c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
  EXPECT_EQ(std::wstring(hex, SysStringLen(hex)), widen(upper));
  SysFreeString(hex);
  EXPECT_EQ(binary_from_hex(widen(hex_lower(all)).c_str()), all);
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

  // A longer text, in both forms; the value computed with Python.
  std::string text(300, '\0');
  for (size_t i = 0; i < text.size(); ++i) text[i] = static_cast<char>((i * 37 + 11) % 128);
  EXPECT_EQ(GetFixedLengthDataDigestA(text.data(), 300), 0xc7a503e1u);
  EXPECT_EQ(GetFixedLengthDataDigest(widen(text).data(), 300), 0xc7a503e1u);
}

}  // namespace
}  // namespace mvsup::test
