// The handle-valued properties: the reader's walk by mask, the modify rules
// (fields named by flags are compared and replaced), and clearing a
// property of each type.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "property_support.h"

namespace mvsup::test {
namespace {

struct HandleRead {
  int result = -1;
  DWORD id = 0xDEADBEEF;
  MVXITEMTYPE type = -1;
  DWORD number = 0xDEADBEEF;
  std::wstring title = L"(null)";
};

HandleRead ReadHandle(const Committed& block, DWORD mask) {
  HandleRead read;
  LPWSTR title = reinterpret_cast<LPWSTR>(1);
  read.result = MvxGetMvHandlePropValue(block.get(), mask, &read.id, &read.type, &read.number, &title);
  read.title = title ? title : L"(null)";
  return read;
}

std::string HandleValue(WORD type, DWORD number, const wchar_t* title) {
  return Hex(Bytes().u32(static_cast<uint32_t>(6 + 2 * (std::wcslen(title) + 1))).u16(type).u32(number).text(title));
}

std::vector<std::string> StoredValues(const Committed& block, DWORD id) {
  Opened info(block.get());
  return HexAll(ValuesOf(info, MvxFindProperty(info, id)));
}

TEST(HandleReader, TriesTheHandleIdsInOrderAsTheMaskSelects) {
  Committed block = FromServerText({{L"parents", {L"Reports (Collection-12)", L"Archive (Collection-7)"}},
                                    {L"entityowner", {L"Ann (User-42)"}},
                                    {L"modified_by", {L"not a handle"}},
                                    {L"lockdiscovery", {L"Bob (User-57)"}}});
  HandleRead read = ReadHandle(block, ~0u);
  EXPECT_EQ(read.result, 0);
  EXPECT_EQ(read.id, 0x400u) << "0x20 is absent, parents come next";
  EXPECT_EQ(read.type, 2);
  EXPECT_EQ(read.number, 12u);
  EXPECT_EQ(read.title, L"Reports");
  read = ReadHandle(block, 0x240);
  EXPECT_EQ(read.id, 0x40u);
  EXPECT_EQ(read.title, L"Ann");
  read = ReadHandle(block, 0x200);
  EXPECT_EQ(read.result, 1) << "modified_by has no value";
  EXPECT_EQ(read.id, 0u);
  EXPECT_EQ(read.type, 0);
  EXPECT_EQ(read.number, 0u);
  EXPECT_EQ(read.title, L"(null)");
  read = ReadHandle(block, 0x80000000);
  EXPECT_EQ(read.id, 0x80000800u) << "only the lock's id has the top bit";
  EXPECT_EQ(read.number, 57u);
  EXPECT_EQ(ReadHandle(block, 0x20).result, 1);
  EXPECT_EQ(ReadHandle(block, 0).result, 1);
  EXPECT_EQ(ReadHandle(Broken(), ~0u).result, 1);
  EXPECT_EQ(MvxGetMvHandlePropValue(block.get(), ~0u, nullptr, nullptr, nullptr, nullptr), 0);

  ASSERT_EQ(MvxPutMvHandlePropValue(0x20, 3, 0xFFFFFFFF, L"stale", block.slot()), S_OK);
  read = ReadHandle(block, ~0u);
  EXPECT_EQ(read.id, 0x20u);
  EXPECT_EQ(read.type, 3);
  EXPECT_EQ(read.number, 0u) << "0xFFFFFFFF reads as 0 ...";
  EXPECT_EQ(read.title, L"") << "... with no title";
}

TEST(HandleModify, NamedFieldsAreComparedAndReplaced) {
  Committed block = FromServerText({{L"parents", {L"Reports (Collection-12)", L"Archive (Collection-7)"}},
                                    {L"lockdiscovery", {L"Bob (User-57)"}}});
  DWORD id = 0;
  ASSERT_EQ(MvxModifyMvHandlePropValue(0x400, 0, &id, MVX_HANDLE_TITLE, 0, 0, L"Reports 2006", block.slot()), S_OK);
  EXPECT_EQ(id, 0x400u);
  EXPECT_EQ(StoredValues(block, 0x400),
            (std::vector<std::string>{HandleValue(2, 12, L"Reports 2006"), HandleValue(2, 7, L"Archive")}));
  ASSERT_EQ(MvxModifyMvHandlePropValue(~0u, 0, &id, MVX_HANDLE_TYPE | MVX_HANDLE_NUMBER, 20, 99, L"ignored",
                                       block.slot()),
            S_OK);
  EXPECT_EQ(StoredValues(block, 0x400),
            (std::vector<std::string>{HandleValue(20, 99, L"Reports 2006"), HandleValue(2, 7, L"Archive")}));
  EXPECT_EQ(LoadU32(block.get() + 24), 12u) << "the header keeps the first parent it recorded";
  ASSERT_EQ(MvxModifyMvHandlePropValue(0x400, 0, nullptr, MVX_HANDLE_TITLE, 0, 0, L"R", block.slot()), S_OK);
  EXPECT_EQ(StoredValues(block, 0x400).front(), HandleValue(20, 99, L"R")) << "a shorter title, a shorter value";

  // Nothing differs: the block is kept as it is.
  BYTE* const before = block.get();
  ASSERT_EQ(MvxModifyMvHandlePropValue(0x400, 0, &id, MVX_HANDLE_NUMBER | MVX_HANDLE_TITLE, 1, 99, L"R",
                                       block.slot()),
            S_OK);
  EXPECT_EQ(block.get(), before);

  // Ids with class bits are served by the second mask only.
  id = 1;
  EXPECT_EQ(MvxModifyMvHandlePropValue(0x80000800, 0, &id, MVX_HANDLE_NUMBER, 0, 1, nullptr, block.slot()), 1);
  EXPECT_EQ(id, 0u);
  EXPECT_EQ(MvxModifyMvHandlePropValue(0, 0x800, &id, MVX_HANDLE_NUMBER | MVX_HANDLE_TITLE, 0, 58, nullptr,
                                       block.slot()),
            S_OK);
  EXPECT_EQ(id, 0x80000800u);
  EXPECT_EQ(StoredValues(block, 0x80000800), (std::vector<std::string>{HandleValue(14, 58, L"")}));
  EXPECT_EQ(MvxModifyMvHandlePropValue(0, ~0u, &id, MVX_HANDLE_TYPE, 1, 0, nullptr, block.slot()), S_OK);
  EXPECT_EQ(id, 0x80000800u) << "parents are not served by the second mask";

  BYTE* const unchanged = block.get();
  EXPECT_EQ(MvxModifyMvHandlePropValue(0x60, 0, &id, MVX_HANDLE_NUMBER, 0, 1, nullptr, block.slot()), 1)
      << "no selected property holds a handle";
  EXPECT_EQ(MvxModifyMvHandlePropValue(~0u, ~0u, &id, 8, 0, 1, nullptr, block.slot()), E_INVALIDARG);
  EXPECT_EQ(MvxModifyMvHandlePropValue(~0u, ~0u, &id, 0, 0, 1, nullptr, block.slot()), E_INVALIDARG);
  EXPECT_EQ(block.get(), unchanged);
}

TEST(ClearProp, EachTypeGetsItsEmptyValue) {
  Committed block = FromServerText({{L"displayname", {L"Report", L"Second"}},
                                    {L"getcontentlength", {L"48213"}},
                                    {L"private", {L"1"}},
                                    {L"creationdate", {L"2006-08-14T09:05:00Z"}},
                                    {L"entityowner", {L"Ann (User-42)"}},
                                    {L"parents", {L"A (Collection-12)", L"B (Collection-7)"}},
                                    {L"subscriptions", {L"S (Subscription-3)"}},
                                    {L"acl", {}}});
  for (DWORD id : {0x2u, 0x80000040u, 0x2000u, 0x80u, 0x40u, 0x400u, 0x4000u, 0x200u, 0x10000u})
    ASSERT_EQ(MvxClearProp(id, block.slot()), S_OK) << std::hex << id;
  EXPECT_EQ(StoredValues(block, 0x2), (std::vector<std::string>{Hex(Bytes().u32(2).u16(0))}));
  EXPECT_EQ(StoredValues(block, 0x80000040), (std::vector<std::string>{Hex(Bytes().u32(4).u32(0))}));
  EXPECT_EQ(StoredValues(block, 0x2000), (std::vector<std::string>{Hex(Bytes().u32(4).u32(0))}));
  EXPECT_EQ(StoredValues(block, 0x80), (std::vector<std::string>{Hex(Bytes().u32(8).u32(0).u32(0))}));
  // A handle keeps its type and title bytes; its number marks it cleared.
  EXPECT_EQ(StoredValues(block, 0x40), (std::vector<std::string>{HandleValue(14, 0xFFFFFFFF, L"Ann")}));
  HandleRead owner = ReadHandle(block, 0x40);
  EXPECT_EQ(owner.type, 14);
  EXPECT_EQ(owner.number, 0u);
  EXPECT_EQ(owner.title, L"");
  EXPECT_EQ(StoredValues(block, 0x400),
            (std::vector<std::string>{HandleValue(2, 0xFFFFFFFF, L"A"), HandleValue(2, 7, L"B")}));
  // Handle ids outside the walk, and handle properties without a handle,
  // get one empty handle.
  EXPECT_EQ(StoredValues(block, 0x4000), (std::vector<std::string>{HandleValue(0, 0, L"")}));
  EXPECT_EQ(StoredValues(block, 0x200), (std::vector<std::string>{HandleValue(0, 0, L"")}));
  LPWSTR text = nullptr;
  EXPECT_EQ(MvxGetCustomStringProp(block.get(), L"client_data", &text), S_OK);
  EXPECT_STREQ(text, L"");

  BYTE* const before = block.get();
  EXPECT_EQ(MvxClearProp(0x800, block.slot()), 1) << "type 13 has no empty value";
  EXPECT_EQ(MvxClearProp(0x12345678, block.slot()), 1) << "not in the catalogue";
  EXPECT_EQ(block.get(), before);
}

TEST(ClearProp, CustomPropertiesByTheGivenType) {
  Committed block;
  for (auto [name, type] : {std::pair{L"i", 4u}, std::pair{L"d", 17u}, std::pair{L"h", 11u}, std::pair{L"s", 0u}})
    ASSERT_EQ(MvxClearCustomProp(name, type, block.slot()), S_OK);
  Opened info(block.get());
  struct Expected {
    const wchar_t* name;
    uint32_t type;
    ByteVector value;
  } expected[] = {{L"i", 5, Bytes().u32(4).u32(0)},
                  {L"d", 8, Bytes().u32(8).u32(0).u32(0)},
                  {L"h", 11, Bytes().u32(2).u16(0)},
                  {L"s", 1, Bytes().u32(2).u16(0)}};
  for (const Expected& e : expected) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(e.name)));
    HMVXPROP property = MvxFindCustomProperty(info, e.name);
    HMVXATTR type = MvxFindAttribute(info, property, 1);
    ASSERT_EQ(MvxGetAttributeValuesCount(info, type), 1);
    EXPECT_EQ(Hex(ValueBytes(MvxGetAttributeValue(info, type, 0))), Hex(Bytes().u32(4).u32(e.type)));
    EXPECT_EQ(HexAll(ValuesOf(info, property)), (std::vector<std::string>{Hex(e.value)}));
  }
}

}  // namespace
}  // namespace mvsup::test
