/* MvSup2u: language tags, satellite libraries, ANSI to UTF-8. */
#ifndef MVSUP_LOCALE_H
#define MVSUP_LOCALE_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Language tag ("de", "pt-br"; the region is ignored) to a language id with
   the default sort order; an unknown or empty tag gives 0x0400. FALSE only
   for a null lcid. */
BOOL WINAPI LCIDfromLangTag(LPCWSTR tag, LCID* lcid);

/* Converts ANSI text (with its terminator) to UTF-8 into out of outSize
   bytes; returns the bytes written, terminator included. outSize 0 asks for
   the size, except that plain ASCII (or empty) text then returns -1: use it
   as it is. 0 on failure (null text, buffer too small). */
int WINAPI ANSIStringToUTF8(LPCSTR text, LPSTR out, int outSize);

/* Loads "<program dir>\<component>Satellite.dll", or with a LangId
   "<program dir>\%04X\<component>Satellite.dll" (no fall-back). Null when
   there is none; the caller frees the module with FreeLibrary. */
HMODULE WINAPI LoadSatelliteLibrary(LPCWSTR component);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_LOCALE_H */
