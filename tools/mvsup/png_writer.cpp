#include "png_writer.h"

#include <wincodec.h>

#include "frame/win32_handles.h"

namespace mvsup::tool {

HRESULT write_png(const std::wstring& path, int width, int height, const uint32_t* pixels) {
  com_ptr<IWICImagingFactory> factory;
  HRESULT hr = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                factory.put_void());
  com_ptr<IWICStream> stream;
  if (SUCCEEDED(hr)) hr = factory->CreateStream(stream.put());
  if (SUCCEEDED(hr)) hr = stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE);
  com_ptr<IWICBitmapEncoder> encoder;
  if (SUCCEEDED(hr)) hr = factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.put());
  if (SUCCEEDED(hr)) hr = encoder->Initialize(stream.get(), WICBitmapEncoderNoCache);
  com_ptr<IWICBitmapFrameEncode> frame;
  com_ptr<IPropertyBag2> options;
  if (SUCCEEDED(hr)) hr = encoder->CreateNewFrame(frame.put(), options.put());
  if (SUCCEEDED(hr)) hr = frame->Initialize(options.get());
  if (SUCCEEDED(hr)) hr = frame->SetSize(static_cast<UINT>(width), static_cast<UINT>(height));
  WICPixelFormatGUID format = GUID_WICPixelFormat32bppBGRA;
  if (SUCCEEDED(hr)) hr = frame->SetPixelFormat(&format);
  if (SUCCEEDED(hr) && !IsEqualGUID(format, GUID_WICPixelFormat32bppBGRA)) hr = WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
  const UINT stride = static_cast<UINT>(width) * 4;
  if (SUCCEEDED(hr))
    hr = frame->WritePixels(static_cast<UINT>(height), stride, stride * static_cast<UINT>(height),
                            reinterpret_cast<BYTE*>(const_cast<uint32_t*>(pixels)));
  if (SUCCEEDED(hr)) hr = frame->Commit();
  if (SUCCEEDED(hr)) hr = encoder->Commit();
  return hr;
}

PixelCanvas::PixelCanvas(int width, int height, uint32_t fill) : width_(width), height_(height) {
  dc_ = CreateCompatibleDC(nullptr);
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof(info.bmiHeader);
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  pixels_ = static_cast<uint32_t*>(bits);
  if (pixels_ != nullptr) {
    previous_ = SelectObject(dc_, bitmap_);
    for (int i = 0; i < width * height; ++i) pixels_[i] = fill;
  }
}

PixelCanvas::~PixelCanvas() {
  if (previous_) SelectObject(dc_, previous_);
  if (bitmap_) DeleteObject(bitmap_);
  if (dc_) DeleteDC(dc_);
}

HRESULT PixelCanvas::save_png(const std::wstring& path) const {
  if (pixels_ == nullptr) return E_OUTOFMEMORY;
  GdiFlush();
  return write_png(path, width_, height_, pixels_);
}

}  // namespace mvsup::tool
