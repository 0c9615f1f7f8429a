// The zone-free conversions, through the exports. Expected values were
// computed with Python (calendar.timegm, datetime arithmetic from the OLE
// epoch 1899-12-30); DOS words from their bit layout by hand.
#include <windows.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <ctime>
#include <limits>

#include "MvSup2u.h"
#include "time_values.h"

namespace mvsup::test {
namespace {

constexpr __time64_t kMonday20060814 = 1155546300;  // 2006-08-14 09:05:00 UTC
constexpr DATE kMondayOle = 38943.37847222222;
constexpr WORD kMondayDosDate = 13582;  // (26 << 9) | (8 << 5) | 14
constexpr WORD kMondayDosTime = 18592;  // (9 << 11) | (5 << 5) | 0
constexpr double kOleTolerance = 1e-8;  // well under a millisecond
constexpr double kSecond = 1.0 / 86400;

void expect_invalid_parameter_error() { EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER)); }

unsigned long long ticks_of(const FILETIME& f) {
  return (static_cast<unsigned long long>(f.dwHighDateTime) << 32) | f.dwLowDateTime;
}

FILETIME file_time_of(unsigned long long ticks) {
  return FILETIME{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

TEST(FileTimeTimet, ConvertExactlyAndRoundDown) {
  FILETIME f{0xdeadbeef, 0xdeadbeef};
  EXPECT_TRUE(TimetToFileTime(kMonday20060814, &f));
  EXPECT_EQ(ticks_of(f), 128000199000000000ull);
  __time64_t t = 77;
  EXPECT_TRUE(TimetFromFileTime(&f, &t));
  EXPECT_EQ(t, kMonday20060814);

  // Half a second before 1970 is still 1969-12-31 23:59:59.
  const FILETIME before_epoch = file_time_of(116444736000000000ull - 5000000ull);
  EXPECT_TRUE(TimetFromFileTime(&before_epoch, &t));
  EXPECT_EQ(t, -1);

  // The ends of the FILETIME range.
  EXPECT_TRUE(TimetToFileTime(-11644473600, &f));
  EXPECT_EQ(ticks_of(f), 0u);
  EXPECT_TRUE(TimetToFileTime(910692730085, &f));
  EXPECT_EQ(ticks_of(f), 9223372036850000000ull);
}

TEST(FileTimeTimet, OutOfRangeFailsWithZeroedOutput) {
  for (const __time64_t out_of_range : {-11644473601LL, 910692730086LL, std::numeric_limits<__time64_t>::max(),
                                        std::numeric_limits<__time64_t>::min()}) {
    FILETIME f{0xdeadbeef, 0xdeadbeef};
    SetLastError(0xdeadbeef);
    EXPECT_FALSE(TimetToFileTime(out_of_range, &f)) << out_of_range;
    EXPECT_EQ(ticks_of(f), 0u);
    expect_invalid_parameter_error();
  }
  const FILETIME negative = file_time_of(0x8000000000000000ull);
  __time64_t t = 77;
  EXPECT_FALSE(TimetFromFileTime(&negative, &t));
  EXPECT_EQ(t, 0);
  EXPECT_FALSE(TimetFromFileTime(nullptr, &t));
  EXPECT_FALSE(TimetFromFileTime(&negative, nullptr));
  EXPECT_FALSE(TimetToFileTime(0, nullptr));
}

TEST(DayOfWeek, IsComputedFromTheDateOrLeftAlone) {
  const SYSTEMTIME dated[] = {
      make_time(2006, 8, 14, 9, 5, 0, 1),    // Monday
      make_time(2024, 2, 29, 23, 59, 59, 4), // Thursday
      make_time(1700, 3, 1, 0, 0, 0, 1),     // Monday; 1700 is no leap year
      make_time(1601, 1, 1, 0, 0, 0, 1),     // the first FILETIME day
      make_time(30827, 12, 31, 0, 0, 0, 5),  // the last SYSTEMTIME year
  };
  for (const SYSTEMTIME& expected : dated) {
    SYSTEMTIME t = expected;
    t.wDayOfWeek = 9;
    EXPECT_TRUE(SetDayOfWeekInSystemTime(&t));
    EXPECT_EQ(show(t), show(expected));
  }
  for (SYSTEMTIME t : {make_time(2023, 2, 29, 0, 0, 0, 9), make_time(2006, 13, 1, 0, 0, 0, 9),
                       make_time(1600, 12, 31, 0, 0, 0, 9), make_time(2006, 8, 14, 9, 5, 0, 9, 1000)}) {
    const SYSTEMTIME before = t;
    SetLastError(0xdeadbeef);
    EXPECT_FALSE(SetDayOfWeekInSystemTime(&t)) << show(t);
    EXPECT_EQ(std::memcmp(&t, &before, sizeof(t)), 0);
    expect_invalid_parameter_error();
  }
  EXPECT_FALSE(SetDayOfWeekInSystemTime(nullptr));
}

std::tm sentinel_tm() {
  std::tm t;
  std::memset(&t, 0x5A, sizeof(t));
  return t;
}

std::tm make_tm(int year, int month, int day, int hour, int minute, int second, int wday = 0, int yday = 0) {
  std::tm t{};
  t.tm_year = year - 1900;
  t.tm_mon = month - 1;
  t.tm_mday = day;
  t.tm_hour = hour;
  t.tm_min = minute;
  t.tm_sec = second;
  t.tm_wday = wday;
  t.tm_yday = yday;
  return t;
}

TEST(BrokenDownTime, FromSystemTimeComputesWeekdayAndYearDay) {
  struct Case {
    SYSTEMTIME in;
    std::tm out;
  };
  const Case cases[] = {
      {make_time(2024, 2, 29, 12, 34, 56, 0, 999), make_tm(2024, 2, 29, 12, 34, 56, 4, 59)},
      {make_time(2024, 12, 31, 23, 59, 59), make_tm(2024, 12, 31, 23, 59, 59, 2, 365)},
      {make_time(1700, 3, 1, 0, 0, 0, 3), make_tm(1700, 3, 1, 0, 0, 0, 1, 59)},
  };
  for (const Case& c : cases) {
    std::tm t = sentinel_tm();
    EXPECT_TRUE(TMFromSystemTime(&c.in, &t));
    EXPECT_EQ(show(t), show(c.out));
  }
  const SYSTEMTIME impossible = make_time(2023, 2, 29);
  std::tm t = sentinel_tm();
  EXPECT_FALSE(TMFromSystemTime(&impossible, &t));
  EXPECT_EQ(show(t), show(std::tm{}));
  EXPECT_FALSE(TMFromSystemTime(nullptr, &t));
  EXPECT_FALSE(TMFromSystemTime(&impossible, nullptr));
}

TEST(BrokenDownTime, OleDatesBothWays) {
  const std::tm monday = make_tm(2006, 8, 14, 9, 5, 0);
  DATE date = -1;
  EXPECT_TRUE(OleDateFromTm(&monday, &date));
  EXPECT_NEAR(date, kMondayOle, kOleTolerance);
  const std::tm leap_day = make_tm(2000, 2, 29, 0, 0, 0);
  EXPECT_TRUE(OleDateFromTm(&leap_day, &date));
  EXPECT_NEAR(date, 36585.0, kOleTolerance);

  std::tm t = sentinel_tm();
  EXPECT_TRUE(TmFromOleDate(kMondayOle + 0.6 * kSecond, &t));  // to the nearest second
  EXPECT_EQ(show(t), show(make_tm(2006, 8, 14, 9, 5, 1, 1, 225)));
  // Before the OLE epoch the fraction still counts forward from midnight.
  EXPECT_TRUE(TmFromOleDate(-1.25, &t));
  EXPECT_EQ(show(t), show(make_tm(1899, 12, 29, 6, 0, 0, 5, 362)));
  EXPECT_TRUE(TmFromOleDate(-657434.0, &t));
  EXPECT_EQ(show(t), show(make_tm(100, 1, 1, 0, 0, 0, 5, 0)));
}

TEST(BrokenDownTime, OutOfRangeFieldsAreNotNormalised) {
  std::tm bad[] = {make_tm(2006, 4, 31, 0, 0, 0), make_tm(1900, 2, 29, 0, 0, 0),  make_tm(99, 12, 31, 0, 0, 0),
                   make_tm(10000, 1, 1, 0, 0, 0), make_tm(2006, 8, 14, 24, 0, 0), make_tm(2006, 8, 14, 9, 5, 60),
                   make_tm(2006, 8, 0, 9, 5, 0),  make_tm(2006, 1, 1, 0, 0, 0)};
  bad[7].tm_mon = 12;
  for (const std::tm& t : bad) {
    DATE date = 77;
    SetLastError(0xdeadbeef);
    EXPECT_FALSE(OleDateFromTm(&t, &date)) << show(t);
    EXPECT_EQ(date, 0.0);
    expect_invalid_parameter_error();
  }
  DATE date = 0;
  EXPECT_FALSE(OleDateFromTm(nullptr, &date));
  EXPECT_FALSE(OleDateFromTm(&bad[0], nullptr));

  for (const DATE out_of_range : {-657435.0, 2958466.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
    std::tm t = sentinel_tm();
    EXPECT_FALSE(TmFromOleDate(out_of_range, &t)) << out_of_range;
    EXPECT_EQ(show(t), show(std::tm{}));
  }
  EXPECT_FALSE(TmFromOleDate(0.0, nullptr));
}

TEST(OleDateTimet, ConvertBothWays) {
  struct Case {
    __time64_t time;
    DATE date;
  };
  const Case cases[] = {
      {kMonday20060814, kMondayOle},
      {0, 25569.0},
      {1709210096, 45351.52425925926},    // 2024-02-29 12:34:56
      {-11644473600, -109205.0},          // 1601-01-01
      {253402300799, 2958465.999988426},  // 9999-12-31 23:59:59
  };
  for (const Case& c : cases) {
    DATE date = -1;
    EXPECT_TRUE(TimetToOleDate(c.time, &date)) << c.time;
    EXPECT_NEAR(date, c.date, kOleTolerance) << c.time;
    __time64_t time = 77;
    EXPECT_TRUE(TimetFromOleDate(c.date, &time)) << c.date;
    EXPECT_EQ(time, c.time);
  }
  __time64_t time = 0;
  EXPECT_TRUE(TimetFromOleDate(kMondayOle + 0.4 * kSecond, &time));
  EXPECT_EQ(time, kMonday20060814);
  EXPECT_TRUE(TimetFromOleDate(kMondayOle + 0.6 * kSecond, &time));
  EXPECT_EQ(time, kMonday20060814 + 1);
  // -1.25 is 1899-12-29 06:00:00; a larger magnitude is a later time of day.
  EXPECT_TRUE(TimetFromOleDate(-1.25 - 0.6 * kSecond, &time));
  EXPECT_EQ(time, -2209226400 + 1);
}

TEST(OleDateTimet, OutsideTheCommonRangeFails) {
  for (const __time64_t out_of_range : {253402300800LL, -11644473601LL}) {  // year 10000, 1600
    DATE date = 77;
    SetLastError(0xdeadbeef);
    EXPECT_FALSE(TimetToOleDate(out_of_range, &date));
    EXPECT_EQ(date, 0.0);
    expect_invalid_parameter_error();
  }
  for (const DATE out_of_range : {-109206.0, 2958466.0, std::nan("")}) {
    __time64_t time = 77;
    EXPECT_FALSE(TimetFromOleDate(out_of_range, &time)) << out_of_range;
    EXPECT_EQ(time, 0);
  }
  EXPECT_FALSE(TimetToOleDate(0, nullptr));
  EXPECT_FALSE(TimetFromOleDate(0.0, nullptr));
}

TEST(DosVariant, ConvertBothWays) {
  DATE date = -1;
  EXPECT_TRUE(DOSTimeToVariantTime(kMondayDosDate, kMondayDosTime, &date));
  EXPECT_NEAR(date, kMondayOle, kOleTolerance);
  WORD dos_date = 0xFFFF;
  WORD dos_time = 0xFFFF;
  EXPECT_TRUE(DOSTimeFromVariantTime(kMondayOle, &dos_date, &dos_time));
  EXPECT_EQ(dos_date, kMondayDosDate);
  EXPECT_EQ(dos_time, kMondayDosTime);

  // The platform's DOS-OLE conversions end with 2099-12-31 23:59:58:
  // (119 << 9 | 12 << 5 | 31, 23 << 11 | 59 << 5 | 29).
  EXPECT_TRUE(DOSTimeToVariantTime(61343, 49021, &date));
  EXPECT_NEAR(date, 73050.99997685185, kOleTolerance);
  EXPECT_TRUE(DOSTimeFromVariantTime(date, &dos_date, &dos_time));
  EXPECT_EQ(dos_date, 61343);
  EXPECT_EQ(dos_time, 49021);
}

TEST(DosVariant, OutsideTheDosRangeOrImpossibleFails) {
  for (const DATE out_of_range : {29220.0, 73051.0, std::nan("")}) {  // 1979-12-31, 2100-01-01
    WORD dos_date = 0xFFFF;
    WORD dos_time = 0xFFFF;
    SetLastError(0xdeadbeef);
    EXPECT_FALSE(DOSTimeFromVariantTime(out_of_range, &dos_date, &dos_time)) << out_of_range;
    EXPECT_EQ(dos_date, 0);
    EXPECT_EQ(dos_time, 0);
    expect_invalid_parameter_error();
  }
  WORD dos_word = 0;
  EXPECT_FALSE(DOSTimeFromVariantTime(kMondayOle, nullptr, &dos_word));
  EXPECT_FALSE(DOSTimeFromVariantTime(kMondayOle, &dos_word, nullptr));

  // Refused rather than rolled into a neighbouring month: 29 Feb 2023,
  // day 0, 31 April, month 13; then hour 24, minute 60, second 60.
  const WORD impossible_dates[] = {(43 << 9) | (2 << 5) | 29, (26 << 9) | (8 << 5), (26 << 9) | (4 << 5) | 31,
                                   (26 << 9) | (13 << 5) | 14};
  for (const WORD dos_date : impossible_dates) {
    DATE date = 77;
    EXPECT_FALSE(DOSTimeToVariantTime(dos_date, kMondayDosTime, &date)) << dos_date;
    EXPECT_EQ(date, 0.0);
  }
  for (const WORD dos_time : {24 << 11, (9 << 11) | (60 << 5), (9 << 11) | 30}) {
    DATE date = 77;
    EXPECT_FALSE(DOSTimeToVariantTime(kMondayDosDate, static_cast<WORD>(dos_time), &date)) << dos_time;
  }
  EXPECT_FALSE(DOSTimeToVariantTime(kMondayDosDate, kMondayDosTime, nullptr));
}

}  // namespace
}  // namespace mvsup::test
