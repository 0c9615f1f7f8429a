// Questions about paths: shared files, directories, files, nesting, free
// space.
#include <windows.h>

#include <string>
#include <string_view>

#include "MvSupFiles.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"

namespace mvsup::path_queries {

namespace {

// "\", "X:\" or "\\server\": answered from the text alone.
bool is_root(std::wstring_view path) noexcept {
  if (path == L"\\") return true;
  if (path.size() == 3 && path[0] < 128 && path[1] == L':' && path[2] == L'\\') return true;
  if (path.size() >= 5 && path.substr(0, 2) == L"\\\\") return path.find(L'\\', 2) == path.size() - 1;
  return false;
}

// Attributes of the first match of a search for path other than "." and
// ".." (and other names that end in '.'); INVALID_FILE_ATTRIBUTES for none.
DWORD first_match_attributes(const wchar_t* path) noexcept {
  WIN32_FIND_DATAW data;
  unique_find find(::FindFirstFileW(path, &data));
  if (!find) return INVALID_FILE_ATTRIBUTES;
  do {
    const std::wstring_view name(data.cFileName);
    if (!name.empty() && name.back() != L'.') return data.dwFileAttributes;
  } while (::FindNextFileW(find.get(), &data));
  return INVALID_FILE_ATTRIBUTES;
}

}  // namespace

int is_file_shared(const wchar_t* path) noexcept {
  if (path == nullptr) return 0;
  unique_file file(::CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (file) return 0;
  const DWORD error = ::GetLastError();
  return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ? 1 : 0;
}

int is_dir_name(const wchar_t* path) noexcept {
  if (path == nullptr) return 0;
  if (is_root(path)) return 1;
  const DWORD attributes = first_match_attributes(path);
  return attributes == INVALID_FILE_ATTRIBUTES ? 0 : static_cast<int>(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

int is_file_name(const wchar_t* path) noexcept {
  if (path == nullptr || is_root(path)) return 0;
  const DWORD attributes = first_match_attributes(path);
  return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY) ? 1 : 0;
}

int current_dir_nest_level() noexcept {
  try {
    std::wstring directory(MAX_PATH, L'\0');
    DWORD length = ::GetCurrentDirectoryW(static_cast<DWORD>(directory.size()), directory.data());
    if (length >= directory.size()) {
      directory.resize(length);
      length = ::GetCurrentDirectoryW(static_cast<DWORD>(directory.size()), directory.data());
      if (length >= directory.size()) return 0;
    }
    directory.resize(length);
    int level = 0;
    for (wchar_t c : directory) level += c == L'\\';
    return level;
  } catch (...) {
    return 0;
  }
}

DWORD total_free_disk_space(const wchar_t* root) noexcept {
  DWORD sectors_per_cluster = 0, bytes_per_sector = 0, free_clusters = 0, clusters = 0;
  if (!::GetDiskFreeSpaceW(root, &sectors_per_cluster, &bytes_per_sector, &free_clusters, &clusters)) return 0;
  // Deliberately 32-bit: callers get the free bytes modulo 2^32.
  return sectors_per_cluster * bytes_per_sector * free_clusters;
}

}  // namespace mvsup::path_queries

using namespace mvsup;

extern "C" {

int WINAPI IsFileShared(LPCWSTR path) {
  trace::CallScope scope("IsFileShared");
  return scope.res(path_queries::is_file_shared(path));
}

int WINAPI IsDirName(LPCWSTR path) {
  trace::CallScope scope("IsDirName");
  return scope.res(path_queries::is_dir_name(path));
}

int WINAPI IsFileName(LPCWSTR path) {
  trace::CallScope scope("IsFileName");
  return scope.res(path_queries::is_file_name(path));
}

int WINAPI GetCurrentDirNestLevel(void) { return path_queries::current_dir_nest_level(); }

DWORD WINAPI GetTotalFreeDiskSpace(LPCWSTR root) {
  trace::CallScope scope("GetTotalFreeDiskSpace");
  return scope.res(path_queries::total_free_disk_space(root));
}

}  // extern "C"
