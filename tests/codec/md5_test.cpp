// MD5 through MD5GetDigest: the RFC 1321 suite and advapi32's MD5 as an
// oracle in the same run; the context rules of the internal implementation.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "MvSup2u.h"
#include "codec/codec_calls.h"
#include "codec/md5.h"

namespace mvsup::test {
namespace {

TEST(Md5, Rfc1321TestSuite) {
  struct Vector {
    const char* message;
    const char* digest;
  };
  const Vector vectors[] = {
      {"", "d41d8cd98f00b204e9800998ecf8427e"},
      {"a", "0cc175b9c0f1b6a831c399e269772661"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57edf4a22be3c955ac49da2e2107b67a"},
  };
  for (const Vector& v : vectors) EXPECT_EQ(hex_lower(our_md5(v.message)), v.digest) << v.message;
}

TEST(Md5, NullArgumentsAreHarmless) {
  EXPECT_EQ(MD5GetDigest("abc", 3, nullptr), S_OK);
  BYTE digest[17];
  std::memset(digest, 0xff, sizeof(digest));
  EXPECT_EQ(MD5GetDigest(nullptr, 0, digest), S_OK);
  EXPECT_EQ(hex_lower(std::string(reinterpret_cast<char*>(digest), 16)), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(digest[16], 0xff);
  // Null data is empty input whatever the length says.
  EXPECT_EQ(MD5GetDigest(nullptr, 100, digest), S_OK);
  EXPECT_EQ(hex_lower(std::string(reinterpret_cast<char*>(digest), 16)), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(Md5, AgreesWithAdvapi32OnRandomData) {
  std::mt19937 random(1321);
  // Every length around the padding boundaries, then random lengths.
  for (size_t length = 0; length <= 200; ++length) {
    const std::string data = random_bytes(random, length);
    ASSERT_EQ(hex_lower(our_md5(data)), hex_lower(advapi_md5(data))) << "length " << length;
  }
  for (int round = 0; round < 3000; ++round) {
    const size_t length = round % 50 == 0 ? random() % 100000 : random() % 2048;
    const std::string data = random_bytes(random, length);
    ASSERT_EQ(hex_lower(our_md5(data)), hex_lower(advapi_md5(data))) << "round " << round << ", length " << length;
  }
}

TEST(Md5, PiecewiseUpdatesMatchOneCallAndFinalClearsTheContext) {
  std::mt19937 random(99);
  for (int round = 0; round < 500; ++round) {
    const std::string data = random_bytes(random, random() % 700);
    md5::Context context;
    md5::init(context);
    size_t at = 0;
    while (at < data.size()) {
      const size_t piece = std::min<size_t>(data.size() - at, random() % 130);
      md5::update(context, data.data() + at, piece);
      at += piece;
    }
    uint8_t digest[16];
    md5::final(context, digest);
    ASSERT_EQ(std::string(reinterpret_cast<char*>(digest), 16), advapi_md5(data)) << "round " << round;
    const md5::Context zero{};
    ASSERT_EQ(std::memcmp(&context, &zero, sizeof(context)), 0) << "context not cleared";
  }
}

}  // namespace
}  // namespace mvsup::test
