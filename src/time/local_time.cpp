#include "time/local_time.h"

#include <cstdint>

#include "MvSupTime.h"
#include "frame/trace.h"
#include "time/conversions.h"
#include "time/export_result.h"

namespace mvsup::time {

namespace {

constexpr int64_t kTicksPerMinute = 60 * kTicksPerSecond;

// The zone's rules for one year: the platform's per-year rules (dynamic
// time-zone data) where it has them, else its current rules. With automatic
// daylight saving switched off the current rules are the ones to use (they
// have none).
bool read_zone(WORD year, TIME_ZONE_INFORMATION& zone) noexcept {
  DYNAMIC_TIME_ZONE_INFORMATION dynamic{};
  if (::GetDynamicTimeZoneInformation(&dynamic) != TIME_ZONE_ID_INVALID && !dynamic.DynamicDaylightTimeDisabled &&
      ::GetTimeZoneInformationForYear(year, &dynamic, &zone))
    return true;
  return ::GetTimeZoneInformation(&zone) != TIME_ZONE_ID_INVALID;
}

// Converts with the rules of the local year, which near the turn of a year
// may differ from the year of the UTC time.
bool local_from_utc(const SYSTEMTIME& gmt, SYSTEMTIME& local) noexcept {
  TIME_ZONE_INFORMATION zone;
  if (!read_zone(gmt.wYear, zone) || !::SystemTimeToTzSpecificLocalTime(&zone, &gmt, &local)) return false;
  if (local.wYear != gmt.wYear &&
      (!read_zone(local.wYear, zone) || !::SystemTimeToTzSpecificLocalTime(&zone, &gmt, &local)))
    return false;
  trace::line("Bias: %d min\n", static_cast<int>(zone.Bias));
  return true;
}

bool utc_from_local(const SYSTEMTIME& local, SYSTEMTIME& gmt) noexcept {
  TIME_ZONE_INFORMATION zone;
  if (!read_zone(local.wYear, zone) || !::TzSpecificLocalTimeToSystemTime(&zone, &local, &gmt)) return false;
  trace::line("Bias: %d min\n", static_cast<int>(zone.Bias));
  return true;
}

// Minutes to add to local time to get UTC, as the zone's own Bias counts.
int bias_between(const SYSTEMTIME& gmt, const SYSTEMTIME& local) noexcept {
  FILETIME gmt_file;
  FILETIME local_file;
  if (!file_time_from_system_time(gmt, gmt_file) || !file_time_from_system_time(local, local_file)) return 0;
  const auto ticks = [](const FILETIME& f) {
    return static_cast<int64_t>((static_cast<uint64_t>(f.dwHighDateTime) << 32) | f.dwLowDateTime);
  };
  return static_cast<int>((ticks(gmt_file) - ticks(local_file)) / kTicksPerMinute);
}

void trace_gmt(const SYSTEMTIME& t) noexcept {
  trace::line("GMT: %04d-%02d-%02d (%d) %02d:%02d:%02d\n", t.wYear, t.wMonth, t.wDay, t.wDayOfWeek, t.wHour,
              t.wMinute, t.wSecond);
}

void trace_local(const SYSTEMTIME& t, const SYSTEMTIME& gmt) noexcept {
  if (trace::level() < 2) return;
  trace::line("Local: %04d-%02d-%02d (%d) %02d:%02d:%02d [bias %d min]\n", t.wYear, t.wMonth, t.wDay, t.wDayOfWeek,
              t.wHour, t.wMinute, t.wSecond, bias_between(gmt, t));
}

}  // namespace

bool gmt_to_local(const SYSTEMTIME& gmt, SYSTEMTIME& local) noexcept {
  const SYSTEMTIME in = gmt;
  trace_gmt(in);
  SYSTEMTIME out;
  if (!is_valid_system_time(in) || !local_from_utc(in, out)) return false;
  trace_local(out, in);
  local = out;
  return true;
}

bool local_to_gmt(const SYSTEMTIME& local, SYSTEMTIME& gmt) noexcept {
  const SYSTEMTIME in = local;
  SYSTEMTIME out;
  if (!is_valid_system_time(in) || !utc_from_local(in, out)) return false;
  trace_local(in, out);
  trace_gmt(out);
  gmt = out;
  return true;
}

bool local_from_dos_gmt(WORD dos_date, WORD dos_time, SYSTEMTIME& local) noexcept {
  SYSTEMTIME gmt;
  return system_time_from_dos(dos_date, dos_time, gmt) && gmt_to_local(gmt, local);
}

bool dos_local_from_dos_gmt(WORD dos_date, WORD dos_time, WORD& local_date, WORD& local_time) noexcept {
  SYSTEMTIME local;
  return local_from_dos_gmt(dos_date, dos_time, local) && dos_from_system_time(local, local_date, local_time);
}

bool ole_local_from_gmt(DATE gmt, DATE& local) noexcept {
  SYSTEMTIME gmt_time;
  SYSTEMTIME local_time;
  return system_time_from_ole_date(gmt, gmt_time) && gmt_to_local(gmt_time, local_time) &&
         ole_date_from_system_time(local_time, local);
}

bool ole_gmt_from_local(DATE local, DATE& gmt) noexcept {
  SYSTEMTIME local_time;
  SYSTEMTIME gmt_time;
  return system_time_from_ole_date(local, local_time) && local_to_gmt(local_time, gmt_time) &&
         ole_date_from_system_time(gmt_time, gmt);
}

}  // namespace mvsup::time

using namespace mvsup;

extern "C" {

BOOL WINAPI GmtToLocalTime(const SYSTEMTIME* gmtTime, SYSTEMTIME* localTime) {
  trace::CallScope scope("GmtToLocalTime");
  SYSTEMTIME result{};
  const bool ok = gmtTime != nullptr && localTime != nullptr && time::gmt_to_local(*gmtTime, result);
  return scope.res(time::deliver(ok, localTime, result));
}

BOOL WINAPI LocalTimeToGmt(const SYSTEMTIME* localTime, SYSTEMTIME* gmtTime) {
  trace::CallScope scope("LocalTimeToGmt");
  SYSTEMTIME result{};
  const bool ok = localTime != nullptr && gmtTime != nullptr && time::local_to_gmt(*localTime, result);
  return scope.res(time::deliver(ok, gmtTime, result));
}

BOOL WINAPI DosGmtToLocalTime(WORD dosDate, WORD dosTime, SYSTEMTIME* localTime) {
  trace::CallScope scope("DosGmtToLocalTime");
  SYSTEMTIME result{};
  const bool ok = localTime != nullptr && time::local_from_dos_gmt(dosDate, dosTime, result);
  return scope.res(time::deliver(ok, localTime, result));
}

BOOL WINAPI DosGmtToDosLocalTime(WORD dosDate, WORD dosTime, WORD* localDosDate, WORD* localDosTime) {
  trace::CallScope scope("DosGmtToDosLocalTime");
  WORD date_value = 0;
  WORD time_value = 0;
  const bool ok = localDosDate != nullptr && localDosTime != nullptr &&
                  time::dos_local_from_dos_gmt(dosDate, dosTime, date_value, time_value);
  return scope.res(time::deliver_dos(ok, localDosDate, localDosTime, date_value, time_value));
}

BOOL WINAPI OleDateLocalTimeFromGmt(DATE gmtDate, DATE* localDate) {
  trace::CallScope scope("OleDateLocalTimeFromGmt");
  DATE result = 0;
  const bool ok = localDate != nullptr && time::ole_local_from_gmt(gmtDate, result);
  return scope.res(time::deliver(ok, localDate, result));
}

BOOL WINAPI OleDateGmtFromLocalTime(DATE localDate, DATE* gmtDate) {
  trace::CallScope scope("OleDateGmtFromLocalTime");
  DATE result = 0;
  const bool ok = gmtDate != nullptr && time::ole_gmt_from_local(localDate, result);
  return scope.res(time::deliver(ok, gmtDate, result));
}

}  // extern "C"
