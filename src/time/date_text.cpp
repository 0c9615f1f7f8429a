#include "time/date_text.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <cwchar>
#include <optional>

#include "MvSupTime.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "time/conversions.h"

namespace mvsup::time {

namespace {

// Views of literals: data() is terminated.
constexpr std::array<std::wstring_view, 7> kDayNames = {L"Mon", L"Tue", L"Wed", L"Thu", L"Fri", L"Sat", L"Sun"};
constexpr std::array<std::wstring_view, 12> kMonthNames = {L"Jan", L"Feb", L"Mar", L"Apr", L"May", L"Jun",
                                                           L"Jul", L"Aug", L"Sep", L"Oct", L"Nov", L"Dec"};

// Character positions of the creation date's fields.
constexpr size_t kYearAt = 0;
constexpr size_t kMonthAt = 5;
constexpr size_t kDayAt = 8;
constexpr size_t kHourAt = 11;
constexpr size_t kMinuteAt = 14;
constexpr size_t kSecondAt = 17;

// The last second that the C runtime's _gmtime64_s breaks down
// (3001-01-01 07:59:59 UTC). Checked here so that no invalid-parameter
// handler of the runtime is ever reached.
constexpr __time64_t kLatestBrokenDownTime = 32535215999;

constexpr int kSecondsPerHour = 3600;
constexpr int kMaxZoneDigitsValue = 9999;

bool is_digit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }

// The decimal digits at position (none: 0). A value too large for a WORD
// becomes 0xFFFF, which no SYSTEMTIME field accepts.
WORD read_field(std::wstring_view text, size_t position) noexcept {
  uint32_t value = 0;
  for (size_t i = position; i < text.size() && is_digit(text[i]); ++i) {
    value = value * 10 + static_cast<uint32_t>(text[i] - L'0');
    if (value > 0xFFFF) return 0xFFFF;
  }
  return static_cast<WORD>(value);
}

template <size_t N>
std::optional<size_t> find_name(const std::array<std::wstring_view, N>& names, std::wstring_view token) noexcept {
  for (size_t i = 0; i < N; ++i)
    if (text::equals_ignore_case(token, names[i])) return i;
  return std::nullopt;
}

// A whole token of decimal digits (tokens are at most 15 characters, so
// the value fits).
std::optional<uint64_t> read_number(std::wstring_view token) noexcept {
  if (token.empty()) return std::nullopt;
  uint64_t value = 0;
  for (const wchar_t c : token) {
    if (!is_digit(c)) return std::nullopt;
    value = value * 10 + static_cast<uint64_t>(c - L'0');
  }
  return value;
}

std::optional<WORD> read_word(std::wstring_view token) noexcept {
  const std::optional<uint64_t> value = read_number(token);
  if (!value || *value > 0xFFFF) return std::nullopt;
  return static_cast<WORD>(*value);
}

// "GMT", or a signed hhmm; the result in seconds east of UTC.
std::optional<LONG> read_zone(std::wstring_view token) noexcept {
  if (text::equals_ignore_case(token, L"GMT")) return 0;
  LONG sign = 1;
  if (!token.empty() && (token.front() == L'+' || token.front() == L'-')) {
    if (token.front() == L'-') sign = -1;
    token.remove_prefix(1);
  }
  const std::optional<uint64_t> hhmm = read_number(token);
  if (!hhmm || *hhmm > kMaxZoneDigitsValue) return std::nullopt;
  const LONG value = static_cast<LONG>(*hhmm);
  return sign * ((value % 100) + (value / 100) * 60) * 60;
}

// Cuts the HTTP date into tokens: skips blanks, then takes the text up to the
// delimiter (and moves past it) or, when the delimiter does not occur, all
// the rest, which must then be non-empty.
class TokenCursor {
 public:
  explicit TokenCursor(std::wstring_view text) noexcept : rest_(text) {}

  std::optional<std::wstring_view> next(wchar_t delimiter) noexcept {
    const size_t start = rest_.find_first_not_of(L' ');
    rest_.remove_prefix(start == std::wstring_view::npos ? rest_.size() : start);
    std::wstring_view token;
    if (const size_t end = rest_.find(delimiter); end != std::wstring_view::npos) {
      token = rest_.substr(0, end);
      rest_.remove_prefix(end + 1);
    } else {
      token = rest_;
      rest_ = {};
      if (token.empty()) return std::nullopt;
    }
    if (token.size() > kHttpDateTokenMaxLength) return std::nullopt;
    return token;
  }

 private:
  std::wstring_view rest_;
};

// "%a, %d %b %Y %H:%M:%S" of the given fields; day_of_week 0 is Sunday.
std::wstring format_http_fields(int day_of_week, int day, int month, int year, int hour, int minute, int second) {
  const std::wstring_view day_name = kDayNames[static_cast<size_t>((day_of_week + 6) % 7)];
  const std::wstring_view month_name = kMonthNames[static_cast<size_t>(month - 1)];
  return text::format(L"%ls, %02d %ls %d %02d:%02d:%02d", day_name.data(), day, month_name.data(), year, hour,
                      minute, second);
}

}  // namespace

std::wstring format_creation_date(const SYSTEMTIME& t) {
  return text::format(L"%4d-%2.2d-%2.2dT%2.2d:%2.2d:%2.2dZ", t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute,
                     t.wSecond);
}

bool parse_creation_date(std::wstring_view text, SYSTEMTIME& system_time) noexcept {
  if (text.size() < kCreationDateMinLength) return false;
  SYSTEMTIME read{};
  read.wYear = read_field(text, kYearAt);
  read.wMonth = read_field(text, kMonthAt);
  read.wDay = read_field(text, kDayAt);
  read.wHour = read_field(text, kHourAt);
  read.wMinute = read_field(text, kMinuteAt);
  read.wSecond = read_field(text, kSecondAt);
  const bool dated = set_day_of_week(read);
  system_time = read;
  return dated;
}

HRESULT format_http_date(__time64_t time, LONG zone_seconds, std::wstring& text) noexcept {
  if (time < 0 || time > kLatestBrokenDownTime) return E_FAIL;
  std::tm utc{};
  if (::_gmtime64_s(&utc, &time) != 0) return E_FAIL;
  LONG hours = zone_seconds / kSecondsPerHour;
  LONG minutes = zone_seconds % 60;  // of the seconds, not of the hour: 5400 writes +0100
  if (hours < 0 && minutes != 0) {
    hours += 1;
    minutes = 60 - minutes;
  }
  try {
    std::wstring result = format_http_fields(utc.tm_wday, utc.tm_mday, utc.tm_mon + 1, utc.tm_year + 1900,
                                             utc.tm_hour, utc.tm_min, utc.tm_sec);
    if (hours == 0 && minutes == 0)
      result += L" GMT";
    else
      result += text::format(L" %ls%02ld%02ld", hours < 0 ? L"-" : L"+", std::labs(hours), std::labs(minutes));
    text = std::move(result);
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT parse_http_date(std::wstring_view text, __time64_t& time, LONG& zone_seconds) noexcept {
  TokenCursor cursor(text);

  const std::optional<std::wstring_view> day_name = cursor.next(L',');
  if (!day_name) return E_INVALIDARG;
  if (!find_name(kDayNames, *day_name)) return E_UNEXPECTED;

  const std::optional<std::wstring_view> day = cursor.next(L' ');
  if (!day) return E_INVALIDARG;

  const std::optional<std::wstring_view> month_name = cursor.next(L' ');
  if (!month_name) return E_INVALIDARG;
  const std::optional<size_t> month = find_name(kMonthNames, *month_name);
  if (!month) return E_UNEXPECTED;

  const std::optional<std::wstring_view> year = cursor.next(L' ');
  const std::optional<std::wstring_view> hour = year ? cursor.next(L':') : std::nullopt;
  const std::optional<std::wstring_view> minute = hour ? cursor.next(L':') : std::nullopt;
  const std::optional<std::wstring_view> second = minute ? cursor.next(L' ') : std::nullopt;
  const std::optional<std::wstring_view> zone = second ? cursor.next(L' ') : std::nullopt;
  if (!zone) return E_INVALIDARG;

  SYSTEMTIME fields{};
  const std::optional<WORD> numbers[] = {read_word(*year), read_word(*day), read_word(*hour), read_word(*minute),
                                         read_word(*second)};
  if (std::any_of(std::begin(numbers), std::end(numbers), [](const auto& n) { return !n; })) return E_INVALIDARG;
  fields.wYear = *numbers[0];
  fields.wMonth = static_cast<WORD>(*month + 1);
  fields.wDay = *numbers[1];
  fields.wHour = *numbers[2];
  fields.wMinute = *numbers[3];
  fields.wSecond = *numbers[4];
  const std::optional<LONG> offset = read_zone(*zone);
  __time64_t as_utc = 0;
  if (!offset || !timet_from_system_time(fields, as_utc)) return E_INVALIDARG;
  time = as_utc;
  zone_seconds = *offset;
  return S_OK;
}

// Written from the fields themselves rather than through the C runtime's
// broken-down time, so that every date the reader takes (1601 to 30827)
// is written; the day name is computed, milliseconds are dropped.
std::wstring format_modified_date(const SYSTEMTIME& system_time) {
  SYSTEMTIME t = system_time;
  if (!set_day_of_week(t)) return {};
  return format_http_fields(t.wDayOfWeek, t.wDay, t.wMonth, t.wYear, t.wHour, t.wMinute, t.wSecond) + L" GMT";
}

int parse_modified_date(std::wstring_view text, SYSTEMTIME& system_time) noexcept {
  __time64_t time = 0;
  LONG zone_seconds = 0;
  SYSTEMTIME written{};
  if (text.size() < kModifiedDateMinLength || parse_http_date(text, time, zone_seconds) != S_OK ||
      !system_time_from_timet(time, written)) {
    system_time = SYSTEMTIME{};
    return 0;
  }
  system_time = written;
  return zone_seconds > 0 ? -1 : 1;
}

}  // namespace mvsup::time

using namespace mvsup;

namespace {

// Shared buffers of the two text writers; the longest creation date (five
// digits in every field) has 36 characters, a modification date 30.
constexpr size_t kTextBufferCapacity = 48;

std::wstring wide_or_empty(const char* text) { return text::to_wide(text::view_or_empty(text)); }

}  // namespace

extern "C" {

LPCWSTR WINAPI MVCreationDateFromSystemTime(const SYSTEMTIME* systemTime) {
  static wchar_t text[kTextBufferCapacity];
  text[0] = L'\0';
  if (systemTime != nullptr) {
    try {
      text::copy_truncated(text, kTextBufferCapacity, time::format_creation_date(*systemTime));
    } catch (...) {
      text[0] = L'\0';
    }
  }
  return text;
}

BOOL WINAPI SystemTimeFromMVCreationDate(LPCWSTR text, SYSTEMTIME* systemTime) {
  trace::CallScope scope("SystemTimeFromMVCreationDate");
  if (text == nullptr || systemTime == nullptr) return scope.res(FALSE);
  return scope.res(time::parse_creation_date(text, *systemTime) ? TRUE : FALSE);
}

BOOL WINAPI SystemTimeFromMVCreationDateA(LPCSTR text, SYSTEMTIME* systemTime) {
  trace::CallScope scope("SystemTimeFromMVCreationDateA");
  if (text == nullptr || systemTime == nullptr) return scope.res(FALSE);
  try {
    return scope.res(time::parse_creation_date(wide_or_empty(text), *systemTime) ? TRUE : FALSE);
  } catch (...) {
    return scope.res(FALSE);
  }
}

LPCWSTR WINAPI MVModifiedDateFromSystemTime(const SYSTEMTIME* systemTime) {
  static wchar_t text[kTextBufferCapacity];
  text[0] = L'\0';
  if (systemTime != nullptr) {
    try {
      text::copy_truncated(text, kTextBufferCapacity, time::format_modified_date(*systemTime));
    } catch (...) {
      text[0] = L'\0';
    }
  }
  return text;
}

int WINAPI SystemTimeFromMVModifiedDate(LPCWSTR text, SYSTEMTIME* systemTime) {
  trace::CallScope scope("SystemTimeFromMVModifiedDate");
  if (systemTime == nullptr) return scope.res(0);
  return scope.res(time::parse_modified_date(text::view_or_empty(text), *systemTime));
}

int WINAPI SystemTimeFromMVModifiedDateA(LPCSTR text, SYSTEMTIME* systemTime) {
  trace::CallScope scope("SystemTimeFromMVModifiedDateA");
  if (systemTime == nullptr) return scope.res(0);
  try {
    return scope.res(time::parse_modified_date(wide_or_empty(text), *systemTime));
  } catch (...) {
    *systemTime = SYSTEMTIME{};
    return scope.res(0);
  }
}

HRESULT WINAPI TimetToGMTDate(__time64_t time, LONG zoneSeconds, LPWSTR buffer, DWORD capacity) {
  trace::CallScope scope("TimetToGMTDate");
  if (buffer == nullptr) return scope.hr(E_POINTER);
  if (capacity == 0) return scope.hr(E_INVALIDARG);
  std::fill_n(buffer, capacity, L'\0');
  std::wstring date;
  const HRESULT hr = time::format_http_date(time, zoneSeconds, date);
  if (hr == S_OK) text::copy_truncated(buffer, capacity, date);
  return scope.hr(hr);
}

HRESULT WINAPI TimetToGMTDateA(__time64_t time, LONG zoneSeconds, LPSTR buffer, DWORD capacity) {
  trace::CallScope scope("TimetToGMTDateA");
  if (buffer == nullptr) return scope.hr(E_POINTER);
  if (capacity == 0) return scope.hr(E_INVALIDARG);
  std::fill_n(buffer, capacity, '\0');
  std::wstring date;
  const HRESULT hr = time::format_http_date(time, zoneSeconds, date);
  if (hr == S_OK) text::copy_narrow_truncated(buffer, capacity, date);
  return scope.hr(hr);
}

HRESULT WINAPI TimetFromGMTDate(LPCWSTR text, __time64_t* time, LONG* zoneSeconds) {
  trace::CallScope scope("TimetFromGMTDate");
  if (zoneSeconds != nullptr) *zoneSeconds = 0;
  if (time == nullptr) return scope.hr(E_POINTER);
  *time = 0;
  if (text == nullptr) return scope.hr(E_INVALIDARG);
  LONG zone = 0;
  const HRESULT hr = time::parse_http_date(text, *time, zone);
  if (hr == S_OK && zoneSeconds != nullptr) *zoneSeconds = zone;
  return scope.hr(hr);
}

HRESULT WINAPI TimetFromGMTDateA(LPCSTR text, __time64_t* time, LONG* zoneSeconds) {
  trace::CallScope scope("TimetFromGMTDateA");
  if (zoneSeconds != nullptr) *zoneSeconds = 0;
  if (time == nullptr) return scope.hr(E_POINTER);
  *time = 0;
  if (text == nullptr) return scope.hr(E_INVALIDARG);
  LONG zone = 0;
  HRESULT hr = E_OUTOFMEMORY;
  try {
    hr = time::parse_http_date(wide_or_empty(text), *time, zone);
  } catch (...) {
  }
  if (hr == S_OK && zoneSeconds != nullptr) *zoneSeconds = zone;
  return scope.hr(hr);
}

}  // extern "C"
