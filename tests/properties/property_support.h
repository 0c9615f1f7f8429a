// Helpers of the property tests: committed item infos built from server
// text through the exports, and readers' answers as values.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "MvSup2u.h"
#include "common/item_info_blocks.h"

namespace mvsup::test {

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

// The attribute 16 values of a property of an open item info, as bytes.
inline std::vector<ByteVector> ValuesOf(HMVXINFO info, HMVXPROP property) {
  std::vector<ByteVector> values;
  HMVXATTR attribute = MvxFindAttribute(info, property, MVX_ATTRIBUTE_VALUES);
  for (int i = 0; i < MvxGetAttributeValuesCount(info, attribute); ++i)
    values.push_back(ValueBytes(MvxGetAttributeValue(info, attribute, i)));
  return values;
}

inline std::vector<std::string> HexAll(const std::vector<ByteVector>& values) {
  std::vector<std::string> out;
  for (const ByteVector& value : values) out.push_back(Hex(value));
  return out;
}

inline bool PointsInto(const Committed& block, const void* pointer) {
  const auto* at = static_cast<const BYTE*>(pointer);
  return at >= block.get() && at < block.get() + block.size();
}

inline SYSTEMTIME Time(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second, WORD day_of_week) {
  SYSTEMTIME time{};
  time.wYear = year;
  time.wMonth = month;
  time.wDay = day;
  time.wHour = hour;
  time.wMinute = minute;
  time.wSecond = second;
  time.wDayOfWeek = day_of_week;
  return time;
}

inline std::string Text(const SYSTEMTIME& t) {
  char text[64];
  snprintf(text, sizeof text, "%04u-%02u-%02u (%u) %02u:%02u:%02u.%03u", t.wYear, t.wMonth, t.wDay, t.wDayOfWeek,
           t.wHour, t.wMinute, t.wSecond, t.wMilliseconds);
  return text;
}

}  // namespace mvsup::test
