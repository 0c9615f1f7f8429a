// GlobalAlloc blocks that the library hands to its callers (who free them
// with GlobalFree).
#pragma once

#include <windows.h>

namespace mvsup {

// GlobalAlloc(flags, bytes). A large block comes fresh from the system, and
// touching it page by page costs one page fault per page, which on some
// hosts outweighs the work that fills it; the pages that lie wholly inside
// such a block are populated in one call first (VirtualLock, then
// VirtualUnlock at once; a page the block shares with other memory is never
// locked or unlocked). Where the system refuses the lock (a working-set
// quota on Windows, a lock limit under Wine) the block is simply returned
// as allocated.
HGLOBAL global_alloc_output(UINT flags, SIZE_T bytes) noexcept;

}  // namespace mvsup
