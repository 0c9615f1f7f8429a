// Conversions between UTC and the system's local time. The zone is read
// from the system on every call, so a change of the zone applies at once;
// each year is converted with the rules the system keeps for that year
// (dynamic time-zone data), or with the current rules where it keeps none.
#pragma once

#include <windows.h>
#include <oleauto.h>

namespace mvsup::time {

// Both write trace lines (level 2) with the two times and the bias.
bool gmt_to_local(const SYSTEMTIME& gmt, SYSTEMTIME& local) noexcept;
bool local_to_gmt(const SYSTEMTIME& local, SYSTEMTIME& gmt) noexcept;

bool local_from_dos_gmt(WORD dos_date, WORD dos_time, SYSTEMTIME& local) noexcept;
bool dos_local_from_dos_gmt(WORD dos_date, WORD dos_time, WORD& local_date, WORD& local_time) noexcept;
bool ole_local_from_gmt(DATE gmt, DATE& local) noexcept;
bool ole_gmt_from_local(DATE local, DATE& gmt) noexcept;

}  // namespace mvsup::time
