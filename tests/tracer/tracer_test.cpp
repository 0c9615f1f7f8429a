// The tracer's rules below the exports: record formats, levels, file names,
// the method filter, reloads and forced scopes. The tracer is configured the
// way start-up does it, from a machine key prepared by each test.
#include <windows.h>

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "common/registry_sandbox.h"
#include "common/trace_log.h"
#include "frame/trace.h"

namespace mvsup::test {
namespace {

using trace::CallScope;

const std::wstring kUserTraceKey = client_path(L"Settings\\TraceLog");
const std::string kStamp = R"(\d\d:\d\d:\d\d:\d{4})";

class Tracer : public RegistrySandbox {
 protected:
  void TearDown() override {
    trace::g_flags.store(0);
    RegistrySandbox::TearDown();
  }

  // Configures from the machine key and initialises, as start-up does.
  static void start(int flag_argument = 0) {
    trace::configure_from_machine_key(L"SDK");
    trace::initialise("SDK", "MVSUP2u", "Aug 14 2006", flag_argument);
  }

  static std::string process_file_stem() {
    char path[MAX_PATH];
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    std::string base = strrchr(path, '\\') + 1;
    return base.substr(0, base.rfind('.'));
  }

  static bool contains(const std::string& text, const std::string& pattern) {
    return std::regex_search(text, std::regex(pattern));
  }
};

TEST_F(Tracer, RecordsOfNamedAndLineScopes) {
  TraceLogFolder log(0x10001);
  start();
  {
    CallScope scope("MvxOpen");
    scope.hr(E_FAIL);
    scope.res(2);
  }
  {
    CallScope scope("MvxCommit", 0x5A4);
    scope.res(0x80070057);
  }
  { CallScope scope(142, "iteminfo.cpp"); }
  const std::string text = log.read_all();
  EXPECT_TRUE(contains(text, "\n\\*\\*\\*\\*\\*\\*\\*\\*\\*\\* COMPONENT 'SDK' \\*\\*\\* LIBRARY 'MVSUP2u' \\*\\*\\* "
                             "COMPILED Aug 14 2006 \\*\\*\\*\\*\\*\\*\\*\\*\\*\\*\n"))
      << text;
  EXPECT_TRUE(contains(text, "==== START MvxOpen \\[MVSUP2u\\] @ " + kStamp + "\n"));
  EXPECT_TRUE(contains(text, "---- STOP MvxOpen \\[MVSUP2u\\] @ " + kStamp + ":\n HR=80004005, RES=2\n\n"));
  EXPECT_TRUE(contains(text, "==== START MvxCommit \\(000005A4\\) \\[MVSUP2u\\] @ " + kStamp + "\n"));
  EXPECT_TRUE(
      contains(text, "---- STOP MvxCommit \\(000005A4\\) \\[MVSUP2u\\] @ " + kStamp + ":\n HR=00000000, RES=80070057\n\n"));
  EXPECT_TRUE(contains(text, "==== START LINE-142 \\[MVSUP2u\\] @ " + kStamp + "\n\tModule: iteminfo.cpp\n"));
  EXPECT_TRUE(contains(text, "---- STOP LINE-142 \\[MVSUP2u\\] @ " + kStamp + ":\n HR=00000000, RES=0\n\n"));
  // Written in text mode: every line ends with CRLF in the file.
  const std::string raw = log.read_all_raw();
  EXPECT_NE(raw.find("RES=2\r\n\r\n"), std::string::npos);
}

TEST_F(Tracer, ResIsDecimalForSmallCodesAndHexOtherwise) {
  TraceLogFolder log(0x10001);
  start();
  for (int32_t res : {99, 100, -799, -800, 0, 259}) {
    CallScope scope("Res");
    scope.res(res);
  }
  const std::string text = log.read_all();
  std::vector<std::string> seen;
  const std::regex stop("RES=([0-9a-f-]+)\n");
  for (auto it = std::sregex_iterator(text.begin(), text.end(), stop); it != std::sregex_iterator(); ++it)
    seen.push_back((*it)[1]);
  EXPECT_EQ(seen, (std::vector<std::string>{"99", "64", "-799", "fffffce0", "0", "103"}));
}

TEST_F(Tracer, ScopesNeedLevelOneLinesTwoDumpsThree) {
  const unsigned char bytes[20] = {0x00, 0x01, 0x41, 0x42, 0xFF, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
  for (DWORD level : {0u, 1u, 2u, 3u}) {
    TraceLogFolder log(0x10000 | level);
    start();
    { CallScope scope("Scope"); }
    trace::line("narrow %d\n", 7);
    trace::line(L"wide %ls\n", L"text");
    trace::dump(bytes, sizeof(bytes));
    const std::string text = log.read_all();
    if (level == 0) {
      EXPECT_EQ(text, "");  // no banner either
    }
    EXPECT_EQ(text.find("START Scope") != std::string::npos, level >= 1) << level;
    EXPECT_EQ(text.find("narrow 7\n") != std::string::npos, level >= 2) << level;
    EXPECT_EQ(text.find("wide text\n") != std::string::npos, level >= 2) << level;
    const bool dumped = contains(text, "\\[Address=0x[0-9A-F]+, Length=20 bytes, MaxRow=0\\]\n");
    EXPECT_EQ(dumped, level >= 3) << level;
    if (level == 3) {
      EXPECT_TRUE(contains(text, "\n00000000 +00 01 41 42 FF 05 06 07 08 09 0A 0B 0C 0D 0E 0F"));
      EXPECT_TRUE(contains(text, "\n00000010 +10 11 12 13 *"));
    }
  }
}

TEST_F(Tracer, FileNamedByProcessThreadOrLibrary) {
  SYSTEMTIME now;
  GetLocalTime(&now);
  char hour[16];
  snprintf(hour, sizeof(hour), "-%02d%02d%02d-", now.wMonth, now.wDay, now.wHour);
  char pid[16], tid[16];
  snprintf(pid, sizeof(pid), "%lX", GetCurrentProcessId());
  snprintf(tid, sizeof(tid), "%lX", GetCurrentThreadId());
  const std::string stem = process_file_stem();
  const struct {
    DWORD flags;
    int flag_argument;
    std::string name;
  } cases[] = {
      {0x10001, 0, stem + hour + pid + "-0.log"},
      {0x110001, 0, stem + hour + pid + "-" + tid + ".log"},
      {0x210001, 0, stem + hour + "MVSUP2u-0.log"},
      {0x310001, 0, stem + hour + "MVSUP2u-" + tid + ".log"},
      {0x10001, 1, "MVSUP2u" + std::string(hour) + pid + "-0.log"},
  };
  for (const auto& c : cases) {
    TraceLogFolder log(c.flags);
    start(c.flag_argument);
    { CallScope scope("Named"); }
    ASSERT_EQ(log.files().size(), 1u);
    const std::wstring name = log.files()[0];
    EXPECT_EQ(std::string(name.begin(), name.end()), c.name);
    EXPECT_EQ(trace::log_file_name(), log.call_trace() + L"\\" + name);
  }
}

TEST_F(Tracer, NoLogPathMeansNoFileWhateverTheFlagsSay) {
  TraceLogFolder log(0xFFFFFFFF);
  delete_tree(HKEY_LOCAL_MACHINE, L"Software\\Corvell\\Mervane Client\\SETTINGS\\TraceLog");
  set_dword(HKEY_LOCAL_MACHINE, L"Software\\Corvell\\Mervane Client\\SETTINGS\\TraceLog", L"SDK", 0xFFFFFFFF);
  set_dword(HKEY_CURRENT_USER, kUserTraceKey, L"EnableTracing", 0x10001);
  set_string(HKEY_CURRENT_USER, kUserTraceKey, L"MethodsToTrace", L"Named");
  // A relative name would land in the current directory: make that one watched.
  wchar_t previous[MAX_PATH];
  GetCurrentDirectoryW(MAX_PATH, previous);
  SetCurrentDirectoryW(log.directory().c_str());
  start();
  EXPECT_EQ(trace::g_flags.load(), 0u);
  { CallScope scope("Named"); }
  { CallScope forced("Forced", 0, 5); }
  trace::line("line\n");
  trace::raw("raw\n");
  SetCurrentDirectoryW(previous);
  EXPECT_TRUE(log.files().empty());
  EXPECT_EQ(trace::log_file_name(), L"");
  WIN32_FIND_DATAW data;
  HANDLE find = FindFirstFileW((log.directory() + L"\\*.log").c_str(), &data);
  EXPECT_EQ(find, INVALID_HANDLE_VALUE);
  if (find != INVALID_HANDLE_VALUE) FindClose(find);
}

TEST_F(Tracer, MethodFilterIsASubstringTestOfTheList) {
  TraceLogFolder log(0x40000001);
  set_dword(HKEY_CURRENT_USER, kUserTraceKey, L"EnableTracing", 1);
  set_string(HKEY_CURRENT_USER, kUserTraceKey, L"MethodsToTrace", L"MvxOpenItem;MvxClose");
  start();
  for (const char* name : {"MvxOpenItem", "MvxOpen", "Open", "Close", "MvxCommit"}) {
    CallScope scope(name);
  }
  const std::string text = log.read_all();
  for (const char* name : {"MvxOpenItem", "MvxOpen", "Open", "Close"})
    EXPECT_TRUE(contains(text, std::string("==== START ") + name + " \\[")) << name;
  EXPECT_EQ(text.find("MvxCommit"), std::string::npos);
  // Each matching scope switched tracing on for itself only.
  EXPECT_EQ(trace::g_flags.load() & trace::flag::kActive, 0u);
}

TEST_F(Tracer, MethodFilterCanRequireTheLibrary) {
  TraceLogFolder log(0x40000001);
  set_dword(HKEY_CURRENT_USER, kUserTraceKey, L"EnableTracing", 0x80000001);
  set_string(HKEY_CURRENT_USER, kUserTraceKey, L"MethodsToTrace", L"MvxOpen");
  set_string(HKEY_CURRENT_USER, kUserTraceKey, L"LibsToTrace", L"MVNSX");
  start();
  { CallScope scope("MvxOpen"); }
  EXPECT_EQ(log.read_all().find("START"), std::string::npos);
  set_string(HKEY_CURRENT_USER, kUserTraceKey, L"LibsToTrace", L"MVNSX;MVSUP2u");
  { CallScope scope("MvxOpen"); }
  EXPECT_NE(log.read_all().find("==== START MvxOpen"), std::string::npos);
  // Switched off in the registry: nothing more.
  set_dword(HKEY_CURRENT_USER, kUserTraceKey, L"EnableTracing", 0);
  { CallScope scope("MvxOpen", 1); }
  EXPECT_EQ(log.read_all().find("(00000001)"), std::string::npos);
}

TEST_F(Tracer, EnableTracingIsConsultedAtEveryQuery) {
  TraceLogFolder log(0x80000002);
  start();
  EXPECT_EQ(trace::level(), 0);
  set_dword(HKEY_CURRENT_USER, kUserTraceKey, L"EnableTracing", 0x10001);
  EXPECT_EQ(trace::level(), 2);
  EXPECT_TRUE(trace::g_flags.load() & trace::flag::kExtended);
  set_dword(HKEY_CURRENT_USER, kUserTraceKey, L"EnableTracing", 0x80000001);
  EXPECT_EQ(trace::level(), 0);  // the library is not in LibsToTrace
  set_string(HKEY_CURRENT_USER, kUserTraceKey, L"LibsToTrace", L"MVSUP2u");
  EXPECT_EQ(trace::level(), 2);
  EXPECT_FALSE(trace::g_flags.load() & trace::flag::kExtended);
  EXPECT_TRUE(trace::g_flags.load() & trace::flag::kConsultEnable);
}

TEST_F(Tracer, DetailBitsFollowEnableTracing) {
  TraceLogFolder log(0x13001);
  start();
  // With detail bits set, EnableTracing decides whether tracing is active.
  EXPECT_EQ(trace::detail(), 0u);
  set_dword(HKEY_CURRENT_USER, kUserTraceKey, L"EnableTracing", 1);
  EXPECT_EQ(trace::detail(), 0x3000u);
  EXPECT_EQ(trace::level(), 1);
  set_dword(HKEY_CURRENT_USER, kUserTraceKey, L"EnableTracing", 0);
  EXPECT_EQ(trace::detail(), 0u);
  EXPECT_EQ(trace::level(), 0);
}

TEST_F(Tracer, ReloadReadsTheConfigurationAgainKeepingItsOwnBits) {
  TraceLogFolder log(0x10010001);
  start();
  EXPECT_EQ(trace::level(), 1);
  set_dword(HKEY_LOCAL_MACHINE, L"Software\\Corvell\\Mervane Client\\SETTINGS\\TraceLog", L"SDK", 0x10000003);
  EXPECT_EQ(trace::level(), 3);  // active was kept from the old flags
  EXPECT_TRUE(trace::g_flags.load() & trace::flag::kFromMachineKey);
  set_dword(HKEY_LOCAL_MACHINE, L"Software\\Corvell\\Mervane Client\\SETTINGS\\TraceLog", L"SDK", 2);
  EXPECT_EQ(trace::level(), 2);  // and the reload flag itself is gone now
  set_dword(HKEY_LOCAL_MACHINE, L"Software\\Corvell\\Mervane Client\\SETTINGS\\TraceLog", L"SDK", 4);
  EXPECT_EQ(trace::level(), 2);

  // Without the machine flag a reload reads the user's component settings.
  set_dword(HKEY_CURRENT_USER, kUserTraceKey, L"SDK", 0x10000004);
  trace::g_flags.store(trace::flag::kReloadEveryQuery | trace::flag::kActive | 1);
  EXPECT_EQ(trace::level(), 4);
}

TEST_F(Tracer, ForcedScopeTracesItselfAndLeavesTheThresholdRaised) {
  TraceLogFolder log(0x00000002);  // level 2, not active
  start();
  trace::initialise("SDK", "MVSUP2u", "Aug 14 2006", 0);
  { CallScope ordinary("Ordinary"); }
  {
    CallScope forced("Forced", 0, 5);
    EXPECT_TRUE(trace::g_flags.load() & trace::flag::kActive);
    EXPECT_TRUE(trace::g_flags.load() & trace::flag::kExtended);
  }
  const uint32_t after = trace::g_flags.load();
  EXPECT_FALSE(after & trace::flag::kActive);
  EXPECT_FALSE(after & trace::flag::kExtended);
  EXPECT_EQ(after & trace::flag::kLevelMask, 7u);  // 2 | 5: kept on purpose
  const std::string text = log.read_all();
  EXPECT_EQ(text.find("Ordinary"), std::string::npos);
  EXPECT_TRUE(contains(text, "==== START Forced \\[MVSUP2u\\]"));
  EXPECT_TRUE(contains(text, "---- STOP Forced \\[MVSUP2u\\]"));
}

TEST_F(Tracer, ForcedScopeRestoresTheRequeryFlags) {
  TraceLogFolder log(0x90000001);
  start();
  { CallScope forced("Forced", 0, 5); }
  EXPECT_EQ(trace::g_flags.load() & 0x90000000u, 0x90000000u);
  trace::g_flags.fetch_or(trace::flag::kIgnoreForced);
  { CallScope ignored("Ignored", 0, 5); }
  EXPECT_FALSE(trace::g_flags.load() & trace::flag::kActive);
  EXPECT_EQ(log.read_all().find("Ignored"), std::string::npos);
}

TEST_F(Tracer, ConcurrentRecordsStayWhole) {
  TraceLogFolder log(0x10002);
  start();
  constexpr int kThreads = 8, kScopes = 150;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([t] {
      for (int i = 0; i < kScopes; ++i) {
        CallScope scope("Concurrent", static_cast<uintptr_t>(t * 1000 + i + 1));
        trace::line("payload %d %d %s\n", t, i, std::string(40, 'x').c_str());
        scope.res(i);
      }
    });
  for (std::thread& thread : threads) thread.join();
  const std::string text = log.read_all();
  const std::regex record("==== START Concurrent \\(([0-9A-F]{8})\\) \\[MVSUP2u\\] @ " + kStamp + "\n" +
                          "|payload \\d+ \\d+ x{40}\n" + "|---- STOP Concurrent \\(([0-9A-F]{8})\\) \\[MVSUP2u\\] @ " +
                          kStamp + ":\n HR=00000000, RES=[0-9a-f]+\n\n");
  size_t position = text.find("==== START");
  ASSERT_NE(position, std::string::npos);
  int starts = 0, stops = 0, lines = 0;
  std::smatch match;
  while (position < text.size()) {
    ASSERT_TRUE(std::regex_search(text.cbegin() + position, text.cend(), match, record,
                                  std::regex_constants::match_continuous))
        << "broken record at " << position << ": " << text.substr(position, 160);
    const std::string found = match.str();
    starts += found.rfind("==== START", 0) == 0;
    stops += found.rfind("---- STOP", 0) == 0;
    lines += found.rfind("payload", 0) == 0;
    position += found.size();
  }
  EXPECT_EQ(starts, kThreads * kScopes);
  EXPECT_EQ(stops, kThreads * kScopes);
  EXPECT_EQ(lines, kThreads * kScopes);
}

}  // namespace
}  // namespace mvsup::test
