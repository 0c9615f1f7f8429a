#include "common/trace_log.h"

#include <algorithm>
#include <cstdio>

#include "common/registry_sandbox.h"

namespace mvsup::test {

TraceLogFolder::TraceLogFolder(DWORD flags, bool create_call_trace) {
  const std::wstring key = L"Software\\Corvell\\Mervane Client\\SETTINGS\\TraceLog";
  set_string(HKEY_LOCAL_MACHINE, key, L"TraceLogPath", temp_.path());
  set_dword(HKEY_LOCAL_MACHINE, key, L"SDK", flags);
  if (create_call_trace) CreateDirectoryW(call_trace().c_str(), nullptr);
}

std::vector<std::wstring> TraceLogFolder::files() const {
  std::vector<std::wstring> names;
  WIN32_FIND_DATAW data;
  HANDLE find = FindFirstFileW((call_trace() + L"\\*").c_str(), &data);
  if (find == INVALID_HANDLE_VALUE) return names;
  do {
    if (!(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names.push_back(data.cFileName);
  } while (FindNextFileW(find, &data));
  FindClose(find);
  std::sort(names.begin(), names.end());
  return names;
}

std::string TraceLogFolder::read_all_raw() const {
  std::string all;
  for (const std::wstring& name : files()) {
    FILE* file = _wfopen((call_trace() + L"\\" + name).c_str(), L"rb");
    if (file == nullptr) continue;
    char chunk[4096];
    for (size_t n; (n = fread(chunk, 1, sizeof(chunk), file)) > 0;) all.append(chunk, n);
    fclose(file);
  }
  return all;
}

std::string TraceLogFolder::read_all() const {
  std::string text = read_all_raw();
  text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
  return text;
}

}  // namespace mvsup::test
