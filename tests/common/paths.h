// Where the test program and the built binaries are.
#pragma once

#include <cstdint>
#include <string>

namespace mvsup::test {

// Directory of the running test program (the build's bin directory), without
// a trailing backslash.
std::wstring exe_directory();

// Runs this test program once more, with `variable` set to "1" in its
// environment, and returns its exit code. The child runs no test should its
// child mode (a check of the variable before main) not take over.
intptr_t run_self_as_child(const wchar_t* variable);

// A fresh, empty temporary directory removed with everything in it when the
// object goes out of scope.
class TempDirectory {
 public:
  TempDirectory();
  ~TempDirectory();
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;
  const std::wstring& path() const { return path_; }

 private:
  std::wstring path_;
};

}  // namespace mvsup::test
