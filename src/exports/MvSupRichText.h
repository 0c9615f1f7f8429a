/** @file
   MvSup2u: rich text from HTML and plain text.

   The text is not translated into RTF formatting: it is wrapped, byte for
   byte in the ANSI code page, in one RTF group that marks it as
   encapsulated HTML (`"{\fromhtml1"` CR LF) or encapsulated plain text
   (`"{\fromtext"` CR LF), closed by "}". Inside, every '{' is written as
   `"\{"` and every '}' as `"\}"`; nothing else is escaped (backslashes, line
   breaks and bytes above 0x7F pass through). No `\rtf1` header, font table
   or colour table is written.

   Input streams may hold UTF-16 text that starts with the little-endian
   byte-order mark (FF FE), or ANSI text. Streams handed out are
   CreateStreamOnHGlobal memory streams with one reference for the caller,
   who releases them. The caller must have initialised COM on its thread;
   the functions keep no state and may run on several threads at once with
   different streams. */
#ifndef MVSUP_RICH_TEXT_H
#define MVSUP_RICH_TEXT_H

#include <windows.h>
#include <objbase.h>
#include <objidl.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Brings a stream down to the ANSI code page.

    Sets *output to null and reads the first two bytes of input at its
    current position. When they are the UTF-16 byte-order mark, the rest of
    input is read in pieces of 2048 bytes; each piece is converted on its
    own with WideCharToMultiByte(CP_ACP), so an odd last byte of a piece is
    dropped and a surrogate pair split between two pieces becomes two lone
    halves (each written as '?' in a single-byte code page). The new stream
    and input are then both set back to their start.
    Otherwise input is taken as ANSI text already: it is set back to its
    start and handed back itself with an added reference (copyWhenNotUnicode
    FALSE), or copied (at most 0x7FFF0000 bytes) into a new stream that is
    handed back positioned at its end (copyWhenNotUnicode TRUE).

    @return S_OK; E_UNEXPECTED when a write into the new stream stores fewer
            bytes than given; the failure of a read, seek, write, commit,
            copy or conversion, or of the stream's creation; E_POINTER for a
            null input or output pointer.
    Ownership: *output holds one reference for the caller (also when it is
    input itself); nothing is handed out on failure. */
HRESULT WINAPI MultiByteStreamFromWideChar(IStream* input, IStream** output, BOOL copyWhenNotUnicode);

/** Wraps plain text as "{\fromtext" CR LF, the text with its braces
    escaped, and "}".

    The text is brought to the ANSI code page as MultiByteStreamFromWideChar
    does and read from its start in pieces of at most 1024 bytes. On success
    text and the new stream are set back to their start.

    @return S_OK; E_INVALIDARG for ANSI text of 4 GB or more; E_UNEXPECTED
            when a read brings fewer bytes than the text's size promised or
            a write stores fewer than given; the failure of any stream call;
            E_POINTER for a null text or rtf pointer.
    Ownership: *rtf receives a new stream with one reference for the
    caller; on failure *rtf is left as it was and every stream made on the
    way is released. */
HRESULT WINAPI CreateRTFStreamOnPlainText(IStream* text, IStream** rtf);

/** Wraps HTML as "{\fromhtml1" CR LF, the text with its braces escaped, and
    "}", editing the HTML while it is copied.

    A tag is the bytes between '<' and '>' (braces excluded, the first 15
    kept), compared without regard to case, so only bare tags match:
    - the first "<html>" is dropped, together with the bytes before it that
      are not yet written (since the start of the current 1024-byte piece or
      the last escaped brace);
    - the first "</html>" ends the text before its '<'. When that '<' lies
      in an earlier piece than its '>', the output is cut to as many bytes
      as the '<' lies from the start of the ANSI text (counting neither the
      header nor the escapes) before "}" is added; what the output then
      holds is not a promise to callers;
    - after every "<head>", "<BASE HREF=\"baseHref\">" is written (at most
      1024 bytes, baseHref unescaped), unless baseHref is null or empty.

    @return as CreateRTFStreamOnPlainText.
    Ownership: as CreateRTFStreamOnPlainText; baseHref stays the caller's. */
HRESULT WINAPI CreateRTFStreamOnHTML(IStream* html, IStream** rtf, LPCSTR baseHref);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_RICH_TEXT_H */
