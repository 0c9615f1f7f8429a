// GetMimeTypeFromFileName walks the machine's MIME database on every call.
// Measured against the table-only answer (the library's own table search,
// no registry at all) and against the same walk made with raw registry
// calls, on the database this prefix has and on one of the size a Windows
// desktop has, with the answer first, last and missing.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "bench.h"
#include "content/content_tables.h"

namespace mvsup::bench {
namespace {

constexpr const wchar_t* kDatabase = L"MIME\\Database\\Content Type";
constexpr const wchar_t* kMachineDatabase = L"Software\\Classes\\MIME\\Database\\Content Type";
constexpr int kSyntheticTypes = 200;

std::wstring synthetic_type(int i) { return L"application/x-mvsup-bench-" + std::to_wstring(1000 + i); }
std::wstring synthetic_extension(int i) { return L".b" + std::to_wstring(1000 + i); }

// The walk as plain registry calls: the floor for any walk in index order.
std::wstring raw_walk(const std::wstring& extension) {
  HKEY database = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, kDatabase, 0, KEY_READ, &database) != ERROR_SUCCESS) return {};
  std::wstring found;
  for (DWORD index = 0; found.empty(); ++index) {
    wchar_t name[256];
    DWORD length = 256;
    if (RegEnumKeyExW(database, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    HKEY type = nullptr;
    if (RegOpenKeyExW(database, name, 0, KEY_READ, &type) != ERROR_SUCCESS) break;
    wchar_t value[129];
    DWORD size = 256;
    if (RegQueryValueExW(type, L"Extension", nullptr, nullptr, reinterpret_cast<BYTE*>(value), &size) ==
            ERROR_SUCCESS &&
        _wcsicmp(std::wstring(value, size / 2).c_str(), extension.c_str()) == 0)
      found = name;
    RegCloseKey(type);
  }
  RegCloseKey(database);
  return found;
}

DWORD database_size() {
  HKEY database = nullptr;
  DWORD count = 0;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, kDatabase, 0, KEY_READ, &database) != ERROR_SUCCESS) return 0;
  RegQueryInfoKeyW(database, nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                   nullptr);
  RegCloseKey(database);
  return count;
}

void row(const char* what, const std::wstring& file_name, const std::wstring& extension, int calls) {
  auto library_call = [&] {
    wchar_t buffer[256];
    keep(GetMimeTypeFromFileName(file_name.c_str(), buffer, 256));
  };
  auto raw_call = [&] {
    std::wstring found = raw_walk(extension);
    if (found.empty()) found = content::table_mime_type_for_extension(extension);
    keep(found);
  };
  // Alternating rounds, best of each: the machine's load changes by the second.
  double library = 1e30, raw = 1e30;
  for (int round = 0; round < 9; ++round) {
    library = std::min(library, seconds_per_call(library_call, calls, 1));
    raw = std::min(raw, seconds_per_call(raw_call, calls, 1));
  }
  const double table = seconds_per_call(
      [&] { keep(content::table_mime_type_for_extension(extension)); }, 100000);
  wchar_t answer[256];
  GetMimeTypeFromFileName(file_name.c_str(), answer, 256);
  std::printf("  %-34s %9.2f us   raw walk %9.2f us (%5.2fx)   table only %7.3f us   walk/table %8.1fx   -> %ls\n",
              what, library * 1e6, raw * 1e6, library / raw, table * 1e6, library / table, answer);
}

void run() {
  const DWORD real_size = database_size();
  std::printf("  this prefix's MIME database: %lu types\n", static_cast<unsigned long>(real_size));
  row("this prefix's database, .xls", L"C:\\docs\\report.xls", L".xls", 2000);
  row("this prefix's database, .eml", L"C:\\docs\\mail.eml", L".eml", 2000);

  // A database of desktop size, made of types no real database has; only
  // these are removed again.
  HKEY created = nullptr;
  DWORD disposition = 0;
  if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, kMachineDatabase, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &created,
                      &disposition) != ERROR_SUCCESS) {
    std::printf("  cannot write the MIME database here: the desktop-size rows are skipped\n");
    return;
  }
  for (int i = 0; i < kSyntheticTypes; ++i) {
    const std::wstring extension = synthetic_extension(i);
    RegSetKeyValueW(created, synthetic_type(i).c_str(), L"Extension", REG_SZ, extension.c_str(),
                    static_cast<DWORD>((extension.size() + 1) * sizeof(wchar_t)));
  }
  std::printf("  with %d more types (%lu in all):\n", kSyntheticTypes, static_cast<unsigned long>(database_size()));
  row("first type answers", L"C:\\docs\\a" + synthetic_extension(0), synthetic_extension(0), 200);
  row("middle type answers", L"C:\\docs\\a" + synthetic_extension(kSyntheticTypes / 2),
      synthetic_extension(kSyntheticTypes / 2), 10);
  row("last type answers", L"C:\\docs\\a" + synthetic_extension(kSyntheticTypes - 1),
      synthetic_extension(kSyntheticTypes - 1), 5);
  row("no type answers, table does", L"C:\\docs\\report.xls", L".xls", 5);

  for (int i = 0; i < kSyntheticTypes; ++i) RegDeleteKeyW(created, synthetic_type(i).c_str());
  RegCloseKey(created);
  if (disposition == REG_CREATED_NEW_KEY) RegDeleteKeyW(HKEY_LOCAL_MACHINE, kMachineDatabase);
}

const BenchRegistration kContent("content", run);

}  // namespace
}  // namespace mvsup::bench
