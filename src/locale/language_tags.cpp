// Language tags to Windows language identifiers, and ANSI text to UTF-8.
#include <array>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "MvSupLocale.h"
#include "frame/text.h"
#include "frame/trace.h"

namespace mvsup::locale {

namespace {

struct LanguageTag {
  std::wstring_view tag;
  WORD primary;
};

// The lookup order; sr and hr share 0x1A, Indonesian is written "in".
constexpr std::array<LanguageTag, 36> kLanguageTags{{
    {L"en", 0x09}, {L"es", 0x0A}, {L"fr", 0x0C}, {L"de", 0x07}, {L"it", 0x10}, {L"pt", 0x16},
    {L"da", 0x06}, {L"nl", 0x13}, {L"fi", 0x0B}, {L"no", 0x14}, {L"pl", 0x15}, {L"ro", 0x18},
    {L"sv", 0x1D}, {L"ru", 0x19}, {L"sr", 0x1A}, {L"sk", 0x1B}, {L"af", 0x36}, {L"sq", 0x1C},
    {L"eu", 0x2D}, {L"be", 0x23}, {L"bg", 0x02}, {L"ca", 0x03}, {L"hr", 0x1A}, {L"cs", 0x05},
    {L"et", 0x25}, {L"fo", 0x38}, {L"el", 0x08}, {L"he", 0x0D}, {L"hu", 0x0E}, {L"is", 0x0F},
    {L"in", 0x21}, {L"lv", 0x26}, {L"sl", 0x24}, {L"lt", 0x27}, {L"tr", 0x1F}, {L"uk", 0x22},
}};

// Sublanguage by language; the region part of a tag is never consulted.
struct Sublanguage {
  std::wstring_view tag;
  WORD sublanguage;
};
constexpr std::array<Sublanguage, 1> kSublanguageExceptions{{{L"pt", 2}}};
constexpr WORD kDefaultSublanguage = 1;

WORD primary_language(std::wstring_view language) noexcept {
  for (const LanguageTag& entry : kLanguageTags)
    if (text::equals_ignore_case(entry.tag, language)) return entry.primary;
  return 0;
}

WORD sublanguage(std::wstring_view language) noexcept {
  for (const Sublanguage& entry : kSublanguageExceptions)
    if (text::equals_ignore_case(entry.tag, language)) return entry.sublanguage;
  return kDefaultSublanguage;
}

}  // namespace

LCID lcid_from_tag(std::wstring_view tag) noexcept {
  const std::wstring_view language = tag.substr(0, tag.find(L'-'));
  return static_cast<LCID>(static_cast<WORD>(sublanguage(language) << 10) | primary_language(language));
}

int ansi_to_utf8(const char* source, char* out, int out_size) noexcept {
  if (source == nullptr || out_size < 0) return 0;
  if (out_size == 0) {
    bool plain = true;
    for (const char* p = source; *p; ++p)
      if (static_cast<unsigned char>(*p) >= 0x80) {
        plain = false;
        break;
      }
    // Plain ASCII needs no conversion: the caller uses the text as it is.
    if (plain) return -1;
  } else if (out == nullptr) {
    return 0;
  }
  // Short texts convert through a buffer on the stack; longer ones allocate.
  wchar_t local[512];
  std::unique_ptr<wchar_t[]> heap;
  wchar_t* wide = local;
  int units = ::MultiByteToWideChar(CP_ACP, 0, source, -1, local, 512);
  if (units == 0) {
    units = ::MultiByteToWideChar(CP_ACP, 0, source, -1, nullptr, 0);
    if (units <= 0) return 0;
    heap.reset(new (std::nothrow) wchar_t[static_cast<size_t>(units)]);
    if (!heap) return 0;
    wide = heap.get();
    units = ::MultiByteToWideChar(CP_ACP, 0, source, -1, wide, units);
  }
  return ::WideCharToMultiByte(CP_UTF8, 0, wide, units, out, out_size, nullptr, nullptr);
}

}  // namespace mvsup::locale

using namespace mvsup;

extern "C" {

BOOL WINAPI LCIDfromLangTag(LPCWSTR tag, LCID* lcid) {
  if (lcid == nullptr) return FALSE;
  *lcid = locale::lcid_from_tag(text::view_or_empty(tag));
  return TRUE;
}

int WINAPI ANSIStringToUTF8(LPCSTR text, LPSTR out, int outSize) {
  trace::CallScope scope("ANSIStringToUTF8");
  return scope.res(locale::ansi_to_utf8(text, out, outSize));
}

}  // extern "C"
