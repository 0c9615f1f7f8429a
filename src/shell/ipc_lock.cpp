// The IPC lock: a count of client components using the namespace extension,
// kept in the extension's named shared block. The library only opens the
// block; the extension creates it and owns its layout beyond the two fields
// used here.
#include "shell/ipc_lock.h"

#include <cstring>

#include "MvSupShell.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "resources/resource_ids.h"
#include "types/item_types.h"

namespace mvsup::shell {

namespace {

constexpr size_t kLockCountOffset = 4;
constexpr size_t kReleaseTickOffset = 8;

// The fields are unaligned-safe reads and writes of plain 32-bit words; the
// count is not interlocked, as the extension's other clients do not either.
LONG read_long(const BYTE* view, size_t offset) noexcept {
  LONG value;
  std::memcpy(&value, view + offset, sizeof(value));
  return value;
}

void write_long(BYTE* view, size_t offset, LONG value) noexcept {
  std::memcpy(view + offset, &value, sizeof(value));
}

// A view that maps but cannot be written (a block made as a read-only image,
// which some systems map without write access), or can be written only to a
// private copy, would crash the caller or keep the count from the other
// processes: it counts as a view that could not be made.
bool is_shared_writable(const void* view) noexcept {
  MEMORY_BASIC_INFORMATION region = {};
  if (::VirtualQuery(view, &region, sizeof(region)) != sizeof(region)) return false;
  return (region.Protect & (PAGE_READWRITE | PAGE_EXECUTE_READWRITE)) != 0 &&
         region.RegionSize >= kReleaseTickOffset + sizeof(LONG);
}

void report_mapping_failure() noexcept {
  wchar_t message[512];
  if (types::load_string(IDS_IPC_FAILED, message, static_cast<int>(std::size(message))) == 0) message[0] = L'\0';
  ::MessageBoxW(nullptr, message, kIpcFailureCaption, MB_OK);
}

}  // namespace

LONG add_ipc_lock(bool add) noexcept {
  trace::line("AddIpcLock()\n");
  unique_handle mapping(::OpenFileMappingW(FILE_MAP_WRITE, FALSE, kIpcBlockName));
  if (!mapping) {
    trace::line("IpcDataObject open failed.\n");
    return -1;
  }
  unique_view view(::MapViewOfFile(mapping.get(), FILE_MAP_WRITE, 0, 0, 0));
  if (view && !is_shared_writable(view.get())) view.reset();
  if (!view) {
    trace::line("MapObj invalid.\n");
    report_mapping_failure();
    trace::line("IpcDataObj accessor failed\n");
    return -1;
  }
  auto* block = static_cast<BYTE*>(view.get());
  LONG count = read_long(block, kLockCountOffset);
  if (add) {
    ++count;
  } else {
    write_long(block, kReleaseTickOffset, static_cast<LONG>(::GetTickCount()));
    --count;
  }
  write_long(block, kLockCountOffset, count);
  trace::line("Added IpcLock - cRef=%d\n", static_cast<int>(count));
  return count;
}

}  // namespace mvsup::shell

extern "C" LONG WINAPI AddIpcLock(BOOL add) {
  mvsup::trace::CallScope scope("AddIpcLock");
  return scope.res(mvsup::shell::add_ipc_lock(add != FALSE));
}
