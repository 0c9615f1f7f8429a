// Watching the system calls a loaded module makes: one imported function of
// the module is replaced, for the life of the hook, by rewriting its slot in
// the module's import address table.
#pragma once

#include <windows.h>

namespace mvsup::test {

class ImportHook {
 public:
  // `function` as imported by `module` from `dll` (names compared ignoring
  // case). installed() says whether the slot was found and replaced.
  ImportHook(HMODULE module, const char* dll, const char* function, const void* replacement);
  ~ImportHook();
  ImportHook(const ImportHook&) = delete;
  ImportHook& operator=(const ImportHook&) = delete;

  bool installed() const { return slot_ != nullptr; }
  // What the slot held before: the function to pass calls on to.
  template <typename F>
  F* original() const {
    return reinterpret_cast<F*>(original_);
  }

 private:
  void** slot_ = nullptr;
  void* original_ = nullptr;
};

}  // namespace mvsup::test
