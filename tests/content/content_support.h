// Shared helpers of the content-type tests: the machine's MIME database as
// the registry holds it, read without the library, and a fixture that empties
// it for a test and puts it back afterwards.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "common/registry_sandbox.h"

namespace mvsup::test {

// HKEY_CLASSES_ROOT shows the machine's classes under Wine, so the database
// is written where HKEY_CLASSES_ROOT reads it from.
inline constexpr const wchar_t* kDatabaseClassesPath = L"MIME\\Database\\Content Type";
inline constexpr const wchar_t* kDatabaseMachinePath = L"Software\\Classes\\MIME\\Database\\Content Type";

struct DatabaseEntry {
  std::wstring type;       // the subkey's name
  std::wstring extension;  // its "Extension" string; empty when it has none
};

// The database's subkeys in the registry's index order.
inline std::vector<DatabaseEntry> read_database() {
  std::vector<DatabaseEntry> entries;
  HKEY database = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, kDatabaseClassesPath, 0, KEY_READ, &database) != ERROR_SUCCESS) return entries;
  for (DWORD index = 0;; ++index) {
    wchar_t name[256];
    DWORD length = 256;
    if (RegEnumKeyExW(database, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    wchar_t extension[300] = {};
    DWORD size = sizeof(extension) - sizeof(wchar_t);
    if (RegGetValueW(database, name, L"Extension", RRF_RT_REG_SZ, nullptr, extension, &size) != ERROR_SUCCESS)
      extension[0] = L'\0';
    entries.push_back({name, extension});
  }
  RegCloseKey(database);
  return entries;
}

// A test that starts with no MIME database at all; it may add entries.
class MimeDatabase : public ::testing::Test {
 protected:
  void SetUp() override {
    saved_ = std::make_unique<SavedKey>(HKEY_LOCAL_MACHINE, kDatabaseMachinePath);
  }
  void TearDown() override { saved_.reset(); }

  static void add_type(const std::wstring& type, const std::wstring& extension) {
    set_string(HKEY_LOCAL_MACHINE, std::wstring(kDatabaseMachinePath) + L"\\" + type, L"Extension", extension);
  }
  static void remove_type(const std::wstring& type) {
    delete_tree(HKEY_LOCAL_MACHINE, std::wstring(kDatabaseMachinePath) + L"\\" + type);
  }

 private:
  std::unique_ptr<SavedKey> saved_;
};

// Results as strings, for comparisons that print well.
inline std::wstring mime_of(const std::wstring& file_name) {
  wchar_t buffer[300];
  GetMimeTypeFromFileName(file_name.c_str(), buffer, 300);
  return buffer;
}

struct ExtensionResult {
  HRESULT hr;
  std::wstring extension;
  bool operator==(const ExtensionResult&) const = default;
};
inline void PrintTo(const ExtensionResult& result, std::ostream* out) {
  *out << "{0x" << std::hex << static_cast<unsigned long>(result.hr) << std::dec << ", "
       << ::testing::PrintToString(result.extension) << "}";
}
inline ExtensionResult extension_of(const std::wstring& mime_type) {
  wchar_t buffer[300];
  // A sentinel that shows whether the buffer was emptied.
  std::fill(std::begin(buffer), std::end(buffer), L'?');
  buffer[299] = L'\0';
  const HRESULT hr = GetFileExtFromMimeType2(mime_type.c_str(), buffer, 300);
  return {hr, buffer};
}

}  // namespace mvsup::test
