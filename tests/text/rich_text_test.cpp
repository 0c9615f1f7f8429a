// Rich text through the exports, byte for byte: the wrapping, the UTF-16
// pieces, the HTML tag rules across 1024-byte pieces, and the results of
// failing input streams. Expected outputs are written out by hand from the
// format (header, escaped body, "}").
#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "MvSup2u.h"
#include "common/fake_stream.h"
#include "common/memory_streams.h"

namespace mvsup::test {
namespace {

using namespace std::string_literals;
using Method = FakeStream::Method;

const std::string kText = "{\\fromtext\r\n";
const std::string kHtml = "{\\fromhtml1\r\n";
const HRESULT kInjected = STG_E_READFAULT;

// UTF-16 little-endian bytes with the byte-order mark.
std::string utf16(const std::wstring& text) {
  std::string bytes = "\xFF\xFE";
  for (wchar_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

struct Wrapped {
  HRESULT hr = E_UNEXPECTED;
  std::string bytes;  // the whole output stream
};

// Runs one of the wrapping exports over `input` and checks what every
// success promises: a stream of its own with one reference, at its start,
// and the input set back to its start with its references as they were.
Wrapped wrap(IStream* input, const std::function<HRESULT(IStream*, IStream**)>& call) {
  const ULONG references = reference_count(input);
  IStream* const sentinel = reinterpret_cast<IStream*>(static_cast<uintptr_t>(0xdeadbeef));
  IStream* rtf = sentinel;
  Wrapped result;
  result.hr = call(input, &rtf);
  EXPECT_EQ(reference_count(input), references) << "the input's references";
  if (FAILED(result.hr)) {
    EXPECT_EQ(rtf, sentinel) << "the output is not set on failure";
    return result;
  }
  EXPECT_EQ(result.hr, S_OK);
  EXPECT_NE(rtf, input);
  EXPECT_EQ(stream_position(rtf), 0u);
  EXPECT_EQ(stream_position(input), 0u);
  result.bytes = stream_bytes(rtf);
  EXPECT_EQ(rtf->Release(), 0u) << "the caller holds the only reference";
  return result;
}

Wrapped plain(IStream* input) { return wrap(input, CreateRTFStreamOnPlainText); }
Wrapped html(IStream* input, const char* base = nullptr) {
  return wrap(input, [base](IStream* in, IStream** out) { return CreateRTFStreamOnHTML(in, out, base); });
}

Wrapped plain(const std::string& bytes) {
  Held<IStream> input(memory_stream(bytes));
  return plain(input.get());
}
Wrapped html(const std::string& bytes, const char* base = nullptr) {
  Held<IStream> input(memory_stream(bytes));
  return html(input.get(), base);
}

void expect_wrapped(const Wrapped& wrapped, const std::string& expected) {
  EXPECT_EQ(wrapped.hr, S_OK);
  EXPECT_EQ(wrapped.bytes, expected);
}

class RichText : public ComTest {};

TEST_F(RichText, PlainTextIsWrappedWithOnlyBracesEscaped) {
  expect_wrapped(plain(""), kText + "}");
  expect_wrapped(plain("{"), kText + "\\{}");
  expect_wrapped(plain("a{b}c\\d \\par\r\n\xE9\x80\x01 <html>"s),
                 kText + "a\\{b\\}c\\d \\par\r\n\xE9\x80\x01 <html>}");
  expect_wrapped(plain("}}{{"), kText + "\\}\\}\\{\\{}");
  // Without a byte-order mark even UTF-16 text is taken as ANSI bytes.
  expect_wrapped(plain("a\0{\0"s), kText + "a\0\\{\0}"s);
  // The position the input had does not matter: it is read from its start.
  Held<IStream> input(memory_stream("abc", 2));
  expect_wrapped(plain(input.get()), kText + "abc}");
}

TEST_F(RichText, Utf16TextIsBroughtToTheAnsiCodePage) {
  ASSERT_EQ(GetACP(), 1252u) << "the tests' expected bytes are code page 1252";
  const std::string source = utf16(L"x{\u00E9}\u20AC\u00FC\\");
  const std::string ansi = "x{\xE9}\x80\xFC\\";
  expect_wrapped(plain(source), kText + "x\\{\xE9\\}\x80\xFC\\}");
  expect_wrapped(html(source), kHtml + "x\\{\xE9\\}\x80\xFC\\}");

  for (BOOL copy : {FALSE, TRUE}) {
    Held<IStream> input(memory_stream(source));
    Held<IStream> output;
    EXPECT_EQ(MultiByteStreamFromWideChar(input.get(), output.put(), copy), S_OK);
    ASSERT_NE(output.get(), nullptr);
    EXPECT_EQ(stream_bytes(output.get()), ansi);
    EXPECT_EQ(stream_position(output.get()), 0u);
    EXPECT_EQ(stream_position(input.get()), 0u);
    EXPECT_EQ(output.release(), 0u);
    EXPECT_EQ(input.release(), 0u);
  }
}

TEST_F(RichText, AnsiTextIsHandedBackItselfOrAsACopyAtItsEnd) {
  for (const std::string& text : {"plain text"s, ""s, "x"s, "\xFE\xFF reversed mark"s}) {
    SCOPED_TRACE(text);
    Held<IStream> input(memory_stream(text, text.size() / 2));
    Held<IStream> same;
    EXPECT_EQ(MultiByteStreamFromWideChar(input.get(), same.put(), FALSE), S_OK);
    EXPECT_EQ(same.get(), input.get());
    EXPECT_EQ(stream_position(input.get()), 0u);
    EXPECT_EQ(same.release(), 1u);

    Held<IStream> copy;
    EXPECT_EQ(MultiByteStreamFromWideChar(input.get(), copy.put(), TRUE), S_OK);
    ASSERT_NE(copy.get(), nullptr);
    EXPECT_NE(copy.get(), input.get());
    EXPECT_EQ(stream_bytes(copy.get()), text);
    EXPECT_EQ(stream_position(copy.get()), text.size()) << "handed back as it stands after the copy";
    EXPECT_EQ(copy.release(), 0u);
    EXPECT_EQ(input.release(), 0u);
  }
}

// UTF-16 is converted in 2048-byte pieces that are never joined again.
TEST_F(RichText, EachUtf16PieceIsConvertedOnItsOwn) {
  // A surrogate pair split by the piece boundary becomes two lone halves:
  // two '?' where the whole pair converts on its own terms.
  const std::wstring split = std::wstring(1023, L'a') + L"\U0001F600" + L"b";
  const std::wstring whole = std::wstring(1022, L'a') + L"\U0001F600" + L"b";
  char pair[8] = {};
  const int pair_length = WideCharToMultiByte(CP_ACP, 0, L"\U0001F600", 2, pair, sizeof(pair), nullptr, nullptr);
  ASSERT_GT(pair_length, 0);
  expect_wrapped(plain(utf16(split)), kText + std::string(1023, 'a') + "??b}");
  expect_wrapped(plain(utf16(whole)), kText + std::string(1022, 'a') + std::string(pair, pair_length) + "b}");

  // A piece with an odd byte count loses its last byte, and the next piece
  // starts in the middle of a unit: 0x00 0x41 reads as U+4100, '?'.
  FakeStream odd(utf16(std::wstring(2048, L'A')));
  odd.limit_reads(2047);
  Held<IStream> ansi;
  EXPECT_EQ(MultiByteStreamFromWideChar(&odd, ansi.put(), FALSE), S_OK);
  ASSERT_NE(ansi.get(), nullptr);
  EXPECT_EQ(stream_bytes(ansi.get()), std::string(1023, 'A') + std::string(1023, '?') + "A");
  EXPECT_EQ(ansi.release(), 0u);
  EXPECT_EQ(odd.references(), 1u);
  // An odd byte at the very end is dropped too; a lone mark is empty text.
  expect_wrapped(plain(utf16(L"ab") + "c"), kText + "ab}");
  expect_wrapped(plain(utf16(L"")), kText + "}");
}

TEST_F(RichText, HtmlKeepsWhatLiesBetweenTheBareHtmlTags) {
  expect_wrapped(html("junk <HTML><body>{x}</body></HTML> trailing {text}"),
                 kHtml + "<body>\\{x\\}</body>}");
  // Only bare tags match; what matches is dropped or cut once.
  expect_wrapped(html("a<html lang=\"en\">b</html >c"), kHtml + "a<html lang=\"en\">b</html >c}");
  expect_wrapped(html("<html>a<html>b</html>c</html>d"), kHtml + "a<html>b}");
  expect_wrapped(html("a</html>b<html>c"), kHtml + "a}");
  // A second '<' starts the tag over; braces are escaped inside tags and
  // never enter the tag, and the dropped run starts after the last escape.
  expect_wrapped(html("a<<html>>b"), kHtml + ">b}");
  expect_wrapped(html("x<ht{ml>y"), kHtml + "x<ht\\{y}");
  // Only the first 15 characters of a tag are kept: a long tag never
  // matches, whatever it starts with.
  expect_wrapped(html("<html123456789012345>x"), kHtml + "<html123456789012345>x}");
  // Plain text knows no tags.
  expect_wrapped(plain("a<html>b</html>c"), kText + "a<html>b</html>c}");
}

TEST_F(RichText, BaseElementFollowsEveryBareHeadTag) {
  const char* base = "http://server/docs/";
  expect_wrapped(html("<html><head><title>t</title></head><HEAD>x</html>", base),
                 kHtml + "<head><BASE HREF=\"http://server/docs/\"><title>t</title></head>"
                         "<HEAD><BASE HREF=\"http://server/docs/\">x}");
  expect_wrapped(html("<head id=x><head >", base), kHtml + "<head id=x><head >}");
  expect_wrapped(html("{<head>}", base), kHtml + "\\{<head><BASE HREF=\"http://server/docs/\">\\}}");
  for (const char* none : {static_cast<const char*>(nullptr), ""})
    expect_wrapped(html("<head>x", none), kHtml + "<head>x}");
  // The base is written as given (no escapes) and cut at 1024 bytes.
  expect_wrapped(html("<head>", "a{b}"), kHtml + "<head><BASE HREF=\"a{b}\">}");
  const std::string long_base(2000, 'u');
  const std::string element = ("<BASE HREF=\"" + long_base).substr(0, 1024);
  expect_wrapped(html("<head>x", long_base.c_str()), kHtml + "<head>" + element + "x}");
  // A head tag split between two pieces still gets its element.
  const std::string split = std::string(1020, 'p') + "<head>x";
  expect_wrapped(html(split, "b"), kHtml + std::string(1020, 'p') + "<head><BASE HREF=\"b\">x}");
}

// The text is wrapped in 1024-byte pieces, and the end tag's rule depends
// on the piece its '<' lies in.
TEST_F(RichText, EndTagRuleAcross1024BytePieces) {
  // In the piece of its '>': the text ends before the '<', also in a later
  // piece, and later pieces are not read.
  expect_wrapped(html(std::string(1500, 'x') + "</html>" + std::string(3000, 'y')),
                 kHtml + std::string(1500, 'x') + "}");
  {
    FakeStream input(std::string(1500, 'x') + "</html>" + std::string(3000, 'y'));
    expect_wrapped(html(&input), kHtml + std::string(1500, 'x') + "}");
    EXPECT_EQ(input.calls(Method::Read), 1 + 2) << "the mark, then two pieces";
  }
  // The '<' at offset 1020 in the first piece, the '>' in the second: the
  // output is cut to 1020 bytes, counted from the start of the output
  // although the offset is one in the input (the header's 13 bytes are not
  // allowed for), then closed.
  const std::string body = std::string(1020, 'x') + "</html>after";
  expect_wrapped(html(body), (kHtml + std::string(1020, 'x')).substr(0, 1020) + "}");
  // Escapes before it shift the cut the same way.
  const std::string braces = "{}" + std::string(1018, 'x') + "</html>";
  expect_wrapped(html(braces), (kHtml + "\\{\\}" + std::string(1018, 'x')).substr(0, 1020) + "}");
  // A cut beyond what was written (a dropped <html> run) never grows the
  // output.
  const std::string dropped = std::string(1010, 'x') + "<html>" + "yyyy" + "</html>";
  expect_wrapped(html(dropped), kHtml + "yyyy</ht}");
}

TEST_F(RichText, FailingInputStreamsGiveTheirFailure) {
  struct Case {
    const char* what;
    std::string bytes;
    std::function<void(FakeStream&)> arrange;
    HRESULT result;
  };
  const std::string ansi = "some {text} " + std::string(3000, 'z');
  const std::string wide = utf16(std::wstring(3000, L'w'));
  const Case cases[] = {
      {"first read fails", ansi, [](FakeStream& s) { s.fail(Method::Read, kInjected); }, kInjected},
      {"a later ANSI read fails", ansi, [](FakeStream& s) { s.fail(Method::Read, kInjected, 3); }, kInjected},
      {"a later UTF-16 read fails", wide, [](FakeStream& s) { s.fail(Method::Read, kInjected, 3); }, kInjected},
      {"rewind fails", ansi, [](FakeStream& s) { s.fail(Method::Seek, STG_E_INVALIDFUNCTION); },
       STG_E_INVALIDFUNCTION},
      {"size query fails", ansi, [](FakeStream& s) { s.fail(Method::Stat, kInjected); }, kInjected},
      {"4 GB or more", ansi, [](FakeStream& s) { s.report_size(0x100000000ull); }, E_INVALIDARG},
      {"size larger than the text", ansi, [](FakeStream& s) { s.report_size(4000); }, E_UNEXPECTED},
      {"short reads", ansi, [](FakeStream& s) { s.limit_reads(1000); }, E_UNEXPECTED},
      {"a full piece read that says S_FALSE is no failure", ansi,
       [](FakeStream& s) { s.limit_reads(1024, S_FALSE); }, S_OK},
      {"the final rewind of a UTF-16 input fails", wide,
       [](FakeStream& s) { s.fail(Method::Seek, STG_E_INVALIDFUNCTION, 2); }, STG_E_INVALIDFUNCTION},
  };
  for (const Case& c : cases) {
    for (bool as_html : {false, true}) {
      SCOPED_TRACE(testing::Message() << c.what << (as_html ? ", HTML" : ", plain text"));
      FakeStream input(c.bytes);
      c.arrange(input);
      const Wrapped wrapped = as_html ? html(&input, "b") : plain(&input);
      EXPECT_EQ(wrapped.hr, c.result);
      EXPECT_EQ(input.references(), 1u);
    }
  }

  // The copy of an ANSI input fails.
  FakeStream input("text");
  input.fail(Method::CopyTo, kInjected);
  IStream* output = reinterpret_cast<IStream*>(1);
  EXPECT_EQ(MultiByteStreamFromWideChar(&input, &output, TRUE), kInjected);
  EXPECT_EQ(output, nullptr);
  EXPECT_EQ(input.references(), 1u);
}

TEST_F(RichText, NullArgumentsGiveEPointer) {
  FakeStream input("text");
  IStream* output = reinterpret_cast<IStream*>(1);
  EXPECT_EQ(MultiByteStreamFromWideChar(nullptr, &output, FALSE), E_POINTER);
  EXPECT_EQ(output, nullptr);
  EXPECT_EQ(MultiByteStreamFromWideChar(&input, nullptr, FALSE), E_POINTER);
  output = reinterpret_cast<IStream*>(1);
  EXPECT_EQ(CreateRTFStreamOnPlainText(nullptr, &output), E_POINTER);
  EXPECT_EQ(CreateRTFStreamOnHTML(nullptr, &output, "b"), E_POINTER);
  EXPECT_EQ(output, reinterpret_cast<IStream*>(1));
  EXPECT_EQ(CreateRTFStreamOnPlainText(&input, nullptr), E_POINTER);
  EXPECT_EQ(CreateRTFStreamOnHTML(&input, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(input.total_calls(), 0);
}

}  // namespace
}  // namespace mvsup::test
