/** @file
 *  MvSup2u: one-call registry access and component settings keys.
 *
 *  Every function returns a Win32 error code (0 = success) unless stated.
 *  Outs are cleared before the registry is touched, so a failed read leaves
 *  0 or an empty string. A null out pointer, or a null buffer or a capacity
 *  of 0, gives ERROR_INVALID_PARAMETER (87) without touching anything.
 *
 *  Every call opens, uses and closes its own key: nothing is cached, and
 *  all functions here may be called from any thread at once.
 */
#ifndef MVSUP_SETTINGS_H
#define MVSUP_SETTINGS_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @name Registry helpers: root + sub-key + value name (null = default value)
 *  @{ */

/** Reads a REG_DWORD value into *value.
 *  @return 0; 87 with *value = 0 when the value exists but is not
 *  REG_DWORD; otherwise the registry's error.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
LONG WINAPI GetRegistryDWORD(HKEY root, LPCWSTR subKey, LPCWSTR name, DWORD* value);
/** The DWORD, or defaultValue on any error.
 *  @return the value read, or defaultValue; never fails.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
DWORD WINAPI GetRegistryDWORDEx(HKEY root, LPCWSTR subKey, LPCWSTR name, DWORD defaultValue);
/** Writes a REG_DWORD value. Creates the key when needed.
 *  @return 0 or the registry's error.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
LONG WINAPI SetRegistryDWORD(HKEY root, LPCWSTR subKey, LPCWSTR name, DWORD value);
/** Reads into buffer (capacity in characters).
 *  REG_EXPAND_SZ is expanded (truncated to capacity). Other types are
 *  returned as stored.
 *  @return 0; ERROR_MORE_DATA for a value that fills the whole buffer
 *  without a terminator; otherwise the registry's error.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
LONG WINAPI GetRegistryString(HKEY root, LPCWSTR subKey, LPCWSTR name, LPWSTR buffer, DWORD capacity);
/** As GetRegistryString; on error the buffer receives defaultText
 *  (truncated, terminated; empty when null) and the read's error is still
 *  returned.
 *  @return 0 or the read's error.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
LONG WINAPI GetRegistryStringEx(HKEY root, LPCWSTR subKey, LPCWSTR name, LPCWSTR defaultText, LPWSTR buffer,
                                DWORD capacity);
/** Writes REG_SZ; null text writes the empty string.
 *  @return 0 or the registry's error.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
LONG WINAPI SetRegistryString(HKEY root, LPCWSTR subKey, LPCWSTR name, LPCWSTR text);
/** Reads a value of any type as bytes into a new block.
 *  @return 0 or the registry's error.
 *  @ownership *data receives a GlobalAlloc block (zero-filled) that the
 *  caller frees with GlobalFree; it is handed out whenever the size query
 *  succeeded, even when the data query then failed.
 *  @threads Any thread.
 */
LONG WINAPI GetRegistryBinary(HKEY root, LPCWSTR subKey, LPCWSTR name, HGLOBAL* data, DWORD* size);
/** Writes size bytes of data as REG_BINARY, creating the key when needed.
 *  @return 0 or the registry's error.
 *  @ownership data stays the caller's.
 *  @threads Any thread.
 */
LONG WINAPI SetRegistryBinary(HKEY root, LPCWSTR subKey, LPCWSTR name, LPCVOID data, DWORD size);
/** Deletes childKey of subKey with its whole sub-tree.
 *  @return 0 or the registry's error; 87 for a null or empty childKey (it
 *  would otherwise remove subKey itself).
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
LONG WINAPI DeleteRegistrySubKey(HKEY root, LPCWSTR subKey, LPCWSTR childKey);
/** Deletes one value. The key handle opened for it is left open.
 *  @return 0 or the registry's error.
 *  @ownership Nothing is handed out; the key handle opened for the call is
 *  not closed (kept as callers have always seen it).
 *  @threads Any thread.
 */
LONG WINAPI DeleteRegistryValue(HKEY root, LPCWSTR subKey, LPCWSTR name);
/** First REG_DWORD value among the first maxValues values whose name
 *  matches pattern.
 *  matchFlags: bit 0 compares only as many characters as the shorter name
 *  has, bit 1 makes the comparison case-sensitive.
 *  @return 0 with the value in *value; an enumeration error (e.g. 259 at
 *  the end, 234 for a value of more than 4 bytes) ends the search and is
 *  returned; reaching maxValues returns 0 with *value = 0.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
LONG WINAPI FindRegistryDWORD(HKEY root, LPCWSTR subKey, DWORD matchFlags, int maxValues, LPCWSTR pattern,
                              DWORD* value);
/** HKEY_CURRENT_USER, or HKEY_LOCAL_MACHINE in service mode.
 *  @return a predefined key; never fails.
 *  @ownership A predefined key: not closed by the caller.
 *  @threads Any thread.
 */
HKEY WINAPI GetRootUserRegistryKey(void);

/** @} */

/** @name Component settings
 *  The same under `<user root>\Software\Corvell\Mervane Client\<component>`.
 *  @{ */

/** The DWORD setting, or defaultValue on any error.
 *  @return the value read, or defaultValue; never fails.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
DWORD WINAPI GetDwordSetting(LPCWSTR component, LPCWSTR name, DWORD defaultValue);
/** Writes a DWORD setting, creating the component key when needed.
 *  @return 0 or the registry's error.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
LONG WINAPI SetDwordSetting(LPCWSTR component, LPCWSTR name, DWORD value);
/** As GetRegistryStringEx, for a setting of the component.
 *  @return 0 or the read's error (the buffer then holds defaultText).
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
LONG WINAPI GetStringSetting(LPCWSTR component, LPCWSTR name, LPCWSTR defaultText, LPWSTR buffer, DWORD capacity);
/** As GetStringSetting, converted to the ANSI code page (capacity in
 *  bytes).
 *  @return 0 or the read's error.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
LONG WINAPI GetStringSettingA(LPCWSTR component, LPCWSTR name, LPCWSTR defaultText, LPSTR buffer, DWORD capacity);
/** Writes a REG_SZ setting; null text writes the empty string.
 *  @return 0 or the registry's error.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
LONG WINAPI SetStringSetting(LPCWSTR component, LPCWSTR name, LPCWSTR text);
/** Reads a string setting and expands environment references.
 *  Reads at most 259 characters; on error returns it and leaves buffer as
 *  it was (the default is not delivered); on success expands environment
 *  references into buffer and returns 0.
 *  @return 0 or the read's error.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
LONG WINAPI GetExpandedStringSetting(LPCWSTR component, LPCWSTR name, LPCWSTR defaultText, LPWSTR buffer,
                                     DWORD capacity);
/** As GetRegistryBinary, for a setting of the component.
 *  @return 0 or the registry's error.
 *  @ownership *data receives a GlobalAlloc block that the caller frees with
 *  GlobalFree (see GetRegistryBinary).
 *  @threads Any thread.
 */
LONG WINAPI GetBinarySetting(LPCWSTR component, LPCWSTR name, HGLOBAL* data, DWORD* size);
/** As SetRegistryBinary, for a setting of the component.
 *  @return 0 or the registry's error.
 *  @ownership data stays the caller's.
 *  @threads Any thread.
 */
LONG WINAPI SetBinarySetting(LPCWSTR component, LPCWSTR name, LPCVOID data, DWORD size);
/** As FindRegistryDWORD, among the values of the component key.
 *  @return as FindRegistryDWORD.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
LONG WINAPI FindDwordSetting(LPCWSTR component, DWORD matchFlags, int maxValues, LPCWSTR pattern, DWORD* value);
/** Deletes one setting of the component.
 *  @return 0 or the registry's error.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
LONG WINAPI DeleteSetting(LPCWSTR component, LPCWSTR name);
/** Deletes childKey below the component key.
 *  component `..` means the client key itself, `..\..` means
 *  `Software\Corvell`.
 *  @return 0 or the registry's error; ERROR_FILE_NOT_FOUND for any other
 *  component name starting with ".".
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
LONG WINAPI DeleteSettingsKey(LPCWSTR component, LPCWSTR childKey);
/** TRUE when `component\subKey` opens with KEY_ALL_ACCESS.
 *  @return TRUE or FALSE; never fails otherwise.
 *  @ownership Nothing is handed out (the key is closed again).
 *  @threads Any thread.
 */
BOOL WINAPI SettingsKeyExists(LPCWSTR component, LPCWSTR subKey);
/** Opens the component key.
 *  @return 0 or the registry's error (*key is then null).
 *  @ownership The caller closes *key with RegCloseKey.
 *  @threads Any thread.
 */
LONG WINAPI OpenSettingsKey(LPCWSTR component, DWORD options, REGSAM access, HKEY* key);
/** Creates or opens the component key, as RegCreateKeyEx does.
 *  @return 0 or the registry's error (*key is then null).
 *  @ownership The caller closes *key with RegCloseKey.
 *  @threads Any thread.
 */
LONG WINAPI CreateSettingsKey(LPCWSTR component, LPWSTR keyClass, DWORD options, REGSAM access,
                              LPSECURITY_ATTRIBUTES security, HKEY* key, DWORD* disposition);
/** Default value of `HKCR\CLSID\{classId}\LocalServer32`; classId with or
 *  without braces.
 *  @return 0 or the registry's error.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
LONG WINAPI GetModulePathFromRegistry(LPCWSTR classId, LPWSTR buffer, DWORD capacity);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_SETTINGS_H */
