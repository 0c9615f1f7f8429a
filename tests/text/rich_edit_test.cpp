// A real reader of what we write: the system's rich-edit controls load the
// streams the exports make (under Xvfb), and the text they show is compared
// with the source.
#include <windows.h>
#include <richedit.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "MvSup2u.h"
#include "common/memory_streams.h"

namespace mvsup::test {
namespace {

using namespace std::string_literals;

// The whole output of one export over `input` (an output stream at its
// start is read from there).
std::string output_of(const std::string& input, const std::function<HRESULT(IStream*, IStream**)>& call) {
  Held<IStream> source(memory_stream(input));
  Held<IStream> output;
  EXPECT_EQ(call(source.get(), output.put()), S_OK);
  return output.get() ? stream_bytes(output.get()) : std::string();
}

std::string plain_rtf(const std::string& input) { return output_of(input, CreateRTFStreamOnPlainText); }
std::string html_rtf(const std::string& input, const char* base = nullptr) {
  return output_of(input, [base](IStream* in, IStream** out) { return CreateRTFStreamOnHTML(in, out, base); });
}
std::string ansi_of(const std::string& input) {
  return output_of(input, [](IStream* in, IStream** out) { return MultiByteStreamFromWideChar(in, out, TRUE); });
}

std::string utf16(const std::wstring& text) {
  std::string bytes = "\xFF\xFE";
  bytes.append(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
  return bytes;
}

std::wstring from_ansi(const std::string& text) {
  std::wstring wide(text.size(), L'\0');
  const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                                         static_cast<int>(wide.size()));
  wide.resize(static_cast<size_t>(length));
  return wide;
}

struct StreamIn {
  LRESULT result = -1;  // EM_STREAMIN's answer: the characters read
  LONG error = 0;       // EDITSTREAM::dwError
};

struct Feed {
  std::string bytes;
  size_t offset = 0;
};

// Hands the bytes over in calls as large as the control asks for, so the
// first call carries the whole start of the stream (the 2.0 control decides
// on its first buffer).
DWORD CALLBACK feed_bytes(DWORD_PTR cookie, LPBYTE buffer, LONG wanted, LONG* given) {
  Feed& feed = *reinterpret_cast<Feed*>(cookie);
  const size_t count = std::min<size_t>(static_cast<size_t>(wanted), feed.bytes.size() - feed.offset);
  memcpy(buffer, feed.bytes.data() + feed.offset, count);
  feed.offset += count;
  *given = static_cast<LONG>(count);
  return 0;
}

class RichEdit : public ComTest {
 protected:
  void SetUp() override {
    ComTest::SetUp();
    version1_ = LoadLibraryW(L"riched32.dll");
    version2_ = LoadLibraryW(L"riched20.dll");
    ASSERT_NE(version1_, nullptr);
    ASSERT_NE(version2_, nullptr);
  }
  void TearDown() override {
    for (HWND window : windows_) DestroyWindow(window);
    if (version1_) FreeLibrary(version1_);
    if (version2_) FreeLibrary(version2_);
    ComTest::TearDown();
  }

  HWND control(const wchar_t* window_class) {
    HWND window = CreateWindowExW(0, window_class, L"", WS_POPUP | ES_MULTILINE, 0, 0, 400, 300, nullptr, nullptr,
                                  GetModuleHandleW(nullptr), nullptr);
    EXPECT_NE(window, nullptr) << "no window of class " << testing::PrintToString(std::wstring(window_class));
    if (window) windows_.push_back(window);
    return window;
  }
  HWND version1() { return control(L"RichEdit"); }
  HWND version2() { return control(L"RichEdit20W"); }

  static StreamIn stream_in(HWND edit, const std::string& bytes, WPARAM format) {
    Feed feed{bytes};
    EDITSTREAM stream{reinterpret_cast<DWORD_PTR>(&feed), 0, feed_bytes};
    StreamIn result;
    result.result = SendMessageW(edit, EM_STREAMIN, format, reinterpret_cast<LPARAM>(&stream));
    result.error = static_cast<LONG>(stream.dwError);
    return result;
  }

  static std::wstring text_of(HWND edit) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(edit)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(edit, text.data(), static_cast<int>(text.size()))));
    return text;
  }

  // The text a 1.0 control shows after loading `rtf`.
  std::wstring read_back(const std::string& rtf, WPARAM format = SF_RTF) {
    HWND edit = version1();
    if (!edit) return L"<no control>";
    const StreamIn in = stream_in(edit, rtf, format);
    EXPECT_GT(in.result, 0);
    EXPECT_EQ(in.error, 0);
    return text_of(edit);
  }

 private:
  HMODULE version1_ = nullptr;
  HMODULE version2_ = nullptr;
  std::vector<HWND> windows_;
};

// Text without line breaks and without a backslash before a letter or a
// brace reads back exactly as it was: the 1.0 control only looks for the
// leading '{', drops the unknown control word of the header and turns "\{"
// and "\}" back into braces.
TEST_F(RichEdit, RichEdit10ReadsBackTheSourceOfEveryOutput) {
  ASSERT_EQ(GetACP(), 1252u);
  const std::string ansi = "Braces {a} {{b}} }{ and \xE9\xFC\xDF \x80 [x] <p> end";
  EXPECT_EQ(read_back(plain_rtf(ansi)), from_ansi(ansi));

  const std::wstring wide = L"wide {\u00E9} \u20AC }}";
  EXPECT_EQ(read_back(plain_rtf(utf16(wide))), wide);
  EXPECT_EQ(read_back(html_rtf(utf16(wide))), wide);

  EXPECT_EQ(read_back(html_rtf("lead<HTML><head><title>{t}</title></head><body>x {y}</body></HTML>rest",
                               "http://server/docs/")),
            L"<head><BASE HREF=\"http://server/docs/\"><title>{t}</title></head><body>x {y}</body>");

  // Many pieces of both sizes, braces at and around the piece boundaries.
  std::string long_text;
  for (int i = 0; long_text.size() < 9000; ++i) long_text += (i % 7 == 0 ? "{" : i % 11 == 0 ? "}" : "text ");
  EXPECT_EQ(read_back(plain_rtf(long_text)), from_ansi(long_text));
  std::wstring long_wide(long_text.begin(), long_text.end());
  EXPECT_EQ(read_back(html_rtf(utf16(long_wide))), long_wide);

  // The ANSI stream is plain text to the control, line breaks included.
  const std::wstring lines = L"w{\u00E9}\r\nz \\slash \u00FC";
  EXPECT_EQ(read_back(ansi_of(utf16(lines)), SF_TEXT), lines);
}

// What the body holds besides braces is RTF to the reader: line breaks are
// dropped, a control word after a backslash disappears with its delimiter,
// so is a backslash before a space, a doubled backslash is one, and a
// backslash before a brace turns the escape into a backslash and a group
// that the trailer then closes, leaving the outer group open at the end.
TEST_F(RichEdit, RichEdit10ReadsLineBreaksAndBackslashesInTheTextAsRtf) {
  EXPECT_EQ(read_back(plain_rtf("a\r\nb \\slash c\\\\d\\ e")), L"ab c\\de");
  HWND edit = version1();
  ASSERT_NE(edit, nullptr);
  const StreamIn in = stream_in(edit, plain_rtf("x\\{y}z"), SF_RTF);
  EXPECT_EQ(in.error, HRESULT_FROM_WIN32(ERROR_HANDLE_EOF));
  EXPECT_EQ(in.result, 5);
  EXPECT_EQ(text_of(edit), L"x\\y}z");
  EXPECT_EQ(read_back(html_rtf("<p>\r\none</p>\r\n<p>two</p>")), L"<p>one</p><p>two</p>");
}

// The 2.0 control wants "{\rtf" or "{\urtf" at the start of its first buffer
// and refuses the encapsulations (the output stays as it is: no RTF header
// is added for it). Without SFF_SELECTION the refusal also wipes the old text.
TEST_F(RichEdit, RichEdit20RefusesEncapsulatedStreams) {
  for (const std::string& rtf : {plain_rtf("plain {text}"), html_rtf("<html><p>html</p></html>")}) {
    SCOPED_TRACE(rtf);
    HWND edit = version2();
    ASSERT_NE(edit, nullptr);
    SetWindowTextW(edit, L"old text");
    StreamIn in = stream_in(edit, rtf, SF_RTF);
    EXPECT_EQ(in.result, 0);
    EXPECT_EQ(in.error, -16);
    EXPECT_EQ(text_of(edit), L"");

    SetWindowTextW(edit, L"old text");
    in = stream_in(edit, rtf, SF_RTF | SFF_SELECTION);
    EXPECT_EQ(in.result, 0);
    EXPECT_EQ(in.error, -16);
    EXPECT_EQ(text_of(edit), L"old text");
  }
  // The same feed gets a stream with a header in.
  HWND edit = version2();
  ASSERT_NE(edit, nullptr);
  const StreamIn in = stream_in(edit, "{\\rtf1 x\\{y\\}}", SF_RTF);
  EXPECT_GT(in.result, 0);
  EXPECT_EQ(in.error, 0);
  EXPECT_EQ(text_of(edit), L"x{y}");
}

}  // namespace
}  // namespace mvsup::test
