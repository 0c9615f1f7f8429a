// Pictures and screen measures: a bitmap file drawn on a device context,
// sizes between screen pixels and HIMETRIC units, and lengths scaled to the
// display's resolution.
#include <cstring>
#include <vector>

#include "MvSupShell.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "resources/resource_ids.h"
#include "types/item_types.h"

namespace mvsup::shell {

namespace {

constexpr int kHimetricPerInch = 2540;
constexpr int kReferenceDpi = 96;
constexpr DWORD kReadPiece = 65520;
constexpr DWORD kReadAtOnce = 65535;
constexpr int kPathLineOffset = 20;

// The screen's device context for the life of one call.
class ScreenDc {
 public:
  ScreenDc() noexcept : dc_(::GetDC(nullptr)) {}
  ~ScreenDc() {
    if (dc_) ::ReleaseDC(nullptr, dc_);
  }
  ScreenDc(const ScreenDc&) = delete;
  ScreenDc& operator=(const ScreenDc&) = delete;
  HDC get() const noexcept { return dc_; }

 private:
  HDC dc_;
};

enum class Direction { ToHimetric, ToPixels };

BOOL convert_size(SIZE* size, Direction direction) noexcept {
  ScreenDc screen;
  if (!screen.get()) return FALSE;
  const HDC dc = screen.get();
  const int mode = ::GetMapMode(dc);
  if (mode < MM_ISOTROPIC && mode != MM_TEXT) {
    // A fixed mapping mode already set on the screen DC: let GDI convert
    // through tenths of a millimetre.
    ::SetMapMode(dc, MM_LOMETRIC);
    POINT point = {size->cx, size->cy};
    if (direction == Direction::ToHimetric) {
      ::DPtoLP(dc, &point, 1);
      size->cx = point.x * 10;
      size->cy = (point.y < 0 ? -point.y : point.y) * 10;
    } else {
      point.x /= 10;
      point.y = -(point.y / 10);
      ::LPtoDP(dc, &point, 1);
      size->cx = point.x;
      size->cy = point.y;
    }
    ::SetMapMode(dc, mode);
    return TRUE;
  }
  const int dpi_x = ::GetDeviceCaps(dc, LOGPIXELSX);
  const int dpi_y = ::GetDeviceCaps(dc, LOGPIXELSY);
  if (dpi_x <= 0 || dpi_y <= 0) return FALSE;
  if (direction == Direction::ToHimetric) {
    size->cx = ::MulDiv(size->cx, kHimetricPerInch, dpi_x);
    size->cy = ::MulDiv(size->cy, kHimetricPerInch, dpi_y);
  } else {
    size->cx = ::MulDiv(size->cx, dpi_x, kHimetricPerInch);
    size->cy = ::MulDiv(size->cy, dpi_y, kHimetricPerInch);
  }
  return TRUE;
}

int display_dpi() noexcept {
  static const int dpi = [] {
    const HDC dc = ::CreateDCW(L"DISPLAY", nullptr, nullptr, nullptr);
    if (dc == nullptr) return kReferenceDpi;
    const int value = ::GetDeviceCaps(dc, LOGPIXELSY);
    ::DeleteDC(dc);
    return value > 0 ? value : kReferenceDpi;
  }();
  return dpi;
}

void draw_text(HDC dc, int x, int y, const wchar_t* text) noexcept {
  ::TextOutW(dc, x, y, text, static_cast<int>(wcslen(text)));
}

void draw_message(HDC dc, int x, int y, UINT id) noexcept {
  wchar_t message[256];
  if (types::load_string(id, message, static_cast<int>(std::size(message))) > 0) draw_text(dc, x, y, message);
}

// A locked view of a movable global block.
class LockedBlock {
 public:
  explicit LockedBlock(HGLOBAL block) noexcept : block_(block), data_(static_cast<BYTE*>(::GlobalLock(block))) {}
  ~LockedBlock() {
    if (data_) ::GlobalUnlock(block_);
  }
  LockedBlock(const LockedBlock&) = delete;
  LockedBlock& operator=(const LockedBlock&) = delete;
  BYTE* data() const noexcept { return data_; }

 private:
  HGLOBAL block_;
  BYTE* data_;
};

// The whole file, read in pieces as the picture code always has; null when
// a read fails or comes up short.
unique_hglobal read_file(HANDLE file, DWORD size) noexcept {
  unique_hglobal block(::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size + 1));
  if (!block) return block;
  LockedBlock view(block.get());
  if (!view.data()) return unique_hglobal();
  DWORD done = 0;
  while (done < size) {
    const DWORD left = size - done;
    const DWORD piece = left < kReadAtOnce ? left : kReadPiece;
    DWORD read = 0;
    if (!::ReadFile(file, view.data() + done, piece, &read, nullptr) || read != piece) return unique_hglobal();
    done += read;
  }
  return block;
}

// Where the parts of a device-independent bitmap file lie; nullopt-like
// (valid false) when the file is too short for what its headers say.
struct BitmapLayout {
  bool valid = false;
  const BITMAPINFO* info = nullptr;
  const RGBQUAD* colours = nullptr;
  DWORD colour_count = 0;
  const BYTE* pixels = nullptr;
  LONG width = 0;
  LONG height = 0;  // rows, whatever the direction
};

DWORD colours_for_depth(WORD bits) noexcept {
  switch (bits) {
    case 1: return 2;
    case 4: return 16;
    case 8: return 256;
    default: return 0;
  }
}

BitmapLayout layout_of(const BYTE* data, DWORD size) noexcept {
  BitmapLayout layout;
  BITMAPFILEHEADER file_header;
  BITMAPINFOHEADER header;
  if (size < sizeof(file_header) + sizeof(header)) return layout;
  std::memcpy(&file_header, data, sizeof(file_header));
  std::memcpy(&header, data + sizeof(file_header), sizeof(header));
  if (file_header.bfType != 0x4D42 || header.biSize < sizeof(header) || header.biPlanes != 1) return layout;
  if (header.biWidth <= 0 || header.biHeight == 0 || header.biHeight == LONG_MIN) return layout;
  if (header.biCompression != BI_RGB) return layout;
  const WORD bits = header.biBitCount;
  if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) return layout;
  const DWORD colours = header.biClrUsed != 0 ? header.biClrUsed : colours_for_depth(bits);
  if (colours > 256) return layout;
  const uint64_t table = uint64_t{sizeof(file_header)} + header.biSize;
  const uint64_t pixels = table + uint64_t{colours} * sizeof(RGBQUAD);
  const uint64_t rows = header.biHeight < 0 ? -uint64_t(header.biHeight) : uint64_t(header.biHeight);
  const uint64_t stride = ((uint64_t(header.biWidth) * bits + 31) / 32) * 4;
  if (rows > 0x7FFFFFFF || pixels + stride * rows > size) return layout;
  layout.valid = true;
  layout.info = reinterpret_cast<const BITMAPINFO*>(data + sizeof(file_header));
  layout.colours = reinterpret_cast<const RGBQUAD*>(data + table);
  layout.colour_count = colours;
  layout.pixels = data + pixels;
  layout.width = header.biWidth;
  layout.height = static_cast<LONG>(rows);
  return layout;
}

// The colour table as a logical palette (entries in palette order, flags
// from each entry's fourth byte).
unique_gdiobj make_palette(const RGBQUAD* colours, DWORD count) {
  std::vector<BYTE> storage(sizeof(LOGPALETTE) + count * sizeof(PALETTEENTRY));
  auto* palette = reinterpret_cast<LOGPALETTE*>(storage.data());
  palette->palVersion = 0x300;
  palette->palNumEntries = static_cast<WORD>(count);
  for (DWORD i = 0; i < count; ++i) {
    PALETTEENTRY& entry = palette->palPalEntry[i];
    entry.peRed = colours[i].rgbRed;
    entry.peGreen = colours[i].rgbGreen;
    entry.peBlue = colours[i].rgbBlue;
    entry.peFlags = colours[i].rgbReserved;
  }
  return unique_gdiobj(::CreatePalette(palette));
}

BOOL put_bitmap(HDC dc, const wchar_t* path, int x, int y) noexcept {
  unique_file file(::CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) {
    draw_message(dc, x, y, IDS_PICTURE_OPEN_FAILED);
    draw_text(dc, x, y + kPathLineOffset, path);
    return FALSE;
  }
  LARGE_INTEGER file_size = {};
  unique_hglobal block;
  if (::GetFileSizeEx(file.get(), &file_size) && file_size.QuadPart < 0x7FFFFFFF)
    block = read_file(file.get(), static_cast<DWORD>(file_size.QuadPart));
  file.reset();
  const LockedBlock view(block.get());
  const BitmapLayout layout =
      view.data() ? layout_of(view.data(), static_cast<DWORD>(file_size.QuadPart)) : BitmapLayout{};
  if (!layout.valid) {
    trace::line(L"PutBitmap: no picture data in '%ls'\n", path);
    draw_message(dc, x, y, IDS_PICTURE_READ_FAILED);
    return FALSE;
  }
  HPALETTE previous = nullptr;
  unique_gdiobj palette;
  if (layout.colour_count != 0) {
    try {
      palette = make_palette(layout.colours, layout.colour_count);
    } catch (...) {
    }
    if (palette) {
      previous = ::SelectPalette(dc, static_cast<HPALETTE>(palette.get()), FALSE);
      ::RealizePalette(dc);
    }
  }
  const int lines = ::SetDIBitsToDevice(dc, x, y, static_cast<DWORD>(layout.width), static_cast<DWORD>(layout.height),
                                        0, 0, 0, static_cast<UINT>(layout.height), layout.pixels, layout.info,
                                        DIB_RGB_COLORS);
  if (palette) {
    ::SelectPalette(dc, previous, FALSE);
    ::RealizePalette(dc);
  }
  return lines > 0 ? TRUE : FALSE;
}

}  // namespace
}  // namespace mvsup::shell

extern "C" {

int WINAPI AdjustByScreenRes(int value) { return ::MulDiv(value, mvsup::shell::display_dpi(), 96); }

BOOL WINAPI ConvertScreenDPtoHIMETRIC(SIZE* size) {
  if (size == nullptr) return FALSE;
  return mvsup::shell::convert_size(size, mvsup::shell::Direction::ToHimetric);
}

BOOL WINAPI ConvertScreenHIMETRICtoDP(SIZE* size) {
  if (size == nullptr) return FALSE;
  return mvsup::shell::convert_size(size, mvsup::shell::Direction::ToPixels);
}

BOOL WINAPI PutBitmap(HDC dc, LPCWSTR path, int x, int y) {
  mvsup::trace::CallScope scope("PutBitmap");
  if (dc == nullptr || path == nullptr) return scope.res(FALSE);
  return scope.res(mvsup::shell::put_bitmap(dc, path, x, y));
}

}  // extern "C"
