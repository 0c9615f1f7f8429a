/** @file
   MvSup2u: content types, file extensions, format names, and the URLs of
   the server.

   A document's content is named three ways: by file extension (".xls"), by
   MIME type ("application/vnd.ms-excel", what the server stores) and by a
   short format name ("MS Excel", shown to users). The machine's MIME database
   (`HKEY_CLASSES_ROOT\MIME\Database\Content Type`) is asked first, on every
   call; two built-in tables answer where it knows nothing, and the format
   names come from the built-in table only. Comparisons ignore case.

   The extension of a file name is the part of its title (the text after the
   last '\' or '/') from its last '.' on; a title without '.' or ending in '.'
   has none. Text arguments: a null pointer counts as the empty string.

   Functions that return LPCWSTR hand out constant text or a static buffer of
   the library that the next call of the same function (on any thread)
   overwrites; the caller frees nothing. The functions that fill a caller's
   buffer are safe to call from several threads at once. */
#ifndef MVSUP_CONTENT_H
#define MVSUP_CONTENT_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Content types ---- */

/**
 * The MIME type of a file name into the caller's buffer.
 *
 * The first subkey of the MIME database, in the registry's index order,
 * whose "Extension" value equals the file's extension gives the type (a
 * subkey that cannot be opened ends that search); otherwise the built-in
 * extension table does.
 *
 * @param fileName  a file name or path; null counts as empty.
 * @param buffer    receives the type and a terminator; emptied first.
 * @param capacity  size of buffer in characters.
 * @return the length of the type written; 0 when no type is known (no
 *         extension, or neither the database nor the table has it); when the
 *         type does not fit (or buffer is null, or capacity below 1), minus
 *         the capacity the type needs with its terminator, and the buffer
 *         (if any) is left empty.
 * Thread safety: any thread; the registry is only read. Traced.
 */
int WINAPI GetMimeTypeFromFileName(LPCWSTR fileName, LPWSTR buffer, int capacity);

/**
 * GetMimeTypeFromFileName for narrow text: the file name is converted from
 * the ANSI code page, and the type back into it.
 *
 * @param fileName  a file name in the ANSI code page; null counts as empty.
 * @param buffer    receives the type in the ANSI code page; emptied first.
 * @param capacity  size of buffer in bytes.
 * @return as GetMimeTypeFromFileName, counted in bytes.
 * Thread safety: any thread. Traced.
 */
int WINAPI GetMimeTypeFromFileNameA(LPCSTR fileName, LPSTR buffer, int capacity);

/**
 * The file extension (with its dot) of a MIME type into the caller's buffer.
 *
 * The string value "Extension" of the type's own key in the MIME database
 * answers when it begins with '.'; otherwise the first row of the built-in
 * extension table with that type.
 *
 * @param mimeType  the MIME type.
 * @param buffer    receives the extension; emptied first whenever it is
 *                  written at all.
 * @param capacity  size of buffer in characters.
 * @return S_OK; S_FALSE (empty buffer) for "application/octet-stream";
 *         E_INVALIDARG for a null or empty type or a capacity below 1;
 *         E_POINTER for a null buffer (nothing written); E_UNEXPECTED when
 *         the database path of the type would reach MAX_PATH characters
 *         (a type of 233 characters or more); E_FAIL when nothing answers;
 *         HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER) when the extension
 *         does not fit (empty buffer).
 * Thread safety: any thread. Traced.
 */
HRESULT WINAPI GetFileExtFromMimeType2(LPCWSTR mimeType, LPWSTR buffer, int capacity);

/**
 * GetFileExtFromMimeType2 into a shared buffer of 16 characters.
 *
 * @param mimeType  the MIME type.
 * @return the shared buffer: the extension, or empty when
 *         GetFileExtFromMimeType2 gives anything but S_OK (an extension of
 *         16 characters or more included). Overwritten by the next call.
 * Thread safety: one thread at a time. Traced.
 */
LPCWSTR WINAPI GetFileExtFromMimeType(LPCWSTR mimeType);

/**
 * The MIME type of a format name: the first row of the format table whose
 * name equals formatName, ignoring case ("ms excel" gives
 * "application/ms-excel", "Executable file" "application/octet-stream").
 *
 * @param formatName  the format name; null counts as empty.
 * @return constant text; "" when no row matches.
 * Thread safety: any thread.
 */
LPCWSTR WINAPI GetMimeTypeFromDocFormat(LPCWSTR formatName);

/**
 * The format name of a MIME type: the first row of the format table with
 * that type, ignoring case. "application/octet-stream" is deliberately not
 * looked up (it gives ""): executables are named by their extension, see
 * GetDocFormatFromFileName.
 *
 * @param mimeType  the MIME type; null counts as empty.
 * @return constant text; "" when no row matches.
 * Thread safety: any thread.
 */
LPCWSTR WINAPI GetDocFormatFromMimeType(LPCWSTR mimeType);

/**
 * The format name of a file name.
 *
 * The extension "*" gives the localised "All files". Otherwise, with a MIME
 * type from GetMimeTypeFromFileName: its table format name; else by the
 * extension (without dot, ignoring case) "rft" "DCA RFT", "pcx" "PCX", "cgm"
 * "CGM", "pcl" "PCL", "exe" the localised "Executable", "dll" the localised
 * "System Extension", any other its first 7 characters in upper case.
 * Without a MIME type: the extension's first 39 characters in upper case.
 * No extension gives "".
 *
 * @param fileName  a file name or path; null counts as empty.
 * @return constant text for the table's and the fixed names; otherwise a
 *         shared buffer of 40 characters that the next call overwrites.
 * Thread safety: one thread at a time. Traced.
 */
LPCWSTR WINAPI GetDocFormatFromFileName(LPCWSTR fileName);

/* ---- URLs ---- */

/**
 * Splits a URL into scheme, host and path.
 *
 * The scheme is the text up to and including the first "://" (at most 39
 * characters kept), the host the text after it up to the next '/' (127
 * kept), the path the rest from that '/' on (127 kept), or "/" when there is
 * none.
 *
 * @param url        the URL; null counts as empty.
 * @param schemeOut  optional buffer of 40 characters.
 * @param hostOut    optional buffer of 128 characters.
 * @param pathOut    optional buffer of 128 characters.
 * @return 1 when the URL holds "://"; otherwise 0, and every given buffer
 *         is emptied.
 * Thread safety: any thread.
 */
int WINAPI DecomposeURL(LPCWSTR url, LPWSTR schemeOut, LPWSTR hostOut, LPWSTR pathOut);

/**
 * DecomposeURL of a narrow URL (converted from the ANSI code page).
 *
 * @param url        the URL in the ANSI code page; null counts as empty.
 * @param schemeOut  optional wide buffer of 40 characters.
 * @param hostOut    optional wide buffer of 128 characters.
 * @param pathOut    optional wide buffer of 128 characters.
 * @return as DecomposeURL.
 * Thread safety: any thread.
 */
int WINAPI DecomposeURLA(LPCSTR url, LPWSTR schemeOut, LPWSTR hostOut, LPWSTR pathOut);

/**
 * Escapes text for a URL the way the server expects: every byte that is not
 * an ASCII letter, a decimal digit or '.' becomes '%' and two upper-case hex
 * digits ('/', ':', '-', '_', '~', spaces and bytes from 0x80 included).
 *
 * @param text       narrow text; null counts as empty.
 * @param out        optional; receives the escaped text and a terminator.
 *                   Must hold 3 times the length of text plus 1 bytes.
 * @param lengthOut  optional; receives the escaped text's length.
 * @return the escaped text's length; 0 when out and lengthOut are both null
 *         (nothing is done).
 * Thread safety: any thread.
 */
DWORD WINAPI URLCanonicalize(LPCSTR text, LPSTR out, DWORD* lengthOut);

/**
 * Unescapes text escaped for the server. Each '%' followed by at least two
 * characters consumes the next one, d: a decimal digit d is read as
 * hexadecimal together with the character after it (consumed as well; when
 * that is no hex digit, d alone is the value), and the value is written as
 * one byte, or d itself when the value is 0; any other d (a letter, '%') is
 * written itself, so "%%x" gives "%x" and "%E9" gives "E9". A '%' with fewer
 * than two characters after it, and every other character, is copied.
 *
 * @param text     narrow text; null counts as empty.
 * @param out      receives at most outSize characters and a terminator
 *                 (outSize + 1 bytes); when null, nothing is written.
 * @param outSize  the most characters to write; below 0 counts as 0.
 *                 Ignored when out is null.
 * @return the number of characters written (without the terminator); with a
 *         null out, the length of the whole unescaped text.
 * Thread safety: any thread.
 */
int WINAPI URLUncanonicalize(LPCSTR text, LPSTR out, int outSize);

/**
 * The URL of a request to the server's gateway script: serverUrl, a '/'
 * unless it ends in one, "mvcgi/mv.py/" unless serverUrl already contains
 * "/mvcgi/mv.py" (compared exactly), then tail.
 *
 * @param serverUrl  the server's address.
 * @param tail       appended last; null counts as empty.
 * @param out        receives the URL and a terminator.
 * @param outSize    size of out in characters. The length of tail plus that
 *                   of serverUrl plus 2, plus 13 when the script path is
 *                   added, must not exceed it.
 * @return 1 on success; 0 (out untouched) for an empty serverUrl, a null out
 *         or when the URL might not fit.
 * Thread safety: any thread.
 */
int WINAPI MakeMervaneURL(LPCWSTR serverUrl, LPCWSTR tail, LPWSTR out, int outSize);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_CONTENT_H */
