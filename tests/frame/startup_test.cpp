// Process attach: the mode word, the user registry root, the limits and the
// resource module, read from a registry prepared before the library loads.
#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cwchar>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <thread>

#include "common/paths.h"
#include "common/registry_sandbox.h"
#include "frame/library_under_test.h"
#include "common/trace_log.h"
#include "resources/resource_ids.h"

namespace mvsup::test {
namespace {

class Startup : public RegistrySandbox {};

// Every bit but the reload query, which would re-read the settings first.
constexpr DWORD kAllBits = ~0x00100000u;

TEST_F(Startup, EmptyRegistryGivesTheDefaults) {
  TraceLogFolder log(0x10002);  // active, level 2: shows the InitLib line
  LibraryUnderTest lib;
  EXPECT_EQ(static_cast<DWORD>(MVSUP_EXPORT(lib, GetMvSupMode)(kAllBits)), 0x80000010u);
  EXPECT_EQ(MVSUP_EXPORT(lib, GetRootUserRegistryKey)(), HKEY_CURRENT_USER);
  lib.unload();
  const std::string text = log.read_all();
  EXPECT_NE(text.find("InitLib: Mode=80000010, UserKey=80000001, MaxPath=210, MaxItems=4096\n"), std::string::npos)
      << text;
  // Start-up only reads: nothing was written to the registry.
  EXPECT_FALSE(key_exists(HKEY_CURRENT_USER, kClientKey));
}

TEST_F(Startup, LimitsComeFromTheirSettings) {
  set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Work", L"C:\\" + std::wstring(197, L'w'));
  set_dword(HKEY_CURRENT_USER, client_path(L"MvNsx\\Settings"), L"MaxFolderItemCount", 123);
  TraceLogFolder log(0x10002);
  { LibraryUnderTest lib; }
  EXPECT_NE(log.read_all().find("MaxPath=10, MaxItems=123\n"), std::string::npos);
}

TEST_F(Startup, ALongWorkDirectoryGivesANegativeMaxPath) {
  set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Work", L"C:\\" + std::wstring(247, L'w'));
  TraceLogFolder log(0x10002);
  { LibraryUnderTest lib; }
  EXPECT_NE(log.read_all().find("MaxPath=-40,"), std::string::npos);
}

TEST_F(Startup, EveryModeBitFromItsOwnSource) {
  set_dword(HKEY_LOCAL_MACHINE, kClientKey, L"NsxAsDrive", 1);
  set_dword(HKEY_CURRENT_USER, kClientKey, L"NoRoaming", 1);
  set_dword(HKEY_CURRENT_USER, kClientKey, L"LiteSDK", 1);
  const std::wstring mvsup = client_path(L"MVSUP\\Settings");
  const std::wstring nsx = client_path(L"MvNsx\\Settings");
  set_dword(HKEY_CURRENT_USER, mvsup, L"PrivateLogDir", 1);
  set_dword(HKEY_CURRENT_USER, mvsup, L"IconFromSHFileInfo", 0);
  set_dword(HKEY_CURRENT_USER, mvsup, L"UseCryptor", 1);
  set_dword(HKEY_CURRENT_USER, mvsup, L"HalcyoDocClassId", 1);
  set_dword(HKEY_CURRENT_USER, nsx, L"RemoteFileNameAsLocalFileName", 1);
  set_dword(HKEY_CURRENT_USER, nsx, L"PrependHandleToFileName", 1);
  set_dword(HKEY_CURRENT_USER, nsx, L"EnableMacro", 1);
  // Read from the wrong place, these must not count.
  set_dword(HKEY_CURRENT_USER, kClientKey, L"NsxAsDrive", 0);
  set_dword(HKEY_LOCAL_MACHINE, kClientKey, L"LiteSDK", 1);
  set_string(HKEY_LOCAL_MACHINE, kClientKey, L"RunAsService", L"1");  // not a DWORD

  LibraryUnderTest lib;
  EXPECT_EQ(static_cast<DWORD>(MVSUP_EXPORT(lib, GetMvSupMode)(kAllBits)),
            0x80000000u | 0x40000000u | 0x01000000u | 0x00010000u | 0x1ECu);
  EXPECT_EQ(MVSUP_EXPORT(lib, GetMvSupMode)(0x40000008), 0x40000008);
  EXPECT_EQ(MVSUP_EXPORT(lib, GetRootUserRegistryKey)(), HKEY_CURRENT_USER);
}

TEST_F(Startup, ServiceModeMovesEverySettingToTheMachine) {
  set_dword(HKEY_LOCAL_MACHINE, kClientKey, L"RunAsService", 1);
  set_dword(HKEY_LOCAL_MACHINE, client_path(L"MVSUP\\Settings"), L"UseCryptor", 1);
  set_dword(HKEY_CURRENT_USER, client_path(L"MVSUP\\Settings"), L"PrivateLogDir", 1);
  LibraryUnderTest lib;
  EXPECT_EQ(MVSUP_EXPORT(lib, GetRootUserRegistryKey)(), HKEY_LOCAL_MACHINE);
  // The component settings of the mode word came from HKLM, not HKCU.
  EXPECT_EQ(static_cast<DWORD>(MVSUP_EXPORT(lib, GetMvSupMode)(0xFF)), 0x91u);

  const std::wstring component = L"MvNsx\\Settings";
  EXPECT_EQ(MVSUP_EXPORT(lib, SetDwordSetting)(component.c_str(), L"D", 5), 0);
  EXPECT_EQ(MVSUP_EXPORT(lib, SetStringSetting)(component.c_str(), L"S", L"machine"), 0);
  const BYTE blob[] = {1, 2};
  EXPECT_EQ(MVSUP_EXPORT(lib, SetBinarySetting)(component.c_str(), L"B", blob, 2), 0);
  EXPECT_EQ(read_value(HKEY_LOCAL_MACHINE, client_path(component), L"D").as_dword(), 5u);
  EXPECT_EQ(read_value(HKEY_LOCAL_MACHINE, client_path(component), L"S").as_string(), L"machine");
  EXPECT_TRUE(value_exists(HKEY_LOCAL_MACHINE, client_path(component), L"B"));
  EXPECT_FALSE(key_exists(HKEY_CURRENT_USER, client_path(component)));

  set_dword(HKEY_CURRENT_USER, client_path(component), L"D", 9);
  EXPECT_EQ(MVSUP_EXPORT(lib, GetDwordSetting)(component.c_str(), L"D", 0), 5u);
  wchar_t buffer[16];
  EXPECT_EQ(MVSUP_EXPORT(lib, GetStringSetting)(component.c_str(), L"S", nullptr, buffer, 16), 0);
  EXPECT_STREQ(buffer, L"machine");
  EXPECT_TRUE(MVSUP_EXPORT(lib, SettingsKeyExists)(component.c_str(), nullptr));
  EXPECT_EQ(MVSUP_EXPORT(lib, DeleteSetting)(component.c_str(), L"D"), 0);
  EXPECT_FALSE(value_exists(HKEY_LOCAL_MACHINE, client_path(component), L"D"));
  EXPECT_TRUE(value_exists(HKEY_CURRENT_USER, client_path(component), L"D"));
  EXPECT_EQ(MVSUP_EXPORT(lib, DeleteSettingsKey)(L"..", L"MvNsx"), 0);
  EXPECT_FALSE(key_exists(HKEY_LOCAL_MACHINE, client_path(L"MvNsx")));
  EXPECT_TRUE(key_exists(HKEY_CURRENT_USER, client_path(L"MvNsx")));
}

TEST_F(Startup, SetModeSetsValueBitsEvenOutsideTheMask) {
  LibraryUnderTest lib;
  auto set_mode = MVSUP_EXPORT(lib, SetMvSupMode);
  auto get_mode = MVSUP_EXPORT(lib, GetMvSupMode);
  EXPECT_EQ(static_cast<DWORD>(set_mode(0x8, 0)), 0x80000010u);
  EXPECT_EQ(static_cast<DWORD>(get_mode(kAllBits)), 0x80000018u);
  // Only bits in the mask can be cleared.
  EXPECT_EQ(static_cast<DWORD>(set_mode(0, 0x10)), 0x80000018u);
  EXPECT_EQ(static_cast<DWORD>(get_mode(kAllBits)), 0x80000008u);
  // The root switch: value 0 with mask 2 chooses the machine...
  set_mode(0, 0x2);
  EXPECT_EQ(MVSUP_EXPORT(lib, GetRootUserRegistryKey)(), HKEY_LOCAL_MACHINE);
  EXPECT_EQ(get_mode(0x2), 0);
  // ...value 2 chooses the user again and sets bit 2 of the mode word.
  set_mode(0x2, 0x2);
  EXPECT_EQ(MVSUP_EXPORT(lib, GetRootUserRegistryKey)(), HKEY_CURRENT_USER);
  EXPECT_EQ(get_mode(0x2), 0x2);
  // Nothing was persisted by any of this.
  EXPECT_FALSE(key_exists(HKEY_CURRENT_USER, kClientKey));
}

TEST_F(Startup, ReloadDropsUnpersistedBitsAndKeepsPersistedOnes) {
  LibraryUnderTest lib;
  auto set_mode = MVSUP_EXPORT(lib, SetMvSupMode);
  auto get_mode = MVSUP_EXPORT(lib, GetMvSupMode);
  set_mode(0x40000004 | 0x100, 0x40000004);
  EXPECT_EQ(read_value(HKEY_CURRENT_USER, kClientKey, L"NoRoaming").as_dword(), 1u);
  EXPECT_EQ(read_value(HKEY_CURRENT_USER, kClientKey, L"LiteSDK").as_dword(), 1u);
  EXPECT_EQ(static_cast<DWORD>(get_mode(kAllBits)), 0xC0000114u);
  // The reload bit is never stored and is answered as 0.
  EXPECT_EQ(get_mode(0x00100000), 0);
  EXPECT_EQ(static_cast<DWORD>(get_mode(kAllBits)), 0xC0000014u);
  // Clearing through the mask persists 0.
  set_mode(0, 0x4);
  EXPECT_EQ(read_value(HKEY_CURRENT_USER, kClientKey, L"NoRoaming").as_dword(), 0u);
  EXPECT_EQ(static_cast<DWORD>(get_mode(0x00100004)), 0u);
}

// Another thread reading the mode word or the type 3 word while the
// settings are read again sees the old word or the new one, never a word
// that is still being put together.
TEST_F(Startup, ReloadPublishesTheModeWordAndClassWordWhole) {
  const std::wstring mvsup = client_path(L"MVSUP\\Settings");
  set_dword(HKEY_CURRENT_USER, mvsup, L"UseCryptor", 1);
  set_dword(HKEY_CURRENT_USER, mvsup, L"HalcyoDocClassId", 1);
  set_dword(HKEY_CURRENT_USER, client_path(L"MvNsx\\Settings"), L"EnableMacro", 1);
  set_dword(HKEY_CURRENT_USER, kClientKey, L"LiteSDK", 1);
  LibraryUnderTest lib;
  auto get_mode = MVSUP_EXPORT(lib, GetMvSupMode);
  auto type_word = MVSUP_EXPORT(lib, GetMvxItemTypeAsString);
  const LONG expected = get_mode(kAllBits);
  ASSERT_EQ(static_cast<DWORD>(expected), 0xC1000190u);
  ASSERT_STREQ(type_word(3), L"Document");

  struct Reader {
    decltype(get_mode) mode;
    decltype(type_word) word;
    LONG expected;
    std::atomic<bool> stop{false};
    std::atomic<long> reads{0};
    std::atomic<long> torn_modes{0};
    std::atomic<long> torn_words{0};
  } reader{get_mode, type_word, expected};
  std::thread thread([&reader] {
    while (!reader.stop.load()) {
      if (reader.mode(kAllBits) != reader.expected) ++reader.torn_modes;
      if (std::wcscmp(reader.word(3), L"Document") != 0) ++reader.torn_words;
      ++reader.reads;
    }
  });
  while (reader.reads.load() == 0) std::this_thread::yield();
  const long before = reader.reads.load();
  for (int i = 0; i < 200; ++i) get_mode(0x00100000);
  const long during = reader.reads.load() - before;
  reader.stop = true;
  thread.join();
  EXPECT_GT(during, 0) << "the reader never ran while the settings were read";
  EXPECT_EQ(reader.torn_modes.load(), 0) << "of " << reader.reads.load() << " reads";
  EXPECT_EQ(reader.torn_words.load(), 0) << "of " << reader.reads.load() << " reads";
}

TEST_F(Startup, GermanSatelliteBecomesTheResourceModuleAndIsFreedAtDetach) {
  const std::wstring bin = exe_directory();
  const std::wstring satellite = bin + L"\\0407\\SDKSatellite.dll";
  set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Programs", bin);
  set_dword(HKEY_CURRENT_USER, client_path(L"MvAxess\\Settings"), L"LangId", 0x0407);
  {
    LibraryUnderTest lib;
    HMODULE module = GetModuleHandleW(satellite.c_str());
    ASSERT_NE(module, nullptr);
    wchar_t text[64] = {};
    ASSERT_GT(LoadStringW(module, IDS_ITEMTYPE_DOCUMENT, text, 64), 0);
    EXPECT_STREQ(text, L"Dokument");
  }
  EXPECT_EQ(GetModuleHandleW(satellite.c_str()), nullptr);

  // A language without a satellite folder leaves the library its own resources.
  set_dword(HKEY_CURRENT_USER, client_path(L"MvAxess\\Settings"), L"LangId", 0x040C);
  LibraryUnderTest lib;
  EXPECT_EQ(GetModuleHandleW(satellite.c_str()), nullptr);
}

}  // namespace
}  // namespace mvsup::test
