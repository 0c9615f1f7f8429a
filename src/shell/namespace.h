// The namespace extension's folders, for the library's own use.
#pragma once

#include <windows.h>
#include <shlobj.h>

namespace mvsup::shell {

// The extension's root folder (GetMvNsxFolder without its checks): S_OK with
// *nsx_folder (IID_IMvNsxFolder) and, when asked, its display name and
// absolute item-ID list.
HRESULT find_nsx_folder(void** nsx_folder, wchar_t* display, LPITEMIDLIST* pidl) noexcept;

}  // namespace mvsup::shell
