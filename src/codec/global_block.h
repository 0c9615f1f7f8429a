// Output blocks of the codecs: fixed, zero-filled GlobalAlloc memory that
// becomes the caller's (GlobalFree) once released to it.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

#include "frame/global_memory.h"
#include "frame/win32_handles.h"

namespace mvsup::codec {

enum class Fill { Zero, WrittenByCaller };

template <typename T>
class GlobalBlock {
 public:
  // False when the size in bytes cannot be represented or GlobalAlloc fails.
  // Fill::WrittenByCaller skips the zero fill for a codec that writes every
  // unit of the block itself (zeros included), so callers still see a
  // zero-filled block wherever no data went.
  bool allocate(uint64_t units, Fill fill = Fill::Zero) noexcept {
    if (units > SIZE_MAX / sizeof(T)) return false;
    const UINT flags = fill == Fill::Zero ? GPTR : GMEM_FIXED;
    memory_.reset(global_alloc_output(flags, static_cast<SIZE_T>(units * sizeof(T))));
    return static_cast<bool>(memory_);
  }
  T* get() const noexcept { return static_cast<T*>(memory_.get()); }
  T* release() noexcept { return static_cast<T*>(memory_.release()); }

 private:
  unique_hglobal memory_;
};

}  // namespace mvsup::codec
