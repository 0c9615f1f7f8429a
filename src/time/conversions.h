// Zone-free conversions between SYSTEMTIME, FILETIME, time_t, struct tm,
// DOS dates and OLE dates, usable from C++ without the exports. Every
// function is noexcept, returns false for a value the target form cannot
// hold, and writes its output only on success.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <cstdint>
#include <ctime>

namespace mvsup::time {

inline constexpr int64_t kTicksPerSecond = 10'000'000;       // FILETIME units per second
inline constexpr int64_t kUnixEpochTicks = 116444736000000000;  // 1970-01-01 as a FILETIME

// Checks every field first (the platform's own check lets some impossible
// dates through, such as 29 February of any year).
bool is_valid_system_time(const SYSTEMTIME& system_time) noexcept;
bool file_time_from_system_time(const SYSTEMTIME& system_time, FILETIME& out) noexcept;

bool file_time_from_timet(__time64_t time, FILETIME& out) noexcept;
bool timet_from_file_time(const FILETIME& file_time, __time64_t& out) noexcept;

bool system_time_from_timet(__time64_t time, SYSTEMTIME& out) noexcept;
// The SYSTEMTIME taken as UTC; milliseconds are dropped.
bool timet_from_system_time(const SYSTEMTIME& system_time, __time64_t& out) noexcept;

// Sets wDayOfWeek; false (and system_time unchanged) for an impossible date.
bool set_day_of_week(SYSTEMTIME& system_time) noexcept;

bool tm_from_system_time(const SYSTEMTIME& system_time, std::tm& out) noexcept;
bool ole_date_from_tm(const std::tm& broken_down, DATE& out) noexcept;
bool tm_from_ole_date(DATE date, std::tm& out) noexcept;

bool system_time_from_ole_date(DATE date, SYSTEMTIME& out) noexcept;
bool ole_date_from_system_time(const SYSTEMTIME& system_time, DATE& out) noexcept;
bool ole_date_from_timet(__time64_t time, DATE& out) noexcept;
bool timet_from_ole_date(DATE date, __time64_t& out) noexcept;

bool system_time_from_dos(WORD dos_date, WORD dos_time, SYSTEMTIME& out) noexcept;
bool dos_from_system_time(const SYSTEMTIME& system_time, WORD& dos_date, WORD& dos_time) noexcept;
bool dos_from_ole_date(DATE date, WORD& dos_date, WORD& dos_time) noexcept;
bool ole_date_from_dos(WORD dos_date, WORD dos_time, DATE& out) noexcept;

}  // namespace mvsup::time
