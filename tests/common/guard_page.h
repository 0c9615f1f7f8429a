// Buffers placed flush against an inaccessible page, so that any read or
// write one byte past the end faults the test at once.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstring>

namespace mvsup::test {

class GuardedBuffer {
 public:
  // Room for `size` bytes whose last byte is the last accessible byte.
  explicit GuardedBuffer(size_t size);
  GuardedBuffer(const void* data, size_t size) : GuardedBuffer(size) {
    if (size) std::memcpy(this->data(), data, size);
  }
  ~GuardedBuffer();
  GuardedBuffer(const GuardedBuffer&) = delete;
  GuardedBuffer& operator=(const GuardedBuffer&) = delete;

  unsigned char* data() { return start_; }
  size_t size() const { return size_; }
  template <typename T>
  T* as() {
    return reinterpret_cast<T*>(start_);
  }

 private:
  void* base_ = nullptr;
  size_t reserved_ = 0;
  unsigned char* start_ = nullptr;
  size_t size_ = 0;
};

}  // namespace mvsup::test
