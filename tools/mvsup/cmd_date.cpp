// mvsup date: how the library reads a server date, and the current time in
// both of the server's forms.
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <optional>
#include <string>

#include "MvSup2u.h"
#include "command.h"
#include "output.h"

namespace mvsup::tool {
namespace {

constexpr const wchar_t* kDayNames[] = {L"Sun", L"Mon", L"Tue", L"Wed", L"Thu", L"Fri", L"Sat"};

struct Reading {
  std::wstring text;
  bool http = false;
  SYSTEMTIME time{};
  __time64_t timet = 0;
  LONG zone = 0;
  int modified_result = 0;  // SystemTimeFromMVModifiedDate
  DATE ole = 0;
  bool has_ole = false;
};

std::wstring system_time_text(const SYSTEMTIME& t) {
  wchar_t buffer[64];
  std::swprintf(buffer, 64, L"%04u-%02u-%02uT%02u:%02u:%02u.%03u", t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute,
                t.wSecond, t.wMilliseconds);
  return buffer;
}

std::wstring ole_text(DATE date) {
  wchar_t buffer[64];
  std::swprintf(buffer, 64, L"%.6f", date);
  return buffer;
}

std::wstring zone_text(LONG seconds) {
  const LONG magnitude = seconds < 0 ? -seconds : seconds;
  wchar_t buffer[64];
  std::swprintf(buffer, 64, L"%+ld s (%lc%02ld:%02ld)", static_cast<long>(seconds), seconds < 0 ? L'-' : L'+',
                static_cast<long>(magnitude / 3600), static_cast<long>(magnitude / 60 % 60));
  return buffer;
}

std::wstring http_text(__time64_t time, LONG zone) {
  wchar_t buffer[64];
  return TimetToGMTDate(time, zone, buffer, 64) == S_OK ? std::wstring(buffer) : std::wstring(L"(not writable)");
}

std::wstring hresult_text(HRESULT hr) { return hex32(static_cast<uint32_t>(hr)); }

// An HTTP date first (its reader is strict), then a creation date (read by
// position, so almost any long text gets that far).
std::optional<Reading> read(const std::wstring& text, std::wstring& error) {
  Reading r;
  r.text = text;
  const HRESULT http = TimetFromGMTDate(text.c_str(), &r.timet, &r.zone);
  if (http == S_OK) {
    r.http = true;
    FILETIME file_time;
    if (!TimetToFileTime(r.timet, &file_time) || !FileTimeToSystemTime(&file_time, &r.time)) {
      error = L"the date has no SYSTEMTIME";
      return std::nullopt;
    }
    SYSTEMTIME unused;
    r.modified_result = SystemTimeFromMVModifiedDate(text.c_str(), &unused);
  } else if (SystemTimeFromMVCreationDate(text.c_str(), &r.time)) {
    FILETIME file_time;
    if (!SystemTimeToFileTime(&r.time, &file_time) || !TimetFromFileTime(&file_time, &r.timet)) {
      error = L"the date has no time_t";
      return std::nullopt;
    }
  } else {
    error = L"not a creation or HTTP date: \"" + text + L"\" (HTTP date reader: " + hresult_text(http) + L")";
    return std::nullopt;
  }
  r.has_ole = TimetToOleDate(r.timet, &r.ole) != FALSE;
  return r;
}

std::wstring modified_result_text(int result) {
  switch (result) {
    case -1: return L"-1 (zone east of UTC)";
    case 1: return L"1 (zone at or west of UTC)";
    default: return L"0 (too short for a modification date)";
  }
}

void print_reading(const Reading& r, bool as_json) {
  if (as_json) {
    JsonWriter json;
    json.begin_object()
        .string(L"text", r.text)
        .string(L"form", r.http ? L"http" : L"creation")
        .string(L"systemTime", system_time_text(r.time))
        .number(L"dayOfWeek", r.time.wDayOfWeek)
        .number(L"timet", r.timet);
    if (r.http) {
      json.number(L"zoneSeconds", r.zone)
          .string(L"utc", http_text(r.timet - r.zone, 0))
          .number(L"modifiedDateResult", r.modified_result);
    } else {
      json.null(L"zoneSeconds").null(L"utc").null(L"modifiedDateResult");
    }
    if (r.has_ole)
      json.string(L"oleDate", ole_text(r.ole));
    else
      json.null(L"oleDate");
    json.end_object();
    write_out(json.str());
    return;
  }
  std::wstring out;
  out += L"Text            " + r.text + L"\n";
  out += L"Read as         " + std::wstring(r.http ? L"HTTP date" : L"creation date") + L"\n";
  out += L"SYSTEMTIME      " + system_time_text(r.time) + L" (" + kDayNames[r.time.wDayOfWeek % 7] + L")\n";
  out += L"time_t          " + std::to_wstring(r.timet) + (r.http ? L" (as written)\n" : L"\n");
  if (r.http) {
    out += L"Zone            " + zone_text(r.zone) + L"\n";
    out += L"Instant (UTC)   " + http_text(r.timet - r.zone, 0) + L"\n";
  }
  out += L"OLE date        " + (r.has_ole ? ole_text(r.ole) : std::wstring(L"(out of range)")) + L"\n";
  if (r.http) out += L"Modified date   " + modified_result_text(r.modified_result) + L"\n";
  write_out(out);
}

int print_now(std::optional<LONG> zone, bool as_json) {
  SYSTEMTIME now;
  GetSystemTime(&now);
  const std::wstring creation = MVCreationDateFromSystemTime(&now);
  std::wstring http = MVModifiedDateFromSystemTime(&now);
  FILETIME file_time;
  __time64_t timet = 0;
  if (!SystemTimeToFileTime(&now, &file_time) || !TimetFromFileTime(&file_time, &timet))
    return fail(L"the system time has no time_t");
  if (zone) http = http_text(timet, *zone);
  if (as_json) {
    JsonWriter json;
    json.begin_object().string(L"creationDate", creation).string(L"httpDate", http).number(L"timet", timet);
    json.end_object();
    write_out(json.str());
  } else {
    write_out(L"Creation date   " + creation + L"\nHTTP date       " + http + L"\n");
  }
  return 0;
}

std::optional<LONG> parse_zone(const std::wstring& text) {
  if (text.empty()) return std::nullopt;
  wchar_t* end = nullptr;
  const long value = std::wcstol(text.c_str(), &end, 10);
  if (end == nullptr || *end != L'\0') return std::nullopt;
  return static_cast<LONG>(value);
}

int run_date(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  const bool now = args.take_flag(L"--now");
  const std::optional<std::wstring> zone_option = args.take_option(L"--zone");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);

  if (now) {
    if (!args.rest().empty()) return fail(L"--now takes no date text");
    std::optional<LONG> zone;
    if (zone_option) {
      zone = parse_zone(*zone_option);
      if (!zone) return fail(L"--zone needs a number of seconds east of UTC, not \"" + *zone_option + L"\"");
    }
    return print_now(zone, as_json);
  }
  if (zone_option) return fail(L"--zone goes with --now");
  if (args.rest().empty()) return fail(L"date needs a date text or --now (see mvsup date --help)");

  // The date may come as several words: "Mon, 14 Aug 2006 09:05:00 GMT".
  std::wstring text;
  for (const std::wstring& word : args.rest()) text += (text.empty() ? L"" : L" ") + word;
  std::wstring error;
  const std::optional<Reading> reading = read(text, error);
  if (!reading) return fail(error);
  print_reading(*reading, as_json);
  return 0;
}

const CommandRegistration kDate{{
    L"date",
    L"read a server date, or write the current time in both date forms",
    L"Usage: mvsup date [--json] TEXT\n"
    L"       mvsup date --now [--zone SECONDS] [--json]\n\n"
    L"Shows how the library reads a server date: a creation date\n"
    L"(\"2006-08-14T09:05:00Z\") or an HTTP date (\"Mon, 14 Aug 2006 09:05:00 +0200\").\n"
    L"Prints the form it was read as, the SYSTEMTIME, the time_t, the OLE date and,\n"
    L"for an HTTP date, the zone and the result of SystemTimeFromMVModifiedDate.\n"
    L"The library returns an HTTP date's time as written, with the zone apart;\n"
    L"\"Instant (UTC)\" applies the zone. TEXT may be given as several words.\n\n"
    L"  --now           write the current time as a creation date and an HTTP date\n"
    L"  --zone SECONDS  with --now: the zone written into the HTTP date\n"
    L"                  (seconds east of UTC; default: GMT)\n"
    L"  --json          the same as one JSON object (the OLE date as a string)\n",
    run_date,
}};

}  // namespace
}  // namespace mvsup::tool
