// The namespace extension's folders as the shell shows them: its root folder
// (on the desktop, or under My Computer when the extension is shown as a
// drive), the server folders below it, and file-system folders reached by
// walking the shell namespace by path.
#include "shell/namespace.h"

#include <shlwapi.h>

#include <cstring>
#include <string>
#include <string_view>

#include "MvSupShell.h"
#include "frame/library_state.h"
#include "frame/mode_bits.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "shell/pidl.h"

namespace mvsup::shell {

namespace {

constexpr int kNameCapacity = MAX_PATH;
constexpr SHCONTF kFolders = SHCONTF_FOLDERS;
constexpr SHCONTF kFoldersWithHidden = SHCONTF_FOLDERS | SHCONTF_INCLUDEHIDDEN;

// Server items: "MT" at offset 2 and the name from offset 32.
constexpr USHORT kServerNameOffset = 32;

// The text of a STRRET for an item of folder, at most kNameCapacity - 1
// characters; empty when the name cannot be had.
std::wstring display_name(IShellFolder* folder, LPCITEMIDLIST child, SHGDNF flags) {
  STRRET name = {};
  if (FAILED(folder->GetDisplayNameOf(child, flags, &name))) return {};
  wchar_t buffer[kNameCapacity] = {};
  if (FAILED(::StrRetToBufW(&name, child, buffer, kNameCapacity))) return {};
  return buffer;
}

// Children of folder, one at a time; each is the caller's.
class ChildWalk {
 public:
  ChildWalk(IShellFolder* folder, SHCONTF flags) noexcept {
    if (FAILED(folder->EnumObjects(nullptr, flags, children_.put()))) children_.reset();
  }
  explicit operator bool() const noexcept { return static_cast<bool>(children_); }
  unique_pidl next() noexcept {
    LPITEMIDLIST child = nullptr;
    ULONG fetched = 0;
    if (children_->Next(1, &child, &fetched) != S_OK || fetched != 1) {
      if (child != nullptr) ::CoTaskMemFree(child);
      return unique_pidl();
    }
    return unique_pidl(child);
  }
  void reset() noexcept { children_->Reset(); }

 private:
  com_ptr<IEnumIDList> children_;
};

HRESULT bind_folder(IShellFolder* parent, LPCITEMIDLIST child, REFIID riid, void** folder) noexcept {
  *folder = nullptr;
  const HRESULT hr = parent->BindToObject(child, nullptr, riid, folder);
  if (FAILED(hr) || *folder == nullptr) {
    *folder = nullptr;
    return FAILED(hr) ? hr : E_NOINTERFACE;
  }
  return hr;
}

// My Computer, bound through the desktop, with its absolute item-ID list.
HRESULT bind_drives(IShellFolder* desktop, unique_pidl& drives_pidl, com_ptr<IShellFolder>& drives) noexcept {
  HRESULT hr = ::SHGetSpecialFolderLocation(nullptr, CSIDL_DRIVES, drives_pidl.put());
  if (SUCCEEDED(hr)) hr = bind_folder(desktop, drives_pidl.get(), IID_IShellFolder, drives.put_void());
  return hr;
}

bool is_server_item(LPCITEMIDLIST item) noexcept {
  const auto* bytes = reinterpret_cast<const BYTE*>(item);
  return item->mkid.cb > kServerNameOffset && bytes[2] == 'M' && bytes[3] == 'T';
}

// The server name of a server item, read only inside the item.
std::wstring_view server_name(LPCITEMIDLIST item) noexcept {
  const auto* name = reinterpret_cast<const wchar_t*>(reinterpret_cast<const BYTE*>(item) + kServerNameOffset);
  const size_t available = (item->mkid.cb - kServerNameOffset) / sizeof(wchar_t);
  size_t length = 0;
  while (length < available && name[length] != L'\0') ++length;
  return {name, length};
}

}  // namespace

HRESULT find_nsx_folder(void** nsx_folder, wchar_t* display, LPITEMIDLIST* pidl) noexcept {
  *nsx_folder = nullptr;
  if (pidl != nullptr) *pidl = nullptr;
  com_ptr<IShellFolder> desktop;
  if (FAILED(::SHGetDesktopFolder(desktop.put())) || !desktop) return E_UNEXPECTED;
  com_ptr<IShellFolder> drives;
  unique_pidl drives_pidl;
  const bool as_drive = (frame::mode_word() & mode::kNsxAsDrive) != 0;
  if (as_drive && FAILED(bind_drives(desktop.get(), drives_pidl, drives))) return E_UNEXPECTED;
  IShellFolder* parent = as_drive ? drives.get() : desktop.get();

  ChildWalk children(parent, kFolders);
  if (!children) return E_UNEXPECTED;
  HRESULT last = E_FAIL;  // no child at all
  for (unique_pidl child = children.next(); child; child = children.next()) {
    com_ptr<IShellFolder> folder;
    last = bind_folder(parent, child.get(), IID_IShellFolder, folder.put_void());
    if (SUCCEEDED(last)) last = folder->QueryInterface(IID_IMvNsxFolder, nsx_folder);
    if (FAILED(last)) {
      *nsx_folder = nullptr;
      continue;
    }
    if (display != nullptr) {
      try {
        text::copy_truncated(display, kNameCapacity, display_name(parent, child.get(), SHGDN_NORMAL));
      } catch (...) {
        display[0] = L'\0';
      }
    }
    if (pidl != nullptr) {
      *pidl = join_pidls(as_drive ? drives_pidl.get() : nullptr, child.get());
      if (*pidl == nullptr) {
        static_cast<IUnknown*>(*nsx_folder)->Release();
        *nsx_folder = nullptr;
        return E_OUTOFMEMORY;
      }
    }
    return S_OK;
  }
  return last;
}

namespace {

HRESULT find_server_folder(IShellFolder* root, const wchar_t* name, void** server_folder,
                           LPITEMIDLIST* pidl) noexcept {
  ChildWalk children(root, kFolders);
  if (!children) return E_UNEXPECTED;
  const std::wstring_view wanted = text::view_or_empty(name);
  for (unique_pidl child = children.next(); child; child = children.next()) {
    // Server items come first: anything after another kind of item is not
    // looked at.
    if (!is_server_item(child.get())) break;
    if (name == nullptr || server_name(child.get()) != wanted) continue;
    const HRESULT hr = bind_folder(root, child.get(), IID_IMvNsxFolder, server_folder);
    if (SUCCEEDED(hr)) {
      if (pidl != nullptr) *pidl = child.release();
      return hr;
    }
  }
  return E_UNEXPECTED;
}

HRESULT list_servers(LPITEMIDLIST** list, UINT* count) noexcept {
  com_ptr<IShellFolder> root;
  const HRESULT found = find_nsx_folder(root.put_void(), nullptr, nullptr);
  if (FAILED(found)) return found;
  ChildWalk children(root.get(), kFolders);
  if (!children) return E_UNEXPECTED;
  UINT total = 0;
  for (unique_pidl child = children.next(); child; child = children.next()) ++total;
  if (total == 0) return S_OK;

  unique_hglobal array(::GlobalAlloc(GMEM_ZEROINIT, total * sizeof(LPITEMIDLIST)));
  if (!array) return E_OUTOFMEMORY;
  auto* entries = static_cast<LPITEMIDLIST*>(array.get());
  scope_exit free_entries([&] {
    for (UINT i = 0; i < total; ++i)
      if (entries[i] != nullptr) ::GlobalFree(entries[i]);
  });
  children.reset();
  UINT copied = 0;
  for (unique_pidl child = children.next(); child && copied < total; child = children.next()) {
    const size_t bytes = child.get()->mkid.cb + sizeof(USHORT);
    entries[copied] = static_cast<LPITEMIDLIST>(::GlobalAlloc(GMEM_ZEROINIT, bytes));
    if (entries[copied] == nullptr) return E_OUTOFMEMORY;
    std::memcpy(entries[copied], child.get(), child.get()->mkid.cb);
    ++copied;
  }
  free_entries.dismiss();
  *count = copied;
  *list = static_cast<LPITEMIDLIST*>(array.release());
  return S_OK;
}

// One component of a path: the text up to the next backslash, the
// backslash included after a drive's colon ("C:\").
std::wstring_view next_component(std::wstring_view& rest) noexcept {
  while (!rest.empty() && rest.front() == L'\\') rest.remove_prefix(1);
  size_t end = rest.find(L'\\');
  if (end == std::wstring_view::npos) end = rest.size();
  else if (end > 0 && rest[end - 1] == L':') ++end;
  const std::wstring_view component = rest.substr(0, end);
  rest.remove_prefix(end);
  return component;
}

HRESULT bind_by_path(const wchar_t* path, IShellFolder** result) noexcept {
  com_ptr<IShellFolder> desktop;
  HRESULT hr = ::SHGetDesktopFolder(desktop.put());
  if (FAILED(hr)) return hr;
  com_ptr<IShellFolder> current;
  {
    unique_pidl drives_pidl;
    hr = bind_drives(desktop.get(), drives_pidl, current);
    if (FAILED(hr)) return hr;
  }
  std::wstring_view rest = path;
  for (std::wstring_view component = next_component(rest); !component.empty(); component = next_component(rest)) {
    ChildWalk children(current.get(), kFoldersWithHidden);
    if (!children) return E_UNEXPECTED;
    unique_pidl match;
    for (unique_pidl child = children.next(); child; child = children.next()) {
      std::wstring name;
      try {
        name = display_name(current.get(), child.get(), SHGDN_FORPARSING | SHGDN_INFOLDER);
      } catch (...) {
        return E_OUTOFMEMORY;
      }
      // A child without a parsing name ends the walk, found or not; callers
      // have always seen S_OK and no folder here.
      if (name.empty()) return S_OK;
      if (text::starts_with_ignore_case(name, component)) {
        match = std::move(child);
        break;
      }
    }
    if (!match) return S_FALSE;
    com_ptr<IShellFolder> next;
    hr = bind_folder(current.get(), match.get(), IID_IShellFolder, next.put_void());
    if (FAILED(hr)) return hr;
    *current.put() = next.release();
  }
  *result = current.release();
  return S_OK;
}

}  // namespace
}  // namespace mvsup::shell

extern "C" {

HRESULT WINAPI GetMvNsxFolder(void** nsxFolder, LPWSTR displayName, LPITEMIDLIST* pidl) {
  mvsup::trace::CallScope scope("GetMvNsxFolder");
  if (nsxFolder == nullptr) return scope.hr(E_POINTER);
  return scope.hr(mvsup::shell::find_nsx_folder(nsxFolder, displayName, pidl));
}

HRESULT WINAPI GetMvServerFolder(void* nsxFolder, LPCWSTR serverName, void** serverFolder, LPITEMIDLIST* pidl) {
  mvsup::trace::CallScope scope("GetMvServerFolder");
  if (nsxFolder == nullptr || serverFolder == nullptr) return scope.hr(E_POINTER);
  *serverFolder = nullptr;
  if (pidl != nullptr) *pidl = nullptr;
  return scope.hr(
      mvsup::shell::find_server_folder(static_cast<IShellFolder*>(nsxFolder), serverName, serverFolder, pidl));
}

HRESULT WINAPI GetServerList(LPITEMIDLIST** list, UINT* count) {
  mvsup::trace::CallScope scope("GetServerList");
  if (list == nullptr || count == nullptr) return scope.hr(E_POINTER);
  *list = nullptr;
  *count = 0;
  return scope.hr(mvsup::shell::list_servers(list, count));
}

HRESULT WINAPI BindToFolderByFileSystemPath(LPCWSTR path, IShellFolder** folder) {
  mvsup::trace::CallScope scope("BindToFolderByFileSystemPath");
  if (folder == nullptr) return scope.hr(E_POINTER);
  *folder = nullptr;
  if (path == nullptr || *path == L'\0') return scope.hr(E_INVALIDARG);
  return scope.hr(mvsup::shell::bind_by_path(path, folder));
}

}  // extern "C"
