// DeleteDirContents: the clean-up walk with the library's own reporting (the
// trace log and, for a refused path, a message box).
#include <windows.h>

#include <string>

#include "MvSupFiles.h"
#include "frame/trace.h"
#include "storage/dir_cleanup.h"
#include "storage/directories.h"
#include "types/item_types.h"

namespace mvsup::cleanup {

namespace {

constexpr const wchar_t* kCaption = L"MVSUP2U.DLL";

std::wstring directory(int (*getter)(wchar_t*, int) noexcept) {
  wchar_t buffer[MAX_PATH] = {};
  return getter(buffer, MAX_PATH) > 0 ? std::wstring(buffer) : std::wstring();
}

std::wstring message(Refusal why) {
  wchar_t buffer[256] = {};
  types::load_string(static_cast<UINT>(why), buffer, 256);
  return buffer;
}

class LibraryActions final : public Actions {
 public:
  bool dry_run() const override { return false; }
  std::wstring cache_directory() override { return directory(directories::cache); }
  std::wstring work_directory() override { return directory(directories::work); }

  void refused(Refusal why, const std::wstring& reason) override {
    const std::wstring text = message(why);
    trace::line(L"%ls: %ls\n", kCaption, text.c_str());
    trace::line(L"%ls", reason.c_str());
    ::MessageBoxW(nullptr, text.c_str(), kCaption, MB_OK | MB_TOPMOST);
  }

  void removing(bool is_directory, const std::wstring& path) override {
    trace::line(is_directory ? L"Removing subdir: %ls\n" : L"Removing file: %ls\n", path.c_str());
  }

  void removed() override { trace::line(" Removed\n"); }

  void failed(bool is_directory, DWORD error, const std::wstring& path) override {
    if (is_directory)
      trace::line(" Failed due to error %d\n", static_cast<int>(error));
    else
      trace::line(L" Failed due to error %d %ls\n", static_cast<int>(error), path.c_str());
  }

  void link_left(const std::wstring& path, const std::wstring& target) override {
    trace::line(L"Not removing through a link: %ls leads to %ls\n", path.c_str(), target.c_str());
  }
};

}  // namespace

}  // namespace mvsup::cleanup

using namespace mvsup;

extern "C" int WINAPI DeleteDirContents(LPCWSTR base, LPCWSTR dir, int* failures, int deleteFiles) {
  trace::CallScope scope("DeleteDirContents");
  cleanup::LibraryActions actions;
  return scope.res(cleanup::delete_dir_contents(actions, base, dir, failures, deleteFiles != 0));
}
