// Item-ID list helpers for the client's shell components.
#include "shell/pidl.h"

#include <cstdio>
#include <cstring>

#include "MvSupShell.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"

namespace mvsup::shell {

namespace {

const SHITEMID* next_item(const SHITEMID* item) noexcept {
  return reinterpret_cast<const SHITEMID*>(reinterpret_cast<const BYTE*>(item) + item->cb);
}

// "%02X " for every byte of the first item, and the byte as a character
// ('.' outside 32-126); both zero-filled GlobalAlloc blocks.
BOOL dump_first_item(LPCITEMIDLIST pidl, LPWSTR* hex, LPWSTR* text) noexcept {
  const USHORT size = pidl->mkid.cb;
  unique_hglobal hex_block(::GlobalAlloc(GPTR, (size * 3 + 1) * sizeof(wchar_t)));
  unique_hglobal text_block(::GlobalAlloc(GPTR, (size + 1) * sizeof(wchar_t)));
  if (!hex_block || !text_block) return FALSE;
  static constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
  auto* hex_out = static_cast<wchar_t*>(hex_block.get());
  auto* text_out = static_cast<wchar_t*>(text_block.get());
  const auto* bytes = reinterpret_cast<const BYTE*>(pidl);
  for (USHORT i = 0; i < size; ++i) {
    hex_out[i * 3] = kDigits[bytes[i] >> 4];
    hex_out[i * 3 + 1] = kDigits[bytes[i] & 15];
    hex_out[i * 3 + 2] = L' ';
    text_out[i] = (bytes[i] < 32 || bytes[i] >= 127) ? L'.' : static_cast<wchar_t>(bytes[i]);
  }
  *hex = static_cast<LPWSTR>(hex_block.release());
  *text = static_cast<LPWSTR>(text_block.release());
  return TRUE;
}

}  // namespace

UINT pidl_size(LPCITEMIDLIST pidl, UINT* count) noexcept {
  UINT bytes = 0;
  UINT items = 0;
  for (const SHITEMID* item = &pidl->mkid; item->cb != 0; item = next_item(item)) {
    bytes += item->cb;
    ++items;
  }
  if (count != nullptr) *count = items;
  return bytes;
}

LPITEMIDLIST join_pidls(LPCITEMIDLIST first, LPCITEMIDLIST second) noexcept {
  const UINT first_bytes = first != nullptr ? pidl_size(first, nullptr) : 0;
  const UINT second_bytes = second != nullptr ? pidl_size(second, nullptr) : 0;
  const SIZE_T total = SIZE_T{first_bytes} + second_bytes + sizeof(USHORT);
  com_ptr<IMalloc> allocator;
  if (FAILED(::SHGetMalloc(allocator.put())) || !allocator) return nullptr;
  auto* joined = static_cast<BYTE*>(allocator->Alloc(total));
  if (joined == nullptr) return nullptr;
  std::memset(joined, 0, total);
  if (first_bytes != 0) std::memcpy(joined, first, first_bytes);
  if (second_bytes != 0) std::memcpy(joined + first_bytes, second, second_bytes);
  return reinterpret_cast<LPITEMIDLIST>(joined);
}

}  // namespace mvsup::shell

extern "C" {

UINT WINAPI GetIdlLen(LPCITEMIDLIST pidl, UINT* count) {
  if (pidl == nullptr) return 0;
  return mvsup::shell::pidl_size(pidl, count);
}

LPITEMIDLIST WINAPI GetLastItemPidl(LPCITEMIDLIST pidl) {
  if (pidl == nullptr) return nullptr;
  const SHITEMID* last = &pidl->mkid;
  if (last->cb != 0)
    for (const SHITEMID* item = mvsup::shell::next_item(last); item->cb != 0; item = mvsup::shell::next_item(item))
      last = item;
  return reinterpret_cast<LPITEMIDLIST>(const_cast<SHITEMID*>(last));
}

BOOL WINAPI IdlDump(LPCITEMIDLIST pidl, LPWSTR* hex, LPWSTR* text) {
  mvsup::trace::CallScope scope("IdlDump");
  if (hex != nullptr) *hex = nullptr;
  if (text != nullptr) *text = nullptr;
  if (pidl == nullptr || pidl->mkid.cb == 0 || hex == nullptr || text == nullptr) return scope.res(FALSE);
  return scope.res(mvsup::shell::dump_first_item(pidl, hex, text));
}

}  // extern "C"
