// A trace configuration for one test: the machine key's TraceLogPath points
// at a fresh temporary directory with its CallTrace folder, and the SDK
// flags are set. Construct it after the registry sandbox, before the library
// (or the tracer) reads its configuration.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "common/paths.h"

namespace mvsup::test {

class TraceLogFolder {
 public:
  explicit TraceLogFolder(DWORD flags, bool create_call_trace = true);
  const std::wstring& directory() const { return temp_.path(); }
  std::wstring call_trace() const { return temp_.path() + L"\\CallTrace"; }
  // Names of the files in CallTrace, sorted.
  std::vector<std::wstring> files() const;
  // All files' contents, concatenated in name order, as written (CRLF kept
  // as it is in the file).
  std::string read_all_raw() const;
  // The same with CRLF turned into LF.
  std::string read_all() const;

 private:
  TempDirectory temp_;
};

}  // namespace mvsup::test
