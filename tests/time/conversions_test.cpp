// The binary conversions, through the exports. Expected values
// were computed with Python (calendar.timegm, datetime arithmetic from the
// OLE epoch 1899-12-30); DOS words from their bit layout by hand.
#include <windows.h>

#include <gtest/gtest.h>

#include <stdlib.h>

#include <cstring>
#include <ctime>
#include <limits>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "common/child_process.h"
#include "common/registry_sandbox.h"
#include "common/trace_log.h"
#include "time_values.h"

namespace mvsup::test {
namespace {

constexpr __time64_t kMonday20060814 = 1155546300;  // 2006-08-14 09:05:00 UTC
constexpr DATE kMondayOle = 38943.37847222222;
constexpr WORD kMondayDosDate = (26 << 9) | (8 << 5) | 14;
constexpr WORD kMondayDosTime = (9 << 11) | (5 << 5);
constexpr double kOleTolerance = 1e-8;  // well under a millisecond
constexpr double kSecond = 1.0 / 86400;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

unsigned long long ticks_of(const FILETIME& f) { return (1ull * f.dwHighDateTime << 32) | f.dwLowDateTime; }

std::tm make_tm(int year, int month, int day, int hour, int minute, int second, int wday = 0, int yday = 0) {
  return std::tm{second, minute, hour, day, month - 1, year - 1900, wday, yday, 0};
}

std::tm sentinel_tm() {
  std::tm t;
  std::memset(&t, 0x5A, sizeof(t));
  return t;
}

TEST(FileTimeTimet, ConvertExactlyRoundDownAndRefuseWhatTheOtherSideCannotHold) {
  FILETIME f{0xdeadbeef, 0xdeadbeef};
  __time64_t t = 77;
  EXPECT_TRUE(TimetToFileTime(kMonday20060814, &f));
  EXPECT_EQ(ticks_of(f), 128000199000000000ull);
  EXPECT_TRUE(TimetFromFileTime(&f, &t));
  EXPECT_EQ(t, kMonday20060814);
  // Half a second before 1970 is still 1969-12-31 23:59:59.
  constexpr unsigned long long kBeforeEpoch = 116444736000000000ull - 5000000ull;
  f = FILETIME{static_cast<DWORD>(kBeforeEpoch), static_cast<DWORD>(kBeforeEpoch >> 32)};
  EXPECT_TRUE(TimetFromFileTime(&f, &t));
  EXPECT_EQ(t, -1);
  // The ends of the FILETIME range.
  EXPECT_TRUE(TimetToFileTime(-11644473600, &f));
  EXPECT_EQ(ticks_of(f), 0u);
  EXPECT_TRUE(TimetToFileTime(910692730085, &f));
  EXPECT_EQ(ticks_of(f), 9223372036850000000ull);

  for (const __time64_t out_of_range : {-11644473601LL, 910692730086LL, std::numeric_limits<__time64_t>::max(),
                                        std::numeric_limits<__time64_t>::min()}) {
    f = FILETIME{0xdeadbeef, 0xdeadbeef};
    EXPECT_REFUSED(TimetToFileTime(out_of_range, &f));
    EXPECT_EQ(ticks_of(f), 0u) << out_of_range;
  }
  f = FILETIME{0, 0x80000000};
  EXPECT_REFUSED(TimetFromFileTime(&f, &t));
  EXPECT_EQ(t, 0);
}

TEST(DayOfWeek, IsComputedFromTheDateOrLeftAlone) {
  // The first FILETIME day and the last SYSTEMTIME year.
  for (const SYSTEMTIME& expected : {make_time(1601, 1, 1, 0, 0, 0, 1), make_time(30827, 12, 31, 0, 0, 0, 5)}) {
    SYSTEMTIME t = expected;
    t.wDayOfWeek = 9;
    EXPECT_TRUE(SetDayOfWeekInSystemTime(&t));
    EXPECT_EQ(show(t), show(expected));
  }
  for (SYSTEMTIME t : {make_time(2023, 2, 29, 0, 0, 0, 9), make_time(2006, 13, 1, 0, 0, 0, 9),
                       make_time(1600, 12, 31, 0, 0, 0, 9), make_time(2006, 8, 14, 9, 5, 0, 9, 1000)}) {
    const SYSTEMTIME before = t;
    EXPECT_REFUSED(SetDayOfWeekInSystemTime(&t));
    EXPECT_EQ(std::memcmp(&t, &before, sizeof(t)), 0) << show(before);
  }
}

TEST(BrokenDownTime, ComputesWeekdayAndYearDayAndNeverNormalises) {
  const std::pair<SYSTEMTIME, std::tm> cases[] = {
      {make_time(2024, 2, 29, 12, 34, 56, 0, 999), make_tm(2024, 2, 29, 12, 34, 56, 4, 59)},
      {make_time(2024, 12, 31, 23, 59, 59), make_tm(2024, 12, 31, 23, 59, 59, 2, 365)},
      {make_time(1700, 3, 1, 0, 0, 0, 3), make_tm(1700, 3, 1, 0, 0, 0, 1, 59)},
  };
  for (const auto& [in, out] : cases) {
    std::tm t = sentinel_tm();
    EXPECT_TRUE(TMFromSystemTime(&in, &t));
    EXPECT_EQ(show(t), show(out));
  }
  const SYSTEMTIME impossible = make_time(2023, 2, 29);
  std::tm t = sentinel_tm();
  EXPECT_REFUSED(TMFromSystemTime(&impossible, &t));
  EXPECT_EQ(show(t), show(std::tm{}));

  // Out-of-range fields, and years the platform would read as 1930-2029.
  for (const std::tm& tm : {make_tm(2006, 4, 31, 0, 0, 0), make_tm(1900, 2, 29, 0, 0, 0), make_tm(99, 12, 31, 0, 0, 0),
                            make_tm(10000, 1, 1, 0, 0, 0), make_tm(2006, 8, 14, 24, 0, 0),
                            make_tm(2006, 8, 14, 9, 5, 60), make_tm(2006, 8, 0, 9, 5, 0),
                            make_tm(2006, 13, 1, 0, 0, 0)}) {
    DATE date = 77;
    EXPECT_REFUSED(OleDateFromTm(&tm, &date));
    EXPECT_EQ(date, 0.0) << show(tm);
  }
}

TEST(BrokenDownTime, OleDatesBothWaysToTheNearestSecond) {
  DATE date = -1;
  const std::tm monday = make_tm(2006, 8, 14, 9, 5, 0);
  EXPECT_TRUE(OleDateFromTm(&monday, &date));
  EXPECT_NEAR(date, kMondayOle, kOleTolerance);
  const std::tm leap_day = make_tm(2000, 2, 29, 0, 0, 0);
  EXPECT_TRUE(OleDateFromTm(&leap_day, &date));
  EXPECT_NEAR(date, 36585.0, kOleTolerance);

  std::tm t = sentinel_tm();
  EXPECT_TRUE(TmFromOleDate(kMondayOle + 0.6 * kSecond, &t));
  EXPECT_EQ(show(t), show(make_tm(2006, 8, 14, 9, 5, 1, 1, 225)));
  // Before the OLE epoch the fraction still counts forward from midnight.
  EXPECT_TRUE(TmFromOleDate(-1.25, &t));
  EXPECT_EQ(show(t), show(make_tm(1899, 12, 29, 6, 0, 0, 5, 362)));
  EXPECT_TRUE(TmFromOleDate(-657434.0, &t));
  EXPECT_EQ(show(t), show(make_tm(100, 1, 1, 0, 0, 0, 5, 0)));
  for (const DATE out_of_range : {-657435.0, 2958466.0, kNaN, std::numeric_limits<double>::infinity()}) {
    t = sentinel_tm();
    EXPECT_REFUSED(TmFromOleDate(out_of_range, &t));
    EXPECT_EQ(show(t), show(std::tm{})) << out_of_range;
  }
}

TEST(OleDateTimet, ConvertBothWaysToTheNearestSecondWithinTheCommonRange) {
  const std::pair<__time64_t, DATE> cases[] = {
      {kMonday20060814, kMondayOle},
      {0, 25569.0},
      {1709210096, 45351.52425925926},    // 2024-02-29 12:34:56
      {-11644473600, -109205.0},          // 1601-01-01
      {253402300799, 2958465.999988426},  // 9999-12-31 23:59:59
  };
  for (const auto& [time, date] : cases) {
    DATE d = -1;
    __time64_t t = 77;
    EXPECT_TRUE(TimetToOleDate(time, &d)) << time;
    EXPECT_NEAR(d, date, kOleTolerance) << time;
    EXPECT_TRUE(TimetFromOleDate(date, &t)) << date;
    EXPECT_EQ(t, time);
  }
  __time64_t time = 0;
  EXPECT_TRUE(TimetFromOleDate(kMondayOle + 0.4 * kSecond, &time));
  EXPECT_EQ(time, kMonday20060814);
  EXPECT_TRUE(TimetFromOleDate(kMondayOle + 0.6 * kSecond, &time));
  EXPECT_EQ(time, kMonday20060814 + 1);
  // -1.25 is 1899-12-29 06:00:00; a larger magnitude is a later time of day.
  EXPECT_TRUE(TimetFromOleDate(-1.25 - 0.6 * kSecond, &time));
  EXPECT_EQ(time, -2209226400 + 1);

  for (const __time64_t out_of_range : {253402300800LL, -11644473601LL}) {  // year 10000, 1600
    DATE date = 77;
    EXPECT_REFUSED(TimetToOleDate(out_of_range, &date));
    EXPECT_EQ(date, 0.0);
  }
  for (const DATE out_of_range : {-109206.0, 2958466.0, kNaN}) {
    time = 77;
    EXPECT_REFUSED(TimetFromOleDate(out_of_range, &time));
    EXPECT_EQ(time, 0) << out_of_range;
  }
}

TEST(DosVariant, ConvertBothWaysWithinTheDosRange) {
  // The platform's DOS-OLE conversions end with 2099-12-31 23:59:58.
  constexpr WORD kLastDate = (119 << 9) | (12 << 5) | 31, kLastTime = (23 << 11) | (59 << 5) | 29;
  const std::pair<std::pair<WORD, WORD>, DATE> cases[] = {{{kMondayDosDate, kMondayDosTime}, kMondayOle},
                                                          {{kLastDate, kLastTime}, 73050.99997685185}};
  for (const auto& [dos, ole] : cases) {
    DATE date = -1;
    WORD dos_date = 0xFFFF, dos_time = 0xFFFF;
    EXPECT_TRUE(DOSTimeToVariantTime(dos.first, dos.second, &date));
    EXPECT_NEAR(date, ole, kOleTolerance);
    EXPECT_TRUE(DOSTimeFromVariantTime(ole, &dos_date, &dos_time));
    EXPECT_EQ(dos_date, dos.first);
    EXPECT_EQ(dos_time, dos.second);
  }
  for (const DATE out_of_range : {29220.0, 73051.0, kNaN}) {  // 1979-12-31, 2100-01-01
    WORD dos_date = 0xFFFF, dos_time = 0xFFFF;
    EXPECT_REFUSED(DOSTimeFromVariantTime(out_of_range, &dos_date, &dos_time));
    EXPECT_EQ(dos_date, 0) << out_of_range;
    EXPECT_EQ(dos_time, 0);
  }
  // Refused rather than rolled into a neighbouring month: 29 Feb 2023, day 0,
  // 31 April, month 13; then hour 24, minute 60, second 60.
  const std::pair<WORD, WORD> impossible[] = {
      {(43 << 9) | (2 << 5) | 29, kMondayDosTime}, {(26 << 9) | (8 << 5), kMondayDosTime},
      {(26 << 9) | (4 << 5) | 31, kMondayDosTime}, {(26 << 9) | (13 << 5) | 14, kMondayDosTime},
      {kMondayDosDate, 24 << 11},                  {kMondayDosDate, (9 << 11) | (60 << 5)},
      {kMondayDosDate, (9 << 11) | 30},
  };
  for (const auto& [d, t] : impossible) {
    DATE date = 77;
    EXPECT_REFUSED(DOSTimeToVariantTime(d, t, &date));
    EXPECT_EQ(date, 0.0) << d << " " << t;
  }
}

// Every binary conversion, the zone-dependent ones included, refuses null
// pointers and clears the outputs that are there.
TEST(BinaryConversions, NullPointersAreRefused) {
  SYSTEMTIME st = sentinel_time();
  const std::tm tm = make_tm(2006, 8, 14, 9, 5, 0);
  FILETIME f{};
  __time64_t t = 0;
  DATE date = 0;
  WORD word = 0xFFFF;
  EXPECT_REFUSED(TimetToFileTime(0, nullptr));
  EXPECT_REFUSED(TimetFromFileTime(nullptr, &t));
  EXPECT_REFUSED(TimetFromFileTime(&f, nullptr));
  EXPECT_REFUSED(SetDayOfWeekInSystemTime(nullptr));
  EXPECT_REFUSED(TMFromSystemTime(nullptr, nullptr));
  EXPECT_REFUSED(OleDateFromTm(nullptr, &date));
  EXPECT_REFUSED(OleDateFromTm(&tm, nullptr));
  EXPECT_REFUSED(TmFromOleDate(0.0, nullptr));
  EXPECT_REFUSED(TimetToOleDate(0, nullptr));
  EXPECT_REFUSED(TimetFromOleDate(0.0, nullptr));
  EXPECT_REFUSED(DOSTimeToVariantTime(kMondayDosDate, kMondayDosTime, nullptr));
  EXPECT_REFUSED(DOSTimeFromVariantTime(kMondayOle, nullptr, &word));
  EXPECT_EQ(word, 0);
  word = 0xFFFF;
  EXPECT_REFUSED(DosGmtToDosLocalTime(kMondayDosDate, kMondayDosTime, &word, nullptr));
  EXPECT_EQ(word, 0);
  EXPECT_REFUSED(DosGmtToLocalTime(kMondayDosDate, kMondayDosTime, nullptr));
  EXPECT_REFUSED(GmtToLocalTime(nullptr, &st));
  EXPECT_EQ(show(st), show(kZeroTime));
  EXPECT_REFUSED(LocalTimeToGmt(nullptr, nullptr));
  EXPECT_REFUSED(OleDateGmtFromLocalTime(kMondayOle, nullptr));
  EXPECT_REFUSED(OleDateLocalTimeFromGmt(kMondayOle, nullptr));
}

// ---- Local time ----
// Wine takes the local zone from TZ when a process starts; the test runner
// passes TZ=UTC, and the build runs the LocalTimeZone tests once more under
// TZ=Europe/Berlin and TZ=America/New_York. Expected local times were
// computed with Python's zoneinfo; DOS words and OLE dates from the same
// instants by hand.

constexpr const wchar_t* kTraceChildVariable = L"MVSUP_TIME_TRACE_CHILD";

// Child mode of the trace test: the trace configuration is read when the
// library loads, so the traced calls must run in a fresh process.
[[maybe_unused]] const bool kRanAsTraceChild = [] {
  if (!is_child_process(kTraceChildVariable)) return false;
  const SYSTEMTIME gmt = make_time(2006, 8, 14, 9, 5, 0, 1);
  SYSTEMTIME local{};
  SYSTEMTIME back{};
  const bool ok = GmtToLocalTime(&gmt, &local) && LocalTimeToGmt(&local, &back);
  ExitProcess(ok ? 0 : 2);
  return true;
}();

std::wstring current_tz() {
  wchar_t zone[64] = {};
  const DWORD length = GetEnvironmentVariableW(L"TZ", zone, 64);
  return length > 0 && length < 64 ? zone : L"";
}

// 2024-07-15 and 2024-01-15, 12:00:00 UTC, as DOS words and OLE dates.
constexpr WORD kJulyDosDate = (44 << 9) | (7 << 5) | 15;
constexpr WORD kJanuaryDosDate = (44 << 9) | (1 << 5) | 15;
constexpr WORD kNoonDosTime = 12 << 11;
constexpr DATE kJulyNoonOle = 45488.5;
constexpr DATE kJanuaryNoonOle = 45306.5;

struct Zone {
  const wchar_t* tz;
  LONG standard_bias;  // minutes, UTC = local + bias
  int july_hour, january_hour;  // local time of the noons above, the same day
  DATE july_ole, january_ole;
};
const Zone kZones[] = {
    {L"UTC", 0, 12, 12, kJulyNoonOle, kJanuaryNoonOle},
    {L"Europe/Berlin", -60, 14, 13, 45488.583333333336, 45306.541666666664},
    {L"America/New_York", 300, 8, 7, 45488.333333333336, 45306.291666666664},
};

struct ZoneCase {
  const wchar_t* tz;
  SYSTEMTIME gmt;
  SYSTEMTIME local;  // with its day of the week
  bool occurs_once;  // false: the local time repeats when the clocks go back
};
const ZoneCase kZoneCases[] = {
    {L"UTC", make_time(2024, 7, 15, 12), make_time(2024, 7, 15, 12, 0, 0, 1), true},
    {L"Europe/Berlin", make_time(2024, 7, 15, 12), make_time(2024, 7, 15, 14, 0, 0, 1), true},
    {L"Europe/Berlin", make_time(2024, 1, 15, 12), make_time(2024, 1, 15, 13, 0, 0, 1), true},
    {L"Europe/Berlin", make_time(2006, 8, 14, 9, 5), make_time(2006, 8, 14, 11, 5, 0, 1), true},
    {L"Europe/Berlin", make_time(2024, 3, 31, 0, 59, 59), make_time(2024, 3, 31, 1, 59, 59, 0), true},
    {L"Europe/Berlin", make_time(2024, 3, 31, 1), make_time(2024, 3, 31, 3, 0, 0, 0), true},
    {L"Europe/Berlin", make_time(2024, 10, 27, 0, 59, 59), make_time(2024, 10, 27, 2, 59, 59, 0), false},
    {L"Europe/Berlin", make_time(2024, 10, 27, 1), make_time(2024, 10, 27, 2, 0, 0, 0), false},
    {L"Europe/Berlin", make_time(2024, 10, 27, 2), make_time(2024, 10, 27, 3, 0, 0, 0), true},
    {L"America/New_York", make_time(2024, 7, 15, 12), make_time(2024, 7, 15, 8, 0, 0, 1), true},
    {L"America/New_York", make_time(2024, 1, 15, 12), make_time(2024, 1, 15, 7, 0, 0, 1), true},
    {L"America/New_York", make_time(2024, 3, 31, 0, 59, 59), make_time(2024, 3, 30, 20, 59, 59, 6), true},
    {L"America/New_York", make_time(2024, 3, 10, 6, 59, 59), make_time(2024, 3, 10, 1, 59, 59, 0), true},
    {L"America/New_York", make_time(2024, 3, 10, 7), make_time(2024, 3, 10, 3, 0, 0, 0), true},
    {L"America/New_York", make_time(2024, 11, 3, 5, 59, 59), make_time(2024, 11, 3, 1, 59, 59, 0), false},
    {L"America/New_York", make_time(2024, 11, 3, 6), make_time(2024, 11, 3, 1, 0, 0, 0), false},
    {L"America/New_York", make_time(2024, 11, 3, 7), make_time(2024, 11, 3, 2, 0, 0, 0), true},
    // Each year by its own rules: in 2006 daylight saving ran from 2 April
    // to 29 October. Wine 8's zone data has such per-year rules for New
    // York from 2006 on only (earlier years get today's rules), and none
    // for Berlin (whose rules last changed in 1996), so no earlier year is
    // checked.
    {L"America/New_York", make_time(2006, 3, 26, 0, 59), make_time(2006, 3, 25, 19, 59, 0, 6), true},
    {L"America/New_York", make_time(2006, 4, 2, 6, 59, 59), make_time(2006, 4, 2, 1, 59, 59, 0), true},
    {L"America/New_York", make_time(2006, 4, 2, 7), make_time(2006, 4, 2, 3, 0, 0, 0), true},
    {L"America/New_York", make_time(2006, 10, 29, 5, 59, 59), make_time(2006, 10, 29, 1, 59, 59, 0), false},
    {L"America/New_York", make_time(2006, 10, 29, 6), make_time(2006, 10, 29, 1, 0, 0, 0), false},
    {L"America/New_York", make_time(2006, 11, 4, 12), make_time(2006, 11, 4, 7, 0, 0, 6), true},
};

class LocalTimeZone : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const Zone& candidate : kZones)
      if (current_tz() == candidate.tz) zone_ = &candidate;
    if (zone_ == nullptr) GTEST_SKIP() << "no expected values for this TZ";
    TIME_ZONE_INFORMATION info{};
    ASSERT_NE(GetTimeZoneInformation(&info), TIME_ZONE_ID_INVALID);
    ASSERT_EQ(info.Bias, zone_->standard_bias) << "the process did not take its zone from TZ";
  }
  const Zone* zone_ = nullptr;
};

// Local times that occur once convert back; the output may be the input.
TEST_F(LocalTimeZone, SystemTimesFollowTheZoneAndItsDaylightSaving) {
  for (const ZoneCase& c : kZoneCases) {
    if (c.tz != std::wstring(zone_->tz)) continue;
    SCOPED_TRACE(show(c.gmt));
    SYSTEMTIME local = sentinel_time();
    EXPECT_TRUE(GmtToLocalTime(&c.gmt, &local));
    EXPECT_EQ(show(local), show(c.local));
    if (!c.occurs_once) continue;
    SYSTEMTIME shared = c.local;
    EXPECT_TRUE(LocalTimeToGmt(&shared, &shared));
    SYSTEMTIME expected = c.gmt;
    ASSERT_TRUE(SetDayOfWeekInSystemTime(&expected));
    EXPECT_EQ(show(shared), show(expected));
  }
}

TEST_F(LocalTimeZone, DosAndOleDatesFollowTheZone) {
  const struct {
    WORD gmt_date;
    SYSTEMTIME local;
    DATE gmt_ole, local_ole;
  } cases[] = {{kJulyDosDate, make_time(2024, 7, 15, zone_->july_hour, 0, 0, 1), kJulyNoonOle, zone_->july_ole},
               {kJanuaryDosDate, make_time(2024, 1, 15, zone_->january_hour, 0, 0, 1), kJanuaryNoonOle,
                zone_->january_ole}};
  for (const auto& c : cases) {
    SCOPED_TRACE(show(c.local));
    SYSTEMTIME local = sentinel_time();
    EXPECT_TRUE(DosGmtToLocalTime(c.gmt_date, kNoonDosTime, &local));
    EXPECT_EQ(show(local), show(c.local));
    WORD local_date = 0, local_time = 0;
    EXPECT_TRUE(DosGmtToDosLocalTime(c.gmt_date, kNoonDosTime, &local_date, &local_time));
    EXPECT_EQ(local_date, c.gmt_date);
    EXPECT_EQ(local_time, c.local.wHour << 11);
    DATE ole = 0;
    EXPECT_TRUE(OleDateLocalTimeFromGmt(c.gmt_ole, &ole));
    EXPECT_NEAR(ole, c.local_ole, kOleTolerance);
    EXPECT_TRUE(OleDateGmtFromLocalTime(c.local_ole, &ole));
    EXPECT_NEAR(ole, c.gmt_ole, kOleTolerance);
  }
}

TEST(LocalTime, ImpossibleInputsAreRefusedWithClearedOutputs) {
  const SYSTEMTIME impossible = make_time(2006, 13, 1);
  SYSTEMTIME out = sentinel_time();
  EXPECT_REFUSED(GmtToLocalTime(&impossible, &out));
  EXPECT_EQ(show(out), show(kZeroTime));
  out = sentinel_time();
  EXPECT_REFUSED(LocalTimeToGmt(&impossible, &out));
  EXPECT_EQ(show(out), show(kZeroTime));
  out = sentinel_time();
  EXPECT_REFUSED(DosGmtToLocalTime((44 << 9) | (13 << 5) | 15, 0, &out));  // month 13
  EXPECT_EQ(show(out), show(kZeroTime));
  WORD date = 0xFFFF, time = 0xFFFF;
  EXPECT_REFUSED(DosGmtToDosLocalTime(kJulyDosDate, 24 << 11, &date, &time));  // hour 24
  EXPECT_EQ(date, 0);
  EXPECT_EQ(time, 0);
  DATE ole = 77;
  EXPECT_REFUSED(OleDateLocalTimeFromGmt(-200000.0, &ole));  // before 1601: no FILETIME
  EXPECT_EQ(ole, 0.0);
  ole = 77;
  EXPECT_REFUSED(OleDateGmtFromLocalTime(3000000.0, &ole));
  EXPECT_EQ(ole, 0.0);
}

// ---- Trace lines ----

class LocalTimeTrace : public RegistrySandbox {};

TEST_F(LocalTimeTrace, ConversionsWriteBothTimesAndTheBias) {
  if (current_tz() != L"UTC") GTEST_SKIP() << "expected lines are for TZ=UTC";
  const TraceLogFolder logs(0x00010002);  // active, level 2
  ASSERT_EQ(run_child_process(kTraceChildVariable), 0);
  const std::string log = logs.read_all();
  EXPECT_NE(log.find("GmtToLocalTime"), std::string::npos) << log;
  EXPECT_NE(log.find("LocalTimeToGmt"), std::string::npos) << log;
  EXPECT_NE(log.find("GMT: 2006-08-14 (1) 09:05:00\n"), std::string::npos) << log;
  EXPECT_NE(log.find("Bias: 0 min\n"), std::string::npos) << log;
  EXPECT_NE(log.find("Local: 2006-08-14 (1) 09:05:00 [bias 0 min]\n"), std::string::npos) << log;
  // Each conversion writes its own three lines.
  size_t gmt_lines = 0;
  for (size_t at = log.find("GMT: "); at != std::string::npos; at = log.find("GMT: ", at + 1)) ++gmt_lines;
  EXPECT_EQ(gmt_lines, 2u) << log;
}

}  // namespace
}  // namespace mvsup::test
