// The client directories, derived from the "Location" settings.
#include <windows.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <string>

#include "MvSup2u.h"
#include "common/paths.h"
#include "common/registry_sandbox.h"

namespace mvsup::test {
namespace {

const std::wstring kLocation = client_path(L"Location");

class Directories : public RegistrySandbox {
 protected:
  void SetUp() override {
    RegistrySandbox::SetUp();
    // Mode bits are read at start-up; each test sets the ones it needs.
    SetMvSupMode(0, MVSUP_MODE_LITESDK | MVSUP_MODE_PRIVATELOGDIR);
  }
  void TearDown() override {
    SetMvSupMode(0, MVSUP_MODE_LITESDK | MVSUP_MODE_PRIVATELOGDIR);
    RegistrySandbox::TearDown();
  }

  // Runs a getter into a sentinel-filled buffer; returns what it wrote.
  static std::wstring get(int(WINAPI* getter)(LPWSTR, int), int capacity = MAX_PATH, int* length = nullptr) {
    wchar_t buffer[MAX_PATH + 8];
    wmemset(buffer, L'#', MAX_PATH + 8);
    const int n = getter(buffer, capacity);
    if (length) *length = n;
    EXPECT_EQ(buffer[capacity], L'#') << "wrote past the capacity";
    if (n > 0) {
      EXPECT_EQ(static_cast<size_t>(n), wcslen(buffer));
    }
    return n > 0 ? std::wstring(buffer) : (buffer[0] == L'\0' ? std::wstring() : std::wstring(L"<not emptied>"));
  }

  static void set_language(DWORD language) {
    set_dword(HKEY_CURRENT_USER, client_path(L"MvAxess\\Settings"), L"LangId", language);
  }
};

TEST_F(Directories, ProgramDataAndLanguageFolders) {
  set_string(HKEY_CURRENT_USER, kLocation, L"Programs", L"C:\\Client");
  EXPECT_EQ(get(GetProgramDirectoryPath), L"C:\\Client");
  EXPECT_EQ(get(GetProgramLangDirectoryPath), L"C:\\Client");
  EXPECT_EQ(get(GetDataDirectoryPath), L"C:\\Client\\~DATA~");
  EXPECT_EQ(get(GetDataLangDirectoryPath), L"C:\\Client\\~DATA~");
  EXPECT_EQ(get(GetScriptDirectoryPath), L"C:\\Client\\Scripts");

  set_language(0x0407);
  EXPECT_EQ(get(GetProgramLangDirectoryPath), L"C:\\Client\\0407");
  EXPECT_EQ(get(GetDataLangDirectoryPath), L"C:\\Client\\0407\\~DATA~");
  EXPECT_EQ(get(GetScriptLangDirectoryPath), L"C:\\Client\\0407\\Scripts");
  // Only the low 16 bits are a language.
  set_language(0x12340C0A);
  EXPECT_EQ(get(GetProgramLangDirectoryPath), L"C:\\Client\\0C0A");

  // A Data setting replaces the derived data directory, not the language one.
  set_string(HKEY_CURRENT_USER, kLocation, L"Data", L"D:\\ClientData");
  EXPECT_EQ(get(GetDataDirectoryPath), L"D:\\ClientData");
  EXPECT_EQ(get(GetDataLangDirectoryPath), L"C:\\Client\\0C0A\\~DATA~");
  set_string(HKEY_CURRENT_USER, kLocation, L"Data", L"");
  EXPECT_EQ(get(GetDataDirectoryPath), L"C:\\Client\\~DATA~");
}

TEST_F(Directories, WorkHomeCacheAndLogs) {
  SetEnvironmentVariableW(L"MVSUP_FILES", L"D:\\Files");
  set_string(HKEY_CURRENT_USER, kLocation, L"Work", L"%MVSUP_FILES%\\Client\\Work", REG_EXPAND_SZ);
  set_string(HKEY_CURRENT_USER, kLocation, L"Cache", L"E:\\Cache");
  set_string(HKEY_CURRENT_USER, kLocation, L"Programs", L"C:\\Client");
  EXPECT_EQ(get(GetWorkDirectoryPath), L"D:\\Files\\Client\\Work");
  EXPECT_EQ(get(GetHomeDirectoryPath), L"D:\\Files\\Client");
  EXPECT_EQ(get(GetCacheDirectoryPath), L"E:\\Cache");

  EXPECT_EQ(get(GetLogDirectoryPath), L"C:\\Client\\~DATA~");
  SetMvSupMode(MVSUP_MODE_PRIVATELOGDIR, MVSUP_MODE_PRIVATELOGDIR);
  EXPECT_EQ(get(GetLogDirectoryPath), L"D:\\Files\\Client\\Logs");
  SetMvSupMode(MVSUP_MODE_LITESDK, MVSUP_MODE_LITESDK | MVSUP_MODE_PRIVATELOGDIR);
  EXPECT_EQ(get(GetLogDirectoryPath), L"D:\\Files\\Client\\Logs");
  EXPECT_EQ(get(GetScriptDirectoryPath), L"D:\\Files\\Client\\Scripts");

  // A work directory without a backslash is its own home; a trailing
  // backslash on the home is not doubled.
  set_string(HKEY_CURRENT_USER, kLocation, L"Work", L"Work");
  EXPECT_EQ(get(GetHomeDirectoryPath), L"Work");
  EXPECT_EQ(get(GetLogDirectoryPath), L"Work\\Logs");
  set_string(HKEY_CURRENT_USER, kLocation, L"Work", L"C:\\\\Work");
  EXPECT_EQ(get(GetHomeDirectoryPath), L"C:\\");
  EXPECT_EQ(get(GetLogDirectoryPath), L"C:\\Logs");
}

TEST_F(Directories, MissingSettingsGiveZeroAndAnEmptyBuffer) {
  int length = -1;
  EXPECT_EQ(get(GetProgramDirectoryPath, MAX_PATH, &length), L"");
  EXPECT_EQ(length, 0);
  EXPECT_EQ(get(GetProgramLangDirectoryPath), L"");
  EXPECT_EQ(get(GetDataDirectoryPath), L"");
  EXPECT_EQ(get(GetWorkDirectoryPath), L"");
  EXPECT_EQ(get(GetHomeDirectoryPath), L"");
  EXPECT_EQ(get(GetScriptDirectoryPath), L"");
  SetMvSupMode(MVSUP_MODE_PRIVATELOGDIR, MVSUP_MODE_PRIVATELOGDIR);
  EXPECT_EQ(get(GetLogDirectoryPath), L"");
  EXPECT_EQ(GetWorkDirectoryPath(nullptr, MAX_PATH), 0);
  wchar_t one = L'#';
  EXPECT_EQ(GetWorkDirectoryPath(&one, 0), 0);
  EXPECT_EQ(one, L'#');
}

TEST_F(Directories, PathsThatDoNotFitAreRefusedWhole) {
  set_string(HKEY_CURRENT_USER, kLocation, L"Programs", L"C:\\Client");  // 9 characters
  set_language(0x0407);
  int length = -1;
  EXPECT_EQ(get(GetProgramDirectoryPath, 10, &length), L"C:\\Client");
  EXPECT_EQ(length, 9);
  EXPECT_EQ(get(GetProgramDirectoryPath, 9), L"");
  EXPECT_EQ(get(GetProgramLangDirectoryPath, 15), L"C:\\Client\\0407");
  EXPECT_EQ(get(GetProgramLangDirectoryPath, 14), L"");
  EXPECT_EQ(get(GetScriptDirectoryPath, 18), L"C:\\Client\\Scripts");
  EXPECT_EQ(get(GetScriptDirectoryPath, 17), L"");
  EXPECT_EQ(get(GetDataDirectoryPath, 16), L"");
  EXPECT_EQ(get(GetDataDirectoryPath, 1), L"");
}

TEST_F(Directories, PersonalDirectoryMustExist) {
  TempDirectory folder;
  wchar_t buffer[MAX_PATH];
  set_string(HKEY_CURRENT_USER, client_path(L"MvNsx\\Settings"), L"LocalDocDir", folder.path());
  EXPECT_EQ(GetPersonalDirectory(buffer, MAX_PATH), TRUE);
  EXPECT_EQ(buffer, folder.path());
  // Copied truncated, as the result is a flag and not a length.
  wchar_t small[6];
  EXPECT_EQ(GetPersonalDirectory(small, 6), TRUE);
  EXPECT_EQ(std::wstring(small), folder.path().substr(0, 5));

  // A configured folder that does not exist: no fall-back to the shell's.
  set_string(HKEY_CURRENT_USER, client_path(L"MvNsx\\Settings"), L"LocalDocDir", folder.path() + L"\\missing");
  EXPECT_EQ(GetPersonalDirectory(buffer, MAX_PATH), FALSE);
  EXPECT_STREQ(buffer, L"");

  // Without a setting, the shell's personal folder.
  set_string(HKEY_CURRENT_USER, client_path(L"MvNsx\\Settings"), L"LocalDocDir", L"");
  wchar_t shell[MAX_PATH] = {};
  ASSERT_EQ(SHGetFolderPathW(nullptr, CSIDL_PERSONAL, nullptr, 0, shell), S_OK);
  EXPECT_EQ(GetPersonalDirectory(buffer, MAX_PATH), TRUE);
  EXPECT_EQ(std::wstring(buffer).substr(0, wcslen(shell)), shell);
}

}  // namespace
}  // namespace mvsup::test
