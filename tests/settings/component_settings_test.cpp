// Component settings: the registry helpers relative to the client key under
// the user registry root.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "MvSup2u.h"
#include "common/guard_page.h"
#include "common/registry_sandbox.h"

namespace mvsup::test {
namespace {

class ComponentSettings : public RegistrySandbox {};

const std::wstring kNsx = client_path(L"MvNsx\\Settings");

TEST_F(ComponentSettings, DwordSettingsFallBackToTheDefaultOnAnyError) {
  EXPECT_EQ(GetDwordSetting(L"MvNsx\\Settings", L"MaxFolderItemCount", 4096), 4096u);
  set_string(HKEY_CURRENT_USER, kNsx, L"MaxFolderItemCount", L"12");
  EXPECT_EQ(GetDwordSetting(L"MvNsx\\Settings", L"MaxFolderItemCount", 4096), 4096u);
  EXPECT_EQ(SetDwordSetting(L"MvNsx\\Settings", L"MaxFolderItemCount", 12), 0);
  EXPECT_EQ(GetDwordSetting(L"MvNsx\\Settings", L"MaxFolderItemCount", 4096), 12u);
  EXPECT_EQ(read_value(HKEY_CURRENT_USER, kNsx, L"MaxFolderItemCount").type, static_cast<DWORD>(REG_DWORD));
  // The composed path is the client key plus the component key.
  EXPECT_EQ(SetDwordSetting(L"A\\B", L"V", 1), 0);
  EXPECT_TRUE(value_exists(HKEY_CURRENT_USER, L"Software\\Corvell\\Mervane Client\\A\\B", L"V"));
  EXPECT_EQ(GetDwordSetting(nullptr, L"V", 77), 77u);
  EXPECT_EQ(SetDwordSetting(nullptr, L"V", 1), ERROR_INVALID_PARAMETER);
}

TEST_F(ComponentSettings, StringSettingsWideAndNarrow) {
  wchar_t wide[16];
  EXPECT_EQ(GetStringSetting(L"MvNsx\\Settings", L"S", L"default", wide, 16), ERROR_FILE_NOT_FOUND);
  EXPECT_STREQ(wide, L"default");
  EXPECT_EQ(SetStringSetting(L"MvNsx\\Settings", L"S", L"caf\u00e9 \u20ac"), 0);
  EXPECT_EQ(GetStringSetting(L"MvNsx\\Settings", L"S", L"default", wide, 16), 0);
  EXPECT_STREQ(wide, L"caf\u00e9 \u20ac");

  // Narrow: converted to the ANSI code page (1252 here), cut to the capacity.
  ASSERT_EQ(GetACP(), 1252u);
  char narrow[16];
  memset(narrow, 0x7f, sizeof(narrow));
  EXPECT_EQ(GetStringSettingA(L"MvNsx\\Settings", L"S", nullptr, narrow, 16), 0);
  EXPECT_STREQ(narrow, "caf\xe9 \x80");
  // The wide read has two characters of headroom over the narrow capacity...
  memset(narrow, 0x7f, sizeof(narrow));
  EXPECT_EQ(GetStringSettingA(L"MvNsx\\Settings", L"S", nullptr, narrow, 5), 0);
  EXPECT_STREQ(narrow, "caf\xe9");
  EXPECT_EQ(narrow[5], 0x7f);
  // ...and a value longer than that does not fit at all.
  EXPECT_EQ(GetStringSettingA(L"MvNsx\\Settings", L"S", L"x", narrow, 4), ERROR_MORE_DATA);
  EXPECT_STREQ(narrow, "x");
  EXPECT_EQ(GetStringSettingA(L"MvNsx\\Settings", L"Missing", L"d\u00e9faut", narrow, 16), ERROR_FILE_NOT_FOUND);
  EXPECT_STREQ(narrow, "d\xe9" "faut");
}

// Run by settings.ansi_code_page_932 under the Japanese code page; the
// default run (1252) skips them.
class AnsiCodePage932 : public CodePageSandbox<932> {};

// Double-byte characters (93 FA, 96 7B) are dropped whole when they do not
// fit, never cut after their lead byte.
TEST_F(AnsiCodePage932, NarrowSettingsAreCutBetweenCharacters) {
  ASSERT_EQ(SetStringSetting(L"MvNsx\\Settings", L"S", L"a\u65e5\u672c"), 0);
  const struct {
    DWORD capacity;
    const char* expected;
  } cases[] = {{2, "a"}, {3, "a"}, {4, "a\x93\xfa"}, {5, "a\x93\xfa"}, {6, "a\x93\xfa\x96\x7b"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.capacity);
    GuardedBuffer narrow(c.capacity);
    std::memset(narrow.data(), 0x7f, c.capacity);
    EXPECT_EQ(GetStringSettingA(L"MvNsx\\Settings", L"S", nullptr, narrow.as<char>(), c.capacity), 0);
    EXPECT_STREQ(narrow.as<char>(), c.expected);
    for (size_t i = std::strlen(c.expected) + 1; i < c.capacity; ++i) EXPECT_EQ(narrow.data()[i], 0x7f) << i;
  }
  char narrow[4];
  EXPECT_EQ(GetStringSettingA(L"MvNsx\\Settings", L"Missing", L"\u672c\u65e5", narrow, 4), ERROR_FILE_NOT_FOUND);
  EXPECT_STREQ(narrow, "\x96\x7b");
}

TEST_F(ComponentSettings, ExpandedStringLeavesTheBufferAloneOnError) {
  wchar_t buffer[64];
  wcscpy(buffer, L"untouched");
  EXPECT_EQ(GetExpandedStringSetting(L"MvNsx\\Settings", L"Missing", L"default", buffer, 64), ERROR_FILE_NOT_FOUND);
  EXPECT_STREQ(buffer, L"untouched");

  SetEnvironmentVariableW(L"MVSUP_HOME", L"C:\\Home");
  set_string(HKEY_CURRENT_USER, kNsx, L"Dir", L"%MVSUP_HOME%\\docs");
  EXPECT_EQ(GetExpandedStringSetting(L"MvNsx\\Settings", L"Dir", nullptr, buffer, 64), 0);
  EXPECT_STREQ(buffer, L"C:\\Home\\docs");
  // Values of 260 characters or more do not fit the function's own buffer.
  set_string(HKEY_CURRENT_USER, kNsx, L"Long", std::wstring(300, L'x'));
  wcscpy(buffer, L"untouched");
  EXPECT_EQ(GetExpandedStringSetting(L"MvNsx\\Settings", L"Long", nullptr, buffer, 64), ERROR_MORE_DATA);
  EXPECT_STREQ(buffer, L"untouched");
}

TEST_F(ComponentSettings, BinarySettings) {
  const BYTE data[] = {0xde, 0xad, 0xbe, 0xef};
  EXPECT_EQ(SetBinarySetting(L"MVSUP\\Settings", L"Blob", data, sizeof(data)), 0);
  HGLOBAL memory = nullptr;
  DWORD size = 0;
  ASSERT_EQ(GetBinarySetting(L"MVSUP\\Settings", L"Blob", &memory, &size), 0);
  ASSERT_EQ(size, 4u);
  EXPECT_EQ(memcmp(memory, data, 4), 0);
  GlobalFree(memory);
  EXPECT_EQ(SetBinarySetting(L"MVSUP\\Settings", L"Bad", nullptr, 4), ERROR_INVALID_PARAMETER);
}

TEST_F(ComponentSettings, FindAndDeleteSettings) {
  set_dword(HKEY_CURRENT_USER, kNsx, L"PrependHandleToFileName", 3);
  DWORD value = 0;
  EXPECT_EQ(FindDwordSetting(L"MvNsx\\Settings", 1, 10, L"prepend", &value), 0);
  EXPECT_EQ(value, 3u);
  EXPECT_EQ(DeleteSetting(L"MvNsx\\Settings", L"PrependHandleToFileName"), 0);
  EXPECT_FALSE(value_exists(HKEY_CURRENT_USER, kNsx, L"PrependHandleToFileName"));
  EXPECT_EQ(DeleteSetting(L"MvNsx\\Settings", L"PrependHandleToFileName"), ERROR_FILE_NOT_FOUND);
}

TEST_F(ComponentSettings, DeleteSettingsKeyResolvesDotParents) {
  set_dword(HKEY_CURRENT_USER, kNsx, L"V", 1);
  set_dword(HKEY_CURRENT_USER, client_path(L"MVSUP\\CustomTypes\\Maps"), L"V", 1);
  set_dword(HKEY_CURRENT_USER, L"Software\\Corvell\\Other", L"V", 1);

  EXPECT_EQ(DeleteSettingsKey(L".x", L"MvNsx"), ERROR_FILE_NOT_FOUND);
  EXPECT_TRUE(key_exists(HKEY_CURRENT_USER, kNsx));
  EXPECT_EQ(DeleteSettingsKey(L"MVSUP\\CustomTypes", L"Maps"), 0);
  EXPECT_FALSE(key_exists(HKEY_CURRENT_USER, client_path(L"MVSUP\\CustomTypes\\Maps")));
  EXPECT_TRUE(key_exists(HKEY_CURRENT_USER, client_path(L"MVSUP\\CustomTypes")));
  EXPECT_EQ(DeleteSettingsKey(L"..", L"MvNsx"), 0);
  EXPECT_FALSE(key_exists(HKEY_CURRENT_USER, client_path(L"MvNsx")));
  EXPECT_EQ(DeleteSettingsKey(L"..\\..", L"Other"), 0);
  EXPECT_FALSE(key_exists(HKEY_CURRENT_USER, L"Software\\Corvell\\Other"));
  EXPECT_TRUE(key_exists(HKEY_CURRENT_USER, kClientKey));
  EXPECT_EQ(DeleteSettingsKey(L"MVSUP", L""), ERROR_INVALID_PARAMETER);
  EXPECT_TRUE(key_exists(HKEY_CURRENT_USER, client_path(L"MVSUP")));
}

TEST_F(ComponentSettings, KeysOpenedCreatedAndTested) {
  EXPECT_FALSE(SettingsKeyExists(L"MVSUP", L"CustomTypes"));
  HKEY key = reinterpret_cast<HKEY>(1);
  EXPECT_EQ(OpenSettingsKey(L"MVSUP\\CustomTypes", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key, nullptr);
  DWORD disposition = 0;
  ASSERT_EQ(CreateSettingsKey(L"MVSUP\\CustomTypes", nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, &disposition), 0);
  EXPECT_EQ(disposition, static_cast<DWORD>(REG_CREATED_NEW_KEY));
  RegCloseKey(key);
  EXPECT_TRUE(SettingsKeyExists(L"MVSUP", L"CustomTypes"));
  EXPECT_TRUE(SettingsKeyExists(L"MVSUP\\CustomTypes", nullptr));
  ASSERT_EQ(OpenSettingsKey(L"MVSUP\\CustomTypes", 0, KEY_READ, &key), 0);
  RegCloseKey(key);
}

TEST_F(ComponentSettings, ModulePathFromClassIdWithOrWithoutBraces) {
  const std::wstring id = L"{6B29FC40-CA47-1067-B31D-00DD010662DA}";
  const std::wstring key = L"Software\\Classes\\CLSID\\" + id + L"\\LocalServer32";
  set_string(HKEY_LOCAL_MACHINE, key, nullptr, L"C:\\Client\\server.exe /automation");
  wchar_t buffer[MAX_PATH];
  EXPECT_EQ(GetModulePathFromRegistry(id.c_str(), buffer, MAX_PATH), 0);
  EXPECT_STREQ(buffer, L"C:\\Client\\server.exe /automation");
  buffer[0] = L'#';
  EXPECT_EQ(GetModulePathFromRegistry(id.substr(1, id.size() - 2).c_str(), buffer, MAX_PATH), 0);
  EXPECT_STREQ(buffer, L"C:\\Client\\server.exe /automation");
  EXPECT_EQ(GetModulePathFromRegistry(L"{00000000-0000-0000-0000-00000000ABCD}", buffer, MAX_PATH),
            ERROR_FILE_NOT_FOUND);
  EXPECT_STREQ(buffer, L"");
  delete_tree(HKEY_LOCAL_MACHINE, L"Software\\Classes\\CLSID\\" + id);
}

}  // namespace
}  // namespace mvsup::test
