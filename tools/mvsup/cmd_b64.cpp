// mvsup b64: Base64 encoding and decoding through the library.
#include <windows.h>

#include <string>

#include "MvSup2u.h"
#include "binary_io.h"
#include "command.h"
#include "output.h"

namespace mvsup::tool {
namespace {

int encode(const std::string& data) {
  if (data.empty()) {
    write_out(L"\n");
    return 0;
  }
  LPSTR text = nullptr;
  DWORD length = 0;
  const HRESULT hr = Base64Encode(reinterpret_cast<const BYTE*>(data.data()), static_cast<DWORD>(data.size()), &text,
                                  &length);
  if (hr != S_OK) return fail(L"b64 encode failed: " + hresult_text(hr));
  write_out(std::wstring(text, text + length) + L"\n");
  GlobalFree(text);
  return 0;
}

int decode(const std::string& input) {
  // Pasted text comes wrapped and with a final line break; the library
  // itself accepts no white space.
  std::string text;
  for (char c : input)
    if (c != ' ' && c != '\t' && c != '\r' && c != '\n') text += c;
  if (text.empty()) return 0;
  BYTE* bytes = nullptr;
  DWORD length = 0;
  const HRESULT hr = Base64Decode(text.data(), static_cast<DWORD>(text.size()), &bytes, &length);
  if (hr == E_INVALIDARG) return fail(L"b64 decode failed: " + hresult_text(hr) + L": length is not a multiple of 4");
  if (hr == E_FAIL) return fail(L"b64 decode failed: " + hresult_text(hr) + L": character outside the alphabet");
  if (hr != S_OK) return fail(L"b64 decode failed: " + hresult_text(hr));
  write_bytes(std::string(reinterpret_cast<const char*>(bytes), length));
  GlobalFree(bytes);
  return 0;
}

int run_b64(Args& args) {
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  const auto& words = args.rest();
  if (words.empty() || (words[0] != L"encode" && words[0] != L"decode"))
    return fail(L"b64 needs \"encode\" or \"decode\" (see mvsup b64 --help)");
  if (words.size() > 2) return fail(L"b64 takes at most one file");
  std::wstring error;
  const auto data = read_input(words.size() == 2 ? words[1] : std::wstring(), &error);
  if (!data) return fail(error);
  return words[0] == L"encode" ? encode(*data) : decode(*data);
}

const CommandRegistration kB64{{
    L"b64",
    L"Base64-encode or -decode a file or standard input",
    L"Usage: mvsup b64 encode [FILE]\n"
    L"       mvsup b64 decode [FILE]\n\n"
    L"encode prints the Base64 text of the file's bytes (or of standard input)\n"
    L"on one line, without line breaks. decode removes spaces, tabs and line\n"
    L"breaks from its input, decodes the rest as the library does (decoding\n"
    L"stops after the first padded group) and writes the bytes to standard\n"
    L"output. FILE \"-\" or none reads standard input.\n",
    run_b64,
}};

}  // namespace
}  // namespace mvsup::tool
