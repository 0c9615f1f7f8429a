// mvsup run-script NAME [ARGS]: a client script through the script host.
#include <windows.h>

#include <string>

#include "MvSup2u.h"
#include "binary_io.h"
#include "command.h"
#include "output.h"

namespace mvsup::tool {
namespace {

// Arguments as one command-line text; words with blanks are quoted.
std::wstring join_arguments(const std::vector<std::wstring>& words) {
  std::wstring text;
  for (size_t i = 1; i < words.size(); ++i) {
    const std::wstring& word = words[i];
    const bool quote = word.empty() || word.find_first_of(L" \t") != std::wstring::npos;
    text += (text.empty() ? L"" : L" ") + (quote ? L"\"" + word + L"\"" : word);
  }
  return text;
}

int run_script(Args& args) {
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().empty()) return fail(L"run-script needs a script name (see mvsup run-script --help)");
  const std::wstring& name = args.rest().front();
  const std::wstring arguments = join_arguments(args.rest());
  wchar_t directory[MAX_PATH] = {};
  if (GetProgramDirectoryPath(directory, MAX_PATH) > 0) wcscat_s(directory, L"\\Scripts");
  const HRESULT hr = RunVBScript(name.c_str(), arguments.c_str());
  if (hr == static_cast<HRESULT>(0x80070002))
    return fail(L"no script " + name + L" in the client's Scripts folder" +
                (directory[0] ? L" (" + std::wstring(directory) + L")" : L" (no program directory set)"));
  if (FAILED(hr)) return fail(L"the script host did not start: " + hresult_text(hr));
  write_out(L"Started WSCRIPT on " + name + (arguments.empty() ? L"" : L" " + arguments) + L"\n");
  return 0;
}

const CommandRegistration kRunScript{{
    L"run-script",
    L"start a script of the client's Scripts folder through WSCRIPT.EXE",
    L"Usage: mvsup run-script NAME [ARGS...]\n\n"
    L"Runs RunVBScript: <program directory>\\Scripts\\NAME through the system's\n"
    L"WSCRIPT.EXE with ARGS (an argument holding blanks is quoted). Does not wait\n"
    L"for the script.\n",
    run_script,
}};

}  // namespace
}  // namespace mvsup::tool
