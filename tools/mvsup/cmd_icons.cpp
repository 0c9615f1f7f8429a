// mvsup icons: the library's icon resources, what uses them, and a contact
// sheet drawn from the library's own resources.
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "command.h"
#include "output.h"
#include "icon_window.h"
#include "png_writer.h"
#include "shell/icon_tables.h"

namespace mvsup::tool {
namespace {

namespace icons = shell::icons;

#pragma pack(push, 2)
struct GroupEntry {
  BYTE width;
  BYTE height;
  BYTE colour_count;
  BYTE reserved;
  WORD planes;
  WORD bit_count;
  DWORD bytes;
  WORD id;
};
#pragma pack(pop)

struct Image {
  int size;
  int bits;
  WORD id;
};

HMODULE library() { return GetModuleHandleW(L"MvSup2u.dll"); }

// The images of one icon resource, from its group directory.
std::vector<Image> images_of(UINT id) {
  std::vector<Image> images;
  HRSRC found = FindResourceW(library(), MAKEINTRESOURCEW(id), RT_GROUP_ICON);
  const DWORD size = found ? SizeofResource(library(), found) : 0;
  const auto* data = found ? static_cast<const BYTE*>(LockResource(LoadResource(library(), found))) : nullptr;
  if (data == nullptr || size < 6) return images;
  WORD count;
  std::memcpy(&count, data + 4, 2);
  for (WORD i = 0; i < count && 6 + (i + 1) * sizeof(GroupEntry) <= size; ++i) {
    GroupEntry entry;
    std::memcpy(&entry, data + 6 + i * sizeof(GroupEntry), sizeof(entry));
    images.push_back({entry.width == 0 ? 256 : entry.width, entry.bit_count, entry.id});
  }
  return images;
}

// One image of an icon resource as an icon; null when there is none.
HICON load_image(UINT id, int size, int bits) {
  for (const Image& image : images_of(id)) {
    if (image.size != size || image.bits != bits) continue;
    HRSRC found = FindResourceW(library(), MAKEINTRESOURCEW(image.id), RT_ICON);
    if (found == nullptr) return nullptr;
    auto* data = static_cast<BYTE*>(LockResource(LoadResource(library(), found)));
    return CreateIconFromResourceEx(data, SizeofResource(library(), found), TRUE, 0x00030000, size, size,
                                    LR_DEFAULTCOLOR);
  }
  return nullptr;
}

// Which table entries name an icon: "item 3 large, 37 large; map 0 small".
std::wstring uses_of(UINT id) {
  std::wstring item, map;
  const auto add = [](std::wstring& out, size_t index, const wchar_t* which) {
    out += (out.empty() ? L"" : L", ") + std::to_wstring(index) + L" " + which;
  };
  for (size_t i = 0; i < icons::kItemIconCount; ++i) {
    if (icons::kItemLargeIcons[i] == id) add(item, i, L"large");
    if (icons::kItemSmallIcons[i] == id) add(item, i, L"small");
  }
  for (size_t i = 0; i < icons::kServerMapIconCount; ++i) {
    if (icons::kServerMapLargeIcons[i] == id) add(map, i, L"large");
    if (icons::kServerMapSmallIcons[i] == id) add(map, i, L"small");
  }
  std::wstring out;
  if (!item.empty()) out += L"item " + item;
  if (!map.empty()) out += (out.empty() ? L"" : L"; ") + std::wstring(L"server map ") + map;
  return out;
}

void draw_text(HDC dc, int x, int y, const std::wstring& text) {
  TextOutW(dc, x, y, text.c_str(), static_cast<int>(text.size()));
}

constexpr int kColumns = 10;
constexpr int kCellWidth = 100;
constexpr int kCellHeight = 96;
constexpr int kTitleHeight = 30;
constexpr int kMargin = 8;

int write_sheet(const std::wstring& path) {
  const int count = static_cast<int>(icons::kLastIconId - icons::kFirstIconId + 1);
  const int rows = (count + kColumns - 1) / kColumns;
  PixelCanvas canvas(kColumns * kCellWidth + 2 * kMargin, kTitleHeight + rows * kCellHeight + kMargin, 0xFFFFFFFF);
  if (canvas.pixels() == nullptr) return fail(L"cannot make a picture of that size");
  const HDC dc = canvas.dc();
  SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(0x34, 0x40, 0x4F));
  draw_text(dc, kMargin, 8,
            L"MvSup2u.dll icons 5001-5110: 32x32 and 16x16, 32-bit with alpha (upper row) and 256 colours (lower row)");
  int missing = 0;
  for (int n = 0; n < count; ++n) {
    const UINT id = icons::kFirstIconId + static_cast<UINT>(n);
    const int x = kMargin + (n % kColumns) * kCellWidth;
    const int y = kTitleHeight + (n / kColumns) * kCellHeight;
    if (n % kColumns != 0) {
      for (int py = y; py < y + kCellHeight - 6; ++py) canvas.pixels()[py * canvas.width() + x - 4] = 0xFFE3E8EE;
    }
    draw_text(dc, x + 4, y, std::to_wstring(id));
    for (int bits : {32, 8}) {
      const int row = y + (bits == 32 ? 18 : 56);
      for (int size : {32, 16}) {
        HICON icon = load_image(id, size, bits);
        if (icon == nullptr) {
          ++missing;
          continue;
        }
        DrawIconEx(dc, x + (size == 32 ? 8 : 50), row + (32 - size) / 2, icon, size, size, 0, nullptr, DI_NORMAL);
        DestroyIcon(icon);
      }
    }
  }
  for (int i = 0; i < canvas.width() * canvas.height(); ++i) canvas.pixels()[i] |= 0xFF000000;
  const HRESULT hr = canvas.save_png(path);
  if (FAILED(hr)) return fail(L"cannot write " + path + L": " + hex32(static_cast<uint32_t>(hr)));
  if (missing != 0) return fail(std::to_wstring(missing) + L" images are missing from the library");
  write_out(L"Wrote " + path + L" (" + std::to_wstring(count) + L" icons)\n");
  return 0;
}

// A 256-colour bitmap file for the window's PutBitmap: a banner with the
// client's emblem, in a 6x6x6 colour cube.
std::wstring write_banner() {
  constexpr int kWidth = 300, kHeight = 56;
  PixelCanvas canvas(kWidth, kHeight, 0xFFFFFFFF);
  if (canvas.pixels() == nullptr) return {};
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x)
      canvas.pixels()[y * kWidth + x] = 0xFF000000u | (uint32_t(0x1D + x / 6) << 16) | (uint32_t(0x4F + x / 4) << 8) |
                                        uint32_t(0x8F + x / 5);
  if (HICON emblem = load_image(icons::kFirstIconId, 32, 32)) {
    DrawIconEx(canvas.dc(), 12, 12, emblem, 32, 32, 0, nullptr, DI_NORMAL);
    DestroyIcon(emblem);
  }
  LOGFONTW font = {};
  font.lfHeight = -22;
  font.lfWeight = FW_BOLD;
  wcscpy_s(font.lfFaceName, L"Tahoma");
  HFONT big = CreateFontIndirectW(&font);
  HGDIOBJ previous = SelectObject(canvas.dc(), big);
  SetBkMode(canvas.dc(), TRANSPARENT);
  SetTextColor(canvas.dc(), RGB(255, 255, 255));
  draw_text(canvas.dc(), 56, 14, L"Mervane Client");
  SelectObject(canvas.dc(), previous);
  DeleteObject(big);
  GdiFlush();

  constexpr int kColours = 216;
  constexpr DWORD kPixelOffset = 14 + 40 + kColours * 4;
  const int stride = (kWidth + 3) & ~3;
  std::vector<BYTE> file(kPixelOffset + static_cast<size_t>(stride) * kHeight, 0);
  BITMAPFILEHEADER header = {0x4D42, static_cast<DWORD>(file.size()), 0, 0, kPixelOffset};
  BITMAPINFOHEADER info = {40, kWidth, kHeight, 1, 8, BI_RGB, 0, 2835, 2835, kColours, 0};
  std::memcpy(file.data(), &header, 14);
  std::memcpy(file.data() + 14, &info, 40);
  for (int i = 0; i < kColours; ++i) {
    const BYTE entry[4] = {BYTE(i % 6 * 51), BYTE(i / 6 % 6 * 51), BYTE(i / 36 * 51), 0};
    std::memcpy(file.data() + 54 + i * 4, entry, 4);
  }
  BYTE* rows = file.data() + kPixelOffset;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) {
      const uint32_t p = canvas.pixels()[y * kWidth + x];
      const auto level = [](uint32_t v) { return (v + 25) / 51; };
      rows[(kHeight - 1 - y) * stride + x] =
          BYTE(level(p & 0xFF) + 6 * level((p >> 8) & 0xFF) + 36 * level((p >> 16) & 0xFF));
    }
  wchar_t temp[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, temp);
  const std::wstring path = std::wstring(temp) + L"mvsup-banner.bmp";
  HANDLE out = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  if (out == INVALID_HANDLE_VALUE) return {};
  DWORD written = 0;
  WriteFile(out, file.data(), static_cast<DWORD>(file.size()), &written, nullptr);
  CloseHandle(out);
  return path;
}

std::wstring images_text(const std::vector<Image>& images) {
  std::wstring out;
  for (const Image& image : images)
    out += (out.empty() ? L"" : L" ") + std::to_wstring(image.size) + L"x" + std::to_wstring(image.size) + L"x" +
           std::to_wstring(image.bits);
  return out;
}

int run_icons(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  const std::optional<std::wstring> sheet = args.take_option(L"--sheet");
  const bool window = args.take_flag(L"--window");
  std::optional<std::wstring> bitmap = args.take_option(L"--bitmap");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (!args.rest().empty()) return fail(L"unexpected argument " + args.rest().front());
  if (window) {
    if (!bitmap) bitmap = write_banner();
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const int result = show_icon_window(*bitmap);
    CoUninitialize();
    return result == 0 ? 0 : fail(L"cannot show the window");
  }
  if (sheet) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const int result = write_sheet(*sheet);
    CoUninitialize();
    return result;
  }
  JsonWriter json;
  json.begin_array();
  std::wstring text = L"id    images                           used by\n";
  for (UINT id = icons::kFirstIconId; id <= icons::kLastIconId; ++id) {
    const std::vector<Image> images = images_of(id);
    const std::wstring uses = uses_of(id);
    json.begin_object().number(L"id", id).begin_array(L"images");
    for (const Image& image : images)
      json.begin_object().number(L"size", image.size).number(L"bits", image.bits).end_object();
    json.end_array().string(L"used_by", uses).end_object();
    std::wstring line = std::to_wstring(id) + L"  " + images_text(images);
    line.resize(std::max<size_t>(line.size() + 1, 39), L' ');
    text += line + uses + L"\n";
  }
  json.end_array();
  write_out(as_json ? json.str() : text);
  return 0;
}

const CommandRegistration kIcons{{
    L"icons",
    L"the library's icons and the tables that use them; a contact sheet",
    L"Usage: mvsup icons [--json] [--sheet OUT.png] [--window [--bitmap FILE.bmp]]\n\n"
    L"Lists every icon resource of MvSup2u.dll (5001-5110) with its images\n"
    L"(size x size x bits) and the entries of the item and server-map icon\n"
    L"tables that name it.\n\n"
    L"  --sheet OUT.png  draw every icon, both sizes, in 32-bit and in 256\n"
    L"                   colours, with its id, into a PNG file\n"
    L"  --window         show a window with every item, mail and server-map icon\n"
    L"                   as LoadMvxItemIcon and LoadServerMapIcon give them, and a\n"
    L"                   256-colour bitmap drawn by PutBitmap (FILE.bmp, or a\n"
    L"                   banner written to %TEMP%); returns when it is closed\n"
    L"  --json           the list as a JSON array of {id, images, used_by}\n",
    run_icons,
}};

}  // namespace
}  // namespace mvsup::tool
