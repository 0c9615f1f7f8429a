// Item and object types: text forms, display names, mappings, parsing,
// parents and handles, called through the exports.
#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstring>
#include <cwchar>
#include <string>
#include <thread>
#include <vector>

#include "types_test_support.h"

namespace mvsup::test {
namespace {

class ItemTypes : public RegistrySandbox {};

// The words, written out by hand; types 4, 16 and 23-32 have none.
const wchar_t* const kWords[] = {
    L"MVClient", L"Server", L"Collection", L"File",     L"",          L"Calendar", L"BulletinBoard", L"URL",
    L"Bulletin", L"SavedQuery", L"Event", L"Rendition", L"Version",  L"Subscription", L"User", L"Group",
    L"",         L"Object", L"ContElem",  L"MailMessage", L"Workspace", L"Wiki",  L"Weblog",
};

// Every text form gives the word; a handle of it parses back through both
// parsers (a type without a word keeps only the number).
TEST_F(ItemTypes, EveryFormOfTheWordAndItsHandlesParseBack) {
  for (MVXITEMTYPE type = -2; type <= 32; ++type) {
    SCOPED_TRACE(type);
    const std::wstring expected = (type >= 0 && type <= 22) ? kWords[type] : L"";
    wchar_t buffer[40];
    EXPECT_EQ(word_of(type), expected);
    EXPECT_EQ(GetMvxItemTypeAsHttpStringTS(type, buffer, 40), expected);
    EXPECT_EQ(std::wstring(GetMvxItemTypeAsString(type)), expected);
    EXPECT_EQ(std::wstring(GetMvxItemTypeAsHttpString(type)), expected);
    EXPECT_EQ(std::string(GetMvxItemTypeAsStringA(type)), std::string(expected.begin(), expected.end()));

    const std::wstring handle = handle_of(type, 123456);
    EXPECT_EQ(handle, expected + L"-123456");
    EXPECT_EQ(GetMvxItemHandleAsHttpString(type, 123456, buffer, 40), static_cast<int>(handle.size()));
    EXPECT_EQ(buffer, handle);
    if (expected.empty()) continue;
    long number = 0;
    EXPECT_EQ(GetMvxItemHandleFromString(handle.c_str(), &number), type);
    EXPECT_EQ(number, 123456);
    WORD found = 0;
    EXPECT_EQ(ToHandle(handle.c_str(), &found, &number, nullptr, FALSE), 0);
    EXPECT_EQ(found, type);
    EXPECT_EQ(number, 123456);
  }
  // Object types reach the same words through the mapping.
  wchar_t buffer[40];
  EXPECT_STREQ(GetMvxObjTypeAsStringTS(0, buffer, 40), L"File");
  EXPECT_STREQ(GetMvxObjTypeAsString(8), L"User");
  EXPECT_STREQ(GetMvxObjTypeAsString(12), L"");
}

TEST_F(ItemTypes, DocumentWordFollowsTheDocumentClassSetting) {
  set_dword(HKEY_CURRENT_USER, client_path(L"MVSUP\\Settings"), L"HalcyoDocClassId", 1);
  GetMvSupMode(MVSUP_MODE_RELOAD);
  EXPECT_EQ(word_of(3), L"Document");
  EXPECT_STREQ(GetMvxItemTypeAsString(3), L"Document");
  EXPECT_STREQ(GetMvxItemTypeAsHttpString(3), L"File");
  EXPECT_EQ(handle_of(3, 5), L"Document-5");
  wchar_t buffer[40];
  EXPECT_EQ(GetMvxItemHandleAsHttpString(3, 5, buffer, 40), 6);
  EXPECT_STREQ(buffer, L"File-5");
  EXPECT_EQ(CompareMvxItemType(L"Document-5", 3), 0);
  EXPECT_NE(CompareMvxItemType(L"File-5", 3), 0);

  delete_tree(HKEY_CURRENT_USER, client_path(L"MVSUP\\Settings"));
  GetMvSupMode(MVSUP_MODE_RELOAD);
  EXPECT_EQ(word_of(3), L"File");
}

TEST_F(ItemTypes, BufferVariantsTruncateAndNeverWritePastTheCapacity) {
  wchar_t buffer[16];
  std::memset(buffer, 0xff, sizeof(buffer));
  EXPECT_EQ(GetMvxItemTypeAsStringTS(2, buffer, 0), buffer);
  EXPECT_EQ(GetMvxItemTypeAsHttpStringTS(2, buffer, -1), buffer);
  EXPECT_EQ(GetMvxItemTypeAsStringTS(2, nullptr, 40), nullptr);
  EXPECT_EQ(GetMvxItemTypeAsDisplayString(2, nullptr, 40), 0);
  EXPECT_EQ(GetMvxItemTypeAsDisplayString(2, buffer, 0), 0);
  EXPECT_EQ(buffer[0], 0xffff);

  // Exactly the capacity is writable: the last character is the terminator.
  GuardedBuffer guarded(6 * sizeof(wchar_t));
  wchar_t* flush = guarded.as<wchar_t>();
  EXPECT_STREQ(GetMvxItemTypeAsStringTS(6, flush, 6), L"Bulle");
  EXPECT_STREQ(GetMvxParentItemTypeAsStringTS(flush, 6, 3, 0, 0, 0, nullptr), L"Colle");
  EXPECT_EQ(GetMvxItemTypeAsDisplayString(9, flush, 6), 1);
  EXPECT_STREQ(flush, L"Saved");
  EXPECT_EQ(GetMvxItemTypeAsDisplayString(40, flush, 6), 0);
  EXPECT_STREQ(flush, L"Unkno");
}

TEST_F(ItemTypes, DisplayNamesComeFromTheStringTable) {
  const std::pair<MVXITEMTYPE, const wchar_t*> known[] = {
      {0, L"Mervane Client"}, {2, L"Collection"}, {3, L"Document"},         {6, L"Discussion"},
      {8, L"Topic"},          {9, L"Saved Query"}, {18, L"Content Element"}, {19, L"Mail Message"},
      {22, L"Weblog"},
  };
  wchar_t buffer[64];
  for (const auto& [type, text] : known) {
    EXPECT_EQ(GetMvxItemTypeAsDisplayString(type, buffer, 64), 1) << type;
    EXPECT_STREQ(buffer, text);
  }
  for (MVXITEMTYPE type : {4, 16, 23, 32, 33, 255, -1}) {
    EXPECT_EQ(GetMvxItemTypeAsDisplayString(type, buffer, 64), 0) << type;
    EXPECT_STREQ(buffer, L"Unknown Object Type");
  }
}

TEST_F(ItemTypes, ObjectTypeMappingsAreNotInverseForTypeFour) {
  // item type -> object type, from the catalogue by hand.
  const LONG object_of[] = {-1, 2, 1, 0, 0, 4, 5, 6, 7, 10, 11, 15, 14, 13, 8, 9, -1, -1, 16, 17, 18, 19, 20};
  for (MVXITEMTYPE type = 0; type <= 22; ++type) EXPECT_EQ(GetMvxObjTypeFromItemType(type), object_of[type]) << type;
  for (MVXITEMTYPE type : {-5, -1, 23, 32}) EXPECT_EQ(GetMvxObjTypeFromItemType(type), -1) << type;
  for (MVXITEMTYPE type : {33, 255, 300}) EXPECT_EQ(GetMvxObjTypeFromItemType(type), type) << type;

  const MVXITEMTYPE item_of[] = {3, 2, 1, -1, 5, 6, 7, 8, 14, 15, 9, 10, -1, 13, 12, 11, 18, 19, 20, 21, 22};
  for (LONG object = 0; object <= 20; ++object) EXPECT_EQ(GetMvxItemTypeFromObjType(object), item_of[object]) << object;
  for (LONG object : {-7, -1, 21, 32}) EXPECT_EQ(GetMvxItemTypeFromObjType(object), -1) << object;
  EXPECT_EQ(GetMvxItemTypeFromObjType(40), 40);
}

TEST_F(ItemTypes, ParsingTriesTheWordsInTheirFixedOrder) {
  const std::pair<const wchar_t*, MVXITEMTYPE> cases[] = {
      {L"FILE-12", 3},         {L"document-12", 3}, {L"Document", 3},          {L"Files-12", 16},
      {L"Filet", 16},          {L"bulletinboard", 6}, {L"Bulletin-4", 8},      {L"BulletinBoards-4", 16},
      {L"ContElement-5", 18},  {L"contelem", 18},   {L"ContEle-5", 16},        {L"Userx-1", 16},
      {L"", 16},               {L"-5", 16},         {L" File-1", 16},
  };
  for (const auto& [text, type] : cases) {
    EXPECT_EQ(GetMvxItemTypeFromString(text), type) << testing::PrintToString(std::wstring(text));
    EXPECT_EQ(GetMvxItemTypeFromStringA(std::string(text, text + std::wcslen(text)).c_str()), type);
  }
  EXPECT_EQ(GetMvxItemTypeFromString(nullptr), 16);
  EXPECT_EQ(GetMvxItemTypeFromStringA(nullptr), 16);
  // An unknown word falls through to the custom types.
  EXPECT_EQ(create_type(L"Files"), 33);
  EXPECT_EQ(GetMvxItemTypeFromString(L"Files-12"), 33);
  EXPECT_EQ(GetMvxItemTypeFromString(L"File-12"), 3);
}

TEST_F(ItemTypes, HandleNumbersFollowWcstol) {
  const std::pair<const wchar_t*, MVXITEMTYPE> cases[] = {
      {L"Collection-abc", 2},    {L"File-  42x", 3}, {L"File--17", 3},       {L"File-+8", 3},
      {L"File-99999999999", 3}, {L"File--99999999999", 3}, {L"File-0x1F", 3}, {L"Weblog-12.htm", 22},
      {L"Bulletin-7-8", 8},      {L"Collection", 2}, {L"Nothing-5", 16},
  };
  for (const auto& [text, type] : cases) {
    const wchar_t* dash = std::wcschr(text, L'-');
    long number = 12345;
    EXPECT_EQ(GetMvxItemHandleFromString(text, &number), type) << testing::PrintToString(text);
    EXPECT_EQ(number, dash ? std::wcstol(dash + 1, nullptr, 10) : 0) << testing::PrintToString(text);
  }
  long number = 12345;
  EXPECT_EQ(GetMvxItemHandleFromString(L"Collection-77", nullptr), 2);
  EXPECT_EQ(GetMvxItemHandleFromString(nullptr, &number), 16);
  EXPECT_EQ(number, 0);
  EXPECT_EQ(GetMvxItemHandleFromStringA("FILE-7", &number), 3);
  EXPECT_EQ(number, 7);
  EXPECT_EQ(GetMvxItemHandleFromStringA(nullptr, &number), 16);
  EXPECT_EQ(number, 0);
}

TEST_F(ItemTypes, NarrowFormsUseTheAnsiCodePage) {
  ASSERT_EQ(GetACP(), 1252u);
  EXPECT_EQ(create_type(L"Caf\u00e9"), 33);
  EXPECT_STREQ(GetMvxItemTypeAsStringA(33), "Caf\xe9");
  long number = 0;
  EXPECT_EQ(GetMvxItemHandleFromStringA("caf\xe9-4", &number), 16);  // class words are case-sensitive
  EXPECT_EQ(GetMvxItemHandleFromStringA("Caf\xe9-4", &number), 33);
  EXPECT_EQ(number, 4);
  EXPECT_EQ(MvxGetSuperclassItemTypeA("Caf\xe9", nullptr), 0);
}

// Run by types.ansi_code_page_932 under the Japanese code page; the default
// run (1252) skips them.
class AnsiCodePage932 : public CodePageSandbox<932> {};

// The shared 80-byte buffer keeps whole double-byte characters (93 FA) only.
TEST_F(AnsiCodePage932, NarrowWordsKeepWholeCharacters) {
  const std::wstring doubles(40, L'\u65e5');
  EXPECT_EQ(create_type(doubles.c_str()), 33);
  EXPECT_EQ(create_type((L"a" + doubles).c_str()), 34);
  std::string expected;
  for (int i = 0; i < 39; ++i) expected += "\x93\xfa";
  EXPECT_EQ(std::string(GetMvxItemTypeAsStringA(33)), expected);
  EXPECT_EQ(std::string(GetMvxItemTypeAsStringA(34)), "a" + expected);
  long number = 0;
  EXPECT_EQ(GetMvxItemHandleFromStringA(("a" + expected + "\x93\xfa-5").c_str(), &number), 34);
  EXPECT_EQ(number, 5);
}

TEST_F(ItemTypes, CompareIsCaseSensitiveUnlikeParsing) {
  const std::pair<const wchar_t*, MVXITEMTYPE> equal[] = {
      {L"Collection-9", 2}, {L"Collection", 2}, {nullptr, 4}, {L"-4", 16}};
  for (const auto& [text, type] : equal) EXPECT_EQ(CompareMvxItemType(text, type), 0) << type;
  EXPECT_EQ(GetMvxItemTypeFromString(L"collection-9"), 2);
  EXPECT_EQ(CompareMvxItemType(L"collection-9", 2), 1);  // 'c' > 'C'
  EXPECT_EQ(CompareMvxItemType(L"Coll-9", 2), -1);
  EXPECT_EQ(CompareMvxItemType(nullptr, 2), -1);

  // A type word of 96 characters or more is never equal, even when it sorts
  // after the word it is compared with, with or without a '-'.
  const std::wstring long_word(95, L'z');
  EXPECT_EQ(CompareMvxItemType((long_word + L"-1").c_str(), 2), 1);
  EXPECT_EQ(CompareMvxItemType((long_word + L"z-1").c_str(), 2), -1);
  EXPECT_EQ(CompareMvxItemType((long_word + L"z").c_str(), 2), -1);

  EXPECT_EQ(create_type(L"Invoice"), 33);
  EXPECT_EQ(CompareMvxItemType(L"Invoice-3", 33), 0);
  EXPECT_NE(CompareMvxItemType(L"invoice-3", 33), 0);
}

TEST_F(ItemTypes, ParentTypesFollowTheirContextValue) {
  struct Case {
    MVXITEMTYPE type;
    LONG context1, context2;
    MVXITEMTYPE parent;
  };
  const Case cases[] = {
      {0, 1, 1, -1},  {1, 0, 0, 0},   {2, 0, 0, 1},    {2, 5, 0, 1},   {2, 0, 5, 2},   {3, 0, 0, 2},
      {4, 0, 0, 3},   {5, 0, 0, 2},   {6, 0, 0, 2},    {7, 0, 0, 2},   {8, 0, 0, 6},   {9, 0, 0, 1},
      {9, 1, 0, 2},   {9, 0, 1, 1},   {10, 0, 0, 5},   {11, 0, 0, 12}, {12, 0, 0, 4},  {13, 0, 0, 2},
      {14, 0, 0, 1},  {14, 7, 0, 15}, {14, 0, 7, 1},   {15, 0, 0, 1},  {15, -1, 0, 15}, {16, 0, 0, 2},
      {17, 0, 0, 2},  {18, 0, 0, 11}, {19, 0, 0, 2},   {20, 0, 0, 1},  {20, 0, 1, 20}, {20, 1, 0, 1},
      {21, 0, 0, 2},  {22, 0, 0, 2},  {23, 1, 1, 2}, {32, 0, 0, 2}, {33, 0, 0, 2}, {255, 0, 0, 2},
      {-3, 0, 0, 2},
  };
  for (const Case& c : cases)
    EXPECT_EQ(GetMvxParentItemType(c.type, c.context1, c.context2, 99, nullptr), c.parent)
        << c.type << " " << c.context1 << " " << c.context2;

  // The string forms exchange the second and third context values: x2 lands
  // in the unused third one, x3 decides for collections and workspaces.
  wchar_t buffer[40];
  EXPECT_STREQ(GetMvxParentItemTypeAsStringTS(buffer, 40, 2, 0, 1, 0, nullptr), L"Server");
  EXPECT_STREQ(GetMvxParentItemTypeAsStringTS(buffer, 40, 2, 0, 0, 1, nullptr), L"Collection");
  EXPECT_STREQ(GetMvxParentItemTypeAsString(20, 0, 0, 1, nullptr), L"Workspace");
  EXPECT_STREQ(GetMvxParentItemTypeAsString(14, 1, 0, 0, nullptr), L"Group");
  // Object type 1 is a collection, 18 a workspace.
  EXPECT_STREQ(GetMvxParentObjTypeAsStringTS(buffer, 40, 1, 0, 1, 0, nullptr), L"Server");
  EXPECT_STREQ(GetMvxParentObjTypeAsString(18, 0, 0, 1, nullptr), L"Workspace");
  // No parent, or a parent without a word.
  EXPECT_STREQ(GetMvxParentItemTypeAsString(0, 0, 0, 0, nullptr), L"");
  EXPECT_STREQ(GetMvxParentItemTypeAsString(12, 0, 0, 0, nullptr), L"");
}

TEST_F(ItemTypes, CustomParentAsksTheObjectForItsClassAndStaysACollection) {
  FakeClientItem item(L"Invoice", L"srv");
  EXPECT_EQ(GetMvxParentItemType(40, 0, 0, 0, item.unknown()), 2);
  EXPECT_EQ(item.class_calls(), 1);
  EXPECT_EQ(GetMvxParentItemType(12, 0, 0, 0, item.unknown()), 4);  // built-in types do not need it
  EXPECT_EQ(item.class_calls(), 1);
  wchar_t buffer[40];
  EXPECT_STREQ(GetMvxParentItemTypeAsStringTS(buffer, 40, 33, 0, 0, 0, item.unknown()), L"Collection");
  EXPECT_EQ(item.class_calls(), 2);
  EXPECT_EQ(item.extra_references(), 0);

  FakeClientItem stranger(L"Invoice", L"srv", false);
  EXPECT_EQ(GetMvxParentItemType(40, 0, 0, 0, stranger.unknown()), 2);
  EXPECT_EQ(stranger.class_calls(), 0);
  EXPECT_EQ(stranger.extra_references(), 0);
}

TEST_F(ItemTypes, ParsersStopAtTheTerminator) {
  for (const wchar_t* text : {L"Collection", L"ContElem", L"Files", L"x-", L"Weblog-1", L"see c:\\a\\Wiki-4"}) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(text)));
    GuardedBuffer buffer(text, (std::wcslen(text) + 1) * sizeof(wchar_t));
    const wchar_t* guarded = buffer.as<wchar_t>();
    long number = 0, version = 0;
    WORD type = 0;
    GetMvxItemHandleFromString(guarded, &number);
    CompareMvxItemType(guarded, 2);
    ToHandle(guarded, &type, &number, &version, TRUE);
    ToFileHandle(guarded, TRUE, &version, TRUE);
    ToNumber(guarded, L"Collection-");
  }
}

// ---- Handles ----

using Handles = ItemTypes;

TEST_F(Handles, FormattingClearsTheBufferAndReportsWhatItCopied) {
  wchar_t buffer[32];
  std::memset(buffer, 0xff, sizeof(buffer));
  EXPECT_EQ(GetMvxItemHandleAsString(2, 4294967295u, buffer, 32), 21);
  EXPECT_STREQ(buffer, L"Collection-4294967295");
  for (int i = 21; i < 32; ++i) EXPECT_EQ(buffer[i], 0) << i;

  std::memset(buffer, 0xff, sizeof(buffer));
  EXPECT_EQ(GetMvxItemHandleAsString(2, 4294967295u, buffer, 5), 4);
  EXPECT_STREQ(buffer, L"Coll");
  EXPECT_EQ(buffer[5], 0xffff);

  std::memset(buffer, 0xff, sizeof(buffer));
  EXPECT_EQ(GetMvxItemHandleAsString(2, 4294967295u, nullptr, 32), 21);
  EXPECT_EQ(GetMvxItemHandleAsString(2, 4294967295u, buffer, 0), 21);
  EXPECT_EQ(GetMvxItemHandleAsString(2, 7, buffer, -3), 12);
  EXPECT_EQ(buffer[0], 0xffff);
  EXPECT_EQ(GetMvxItemHandleAsString(3, 0, buffer, 1), 0);
  EXPECT_EQ(buffer[0], 0);

  // The whole capacity is cleared, and not one character more.
  GuardedBuffer guarded(12 * sizeof(wchar_t));
  std::memset(guarded.data(), 0xff, guarded.size());
  EXPECT_EQ(GetMvxItemHandleAsString(7, 3, guarded.as<wchar_t>(), 12), 5);
  EXPECT_STREQ(guarded.as<wchar_t>(), L"URL-3");
  EXPECT_EQ(guarded.as<wchar_t>()[11], 0);

  // At most 320 characters of the word.
  EXPECT_EQ(create_type(std::wstring(383, L'W').c_str()), 33);
  EXPECT_EQ(GetMvxItemHandleAsString(33, 7, nullptr, 0), 322);
  EXPECT_EQ(handle_of(33, 7), std::wstring(320, L'W') + L"-7");
}

TEST_F(Handles, ToNumberNeedsThePrefixAndNothingButANumberAfterIt) {
  const std::wstring prefix31(31, L'p'), prefix32(32, L'p'), text31 = prefix31 + L"9", text32 = prefix32 + L"9";
  const struct {
    const wchar_t* text;
    const wchar_t* prefix;
    long number;
  } cases[] = {
      {L"Collection-12", L"collection-", 12},   {L"COLLECTION-12", L"Collection-", 12},
      {L"Collection-12x", L"collection-", -1},  {L"Collection-1 2", L"collection-", -1},
      {L"Collection- 12", L"collection-", -1},  {L"collection-", L"collection-", -1},
      {L"collection-+", L"collection-", 0},     {L"collection--5", L"collection-", -5},
      {L"collection-99999999999", L"collection-", LONG_MAX},
      {L"Collection-12", L"file-", -1},         {L"Col", L"collection-", -1},
      {nullptr, L"c", -1},                      {L"c5", nullptr, -1},
      {L"c5", L"", -1},                         {text31.c_str(), prefix31.c_str(), 9},
      {text32.c_str(), prefix32.c_str(), -1},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ToNumber(c.text, c.prefix), c.number) << testing::PrintToString(c.text ? c.text : L"(null)");
}

TEST_F(Handles, CollectionFileGroupAndUserRecognisers) {
  EXPECT_EQ(ToCollHandle(L"C7", FALSE, TRUE), 7);
  EXPECT_EQ(ToCollHandle(L"c7", FALSE, FALSE), -1);
  EXPECT_EQ(ToCollHandle(L"42", TRUE, FALSE), 42);
  EXPECT_EQ(ToCollHandle(L"42", FALSE, TRUE), -1);
  EXPECT_EQ(ToCollHandle(L"+", TRUE, FALSE), 0);
  EXPECT_EQ(ToCollHandle(L"", TRUE, TRUE), -1);
  EXPECT_EQ(ToCollHandle(L"Collection-5", FALSE, TRUE), 5);
  EXPECT_EQ(ToCollHandle(L"Calendar-5", TRUE, TRUE), -1);

  EXPECT_EQ(ToFileHandle(L"f9", FALSE, nullptr, TRUE), 9);
  EXPECT_EQ(ToFileHandle(L"f9", FALSE, nullptr, FALSE), -1);
  EXPECT_EQ(ToFileHandle(L"file-3", FALSE, nullptr, FALSE), 3);
  EXPECT_EQ(ToFileHandle(L"Document-4", FALSE, nullptr, FALSE), 4);
  EXPECT_EQ(ToFileHandle(L"11", TRUE, nullptr, FALSE), 11);
  EXPECT_EQ(ToFileHandle(L"Files-3", TRUE, nullptr, TRUE), -1);

  EXPECT_EQ(ToGroupHandle(L"group-3", FALSE), 3);
  EXPECT_EQ(ToGroupHandle(L"3", TRUE), 3);
  EXPECT_EQ(ToGroupHandle(L"3", FALSE), -1);
  EXPECT_EQ(ToGroupHandle(L"user-3", TRUE), -1);
  EXPECT_EQ(ToUserHandle(L"USER-8", FALSE), 8);
  EXPECT_EQ(ToUserHandle(L"-8", TRUE), -8);
  EXPECT_EQ(ToUserHandle(nullptr, TRUE), -1);

  // The version is the number after the last '/', written whether or not a
  // handle was recognised (the digits-only rule leaves no room for the
  // slash), and left alone when there is no '/'.
  long version = 77;
  EXPECT_EQ(ToFileHandle(L"File-12/3", FALSE, &version, FALSE), -1);
  EXPECT_EQ(version, 3);
  EXPECT_EQ(ToFileHandle(L"a/b/File-12/40x", FALSE, &version, TRUE), -1);
  EXPECT_EQ(version, 40);
  version = 77;
  EXPECT_EQ(ToFileHandle(L"File-12", FALSE, &version, FALSE), 12);
  EXPECT_EQ(ToFileHandle(L"f12", FALSE, &version, TRUE), 12);
  EXPECT_EQ(version, 77);
}

struct Found {
  WORD type;
  long number;
  long version;
};

Found to_handle(const wchar_t* text, BOOL allow_short = FALSE) {
  Found found{0x1234, 12345, 77};
  EXPECT_EQ(ToHandle(text, &found.type, &found.number, &found.version, allow_short), 0);
  return found;
}

// Besides the known words (see the text forms' test), ToHandle looks for a
// handle inside longer text: only the first '-' counts, and only before a
// digit, after a visible character, not at the start.
TEST_F(Handles, ToHandleFindsShortFormsAndHandlesInsideLongerText) {
  EXPECT_EQ(create_type(L"Invoice"), 33);
  const struct {
    const wchar_t* text;
    BOOL allow_short;
    WORD type;
    long number;
  } cases[] = {
      {L"c7", TRUE, 2, 7},
      {L"f7", TRUE, 3, 7},
      {L"c7", FALSE, 0xFFFF, -1},
      {L"document-6", FALSE, 3, 6},
      {L"subscription-+", FALSE, 13, 0},
      {L"see C:\\work\\Weblog-12.htm", FALSE, 22, 12},
      {L"http://srv/Server-4,x", FALSE, 1, 4},
      {L"a.b,ContElem-8", FALSE, 18, 8},
      {L"please see Invoice-17 today", FALSE, 33, 17},
      {L"x-3", FALSE, 0xFFFF, -1},     {L"my-doc File-5", FALSE, 0xFFFF, -1}, {L"File -5", FALSE, 0xFFFF, -1},
      {L"-5", FALSE, 0xFFFF, -1},      {L"File-", FALSE, 0xFFFF, -1},         {L"Files-2", FALSE, 0xFFFF, -1},
      {L"", FALSE, 0xFFFF, -1},        {L"a/-5", FALSE, 0xFFFF, -1},
  };
  for (const auto& c : cases) {
    const Found found = to_handle(c.text, c.allow_short);
    EXPECT_EQ(found.type, c.type) << testing::PrintToString(std::wstring(c.text));
    EXPECT_EQ(found.number, c.number) << testing::PrintToString(std::wstring(c.text));
  }
  // The number rule rejects the version, the search inside accepts it.
  const Found versioned = to_handle(L"File-12/3");
  EXPECT_EQ(versioned.type, 3);
  EXPECT_EQ(versioned.number, 12);
  EXPECT_EQ(versioned.version, 3);

  Found found{0x1234, 12345, 77};
  EXPECT_EQ(ToHandle(nullptr, &found.type, &found.number, nullptr, TRUE), 0);
  EXPECT_EQ(found.type, 0xFFFF);
  EXPECT_EQ(found.number, -1);
  EXPECT_EQ(ToHandle(L"URL-3", nullptr, nullptr, nullptr, FALSE), 0);
}

// ---- The buffer-filling (TS) functions from many threads at once ----

TEST_F(ItemTypes, FormattingAndParsingFromEightThreads) {
  ASSERT_EQ(create_type(L"Invoice"), 33);
  ASSERT_EQ(create_type(L"Purchase"), 34);
  const std::pair<MVXITEMTYPE, const wchar_t*> samples[] = {{2, L"Collection"}, {3, L"File"},    {6, L"BulletinBoard"},
                                                            {8, L"Bulletin"},   {18, L"ContElem"}, {22, L"Weblog"},
                                                            {33, L"Invoice"},   {34, L"Purchase"}};
  std::atomic<int> failures{0};

  auto work = [&](int thread) {
    wchar_t buffer[128];
    for (int round = 0; round < 60; ++round) {
      const auto& [sample_type, sample_word] = samples[(thread + round) % std::size(samples)];
      const DWORD number = static_cast<DWORD>(thread * 100000 + round);
      const std::wstring expected = std::wstring(sample_word) + L"-" + std::to_wstring(number);
      bool ok = GetMvxItemHandleAsString(sample_type, number, buffer, 128) == static_cast<int>(expected.size()) &&
                expected == buffer;
      long parsed = -1;
      ok = ok && GetMvxItemHandleFromString(buffer, &parsed) == sample_type && parsed == static_cast<long>(number);
      ok = ok && CompareMvxItemType(buffer, sample_type) == 0;
      ok = ok && std::wstring(GetMvxItemTypeAsStringTS(sample_type, buffer, 128)) == sample_word;
      const std::wstring inside = L"see c:\\work\\" + expected + L".htm";
      WORD type = 0;
      ok = ok && ToHandle(inside.c_str(), &type, &parsed, nullptr, FALSE) == 0 && type == sample_type &&
           parsed == static_cast<long>(number);
      ok = ok && std::wstring(MvxGetCustomItemTypeAsStringTS(34, buffer, 128)) == L"Purchase";
      ok = ok && GetMvxParentItemTypeAsStringTS(buffer, 128, 12, 0, 0, 0, nullptr) == buffer && buffer[0] == 0;
      if (!ok) ++failures;
    }
  };

  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread) threads.emplace_back(work, thread);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures.load(), 0);
}

}  // namespace
}  // namespace mvsup::test
