/** @file
 *  MvSup2u: language tags, satellite libraries, ANSI to UTF-8.
 */
#ifndef MVSUP_LOCALE_H
#define MVSUP_LOCALE_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Language tag ("de", "pt-br"; the region is ignored) to a language id
 *  with the default sort order; an unknown or empty tag gives 0x0400.
 *  @return TRUE; FALSE only for a null lcid.
 *  @ownership Nothing is handed out.
 *  @threads Any thread (a table lookup).
 */
BOOL WINAPI LCIDfromLangTag(LPCWSTR tag, LCID* lcid);

/** Converts ANSI text (with its terminator) to UTF-8 into out of outSize
 *  bytes.
 *  outSize 0 asks for the size, except that plain ASCII (or empty) text
 *  then returns -1: use it as it is.
 *  @return the bytes written, terminator included; the size needed for
 *  outSize 0 (-1 for plain ASCII); 0 on failure (null text, buffer too
 *  small).
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI ANSIStringToUTF8(LPCSTR text, LPSTR out, int outSize);

/** Loads `<program dir>\<component>Satellite.dll`, or with a LangId
 *  `<program dir>\%04X\<component>Satellite.dll` (no fall-back).
 *  @return the module, or null when there is none.
 *  @ownership The caller frees the module with FreeLibrary.
 *  @threads Any thread (not from DllMain: it loads a library).
 */
HMODULE WINAPI LoadSatelliteLibrary(LPCWSTR component);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_LOCALE_H */
