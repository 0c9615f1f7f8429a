// The server's date texts, through the exports. Expected instants and texts
// were computed with Python (calendar.timegm, email.utils.formatdate).
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <cwchar>
#include <optional>
#include <ostream>
#include <string>

#include "MvSup2u.h"
#include "common/guard_page.h"
#include "time_values.h"

namespace mvsup::test {
namespace {

constexpr __time64_t kMonday20060814 = 1155546300;  // 2006-08-14 09:05:00 UTC
constexpr const wchar_t* kMondayGmt = L"Mon, 14 Aug 2006 09:05:00 GMT";
const SYSTEMTIME kMonday = make_time(2006, 8, 14, 9, 5, 0, /*Monday*/ 1);

// Wide and narrow copies of an ASCII text, each flush against a guard page;
// null stays null.
class GuardedTexts {
 public:
  explicit GuardedTexts(const wchar_t* text) {
    if (text == nullptr) return;
    const std::wstring wide(text);
    const std::string narrow(wide.begin(), wide.end());
    wide_.emplace(wide.c_str(), (wide.size() + 1) * sizeof(wchar_t));
    narrow_.emplace(narrow.c_str(), narrow.size() + 1);
  }
  const wchar_t* wide() { return wide_ ? wide_->as<wchar_t>() : nullptr; }
  const char* narrow() { return narrow_ ? narrow_->as<char>() : nullptr; }

 private:
  std::optional<GuardedBuffer> wide_, narrow_;
};

// ---- Creation dates ----

TEST(CreationDate, WriterPrintsTheFieldsAsTheyStandIntoASharedBuffer) {
  const SYSTEMTIME t = make_time(2006, 8, 14, 9, 5, 0, /*dow*/ 3, /*ms*/ 789);
  LPCWSTR first = MVCreationDateFromSystemTime(&t);
  EXPECT_STREQ(first, L"2006-08-14T09:05:00Z");
  const SYSTEMTIME short_year = make_time(999, 1, 2, 3, 4, 5);
  EXPECT_EQ(MVCreationDateFromSystemTime(&short_year), first);
  EXPECT_STREQ(first, L" 999-01-02T03:04:05Z");
  // Unchecked fields, and the widest text the buffer must hold.
  const SYSTEMTIME widest = make_time(65535, 65535, 65535, 65535, 65535, 65535);
  EXPECT_STREQ(MVCreationDateFromSystemTime(&widest), L"65535-65535-65535T65535:65535:65535Z");
  EXPECT_STREQ(MVCreationDateFromSystemTime(nullptr), L"");
}

TEST(CreationDate, ReaderTakesFieldsByPositionAndKeepsThemWhenTheDateIsImpossible) {
  const struct {
    const wchar_t* text;
    BOOL ok;
    SYSTEMTIME t;
  } cases[] = {
      {L"2006-08-14T09:05:00Z", TRUE, kMonday},
      // Separators are not checked; no digits at a position read 0.
      {L"2024/02/29 xx.34.56", TRUE, make_time(2024, 2, 29, 0, 34, 56, /*Thursday*/ 4)},
      // 18 characters: the second is the one digit at position 17. The last
      // field runs to the end of the text.
      {L"1700-03-01T00:00:7", TRUE, make_time(1700, 3, 1, 0, 0, 7, /*Monday*/ 1)},
      {L"2006-08-14T09:05:59", TRUE, make_time(2006, 8, 14, 9, 5, 59, 1)},
      {L"2006-08-14T09:05:", FALSE, sentinel_time()},  // 17 characters: nothing written
      {nullptr, FALSE, sentinel_time()},
      {L"2023-02-29T09:05:00Z", FALSE, make_time(2023, 2, 29, 9, 5)},
      {L"2006-08-14T24:00:00Z", FALSE, make_time(2006, 8, 14, 24)},
      {L"1600-12-31T00:00:00Z", FALSE, make_time(1600, 12, 31)},
      // A field too long for a WORD must not wrap round: 65544 would be August.
      {L"2006-65544T09:05:00Z", FALSE, make_time(2006, 65535, 44, 9, 5)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.text));
    GuardedTexts text(c.text);
    SYSTEMTIME wide = sentinel_time(), narrow = sentinel_time();
    EXPECT_EQ(SystemTimeFromMVCreationDate(text.wide(), &wide), c.ok);
    EXPECT_EQ(show(wide), show(c.t));
    EXPECT_EQ(SystemTimeFromMVCreationDateA(text.narrow(), &narrow), c.ok);
    EXPECT_EQ(show(narrow), show(c.t));
  }
  EXPECT_FALSE(SystemTimeFromMVCreationDate(L"2006-08-14T09:05:00Z", nullptr));

  SYSTEMTIME t;
  const SYSTEMTIME written = make_time(2099, 12, 31, 23, 59, 59, 0, 999);
  EXPECT_TRUE(SystemTimeFromMVCreationDate(MVCreationDateFromSystemTime(&written), &t));
  EXPECT_EQ(show(t), show(make_time(2099, 12, 31, 23, 59, 59, /*Thursday*/ 4, 0)));
}

// ---- HTTP dates: writing ----

std::wstring write_http(__time64_t time, LONG zone) {
  wchar_t buffer[64];
  std::wmemset(buffer, L'#', 64);
  EXPECT_EQ(TimetToGMTDate(time, zone, buffer, 64), S_OK) << "time " << time << " zone " << zone;
  return buffer;
}

TEST(HttpDateWriter, WritesTheUtcTimeWithTheZoneSuffixOfTheFixedRule) {
  EXPECT_EQ(write_http(kMonday20060814, 0), kMondayGmt);
  EXPECT_EQ(write_http(0, 0), L"Thu, 01 Jan 1970 00:00:00 GMT");
  EXPECT_EQ(write_http(951782400, 0), L"Tue, 29 Feb 2000 00:00:00 GMT");
  EXPECT_EQ(write_http(32535215999, 0), L"Wed, 31 Dec 3000 23:59:59 GMT");
  const wchar_t* const days[] = {L"Mon,", L"Tue,", L"Wed,", L"Thu,", L"Fri,", L"Sat,", L"Sun,"};
  for (int i = 0; i < 7; ++i) EXPECT_EQ(write_http(kMonday20060814 + i * 86400, 0).substr(0, 4), days[i]);

  // The time itself is never shifted. Minutes are the remainder of the
  // seconds, not of the hour; negative hours with minutes go up by one with
  // 60 minus the minutes, and the sign is that of the hours.
  const std::pair<LONG, const wchar_t*> zones[] = {
      {7200, L"+0200"},   {-18000, L"-0500"}, {50400, L"+1400"}, {5400, L"+0100"}, {19800, L"+0500"},
      {3659, L"+0159"},   {-18030, L"-0490"}, {-3630, L"+0090"}, {-30, L"+0030"},
  };
  for (const auto& [zone, suffix] : zones)
    EXPECT_EQ(write_http(kMonday20060814, zone), std::wstring(L"Mon, 14 Aug 2006 09:05:00 ") + suffix);
}

TEST(HttpDateWriter, BufferIsClearedTruncatedAndTerminated) {
  for (const __time64_t time : {static_cast<__time64_t>(-1), static_cast<__time64_t>(32535216000), INT64_MIN}) {
    wchar_t buffer[40];
    std::wmemset(buffer, L'#', 40);
    EXPECT_EQ(TimetToGMTDate(time, 0, buffer, 32), E_FAIL) << time;
    for (int i = 0; i < 40; ++i) EXPECT_EQ(buffer[i], i < 32 ? L'\0' : L'#') << i;
  }
  char narrow[8] = "#######";
  EXPECT_EQ(TimetToGMTDateA(-1, 0, narrow, 8), E_FAIL);
  EXPECT_EQ(std::memcmp(narrow, "\0\0\0\0\0\0\0\0", 8), 0);

  EXPECT_EQ(TimetToGMTDate(kMonday20060814, 0, nullptr, 64), E_POINTER);
  EXPECT_EQ(TimetToGMTDateA(kMonday20060814, 0, nullptr, 64), E_POINTER);
  wchar_t untouched[2] = {L'#', L'#'};
  EXPECT_EQ(TimetToGMTDate(kMonday20060814, 0, untouched, 0), E_INVALIDARG);
  EXPECT_EQ(untouched[0], L'#');

  GuardedBuffer wide(10 * sizeof(wchar_t));
  EXPECT_EQ(TimetToGMTDate(kMonday20060814, 7200, wide.as<wchar_t>(), 10), S_OK);
  EXPECT_STREQ(wide.as<wchar_t>(), L"Mon, 14 A");
  GuardedBuffer exact(32);  // 31 characters and the terminator
  EXPECT_EQ(TimetToGMTDateA(kMonday20060814, -18000, exact.as<char>(), 32), S_OK);
  EXPECT_STREQ(exact.as<char>(), "Mon, 14 Aug 2006 09:05:00 -0500");
}

// ---- HTTP dates: reading ----

struct Read {
  HRESULT hr;
  __time64_t time;
  LONG zone;
  bool operator==(const Read& o) const { return hr == o.hr && time == o.time && zone == o.zone; }
};
std::ostream& operator<<(std::ostream& out, const Read& r) {
  return out << std::hex << r.hr << std::dec << " " << r.time << " " << r.zone;
}

// Both readers, on copies of the text flush against a guard page.
void expect_read(const wchar_t* text, const Read& expected) {
  GuardedTexts guarded(text);
  Read wide{E_NOTIMPL, 0x5A5A5A5A5A5A, 0x5A5A5A5A}, narrow = wide;
  wide.hr = TimetFromGMTDate(guarded.wide(), &wide.time, &wide.zone);
  narrow.hr = TimetFromGMTDateA(guarded.narrow(), &narrow.time, &narrow.zone);
  EXPECT_EQ(wide, expected) << testing::PrintToString(text);
  EXPECT_EQ(narrow, expected) << testing::PrintToString(text);
}

// The date and time are read as written, the zone apart; failures clear
// both outputs.
TEST(HttpDateReader, ReadsTheTimeAsWrittenAndTheZoneApartOrFailsWithTheDocumentedCode) {
  const Read kInvalid{E_INVALIDARG, 0, 0}, kUnexpected{E_UNEXPECTED, 0, 0};
  const struct {
    const wchar_t* text;
    Read read;
  } cases[] = {
      {kMondayGmt, {S_OK, kMonday20060814, 0}},
      {L"Mon, 14 Aug 2006 09:05:00 +0530", {S_OK, kMonday20060814, 19800}},
      {L"Mon, 14 Aug 2006 09:05:00 -0930", {S_OK, kMonday20060814, -34200}},
      {L"Mon, 14 Aug 2006 09:05:00 0100", {S_OK, kMonday20060814, 3600}},
      {L"Fri, 01 Jan 1960 00:00:00 GMT", {S_OK, -315619200, 0}},  // not limited to the writer's range
      // Names ignore case, blanks before tokens are skipped, the day name is
      // not checked against the date, and text after the zone is ignored.
      {L"mon, 14 aUG 2006 09:05:00 gmt", {S_OK, kMonday20060814, 0}},
      {L"  Sun,   14   Aug   2006   09:05:00   +0200 (x)", {S_OK, kMonday20060814, 7200}},
      {L"Mon,1 Aug 2006 9:5:0 GMT", {S_OK, 1154423100, 0}},
      {L"Mon, 000000000000014 Aug 2006 09:05:00 +00000000000100", {S_OK, kMonday20060814, 3600}},  // 15 characters
      {L"Mon, 0000000000000014 Aug 2006 09:05:00 GMT", kInvalid},  // 16 characters
      {L"Mon 14 Aug 2006 09:05:00 GMT", kInvalid},  // no comma: the rest is one over-long token
      {L"Mon 14 Aug", kUnexpected},                 // ... unless it fits in 15 characters
      {L"Xyz, 14 Aug 2006 09:05:00 GMT", kUnexpected},     {L", 14 Aug 2006 09:05:00 GMT", kUnexpected},
      {L"Mon, 14 August 2006 09:05:00 GMT", kUnexpected},  {L"Mon, 14 Aug 2006 09:05:00", kInvalid},
      {L"Mon, 14 Aug 2006 09:05:00   ", kInvalid},         {L"Mon, 14 Aug 2006 09:05", kInvalid},
      {L"", kInvalid},                                     {nullptr, kInvalid},
      {L"Mon, 1x Aug 2006 09:05:00 GMT", kInvalid},        {L"Mon, 14 Aug 2006 09:05:00 EST", kInvalid},
      {L"Mon, 14 Aug 2006 09:05:00 +05:30", kInvalid},     {L"Mon, 14 Aug 2006 09:05:00 +10000", kInvalid},
      {L"Mon, 30 Feb 2006 09:05:00 GMT", kInvalid},        {L"Mon, 14 Aug 2006 24:00:00 GMT", kInvalid},
      {L"Mon, 14 Aug 1600 09:05:00 GMT", kInvalid},        {L"Mon, 14 Aug 65536 09:05:00 GMT", kInvalid},
  };
  for (const auto& c : cases) expect_read(c.text, c.read);
  for (const __time64_t time : {0LL, 951782400LL, 1709210096LL, 32535215999LL})
    for (const LONG zone : {0L, 7200L, -18000L, 50400L})
      expect_read(write_http(time, zone).c_str(), {S_OK, time, zone});

  LONG zone = 77;
  EXPECT_EQ(TimetFromGMTDate(kMondayGmt, nullptr, &zone), E_POINTER);
  EXPECT_EQ(zone, 0);
  __time64_t time = 0;
  EXPECT_EQ(TimetFromGMTDate(kMondayGmt, &time, nullptr), S_OK);
  EXPECT_EQ(time, kMonday20060814);
}

// ---- Modification dates ----

// -1 east of UTC, 1 otherwise, 0 on failure with the time cleared.
TEST(ModifiedDate, ResultTellsWhichSideOfUtcTheZoneIs) {
  const std::pair<const wchar_t*, int> cases[] = {
      {L"Mon, 14 Aug 2006 09:05:00 +0200", -1}, {L"Mon, 14 Aug 2006 09:05:00 +0001", -1}, {kMondayGmt, 1},
      {L"Mon, 14 Aug 2006 09:05:00 -0500", 1},
      {L"Mon,1 Aug 2006 9:5:0 GMT", 0},  // 24 characters: a valid HTTP date, yet too short
      {L"Xyz, 14 Aug 2006 09:05:00 GMT", 0},    {L"Mon, 31 Apr 2006 09:05:00 GMT", 0}, {nullptr, 0},
  };
  for (const auto& [text, result] : cases) {
    SCOPED_TRACE(testing::PrintToString(text));
    GuardedTexts guarded(text);
    SYSTEMTIME wide = sentinel_time(), narrow = sentinel_time();
    EXPECT_EQ(SystemTimeFromMVModifiedDate(guarded.wide(), &wide), result);
    EXPECT_EQ(show(wide), show(result ? kMonday : kZeroTime));
    EXPECT_EQ(SystemTimeFromMVModifiedDateA(guarded.narrow(), &narrow), result);
    EXPECT_EQ(show(narrow), show(result ? kMonday : kZeroTime));
  }
  EXPECT_EQ(SystemTimeFromMVModifiedDate(kMondayGmt, nullptr), 0);
}

TEST(ModifiedDate, WriterIsReadBackAsUtc) {
  const SYSTEMTIME written = make_time(2006, 8, 14, 9, 5, 0, /*wrong dow*/ 5, 500);
  EXPECT_STREQ(MVModifiedDateFromSystemTime(&written), kMondayGmt);
  SYSTEMTIME read = sentinel_time();
  EXPECT_EQ(SystemTimeFromMVModifiedDate(MVModifiedDateFromSystemTime(&written), &read), 1);
  EXPECT_EQ(show(read), show(kMonday));
  const SYSTEMTIME impossible = make_time(2023, 2, 29);
  const SYSTEMTIME before_1601 = make_time(1600, 12, 31, 23, 59, 59);
  EXPECT_STREQ(MVModifiedDateFromSystemTime(&impossible), L"");
  EXPECT_STREQ(MVModifiedDateFromSystemTime(&before_1601), L"");
  EXPECT_STREQ(MVModifiedDateFromSystemTime(nullptr), L"");
}

// The reader takes every SYSTEMTIME from 1601 to 30827: the writer writes
// each of them so that it reads back (day names from Python's calendar).
TEST(ModifiedDate, EveryDateTheReaderTakesIsWrittenReadably) {
  const struct {
    SYSTEMTIME time;
    const wchar_t* text;
  } edges[] = {
      {make_time(1601, 1, 1), L"Mon, 01 Jan 1601 00:00:00 GMT"},
      {make_time(1969, 7, 20, 20, 17, 40), L"Sun, 20 Jul 1969 20:17:40 GMT"},
      {make_time(3001, 1, 1, 8), L"Thu, 01 Jan 3001 08:00:00 GMT"},
      {make_time(3500, 1, 1), L"Mon, 01 Jan 3500 00:00:00 GMT"},
      {make_time(30827, 12, 31, 23, 59, 59), L"Fri, 31 Dec 30827 23:59:59 GMT"},
  };
  for (const auto& edge : edges) EXPECT_STREQ(MVModifiedDateFromSystemTime(&edge.time), edge.text);

  for (int year = 1601; year <= 30827; year += 7) {
    SYSTEMTIME time = make_time(year, 1 + year % 12, 1 + year % 28, year % 24, year % 60, year / 7 % 60);
    ASSERT_TRUE(SetDayOfWeekInSystemTime(&time));
    SCOPED_TRACE(show(time));
    const LPCWSTR text = MVModifiedDateFromSystemTime(&time);
    SYSTEMTIME read = sentinel_time();
    ASSERT_EQ(SystemTimeFromMVModifiedDate(text, &read), 1) << testing::PrintToString(std::wstring(text));
    ASSERT_EQ(show(read), show(time));
  }
}

}  // namespace
}  // namespace mvsup::test
