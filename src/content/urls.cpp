#include <algorithm>
#include <string>
#include <string_view>

#include "MvSupContent.h"
#include "frame/text.h"

namespace mvsup::content {

namespace {

constexpr size_t kSchemeBuffer = 40;
constexpr size_t kHostBuffer = 128;
constexpr size_t kPathBuffer = 128;
constexpr std::wstring_view kSchemeMark = L"://";
constexpr std::wstring_view kGatewayScript = L"/mvcgi/mv.py";
constexpr std::wstring_view kGatewayPath = L"mvcgi/mv.py/";
// The script path and its separator, kept in reserve by the length check.
constexpr size_t kGatewayReserve = 13;

struct UrlParts {
  std::wstring_view scheme;
  std::wstring_view host;
  std::wstring_view path;
};

bool decompose(std::wstring_view url, UrlParts& parts) noexcept {
  const size_t mark = url.find(kSchemeMark);
  if (mark == std::wstring_view::npos) return false;
  parts.scheme = url.substr(0, mark + kSchemeMark.size());
  const std::wstring_view rest = url.substr(mark + kSchemeMark.size());
  const size_t slash = rest.find(L'/');
  parts.host = rest.substr(0, slash);
  parts.path = slash == std::wstring_view::npos ? std::wstring_view(L"/") : rest.substr(slash);
  return true;
}

bool is_plain(unsigned char c) noexcept {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.';
}

bool is_digit(char c) noexcept { return c >= '0' && c <= '9'; }

int hex_value(char c) noexcept {
  if (is_digit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

int decompose_into(std::wstring_view url, LPWSTR scheme_out, LPWSTR host_out, LPWSTR path_out) noexcept {
  UrlParts parts;
  const bool found = decompose(url, parts);
  text::copy_truncated(scheme_out, kSchemeBuffer, parts.scheme);
  text::copy_truncated(host_out, kHostBuffer, parts.host);
  text::copy_truncated(path_out, kPathBuffer, parts.path);
  return found ? 1 : 0;
}

// Escapes into out (3 * text.size() + 1 bytes) when it is given; returns the
// escaped length.
size_t escape(std::string_view text, char* out) noexcept {
  static constexpr char kHex[] = "0123456789ABCDEF";
  size_t length = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (is_plain(byte)) {
      if (out) out[length] = c;
      ++length;
      continue;
    }
    if (out) {
      out[length] = '%';
      out[length + 1] = kHex[byte >> 4];
      out[length + 2] = kHex[byte & 0xF];
    }
    length += 3;
  }
  if (out) out[length] = '\0';
  return length;
}

// Unescapes at most limit characters into out (when given) and terminates.
size_t unescape(std::string_view text, char* out, size_t limit) noexcept {
  size_t written = 0;
  auto put = [&](char c) {
    if (out) out[written] = c;
    ++written;
  };
  for (size_t i = 0; i < text.size() && written < limit; ++i) {
    const char c = text[i];
    if (c != '%' || text.size() - i < 3) {
      put(c);
      continue;
    }
    const char d = text[++i];
    if (!is_digit(d)) {
      put(d);
      continue;
    }
    const int low = hex_value(text[++i]);
    const int value = low < 0 ? d - '0' : (d - '0') * 16 + low;
    put(value == 0 ? d : static_cast<char>(value));
  }
  if (out) out[written] = '\0';
  return written;
}

bool make_gateway_url(std::wstring_view server, std::wstring_view tail, LPWSTR out, size_t out_size) noexcept {
  if (server.empty() || out == nullptr) return false;
  const bool add_script = server.find(kGatewayScript) == std::wstring_view::npos;
  const size_t reserve = add_script ? kGatewayReserve : 0;
  if (tail.size() + server.size() + reserve + 2 > out_size) return false;
  wchar_t* end = std::copy(server.begin(), server.end(), out);
  if (server.back() != L'/') *end++ = L'/';
  if (add_script) end = std::copy(kGatewayPath.begin(), kGatewayPath.end(), end);
  end = std::copy(tail.begin(), tail.end(), end);
  *end = L'\0';
  return true;
}

}  // namespace
}  // namespace mvsup::content

// ---- Exports ------------------------------------------------------------------

using namespace mvsup;

int WINAPI DecomposeURL(LPCWSTR url, LPWSTR schemeOut, LPWSTR hostOut, LPWSTR pathOut) {
  return content::decompose_into(text::view_or_empty(url), schemeOut, hostOut, pathOut);
}

int WINAPI DecomposeURLA(LPCSTR url, LPWSTR schemeOut, LPWSTR hostOut, LPWSTR pathOut) {
  try {
    return content::decompose_into(text::to_wide(text::view_or_empty(url)), schemeOut, hostOut, pathOut);
  } catch (...) {
    return content::decompose_into({}, schemeOut, hostOut, pathOut);
  }
}

DWORD WINAPI URLCanonicalize(LPCSTR plain, LPSTR out, DWORD* lengthOut) {
  if (out == nullptr && lengthOut == nullptr) return 0;
  const std::string_view input = text::view_or_empty(plain);
  // The escaped length must fit a DWORD; a larger text gives an empty result.
  const bool fits = input.size() <= (MAXDWORD - 1) / 3;
  const auto length = static_cast<DWORD>(fits ? content::escape(input, out) : content::escape({}, out));
  if (lengthOut) *lengthOut = length;
  return length;
}

int WINAPI URLUncanonicalize(LPCSTR escaped, LPSTR out, int outSize) {
  const std::string_view input = text::view_or_empty(escaped);
  const size_t limit = out == nullptr ? input.size() : static_cast<size_t>(outSize < 0 ? 0 : outSize);
  return static_cast<int>(content::unescape(input, out, limit));
}

int WINAPI MakeMervaneURL(LPCWSTR serverUrl, LPCWSTR tail, LPWSTR out, int outSize) {
  const size_t size = outSize < 0 ? 0 : static_cast<size_t>(outSize);
  return content::make_gateway_url(text::view_or_empty(serverUrl), text::view_or_empty(tail), out, size) ? 1 : 0;
}
