// How the BOOL-returning time exports hand out their results: the output is
// written on success and zeroed on failure, and a failure sets the last
// error, so that callers see one rule for every conversion.
#pragma once

#include <windows.h>

namespace mvsup::time {

template <typename T>
BOOL deliver(bool ok, T* out, const T& value) noexcept {
  if (out != nullptr) *out = ok ? value : T{};
  if (!ok) ::SetLastError(ERROR_INVALID_PARAMETER);
  return ok ? TRUE : FALSE;
}

inline BOOL deliver_dos(bool ok, WORD* dos_date, WORD* dos_time, WORD date_value, WORD time_value) noexcept {
  if (dos_date != nullptr) *dos_date = ok ? date_value : 0;
  if (dos_time != nullptr) *dos_time = ok ? time_value : 0;
  if (!ok) ::SetLastError(ERROR_INVALID_PARAMETER);
  return ok ? TRUE : FALSE;
}

}  // namespace mvsup::time
