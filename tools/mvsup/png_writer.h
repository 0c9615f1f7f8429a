// PNG files from 32-bit pixels, through the system's imaging component.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace mvsup::tool {

// Writes width x height pixels (top-down rows of 0xAARRGGBB words) as a PNG
// with alpha. COM must be initialised. Returns S_OK or the failing HRESULT.
HRESULT write_png(const std::wstring& path, int width, int height, const uint32_t* pixels);

// A 32-bit top-down DIB section selected into a memory DC, filled with a
// colour; for drawing pictures that are then written out.
class PixelCanvas {
 public:
  PixelCanvas(int width, int height, uint32_t fill);
  ~PixelCanvas();
  PixelCanvas(const PixelCanvas&) = delete;
  PixelCanvas& operator=(const PixelCanvas&) = delete;
  HDC dc() const { return dc_; }
  int width() const { return width_; }
  int height() const { return height_; }
  uint32_t* pixels() const { return pixels_; }
  HRESULT save_png(const std::wstring& path) const;

 private:
  int width_;
  int height_;
  HDC dc_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ previous_ = nullptr;
  uint32_t* pixels_ = nullptr;
};

}  // namespace mvsup::tool
