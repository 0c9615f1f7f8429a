#include "storage/storage_support.h"

#include <process.h>

#include <gtest/gtest.h>

#include "MvSup2u.h"

namespace mvsup::test {

const std::wstring& log_directory() {
  static const std::wstring directory = [] {
    wchar_t base[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, base);
    return std::wstring(base) + L"mvsup-storage-log-" + std::to_wstring(GetCurrentProcessId());
  }();
  return directory;
}

std::wstring log_file() { return log_directory() + L"\\MvFileCreation.log"; }

std::string read_file(const std::wstring& path) {
  std::string bytes;
  HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                            nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return "<missing>";
  char chunk[65536];
  DWORD read = 0;
  while (ReadFile(file, chunk, sizeof(chunk), &read, nullptr) && read > 0) bytes.append(chunk, read);
  CloseHandle(file);
  return bytes;
}

void write_file(const std::wstring& path, std::string_view bytes) {
  HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE) << "cannot write " << std::string(path.begin(), path.end());
  DWORD written = 0;
  WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  CloseHandle(file);
}

bool exists(const std::wstring& path) { return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

void LogTest::SetUp() {
  RegistrySandbox::SetUp();
  SetMvSupMode(0, MVSUP_MODE_LITESDK | MVSUP_MODE_PRIVATELOGDIR);
  set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Data", log_directory());
  CreateDirectoryW(log_directory().c_str(), nullptr);
  SetFileAttributesW(log_file().c_str(), FILE_ATTRIBUTE_NORMAL);
  DeleteFileW(log_file().c_str());
}

void LogTest::TearDown() {
  DeleteFileW(log_file().c_str());
  RemoveDirectoryW(log_directory().c_str());
  RegistrySandbox::TearDown();
}

}  // namespace mvsup::test
