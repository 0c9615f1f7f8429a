// The walk behind DeleteDirContents: empties a directory tree under a base
// directory, checking every path before it removes anything. What happens
// at each step (removing, tracing, message boxes, or only listing in a dry
// run) is up to the Actions given; the walk and its checks are the same for
// the library and the support tool.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace mvsup::cleanup {

// Why a path check refused; the values are the string ids of the messages.
enum class Refusal : UINT {
  kNoCurrentDirectory = 4928,
  kDoubleSlash = 4929,
  kTooShort = 4930,
  kTooLong = 4931,
  kNotUnderBase = 4932,
};

// The error counted for a link that is left in place because removing it
// would reach through it (ERROR_REPARSE_POINT_ENCOUNTERED).
inline constexpr DWORD kLinkLeftInPlace = 4395;

class Actions {
 public:
  virtual ~Actions() = default;
  // True: nothing is removed; the walk reports what it would do.
  virtual bool dry_run() const = 0;
  // Directories that paths holding "\\" may lie in; empty when unknown.
  virtual std::wstring cache_directory() = 0;
  virtual std::wstring work_directory() = 0;
  // A check refused; `reason` is the specific trace line (ends in "\n").
  virtual void refused(Refusal why, const std::wstring& reason) = 0;
  virtual void removing(bool directory, const std::wstring& path) = 0;
  virtual void removed() = 0;
  virtual void failed(bool directory, DWORD error, const std::wstring& path) = 0;
  // An entry that leads elsewhere (`target`) and is neither entered nor
  // removed through.
  virtual void link_left(const std::wstring& path, const std::wstring& target) = 0;
};

// Runs the walk: 1 when it finished, 0 when dir could not be entered or a
// check refused. *failures (may be null) grows by one per entry not removed.
int delete_dir_contents(Actions& actions, const wchar_t* base, const wchar_t* dir, int* failures,
                        bool delete_files) noexcept;

// Where an open handle really is, as a plain DOS path ("C:\a", "\\srv\s\a");
// empty when the platform cannot tell.
std::wstring final_path(HANDLE handle);

}  // namespace mvsup::cleanup
