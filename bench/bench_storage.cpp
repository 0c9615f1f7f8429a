// The file-creation log look-up: GetIsLoggedFile on a log of 100,000
// records against reading the same file's bytes once with ReadFile.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "bench.h"

namespace mvsup::bench {
namespace {

constexpr const wchar_t* kLocationKey = L"Software\\Corvell\\Mervane Client\\Location";
constexpr int kRecords = 100000;
const char* const kCreators[] = {"MvNsx", "MvAxess", "MvOdma", "WordAddIn"};

std::string record_path(int i) {
  char path[160];
  std::snprintf(path, sizeof(path), "C:\\Users\\someone\\Documents\\Mervane\\Work\\Folder%03d\\Document %06d.docx",
                i % 997, i);
  return path;
}

__attribute__((noinline)) DWORD read_once(const std::wstring& path, std::vector<char>& buffer) {
  HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                            nullptr, OPEN_EXISTING, 0, nullptr);
  DWORD read = 0;
  ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &read, nullptr);
  CloseHandle(file);
  return read;
}

void run() {
  wchar_t temp[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, temp);
  const std::wstring directory = std::wstring(temp) + L"mvsup-bench-log";
  CreateDirectoryW(directory.c_str(), nullptr);
  const std::wstring log = directory + L"\\MvFileCreation.log";

  // The log directory is the data directory; the previous setting comes back.
  wchar_t previous[1024] = {};
  const bool had_data = GetRegistryString(HKEY_CURRENT_USER, kLocationKey, L"Data", previous, 1024) == ERROR_SUCCESS;
  SetRegistryString(HKEY_CURRENT_USER, kLocationKey, L"Data", directory.c_str());
  SetMvSupMode(0, MVSUP_MODE_LITESDK | MVSUP_MODE_PRIVATELOGDIR);

  std::string text;
  for (int i = 0; i < kRecords; ++i) {
    char time[32];
    std::snprintf(time, sizeof(time), "%d/%d %d:%d:%d", 1 + i % 12, 1 + i % 28, i % 24, i % 60, (i / 60) % 60);
    text += std::string("<<+> <TIME=") + time + "> <PATH=" + record_path(i) + "> <CREATER=" + kCreators[i % 4] +
            ">>\r\n";
  }
  HANDLE file = CreateFileW(log.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  DWORD written = 0;
  WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  CloseHandle(file);

  std::vector<char> buffer(text.size() + 1);
  const std::string last = record_path(kRecords - 1);
  const std::wstring found(last.begin(), last.end());
  const std::wstring missing = L"C:\\Users\\someone\\Documents\\Mervane\\Work\\Folder001\\Document 999999.docx";
  if (GetIsLoggedFile(found.c_str(), L"WORDADDIN") != 0 || GetIsLoggedFile(missing.c_str(), nullptr) != 1)
    std::printf("  the look-up gave a wrong answer\n");

  std::printf("  log of %d records, %zu bytes; best of alternating rounds\n", kRecords, text.size());
  const auto compare = [&](const char* what, const std::wstring& path) {
    double lookup = 1e30, peer = 1e30;
    for (int round = 0; round < 15; ++round) {
      lookup = std::min(lookup, seconds_per_call([&] { keep(GetIsLoggedFile(path.c_str(), nullptr)); }, 10, 1));
      peer = std::min(peer, seconds_per_call([&] { keep(read_once(log, buffer)); }, 10, 1));
    }
    std::printf("  %-44s %8.3f ms  ReadFile once %8.3f ms  ratio %.2f\n", what, lookup * 1e3, peer * 1e3,
                lookup / peer);
  };
  compare("GetIsLoggedFile, path not logged (full scan)", missing);
  compare("GetIsLoggedFile, path of the last record", found);
  std::printf("  goal: ratio at most 2\n");

  DeleteFileW(log.c_str());
  RemoveDirectoryW(directory.c_str());
  if (had_data)
    SetRegistryString(HKEY_CURRENT_USER, kLocationKey, L"Data", previous);
  else
    DeleteRegistryValue(HKEY_CURRENT_USER, kLocationKey, L"Data");
}

const BenchRegistration kRegistration("storage", run);

}  // namespace
}  // namespace mvsup::bench
