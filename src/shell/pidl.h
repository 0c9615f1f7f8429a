// Item-ID lists: sizes, the last item, and joined copies from the shell
// allocator.
#pragma once

#include <windows.h>
#include <shlobj.h>

namespace mvsup::shell {

// Bytes of all items without the terminator; *count (optional) the items.
UINT pidl_size(LPCITEMIDLIST pidl, UINT* count) noexcept;

// A new list, from the shell allocator and zero-filled: the items of first
// (may be null) followed by those of second, then the 2-byte terminator.
// Null when memory runs out.
LPITEMIDLIST join_pidls(LPCITEMIDLIST first, LPCITEMIDLIST second) noexcept;

}  // namespace mvsup::shell
