// Language tags, ANSI to UTF-8, and satellite libraries.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "MvSup2u.h"
#include "common/paths.h"
#include "common/registry_sandbox.h"

namespace mvsup::test {
namespace {

LCID lcid_of(const wchar_t* tag) {
  LCID lcid = 0xdeadbeef;
  EXPECT_TRUE(LCIDfromLangTag(tag, &lcid)) << tag;
  return lcid;
}

TEST(LanguageTags, MapToLanguageIdsWithTheDefaultSortOrder) {
  // Windows' own primary language ids for the whole list, in its order;
  // Portuguese alone takes sublanguage 2.
  const struct {
    const wchar_t* tag;
    WORD primary;
  } tags[] = {
      {L"en", LANG_ENGLISH},     {L"es", LANG_SPANISH},    {L"fr", LANG_FRENCH},    {L"de", LANG_GERMAN},
      {L"it", LANG_ITALIAN},     {L"pt", LANG_PORTUGUESE}, {L"da", LANG_DANISH},    {L"nl", LANG_DUTCH},
      {L"fi", LANG_FINNISH},     {L"no", LANG_NORWEGIAN},  {L"pl", LANG_POLISH},    {L"ro", LANG_ROMANIAN},
      {L"sv", LANG_SWEDISH},     {L"ru", LANG_RUSSIAN},    {L"sr", LANG_SERBIAN},   {L"sk", LANG_SLOVAK},
      {L"af", LANG_AFRIKAANS},   {L"sq", LANG_ALBANIAN},   {L"eu", LANG_BASQUE},    {L"be", LANG_BELARUSIAN},
      {L"bg", LANG_BULGARIAN},   {L"ca", LANG_CATALAN},    {L"hr", LANG_CROATIAN},  {L"cs", LANG_CZECH},
      {L"et", LANG_ESTONIAN},    {L"fo", LANG_FAEROESE},   {L"el", LANG_GREEK},     {L"he", LANG_HEBREW},
      {L"hu", LANG_HUNGARIAN},   {L"is", LANG_ICELANDIC},  {L"in", LANG_INDONESIAN}, {L"lv", LANG_LATVIAN},
      {L"sl", LANG_SLOVENIAN},   {L"lt", LANG_LITHUANIAN}, {L"tr", LANG_TURKISH},   {L"uk", LANG_UKRAINIAN},
  };
  for (const auto& entry : tags)
    EXPECT_EQ(lcid_of(entry.tag), static_cast<LCID>(MAKELANGID(entry.primary, wcscmp(entry.tag, L"pt") ? 1 : 2)))
        << entry.tag;

  // The region is ignored, case does not matter, whole tags only.
  const struct {
    const wchar_t* tag;
    LCID lcid;
  } cases[] = {{L"en-gb", 0x0409}, {L"de-at", 0x0407}, {L"SV-se", 0x041D}, {L"pt-br", 0x0816}, {L"xx", 0x0400},
               {L"english", 0x0400}, {L"-de", 0x0400}, {L"", 0x0400}, {nullptr, 0x0400}};
  for (const auto& c : cases) EXPECT_EQ(lcid_of(c.tag), c.lcid) << (c.tag ? c.tag : L"(null)");
  EXPECT_FALSE(LCIDfromLangTag(L"en", nullptr));
}

TEST(AnsiToUtf8, ConvertsOrTellsTheCallerToKeepPlainAscii) {
  ASSERT_EQ(GetACP(), 1252u);
  EXPECT_EQ(ANSIStringToUTF8("plain", nullptr, 0), -1);
  EXPECT_EQ(ANSIStringToUTF8("", nullptr, 0), -1);
  EXPECT_EQ(ANSIStringToUTF8("\xe9", nullptr, 0), 3);  // two bytes and the terminator
  EXPECT_EQ(ANSIStringToUTF8("\x80", nullptr, 0), 4);  // euro sign

  char out[16];
  memset(out, 0x7f, sizeof(out));
  EXPECT_EQ(ANSIStringToUTF8("caf\xe9", out, 16), 6);
  EXPECT_STREQ(out, "caf\xc3\xa9");
  EXPECT_EQ(out[6], 0x7f);
  // With a size, plain ASCII is converted too.
  EXPECT_EQ(ANSIStringToUTF8("abc", out, 16), 4);
  EXPECT_STREQ(out, "abc");
  // Too small: 0, and nothing past the given size.
  memset(out, 0x7f, sizeof(out));
  EXPECT_EQ(ANSIStringToUTF8("caf\xe9", out, 4), 0);
  EXPECT_EQ(out[4], 0x7f);
  EXPECT_EQ(ANSIStringToUTF8(nullptr, out, 16), 0);
  EXPECT_EQ(ANSIStringToUTF8("abc", nullptr, 16), 0);
  EXPECT_EQ(ANSIStringToUTF8("abc", out, -1), 0);
}

class Satellites : public RegistrySandbox {
 protected:
  void install(const std::wstring& program_dir, DWORD language) {
    set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Programs", program_dir);
    set_dword(HKEY_CURRENT_USER, client_path(L"MvAxess\\Settings"), L"LangId", language);
  }
};

TEST_F(Satellites, LoadsOnlyFromTheLanguageFolder) {
  install(exe_directory(), 0x0407);
  HMODULE module = LoadSatelliteLibrary(L"SDK");
  ASSERT_NE(module, nullptr);
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(module, path, MAX_PATH);
  EXPECT_EQ(std::wstring(path), exe_directory() + L"\\0407\\SDKSatellite.dll");
  wchar_t text[32];
  ASSERT_GT(LoadStringW(module, 4943, text, 32), 0);
  EXPECT_STREQ(text, L"Sammlung");
  FreeLibrary(module);

  // No fall-back from a language folder to the neutral file.
  TempDirectory program;
  CopyFileW((exe_directory() + L"\\0407\\SDKSatellite.dll").c_str(), (program.path() + L"\\SDKSatellite.dll").c_str(),
            FALSE);
  install(program.path(), 0x0407);
  EXPECT_EQ(LoadSatelliteLibrary(L"SDK"), nullptr);
  // Without a language the neutral file is the one.
  install(program.path(), 0);
  module = LoadSatelliteLibrary(L"SDK");
  EXPECT_NE(module, nullptr);
  if (module) FreeLibrary(module);
  EXPECT_EQ(LoadSatelliteLibrary(L"MvNsx"), nullptr);
  EXPECT_EQ(LoadSatelliteLibrary(nullptr), nullptr);
}

TEST_F(Satellites, NoProgramDirectoryNoSatellite) { EXPECT_EQ(LoadSatelliteLibrary(L"SDK"), nullptr); }

TEST_F(Satellites, AFileThatIsNoLibraryFailsToLoad) {
  TempDirectory program;
  CreateDirectoryW((program.path() + L"\\0407").c_str(), nullptr);
  HANDLE file = CreateFileW((program.path() + L"\\0407\\SDKSatellite.dll").c_str(), GENERIC_WRITE, 0, nullptr,
                            CREATE_NEW, 0, nullptr);
  DWORD written = 0;
  WriteFile(file, "not a library", 13, &written, nullptr);
  CloseHandle(file);
  install(program.path(), 0x0407);
  EXPECT_EQ(LoadSatelliteLibrary(L"SDK"), nullptr);
}

}  // namespace
}  // namespace mvsup::test
