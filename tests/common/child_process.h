// Tests whose subject is read when the library loads (the trace
// configuration) run their calls in a child: the test program started again
// with an environment variable set and no tests selected. The child's work
// runs from a static initialiser that asks is_child_process() and exits.
#pragma once

#include <cstdint>

namespace mvsup::test {

// True in the child that run_child_process(variable) started.
bool is_child_process(const wchar_t* variable);

// Runs this program as a child with variable=1 and waits; its exit code.
intptr_t run_child_process(const wchar_t* variable);

}  // namespace mvsup::test
