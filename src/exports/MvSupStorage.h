/* MvSup2u: the client's local directories. */
#ifndef MVSUP_STORAGE_H
#define MVSUP_STORAGE_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Directory getters. Each writes a path (no trailing backslash unless the
   setting has one) into buffer of capacity characters and returns its length.
   A missing setting, or a path that would not fit with its terminator, gives
   0 with the buffer emptied; a null buffer or a capacity below 1 gives 0 and
   writes nothing. Settings: "Location" Programs/Data/Work/Cache and
   "MvAxess\Settings" LangId under the user registry root. */
int WINAPI GetProgramDirectoryPath(LPWSTR buffer, int capacity);
/* Program directory, then "\%04X" of LangId when it is not 0. */
int WINAPI GetProgramLangDirectoryPath(LPWSTR buffer, int capacity);
/* Data value, or the program directory followed by "\~DATA~". */
int WINAPI GetDataDirectoryPath(LPWSTR buffer, int capacity);
/* Program language directory followed by "\~DATA~". */
int WINAPI GetDataLangDirectoryPath(LPWSTR buffer, int capacity);
int WINAPI GetWorkDirectoryPath(LPWSTR buffer, int capacity);
int WINAPI GetCacheDirectoryPath(LPWSTR buffer, int capacity);
/* The work directory cut at its last backslash. */
int WINAPI GetHomeDirectoryPath(LPWSTR buffer, int capacity);
/* Home (LiteSDK mode) or program directory, followed by "\Scripts". */
int WINAPI GetScriptDirectoryPath(LPWSTR buffer, int capacity);
int WINAPI GetScriptLangDirectoryPath(LPWSTR buffer, int capacity);
/* Data directory; with LiteSDK or PrivateLogDir the home directory + "\Logs". */
int WINAPI GetLogDirectoryPath(LPWSTR buffer, int capacity);
/* TRUE (not a length) when "MvNsx\Settings" LocalDocDir, or else the shell's
   personal folder, names an existing directory; the path is copied truncated
   to capacity. FALSE with an empty buffer otherwise. */
BOOL WINAPI GetPersonalDirectory(LPWSTR buffer, int capacity);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_STORAGE_H */
