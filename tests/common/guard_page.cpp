#include "common/guard_page.h"

#include <gtest/gtest.h>

namespace mvsup::test {

GuardedBuffer::GuardedBuffer(size_t size) : size_(size) {
  SYSTEM_INFO info;
  GetSystemInfo(&info);
  const size_t page = info.dwPageSize;
  const size_t data_pages = (size + page - 1) / page;
  reserved_ = (data_pages + 1) * page;
  base_ = VirtualAlloc(nullptr, reserved_, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
  if (base_ == nullptr) {
    ADD_FAILURE() << "VirtualAlloc failed";
    return;
  }
  unsigned char* guard = static_cast<unsigned char*>(base_) + data_pages * page;
  DWORD old = 0;
  VirtualProtect(guard, page, PAGE_NOACCESS, &old);
  start_ = guard - size;
}

GuardedBuffer::~GuardedBuffer() {
  if (base_) VirtualFree(base_, 0, MEM_RELEASE);
}

}  // namespace mvsup::test
