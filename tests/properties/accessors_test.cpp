// The one-call accessors of a committed item info: what the readers answer
// for each shape a property can have, what the writers store, and that a
// writer that fails leaves the caller's block as it was.
#include <windows.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "common/guard_page.h"
#include "property_support.h"

namespace mvsup::test {
namespace {

constexpr DATE kOctoberEvening = 38993.75;  // 2006-10-03 18:00:00
constexpr DWORD kOctoberEveningHigh = 0x01c6e715;
constexpr DWORD kOctoberEveningLow = 0xbe51d000;

std::wstring StringOf(const Committed& block, DWORD id, int* result) {
  LPWSTR text = reinterpret_cast<LPWSTR>(1);
  *result = MvxGetStringPropValue(block.get(), id, &text);
  if (*result != 0) {
    EXPECT_EQ(text, nullptr) << "cleared when nothing is found";
    return L"(none)";
  }
  EXPECT_NE(text, nullptr);
  return text;
}

// The value bytes of a property's attribute 16, read back by opening.
std::vector<std::string> StoredValues(const Committed& block, DWORD id) {
  Opened info(block.get());
  return HexAll(ValuesOf(info, MvxFindProperty(info, id)));
}

TEST(CommittedReaders, StringReaderSpecialCases) {
  Committed block = FromServerText({{L"displayname", {L"Report", L"second"}},
                                    {L"summary", {}},
                                    {L"handle", {L"File-9"}},
                                    {L"entityowner", {L"Ann (User-4)"}},
                                    {L"modified_by", {L"no handle here"}}});
  ASSERT_EQ(MvxPutMvHandlePropValue(0x400, 2, 0xFFFFFFFF, L"Gone", block.slot()), S_OK);
  ASSERT_EQ(MvxPutStringPropValue(0x10000, L"view=1", block.slot()), S_OK);
  int result = -1;
  EXPECT_EQ(StringOf(block, 0x2, &result), L"Report");
  EXPECT_EQ(result, 0);
  LPWSTR text = nullptr;
  MvxGetStringPropValue(block.get(), 0x2, &text);
  EXPECT_TRUE(PointsInto(block, text)) << "a pointer into the committed item info";

  EXPECT_EQ(StringOf(block, 0x4, &result), L"") << "attribute 16 without values";
  EXPECT_EQ(result, 0);
  EXPECT_EQ(StringOf(block, 0x10, &result), L"(none)");
  EXPECT_EQ(result, 1);
  // Handle-valued ids give the first handle's title.
  EXPECT_EQ(StringOf(block, 0x40, &result), L"Ann");
  EXPECT_EQ(StringOf(block, 0x20, &result), L"");
  EXPECT_EQ(result, 0);
  EXPECT_EQ(StringOf(block, 0x400, &result), L"") << "number 0xFFFFFFFF";
  EXPECT_EQ(result, 0);
  EXPECT_EQ(StringOf(block, 0x200, &result), L"(none)") << "no value: missing for a handle id";
  EXPECT_EQ(result, 1);
  // client_data lives as the custom property of that name.
  EXPECT_EQ(StringOf(block, 0x10000, &result), L"view=1");
  EXPECT_EQ(MvxHasCustomProp(block.get(), L"client_data"), S_OK);
  {
    Opened info(block.get());
    EXPECT_EQ(MvxFindProperty(info, 0x10000), nullptr);
  }

  EXPECT_EQ(MvxGetStringPropValue(nullptr, 0x2, &text), 1);
  EXPECT_EQ(MvxGetStringPropValue(Broken().get(), 0x2, &text), 1);
  EXPECT_EQ(MvxGetStringPropValue(block.get(), 0x2, nullptr), 0) << "the out pointer is optional";
}

TEST(CommittedReaders, IntegerAndDateReaders) {
  Committed block = FromServerText({{L"getcontentlength", {L"48213"}},
                                    {L"getlastmodified", {L"Tue, 03 Oct 2006 16:45:30 GMT"}},
                                    {L"expiration_date", {L""}},
                                    {L"max_versions", {}}});
  ASSERT_EQ(MvxPutStringPropValue(0x80000400, L"", block.slot()), S_OK);  // a 2-byte value
  LONG number = -1;
  EXPECT_EQ(MvxGetIntegerPropValue(block.get(), 0x80000040, &number), 0);
  EXPECT_EQ(number, 48213);
  EXPECT_EQ(MvxGetIntegerPropValue(block.get(), 0x80000010, &number), 1) << "no value";
  EXPECT_EQ(number, 0);
  EXPECT_EQ(MvxGetIntegerPropValue(block.get(), 0x80000400, &number), 1) << "too short for an integer";
  EXPECT_EQ(MvxGetIntegerPropValue(block.get(), 0x40000010, &number), 1);

  SYSTEMTIME time;
  EXPECT_EQ(MvxGetDatePropValueAsSystemTime(block.get(), 0x100, &time, TRUE), 0);
  EXPECT_EQ(Text(time), Text(Time(2006, 10, 3, 16, 45, 30, 2)));
  const SYSTEMTIME utc = time;
  SYSTEMTIME local_expected;
  ASSERT_TRUE(SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local_expected));
  EXPECT_EQ(MvxGetDatePropValueAsSystemTime(block.get(), 0x100, &time, FALSE), 0);
  EXPECT_EQ(Text(time), Text(local_expected));
  DATE date = -1;
  EXPECT_EQ(MvxGetDatePropValue(block.get(), 0x100, &date, TRUE), 0);
  EXPECT_NEAR(date, 38993.698263888889, 1e-8);

  // The empty date 0/0.
  EXPECT_EQ(MvxGetDatePropValueAsSystemTime(block.get(), 0x40000, &time, FALSE), 0);
  EXPECT_EQ(Text(time), Text(SYSTEMTIME{}));
  EXPECT_EQ(MvxGetDatePropValue(block.get(), 0x40000, &date, FALSE), 0);
  EXPECT_EQ(date, 0.0);
  EXPECT_EQ(MvxGetDatePropValue(block.get(), 0x80, &date, TRUE), 1);

  // A stored time that no SYSTEMTIME holds.
  {
    Opened info(block.get());
    HMVXATTR values = MvxFindAttribute(info, MvxFindProperty(info, 0x100), 16);
    MvxDeleteAllAttributeValues(info, values);
    MvxAddDateTime(info, values, 0x80000000, 0);
    ASSERT_EQ(MvxUpdateItemInfo(info, block.slot()), S_OK);
  }
  time.wYear = 1;
  EXPECT_EQ(MvxGetDatePropValueAsSystemTime(block.get(), 0x100, &time, TRUE), 1);
  EXPECT_EQ(time.wYear, 0);
  EXPECT_EQ(MvxGetDatePropValue(block.get(), 0x100, &date, TRUE), 1);
}

TEST(CommittedWriters, StoreOneValueAndReadBack) {
  Committed block;  // null: the writers start from an empty item info
  ASSERT_EQ(MvxPutIntegerPropValue(0x80000040, -5, block.slot()), S_OK);
  ASSERT_NE(block.get(), nullptr);
  ASSERT_EQ(MvxPutStringPropValue(0x2, L"Title", block.slot()), S_OK);
  ASSERT_EQ(MvxPutStringPropValue(0x4, nullptr, block.slot()), S_OK);
  ASSERT_EQ(MvxPutDatePropValue(0x80, kOctoberEvening, block.slot()), S_OK);
  ASSERT_EQ(MvxPutDatePropValue(0x100, 0.0, block.slot()), S_OK);
  ASSERT_EQ(MvxPutMvHandlePropValue(0x20, 0x10003, 77, L"Doc", block.slot()), S_OK);
  EXPECT_EQ(StoredValues(block, 0x80000040), (std::vector<std::string>{Hex(Bytes().u32(4).u32(0xFFFFFFFB))}));
  EXPECT_EQ(StoredValues(block, 0x2), (std::vector<std::string>{Hex(Bytes().u32(12).text(L"Title"))}));
  EXPECT_EQ(StoredValues(block, 0x4), (std::vector<std::string>{Hex(Bytes().u32(2).text(L""))}));
  EXPECT_EQ(StoredValues(block, 0x80),
            (std::vector<std::string>{Hex(Bytes().u32(8).u32(kOctoberEveningHigh).u32(kOctoberEveningLow))}));
  EXPECT_EQ(StoredValues(block, 0x100), (std::vector<std::string>{Hex(Bytes().u32(8).u32(0).u32(0))}));
  EXPECT_EQ(StoredValues(block, 0x20), (std::vector<std::string>{Hex(Bytes().u32(14).u16(3).u32(77).text(L"Doc"))}));
  // The header summary follows the writers.
  EXPECT_EQ(LoadU16(block.get() + 6), 3);
  EXPECT_EQ(LoadU32(block.get() + 8), 0xFFFFFFFBu);
  EXPECT_EQ(LoadU32(block.get() + 32), 77u);
  DATE date = 0;
  EXPECT_EQ(MvxGetDatePropValue(block.get(), 0x80, &date, TRUE), 0);
  EXPECT_EQ(date, kOctoberEvening);

  // A writer empties attribute 16 first; the header's first parent stays.
  Committed parents = FromServerText({{L"parents", {L"A (Collection-12)", L"B (Collection-7)"}}});
  ASSERT_EQ(LoadU32(parents.get() + 28), 2u);
  ASSERT_EQ(MvxPutMvHandlePropValue(0x400, 2, 99, nullptr, parents.slot()), S_OK);
  EXPECT_EQ(StoredValues(parents, 0x400), (std::vector<std::string>{Hex(Bytes().u32(8).u16(2).u32(99).u16(0))}));
  EXPECT_EQ(LoadU32(parents.get() + 28), 1u);
  EXPECT_EQ(LoadU32(parents.get() + 24), 12u);
}

TEST(CommittedWriters, FailuresLeaveTheBlockAsItWas) {
  Committed broken = Broken();
  const ByteVector before = broken.bytes();
  BYTE* const pointer = broken.get();
  EXPECT_EQ(MvxPutIntegerPropValue(0x80000040, 1, broken.slot()), 1) << "cannot be opened";
  EXPECT_EQ(MvxPutStringPropValue(0x10000, L"x", broken.slot()), 1);
  EXPECT_EQ(MvxPutMvHandlePropValue(0x20, 3, 1, nullptr, broken.slot()), 1);
  EXPECT_EQ(MvxPutCustomIntegerProp(L"n", 1, broken.slot()), 1);
  EXPECT_EQ(MvxDeleteProp(0x20, broken.slot()), 1);
  EXPECT_EQ(MvxClearProp(0x2, broken.slot()), 1);
  EXPECT_EQ(MvxClearProp(0x40, broken.slot()), 1);
  EXPECT_EQ(broken.get(), pointer);
  EXPECT_EQ(Hex(broken.bytes()), Hex(before));

  Committed block = FromServerText({{L"displayname", {L"Report"}}});
  const ByteVector good = block.bytes();
  BYTE* const good_pointer = block.get();
  EXPECT_EQ(MvxPutDatePropValue(0x80, -700000.0, block.slot()), E_INVALIDARG) << "before the year 100";
  EXPECT_EQ(MvxPutDatePropValue(0x80, -110000.0, block.slot()), E_INVALIDARG) << "before 1601";
  EXPECT_EQ(MvxPutDatePropValue(0x80, std::nan(""), block.slot()), E_INVALIDARG);
  EXPECT_EQ(MvxPutCustomDateProp(L"d", 3e6, block.slot()), E_INVALIDARG) << "after 9999";
  SYSTEMTIME february_30 = Time(2006, 2, 30, 0, 0, 0, 0);
  EXPECT_EQ(MvxPutCustomSystemTimeProp(L"d", &february_30, block.slot()), E_INVALIDARG);
  EXPECT_EQ(MvxPutCustomSystemTimeProp(L"d", nullptr, block.slot()), E_POINTER);
  EXPECT_EQ(MvxPutCustomFileTimeProp(L"d", nullptr, block.slot()), E_POINTER);
  EXPECT_EQ(MvxPutCustomStringProp(L"s", L"x", 4, block.slot()), E_INVALIDARG);
  EXPECT_EQ(MvxPutCustomStringProp(nullptr, L"x", 1, block.slot()), E_POINTER);
  EXPECT_EQ(MvxPutCustomIntegerProp(nullptr, 1, block.slot()), E_POINTER);
  EXPECT_EQ(MvxModifyMvHandlePropValue(~0u, ~0u, nullptr, 0, 0, 0, nullptr, block.slot()), E_INVALIDARG);
  EXPECT_EQ(block.get(), good_pointer);
  EXPECT_EQ(Hex(block.bytes()), Hex(good));

  EXPECT_EQ(MvxPutIntegerPropValue(0x80000040, 1, nullptr), E_POINTER);
  EXPECT_EQ(MvxPutDatePropValue(0x80, 1.0, nullptr), E_POINTER);
  EXPECT_EQ(MvxDeleteProp(0x2, nullptr), E_POINTER);
  EXPECT_EQ(MvxClearCustomProp(L"x", 1, nullptr), E_POINTER);
}

TEST(CustomProperties, IntegerReaderRules) {
  struct Case {
    const wchar_t* text;
    LONG expected;
  } cases[] = {
      {L"0x1F", 31},
      {L"0xffffffff", -1},
      {L"0x123456789", -1},          // clamped to 0xFFFFFFFF
      {L"0X1F", 0},                  // not "0x": decimal 0 of a text that starts with '0'
      {L"42", 42},
      {L" -7", -7},
      {L"007", 7},
      {L"0", 0},
      {L"99999999999", 0x7FFFFFFF},
      {L"ab", 0x00620061},           // decimal 0: the first two code units
      {L"-0", 0x0030002D},
      {L"a", 0x61},                  // its terminator and nothing past the value
      {L"", 0},
  };
  for (const Case& c : cases) {
    Committed block;
    ASSERT_EQ(MvxPutCustomStringProp(L"n", c.text, 1, block.slot()), S_OK);
    LONG value = 12345;
    EXPECT_EQ(MvxGetCustomIntegerProp(block.get(), L"n", &value), S_OK);
    EXPECT_EQ(value, c.expected) << testing::PrintToString(std::wstring(c.text));
  }

  Committed block;
  ASSERT_EQ(MvxPutCustomIntegerProp(L"int", -5, block.slot()), S_OK);
  ASSERT_EQ(MvxPutCustomStringProp(L"text2", L"12", 2, block.slot()), S_OK);
  FILETIME stored{kOctoberEveningLow, kOctoberEveningHigh};
  ASSERT_EQ(MvxPutCustomFileTimeProp(L"date", &stored, block.slot()), S_OK);
  LONG value = 0;
  EXPECT_EQ(MvxGetCustomIntegerProp(block.get(), L"int", &value), S_OK);
  EXPECT_EQ(value, -5);
  EXPECT_EQ(MvxGetCustomIntegerProp(block.get(), L"text2", &value), S_OK);
  EXPECT_EQ(value, 0x00320031) << "only type 1 is read as text";
  EXPECT_EQ(MvxGetCustomIntegerProp(block.get(), L"date", &value), S_OK);
  EXPECT_EQ(static_cast<DWORD>(value), kOctoberEveningHigh) << "the first 4 bytes: the high half";

  EXPECT_EQ(MvxGetCustomIntegerProp(block.get(), L"missing", &value), E_FAIL);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(MvxGetCustomIntegerProp(Broken().get(), L"int", &value), E_UNEXPECTED);
  EXPECT_EQ(MvxGetCustomIntegerProp(block.get(), nullptr, &value), E_POINTER);
  Committed without_values = FromServerText({{L"empty", {}}});
  EXPECT_EQ(MvxGetCustomIntegerProp(without_values.get(), L"empty", &value), E_FAIL);
}

TEST(CustomProperties, StringsTypesAndDates) {
  Committed block;
  ASSERT_EQ(MvxPutCustomStringProp(L"t0", L"zero", 0, block.slot()), S_OK);
  ASSERT_EQ(MvxPutCustomStringProp(L"t14", L"fourteen", 14, block.slot()), S_OK);
  ASSERT_EQ(MvxPutCustomStringProp(L"t0", L"again", 0, block.slot()), S_OK);
  {
    Opened info(block.get());
    EXPECT_EQ(MvxGetCustomPropertyCount(info), 2);
    for (auto [name, type] : {std::pair{L"t0", 1u}, std::pair{L"t14", 14u}}) {
      HMVXATTR attribute = MvxFindAttribute(info, MvxFindCustomProperty(info, name), 1);
      ASSERT_EQ(MvxGetAttributeValuesCount(info, attribute), 1);
      EXPECT_EQ(Hex(ValueBytes(MvxGetAttributeValue(info, attribute, 0))), Hex(Bytes().u32(4).u32(type)));
    }
  }
  LPWSTR text = nullptr;
  EXPECT_EQ(MvxGetCustomStringProp(block.get(), L"t0", &text), S_OK);
  EXPECT_STREQ(text, L"again");
  EXPECT_TRUE(PointsInto(block, text));
  EXPECT_EQ(MvxGetCustomStringProp(block.get(), L"T0", &text), E_FAIL);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(MvxGetCustomStringProp(Broken().get(), L"t0", &text), E_UNEXPECTED);
  Committed without_values = FromServerText({{L"empty", {}}});
  EXPECT_EQ(MvxGetCustomStringProp(without_values.get(), L"empty", &text), S_OK);
  EXPECT_STREQ(text, L"");

  // Dates: stored as given, read as stored or converted.
  const FILETIME stored{kOctoberEveningLow, kOctoberEveningHigh};
  ASSERT_EQ(MvxPutCustomFileTimeProp(L"ft", &stored, block.slot()), S_OK);
  const SYSTEMTIME evening = Time(2006, 10, 3, 18, 0, 0, 2);
  ASSERT_EQ(MvxPutCustomSystemTimeProp(L"st", &evening, block.slot()), S_OK);
  ASSERT_EQ(MvxPutCustomDateProp(L"ole", kOctoberEvening, block.slot()), S_OK);
  ASSERT_EQ(MvxPutCustomDateProp(L"none", 0.0, block.slot()), S_OK);
  for (const wchar_t* name : {L"ft", L"st", L"ole"}) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(name)));
    FILETIME file_time{};
    EXPECT_EQ(MvxGetCustomFileTimeProp(block.get(), name, &file_time), S_OK);
    EXPECT_EQ(file_time.dwHighDateTime, kOctoberEveningHigh);
    EXPECT_EQ(file_time.dwLowDateTime, kOctoberEveningLow);
    SYSTEMTIME time{};
    EXPECT_EQ(MvxGetCustomSystemTimeProp(block.get(), name, &time, TRUE), S_OK);
    EXPECT_EQ(Text(time), Text(evening));
    SYSTEMTIME local_expected;
    ASSERT_TRUE(SystemTimeToTzSpecificLocalTime(nullptr, &evening, &local_expected));
    EXPECT_EQ(MvxGetCustomSystemTimeProp(block.get(), name, &time, FALSE), S_OK);
    EXPECT_EQ(Text(time), Text(local_expected));
    DATE date = 0;
    EXPECT_EQ(MvxGetCustomDateProp(block.get(), name, &date, TRUE), S_OK);
    EXPECT_EQ(date, kOctoberEvening);
  }
  FILETIME file_time{1, 1};
  EXPECT_EQ(MvxGetCustomFileTimeProp(block.get(), L"none", &file_time), S_OK);
  EXPECT_EQ(file_time.dwHighDateTime | file_time.dwLowDateTime, 0u);
  DATE date = 1;
  EXPECT_EQ(MvxGetCustomDateProp(block.get(), L"none", &date, FALSE), S_OK);
  EXPECT_EQ(date, 0.0);
  ASSERT_EQ(MvxPutCustomStringProp(L"short", L"x", 1, block.slot()), S_OK);
  EXPECT_EQ(MvxGetCustomDateProp(block.get(), L"short", &date, TRUE), E_FAIL) << "4 bytes are no date";
  EXPECT_EQ(MvxGetCustomSystemTimeProp(block.get(), L"absent", nullptr, TRUE), E_FAIL);
  const FILETIME huge{0, 0x80000000};
  ASSERT_EQ(MvxPutCustomFileTimeProp(L"huge", &huge, block.slot()), S_OK);
  EXPECT_EQ(MvxGetCustomSystemTimeProp(block.get(), L"huge", nullptr, TRUE), E_FAIL);
}

TEST(PropertyPresence, HasDeleteAndClientData) {
  Committed block = FromServerText({{L"acl", {L"x"}}, {L"handle", {L"File-1"}}, {L"Retention", {L"R7"}}});
  EXPECT_EQ(MvxHasProp(block.get(), 0x800), S_OK) << "there, without values";
  EXPECT_EQ(MvxHasProp(block.get(), 0x2), S_FALSE);
  EXPECT_EQ(MvxHasProp(Broken().get(), 0x2), E_UNEXPECTED);
  EXPECT_EQ(MvxHasProp(nullptr, 0x2), S_FALSE) << "a null block reads as an empty item info";
  EXPECT_EQ(MvxHasCustomProp(block.get(), L"Retention"), S_OK);
  EXPECT_EQ(MvxHasCustomProp(block.get(), L"retention"), S_FALSE);
  EXPECT_EQ(MvxHasCustomProp(block.get(), nullptr), E_POINTER);

  EXPECT_EQ(MvxHasProp(block.get(), 0x10000), S_FALSE);
  ASSERT_EQ(MvxPutStringPropValue(0x10000, L"cd", block.slot()), S_OK);
  EXPECT_EQ(MvxHasProp(block.get(), 0x10000), S_OK);
  ASSERT_EQ(MvxDeleteProp(0x10000, block.slot()), S_OK);
  EXPECT_EQ(MvxHasProp(block.get(), 0x10000), S_FALSE);
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

// Readers on blocks that lie flush against a guard page, including a custom
// text that is the block's last byte and has no terminator.
TEST(CommittedReaders, StayInsideABlockFlushAgainstTheGuard) {
  Committed source = FromServerText({{L"handle", {L"File-4711"}},
                                     {L"parents", {L"A (Collection-1)"}},
                                     {L"displayname", {L"T"}},
                                     {L"getcontentlength", {L"9"}},
                                     {L"creationdate", {L"2006-08-14T09:05:00Z"}}});
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
  SYSTEMTIME time;
  DATE date;
  DWORD id;
  MVXITEMTYPE type;
  DWORD handle_number;
  for (DWORD property : {0x2u, 0x20u, 0x40u, 0x80u, 0x400u, 0x10000u, 0x80000040u}) {
    MvxGetStringPropValue(block, property, &text);
    MvxGetIntegerPropValue(block, property, &number);
    MvxGetDatePropValueAsSystemTime(block, property, &time, FALSE);
    MvxGetDatePropValue(block, property, &date, TRUE);
    MvxHasProp(block, property);
  }
  EXPECT_EQ(MvxGetMvHandlePropValue(block, ~0u, &id, &type, &handle_number, &text), 0);
  EXPECT_EQ(MvxGetCustomStringProp(block, L"z", &text), E_FAIL) << "no terminator";
  EXPECT_EQ(MvxGetCustomIntegerProp(block, L"z", &number), S_OK);
  EXPECT_EQ(number, 0x00333231) << "decimal 0: the value's 3 bytes, then a zero";
  EXPECT_EQ(MvxGetCustomDateProp(block, L"z", &date, TRUE), E_FAIL);
  EXPECT_EQ(MvxHasCustomProp(block, L"z"), S_OK);
}

}  // namespace
}  // namespace mvsup::test
