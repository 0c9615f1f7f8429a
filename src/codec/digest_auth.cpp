// MD5GetDigest and the HTTP digest-authentication response.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "MvSupCodec.h"
#include "codec/md5.h"
#include "frame/trace.h"

namespace mvsup::codec {

namespace {

using Digest = uint8_t[md5::kDigestSize];
using HexDigest = char[2 * md5::kDigestSize + 1];

void to_hex(const Digest digest, HexDigest hex) noexcept {
  static constexpr char kDigits[] = "0123456789abcdef";
  for (size_t i = 0; i < md5::kDigestSize; ++i) {
    hex[2 * i] = kDigits[digest[i] >> 4];
    hex[2 * i + 1] = kDigits[digest[i] & 15];
  }
  hex[2 * md5::kDigestSize] = '\0';
}

// MD5 of the parts joined by ':'.
class Hasher {
 public:
  Hasher() noexcept { md5::init(context_); }
  Hasher& add(std::string_view part) noexcept {
    if (!first_) md5::update(context_, ":", 1);
    first_ = false;
    md5::update(context_, part.data(), part.size());
    return *this;
  }
  void finish_hex(HexDigest hex) noexcept {
    Digest digest;
    md5::final(context_, digest);
    to_hex(digest, hex);
  }
  void finish(Digest digest) noexcept { md5::final(context_, digest); }

 private:
  md5::Context context_;
  bool first_ = true;
};

// ASCII only: the names compared are protocol tokens, not text of the user's locale.
bool equals_ignore_case(const char* a, const char* b) noexcept {
  for (;; ++a, ++b) {
    const char x = (*a >= 'A' && *a <= 'Z') ? static_cast<char>(*a - 'A' + 'a') : *a;
    const char y = (*b >= 'A' && *b <= 'Z') ? static_cast<char>(*b - 'A' + 'a') : *b;
    if (x != y) return false;
    if (x == '\0') return true;
  }
}

HRESULT digest_response(MVSUP_DIGEST_REQUEST& request) noexcept {
  request.response[0] = '\0';
  for (const char* field : {request.nonce, request.cnonce, request.user, request.realm, request.password,
                            request.algorithm, request.method, request.qop, request.digestUri})
    if (field == nullptr) return E_INVALIDARG;

  HexDigest ha1;
  if (equals_ignore_case(request.algorithm, "md5-sess")) {
    Digest first;
    Hasher().add(request.user).add(request.realm).add(request.password).finish(first);
    // The raw 16 bytes, not their hex text: servers we talk to check it this way.
    Hasher()
        .add(std::string_view(reinterpret_cast<const char*>(first), sizeof(first)))
        .add(request.nonce)
        .add(request.cnonce)
        .finish_hex(ha1);
  } else {
    Hasher().add(request.user).add(request.realm).add(request.password).finish_hex(ha1);
  }

  HexDigest ha2;
  Hasher ha2_hasher;
  ha2_hasher.add(request.method).add(request.digestUri);
  if (equals_ignore_case(request.qop, "auth-int")) {
    // The request carries no entity hash; its place is always 32 NUL bytes.
    static constexpr char kNoEntityHash[32] = {};
    ha2_hasher.add(std::string_view(kNoEntityHash, sizeof(kNoEntityHash)));
  }
  ha2_hasher.finish_hex(ha2);

  Hasher response;
  response.add(ha1).add(request.nonce);
  if (request.qop[0] != '\0') {
    char nonce_count[9];
    std::snprintf(nonce_count, sizeof(nonce_count), "%08lx", static_cast<unsigned long>(request.nonceCount));
    response.add(nonce_count).add(request.cnonce).add(request.qop);
  }
  response.add(ha2).finish_hex(request.response);
  return S_OK;
}

}  // namespace
}  // namespace mvsup::codec

extern "C" {

HRESULT WINAPI MD5GetDigest(const void* data, DWORD length, BYTE* digest) {
  if (digest == nullptr) return S_OK;
  mvsup::md5::digest(data, data ? length : 0, digest);
  return S_OK;
}

HRESULT WINAPI WWWAuthDigestCalcResponse(MVSUP_DIGEST_REQUEST* request) {
  mvsup::trace::CallScope scope("WWWAuthDigestCalcResponse");
  if (request == nullptr) return scope.hr(E_POINTER);
  return scope.hr(mvsup::codec::digest_response(*request));
}

}  // extern "C"
