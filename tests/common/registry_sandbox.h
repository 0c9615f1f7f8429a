// Registry isolation for tests: Software\Corvell under HKCU and HKLM is
// saved, wiped before each test and restored afterwards, so tests never
// depend on each other's order.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace mvsup::test {

// Saves both trees on construction (and wipes them), restores them on
// destruction.
class RegistrySnapshot {
 public:
  RegistrySnapshot();
  ~RegistrySnapshot();
  RegistrySnapshot(const RegistrySnapshot&) = delete;
  RegistrySnapshot& operator=(const RegistrySnapshot&) = delete;

 private:
  friend class SavedKey;
  struct Tree;
  std::unique_ptr<Tree> user_;
  std::unique_ptr<Tree> machine_;
};

// Saves one key with its whole tree and removes it; puts it back as it was
// (or leaves it absent) on destruction.
class SavedKey {
 public:
  SavedKey(HKEY root, std::wstring path);
  ~SavedKey();
  SavedKey(const SavedKey&) = delete;
  SavedKey& operator=(const SavedKey&) = delete;

 private:
  HKEY root_;
  std::wstring path_;
  std::unique_ptr<RegistrySnapshot::Tree> tree_;
};

class RegistrySandbox : public ::testing::Test {
 protected:
  void SetUp() override { snapshot_ = std::make_unique<RegistrySnapshot>(); }
  void TearDown() override { snapshot_.reset(); }

 private:
  std::unique_ptr<RegistrySnapshot> snapshot_;
};

// A sandbox for tests that mean something under one ANSI code page only: a
// run of their own sets that code page (cmake/MvSupTesting.cmake); under
// any other they skip.
template <UINT CodePage>
class CodePageSandbox : public RegistrySandbox {
 protected:
  void SetUp() override {
    if (GetACP() != CodePage) GTEST_SKIP() << "ANSI code page " << GetACP() << ", not " << CodePage;
    RegistrySandbox::SetUp();
  }
};

// Raw registry access for preparing and checking state, independent of the
// library under test.
inline constexpr const wchar_t* kClientKey = L"Software\\Corvell\\Mervane Client";
std::wstring client_path(const std::wstring& component);  // kClientKey + "\" + component

void set_dword(HKEY root, const std::wstring& path, const wchar_t* name, DWORD value);
void set_string(HKEY root, const std::wstring& path, const wchar_t* name, const std::wstring& value,
                DWORD type = REG_SZ);
void set_binary(HKEY root, const std::wstring& path, const wchar_t* name, const void* data, DWORD size);
bool key_exists(HKEY root, const std::wstring& path);
bool value_exists(HKEY root, const std::wstring& path, const wchar_t* name);
// The value's type and data; type 0 when missing.
struct RawValue {
  DWORD type = 0;
  std::basic_string<BYTE> data;
  DWORD as_dword() const;
  std::wstring as_string() const;
};
RawValue read_value(HKEY root, const std::wstring& path, const wchar_t* name);
void delete_tree(HKEY root, const std::wstring& path);

}  // namespace mvsup::test
