#include "frame/global_memory.h"

#include <cstdint>

namespace mvsup {

namespace {
// Below this a block usually comes from pages the heap already holds.
constexpr SIZE_T kPopulateThreshold = 256 * 1024;

uintptr_t page_size() noexcept {
  static const uintptr_t size = [] {
    SYSTEM_INFO info;
    ::GetSystemInfo(&info);
    return static_cast<uintptr_t>(info.dwPageSize);
  }();
  return size;
}
}  // namespace

HGLOBAL global_alloc_output(UINT flags, SIZE_T bytes) noexcept {
  HGLOBAL block = ::GlobalAlloc(flags, bytes);
  // GMEM_MOVEABLE blocks hand out a handle, not an address: nothing to do.
  if (block == nullptr || bytes < kPopulateThreshold || (flags & GMEM_MOVEABLE) != 0) return block;
  // Only the pages that lie wholly inside the block: the first and the last
  // may be shared with other memory, whose lock (should the application
  // hold one) an unlock here would undo. Those two are touched as they are
  // written.
  const uintptr_t page = page_size();
  const auto start = reinterpret_cast<uintptr_t>(block);
  const uintptr_t first = (start + page - 1) & ~(page - 1);
  const uintptr_t end = (start + bytes) & ~(page - 1);
  if (end > first) {
    void* const pages = reinterpret_cast<void*>(first);
    if (::VirtualLock(pages, end - first)) ::VirtualUnlock(pages, end - first);
  }
  return block;
}

}  // namespace mvsup
