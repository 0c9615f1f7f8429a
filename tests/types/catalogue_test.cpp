// The property catalogue through its four look-ups.
#include <windows.h>

#include <gtest/gtest.h>

#include <cwctype>
#include <string>

#include "MvSup2u.h"

namespace mvsup::test {
namespace {

std::wstring upper(std::wstring text) {
  for (wchar_t& c : text) c = static_cast<wchar_t>(std::towupper(c));
  return text;
}

// Every named single-bit id of every class: its name reads back as the id in
// any case (save the two names given only for an id), and the count of named
// and typed ids is exactly the catalogue's.
TEST(PropertyCatalogue, EveryNameReadsBackAsItsIdAndNothingElseIsKnown) {
  int named = 0, typed = 0;
  for (DWORD klass = 0; klass < 16; ++klass) {
    for (int bit = 0; bit < 28; ++bit) {
      const DWORD id = (klass << 28) | (1u << bit);
      const std::wstring name = PropertyNameFromPropId(id);
      if (PropTypeFromPropId(id) != 0) ++typed;
      if (name.empty()) continue;
      ++named;
      if (name == L"locked_by" || name == L"has_time") continue;
      EXPECT_EQ(PropIdFromPropertyName(name.c_str()), id) << testing::PrintToString(name);
      EXPECT_EQ(PropIdFromPropertyName(upper(name).c_str()), id) << testing::PrintToString(name);
    }
  }
  EXPECT_EQ(named, 64);  // 62 in the table, locked_by, has_time
  EXPECT_EQ(typed, 67);  // all but "schemata", and 0x1000, 0xE0000080, 0xE0000100, 0x70000002
}

TEST(PropertyCatalogue, FurtherNamesAndTypeCodes) {
  const std::pair<const wchar_t*, DWORD> further[] = {
      {L"TiTlE", 0x2},          {L"create_date", 0x80},          {L"modified_date", 0x100},
      {L"CONTENT_TYPE", 0x80000004}, {L"n_items", 0x40000010},   {L"server.readonly", 0xE0000002},
      {L"siteaccess", 0xE0000004},   {L"__year__", 0x30000002},  {L"__month__", 0x30000004},
      {L"__start__", 0x30000010},    {L"__num_repeat__", 0x30000040}, {L"__repeat__", 0x30000080},
  };
  for (const auto& [name, id] : further) EXPECT_EQ(PropIdFromPropertyName(name), id) << name;
  // One id of each type code, and the ids with a type but no name.
  const std::pair<DWORD, int> types[] = {
      {0x2, 1},         {0x8, 2},          {0x20, 11},        {0x40, 12},       {0x80, 8},         {0x400, 19},
      {0x800, 13},      {0x2000, 4},       {0x80000002, 14},  {0x80000010, 5},  {0x40000002, 3},   {0x40000008, 7},
      {0x10000008, 9},  {0x10000100, 10},  {0xE0000010, 0},   {0x1000, 13},     {0xE0000080, 18},  {0xE0000100, 18},
      {0x70000002, 5},
  };
  for (const auto& [id, type] : types) EXPECT_EQ(PropTypeFromPropId(id), type) << std::hex << id;
  for (DWORD id : {0x1000u, 0xE0000080u, 0xE0000100u, 0x70000002u}) EXPECT_STREQ(PropertyNameFromPropId(id), L"");
}

TEST(PropertyCatalogue, AsymmetriesAreKept) {
  EXPECT_EQ(PropIdFromPropertyName(L"locked_by"), 0u);
  EXPECT_EQ(PropIdFromPropertyName(L"lockdiscovery"), 0x80000800u);
  EXPECT_STREQ(PropertyNameFromPropId(0x80000800), L"locked_by");
  EXPECT_EQ(PropTypeFromPropId(0x80000800), 12);
  EXPECT_EQ(PropIdFromPropertyName(L"has_time"), 0u);
  EXPECT_STREQ(PropertyNameFromPropId(0x30000100), L"has_time");
  EXPECT_EQ(PropTypeFromPropId(0x30000100), 4);
  EXPECT_EQ(PropIdFromPropertyName(L"size"), 0x80000040u);
  EXPECT_STREQ(PropertyNameFromPropId(0x80000040), L"getcontentlength");
}

TEST(PropertyCatalogue, UnknownNamesAndIdsGiveTheNeutralAnswers) {
  for (const wchar_t* name : {L"", L"titl", L"title ", L" title", L"titles", L"locked", L"client-data"})
    EXPECT_EQ(PropIdFromPropertyName(name), 0u) << testing::PrintToString(std::wstring(name));
  EXPECT_EQ(PropIdFromPropertyName(nullptr), 0u);
  for (DWORD id : {0x0u, 0x1u, 0x20000u, 0x80000020u, 0x6u, 0xF0000002u, 0xFFFFFFFFu}) {
    EXPECT_STREQ(PropertyNameFromPropId(id), L"") << std::hex << id;
    EXPECT_EQ(PropTypeFromPropId(id), 0) << std::hex << id;
  }
}

TEST(PropertyCatalogue, ItemPropIdAddsTheClassBitsOfTheItemType) {
  const std::pair<LONG, DWORD> classes[] = {{1, 0xE0000000}, {2, 0x40000000}, {3, 0x80000000}, {5, 0x20000000},
                                            {6, 0xC0000000}, {7, 0xA0000000}, {8, 0xD0000000}, {9, 0x50000000},
                                            {10, 0x30000000}, {14, 0x10000000}, {15, 0x90000000}, {20, 0x70000000}};
  for (const auto& [type, bits] : classes) EXPECT_EQ(GetItemPropId(0x2, type), bits | 0x2) << type;
  for (LONG type : {-1, 0, 4, 11, 12, 13, 16, 17, 18, 19, 21, 22, 33, 255})
    EXPECT_EQ(GetItemPropId(0x40, type), 0x40u) << type;
}

}  // namespace
}  // namespace mvsup::test
