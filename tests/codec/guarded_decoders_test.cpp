// Every decoder on random and mutated inputs placed flush against an
// inaccessible page: no fault, no read past the input, a defined status for
// every input, and no buffer handed out on failure.
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

constexpr int kRounds = 4000;
constexpr char kBase64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Inputs that reach the interesting paths: mostly alphabet, some padding,
// line breaks, blanks, NULs and arbitrary units.
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

template <typename Char, typename Out, typename Fn>
void run_guarded(Fn fn, const std::basic_string<Char>& input, std::initializer_list<HRESULT> allowed,
                 size_t (*expected_size)(size_t)) {
  GuardedBuffer guarded(input.data(), input.size() * sizeof(Char));
  Out* out = reinterpret_cast<Out*>(1);
  DWORD length = 0xdeadbeef;
  const HRESULT hr = fn(guarded.as<const Char>(), static_cast<DWORD>(input.size()), &out, &length);
  ASSERT_NE(std::find(allowed.begin(), allowed.end(), hr), allowed.end()) << std::hex << "HRESULT 0x" << hr;
  if (hr != S_OK) {
    ASSERT_EQ(out, nullptr);
    ASSERT_EQ(length, 0u);
    return;
  }
  ASSERT_NE(out, nullptr);
  const size_t size = GlobalSize(out);
  if (expected_size) {
    EXPECT_EQ(size, expected_size(input.size()) * sizeof(Out));
  }
  EXPECT_LE(length * sizeof(Out), size);
  GlobalFree(out);
}

size_t base64_decoded_size(size_t count) { return count / 4 * 3; }

TEST(GuardedDecoders, Base64) {
  std::mt19937 random(64);
  for (int round = 0; round < kRounds; ++round) {
    SCOPED_TRACE(round);
    const std::string text =
        round % 2 ? mutated_base64(random) : random_text<char>(random, kBase64Alphabet, random() % 40);
    // A zero count is E_POINTER, whatever the pointer.
    run_guarded<char, BYTE>(Base64Decode, text, {S_OK, E_FAIL, E_INVALIDARG, E_POINTER}, base64_decoded_size);
    run_guarded<wchar_t, wchar_t>(Base64DecodeW, widen(text), {S_OK, E_FAIL, E_INVALIDARG, E_POINTER},
                                  base64_decoded_size);
    if (round % 4 == 0) {
      run_guarded<wchar_t, wchar_t>(Base64DecodeW, random_text<wchar_t>(random, kBase64Alphabet, 4 * (random() % 10)),
                                    {S_OK, E_FAIL, E_POINTER}, base64_decoded_size);
    }
    if (HasFatalFailure()) return;
  }
}

TEST(GuardedDecoders, QuotedPrintable) {
  std::mt19937 random(1521);
  for (int round = 0; round < kRounds; ++round) {
    SCOPED_TRACE(round);
    const size_t length = random() % 24;
    const std::string text = random_text<char>(random, "0123456789ABCDEFabz \t", length);
    run_guarded<char, char>(QuotedPrintable_DecodeA, text, {S_OK, S_FALSE, E_FAIL, E_INVALIDARG}, nullptr);
    run_guarded<wchar_t, wchar_t>(QuotedPrintable_Decode, random_text<wchar_t>(random, "0123456789ABCDEF=\r\n", length),
                                  {S_OK, S_FALSE, E_FAIL, E_INVALIDARG}, nullptr);
    if (HasFatalFailure()) return;
  }
}

TEST(GuardedDecoders, HexText) {
  std::mt19937 random(16);
  for (int round = 0; round < kRounds; ++round) {
    SCOPED_TRACE(round);
    std::wstring text = random_text<wchar_t>(random, "0123456789abcdefABCDEF+- x", random() % 30);
    text.resize(std::find(text.begin(), text.end(), L'\0') - text.begin());
    // The terminator is the last readable unit.
    GuardedBuffer guarded(text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    BYTE* out = reinterpret_cast<BYTE*>(1);
    DWORD length = 0xdeadbeef;
    const HRESULT hr = BinaryStringFromHexString(guarded.as<const wchar_t>(), &out, &length);
    if (text.empty()) {
      ASSERT_EQ(hr, E_INVALIDARG);
    } else {
      ASSERT_EQ(hr, S_OK);
      ASSERT_EQ(length, text.size() / 2);
    }
    if (out) {
      ASSERT_EQ(GlobalSize(out), length);
      GlobalFree(out);
    } else {
      ASSERT_EQ(length, 0u);
    }
  }
}

}  // namespace
}  // namespace mvsup::test
