// Identity strings of this library, as its trace banner shows them.
#pragma once

namespace mvsup::frame {

inline constexpr const wchar_t* kComponentName = L"SDK";
inline constexpr const char* kComponentNameNarrow = "SDK";
inline constexpr const char* kLibraryName = "MVSUP2u";

// The build date in the form "Aug 14 2006": three letters, two digits, four
// digits (the compiler pads the day with a blank; it is written as a zero).
inline const char* compile_date() noexcept {
  static char date[] = __DATE__;
  if (date[4] == ' ') date[4] = '0';
  return date;
}

}  // namespace mvsup::frame
