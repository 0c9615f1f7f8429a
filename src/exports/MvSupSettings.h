/* MvSup2u: one-call registry access and component settings keys.
   Every function returns a Win32 error code (0 = success) unless stated.
   Outs are cleared before the registry is touched, so a failed read leaves
   0 or an empty string. A null out pointer, or a null buffer or a capacity
   of 0, gives ERROR_INVALID_PARAMETER (87) without touching anything. */
#ifndef MVSUP_SETTINGS_H
#define MVSUP_SETTINGS_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Registry helpers: root + sub-key + value name (null = default value) ---- */

/* 87 with *value = 0 when the value exists but is not REG_DWORD. */
LONG WINAPI GetRegistryDWORD(HKEY root, LPCWSTR subKey, LPCWSTR name, DWORD* value);
/* The DWORD, or defaultValue on any error. */
DWORD WINAPI GetRegistryDWORDEx(HKEY root, LPCWSTR subKey, LPCWSTR name, DWORD defaultValue);
/* Creates the key when needed. */
LONG WINAPI SetRegistryDWORD(HKEY root, LPCWSTR subKey, LPCWSTR name, DWORD value);
/* Reads into buffer (capacity in characters); REG_EXPAND_SZ is expanded
   (truncated to capacity). Other types are returned as stored; a value that
   fills the whole buffer without a terminator gives ERROR_MORE_DATA. */
LONG WINAPI GetRegistryString(HKEY root, LPCWSTR subKey, LPCWSTR name, LPWSTR buffer, DWORD capacity);
/* As GetRegistryString; on error the buffer receives defaultText (truncated,
   terminated; empty when null) and the read's error is still returned. */
LONG WINAPI GetRegistryStringEx(HKEY root, LPCWSTR subKey, LPCWSTR name, LPCWSTR defaultText, LPWSTR buffer,
                                DWORD capacity);
/* Writes REG_SZ; null text writes the empty string. */
LONG WINAPI SetRegistryString(HKEY root, LPCWSTR subKey, LPCWSTR name, LPCWSTR text);
/* *data receives a GlobalAlloc block (zero-filled) that the caller frees with
   GlobalFree; it is handed out whenever the size query succeeded, even when
   the data query then failed. */
LONG WINAPI GetRegistryBinary(HKEY root, LPCWSTR subKey, LPCWSTR name, HGLOBAL* data, DWORD* size);
LONG WINAPI SetRegistryBinary(HKEY root, LPCWSTR subKey, LPCWSTR name, LPCVOID data, DWORD size);
/* Deletes childKey of subKey with its whole sub-tree. A null or empty
   childKey gives 87 (it would otherwise remove subKey itself). */
LONG WINAPI DeleteRegistrySubKey(HKEY root, LPCWSTR subKey, LPCWSTR childKey);
/* Deletes one value. The key handle opened for it is left open. */
LONG WINAPI DeleteRegistryValue(HKEY root, LPCWSTR subKey, LPCWSTR name);
/* First REG_DWORD value among the first maxValues values whose name matches
   pattern. matchFlags: bit 0 compares only as many characters as the shorter
   name has, bit 1 makes the comparison case-sensitive. An enumeration error
   (e.g. 259 at the end, 234 for a value of more than 4 bytes) ends the search
   and is returned; reaching maxValues returns 0 with *value = 0. */
LONG WINAPI FindRegistryDWORD(HKEY root, LPCWSTR subKey, DWORD matchFlags, int maxValues, LPCWSTR pattern,
                              DWORD* value);
/* HKEY_CURRENT_USER, or HKEY_LOCAL_MACHINE in service mode. */
HKEY WINAPI GetRootUserRegistryKey(void);

/* ---- Component settings: the same under
   <user root>\Software\Corvell\Mervane Client\<component> ---- */

DWORD WINAPI GetDwordSetting(LPCWSTR component, LPCWSTR name, DWORD defaultValue);
LONG WINAPI SetDwordSetting(LPCWSTR component, LPCWSTR name, DWORD value);
LONG WINAPI GetStringSetting(LPCWSTR component, LPCWSTR name, LPCWSTR defaultText, LPWSTR buffer, DWORD capacity);
/* As GetStringSetting, converted to the ANSI code page (capacity in bytes). */
LONG WINAPI GetStringSettingA(LPCWSTR component, LPCWSTR name, LPCWSTR defaultText, LPSTR buffer, DWORD capacity);
LONG WINAPI SetStringSetting(LPCWSTR component, LPCWSTR name, LPCWSTR text);
/* Reads at most 259 characters; on error returns it and leaves buffer as it
   was (the default is not delivered); on success expands environment
   references into buffer and returns 0. */
LONG WINAPI GetExpandedStringSetting(LPCWSTR component, LPCWSTR name, LPCWSTR defaultText, LPWSTR buffer,
                                     DWORD capacity);
LONG WINAPI GetBinarySetting(LPCWSTR component, LPCWSTR name, HGLOBAL* data, DWORD* size);
LONG WINAPI SetBinarySetting(LPCWSTR component, LPCWSTR name, LPCVOID data, DWORD size);
LONG WINAPI FindDwordSetting(LPCWSTR component, DWORD matchFlags, int maxValues, LPCWSTR pattern, DWORD* value);
LONG WINAPI DeleteSetting(LPCWSTR component, LPCWSTR name);
/* Deletes childKey below the component key; component ".." means the client
   key itself, "..\.." means Software\Corvell, any other name starting with
   "." gives ERROR_FILE_NOT_FOUND. */
LONG WINAPI DeleteSettingsKey(LPCWSTR component, LPCWSTR childKey);
/* TRUE when component\subKey opens with KEY_ALL_ACCESS. */
BOOL WINAPI SettingsKeyExists(LPCWSTR component, LPCWSTR subKey);
/* The caller closes *key with RegCloseKey. */
LONG WINAPI OpenSettingsKey(LPCWSTR component, DWORD options, REGSAM access, HKEY* key);
LONG WINAPI CreateSettingsKey(LPCWSTR component, LPWSTR keyClass, DWORD options, REGSAM access,
                              LPSECURITY_ATTRIBUTES security, HKEY* key, DWORD* disposition);
/* Default value of HKCR\CLSID\{classId}\LocalServer32; classId with or
   without braces. */
LONG WINAPI GetModulePathFromRegistry(LPCWSTR classId, LPWSTR buffer, DWORD capacity);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_SETTINGS_H */
