#include "storage/dir_cleanup.h"

#include <string>
#include <string_view>

#include "frame/text.h"
#include "frame/win32_handles.h"

namespace mvsup::cleanup {

namespace {

constexpr DWORD kCurrentDirectoryCapacity = 262;
constexpr size_t kTooLongDirectory = 259;
constexpr size_t kPathCapacity = 260;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::wstring upper(std::wstring_view text) {
  std::wstring result(text);
  if (!result.empty()) ::CharUpperBuffW(result.data(), static_cast<DWORD>(result.size()));
  return result;
}

std::wstring with_backslash(std::wstring_view path) {
  std::wstring result(path);
  if (result.empty() || result.back() != L'\\') result += L'\\';
  return result;
}

bool absolute(std::wstring_view path) {
  return (path.size() >= 3 && path[1] == L':' && path[2] == L'\\') || path.substr(0, 2) == L"\\\\";
}

// A handle on the entry itself; with `through_links` on what it leads to.
unique_file open_entry(const wchar_t* path, DWORD access, bool through_links) {
  const DWORD flags = FILE_FLAG_BACKUP_SEMANTICS | (through_links ? 0 : FILE_FLAG_OPEN_REPARSE_POINT);
  return unique_file(::CreateFileW(path, access, kShareAll, nullptr, OPEN_EXISTING, flags, nullptr));
}

std::wstring real_location(const wchar_t* path) {
  const unique_file entry = open_entry(path, FILE_READ_ATTRIBUTES, true);
  return entry ? final_path(entry.get()) : std::wstring();
}

class Walk {
 public:
  Walk(Actions& actions, std::wstring_view base, int* failures, bool delete_files)
      : actions_(actions), base_(base), base_upper_(upper(with_backslash(base))), failures_(failures),
        delete_files_(delete_files) {
    if (absolute(base_)) base_real_ = real_location(base_.c_str());
  }

  int run(const wchar_t* dir) {
    if (!::SetCurrentDirectoryW(dir)) return 0;
    return empty_current(real_location(L".")) == Result::kRefused ? 0 : 1;
  }

 private:
  enum class Result { kDone, kRefused };

  // Empties the current directory, whose real location is `real`. *left
  // counts the entries that are (or in a dry run would be) still there.
  Result empty_current(const std::wstring& real, int* left = nullptr) {
    WIN32_FIND_DATAW data;
    unique_find find(::FindFirstFileW(L"*.*", &data));
    if (!find) return Result::kDone;
    do {
      const std::wstring name(data.cFileName);
      if (name.empty() || name.back() == L'.') continue;
      const bool directory = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
      if (!directory && !delete_files_) {
        if (left) ++*left;
        continue;
      }
      const std::wstring expected = real.empty() ? std::wstring() : with_backslash(real) + name;
      int left_inside = 0;
      if (directory && enter(name, expected, &left_inside) == Result::kRefused) return Result::kRefused;
      std::wstring path;
      if (!check(name, real, &path)) return Result::kRefused;
      if (!remove(directory, path, expected, left_inside == 0) && left) ++*left;
    } while (::FindNextFileW(find.get(), &data));
    return Result::kDone;
  }

  // Empties a sub-directory when it really is where its name says. Going in
  // and out keeps the current directory as the caller expects: back up only
  // after a walk that went in and finished.
  Result enter(const std::wstring& name, const std::wstring& expected, int* left) {
    if (expected.empty() || !really_under_base(expected) ||
        !text::equals_ignore_case(real_location(name.c_str()), expected)) {
      ++*left;
      return Result::kDone;
    }
    if (!::SetCurrentDirectoryW(name.c_str())) {
      ++*left;
      return Result::kDone;
    }
    // Checked again from inside: the entry may have been swapped for a link
    // after the first look.
    if (!text::equals_ignore_case(real_location(L"."), expected)) {
      ::SetCurrentDirectoryW(L"..");
      ++*left;
      return Result::kDone;
    }
    if (empty_current(expected, left) == Result::kRefused) return Result::kRefused;
    ::SetCurrentDirectoryW(L"..");
    return Result::kDone;
  }

  bool refuse(Refusal why, const wchar_t* format, const std::wstring& path) {
    actions_.refused(why, text::format(format, path.c_str()));
    return false;
  }

  // The checks before one removal, in their order; on success *path is the
  // entry's full path in upper case, the one that is removed.
  bool check(const std::wstring& name, const std::wstring& real, std::wstring* path) {
    wchar_t buffer[kCurrentDirectoryCapacity];
    const DWORD length = ::GetCurrentDirectoryW(kCurrentDirectoryCapacity, buffer);
    if (length == 0) {
      const int error = static_cast<int>(::GetLastError());
      actions_.refused(Refusal::kNoCurrentDirectory, text::format(L"Failed to get current directory: Error %d\n", error));
      return false;
    }
    // A directory too long for the buffer is too long to delete in.
    if (length >= kCurrentDirectoryCapacity) {
      std::wstring whole(length, L'\0');
      whole.resize(::GetCurrentDirectoryW(length, whole.data()));
      return refuse(Refusal::kTooLong, L"Path too long: %ls\n", whole);
    }
    const std::wstring current(buffer, length);
    if (current.size() >= kTooLongDirectory) return refuse(Refusal::kTooLong, L"Path too long: %ls\n", current);

    if (current.find(L"\\\\") != std::wstring::npos) {
      const std::wstring here = with_backslash(current);
      const std::wstring cache = actions_.cache_directory();
      if (cache.empty()) return false;
      if (!text::starts_with_ignore_case(here, with_backslash(cache))) {
        const std::wstring work = actions_.work_directory();
        if (work.empty()) return false;
        if (!text::starts_with_ignore_case(here, with_backslash(work)))
          return refuse(Refusal::kDoubleSlash, L"Path points at a remote volume: %ls\n", current);
      }
    }

    const std::wstring full = with_backslash(current) + name;
    if (full.size() + 1 > kPathCapacity) return refuse(Refusal::kTooLong, L"Path too long: %ls\n", full);

    *path = upper(full);
    if (path->find(base_upper_) == std::wstring::npos)
      return refuse(Refusal::kNotUnderBase, L"Path does not exist under base dir: %ls\n", *path);

    size_t backslashes = 0;
    for (wchar_t c : *path) backslashes += c == L'\\';
    if (backslashes < 2 || current.size() + 1 < 4)
      return refuse(Refusal::kTooShort, L"Path too short to be valid: %ls\n", *path);

    const std::wstring real_full = real.empty() ? std::wstring() : with_backslash(real) + name;
    if (!really_under_base(real_full))
      return refuse(Refusal::kNotUnderBase, L"Path does not exist under base dir: %ls\n",
                    real_full.empty() ? *path : real_full);
    return true;
  }

  // Where an entry really is must pass the base rule too: a base that can be
  // opened contains it; any other base occurs in it.
  bool really_under_base(const std::wstring& real_full) const {
    if (real_full.empty()) return false;
    if (base_real_.empty()) return upper(real_full).find(base_upper_) != std::wstring::npos;
    return text::starts_with_ignore_case(real_full, with_backslash(base_real_));
  }

  // Removes an entry through a handle on the entry itself, and only when
  // that handle is where the entry should be: never through a link.
  bool remove(bool directory, const std::wstring& path, const std::wstring& expected, bool empty_inside) {
    actions_.removing(directory, path);
    const DWORD error = remove_entry(directory, path, expected, empty_inside);
    if (error == ERROR_SUCCESS) {
      actions_.removed();
      return true;
    }
    actions_.failed(directory, error, path);
    if (failures_) ++*failures_;
    return false;
  }

  DWORD remove_entry(bool directory, const std::wstring& path, const std::wstring& expected, bool empty_inside) {
    const unique_file entry = open_entry(path.c_str(), DELETE | FILE_READ_ATTRIBUTES | SYNCHRONIZE, false);
    if (!entry) return ::GetLastError();
    const std::wstring where = final_path(entry.get());
    if (!text::equals_ignore_case(where, expected)) {
      actions_.link_left(path, where);
      return kLinkLeftInPlace;
    }
    if (actions_.dry_run()) {
      if (directory && !empty_inside) return ERROR_DIR_NOT_EMPTY;
      FILE_BASIC_INFO info{};
      if (::GetFileInformationByHandleEx(entry.get(), FileBasicInfo, &info, sizeof(info)) &&
          (info.FileAttributes & FILE_ATTRIBUTE_READONLY))
        return ERROR_ACCESS_DENIED;
      return ERROR_SUCCESS;
    }
    FILE_DISPOSITION_INFO disposition{TRUE};
    if (!::SetFileInformationByHandle(entry.get(), FileDispositionInfo, &disposition, sizeof(disposition)))
      return ::GetLastError();
    return ERROR_SUCCESS;
  }

  Actions& actions_;
  std::wstring base_;
  std::wstring base_upper_;
  std::wstring base_real_;
  int* failures_;
  bool delete_files_;
};

}  // namespace

std::wstring final_path(HANDLE handle) {
  std::wstring path(MAX_PATH, L'\0');
  DWORD length = ::GetFinalPathNameByHandleW(handle, path.data(), static_cast<DWORD>(path.size()), VOLUME_NAME_DOS);
  if (length >= path.size()) {
    path.resize(length + 1);
    length = ::GetFinalPathNameByHandleW(handle, path.data(), static_cast<DWORD>(path.size()), VOLUME_NAME_DOS);
  }
  if (length == 0 || length >= path.size()) return {};
  path.resize(length);
  if (path.starts_with(L"\\\\?\\UNC\\")) return L"\\" + path.substr(7);
  if (path.starts_with(L"\\\\?\\")) path.erase(0, 4);
  // A root keeps its backslash; nothing else ends in one.
  if (path.size() > 3 && path.back() == L'\\') path.pop_back();
  return path;
}

int delete_dir_contents(Actions& actions, const wchar_t* base, const wchar_t* dir, int* failures,
                        bool delete_files) noexcept {
  if (base == nullptr || *base == L'\0' || dir == nullptr) return 0;
  try {
    Walk walk(actions, base, failures, delete_files);
    return walk.run(dir);
  } catch (...) {
    return 0;
  }
}

}  // namespace mvsup::cleanup
