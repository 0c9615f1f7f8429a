// Commands of the support tool. Each command file registers itself with a
// static CommandRegistration; main() dispatches on the first argument.
#pragma once

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mvsup::tool {

// The arguments after the command name.
class Args {
 public:
  explicit Args(std::vector<std::wstring> words) : words_(std::move(words)) {}

  // True when the switch is present (and removes it).
  bool take_flag(std::wstring_view name);
  // The value after an option ("--level 3" or "--level=3"), removed; nullopt when absent.
  std::optional<std::wstring> take_option(std::wstring_view name);
  // What is left, in order.
  const std::vector<std::wstring>& rest() const { return words_; }
  // An error message when an unknown option ("--x") is left; empty otherwise.
  std::wstring unknown_option() const;

 private:
  std::vector<std::wstring> words_;
};

struct Command {
  const wchar_t* name;
  const wchar_t* summary;  // one line for "mvsup --help"
  const wchar_t* usage;    // full text for "mvsup <name> --help"
  std::function<int(Args&)> run;
};

std::vector<Command>& commands();

struct CommandRegistration {
  explicit CommandRegistration(Command command) { commands().push_back(std::move(command)); }
};

// A failure of a command: printed as one line on stderr, exit code 1.
int fail(const std::wstring& message);

// Runs the subcommand named by the first argument, with the arguments after it.
struct Subcommand {
  const wchar_t* name;
  int (*run)(Args&);
};
int run_subcommand(Args& args, const wchar_t* command, std::initializer_list<Subcommand> subcommands);

}  // namespace mvsup::tool
