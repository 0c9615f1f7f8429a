// Rich text from HTML and plain text: the text is wrapped byte for byte in
// one RTF group that marks it as encapsulated HTML or plain text, with its
// braces escaped. Readers that know the encapsulation give the source back;
// no RTF formatting is made.
#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "MvSupRichText.h"
#include "frame/com_streams.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "text/rich_text.h"

namespace mvsup::text {

namespace {

// UTF-16 input is converted in pieces of this many bytes, each on its own.
constexpr ULONG kWidePiece = 2048;
// ANSI text is wrapped in pieces of at most this many bytes; the HTML rules
// that drop or cut text work within the piece at hand.
constexpr ULONG kAnsiPiece = 1024;
// The most an ANSI input is copied when the caller asks for a copy.
constexpr ULONGLONG kMaxAnsiCopy = 0x7FFF0000;

constexpr std::string_view kHtmlHeader = "{\\fromhtml1\r\n";
constexpr std::string_view kPlainTextHeader = "{\\fromtext\r\n";
constexpr std::string_view kTrailer = "}";
constexpr std::string_view kEscapedOpen = "\\{";
constexpr std::string_view kEscapedClose = "\\}";

// Output is handed to the stream in writes of up to this many bytes.
constexpr size_t kWriteBuffer = 16384;

constexpr size_t kTagCapacity = 15;
constexpr std::string_view kBasePrefix = "<BASE HREF=\"";
constexpr std::string_view kBaseSuffix = "\">";
constexpr size_t kBaseElementLimit = 1024;

bool is_byte_order_mark(const unsigned char (&bytes)[2], ULONG count) noexcept {
  return count == 2 && bytes[0] == 0xFF && bytes[1] == 0xFE;
}

// Writes every byte or reports why not: the stream's failure, or
// E_UNEXPECTED when it took fewer bytes than given.
HRESULT write_all(IStream* stream, std::string_view bytes) noexcept {
  if (bytes.empty()) return S_OK;
  ULONG written = 0;
  const HRESULT hr = stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written);
  if (FAILED(hr)) return hr;
  return written == bytes.size() ? S_OK : E_UNEXPECTED;
}

// The rest of a UTF-16 stream, after its byte-order mark, in the ANSI code
// page. Pieces are never joined: an odd byte at the end of a piece is lost
// and a surrogate pair split between pieces converts as two lone halves.
HRESULT convert_wide(IStream* input, com_ptr<IStream>& result) noexcept {
  com_ptr<IStream> converted;
  HRESULT hr = new_memory_stream(converted);
  if (FAILED(hr)) return hr;
  std::array<wchar_t, kWidePiece / sizeof(wchar_t)> units;
  std::array<char, kWidePiece> bytes;
  for (;;) {
    ULONG read = 0;
    hr = input->Read(units.data(), kWidePiece, &read);
    if (FAILED(hr)) return hr;
    if (read == 0) break;
    const int count = static_cast<int>(std::min(read, kWidePiece) / sizeof(wchar_t));
    if (count == 0) continue;
    const int length = ::WideCharToMultiByte(CP_ACP, 0, units.data(), count, bytes.data(),
                                             static_cast<int>(bytes.size()), nullptr, nullptr);
    if (length == 0) return HRESULT_FROM_WIN32(::GetLastError());
    hr = write_all(converted.get(), std::string_view(bytes.data(), static_cast<size_t>(length)));
    if (FAILED(hr)) return hr;
  }
  hr = converted->Commit(STGC_OVERWRITE);
  if (SUCCEEDED(hr)) hr = rewind(input);
  if (SUCCEEDED(hr)) hr = rewind(converted.get());
  if (SUCCEEDED(hr)) *result.put() = converted.release();
  return hr;
}

// Text that is already ANSI: the input itself, or a copy of it positioned at
// its end.
HRESULT take_ansi(IStream* input, bool copy, com_ptr<IStream>& result) noexcept {
  HRESULT hr = rewind(input);
  if (FAILED(hr)) return hr;
  if (!copy) {
    input->AddRef();
    *result.put() = input;
    return S_OK;
  }
  com_ptr<IStream> copied;
  hr = new_memory_stream(copied);
  if (FAILED(hr)) return hr;
  hr = input->CopyTo(copied.get(), large(kMaxAnsiCopy), nullptr, nullptr);
  if (SUCCEEDED(hr)) *result.put() = copied.release();
  return hr;
}

char ascii_lower(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The base element written after every bare head tag, cut at its limit.
class BaseElement {
 public:
  explicit BaseElement(const char* href) noexcept {
    if (href == nullptr || *href == '\0') return;
    append(kBasePrefix);
    append(std::string_view(href, ::strnlen(href, kBaseElementLimit)));
    append(kBaseSuffix);
  }
  bool empty() const noexcept { return length_ == 0; }
  std::string_view text() const noexcept { return {bytes_.data(), length_}; }

 private:
  void append(std::string_view part) noexcept {
    const size_t count = std::min(part.size(), bytes_.size() - length_);
    std::memcpy(bytes_.data() + length_, part.data(), count);
    length_ += count;
  }
  std::array<char, kBaseElementLimit> bytes_{};
  size_t length_ = 0;
};

// Writes the wrapped text into `out`, piece by piece, keeping the HTML tag
// state across pieces.
class RichTextWriter {
 public:
  RichTextWriter(IStream* out, Encapsulation kind, const char* base_href) noexcept
      : out_(out), html_(kind == Encapsulation::Html), base_(html_ ? base_href : nullptr) {}

  HRESULT header() noexcept { return write(html_ ? kHtmlHeader : kPlainTextHeader); }
  // The closing brace, and everything still held back.
  HRESULT finish() noexcept {
    const HRESULT hr = write(kTrailer);
    return FAILED(hr) ? hr : flush();
  }

  // True once the HTML end tag has ended the text: later pieces are not
  // wanted.
  bool ended() const noexcept { return ended_; }

  // One piece of the ANSI text, which starts `offset` bytes into it.
  HRESULT copy(std::string_view piece, ULONGLONG offset) noexcept {
    size_t run = 0;  // first byte of the piece not yet written or dropped
    for (size_t i = 0; i < piece.size(); ++i) {
      const char c = piece[i];
      if (c == '{' || c == '}') {
        HRESULT hr = write(piece.substr(run, i - run));
        if (SUCCEEDED(hr)) hr = write(c == '{' ? kEscapedOpen : kEscapedClose);
        if (FAILED(hr)) return hr;
        run = i + 1;
        continue;
      }
      if (!html_) continue;
      if (c == '<') {
        in_tag_ = true;
        tag_length_ = 0;
        tag_start_ = offset + i;
        continue;
      }
      if (!in_tag_) continue;
      if (c != '>') {
        if (tag_length_ < kTagCapacity) tag_[tag_length_++] = ascii_lower(c);
        continue;
      }
      in_tag_ = false;
      const std::string_view tag(tag_.data(), tag_length_);
      if (!seen_html_ && tag == "html") {
        seen_html_ = true;
        run = i + 1;
      } else if (!seen_end_html_ && tag == "/html") {
        seen_end_html_ = true;
        ended_ = true;
        if (tag_start_ < offset) return cut_at(tag_start_);
        const size_t tag_in_piece = static_cast<size_t>(tag_start_ - offset);
        return tag_in_piece > run ? write(piece.substr(run, tag_in_piece - run)) : S_OK;
      } else if (!base_.empty() && tag == "head") {
        HRESULT hr = write(piece.substr(run, i + 1 - run));
        if (SUCCEEDED(hr)) hr = write(base_.text());
        if (FAILED(hr)) return hr;
        run = i + 1;
      }
    }
    return write(piece.substr(run));
  }

 private:
  // Runs are collected and handed to the stream in large writes: a text
  // with many braces would otherwise grow the stream once per run.
  HRESULT write(std::string_view bytes) noexcept {
    if (pending_ + bytes.size() > buffer_.size()) {
      const HRESULT hr = flush();
      if (FAILED(hr)) return hr;
    }
    if (bytes.size() >= buffer_.size()) {
      const HRESULT hr = write_all(out_, bytes);
      if (FAILED(hr)) return hr;
    } else {
      std::memcpy(buffer_.data() + pending_, bytes.data(), bytes.size());
      pending_ += bytes.size();
    }
    written_ += bytes.size();
    return S_OK;
  }

  HRESULT flush() noexcept {
    const HRESULT hr = write_all(out_, std::string_view(buffer_.data(), pending_));
    pending_ = 0;
    return hr;
  }

  // An end tag whose '<' lay in an earlier piece: the output is cut at that
  // tag's offset in the ANSI text, as it always has been, although the
  // offset counts neither the header nor the escapes. It is never grown,
  // which would expose memory that nothing wrote.
  HRESULT cut_at(ULONGLONG ansi_offset) noexcept {
    HRESULT hr = flush();
    if (FAILED(hr)) return hr;
    const ULONGLONG size = std::min(ansi_offset, written_);
    hr = out_->SetSize(large(size));
    if (FAILED(hr)) return hr;
    LARGE_INTEGER position;
    position.QuadPart = static_cast<LONGLONG>(size);
    hr = out_->Seek(position, STREAM_SEEK_SET, nullptr);
    if (SUCCEEDED(hr)) written_ = size;
    return hr;
  }

  IStream* out_;
  std::array<char, kWriteBuffer> buffer_;
  size_t pending_ = 0;
  const bool html_;
  const BaseElement base_;
  ULONGLONG written_ = 0;
  bool in_tag_ = false;
  std::array<char, kTagCapacity> tag_{};
  size_t tag_length_ = 0;
  ULONGLONG tag_start_ = 0;
  bool seen_html_ = false;
  bool seen_end_html_ = false;
  bool ended_ = false;
};

}  // namespace

HRESULT multi_byte_stream(IStream* input, IStream** output, bool copy_when_not_unicode) noexcept {
  if (output == nullptr) return E_POINTER;
  *output = nullptr;
  if (input == nullptr) return E_POINTER;
  unsigned char mark[2] = {};
  ULONG read = 0;
  HRESULT hr = input->Read(mark, sizeof(mark), &read);
  if (FAILED(hr)) return hr;
  com_ptr<IStream> result;
  hr = is_byte_order_mark(mark, read) ? convert_wide(input, result)
                                      : take_ansi(input, copy_when_not_unicode, result);
  if (SUCCEEDED(hr)) {
    *output = result.release();
    hr = S_OK;
  }
  return hr;
}

HRESULT create_rich_text(IStream* source, IStream** rtf, Encapsulation kind, const char* base_href) noexcept {
  if (source == nullptr || rtf == nullptr) return E_POINTER;
  com_ptr<IStream> ansi;
  HRESULT hr = multi_byte_stream(source, ansi.put(), false);
  if (FAILED(hr)) return hr;
  com_ptr<IStream> out;
  hr = new_memory_stream(out);
  if (FAILED(hr)) return hr;
  RichTextWriter writer(out.get(), kind, base_href);
  hr = writer.header();
  if (FAILED(hr)) return hr;
  ULARGE_INTEGER size;
  hr = stream_size(ansi.get(), &size);
  if (FAILED(hr)) return hr;
  if (size.HighPart != 0) return E_INVALIDARG;

  std::array<char, kAnsiPiece> piece;
  for (ULONG offset = 0; offset < size.LowPart && !writer.ended();) {
    const ULONG wanted = std::min(kAnsiPiece, size.LowPart - offset);
    ULONG read = 0;
    hr = ansi->Read(piece.data(), wanted, &read);
    if (FAILED(hr)) return hr;
    if (read != wanted) return E_UNEXPECTED;
    hr = writer.copy(std::string_view(piece.data(), read), offset);
    if (FAILED(hr)) return hr;
    offset += read;
  }

  hr = writer.finish();
  if (SUCCEEDED(hr)) hr = out->Commit(STGC_OVERWRITE);
  if (SUCCEEDED(hr)) hr = rewind(source);
  if (SUCCEEDED(hr)) hr = rewind(out.get());
  if (FAILED(hr)) return hr;
  *rtf = out.release();
  return S_OK;
}

}  // namespace mvsup::text

extern "C" {

HRESULT WINAPI MultiByteStreamFromWideChar(IStream* input, IStream** output, BOOL copyWhenNotUnicode) {
  mvsup::trace::CallScope scope("MultiByteStreamFromWideChar");
  return scope.hr(mvsup::text::multi_byte_stream(input, output, copyWhenNotUnicode != FALSE));
}

HRESULT WINAPI CreateRTFStreamOnPlainText(IStream* text, IStream** rtf) {
  mvsup::trace::CallScope scope("CreateRTFStreamOnPlainText");
  return scope.hr(mvsup::text::create_rich_text(text, rtf, mvsup::text::Encapsulation::PlainText, nullptr));
}

HRESULT WINAPI CreateRTFStreamOnHTML(IStream* html, IStream** rtf, LPCSTR baseHref) {
  mvsup::trace::CallScope scope("CreateRTFStreamOnHTML");
  return scope.hr(mvsup::text::create_rich_text(html, rtf, mvsup::text::Encapsulation::Html, baseHref));
}

}  // extern "C"
