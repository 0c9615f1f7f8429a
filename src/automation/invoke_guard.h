// Calls into a server with a structured-exception frame that stops a C++
// exception raised the way Microsoft's compilers raise it (exception code
// 0xE06D7363). Our own catch (...) only sees exceptions thrown by GCC-built
// code that unwinds through our frames, so servers built with another
// compiler need this frame to be kept from ending the caller's process.
#pragma once

#include <windows.h>

namespace mvsup::automation {

// The code of a C++ exception thrown by a Microsoft-compiled module.
inline constexpr DWORD kMicrosoftCppException = 0xE06D7363;

// Runs function(context). Returns its result, or sets *caught and returns
// E_FAIL when a Microsoft C++ exception left it; the frames in between are
// unwound by the system first.
HRESULT call_with_exception_frame(HRESULT (*function)(void*), void* context, bool* caught) noexcept;

}  // namespace mvsup::automation
