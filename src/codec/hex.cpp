// Binary data to hexadecimal text and back.
#include <climits>
#include <cwchar>

#include "MvSupCodec.h"
#include "codec/global_block.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"

namespace mvsup::codec {

namespace {

HRESULT hex_from_binary(const BYTE* bytes, DWORD count, BSTR* hex) noexcept {
  static constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
  if (count > UINT_MAX / 2) return E_OUTOFMEMORY;
  unique_bstr text(::SysAllocStringLen(nullptr, count * 2));
  if (!text) return E_OUTOFMEMORY;
  wchar_t* out = text.get();
  for (DWORD i = 0; i < count; ++i) {
    *out++ = kDigits[bytes[i] >> 4];
    *out++ = kDigits[bytes[i] & 15];
  }
  *hex = text.release();
  return S_OK;
}

// One pair read as wcstol reads the two-character string in base 16 (sign,
// leading white space and all); nothing is validated, callers rely on that.
BYTE pair_value(wchar_t first, wchar_t second) noexcept {
  const wchar_t pair[3] = {first, second, L'\0'};
  return static_cast<BYTE>(std::wcstol(pair, nullptr, 16));
}

HRESULT binary_from_hex(const wchar_t* hex, BYTE** bytes, DWORD* byte_count) noexcept {
  const size_t length = std::wcslen(hex);
  if (length == 0) return E_INVALIDARG;
  const size_t count = length / 2;
  if (count > MAXDWORD) return E_OUTOFMEMORY;
  if (count == 0) return S_OK;
  GlobalBlock<BYTE> block;
  if (!block.allocate(count)) return E_OUTOFMEMORY;
  BYTE* out = block.get();
  for (size_t i = 0; i < count; ++i) out[i] = pair_value(hex[2 * i], hex[2 * i + 1]);
  *bytes = block.release();
  *byte_count = static_cast<DWORD>(count);
  return S_OK;
}

}  // namespace
}  // namespace mvsup::codec

extern "C" {

HRESULT WINAPI HexStringFromBinaryString(const BYTE* bytes, DWORD count, BSTR* hex) {
  mvsup::trace::CallScope scope("HexStringFromBinaryString");
  if (hex == nullptr) return scope.hr(E_POINTER);
  *hex = nullptr;
  if (bytes == nullptr || count == 0) return scope.hr(E_INVALIDARG);
  return scope.hr(mvsup::codec::hex_from_binary(bytes, count, hex));
}

HRESULT WINAPI BinaryStringFromHexString(LPCWSTR hexText, BYTE** bytes, DWORD* byteCount) {
  mvsup::trace::CallScope scope("BinaryStringFromHexString");
  if (bytes) *bytes = nullptr;
  if (byteCount) *byteCount = 0;
  if (bytes == nullptr || byteCount == nullptr) return scope.hr(E_POINTER);
  if (hexText == nullptr) return scope.hr(E_INVALIDARG);
  return scope.hr(mvsup::codec::binary_from_hex(hexText, bytes, byteCount));
}

}  // extern "C"
