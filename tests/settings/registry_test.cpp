// The one-call registry helpers, called through the exports.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "MvSup2u.h"
#include "common/registry_sandbox.h"

namespace mvsup::test {
namespace {

constexpr const wchar_t* kKey = L"Software\\Corvell\\Mervane Client\\Test";

class RegistryHelpers : public RegistrySandbox {};

TEST_F(RegistryHelpers, GetDwordReadsOnlyDwordValues) {
  set_dword(HKEY_CURRENT_USER, kKey, L"Number", 42);
  set_string(HKEY_CURRENT_USER, kKey, L"Text", L"42");

  DWORD value = 0xdeadbeef;
  EXPECT_EQ(GetRegistryDWORD(HKEY_CURRENT_USER, kKey, L"Number", &value), 0);
  EXPECT_EQ(value, 42u);

  value = 0xdeadbeef;
  EXPECT_EQ(GetRegistryDWORD(HKEY_CURRENT_USER, kKey, L"Text", &value), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(value, 0u);

  value = 0xdeadbeef;
  EXPECT_EQ(GetRegistryDWORD(HKEY_CURRENT_USER, kKey, L"Missing", &value), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(value, 0u);

  value = 0xdeadbeef;
  EXPECT_EQ(GetRegistryDWORD(HKEY_CURRENT_USER, L"Software\\Corvell\\Nowhere", L"Number", &value),
            ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(value, 0u);

  EXPECT_EQ(GetRegistryDWORD(HKEY_CURRENT_USER, kKey, L"Number", nullptr), ERROR_INVALID_PARAMETER);

  EXPECT_EQ(GetRegistryDWORDEx(HKEY_CURRENT_USER, kKey, L"Number", 7), 42u);
  EXPECT_EQ(GetRegistryDWORDEx(HKEY_CURRENT_USER, kKey, L"Text", 7), 7u);
  EXPECT_EQ(GetRegistryDWORDEx(HKEY_CURRENT_USER, kKey, L"Missing", 7), 7u);
}

TEST_F(RegistryHelpers, SettersCreateTheKeyAndWriteTheirType) {
  EXPECT_EQ(SetRegistryDWORD(HKEY_CURRENT_USER, kKey, L"D", 0x12345678), 0);
  EXPECT_EQ(SetRegistryString(HKEY_CURRENT_USER, kKey, L"S", L"text"), 0);
  EXPECT_EQ(SetRegistryString(HKEY_CURRENT_USER, kKey, L"Null", nullptr), 0);
  const BYTE blob[] = {1, 0, 2, 0, 3};
  EXPECT_EQ(SetRegistryBinary(HKEY_CURRENT_USER, kKey, L"B", blob, sizeof(blob)), 0);
  EXPECT_EQ(SetRegistryString(HKEY_CURRENT_USER, kKey, nullptr, L"default"), 0);

  RawValue d = read_value(HKEY_CURRENT_USER, kKey, L"D");
  EXPECT_EQ(d.type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(d.as_dword(), 0x12345678u);
  RawValue s = read_value(HKEY_CURRENT_USER, kKey, L"S");
  EXPECT_EQ(s.type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(s.data.size(), 10u);  // terminator included
  EXPECT_EQ(s.as_string(), L"text");
  RawValue null = read_value(HKEY_CURRENT_USER, kKey, L"Null");
  EXPECT_EQ(null.data.size(), 2u);
  RawValue b = read_value(HKEY_CURRENT_USER, kKey, L"B");
  EXPECT_EQ(b.type, static_cast<DWORD>(REG_BINARY));
  EXPECT_EQ(b.data, std::basic_string<BYTE>(blob, sizeof(blob)));
  EXPECT_EQ(read_value(HKEY_CURRENT_USER, kKey, L"").as_string(), L"default");
}

TEST_F(RegistryHelpers, GetStringExpandsAndNeverOverrunsTheBuffer) {
  SetEnvironmentVariableW(L"MVSUP_TEST_DIR", L"C:\\expanded");
  SetEnvironmentVariableW(L"MVSUP_TEST_LONG", L"C:\\a-much-longer-expanded-directory");
  set_string(HKEY_CURRENT_USER, kKey, L"Plain", L"abcdef");
  set_string(HKEY_CURRENT_USER, kKey, L"Expand", L"%MVSUP_TEST_DIR%\\sub", REG_EXPAND_SZ);
  set_string(HKEY_CURRENT_USER, kKey, L"Long", L"%MVSUP_TEST_LONG%\\sub", REG_EXPAND_SZ);
  const wchar_t unterminated[] = {L'x', L'y', L'z'};
  RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"Raw", REG_SZ, unterminated, sizeof(unterminated));

  wchar_t buffer[32];
  EXPECT_EQ(GetRegistryString(HKEY_CURRENT_USER, kKey, L"Plain", buffer, 32), 0);
  EXPECT_STREQ(buffer, L"abcdef");
  EXPECT_EQ(GetRegistryString(HKEY_CURRENT_USER, kKey, L"Expand", buffer, 32), 0);
  EXPECT_STREQ(buffer, L"C:\\expanded\\sub");
  // Stored without a terminator: terminated when there is room...
  wmemset(buffer, L'#', 32);
  EXPECT_EQ(GetRegistryString(HKEY_CURRENT_USER, kKey, L"Raw", buffer, 32), 0);
  EXPECT_STREQ(buffer, L"xyz");
  // ...and refused when it fills the buffer exactly.
  EXPECT_EQ(GetRegistryString(HKEY_CURRENT_USER, kKey, L"Raw", buffer, 3), ERROR_MORE_DATA);
  EXPECT_STREQ(buffer, L"");

  // Too small a buffer: an error and an empty buffer, nothing past capacity.
  wmemset(buffer, L'#', 32);
  EXPECT_EQ(GetRegistryString(HKEY_CURRENT_USER, kKey, L"Plain", buffer, 4), ERROR_MORE_DATA);
  EXPECT_EQ(buffer[0], L'\0');
  EXPECT_EQ(buffer[4], L'#');
  // The expansion is cut to the capacity and terminated.
  wmemset(buffer, L'#', 32);
  EXPECT_EQ(GetRegistryString(HKEY_CURRENT_USER, kKey, L"Long", buffer, 24), 0);
  EXPECT_EQ(std::wstring(buffer), std::wstring(L"C:\\a-much-longer-expanded-directory\\sub").substr(0, 23));
  EXPECT_EQ(buffer[24], L'#');
  EXPECT_EQ(GetRegistryString(HKEY_CURRENT_USER, kKey, L"Plain", nullptr, 32), ERROR_INVALID_PARAMETER);
  buffer[0] = L'#';
  EXPECT_EQ(GetRegistryString(HKEY_CURRENT_USER, kKey, L"Plain", buffer, 0), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(buffer[0], L'#');
}

TEST_F(RegistryHelpers, GetStringExFallsBackToTheDefaultButReportsTheError) {
  wchar_t buffer[8];
  EXPECT_EQ(GetRegistryStringEx(HKEY_CURRENT_USER, L"Software\\Corvell\\Nowhere", L"X", L"fallback", buffer, 8),
            ERROR_FILE_NOT_FOUND);
  EXPECT_STREQ(buffer, L"fallbac");  // truncated to capacity, terminated
  EXPECT_EQ(GetRegistryStringEx(HKEY_CURRENT_USER, L"Software\\Corvell\\Nowhere", L"X", nullptr, buffer, 8),
            ERROR_FILE_NOT_FOUND);
  EXPECT_STREQ(buffer, L"");
  set_string(HKEY_CURRENT_USER, kKey, L"S", L"stored");
  EXPECT_EQ(GetRegistryStringEx(HKEY_CURRENT_USER, kKey, L"S", L"fallback", buffer, 8), 0);
  EXPECT_STREQ(buffer, L"stored");
}

TEST_F(RegistryHelpers, GetBinaryHandsOutGlobalMemory) {
  const BYTE blob[] = {9, 8, 7, 6, 5, 4, 3};
  set_binary(HKEY_CURRENT_USER, kKey, L"B", blob, sizeof(blob));
  HGLOBAL memory = reinterpret_cast<HGLOBAL>(1);
  DWORD size = 99;
  ASSERT_EQ(GetRegistryBinary(HKEY_CURRENT_USER, kKey, L"B", &memory, &size), 0);
  ASSERT_NE(memory, nullptr);
  EXPECT_EQ(size, sizeof(blob));
  EXPECT_EQ(GlobalSize(memory), sizeof(blob));
  EXPECT_EQ(memcmp(memory, blob, sizeof(blob)), 0);
  EXPECT_EQ(GlobalFree(memory), nullptr);

  memory = reinterpret_cast<HGLOBAL>(1);
  size = 99;
  EXPECT_EQ(GetRegistryBinary(HKEY_CURRENT_USER, kKey, L"Missing", &memory, &size), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(memory, nullptr);
  EXPECT_EQ(size, 0u);
}

TEST_F(RegistryHelpers, DeleteSubKeyRemovesTheWholeTreeButNeverTheParent) {
  set_dword(HKEY_CURRENT_USER, std::wstring(kKey) + L"\\Child\\Grandchild", L"V", 1);
  EXPECT_EQ(DeleteRegistrySubKey(HKEY_CURRENT_USER, kKey, L""), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(DeleteRegistrySubKey(HKEY_CURRENT_USER, kKey, nullptr), ERROR_INVALID_PARAMETER);
  EXPECT_TRUE(key_exists(HKEY_CURRENT_USER, std::wstring(kKey) + L"\\Child\\Grandchild"));
  EXPECT_EQ(DeleteRegistrySubKey(HKEY_CURRENT_USER, kKey, L"Child"), 0);
  EXPECT_FALSE(key_exists(HKEY_CURRENT_USER, std::wstring(kKey) + L"\\Child"));
  EXPECT_TRUE(key_exists(HKEY_CURRENT_USER, kKey));
  EXPECT_EQ(DeleteRegistrySubKey(HKEY_CURRENT_USER, kKey, L"Child"), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryHelpers, DeleteValue) {
  set_dword(HKEY_CURRENT_USER, kKey, L"V", 1);
  EXPECT_EQ(DeleteRegistryValue(HKEY_CURRENT_USER, kKey, L"V"), 0);
  EXPECT_FALSE(value_exists(HKEY_CURRENT_USER, kKey, L"V"));
  EXPECT_EQ(DeleteRegistryValue(HKEY_CURRENT_USER, kKey, L"V"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(DeleteRegistryValue(HKEY_CURRENT_USER, L"Software\\Corvell\\Nowhere", L"V"), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryHelpers, FindDwordMatchesByPrefixOrWholeNameWithTheGivenCase) {
  set_dword(HKEY_CURRENT_USER, kKey, L"MaxType", 1);
  DWORD value = 0xdeadbeef;
  // Bit 0: the shorter name is compared, any case.
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 1, 10, L"MAX", &value), 0);
  EXPECT_EQ(value, 1u);
  // Neither bit: whole names, any case.
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 0, 10, L"MAX", &value), ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(value, 0u);
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 0, 10, L"maxtype", &value), 0);
  EXPECT_EQ(value, 1u);
  // Bit 1: case-sensitive.
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 2, 10, L"maxtype", &value), ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 2, 10, L"MaxType", &value), 0);
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 3, 10, L"Max", &value), 0);
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 3, 10, L"MAX", &value), ERROR_NO_MORE_ITEMS);

  // A pattern longer than the name matches too when bit 0 is set ("Ma").
  delete_tree(HKEY_CURRENT_USER, kKey);
  set_dword(HKEY_CURRENT_USER, kKey, L"Ma", 5);
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 1, 10, L"MAX", &value), 0);
  EXPECT_EQ(value, 5u);
}

TEST_F(RegistryHelpers, FindDwordLooksAtNoMoreThanTheMaximum) {
  for (int i = 0; i < 10; ++i) set_dword(HKEY_CURRENT_USER, kKey, (L"Value" + std::to_wstring(i)).c_str(), i);
  set_dword(HKEY_CURRENT_USER, kKey, L"Wanted", 77);  // the eleventh value
  DWORD value = 0xdeadbeef;
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 0, 3, L"Wanted", &value), 0);
  EXPECT_EQ(value, 0u);
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 0, 0, L"Wanted", &value), 0);
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 0, -1, L"Wanted", &value), 0);
  EXPECT_EQ(value, 0u);
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 0, 100, L"Wanted", &value), 0);
  EXPECT_EQ(value, 77u);
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, L"Software\\Corvell\\Nowhere", 0, 100, L"W", &value),
            ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryHelpers, FindDwordSkipsOtherTypesThatFitAndStopsAtLongerOnes) {
  const DWORD small = 3;
  RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"Bin", REG_BINARY, &small, sizeof(small));
  set_dword(HKEY_CURRENT_USER, kKey, L"Dword", 9);
  DWORD value = 0;
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, kKey, 1, 10, L"", &value), 0);
  EXPECT_EQ(value, 9u);

  // The enumeration reads 4 bytes of data: a longer value ends the search.
  const std::wstring other = std::wstring(kKey) + L"\\Other";
  // (Names in alphabetical order: Wine enumerates values sorted by name.)
  set_string(HKEY_CURRENT_USER, other, L"A_Text", L"longer than four bytes");
  set_dword(HKEY_CURRENT_USER, other, L"B_Dword", 9);
  value = 0xdeadbeef;
  EXPECT_EQ(FindRegistryDWORD(HKEY_CURRENT_USER, other.c_str(), 1, 10, L"B_Dword", &value), ERROR_MORE_DATA);
  EXPECT_EQ(value, 0u);
}

}  // namespace
}  // namespace mvsup::test
