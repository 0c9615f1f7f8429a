// PutBitmap on a memory device context with bitmap files written out by
// hand, pixel by pixel; the HIMETRIC conversions and the display scaling.
#include <windows.h>
#include <process.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "common/paths.h"

namespace mvsup::test {
namespace {

constexpr int kCanvasWidth = 320;
constexpr int kCanvasHeight = 64;
constexpr uint32_t kWhite = 0xFFFFFF;

// A white 32-bit top-down DIB section selected into a memory DC.
class Canvas {
 public:
  Canvas() : dc_(CreateCompatibleDC(nullptr)) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = kCanvasWidth;
    info.bmiHeader.biHeight = -kCanvasHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    bits_ = static_cast<uint32_t*>(bits);
    previous_ = SelectObject(dc_, bitmap_);
    for (int i = 0; i < kCanvasWidth * kCanvasHeight; ++i) bits_[i] = kWhite;
  }
  ~Canvas() {
    SelectObject(dc_, previous_);
    DeleteObject(bitmap_);
    DeleteDC(dc_);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  HDC dc() const { return dc_; }
  uint32_t pixel(int x, int y) const {
    GdiFlush();
    return bits_[y * kCanvasWidth + x] & 0xFFFFFF;
  }
  std::vector<uint32_t> all() const {
    GdiFlush();
    return {bits_, bits_ + kCanvasWidth * kCanvasHeight};
  }

 private:
  HDC dc_;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ previous_ = nullptr;
  uint32_t* bits_ = nullptr;
};

uint32_t rgb(BYTE r, BYTE g, BYTE b) { return (uint32_t{r} << 16) | (uint32_t{g} << 8) | b; }

// A bitmap file as the format describes it: file header, info header, colour
// table (blue, green, red, 0), rows bottom-up padded to four bytes.
struct BitmapFile {
  int width = 7;
  int height = 5;
  int bits = 8;
  std::vector<uint32_t> colours;  // the colour table, as 0xRRGGBB
  DWORD colours_used = 0;         // biClrUsed
  // The value stored for a pixel: a colour-table index, or 0xRRGGBB at 24 bits.
  std::function<uint32_t(int x, int y)> value;

  std::vector<BYTE> bytes() const {
    const int stride = ((width * bits + 31) / 32) * 4;
    const DWORD table = static_cast<DWORD>(colours.size()) * 4;
    const DWORD offset = 14 + 40 + table;
    const DWORD size = offset + static_cast<DWORD>(stride * height);
    std::vector<BYTE> out(size, 0);
    size_t at = 0;
    const auto put = [&](uint32_t v, int bytes) {
      for (int i = 0; i < bytes; ++i) out[at++] = BYTE(v >> (8 * i));
    };
    const auto put16 = [&](uint16_t v) { put(v, 2); };
    const auto put32 = [&](uint32_t v) { put(v, 4); };
    put16(0x4D42);
    put32(size);
    put32(0);
    put32(offset);
    put32(40);
    put32(static_cast<uint32_t>(width));
    put32(static_cast<uint32_t>(height));
    put16(1);
    put16(static_cast<uint16_t>(bits));
    put32(BI_RGB);
    put32(static_cast<uint32_t>(stride * height));
    put32(2835);
    put32(2835);
    put32(colours_used);
    put32(0);
    for (uint32_t c : colours) put(c & 0xFFFFFF, 4);  // blue, green, red, 0
    for (int y = height - 1; y >= 0; --y, at += static_cast<size_t>(stride)) {
      BYTE* row = out.data() + at;
      for (int x = 0; x < width; ++x) {
        const uint32_t v = value(x, y);
        if (bits == 24) {
          row[x * 3] = BYTE(v);
          row[x * 3 + 1] = BYTE(v >> 8);
          row[x * 3 + 2] = BYTE(v >> 16);
        } else {
          const int per_byte = 8 / bits;
          const int shift = (per_byte - 1 - x % per_byte) * bits;
          row[x / per_byte] |= static_cast<BYTE>(v << shift);
        }
      }
    }
    return out;
  }
  uint32_t colour_at(int x, int y) const { return bits == 24 ? value(x, y) : colours[value(x, y)]; }
};

void write_file(const std::wstring& path, const std::vector<BYTE>& bytes) {
  std::ofstream(std::string(path.begin(), path.end()), std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

class Pictures : public ::testing::Test {
 protected:
  std::wstring file(const wchar_t* name) const { return folder_.path() + L"\\" + name; }

  // Draws the file at (x, y) and checks every pixel of the picture and the
  // frame of white around it.
  void expect_drawn(const BitmapFile& picture, int x, int y) {
    const std::wstring path = file(L"picture.bmp");
    write_file(path, picture.bytes());
    Canvas canvas;
    ASSERT_TRUE(PutBitmap(canvas.dc(), path.c_str(), x, y));
    for (int py = -1; py <= picture.height; ++py)
      for (int px = -1; px <= picture.width; ++px) {
        if (x + px < 0 || y + py < 0) continue;
        const bool inside = px >= 0 && py >= 0 && px < picture.width && py < picture.height;
        const uint32_t expected = inside ? picture.colour_at(px, py) : kWhite;
        ASSERT_EQ(canvas.pixel(x + px, y + py), expected)
            << picture.bits << " bits, pixel " << px << "," << py;
      }
  }

  TempDirectory folder_;
};

TEST_F(Pictures, EveryDepthIsDrawnPixelForPixel) {
  BitmapFile mono;
  mono.bits = 1;
  mono.colours = {rgb(0x10, 0x20, 0x30), rgb(0xF0, 0xE0, 0x00)};
  mono.width = 19;  // more than one byte a row, padded
  mono.value = [](int x, int y) { return uint32_t((x + y) % 3 == 0); };
  expect_drawn(mono, 3, 2);

  BitmapFile sixteen;
  sixteen.bits = 4;
  for (uint32_t i = 0; i < 16; ++i) sixteen.colours.push_back(rgb(BYTE(i * 16), BYTE(255 - i * 8), BYTE(i * 5)));
  sixteen.value = [](int x, int y) { return uint32_t((x * 3 + y * 5) % 16); };
  expect_drawn(sixteen, 40, 10);

  BitmapFile indexed;
  indexed.bits = 8;
  for (uint32_t i = 0; i < 256; ++i) indexed.colours.push_back(rgb(BYTE(i), BYTE(i * 7), BYTE(255 - i)));
  indexed.value = [](int x, int y) { return uint32_t((x * 37 + y * 101) % 256); };
  expect_drawn(indexed, 80, 0);

  BitmapFile direct;
  direct.bits = 24;
  direct.width = 6;
  direct.value = [](int x, int y) { return rgb(BYTE(x * 40), BYTE(y * 50), BYTE(200 - x * 10)); };
  expect_drawn(direct, 120, 30);
}

TEST_F(Pictures, ColourTableSizeComesFromTheUsedCount) {
  // Three colours in use at 8 bits: the pixels follow right after them.
  BitmapFile few;
  few.bits = 8;
  few.colours = {rgb(255, 0, 0), rgb(0, 128, 0), rgb(0, 0, 255)};
  few.colours_used = 3;
  few.value = [](int x, int y) { return uint32_t((x + 2 * y) % 3); };
  expect_drawn(few, 5, 5);
}

// The canvas as it looks after drawing the lines of text with the DC's
// defaults, as PutBitmap reports its failures.
std::vector<uint32_t> text_drawn(const std::vector<std::pair<POINT, std::wstring>>& lines) {
  Canvas reference;
  for (const auto& [at, text] : lines)
    TextOutW(reference.dc(), at.x, at.y, text.c_str(), static_cast<int>(text.size()));
  return reference.all();
}

TEST_F(Pictures, MissingFileDrawsTheMessageAndThePath) {
  const std::wstring path = file(L"absent.bmp");
  Canvas canvas;
  EXPECT_FALSE(PutBitmap(canvas.dc(), path.c_str(), 4, 6));
  const auto expected = text_drawn({{{4, 6}, L"Could not open picture file:"}, {{4, 26}, path}});
  EXPECT_NE(expected, Canvas().all()) << "the reference drew nothing";
  EXPECT_EQ(canvas.all(), expected);
}

TEST_F(Pictures, TruncatedOrForeignFileDrawsTheReadMessage) {
  BitmapFile picture;
  picture.bits = 24;
  picture.value = [](int x, int y) { return rgb(BYTE(x), BYTE(y), 0); };
  std::vector<BYTE> bytes = picture.bytes();
  const auto expected = text_drawn({{{10, 12}, L"Could not read picture data"}});
  for (size_t keep : {bytes.size() - 1, size_t{60}, size_t{20}, size_t{0}}) {
    write_file(file(L"cut.bmp"), std::vector<BYTE>(bytes.begin(), bytes.begin() + static_cast<long>(keep)));
    Canvas canvas;
    EXPECT_FALSE(PutBitmap(canvas.dc(), file(L"cut.bmp").c_str(), 10, 12)) << keep;
    EXPECT_EQ(canvas.all(), expected) << keep << " bytes kept";
  }
  write_file(file(L"text.bmp"), std::vector<BYTE>(200, 'x'));
  Canvas canvas;
  EXPECT_FALSE(PutBitmap(canvas.dc(), file(L"text.bmp").c_str(), 10, 12));
  EXPECT_EQ(canvas.all(), expected);
}

TEST_F(Pictures, NullArgumentsDrawNothing) {
  Canvas canvas;
  EXPECT_FALSE(PutBitmap(nullptr, file(L"x.bmp").c_str(), 0, 0));
  EXPECT_FALSE(PutBitmap(canvas.dc(), nullptr, 0, 0));
  EXPECT_EQ(canvas.all(), Canvas().all());
}

int screen_caps(int index) {
  HDC screen = GetDC(nullptr);
  const int value = GetDeviceCaps(screen, index);
  ReleaseDC(nullptr, screen);
  return value;
}

TEST(ScreenUnits, HimetricConversionsRoundAsMulDiv) {
  const int dpi_x = screen_caps(LOGPIXELSX);
  const int dpi_y = screen_caps(LOGPIXELSY);
  ASSERT_GT(dpi_x, 0);
  SIZE size = {100, 37};
  ASSERT_TRUE(ConvertScreenDPtoHIMETRIC(&size));
  EXPECT_EQ(size.cx, MulDiv(100, 2540, dpi_x));
  EXPECT_EQ(size.cy, MulDiv(37, 2540, dpi_y));
  if (dpi_x == 96 && dpi_y == 96) {
    EXPECT_EQ(size.cx, 2646);  // 2645.8 rounded
    EXPECT_EQ(size.cy, 979);   // 978.9
  }
  ASSERT_TRUE(ConvertScreenHIMETRICtoDP(&size));
  EXPECT_EQ(size.cx, 100);
  EXPECT_EQ(size.cy, 37);
  size = {-2540, 0};
  ASSERT_TRUE(ConvertScreenHIMETRICtoDP(&size));
  EXPECT_EQ(size.cx, -dpi_x);
  EXPECT_EQ(size.cy, 0);
  EXPECT_FALSE(ConvertScreenDPtoHIMETRIC(nullptr));
  EXPECT_FALSE(ConvertScreenHIMETRICtoDP(nullptr));
}

TEST(ScreenUnits, AdjustByScreenResScalesByTheDisplayResolution) {
  HDC display = CreateDCW(L"DISPLAY", nullptr, nullptr, nullptr);
  const int dpi = GetDeviceCaps(display, LOGPIXELSY);
  DeleteDC(display);
  for (int value : {0, 1, 10, 96, -50, 1000})
    EXPECT_EQ(AdjustByScreenRes(value), MulDiv(value, dpi, 96)) << value;
}

// Child mode: the display scaling of a process started at another
// resolution, as the exit code 1000 * AdjustByScreenRes(10) + AdjustByScreenRes(96).
constexpr const wchar_t* kDpiChildVariable = L"MVSUP_ICONS_DPI_CHILD";
[[maybe_unused]] const bool kRanAsDpiChild = [] {
  wchar_t flag[8];
  if (GetEnvironmentVariableW(kDpiChildVariable, flag, 8) == 0) return false;
  ExitProcess(static_cast<UINT>(AdjustByScreenRes(10) * 1000 + AdjustByScreenRes(96)));
  return true;
}();

TEST(ScreenUnits, AdjustByScreenResAtAnotherResolution) {
  // The display's resolution follows the user's LogPixels setting when a
  // process starts.
  const wchar_t* key = L"Control Panel\\Desktop";
  HKEY desktop = nullptr;
  ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, key, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &desktop, nullptr),
            ERROR_SUCCESS);
  DWORD saved = 0, saved_size = sizeof(saved), saved_type = 0;
  const bool had_value =
      RegQueryValueExW(desktop, L"LogPixels", nullptr, &saved_type, reinterpret_cast<BYTE*>(&saved), &saved_size) ==
      ERROR_SUCCESS;
  const DWORD dpi = 120;
  RegSetValueExW(desktop, L"LogPixels", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&dpi), sizeof(dpi));
  wchar_t exe[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, exe, MAX_PATH);
  _wputenv((std::wstring(kDpiChildVariable) + L"=1").c_str());
  const intptr_t code = _wspawnl(_P_WAIT, exe, L"child", L"--gtest_filter=-*", nullptr);
  _wputenv((std::wstring(kDpiChildVariable) + L"=").c_str());
  if (had_value)
    RegSetValueExW(desktop, L"LogPixels", 0, saved_type, reinterpret_cast<const BYTE*>(&saved), saved_size);
  else
    RegDeleteValueW(desktop, L"LogPixels");
  RegCloseKey(desktop);
  EXPECT_EQ(code, 13 * 1000 + 120) << "10 * 120 / 96 = 12.5 rounds to 13";
}

}  // namespace
}  // namespace mvsup::test
