// Rich text of 1 MiB of HTML (ANSI) and of 1 MiB of UTF-16 text, side by
// side with the least any wrapper must do in the same run: the input's bytes
// moved into a new memory stream (IStream::CopyTo), and for UTF-16 one
// WideCharToMultiByte over the whole text written into a new memory stream.
#include <windows.h>

#include <cstdio>
#include <string>

#include "MvSup2u.h"
#include "bench.h"

namespace mvsup::bench {
namespace {

constexpr size_t kTotal = 1 << 20;

double mb_per_s(double seconds) { return kTotal / seconds / 1e6; }

void report(const char* what, double ours, double theirs, const char* peer) {
  std::printf("  %-34s MvSup2u %8.1f MB/s   %-14s %8.1f MB/s   ratio %6.2fx\n", what, mb_per_s(ours), peer,
              mb_per_s(theirs), theirs / ours);
}

IStream* stream_of(const std::string& bytes) {
  IStream* stream = nullptr;
  CreateStreamOnHGlobal(nullptr, TRUE, &stream);
  ULONG written = 0;
  stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written);
  return stream;
}

void rewind(IStream* stream) {
  const LARGE_INTEGER start{};
  stream->Seek(start, STREAM_SEEK_SET, nullptr);
}

// Moving the input into a new memory stream: the floor for any wrapper.
double copy_seconds(IStream* input, size_t size) {
  return seconds_per_call(
      [&] {
        rewind(input);
        IStream* copy = nullptr;
        CreateStreamOnHGlobal(nullptr, TRUE, &copy);
        ULARGE_INTEGER count;
        count.QuadPart = size;
        input->CopyTo(copy, count, nullptr, nullptr);
        keep(copy);
        copy->Release();
      },
      5, 7);
}

void run() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);

  // Markup-like text with a brace every 100 bytes or so and one head tag.
  std::string html = "<html><head><title>t</title></head><body>";
  for (int i = 0; html.size() < kTotal - 16; ++i) html += (i % 12 == 0) ? "<p>{x}</p>\r\n" : "some body text ";
  html.resize(kTotal - 7);
  html += "</html>";
  IStream* html_input = stream_of(html);
  const double html_ours = seconds_per_call(
      [&] {
        IStream* rtf = nullptr;
        CreateRTFStreamOnHTML(html_input, &rtf, "http://server/docs/");
        keep(rtf);
        rtf->Release();
      },
      5, 7);
  report("HTML to rich text, 1 MiB", html_ours, copy_seconds(html_input, html.size()), "CopyTo");

  const double plain_ours = seconds_per_call(
      [&] {
        IStream* rtf = nullptr;
        CreateRTFStreamOnPlainText(html_input, &rtf);
        keep(rtf);
        rtf->Release();
      },
      5, 7);
  report("plain text to rich text, 1 MiB", plain_ours, copy_seconds(html_input, html.size()), "CopyTo");

  // UTF-16: 512 Ki units of Latin-1 text.
  std::wstring wide(L"\uFEFF");
  for (int i = 0; wide.size() < kTotal / 2; ++i) wide += (i % 9 == 0) ? L"caf\u00E9 {x} " : L"wide text ";
  wide.resize(kTotal / 2);
  const std::string wide_bytes(reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(wchar_t));
  IStream* wide_input = stream_of(wide_bytes);
  const double convert_ours = seconds_per_call(
      [&] {
        rewind(wide_input);
        IStream* ansi = nullptr;
        MultiByteStreamFromWideChar(wide_input, &ansi, FALSE);
        keep(ansi);
        ansi->Release();
      },
      5, 7);
  std::string ansi(wide.size() * 2, '\0');
  const double convert_theirs = seconds_per_call(
      [&] {
        const int length = WideCharToMultiByte(CP_ACP, 0, wide.data() + 1, static_cast<int>(wide.size() - 1),
                                               ansi.data(), static_cast<int>(ansi.size()), nullptr, nullptr);
        IStream* out = nullptr;
        CreateStreamOnHGlobal(nullptr, TRUE, &out);
        ULONG written = 0;
        out->Write(ansi.data(), static_cast<ULONG>(length), &written);
        keep(out);
        out->Release();
      },
      5, 7);
  report("UTF-16 to ANSI stream, 1 MiB", convert_ours, convert_theirs, "one conversion");

  html_input->Release();
  wide_input->Release();
  CoUninitialize();
}

const BenchRegistration kText("text", run);

}  // namespace
}  // namespace mvsup::bench
