#include "time/conversions.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include "MvSupTime.h"
#include "time/export_result.h"

namespace mvsup::time {

namespace {

constexpr int64_t kEarliestTimet = -kUnixEpochTicks / kTicksPerSecond;  // 1601-01-01
constexpr int64_t kLatestTimet = (std::numeric_limits<int64_t>::max() - kUnixEpochTicks) / kTicksPerSecond;

// The range that VariantTimeToSystemTime accepts: 100-01-01 to 9999-12-31.
constexpr double kEarliestOleDate = -657434.0;
constexpr double kOleDateEnd = 2958466.0;
constexpr WORD kEarliestFileTimeYear = 1601;
constexpr WORD kLatestSystemTimeYear = 30827;
constexpr WORD kEarliestOleYear = 100;
constexpr WORD kLatestOleYear = 9999;

bool is_leap_year(int year) noexcept { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int days_in_month(int year, int month) noexcept {
  constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && is_leap_year(year) ? 29 : kDays[month - 1];
}

int day_of_year(int year, int month, int day) noexcept {
  int days = day - 1;
  for (int m = 1; m < month; ++m) days += days_in_month(year, m);
  return days;
}

// DOS date: bits 9-15 year - 1980, 5-8 month, 0-4 day; DOS time: bits 11-15
// hour, 5-10 minute, 0-4 second / 2. The platform's own conversions roll day
// 0 or 30 February over into a neighbouring month; no impossible date is
// accepted here.
bool is_valid_dos(WORD dos_date, WORD dos_time) noexcept {
  const int year = 1980 + (dos_date >> 9);
  const int month = (dos_date >> 5) & 0x0F;
  const int day = dos_date & 0x1F;
  return month >= 1 && month <= 12 && day >= 1 && day <= days_in_month(year, month) && (dos_time >> 11) <= 23 &&
         ((dos_time >> 5) & 0x3F) <= 59 && (dos_time & 0x1F) <= 29;
}

uint64_t ticks_of(const FILETIME& file_time) noexcept {
  return (static_cast<uint64_t>(file_time.dwHighDateTime) << 32) | file_time.dwLowDateTime;
}

// Field by field; the date must already be known to be valid.
std::tm tm_of(const SYSTEMTIME& system_time) noexcept {
  std::tm result{};
  result.tm_year = system_time.wYear - 1900;
  result.tm_mon = system_time.wMonth - 1;
  result.tm_mday = system_time.wDay;
  result.tm_hour = system_time.wHour;
  result.tm_min = system_time.wMinute;
  result.tm_sec = system_time.wSecond;
  result.tm_wday = system_time.wDayOfWeek;
  result.tm_yday = day_of_year(system_time.wYear, system_time.wMonth, system_time.wDay);
  result.tm_isdst = 0;
  return result;
}

}  // namespace

bool is_valid_system_time(const SYSTEMTIME& t) noexcept {
  return t.wYear >= kEarliestFileTimeYear && t.wYear <= kLatestSystemTimeYear && t.wMonth >= 1 && t.wMonth <= 12 &&
         t.wDay >= 1 && t.wDay <= days_in_month(t.wYear, t.wMonth) && t.wHour <= 23 && t.wMinute <= 59 &&
         t.wSecond <= 59 && t.wMilliseconds <= 999;
}

bool file_time_from_system_time(const SYSTEMTIME& system_time, FILETIME& out) noexcept {
  return is_valid_system_time(system_time) && ::SystemTimeToFileTime(&system_time, &out);
}

bool file_time_from_timet(__time64_t time, FILETIME& out) noexcept {
  if (time < kEarliestTimet || time > kLatestTimet) return false;
  const uint64_t ticks = static_cast<uint64_t>(time * kTicksPerSecond + kUnixEpochTicks);
  out.dwLowDateTime = static_cast<DWORD>(ticks);
  out.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
  return true;
}

bool timet_from_file_time(const FILETIME& file_time, __time64_t& out) noexcept {
  const uint64_t ticks = ticks_of(file_time);
  if (ticks > static_cast<uint64_t>(std::numeric_limits<int64_t>::max())) return false;
  // Whole seconds since 1601 first: the division then rounds down for times
  // before 1970 as well.
  out = static_cast<int64_t>(ticks / kTicksPerSecond) + kEarliestTimet;
  return true;
}

bool system_time_from_timet(__time64_t time, SYSTEMTIME& out) noexcept {
  FILETIME file_time;
  return file_time_from_timet(time, file_time) && ::FileTimeToSystemTime(&file_time, &out);
}

bool timet_from_system_time(const SYSTEMTIME& system_time, __time64_t& out) noexcept {
  FILETIME file_time;
  return file_time_from_system_time(system_time, file_time) && timet_from_file_time(file_time, out);
}

bool set_day_of_week(SYSTEMTIME& system_time) noexcept {
  FILETIME file_time;
  SYSTEMTIME normalised;
  if (!file_time_from_system_time(system_time, file_time) || !::FileTimeToSystemTime(&file_time, &normalised))
    return false;
  system_time.wDayOfWeek = normalised.wDayOfWeek;
  return true;
}

bool tm_from_system_time(const SYSTEMTIME& system_time, std::tm& out) noexcept {
  SYSTEMTIME dated = system_time;
  if (!set_day_of_week(dated)) return false;
  out = tm_of(dated);
  return true;
}

bool system_time_from_ole_date(DATE date, SYSTEMTIME& out) noexcept {
  if (!std::isfinite(date) || date < kEarliestOleDate || date >= kOleDateEnd) return false;
  return ::VariantTimeToSystemTime(date, &out) != FALSE;
}

bool ole_date_from_system_time(const SYSTEMTIME& system_time, DATE& out) noexcept {
  // Two-digit years would be read as 1930-2029 by the platform.
  if (system_time.wYear < kEarliestOleYear || system_time.wYear > kLatestOleYear) return false;
  SYSTEMTIME whole_seconds = system_time;
  whole_seconds.wMilliseconds = 0;
  return ::SystemTimeToVariantTime(&whole_seconds, &out) != FALSE;
}

bool ole_date_from_tm(const std::tm& broken_down, DATE& out) noexcept {
  const auto in_range = [](int value, int low, int high) { return value >= low && value <= high; };
  if (!in_range(broken_down.tm_year, kEarliestOleYear - 1900, kLatestOleYear - 1900) ||
      !in_range(broken_down.tm_mon, 0, 11) || !in_range(broken_down.tm_hour, 0, 23) ||
      !in_range(broken_down.tm_min, 0, 59) || !in_range(broken_down.tm_sec, 0, 59))
    return false;
  const int year = broken_down.tm_year + 1900;
  const int month = broken_down.tm_mon + 1;
  if (!in_range(broken_down.tm_mday, 1, days_in_month(year, month))) return false;
  SYSTEMTIME system_time{};
  system_time.wYear = static_cast<WORD>(year);
  system_time.wMonth = static_cast<WORD>(month);
  system_time.wDay = static_cast<WORD>(broken_down.tm_mday);
  system_time.wHour = static_cast<WORD>(broken_down.tm_hour);
  system_time.wMinute = static_cast<WORD>(broken_down.tm_min);
  system_time.wSecond = static_cast<WORD>(broken_down.tm_sec);
  return ole_date_from_system_time(system_time, out);
}

bool tm_from_ole_date(DATE date, std::tm& out) noexcept {
  SYSTEMTIME system_time;
  if (!system_time_from_ole_date(date, system_time)) return false;
  out = tm_of(system_time);
  return true;
}

bool ole_date_from_timet(__time64_t time, DATE& out) noexcept {
  SYSTEMTIME system_time;
  return system_time_from_timet(time, system_time) && ole_date_from_system_time(system_time, out);
}

bool timet_from_ole_date(DATE date, __time64_t& out) noexcept {
  SYSTEMTIME system_time;
  return system_time_from_ole_date(date, system_time) && timet_from_system_time(system_time, out);
}

bool system_time_from_dos(WORD dos_date, WORD dos_time, SYSTEMTIME& out) noexcept {
  FILETIME file_time;
  return is_valid_dos(dos_date, dos_time) && ::DosDateTimeToFileTime(dos_date, dos_time, &file_time) &&
         ::FileTimeToSystemTime(&file_time, &out);
}

bool dos_from_system_time(const SYSTEMTIME& system_time, WORD& dos_date, WORD& dos_time) noexcept {
  FILETIME file_time;
  return file_time_from_system_time(system_time, file_time) && ::FileTimeToDosDateTime(&file_time, &dos_date, &dos_time);
}

bool dos_from_ole_date(DATE date, WORD& dos_date, WORD& dos_time) noexcept {
  if (!std::isfinite(date)) return false;
  return ::VariantTimeToDosDateTime(date, &dos_date, &dos_time) != FALSE;
}

bool ole_date_from_dos(WORD dos_date, WORD dos_time, DATE& out) noexcept {
  return is_valid_dos(dos_date, dos_time) && ::DosDateTimeToVariantTime(dos_date, dos_time, &out) != FALSE;
}

}  // namespace mvsup::time

using namespace mvsup;

extern "C" {

BOOL WINAPI DOSTimeFromVariantTime(DATE variantTime, WORD* dosDate, WORD* dosTime) {
  WORD date_value = 0;
  WORD time_value = 0;
  const bool ok =
      dosDate != nullptr && dosTime != nullptr && time::dos_from_ole_date(variantTime, date_value, time_value);
  return time::deliver_dos(ok, dosDate, dosTime, date_value, time_value);
}

BOOL WINAPI DOSTimeToVariantTime(WORD dosDate, WORD dosTime, DATE* variantTime) {
  DATE result = 0;
  const bool ok = variantTime != nullptr && time::ole_date_from_dos(dosDate, dosTime, result);
  return time::deliver(ok, variantTime, result);
}

BOOL WINAPI TimetFromFileTime(const FILETIME* fileTime, __time64_t* time) {
  __time64_t result = 0;
  const bool ok = fileTime != nullptr && time != nullptr && time::timet_from_file_time(*fileTime, result);
  return time::deliver(ok, time, result);
}

BOOL WINAPI TimetToFileTime(__time64_t time, FILETIME* fileTime) {
  FILETIME result{};
  const bool ok = fileTime != nullptr && time::file_time_from_timet(time, result);
  return time::deliver(ok, fileTime, result);
}

BOOL WINAPI TMFromSystemTime(const SYSTEMTIME* systemTime, struct tm* tmOut) {
  std::tm result{};
  const bool ok = systemTime != nullptr && tmOut != nullptr && time::tm_from_system_time(*systemTime, result);
  return time::deliver(ok, tmOut, result);
}

BOOL WINAPI SetDayOfWeekInSystemTime(SYSTEMTIME* systemTime) {
  if (systemTime != nullptr && time::set_day_of_week(*systemTime)) return TRUE;
  ::SetLastError(ERROR_INVALID_PARAMETER);
  return FALSE;
}

BOOL WINAPI OleDateFromTm(const struct tm* tmIn, DATE* oleDate) {
  DATE result = 0;
  const bool ok = tmIn != nullptr && oleDate != nullptr && time::ole_date_from_tm(*tmIn, result);
  return time::deliver(ok, oleDate, result);
}

BOOL WINAPI TmFromOleDate(DATE oleDate, struct tm* tmOut) {
  std::tm result{};
  const bool ok = tmOut != nullptr && time::tm_from_ole_date(oleDate, result);
  return time::deliver(ok, tmOut, result);
}

BOOL WINAPI TimetToOleDate(__time64_t time, DATE* oleDate) {
  DATE result = 0;
  const bool ok = oleDate != nullptr && time::ole_date_from_timet(time, result);
  return time::deliver(ok, oleDate, result);
}

BOOL WINAPI TimetFromOleDate(DATE oleDate, __time64_t* time) {
  __time64_t result = 0;
  const bool ok = time != nullptr && time::timet_from_ole_date(oleDate, result);
  return time::deliver(ok, time, result);
}

}  // extern "C"
