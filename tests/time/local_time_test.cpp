// UTC and local time, through the exports. Wine takes the local zone from
// TZ when a process starts; the test runner passes TZ=UTC, and the build
// runs the LocalTimeZone tests once more under TZ=Europe/Berlin and
// TZ=America/New_York. Expected local times were computed with Python's
// zoneinfo; DOS words and OLE dates from the same instants by hand.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "common/paths.h"
#include "common/registry_sandbox.h"
#include "time_values.h"

namespace mvsup::test {
namespace {

constexpr const wchar_t* kTraceChildVariable = L"MVSUP_TIME_TRACE_CHILD";

// Child mode of the trace test: the trace configuration is read when the
// library loads, so the traced calls must run in a fresh process.
[[maybe_unused]] const bool kRanAsTraceChild = [] {
  wchar_t flag[8];
  if (GetEnvironmentVariableW(kTraceChildVariable, flag, 8) == 0) return false;
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

struct ZoneCase {
  SYSTEMTIME gmt;
  SYSTEMTIME local;       // with its day of the week
  bool occurs_once;       // false: the local time repeats when the clocks go back
};

struct DosOleCase {
  WORD gmt_date, gmt_time, local_date, local_time;
  SYSTEMTIME local;
  DATE gmt_ole, local_ole;
};

struct Zone {
  const wchar_t* tz;
  LONG standard_bias;  // minutes, UTC = local + bias
  std::vector<ZoneCase> times;
  std::vector<DosOleCase> dos_ole;
};

// 2024-07-15 12:00:00 and 2024-01-15 12:00:00 UTC as DOS words and OLE dates.
constexpr WORD kJulyDosDate = 22767;
constexpr WORD kJanuaryDosDate = 22575;
constexpr WORD kNoonDosTime = 24576;
constexpr DATE kJulyNoonOle = 45488.5;
constexpr DATE kJanuaryNoonOle = 45306.5;

const std::vector<Zone>& zones() {
  static const std::vector<Zone> table = {
      {L"UTC",
       0,
       {
           {make_time(2024, 7, 15, 12, 0, 0), make_time(2024, 7, 15, 12, 0, 0, 1), true},
           {make_time(2024, 3, 31, 1, 0, 0), make_time(2024, 3, 31, 1, 0, 0, 0), true},
       },
       {
           {kJulyDosDate, kNoonDosTime, kJulyDosDate, kNoonDosTime, make_time(2024, 7, 15, 12, 0, 0, 1), kJulyNoonOle,
            kJulyNoonOle},
       }},
      {L"Europe/Berlin",
       -60,
       {
           {make_time(2024, 7, 15, 12, 0, 0), make_time(2024, 7, 15, 14, 0, 0, 1), true},
           {make_time(2024, 1, 15, 12, 0, 0), make_time(2024, 1, 15, 13, 0, 0, 1), true},
           {make_time(2006, 8, 14, 9, 5, 0), make_time(2006, 8, 14, 11, 5, 0, 1), true},
           {make_time(2024, 3, 31, 0, 59, 59), make_time(2024, 3, 31, 1, 59, 59, 0), true},
           {make_time(2024, 3, 31, 1, 0, 0), make_time(2024, 3, 31, 3, 0, 0, 0), true},
           {make_time(2024, 10, 27, 0, 59, 59), make_time(2024, 10, 27, 2, 59, 59, 0), false},
           {make_time(2024, 10, 27, 1, 0, 0), make_time(2024, 10, 27, 2, 0, 0, 0), false},
           {make_time(2024, 10, 27, 2, 0, 0), make_time(2024, 10, 27, 3, 0, 0, 0), true},
       },
       {
           {kJulyDosDate, kNoonDosTime, kJulyDosDate, 28672, make_time(2024, 7, 15, 14, 0, 0, 1), kJulyNoonOle,
            45488.583333333336},
           {kJanuaryDosDate, kNoonDosTime, kJanuaryDosDate, 26624, make_time(2024, 1, 15, 13, 0, 0, 1), kJanuaryNoonOle,
            45306.541666666664},
       }},
      {L"America/New_York",
       300,
       {
           {make_time(2024, 7, 15, 12, 0, 0), make_time(2024, 7, 15, 8, 0, 0, 1), true},
           {make_time(2024, 1, 15, 12, 0, 0), make_time(2024, 1, 15, 7, 0, 0, 1), true},
           {make_time(2024, 3, 31, 0, 59, 59), make_time(2024, 3, 30, 20, 59, 59, 6), true},
           {make_time(2024, 3, 10, 6, 59, 59), make_time(2024, 3, 10, 1, 59, 59, 0), true},
           {make_time(2024, 3, 10, 7, 0, 0), make_time(2024, 3, 10, 3, 0, 0, 0), true},
           {make_time(2024, 11, 3, 5, 59, 59), make_time(2024, 11, 3, 1, 59, 59, 0), false},
           {make_time(2024, 11, 3, 6, 0, 0), make_time(2024, 11, 3, 1, 0, 0, 0), false},
           {make_time(2024, 11, 3, 7, 0, 0), make_time(2024, 11, 3, 2, 0, 0, 0), true},
       },
       {
           {kJulyDosDate, kNoonDosTime, kJulyDosDate, 16384, make_time(2024, 7, 15, 8, 0, 0, 1), kJulyNoonOle,
            45488.333333333336},
           {kJanuaryDosDate, kNoonDosTime, kJanuaryDosDate, 14336, make_time(2024, 1, 15, 7, 0, 0, 1), kJanuaryNoonOle,
            45306.291666666664},
       }},
  };
  return table;
}

class LocalTimeZone : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::wstring tz = current_tz();
    for (const Zone& candidate : zones())
      if (tz == candidate.tz) zone_ = &candidate;
    if (zone_ == nullptr) GTEST_SKIP() << "no expected values for this TZ";
    TIME_ZONE_INFORMATION info{};
    ASSERT_NE(GetTimeZoneInformation(&info), TIME_ZONE_ID_INVALID);
    ASSERT_EQ(info.Bias, zone_->standard_bias) << "the process did not take its zone from TZ";
  }
  const Zone* zone_ = nullptr;
};

TEST_F(LocalTimeZone, GmtToLocalFollowsTheZoneAndItsDaylightSaving) {
  for (const ZoneCase& c : zone_->times) {
    SYSTEMTIME local = sentinel_time();
    EXPECT_TRUE(GmtToLocalTime(&c.gmt, &local)) << show(c.gmt);
    EXPECT_EQ(show(local), show(c.local)) << "from " << show(c.gmt);
  }
}

TEST_F(LocalTimeZone, LocalToGmtInvertsTimesThatOccurOnce) {
  for (const ZoneCase& c : zone_->times) {
    if (!c.occurs_once) continue;
    SYSTEMTIME gmt = sentinel_time();
    EXPECT_TRUE(LocalTimeToGmt(&c.local, &gmt)) << show(c.local);
    SYSTEMTIME expected = c.gmt;
    ASSERT_TRUE(SetDayOfWeekInSystemTime(&expected));
    EXPECT_EQ(show(gmt), show(expected)) << "from " << show(c.local);
  }
}

TEST_F(LocalTimeZone, DosAndOleDatesFollowTheZone) {
  constexpr double kOleTolerance = 1e-8;
  for (const DosOleCase& c : zone_->dos_ole) {
    SYSTEMTIME local = sentinel_time();
    EXPECT_TRUE(DosGmtToLocalTime(c.gmt_date, c.gmt_time, &local));
    EXPECT_EQ(show(local), show(c.local));
    WORD local_date = 0;
    WORD local_time = 0;
    EXPECT_TRUE(DosGmtToDosLocalTime(c.gmt_date, c.gmt_time, &local_date, &local_time));
    EXPECT_EQ(local_date, c.local_date);
    EXPECT_EQ(local_time, c.local_time);

    DATE ole = 0;
    EXPECT_TRUE(OleDateLocalTimeFromGmt(c.gmt_ole, &ole));
    EXPECT_NEAR(ole, c.local_ole, kOleTolerance);
    ole = 0;
    EXPECT_TRUE(OleDateGmtFromLocalTime(c.local_ole, &ole));
    EXPECT_NEAR(ole, c.gmt_ole, kOleTolerance);
  }
}

TEST(LocalTime, OutputMayBeTheInput) {
  SYSTEMTIME shared = make_time(2006, 8, 14, 9, 5, 0, 0);
  EXPECT_TRUE(GmtToLocalTime(&shared, &shared));
  EXPECT_TRUE(LocalTimeToGmt(&shared, &shared));
  EXPECT_EQ(show(shared), show(make_time(2006, 8, 14, 9, 5, 0, 1)));
}

TEST(LocalTime, NullAndImpossibleInputsFailWithClearedOutputs) {
  const SYSTEMTIME impossible = make_time(2006, 13, 1);
  SYSTEMTIME out = sentinel_time();
  SetLastError(0xdeadbeef);
  EXPECT_FALSE(GmtToLocalTime(&impossible, &out));
  EXPECT_EQ(show(out), show(kZeroTime));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  out = sentinel_time();
  EXPECT_FALSE(LocalTimeToGmt(&impossible, &out));
  EXPECT_EQ(show(out), show(kZeroTime));
  out = sentinel_time();
  EXPECT_FALSE(GmtToLocalTime(nullptr, &out));
  EXPECT_EQ(show(out), show(kZeroTime));
  EXPECT_FALSE(GmtToLocalTime(&impossible, nullptr));
  EXPECT_FALSE(LocalTimeToGmt(nullptr, nullptr));

  // DOS month 13 and hour 24.
  out = sentinel_time();
  EXPECT_FALSE(DosGmtToLocalTime((44 << 9) | (13 << 5) | 15, 0, &out));
  EXPECT_EQ(show(out), show(kZeroTime));
  EXPECT_FALSE(DosGmtToLocalTime(kJulyDosDate, kNoonDosTime, nullptr));
  WORD date = 0xFFFF;
  WORD time = 0xFFFF;
  EXPECT_FALSE(DosGmtToDosLocalTime(kJulyDosDate, 24 << 11, &date, &time));
  EXPECT_EQ(date, 0);
  EXPECT_EQ(time, 0);
  date = 0xFFFF;
  EXPECT_FALSE(DosGmtToDosLocalTime(kJulyDosDate, kNoonDosTime, &date, nullptr));
  EXPECT_EQ(date, 0);

  DATE ole = 77;
  EXPECT_FALSE(OleDateLocalTimeFromGmt(-200000.0, &ole));  // before 1601: no FILETIME
  EXPECT_EQ(ole, 0.0);
  ole = 77;
  EXPECT_FALSE(OleDateGmtFromLocalTime(3000000.0, &ole));
  EXPECT_EQ(ole, 0.0);
  EXPECT_FALSE(OleDateGmtFromLocalTime(kJulyNoonOle, nullptr));
  EXPECT_FALSE(OleDateLocalTimeFromGmt(kJulyNoonOle, nullptr));
}

// ---- Trace lines ----

class LocalTimeTrace : public RegistrySandbox {};

std::string read_logs(const std::wstring& directory) {
  std::string all;
  WIN32_FIND_DATAW found;
  HANDLE find = FindFirstFileW((directory + L"\\*.log").c_str(), &found);
  if (find == INVALID_HANDLE_VALUE) return all;
  do {
    std::ifstream file(std::filesystem::path(directory + L"\\" + found.cFileName), std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    all += content.str();
  } while (FindNextFileW(find, &found));
  FindClose(find);
  // The log is a text file: CR LF line ends.
  all.erase(std::remove(all.begin(), all.end(), '\r'), all.end());
  return all;
}

DWORD run_trace_child() {
  wchar_t exe[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, exe, MAX_PATH);
  // The filter runs no test should the child mode not take over.
  std::wstring command = L"\"" + std::wstring(exe) + L"\" --gtest_filter=-*";
  SetEnvironmentVariableW(kTraceChildVariable, L"1");
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process{};
  const BOOL started =
      CreateProcessW(exe, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process);
  SetEnvironmentVariableW(kTraceChildVariable, nullptr);
  if (!started) return 0xFFFFFFFF;
  DWORD code = 0xFFFFFFFE;
  if (WaitForSingleObject(process.hProcess, 60000) == WAIT_OBJECT_0) GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return code;
}

TEST_F(LocalTimeTrace, ConversionsWriteBothTimesAndTheBias) {
  if (current_tz() != L"UTC") GTEST_SKIP() << "expected lines are for TZ=UTC";
  TempDirectory logs;
  ASSERT_TRUE(CreateDirectoryW((logs.path() + L"\\CallTrace").c_str(), nullptr));
  const std::wstring key = client_path(L"SETTINGS\\TraceLog");
  set_string(HKEY_LOCAL_MACHINE, key, L"TraceLogPath", logs.path());
  set_dword(HKEY_LOCAL_MACHINE, key, L"SDK", 0x00010002);  // active, level 2

  ASSERT_EQ(run_trace_child(), 0u);
  const std::string log = read_logs(logs.path() + L"\\CallTrace");
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
