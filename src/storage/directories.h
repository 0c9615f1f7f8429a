// The client's directories, computed from the "Location" settings. Every
// getter writes into a caller's buffer of `capacity` characters and returns
// the length written, or 0 with the buffer emptied.
#pragma once

#include <windows.h>

namespace mvsup::directories {

int program(wchar_t* buffer, int capacity) noexcept;
int program_language(wchar_t* buffer, int capacity) noexcept;
int data(wchar_t* buffer, int capacity) noexcept;
int data_language(wchar_t* buffer, int capacity) noexcept;
int work(wchar_t* buffer, int capacity) noexcept;
int cache(wchar_t* buffer, int capacity) noexcept;
int home(wchar_t* buffer, int capacity) noexcept;
int script(wchar_t* buffer, int capacity) noexcept;
int script_language(wchar_t* buffer, int capacity) noexcept;
int log(wchar_t* buffer, int capacity) noexcept;
BOOL personal(wchar_t* buffer, int capacity) noexcept;

// LangId of "MvAxess\Settings", low 16 bits.
WORD language_id() noexcept;

}  // namespace mvsup::directories
