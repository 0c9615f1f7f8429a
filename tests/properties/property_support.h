// Helpers of the property tests: committed item infos built from server
// text through the exports, and stored values as hex written out by hand.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cwchar>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "MvSup2u.h"
#include "common/item_info_blocks.h"

namespace mvsup::test {

using Hexes = std::vector<std::string>;

struct ServerProperty {
  const wchar_t* name;
  std::vector<const wchar_t*> values;
};

// A committed item info filled with AddItemPropToMvxInfo, as a client does.
inline Committed FromServerText(std::initializer_list<ServerProperty> properties) {
  Committed block = Committed::create();
  HMVXINFO info = MvxOpen(block.get());
  EXPECT_NE(info, nullptr);
  for (const ServerProperty& property : properties) {
    EXPECT_EQ(AddItemPropToMvxInfo(0, info, property.name, static_cast<int>(property.values.size()),
                                   property.values.data()),
              1)
        << testing::PrintToString(std::wstring(property.name));
  }
  EXPECT_EQ(MvxUpdateItemInfo(info, block.slot()), S_OK);
  MvxClose(info);
  return block;
}

// A block that does not hold together: its entry table runs past its size.
inline Committed Broken() { return Committed(Bytes().header(48).u16(254).u16(5).zeros(4)); }

// The values of one attribute of a property of an open item info, as hex.
inline Hexes HexValues(HMVXINFO info, HMVXPROP property, DWORD attribute_id = MVX_ATTRIBUTE_VALUES) {
  Hexes values;
  HMVXATTR attribute = MvxFindAttribute(info, property, attribute_id);
  for (int i = 0; i < MvxGetAttributeValuesCount(info, attribute); ++i)
    values.push_back(Hex(ValueBytes(MvxGetAttributeValue(info, attribute, i))));
  return values;
}

// The values of an id-keyed property of a committed item info, read back by opening.
inline Hexes StoredValues(const Committed& block, DWORD id) {
  Opened info(block.get());
  return HexValues(info, MvxFindProperty(info, id));
}

inline std::string StringValue(const wchar_t* text) {
  return Hex(Bytes().u32(static_cast<uint32_t>(2 * (std::wcslen(text) + 1))).text(text));
}
inline std::string IntegerValue(LONG value) { return Hex(Bytes().u32(4).u32(static_cast<uint32_t>(value))); }
inline std::string DateValue(DWORD high, DWORD low) { return Hex(Bytes().u32(8).u32(high).u32(low)); }
inline std::string HandleValue(WORD type, DWORD number, const wchar_t* title) {
  return Hex(Bytes().u32(static_cast<uint32_t>(6 + 2 * (std::wcslen(title) + 1))).u16(type).u32(number).text(title));
}

inline bool PointsInto(const Committed& block, const void* pointer) {
  const auto* at = static_cast<const BYTE*>(pointer);
  return at >= block.get() && at < block.get() + block.size();
}

inline SYSTEMTIME Time(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second, WORD day_of_week) {
  return SYSTEMTIME{year, month, day_of_week, day, hour, minute, second, 0};
}

inline std::string Text(const SYSTEMTIME& t) {
  char text[64];
  snprintf(text, sizeof text, "%04u-%02u-%02u (%u) %02u:%02u:%02u.%03u", t.wYear, t.wMonth, t.wDay, t.wDayOfWeek,
           t.wHour, t.wMinute, t.wSecond, t.wMilliseconds);
  return text;
}

}  // namespace mvsup::test
