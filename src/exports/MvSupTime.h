/** @file
 *  MvSup2u: date and time conversions.
 *
 *  The server's two date forms:
 *  - creation date "2006-08-14T09:05:00Z" (always UTC)
 *  - HTTP date "Mon, 14 Aug 2006 09:05:00 GMT" or "... +0200"
 *
 *  time_t is 64-bit on both architectures (__time64_t, seconds since
 *  1970-01-01 UTC). OLE dates are DATE values (days since 1899-12-30).
 *  SYSTEMTIME and FILETIME values are passed by pointer.
 *
 *  The binary conversions return non-zero on success. They return FALSE for
 *  a null pointer or a value that the target form cannot hold; the last
 *  error is then ERROR_INVALID_PARAMETER and every output (where non-null)
 *  is set to zero. An output may be the same object as the input. Their
 *  resolution is one second (DOS times: two seconds); FILETIME and
 *  SYSTEMTIME cover 1601-30827, OLE dates 100-9999, DOS times 1980-2107.
 *
 *  The functions that return text return a pointer to a static buffer of
 *  the library that the next call of the same function overwrites: one
 *  thread at a time. The caller does not free it. Everything else may be
 *  called from any thread at once.
 */
#ifndef MVSUP_TIME_H
#define MVSUP_TIME_H

#include <windows.h>
#include <oleauto.h>
#include <time.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @name Creation dates `%4d-%2.2d-%2.2dT%2.2d:%2.2d:%2.2dZ`
 *  @{ */

/** The creation date text of the year, month, day, hour, minute and second
 *  of systemTime (written as they stand, unchecked).
 *  @return the text; "" for null (never null).
 *  @ownership A shared static buffer of the library, overwritten by the
 *  next call; not freed by the caller.
 *  @threads One thread at a time.
 */
LPCWSTR WINAPI MVCreationDateFromSystemTime(const SYSTEMTIME* systemTime);

/** Reads a creation date by fixed positions: year at 0, month at 5, day at
 *  8, hour at 11, minute at 14, second at 17, each as the decimal digits
 *  found there (none: 0); separators are not checked; milliseconds are 0.
 *  Then sets the day of the week.
 *  @return what SetDayOfWeekInSystemTime returned: FALSE for an impossible
 *  date, whose fields are left as read with wDayOfWeek 0. A null text, a
 *  text of fewer than 18 characters or a null systemTime gives FALSE
 *  without touching systemTime.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI SystemTimeFromMVCreationDate(LPCWSTR text, SYSTEMTIME* systemTime);
/** The same for ANSI text.
 *  @return as SystemTimeFromMVCreationDate.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI SystemTimeFromMVCreationDateA(LPCSTR text, SYSTEMTIME* systemTime);

/** @} */

/** @name HTTP dates `%a, %d %b %Y %H:%M:%S` + " GMT" or " +hhmm"
 *  @{ */

/** Writes the HTTP date of time, broken down as UTC, followed by the zone.
 *  hours = zoneSeconds / 3600 (truncated), minutes = zoneSeconds % 60 (the
 *  remainder of the seconds, so 5400 writes "+0100"); when hours < 0 and
 *  minutes != 0, hours += 1 and minutes = 60 - minutes; then " GMT" when
 *  both are 0, else " ", "-" if hours < 0 else "+", |hours| and |minutes|
 *  as two digits each. The date and time are never shifted by the zone.
 *  buffer (capacity characters) is cleared first, then receives the text,
 *  truncated to capacity - 1 characters and always terminated.
 *  @return S_OK; E_FAIL (buffer left cleared) when time is before 1970 or
 *  after 3001-01-01 07:59:59, which the C runtime cannot break down;
 *  E_POINTER for a null buffer, E_INVALIDARG for a capacity of 0 (nothing
 *  written in either case).
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
HRESULT WINAPI TimetToGMTDate(__time64_t time, LONG zoneSeconds, LPWSTR buffer, DWORD capacity);
/** The same into an ANSI buffer of capacity bytes.
 *  @return as TimetToGMTDate.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
HRESULT WINAPI TimetToGMTDateA(__time64_t time, LONG zoneSeconds, LPSTR buffer, DWORD capacity);

/** Reads an HTTP date token by token: day name up to ",", day, month name,
 *  year up to blanks, hour and minute up to ":", second up to a blank,
 *  zone.
 *  Blanks (spaces) before a token are skipped; a token runs to its
 *  delimiter or, for want of one, to the end of the text (and must then be
 *  non-empty); a token has at most 15 characters. Names compare ignoring
 *  case; numeric fields are decimal digits only. The zone is "GMT" (0) or a
 *  signed decimal hhmm of at most 9999 (+0530 is 19800 seconds, -0500 is
 *  -18000). *time receives the date and time as written, taken as UTC (the
 *  zone is not applied: the instant in UTC is *time - *zoneSeconds);
 *  *zoneSeconds the zone in seconds east of UTC. zoneSeconds may be null.
 *  @return S_OK; E_INVALIDARG for a null text, a missing or over-long
 *  token, a non-numeric number, a malformed zone or an impossible date or
 *  time; E_UNEXPECTED for an unknown day or month name; E_POINTER for a
 *  null time. Both outputs are 0 unless S_OK is returned.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
HRESULT WINAPI TimetFromGMTDate(LPCWSTR text, __time64_t* time, LONG* zoneSeconds);
/** The same for ANSI text.
 *  @return as TimetFromGMTDate.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
HRESULT WINAPI TimetFromGMTDateA(LPCSTR text, __time64_t* time, LONG* zoneSeconds);

/** @} */

/** @name Modification dates (HTTP dates)
 *  @{ */

/** The HTTP date of systemTime taken as UTC, with the zone "GMT", for every
 *  date that SystemTimeFromMVModifiedDate reads (years 1601 to 30827).
 *  The day name is computed from the date, milliseconds are dropped.
 *  @return the text; "" for a null pointer or an impossible date.
 *  @ownership A shared static buffer of the library, overwritten by the
 *  next call; not freed by the caller.
 *  @threads One thread at a time.
 */
LPCWSTR WINAPI MVModifiedDateFromSystemTime(const SYSTEMTIME* systemTime);

/** Reads a modification date with TimetFromGMTDate.
 *  On success *systemTime receives the date and time as written (the zone
 *  is not applied, the day of the week is set).
 *  @return -1 when the zone is east of UTC (positive), 1 otherwise; 0 for a
 *  null text, a text of fewer than 25 characters or a failed read (with
 *  *systemTime cleared to zero), and for a null systemTime.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
int WINAPI SystemTimeFromMVModifiedDate(LPCWSTR text, SYSTEMTIME* systemTime);
/** The same for ANSI text.
 *  @return as SystemTimeFromMVModifiedDate.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
int WINAPI SystemTimeFromMVModifiedDateA(LPCSTR text, SYSTEMTIME* systemTime);

/** @} */

/** @name UTC and local time
 *  The time zone of the system, each year with the daylight-saving rules it
 *  had where the system keeps rules per year, else with the current rules.
 *  @{ */

/** UTC to local time.
 *  Writes trace lines (level 2) with both times and the bias in minutes
 *  (UTC = local + bias).
 *  @return TRUE; FALSE as the binary conversions fail (see the file's
 *  description), with the last error set.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI GmtToLocalTime(const SYSTEMTIME* gmtTime, SYSTEMTIME* localTime);
/** Local time to UTC; a local time that occurs twice or not at all on a
 *  daylight-saving change is resolved as the system resolves it.
 *  Trace lines as GmtToLocalTime.
 *  @return TRUE; FALSE with the last error set, as GmtToLocalTime.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI LocalTimeToGmt(const SYSTEMTIME* localTime, SYSTEMTIME* gmtTime);
/** A DOS date and time in UTC to local time.
 *  @return TRUE; FALSE with the last error set (see the file's
 *  description).
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI DosGmtToLocalTime(WORD dosDate, WORD dosTime, SYSTEMTIME* localTime);
/** A DOS date and time in UTC to a DOS date and time in local time; both
 *  outputs are required.
 *  @return TRUE; FALSE with the last error set (see the file's
 *  description).
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI DosGmtToDosLocalTime(WORD dosDate, WORD dosTime, WORD* localDosDate, WORD* localDosTime);
/** An OLE date in UTC to an OLE date in local time.
 *  @return TRUE; FALSE with the last error set (see the file's
 *  description).
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI OleDateLocalTimeFromGmt(DATE gmtDate, DATE* localDate);
/** An OLE date in local time to an OLE date in UTC.
 *  @return TRUE; FALSE with the last error set (see the file's
 *  description).
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI OleDateGmtFromLocalTime(DATE localDate, DATE* gmtDate);

/** @} */

/** @name Zone-free conversions
 *  @{ */

/** DOS date and time from an OLE date (VariantTimeToDosDateTime); both
 *  outputs are required.
 *  The platform's DOS-OLE conversions end at 2099-12-31; an impossible DOS
 *  date (day 0, 30 February) gives FALSE everywhere instead of rolling into
 *  a neighbouring month.
 *  @return TRUE; FALSE with the last error set (see the file's
 *  description).
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI DOSTimeFromVariantTime(DATE variantTime, WORD* dosDate, WORD* dosTime);
/** OLE date from a DOS date and time (DosDateTimeToVariantTime).
 *  @return TRUE; FALSE with the last error set (see the file's
 *  description).
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI DOSTimeToVariantTime(WORD dosDate, WORD dosTime, DATE* variantTime);
/** time_t of a FILETIME, rounded down to the second.
 *  @return TRUE; FALSE with the last error set for a FILETIME above
 *  0x7FFFFFFFFFFFFFFF or a null pointer.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI TimetFromFileTime(const FILETIME* fileTime, __time64_t* time);
/** FILETIME of a time_t.
 *  @return TRUE; FALSE with the last error set before 1601, beyond what a
 *  FILETIME holds, or for a null pointer.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI TimetToFileTime(__time64_t time, FILETIME* fileTime);
/** Broken-down time of a SYSTEMTIME, field by field, with tm_wday and
 *  tm_yday computed from the date and tm_isdst 0; the input's wDayOfWeek
 *  and wMilliseconds are ignored.
 *  @return TRUE; FALSE with the last error set for an impossible date, one
 *  before 1601, or a null pointer.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI TMFromSystemTime(const SYSTEMTIME* systemTime, struct tm* tmOut);
/** Sets wDayOfWeek from the date.
 *  @return TRUE; FALSE for a null pointer or an impossible date, the
 *  SYSTEMTIME then left unchanged.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI SetDayOfWeekInSystemTime(SYSTEMTIME* systemTime);
/** OLE date of a broken-down time (tm_wday, tm_yday and tm_isdst ignored).
 *  Fields are not normalised.
 *  @return TRUE; FALSE with the last error set for a field out of its
 *  range, an impossible date or a null pointer.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI OleDateFromTm(const struct tm* tmIn, DATE* oleDate);
/** Broken-down time of an OLE date (rounded to the second), with tm_wday,
 *  tm_yday and tm_isdst 0.
 *  @return TRUE; FALSE with the last error set (see the file's
 *  description).
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI TmFromOleDate(DATE oleDate, struct tm* tmOut);
/** OLE date of a time_t (both UTC).
 *  @return TRUE; FALSE with the last error set (see the file's
 *  description).
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI TimetToOleDate(__time64_t time, DATE* oleDate);
/** time_t of an OLE date (both UTC), rounded to the second.
 *  @return TRUE; FALSE with the last error set (see the file's
 *  description).
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
BOOL WINAPI TimetFromOleDate(DATE oleDate, __time64_t* time);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_TIME_H */
