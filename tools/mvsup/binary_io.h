// Raw input and output of the support tool: whole files or stdin as bytes,
// bytes to stdout unchanged.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

namespace mvsup::tool {

// The whole file, or stdin (binary mode) when path is empty or "-"; nullopt
// with *error set on failure.
std::optional<std::string> read_input(const std::wstring& path, std::wstring* error);

// Bytes to stdout in binary mode.
void write_bytes(std::string_view bytes);

// "E_FAIL (0x80004005)" and the like.
std::wstring hresult_text(HRESULT hr);

}  // namespace mvsup::tool
