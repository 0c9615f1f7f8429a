// mvsup qp: quoted-printable decoding through the library.
#include <windows.h>

#include <string>

#include "MvSup2u.h"
#include "binary_io.h"
#include "command.h"
#include "output.h"

namespace mvsup::tool {
namespace {

int run_qp(Args& args) {
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  const auto& words = args.rest();
  if (words.empty() || words[0] != L"decode") return fail(L"qp needs \"decode\" (see mvsup qp --help)");
  if (words.size() > 2) return fail(L"qp decode takes at most one file");
  std::wstring error;
  const auto data = read_input(words.size() == 2 ? words[1] : std::wstring(), &error);
  if (!data) return fail(error);

  LPSTR decoded = nullptr;
  DWORD length = 0;
  const HRESULT hr = QuotedPrintable_DecodeA(data->data(), static_cast<DWORD>(data->size()), &decoded, &length);
  if (hr == S_FALSE) {  // nothing to decode
    write_bytes(*data);
    return 0;
  }
  if (hr == E_FAIL) return fail(L"qp decode failed: " + hresult_text(hr) + L": escape cut off at the end");
  if (hr == E_INVALIDARG)
    return fail(L"qp decode failed: " + hresult_text(hr) + L": malformed escape (hex digits must be upper case)");
  if (hr != S_OK) return fail(L"qp decode failed: " + hresult_text(hr));
  write_bytes(std::string(decoded, length));
  GlobalFree(decoded);
  return 0;
}

const CommandRegistration kQp{{
    L"qp",
    L"decode quoted-printable text from a file or standard input",
    L"Usage: mvsup qp decode [FILE]\n\n"
    L"Decodes the bytes of FILE (or standard input, also for \"-\") as the library\n"
    L"does and writes the result to standard output: soft line breaks removed,\n"
    L"\"=XX\" escapes (upper-case hex) decoded. Input without any '=' is written\n"
    L"back unchanged. The result ends at its first NUL byte.\n",
    run_qp,
}};

}  // namespace
}  // namespace mvsup::tool
