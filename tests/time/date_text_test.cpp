// The server's date texts, through the exports. Expected instants and texts
// were computed with Python (calendar.timegm, email.utils.formatdate).
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <cwchar>
#include <string>

#include "MvSup2u.h"
#include "common/guard_page.h"
#include "time_values.h"

namespace mvsup::test {
namespace {

constexpr __time64_t kMonday20060814 = 1155546300;  // 2006-08-14 09:05:00 UTC
constexpr const wchar_t* kMondayGmt = L"Mon, 14 Aug 2006 09:05:00 GMT";
const SYSTEMTIME kMonday = make_time(2006, 8, 14, 9, 5, 0, /*Monday*/ 1);

// ---- Creation dates ----

TEST(CreationDate, WritesTheFieldsAsTheyStandIntoASharedBuffer) {
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

TEST(CreationDate, ReadsFieldsByPositionAndSetsTheDayOfWeek) {
  SYSTEMTIME t = sentinel_time();
  EXPECT_TRUE(SystemTimeFromMVCreationDate(L"2006-08-14T09:05:00Z", &t));
  EXPECT_EQ(show(t), show(kMonday));
  t = sentinel_time();
  EXPECT_TRUE(SystemTimeFromMVCreationDateA("2006-08-14T09:05:00Z", &t));
  EXPECT_EQ(show(t), show(kMonday));

  // Separators are not checked; no digits at a position read 0.
  EXPECT_TRUE(SystemTimeFromMVCreationDate(L"2024/02/29 xx.34.56", &t));
  EXPECT_EQ(show(t), show(make_time(2024, 2, 29, 0, 34, 56, /*Thursday*/ 4)));
  // Exactly 18 characters: the second is the one digit at position 17.
  EXPECT_TRUE(SystemTimeFromMVCreationDate(L"1700-03-01T00:00:7", &t));
  EXPECT_EQ(show(t), show(make_time(1700, 3, 1, 0, 0, 7, /*Monday*/ 1)));

  const SYSTEMTIME written = make_time(2099, 12, 31, 23, 59, 59, 0, 999);
  EXPECT_TRUE(SystemTimeFromMVCreationDate(MVCreationDateFromSystemTime(&written), &t));
  EXPECT_EQ(show(t), show(make_time(2099, 12, 31, 23, 59, 59, /*Thursday*/ 4, 0)));
}

TEST(CreationDate, ShortOrNullInputFailsAndImpossibleDatesKeepTheirFields) {
  SYSTEMTIME t = sentinel_time();
  const SYSTEMTIME untouched = t;
  EXPECT_FALSE(SystemTimeFromMVCreationDate(L"2006-08-14T09:05:", &t));  // 17 characters
  EXPECT_FALSE(SystemTimeFromMVCreationDate(nullptr, &t));
  EXPECT_FALSE(SystemTimeFromMVCreationDateA("2006-08-14T09:05:", &t));
  EXPECT_FALSE(SystemTimeFromMVCreationDateA(nullptr, &t));
  EXPECT_EQ(std::memcmp(&t, &untouched, sizeof(t)), 0);
  EXPECT_FALSE(SystemTimeFromMVCreationDate(L"2006-08-14T09:05:00Z", nullptr));

  EXPECT_FALSE(SystemTimeFromMVCreationDate(L"2023-02-29T09:05:00Z", &t));
  EXPECT_EQ(show(t), show(make_time(2023, 2, 29, 9, 5, 0, 0)));
  EXPECT_FALSE(SystemTimeFromMVCreationDate(L"2006-08-14T24:00:00Z", &t));
  EXPECT_FALSE(SystemTimeFromMVCreationDate(L"1600-12-31T00:00:00Z", &t));
  // A field too long for a WORD must not wrap round: 65544 would be August.
  EXPECT_FALSE(SystemTimeFromMVCreationDate(L"2006-65544T09:05:00Z", &t));
  EXPECT_EQ(t.wMonth, 0xFFFF);
}

TEST(CreationDate, ReaderStopsAtTheTerminator) {
  const wchar_t short_text[] = L"2006-08-14T09:05:";
  GuardedBuffer short_buffer(short_text, sizeof(short_text));
  SYSTEMTIME t = sentinel_time();
  EXPECT_FALSE(SystemTimeFromMVCreationDate(short_buffer.as<wchar_t>(), &t));

  // The last field runs to the end of the text.
  const wchar_t full_text[] = L"2006-08-14T09:05:59";
  GuardedBuffer full_buffer(full_text, sizeof(full_text));
  EXPECT_TRUE(SystemTimeFromMVCreationDate(full_buffer.as<wchar_t>(), &t));
  EXPECT_EQ(t.wSecond, 59);
  const char narrow_text[] = "2006-08-14T09:05:59";
  GuardedBuffer narrow_buffer(narrow_text, sizeof(narrow_text));
  EXPECT_TRUE(SystemTimeFromMVCreationDateA(narrow_buffer.as<char>(), &t));
}

// ---- HTTP dates: writing ----

std::wstring write_http(__time64_t time, LONG zone) {
  wchar_t buffer[64];
  std::wmemset(buffer, L'#', 64);
  EXPECT_EQ(TimetToGMTDate(time, zone, buffer, 64), S_OK) << "time " << time << " zone " << zone;
  return buffer;
}

TEST(HttpDateWriter, WritesUtcDateAndTime) {
  EXPECT_EQ(write_http(kMonday20060814, 0), kMondayGmt);
  EXPECT_EQ(write_http(0, 0), L"Thu, 01 Jan 1970 00:00:00 GMT");
  EXPECT_EQ(write_http(951782400, 0), L"Tue, 29 Feb 2000 00:00:00 GMT");
  EXPECT_EQ(write_http(32535215999, 0), L"Wed, 31 Dec 3000 23:59:59 GMT");
  const wchar_t* const days[] = {L"Mon,", L"Tue,", L"Wed,", L"Thu,", L"Fri,", L"Sat,", L"Sun,"};
  for (int i = 0; i < 7; ++i) EXPECT_EQ(write_http(kMonday20060814 + i * 86400, 0).substr(0, 4), days[i]);
}

TEST(HttpDateWriter, ZoneSuffixFollowsTheFixedRule) {
  const std::wstring base = L"Mon, 14 Aug 2006 09:05:00";
  // The time itself is never shifted.
  EXPECT_EQ(write_http(kMonday20060814, 7200), base + L" +0200");
  EXPECT_EQ(write_http(kMonday20060814, -18000), base + L" -0500");
  EXPECT_EQ(write_http(kMonday20060814, 50400), base + L" +1400");
  // Minutes are the remainder of the seconds, not of the hour.
  EXPECT_EQ(write_http(kMonday20060814, 5400), base + L" +0100");
  EXPECT_EQ(write_http(kMonday20060814, 19800), base + L" +0500");
  EXPECT_EQ(write_http(kMonday20060814, 3659), base + L" +0159");
  // Negative hours with minutes: hours up by one, minutes 60 minus minutes;
  // the sign is that of the hours.
  EXPECT_EQ(write_http(kMonday20060814, -18030), base + L" -0490");
  EXPECT_EQ(write_http(kMonday20060814, -3630), base + L" +0090");
  EXPECT_EQ(write_http(kMonday20060814, -30), base + L" +0030");
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
};

Read read_http(const wchar_t* text) {
  Read r{E_NOTIMPL, 0x5A5A5A5A5A5A, 0x5A5A5A5A};
  r.hr = TimetFromGMTDate(text, &r.time, &r.zone);
  return r;
}

void expect_read(const wchar_t* text, __time64_t time, LONG zone) {
  const Read r = read_http(text);
  EXPECT_EQ(r.hr, S_OK) << text;
  EXPECT_EQ(r.time, time) << text;
  EXPECT_EQ(r.zone, zone) << text;
}

TEST(HttpDateReader, ReadsTheTimeAsWrittenAndTheZoneApart) {
  expect_read(kMondayGmt, kMonday20060814, 0);
  expect_read(L"Mon, 14 Aug 2006 09:05:00 +0200", kMonday20060814, 7200);
  expect_read(L"Mon, 14 Aug 2006 09:05:00 +0530", kMonday20060814, 19800);
  expect_read(L"Mon, 14 Aug 2006 09:05:00 -0500", kMonday20060814, -18000);
  expect_read(L"Mon, 14 Aug 2006 09:05:00 -0930", kMonday20060814, -34200);
  expect_read(L"Mon, 14 Aug 2006 09:05:00 0100", kMonday20060814, 3600);
  // Before 1970: the reader is not limited to the writer's range.
  expect_read(L"Fri, 01 Jan 1960 00:00:00 GMT", -315619200, 0);
  // Names ignore case, blanks before tokens are skipped, the day name is not
  // checked against the date, and text after the zone is ignored.
  expect_read(L"mon, 14 aUG 2006 09:05:00 gmt", kMonday20060814, 0);
  expect_read(L"  Sun,   14   Aug   2006   09:05:00   +0200 (x)", kMonday20060814, 7200);
  expect_read(L"Mon,1 Aug 2006 9:5:0 GMT", 1154423100, 0);
  // 15 characters is still a token.
  expect_read(L"Mon, 000000000000014 Aug 2006 09:05:00 +00000000000100", kMonday20060814, 3600);

  __time64_t time = 0;
  LONG zone = 0;
  EXPECT_EQ(TimetFromGMTDateA("Tue, 29 Feb 2000 00:00:00 -0500", &time, &zone), S_OK);
  EXPECT_EQ(time, 951782400);
  EXPECT_EQ(zone, -18000);
  EXPECT_EQ(TimetFromGMTDate(L"Mon, 14 Aug 2006 09:05:00 +0200", &time, nullptr), S_OK);
}

TEST(HttpDateReader, ErrorCodesAndClearedOutputs) {
  struct Case {
    const wchar_t* text;
    HRESULT hr;
  };
  const Case cases[] = {
      {L"Mon 14 Aug 2006 09:05:00 GMT", E_INVALIDARG},   // no comma: the rest is one over-long token
      {L"Mon 14 Aug", E_UNEXPECTED},                     // ... unless it fits in 15 characters
      {L"Xyz, 14 Aug 2006 09:05:00 GMT", E_UNEXPECTED},  // unknown day
      {L", 14 Aug 2006 09:05:00 GMT", E_UNEXPECTED},
      {L"Mon, 14 August 2006 09:05:00 GMT", E_UNEXPECTED},  // unknown month
      {L"Mon, 14 Aug 2006 09:05:00", E_INVALIDARG},         // no zone
      {L"Mon, 14 Aug 2006 09:05:00   ", E_INVALIDARG},
      {L"Mon, 14 Aug 2006 09:05", E_INVALIDARG},
      {L"", E_INVALIDARG},
      {L"Mon, 1x Aug 2006 09:05:00 GMT", E_INVALIDARG},  // not a number
      {L"Mon, 14 Aug 2006 09:05:00 EST", E_INVALIDARG},  // neither GMT nor hhmm
      {L"Mon, 14 Aug 2006 09:05:00 +05:30", E_INVALIDARG},
      {L"Mon, 14 Aug 2006 09:05:00 +10000", E_INVALIDARG},
      {L"Mon, 30 Feb 2006 09:05:00 GMT", E_INVALIDARG},  // impossible date
      {L"Mon, 29 Feb 2006 09:05:00 GMT", E_INVALIDARG},
      {L"Mon, 14 Aug 2006 24:00:00 GMT", E_INVALIDARG},
      {L"Mon, 14 Aug 1600 09:05:00 GMT", E_INVALIDARG},
      {L"Mon, 14 Aug 65536 09:05:00 GMT", E_INVALIDARG},
      {L"Mon, 0000000000000014 Aug 2006 09:05:00 GMT", E_INVALIDARG},  // 16 characters
  };
  for (const Case& c : cases) {
    const Read r = read_http(c.text);
    EXPECT_EQ(r.hr, c.hr) << std::hex << r.hr << " for \"" << c.text << "\"";
    EXPECT_EQ(r.time, 0);
    EXPECT_EQ(r.zone, 0);
  }
  EXPECT_EQ(read_http(nullptr).hr, E_INVALIDARG);
  LONG zone = 77;
  EXPECT_EQ(TimetFromGMTDate(kMondayGmt, nullptr, &zone), E_POINTER);
  EXPECT_EQ(zone, 0);
  __time64_t time = 77;
  EXPECT_EQ(TimetFromGMTDateA("Xyz, 29 Feb 2000 00:00:00 -0500", &time, &zone), E_UNEXPECTED);
  EXPECT_EQ(TimetFromGMTDateA("Tue 29 Feb 2000 00:00:00 -0500", &time, &zone), E_INVALIDARG);
  EXPECT_EQ(TimetFromGMTDateA(nullptr, &time, &zone), E_INVALIDARG);
  EXPECT_EQ(time, 0);
}

TEST(HttpDateReader, ReadsBackWhatTheWriterWrote) {
  for (const __time64_t time : {0LL, 951782400LL, 1709210096LL, 32535215999LL}) {
    for (const LONG zone : {0L, 7200L, -18000L, 50400L}) {
      const std::wstring text = write_http(time, zone);
      expect_read(text.c_str(), time, zone);
    }
  }
}

TEST(HttpDateReader, NeverReadsPastTheTerminator) {
  const wchar_t full[] = L"Mon, 14 Aug 2006 09:05:00 GMT";
  GuardedBuffer full_buffer(full, sizeof(full));
  __time64_t time = 0;
  EXPECT_EQ(TimetFromGMTDate(full_buffer.as<wchar_t>(), &time, nullptr), S_OK);
  const wchar_t cut[] = L"Mon, 14 Aug 2006 09:05:00";
  GuardedBuffer cut_buffer(cut, sizeof(cut));
  EXPECT_EQ(TimetFromGMTDate(cut_buffer.as<wchar_t>(), &time, nullptr), E_INVALIDARG);
  const wchar_t no_comma[] = L"Mon 14";
  GuardedBuffer no_comma_buffer(no_comma, sizeof(no_comma));
  EXPECT_EQ(TimetFromGMTDate(no_comma_buffer.as<wchar_t>(), &time, nullptr), E_UNEXPECTED);
  const char narrow[] = "Mon, 14 Aug 2006 09:05:00 +0200";
  GuardedBuffer narrow_buffer(narrow, sizeof(narrow));
  SYSTEMTIME t = sentinel_time();
  EXPECT_EQ(SystemTimeFromMVModifiedDateA(narrow_buffer.as<char>(), &t), -1);
}

// ---- Modification dates ----

TEST(ModifiedDate, ResultTellsWhichSideOfUtcTheZoneIs) {
  struct Case {
    const wchar_t* text;
    int result;
  };
  for (const Case& c : {Case{L"Mon, 14 Aug 2006 09:05:00 +0200", -1}, Case{L"Mon, 14 Aug 2006 09:05:00 +0001", -1},
                        Case{kMondayGmt, 1}, Case{L"Mon, 14 Aug 2006 09:05:00 -0500", 1}}) {
    SYSTEMTIME t = sentinel_time();
    EXPECT_EQ(SystemTimeFromMVModifiedDate(c.text, &t), c.result) << c.text;
    EXPECT_EQ(show(t), show(kMonday));
  }
  SYSTEMTIME t = sentinel_time();
  EXPECT_EQ(SystemTimeFromMVModifiedDateA("Mon, 14 Aug 2006 09:05:00 +0200", &t), -1);
  EXPECT_EQ(show(t), show(kMonday));
}

TEST(ModifiedDate, FailureGivesZeroAndAClearedTime) {
  // 24 characters: a valid HTTP date, yet too short for a modification date.
  __time64_t time = 0;
  ASSERT_EQ(TimetFromGMTDate(L"Mon,1 Aug 2006 9:5:0 GMT", &time, nullptr), S_OK);
  for (const wchar_t* text : {L"Mon,1 Aug 2006 9:5:0 GMT", L"Xyz, 14 Aug 2006 09:05:00 GMT",
                              L"Mon, 31 Apr 2006 09:05:00 GMT", static_cast<const wchar_t*>(nullptr)}) {
    SYSTEMTIME t = sentinel_time();
    EXPECT_EQ(SystemTimeFromMVModifiedDate(text, &t), 0);
    EXPECT_EQ(show(t), show(kZeroTime));
  }
  SYSTEMTIME t = sentinel_time();
  EXPECT_EQ(SystemTimeFromMVModifiedDateA(nullptr, &t), 0);
  EXPECT_EQ(show(t), show(kZeroTime));
  EXPECT_EQ(SystemTimeFromMVModifiedDate(kMondayGmt, nullptr), 0);
}

TEST(ModifiedDate, WriterIsReadBackAsUtc) {
  const SYSTEMTIME written = make_time(2006, 8, 14, 9, 5, 0, /*wrong dow*/ 5, 500);
  EXPECT_STREQ(MVModifiedDateFromSystemTime(&written), kMondayGmt);
  SYSTEMTIME read = sentinel_time();
  EXPECT_EQ(SystemTimeFromMVModifiedDate(MVModifiedDateFromSystemTime(&written), &read), 1);
  EXPECT_EQ(show(read), show(kMonday));

  const SYSTEMTIME before_1970 = make_time(1969, 12, 31, 23, 59, 59);
  const SYSTEMTIME impossible = make_time(2023, 2, 29);
  EXPECT_STREQ(MVModifiedDateFromSystemTime(&before_1970), L"");
  EXPECT_STREQ(MVModifiedDateFromSystemTime(&impossible), L"");
  EXPECT_STREQ(MVModifiedDateFromSystemTime(nullptr), L"");
}

}  // namespace
}  // namespace mvsup::test
