// The file-creation log: appending records, looking files up, deleting
// logged files and compacting the log.
#include <windows.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "MvSupFiles.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "storage/creation_log_format.h"
#include "storage/directories.h"

namespace mvsup::creation_log {

namespace {

constexpr size_t kChunk = 64 * 1024;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
// Writers of the log (appends, compaction, clearing) take this lock, so that
// appends never interleave and a compaction loses no record that the library
// appends meanwhile in another process.
constexpr const wchar_t* kWriterLockName = L"Local\\MvSup2u.FileCreationLog";
constexpr DWORD kWriterLockWait = 10000;
// A deleted log may stay "delete pending" while another process still reads
// it; writing it back waits for that.
constexpr int kRecreateAttempts = 100;
constexpr DWORD kRecreatePause = 10;

// The buffer that look-ups read the log through. One is kept for the
// process, so that its pages stay mapped between calls (a fresh block of
// the log's size costs more to fault in than the search itself, and the
// caller's stack may be small); a look-up that finds it in use by another
// thread takes its own from the heap.
alignas(64) char g_scan_buffer[kChunk];
std::atomic<bool> g_scan_buffer_busy{false};

class ScanBuffer {
 public:
  ScanBuffer() {
    if (!g_scan_buffer_busy.exchange(true, std::memory_order_acquire)) {
      data_ = g_scan_buffer;
    } else {
      own_ = std::make_unique<char[]>(kChunk);
      data_ = own_.get();
    }
  }
  ~ScanBuffer() {
    if (data_ == g_scan_buffer) g_scan_buffer_busy.store(false, std::memory_order_release);
  }
  ScanBuffer(const ScanBuffer&) = delete;
  ScanBuffer& operator=(const ScanBuffer&) = delete;
  char* data() const { return data_; }

 private:
  std::unique_ptr<char[]> own_;
  char* data_ = nullptr;
};

HRESULT hresult_from_error(DWORD error) noexcept { return static_cast<HRESULT>(0x80070000u | (error & 0xFFFFu)); }

wchar_t g_name[kNameCapacity];
std::atomic<int> g_name_state{0};  // 0 unknown, 1 being stored, 2 stored

// The log's full name: worked out once per process, on the first call that
// finds a log directory.
std::wstring log_name() noexcept {
  if (g_name_state.load(std::memory_order_acquire) == 2) return g_name;
  try {
    wchar_t directory[kNameCapacity] = {};
    const int length = directories::log(directory, static_cast<int>(kNameCapacity));
    std::wstring name = log_file_name(std::wstring_view(directory, length > 0 ? static_cast<size_t>(length) : 0));
    if (name.empty()) return {};
    int expected = 0;
    if (g_name_state.compare_exchange_strong(expected, 1, std::memory_order_acq_rel)) {
      text::copy_truncated(g_name, kNameCapacity, name);
      g_name_state.store(2, std::memory_order_release);
    }
    return name;
  } catch (...) {
    return {};
  }
}

class WriterLock {
 public:
  WriterLock() noexcept : mutex_(::CreateMutexW(nullptr, FALSE, kWriterLockName)) {
    if (!mutex_) return;
    const DWORD wait = ::WaitForSingleObject(mutex_.get(), kWriterLockWait);
    owned_ = wait == WAIT_OBJECT_0 || wait == WAIT_ABANDONED;
  }
  ~WriterLock() {
    if (owned_) ::ReleaseMutex(mutex_.get());
  }
  WriterLock(const WriterLock&) = delete;
  WriterLock& operator=(const WriterLock&) = delete;

 private:
  unique_handle mutex_;
  bool owned_ = false;
};

// Opened as the runtime's "a+" would: created when missing.
unique_file open_for_reading(const std::wstring& name) noexcept {
  return unique_file(::CreateFileW(name.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                                   nullptr));
}

bool read_all(const std::wstring& name, std::string& text) {
  unique_file file = open_for_reading(name);
  if (!file) return false;
  LARGE_INTEGER size{};
  if (!::GetFileSizeEx(file.get(), &size) || size.QuadPart < 0 ||
      static_cast<unsigned long long>(size.QuadPart) >= text.max_size())
    return false;
  text.assign(static_cast<size_t>(size.QuadPart), '\0');
  size_t done = 0;
  while (done < text.size()) {
    DWORD read = 0;
    const DWORD want = static_cast<DWORD>(std::min<size_t>(text.size() - done, 1u << 30));
    if (!::ReadFile(file.get(), text.data() + done, want, &read, nullptr)) return false;
    if (read == 0) break;
    done += read;
  }
  text.resize(done);
  return true;
}

// One write to a handle that may only append: the record lands whole at the
// end of the file.
DWORD append(const std::wstring& name, std::string_view bytes) noexcept {
  unique_file file(::CreateFileW(name.c_str(), FILE_APPEND_DATA | SYNCHRONIZE, kShareAll, nullptr, OPEN_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return ::GetLastError();
  if (bytes.empty()) return ERROR_SUCCESS;
  DWORD written = 0;
  if (!::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
    return ::GetLastError();
  return written == bytes.size() ? ERROR_SUCCESS : ERROR_WRITE_FAULT;
}

bool path_exists(std::string_view path_ansi) {
  if (path_ansi.empty()) return false;
  const std::wstring path = text::to_wide(path_ansi);
  return !path.empty() && ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Clears the read-only attribute and deletes; *error is set on failure.
bool remove_file(const wchar_t* path, DWORD* error) noexcept {
  const DWORD attributes = ::GetFileAttributesW(path);
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY))
    ::SetFileAttributesW(path, attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
  if (::DeleteFileW(path)) return true;
  *error = ::GetLastError();
  return false;
}

std::wstring fold(std::wstring_view text) {
  std::wstring upper(text);
  if (!upper.empty()) ::CharUpperBuffW(upper.data(), static_cast<DWORD>(upper.size()));
  return upper;
}

// Deletes the selected files with the trace lines of the deleting functions.
// Returns the number that could not be deleted; *first_error is the first
// error met.
int delete_selected(const std::vector<std::wstring>& paths, DWORD* first_error) noexcept {
  int failures = 0;
  for (const std::wstring& path : paths) {
    trace::line(L"Deletion path: %ls\n", path.c_str());
    DWORD error = ERROR_SUCCESS;
    // A file that is already gone counts as deleted.
    if (remove_file(path.c_str(), &error) || error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
      trace::line("Deleted\n");
    } else {
      trace::line("Failed\n");
      if (failures++ == 0 && first_error) *first_error = error;
    }
  }
  return failures;
}

// Distinct live paths, in log order, that `select(path, creator, first)`
// accepts; `first` tells whether this is the path's first live record.
template <typename Select>
bool select_paths(std::vector<std::wstring>& selected, Select select) {
  const std::wstring name = log_name();
  if (name.empty()) return false;
  std::string text;
  if (!read_all(name, text)) return false;
  std::unordered_set<std::wstring> seen;
  for_each_record(text, [&](const Record& record) {
    if (!record.live() || record.path.empty() || record.path.size() > kMaxPath) return true;
    std::wstring path = text::to_wide(record.path);
    const bool first = seen.insert(fold(path)).second;
    if (select(path, record.creator, first) && first) selected.push_back(std::move(path));
    return true;
  });
  return true;
}

}  // namespace

int log_creation(const wchar_t* path, const wchar_t* creator) noexcept {
  if (path == nullptr || creator == nullptr) return 0;
  try {
    SYSTEMTIME now;
    ::GetSystemTime(&now);
    std::string record = format_record(now, path, creator);
    if (record.empty()) return 0;
    record += "\r\n";
    const std::wstring name = log_name();
    if (name.empty()) return 0;
    WriterLock lock;
    return append(name, record) == ERROR_SUCCESS ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

HRESULT is_logged(const wchar_t* path, const wchar_t* creator) noexcept {
  if (path == nullptr) return 1;
  try {
    const std::wstring name = log_name();
    if (name.empty()) return E_FAIL;
    unique_file file = open_for_reading(name);
    if (!file) return E_FAIL;
    PathSearch search(text::to_narrow(path));
    if (search.impossible()) return 1;
    const ScanBuffer scan_buffer;
    char* const buffer = scan_buffer.data();
    size_t kept = 0;
    while (true) {
      DWORD read = 0;
      if (!::ReadFile(file.get(), buffer + kept, static_cast<DWORD>(kChunk - kept), &read, nullptr)) return E_FAIL;
      if (read == 0) return 1;
      const size_t size = kept + read;
      if (const std::optional<Record> record = search.scan(std::string_view(buffer, size))) {
        if (creator == nullptr) return 0;
        if (record->creator.size() > kMaxCreator) return 1;
        return text::equals_ignore_case(text::to_wide(record->creator), creator) ? 0 : 1;
      }
      kept = search.keep();
      std::memmove(buffer, buffer + size - kept, kept);
    }
  } catch (...) {
    return E_FAIL;
  }
}

HRESULT compact() noexcept {
  try {
    const std::wstring name = log_name();
    if (name.empty()) return E_FAIL;
    WriterLock lock;
    std::string text;
    if (!read_all(name, text)) return E_FAIL;
    std::string kept;
    for_each_record(text, [&](const Record& found) {
      if (!found.live()) return true;
      Record record = found;
      if (swap_legacy_record(text.data(), text.size(), found)) record = *read_record(text, found.start);
      if (record.path.size() <= kMaxPath && path_exists(record.path))
        kept.append(text, record.start, record.end - record.start).append("\r\n");
      return true;
    });
    if (!::DeleteFileW(name.c_str())) return hresult_from_error(::GetLastError());
    DWORD error = ERROR_SUCCESS;
    for (int attempt = 0; attempt < kRecreateAttempts; ++attempt) {
      error = append(name, kept);
      if (error != ERROR_ACCESS_DENIED) break;
      ::Sleep(kRecreatePause);
    }
    return error == ERROR_SUCCESS ? S_OK : hresult_from_error(error);
  } catch (...) {
    return E_FAIL;
  }
}

HRESULT delete_logged(const wchar_t* path, const wchar_t* creator) noexcept {
  const HRESULT logged = is_logged(path, creator);
  if (logged != 0) return logged;
  DWORD error = ERROR_SUCCESS;
  if (!remove_file(path, &error)) {
    trace::line(L"DeleteLoggedFile failed to delete '%ls' (error %u)\n", path, static_cast<unsigned>(error));
    return hresult_from_error(error);
  }
  compact();
  return S_OK;
}

int delete_logged_files_of(const wchar_t* directory, int* failures, int flag) noexcept {
  if (failures) *failures = 0;
  if (directory == nullptr || *directory == L'\0') return 0;
  try {
    std::wstring_view root(directory);
    while (root.size() > 1 && root.back() == L'\\') root.remove_suffix(1);
    const std::wstring prefix = std::wstring(root) + L'\\';
    std::vector<std::wstring> selected;
    const bool read = select_paths(selected, [&](std::wstring_view path, std::string_view, bool) {
      if (text::equals_ignore_case(path, root)) return true;
      if (!text::starts_with_ignore_case(path, prefix)) return false;
      return flag != 0 || path.find(L'\\', prefix.size()) == std::wstring_view::npos;
    });
    if (!read) return 0;
    const int failed = delete_selected(selected, nullptr);
    compact();
    if (failures) *failures = failed;
    return 1;
  } catch (...) {
    return 0;
  }
}

HRESULT delete_files_logged_by(const wchar_t* creator, int* handled) noexcept {
  if (handled) *handled = 0;
  if (creator == nullptr) return E_POINTER;
  try {
    const std::wstring wanted(creator);
    std::vector<std::wstring> selected;
    const bool read = select_paths(selected, [&](std::wstring_view, std::string_view by, bool first) {
      return first && by.size() <= kMaxCreator && text::equals_ignore_case(text::to_wide(by), wanted);
    });
    if (!read) return E_FAIL;
    DWORD first_error = ERROR_SUCCESS;
    const int failed = delete_selected(selected, &first_error);
    compact();
    if (handled) *handled = static_cast<int>(selected.size()) - failed;
    return failed == 0 ? S_OK : hresult_from_error(first_error);
  } catch (...) {
    return E_FAIL;
  }
}

BOOL clear_log() noexcept {
  try {
    const std::wstring name = log_name();
    if (name.empty()) return FALSE;
    WriterLock lock;
    return ::DeleteFileW(name.c_str());
  } catch (...) {
    return FALSE;
  }
}

int clean_up_for_uninstall() noexcept {
  wchar_t program[MAX_PATH] = {};
  directories::program(program, MAX_PATH);
  int failures = 0;
  const bool files_handled = delete_logged_files_of(program, &failures, 1) != 0 && failures < 2;
  if (!clear_log()) return 0;
  wchar_t data[MAX_PATH] = {};
  if (directories::data(data, MAX_PATH) > 0) {
    const DWORD attributes = ::GetFileAttributesW(data);
    if (attributes != INVALID_FILE_ATTRIBUTES) {
      if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) return 0;
      if (!::RemoveDirectoryW(data)) return 0;
    }
  }
  return files_handled ? 1 : 0;
}

}  // namespace mvsup::creation_log

using namespace mvsup;

extern "C" {

int WINAPI LogFileCreation(LPCWSTR path, LPCWSTR creator) {
  trace::CallScope scope("LogFileCreation");
  return scope.res(creation_log::log_creation(path, creator));
}

HRESULT WINAPI GetIsLoggedFile(LPCWSTR path, LPCWSTR creator) {
  trace::CallScope scope("GetIsLoggedFile");
  return scope.hr(creation_log::is_logged(path, creator));
}

HRESULT WINAPI DeleteLoggedFile(LPCWSTR path, LPCWSTR creator) {
  trace::CallScope scope("DeleteLoggedFile");
  return scope.hr(creation_log::delete_logged(path, creator));
}

HRESULT WINAPI UpdateLogFile(void) {
  trace::CallScope scope("UpdateLogFile");
  return scope.hr(creation_log::compact());
}

int WINAPI DeleteLoggedFilesOf(LPCWSTR directory, int* failures, int flag) {
  trace::CallScope scope("DeleteLoggedFilesOf");
  return scope.res(creation_log::delete_logged_files_of(directory, failures, flag));
}

HRESULT WINAPI DeleteFilesLoggedBy(LPCWSTR creator, int* handled) {
  trace::CallScope scope("DeleteFilesLoggedBy");
  return scope.hr(creation_log::delete_files_logged_by(creator, handled));
}

BOOL WINAPI ClearFileCreationLog(void) {
  trace::CallScope scope("ClearFileCreationLog");
  return scope.res(creation_log::clear_log());
}

int WINAPI CleanUpForUninstall(void) {
  trace::CallScope scope("CleanUpForUninstall");
  return scope.res(creation_log::clean_up_for_uninstall());
}

}  // extern "C"
