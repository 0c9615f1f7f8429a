/** @file
 *  MvSup2u: the client's local directories.
 *
 *  Directory getters. Each writes a path (no trailing backslash unless the
 *  setting has one) into buffer of capacity characters and returns its
 *  length. A missing setting, or a path that would not fit with its
 *  terminator, gives 0 with the buffer emptied; a null buffer or a capacity
 *  below 1 gives 0 and writes nothing. Settings: "Location"
 *  Programs/Data/Work/Cache and `MvAxess\Settings` LangId under the user
 *  registry root, read on every call.
 *
 *  The buffer is always the caller's; nothing is handed out. Every function
 *  may be called from any thread at once.
 */
#ifndef MVSUP_STORAGE_H
#define MVSUP_STORAGE_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/** The program directory ("Location" Programs).
 *  @return the path's length, or 0 (buffer emptied) when the setting is
 *  missing or the path does not fit.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetProgramDirectoryPath(LPWSTR buffer, int capacity);
/** Program directory, then `\%04X` of LangId when it is not 0.
 *  @return the path's length, or 0 as GetProgramDirectoryPath.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetProgramLangDirectoryPath(LPWSTR buffer, int capacity);
/** Data value, or the program directory followed by `\~DATA~`.
 *  @return the path's length, or 0 as GetProgramDirectoryPath.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetDataDirectoryPath(LPWSTR buffer, int capacity);
/** Program language directory followed by `\~DATA~`.
 *  @return the path's length, or 0 as GetProgramDirectoryPath.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetDataLangDirectoryPath(LPWSTR buffer, int capacity);
/** The work directory ("Location" Work).
 *  @return the path's length, or 0 as GetProgramDirectoryPath.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetWorkDirectoryPath(LPWSTR buffer, int capacity);
/** The cache directory ("Location" Cache).
 *  @return the path's length, or 0 as GetProgramDirectoryPath.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetCacheDirectoryPath(LPWSTR buffer, int capacity);
/** The work directory cut at its last backslash.
 *  @return the path's length, or 0 as GetProgramDirectoryPath.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetHomeDirectoryPath(LPWSTR buffer, int capacity);
/** Home (LiteSDK mode) or program directory, followed by `\Scripts`.
 *  @return the path's length, or 0 as GetProgramDirectoryPath.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetScriptDirectoryPath(LPWSTR buffer, int capacity);
/** The script directory of the program language directory.
 *  @return the path's length, or 0 as GetProgramDirectoryPath.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetScriptLangDirectoryPath(LPWSTR buffer, int capacity);
/** Data directory; with LiteSDK or PrivateLogDir the home directory +
 *  `\Logs`.
 *  @return the path's length, or 0 as GetProgramDirectoryPath.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetLogDirectoryPath(LPWSTR buffer, int capacity);
/** The user's document directory.
 *  TRUE (not a length) when `MvNsx\Settings` LocalDocDir, or else the
 *  shell's personal folder, names an existing directory; the path is copied
 *  truncated to capacity.
 *  @return TRUE, or FALSE with an empty buffer otherwise.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
BOOL WINAPI GetPersonalDirectory(LPWSTR buffer, int capacity);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_STORAGE_H */
