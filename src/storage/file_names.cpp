// Safe file names: checking a title, replacing what may not stand in a name,
// and names next to a module.
#include <windows.h>

#include <string>
#include <string_view>

#include "MvSupFiles.h"
#include "frame/library_state.h"
#include "frame/trace.h"

namespace mvsup::file_names {

namespace {

constexpr wchar_t kReplacement = L'_';
constexpr unsigned kFirstPrintable = 33;  // below: controls and the blank
constexpr size_t kLongestPath = 32768;

std::wstring_view illegal_characters() noexcept {
  const wchar_t* characters = frame::illegal_path_chars();
  return characters ? std::wstring_view(characters) : std::wstring_view();
}

bool is_illegal(wchar_t c) noexcept { return illegal_characters().find(c) != std::wstring_view::npos; }

// The illegal characters as single ANSI bytes (those that have one).
std::string illegal_bytes() {
  std::string bytes;
  for (wchar_t c : illegal_characters()) {
    char byte[4];
    BOOL lossy = FALSE;
    const int n = ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, &c, 1, byte, sizeof(byte), nullptr, &lossy);
    if (n == 1 && !lossy) bytes += byte[0];
  }
  return bytes;
}

}  // namespace

int validate_title(const wchar_t* title, bool reject_trailing_dot) noexcept {
  if (title == nullptr || *title == L'\0') return 0;
  const std::wstring_view text(title);
  if (text.find_first_of(illegal_characters()) != std::wstring_view::npos) return 0;
  return reject_trailing_dot && text.back() == L'.' ? 0 : 1;
}

wchar_t* underscore(wchar_t* name) noexcept {
  if (name == nullptr) return nullptr;
  wchar_t* c = name;
  for (; *c != L'\0'; ++c)
    if (static_cast<unsigned>(*c) < kFirstPrintable || is_illegal(*c)) *c = kReplacement;
  if (c != name && c[-1] == L'.') c[-1] = kReplacement;
  return name;
}

char* underscore(char* name) noexcept {
  if (name == nullptr) return nullptr;
  std::string illegal;
  try {
    illegal = illegal_bytes();
  } catch (...) {
  }
  char* last = nullptr;  // start of the last character
  for (char* c = name; *c != '\0'; ++c) {
    last = c;
    // A double-byte character is kept whole: its second byte may look like
    // '\' or any other illegal character.
    if (::IsDBCSLeadByte(static_cast<BYTE>(*c)) && c[1] != '\0') {
      ++c;
      continue;
    }
    if (static_cast<unsigned char>(*c) < kFirstPrintable || illegal.find(*c) != std::string::npos) *c = '_';
  }
  if (last != nullptr && *last == '.') *last = '_';
  return name;
}

int build_from_module_path(HMODULE module, const wchar_t* file_name, wchar_t* buffer, int capacity) noexcept {
  if (buffer == nullptr || capacity < 1) return 0;
  buffer[0] = L'\0';
  try {
    // The module path is read whole, so that only the result has to fit the
    // caller's buffer.
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = 0;
    while ((length = ::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()))) == path.size() &&
           path.size() < kLongestPath)
      path.resize(path.size() * 2);
    if (length == 0 || length >= path.size()) return 0;
    path.resize(length);
    const size_t slash = path.rfind(L'\\');
    if (slash == std::wstring::npos) return 0;
    path.resize(file_name == nullptr ? slash : slash + 1);
    if (file_name != nullptr) path += file_name;
    if (path.size() >= static_cast<size_t>(capacity)) return 0;
    path.copy(buffer, path.size());
    buffer[path.size()] = L'\0';
    return 1;
  } catch (...) {
    return 0;
  }
}

}  // namespace mvsup::file_names

using namespace mvsup;

extern "C" {

int WINAPI ValidateFileTitle(LPCWSTR title, int rejectTrailingDot) {
  return file_names::validate_title(title, rejectTrailingDot != 0);
}

LPWSTR WINAPI UnderscoreFileName(LPWSTR name) { return file_names::underscore(name); }

LPSTR WINAPI UnderscoreFileNameA(LPSTR name) { return file_names::underscore(name); }

int WINAPI BuildFileNameFromModulePath(HMODULE module, LPCWSTR fileName, LPWSTR buffer, int capacity) {
  trace::CallScope scope("BuildFileNameFromModulePath", reinterpret_cast<uintptr_t>(module));
  return scope.res(file_names::build_from_module_path(module, fileName, buffer, capacity));
}

}  // extern "C"
