// Filling a property from the server's text (AddItemPropToMvxInfo): each
// property type's conversion, checked as value bytes written out by hand.
// FILETIMEs were computed with Python from the Unix times of the instants.
#include "property_support.h"

namespace mvsup::test {
namespace {

class FromText : public testing::Test {
 protected:
  int Fill(const wchar_t* name, const std::vector<const wchar_t*>& values) {
    return AddItemPropToMvxInfo(0, info_, name, static_cast<int>(values.size()), values.data());
  }

  Committed created_ = Committed::create();
  Opened info_{created_.get()};
};

TEST_F(FromText, EachCatalogueTypeConvertsItsTexts) {
  const std::string august = DateValue(0x01c6bf80, 0xb8930600);   // 2006-08-14 09:05:00 UTC
  const std::string october = DateValue(0x01c6e70b, 0x55fdf100);  // 2006-10-03 16:45:30 UTC
  const struct {
    const wchar_t* name;
    std::vector<const wchar_t*> texts;
    DWORD id;
    Hexes expected;
  } cases[] = {
      {L"TITLE", {L"Quarterly report", L"", nullptr}, 0x2,
       {StringValue(L"Quarterly report"), StringValue(L""), StringValue(L"")}},
      {L"getcontentlength", {L"-12abc", L"  +7", L"x", L"99999999999"}, 0x80000040,
       {IntegerValue(-12), IntegerValue(7), IntegerValue(0), IntegerValue(0x7FFFFFFF)}},
      {L"size", {L"2048"}, 0x80000040, {IntegerValue(2048)}},  // the same id again: its values replaced
      // A text that is no date, or has no FILETIME, stores nothing.
      {L"creationdate", {L"2006-08-14T09:05:00Z", L"", L"14.08.2006", L"2006-02-30T00:00:00Z"}, 0x80,
       {august, DateValue(0, 0)}},
      // The modified form: the time as written, its zone ignored; the creation form is not read.
      {L"getlastmodified",
       {L"Tue, 03 Oct 2006 16:45:30 GMT", L"Tue, 03 Oct 2006 16:45:30 +0200", L"2006-08-14T09:05:00Z"}, 0x100,
       {october, october}},
      {L"last_login", {L"2006-08-14T09:05:00Z", L"Tue, 03 Oct 2006 16:45:30 GMT"}, 0x10000200, {august}},
      {L"handle", {L"File-4711", L"Collection", L"document-12x"}, 0x20,
       {HandleValue(3, 4711, L""), HandleValue(2, 0, L""), HandleValue(3, 12, L"")}},
      {L"entityowner", {L"Ann Smith  \t(User-42)"}, 0x40, {HandleValue(14, 42, L"Ann Smith")}},
      // The last '(' and the last ')' after it; number 0 or no pair stores nothing.
      {L"parents",
       {L"Reports (Collection-12)", L"a (b) c (Folder) (Collection-7) trailing", L"No parentheses",
        L"Root (Collection-0)", L"Open (Collection-5", L"(Collection-3)", L") before (Collection-4"},
       0x400, {HandleValue(2, 12, L"Reports"), HandleValue(2, 7, L"a (b) c (Folder)"), HandleValue(2, 3, L"")}},
      {L"lockdiscovery", {L"Bob (User-57)"}, 0x80000800, {HandleValue(14, 57, L"Bob")}},
      {L"acl", {L"x"}, 0x800, {}},  // types without a conversion
      {L"schemata", {L"y"}, 0xE0000010, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(c.name)));
    ASSERT_EQ(Fill(c.name, c.texts), 1);
    HMVXPROP property = MvxFindProperty(info_, c.id);
    ASSERT_NE(property, nullptr);
    EXPECT_EQ(MvxGetAttributeCount(info_, property), 1) << "attribute 16 only, no type attribute";
    EXPECT_EQ(HexValues(info_, property), c.expected);
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
  EXPECT_EQ(HexValues(info_, property), Hexes{StringValue(L"view=1")});
  EXPECT_EQ(HexValues(info_, property, MVX_ATTRIBUTE_PROPERTY_TYPE), Hexes{IntegerValue(2)});
}

TEST_F(FromText, BadArgumentsChangeNothing) {
  const LPCWSTR one[] = {L"a"};
  EXPECT_EQ(AddItemPropToMvxInfo(0, nullptr, L"displayname", 1, one), 0);
  EXPECT_EQ(AddItemPropToMvxInfo(0, info_, nullptr, 1, one), 0);
  EXPECT_EQ(AddItemPropToMvxInfo(0, info_, L"", 1, one), 0);
  EXPECT_EQ(AddItemPropToMvxInfo(0, info_, L"displayname", -1, one), 0);
  EXPECT_EQ(AddItemPropToMvxInfo(0, info_, L"displayname", 1, nullptr), 0);
  EXPECT_EQ(MvxGetCommitSpace(info_), 40u);
  EXPECT_EQ(AddItemPropToMvxInfo(0xFFFFFFFF, info_, L"summary", 0, nullptr), 1) << "no values, reserved ignored";
  EXPECT_NE(MvxFindAttribute(info_, MvxFindProperty(info_, 0x4), 16), nullptr);
}

}  // namespace
}  // namespace mvsup::test
