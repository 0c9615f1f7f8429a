// Loads MvSup2u.dll for one test, after the test has prepared the registry,
// so that process attach reads that state; unloading runs process detach.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "MvSup2u.h"
#include "common/paths.h"

namespace mvsup::test {

class LibraryUnderTest {
 public:
  LibraryUnderTest() : module_(LoadLibraryW(path().c_str())) {
    if (module_ == nullptr) ADD_FAILURE() << "cannot load MvSup2u.dll: " << GetLastError();
  }
  ~LibraryUnderTest() { unload(); }
  LibraryUnderTest(const LibraryUnderTest&) = delete;
  LibraryUnderTest& operator=(const LibraryUnderTest&) = delete;

  static std::wstring path() { return exe_directory() + L"\\MvSup2u.dll"; }

  void unload() {
    if (module_ != nullptr) FreeLibrary(module_);
    module_ = nullptr;
  }

  // The export `name`, typed like the declaration `decl` in the headers.
  template <typename F>
  F* get(const char* name) const {
    auto* function = reinterpret_cast<F*>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    if (function == nullptr) ADD_FAILURE() << "missing export " << name;
    return function;
  }

 private:
  HMODULE module_;
};

// lib.get<decltype(GetMvSupMode)>("GetMvSupMode") reads awkwardly; this
// resolves an export under its own name with its declared type.
#define MVSUP_EXPORT(lib, name) (lib).get<decltype(name)>(#name)

}  // namespace mvsup::test
