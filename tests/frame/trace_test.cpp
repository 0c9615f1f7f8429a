// What the library writes to the call-trace log as a client sees it: the
// attach and detach scopes, the start-up line, and the scopes of exports.
#include <windows.h>

#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "common/paths.h"
#include "common/registry_sandbox.h"
#include "common/trace_log.h"
#include "frame/library_under_test.h"

namespace mvsup::test {
namespace {

class TraceLog : public RegistrySandbox {
 protected:
  static std::string hex8(const void* pointer) {
    char text[16];
    snprintf(text, sizeof(text), "%08X", static_cast<unsigned>(reinterpret_cast<uintptr_t>(pointer)));
    return text;
  }
};

TEST_F(TraceLog, AttachAndDetachBracketTheLibrarysLife) {
  TraceLogFolder log(0x10002);
  std::string module_id;
  {
    LibraryUnderTest lib;
    module_id = hex8(GetModuleHandleW(L"MvSup2u.dll"));
  }
  const std::string text = log.read_all();
  const std::string stamp = R"(\d\d:\d\d:\d\d:\d{4})";
  const std::regex expected(
      "^\n\\*{10} COMPONENT 'SDK' \\*\\*\\* LIBRARY 'MVSUP2u' \\*\\*\\* COMPILED [A-Z][a-z]{2} \\d\\d \\d{4} \\*{10}\n"
      "==== START DLL_PROCESS_ATTACH \\(" + module_id + "\\) \\[MVSUP2u\\] @ " + stamp + "\n"
      "InitLib: Mode=80000010, UserKey=80000001, MaxPath=210, MaxItems=4096\n"
      "==== START LoadSatelliteLibrary \\[MVSUP2u\\] @ " + stamp + "\n"
      "---- STOP LoadSatelliteLibrary \\[MVSUP2u\\] @ " + stamp + ":\n HR=00000000, RES=0\n\n"
      "---- STOP DLL_PROCESS_ATTACH \\(" + module_id + "\\) \\[MVSUP2u\\] @ " + stamp + ":\n HR=00000000, RES=0\n\n"
      "==== START DLL_PROCESS_DETACH \\(" + module_id + "\\) \\[MVSUP2u\\] @ " + stamp + "\n"
      "---- STOP DLL_PROCESS_DETACH \\(" + module_id + "\\) \\[MVSUP2u\\] @ " + stamp + ":\n HR=00000000, RES=0\n\n$");
  EXPECT_TRUE(std::regex_search(text, expected)) << text;
}

TEST_F(TraceLog, ExportsWriteTheirScopesWithTheirResults) {
  TraceLogFolder log(0x10001);
  LibraryUnderTest lib;
  DWORD value = 0;
  MVSUP_EXPORT(lib, GetRegistryDWORD)(HKEY_CURRENT_USER, L"Software\\Corvell\\Nowhere", L"X", &value);
  MVSUP_EXPORT(lib, GetRegistryDWORDEx)(HKEY_CURRENT_USER, L"Software\\Corvell\\Nowhere", L"X", 100);
  MVSUP_EXPORT(lib, GetDwordSetting)(L"MvNsx\\Settings", L"X", 0xFFFFFCE0);
  MVSUP_EXPORT(lib, GetMvSupMode)(1);  // a plain accessor: not traced
  const std::string text = log.read_all();
  EXPECT_TRUE(std::regex_search(text, std::regex("---- STOP GetRegistryDWORD \\[MVSUP2u\\] @ [0-9:]+:\n HR=00000000, RES=2\n")));
  EXPECT_TRUE(std::regex_search(text, std::regex("---- STOP GetRegistryDWORDEx \\[MVSUP2u\\] @ [0-9:]+:\n HR=00000000, RES=64\n")));
  EXPECT_TRUE(std::regex_search(text, std::regex("---- STOP GetDwordSetting \\[MVSUP2u\\] @ [0-9:]+:\n HR=00000000, RES=fffffce0\n")));
  EXPECT_EQ(text.find("GetMvSupMode"), std::string::npos);
  // Level 1 shows calls but no free text.
  EXPECT_EQ(text.find("InitLib"), std::string::npos);
}

TEST_F(TraceLog, BinaryValuesAreDumpedAtLevelThree) {
  TraceLogFolder log(0x10003);
  LibraryUnderTest lib;
  const BYTE data[] = {0xCA, 0xFE, 0x00, 0x42};
  MVSUP_EXPORT(lib, SetRegistryBinary)(HKEY_CURRENT_USER, L"Software\\Corvell\\Test", L"B", data, 4);
  EXPECT_TRUE(std::regex_search(log.read_all(), std::regex("\\[Address=0x[0-9A-F]+, Length=4 bytes, MaxRow=0\\]\n"
                                                           "00000000 +CA FE 00 42")));
}

TEST_F(TraceLog, SatelliteLoadFailureCarriesTheErrorAndThePath) {
  TempDirectory program;
  CreateDirectoryW((program.path() + L"\\0407").c_str(), nullptr);
  const std::wstring satellite = program.path() + L"\\0407\\SDKSatellite.dll";
  HANDLE file = CreateFileW(satellite.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
  DWORD written = 0;
  WriteFile(file, "not a library", 13, &written, nullptr);
  CloseHandle(file);
  set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Programs", program.path());
  set_dword(HKEY_CURRENT_USER, client_path(L"MvAxess\\Settings"), L"LangId", 0x0407);
  TraceLogFolder log(0x10002);
  { LibraryUnderTest lib; }
  const std::string text = log.read_all();
  const std::string narrow_path(satellite.begin(), satellite.end());
  EXPECT_NE(text.find("SatellitePath: " + narrow_path + "\n"), std::string::npos) << text;
  // ERROR_BAD_EXE_FORMAT (193) is written in hex.
  EXPECT_TRUE(std::regex_search(text, std::regex("---- STOP LoadSatelliteLibrary \\[MVSUP2u\\] @ [0-9:]+:\n"
                                                 " HR=00000000, RES=c1\n")))
      << text;
}

TEST_F(TraceLog, WithoutALogPathNothingIsWrittenWhateverTheFlags) {
  TraceLogFolder log(0xFFFFFFFF);
  RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, L"Software\\Corvell\\Mervane Client\\SETTINGS\\TraceLog", L"TraceLogPath");
  set_dword(HKEY_CURRENT_USER, client_path(L"Settings\\TraceLog"), L"EnableTracing", 0x10001);
  wchar_t previous[MAX_PATH];
  GetCurrentDirectoryW(MAX_PATH, previous);
  SetCurrentDirectoryW(log.directory().c_str());
  {
    LibraryUnderTest lib;
    DWORD value = 0;
    MVSUP_EXPORT(lib, GetRegistryDWORD)(HKEY_CURRENT_USER, L"Software", L"X", &value);
  }
  SetCurrentDirectoryW(previous);
  EXPECT_TRUE(log.files().empty());
}

}  // namespace
}  // namespace mvsup::test
