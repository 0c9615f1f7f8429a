#include "frame/global_memory.h"

namespace mvsup {

namespace {
// Below this a block usually comes from pages the heap already holds.
constexpr SIZE_T kPopulateThreshold = 256 * 1024;
}  // namespace

HGLOBAL global_alloc_output(UINT flags, SIZE_T bytes) noexcept {
  HGLOBAL block = ::GlobalAlloc(flags, bytes);
  // GMEM_MOVEABLE blocks hand out a handle, not an address: nothing to do.
  if (block == nullptr || bytes < kPopulateThreshold || (flags & GMEM_MOVEABLE) != 0) return block;
  if (::VirtualLock(block, bytes)) ::VirtualUnlock(block, bytes);
  return block;
}

}  // namespace mvsup
