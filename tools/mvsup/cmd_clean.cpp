// mvsup clean: empty a directory tree under a base directory, or show what
// that would do.
#include <windows.h>

#include <string>

#include "MvSup2u.h"
#include "command.h"
#include "output.h"
#include "storage/dir_cleanup.h"

namespace mvsup::tool {
namespace {

std::wstring directory(int(WINAPI* getter)(LPWSTR, int)) {
  wchar_t buffer[MAX_PATH] = {};
  return getter(buffer, MAX_PATH) > 0 ? std::wstring(buffer) : std::wstring();
}

// The walk of the library without removing anything: each step is listed.
class DryRun final : public cleanup::Actions {
 public:
  bool dry_run() const override { return true; }
  std::wstring cache_directory() override { return directory(GetCacheDirectoryPath); }
  std::wstring work_directory() override { return directory(GetWorkDirectoryPath); }

  void refused(cleanup::Refusal why, const std::wstring& reason) override {
    wchar_t message[256] = {};
    LoadStringW(GetModuleHandleW(L"MvSup2u.dll"), static_cast<UINT>(why), message, 256);
    std::wstring line = reason;
    while (!line.empty() && line.back() == L'\n') line.pop_back();
    write_out(L"refuse       " + std::wstring(message) + L" " + line + L"\n");
    refusals_++;
  }
  void removing(bool is_directory, const std::wstring& path) override {
    kind_ = is_directory ? L"dir " : L"file";
    path_ = path;
  }
  void removed() override {
    write_out(L"remove " + kind_ + L"  " + path_ + L"\n");
    removals_++;
  }
  void failed(bool, DWORD error, const std::wstring&) override {
    write_out(L"keep   " + kind_ + L"  " + path_ + L" (error " + std::to_wstring(error) + L")\n");
  }
  void link_left(const std::wstring& path, const std::wstring& target) override {
    write_out(L"link         " + path + L" leads to " + target + L": not followed\n");
  }

  int refusals_ = 0;
  int removals_ = 0;

 private:
  std::wstring kind_;
  std::wstring path_;
};

int run_clean(Args& args) {
  const bool files = args.take_flag(L"--files");
  const bool dry = args.take_flag(L"--dry-run");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().size() != 2) return fail(L"clean takes BASE and DIR (see mvsup clean --help)");
  const std::wstring& base = args.rest()[0];
  const std::wstring& dir = args.rest()[1];
  int failures = 0;
  if (dry) {
    DryRun actions;
    const int result = cleanup::delete_dir_contents(actions, base.c_str(), dir.c_str(), &failures, files);
    write_out(L"Dry run: " + std::to_wstring(actions.removals_) + L" would go, " + std::to_wstring(failures) +
              L" would stay" + (actions.refusals_ ? L"; the walk would stop at the refusal" : L"") +
              (result == 0 && actions.refusals_ == 0 ? L"; DIR cannot be entered" : L"") + L"\n");
    return 0;
  }
  if (DeleteDirContents(base.c_str(), dir.c_str(), &failures, files ? 1 : 0) == 0)
    return fail(L"refused (see the message and the trace log) or cannot enter " + dir);
  write_out(L"Done: " + std::to_wstring(failures) + L" entries could not be removed\n");
  return 0;
}

const CommandRegistration kClean{{
    L"clean",
    L"empty a directory tree under a base directory (DeleteDirContents)",
    L"Usage: mvsup clean BASE DIR [--files] [--dry-run]\n\n"
    L"Empties DIR: removes its sub-directories once they are empty and, with --files,\n"
    L"its files. Every path is checked against BASE first; a refused path stops the\n"
    L"walk with a message box. Links that lead elsewhere are never followed.\n"
    L"--dry-run  removes nothing and shows no box: lists what would go (remove), what\n"
    L"           would stay (keep), links not followed, and what the check would refuse.\n"
    L"           Files held open elsewhere cannot be foreseen.\n",
    run_clean,
}};

}  // namespace
}  // namespace mvsup::tool
