// The library's icon tables: pairs of icon resources (large, small) by icon
// index. Entries are 32-bit words whose low 16 bits are the resource id, as
// callers that read the tables directly have always seen them.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <string_view>

namespace mvsup::shell::icons {

inline constexpr uint32_t kFirstIconId = 5001;
inline constexpr uint32_t kLastIconId = 5110;
inline constexpr uint32_t kGenericLargeIcon = 5024;
inline constexpr uint32_t kGenericSmallIcon = 5025;

// Item and file icons. Indexes 0-33 are the unselected icons, 34-67 the
// same things selected (index + 34); 68 and 69 the generic document pair.
inline constexpr size_t kItemIconCount = 70;
inline constexpr UINT kSelectedOffset = 34;

namespace item_index {
inline constexpr UINT kNoClass = 0;  // the client
inline constexpr UINT kServer = 1;
inline constexpr UINT kCollection = 2;
inline constexpr UINT kDocument = 3;
inline constexpr UINT kCalendar = 4;
inline constexpr UINT kDiscussion = 5;
inline constexpr UINT kSavedQuery = 6;
inline constexpr UINT kUrl = 7;
inline constexpr UINT kEvent = 8;
inline constexpr UINT kTopic = 9;
inline constexpr UINT kUser = 10;
inline constexpr UINT kGroup = 11;
inline constexpr UINT kRendition = 12;
inline constexpr UINT kOther = 13;
inline constexpr UINT kLink = 19;
inline constexpr UINT kWorkspace = 31;
inline constexpr UINT kWiki = 32;
inline constexpr UINT kWeblog = 33;
}  // namespace item_index

inline constexpr std::array<uint32_t, kItemIconCount> kItemLargeIcons = {
    5002, 5011, 5004, 5015, 5016, 5020, 5026, 5030, 5057, 5061,  //  0- 9
    5065, 5067, 5069, 5071, 5073, 5075, 5049, 5090, 5092, 5094,  // 10-19
    5024, 5108, 5001, 5076, 5078, 5080, 5082, 5084, 5086, 5088,  // 20-29
    5024, 5096, 5100, 5104,                                      // 30-33
    5002, 5010, 5006, 5014, 5018, 5022, 5028, 5032, 5059, 5063,  // 34-43
    5065, 5067, 5069, 5071, 5073, 5075, 5049, 5090, 5092, 5094,  // 44-53
    5024, 5110, 5001, 5076, 5078, 5080, 5082, 5084, 5086, 5088,  // 54-63
    5024, 5098, 5102, 5106,                                      // 64-67
    5024, 5024,                                                  // 68-69
};

inline constexpr std::array<uint32_t, kItemIconCount> kItemSmallIcons = {
    5003, 5009, 5005, 5013, 5017, 5021, 5027, 5031, 5058, 5062,  //  0- 9
    5066, 5068, 5070, 5072, 5074, 5034, 5051, 5091, 5093, 5095,  // 10-19
    5025, 5109, 5003, 5077, 5079, 5081, 5083, 5085, 5087, 5089,  // 20-29
    5025, 5097, 5101, 5105,                                      // 30-33
    5003, 5008, 5007, 5012, 5019, 5023, 5029, 5033, 5060, 5064,  // 34-43
    5066, 5068, 5070, 5072, 5074, 5034, 5051, 5091, 5093, 5095,  // 44-53
    5025, 5109, 5003, 5077, 5079, 5081, 5083, 5085, 5087, 5089,  // 54-63
    5025, 5099, 5103, 5107,                                      // 64-67
    5025, 5025,                                                  // 68-69
};

// Server-map icons: 0 connected, 1 not connected, 2 busy, 3 error, 4 map
// node, 5 linked server, 6 linked node; 7-13 the same selected.
inline constexpr size_t kServerMapIconCount = 14;
inline constexpr UINT kServerMapSelectedOffset = 7;

inline constexpr std::array<uint32_t, kServerMapIconCount> kServerMapLargeIcons = {
    5011, 5035, 5039, 5036, 5037, 5055, 5056, 5010, 5038, 5040, 5041, 5042, 5055, 5056,
};
inline constexpr std::array<uint32_t, kServerMapIconCount> kServerMapSmallIcons = {
    5009, 5043, 5044, 5045, 5046, 5053, 5054, 5008, 5048, 5050, 5047, 5052, 5053, 5054,
};

// Mail classes of the custom property OutlookMessageClass, compared as
// prefixes in this order; no match is index 0.
struct MailClass {
  std::wstring_view prefix;
  UINT index;
};
inline constexpr std::array<MailClass, 7> kMailMessageClasses = {{
    {L"IPM.Note", 23},
    {L"IPM.Post", 24},
    {L"IPM.Appointment", 25},
    {L"IPM.Task", 26},
    {L"IPM.StickyNote", 27},
    {L"IPM.Contact", 28},
    {L"IPM.Activity", 29},
}};

// Folder classes of the custom property OutlookFolderClass: a collection of
// mail items shows the icon of the items it holds.
inline constexpr std::array<MailClass, 6> kMailFolderClasses = {{
    {L"IPF.Note", 23},
    {L"IPF.Appointment", 25},
    {L"IPF.Task", 26},
    {L"IPF.StickyNote", 27},
    {L"IPF.Contact", 28},
    {L"IPF.Journal", 29},
}};

namespace detail {
constexpr bool ids_in_range(const auto& table) {
  for (uint32_t id : table)
    if ((id & 0xFFFF) < kFirstIconId || (id & 0xFFFF) > kLastIconId) return false;
  return true;
}
// Every icon resource is reachable through some table.
constexpr bool every_icon_listed() {
  for (uint32_t id = kFirstIconId; id <= kLastIconId; ++id) {
    bool found = false;
    for (const auto* table : {&kItemLargeIcons, &kItemSmallIcons})
      for (uint32_t entry : *table) found = found || entry == id;
    for (const auto* table : {&kServerMapLargeIcons, &kServerMapSmallIcons})
      for (uint32_t entry : *table) found = found || entry == id;
    if (!found) return false;
  }
  return true;
}
}  // namespace detail

static_assert(detail::ids_in_range(kItemLargeIcons) && detail::ids_in_range(kItemSmallIcons) &&
              detail::ids_in_range(kServerMapLargeIcons) && detail::ids_in_range(kServerMapSmallIcons));
static_assert(detail::every_icon_listed());

}  // namespace mvsup::shell::icons
