#include "common/child_process.h"

#include <windows.h>
#include <process.h>

#include <cstdlib>
#include <string>

namespace mvsup::test {

bool is_child_process(const wchar_t* variable) {
  wchar_t flag[8];
  return GetEnvironmentVariableW(variable, flag, 8) != 0;
}

// The CRT's environment is the one a spawned child inherits.
intptr_t run_child_process(const wchar_t* variable) {
  wchar_t exe[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, exe, MAX_PATH);
  _wputenv((std::wstring(variable) + L"=1").c_str());
  const intptr_t code = _wspawnl(_P_WAIT, exe, L"child", L"--gtest_filter=-*", nullptr);
  _wputenv((std::wstring(variable) + L"=").c_str());
  return code;
}

}  // namespace mvsup::test
