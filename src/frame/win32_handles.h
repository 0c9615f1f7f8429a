// Owning wrappers for Win32 resources. Every handle type is one alias of
// unique_any<Traits>; a resource is released on every path by construction.
#pragma once

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>
#include <shlobj.h>

#include <utility>

namespace mvsup {

// Owns one value of Traits::type and releases it with Traits::close unless it
// equals Traits::invalid().
template <typename Traits>
class unique_any {
 public:
  using pointer = typename Traits::type;

  unique_any() noexcept = default;
  explicit unique_any(pointer value) noexcept : value_(value) {}
  unique_any(const unique_any&) = delete;
  unique_any& operator=(const unique_any&) = delete;
  unique_any(unique_any&& other) noexcept : value_(other.release()) {}
  unique_any& operator=(unique_any&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }
  ~unique_any() { reset(); }

  pointer get() const noexcept { return value_; }
  explicit operator bool() const noexcept { return value_ != Traits::invalid(); }

  // Releases the current value, then hands out the slot for an API to fill.
  pointer* put() noexcept {
    reset();
    return &value_;
  }

  pointer release() noexcept { return std::exchange(value_, Traits::invalid()); }

  void reset(pointer value = Traits::invalid()) noexcept {
    pointer old = std::exchange(value_, value);
    if (old != Traits::invalid()) Traits::close(old);
  }

 private:
  pointer value_ = Traits::invalid();
};

namespace handle_traits {
template <typename T, auto Close>
struct null_invalid {
  using type = T;
  static constexpr type invalid() noexcept { return type{}; }
  static void close(type value) noexcept { Close(value); }
};

struct file_handle {
  using type = HANDLE;
  static type invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static void close(type value) noexcept { ::CloseHandle(value); }
};

inline void reg_close_key(HKEY key) noexcept { ::RegCloseKey(key); }

inline void unmap_view(void* view) noexcept { ::UnmapViewOfFile(view); }
inline void free_library(HMODULE module) noexcept { ::FreeLibrary(module); }
inline void global_free(HGLOBAL memory) noexcept { ::GlobalFree(memory); }
inline void close_handle(HANDLE handle) noexcept { ::CloseHandle(handle); }
inline void cotask_free(void* memory) noexcept { ::CoTaskMemFree(memory); }
inline void sys_free_string(BSTR text) noexcept { ::SysFreeString(text); }
inline void destroy_icon(HICON icon) noexcept { ::DestroyIcon(icon); }
inline void delete_object(HGDIOBJ object) noexcept { ::DeleteObject(object); }
}  // namespace handle_traits

using unique_hkey = unique_any<handle_traits::null_invalid<HKEY, handle_traits::reg_close_key>>;
using unique_handle = unique_any<handle_traits::null_invalid<HANDLE, handle_traits::close_handle>>;
using unique_file = unique_any<handle_traits::file_handle>;
using unique_hglobal = unique_any<handle_traits::null_invalid<HGLOBAL, handle_traits::global_free>>;
using unique_hmodule = unique_any<handle_traits::null_invalid<HMODULE, handle_traits::free_library>>;
using unique_view = unique_any<handle_traits::null_invalid<void*, handle_traits::unmap_view>>;
using unique_cotaskmem = unique_any<handle_traits::null_invalid<void*, handle_traits::cotask_free>>;
using unique_pidl = unique_any<handle_traits::null_invalid<LPITEMIDLIST, handle_traits::cotask_free>>;
using unique_bstr = unique_any<handle_traits::null_invalid<BSTR, handle_traits::sys_free_string>>;
using unique_hicon = unique_any<handle_traits::null_invalid<HICON, handle_traits::destroy_icon>>;
using unique_gdiobj = unique_any<handle_traits::null_invalid<HGDIOBJ, handle_traits::delete_object>>;

// FindFirstFile and CreateFile report failure as INVALID_HANDLE_VALUE.
struct find_handle_traits {
  using type = HANDLE;
  static type invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static void close(type value) noexcept { ::FindClose(value); }
};
using unique_find = unique_any<find_handle_traits>;

// A VARIANT that is cleared when it goes out of scope.
class unique_variant {
 public:
  unique_variant() noexcept { ::VariantInit(&value_); }
  unique_variant(const unique_variant&) = delete;
  unique_variant& operator=(const unique_variant&) = delete;
  ~unique_variant() { ::VariantClear(&value_); }
  VARIANT* get() noexcept { return &value_; }
  VARIANT* put() noexcept {
    ::VariantClear(&value_);
    return &value_;
  }
  VARIANT* operator->() noexcept { return &value_; }

 private:
  VARIANT value_;
};

// Owning COM interface pointer.
template <typename T>
class com_ptr {
 public:
  com_ptr() noexcept = default;
  com_ptr(const com_ptr&) = delete;
  com_ptr& operator=(const com_ptr&) = delete;
  com_ptr(com_ptr&& other) noexcept : ptr_(std::exchange(other.ptr_, nullptr)) {}
  ~com_ptr() { reset(); }

  T* get() const noexcept { return ptr_; }
  T* operator->() const noexcept { return ptr_; }
  explicit operator bool() const noexcept { return ptr_ != nullptr; }
  T** put() noexcept {
    reset();
    return &ptr_;
  }
  void** put_void() noexcept { return reinterpret_cast<void**>(put()); }
  T* release() noexcept { return std::exchange(ptr_, nullptr); }
  void reset() noexcept {
    if (T* old = std::exchange(ptr_, nullptr)) old->Release();
  }

 private:
  T* ptr_ = nullptr;
};

// Runs a callable on scope exit unless dismissed; for the rare cleanup that
// is not a handle.
template <typename F>
class scope_exit {
 public:
  explicit scope_exit(F f) noexcept : f_(std::move(f)) {}
  scope_exit(const scope_exit&) = delete;
  scope_exit& operator=(const scope_exit&) = delete;
  ~scope_exit() {
    if (armed_) f_();
  }
  void dismiss() noexcept { armed_ = false; }

 private:
  F f_;
  bool armed_ = true;
};

}  // namespace mvsup
