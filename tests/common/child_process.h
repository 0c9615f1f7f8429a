// Tests whose subject is read when the library loads (the trace
// configuration, start-up) or that need several processes run their calls in
// a child: the test program started again with an environment variable set
// and no test selected. The child's work runs from a static initialiser that
// asks is_child_process() (or child_variable()) and exits.
#pragma once

#include <cstdint>
#include <string>

namespace mvsup::test {

// The value of `variable` in this process's environment; empty when unset.
std::wstring child_variable(const wchar_t* variable);

// True in a child that run_child_process(variable, ...) started.
bool is_child_process(const wchar_t* variable);

// Runs this test program again with variable=value in its environment and no
// test selected, and returns its exit code; with `wait` false it returns at
// once with the child's process handle (as intptr_t) for the caller to wait
// on and close.
intptr_t run_child_process(const wchar_t* variable, const std::wstring& value = L"1", bool wait = true);

}  // namespace mvsup::test
