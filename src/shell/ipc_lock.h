// The namespace extension's shared block, as far as this library uses it.
#pragma once

#include <windows.h>

namespace mvsup::shell {

// Named without a namespace prefix: the extension creates it that way.
inline constexpr const wchar_t* kIpcBlockName = L"MvNsx IPC Data Object";
inline constexpr const wchar_t* kIpcFailureCaption = L"MVSUP2U.DLL";

// AddIpcLock without the call scope: the new count, or -1.
LONG add_ipc_lock(bool add) noexcept;

}  // namespace mvsup::shell
