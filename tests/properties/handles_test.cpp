// The handle-valued properties: the reader's walk by mask, the modify rules
// (fields named by flags are compared and replaced), and clearing a
// property of each type.
#include <tuple>

#include "property_support.h"

namespace mvsup::test {
namespace {

// Result, id, type, number, title ("(null)" for none) of the reader.
using HandleRead = std::tuple<int, DWORD, MVXITEMTYPE, DWORD, std::wstring>;

HandleRead ReadHandle(const Committed& block, DWORD mask) {
  DWORD id = 0xDEADBEEF, number = 0xDEADBEEF;
  MVXITEMTYPE type = -1;
  LPWSTR title = reinterpret_cast<LPWSTR>(1);
  const int result = MvxGetMvHandlePropValue(block.get(), mask, &id, &type, &number, &title);
  return {result, id, type, number, title ? title : L"(null)"};
}

TEST(HandleReader, TriesTheHandleIdsInOrderAsTheMaskSelects) {
  Committed block = FromServerText({{L"parents", {L"Reports (Collection-12)", L"Archive (Collection-7)"}},
                                    {L"entityowner", {L"Ann (User-42)"}}, {L"modified_by", {L"not a handle"}},
                                    {L"lockdiscovery", {L"Bob (User-57)"}}});
  const HandleRead none{1, 0, 0, 0, L"(null)"};
  // 0x20 is absent, so parents come first; modified_by has no value; only the lock's id has the top bit.
  const std::pair<DWORD, HandleRead> cases[] = {
      {~0u, {0, 0x400, 2, 12, L"Reports"}}, {0x240, {0, 0x40, 14, 42, L"Ann"}}, {0x200, none},
      {0x80000000, {0, 0x80000800, 14, 57, L"Bob"}}, {0x20, none}, {0, none},
  };
  for (const auto& [mask, expected] : cases) EXPECT_EQ(ReadHandle(block, mask), expected) << std::hex << mask;
  EXPECT_EQ(ReadHandle(Broken(), ~0u), none);
  EXPECT_EQ(MvxGetMvHandlePropValue(block.get(), ~0u, nullptr, nullptr, nullptr, nullptr), 0);

  ASSERT_EQ(MvxPutMvHandlePropValue(0x20, 3, 0xFFFFFFFF, L"stale", block.slot()), S_OK);
  EXPECT_EQ(ReadHandle(block, ~0u), HandleRead(0, 0x20, 3, 0, L"")) << "0xFFFFFFFF reads as 0 with no title";
}

TEST(HandleModify, NamedFieldsAreComparedAndReplaced) {
  Committed block = FromServerText({{L"parents", {L"Reports (Collection-12)", L"Archive (Collection-7)"}},
                                    {L"lockdiscovery", {L"Bob (User-57)"}}});
  DWORD id = 0;
  const auto modify = [&](DWORD mask, DWORD class_mask, DWORD flags, MVXITEMTYPE type, DWORD number,
                          LPCWSTR title) {
    return MvxModifyMvHandlePropValue(mask, class_mask, &id, flags, type, number, title, block.slot());
  };
  ASSERT_EQ(modify(0x400, 0, MVX_HANDLE_TITLE, 0, 0, L"Reports 2006"), S_OK);
  EXPECT_EQ(id, 0x400u);
  EXPECT_EQ(StoredValues(block, 0x400), (Hexes{HandleValue(2, 12, L"Reports 2006"), HandleValue(2, 7, L"Archive")}));
  ASSERT_EQ(modify(~0u, 0, MVX_HANDLE_TYPE | MVX_HANDLE_NUMBER, 20, 99, L"ignored"), S_OK);
  EXPECT_EQ(StoredValues(block, 0x400), (Hexes{HandleValue(20, 99, L"Reports 2006"), HandleValue(2, 7, L"Archive")}));
  EXPECT_EQ(LoadU32(block.get() + 24), 12u) << "the header keeps the first parent it recorded";
  ASSERT_EQ(MvxModifyMvHandlePropValue(0x400, 0, nullptr, MVX_HANDLE_TITLE, 0, 0, L"R", block.slot()), S_OK);
  EXPECT_EQ(StoredValues(block, 0x400).front(), HandleValue(20, 99, L"R")) << "a shorter title, a shorter value";

  BYTE* const before = block.get();
  ASSERT_EQ(modify(0x400, 0, MVX_HANDLE_NUMBER | MVX_HANDLE_TITLE, 1, 99, L"R"), S_OK);
  EXPECT_EQ(block.get(), before) << "nothing differs: the block is kept";

  // Ids with class bits are served by the second mask only.
  id = 1;
  EXPECT_EQ(modify(0x80000800, 0, MVX_HANDLE_NUMBER, 0, 1, nullptr), 1);
  EXPECT_EQ(id, 0u);
  EXPECT_EQ(modify(0, 0x800, MVX_HANDLE_NUMBER | MVX_HANDLE_TITLE, 0, 58, nullptr), S_OK);
  EXPECT_EQ(id, 0x80000800u);
  EXPECT_EQ(StoredValues(block, 0x80000800), Hexes{HandleValue(14, 58, L"")});
  EXPECT_EQ(modify(0, ~0u, MVX_HANDLE_TYPE, 1, 0, nullptr), S_OK);
  EXPECT_EQ(id, 0x80000800u) << "parents are not served by the second mask";

  BYTE* const unchanged = block.get();
  EXPECT_EQ(modify(0x60, 0, MVX_HANDLE_NUMBER, 0, 1, nullptr), 1) << "no selected property holds a handle";
  EXPECT_EQ(modify(~0u, ~0u, 8, 0, 1, nullptr), E_INVALIDARG);
  EXPECT_EQ(modify(~0u, ~0u, 0, 0, 1, nullptr), E_INVALIDARG);
  EXPECT_EQ(block.get(), unchanged);
}

TEST(ClearProp, EachTypeGetsItsEmptyValue) {
  Committed block = FromServerText({{L"displayname", {L"Report", L"Second"}}, {L"getcontentlength", {L"48213"}},
                                    {L"private", {L"1"}}, {L"creationdate", {L"2006-08-14T09:05:00Z"}},
                                    {L"entityowner", {L"Ann (User-42)"}}, {L"acl", {}},
                                    {L"parents", {L"A (Collection-12)", L"B (Collection-7)"}},
                                    {L"subscriptions", {L"S (Subscription-3)"}}});
  const std::pair<DWORD, Hexes> cases[] = {
      {0x2, {StringValue(L"")}}, {0x80000040, {IntegerValue(0)}}, {0x2000, {IntegerValue(0)}},
      {0x80, {DateValue(0, 0)}},
      // Only the first handle is cleared: it keeps its type and title bytes, its number marks it.
      {0x40, {HandleValue(14, 0xFFFFFFFF, L"Ann")}},
      {0x400, {HandleValue(2, 0xFFFFFFFF, L"A"), HandleValue(2, 7, L"B")}},
      // Handle ids outside the walk, and handle properties without a handle, get one empty handle.
      {0x4000, {HandleValue(0, 0, L"")}}, {0x200, {HandleValue(0, 0, L"")}},
  };
  for (const auto& [id, expected] : cases) {
    ASSERT_EQ(MvxClearProp(id, block.slot()), S_OK) << std::hex << id;
    EXPECT_EQ(StoredValues(block, id), expected) << std::hex << id;
  }
  ASSERT_EQ(MvxClearProp(0x10000, block.slot()), S_OK);
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
  // Name, type given, type stored, the value.
  const std::tuple<const wchar_t*, DWORD, DWORD, std::string> cases[] = {
      {L"i", 4, 5, IntegerValue(0)}, {L"d", 17, 8, DateValue(0, 0)},
      {L"h", 11, 11, StringValue(L"")}, {L"s", 0, 1, StringValue(L"")}};
  for (const auto& [name, given, stored, value] : cases)
    ASSERT_EQ(MvxClearCustomProp(name, given, block.slot()), S_OK);
  Opened info(block.get());
  for (const auto& [name, given, stored, value] : cases) {
    HMVXPROP property = MvxFindCustomProperty(info, name);
    EXPECT_EQ(HexValues(info, property, MVX_ATTRIBUTE_PROPERTY_TYPE), Hexes{IntegerValue(stored)}) << given;
    EXPECT_EQ(HexValues(info, property), Hexes{value}) << given;
  }
}

}  // namespace
}  // namespace mvsup::test
