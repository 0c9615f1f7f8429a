// Language satellite libraries: resource-only DLLs, one per component and
// language, under the program directory.
#pragma once

#include <windows.h>

#include <string>

namespace mvsup::locale {

// Full path of the satellite of a component for the configured LangId; empty
// when the program directory is unknown.
std::wstring satellite_path(const wchar_t* component);

// Loads the satellite (traced as LoadSatelliteLibrary); null when there is
// none. The caller frees the module.
HMODULE load_satellite(const wchar_t* component) noexcept;

}  // namespace mvsup::locale
