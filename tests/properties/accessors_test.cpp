// The one-call accessors of a committed item info: what the readers answer
// for each shape a property can have, what the writers store, and that a
// writer that fails leaves the caller's block as it was.
#include <cmath>

#include "common/guard_page.h"
#include "property_support.h"

namespace mvsup::test {
namespace {

// 2006-10-03 18:00:00 as an OLE date and as a FILETIME (computed with Python).
constexpr DATE kOctoberEvening = 38993.75;
constexpr DWORD kOctoberEveningHigh = 0x01c6e715;
constexpr DWORD kOctoberEveningLow = 0xbe51d000;

TEST(CommittedReaders, AnswerForEachShapeOfAProperty) {
  Committed block = FromServerText({{L"displayname", {L"Report", L"second"}}, {L"summary", {}},
                                    {L"handle", {L"File-9"}}, {L"entityowner", {L"Ann (User-4)"}},
                                    {L"modified_by", {L"no handle here"}}, {L"max_versions", {}},
                                    {L"getlastmodified", {L"Tue, 03 Oct 2006 16:45:30 GMT"}},
                                    {L"expiration_date", {L""}}});
  ASSERT_EQ(MvxPutMvHandlePropValue(0x400, 2, 0xFFFFFFFF, L"Gone", block.slot()), S_OK);
  ASSERT_EQ(MvxPutStringPropValue(0x10000, L"view=1", block.slot()), S_OK);
  ASSERT_EQ(MvxPutStringPropValue(0x80000400, L"", block.slot()), S_OK);  // a 2-byte value
  const struct {
    DWORD id;
    int result;
    const wchar_t* text;  // null: the out pointer cleared
  } strings[] = {
      {0x2, 0, L"Report"}, {0x4, 0, L""} /* attribute 16 without values */, {0x10, 1, nullptr},
      // Handle ids: the first handle's title, "" for number 0xFFFFFFFF; no value is missing.
      {0x40, 0, L"Ann"}, {0x20, 0, L""}, {0x400, 0, L""}, {0x200, 1, nullptr},
      {0x10000, 0, L"view=1"},
  };
  for (const auto& c : strings) {
    LPWSTR text = const_cast<LPWSTR>(L"unset");
    EXPECT_EQ(MvxGetStringPropValue(block.get(), c.id, &text), c.result) << std::hex << c.id;
    EXPECT_STREQ(text, c.text) << std::hex << c.id;
  }
  LPWSTR text = nullptr;
  MvxGetStringPropValue(block.get(), 0x2, &text);
  EXPECT_TRUE(PointsInto(block, text)) << "a pointer into the committed item info";
  EXPECT_EQ(MvxHasCustomProp(block.get(), L"client_data"), S_OK) << "client_data lives as a custom property";
  EXPECT_EQ(MvxGetStringPropValue(nullptr, 0x2, &text), 1);
  EXPECT_EQ(MvxGetStringPropValue(Broken().get(), 0x2, &text), 1);
  EXPECT_EQ(MvxGetStringPropValue(block.get(), 0x2, nullptr), 0) << "the out pointer is optional";

  for (DWORD id : {0x80000010u, 0x80000400u, 0x40000010u}) {  // no value, too short, absent
    LONG number = -1;
    EXPECT_EQ(MvxGetIntegerPropValue(block.get(), id, &number), 1) << std::hex << id;
    EXPECT_EQ(number, 0) << std::hex << id;
  }

  const SYSTEMTIME utc = Time(2006, 10, 3, 16, 45, 30, 2);
  SYSTEMTIME local, time;
  ASSERT_TRUE(SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local));
  EXPECT_EQ(MvxGetDatePropValueAsSystemTime(block.get(), 0x100, &time, FALSE), 0);
  EXPECT_EQ(Text(time), Text(local));
  // The empty date 0/0.
  DATE date = -1;
  EXPECT_EQ(MvxGetDatePropValueAsSystemTime(block.get(), 0x40000, &time, FALSE), 0);
  EXPECT_EQ(Text(time), Text(SYSTEMTIME{}));
  EXPECT_EQ(MvxGetDatePropValue(block.get(), 0x40000, &date, FALSE), 0);
  EXPECT_EQ(date, 0.0);
  EXPECT_EQ(MvxGetDatePropValue(block.get(), 0x80, &date, TRUE), 1);
}

TEST(CommittedWriters, StoreOneValueAndKeepTheSummary) {
  Committed block;  // null: the writers start from an empty item info
  ASSERT_EQ(MvxPutIntegerPropValue(0x80000040, -5, block.slot()), S_OK);
  ASSERT_EQ(MvxPutStringPropValue(0x2, L"Title", block.slot()), S_OK);
  ASSERT_EQ(MvxPutStringPropValue(0x4, nullptr, block.slot()), S_OK);
  ASSERT_EQ(MvxPutDatePropValue(0x80, kOctoberEvening, block.slot()), S_OK);
  ASSERT_EQ(MvxPutDatePropValue(0x100, 0.0, block.slot()), S_OK);
  ASSERT_EQ(MvxPutMvHandlePropValue(0x20, 0x10003, 77, L"Doc", block.slot()), S_OK);
  const std::pair<DWORD, std::string> stored[] = {
      {0x80000040, IntegerValue(-5)}, {0x2, StringValue(L"Title")}, {0x4, StringValue(L"")},
      {0x80, DateValue(kOctoberEveningHigh, kOctoberEveningLow)}, {0x100, DateValue(0, 0)},
      {0x20, HandleValue(3, 77, L"Doc")}};
  for (const auto& [id, value] : stored) EXPECT_EQ(StoredValues(block, id), Hexes{value}) << std::hex << id;
  EXPECT_EQ(LoadU16(block.get() + 6), 3) << "the header summary follows the writers";
  EXPECT_EQ(LoadU32(block.get() + 8), 0xFFFFFFFBu);
  EXPECT_EQ(LoadU32(block.get() + 32), 77u);

  // A writer empties attribute 16 first; the header's first parent stays.
  Committed parents = FromServerText({{L"parents", {L"A (Collection-12)", L"B (Collection-7)"}}});
  ASSERT_EQ(MvxPutMvHandlePropValue(0x400, 2, 99, nullptr, parents.slot()), S_OK);
  EXPECT_EQ(StoredValues(parents, 0x400), Hexes{HandleValue(2, 99, L"")});
  EXPECT_EQ(LoadU32(parents.get() + 28), 1u);
  EXPECT_EQ(LoadU32(parents.get() + 24), 12u);
}

TEST(CommittedWriters, FailuresLeaveTheBlockAsItWas) {
  Committed broken = Broken();
  const ByteVector before = broken.bytes();
  BYTE* const pointer = broken.get();
  EXPECT_EQ(MvxPutIntegerPropValue(0x80000040, 1, broken.slot()), 1) << "cannot be opened";
  EXPECT_EQ(MvxPutStringPropValue(0x10000, L"x", broken.slot()), 1);
  EXPECT_EQ(MvxPutCustomIntegerProp(L"n", 1, broken.slot()), 1);
  EXPECT_EQ(MvxDeleteProp(0x20, broken.slot()), 1);
  EXPECT_EQ(MvxClearProp(0x2, broken.slot()), 1);
  EXPECT_EQ(MvxClearProp(0x40, broken.slot()), 1);
  EXPECT_EQ(broken.get(), pointer);
  EXPECT_EQ(Hex(broken.bytes()), Hex(before));

  Committed block = FromServerText({{L"displayname", {L"Report"}}});
  const ByteVector good = block.bytes();
  BYTE* const good_pointer = block.get();
  EXPECT_EQ(MvxPutDatePropValue(0x80, -110000.0, block.slot()), E_INVALIDARG) << "before 1601";
  EXPECT_EQ(MvxPutDatePropValue(0x80, std::nan(""), block.slot()), E_INVALIDARG);
  EXPECT_EQ(MvxPutCustomDateProp(L"d", 3e6, block.slot()), E_INVALIDARG) << "after 9999";
  SYSTEMTIME february_30 = Time(2006, 2, 30, 0, 0, 0, 0);
  EXPECT_EQ(MvxPutCustomSystemTimeProp(L"d", &february_30, block.slot()), E_INVALIDARG);
  EXPECT_EQ(MvxPutCustomFileTimeProp(L"d", nullptr, block.slot()), E_POINTER);
  EXPECT_EQ(MvxPutCustomStringProp(L"s", L"x", 4, block.slot()), E_INVALIDARG);
  EXPECT_EQ(MvxPutCustomStringProp(nullptr, L"x", 1, block.slot()), E_POINTER);
  EXPECT_EQ(MvxModifyMvHandlePropValue(~0u, ~0u, nullptr, 0, 0, 0, nullptr, block.slot()), E_INVALIDARG);
  EXPECT_EQ(block.get(), good_pointer);
  EXPECT_EQ(Hex(block.bytes()), Hex(good));

  EXPECT_EQ(MvxPutIntegerPropValue(0x80000040, 1, nullptr), E_POINTER);
  EXPECT_EQ(MvxClearCustomProp(L"x", 1, nullptr), E_POINTER);
}

TEST(CustomProperties, IntegerReaderRules) {
  // "0x" hex clamped to 0xFFFFFFFF; decimal 0 of a text that does not start with '0' gives the
  // first 4 bytes ("a": its terminator, then nothing past the value).
  const std::pair<const wchar_t*, LONG> cases[] = {
      {L"0x1F", 31},        {L"0xffffffff", -1}, {L"0x123456789", -1}, {L"0X1F", 0}, {L"42", 42},
      {L" -7", -7},         {L"007", 7},         {L"0", 0},            {L"99999999999", 0x7FFFFFFF},
      {L"ab", 0x00620061},  {L"-0", 0x0030002D}, {L"a", 0x61},         {L"", 0},
  };
  for (const auto& [text, expected] : cases) {
    Committed block;
    ASSERT_EQ(MvxPutCustomStringProp(L"n", text, 1, block.slot()), S_OK);
    LONG value = 12345;
    EXPECT_EQ(MvxGetCustomIntegerProp(block.get(), L"n", &value), S_OK);
    EXPECT_EQ(value, expected) << testing::PrintToString(std::wstring(text));
  }

}

TEST(CustomProperties, TypesAndEachReader) {
  Committed block = FromServerText({{L"empty", {}}});
  ASSERT_EQ(MvxPutCustomStringProp(L"t0", L"zero", 0, block.slot()), S_OK);
  ASSERT_EQ(MvxPutCustomStringProp(L"t14", L"fourteen", 14, block.slot()), S_OK);
  ASSERT_EQ(MvxPutCustomStringProp(L"t0", L"again", 0, block.slot()), S_OK);
  {
    Opened info(block.get());
    EXPECT_EQ(MvxGetCustomPropertyCount(info), 3);
    for (auto [name, type] : {std::pair{L"t0", 1}, std::pair{L"t14", 14}})
      EXPECT_EQ(HexValues(info, MvxFindCustomProperty(info, name), MVX_ATTRIBUTE_PROPERTY_TYPE),
                Hexes{IntegerValue(type)});
  }
  LPWSTR text = nullptr;
  EXPECT_EQ(MvxGetCustomStringProp(block.get(), L"t0", &text), S_OK);
  EXPECT_STREQ(text, L"again");
  EXPECT_TRUE(PointsInto(block, text));
  EXPECT_EQ(MvxGetCustomStringProp(block.get(), L"T0", &text), E_FAIL);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(MvxGetCustomStringProp(Broken().get(), L"t0", &text), E_UNEXPECTED);
  EXPECT_EQ(MvxGetCustomStringProp(block.get(), L"empty", &text), S_OK);
  EXPECT_STREQ(text, L"");

  // Dates: each writer stores the same instant; the readers convert it.
  const FILETIME stored{kOctoberEveningLow, kOctoberEveningHigh};
  const SYSTEMTIME evening = Time(2006, 10, 3, 18, 0, 0, 2);
  ASSERT_EQ(MvxPutCustomFileTimeProp(L"ft", &stored, block.slot()), S_OK);
  ASSERT_EQ(MvxPutCustomSystemTimeProp(L"st", &evening, block.slot()), S_OK);
  ASSERT_EQ(MvxPutCustomDateProp(L"ole", kOctoberEvening, block.slot()), S_OK);
  SYSTEMTIME local;
  ASSERT_TRUE(SystemTimeToTzSpecificLocalTime(nullptr, &evening, &local));
  for (const wchar_t* name : {L"ft", L"st", L"ole"}) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(name)));
    FILETIME file_time{};
    SYSTEMTIME time{};
    DATE date = 0;
    EXPECT_EQ(MvxGetCustomFileTimeProp(block.get(), name, &file_time), S_OK);
    EXPECT_EQ(std::pair(file_time.dwHighDateTime, file_time.dwLowDateTime),
              std::pair(kOctoberEveningHigh, kOctoberEveningLow));
    EXPECT_EQ(MvxGetCustomSystemTimeProp(block.get(), name, &time, FALSE), S_OK);
    EXPECT_EQ(Text(time), Text(local));
    EXPECT_EQ(MvxGetCustomDateProp(block.get(), name, &date, TRUE), S_OK);
    EXPECT_EQ(date, kOctoberEvening);
  }
  // Other types than 1 give the integer reader the value's first 4 bytes.
  LONG value = 0;
  EXPECT_EQ(MvxGetCustomIntegerProp(block.get(), L"t14", &value), S_OK);
  EXPECT_EQ(value, 0x006F0066);
  EXPECT_EQ(MvxGetCustomIntegerProp(block.get(), L"ft", &value), S_OK);
  EXPECT_EQ(static_cast<DWORD>(value), kOctoberEveningHigh) << "the high half comes first";
  EXPECT_EQ(MvxGetCustomIntegerProp(block.get(), L"missing", &value), E_FAIL);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(MvxGetCustomIntegerProp(block.get(), L"empty", &value), E_FAIL) << "attribute 16 without values";
  EXPECT_EQ(MvxGetCustomIntegerProp(Broken().get(), L"ft", &value), E_UNEXPECTED);
  EXPECT_EQ(MvxGetCustomIntegerProp(block.get(), nullptr, &value), E_POINTER);

  DATE date = 1;
  EXPECT_EQ(MvxGetCustomDateProp(block.get(), L"empty", &date, TRUE), E_FAIL) << "no values";
  EXPECT_EQ(MvxGetCustomSystemTimeProp(block.get(), L"absent", nullptr, TRUE), E_FAIL);
  // A stored time that no SYSTEMTIME holds: missing, the out cleared.
  const FILETIME huge{0, 0x80000000};
  ASSERT_EQ(MvxPutCustomFileTimeProp(L"huge", &huge, block.slot()), S_OK);
  SYSTEMTIME time = Time(2006, 1, 1, 0, 0, 0, 0);
  EXPECT_EQ(MvxGetCustomSystemTimeProp(block.get(), L"huge", &time, TRUE), E_FAIL);
  EXPECT_EQ(Text(time), Text(SYSTEMTIME{}));
  EXPECT_EQ(MvxGetCustomDateProp(block.get(), L"huge", &date, TRUE), E_FAIL);
}

TEST(PropertyPresence, HasDeleteAndClientData) {
  Committed block = FromServerText({{L"acl", {L"x"}}, {L"handle", {L"File-1"}}, {L"Retention", {L"R7"}}});
  EXPECT_EQ(MvxHasProp(block.get(), 0x800), S_OK) << "there, without values";
  EXPECT_EQ(MvxHasProp(block.get(), 0x2), S_FALSE);
  EXPECT_EQ(MvxHasProp(Broken().get(), 0x2), E_UNEXPECTED);
  EXPECT_EQ(MvxHasProp(nullptr, 0x2), S_FALSE) << "a null block reads as an empty item info";
  EXPECT_EQ(MvxHasCustomProp(block.get(), L"retention"), S_FALSE);
  EXPECT_EQ(MvxHasCustomProp(block.get(), nullptr), E_POINTER);

  EXPECT_EQ(MvxHasProp(block.get(), 0x10000), S_FALSE);
  ASSERT_EQ(MvxPutStringPropValue(0x10000, L"cd", block.slot()), S_OK);
  EXPECT_EQ(MvxHasProp(block.get(), 0x10000), S_OK);
  ASSERT_EQ(MvxDeleteProp(0x10000, block.slot()), S_OK);
  EXPECT_EQ(MvxHasCustomProp(block.get(), L"client_data"), S_FALSE);

  ASSERT_EQ(MvxDeleteProp(0x800, block.slot()), S_OK);
  ASSERT_EQ(MvxDeleteProp(0x800, block.slot()), S_OK) << "nothing to delete";
  ASSERT_EQ(MvxDeleteProp(0x20, block.slot()), S_OK);
  ASSERT_EQ(MvxDeleteCustomProp(L"retention", block.slot()), S_OK);
  EXPECT_EQ(MvxHasCustomProp(block.get(), L"Retention"), S_OK);
  ASSERT_EQ(MvxDeleteCustomProp(L"Retention", block.slot()), S_OK);
  // The last writer opened a block with a section (and so both maps) and
  // emptied only one of them: the section stays, with no entries.
  EXPECT_EQ(Hex(ByteVector(block.get() + 40, block.get() + block.size())), Hex(Bytes().u16(254).u16(0)));
  EXPECT_EQ(LoadU16(block.get() + 6), 3) << "the summary stays as it was";
}

// Readers on a block that lies flush against a guard page and ends in a
// custom text without a terminator.
TEST(CommittedReaders, StayInsideABlockFlushAgainstTheGuard) {
  Committed source = FromServerText({{L"handle", {L"File-4711"}}, {L"displayname", {L"T"}}});
  {
    Opened info(source.get());
    HMVXPROP last = MvxAddCustomProperty(info, L"z");
    MvxAddPropertyType(info, MvxAddAttribute(info, last, 1), 1);
    MvxAddBinary(info, MvxAddAttribute(info, last, 16), "123", 3);
    ASSERT_EQ(MvxUpdateItemInfo(info, source.slot()), S_OK);
  }
  GuardedBuffer guarded(source.get(), source.size());
  const BYTE* block = guarded.data();
  LPWSTR text = nullptr;
  LONG number = 0;
  DATE date;
  EXPECT_EQ(MvxGetStringPropValue(block, 0x2, &text), 0);
  EXPECT_EQ(MvxGetStringPropValue(block, 0x10000, &text), 1);
  EXPECT_EQ(MvxHasProp(block, 0x80), S_FALSE);
  EXPECT_EQ(MvxGetMvHandlePropValue(block, ~0u, nullptr, nullptr, nullptr, &text), 0);
  EXPECT_EQ(MvxGetCustomStringProp(block, L"z", &text), E_FAIL) << "no terminator";
  EXPECT_EQ(MvxGetCustomIntegerProp(block, L"z", &number), S_OK);
  EXPECT_EQ(number, 0x00333231) << "decimal 0: the value's 3 bytes, then a zero";
  EXPECT_EQ(MvxGetCustomDateProp(block, L"z", &date, TRUE), E_FAIL);
  EXPECT_EQ(MvxHasCustomProp(block, L"z"), S_OK);
}

}  // namespace
}  // namespace mvsup::test
