// The namespace functions through the system's shell, with the test
// namespace extension registered in the prefix the way the client's
// extension is: a machine class with ShellFolder attributes, listed under
// the desktop's or My Computer's NameSpace key.
#include <windows.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "common/guard_page.h"
#include "common/paths.h"
#include "common/registry_sandbox.h"
#include "frame/win32_handles.h"
#include "shell_fixture_client.h"

namespace mvsup::test {
namespace {

constexpr const wchar_t* kRootDisplayName = L"Mervane Test Servers";
constexpr DWORD kFolderAttributes = 0xA8000000;  // SFGAO_FOLDER | SFGAO_HASSUBFOLDER | SFGAO_FILESYSANCESTOR
const std::wstring kExplorerKey = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";

std::wstring name_of_server_item(LPCITEMIDLIST item) {
  if (item->mkid.cb <= 32) return L"<not a server item>";
  return reinterpret_cast<const wchar_t*>(reinterpret_cast<const BYTE*>(item) + 32);
}

// The absolute list a folder says it stands for.
unique_pidl current_folder(IUnknown* folder) {
  com_ptr<IPersistFolder2> persist;
  unique_pidl pidl;
  if (SUCCEEDED(folder->QueryInterface(IID_IPersistFolder2, persist.put_void()))) persist->GetCurFolder(pidl.put());
  return pidl;
}

std::vector<BYTE> bytes_of(LPCITEMIDLIST pidl) {
  const auto* start = reinterpret_cast<const BYTE*>(pidl);
  return {start, start + GetIdlLen(pidl, nullptr)};
}

class Namespace : public RegistrySandbox {
 protected:
  void SetUp() override {
    RegistrySandbox::SetUp();
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    registration_ = std::make_unique<ClassRegistration>(kNsxFixtureClass);
    registration_->set(L"", nullptr, kRootDisplayName);
    registration_->set_dword(L"ShellFolder", L"Attributes", kFolderAttributes);
    saved_mode_ = static_cast<DWORD>(GetMvSupMode(0xFFFFFFFF));
  }
  void TearDown() override {
    SetMvSupMode(saved_mode_ & MVSUP_MODE_NSXASDRIVE, MVSUP_MODE_NSXASDRIVE);
    listing_.reset();
    registration_.reset();
    CoUninitialize();
    RegistrySandbox::TearDown();
  }
  // Lists the extension under the desktop or under My Computer.
  void list_under(const wchar_t* parent) {
    listing_ = std::make_unique<RegistryTree>(HKEY_CURRENT_USER,
                                              kExplorerKey + parent + L"\\NameSpace\\" + kNsxFixtureClassText);
    listing_->set(L"", nullptr, kRootDisplayName);
  }
  // The root folder, found by the library.
  com_ptr<IShellFolder> root() {
    com_ptr<IShellFolder> folder;
    EXPECT_EQ(GetMvNsxFolder(folder.put_void(), nullptr, nullptr), S_OK);
    return folder;
  }

  ShellFixtureModule fixture_;
  std::unique_ptr<ClassRegistration> registration_;
  std::unique_ptr<RegistryTree> listing_;
  DWORD saved_mode_ = 0;
};

TEST_F(Namespace, RootFolderOnTheDesktop) {
  list_under(L"Desktop");
  com_ptr<IShellFolder> folder;
  wchar_t name[MAX_PATH];
  std::fill(std::begin(name), std::end(name), L'#');
  unique_pidl pidl;
  ASSERT_EQ(GetMvNsxFolder(folder.put_void(), name, pidl.put()), S_OK);
  ASSERT_TRUE(folder);
  EXPECT_EQ(std::wstring(name), kRootDisplayName);

  // The folder is the extension's own object, initialised with its place.
  com_ptr<IPersist> persist;
  ASSERT_EQ(folder->QueryInterface(IID_IPersist, persist.put_void()), S_OK);
  CLSID clsid = {};
  EXPECT_EQ(persist->GetClassID(&clsid), S_OK);
  EXPECT_TRUE(IsEqualCLSID(clsid, kNsxFixtureClass));

  // The list is the desktop's one item for the extension.
  ASSERT_TRUE(pidl);
  UINT count = 0;
  EXPECT_EQ(GetIdlLen(pidl.get(), &count), 20u);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(bytes_of(current_folder(folder.get()).get()), bytes_of(pidl.get()));
  com_ptr<IShellFolder> desktop;
  ASSERT_EQ(SHGetDesktopFolder(desktop.put()), S_OK);
  com_ptr<IShellFolder> again;
  EXPECT_EQ(desktop->BindToObject(pidl.get(), nullptr, IID_IMvNsxFolder, again.put_void()), S_OK);

  // Name and list are optional.
  EXPECT_EQ(GetMvNsxFolder(folder.put_void(), nullptr, nullptr), S_OK);
  EXPECT_TRUE(folder);
  EXPECT_EQ(GetMvNsxFolder(nullptr, name, nullptr), E_POINTER);
}

TEST_F(Namespace, RootFolderUnderMyComputerInDriveMode) {
  list_under(L"MyComputer");
  // Listed under My Computer only: the desktop has no such child.
  com_ptr<IShellFolder> folder;
  unique_pidl pidl;
  EXPECT_TRUE(FAILED(GetMvNsxFolder(folder.put_void(), nullptr, pidl.put())));
  EXPECT_FALSE(folder);
  EXPECT_FALSE(pidl);

  SetMvSupMode(MVSUP_MODE_NSXASDRIVE, MVSUP_MODE_NSXASDRIVE);
  ASSERT_EQ(GetMvNsxFolder(folder.put_void(), nullptr, pidl.put()), S_OK);
  unique_pidl drives;
  ASSERT_EQ(SHGetSpecialFolderLocation(nullptr, CSIDL_DRIVES, drives.put()), S_OK);
  UINT drive_items = 0, items = 0;
  const UINT drive_bytes = GetIdlLen(drives.get(), &drive_items);
  EXPECT_EQ(GetIdlLen(pidl.get(), &items), drive_bytes + 20);
  EXPECT_EQ(items, drive_items + 1);
  std::vector<BYTE> head = bytes_of(pidl.get());
  head.resize(drive_bytes);
  EXPECT_EQ(head, bytes_of(drives.get())) << "the list starts with My Computer's";
  EXPECT_EQ(bytes_of(current_folder(folder.get()).get()), bytes_of(pidl.get()));
}

TEST_F(Namespace, WithoutTheExtensionNothingIsHandedOut) {
  IShellFolder* folder = reinterpret_cast<IShellFolder*>(1);
  LPITEMIDLIST pidl = reinterpret_cast<LPITEMIDLIST>(1);
  wchar_t name[8] = L"x";
  const HRESULT hr = GetMvNsxFolder(reinterpret_cast<void**>(&folder), name, &pidl);
  EXPECT_TRUE(FAILED(hr));
  EXPECT_NE(hr, E_UNEXPECTED) << "the desktop itself was there";
  EXPECT_EQ(folder, nullptr);
  EXPECT_EQ(pidl, nullptr);

  LPITEMIDLIST* list = reinterpret_cast<LPITEMIDLIST*>(1);
  UINT count = 7;
  EXPECT_EQ(GetServerList(&list, &count), hr);
  EXPECT_EQ(list, nullptr);
  EXPECT_EQ(count, 0u);
}

TEST_F(Namespace, ServerFolderByExactName) {
  list_under(L"Desktop");
  com_ptr<IShellFolder> servers = root();
  ASSERT_TRUE(servers);
  for (const wchar_t* name : {L"Beta", L"beta", L"Alpha"}) {
    com_ptr<IShellFolder> server;
    unique_pidl pidl;
    ASSERT_EQ(GetMvServerFolder(servers.get(), name, server.put_void(), pidl.put()), S_OK) << name;
    ASSERT_TRUE(server);
    ASSERT_TRUE(pidl);
    EXPECT_EQ(name_of_server_item(pidl.get()), name);
    // The server folder stands for the root's list plus this item.
    const unique_pidl place = current_folder(server.get());
    ASSERT_TRUE(place);
    EXPECT_EQ(name_of_server_item(GetLastItemPidl(place.get())), name);
  }

  // Case matters; a server listed after a non-server item is never reached;
  // the non-server item is no server.
  for (const wchar_t* name : {L"ALPHA", L"Zeta", L"Settings", L"", static_cast<const wchar_t*>(nullptr)}) {
    IShellFolder* server = reinterpret_cast<IShellFolder*>(1);
    LPITEMIDLIST pidl = reinterpret_cast<LPITEMIDLIST>(1);
    EXPECT_EQ(GetMvServerFolder(servers.get(), name, reinterpret_cast<void**>(&server), &pidl), E_UNEXPECTED)
        << (name ? std::string(name, name + wcslen(name)) : "null");
    EXPECT_EQ(server, nullptr);
    EXPECT_EQ(pidl, nullptr);
  }

  com_ptr<IShellFolder> server;
  EXPECT_EQ(GetMvServerFolder(servers.get(), L"Alpha", server.put_void(), nullptr), S_OK);
  EXPECT_EQ(GetMvServerFolder(nullptr, L"Alpha", server.put_void(), nullptr), E_POINTER);
  EXPECT_EQ(GetMvServerFolder(servers.get(), L"Alpha", nullptr, nullptr), E_POINTER);
}

TEST_F(Namespace, ServerListHoldsEveryChildInOrder) {
  list_under(L"Desktop");
  LPITEMIDLIST* list = nullptr;
  UINT count = 0;
  ASSERT_EQ(GetServerList(&list, &count), S_OK);
  ASSERT_EQ(count, static_cast<UINT>(kFixtureChildCount));
  ASSERT_NE(list, nullptr);
  const std::vector<std::wstring> expected = {kFixtureServers[0], kFixtureServers[1], kFixtureServers[2],
                                              L"<not a server item>", kFixtureLateServer};
  for (UINT i = 0; i < count; ++i) {
    ASSERT_NE(list[i], nullptr);
    EXPECT_EQ(name_of_server_item(list[i]), expected[i]) << i;
    // Each entry is one item and its terminator, in its own block.
    const USHORT cb = list[i]->mkid.cb;
    EXPECT_EQ(GlobalSize(list[i]), static_cast<SIZE_T>(cb) + 2);
    USHORT terminator = 0xFFFF;
    std::memcpy(&terminator, reinterpret_cast<BYTE*>(list[i]) + cb, 2);
    EXPECT_EQ(terminator, 0);
  }
  EXPECT_EQ(list[3]->mkid.cb, kFixtureOtherItemSize);
  for (UINT i = 0; i < count; ++i) EXPECT_EQ(GlobalFree(list[i]), nullptr);
  EXPECT_EQ(GlobalFree(list), nullptr);

  EXPECT_EQ(GetServerList(nullptr, &count), E_POINTER);
  EXPECT_EQ(GetServerList(&list, nullptr), E_POINTER);
}

// Folders made for the path walk, and the shell's own answers about them.
class PathWalk : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    for (const wchar_t* name : {L"Reports 2024", L"reports 2023", L"Rep", L"Archive", L".cache"})
      ASSERT_TRUE(CreateDirectoryW((base_.path() + L"\\" + name).c_str(), nullptr));
    ASSERT_TRUE(CreateDirectoryW((base_.path() + L"\\Archive\\Hidden").c_str(), nullptr));
    SetFileAttributesW((base_.path() + L"\\Archive\\Hidden").c_str(), FILE_ATTRIBUTE_HIDDEN);
  }
  void TearDown() override { CoUninitialize(); }

  // The folder's file-system path, or "" when it has none.
  static std::wstring path_of(IShellFolder* folder) {
    const unique_pidl pidl = current_folder(folder);
    wchar_t path[MAX_PATH] = {};
    if (!pidl || !SHGetPathFromIDListW(pidl.get(), path)) return {};
    return path;
  }

  // The first child of the directory, in the shell's order, whose parsing
  // name starts with prefix (ignoring case): what the walk must find.
  std::wstring first_child_starting_with(const std::wstring& prefix) const {
    com_ptr<IShellFolder> desktop;
    SHGetDesktopFolder(desktop.put());
    unique_pidl pidl;
    desktop->ParseDisplayName(nullptr, nullptr, const_cast<LPWSTR>(base_.path().c_str()), nullptr, pidl.put(),
                              nullptr);
    com_ptr<IShellFolder> folder;
    desktop->BindToObject(pidl.get(), nullptr, IID_IShellFolder, folder.put_void());
    com_ptr<IEnumIDList> children;
    folder->EnumObjects(nullptr, SHCONTF_FOLDERS | SHCONTF_INCLUDEHIDDEN, children.put());
    LPITEMIDLIST child = nullptr;
    while (children && children->Next(1, &child, nullptr) == S_OK) {
      const unique_pidl owned(child);
      STRRET name = {};
      wchar_t text[MAX_PATH] = {};
      folder->GetDisplayNameOf(child, SHGDN_FORPARSING | SHGDN_INFOLDER, &name);
      StrRetToBufW(&name, child, text, MAX_PATH);
      if (_wcsnicmp(text, prefix.c_str(), prefix.size()) == 0) return text;
    }
    return {};
  }

  TempDirectory base_;
};

TEST_F(PathWalk, WholeNamesAndDrives) {
  com_ptr<IShellFolder> folder;
  ASSERT_EQ(BindToFolderByFileSystemPath((base_.path() + L"\\Archive").c_str(), folder.put()), S_OK);
  EXPECT_EQ(path_of(folder.get()), base_.path() + L"\\Archive");
  // Components are compared ignoring case; a trailing backslash adds none.
  std::wstring lower = base_.path() + L"\\archive\\";
  for (wchar_t& c : lower) c = towlower(c);
  ASSERT_EQ(BindToFolderByFileSystemPath(lower.c_str(), folder.put()), S_OK);
  EXPECT_EQ(path_of(folder.get()), base_.path() + L"\\Archive");
  // The drive component keeps its backslash.
  ASSERT_EQ(BindToFolderByFileSystemPath(L"C:\\", folder.put()), S_OK);
  EXPECT_EQ(path_of(folder.get()), L"C:\\");
}

TEST_F(PathWalk, ComponentsArePrefixesOfTheFirstMatchingChild) {
  for (const std::wstring prefix : {L"Repo", L"rep", L"REPORTS 2023"}) {
    const std::wstring expected = first_child_starting_with(prefix);
    ASSERT_FALSE(expected.empty());
    com_ptr<IShellFolder> folder;
    ASSERT_EQ(BindToFolderByFileSystemPath((base_.path() + L"\\" + prefix).c_str(), folder.put()), S_OK);
    EXPECT_EQ(path_of(folder.get()), base_.path() + L"\\" + expected) << std::string(prefix.begin(), prefix.end());
  }
}

TEST_F(PathWalk, HiddenFoldersAreWalkedThrough) {
  com_ptr<IShellFolder> folder;
  ASSERT_EQ(BindToFolderByFileSystemPath((base_.path() + L"\\.cache").c_str(), folder.put()), S_OK);
  EXPECT_EQ(path_of(folder.get()), base_.path() + L"\\.cache");
  ASSERT_EQ(BindToFolderByFileSystemPath((base_.path() + L"\\Archive\\Hidden").c_str(), folder.put()), S_OK);
  EXPECT_EQ(path_of(folder.get()), base_.path() + L"\\Archive\\Hidden");
}

TEST_F(PathWalk, MissingComponentGivesFalseAndNoFolder) {
  IShellFolder* folder = reinterpret_cast<IShellFolder*>(1);
  EXPECT_EQ(BindToFolderByFileSystemPath((base_.path() + L"\\Nothing\\Archive").c_str(), &folder), S_FALSE);
  EXPECT_EQ(folder, nullptr);
  folder = reinterpret_cast<IShellFolder*>(1);
  EXPECT_EQ(BindToFolderByFileSystemPath(L"Q:\\", &folder), S_FALSE);
  EXPECT_EQ(folder, nullptr);
  EXPECT_EQ(BindToFolderByFileSystemPath(L"", &folder), E_INVALIDARG);
  EXPECT_EQ(BindToFolderByFileSystemPath(nullptr, &folder), E_INVALIDARG);
  EXPECT_EQ(BindToFolderByFileSystemPath(L"C:\\", nullptr), E_POINTER);
}

// Item-ID lists written out by hand: items of 20, 30 and 6 bytes.
std::vector<BYTE> three_items() {
  std::vector<BYTE> list(20 + 30 + 6 + 2, 0);
  size_t at = 0;
  for (USHORT size : {20, 30, 6}) {
    std::fill_n(list.begin() + static_cast<std::ptrdiff_t>(at), size, static_cast<BYTE>(size));
    std::memcpy(list.data() + at, &size, 2);
    at += size;
  }
  return list;
}

TEST(ItemIdLists, SizesAndCounts) {
  std::vector<BYTE> list = three_items();
  const auto* pidl = reinterpret_cast<LPCITEMIDLIST>(list.data());
  UINT count = 99;
  EXPECT_EQ(GetIdlLen(pidl, &count), 56u);
  EXPECT_EQ(count, 3u);
  // Two items of 20 and 30 bytes.
  list[50] = list[51] = 0;
  EXPECT_EQ(GetIdlLen(pidl, &count), 50u);
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(GetIdlLen(pidl, nullptr), 50u);
  const BYTE empty[2] = {0, 0};
  EXPECT_EQ(GetIdlLen(reinterpret_cast<LPCITEMIDLIST>(empty), &count), 0u);
  EXPECT_EQ(count, 0u);
  count = 99;
  EXPECT_EQ(GetIdlLen(nullptr, &count), 0u);
  EXPECT_EQ(count, 99u) << "a null list leaves the count alone";
}

TEST(ItemIdLists, LastItem) {
  std::vector<BYTE> list = three_items();
  auto* pidl = reinterpret_cast<LPITEMIDLIST>(list.data());
  EXPECT_EQ(reinterpret_cast<BYTE*>(GetLastItemPidl(pidl)), list.data() + 50);
  list[20] = list[21] = 0;  // one item
  EXPECT_EQ(GetLastItemPidl(pidl), pidl);
  list[0] = list[1] = 0;  // none
  EXPECT_EQ(GetLastItemPidl(pidl), pidl);
  EXPECT_EQ(GetLastItemPidl(nullptr), nullptr);
}

TEST(ItemIdLists, DumpOfTheFirstItemOnly) {
  // The item alone, without the list's terminator, ends at an inaccessible
  // page: nothing past its cb bytes is read.
  const BYTE item[] = {7, 0, 'A', 0x1F, 0x7F, 0x80, '~'};
  GuardedBuffer guarded(item, sizeof(item));
  LPWSTR hex = nullptr, text = nullptr;
  ASSERT_TRUE(IdlDump(guarded.as<ITEMIDLIST>(), &hex, &text));
  EXPECT_EQ(std::wstring(hex), L"07 00 41 1F 7F 80 7E ");
  EXPECT_EQ(std::wstring(text), L"..A...~");
  EXPECT_EQ(GlobalSize(hex), (7u * 3 + 1) * sizeof(wchar_t));
  EXPECT_EQ(GlobalSize(text), (7u + 1) * sizeof(wchar_t));
  EXPECT_EQ(GlobalFree(hex), nullptr);
  EXPECT_EQ(GlobalFree(text), nullptr);

  const BYTE empty[2] = {0, 0};
  hex = text = reinterpret_cast<LPWSTR>(1);
  EXPECT_FALSE(IdlDump(reinterpret_cast<LPCITEMIDLIST>(empty), &hex, &text));
  EXPECT_EQ(hex, nullptr);
  EXPECT_EQ(text, nullptr);
  hex = text = reinterpret_cast<LPWSTR>(1);
  EXPECT_FALSE(IdlDump(nullptr, &hex, &text));
  EXPECT_EQ(hex, nullptr);
  EXPECT_EQ(text, nullptr);
  EXPECT_FALSE(IdlDump(guarded.as<ITEMIDLIST>(), nullptr, &text));
  EXPECT_EQ(text, nullptr);
}

}  // namespace
}  // namespace mvsup::test
