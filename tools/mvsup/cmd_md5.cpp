// mvsup md5: MD5 digests of files through the library.
#include <windows.h>

#include <string>
#include <vector>

#include "MvSup2u.h"
#include "binary_io.h"
#include "command.h"
#include "output.h"

namespace mvsup::tool {
namespace {

std::wstring hex(const BYTE* bytes, size_t count) {
  static constexpr wchar_t kDigits[] = L"0123456789abcdef";
  std::wstring out;
  for (size_t i = 0; i < count; ++i) {
    out += kDigits[bytes[i] >> 4];
    out += kDigits[bytes[i] & 15];
  }
  return out;
}

int run_md5(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  std::vector<std::wstring> files = args.rest();
  if (files.empty()) files.push_back(L"-");

  std::vector<std::pair<std::wstring, std::wstring>> digests;
  for (const std::wstring& file : files) {
    std::wstring error;
    const auto data = read_input(file, &error);
    if (!data) return fail(error);
    BYTE digest[16];
    MD5GetDigest(data->data(), static_cast<DWORD>(data->size()), digest);
    digests.emplace_back(hex(digest, sizeof(digest)), file);
  }
  if (as_json) {
    JsonWriter json;
    json.begin_array();
    for (const auto& [digest, file] : digests)
      json.begin_object().string(L"file", file).string(L"md5", digest).end_object();
    json.end_array();
    write_out(json.str());
  } else {
    std::wstring out;
    for (const auto& [digest, file] : digests) out += digest + L"  " + file + L"\n";
    write_out(out);
  }
  return 0;
}

const CommandRegistration kMd5{{
    L"md5",
    L"MD5 digest of files or standard input",
    L"Usage: mvsup md5 [--json] [FILE...]\n\n"
    L"Prints the MD5 digest of each FILE (standard input for \"-\" or when none is\n"
    L"given) as 32 lower-case hex digits, two spaces and the name.\n\n"
    L"  --json   a JSON array of {\"file\", \"md5\"} objects instead\n",
    run_md5,
}};

}  // namespace
}  // namespace mvsup::tool
