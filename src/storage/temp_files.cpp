// Temporary files: unique names in the system's temporary directory and
// files written there in one go.
#include <windows.h>

#include "MvSupFiles.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"

namespace mvsup::temp_files {

DWORD build_name(const wchar_t* prefix, wchar_t* buffer) noexcept {
  if (buffer == nullptr) return ERROR_INVALID_PARAMETER;
  wchar_t directory[MAX_PATH + 1] = {};
  const DWORD length = ::GetTempPathW(MAX_PATH + 1, directory);
  if (length == 0) return ::GetLastError();
  if (length > MAX_PATH) return ERROR_BUFFER_OVERFLOW;
  if (::GetTempFileNameW(directory, prefix ? prefix : L"", 0, buffer) == 0) return ::GetLastError();
  return ERROR_SUCCESS;
}

DWORD write(const wchar_t* prefix, const void* data, DWORD count, wchar_t* name, DWORD* written) noexcept {
  if (written) *written = 0;
  if (name == nullptr || (data == nullptr && count != 0)) return ERROR_INVALID_PARAMETER;
  if (const DWORD error = build_name(prefix, name)) return error;
  DWORD error = ERROR_SUCCESS;
  {
    unique_file file(::CreateFileW(name, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_TEMPORARY, nullptr));
    DWORD done = 0;
    if (!file)
      error = ::GetLastError();
    else if (count != 0 && !::WriteFile(file.get(), data, count, &done, nullptr))
      error = ::GetLastError();
    else if (done != count)
      error = ERROR_WRITE_FAULT;
    if (written) *written = done;
  }
  if (error != ERROR_SUCCESS) {
    // Nobody is told the name of a file that failed: it goes again.
    ::DeleteFileW(name);
    name[0] = L'\0';
    if (written) *written = 0;
  }
  return error;
}

}  // namespace mvsup::temp_files

using namespace mvsup;

extern "C" {

DWORD WINAPI BuildTempFileName(LPCWSTR prefix, LPWSTR buffer) {
  trace::CallScope scope("BuildTempFileName");
  return scope.res(temp_files::build_name(prefix, buffer));
}

DWORD WINAPI WriteToTempFile(LPCWSTR prefix, const void* data, DWORD count, LPWSTR nameBuffer, DWORD* bytesWritten) {
  trace::CallScope scope("WriteToTempFile");
  return scope.res(temp_files::write(prefix, data, count, nameBuffer, bytesWritten));
}

}  // extern "C"
