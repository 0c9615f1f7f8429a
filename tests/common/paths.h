// Where the test program and the built binaries are.
#pragma once

#include <cstdint>
#include <string>

namespace mvsup::test {

// Directory of the running test program (the build's bin directory), without
// a trailing backslash.
std::wstring exe_directory();


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
