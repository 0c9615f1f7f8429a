// Small helpers over IStream shared by the stream families: memory streams,
// positions and sizes.
#pragma once

#include <windows.h>
#include <objbase.h>
#include <objidl.h>

#include "frame/win32_handles.h"

namespace mvsup {

inline ULARGE_INTEGER large(ULONGLONG value) noexcept {
  ULARGE_INTEGER result;
  result.QuadPart = value;
  return result;
}

// A new, empty memory stream whose memory is freed when it is released.
inline HRESULT new_memory_stream(com_ptr<IStream>& stream) noexcept {
  return ::CreateStreamOnHGlobal(nullptr, TRUE, stream.put());
}

inline HRESULT rewind(IStream* stream) noexcept {
  LARGE_INTEGER start;
  start.QuadPart = 0;
  return stream->Seek(start, STREAM_SEEK_SET, nullptr);
}

// The stream's whole size (Stat without the name).
inline HRESULT stream_size(IStream* stream, ULARGE_INTEGER* size) noexcept {
  STATSTG stat{};
  const HRESULT hr = stream->Stat(&stat, STATFLAG_NONAME);
  // A stream that hands out a name all the same does not leak it.
  if (stat.pwcsName) ::CoTaskMemFree(stat.pwcsName);
  if (SUCCEEDED(hr)) *size = stat.cbSize;
  return hr;
}

}  // namespace mvsup
