// The property catalogue, checked against the table written out by hand.
#include <windows.h>

#include <gtest/gtest.h>

#include <cwctype>
#include <string>

#include "MvSup2u.h"

namespace mvsup::test {
namespace {

struct Expected {
  DWORD id;
  const wchar_t* name;
  const wchar_t* alias;
  int type;
};

const Expected kCatalogue[] = {
    {0x2, L"displayname", L"title", 1},
    {0x4, L"summary", nullptr, 1},
    {0x8, L"description", nullptr, 2},
    {0x10, L"keywords", nullptr, 1},
    {0x20, L"handle", nullptr, 11},
    {0x40, L"entityowner", nullptr, 12},
    {0x80, L"creationdate", L"create_date", 8},
    {0x100, L"getlastmodified", L"modified_date", 8},
    {0x200, L"modified_by", nullptr, 12},
    {0x400, L"parents", nullptr, 19},
    {0x800, L"acl", nullptr, 13},
    {0x2000, L"private", nullptr, 4},
    {0x4000, L"subscriptions", nullptr, 19},
    {0x8000, L"children", nullptr, 19},
    {0x10000, L"client_data", nullptr, 2},
    {0x40000, L"expiration_date", nullptr, 8},
    {0x80000, L"isRecord", nullptr, 4},
    {0x100000, L"readyForDeclare", nullptr, 4},
    {0x80000002, L"document", nullptr, 14},
    {0x80000004, L"getcontenttype", L"content_type", 1},
    {0x80000008, L"author", nullptr, 1},
    {0x80000010, L"max_versions", nullptr, 5},
    {0x80000040, L"getcontentlength", L"size", 5},
    {0x80000080, L"abstract", nullptr, 1},
    {0x80000100, L"file1_comment", nullptr, 1},
    {0x80000200, L"mervane_filename", nullptr, 14},
    {0x80000400, L"highest_version_used", nullptr, 5},
    {0x80001000, L"isInteract", nullptr, 4},
    {0x40000002, L"logo", nullptr, 3},
    {0x40000004, L"bg_image", nullptr, 3},
    {0x40000008, L"sort_order", nullptr, 7},
    {0x40000010, L"memberlength", L"n_items", 5},
    {0xC0000002, L"expire", nullptr, 7},
    {0x20000002, L"default_scale", nullptr, 4},
    {0xA0000002, L"url", nullptr, 3},
    {0x90000002, L"change_access", nullptr, 4},
    {0xE0000002, L"read_only", L"server.readonly", 4},
    {0xE0000004, L"site_access", L"siteaccess", 1},
    {0xE0000008, L"http_protocol", nullptr, 1},
    {0xE0000010, L"schemata", nullptr, 0},
    {0xE0000020, L"auto_login", nullptr, 4},
    {0xE0000040, L"domains", nullptr, 1},
    {0x10000002, L"first_name", nullptr, 1},
    {0x10000004, L"last_name", nullptr, 1},
    {0x10000008, L"email", nullptr, 9},
    {0x10000010, L"mailstop", nullptr, 1},
    {0x10000020, L"phone", nullptr, 1},
    {0x10000040, L"use_upload_helper", nullptr, 7},
    {0x10000080, L"username", nullptr, 1},
    {0x10000100, L"password", nullptr, 10},
    {0x10000200, L"last_login", nullptr, 8},
    {0x10000400, L"homepage", nullptr, 3},
    {0x10000800, L"getrmrole", nullptr, 1},
    {0x10001000, L"can_declare", nullptr, 4},
    {0x10002000, L"getclassificationdatalist", nullptr, 1},
    {0x30000002, L"year", L"__year__", 5},
    {0x30000004, L"month", L"__month__", 5},
    {0x30000008, L"__day__", nullptr, 5},
    {0x30000010, L"start", L"__start__", 5},
    {0x30000020, L"__end__", nullptr, 5},
    {0x30000040, L"num_repeat", L"__num_repeat__", 5},
    {0x30000080, L"repeat", L"__repeat__", 7},
};

std::wstring upper(std::wstring text) {
  for (wchar_t& c : text) c = static_cast<wchar_t>(std::towupper(c));
  return text;
}

TEST(PropertyCatalogue, EveryNameIdAndTypeRoundTrips) {
  for (const Expected& entry : kCatalogue) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(entry.name)));
    EXPECT_EQ(PropIdFromPropertyName(entry.name), entry.id);
    EXPECT_EQ(PropIdFromPropertyName(upper(entry.name).c_str()), entry.id);
    if (entry.alias) {
      EXPECT_EQ(PropIdFromPropertyName(entry.alias), entry.id);
      EXPECT_EQ(PropIdFromPropertyName(upper(entry.alias).c_str()), entry.id);
    }
    EXPECT_STREQ(PropertyNameFromPropId(entry.id), entry.name);
    EXPECT_EQ(PropTypeFromPropId(entry.id), entry.type);
  }
  EXPECT_EQ(PropIdFromPropertyName(L"TiTlE"), 0x2u);
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

  // Ids with a type and no name.
  const std::pair<DWORD, int> typed_only[] = {{0x1000, 13}, {0xE0000080, 18}, {0xE0000100, 18}, {0x70000002, 5}};
  for (const auto& [id, type] : typed_only) {
    EXPECT_EQ(PropTypeFromPropId(id), type) << std::hex << id;
    EXPECT_STREQ(PropertyNameFromPropId(id), L"") << std::hex << id;
  }
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

TEST(PropertyCatalogue, NothingBeyondTheTableIsKnown) {
  // Every single-bit id of every class: exactly the table and the typed-only
  // ids answer.
  int named = 0, typed = 0;
  for (DWORD klass = 0; klass < 16; ++klass) {
    for (int bit = 0; bit < 28; ++bit) {
      const DWORD id = (klass << 28) | (1u << bit);
      if (*PropertyNameFromPropId(id) != L'\0') ++named;
      if (PropTypeFromPropId(id) != 0) ++typed;
    }
  }
  const int with_type = static_cast<int>(std::size(kCatalogue)) - 1;  // "schemata" has type 0
  EXPECT_EQ(named, static_cast<int>(std::size(kCatalogue)) + 2);    // + locked_by, has_time
  EXPECT_EQ(typed, with_type + 2 + 4);                               // + those two, + the typed-only ids
}

TEST(PropertyCatalogue, ItemPropIdAddsTheClassBitsOfTheItemType) {
  const std::pair<LONG, DWORD> classes[] = {{1, 0xE0000000}, {2, 0x40000000}, {3, 0x80000000}, {5, 0x20000000},
                                            {6, 0xC0000000}, {7, 0xA0000000}, {8, 0xD0000000}, {9, 0x50000000},
                                            {10, 0x30000000}, {14, 0x10000000}, {15, 0x90000000}, {20, 0x70000000}};
  for (const auto& [type, bits] : classes) EXPECT_EQ(GetItemPropId(0x2, type), bits | 0x2) << type;
  for (LONG type : {-1, 0, 4, 11, 12, 13, 16, 17, 18, 19, 21, 22, 33, 255})
    EXPECT_EQ(GetItemPropId(0x2, type), 0x2u) << type;
  EXPECT_EQ(GetItemPropId(0x2, 3), 0x80000002u);
  EXPECT_EQ(GetItemPropId(0x40, 2), 0x40000040u);
  EXPECT_EQ(PropertyNameFromPropId(GetItemPropId(0x10, 2)), std::wstring(L"memberlength"));
}

}  // namespace
}  // namespace mvsup::test
