// DeleteDirContents: ordinary trees, every path check, and trees built to
// make the walk reach outside its base. In each case a canary tree outside
// the base must come out byte for byte as it went in.
#include <windows.h>
#include <winioctl.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "common/message_boxes.h"
#include "common/paths.h"
#include "common/registry_sandbox.h"
#include "common/trace_log.h"
#include "storage/storage_support.h"

namespace mvsup::test {
namespace {

constexpr const wchar_t* kCaption = L"MVSUP2U.DLL";
constexpr const wchar_t* kNotUnderBase = L"Deletion path does not exist under base dir.";
constexpr const wchar_t* kTooLong = L"Deletion path is too long.";
constexpr const wchar_t* kTraceChild = L"MVSUP_STORAGE_CLEANUP_TRACE_CHILD";
// Made by the storage.unix_links fixture (cmake/storage-unix-links.sh).
constexpr const wchar_t* kUnixLinks = L"C:\\mvsup-unix-links";

std::string narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

bool text_equal_ignore_case(const std::wstring& a, const std::wstring& b) {
  return CompareStringOrdinal(a.c_str(), -1, b.c_str(), -1, TRUE) == CSTR_EQUAL;
}

bool inside(const std::wstring& path, const std::wstring& directory) {
  return path.size() >= directory.size() && text_equal_ignore_case(path.substr(0, directory.size()), directory);
}

std::string upper(std::wstring text) {
  CharUpperBuffW(text.data(), static_cast<DWORD>(text.size()));
  return narrow(text);
}

// Long paths are made through the \\?\ form, which has no 260-character limit.
std::wstring extended(const std::wstring& path) { return L"\\\\?\\" + path; }

void make_dir(const std::wstring& path) { CreateDirectoryW(extended(path).c_str(), nullptr); }

void make_file(const std::wstring& path, const std::string& content = "data") {
  HANDLE file = CreateFileW(extended(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE) << narrow(path);
  DWORD written = 0;
  WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
  CloseHandle(file);
}

// Everything below a directory: relative path -> content ("<dir>" for a
// directory), with attributes, without following links.
using Snapshot = std::map<std::wstring, std::string>;

void snapshot_into(const std::wstring& root, const std::wstring& relative, Snapshot& out) {
  WIN32_FIND_DATAW data;
  HANDLE find = FindFirstFileW(extended(root + relative + L"\\*").c_str(), &data);
  if (find == INVALID_HANDLE_VALUE) return;
  do {
    const std::wstring name = data.cFileName;
    if (name == L"." || name == L"..") continue;
    const std::wstring path = relative + L"\\" + name;
    const std::string attributes = " attributes " + std::to_string(data.dwFileAttributes & ~FILE_ATTRIBUTE_ARCHIVE);
    if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
      out[path] = "<dir>" + attributes;
      snapshot_into(root, path, out);
    } else {
      out[path] = read_file(extended(root + path)) + attributes;
    }
  } while (FindNextFileW(find, &data));
  FindClose(find);
}

Snapshot snapshot(const std::wstring& root) {
  Snapshot out;
  out[L""] = GetFileAttributesW(root.c_str()) == INVALID_FILE_ATTRIBUTES ? "<missing>" : "<dir>";
  snapshot_into(root, L"", out);
  return out;
}

std::wstring current_directory() {
  wchar_t buffer[1024] = {};
  GetCurrentDirectoryW(1024, buffer);
  return buffer;
}

// A canary tree: files, a read-only file, nested and empty directories.
void make_canary(const std::wstring& root) {
  make_dir(root);
  make_dir(root + L"\\full");
  make_dir(root + L"\\full\\nested");
  make_dir(root + L"\\empty");
  make_file(root + L"\\file.txt", "canary file");
  make_file(root + L"\\full\\a.txt", "canary a");
  make_file(root + L"\\full\\nested\\b.txt", "canary b");
  make_file(root + L"\\readonly.txt", "canary read-only");
  SetFileAttributesW((root + L"\\readonly.txt").c_str(), FILE_ATTRIBUTE_READONLY);
}

// An ordinary tree to empty: files at two depths, an empty directory.
void make_tree(const std::wstring& root) {
  make_dir(root);
  make_dir(root + L"\\sub");
  make_dir(root + L"\\sub\\deep");
  make_dir(root + L"\\empty");
  make_file(root + L"\\x.txt");
  make_file(root + L"\\sub\\y.txt");
  make_file(root + L"\\sub\\deep\\z.txt");
}

// Removes a tree without following links (the temporary directory's own
// clean-up would walk into them).
void remove_tree(const std::wstring& path) {
  WIN32_FIND_DATAW data;
  HANDLE find = FindFirstFileW(extended(path + L"\\*").c_str(), &data);
  if (find != INVALID_HANDLE_VALUE) {
    do {
      const std::wstring name = data.cFileName;
      if (name == L"." || name == L"..") continue;
      const std::wstring child = path + L"\\" + name;
      if (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) {
        RemoveDirectoryW(extended(child).c_str()) || DeleteFileW(extended(child).c_str());
      } else if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
        remove_tree(child);
      } else {
        SetFileAttributesW(extended(child).c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileW(extended(child).c_str());
      }
    } while (FindNextFileW(find, &data));
    FindClose(find);
  }
  RemoveDirectoryW(extended(path).c_str());
}

class DirCleanup : public RegistrySandbox {
 protected:
  void SetUp() override {
    RegistrySandbox::SetUp();
    saved_directory_ = current_directory();
    root_ = std::make_unique<TempDirectory>();
    base_ = root_->path() + L"\\base";
    // A sibling whose name starts like the base: only the base's trailing
    // backslash keeps the two apart.
    canary_ = root_->path() + L"\\basecanary";
    make_dir(base_);
    make_canary(canary_);
    canary_before_ = snapshot(canary_);
    set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Work", base_);
    set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Cache", root_->path() + L"\\cache");
    boxes_ = std::make_unique<MessageBoxWatcher>();
  }
  void TearDown() override {
    EXPECT_EQ(snapshot(canary_), canary_before_) << "the canary tree changed";
    boxes_.reset();
    SetCurrentDirectoryW(saved_directory_.c_str());
    remove_tree(root_->path());
    root_.reset();
    RegistrySandbox::TearDown();
  }

  // The texts of the boxes shown so far; each must be the library's own.
  std::vector<std::wstring> box_texts() {
    std::vector<std::wstring> texts;
    for (const ShownBox& box : boxes_->boxes()) {
      EXPECT_EQ(box.caption, kCaption);
      EXPECT_EQ(box.owner, nullptr);
      texts.push_back(box.text);
    }
    return texts;
  }

  std::wstring saved_directory_;
  std::unique_ptr<TempDirectory> root_;
  std::wstring base_;
  std::wstring canary_;
  Snapshot canary_before_;
  std::unique_ptr<MessageBoxWatcher> boxes_;
};

TEST_F(DirCleanup, WithoutFilesOnlyEmptyDirectoriesGo) {
  const std::wstring tree = base_ + L"\\tree";
  make_tree(tree);
  int failures = 0;
  EXPECT_EQ(DeleteDirContents(base_.c_str(), tree.c_str(), &failures, 0), 1);
  const Snapshot after = snapshot(tree);
  EXPECT_EQ(after.count(L"\\empty"), 0u);
  for (const wchar_t* kept : {L"\\x.txt", L"\\sub\\y.txt", L"\\sub\\deep\\z.txt"}) EXPECT_EQ(after.count(kept), 1u);
  EXPECT_EQ(failures, 2);  // sub and sub\deep still hold files
  EXPECT_TRUE(text_equal_ignore_case(current_directory(), tree));
  EXPECT_TRUE(box_texts().empty());
}

TEST_F(DirCleanup, WithFilesTheTreeIsEmptied) {
  const std::wstring tree = base_ + L"\\tree";
  // The base in other forms: trailing backslash, other case, a fragment that
  // occurs in the middle of the path.
  for (const std::wstring& base : {base_, base_ + L"\\", std::wstring(L"\\BASE\\"), std::wstring(L"base")}) {
    make_tree(tree);
    int failures = 7;
    EXPECT_EQ(DeleteDirContents(base.c_str(), tree.c_str(), &failures, 1), 1) << narrow(base);
    EXPECT_EQ(failures, 7);  // counted on, never reset
    EXPECT_EQ(snapshot(tree), (Snapshot{{L"", "<dir>"}})) << narrow(base);
    EXPECT_TRUE(text_equal_ignore_case(current_directory(), tree));
  }
  EXPECT_TRUE(box_texts().empty());
  // A null failure counter is allowed.
  make_tree(tree);
  EXPECT_EQ(DeleteDirContents(base_.c_str(), tree.c_str(), nullptr, 1), 1);
  EXPECT_EQ(snapshot(tree).size(), 1u);
}

TEST_F(DirCleanup, ReadOnlyAndOpenFilesStayAndAreCounted) {
  const std::wstring tree = base_ + L"\\tree";
  make_tree(tree);
  make_file(tree + L"\\locked.txt");
  SetFileAttributesW((tree + L"\\sub\\y.txt").c_str(), FILE_ATTRIBUTE_READONLY);
  HANDLE locked = CreateFileW((tree + L"\\locked.txt").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                              OPEN_EXISTING, 0, nullptr);
  int failures = 0;
  EXPECT_EQ(DeleteDirContents(base_.c_str(), tree.c_str(), &failures, 1), 1);
  CloseHandle(locked);
  EXPECT_EQ(failures, 3);  // the two files and sub, which still holds one
  const Snapshot after = snapshot(tree);
  EXPECT_EQ(after.count(L"\\locked.txt"), 1u);
  EXPECT_EQ(after.count(L"\\sub\\y.txt"), 1u);
  EXPECT_EQ(after.count(L"\\x.txt"), 0u);
  EXPECT_EQ(after.count(L"\\sub\\deep"), 0u);
}

TEST_F(DirCleanup, PathsOutsideTheBaseAreRefused) {
  const std::wstring tree = base_ + L"\\tree";
  make_tree(tree);
  const Snapshot tree_before = snapshot(tree);
  const struct {
    std::wstring base;
    std::wstring dir;
    std::wstring stays_in;  // the current directory afterwards lies in it
  } cases[] = {
      {base_, canary_, canary_},                      // a sibling that starts like the base
      {base_, base_ + L"\\..\\basecanary", canary_},  // reached with ".."
      {canary_ + L"\\..\\base", tree, tree},          // a base with ".." never matches
      {L"\\\\?\\" + base_, tree, tree},               // nor does one in the \\?\ form
  };
  size_t shown = 0;
  for (const auto& c : cases) {
    int failures = 0;
    EXPECT_EQ(DeleteDirContents(c.base.c_str(), c.dir.c_str(), &failures, 1), 0) << narrow(c.dir);
    EXPECT_EQ(failures, 0);
    // The refusal came at the first removal, wherever the walk had got to.
    EXPECT_TRUE(inside(current_directory(), c.stays_in)) << narrow(current_directory());
    ASSERT_TRUE(boxes_->wait_for(++shown));
    EXPECT_EQ(box_texts().back(), kNotUnderBase);
  }
  EXPECT_EQ(snapshot(tree), tree_before);
}

TEST_F(DirCleanup, ARefusalDeepInTheTreeStopsTheWholeWalk) {
  // "m" holds a directory whose path is too long to delete in; "z" is an
  // ordinary tree. Whichever the walk meets first, after the refusal it
  // removes nothing more: "z" is either gone whole or untouched, and no
  // removal is tried (and counted as failed) from the deep directory.
  const std::wstring tree = base_ + L"\\tree";
  std::wstring deep = tree + L"\\m";
  make_dir(tree);
  make_dir(deep);
  while (deep.size() < 262) {
    deep += L"\\" + std::wstring(20, L'd');
    make_dir(deep);
  }
  make_file(deep + L"\\f.txt");
  make_tree(tree + L"\\z");
  const Snapshot z_before = snapshot(tree + L"\\z");
  int failures = 0;
  EXPECT_EQ(DeleteDirContents(base_.c_str(), tree.c_str(), &failures, 1), 0);
  EXPECT_EQ(failures, 0);
  ASSERT_TRUE(boxes_->wait_for(1));
  EXPECT_EQ(box_texts(), std::vector<std::wstring>{kTooLong});
  const Snapshot z_after = snapshot(tree + L"\\z");
  EXPECT_TRUE(z_after == z_before || z_after == (Snapshot{{L"", "<missing>"}}));
  EXPECT_TRUE(exists(extended(deep + L"\\f.txt")));
  // The current directory is where the refusal happened, down in "m".
  EXPECT_TRUE(inside(current_directory(), tree + L"\\m\\")) << narrow(current_directory());
}

TEST_F(DirCleanup, PathLengthsAroundTheLimit) {
  // dir + "\" + name: 259 characters are allowed, 260 are not; a current
  // directory of 259 characters is refused whatever the name.
  const auto directory_of_length = [&](size_t length, const wchar_t* tag) {
    std::wstring path = base_ + L"\\" + tag;
    path += std::wstring(length - path.size(), L'p');
    make_dir(path);
    return path;
  };
  const struct {
    size_t directory;
    size_t name;
    bool removed;
  } cases[] = {{250, 8, true}, {250, 9, false}, {257, 1, true}, {258, 1, false}, {259, 1, false}};
  size_t shown = 0;
  for (const auto& c : cases) {
    const std::wstring dir = directory_of_length(c.directory, std::to_wstring(c.directory).c_str());
    const std::wstring file = dir + L"\\" + std::wstring(c.name, L'n');
    make_file(file);
    EXPECT_EQ(DeleteDirContents(base_.c_str(), dir.c_str(), nullptr, 1), c.removed ? 1 : 0)
        << c.directory << "+" << c.name;
    EXPECT_EQ(exists(extended(file)), !c.removed) << c.directory << "+" << c.name;
    if (!c.removed) {
      ASSERT_TRUE(boxes_->wait_for(++shown));
      EXPECT_EQ(box_texts().back(), kTooLong);
    }
  }
  EXPECT_EQ(boxes_->boxes().size(), shown);
}

TEST_F(DirCleanup, NetworkStylePaths) {
  const std::wstring tree = base_ + L"\\tree";
  make_tree(tree);
  // A server that does not answer cannot be entered: nothing happens.
  int failures = 0;
  EXPECT_EQ(DeleteDirContents(L"\\\\nosuchserver\\share", L"\\\\nosuchserver\\share\\x", &failures, 1), 0);
  EXPECT_EQ(DeleteDirContents(base_.c_str(), L"\\\\nosuchserver\\share\\base\\tree", &failures, 1), 0);
  EXPECT_EQ(failures, 0);
  EXPECT_TRUE(box_texts().empty());
  EXPECT_EQ(snapshot(tree).count(L"\\x.txt"), 1u);
  // The \\?\ form of a local directory is entered as that directory.
  EXPECT_EQ(DeleteDirContents(base_.c_str(), (L"\\\\?\\" + tree).c_str(), &failures, 1), 1);
  EXPECT_EQ(snapshot(tree).size(), 1u);
}

TEST_F(DirCleanup, NullArgumentsDoNothing) {
  const std::wstring tree = base_ + L"\\tree";
  make_tree(tree);
  const Snapshot before = snapshot(tree);
  const std::wstring here = current_directory();
  EXPECT_EQ(DeleteDirContents(nullptr, tree.c_str(), nullptr, 1), 0);
  EXPECT_EQ(DeleteDirContents(L"", tree.c_str(), nullptr, 1), 0);  // an empty base would match everything
  EXPECT_EQ(DeleteDirContents(base_.c_str(), nullptr, nullptr, 1), 0);
  EXPECT_EQ(DeleteDirContents(nullptr, nullptr, nullptr, 0), 0);
  EXPECT_EQ(snapshot(tree), before);
  EXPECT_EQ(current_directory(), here);
}

// Junctions and symbolic links made with the platform's own calls. Wine 8
// makes neither (FSCTL_SET_REPARSE_POINT is not supported there, and
// CreateSymbolicLinkW reports success but makes nothing): there this test
// shows that the walk is unchanged, and the host links below carry the case.
bool make_junction(const std::wstring& link, const std::wstring& target) {
  if (!CreateDirectoryW(link.c_str(), nullptr)) return false;
  HANDLE handle = CreateFileW(link.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return false;
  const std::wstring substitute = L"\\??\\" + target;
  std::vector<BYTE> buffer(16 + (substitute.size() + target.size() + 2) * sizeof(wchar_t));
  auto* words = reinterpret_cast<WORD*>(buffer.data());
  *reinterpret_cast<DWORD*>(buffer.data()) = IO_REPARSE_TAG_MOUNT_POINT;
  words[2] = static_cast<WORD>(buffer.size() - 8);                               // data length
  words[4] = 0;                                                                   // substitute offset
  words[5] = static_cast<WORD>(substitute.size() * sizeof(wchar_t));             // substitute length
  words[6] = static_cast<WORD>((substitute.size() + 1) * sizeof(wchar_t));       // print offset
  words[7] = static_cast<WORD>(target.size() * sizeof(wchar_t));                 // print length
  auto* names = reinterpret_cast<wchar_t*>(buffer.data() + 16);
  substitute.copy(names, substitute.size());
  target.copy(names + substitute.size() + 1, target.size());
  DWORD returned = 0;
  const BOOL made = DeviceIoControl(handle, FSCTL_SET_REPARSE_POINT, buffer.data(), static_cast<DWORD>(buffer.size()),
                                    nullptr, 0, &returned, nullptr);
  CloseHandle(handle);
  if (!made) RemoveDirectoryW(link.c_str());
  return made != FALSE;
}

bool is_link(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT);
}

TEST_F(DirCleanup, PlatformLinksThatLeadOutsideAreNotFollowed) {
  const std::wstring tree = base_ + L"\\tree";
  make_tree(tree);
  const bool junction = make_junction(tree + L"\\junction", canary_ + L"\\full");
  CreateSymbolicLinkW((tree + L"\\symlink-dir").c_str(), (canary_ + L"\\full").c_str(), SYMBOLIC_LINK_FLAG_DIRECTORY);
  CreateSymbolicLinkW((tree + L"\\symlink-file").c_str(), (canary_ + L"\\file.txt").c_str(), 0);
  CreateSymbolicLinkW((tree + L"\\symlink-empty").c_str(), (canary_ + L"\\empty").c_str(),
                      SYMBOLIC_LINK_FLAG_DIRECTORY);
  int made = junction ? 1 : 0;
  for (const wchar_t* name : {L"\\symlink-dir", L"\\symlink-file", L"\\symlink-empty"}) made += is_link(tree + name);
  if (made == 0) std::printf("[   NOTE   ] this platform makes no junctions or symbolic links here\n");
  int failures = 0;
  EXPECT_EQ(DeleteDirContents(base_.c_str(), tree.c_str(), &failures, 1), 1);
  // Links are removed on their own where the platform can, else left.
  EXPECT_LE(failures, made);
  EXPECT_EQ(snapshot(tree).count(L"\\x.txt"), 0u);
  EXPECT_TRUE(box_texts().empty());
}

// Host symbolic links in the prefix's drive folder, made by the fixture
// script: the platform shows them as directories and files, and deleting
// through them would delete what they lead to.
class HostLinks : public DirCleanup {
 protected:
  void SetUp() override {
    DirCleanup::SetUp();
    links_ = kUnixLinks;
    remove_tree(links_ + L"\\canary");
    make_canary(links_ + L"\\canary");
    link_canary_before_ = snapshot(links_ + L"\\canary");
    ASSERT_TRUE(exists(links_ + L"\\base\\tree\\to-canary-dir"))
        << "run through ctest: the fixture storage.unix_links makes the links";
    make_file(links_ + L"\\base\\tree\\x.txt");
    make_dir(links_ + L"\\base\\tree\\sub");
    make_file(links_ + L"\\base\\tree\\sub\\y.txt");
  }
  void TearDown() override {
    EXPECT_EQ(snapshot(links_ + L"\\canary"), link_canary_before_) << "a canary behind a host link changed";
    SetCurrentDirectoryW(saved_directory_.c_str());
    DirCleanup::TearDown();
  }

  std::wstring links_;
  Snapshot link_canary_before_;
};

TEST_F(HostLinks, LinksInsideTheTreeAreNeitherEnteredNorDeletedThrough) {
  const std::wstring base = links_ + L"\\base";
  const std::wstring tree = base + L"\\tree";
  for (int files : {0, 1}) {
    int failures = 0;
    EXPECT_EQ(DeleteDirContents(base.c_str(), tree.c_str(), &failures, files), 1) << files;
    // The link to a directory is left (the platform cannot remove it alone);
    // so is the link to a file when files go.
    // Without files: the two directory links, and sub (it holds y.txt).
    // With files: the three links.
    EXPECT_EQ(failures, 3) << files;
    for (const wchar_t* link : {L"\\to-canary-dir", L"\\to-canary-empty", L"\\to-canary-file"})
      EXPECT_TRUE(exists(tree + link)) << narrow(link);
  }
  EXPECT_FALSE(exists(tree + L"\\x.txt"));
  EXPECT_FALSE(exists(tree + L"\\sub"));
  EXPECT_TRUE(box_texts().empty());
}

TEST_F(HostLinks, ADirectoryThatIsALinkOutsideTheBaseIsRefused) {
  const std::wstring base = links_ + L"\\base";
  // The path says base\top-link; the directory is the canary. Both with the
  // base as a full path and as a fragment of the path.
  for (const std::wstring& given : {base, std::wstring(L"base")}) {
    int failures = 0;
    EXPECT_EQ(DeleteDirContents(given.c_str(), (base + L"\\top-link").c_str(), &failures, 1), 0) << narrow(given);
    EXPECT_EQ(failures, 0);
  }
  ASSERT_TRUE(boxes_->wait_for(2));
  EXPECT_EQ(box_texts(), (std::vector<std::wstring>{kNotUnderBase, kNotUnderBase}));
}

// Child mode: one refused and one finished clean-up with tracing on.
[[maybe_unused]] const bool kRanAsChild = [] {
  const std::wstring root = child_variable(kTraceChild);
  if (root.empty()) return false;
  MessageBoxWatcher boxes;
  const std::wstring base = root + L"\\base";
  const int refused = DeleteDirContents(base.c_str(), (root + L"\\basecanary").c_str(), nullptr, 1);
  const int finished = DeleteDirContents(base.c_str(), (base + L"\\tree").c_str(), nullptr, 0);
  const bool shown = boxes.wait_for(1);
  ExitProcess(refused == 0 && finished == 1 && shown ? 0 : 2);
  return true;
}();

TEST_F(DirCleanup, RefusalsAndRemovalsAreTraced) {
  TraceLogFolder trace(0x10002);
  const std::wstring tree = base_ + L"\\tree";
  make_dir(tree);
  make_dir(tree + L"\\gone");
  make_dir(tree + L"\\full");
  make_file(tree + L"\\full\\kept.txt");
  ASSERT_EQ(run_child_process(kTraceChild, root_->path()), 0);
  const std::string text = trace.read_all();
  const std::string upper_tree = upper(tree);
  // The first entry the walk meets in the canary is refused.
  EXPECT_NE(text.find("MVSUP2U.DLL: Deletion path does not exist under base dir.\n"
                      "Path does not exist under base dir: " + upper(canary_) + "\\"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("Removing subdir: " + upper_tree + "\\GONE\n Removed\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Removing subdir: " + upper_tree + "\\FULL\n Failed due to error 145\n"), std::string::npos)
      << text;
}

TEST(CleanupMessages, EnglishAndGermanTexts) {
  const struct {
    UINT id;
    const wchar_t* english;
    const wchar_t* german;
  } messages[] = {
      {4928, L"Failed to get current directory.", L"Das aktuelle Verzeichnis konnte nicht ermittelt werden."},
      {4929, L"Deletion path contains double slash.", L"Der L\u00f6schpfad enth\u00e4lt einen doppelten Schr\u00e4gstrich."},
      {4930, L"Deletion path is too short to be valid.", L"Der L\u00f6schpfad ist zu kurz, um g\u00fcltig zu sein."},
      {4931, L"Deletion path is too long.", L"Der L\u00f6schpfad ist zu lang."},
      {4932, L"Deletion path does not exist under base dir.",
       L"Der L\u00f6schpfad liegt nicht unter dem Basisverzeichnis."},
  };
  HMODULE library = GetModuleHandleW(L"MvSup2u.dll");
  HMODULE satellite = LoadLibraryExW((exe_directory() + L"\\0407\\SDKSatellite.dll").c_str(), nullptr,
                                     LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(library, nullptr);
  ASSERT_NE(satellite, nullptr);
  for (const auto& m : messages) {
    wchar_t text[256] = {};
    LoadStringW(library, m.id, text, 256);
    EXPECT_STREQ(text, m.english);
    LoadStringW(satellite, m.id, text, 256);
    EXPECT_STREQ(text, m.german);
  }
  FreeLibrary(satellite);
}

}  // namespace
}  // namespace mvsup::test
