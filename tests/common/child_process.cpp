#include "common/child_process.h"

#include <windows.h>
#include <process.h>

#include <cstdlib>

namespace mvsup::test {

std::wstring child_variable(const wchar_t* variable) {
  wchar_t value[256] = {};
  const DWORD length = GetEnvironmentVariableW(variable, value, 256);
  return length > 0 && length < 256 ? std::wstring(value, length) : std::wstring();
}

bool is_child_process(const wchar_t* variable) { return !child_variable(variable).empty(); }

// The C runtime's environment is the one a spawned child inherits.
intptr_t run_child_process(const wchar_t* variable, const std::wstring& value, bool wait) {
  wchar_t exe[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, exe, MAX_PATH);
  _wputenv((std::wstring(variable) + L"=" + value).c_str());
  const intptr_t result = _wspawnl(wait ? _P_WAIT : _P_NOWAIT, exe, L"child", L"--gtest_filter=-*", nullptr);
  _wputenv((std::wstring(variable) + L"=").c_str());
  return result;
}

}  // namespace mvsup::test
