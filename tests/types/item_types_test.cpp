// Item and object types: text forms, display names, mappings, parsing and
// parents, called through the exports.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "fake_client_item.h"
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

TEST_F(ItemTypes, EveryFormOfTheWordOfEachBuiltinType) {
  for (MVXITEMTYPE type = -2; type <= 32; ++type) {
    SCOPED_TRACE(type);
    const std::wstring expected = (type >= 0 && type <= 22) ? kWords[type] : L"";
    EXPECT_EQ(word_of(type), expected);
    EXPECT_EQ(http_word_of(type), expected);
    EXPECT_EQ(std::wstring(GetMvxItemTypeAsString(type)), expected);
    EXPECT_EQ(std::wstring(GetMvxItemTypeAsHttpString(type)), expected);
    EXPECT_EQ(std::string(GetMvxItemTypeAsStringA(type)), std::string(expected.begin(), expected.end()));
  }
  // Object types reach the same words through the mapping.
  wchar_t buffer[40];
  EXPECT_STREQ(GetMvxObjTypeAsStringTS(0, buffer, 40), L"File");
  EXPECT_STREQ(GetMvxObjTypeAsString(8), L"User");
  EXPECT_STREQ(GetMvxObjTypeAsString(12), L"");
  EXPECT_STREQ(GetMvxObjTypeAsStringTS(-1, buffer, 40), L"");
}

TEST_F(ItemTypes, DocumentWordFollowsTheDocumentClassSetting) {
  set_dword(HKEY_CURRENT_USER, client_path(L"MVSUP\\Settings"), L"HalcyoDocClassId", 1);
  GetMvSupMode(MVSUP_MODE_RELOAD);
  EXPECT_EQ(word_of(3), L"Document");
  EXPECT_STREQ(GetMvxItemTypeAsString(3), L"Document");
  EXPECT_EQ(http_word_of(3), L"File");
  EXPECT_EQ(handle_of(3, 5), L"Document-5");
  wchar_t buffer[40];
  GetMvxItemHandleAsHttpString(3, 5, buffer, 40);
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
  EXPECT_EQ(GetMvxItemTypeAsStringTS(2, buffer, 5), buffer);
  EXPECT_STREQ(buffer, L"Coll");
  EXPECT_EQ(buffer[5], 0xffff);

  std::memset(buffer, 0xff, sizeof(buffer));
  EXPECT_EQ(GetMvxItemTypeAsStringTS(2, buffer, 0), buffer);
  EXPECT_EQ(GetMvxItemTypeAsHttpStringTS(2, buffer, -1), buffer);
  EXPECT_EQ(buffer[0], 0xffff);
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
      {0, L"Mervane Client"}, {1, L"Server"},      {2, L"Collection"},  {3, L"Document"},   {5, L"Calendar"},
      {6, L"Discussion"},     {7, L"URL"},         {8, L"Topic"},       {9, L"Saved Query"}, {10, L"Event"},
      {11, L"Rendition"},     {12, L"Version"},    {13, L"Subscription"}, {14, L"User"},    {15, L"Group"},
      {17, L"Object"},        {18, L"Content Element"}, {19, L"Mail Message"}, {20, L"Workspace"}, {21, L"Wiki"},
      {22, L"Weblog"},
  };
  wchar_t buffer[64];
  for (const auto& [type, text] : known) {
    SCOPED_TRACE(type);
    EXPECT_EQ(GetMvxItemTypeAsDisplayString(type, buffer, 64), 1);
    EXPECT_STREQ(buffer, text);
  }
  for (MVXITEMTYPE type : {4, 16, 23, 32, 33, 255, -1}) {
    SCOPED_TRACE(type);
    EXPECT_EQ(GetMvxItemTypeAsDisplayString(type, buffer, 64), 0);
    EXPECT_STREQ(buffer, L"Unknown Object Type");
  }
  // A custom type shows its class word.
  EXPECT_EQ(create_type(L"Invoice"), 33);
  EXPECT_EQ(GetMvxItemTypeAsDisplayString(33, buffer, 64), 1);
  EXPECT_STREQ(buffer, L"Invoice");
}

TEST_F(ItemTypes, ObjectTypeMappingsAreNotInverseForTypeFour) {
  // item type -> object type, from the catalogue by hand.
  const LONG object_of[] = {-1, 2, 1, 0, 0, 4, 5, 6, 7, 10, 11, 15, 14, 13, 8, 9, -1, -1, 16, 17, 18, 19, 20};
  for (MVXITEMTYPE type = 0; type <= 22; ++type) EXPECT_EQ(GetMvxObjTypeFromItemType(type), object_of[type]) << type;
  for (MVXITEMTYPE type : {-5, -1, 23, 32}) EXPECT_EQ(GetMvxObjTypeFromItemType(type), -1) << type;
  for (MVXITEMTYPE type : {33, 40, 255, 300}) EXPECT_EQ(GetMvxObjTypeFromItemType(type), type) << type;

  const MVXITEMTYPE item_of[] = {3, 2, 1, -1, 5, 6, 7, 8, 14, 15, 9, 10, -1, 13, 12, 11, 18, 19, 20, 21, 22};
  for (LONG object = 0; object <= 20; ++object) EXPECT_EQ(GetMvxItemTypeFromObjType(object), item_of[object]) << object;
  for (LONG object : {-7, -1, 21, 32}) EXPECT_EQ(GetMvxItemTypeFromObjType(object), -1) << object;
  EXPECT_EQ(GetMvxItemTypeFromObjType(40), 40);
  EXPECT_EQ(GetMvxItemTypeFromObjType(GetMvxObjTypeFromItemType(4)), 3);
}

TEST_F(ItemTypes, ParsingTriesTheWordsInTheirFixedOrder) {
  const std::pair<const wchar_t*, MVXITEMTYPE> cases[] = {
      {L"FILE-12", 3},          {L"document-12", 3},      {L"Document", 3},       {L"file", 3},
      {L"Files-12", 16},        {L"Filet", 16},           {L"BulletinBoard-4", 6}, {L"Bulletin-4", 8},
      {L"bulletinboard", 6},    {L"BulletinBoards-4", 16}, {L"ContElement-5", 18}, {L"contelem", 18},
      {L"ContEle-5", 16},       {L"URL-1", 7},            {L"Userx-1", 16},       {L"user", 14},
      {L"MVClient-0", 0},       {L"Server-9", 1},         {L"Version-2", 12},     {L"Rendition-2", 11},
      {L"Subscription-1", 13},  {L"Object-1", 17},        {L"MailMessage-3", 19}, {L"Workspace-3", 20},
      {L"Wiki-3", 21},          {L"Weblog-3", 22},        {L"SavedQuery-3", 9},   {L"Event-3", 10},
      {L"Group-3", 15},         {L"Calendar-3", 5},       {L"Collection-3", 2},   {L"", 16},
      {L"-5", 16},              {L" File-1", 16},
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
  const wchar_t* const texts[] = {L"Collection-123", L"Collection-abc", L"File-  42x", L"File--17", L"File-+8",
                                  L"File-99999999999", L"File--99999999999", L"File-0x1F", L"Weblog-12.htm",
                                  L"Bulletin-7-8"};
  for (const wchar_t* text : texts) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(text)));
    long number = 12345;
    GetMvxItemHandleFromString(text, &number);
    EXPECT_EQ(number, std::wcstol(std::wcschr(text, L'-') + 1, nullptr, 10));
  }
  long number = 12345;
  EXPECT_EQ(GetMvxItemHandleFromString(L"Collection", &number), 2);
  EXPECT_EQ(number, 0);
  EXPECT_EQ(GetMvxItemHandleFromString(L"Collection-77", nullptr), 2);
  number = 12345;
  EXPECT_EQ(GetMvxItemHandleFromString(nullptr, &number), 16);
  EXPECT_EQ(number, 0);
  number = 12345;
  EXPECT_EQ(GetMvxItemHandleFromString(L"Nothing-5", &number), 16);
  EXPECT_EQ(number, 5);

  number = 0;
  EXPECT_EQ(GetMvxItemHandleFromStringA("FILE-7", &number), 3);
  EXPECT_EQ(number, 7);
  number = 12345;
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

TEST_F(ItemTypes, CompareIsCaseSensitiveUnlikeParsing) {
  EXPECT_EQ(CompareMvxItemType(L"Collection-9", 2), 0);
  EXPECT_EQ(CompareMvxItemType(L"Collection", 2), 0);
  EXPECT_EQ(GetMvxItemTypeFromString(L"collection-9"), 2);
  EXPECT_EQ(CompareMvxItemType(L"collection-9", 2), 1);  // 'c' > 'C'
  EXPECT_EQ(CompareMvxItemType(L"Coll-9", 2), -1);
  EXPECT_EQ(CompareMvxItemType(L"Server-1", 2), 1);
  EXPECT_EQ(CompareMvxItemType(L"Document-1", 3), -1);
  EXPECT_EQ(CompareMvxItemType(nullptr, 4), 0);
  EXPECT_EQ(CompareMvxItemType(L"-4", 16), 0);
  EXPECT_EQ(CompareMvxItemType(nullptr, 2), -1);

  // A type word of 96 characters or more is never equal, even when it sorts
  // after the word it is compared with.
  const std::wstring long_word(95, L'z');
  EXPECT_EQ(CompareMvxItemType((long_word + L"-1").c_str(), 2), 1);
  EXPECT_EQ(CompareMvxItemType((long_word + L"z-1").c_str(), 2), -1);

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
}

TEST_F(ItemTypes, ParentStringsExchangeTheSecondAndThirdContextValues) {
  wchar_t buffer[40];
  // x2 lands in the unused third context value; x3 decides for collections.
  EXPECT_STREQ(GetMvxParentItemTypeAsStringTS(buffer, 40, 2, 0, 1, 0, nullptr), L"Server");
  EXPECT_STREQ(GetMvxParentItemTypeAsStringTS(buffer, 40, 2, 0, 0, 1, nullptr), L"Collection");
  EXPECT_STREQ(GetMvxParentItemTypeAsString(20, 0, 1, 0, nullptr), L"Server");
  EXPECT_STREQ(GetMvxParentItemTypeAsString(20, 0, 0, 1, nullptr), L"Workspace");
  EXPECT_STREQ(GetMvxParentItemTypeAsString(14, 1, 0, 0, nullptr), L"Group");
  // Object type 1 is a collection, 18 a workspace.
  EXPECT_STREQ(GetMvxParentObjTypeAsStringTS(buffer, 40, 1, 0, 1, 0, nullptr), L"Server");
  EXPECT_STREQ(GetMvxParentObjTypeAsStringTS(buffer, 40, 1, 0, 0, 1, nullptr), L"Collection");
  EXPECT_STREQ(GetMvxParentObjTypeAsString(18, 0, 0, 1, nullptr), L"Workspace");
  EXPECT_STREQ(GetMvxParentObjTypeAsString(15, 0, 0, 0, nullptr), L"Version");  // a rendition
  // No parent, or a parent without a word.
  EXPECT_STREQ(GetMvxParentItemTypeAsString(0, 0, 0, 0, nullptr), L"");
  EXPECT_STREQ(GetMvxParentItemTypeAsString(12, 0, 0, 0, nullptr), L"");
  EXPECT_STREQ(GetMvxParentItemTypeAsString(4, 0, 0, 0, nullptr), L"File");
}

TEST_F(ItemTypes, CustomParentAsksTheObjectForItsClassAndStaysACollection) {
  FakeClientItem item(L"Invoice", L"srv");
  EXPECT_EQ(GetMvxParentItemType(40, 0, 0, 0, item.unknown()), 2);
  EXPECT_EQ(item.class_calls(), 1);
  EXPECT_EQ(item.extra_references(), 0);
  // Built-in types do not need the object.
  EXPECT_EQ(GetMvxParentItemType(12, 0, 0, 0, item.unknown()), 4);
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
    GuardedText guarded(text);
    long number = 0;
    GetMvxItemHandleFromString(guarded.get(), &number);
    CompareMvxItemType(guarded.get(), 2);
    WORD type = 0;
    long version = 0;
    ToHandle(guarded.get(), &type, &number, &version, TRUE);
    ToFileHandle(guarded.get(), TRUE, &version, TRUE);
    ToNumber(guarded.get(), L"Collection-");
  }
}

}  // namespace
}  // namespace mvsup::test
