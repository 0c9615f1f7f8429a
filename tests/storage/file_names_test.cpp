// File names, temporary files and path tests.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "MvSup2u.h"
#include "common/paths.h"
#include "storage/storage_support.h"

namespace mvsup::test {
namespace {

TEST(FileNames, ValidateFileTitle) {
  const struct {
    const wchar_t* title;
    int reject_trailing_dot;
    int valid;
  } cases[] = {
      {L"report.doc", 1, 1}, {L"report.", 1, 0}, {L"report.", 0, 1}, {L"a:b", 0, 0},   {L"", 0, 0},
      {nullptr, 0, 0},       {L"a\\b", 0, 0},    {L"a/b", 0, 0},     {L"a*b?", 0, 0}, {L"\"a\"", 0, 0},
      {L"a<b>", 0, 0},       {L"a|b", 0, 0},     {L" a b ", 1, 1},   {L".", 0, 1},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ValidateFileTitle(c.title, c.reject_trailing_dot), c.valid)
        << (c.title ? std::string(c.title, c.title + wcslen(c.title)) : "(null)");
}

TEST(FileNames, UnderscoreFileNameReplacesInPlace) {
  wchar_t name[] = L"my file?.txt.";
  EXPECT_EQ(UnderscoreFileName(name), name);
  EXPECT_STREQ(name, L"my_file_.txt_");
  wchar_t controls[] = L"a\tb\x01:c\\d/e*f\"g<h>i|j\u00e9.";
  UnderscoreFileName(controls);
  EXPECT_STREQ(controls, L"a_b__c_d_e_f_g_h_i_j\u00e9_");
  wchar_t empty[] = L"";
  UnderscoreFileName(empty);
  EXPECT_EQ(UnderscoreFileName(nullptr), nullptr);

  char narrow[] = "my file?.txt.\xe9";
  EXPECT_EQ(UnderscoreFileNameA(narrow), narrow);
  EXPECT_STREQ(narrow, "my_file_.txt.\xe9");
  char dotted[] = "a\x7f<b>.";
  UnderscoreFileNameA(dotted);
  EXPECT_STREQ(dotted, "a\x7f_b__");
  EXPECT_EQ(UnderscoreFileNameA(nullptr), nullptr);
}

TEST(FileNames, BuildFileNameFromModulePath) {
  HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
  wchar_t expected[MAX_PATH] = {};
  GetModuleFileNameW(kernel, expected, MAX_PATH);
  std::wstring directory(expected);
  directory.resize(directory.rfind(L'\\'));

  wchar_t buffer[MAX_PATH + 1];
  EXPECT_EQ(BuildFileNameFromModulePath(kernel, L"other.dll", buffer, MAX_PATH), 1);
  EXPECT_EQ(buffer, directory + L"\\other.dll");
  EXPECT_EQ(BuildFileNameFromModulePath(kernel, nullptr, buffer, MAX_PATH), 1);
  EXPECT_EQ(buffer, directory);
  EXPECT_EQ(BuildFileNameFromModulePath(nullptr, nullptr, buffer, MAX_PATH), 1);
  EXPECT_EQ(buffer, exe_directory());

  // Never past the capacity: a result that does not fit is no result.
  const int fits = static_cast<int>(directory.size() + 11);  // "\other.dll" and the terminator
  wmemset(buffer, L'#', MAX_PATH + 1);
  EXPECT_EQ(BuildFileNameFromModulePath(kernel, L"other.dll", buffer, fits - 1), 0);
  EXPECT_EQ(buffer[0], L'\0');
  EXPECT_EQ(buffer[fits - 1], L'#');
  EXPECT_EQ(BuildFileNameFromModulePath(kernel, L"other.dll", buffer, fits), 1);
  EXPECT_EQ(BuildFileNameFromModulePath(kernel, L"x", buffer, 5), 0);
  EXPECT_EQ(buffer[0], L'\0');
  EXPECT_EQ(BuildFileNameFromModulePath(reinterpret_cast<HMODULE>(0x10), L"x", buffer, MAX_PATH), 0);
  EXPECT_EQ(BuildFileNameFromModulePath(kernel, L"x", nullptr, MAX_PATH), 0);
  EXPECT_EQ(BuildFileNameFromModulePath(kernel, L"x", buffer, 0), 0);
}

TEST(TempFiles, NamesAndContents) {
  wchar_t temp[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, temp);
  wchar_t name[MAX_PATH] = {};
  ASSERT_EQ(BuildTempFileName(L"mvs", name), 0u);
  const std::wstring made(name);
  EXPECT_EQ(made.rfind(temp, 0), 0u) << "not in the temporary directory";
  EXPECT_EQ(made.substr(wcslen(temp), 3), L"mvs");
  EXPECT_EQ(read_file(made), "");
  DeleteFileW(name);

  const char data[] = "temporary\0bytes";
  DWORD written = 0;
  ASSERT_EQ(WriteToTempFile(L"mvs", data, sizeof(data), name, &written), 0u);
  EXPECT_EQ(written, sizeof(data));
  EXPECT_EQ(read_file(name), std::string(data, sizeof(data)));
  EXPECT_NE(made, name);
  DeleteFileW(name);

  EXPECT_EQ(WriteToTempFile(nullptr, nullptr, 0, name, nullptr), 0u);
  EXPECT_EQ(read_file(name), "");
  DeleteFileW(name);
  EXPECT_EQ(BuildTempFileName(L"mvs", nullptr), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(WriteToTempFile(L"mvs", nullptr, 4, name, &written), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(WriteToTempFile(L"mvs", data, 4, nullptr, &written), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST(PathTests, DirectoriesFilesAndRoots) {
  TempDirectory folder;
  const std::wstring file = folder.path() + L"\\file.txt";
  write_file(file, "x");
  CreateDirectoryW((folder.path() + L"\\sub").c_str(), nullptr);
  const struct {
    std::wstring path;
    bool directory;
    bool file;
  } cases[] = {
      {L"C:\\", true, false},           {L"\\", true, false},
      {L"Q:\\", true, false},           {L"\\\\server\\", true, false},  // roots: never looked up
      {L"\\\\server\\share\\", false, false}, {folder.path(), true, false},
      {folder.path() + L"\\sub", true, false}, {file, false, true},
      {folder.path() + L"\\missing", false, false}, {folder.path() + L"\\f*.txt", false, true},
      {folder.path() + L"\\s*", true, false},
  };
  for (const auto& c : cases) {
    const std::string shown(c.path.begin(), c.path.end());
    EXPECT_EQ(IsDirName(c.path.c_str()) != 0, c.directory) << shown;
    EXPECT_EQ(IsFileName(c.path.c_str()), c.file ? 1 : 0) << shown;
  }
  EXPECT_EQ(IsDirName(nullptr), 0);
  EXPECT_EQ(IsFileName(nullptr), 0);
}

TEST(PathTests, IsFileSharedAndNesting) {
  TempDirectory folder;
  const std::wstring file = folder.path() + L"\\file.txt";
  write_file(file, "x");
  EXPECT_EQ(IsFileShared(file.c_str()), 0);
  HANDLE reader = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_EQ(IsFileShared(file.c_str()), 1);
  CloseHandle(reader);
  EXPECT_EQ(IsFileShared(file.c_str()), 0);
  EXPECT_EQ(IsFileShared((folder.path() + L"\\missing").c_str()), 0);
  EXPECT_EQ(IsFileShared(nullptr), 0);

  wchar_t saved[MAX_PATH];
  GetCurrentDirectoryW(MAX_PATH, saved);
  ASSERT_TRUE(SetCurrentDirectoryW(L"C:\\"));
  EXPECT_EQ(GetCurrentDirNestLevel(), 1);
  ASSERT_TRUE(SetCurrentDirectoryW(folder.path().c_str()));
  int expected = 0;
  for (wchar_t c : folder.path()) expected += c == L'\\';
  EXPECT_EQ(GetCurrentDirNestLevel(), expected);
  SetCurrentDirectoryW(saved);
}

TEST(PathTests, FreeDiskSpaceIsTheLow32BitsOfTheFreeBytes) {
  // The volume's free space moves while other programs run: take the answer
  // that falls between two readings of the platform's 64-bit figure.
  for (int attempt = 0; attempt < 5; ++attempt) {
    ULARGE_INTEGER before{}, after{}, unused{};
    ASSERT_TRUE(GetDiskFreeSpaceExW(L"C:\\", &unused, &unused, &before));
    const DWORD reported = GetTotalFreeDiskSpace(L"C:\\");
    GetDiskFreeSpaceExW(L"C:\\", &unused, &unused, &after);
    if (before.QuadPart == after.QuadPart) {
      EXPECT_EQ(reported, static_cast<DWORD>(before.QuadPart));
      return;
    }
  }
  ADD_FAILURE() << "free space never held still";
}

TEST(PathTests, FreeDiskSpaceOfAMissingVolumeIsZero) { EXPECT_EQ(GetTotalFreeDiskSpace(L"Q:\\"), 0u); }

}  // namespace
}  // namespace mvsup::test
