// Identity strings of this library, as its trace banner shows them.
#pragma once

namespace mvsup::frame {

inline constexpr const wchar_t* kComponentName = L"SDK";
inline constexpr const char* kComponentNameNarrow = "SDK";
inline constexpr const char* kLibraryName = "MVSUP2u";

// The build date in the form "Aug 14 2006": three letters, two digits, four
// digits. The build passes the date of the sources' last commit, so that
// rebuilding the same sources gives the same library; without it the
// compiler's date is used (its day padded with a blank, written as a zero).
inline const char* compile_date() noexcept {
#ifdef MVSUP_BUILD_DATE
  static char date[] = MVSUP_BUILD_DATE;
#else
  static char date[] = __DATE__;
#endif
  if (date[4] == ' ') date[4] = '0';
  return date;
}

}  // namespace mvsup::frame
