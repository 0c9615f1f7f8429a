// mvsup rtf: wraps a plain-text or HTML file as rich text through the
// library, exactly as the client's components get it.
#include <windows.h>
#include <objbase.h>

#include <optional>
#include <string>

#include "MvSup2u.h"
#include "binary_io.h"
#include "command.h"
#include "frame/win32_handles.h"
#include "output.h"

namespace mvsup::tool {
namespace {

struct Wrapped {
  std::string bytes;
  bool utf16 = false;  // the input started with the UTF-16 byte-order mark
};

// The base URL in the ANSI code page, as the library takes it; nullopt when
// the code page lacks one of its characters.
std::optional<std::string> ansi_text(const std::wstring& text) {
  if (text.empty()) return std::string();
  BOOL lossy = FALSE;
  const int length = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.c_str(), static_cast<int>(text.size()),
                                         nullptr, 0, nullptr, &lossy);
  if (length <= 0 || lossy) return std::nullopt;
  std::string ansi(static_cast<size_t>(length), '\0');
  WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.c_str(), static_cast<int>(text.size()), ansi.data(), length,
                      nullptr, nullptr);
  return ansi;
}

HRESULT wrap(const std::string& input, bool html, const char* base, Wrapped* out) {
  out->utf16 = input.size() >= 2 && input[0] == '\xFF' && input[1] == '\xFE';
  com_ptr<IStream> source;
  HRESULT hr = CreateStreamOnHGlobal(nullptr, TRUE, source.put());
  if (FAILED(hr)) return hr;
  ULONG written = 0;
  hr = source->Write(input.data(), static_cast<ULONG>(input.size()), &written);
  if (FAILED(hr)) return hr;
  // The byte-order mark is looked for at the stream's position.
  const LARGE_INTEGER start{};
  hr = source->Seek(start, STREAM_SEEK_SET, nullptr);
  if (FAILED(hr)) return hr;

  com_ptr<IStream> rtf;
  hr = html ? CreateRTFStreamOnHTML(source.get(), rtf.put(), base) : CreateRTFStreamOnPlainText(source.get(), rtf.put());
  if (FAILED(hr)) return hr;
  ULONG size = 0;
  hr = GetStreamLength(rtf.get(), &size);
  if (FAILED(hr)) return hr;
  out->bytes.resize(size);
  ULONG read = 0;
  hr = size ? rtf->Read(out->bytes.data(), size, &read) : S_OK;
  if (SUCCEEDED(hr) && read != size) hr = E_UNEXPECTED;
  return hr;
}

bool write_file(const std::wstring& path, const std::string& bytes, std::wstring* error) {
  unique_file file(
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  DWORD written = 0;
  if (!file || !WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ||
      written != bytes.size()) {
    *error = L"cannot write " + path + L" (error " + std::to_wstring(GetLastError()) + L")";
    return false;
  }
  return true;
}

int run_rtf(Args& args) {
  const bool html = args.take_flag(L"--html");
  const bool as_json = args.take_flag(L"--json");
  const std::optional<std::wstring> base = args.take_option(L"--base");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  const auto& words = args.rest();
  if (words.size() != 2) return fail(L"rtf needs an input and an output file (see mvsup rtf --help)");
  if (base && !html) return fail(L"--base applies to HTML only: add --html");
  const std::optional<std::string> base_ansi = ansi_text(base.value_or(L""));
  if (!base_ansi) return fail(L"the base URL has characters outside the ANSI code page");

  std::wstring error;
  const auto input = read_input(words[0], &error);
  if (!input) return fail(error);

  const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  Wrapped wrapped;
  const HRESULT hr = wrap(*input, html, base ? base_ansi->c_str() : nullptr, &wrapped);
  if (SUCCEEDED(com)) CoUninitialize();
  if (FAILED(hr)) return fail(L"rtf failed: " + hresult_text(hr));

  const std::wstring& out = words[1];
  if (out == L"-") {
    write_bytes(wrapped.bytes);
    return 0;
  }
  if (!write_file(out, wrapped.bytes, &error)) return fail(error);
  const wchar_t* kind = html ? L"html" : L"text";
  const wchar_t* encoding = wrapped.utf16 ? L"utf-16" : L"ansi";
  if (as_json) {
    write_out(JsonWriter()
                  .begin_object()
                  .string(L"input", words[0])
                  .string(L"output", out)
                  .string(L"kind", kind)
                  .string(L"encoding", encoding)
                  .number(L"inputBytes", static_cast<int64_t>(input->size()))
                  .number(L"outputBytes", static_cast<int64_t>(wrapped.bytes.size()))
                  .end_object()
                  .str());
  } else {
    write_out(L"wrote " + std::to_wstring(wrapped.bytes.size()) + L" bytes of rich text (" + kind + L", from " +
              std::to_wstring(input->size()) + L" bytes of " + encoding + L" input) to " + out + L"\n");
  }
  return 0;
}

const CommandRegistration kRtf{{
    L"rtf",
    L"Wrap a plain-text or HTML file as rich text",
    L"Usage: mvsup rtf [--html] [--base URL] [--json] IN OUT\n\n"
    L"Wraps the text of IN as the library does for the client's components and\n"
    L"writes the result to OUT: \"{\\fromtext\" (or \"{\\fromhtml1\" with --html), a line\n"
    L"break, the text in the ANSI code page with every brace escaped, and \"}\".\n"
    L"IN may be UTF-16 with a byte-order mark or ANSI text. With --html the text\n"
    L"before a bare <html> tag and from a bare </html> tag on is left out, and\n"
    L"--base URL adds <BASE HREF=\"URL\"> after every bare <head> tag.\n"
    L"IN \"-\" reads standard input; OUT \"-\" writes the rich text to standard\n"
    L"output and nothing else.\n\n"
    L"  --html       wrap as HTML\n"
    L"  --base URL   base element for HTML (ANSI characters only)\n"
    L"  --json       the summary as a JSON object\n",
    run_rtf,
}};

}  // namespace
}  // namespace mvsup::tool
