// Display names through the German satellite. The library picks its
// resource module at start-up, so the registry is prepared here and this
// program runs itself as a child, whose library starts with it.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "common/paths.h"
#include "types_test_support.h"

namespace mvsup::test {
namespace {

constexpr const wchar_t* kChildOutputVariable = L"MVSUP_TYPES_SATELLITE_OUTPUT";

// String ids of the messages about invalid custom type assignments.
constexpr UINT kAssignmentMessageIds[] = {5120, 5121, 5122};

std::wstring load(HMODULE module, UINT id) {
  wchar_t buffer[1024] = {};
  LoadStringW(module, id, buffer, 1024);
  return buffer;
}

// The child's whole work, done before any test runs: when the parent named
// an output file, write the display names there and leave.
const bool kRanAsChild = [] {
  wchar_t output[MAX_PATH];
  if (GetEnvironmentVariableW(kChildOutputVariable, output, MAX_PATH) == 0) return false;
  std::wstring names;
  wchar_t buffer[64];
  for (MVXITEMTYPE type : {2, 3, 16, 22}) {
    names += std::to_wstring(GetMvxItemTypeAsDisplayString(type, buffer, 64)) + L":" + buffer + L"\n";
  }
  HANDLE file = CreateFileW(output, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  DWORD written = 0;
  const BOOL ok = file != INVALID_HANDLE_VALUE &&
                  WriteFile(file, names.data(), static_cast<DWORD>(names.size() * sizeof(wchar_t)), &written, nullptr);
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
  ExitProcess(ok ? 0 : 1);
}();

class Satellite : public RegistrySandbox {};

TEST_F(Satellite, DisplayNamesComeFromTheGermanSatellite) {
  set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Programs", exe_directory());
  set_dword(HKEY_CURRENT_USER, client_path(L"MvAxess\\Settings"), L"LangId", 0x0407);
  TempDirectory temp;
  const std::wstring output = temp.path() + L"\\names.txt";
  ASSERT_TRUE(SetEnvironmentVariableW(kChildOutputVariable, output.c_str()));

  wchar_t program[MAX_PATH];
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  std::wstring command = L"\"" + std::wstring(program) + L"\"";
  SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
  HANDLE null_device = CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                                   OPEN_EXISTING, 0, nullptr);
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = startup.hStdError = null_device;
  PROCESS_INFORMATION process{};
  const BOOL started =
      CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
  SetEnvironmentVariableW(kChildOutputVariable, nullptr);
  CloseHandle(null_device);
  ASSERT_TRUE(started) << GetLastError();
  EXPECT_EQ(WaitForSingleObject(process.hProcess, 120000), WAIT_OBJECT_0);
  DWORD exit_code = 1;
  GetExitCodeProcess(process.hProcess, &exit_code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  EXPECT_EQ(exit_code, 0u);

  HANDLE file = CreateFileW(output.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE) << "the child wrote nothing";
  wchar_t text[256] = {};
  DWORD read = 0;
  ReadFile(file, text, sizeof(text) - sizeof(wchar_t), &read, nullptr);
  CloseHandle(file);
  EXPECT_STREQ(text, L"1:Sammlung\n1:Dokument\n0:Unbekannter Objekttyp\n1:Weblog\n");
}

TEST(SatelliteResources, AssignmentMessagesExistInBothLanguages) {
  const HMODULE library = GetModuleHandleW(L"MvSup2u.dll");
  ASSERT_NE(library, nullptr);
  const std::wstring satellite_path = exe_directory() + L"\\0407\\SDKSatellite.dll";
  const HMODULE satellite = LoadLibraryExW(satellite_path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(satellite, nullptr);
  EXPECT_EQ(load(library, kAssignmentMessageIds[0]).substr(0, 67),
            L"The program encountered an error while initializing Mervane Client.");
  EXPECT_NE(load(library, kAssignmentMessageIds[0]).find(L"\r\n\r\nError: Invalid MVXITEMTYPE Assignment\r\n"),
            std::wstring::npos);
  EXPECT_EQ(load(library, kAssignmentMessageIds[1]),
            L"The type assignment problem could not be corrected. Re-install Mervane Client.");
  EXPECT_EQ(load(library, kAssignmentMessageIds[2]).substr(0, 44), L"The type assignment problem was corrected. H");
  for (UINT id : kAssignmentMessageIds) {
    const std::wstring german = load(satellite, id);
    EXPECT_FALSE(german.empty()) << id;
    EXPECT_NE(german, load(library, id)) << id;
  }
  EXPECT_NE(load(satellite, kAssignmentMessageIds[0]).find(L"Ung\u00fcltige"), std::wstring::npos);
  FreeLibrary(satellite);
}

}  // namespace
}  // namespace mvsup::test
