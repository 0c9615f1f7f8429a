#include "binary_io.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "frame/win32_handles.h"
#include "output.h"

namespace mvsup::tool {

std::optional<std::string> read_input(const std::wstring& path, std::wstring* error) {
  std::string data;
  if (path.empty() || path == L"-") {
    _setmode(_fileno(stdin), _O_BINARY);
    char buffer[65536];
    size_t got;
    while ((got = std::fread(buffer, 1, sizeof(buffer), stdin)) > 0) data.append(buffer, got);
    if (std::ferror(stdin)) {
      *error = L"cannot read standard input";
      return std::nullopt;
    }
    return data;
  }
  unique_file file(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) {
    *error = L"cannot open " + path + L" (error " + std::to_wstring(::GetLastError()) + L")";
    return std::nullopt;
  }
  LARGE_INTEGER size{};
  if (!::GetFileSizeEx(file.get(), &size) || size.QuadPart > MAXDWORD) {
    *error = L"cannot read " + path + L": too large (4 GiB at most)";
    return std::nullopt;
  }
  data.resize(static_cast<size_t>(size.QuadPart));
  size_t done = 0;
  while (done < data.size()) {
    DWORD got = 0;
    const DWORD want = static_cast<DWORD>(std::min<size_t>(data.size() - done, 1 << 24));
    if (!::ReadFile(file.get(), data.data() + done, want, &got, nullptr) || got == 0) {
      *error = L"cannot read " + path + L" (error " + std::to_wstring(::GetLastError()) + L")";
      return std::nullopt;
    }
    done += got;
  }
  return data;
}

void write_bytes(std::string_view bytes) {
  std::fflush(stdout);
  _setmode(_fileno(stdout), _O_BINARY);
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
  std::fflush(stdout);
}

std::wstring hresult_text(HRESULT hr) {
  const wchar_t* name = nullptr;
  switch (hr) {
    case S_OK: name = L"S_OK"; break;
    case S_FALSE: name = L"S_FALSE"; break;
    case E_POINTER: name = L"E_POINTER"; break;
    case E_INVALIDARG: name = L"E_INVALIDARG"; break;
    case E_FAIL: name = L"E_FAIL"; break;
    case E_OUTOFMEMORY: name = L"E_OUTOFMEMORY"; break;
    case E_NOTIMPL: name = L"E_NOTIMPL"; break;
    default: break;
  }
  const std::wstring code = hex32(static_cast<uint32_t>(hr));
  return name ? std::wstring(name) + L" (" + code + L")" : code;
}

}  // namespace mvsup::tool
