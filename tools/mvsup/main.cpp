// mvsup: the support tool. "mvsup <command> [options]"; "--help" everywhere.
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "command.h"
#include "output.h"

namespace mvsup::tool {

std::vector<Command>& commands() {
  static std::vector<Command> list;
  return list;
}

int fail(const std::wstring& message) {
  write_err(L"mvsup: " + message + L"\n");
  return 1;
}

bool Args::take_flag(std::wstring_view name) {
  const auto it = std::find(words_.begin(), words_.end(), name);
  if (it == words_.end()) return false;
  words_.erase(it);
  return true;
}

std::optional<std::wstring> Args::take_option(std::wstring_view name) {
  for (auto it = words_.begin(); it != words_.end(); ++it) {
    if (*it == name && it + 1 != words_.end()) {
      std::wstring value = *(it + 1);
      words_.erase(it, it + 2);
      return value;
    }
    if (it->size() > name.size() && it->compare(0, name.size(), name) == 0 && (*it)[name.size()] == L'=') {
      std::wstring value = it->substr(name.size() + 1);
      words_.erase(it);
      return value;
    }
  }
  return std::nullopt;
}

std::wstring Args::unknown_option() const {
  for (const std::wstring& word : words_)
    if (word.size() > 2 && word.compare(0, 2, L"--") == 0) return L"unknown option " + word;
  return {};
}

int run_subcommand(Args& args, const wchar_t* command, std::initializer_list<Subcommand> subcommands) {
  std::wstring names;
  for (const Subcommand& subcommand : subcommands) names += (names.empty() ? L"" : L", ") + std::wstring(subcommand.name);
  const std::wstring help = L" (see mvsup " + std::wstring(command) + L" --help)";
  if (args.rest().empty()) return fail(std::wstring(command) + L" needs one of: " + names + help);
  const std::wstring verb = args.rest().front();
  for (const Subcommand& subcommand : subcommands) {
    if (verb != subcommand.name) continue;
    Args rest(std::vector<std::wstring>(args.rest().begin() + 1, args.rest().end()));
    return subcommand.run(rest);
  }
  return fail(L"unknown " + std::wstring(command) + L" subcommand \"" + verb + L"\"" + help);
}

namespace {

void print_overview() {
  std::wstring text =
      L"mvsup - support tool of the Mervane Client support library (MvSup2u.dll)\n\n"
      L"Usage: mvsup <command> [options]\n\nCommands:\n";
  std::vector<const Command*> sorted;
  for (const Command& command : commands()) sorted.push_back(&command);
  std::sort(sorted.begin(), sorted.end(),
            [](const Command* a, const Command* b) { return std::wstring_view(a->name) < b->name; });
  for (const Command* command : sorted) {
    std::wstring name = command->name;
    name.resize(std::max<size_t>(name.size(), 10), L' ');
    text += L"  " + name + L"  " + command->summary + L"\n";
  }
  text += L"\n\"mvsup <command> --help\" explains a command.\n";
  write_out(text);
}

}  // namespace
}  // namespace mvsup::tool

int wmain(int argc, wchar_t** argv) {
  using namespace mvsup::tool;
  std::vector<std::wstring> words(argv + 1, argv + argc);
  if (words.empty() || words[0] == L"--help" || words[0] == L"-h" || words[0] == L"help") {
    print_overview();
    return words.empty() ? 1 : 0;
  }
  const std::wstring name = words[0];
  words.erase(words.begin());
  for (const Command& command : commands()) {
    if (name != command.name) continue;
    Args args(std::move(words));
    if (args.take_flag(L"--help") || args.take_flag(L"-h")) {
      write_out(command.usage);
      return 0;
    }
    try {
      return command.run(args);
    } catch (const std::exception& error) {
      return fail(L"internal error: " + std::wstring(error.what(), error.what() + std::strlen(error.what())));
    }
  }
  return fail(L"unknown command \"" + name + L"\" (see mvsup --help)");
}
