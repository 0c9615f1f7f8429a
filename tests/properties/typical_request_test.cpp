// A client's typical request from end to end: the namespace extension fills
// an item info from the server's property text, commits it into one block
// and hands it on; the automation layer reads single values back without
// opening it and frees it. The header summary is written out by hand;
// FILETIMEs and DOS dates were computed with Python.
#include "property_support.h"

namespace mvsup::test {
namespace {

const ServerProperty kDocument[] = {
    {L"handle", {L"File-4711"}},
    {L"displayname", {L"Quarterly report.docx"}},
    {L"getlastmodified", {L"Tue, 03 Oct 2006 16:45:30 GMT"}},
    {L"creationdate", {L"2006-08-14T09:05:00Z"}},
    {L"getcontentlength", {L"48213"}},
    {L"parents", {L"Reports (Collection-12)", L"Finance 2006 (Collection-7)"}},
    {L"entityowner", {L"Ann Smith (User-42)"}},
};

// Each property: entry 10 + attribute 16 10 + its values (4 + L each).
constexpr DWORD kExpectedSize = 40 + 4 +
                                20 + (4 + 8) +                // handle: type, number, empty title
                                20 + (4 + 44) +               // displayname: 21 characters
                                20 + (4 + 8) +                // getlastmodified
                                20 + (4 + 8) +                // creationdate
                                20 + (4 + 4) +                // getcontentlength
                                20 + (4 + 22) + (4 + 32) +    // parents: "Reports", "Finance 2006"
                                20 + (4 + 26);                // entityowner: "Ann Smith"

TEST(TypicalRequest, ServerTextInTypedValuesOut) {
  // The namespace extension's side.
  BYTE* created = nullptr;
  ASSERT_EQ(MvxCreateItemInfo(&created), S_OK);
  HMVXINFO info = MvxOpen(created);
  ASSERT_NE(info, nullptr);
  for (const ServerProperty& property : kDocument) {
    EXPECT_EQ(AddItemPropToMvxInfo(0, info, property.name, static_cast<int>(property.values.size()),
                                   property.values.data()),
              1);
  }
  const DWORD space = MvxGetCommitSpace(info);
  ASSERT_EQ(space, kExpectedSize);
  auto* block = static_cast<BYTE*>(GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, space));
  ASSERT_NE(block, nullptr);
  ASSERT_EQ(MvxCommit(info, block), space);
  MvxClose(info);
  EXPECT_EQ(FreeMvxInfo(created), nullptr) << "after the commit the created block is no longer needed";

  Bytes header;
  header.u32(kExpectedSize)
      .u16(0)
      .u16(3)                    // the item's type: File
      .u32(48213)                // content length
      .u16(0x3543).u16(0x85af)   // modified 2006-10-03 16:45:30
      .u16(0x350e).u16(0x48a0)   // created 2006-08-14 09:05:00
      .u32(0)
      .u32(12)                   // first parent
      .u32(2)                    // number of parents
      .u32(4711)                 // the item's number
      .u32(42);                  // owner
  EXPECT_EQ(Hex(ByteVector(block, block + 40)), Hex(header));

  // The automation layer's side: single values, no opening.
  LPWSTR text = nullptr;
  EXPECT_EQ(MvxGetStringPropValue(block, PropIdFromPropertyName(L"title"), &text), 0);
  EXPECT_STREQ(text, L"Quarterly report.docx");
  DWORD id = 0;
  MVXITEMTYPE type = 0;
  DWORD number = 0;
  EXPECT_EQ(MvxGetMvHandlePropValue(block, MVX_PROP_HANDLE, &id, &type, &number, &text), 0);
  EXPECT_EQ(std::wstring(GetMvxItemTypeAsString(type)) + L"-" + std::to_wstring(number), L"File-4711");
  LONG size = 0;
  EXPECT_EQ(MvxGetIntegerPropValue(block, PropIdFromPropertyName(L"size"), &size), 0);
  EXPECT_EQ(size, 48213);
  SYSTEMTIME modified{};
  EXPECT_EQ(MvxGetDatePropValueAsSystemTime(block, 0x100, &modified, TRUE), 0);
  EXPECT_EQ(Text(modified), Text(Time(2006, 10, 3, 16, 45, 30, 2)));
  DATE created_date = 0;
  EXPECT_EQ(MvxGetDatePropValue(block, 0x80, &created_date, TRUE), 0);
  EXPECT_NEAR(created_date, 38943.378472222222, 1e-8);
  EXPECT_EQ(FreeMvxInfo(block), nullptr);
}

}  // namespace
}  // namespace mvsup::test
