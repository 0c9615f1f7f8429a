// Large output blocks are populated by locking their pages for a moment.
// Only pages that lie wholly inside the block may be locked and unlocked:
// unlocking a page that the block shares with other memory would unlock a
// page that the application may have locked itself.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "common/import_hook.h"

namespace mvsup::test {
namespace {

struct PageRange {
  uintptr_t start;
  SIZE_T size;
};

std::vector<PageRange> g_locked;
std::vector<PageRange> g_unlocked;
decltype(&VirtualLock) g_lock = nullptr;
decltype(&VirtualUnlock) g_unlock = nullptr;

BOOL WINAPI RecordLock(LPVOID address, SIZE_T size) {
  g_locked.push_back({reinterpret_cast<uintptr_t>(address), size});
  return g_lock(address, size);
}

BOOL WINAPI RecordUnlock(LPVOID address, SIZE_T size) {
  g_unlocked.push_back({reinterpret_cast<uintptr_t>(address), size});
  return g_unlock(address, size);
}

SIZE_T page_size() {
  SYSTEM_INFO info;
  GetSystemInfo(&info);
  return info.dwPageSize;
}

// Each producer hands out one GlobalAlloc block of at least 1 MiB.
struct Producer {
  const char* name;
  std::function<void*()> make;
};

TEST(LargeOutputBlocks, OnlyWholePagesInsideTheBlockAreLockedAndUnlocked) {
  const HMODULE library = GetModuleHandleW(L"MvSup2u.dll");
  ImportHook lock(library, "kernel32.dll", "VirtualLock", reinterpret_cast<const void*>(&RecordLock));
  ImportHook unlock(library, "kernel32.dll", "VirtualUnlock", reinterpret_cast<const void*>(&RecordUnlock));
  ASSERT_TRUE(lock.installed());
  ASSERT_TRUE(unlock.installed());
  g_lock = lock.original<BOOL WINAPI(LPVOID, SIZE_T)>();
  g_unlock = unlock.original<BOOL WINAPI(LPVOID, SIZE_T)>();

  const std::string bytes(1 << 20, 'x');
  const std::string text(4 * (1 << 20) / 3 / 4 * 4, 'Q');
  const Producer producers[] = {
      {"Base64Encode",
       [&]() -> void* {
         LPSTR chars = nullptr;
         DWORD count = 0;
         EXPECT_EQ(Base64Encode(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()), &chars,
                                &count),
                   S_OK);
         return chars;
       }},
      {"Base64Decode",
       [&]() -> void* {
         BYTE* decoded = nullptr;
         DWORD count = 0;
         EXPECT_EQ(Base64Decode(text.data(), static_cast<DWORD>(text.size()), &decoded, &count), S_OK);
         return decoded;
       }},
      {"MvxUpdateItemInfo",
       [&]() -> void* {
         HMVXINFO info = MvxOpen(nullptr);
         MvxAddBinary(info, MvxAddAttribute(info, MvxAddProperty(info, 0x2), 16), bytes.data(),
                      static_cast<DWORD>(bytes.size()));
         BYTE* block = nullptr;
         EXPECT_EQ(MvxUpdateItemInfo(info, &block), S_OK);
         MvxClose(info);
         return block;
       }},
  };
  const SIZE_T page = page_size();
  for (const Producer& producer : producers) {
    SCOPED_TRACE(producer.name);
    g_locked.clear();
    g_unlocked.clear();
    void* block = producer.make();
    ASSERT_NE(block, nullptr);
    const auto start = reinterpret_cast<uintptr_t>(block);
    const uintptr_t end = start + GlobalSize(block);
    EXPECT_FALSE(g_locked.empty()) << "the block was not populated";
    for (const std::vector<PageRange>* calls : {&g_locked, &g_unlocked}) {
      for (const PageRange& range : *calls) {
        EXPECT_EQ(range.start % page, 0u) << "a page shared with what lies before the block";
        EXPECT_EQ(range.size % page, 0u) << "a page shared with what lies after the block";
        EXPECT_GE(range.start, start);
        EXPECT_LE(range.start + range.size, end);
      }
    }
    GlobalFree(block);
  }
}

}  // namespace
}  // namespace mvsup::test
