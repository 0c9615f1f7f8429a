// Display names through the German satellite. The library picks its
// resource module at start-up, so the registry is prepared here and this
// program runs itself as a child, whose library starts with it.
#include <windows.h>

#include <gtest/gtest.h>

#include <process.h>
#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <string>

#include "common/paths.h"
#include "types_test_support.h"

namespace mvsup::test {
namespace {

constexpr const wchar_t* kChildOutputVariable = L"MVSUP_TYPES_SATELLITE_OUTPUT";

// The child's whole work, done before any test runs: when the parent named
// an output file, write the display names there and leave.
const bool kRanAsChild = [] {
  wchar_t output[MAX_PATH];
  if (GetEnvironmentVariableW(kChildOutputVariable, output, MAX_PATH) == 0) return false;
  std::wstring names;
  wchar_t buffer[64];
  for (MVXITEMTYPE type : {2, 3, 16, 22})
    names += std::to_wstring(GetMvxItemTypeAsDisplayString(type, buffer, 64)) + L":" + buffer + L"\n";
  std::ofstream file(output, std::ios::binary);
  file.write(reinterpret_cast<const char*>(names.data()), static_cast<std::streamsize>(names.size() * 2));
  file.close();
  ExitProcess(file.fail() ? 1 : 0);
}();

class Satellite : public RegistrySandbox {};

TEST_F(Satellite, DisplayNamesComeFromTheGermanSatellite) {
  set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Programs", exe_directory());
  set_dword(HKEY_CURRENT_USER, client_path(L"MvAxess\\Settings"), L"LangId", 0x0407);
  TempDirectory temp;
  const std::wstring output = temp.path() + L"\\names.txt";
  wchar_t program[MAX_PATH];
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  _wputenv_s(kChildOutputVariable, output.c_str());
  EXPECT_EQ(_wspawnl(_P_WAIT, program, program, nullptr), 0);
  _wputenv_s(kChildOutputVariable, L"");

  std::ifstream file(output.c_str(), std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_EQ(std::wstring(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / 2),
            L"1:Sammlung\n1:Dokument\n0:Unbekannter Objekttyp\n1:Weblog\n");
}

// The messages about invalid custom type assignments, in both string tables.
TEST(SatelliteResources, AssignmentMessagesExistInBothLanguages) {
  const HMODULE library = GetModuleHandleW(L"MvSup2u.dll");
  ASSERT_NE(library, nullptr);
  const HMODULE satellite =
      LoadLibraryExW((exe_directory() + L"\\0407\\SDKSatellite.dll").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(satellite, nullptr);
  auto load = [](HMODULE module, UINT id) {
    wchar_t buffer[1024] = {};
    LoadStringW(module, id, buffer, 1024);
    return std::wstring(buffer);
  };
  EXPECT_NE(load(library, 5120).find(L"\r\n\r\nError: Invalid MVXITEMTYPE Assignment\r\n"), std::wstring::npos);
  EXPECT_EQ(load(library, 5121), L"The type assignment problem could not be corrected. Re-install Mervane Client.");
  EXPECT_EQ(load(library, 5122).substr(0, 44), L"The type assignment problem was corrected. H");
  for (UINT id : {5120, 5121, 5122}) {
    EXPECT_FALSE(load(satellite, id).empty()) << id;
    EXPECT_NE(load(satellite, id), load(library, id)) << id;
  }
  FreeLibrary(satellite);
}

}  // namespace
}  // namespace mvsup::test
