/** @file
 *  MvSup2u: Base64, quoted-printable, MD5, HTTP digest authentication, hex
 *  conversions, checksums, and encryption through the client's cryptor.
 *
 *  Buffers handed out by the codecs come from GlobalAlloc (fixed,
 *  zero-filled) and belong to the caller, who frees them with GlobalFree;
 *  BSTRs are freed with SysFreeString. Every codec clears its output pointer
 *  and length on entry (when they are not null), and hands out no buffer
 *  when it fails. Status codes: S_OK; S_FALSE (quoted-printable input
 *  without '='); E_POINTER; E_INVALIDARG; E_FAIL; E_OUTOFMEMORY (also for a
 *  size that cannot be represented).
 *
 *  The codecs keep no state: any thread, at once. The cryptor functions
 *  need COM initialised on the calling thread.
 */
#ifndef MVSUP_CODEC_H
#define MVSUP_CODEC_H

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @name Base64 (RFC 2045 alphabet, no line breaks)
 *  @{ */

/** Encodes count bytes into *chars: exactly ceil(count/3)*4 characters, no
 *  terminator; *charCount receives that number.
 *  @return S_OK; E_POINTER for null bytes, a count of 0 or a null out
 *  pointer; E_OUTOFMEMORY.
 *  @ownership *chars is a GlobalAlloc block: the caller frees it with
 *  GlobalFree.
 *  @threads Any thread.
 */
HRESULT WINAPI Base64Encode(const BYTE* bytes, DWORD count, LPSTR* chars, DWORD* charCount);

/** As Base64Encode over 16-bit cells: only the low byte of every input unit
 *  is encoded; *chars receives ceil(count/3)*4 wide characters.
 *  @return as Base64Encode.
 *  @ownership *chars is a GlobalAlloc block: the caller frees it with
 *  GlobalFree.
 *  @threads Any thread.
 */
HRESULT WINAPI Base64EncodeW(LPCWSTR units, DWORD count, LPWSTR* chars, DWORD* charCount);

/** Decodes count characters into *bytes, a buffer of count/4*3 bytes, of
 *  which *byteCount were produced.
 *  Decoding stops after the first group padded in its third or fourth
 *  character; what follows is not looked at. '=' in the first or second
 *  position of a group counts as the value 64.
 *  @return S_OK; E_POINTER for a count of 0 or a null pointer; E_INVALIDARG
 *  for a count that is not a multiple of 4; E_FAIL for any character
 *  outside the alphabet, white space and NUL included; E_OUTOFMEMORY.
 *  @ownership *bytes is a GlobalAlloc block: the caller frees it with
 *  GlobalFree.
 *  @threads Any thread.
 */
HRESULT WINAPI Base64Decode(LPCSTR chars, DWORD count, BYTE** bytes, DWORD* byteCount);

/** As Base64Decode over wide characters; each decoded byte is written into
 *  one 16-bit unit of *units (count/4*3 units).
 *  @return as Base64Decode; characters above 0xFF give E_FAIL.
 *  @ownership *units is a GlobalAlloc block: the caller frees it with
 *  GlobalFree.
 *  @threads Any thread.
 */
HRESULT WINAPI Base64DecodeW(LPCWSTR chars, DWORD count, LPWSTR* units, DWORD* unitCount);

/** @} */

/** @name Quoted-printable
 *  @{ */

/** Decodes count bytes of quoted-printable text.
 *  Soft line breaks ('=' followed only by white space up to a line feed)
 *  are removed; a line feed after any other pending '=' is dropped (a
 *  preceding carriage return stays); "=XX" with upper-case hex digits
 *  becomes one byte; '=' before a non-hex character is dropped. The result
 *  ends at its first NUL; *length excludes it; the buffer always holds that
 *  NUL and is never larger than count bytes.
 *  @return S_OK; S_FALSE without allocating when the input holds no '='
 *  (use the input as it is); E_FAIL for a '=' that, once soft line breaks
 *  are removed, stands at one of the last two positions of count (an escape
 *  cut off at the end); E_INVALIDARG for '=' followed by one hex digit and a
 *  non-digit (lower-case escapes fail this way); E_POINTER for null input or
 *  a null out pointer; E_OUTOFMEMORY.
 *  @ownership *decoded is a GlobalAlloc block: the caller frees it with
 *  GlobalFree.
 *  @threads Any thread.
 */
HRESULT WINAPI QuotedPrintable_DecodeA(LPCSTR chars, DWORD count, LPSTR* decoded, DWORD* length);

/** As QuotedPrintable_DecodeA over 16-bit units (lengths in units).
 *  @return as QuotedPrintable_DecodeA.
 *  @ownership *decoded is a GlobalAlloc block: the caller frees it with
 *  GlobalFree.
 *  @threads Any thread.
 */
HRESULT WINAPI QuotedPrintable_Decode(LPCWSTR chars, DWORD count, LPWSTR* decoded, DWORD* length);

/** Not implemented: the arguments are not touched.
 *  @return E_NOTIMPL, always.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
HRESULT WINAPI QuotedPrintable_Encode(LPCWSTR chars, DWORD count, LPWSTR* encoded, DWORD* length);
/** Not implemented: the arguments are not touched.
 *  @return E_NOTIMPL, always.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
HRESULT WINAPI QuotedPrintable_EncodeA(LPCSTR chars, DWORD count, LPSTR* encoded, DWORD* length);

/** @} */

/** @name MD5 and HTTP digest authentication
 *  @{ */

/** MD5 of length bytes into digest[16].
 *  Nothing is written when digest is null, and null data is hashed as the
 *  empty input whatever length says (nothing is read).
 *  @return 0 (S_OK), always.
 *  @ownership digest is the caller's 16-byte buffer.
 *  @threads Any thread.
 */
HRESULT WINAPI MD5GetDigest(const void* data, DWORD length, BYTE* digest);

/** One digest-authentication request.
 *  The nine text fields point to the caller's NUL-terminated ANSI strings
 *  (none may be null); only response is filled in, with 32 lower-case hex
 *  digits and a NUL. algorithm "md5-sess" (any case) selects the session
 *  variant, anything else plain MD5; qop is "", "auth" or "auth-int" (with
 *  an entity hash of 32 NUL bytes). Natural alignment: on x86_64 the
 *  pointers start at offset 8 and the record has 120 bytes, on i686 76.
 */
typedef struct MVSUP_DIGEST_REQUEST {
  DWORD nonceCount;   /**< the nonce count (nc), written as 8 hex digits */
  LPCSTR nonce;       /**< the server's nonce */
  LPCSTR cnonce;      /**< the client's nonce */
  LPCSTR user;        /**< the user name */
  LPCSTR realm;       /**< the realm */
  LPCSTR password;    /**< the password */
  LPCSTR algorithm;   /**< "MD5" or "md5-sess" */
  LPCSTR method;      /**< the request method ("GET") */
  LPCSTR qop;         /**< "", "auth" or "auth-int" */
  LPCSTR digestUri;   /**< the request URI */
  char response[33];  /**< out: the response, 32 lower-case hex digits and a NUL */
} MVSUP_DIGEST_REQUEST;

/** Fills request->response.
 *  @return S_OK; E_POINTER for a null request; E_INVALIDARG (response left
 *  empty) when a text field is null.
 *  @ownership The record and its strings are the caller's; nothing is
 *  handed out.
 *  @threads Any thread.
 */
HRESULT WINAPI WWWAuthDigestCalcResponse(MVSUP_DIGEST_REQUEST* request);

/** @} */

/** @name Hexadecimal text and checksums
 *  @{ */

/** *hex receives a new BSTR of 2*count upper-case hex digits.
 *  @return S_OK; E_INVALIDARG for null bytes or a count of 0; E_POINTER for
 *  a null out pointer; E_OUTOFMEMORY.
 *  @ownership The caller frees *hex with SysFreeString.
 *  @threads Any thread.
 */
HRESULT WINAPI HexStringFromBinaryString(const BYTE* bytes, DWORD count, BSTR* hex);

/** Converts pairs of characters of the NUL-terminated hexText into
 *  length/2 bytes (a trailing odd digit is ignored).
 *  Each pair is read as wcstol would read it in base 16 without validation:
 *  a pair starting with a non-digit gives 0, a digit followed by a
 *  non-digit gives that digit.
 *  @return S_OK (a single character gives S_OK with no buffer and a length
 *  of 0); E_INVALIDARG for null or empty text; E_POINTER for a null out
 *  pointer; E_OUTOFMEMORY.
 *  @ownership *bytes is a GlobalAlloc block: the caller frees it with
 *  GlobalFree.
 *  @threads Any thread.
 */
HRESULT WINAPI BinaryStringFromHexString(LPCWSTR hexText, BYTE** bytes, DWORD* byteCount);

/** Checksum of count units: four byte accumulators, a[i mod 4] += c + i,
 *  put together little-endian (a0 is the lowest byte).
 *  The wide form adds whole units; both agree on ASCII text.
 *  @return the checksum; 0 for count < 1 or null data.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
DWORD WINAPI GetFixedLengthDataDigest(LPCWSTR units, int count);
/** As GetFixedLengthDataDigest over bytes.
 *  @return the checksum; 0 for count < 1 or null data.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
DWORD WINAPI GetFixedLengthDataDigestA(LPCSTR bytes, int count);

/** @} */

/** @name Encryption through the client's cryptor object
 *  @{ */

/** @struct IMvCryptor
 *  The cryptor interface: each method takes a text value and returns a new
 *  BSTR that the caller frees with SysFreeString.
 */
#undef INTERFACE
#define INTERFACE IMvCryptor
DECLARE_INTERFACE_(IMvCryptor, IUnknown) {
  /** IUnknown::QueryInterface. */
  STDMETHOD(QueryInterface)(THIS_ REFIID riid, void** object) PURE;
  /** IUnknown::AddRef. */
  STDMETHOD_(ULONG, AddRef)(THIS) PURE;
  /** IUnknown::Release. */
  STDMETHOD_(ULONG, Release)(THIS) PURE;
  /** Encrypts input into a new BSTR *output (the caller's). */
  STDMETHOD(Encrypt)(THIS_ BSTR input, BSTR* output) PURE;
  /** Decrypts input into a new BSTR *output (the caller's). */
  STDMETHOD(Decrypt)(THIS_ BSTR input, BSTR* output) PURE;
};
#undef INTERFACE

/** IID of IMvCryptor.
 *  Include <initguid.h> before this header in one source file to define it.
 */
DEFINE_GUID(IID_IMvCryptor, 0x9dba32db, 0xa2d4, 0x4ccb, 0x9f, 0x83, 0x44, 0x8b, 0xc5, 0x15, 0x55, 0xfd);
/** The default class of the crypt helper.
 *  The class is overridden by the string value CLSID of the component key
 *  `MVSUP\Cryptor` (a GUID in braces or a ProgID). Include <initguid.h>
 *  before this header in one source file to define it.
 */
DEFINE_GUID(CLSID_MvCryptHelper, 0xa457e401, 0x583e, 0x4a84, 0xa9, 0x27, 0x39, 0xef, 0x0d, 0x01, 0x87, 0x5c);

/** Creates a new cryptor (in-process server) into *cryptor.
 *  @return S_OK; E_NOTIMPL unless mode bit 0x80 (UseCryptor) is set;
 *  E_POINTER for a null out pointer; otherwise the HRESULT of reading the
 *  class from the registry or of CoCreateInstance.
 *  @ownership The caller releases *cryptor.
 *  @threads Any thread on which COM is initialised.
 */
HRESULT WINAPI GetCryptHelper(IMvCryptor** cryptor);

/** Passes input to a new cryptor's Encrypt.
 *  @return 1 when the method succeeded; 0 on any failure (no cryptor,
 *  method failed, null output), *output then null or as the method left
 *  it.
 *  @ownership input stays the caller's; *output is the caller's to free
 *  with SysFreeString.
 *  @threads Any thread on which COM is initialised.
 */
BOOL WINAPI Encrypt(BSTR input, BSTR* output);
/** Passes input to a new cryptor's Decrypt.
 *  @return as Encrypt.
 *  @ownership input stays the caller's; *output is the caller's to free
 *  with SysFreeString.
 *  @threads Any thread on which COM is initialised.
 */
BOOL WINAPI Decrypt(BSTR input, BSTR* output);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_CODEC_H */
