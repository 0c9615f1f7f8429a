// Small helpers shared by the time tests: building SYSTEMTIMEs and printing
// them so that a mismatch shows every field.
#pragma once

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

namespace mvsup::test {

inline SYSTEMTIME make_time(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
                            int day_of_week = 0, int milliseconds = 0) {
  auto w = [](int v) { return static_cast<WORD>(v); };
  return SYSTEMTIME{w(year), w(month), w(day_of_week), w(day), w(hour), w(minute), w(second), w(milliseconds)};
}

// "2006-08-14 09:05:00.000 dow 1"
inline std::string show(const SYSTEMTIME& t) {
  char text[64];
  std::snprintf(text, sizeof(text), "%04u-%02u-%02u %02u:%02u:%02u.%03u dow %u", t.wYear, t.wMonth, t.wDay, t.wHour,
                t.wMinute, t.wSecond, t.wMilliseconds, t.wDayOfWeek);
  return text;
}

inline std::string show(const std::tm& t) {
  char text[96];
  std::snprintf(text, sizeof(text), "y%d m%d d%d %02d:%02d:%02d wday %d yday %d dst %d", t.tm_year, t.tm_mon,
                t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, t.tm_wday, t.tm_yday, t.tm_isdst);
  return text;
}

// Every byte 0xCD: tells "not written" from "zeroed".
inline SYSTEMTIME sentinel_time() {
  SYSTEMTIME t;
  std::memset(&t, 0xCD, sizeof(t));
  return t;
}

inline const SYSTEMTIME kZeroTime{};

// A refused conversion returns FALSE with ERROR_INVALID_PARAMETER.
#define EXPECT_REFUSED(call)                                                \
  do {                                                                      \
    SetLastError(0xdeadbeef);                                               \
    EXPECT_FALSE(call);                                                     \
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER)); \
  } while (0)

}  // namespace mvsup::test
