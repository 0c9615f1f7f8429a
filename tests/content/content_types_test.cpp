// Content types, extensions and format names: against the MIME database that
// this machine really has, against an emptied one (the built-in tables must
// answer), and against entries written for the test.
#include <windows.h>
#include <aclapi.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "common/guard_page.h"
#include "content_support.h"

namespace mvsup::test {
namespace {

std::wstring upper(std::wstring text) {
  for (wchar_t& c : text) c = static_cast<wchar_t>(towupper(c));
  return text;
}

// Answers the tables give, written out by hand from the format's rows.
struct TableCase {
  const wchar_t* file_name;
  const wchar_t* mime_type;  // "" when the tables know nothing
  const wchar_t* format_name;
};
constexpr TableCase kTableCases[] = {
    {L"a.txt", L"text/plain", L"Text"},                               // first row
    {L"report.XLS", L"application/ms-excel", L"MS Excel"},            // first of three .xls rows
    {L"C:\\dir.d\\memo.wri", L"application/mswrite", L"MS Write"},    // first of two .wri rows
    {L"db.mdb", L"application/msaccess", L"MDB"},                     // a type without a format name
    {L"photo.JPEG", L"image/jpeg", L"JPEG"},                          // .jpeg before image/pjpeg
    {L"/unix/style/path/scan.tiff", L"image/tiff", L"Tiff"},
    {L"mail.eml", L"message/rfc822", L"EML"},                         // last row
    {L"setup.exe", L"application/octet-stream", L"Executable"},
    {L"x.dll", L"application/octet-stream", L"System Extension"},
    {L"COMMAND.COM", L"application/octet-stream", L"COM"},
    {L"a.*", L"", L"All files"},
    {L"notes.abcdefghij", L"", L"ABCDEFGHIJ"},                        // no type: 39 characters
    {L"logo.pcx", L"", L"PCX"},
    {L"archive.", L"", L""},
    {L"README", L"", L""},
    {L"C:\\dir.ext\\README", L"", L""},                               // a dot in the directory only
    {L"", L"", L""},
};

// ---- The database this machine has -----------------------------------------

// For every extension the database lists, the library must give the first
// type listing it in index order; for extensions it does not list, the
// table's answer.
TEST(PrefixDatabase, AnswersAsTheMachineDatabaseSays) {
  const std::vector<DatabaseEntry> entries = read_database();
  std::map<std::wstring, std::wstring> first_type;  // by upper-case extension
  for (const DatabaseEntry& entry : entries)
    if (!entry.extension.empty()) first_type.emplace(upper(entry.extension), entry.type);
  std::printf("MIME database of this prefix: %zu types, %zu extensions\n", entries.size(), first_type.size());

  for (const auto& [extension, type] : first_type) EXPECT_EQ(mime_of(L"C:\\docs\\file" + extension), type);
  for (const DatabaseEntry& entry : entries) {
    if (entry.extension.starts_with(L'.') && entry.type != L"application/octet-stream") {
      EXPECT_EQ(extension_of(entry.type), (ExtensionResult{S_OK, entry.extension})) << testing::PrintToString(entry.type);
    }
  }

  size_t table_answers = 0;
  for (const TableCase& c : kTableCases) {
    const std::wstring file_name = c.file_name;
    const size_t dot = file_name.rfind(L'.');
    if (*c.mime_type == L'\0' || first_type.contains(upper(file_name.substr(dot)))) continue;
    EXPECT_EQ(mime_of(file_name), c.mime_type) << testing::PrintToString(file_name);
    ++table_answers;
  }
  EXPECT_GT(table_answers + first_type.size(), 5u);
}

// ---- An emptied database: the tables answer --------------------------------

using EmptiedDatabase = MimeDatabase;

TEST_F(EmptiedDatabase, TablesGiveTypesAndFormatNames) {
  for (const TableCase& c : kTableCases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(c.file_name)));
    EXPECT_EQ(mime_of(c.file_name), c.mime_type);
    EXPECT_STREQ(GetDocFormatFromFileName(c.file_name), c.format_name);
  }
  const std::wstring long_extension = L"x." + std::wstring(45, L'q');
  EXPECT_EQ(std::wstring(GetDocFormatFromFileName(long_extension.c_str())), std::wstring(39, L'Q'));
  EXPECT_EQ(GetMimeTypeFromFileName(L"unknown.qqq", nullptr, 0), 0);
}

TEST_F(EmptiedDatabase, TablesGiveExtensions) {
  EXPECT_EQ(extension_of(L"application/vnd.ms-excel"), (ExtensionResult{S_OK, L".xls"}));
  EXPECT_EQ(extension_of(L"IMAGE/PJPEG"), (ExtensionResult{S_OK, L".jpeg"}));
  EXPECT_EQ(extension_of(L"image/jpeg"), (ExtensionResult{S_OK, L".jpg"}));
  EXPECT_EQ(extension_of(L"video/x-msvideo"), (ExtensionResult{S_OK, L".avi"}));
  EXPECT_EQ(extension_of(L"message/rfc822"), (ExtensionResult{S_OK, L".eml"}));
  // The table has ".msg" for it, but octet-stream is answered before any look-up.
  EXPECT_EQ(extension_of(L"Application/Octet-Stream"), (ExtensionResult{S_FALSE, L""}));
  EXPECT_EQ(extension_of(L""), (ExtensionResult{E_INVALIDARG, L""}));
  EXPECT_EQ(extension_of(L"text/x-unknown"), (ExtensionResult{E_FAIL, L""}));
  EXPECT_STREQ(GetFileExtFromMimeType(L"audio/x-aiff"), L".aiff");
  EXPECT_STREQ(GetFileExtFromMimeType(L"text/x-unknown"), L"");
}

TEST(FormatTable, LooksUpBothWays) {
  EXPECT_STREQ(GetMimeTypeFromDocFormat(L"ms excel"), L"application/ms-excel");
  EXPECT_STREQ(GetMimeTypeFromDocFormat(L"Executable file"), L"application/octet-stream");
  EXPECT_STREQ(GetMimeTypeFromDocFormat(L"Windows bitmap"), L"image/bmp");
  EXPECT_STREQ(GetMimeTypeFromDocFormat(L"MS Exce"), L"");
  EXPECT_STREQ(GetDocFormatFromMimeType(L"APPLICATION/VND.MS-POWERPOINT"), L"MS PowerPoint");
  EXPECT_STREQ(GetDocFormatFromMimeType(L"image/bmp"), L"Windows bitmap");
  EXPECT_STREQ(GetDocFormatFromMimeType(L"application/octet-stream"), L"");
  EXPECT_STREQ(GetDocFormatFromMimeType(L"application/mswrite"), L"MS Write");
  EXPECT_STREQ(GetDocFormatFromMimeType(L"application/ms-write"), L"");
}

// ---- Entries written for the test ------------------------------------------

using WrittenDatabase = MimeDatabase;

TEST_F(WrittenDatabase, RegistryAnswersBeforeTheTables) {
  add_type(L"application/vnd.ms-excel", L".xls");
  add_type(L"text/x-house-plain", L".TXT");
  EXPECT_EQ(mime_of(L"report.XLS"), L"application/vnd.ms-excel");
  EXPECT_STREQ(GetDocFormatFromFileName(L"report.XLS"), L"MS Excel");
  EXPECT_EQ(mime_of(L"a.txt"), L"text/x-house-plain");
  // A type without a format name: the extension's first 7 characters.
  EXPECT_STREQ(GetDocFormatFromFileName(L"a.txt"), L"TXT");
  EXPECT_EQ(extension_of(L"application/vnd.ms-excel"), (ExtensionResult{S_OK, L".xls"}));
  EXPECT_EQ(extension_of(L"text/x-house-plain"), (ExtensionResult{S_OK, L".TXT"}));

  // Nothing is remembered between calls.
  remove_type(L"application/vnd.ms-excel");
  EXPECT_EQ(mime_of(L"report.XLS"), L"application/ms-excel");
}

TEST_F(WrittenDatabase, FirstTypeInIndexOrderWins) {
  add_type(L"application/x-zz-later", L".dup");
  add_type(L"application/x-aa-earlier", L".Dup");
  add_type(L"application/x-mm-middle", L".DUP");
  const std::vector<DatabaseEntry> entries = read_database();
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(mime_of(L"file.dup"), entries[0].type);
}

TEST_F(WrittenDatabase, OnlyStringExtensionsWithADotCount) {
  set_dword(HKEY_LOCAL_MACHINE, std::wstring(kDatabaseMachinePath) + L"\\text/x-number", L"Extension", 0x0074002E);
  add_type(L"text/x-nodot", L"nodot");
  set_string(HKEY_LOCAL_MACHINE, std::wstring(kDatabaseMachinePath) + L"\\text/x-nothing", L"Other", L".nothing");
  EXPECT_EQ(mime_of(L"a.nodot"), L"");
  EXPECT_EQ(mime_of(L"a.t"), L"");
  EXPECT_EQ(extension_of(L"text/x-nodot"), (ExtensionResult{E_FAIL, L""}));
  EXPECT_EQ(extension_of(L"text/x-number"), (ExtensionResult{E_FAIL, L""}));
  // A stored extension without a dot falls back to the table.
  add_type(L"image/gif", L"gif");
  EXPECT_EQ(extension_of(L"image/gif"), (ExtensionResult{S_OK, L".gif"}));
}

TEST_F(WrittenDatabase, FormatNamesOfExtensionsWithAType) {
  add_type(L"application/x-rft", L".rft");
  add_type(L"application/x-cgm", L".cgm");
  add_type(L"application/x-long", L".abcdefghij");
  add_type(L"application/x-msdownload", L".exe");
  EXPECT_STREQ(GetDocFormatFromFileName(L"a.RFT"), L"DCA RFT");
  EXPECT_STREQ(GetDocFormatFromFileName(L"a.cgm"), L"CGM");
  EXPECT_STREQ(GetDocFormatFromFileName(L"notes.abcdefghij"), L"ABCDEFG");
  EXPECT_STREQ(GetDocFormatFromFileName(L"setup.exe"), L"Executable");
  EXPECT_STREQ(GetDocFormatFromFileName(L"a.pcl"), L"PCL");  // no type: upper case all the same
}

TEST_F(WrittenDatabase, ExtensionValuesUpTo256Bytes) {
  const std::wstring fits = L"." + std::wstring(126, L'e');  // 254 bytes and a terminator
  const std::wstring too_long = L"." + std::wstring(127, L'f');
  add_type(L"application/x-fits", fits);
  add_type(L"application/x-too-long", too_long);
  EXPECT_EQ(mime_of(L"a" + fits), L"application/x-fits");
  EXPECT_EQ(mime_of(L"a" + too_long), L"");
  EXPECT_EQ(extension_of(L"application/x-fits"), (ExtensionResult{S_OK, fits}));
  EXPECT_EQ(extension_of(L"application/x-too-long"), (ExtensionResult{E_FAIL, L""}));
}

TEST_F(WrittenDatabase, TypePathsReachingMaxPathAreRefused) {
  // "MIME\Database\Content Type\" is 27 characters: 232 more stay below 260.
  const std::wstring longest = L"application/" + std::wstring(220, L'x');
  const std::wstring too_long = longest + L"y";
  add_type(longest, L".longest");
  add_type(too_long, L".toolong");
  EXPECT_EQ(extension_of(longest), (ExtensionResult{S_OK, L".longest"}));
  EXPECT_EQ(extension_of(too_long), (ExtensionResult{E_UNEXPECTED, L""}));
  EXPECT_EQ(mime_of(L"a.toolong"), too_long);  // the walk has no such limit
}

// A subkey that cannot be opened ends the walk; later subkeys are not asked.
TEST_F(WrittenDatabase, AnUnreadableTypeEndsTheWalk) {
  add_type(L"aaa/locked", L".locked");
  add_type(L"application/x-after", L".after");
  add_type(L"application/vnd.ms-excel", L".xls");
  const std::wstring locked = std::wstring(kDatabaseMachinePath) + L"\\aaa/locked";
  wchar_t everyone[] = L"EVERYONE";
  EXPLICIT_ACCESSW deny{};
  BuildExplicitAccessWithNameW(&deny, everyone, KEY_ALL_ACCESS, DENY_ACCESS, NO_INHERITANCE);
  PACL acl = nullptr;
  ASSERT_EQ(SetEntriesInAclW(1, &deny, nullptr, &acl), ERROR_SUCCESS);
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, locked.c_str(), 0, WRITE_DAC, &key), ERROR_SUCCESS);
  SECURITY_DESCRIPTOR descriptor;
  InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
  SetSecurityDescriptorDacl(&descriptor, TRUE, acl, FALSE);
  ASSERT_EQ(RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &descriptor), ERROR_SUCCESS);
  HKEY probe = nullptr;
  const bool denied = RegOpenKeyExW(HKEY_LOCAL_MACHINE, locked.c_str(), 0, KEY_READ, &probe) != ERROR_SUCCESS;
  if (probe) RegCloseKey(probe);

  const std::wstring after = mime_of(L"a.after");
  const std::wstring excel = mime_of(L"report.xls");
  // Unlock again so that the database can be restored.
  SetSecurityDescriptorDacl(&descriptor, FALSE, nullptr, FALSE);
  EXPECT_EQ(RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &descriptor), ERROR_SUCCESS);
  RegCloseKey(key);
  LocalFree(acl);

  ASSERT_TRUE(denied) << "this registry does not enforce key security";
  ASSERT_EQ(read_database().front().type, L"aaa/locked");
  EXPECT_EQ(after, L"");
  EXPECT_EQ(excel, L"application/ms-excel");  // the table's answer
}

// ---- Narrow variant under the ANSI code page -------------------------------

TEST_F(WrittenDatabase, NarrowNamesConvertThroughCodePage1252) {
  ASSERT_EQ(GetACP(), 1252u);
  add_type(L"application/x-caf\u00e9", L".\u00e4\u00f6\u00fc");
  const char* file_name = "C:\\B\xfc" "cher\\Bericht.\xc4\xd6\xdc";  // "Bücher\Bericht.ÄÖÜ"
  char buffer[64];
  EXPECT_EQ(GetMimeTypeFromFileNameA(file_name, buffer, 64), 18);
  EXPECT_STREQ(buffer, "application/x-caf\xe9");
  EXPECT_EQ(mime_of(L"C:\\B\u00fccher\\Bericht.\u00c4\u00d6\u00dc"), L"application/x-caf\u00e9");
  EXPECT_STREQ(GetDocFormatFromFileName(L"Bericht.\u00e4\u00f6\u00fc"), L"\u00c4\u00d6\u00dc");
  EXPECT_EQ(GetMimeTypeFromFileNameA("\xe4rger.xls", buffer, 64), 20);
  EXPECT_STREQ(buffer, "application/ms-excel");
  EXPECT_EQ(GetMimeTypeFromFileNameA("\xe4rger", buffer, 64), 0);
  EXPECT_STREQ(buffer, "");
}

// ---- Bounds of the caller's buffers ----------------------------------------

TEST_F(EmptiedDatabase, TypesFillTheBufferExactlyOrNotAtAll) {
  // "application/ms-excel": 20 characters and a terminator.
  for (int capacity : {21, 20, 1}) {
    GuardedBuffer wide(capacity * sizeof(wchar_t));
    std::fill_n(wide.as<wchar_t>(), capacity, L'?');
    const int written = GetMimeTypeFromFileName(L"a.xls", wide.as<wchar_t>(), capacity);
    EXPECT_EQ(written, capacity == 21 ? 20 : -21) << capacity;
    EXPECT_EQ(std::wstring(wide.as<wchar_t>()), capacity == 21 ? L"application/ms-excel" : L"") << capacity;

    GuardedBuffer narrow(capacity);
    std::fill_n(narrow.as<char>(), capacity, '?');
    EXPECT_EQ(GetMimeTypeFromFileNameA("a.xls", narrow.as<char>(), capacity), capacity == 21 ? 20 : -21) << capacity;
    EXPECT_EQ(std::string(narrow.as<char>()), capacity == 21 ? "application/ms-excel" : "") << capacity;
  }
  EXPECT_EQ(GetMimeTypeFromFileName(L"a.xls", nullptr, 100), -21);
  EXPECT_EQ(GetMimeTypeFromFileNameA("a.xls", nullptr, 100), -21);

  // ".jpeg": 5 characters and a terminator.
  for (int capacity : {6, 5}) {
    GuardedBuffer wide(capacity * sizeof(wchar_t));
    std::fill_n(wide.as<wchar_t>(), capacity, L'?');
    EXPECT_EQ(GetFileExtFromMimeType2(L"image/pjpeg", wide.as<wchar_t>(), capacity),
              capacity == 6 ? S_OK : HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(std::wstring(wide.as<wchar_t>()), capacity == 6 ? L".jpeg" : L"");
  }
  wchar_t untouched[2] = {L'?', L'\0'};
  EXPECT_EQ(GetFileExtFromMimeType2(L"image/gif", untouched, 0), E_INVALIDARG);
  EXPECT_EQ(GetFileExtFromMimeType2(L"image/gif", nullptr, 10), E_POINTER);
  EXPECT_STREQ(untouched, L"?");
}

TEST_F(WrittenDatabase, SharedBuffersHold15And39Characters) {
  const std::wstring fifteen = L"." + std::wstring(14, L'p');
  add_type(L"application/x-fifteen", fifteen);
  add_type(L"application/x-sixteen", fifteen + L"q");
  EXPECT_EQ(std::wstring(GetFileExtFromMimeType(L"application/x-fifteen")), fifteen);
  EXPECT_STREQ(GetFileExtFromMimeType(L"application/x-sixteen"), L"");
  EXPECT_EQ(extension_of(L"application/x-sixteen"), (ExtensionResult{S_OK, fifteen + L"q"}));

  const std::wstring forty = L"a." + std::wstring(40, L'r');
  EXPECT_EQ(std::wstring(GetDocFormatFromFileName(forty.c_str())), std::wstring(39, L'R'));
  // Seven characters, not half of a surrogate pair.
  add_type(L"application/x-pair", L".abcdef\U0001F600");
  EXPECT_STREQ(GetDocFormatFromFileName(L"a.abcdef\U0001F600"), L"ABCDEF");
}

// ---- Strings of the format names -------------------------------------------

TEST(FormatStrings, ExistInBothLanguages) {
  const HMODULE library = GetModuleHandleW(L"MvSup2u.dll");
  ASSERT_NE(library, nullptr);
  wchar_t directory[MAX_PATH];
  GetModuleFileNameW(library, directory, MAX_PATH);
  *wcsrchr(directory, L'\\') = L'\0';
  const HMODULE satellite = LoadLibraryExW((std::wstring(directory) + L"\\0407\\SDKSatellite.dll").c_str(), nullptr,
                                           LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(satellite, nullptr);
  auto load = [](HMODULE module, UINT id) {
    wchar_t buffer[256] = {};
    LoadStringW(module, id, buffer, 256);
    return std::wstring(buffer);
  };
  EXPECT_EQ(load(library, 4935), L"All files");
  EXPECT_EQ(load(library, 4936), L"Executable");
  EXPECT_EQ(load(library, 4937), L"System Extension");
  EXPECT_EQ(load(satellite, 4935), L"Alle Dateien");
  EXPECT_EQ(load(satellite, 4936), L"Ausf\u00fchrbare Datei");
  EXPECT_EQ(load(satellite, 4937), L"Systemerweiterung");
  FreeLibrary(satellite);
}

// ---- Null arguments ----------------------------------------------------------

TEST(ContentNullArguments, GiveNeutralResults) {
  EXPECT_EQ(GetMimeTypeFromFileName(nullptr, nullptr, 0), 0);
  EXPECT_EQ(GetMimeTypeFromFileNameA(nullptr, nullptr, 0), 0);
  EXPECT_EQ(GetFileExtFromMimeType2(nullptr, nullptr, 0), E_POINTER);
  EXPECT_STREQ(GetFileExtFromMimeType(nullptr), L"");
  EXPECT_STREQ(GetMimeTypeFromDocFormat(nullptr), L"");
  EXPECT_STREQ(GetDocFormatFromMimeType(nullptr), L"");
  EXPECT_STREQ(GetDocFormatFromFileName(nullptr), L"");
  EXPECT_EQ(DecomposeURL(nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(DecomposeURLA(nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(URLCanonicalize(nullptr, nullptr, nullptr), 0u);
  EXPECT_EQ(URLUncanonicalize(nullptr, nullptr, 0), 0);
  EXPECT_EQ(MakeMervaneURL(nullptr, nullptr, nullptr, 0), 0);
  wchar_t buffer[8] = L"?";
  EXPECT_EQ(GetFileExtFromMimeType2(nullptr, buffer, 8), E_INVALIDARG);
  EXPECT_EQ(GetMimeTypeFromFileName(nullptr, buffer, 8), 0);
  EXPECT_STREQ(buffer, L"");
}

}  // namespace
}  // namespace mvsup::test
