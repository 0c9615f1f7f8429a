#include "locale/satellite.h"

#include "MvSupLocale.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "storage/directories.h"

namespace mvsup::locale {

std::wstring satellite_path(const wchar_t* component) {
  wchar_t directory[MAX_PATH] = {};
  if (directories::program(directory, MAX_PATH) == 0) return {};
  std::wstring path = directory;
  if (const WORD language = directories::language_id()) {
    wchar_t folder[8];
    ::wsprintfW(folder, L"\\%04X", language);
    path += folder;
  }
  path += L'\\';
  path += text::view_or_empty(component);
  path += L"Satellite.dll";
  return path;
}

HMODULE load_satellite(const wchar_t* component) noexcept {
  trace::CallScope scope("LoadSatelliteLibrary");
  if (component == nullptr) return nullptr;
  try {
    const std::wstring path = satellite_path(component);
    if (path.empty()) return nullptr;
    // No fall-back from a language folder to the neutral file.
    if (::GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) return nullptr;
    trace::line(L"SatellitePath: %ls\n", path.c_str());
    HMODULE module = ::LoadLibraryW(path.c_str());
    if (module == nullptr) scope.res(::GetLastError());
    return module;
  } catch (...) {
    return nullptr;
  }
}

}  // namespace mvsup::locale

extern "C" HMODULE WINAPI LoadSatelliteLibrary(LPCWSTR component) { return mvsup::locale::load_satellite(component); }
