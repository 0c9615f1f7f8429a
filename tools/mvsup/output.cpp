#include "output.h"

#include <windows.h>

#include <cstdio>

#include "frame/text.h"

namespace mvsup::tool {

namespace {
void write_utf8(FILE* stream, std::wstring_view text) {
  const std::string bytes = text::to_narrow(text, CP_UTF8);
  std::fwrite(bytes.data(), 1, bytes.size(), stream);
  std::fflush(stream);
}
}  // namespace

void write_out(std::wstring_view text) { write_utf8(stdout, text); }
void write_err(std::wstring_view text) { write_utf8(stderr, text); }

std::wstring hex32(uint32_t value) {
  wchar_t buffer[16];
  std::swprintf(buffer, 16, L"0x%08lX", static_cast<unsigned long>(value));
  return buffer;
}

std::wstring json_escape(std::wstring_view text) {
  std::wstring out;
  for (wchar_t c : text) {
    switch (c) {
      case L'"': out += L"\\\""; break;
      case L'\\': out += L"\\\\"; break;
      case L'\n': out += L"\\n"; break;
      case L'\r': out += L"\\r"; break;
      case L'\t': out += L"\\t"; break;
      default:
        if (c < 0x20) {
          wchar_t escaped[8];
          std::swprintf(escaped, 8, L"\\u%04x", static_cast<unsigned>(c));
          out += escaped;
        } else {
          out += c;
        }
    }
  }
  return out;
}

void JsonWriter::separator(std::wstring_view key) {
  if (!first_.empty()) {
    if (!first_.back()) out_ += L",";
    first_.back() = false;
    out_ += L"\n" + std::wstring(first_.size() * 2, L' ');
  }
  if (!key.empty()) out_ += L"\"" + json_escape(key) + L"\": ";
}

JsonWriter& JsonWriter::begin_object(std::wstring_view key) {
  separator(key);
  out_ += L"{";
  first_.push_back(true);
  return *this;
}

JsonWriter& JsonWriter::end_object() {
  const bool empty = first_.back();
  first_.pop_back();
  if (!empty) out_ += L"\n" + std::wstring(first_.size() * 2, L' ');
  out_ += L"}";
  return *this;
}

JsonWriter& JsonWriter::begin_array(std::wstring_view key) {
  separator(key);
  out_ += L"[";
  first_.push_back(true);
  return *this;
}

JsonWriter& JsonWriter::end_array() {
  const bool empty = first_.back();
  first_.pop_back();
  if (!empty) out_ += L"\n" + std::wstring(first_.size() * 2, L' ');
  out_ += L"]";
  return *this;
}

JsonWriter& JsonWriter::string(std::wstring_view key, std::wstring_view value) {
  separator(key);
  out_ += L"\"" + json_escape(value) + L"\"";
  return *this;
}

JsonWriter& JsonWriter::number(std::wstring_view key, int64_t value) {
  separator(key);
  out_ += std::to_wstring(value);
  return *this;
}

JsonWriter& JsonWriter::boolean(std::wstring_view key, bool value) {
  separator(key);
  out_ += value ? L"true" : L"false";
  return *this;
}

JsonWriter& JsonWriter::null(std::wstring_view key) {
  separator(key);
  out_ += L"null";
  return *this;
}

JsonWriter& JsonWriter::string_item(std::wstring_view value) { return string({}, value); }
JsonWriter& JsonWriter::number_item(int64_t value) { return number({}, value); }

}  // namespace mvsup::tool
