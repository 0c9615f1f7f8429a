// Real memory streams for tests: made from bytes, read back whole, and an
// apartment for the test's thread.
#pragma once

#include <windows.h>
#include <objidl.h>

#include <gtest/gtest.h>

#include <string>

namespace mvsup::test {

// A CreateStreamOnHGlobal stream holding `bytes`, positioned at `position`.
// The caller releases it.
IStream* memory_stream(const std::string& bytes, ULONGLONG position = 0);

// Every byte of the stream from its start, whatever its position, which is
// left as it was.
std::string stream_bytes(IStream* stream);

// The stream's current position.
ULONGLONG stream_position(IStream* stream);

// A new moveable global memory block holding `bytes`; the caller frees it.
HGLOBAL global_block(const std::string& bytes);

// The bytes of a global memory block, first `size` of them.
std::string global_bytes(HGLOBAL memory, size_t size);

// Owns one reference of an interface pointer that a call hands out.
template <typename T>
class Held {
 public:
  Held() = default;
  explicit Held(T* pointer) : pointer_(pointer) {}
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  ~Held() {
    if (pointer_) pointer_->Release();
  }
  T* get() const { return pointer_; }
  T* operator->() const { return pointer_; }
  T** put() {
    if (pointer_) pointer_->Release();
    pointer_ = nullptr;
    return &pointer_;
  }
  // Gives up the reference; the count the object reports afterwards.
  ULONG release() {
    T* pointer = pointer_;
    pointer_ = nullptr;
    return pointer ? pointer->Release() : 0;
  }

 private:
  T* pointer_ = nullptr;
};

// COM on the test's thread for the fixture's lifetime.
class ComTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_HRESULT_SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)); }
  void TearDown() override { CoUninitialize(); }
};

}  // namespace mvsup::test
