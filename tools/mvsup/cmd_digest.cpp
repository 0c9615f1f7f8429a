// mvsup digest: the HTTP digest-authentication response a server expects.
#include <windows.h>

#include <cwchar>
#include <optional>
#include <string>

#include "MvSup2u.h"
#include "binary_io.h"
#include "command.h"
#include "frame/text.h"
#include "output.h"

namespace mvsup::tool {
namespace {

int run_digest(Args& args) {
  struct Field {
    const wchar_t* option;
    bool required;
    std::string value;
  };
  Field fields[] = {{L"--user", true, {}},       {L"--realm", true, {}}, {L"--password", true, {}},
                    {L"--method", true, {}},     {L"--uri", true, {}},   {L"--nonce", true, {}},
                    {L"--cnonce", false, {}},    {L"--qop", false, {}},  {L"--algorithm", false, {}}};
  for (Field& field : fields) {
    const std::optional<std::wstring> value = args.take_option(field.option);
    if (!value && field.required) return fail(std::wstring(L"digest needs ") + field.option);
    // The record holds ANSI text, as the client passes it.
    if (value) field.value = text::to_narrow(*value);
  }
  DWORD nonce_count = 1;
  if (const std::optional<std::wstring> nc = args.take_option(L"--nc")) {
    wchar_t* end = nullptr;
    const unsigned long value = std::wcstoul(nc->c_str(), &end, 16);
    if (nc->empty() || *end != L'\0' || value > MAXDWORD)
      return fail(L"--nc takes a hexadecimal number, e.g. 00000001");
    nonce_count = static_cast<DWORD>(value);
  }
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (!args.rest().empty()) return fail(L"digest takes only options (see mvsup digest --help)");

  MVSUP_DIGEST_REQUEST request{};
  request.nonceCount = nonce_count;
  request.user = fields[0].value.c_str();
  request.realm = fields[1].value.c_str();
  request.password = fields[2].value.c_str();
  request.method = fields[3].value.c_str();
  request.digestUri = fields[4].value.c_str();
  request.nonce = fields[5].value.c_str();
  request.cnonce = fields[6].value.c_str();
  request.qop = fields[7].value.c_str();
  request.algorithm = fields[8].value.c_str();
  const HRESULT hr = WWWAuthDigestCalcResponse(&request);
  if (hr != S_OK) return fail(L"digest failed: " + hresult_text(hr));
  write_out(text::to_wide(request.response) + L"\n");
  return 0;
}

const CommandRegistration kDigest{{
    L"digest",
    L"compute an HTTP digest-authentication response",
    L"Usage: mvsup digest --user U --realm R --password P --method M --uri U --nonce N\n"
    L"                    [--cnonce C] [--nc 1] [--qop auth|auth-int] [--algorithm md5-sess]\n\n"
    L"Prints the response value (32 lower-case hex digits) that a server expects\n"
    L"for these fields, computed by the library as the client does it. --nc is\n"
    L"the nonce count in hexadecimal, as sent in the header (default 1); --cnonce,\n"
    L"--qop and --algorithm default to empty (no qop, plain MD5). With auth-int\n"
    L"the entity hash is always that of no body the library knows of: 32 NUL bytes.\n",
    run_digest,
}};

}  // namespace
}  // namespace mvsup::tool
