// URL decomposition, the server's escaping rules and gateway URLs.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "MvSup2u.h"
#include "common/guard_page.h"

namespace mvsup::test {
namespace {

struct Parts {
  int result;
  std::wstring scheme, host, path;
  bool operator==(const Parts&) const = default;
};
void PrintTo(const Parts& parts, std::ostream* out) {
  *out << parts.result << " " << testing::PrintToString(parts.scheme) << " " << testing::PrintToString(parts.host)
       << " " << testing::PrintToString(parts.path);
}

Parts decompose(const wchar_t* url) {
  wchar_t scheme[40] = L"?", host[128] = L"?", path[128] = L"?";
  const int result = DecomposeURL(url, scheme, host, path);
  return {result, scheme, host, path};
}

std::string escaped(const char* text) {
  std::string out(3 * std::strlen(text) + 1, '?');
  DWORD length = 12345;
  EXPECT_EQ(URLCanonicalize(text, out.data(), &length), length);
  EXPECT_EQ(out.find('\0'), length);
  return out.substr(0, length);
}

std::string unescaped(const std::string& text, int out_size = 1000) {
  std::string out(static_cast<size_t>(std::max(out_size, 0)) + 1, '?');
  const int length = URLUncanonicalize(text.c_str(), out.data(), out_size);
  EXPECT_EQ(out.find('\0'), static_cast<size_t>(length));
  // Without a buffer: the length of the whole result.
  if (out_size >= 1000) {
    EXPECT_EQ(URLUncanonicalize(text.c_str(), nullptr, 0), length);
  }
  return out.substr(0, static_cast<size_t>(length));
}

std::wstring gateway(const wchar_t* server, const wchar_t* tail, int out_size = 300) {
  std::wstring out(static_cast<size_t>(out_size), L'?');
  if (MakeMervaneURL(server, tail, out.data(), out_size) != 1) return L"(0) " + out.substr(0, 1);
  return out.c_str();
}

TEST(DecomposeURL, SplitsAtSchemeMarkAndFirstSlash) {
  EXPECT_EQ(decompose(L"ftp://server:8080/a/b"), (Parts{1, L"ftp://", L"server:8080", L"/a/b"}));
  EXPECT_EQ(decompose(L"ftp://server"), (Parts{1, L"ftp://", L"server", L"/"}));
  EXPECT_EQ(decompose(L"http://host/p://q/r"), (Parts{1, L"http://", L"host", L"/p://q/r"}));
  EXPECT_EQ(decompose(L"://"), (Parts{1, L"://", L"", L"/"}));
  EXPECT_EQ(decompose(L"http:///path"), (Parts{1, L"http://", L"", L"/path"}));
  EXPECT_EQ(decompose(L"server/a"), (Parts{0, L"", L"", L""}));
  EXPECT_EQ(decompose(L"http:/server/a"), (Parts{0, L"", L"", L""}));

  // Every output is optional.
  wchar_t host[128];
  EXPECT_EQ(DecomposeURL(L"https://h/x", nullptr, host, nullptr), 1);
  EXPECT_STREQ(host, L"h");
}

TEST(DecomposeURL, CutsPartsToTheirBuffers) {
  const std::wstring scheme(60, L's'), host(200, L'h'), path = L"/" + std::wstring(200, L'p');
  const std::wstring url = scheme + L"://" + host + path;
  GuardedBuffer scheme_out(40 * sizeof(wchar_t)), host_out(128 * sizeof(wchar_t)), path_out(128 * sizeof(wchar_t));
  ASSERT_EQ(DecomposeURL(url.c_str(), scheme_out.as<wchar_t>(), host_out.as<wchar_t>(), path_out.as<wchar_t>()), 1);
  EXPECT_EQ(std::wstring(scheme_out.as<wchar_t>()), std::wstring(39, L's'));
  EXPECT_EQ(std::wstring(host_out.as<wchar_t>()), std::wstring(127, L'h'));
  EXPECT_EQ(std::wstring(path_out.as<wchar_t>()), L"/" + std::wstring(126, L'p'));

  // The URL itself flush against the end of readable memory.
  const std::wstring short_url = L"ftp://server";
  GuardedBuffer input(short_url.c_str(), (short_url.size() + 1) * sizeof(wchar_t));
  EXPECT_EQ(DecomposeURL(input.as<wchar_t>(), scheme_out.as<wchar_t>(), host_out.as<wchar_t>(),
                         path_out.as<wchar_t>()), 1);
  EXPECT_STREQ(path_out.as<wchar_t>(), L"/");
}

TEST(DecomposeURL, NarrowUrlsConvertThroughCodePage1252) {
  ASSERT_EQ(GetACP(), 1252u);
  wchar_t scheme[40], host[128], path[128];
  EXPECT_EQ(DecomposeURLA("http://b\xfc" "cher.example/stra\xdf" "e?q=\x80", scheme, host, path), 1);
  EXPECT_STREQ(scheme, L"http://");
  EXPECT_STREQ(host, L"b\u00fccher.example");
  EXPECT_STREQ(path, L"/stra\u00dfe?q=\u20ac");
  EXPECT_EQ(DecomposeURLA("b\xfc" "cher", scheme, host, path), 0);
  EXPECT_STREQ(host, L"");
}

TEST(URLCanonicalize, EscapesAllButLettersDigitsAndDot) {
  EXPECT_EQ(escaped("a b/c.txt"), "a%20b%2Fc.txt");
  EXPECT_EQ(escaped("AZaz09."), "AZaz09.");
  EXPECT_EQ(escaped("-_~:@?&="), "%2D%5F%7E%3A%40%3F%26%3D");
  EXPECT_EQ(escaped("\x01\x7f\x80\xe4\xff"), "%01%7F%80%E4%FF");
  EXPECT_EQ(escaped(""), "");

  DWORD length = 0;
  EXPECT_EQ(URLCanonicalize("a b", nullptr, &length), 5u);
  EXPECT_EQ(length, 5u);
  char out[16];
  EXPECT_EQ(URLCanonicalize("a b", out, nullptr), 5u);
  EXPECT_STREQ(out, "a%20b");
}

TEST(URLCanonicalize, WritesAtMostThreeTimesTheInputPlusOne) {
  const std::string input(50, '/');
  GuardedBuffer text(input.c_str(), input.size() + 1);
  GuardedBuffer out(3 * input.size() + 1);
  DWORD length = 0;
  EXPECT_EQ(URLCanonicalize(text.as<char>(), out.as<char>(), &length), 150u);
  EXPECT_EQ(std::string(out.as<char>()), [] {
    std::string expected;
    for (int i = 0; i < 50; ++i) expected += "%2F";
    return expected;
  }());
}

TEST(URLUncanonicalize, FollowsTheServersRules) {
  EXPECT_EQ(unescaped("a%20b"), "a b");
  EXPECT_EQ(unescaped("100%"), "100%");
  EXPECT_EQ(unescaped("%4"), "%4");
  EXPECT_EQ(unescaped("%00x"), "0x");
  EXPECT_EQ(unescaped("%4a%4A"), "JJ");
  EXPECT_EQ(unescaped("%%x"), "%x");
  EXPECT_EQ(unescaped("%E9"), "E9");   // a letter first: the '%' goes, both letters stay
  EXPECT_EQ(unescaped("%e9%"), "e9%");
  EXPECT_EQ(unescaped("%2z"), "\x02");  // the second digit is not hex: the first alone
  EXPECT_EQ(unescaped("%0zq"), "0q");
  EXPECT_EQ(unescaped("%9F"), "\x9f");
}

// Text escaped by URLCanonicalize comes back whole as long as no escape
// starts with a letter, i.e. for every byte below 0xA0.
TEST(URLUncanonicalize, UndoesTheEscapingOfBytesBelowA0) {
  std::string all;
  for (int c = 1; c < 0xA0; ++c) all += static_cast<char>(c);
  EXPECT_EQ(unescaped(escaped(all.c_str())), all);
  EXPECT_EQ(unescaped(escaped("\xa0\xe4")), "A0E4");
}

TEST(URLUncanonicalize, StopsAtOutSize) {
  EXPECT_EQ(unescaped("abcdef", 3), "abc");
  EXPECT_EQ(unescaped("%41%42%43", 2), "AB");
  EXPECT_EQ(unescaped("abc", 0), "");
  EXPECT_EQ(unescaped("abc", -5), "");
  EXPECT_EQ(URLUncanonicalize("a%20b%", nullptr, 1), 4);

  // outSize characters and a terminator, flush against the guard page; the
  // input flush against one as well.
  for (const char* input : {"%41%42%43%44", "abc%", "ab%4"}) {
    GuardedBuffer text(input, std::strlen(input) + 1);
    GuardedBuffer out(4);
    EXPECT_EQ(URLUncanonicalize(text.as<char>(), out.as<char>(), 3), 3) << input;
    EXPECT_EQ(std::string(out.as<char>()), std::string(input[0] == '%' ? "ABC" : input, 3)) << input;
  }
}

TEST(MakeMervaneURL, AddsTheScriptPathOnce) {
  EXPECT_EQ(gateway(L"http://mv.example.com", L"Collection-5"), L"http://mv.example.com/mvcgi/mv.py/Collection-5");
  EXPECT_EQ(gateway(L"http://mv.example.com/", L"Collection-5"), L"http://mv.example.com/mvcgi/mv.py/Collection-5");
  EXPECT_EQ(gateway(L"http://mv.example.com/mvcgi/mv.py/", L"File-7"), L"http://mv.example.com/mvcgi/mv.py/File-7");
  EXPECT_EQ(gateway(L"http://mv.example.com/mvcgi/mv.py", L"File-7"), L"http://mv.example.com/mvcgi/mv.py/File-7");
  EXPECT_EQ(gateway(L"http://mv.example.com/MVCGI/MV.PY/", L""), L"http://mv.example.com/MVCGI/MV.PY/mvcgi/mv.py/");
  EXPECT_EQ(gateway(L"http://mv.example.com", nullptr), L"http://mv.example.com/mvcgi/mv.py/");
  EXPECT_EQ(gateway(L"", L"Collection-5"), L"(0) ?");
  EXPECT_EQ(gateway(nullptr, L"Collection-5"), L"(0) ?");
  EXPECT_EQ(MakeMervaneURL(L"http://s", L"t", nullptr, 100), 0);
}

TEST(MakeMervaneURL, ChecksTheLengthAgainstOutSize) {
  // 8 + 12 + 13 + 2 = 35 characters counted, 34 written with the terminator.
  const wchar_t* server = L"http://s";
  const wchar_t* tail = L"Collection-5";
  for (int out_size : {35, 34}) {
    GuardedBuffer out(static_cast<size_t>(out_size) * sizeof(wchar_t));
    std::fill_n(out.as<wchar_t>(), out_size, L'?');
    EXPECT_EQ(MakeMervaneURL(server, tail, out.as<wchar_t>(), out_size), out_size == 35 ? 1 : 0);
    EXPECT_EQ(out.as<wchar_t>()[0], out_size == 35 ? L'h' : L'?');
  }
  // Without the reserve: 20 + 1 + 2 counted; an exact fit needs no more.
  const wchar_t* scripted = L"http://s/mvcgi/mv.py";
  GuardedBuffer out(23 * sizeof(wchar_t));
  EXPECT_EQ(MakeMervaneURL(scripted, L"X", out.as<wchar_t>(), 23), 1);
  EXPECT_STREQ(out.as<wchar_t>(), L"http://s/mvcgi/mv.py/X");
  EXPECT_EQ(MakeMervaneURL(scripted, L"X", out.as<wchar_t>(), 22), 0);
  EXPECT_EQ(MakeMervaneURL(scripted, L"X", out.as<wchar_t>(), -1), 0);
}

}  // namespace
}  // namespace mvsup::test
