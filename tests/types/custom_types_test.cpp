// Custom item types: numbering, labels and class records in the settings
// store, checked against the raw registry.
#include <windows.h>
// The client item interface's id is defined in this translation unit.
#include <initguid.h>

#include <gtest/gtest.h>

#include <string>

#include "types_test_support.h"

namespace mvsup::test {
namespace {

class CustomTypes : public RegistrySandbox {};

constexpr const wchar_t* kInvoiceEncoded = L"0049006E0076006F006900630065";

std::wstring custom_word(MVXITEMTYPE type) {
  wchar_t buffer[400];
  return MvxGetCustomItemTypeAsStringTS(type, buffer, 400);
}

std::wstring custom_display(MVXITEMTYPE type) {
  wchar_t buffer[400];
  return MvxGetCustomItemTypeAsDisplayStringTS(type, buffer, 400);
}

// The class record's answer as "type superclass flags".
std::wstring client_defined(const wchar_t* text, const wchar_t* server) {
  wchar_t superclass[40] = L"x";
  DWORD flags = 99;
  const MVXITEMTYPE type = MvxGetClientDefinedCustomItemType(text, server, superclass, &flags);
  return std::to_wstring(type) + L" " + superclass + L" " + std::to_wstring(flags);
}

TEST_F(CustomTypes, ClassWordsAreStoredAsHexUnits) {
  MVXITEMTYPE type = 0;
  EXPECT_EQ(MvxCreateCustomItemType(L"Invoice-17", &type), 1);
  EXPECT_EQ(type, 33);
  const RawValue stored = read_value(HKEY_CURRENT_USER, kMapsKey, kInvoiceEncoded);
  EXPECT_EQ(stored.type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(stored.as_dword(), 1u);
  EXPECT_EQ(MvxGetCustomItemType(L"Invoice"), 33);
  EXPECT_EQ(MvxGetCustomItemType(L"Invoice-99"), 33);
  EXPECT_EQ(MvxGetCustomItemType(L"invoice"), 16);
  EXPECT_EQ(MvxGetCustomItemType(L""), 16);
  EXPECT_EQ(MvxGetCustomItemType(nullptr), 16);

  EXPECT_EQ(create_type(L"\u00dc\u20ac\U0001F600"), 34);
  EXPECT_TRUE(value_exists(HKEY_CURRENT_USER, kMapsKey, L"00DC20ACD83DDE00"));
  EXPECT_EQ(custom_word(34), L"\u00dc\u20ac\U0001F600");
}

TEST_F(CustomTypes, NumbersGrowAndAreNeverReused) {
  EXPECT_EQ(create_type(L"Invoice"), 33);
  EXPECT_EQ(create_type(L"Order"), 34);
  // Created again: a new number, the old one is gone.
  EXPECT_EQ(create_type(L"Invoice"), 35);
  EXPECT_EQ(MvxGetCustomItemType(L"Invoice"), 35);
  EXPECT_EQ(custom_word(33), L"");
  EXPECT_EQ(custom_word(34), L"Order");
  EXPECT_EQ(custom_word(35), L"Invoice");

  EXPECT_EQ(MvxDeleteCustomItemType(L"Invoice"), 1);
  EXPECT_EQ(MvxGetCustomItemType(L"Invoice"), 16);
  EXPECT_EQ(MvxDeleteCustomItemType(L"Invoice"), 0);
  EXPECT_EQ(create_type(L"Receipt"), 35);  // one above the highest left: Order's 2
  EXPECT_EQ(MvxDeleteCustomItemType(L"Receipt"), 1);
  EXPECT_EQ(MvxDeleteCustomItemType(L"Order"), 1);
  EXPECT_EQ(create_type(L"Memo"), 33);

  // An empty class word is never stored.
  MVXITEMTYPE type = 0;
  EXPECT_EQ(MvxCreateCustomItemType(L"", &type), 0);
  EXPECT_EQ(type, 16);
  EXPECT_EQ(MvxCreateCustomItemType(L"-5", nullptr), 0);
  EXPECT_EQ(MvxDeleteCustomItemType(nullptr), 0);
  EXPECT_FALSE(value_exists(HKEY_CURRENT_USER, kMapsKey, L""));
}

// Assignments made elsewhere count for the numbering; only names of hex
// digits in groups of four are decoded.
TEST_F(CustomTypes, NumbersContinueFromAssignmentsMadeElsewhere) {
  set_dword(HKEY_CURRENT_USER, kMapsKey, L"Foo", 5);
  set_dword(HKEY_CURRENT_USER, kMapsKey, L"0046006f006F", 6);
  set_dword(HKEY_CURRENT_USER, kMapsKey, L"00460", 7);
  set_dword(HKEY_CURRENT_USER, kMapsKey, L"0046006G", 8);
  set_dword(HKEY_CURRENT_USER, kMapsKey, L"004100410041", 40);
  EXPECT_EQ(create_type(L"Invoice"), 73);
  const std::pair<MVXITEMTYPE, const wchar_t*> words[] = {{37, L"Foo"},      {38, L"Foo"}, {39, L"00460"},
                                                          {40, L"0046006G"}, {41, L""},    {72, L"AAA"},
                                                          {32, L""},         {-1, L""}};
  for (const auto& [type, word] : words) EXPECT_EQ(custom_word(type), word) << type;
  EXPECT_EQ(GetMvxItemTypeFromString(L"AAA-1"), 72);

  wchar_t buffer[8];
  std::fill(std::begin(buffer), std::end(buffer), L'#');
  EXPECT_EQ(MvxGetCustomItemTypeAsStringTS(37, buffer, 3), buffer);
  EXPECT_STREQ(buffer, L"Fo");
  EXPECT_EQ(buffer[3], L'#');
  EXPECT_EQ(MvxGetCustomItemTypeAsStringTS(37, nullptr, 3), nullptr);
}

TEST_F(CustomTypes, ADataValueThatIsNoDwordEndsTheLookupButNotTheNumbering) {
  // Created first and sorting first, so it comes first in any enumeration.
  set_string(HKEY_CURRENT_USER, kMapsKey, L"!", L"long text");
  EXPECT_EQ(create_type(L"Invoice"), 33);
  EXPECT_EQ(MvxGetCustomItemType(L"Invoice"), 33);
  EXPECT_EQ(custom_word(33), L"");
}

TEST_F(CustomTypes, LongClassWordsPassThroughWhileSharedBuffersHold79) {
  const std::wstring word(100, L'L');
  EXPECT_EQ(create_type(word.c_str()), 33);
  EXPECT_EQ(create_type(L"Short"), 34);
  EXPECT_EQ(custom_word(33), word);
  EXPECT_EQ(custom_word(34), L"Short");
  EXPECT_EQ(std::wstring(MvxGetCustomItemTypeAsString(33)), word.substr(0, 79));
  EXPECT_EQ(std::wstring(GetMvxItemTypeAsString(33)), word.substr(0, 79));
  EXPECT_EQ(word_of(33), word);
  EXPECT_EQ(GetMvxItemTypeFromString((word + L"-2").c_str()), 33);

  // Only the first 383 characters make the class word.
  const std::wstring longest(383, L'M');
  EXPECT_EQ(create_type((longest + L"XYZ").c_str()), 35);
  EXPECT_EQ(MvxGetCustomItemType(longest.c_str()), 35);
  EXPECT_EQ(custom_word(35), longest);
}

TEST_F(CustomTypes, LabelsAreWrittenEncodedButReadUnderThePlainWord) {
  EXPECT_EQ(create_type(L"Invoice"), 33);
  EXPECT_EQ(MvxSetCustomItemLabel(L"Invoice", L"Rechnung"), 1);
  EXPECT_EQ(read_value(HKEY_CURRENT_USER, kNamesKey, kInvoiceEncoded).as_string(), L"Rechnung");
  EXPECT_EQ(custom_display(33), L"Invoice");

  set_string(HKEY_CURRENT_USER, kNamesKey, L"Invoice", L"Bill");
  EXPECT_EQ(custom_display(33), L"Bill");
  EXPECT_STREQ(MvxGetCustomItemTypeAsDisplayString(33), L"Bill");
  wchar_t buffer[40];
  EXPECT_EQ(GetMvxItemTypeAsDisplayString(33, buffer, 40), 1);
  EXPECT_STREQ(buffer, L"Bill");
  set_string(HKEY_CURRENT_USER, kNamesKey, L"Invoice", std::wstring(100, L'b'));
  EXPECT_EQ(custom_display(33), std::wstring(80, L'b'));
  set_string(HKEY_CURRENT_USER, kNamesKey, L"Invoice", L"");
  EXPECT_EQ(custom_display(33), L"Invoice");

  // A label that only repeats the text, or none, deletes the stored one.
  EXPECT_EQ(MvxSetCustomItemLabel(L"Invoice", L"invoice"), 1);
  EXPECT_FALSE(value_exists(HKEY_CURRENT_USER, kNamesKey, kInvoiceEncoded));
  EXPECT_EQ(MvxSetCustomItemLabel(L"Invoice-3", L"Bill"), 1);
  EXPECT_EQ(read_value(HKEY_CURRENT_USER, kNamesKey, kInvoiceEncoded).as_string(), L"Bill");
  EXPECT_EQ(MvxSetCustomItemLabel(L"Invoice-3", nullptr), 1);
  EXPECT_FALSE(value_exists(HKEY_CURRENT_USER, kNamesKey, kInvoiceEncoded));
  EXPECT_EQ(MvxSetCustomItemLabel(L"", L"x"), 0);

  // Deleting the type deletes its label.
  EXPECT_EQ(MvxSetCustomItemLabel(L"Invoice", L"Rechnung"), 1);
  EXPECT_EQ(MvxDeleteCustomItemType(L"Invoice"), 1);
  EXPECT_FALSE(value_exists(HKEY_CURRENT_USER, kNamesKey, kInvoiceEncoded));
  EXPECT_FALSE(value_exists(HKEY_CURRENT_USER, kMapsKey, kInvoiceEncoded));
}

TEST_F(CustomTypes, ClassRecordsAreFiledPerServerPart) {
  const std::wstring record = kClassesKey + L"\\http://srv/\\Invoice";
  EXPECT_EQ(MvxMapSuperclassItemType(L"http://srv/mvcgi/mv.py/abc", L"Invoice", L"File"), 1);
  EXPECT_EQ(read_value(HKEY_CURRENT_USER, record, nullptr).as_string(), L"File");
  EXPECT_EQ(read_value(HKEY_CURRENT_USER, kMapsKey, kInvoiceEncoded).as_dword(), 1u);
  // Recorded again: the number stays.
  EXPECT_EQ(MvxMapSuperclassItemType(L"http://srv/mvcgi/mv.py/", L"Invoice", L"Collection"), 1);
  EXPECT_EQ(read_value(HKEY_CURRENT_USER, record, nullptr).as_string(), L"Collection");
  EXPECT_EQ(MvxGetCustomItemType(L"Invoice"), 33);
  EXPECT_EQ(MvxMapSuperclassItemType(L"http://srv/", L"Order", L"Invoice"), 1);
  EXPECT_EQ(MvxGetCustomItemType(L"Order"), 34);

  const LPCWSTR version[] = {L"version", L"Invoice"}, invoice[] = {L"Invoice"}, content[] = {L"CONTELEM"},
                rendition[] = {L"Rendition"}, none[] = {nullptr};
  const struct {
    BOOL has_children;
    const LPCWSTR* children;
    DWORD flags;
  } cases[] = {{TRUE, version, 2},  {TRUE, invoice, 3}, {TRUE, content, 2}, {TRUE, rendition, 2},
               {FALSE, invoice, 0}, {TRUE, none, 3},    {TRUE, nullptr, 3}};
  for (const auto& c : cases) {
    EXPECT_EQ(MvxMapChildItemTypes(L"http://srv/mvcgi/mv.py/", L"Invoice", c.has_children, c.children), 1);
    EXPECT_EQ(read_value(HKEY_CURRENT_USER, record, L"Flags").as_dword(), c.flags);
  }

  EXPECT_EQ(client_defined(L"Invoice-8", L"http://srv/"), L"33 Collection 3");
  EXPECT_EQ(MvxGetClientDefinedCustomItemType(L"Invoice", L"http://srv/", nullptr, nullptr), 33);
  EXPECT_EQ(client_defined(L"Invoice", L"http://other/"), L"0  0");
  EXPECT_EQ(client_defined(L"Invoice", L""), L"0  0");
  EXPECT_EQ(MvxGetClientDefinedCustomItemType(L"Invoice", nullptr, nullptr, nullptr), 0);
}

TEST_F(CustomTypes, ClassRecordKeysAreLimitedTo254Characters) {
  // 26 for "MVSUP\CustomTypes\Classes\", then server and class word.
  const std::wstring server(200, L's'), word(28, L'c'), too_long(29, L'c');
  EXPECT_EQ(MvxMapSuperclassItemType(server.c_str(), too_long.c_str(), L"File"), 0);
  EXPECT_EQ(MvxMapChildItemTypes(server.c_str(), too_long.c_str(), FALSE, nullptr), 0);
  EXPECT_FALSE(key_exists(HKEY_CURRENT_USER, kClassesKey));
  EXPECT_FALSE(key_exists(HKEY_CURRENT_USER, kMapsKey));

  EXPECT_EQ(MvxMapSuperclassItemType(server.c_str(), word.c_str(), L"File"), 1);
  EXPECT_EQ(MvxMapChildItemTypes(server.c_str(), word.c_str(), TRUE, nullptr), 1);
  EXPECT_TRUE(key_exists(HKEY_CURRENT_USER, kClassesKey + L"\\" + server + L"\\" + word));
  EXPECT_EQ(MvxGetClientDefinedCustomItemType(word.c_str(), server.c_str(), nullptr, nullptr), 33);
  EXPECT_EQ(MvxGetClientDefinedCustomItemType(too_long.c_str(), server.c_str(), nullptr, nullptr), 0);

  // An empty server part or class word.
  EXPECT_EQ(MvxMapSuperclassItemType(L"", L"Invoice", L"File"), 0);
  EXPECT_EQ(MvxMapSuperclassItemType(L"mvcgi/mv.py/", L"Invoice", L"File"), 0);
  EXPECT_EQ(MvxMapSuperclassItemType(L"srv", nullptr, L"File"), 0);
}

TEST_F(CustomTypes, ClientDefinedNumbersAnUnknownClassAndReadsOnlyAFittingSuperclass) {
  const std::wstring record = kClassesKey + L"\\srv\\Memo";
  set_string(HKEY_CURRENT_USER, record, nullptr, L"File");
  EXPECT_EQ(MvxGetClientDefinedCustomItemType(L"Memo-4", L"srv", nullptr, nullptr), 33);
  EXPECT_EQ(MvxGetCustomItemType(L"Memo"), 33);
  // A superclass word that does not fit the 40-character buffer is not read.
  set_string(HKEY_CURRENT_USER, record, nullptr, std::wstring(40, L'S'));
  EXPECT_EQ(client_defined(L"Memo", L"srv"), L"33  0");
  set_string(HKEY_CURRENT_USER, record, nullptr, std::wstring(39, L'S'));
  EXPECT_EQ(client_defined(L"Memo", L"srv"), L"33 " + std::wstring(39, L'S') + L" 0");
}

TEST_F(CustomTypes, SuperclassAndContainerLookupWithAndWithoutAnObject) {
  // Server "a" sorts before "b": without an object, "a" answers.
  EXPECT_EQ(MvxMapSuperclassItemType(L"b", L"Invoice", L"Receipt"), 1);
  EXPECT_EQ(MvxMapSuperclassItemType(L"a", L"Invoice", L"File"), 1);
  const LPCWSTR folder[] = {L"Invoice"}, leaf[] = {L"Version"};
  EXPECT_EQ(MvxMapChildItemTypes(L"a", L"Invoice", TRUE, folder), 1);
  EXPECT_EQ(MvxMapChildItemTypes(L"b", L"Invoice", TRUE, leaf), 1);
  EXPECT_EQ(MvxGetSuperclassItemType(L"Invoice-5", nullptr), 3);
  EXPECT_EQ(MvxGetSuperclassItemTypeA("Invoice", nullptr), 3);
  EXPECT_EQ(MvxIsCustomContainerType(L"Invoice", nullptr), 1);

  FakeClientItem on_b(L"Invoice", L"b");
  EXPECT_EQ(MvxGetSuperclassItemType(L"Invoice", on_b.unknown()), 34);  // Receipt, numbered on the way
  EXPECT_EQ(MvxGetCustomItemType(L"Receipt"), 34);
  EXPECT_EQ(MvxIsCustomContainerType(L"Invoice", on_b.unknown()), 0);
  EXPECT_EQ(on_b.server_calls(), 2);
  EXPECT_EQ(on_b.extra_references(), 0);

  // An object names only its own server: no search of the others.
  FakeClientItem on_c(L"Invoice", L"c");
  EXPECT_EQ(MvxGetSuperclassItemType(L"Invoice", on_c.unknown()), 0);
  EXPECT_EQ(MvxIsCustomContainerType(L"Invoice", on_c.unknown()), 0);
  FakeClientItem no_server(L"Invoice", L"");
  EXPECT_EQ(MvxGetSuperclassItemType(L"Invoice", no_server.unknown()), 0);
  FakeClientItem stranger(L"Invoice", L"a", false);
  EXPECT_EQ(MvxGetSuperclassItemType(L"Invoice", stranger.unknown()), 0);
  EXPECT_EQ(stranger.server_calls(), 0);
  EXPECT_EQ(stranger.extra_references(), 0);

  for (const wchar_t* text : {L"", static_cast<const wchar_t*>(nullptr), L"Order"}) {
    EXPECT_EQ(MvxGetSuperclassItemType(text, nullptr), 0);
    EXPECT_EQ(MvxIsCustomContainerType(text, nullptr), 0);
  }
}

// A committed item info of a custom type names its base type in the custom
// text property "MVClient BaseType"; built-in types answer for themselves.
TEST_F(CustomTypes, SuperclassFromAnItemInfosBaseTypeProperty) {
  const MVXITEMTYPE invoice = create_type(L"Invoice");
  BYTE* block = nullptr;
  ASSERT_EQ(MvxPutMvHandlePropValue(0x20, invoice, 17, nullptr, &block), S_OK);
  EXPECT_EQ(MvxGetSuperclassFromItemInfo(block), 16) << "no base type recorded";
  const std::pair<const wchar_t*, MVXITEMTYPE> base_types[] = {
      {L"", 16}, {L"Collection-5", 2}, {L"Receipt", 16}};  // the last: a word without a number
  for (const auto& [text, type] : base_types) {
    ASSERT_EQ(MvxPutCustomStringProp(L"MVClient BaseType", text, 1, &block), S_OK);
    EXPECT_EQ(MvxGetSuperclassFromItemInfo(block), type) << testing::PrintToString(std::wstring(text));
  }
  const MVXITEMTYPE receipt = create_type(L"Receipt");
  EXPECT_EQ(MvxGetSuperclassFromItemInfo(block), receipt);

  // Outside 33-255 the item info's own type is the answer.
  for (MVXITEMTYPE type : {3, 32, 256, 0xFFFF}) {
    ASSERT_EQ(MvxPutMvHandlePropValue(0x20, type, 17, nullptr, &block), S_OK);
    EXPECT_EQ(MvxGetSuperclassFromItemInfo(block), type);
  }
  EXPECT_EQ(FreeMvxInfo(block), nullptr);

  EXPECT_EQ(MvxGetSuperclassFromItemInfo(nullptr), 16);
  // A custom-typed block that does not hold together has no base type.
  BYTE broken[48] = {48, 0, 0, 0, 0, 0, 33};
  broken[42] = 5;  // five entries that do not fit
  EXPECT_EQ(MvxGetSuperclassFromItemInfo(broken), 16);
}

}  // namespace
}  // namespace mvsup::test
