#include "types/handles.h"

#include <algorithm>

#include "MvSupTypes.h"
#include "frame/text.h"
#include "frame/trace.h"

namespace mvsup::types::handles {

namespace {

struct Prefix {
  std::wstring_view text;
  ItemType type;
};

// Tried by ToHandle after collections and files, in this order.
constexpr Prefix kOtherPrefixes[] = {
    {L"Version-", 12},  {L"Calendar-", 5},  {L"Event-", 10},     {L"BulletinBoard-", 6}, {L"URL-", 7},
    {L"SavedQuery-", 9}, {L"Bulletin-", 8}, {L"User-", 14},      {L"Group-", 15},        {L"Workspace-", 20},
    {L"Wiki-", 21},     {L"Weblog-", 22},   {L"Rendition-", 11}, {L"Subscription-", 13}, {L"Object-", 17},
};

// Characters that end the token before a handle inside longer text, in the
// order in which the token's start is moved behind them.
constexpr std::wstring_view kTokenSeparators = L" \\/.,";

bool is_digit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }

long bare_number(std::wstring_view text) noexcept { return is_number(text) ? leading_decimal(text) : kNoHandle; }

// The handle inside longer text: the token around the first '-' that is
// followed by a digit.
Found find_inside(std::wstring_view text, Found found) noexcept {
  const size_t dash = text.find(L'-');
  if (dash == std::wstring_view::npos || dash == 0 || text[dash - 1] <= L' ' || dash + 1 >= text.size() ||
      !is_digit(text[dash + 1]))
    return found;
  size_t start = 0;
  for (const wchar_t separator : kTokenSeparators) {
    const size_t at = text.substr(start, dash - start).rfind(separator);
    if (at != std::wstring_view::npos) start += at + 1;
  }
  const Handle handle = parse_handle(text.substr(start, kMaxFoundToken));
  if (handle.type == kUnknown) return found;
  return {static_cast<WORD>(handle.type), handle.number};
}

}  // namespace

bool is_number(std::wstring_view text) noexcept {
  if (text.empty()) return false;
  if (text.front() == L'+' || text.front() == L'-') text.remove_prefix(1);
  return std::all_of(text.begin(), text.end(), is_digit);
}

long number_after_prefix(std::wstring_view text, std::wstring_view prefix) noexcept {
  if (prefix.empty() || prefix.size() > kMaxPrefixLength) return kNoHandle;
  if (!text::starts_with_ignore_case(text, prefix)) return kNoHandle;
  return bare_number(text.substr(prefix.size()));
}

long collection(std::wstring_view text, bool allow_bare, bool allow_short) noexcept {
  if (allow_short)
    if (const long number = number_after_prefix(text, L"c"); number != kNoHandle) return number;
  if (const long number = number_after_prefix(text, L"collection-"); number != kNoHandle) return number;
  return allow_bare ? bare_number(text) : kNoHandle;
}

long file(std::wstring_view text, bool allow_bare, long* version, bool allow_short) noexcept {
  if (allow_short)
    if (const long number = number_after_prefix(text, L"f"); number != kNoHandle) return number;
  // Set whether or not a handle follows; callers read it only with a handle.
  if (const size_t slash = text.rfind(L'/'); version != nullptr && slash != std::wstring_view::npos)
    *version = leading_decimal(text.substr(slash + 1));
  if (const long number = number_after_prefix(text, L"file-"); number != kNoHandle) return number;
  if (const long number = number_after_prefix(text, L"document-"); number != kNoHandle) return number;
  return allow_bare ? bare_number(text) : kNoHandle;
}

long group(std::wstring_view text, bool allow_bare) noexcept {
  if (const long number = number_after_prefix(text, L"group-"); number != kNoHandle) return number;
  return allow_bare ? bare_number(text) : kNoHandle;
}

long user(std::wstring_view text, bool allow_bare) noexcept {
  if (const long number = number_after_prefix(text, L"user-"); number != kNoHandle) return number;
  return allow_bare ? bare_number(text) : kNoHandle;
}

Found find(std::wstring_view text, long* version, bool allow_short) noexcept {
  Found found;
  if ((found.number = collection(text, false, allow_short)) != kNoHandle) {
    found.type = static_cast<WORD>(kCollection);
    return found;
  }
  if ((found.number = file(text, false, version, allow_short)) != kNoHandle) {
    found.type = static_cast<WORD>(kFile);
    return found;
  }
  for (const Prefix& prefix : kOtherPrefixes) {
    if ((found.number = number_after_prefix(text, prefix.text)) != kNoHandle) {
      found.type = static_cast<WORD>(prefix.type);
      return found;
    }
  }
  return find_inside(text, found);
}

std::wstring format(ItemType type, DWORD number, bool http) noexcept {
  try {
    std::wstring text = type_word(type, http);
    if (text.size() > kMaxFormattedWord) text.resize(kMaxFormattedWord);
    text += L'-';
    text += std::to_wstring(number);
    return text;
  } catch (...) {
    return {};
  }
}

}  // namespace mvsup::types::handles

using namespace mvsup;

namespace {

int handle_for_caller(types::ItemType type, DWORD number, bool http, LPWSTR buffer, int capacity) noexcept {
  const std::wstring text = types::handles::format(type, number, http);
  if (buffer == nullptr || capacity < 1) return static_cast<int>(text.size());
  text::clear_prefix(buffer, static_cast<size_t>(capacity), static_cast<size_t>(capacity));
  return static_cast<int>(text::copy_truncated(buffer, static_cast<size_t>(capacity), text));
}

}  // namespace

extern "C" {

int WINAPI GetMvxItemHandleAsString(MVXITEMTYPE type, DWORD number, LPWSTR buffer, int capacity) {
  trace::CallScope scope("GetMvxItemHandleAsString");
  return scope.res(handle_for_caller(type, number, false, buffer, capacity));
}

int WINAPI GetMvxItemHandleAsHttpString(MVXITEMTYPE type, DWORD number, LPWSTR buffer, int capacity) {
  trace::CallScope scope("GetMvxItemHandleAsHttpString");
  return scope.res(handle_for_caller(type, number, true, buffer, capacity));
}

long WINAPI ToNumber(LPCWSTR text, LPCWSTR prefix) {
  return types::handles::number_after_prefix(text::view_or_empty(text), text::view_or_empty(prefix));
}

long WINAPI ToCollHandle(LPCWSTR text, BOOL allowBare, BOOL allowShort) {
  return types::handles::collection(text::view_or_empty(text), allowBare != FALSE, allowShort != FALSE);
}

long WINAPI ToFileHandle(LPCWSTR text, BOOL allowBare, long* version, BOOL allowShort) {
  return types::handles::file(text::view_or_empty(text), allowBare != FALSE, version, allowShort != FALSE);
}

long WINAPI ToGroupHandle(LPCWSTR text, BOOL allowBare) {
  return types::handles::group(text::view_or_empty(text), allowBare != FALSE);
}

long WINAPI ToUserHandle(LPCWSTR text, BOOL allowBare) {
  return types::handles::user(text::view_or_empty(text), allowBare != FALSE);
}

int WINAPI ToHandle(LPCWSTR text, WORD* type, long* number, long* version, BOOL allowShort) {
  trace::CallScope scope("ToHandle");
  const types::handles::Found found = types::handles::find(text::view_or_empty(text), version, allowShort != FALSE);
  scope.res(found.number);
  if (type != nullptr) *type = found.type;
  if (number != nullptr) *number = found.number;
  return 0;
}

}  // extern "C"
