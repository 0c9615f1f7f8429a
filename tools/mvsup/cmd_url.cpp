// mvsup url: the library's URL functions: decomposition, the server's
// escaping and unescaping, and gateway URLs.
#include <windows.h>

#include <string>
#include <vector>

#include "MvSup2u.h"
#include "command.h"
#include "frame/text.h"
#include "output.h"

namespace mvsup::tool {
namespace {

// Each subcommand takes its words as one text (joined by spaces), so that
// text with spaces needs no quoting.
std::wstring joined(const std::vector<std::wstring>& words) {
  std::wstring text;
  for (const std::wstring& word : words) text += (text.empty() ? L"" : L" ") + word;
  return text;
}

int run_decompose(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().empty()) return fail(L"url decompose needs at least one URL");
  JsonWriter json;
  json.begin_array();
  std::wstring out;
  for (const std::wstring& url : args.rest()) {
    wchar_t scheme[40], host[128], path[128];
    const bool found = DecomposeURL(url.c_str(), scheme, host, path) == 1;
    if (as_json) {
      json.begin_object().string(L"url", url).boolean(L"decomposed", found);
      if (found)
        json.string(L"scheme", scheme).string(L"host", host).string(L"path", path);
      json.end_object();
      continue;
    }
    out += L"\"" + url + L"\"\n";
    if (!found) {
      out += L"  no \"://\" in it: not decomposed\n";
      continue;
    }
    out += L"  scheme  " + std::wstring(scheme) + L"\n  host    " + host + L"\n  path    " + path + L"\n";
  }
  json.end_array();
  write_out(as_json ? json.str() : out);
  return 0;
}

int run_escape(Args& args) {
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  const std::string narrow = text::to_narrow(joined(args.rest()));
  std::string out(3 * narrow.size() + 1, '\0');
  const DWORD length = URLCanonicalize(narrow.c_str(), out.data(), nullptr);
  write_out(text::to_wide(std::string_view(out.data(), length)) + L"\n");
  return 0;
}

int run_unescape(Args& args) {
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  const std::string narrow = text::to_narrow(joined(args.rest()));
  const int length = URLUncanonicalize(narrow.c_str(), nullptr, 0);
  std::string out(static_cast<size_t>(length) + 1, '\0');
  URLUncanonicalize(narrow.c_str(), out.data(), length);
  write_out(text::to_wide(std::string_view(out.data(), static_cast<size_t>(length))) + L"\n");
  return 0;
}

int run_make(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().empty() || args.rest().size() > 2) return fail(L"url make needs SERVER-URL [TAIL]");
  const std::wstring& server = args.rest()[0];
  const std::wstring tail = args.rest().size() == 2 ? args.rest()[1] : std::wstring();
  std::wstring out(server.size() + tail.size() + 16, L'\0');
  if (MakeMervaneURL(server.c_str(), tail.c_str(), out.data(), static_cast<int>(out.size())) != 1)
    return fail(L"url make: the library made no URL of \"" + server + L"\"");
  out.resize(out.find(L'\0'));
  write_out(as_json ? JsonWriter().begin_object().string(L"url", out).end_object().str() : out + L"\n");
  return 0;
}

int run_url(Args& args) {
  return run_subcommand(args, L"url",
                        {{L"decompose", run_decompose},
                         {L"escape", run_escape},
                         {L"unescape", run_unescape},
                         {L"make", run_make}});
}

const CommandRegistration kUrl{{
    L"url",
    L"split, escape, unescape and compose URLs as the client does",
    L"Usage: mvsup url decompose [--json] URL...\n"
    L"       mvsup url escape TEXT...\n"
    L"       mvsup url unescape TEXT...\n"
    L"       mvsup url make [--json] SERVER-URL [TAIL]\n\n"
    L"decompose  splits each URL into scheme (up to and including \"://\"), host\n"
    L"           and path (\"/\" when there is none), cut as the library cuts them\n"
    L"           (39, 127 and 127 characters).\n"
    L"escape     escapes TEXT as the server expects: everything but ASCII letters,\n"
    L"           digits and '.' becomes %XX (in the ANSI code page's bytes).\n"
    L"unescape   undoes the server's escaping by its own rules: only escapes whose\n"
    L"           first digit is a decimal digit are decoded (\"%E9\" stays \"E9\").\n"
    L"make       the URL of a request to the server's gateway script: SERVER-URL,\n"
    L"           \"/mvcgi/mv.py/\" unless it is already there, then TAIL\n"
    L"           (e.g. mvsup url make http://server Collection-5).\n\n"
    L"Several words of TEXT are joined with single spaces.\n",
    run_url,
}};

}  // namespace
}  // namespace mvsup::tool
