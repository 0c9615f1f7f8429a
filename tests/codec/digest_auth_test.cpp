// HTTP digest authentication: the RFC 2617 worked example and the variants,
// with expected values computed independently of the library.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>

#include "MvSup2u.h"
#include "codec/codec_calls.h"

namespace mvsup::test {
namespace {

// The record's C layout is fixed for callers in other languages.
#ifdef _WIN64
static_assert(offsetof(MVSUP_DIGEST_REQUEST, nonceCount) == 0);
static_assert(offsetof(MVSUP_DIGEST_REQUEST, nonce) == 8);
static_assert(offsetof(MVSUP_DIGEST_REQUEST, cnonce) == 16);
static_assert(offsetof(MVSUP_DIGEST_REQUEST, user) == 24);
static_assert(offsetof(MVSUP_DIGEST_REQUEST, realm) == 32);
static_assert(offsetof(MVSUP_DIGEST_REQUEST, password) == 40);
static_assert(offsetof(MVSUP_DIGEST_REQUEST, algorithm) == 48);
static_assert(offsetof(MVSUP_DIGEST_REQUEST, method) == 56);
static_assert(offsetof(MVSUP_DIGEST_REQUEST, qop) == 64);
static_assert(offsetof(MVSUP_DIGEST_REQUEST, digestUri) == 72);
static_assert(offsetof(MVSUP_DIGEST_REQUEST, response) == 80);
static_assert(sizeof(MVSUP_DIGEST_REQUEST) == 120);
#else
static_assert(offsetof(MVSUP_DIGEST_REQUEST, nonce) == 4);
static_assert(offsetof(MVSUP_DIGEST_REQUEST, digestUri) == 36);
static_assert(offsetof(MVSUP_DIGEST_REQUEST, response) == 40);
static_assert(sizeof(MVSUP_DIGEST_REQUEST) == 76);
#endif

// RFC 2617, section 3.5.
MVSUP_DIGEST_REQUEST rfc2617_request() {
  MVSUP_DIGEST_REQUEST request;
  std::memset(&request, 0xff, sizeof(request));
  request.nonceCount = 1;
  request.nonce = "dcd98b7102dd2f0e8b11d0f600bfb0c093";
  request.cnonce = "0a4f113b";
  request.user = "Mufasa";
  request.realm = "testrealm@host.com";
  request.password = "Circle Of Life";
  request.algorithm = "MD5";
  request.method = "GET";
  request.qop = "auth";
  request.digestUri = "/dir/index.html";
  return request;
}

std::string response_of(MVSUP_DIGEST_REQUEST request) {
  EXPECT_EQ(WWWAuthDigestCalcResponse(&request), S_OK);
  EXPECT_EQ(request.response[32], '\0');
  return std::string(request.response, strnlen(request.response, sizeof(request.response)));
}

TEST(DigestAuth, Rfc2617WorkedExample) {
  EXPECT_EQ(response_of(rfc2617_request()), "6629fae49393a05397450978507c4ef1");
}

TEST(DigestAuth, Variants) {
  // Expected values computed with Python's hashlib from the same fields.
  MVSUP_DIGEST_REQUEST request = rfc2617_request();
  request.qop = "";  // MD5(HA1 ":" nonce ":" HA2)
  EXPECT_EQ(response_of(request), "670fd8c2df070c60b045671b8b24ff02");

  // Session variant over the raw first digest; nonce count as "%08x".
  request = rfc2617_request();
  request.algorithm = "md5-sess";
  request.nonceCount = 0x1a2b;
  EXPECT_EQ(response_of(request), "4ce34d2fb9c020f2fe18c7279686522e");

  // Integrity protection with 32 NUL bytes for the entity hash.
  request = rfc2617_request();
  request.qop = "auth-int";
  request.nonceCount = 0xffffffff;
  EXPECT_EQ(response_of(request), "d83d542643b6303e9acdc5bcc8ebf026");

  // Names compared ignoring case; the qop text is hashed as given.
  request = rfc2617_request();
  request.algorithm = "MD5-SESS";
  request.qop = "AUTH-INT";
  EXPECT_EQ(response_of(request), "a8d234ec4f49798d074234395afab3b3");

  // Any other algorithm name, empty included, is plain MD5.
  request = rfc2617_request();
  request.algorithm = "";
  EXPECT_EQ(response_of(request), "6629fae49393a05397450978507c4ef1");
  request.algorithm = "md5-sess-not";
  EXPECT_EQ(response_of(request), "6629fae49393a05397450978507c4ef1");
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
    MVSUP_DIGEST_REQUEST request{};
    request.nonceCount = static_cast<DWORD>(random());
    request.nonce = nonce.c_str();
    request.cnonce = cnonce.c_str();
    request.user = user.c_str();
    request.realm = realm.c_str();
    request.password = password.c_str();
    request.algorithm = session ? "md5-sess" : "md5";
    request.method = method.c_str();
    request.qop = qop;
    request.digestUri = uri.c_str();

    std::string ha1 = advapi_md5(user + ":" + realm + ":" + password);
    ha1 = hex_lower(session ? advapi_md5(ha1 + ":" + nonce + ":" + cnonce) : ha1);
    std::string a2 = method + ":" + uri;
    if (std::string(qop) == "auth-int") a2 += ":" + std::string(32, '\0');
    const std::string ha2 = hex_lower(advapi_md5(a2));
    char nc[16];
    std::snprintf(nc, sizeof(nc), "%08lx", static_cast<unsigned long>(request.nonceCount));
    const std::string middle = *qop ? std::string(nc) + ":" + cnonce + ":" + qop + ":" : std::string();
    const std::string expected = hex_lower(advapi_md5(ha1 + ":" + nonce + ":" + middle + ha2));
    ASSERT_EQ(response_of(request), expected) << "round " << round;
  }
}

TEST(DigestAuth, NullRequestOrFields) {
  EXPECT_EQ(WWWAuthDigestCalcResponse(nullptr), E_POINTER);
  LPCSTR MVSUP_DIGEST_REQUEST::*fields[] = {
      &MVSUP_DIGEST_REQUEST::nonce,  &MVSUP_DIGEST_REQUEST::cnonce,    &MVSUP_DIGEST_REQUEST::user,
      &MVSUP_DIGEST_REQUEST::realm,  &MVSUP_DIGEST_REQUEST::password,  &MVSUP_DIGEST_REQUEST::algorithm,
      &MVSUP_DIGEST_REQUEST::method, &MVSUP_DIGEST_REQUEST::qop,       &MVSUP_DIGEST_REQUEST::digestUri};
  for (auto field : fields) {
    MVSUP_DIGEST_REQUEST request = rfc2617_request();
    request.*field = nullptr;
    EXPECT_EQ(WWWAuthDigestCalcResponse(&request), E_INVALIDARG);
    EXPECT_EQ(request.response[0], '\0');
  }
}

}  // namespace
}  // namespace mvsup::test
