// Shared helpers of the item type tests.
#pragma once

#include <windows.h>

#include <string>

#include "MvSup2u.h"
#include "common/guard_page.h"
#include "common/registry_sandbox.h"

namespace mvsup::test {

inline const std::wstring kCustomTypesKey = client_path(L"MVSUP\\CustomTypes");
inline const std::wstring kMapsKey = kCustomTypesKey + L"\\Maps";
inline const std::wstring kNamesKey = kCustomTypesKey + L"\\Names";
inline const std::wstring kClassesKey = kCustomTypesKey + L"\\Classes";

// Results of the buffer-filling functions as strings.
inline std::wstring word_of(MVXITEMTYPE type) {
  wchar_t buffer[400];
  return GetMvxItemTypeAsStringTS(type, buffer, 400);
}
inline std::wstring http_word_of(MVXITEMTYPE type) {
  wchar_t buffer[400];
  return GetMvxItemTypeAsHttpStringTS(type, buffer, 400);
}
inline std::wstring handle_of(MVXITEMTYPE type, DWORD number) {
  wchar_t buffer[400];
  GetMvxItemHandleAsString(type, number, buffer, 400);
  return buffer;
}

inline MVXITEMTYPE create_type(const wchar_t* word) {
  MVXITEMTYPE type = -1;
  EXPECT_EQ(MvxCreateCustomItemType(word, &type), 1) << "creating " << testing::PrintToString(std::wstring(word));
  return type;
}

// A copy of text whose terminator is the last readable character.
class GuardedText {
 public:
  explicit GuardedText(const std::wstring& text) : buffer_((text.size() + 1) * sizeof(wchar_t)) {
    std::memcpy(buffer_.data(), text.c_str(), (text.size() + 1) * sizeof(wchar_t));
  }
  const wchar_t* get() { return buffer_.as<wchar_t>(); }

 private:
  GuardedBuffer buffer_;
};

}  // namespace mvsup::test
