// Shared pieces of the local-storage tests: the process's log directory,
// whole-file reads and writes, and child processes of the test program.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "common/child_process.h"
#include "common/registry_sandbox.h"

namespace mvsup::test {

// The library works out the log's name once per process, so every test of
// this program uses one log directory (the data directory).
const std::wstring& log_directory();
std::wstring log_file();

std::string read_file(const std::wstring& path);
void write_file(const std::wstring& path, std::string_view bytes);
bool exists(const std::wstring& path);


// Registry sandbox whose data directory (and so log directory) is
// log_directory(), with no log in it.
class LogTest : public RegistrySandbox {
 protected:
  void SetUp() override;
  void TearDown() override;
};

}  // namespace mvsup::test
