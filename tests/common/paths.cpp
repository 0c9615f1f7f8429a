#include "common/paths.h"

#include <windows.h>
#include <shellapi.h>
#include <process.h>
#include <stdlib.h>

#include <gtest/gtest.h>

namespace mvsup::test {

std::wstring exe_directory() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring directory(path);
  return directory.substr(0, directory.rfind(L'\\'));
}

TempDirectory::TempDirectory() {
  wchar_t base[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, base);
  static LONG counter = 0;
  for (int attempt = 0; attempt < 100; ++attempt) {
    path_ = std::wstring(base) + L"mvsup-test-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
            std::to_wstring(GetTickCount64() % 1000000) + L"-" + std::to_wstring(InterlockedIncrement(&counter));
    if (CreateDirectoryW(path_.c_str(), nullptr)) return;
  }
  ADD_FAILURE() << "cannot create a temporary directory";
}

TempDirectory::~TempDirectory() {
  std::wstring from = path_ + L'\0';
  SHFILEOPSTRUCTW op{};
  op.wFunc = FO_DELETE;
  op.pFrom = from.c_str();
  op.fFlags = FOF_NOCONFIRMATION | FOF_NOERRORUI | FOF_SILENT;
  SHFileOperationW(&op);
}

}  // namespace mvsup::test
