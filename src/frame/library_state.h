// Process-wide state of the library: written at process attach (under the
// loader lock) and by SetMvSupMode, read freely everywhere else.
#pragma once

#include <windows.h>

#include <atomic>

namespace mvsup::frame {

DWORD mode_word() noexcept;
void set_mode_word(DWORD mode) noexcept;

HKEY user_root() noexcept;
void set_user_root(HKEY root) noexcept;

int max_path() noexcept;
DWORD max_items() noexcept;
const wchar_t* illegal_path_chars() noexcept;
const wchar_t* document_class_word() noexcept;
// Either of the two words below (constant text).
void set_document_class_word(const wchar_t* word) noexcept;
inline constexpr const wchar_t* kFileClassWord = L"File";
inline constexpr const wchar_t* kDocumentClassWord = L"Document";

HMODULE own_module() noexcept;
HMODULE resource_module() noexcept;

// Re-reads the mode bits (and, unless reload_only, the limits). Always 1.
int read_settings(bool reload_only) noexcept;

void on_process_attach(HMODULE self) noexcept;
void on_process_detach() noexcept;

}  // namespace mvsup::frame
