// The icon choices and the icons handed out: index rules on real committed
// item infos, icons compared pixel for pixel with the library's resources
// and with what the system extracts itself, file types registered in the
// test prefix with a DefaultIcon and with the test icon handler.
#include <windows.h>
#include <shellapi.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "common/paths.h"
#include "common/registry_sandbox.h"
#include "shell_fixture_client.h"

namespace mvsup::test {
namespace {

constexpr UINT kFirstIcon = 5001;
constexpr UINT kLastIcon = 5110;

HMODULE library() { return GetModuleHandleW(L"MvSup2u.dll"); }

// What an icon looks like: drawn at edge x edge on white, pixel by pixel.
std::vector<uint32_t> look_of(HICON icon, int edge) {
  if (icon == nullptr) return {};
  HDC dc = CreateCompatibleDC(nullptr);
  BITMAPINFO info = {};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), edge, -edge, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  HGDIOBJ previous = SelectObject(dc, bitmap);
  auto* pixels = static_cast<uint32_t*>(bits);
  std::fill(pixels, pixels + edge * edge, 0xFFFFFFFFu);
  DrawIconEx(dc, 0, 0, icon, edge, edge, 0, nullptr, DI_NORMAL);
  GdiFlush();
  std::vector<uint32_t> look(pixels, pixels + edge * edge);
  for (uint32_t& p : look) p &= 0xFFFFFF;
  SelectObject(dc, previous);
  DeleteObject(bitmap);
  DeleteDC(dc);
  return look;
}

int large_edge() { return GetSystemMetrics(SM_CXICON); }
int small_edge() { return GetSystemMetrics(SM_CXSMICON); }

// The look of one of the library's icon resources.
std::vector<uint32_t> resource_look(UINT id, int edge) {
  HICON icon = static_cast<HICON>(LoadImageW(library(), MAKEINTRESOURCEW(id), IMAGE_ICON, edge, edge, 0));
  std::vector<uint32_t> look = look_of(icon, edge);
  if (icon) DestroyIcon(icon);
  return look;
}

// The looks of the icons a file's ExtractIconExW gives at an index.
struct Pair {
  std::vector<uint32_t> large, small;
};
Pair extracted_look(const std::wstring& file, int index) {
  HICON large = nullptr, small = nullptr;
  ExtractIconExW(file.c_str(), index, &large, &small, 1);
  Pair pair{look_of(large, large_edge()), look_of(small, small_edge())};
  if (large) DestroyIcon(large);
  if (small) DestroyIcon(small);
  return pair;
}

// Takes ownership of the icons handed out, and their looks.
struct Handed {
  HICON large = reinterpret_cast<HICON>(1);
  HICON small = reinterpret_cast<HICON>(1);
  ~Handed() {
    if (large && large != reinterpret_cast<HICON>(1)) DestroyIcon(large);
    if (small && small != reinterpret_cast<HICON>(1)) DestroyIcon(small);
  }
  Pair look() const { return {look_of(large, large_edge()), look_of(small, small_edge())}; }
};

bool same(const Pair& a, const Pair& b) { return !a.large.empty() && a.large == b.large && a.small == b.small; }
Pair resource_pair(UINT large, UINT small) { return {resource_look(large, large_edge()), resource_look(small, small_edge())}; }

// A committed item info built through the library's writers.
class Item {
 public:
  Item() = default;
  explicit Item(MVXITEMTYPE type) { EXPECT_EQ(MvxPutMvHandlePropValue(0x20, type, 42, L"item", &block_), S_OK); }
  ~Item() { FreeMvxInfo(block_); }
  Item(const Item&) = delete;
  Item& operator=(const Item&) = delete;
  Item& file(const wchar_t* name) { return string(0x80000200, name); }
  Item& mime(const wchar_t* type) { return string(0x80000004, type); }
  Item& string(DWORD id, const wchar_t* text) {
    EXPECT_EQ(MvxPutStringPropValue(id, text, &block_), S_OK);
    return *this;
  }
  Item& custom(const wchar_t* name, const wchar_t* text) {
    EXPECT_EQ(MvxPutCustomStringProp(name, text, 1, &block_), S_OK);
    return *this;
  }
  Item& size(LONG bytes) {
    EXPECT_EQ(MvxPutIntegerPropValue(0x80000040, bytes, &block_), S_OK);
    return *this;
  }
  const BYTE* get() const { return block_; }
  UINT index(BOOL selected = FALSE) const {
    UINT index = 0xDEAD;
    EXPECT_EQ(GetMvxItemIconIndex(block_, selected, &index), S_OK);
    return index;
  }

 private:
  BYTE* block_ = nullptr;
};

// The image-list key of an extension, worked out by hand: its UTF-16 bytes
// summed into four byte lanes, plus 34.
constexpr UINT kDocKey = 0x00C7009D + 34;  // ".doc": lane 0 '.'+'o', lane 2 'd'+'c'
constexpr UINT kHtmKey = 0x00D500A2 + 34;   // ".htm": lane 0 '.'+'t', lane 2 'h'+'m'
constexpr UINT kHtmlKey = 0x00D5000E + 34;  // ".html": lane 0 '.'+'t'+'l' wraps past 255

#pragma pack(push, 2)
struct GroupEntry {
  BYTE width, height, colours, reserved;
  WORD planes, bits;
  DWORD bytes;
  WORD id;
};
#pragma pack(pop)

TEST(IconResources, EveryIconHasBothSizesInBothDepths) {
  for (UINT id = kFirstIcon; id <= kLastIcon; ++id) {
    HRSRC group = FindResourceW(library(), MAKEINTRESOURCEW(id), RT_GROUP_ICON);
    ASSERT_NE(group, nullptr) << id;
    const auto* data = static_cast<const BYTE*>(LockResource(LoadResource(library(), group)));
    WORD count = 0;
    std::memcpy(&count, data + 4, 2);
    std::vector<std::pair<int, int>> images;
    for (WORD i = 0; i < count; ++i) {
      GroupEntry entry;
      std::memcpy(&entry, data + 6 + i * sizeof(entry), sizeof(entry));
      images.emplace_back(entry.width, entry.bits);
      HRSRC image = FindResourceW(library(), MAKEINTRESOURCEW(entry.id), RT_ICON);
      ASSERT_NE(image, nullptr);
      BITMAPINFOHEADER header;
      std::memcpy(&header, LockResource(LoadResource(library(), image)), sizeof(header));
      EXPECT_EQ(header.biWidth, entry.width) << id;
      EXPECT_EQ(header.biHeight, entry.height * 2) << id << ": colour and mask";
      EXPECT_EQ(header.biBitCount, entry.bits) << id;
      if (entry.bits == 32) {
        // Real alpha: transparent, opaque and partly covered edge pixels.
        const auto* pixels = static_cast<const BYTE*>(LockResource(LoadResource(library(), image))) + 40;
        bool clear = false, solid = false, edge = false;
        for (int p = 0; p < entry.width * entry.height; ++p) {
          const BYTE alpha = pixels[p * 4 + 3];
          clear |= alpha == 0;
          solid |= alpha == 255;
          edge |= alpha > 0 && alpha < 255;
        }
        EXPECT_TRUE(clear && solid && edge) << id << " at " << int(entry.width);
      }
    }
    std::sort(images.begin(), images.end());
    EXPECT_EQ(images, (std::vector<std::pair<int, int>>{{16, 8}, {16, 32}, {32, 8}, {32, 32}})) << id;
  }
}

TEST(ServerMapIcons, IndexRules) {
  struct Case {
    short level;
    DWORD flags;
    UINT index;
  };
  const Case cases[] = {
      {0, 0, 1},          {0, 0x800, 0},           {0, 0x2000, 2},      {0, 0x2800, 2},
      {0, 0x3000, 3},     {1, 0x1800, 3},          {0, 0x08000000, 5},  {1, 0x08003800, 5},
      {2, 0, 4},          {2, 0x08000000, 6},      {7, 0x3800, 4},      {-3, 0x800, 0},
  };
  for (const Case& c : cases) {
    UINT index = 99;
    EXPECT_EQ(GetServerMapIconIndex(c.level, c.flags, nullptr, &index), S_OK);
    EXPECT_EQ(index, c.index) << c.level << " " << std::hex << c.flags;
    const int anything = 0;
    EXPECT_EQ(GetServerMapIconIndex(c.level, c.flags, &anything, &index), S_OK);
    EXPECT_EQ(index, c.index + 7) << c.level << " " << std::hex << c.flags << " selected";
  }
  EXPECT_EQ(GetServerMapIconIndex(0, 0, nullptr, nullptr), E_POINTER);
}

TEST(ServerMapIcons, LoadedPairsAreTheTablesResources) {
  const UINT large_ids[] = {5011, 5035, 5039, 5036, 5037, 5055, 5056, 5010, 5038, 5040, 5041, 5042, 5055, 5056};
  const UINT small_ids[] = {5009, 5043, 5044, 5045, 5046, 5053, 5054, 5008, 5048, 5050, 5047, 5052, 5053, 5054};
  // Asking for a large icon selects: the pair of index + 7.
  for (DWORD flags : {0x0u, 0x800u, 0x2000u, 0x1000u, 0x08000000u}) {
    Handed icons;
    UINT index = 99;
    ASSERT_EQ(LoadServerMapIcon(0, flags, &icons.large, &icons.small, &index), S_OK);
    ASSERT_GE(index, 7u);
    ASSERT_LT(index, 14u);
    EXPECT_TRUE(same(icons.look(), resource_pair(large_ids[index], small_ids[index]))) << index;
  }
  for (short level : {0, 2}) {
    HICON small = nullptr;
    UINT index = 99;
    ASSERT_EQ(LoadServerMapIcon(level, 0x1000, nullptr, &small, &index), S_OK);
    EXPECT_EQ(index, level == 0 ? 3u : 4u);
    EXPECT_EQ(look_of(small, small_edge()), resource_look(small_ids[index], small_edge()));
    DestroyIcon(small);
  }
  EXPECT_EQ(LoadServerMapIcon(0, 0, nullptr, nullptr, nullptr), S_OK);
}

TEST(ItemIcons, IndexByItemType) {
  struct Case {
    MVXITEMTYPE type;
    UINT plain, selected;
  };
  const Case cases[] = {
      {1, 1, 35},   {2, 2, 36},   {5, 4, 38},   {6, 5, 39},   {7, 7, 41},   {8, 9, 43},
      {9, 6, 40},   {10, 8, 42},  {14, 10, 44}, {15, 11, 45}, {20, 31, 65}, {21, 32, 66},
      {22, 33, 67}, {30, 19, 53}, {0, 13, 47},  {12, 13, 47}, {16, 13, 47}, {19, 13, 47},
  };
  for (const Case& c : cases) {
    Item item(c.type);
    EXPECT_EQ(item.index(FALSE), c.plain) << "type " << c.type;
    EXPECT_EQ(item.index(TRUE), c.selected) << "type " << c.type;
  }
  UINT index = 99;
  EXPECT_EQ(GetMvxItemIconIndex(nullptr, FALSE, &index), S_OK);
  EXPECT_EQ(index, 13u) << "a null item is an empty one";
  EXPECT_EQ(GetMvxItemIconIndex(Item(1).get(), FALSE, nullptr), E_POINTER);
}

class ItemIconsWithSettings : public RegistrySandbox {};

TEST_F(ItemIconsWithSettings, CustomTypesUseTheirBaseType) {
  Item based(40);
  based.custom(L"MVClient BaseType", L"Collection");
  EXPECT_EQ(based.index(), 2u);
  EXPECT_EQ(based.index(TRUE), 36u);
  Item unbased(41);
  EXPECT_EQ(unbased.index(), 13u);
  Item empty_base(42);
  empty_base.custom(L"MVClient BaseType", L"");
  EXPECT_EQ(empty_base.index(), 13u);
}

TEST(ItemIcons, CollectionsOfMailItemsShowTheirItemsClass) {
  const std::pair<const wchar_t*, UINT> cases[] = {
      {L"IPF.Note", 23},         {L"IPF.Appointment", 25}, {L"IPF.Task", 26}, {L"IPF.StickyNote", 27},
      {L"IPF.Contact.Custom", 28}, {L"IPF.Journal", 29},     {L"IPF.Other", 2}, {L"ipf.note", 2},
  };
  for (const auto& [folder_class, expected] : cases) {
    Item folder(2);
    folder.custom(L"OutlookFolderClass", folder_class);
    EXPECT_EQ(folder.index(), expected) << std::wstring(folder_class).size();
    EXPECT_EQ(folder.index(TRUE), expected + 34);
  }
}

TEST(ItemIcons, DocumentsByFileType) {
  Item doc(3);
  doc.file(L"C:\\Reports\\Q3.doc");
  EXPECT_EQ(doc.index(), kDocKey);
  EXPECT_EQ(doc.index(TRUE), 37u);
  UINT index = 0;
  EXPECT_EQ(GetMvxFileIconIndex(doc.get(), &index), S_OK);
  EXPECT_EQ(index, kDocKey);
  for (MVXITEMTYPE type : {4, 18}) EXPECT_EQ(Item(type).file(L"a.doc").index(), kDocKey);

  // No extension at all, or a name ending in '.': the document icon.
  EXPECT_EQ(Item(3).index(), 3u);
  EXPECT_EQ(Item(3).file(L"README").index(), 3u);
  EXPECT_EQ(Item(3).file(L"archive.").index(), 3u);

  // Without a file name the content type gives the extension.
  Item typed(3);
  typed.mime(L"application/msword");
  EXPECT_EQ(typed.index(), kDocKey);

  // Mail saved as .htm shows its message class.
  EXPECT_EQ(Item(3).file(L"mail.htm").custom(L"OutlookMessageClass", L"IPM.Note.SMIME").index(), 23u);
  EXPECT_EQ(Item(3).file(L"mail.HTM").custom(L"OutlookMessageClass", L"IPM.Activity").index(), 29u);
  EXPECT_EQ(Item(3).file(L"mail.htm").custom(L"OutlookMessageClass", L"IPM.Schedule").index(), kHtmKey);
  EXPECT_EQ(Item(3).file(L"mail.htm").index(), kHtmKey);
  EXPECT_EQ(Item(3).file(L"mail.html").custom(L"OutlookMessageClass", L"IPM.Note").index(), kHtmlKey)
      << "only .htm looks at the class";

  // A rendition without content has its own icon; with content, its type's.
  EXPECT_EQ(Item(11).file(L"a.doc").index(), 12u);
  EXPECT_EQ(Item(11).file(L"a.doc").size(0).index(TRUE), 46u);
  EXPECT_EQ(Item(11).file(L"a.doc").size(500).index(), kDocKey);
  EXPECT_EQ(Item(11).file(L"a.doc").size(500).index(TRUE), 37u);
  EXPECT_EQ(GetMvxFileIconIndex(doc.get(), nullptr), E_POINTER);
}

TEST(ItemIcons, LoadedPairsAreTheTablesResources) {
  const struct {
    MVXITEMTYPE type;
    BOOL selected;
    UINT large, small;
  } cases[] = {
      {1, FALSE, 5011, 5009}, {1, TRUE, 5010, 5008}, {2, FALSE, 5004, 5005},
      {2, TRUE, 5006, 5007},  {3, TRUE, 5014, 5012}, {0, FALSE, 5071, 5072},
  };
  for (const auto& c : cases) {
    Handed icons;
    UINT index = 99;
    ASSERT_EQ(LoadMvxItemIcon(Item(c.type).get(), c.selected, &icons.large, &icons.small, &index), S_OK);
    EXPECT_TRUE(same(icons.look(), resource_pair(c.large, c.small))) << c.type << " " << c.selected;
  }
  // The spec's fixed pairs: mail note and activity.
  Handed note;
  ASSERT_EQ(LoadMvxItemIcon(Item(3).file(L"m.htm").custom(L"OutlookMessageClass", L"IPM.Note").get(), FALSE,
                            &note.large, &note.small, nullptr),
            S_OK);
  EXPECT_TRUE(same(note.look(), resource_pair(5076, 5077)));
}

// File types registered in the test prefix for one test.
class FileTypes : public RegistrySandbox {
 protected:
  void SetUp() override {
    RegistrySandbox::SetUp();
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    saved_mode_ = static_cast<DWORD>(GetMvSupMode(0xFFFFFFFF));
    SetMvSupMode(0, MVSUP_MODE_ICONFROMSHFILEINFO);
  }
  void TearDown() override {
    SetMvSupMode(saved_mode_ & MVSUP_MODE_ICONFROMSHFILEINFO, MVSUP_MODE_ICONFROMSHFILEINFO);
    types_.clear();
    handler_.reset();
    CoUninitialize();
    RegistrySandbox::TearDown();
  }
  // extension -> file type -> DefaultIcon.
  const RegistryTree& register_type(const wchar_t* extension, const wchar_t* type, const std::wstring& icon) {
    types_.push_back(std::make_unique<RegistryTree>(HKEY_LOCAL_MACHINE, std::wstring(L"Software\\Classes\\") + extension));
    types_.back()->set(L"", nullptr, type);
    types_.push_back(std::make_unique<RegistryTree>(HKEY_LOCAL_MACHINE, std::wstring(L"Software\\Classes\\") + type));
    types_.back()->set(L"DefaultIcon", nullptr, icon);
    return *types_.back();
  }
  // A per-file type whose icon handler is the fixture's.
  void register_handler_type() {
    register_type(L".mvtest", L"MvTest.PerFile", L"%1")
        .set(L"shellex\\IconHandler", nullptr, kIconHandlerFixtureClassText);
    handler_ = std::make_unique<ClassRegistration>(kIconHandlerFixtureClass);
  }

  ShellFixtureModule fixture_;
  std::vector<std::unique_ptr<RegistryTree>> types_;
  std::unique_ptr<ClassRegistration> handler_;
  DWORD saved_mode_ = 0;
};

TEST_F(FileTypes, UnregisteredExtensionHasNoIcons) {
  Handed icons;
  EXPECT_FALSE(ExtractIconFor(L".mvnothing", &icons.large, &icons.small));
  EXPECT_EQ(icons.large, nullptr);
  EXPECT_EQ(icons.small, nullptr);
  EXPECT_FALSE(ExtractIconFor(L"", &icons.large, &icons.small));
  EXPECT_FALSE(ExtractIconFor(nullptr, nullptr, nullptr));
  Handed file_icons;
  EXPECT_EQ(LoadMvxFileIcon(Item(3).file(L"x.mvnothing").get(), &file_icons.large, &file_icons.small), 1);
  EXPECT_EQ(file_icons.large, nullptr);
  // The item's own icon falls back to the document pair.
  Handed item_icons;
  EXPECT_EQ(LoadMvxItemIcon(Item(3).file(L"x.mvnothing").get(), FALSE, &item_icons.large, &item_icons.small, nullptr),
            S_OK);
  EXPECT_TRUE(same(item_icons.look(), resource_pair(5015, 5013)));
}

TEST_F(FileTypes, DefaultIconNamesAFileAndAnIndex) {
  const std::wstring fixture = fixture_path();
  register_type(L".mvicon", L"MvTest.Icon", fixture + L",  1");
  Handed icons;
  ASSERT_TRUE(ExtractIconFor(L".mvicon", &icons.large, &icons.small));
  EXPECT_TRUE(same(icons.look(), extracted_look(fixture, 1)));
  EXPECT_FALSE(same(icons.look(), extracted_look(fixture, 0))) << "the index after the comma counts";

  // Without an index: the first icon; the same icons through an item.
  register_type(L".mvfirst", L"MvTest.First", fixture);
  Handed first;
  EXPECT_EQ(LoadMvxFileIcon(Item(3).file(L"report.mvfirst").get(), &first.large, &first.small), 0);
  EXPECT_TRUE(same(first.look(), extracted_look(fixture, 0)));
  Handed item;
  ASSERT_EQ(LoadMvxItemIcon(Item(3).file(L"report.mvfirst").get(), FALSE, &item.large, &item.small, nullptr), S_OK);
  EXPECT_TRUE(same(item.look(), extracted_look(fixture, 0)));
}

TEST_F(FileTypes, DefaultIconWithoutIconsGivesTheGenericPair) {
  register_type(L".mvbare", L"MvTest.Bare", L"C:\\nowhere\\none.dll,0");
  Handed icons;
  ASSERT_TRUE(ExtractIconFor(L".mvbare", &icons.large, &icons.small));
  EXPECT_TRUE(same(icons.look(), resource_pair(5024, 5025)));
}

TEST_F(FileTypes, IconHandlerExtractsForADummyFile) {
  register_handler_type();
  Handed icons;
  ASSERT_TRUE(ExtractIconFor(L".mvtest", &icons.large, &icons.small));
  const FixtureIconCall& call = fixture_.icon_call();
  EXPECT_EQ(call.loads, 1);
  EXPECT_EQ(std::wstring(call.loaded_name), L"dummy.mvtest");
  EXPECT_EQ(call.location_flags, static_cast<UINT>(GIL_FORSHELL));
  EXPECT_EQ(call.extract_size, static_cast<UINT>(MAKELONG(large_edge(), small_edge())));
  // The handler's own icons: the fixture's resources 1 and 2.
  HICON large = static_cast<HICON>(LoadImageW(fixture_.module(), MAKEINTRESOURCEW(1), IMAGE_ICON, large_edge(),
                                              large_edge(), 0));
  HICON small = static_cast<HICON>(LoadImageW(fixture_.module(), MAKEINTRESOURCEW(2), IMAGE_ICON, small_edge(),
                                              small_edge(), 0));
  EXPECT_EQ(icons.look().large, look_of(large, large_edge()));
  EXPECT_EQ(icons.look().small, look_of(small, small_edge()));
  DestroyIcon(large);
  DestroyIcon(small);
  EXPECT_EQ(fixture_.live_objects(), 0) << "the handler was not released";
}

TEST_F(FileTypes, IconHandlerThatNamesALocation) {
  register_handler_type();
  fixture_.set_icon_mode(kIconsFromLocation);
  Handed icons;
  ASSERT_TRUE(ExtractIconFor(L".mvtest", &icons.large, &icons.small));
  EXPECT_TRUE(same(icons.look(), extracted_look(fixture_path(), 1)));
}

TEST_F(FileTypes, IconHandlerWithoutIconsFallsBackToItsServers) {
  register_handler_type();
  fixture_.set_icon_mode(kNoIcons);
  // The in-process server's first icon.
  {
    Handed icons;
    ASSERT_TRUE(ExtractIconFor(L".mvtest", &icons.large, &icons.small));
    EXPECT_TRUE(same(icons.look(), extracted_look(fixture_path(), 0)));
  }
  // A local server is asked first, for its second icon; its switches and
  // trailing blanks are cut.
  handler_->set(L"LocalServer32", nullptr, fixture_path() + L" /Automation  ");
  Handed icons;
  ASSERT_TRUE(ExtractIconFor(L".mvtest", &icons.large, &icons.small));
  EXPECT_TRUE(same(icons.look(), extracted_look(fixture_path(), 1)));
}

TEST_F(FileTypes, ShellIconsComeFromADummyFileInTheDataDirectory) {
  TempDirectory data;
  set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Data", data.path());
  register_type(L".mvshell", L"MvTest.Shell", L"C:\\nowhere\\none.dll,0");
  const std::wstring dummy = data.path() + L"\\dummy.mvshell";

  // Off: nothing is made.
  Handed off;
  ASSERT_TRUE(ExtractIconFor(L".mvshell", &off.large, &off.small));
  EXPECT_EQ(GetFileAttributesW(dummy.c_str()), INVALID_FILE_ATTRIBUTES);

  SetMvSupMode(MVSUP_MODE_ICONFROMSHFILEINFO, MVSUP_MODE_ICONFROMSHFILEINFO);
  Handed on;
  ASSERT_TRUE(ExtractIconFor(L".mvshell", &on.large, &on.small));
  const DWORD attributes = GetFileAttributesW(dummy.c_str());
  ASSERT_NE(attributes, INVALID_FILE_ATTRIBUTES) << "no dummy file";
  // Marked temporary where the file system keeps that mark (a file made so
  // by the test shows whether it does).
  const std::wstring control = data.path() + L"\\control.tmp";
  CloseHandle(CreateFileW(control.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY, nullptr));
  if (GetFileAttributesW(control.c_str()) & FILE_ATTRIBUTE_TEMPORARY) {
    EXPECT_TRUE(attributes & FILE_ATTRIBUTE_TEMPORARY);
  }
  EXPECT_EQ(GetIsLoggedFile(dummy.c_str(), L"MVSUP.IconLoader"), S_OK);
  // The shell's icons for that file.
  SHFILEINFOW info = {};
  SHGetFileInfoW(dummy.c_str(), 0, &info, sizeof(info), SHGFI_ICON);
  EXPECT_EQ(on.look().large, look_of(info.hIcon, large_edge()));
  DestroyIcon(info.hIcon);
  ClearFileCreationLog();
}

}  // namespace
}  // namespace mvsup::test
