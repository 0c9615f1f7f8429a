// The server's two date forms, usable from C++ without the exports:
// the creation date "2006-08-14T09:05:00Z" and the HTTP date
// "Mon, 14 Aug 2006 09:05:00 +0200". Readers take a view (no terminator
// needed) and never read past it.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace mvsup::time {

inline constexpr size_t kCreationDateMinLength = 18;
inline constexpr size_t kModifiedDateMinLength = 25;
inline constexpr size_t kHttpDateTokenMaxLength = 15;

// "%4d-%2.2d-%2.2dT%2.2d:%2.2d:%2.2dZ" of the fields as they stand.
std::wstring format_creation_date(const SYSTEMTIME& system_time);

// Fields by fixed position, then the day of the week. Returns false for a
// text shorter than 18 characters (system_time untouched) or an impossible
// date (fields as read, wDayOfWeek 0).
bool parse_creation_date(std::wstring_view text, SYSTEMTIME& system_time) noexcept;

// The HTTP date of time (broken down as UTC) with the zone suffix; S_OK,
// E_FAIL when the C runtime cannot break the time down, E_OUTOFMEMORY.
HRESULT format_http_date(__time64_t time, LONG zone_seconds, std::wstring& text) noexcept;

// S_OK with time as written (taken as UTC) and the zone in seconds east of
// UTC; E_INVALIDARG for a missing, over-long or malformed field or an
// impossible date; E_UNEXPECTED for an unknown day or month name. The
// outputs are written only on S_OK.
HRESULT parse_http_date(std::wstring_view text, __time64_t& time, LONG& zone_seconds) noexcept;

// The HTTP date of a SYSTEMTIME taken as UTC, with zone "GMT"; empty when the
// date cannot be written.
std::wstring format_modified_date(const SYSTEMTIME& system_time);

// -1 (zone east of UTC) or 1 with system_time set to the time as written;
// 0 with system_time cleared when the text is shorter than 25 characters or
// is not an HTTP date.
int parse_modified_date(std::wstring_view text, SYSTEMTIME& system_time) noexcept;

}  // namespace mvsup::time
