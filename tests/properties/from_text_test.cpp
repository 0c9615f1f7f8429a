// Filling a property from the server's text (AddItemPropToMvxInfo): each
// property type's conversion, checked as value bytes written out by hand.
// FILETIMEs were computed with Python from the Unix times of the instants.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "property_support.h"

namespace mvsup::test {
namespace {

class FromText : public testing::Test {
 protected:
  int Fill(const wchar_t* name, std::vector<const wchar_t*> values) {
    return AddItemPropToMvxInfo(0, info_, name, static_cast<int>(values.size()), values.data());
  }
  // The values attribute 16 of an id-keyed property holds, as hex.
  std::vector<std::string> Values(DWORD id) { return HexAll(ValuesOf(info_, MvxFindProperty(info_, id))); }
  std::vector<std::string> Values(const wchar_t* name) {
    return HexAll(ValuesOf(info_, MvxFindCustomProperty(info_, name)));
  }
  static std::string Handle(WORD type, DWORD number, const wchar_t* title) {
    return Hex(Bytes().u32(static_cast<uint32_t>(6 + 2 * (std::wcslen(title) + 1))).u16(type).u32(number).text(title));
  }
  static std::string Date(DWORD high, DWORD low) { return Hex(Bytes().u32(8).u32(high).u32(low)); }
  static std::string Integer(LONG value) { return Hex(Bytes().u32(4).u32(static_cast<uint32_t>(value))); }
  static std::string String(const wchar_t* text) {
    return Hex(Bytes().u32(static_cast<uint32_t>(2 * (std::wcslen(text) + 1))).text(text));
  }

  Committed created_ = Committed::create();
  Opened info_{created_.get()};
};

TEST_F(FromText, TextsAndIntegersByTheCatalogueType) {
  ASSERT_EQ(Fill(L"TITLE", {L"Quarterly report", L""}), 1);
  EXPECT_EQ(Values(0x2), (std::vector<std::string>{String(L"Quarterly report"), String(L"")}));
  ASSERT_EQ(Fill(L"getcontentlength", {L"-12abc", L"  +7", L"x", L"99999999999"}), 1);
  EXPECT_EQ(Values(0x80000040), (std::vector<std::string>{Integer(-12), Integer(7), Integer(0), Integer(0x7FFFFFFF)}));
  // A second fill replaces the values; "size" is another name of the id.
  ASSERT_EQ(Fill(L"size", {L"2048"}), 1);
  EXPECT_EQ(Values(0x80000040), (std::vector<std::string>{Integer(2048)}));
  EXPECT_EQ(MvxGetPropertyCount(info_), 2);
  EXPECT_EQ(MvxFindAttribute(info_, MvxFindProperty(info_, 0x2), MVX_ATTRIBUTE_PROPERTY_TYPE), nullptr)
      << "id-keyed properties get no type attribute";
}

TEST_F(FromText, DatesInTheirTwoServerForms) {
  // 2006-08-14 09:05:00 UTC and 2006-10-03 16:45:30 UTC.
  ASSERT_EQ(Fill(L"creationdate", {L"2006-08-14T09:05:00Z", L"", L"14.08.2006", L"2006-02-30T00:00:00Z"}), 1);
  EXPECT_EQ(Values(0x80), (std::vector<std::string>{Date(0x01c6bf80, 0xb8930600), Date(0, 0)}))
      << "a text that is no date stores nothing";
  ASSERT_EQ(Fill(L"getlastmodified", {L"Tue, 03 Oct 2006 16:45:30 GMT", L"Tue, 03 Oct 2006 16:45:30 +0200",
                                      L"2006-08-14T09:05:00Z"}),
            1);
  EXPECT_EQ(Values(0x100), (std::vector<std::string>{Date(0x01c6e70b, 0x55fdf100), Date(0x01c6e70b, 0x55fdf100)}))
      << "the time as written, its zone ignored; the creation form is not read here";
  ASSERT_EQ(Fill(L"last_login", {L"2006-08-14T09:05:00Z", L"Tue, 03 Oct 2006 16:45:30 GMT"}), 1);
  EXPECT_EQ(Values(0x10000200), (std::vector<std::string>{Date(0x01c6bf80, 0xb8930600)}));
}

TEST_F(FromText, HandlesAndTitledHandles) {
  ASSERT_EQ(Fill(L"handle", {L"File-4711", L"Collection", L"document-12x"}), 1);
  EXPECT_EQ(Values(0x20), (std::vector<std::string>{Handle(3, 4711, L""), Handle(2, 0, L""), Handle(3, 12, L"")}));
  ASSERT_EQ(Fill(L"entityowner", {L"Ann Smith  \t(User-42)"}), 1);
  EXPECT_EQ(Values(0x40), (std::vector<std::string>{Handle(14, 42, L"Ann Smith")}));
  ASSERT_EQ(Fill(L"parents", {L"Reports (Collection-12)", L"a (b) c (Folder) (Collection-7) trailing",
                              L"No parentheses", L"Root (Collection-0)", L"Open (Collection-5", L"(Collection-3)",
                              L") before (Collection-4"}),
            1);
  EXPECT_EQ(Values(0x400), (std::vector<std::string>{Handle(2, 12, L"Reports"), Handle(2, 7, L"a (b) c (Folder)"),
                                                     Handle(2, 3, L"")}));
  ASSERT_EQ(Fill(L"lockdiscovery", {L"Bob (User-57)"}), 1);
  EXPECT_EQ(Values(0x80000800), (std::vector<std::string>{Handle(14, 57, L"Bob")}));
}

TEST_F(FromText, TypesWithoutAConversionStoreNothing) {
  ASSERT_EQ(Fill(L"acl", {L"x"}), 1);
  ASSERT_EQ(Fill(L"schemata", {L"y"}), 1);
  for (DWORD id : {0x800u, 0xE0000010u}) {
    HMVXPROP property = MvxFindProperty(info_, id);
    ASSERT_NE(property, nullptr);
    EXPECT_EQ(MvxGetAttributeCount(info_, property), 1) << "attribute 16, empty";
    EXPECT_TRUE(Values(id).empty());
  }
}

TEST_F(FromText, UnknownNamesBecomeCustomTextProperties) {
  ASSERT_EQ(Fill(L"Inv", {L"x"}), 1);
  Committed committed;
  // Entry body at 52: three attributes, their table offsets counted from 54.
  Bytes expected;
  expected.header(112).u16(254).u16(1).u32(1).u32(8);
  expected.u16(3).u32(1).u32(24).u32(2).u32(34).u32(16).u32(48);
  expected.u16(1).u32(4).u32(1);           // attribute 1: type 1
  expected.u16(1).u32(8).text(L"Inv");     // attribute 2: the name
  expected.u16(1).u32(4).text(L"x");       // attribute 16: the text
  EXPECT_EQ(Hex(CommitExactly(info_, committed)), Hex(expected));
}

TEST_F(FromText, ClientDataIsKeptAsTheCustomPropertyOfThatName) {
  ASSERT_EQ(Fill(L"Client_Data", {L"view=1"}), 1);
  EXPECT_EQ(MvxFindProperty(info_, 0x10000), nullptr);
  HMVXPROP property = MvxFindCustomProperty(info_, L"client_data");
  ASSERT_NE(property, nullptr);
  EXPECT_EQ(HexAll(ValuesOf(info_, property)), (std::vector<std::string>{String(L"view=1")}));
  HMVXATTR type = MvxFindAttribute(info_, property, MVX_ATTRIBUTE_PROPERTY_TYPE);
  ASSERT_EQ(MvxGetAttributeValuesCount(info_, type), 1);
  EXPECT_EQ(Hex(ValueBytes(MvxGetAttributeValue(info_, type, 0))), Hex(Bytes().u32(4).u32(2)));
}

TEST_F(FromText, BadArgumentsChangeNothing) {
  const LPCWSTR one[] = {L"a"};
  EXPECT_EQ(AddItemPropToMvxInfo(0, nullptr, L"displayname", 1, one), 0);
  EXPECT_EQ(AddItemPropToMvxInfo(0, info_, nullptr, 1, one), 0);
  EXPECT_EQ(AddItemPropToMvxInfo(0, info_, L"", 1, one), 0);
  EXPECT_EQ(AddItemPropToMvxInfo(0, info_, L"displayname", -1, one), 0);
  EXPECT_EQ(AddItemPropToMvxInfo(0, info_, L"displayname", 1, nullptr), 0);
  EXPECT_EQ(MvxGetCommitSpace(info_), 40u);

  EXPECT_EQ(AddItemPropToMvxInfo(0xFFFFFFFF, info_, L"summary", 0, nullptr), 1);
  EXPECT_EQ(MvxGetAttributeValuesCount(info_, MvxFindAttribute(info_, MvxFindProperty(info_, 0x4), 16)), 0);
  const LPCWSTR with_null[] = {nullptr};
  EXPECT_EQ(AddItemPropToMvxInfo(0, info_, L"summary", 1, with_null), 1);
  EXPECT_EQ(Values(0x4), (std::vector<std::string>{String(L"")}));
}

}  // namespace
}  // namespace mvsup::test
