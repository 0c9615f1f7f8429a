// Quoted-printable decoding, narrow and wide, in two passes: soft line
// breaks first, escapes second.
#include <algorithm>
#include <cstdint>

#include "MvSupCodec.h"
#include "codec/global_block.h"
#include "frame/trace.h"

namespace mvsup::codec {

namespace {

inline unsigned code_of(char c) noexcept { return static_cast<unsigned char>(c); }
inline unsigned code_of(wchar_t c) noexcept { return c; }

// Upper-case digits only: "=3d" is not an escape.
inline int hex_value(unsigned c) noexcept {
  if (c >= '0' && c <= '9') return static_cast<int>(c - '0');
  if (c >= 'A' && c <= 'F') return static_cast<int>(c - 'A' + 10);
  return -1;
}

// First pass into a zero-filled copy of count units. Returns the length of
// the result up to its first NUL.
template <typename T>
size_t remove_soft_breaks(const T* in, size_t count, T* out) noexcept {
  size_t written = 0;
  bool pending = false;       // an '=' (not at position 0) waits for a line feed
  size_t pending_output = 0;  // where that '=' went in the output
  bool blank_since = false;   // only codes <= 32 since that '='
  for (size_t i = 0; i < count; ++i) {
    const unsigned c = code_of(in[i]);
    if (c == '\n' && pending) {
      // Either way the line feed goes: after a blank tail it ends a soft
      // break and takes the '=' and the blanks with it; after anything else
      // (an escape such as "=41\r\n") the carriage return stays. Callers
      // depend on that.
      if (blank_since) written = pending_output;
      pending = false;
      continue;
    }
    if (c == '=' && i != 0) {
      pending = true;
      pending_output = written;
      blank_since = true;
    } else if (c > 32) {
      blank_since = false;
    }
    out[written++] = in[i];
  }
  std::fill(out + written, out + count, T{});
  return std::find(out, out + written, T{}) - out;
}

// Second pass over the first pass's result of `length` units; `first` has
// room for `count` units (zero beyond the result). Returns S_OK with the
// decoded length, or the failure.
template <typename T>
HRESULT decode_escapes(const T* first, size_t length, size_t count, T* out, size_t* decoded) noexcept {
  size_t written = 0;
  for (size_t p = 0; p < length; ++p) {
    if (code_of(first[p]) != '=') {
      out[written++] = first[p];
      continue;
    }
    // Measured against the input as passed, not the first pass's result.
    if (p + 2 >= count) return E_FAIL;
    const int high = hex_value(code_of(first[p + 1]));
    if (high < 0) {
      out[written++] = first[++p];
      continue;
    }
    const int low = hex_value(code_of(first[p + 2]));
    if (low < 0) return E_INVALIDARG;
    out[written++] = static_cast<T>(high << 4 | low);
    p += 2;
  }
  *decoded = std::find(out, out + written, T{}) - out;
  return S_OK;
}

template <typename T>
HRESULT decode(const T* in, DWORD count, T** out, DWORD* out_length) noexcept {
  if (std::find(in, in + count, static_cast<T>('=')) == in + count) return S_FALSE;
  GlobalBlock<T> first;
  if (!first.allocate(count)) return E_OUTOFMEMORY;
  const size_t length = remove_soft_breaks(in, count, first.get());
  // Room for a terminator after the result, never more than the input.
  GlobalBlock<T> second;
  if (!second.allocate(std::min<size_t>(length + 1, count))) return E_OUTOFMEMORY;
  size_t decoded = 0;
  if (HRESULT hr = decode_escapes(first.get(), length, count, second.get(), &decoded); hr != S_OK) return hr;
  *out = second.release();
  *out_length = static_cast<DWORD>(decoded);
  return S_OK;
}

template <typename T>
HRESULT checked(const char* name, const T* in, DWORD count, T** out, DWORD* out_length) noexcept {
  trace::CallScope scope(name);
  if (out) *out = nullptr;
  if (out_length) *out_length = 0;
  if (in == nullptr || out == nullptr || out_length == nullptr) return scope.hr(E_POINTER);
  return scope.hr(decode(in, count, out, out_length));
}

}  // namespace
}  // namespace mvsup::codec

extern "C" {

HRESULT WINAPI QuotedPrintable_DecodeA(LPCSTR chars, DWORD count, LPSTR* decoded, DWORD* length) {
  return mvsup::codec::checked("QuotedPrintable_DecodeA", chars, count, decoded, length);
}

HRESULT WINAPI QuotedPrintable_Decode(LPCWSTR chars, DWORD count, LPWSTR* decoded, DWORD* length) {
  return mvsup::codec::checked("QuotedPrintable_Decode", chars, count, decoded, length);
}

// The encoder was never provided; both names stay exported for old callers.
HRESULT WINAPI QuotedPrintable_Encode(LPCWSTR, DWORD, LPWSTR*, DWORD*) { return E_NOTIMPL; }

HRESULT WINAPI QuotedPrintable_EncodeA(LPCSTR, DWORD, LPSTR*, DWORD*) { return E_NOTIMPL; }

}  // extern "C"
