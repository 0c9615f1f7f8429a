// The one C++ exception that leaves the library, raised the way code built
// with Microsoft's compiler throws it, so that such callers catch it with
// their own runtime.
#pragma once

namespace mvsup::frame {

// Raises std::out_of_range carrying `what` (a string with static storage:
// the exception object refers to it) as a C++ exception of Microsoft's
// runtime (code 0xE06D7363). A caller built with Microsoft's compiler
// catches it as std::out_of_range, std::logic_error, std::exception or with
// "...". Never returns.
//
// Frames of this library between the raise and the caller are left without
// running their destructors: call it only where no object with a destructor
// is alive, directly from an export.
[[noreturn]] void raise_out_of_range(const char* what);

}  // namespace mvsup::frame
