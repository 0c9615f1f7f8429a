Attribute VB_Name = "MvSup2u"
' MvSup2u.bas - declarations of MvSup2u.dll for VBA (Office 2010 and later,
' 32 and 64 bit) and for VBA 6 / VB6 (32 bit).
'
' Import this module into the project (File > Import File...). The DLL is
' found like any other: put MvSup2u.dll into the folder of the program or on
' the PATH, or ChDir to its folder before the first call.
'
' How values travel:
' - Wide text (LPCWSTR): pass StrPtr(text). A result buffer is a String
'   made beforehand, e.g. buffer = String$(260, vbNullChar), passed as
'   StrPtr(buffer); cut it at its first vbNullChar afterwards.
' - ANSI text (the functions whose name ends in A): pass a String ByVal.
' - Text the library returns as a pointer (static buffers, pointers into an
'   item info): MvSupString(pointer) copies it into a String.
' - Blocks the library hands out (Base64 output, registry data): free them
'   with MvSupGlobalFree; committed item infos with FreeMvxInfo.
' - Pointers and handles are LongPtr (Long in VBA 6 / VB6).
' - time_t (64-bit seconds since 1970) is a LongLong in 64-bit Office and a
'   Currency elsewhere: there its value is the seconds / 10000 (the eight
'   bytes are the same). MvSupTimeFromSeconds / MvSupSecondsFromTime convert.
' - Dates (DATE) are VBA Dates; BOOL results are Long (0 or 1).
Option Explicit

' Item types
Public Const MVXITEMTYPE_MVCLIENT As Long = 0
Public Const MVXITEMTYPE_SERVER As Long = 1
Public Const MVXITEMTYPE_COLLECTION As Long = 2
Public Const MVXITEMTYPE_FILE As Long = 3
Public Const MVXITEMTYPE_VERSION As Long = 12
Public Const MVXITEMTYPE_USER As Long = 14
Public Const MVXITEMTYPE_GROUP As Long = 15
Public Const MVXITEMTYPE_UNKNOWN As Long = 16

' Results
Public Const MVSUP_S_OK As Long = 0
Public Const MVSUP_S_FALSE As Long = 1
Public Const MVSUP_E_POINTER As Long = &H80004003
Public Const MVSUP_E_INVALIDARG As Long = &H80070057
Public Const MVSUP_E_FAIL As Long = &H80004005

' Registry roots
Public Const MVSUP_HKEY_CURRENT_USER As Long = &H80000001
Public Const MVSUP_HKEY_LOCAL_MACHINE As Long = &H80000002

Public Type MVSUP_SYSTEMTIME
    wYear As Integer
    wMonth As Integer
    wDayOfWeek As Integer
    wDay As Integer
    wHour As Integer
    wMinute As Integer
    wSecond As Integer
    wMilliseconds As Integer
End Type

Public Type MVSUP_FILETIME
    dwLowDateTime As Long
    dwHighDateTime As Long
End Type

' The C run-time's struct tm
Public Type MVSUP_TM
    tm_sec As Long
    tm_min As Long
    tm_hour As Long
    tm_mday As Long
    tm_mon As Long
    tm_year As Long
    tm_wday As Long
    tm_yday As Long
    tm_isdst As Long
End Type

#If VBA7 Then
' One digest-authentication request: the text fields are pointers to ANSI
' strings with a terminating NUL (MvSupDigestResponse fills them).
Public Type MVSUP_DIGEST_REQUEST
    nonceCount As Long
    nonce As LongPtr
    cnonce As LongPtr
    user As LongPtr
    realm As LongPtr
    password As LongPtr
    algorithm As LongPtr
    method As LongPtr
    qop As LongPtr
    digestUri As LongPtr
    response(0 To 32) As Byte
End Type

Private Declare PtrSafe Function mvsup_lstrlenW Lib "kernel32" Alias "lstrlenW" (ByVal text As LongPtr) As Long
Private Declare PtrSafe Sub mvsup_CopyMemory Lib "kernel32" Alias "RtlMoveMemory" (ByRef destination As Any, ByVal source As LongPtr, ByVal length As LongPtr)
Private Declare PtrSafe Function mvsup_GlobalFree Lib "kernel32" Alias "GlobalFree" (ByVal block As LongPtr) As LongPtr

    ' ---- Registry helpers
    Public Declare PtrSafe Function GetRegistryDWORD Lib "MvSup2u.dll" (ByVal root As LongPtr, ByVal subKey As LongPtr, ByVal name As LongPtr, ByRef value As Long) As Long
    Public Declare PtrSafe Function GetRegistryDWORDEx Lib "MvSup2u.dll" (ByVal root As LongPtr, ByVal subKey As LongPtr, ByVal name As LongPtr, ByVal defaultValue As Long) As Long
    Public Declare PtrSafe Function SetRegistryDWORD Lib "MvSup2u.dll" (ByVal root As LongPtr, ByVal subKey As LongPtr, ByVal name As LongPtr, ByVal value As Long) As Long
    Public Declare PtrSafe Function GetRegistryString Lib "MvSup2u.dll" (ByVal root As LongPtr, ByVal subKey As LongPtr, ByVal name As LongPtr, ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetRegistryStringEx Lib "MvSup2u.dll" (ByVal root As LongPtr, ByVal subKey As LongPtr, ByVal name As LongPtr, ByVal defaultText As LongPtr, ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function SetRegistryString Lib "MvSup2u.dll" (ByVal root As LongPtr, ByVal subKey As LongPtr, ByVal name As LongPtr, ByVal text As LongPtr) As Long
    Public Declare PtrSafe Function GetRegistryBinary Lib "MvSup2u.dll" (ByVal root As LongPtr, ByVal subKey As LongPtr, ByVal name As LongPtr, ByRef data As LongPtr, ByRef size As Long) As Long
    Public Declare PtrSafe Function SetRegistryBinary Lib "MvSup2u.dll" (ByVal root As LongPtr, ByVal subKey As LongPtr, ByVal name As LongPtr, ByRef data As Any, ByVal size As Long) As Long
    Public Declare PtrSafe Function DeleteRegistrySubKey Lib "MvSup2u.dll" (ByVal root As LongPtr, ByVal subKey As LongPtr, ByVal childKey As LongPtr) As Long
    Public Declare PtrSafe Function DeleteRegistryValue Lib "MvSup2u.dll" (ByVal root As LongPtr, ByVal subKey As LongPtr, ByVal name As LongPtr) As Long
    Public Declare PtrSafe Function FindRegistryDWORD Lib "MvSup2u.dll" (ByVal root As LongPtr, ByVal subKey As LongPtr, ByVal matchFlags As Long, ByVal maxValues As Long, ByVal pattern As LongPtr, ByRef value As Long) As Long
    Public Declare PtrSafe Function GetRootUserRegistryKey Lib "MvSup2u.dll" () As LongPtr

    ' ---- Component settings
    Public Declare PtrSafe Function GetDwordSetting Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal name As LongPtr, ByVal defaultValue As Long) As Long
    Public Declare PtrSafe Function SetDwordSetting Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal name As LongPtr, ByVal value As Long) As Long
    Public Declare PtrSafe Function GetStringSetting Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal name As LongPtr, ByVal defaultText As LongPtr, ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetStringSettingA Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal name As LongPtr, ByVal defaultText As LongPtr, ByVal buffer As String, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function SetStringSetting Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal name As LongPtr, ByVal text As LongPtr) As Long
    Public Declare PtrSafe Function GetExpandedStringSetting Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal name As LongPtr, ByVal defaultText As LongPtr, ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetBinarySetting Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal name As LongPtr, ByRef data As LongPtr, ByRef size As Long) As Long
    Public Declare PtrSafe Function SetBinarySetting Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal name As LongPtr, ByRef data As Any, ByVal size As Long) As Long
    Public Declare PtrSafe Function FindDwordSetting Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal matchFlags As Long, ByVal maxValues As Long, ByVal pattern As LongPtr, ByRef value As Long) As Long
    Public Declare PtrSafe Function DeleteSetting Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal name As LongPtr) As Long
    Public Declare PtrSafe Function DeleteSettingsKey Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal childKey As LongPtr) As Long
    Public Declare PtrSafe Function SettingsKeyExists Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal subKey As LongPtr) As Long
    Public Declare PtrSafe Function OpenSettingsKey Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal options As Long, ByVal access_ As Long, ByRef key As LongPtr) As Long
    Public Declare PtrSafe Function CreateSettingsKey Lib "MvSup2u.dll" (ByVal component As LongPtr, ByVal keyClass As LongPtr, ByVal options As Long, ByVal access_ As Long, ByVal security As LongPtr, ByRef key As LongPtr, ByRef disposition As Long) As Long
    Public Declare PtrSafe Function GetModulePathFromRegistry Lib "MvSup2u.dll" (ByVal classId As LongPtr, ByVal buffer As LongPtr, ByVal capacity As Long) As Long

    ' ---- Client directories
    Public Declare PtrSafe Function GetProgramDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetProgramLangDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetDataDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetDataLangDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetWorkDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetCacheDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetHomeDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetScriptDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetScriptLangDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetLogDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetPersonalDirectory Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long) As Long

    ' ---- Committed item infos and their readers
    Public Declare PtrSafe Function MvxCreateItemInfo Lib "MvSup2u.dll" (ByRef itemInfo As LongPtr) As Long
    Public Declare PtrSafe Function MvxCopyItemInfo Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByRef copy As LongPtr) As Long
    Public Declare PtrSafe Function FreeMvxInfo Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr) As LongPtr
    Public Declare PtrSafe Function MvxFindTitleValue Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr) As LongPtr
    Public Declare PtrSafe Function MvxGetIntegerPropValue Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByVal propId As Long, ByRef value As Long) As Long
    Public Declare PtrSafe Function MvxGetStringPropValue Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByVal propId As Long, ByRef text As LongPtr) As Long
    Public Declare PtrSafe Function MvxGetDatePropValueAsSystemTime Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByVal propId As Long, ByRef systemTime As MVSUP_SYSTEMTIME, ByVal keepGmt As Long) As Long
    Public Declare PtrSafe Function MvxGetDatePropValue Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByVal propId As Long, ByRef date_ As Date, ByVal keepGmt As Long) As Long
    Public Declare PtrSafe Function MvxGetMvHandlePropValue Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByVal mask As Long, ByRef propId As Long, ByRef type_ As Long, ByRef number As Long, ByRef title As LongPtr) As Long
    Public Declare PtrSafe Function MvxGetCustomStringProp Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByVal name As LongPtr, ByRef text As LongPtr) As Long
    Public Declare PtrSafe Function MvxGetCustomIntegerProp Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByVal name As LongPtr, ByRef value As Long) As Long
    Public Declare PtrSafe Function MvxGetCustomFileTimeProp Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByVal name As LongPtr, ByRef fileTime As MVSUP_FILETIME) As Long
    Public Declare PtrSafe Function MvxGetCustomSystemTimeProp Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByVal name As LongPtr, ByRef systemTime As MVSUP_SYSTEMTIME, ByVal keepGmt As Long) As Long
    Public Declare PtrSafe Function MvxGetCustomDateProp Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByVal name As LongPtr, ByRef date_ As Date, ByVal keepGmt As Long) As Long
    Public Declare PtrSafe Function MvxHasProp Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByVal propId As Long) As Long
    Public Declare PtrSafe Function MvxHasCustomProp Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr, ByVal name As LongPtr) As Long
    Public Declare PtrSafe Function MvxGetSuperclassFromItemInfo Lib "MvSup2u.dll" (ByVal itemInfo As LongPtr) As Long

    ' ---- Property catalogue
    Public Declare PtrSafe Function PropIdFromPropertyName Lib "MvSup2u.dll" (ByVal name As LongPtr) As Long
    Public Declare PtrSafe Function PropertyNameFromPropId Lib "MvSup2u.dll" (ByVal propId As Long) As LongPtr
    Public Declare PtrSafe Function PropTypeFromPropId Lib "MvSup2u.dll" (ByVal propId As Long) As Long
    Public Declare PtrSafe Function GetItemPropId Lib "MvSup2u.dll" (ByVal bits As Long, ByVal itemType As Long) As Long

    ' ---- Item types and handles
    Public Declare PtrSafe Function GetMvxItemTypeAsStringTS Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal buffer As LongPtr, ByVal capacity As Long) As LongPtr
    Public Declare PtrSafe Function GetMvxItemTypeAsString Lib "MvSup2u.dll" (ByVal type_ As Long) As LongPtr
    Public Declare PtrSafe Function GetMvxItemTypeAsStringA Lib "MvSup2u.dll" (ByVal type_ As Long) As LongPtr
    Public Declare PtrSafe Function GetMvxItemTypeAsHttpStringTS Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal buffer As LongPtr, ByVal capacity As Long) As LongPtr
    Public Declare PtrSafe Function GetMvxItemTypeAsHttpString Lib "MvSup2u.dll" (ByVal type_ As Long) As LongPtr
    Public Declare PtrSafe Function GetMvxObjTypeAsStringTS Lib "MvSup2u.dll" (ByVal objType As Long, ByVal buffer As LongPtr, ByVal capacity As Long) As LongPtr
    Public Declare PtrSafe Function GetMvxObjTypeAsString Lib "MvSup2u.dll" (ByVal objType As Long) As LongPtr
    Public Declare PtrSafe Function GetMvxItemTypeAsDisplayString Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetMvxObjTypeFromItemType Lib "MvSup2u.dll" (ByVal type_ As Long) As Long
    Public Declare PtrSafe Function GetMvxItemTypeFromObjType Lib "MvSup2u.dll" (ByVal objType As Long) As Long
    Public Declare PtrSafe Function GetMvxItemTypeFromString Lib "MvSup2u.dll" (ByVal text As LongPtr) As Long
    Public Declare PtrSafe Function GetMvxItemHandleFromString Lib "MvSup2u.dll" (ByVal text As LongPtr, ByRef number As Long) As Long
    Public Declare PtrSafe Function GetMvxItemTypeFromStringA Lib "MvSup2u.dll" (ByVal text As String) As Long
    Public Declare PtrSafe Function GetMvxItemHandleFromStringA Lib "MvSup2u.dll" (ByVal text As String, ByRef number As Long) As Long
    Public Declare PtrSafe Function CompareMvxItemType Lib "MvSup2u.dll" (ByVal text As LongPtr, ByVal type_ As Long) As Long
    Public Declare PtrSafe Function GetMvxItemHandleAsString Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal number As Long, ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function GetMvxItemHandleAsHttpString Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal number As Long, ByVal buffer As LongPtr, ByVal capacity As Long) As Long
    Public Declare PtrSafe Function ToNumber Lib "MvSup2u.dll" (ByVal text As LongPtr, ByVal prefix As LongPtr) As Long
    Public Declare PtrSafe Function ToCollHandle Lib "MvSup2u.dll" (ByVal text As LongPtr, ByVal allowBare As Long, ByVal allowShort As Long) As Long
    Public Declare PtrSafe Function ToFileHandle Lib "MvSup2u.dll" (ByVal text As LongPtr, ByVal allowBare As Long, ByRef version As Long, ByVal allowShort As Long) As Long
    Public Declare PtrSafe Function ToGroupHandle Lib "MvSup2u.dll" (ByVal text As LongPtr, ByVal allowBare As Long) As Long
    Public Declare PtrSafe Function ToUserHandle Lib "MvSup2u.dll" (ByVal text As LongPtr, ByVal allowBare As Long) As Long
    Public Declare PtrSafe Function ToHandle Lib "MvSup2u.dll" (ByVal text As LongPtr, ByRef type_ As Integer, ByRef number As Long, ByRef version As Long, ByVal allowShort As Long) As Long
    Public Declare PtrSafe Function GetMvxParentItemType Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal context1 As Long, ByVal context2 As Long, ByVal context3 As Long, ByVal object_ As LongPtr) As Long
    Public Declare PtrSafe Function GetMvxParentItemTypeAsStringTS Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long, ByVal type_ As Long, ByVal x1 As Long, ByVal x2 As Long, ByVal x3 As Long, ByVal object_ As LongPtr) As LongPtr
    Public Declare PtrSafe Function GetMvxParentItemTypeAsString Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal x1 As Long, ByVal x2 As Long, ByVal x3 As Long, ByVal object_ As LongPtr) As LongPtr
    Public Declare PtrSafe Function GetMvxParentObjTypeAsStringTS Lib "MvSup2u.dll" (ByVal buffer As LongPtr, ByVal capacity As Long, ByVal objType As Long, ByVal x1 As Long, ByVal x2 As Long, ByVal x3 As Long, ByVal object_ As LongPtr) As LongPtr
    Public Declare PtrSafe Function GetMvxParentObjTypeAsString Lib "MvSup2u.dll" (ByVal objType As Long, ByVal x1 As Long, ByVal x2 As Long, ByVal x3 As Long, ByVal object_ As LongPtr) As LongPtr

    ' ---- Dates
    Public Declare PtrSafe Function MVCreationDateFromSystemTime Lib "MvSup2u.dll" (ByRef systemTime As MVSUP_SYSTEMTIME) As LongPtr
    Public Declare PtrSafe Function SystemTimeFromMVCreationDate Lib "MvSup2u.dll" (ByVal text As LongPtr, ByRef systemTime As MVSUP_SYSTEMTIME) As Long
    Public Declare PtrSafe Function SystemTimeFromMVCreationDateA Lib "MvSup2u.dll" (ByVal text As String, ByRef systemTime As MVSUP_SYSTEMTIME) As Long
    Public Declare PtrSafe Function MVModifiedDateFromSystemTime Lib "MvSup2u.dll" (ByRef systemTime As MVSUP_SYSTEMTIME) As LongPtr
    Public Declare PtrSafe Function SystemTimeFromMVModifiedDate Lib "MvSup2u.dll" (ByVal text As LongPtr, ByRef systemTime As MVSUP_SYSTEMTIME) As Long
    Public Declare PtrSafe Function SystemTimeFromMVModifiedDateA Lib "MvSup2u.dll" (ByVal text As String, ByRef systemTime As MVSUP_SYSTEMTIME) As Long
    Public Declare PtrSafe Function GmtToLocalTime Lib "MvSup2u.dll" (ByRef gmtTime As MVSUP_SYSTEMTIME, ByRef localTime As MVSUP_SYSTEMTIME) As Long
    Public Declare PtrSafe Function LocalTimeToGmt Lib "MvSup2u.dll" (ByRef localTime As MVSUP_SYSTEMTIME, ByRef gmtTime As MVSUP_SYSTEMTIME) As Long
    Public Declare PtrSafe Function DosGmtToLocalTime Lib "MvSup2u.dll" (ByVal dosDate As Integer, ByVal dosTime As Integer, ByRef localTime As MVSUP_SYSTEMTIME) As Long
    Public Declare PtrSafe Function DosGmtToDosLocalTime Lib "MvSup2u.dll" (ByVal dosDate As Integer, ByVal dosTime As Integer, ByRef localDosDate As Integer, ByRef localDosTime As Integer) As Long
    Public Declare PtrSafe Function OleDateLocalTimeFromGmt Lib "MvSup2u.dll" (ByVal gmtDate As Date, ByRef localDate As Date) As Long
    Public Declare PtrSafe Function OleDateGmtFromLocalTime Lib "MvSup2u.dll" (ByVal localDate As Date, ByRef gmtDate As Date) As Long
    Public Declare PtrSafe Function DOSTimeFromVariantTime Lib "MvSup2u.dll" (ByVal variantTime As Date, ByRef dosDate As Integer, ByRef dosTime As Integer) As Long
    Public Declare PtrSafe Function DOSTimeToVariantTime Lib "MvSup2u.dll" (ByVal dosDate As Integer, ByVal dosTime As Integer, ByRef variantTime As Date) As Long
    Public Declare PtrSafe Function TMFromSystemTime Lib "MvSup2u.dll" (ByRef systemTime As MVSUP_SYSTEMTIME, ByRef tmOut As MVSUP_TM) As Long
    Public Declare PtrSafe Function SetDayOfWeekInSystemTime Lib "MvSup2u.dll" (ByRef systemTime As MVSUP_SYSTEMTIME) As Long
    Public Declare PtrSafe Function OleDateFromTm Lib "MvSup2u.dll" (ByRef tmIn As MVSUP_TM, ByRef oleDate As Date) As Long
    Public Declare PtrSafe Function TmFromOleDate Lib "MvSup2u.dll" (ByVal oleDate As Date, ByRef tmOut As MVSUP_TM) As Long

    ' ---- Base64
    Public Declare PtrSafe Function Base64Encode Lib "MvSup2u.dll" (ByRef bytes As Byte, ByVal count As Long, ByRef chars As LongPtr, ByRef charCount As Long) As Long
    Public Declare PtrSafe Function Base64EncodeW Lib "MvSup2u.dll" (ByVal units As LongPtr, ByVal count As Long, ByRef chars As LongPtr, ByRef charCount As Long) As Long
    Public Declare PtrSafe Function Base64Decode Lib "MvSup2u.dll" (ByVal chars As String, ByVal count As Long, ByRef bytes As LongPtr, ByRef byteCount As Long) As Long
    Public Declare PtrSafe Function Base64DecodeW Lib "MvSup2u.dll" (ByVal chars As LongPtr, ByVal count As Long, ByRef units As LongPtr, ByRef unitCount As Long) As Long

    ' ---- MD5 and digest authentication
    Public Declare PtrSafe Function MD5GetDigest Lib "MvSup2u.dll" (ByRef data As Any, ByVal length As Long, ByRef digest As Byte) As Long
    Public Declare PtrSafe Function WWWAuthDigestCalcResponse Lib "MvSup2u.dll" (ByRef request As MVSUP_DIGEST_REQUEST) As Long
    #If Win64 Then
        Public Declare PtrSafe Function TimetToGMTDate Lib "MvSup2u.dll" (ByVal time_ As LongLong, ByVal zoneSeconds As Long, ByVal buffer As LongPtr, ByVal capacity As Long) As Long
        Public Declare PtrSafe Function TimetToGMTDateA Lib "MvSup2u.dll" (ByVal time_ As LongLong, ByVal zoneSeconds As Long, ByVal buffer As String, ByVal capacity As Long) As Long
        Public Declare PtrSafe Function TimetFromGMTDate Lib "MvSup2u.dll" (ByVal text As LongPtr, ByRef time_ As LongLong, ByRef zoneSeconds As Long) As Long
        Public Declare PtrSafe Function TimetFromGMTDateA Lib "MvSup2u.dll" (ByVal text As String, ByRef time_ As LongLong, ByRef zoneSeconds As Long) As Long
        Public Declare PtrSafe Function TimetFromFileTime Lib "MvSup2u.dll" (ByRef fileTime As MVSUP_FILETIME, ByRef time_ As LongLong) As Long
        Public Declare PtrSafe Function TimetToFileTime Lib "MvSup2u.dll" (ByVal time_ As LongLong, ByRef fileTime As MVSUP_FILETIME) As Long
        Public Declare PtrSafe Function TimetToOleDate Lib "MvSup2u.dll" (ByVal time_ As LongLong, ByRef oleDate As Date) As Long
        Public Declare PtrSafe Function TimetFromOleDate Lib "MvSup2u.dll" (ByVal oleDate As Date, ByRef time_ As LongLong) As Long
    #Else
        Public Declare PtrSafe Function TimetToGMTDate Lib "MvSup2u.dll" (ByVal time_ As Currency, ByVal zoneSeconds As Long, ByVal buffer As LongPtr, ByVal capacity As Long) As Long
        Public Declare PtrSafe Function TimetToGMTDateA Lib "MvSup2u.dll" (ByVal time_ As Currency, ByVal zoneSeconds As Long, ByVal buffer As String, ByVal capacity As Long) As Long
        Public Declare PtrSafe Function TimetFromGMTDate Lib "MvSup2u.dll" (ByVal text As LongPtr, ByRef time_ As Currency, ByRef zoneSeconds As Long) As Long
        Public Declare PtrSafe Function TimetFromGMTDateA Lib "MvSup2u.dll" (ByVal text As String, ByRef time_ As Currency, ByRef zoneSeconds As Long) As Long
        Public Declare PtrSafe Function TimetFromFileTime Lib "MvSup2u.dll" (ByRef fileTime As MVSUP_FILETIME, ByRef time_ As Currency) As Long
        Public Declare PtrSafe Function TimetToFileTime Lib "MvSup2u.dll" (ByVal time_ As Currency, ByRef fileTime As MVSUP_FILETIME) As Long
        Public Declare PtrSafe Function TimetToOleDate Lib "MvSup2u.dll" (ByVal time_ As Currency, ByRef oleDate As Date) As Long
        Public Declare PtrSafe Function TimetFromOleDate Lib "MvSup2u.dll" (ByVal oleDate As Date, ByRef time_ As Currency) As Long
    #End If
#Else
' VBA 6 and VB6: 32 bit, no LongPtr.
Public Type MVSUP_DIGEST_REQUEST
    nonceCount As Long
    nonce As Long
    cnonce As Long
    user As Long
    realm As Long
    password As Long
    algorithm As Long
    method As Long
    qop As Long
    digestUri As Long
    response(0 To 32) As Byte
End Type

Private Declare Function mvsup_lstrlenW Lib "kernel32" Alias "lstrlenW" (ByVal text As Long) As Long
Private Declare Sub mvsup_CopyMemory Lib "kernel32" Alias "RtlMoveMemory" (ByRef destination As Any, ByVal source As Long, ByVal length As Long)
Private Declare Function mvsup_GlobalFree Lib "kernel32" Alias "GlobalFree" (ByVal block As Long) As Long

    ' ---- Registry helpers
    Public Declare Function GetRegistryDWORD Lib "MvSup2u.dll" (ByVal root As Long, ByVal subKey As Long, ByVal name As Long, ByRef value As Long) As Long
    Public Declare Function GetRegistryDWORDEx Lib "MvSup2u.dll" (ByVal root As Long, ByVal subKey As Long, ByVal name As Long, ByVal defaultValue As Long) As Long
    Public Declare Function SetRegistryDWORD Lib "MvSup2u.dll" (ByVal root As Long, ByVal subKey As Long, ByVal name As Long, ByVal value As Long) As Long
    Public Declare Function GetRegistryString Lib "MvSup2u.dll" (ByVal root As Long, ByVal subKey As Long, ByVal name As Long, ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetRegistryStringEx Lib "MvSup2u.dll" (ByVal root As Long, ByVal subKey As Long, ByVal name As Long, ByVal defaultText As Long, ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function SetRegistryString Lib "MvSup2u.dll" (ByVal root As Long, ByVal subKey As Long, ByVal name As Long, ByVal text As Long) As Long
    Public Declare Function GetRegistryBinary Lib "MvSup2u.dll" (ByVal root As Long, ByVal subKey As Long, ByVal name As Long, ByRef data As Long, ByRef size As Long) As Long
    Public Declare Function SetRegistryBinary Lib "MvSup2u.dll" (ByVal root As Long, ByVal subKey As Long, ByVal name As Long, ByRef data As Any, ByVal size As Long) As Long
    Public Declare Function DeleteRegistrySubKey Lib "MvSup2u.dll" (ByVal root As Long, ByVal subKey As Long, ByVal childKey As Long) As Long
    Public Declare Function DeleteRegistryValue Lib "MvSup2u.dll" (ByVal root As Long, ByVal subKey As Long, ByVal name As Long) As Long
    Public Declare Function FindRegistryDWORD Lib "MvSup2u.dll" (ByVal root As Long, ByVal subKey As Long, ByVal matchFlags As Long, ByVal maxValues As Long, ByVal pattern As Long, ByRef value As Long) As Long
    Public Declare Function GetRootUserRegistryKey Lib "MvSup2u.dll" () As Long

    ' ---- Component settings
    Public Declare Function GetDwordSetting Lib "MvSup2u.dll" (ByVal component As Long, ByVal name As Long, ByVal defaultValue As Long) As Long
    Public Declare Function SetDwordSetting Lib "MvSup2u.dll" (ByVal component As Long, ByVal name As Long, ByVal value As Long) As Long
    Public Declare Function GetStringSetting Lib "MvSup2u.dll" (ByVal component As Long, ByVal name As Long, ByVal defaultText As Long, ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetStringSettingA Lib "MvSup2u.dll" (ByVal component As Long, ByVal name As Long, ByVal defaultText As Long, ByVal buffer As String, ByVal capacity As Long) As Long
    Public Declare Function SetStringSetting Lib "MvSup2u.dll" (ByVal component As Long, ByVal name As Long, ByVal text As Long) As Long
    Public Declare Function GetExpandedStringSetting Lib "MvSup2u.dll" (ByVal component As Long, ByVal name As Long, ByVal defaultText As Long, ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetBinarySetting Lib "MvSup2u.dll" (ByVal component As Long, ByVal name As Long, ByRef data As Long, ByRef size As Long) As Long
    Public Declare Function SetBinarySetting Lib "MvSup2u.dll" (ByVal component As Long, ByVal name As Long, ByRef data As Any, ByVal size As Long) As Long
    Public Declare Function FindDwordSetting Lib "MvSup2u.dll" (ByVal component As Long, ByVal matchFlags As Long, ByVal maxValues As Long, ByVal pattern As Long, ByRef value As Long) As Long
    Public Declare Function DeleteSetting Lib "MvSup2u.dll" (ByVal component As Long, ByVal name As Long) As Long
    Public Declare Function DeleteSettingsKey Lib "MvSup2u.dll" (ByVal component As Long, ByVal childKey As Long) As Long
    Public Declare Function SettingsKeyExists Lib "MvSup2u.dll" (ByVal component As Long, ByVal subKey As Long) As Long
    Public Declare Function OpenSettingsKey Lib "MvSup2u.dll" (ByVal component As Long, ByVal options As Long, ByVal access_ As Long, ByRef key As Long) As Long
    Public Declare Function CreateSettingsKey Lib "MvSup2u.dll" (ByVal component As Long, ByVal keyClass As Long, ByVal options As Long, ByVal access_ As Long, ByVal security As Long, ByRef key As Long, ByRef disposition As Long) As Long
    Public Declare Function GetModulePathFromRegistry Lib "MvSup2u.dll" (ByVal classId As Long, ByVal buffer As Long, ByVal capacity As Long) As Long

    ' ---- Client directories
    Public Declare Function GetProgramDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetProgramLangDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetDataDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetDataLangDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetWorkDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetCacheDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetHomeDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetScriptDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetScriptLangDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetLogDirectoryPath Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetPersonalDirectory Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long) As Long

    ' ---- Committed item infos and their readers
    Public Declare Function MvxCreateItemInfo Lib "MvSup2u.dll" (ByRef itemInfo As Long) As Long
    Public Declare Function MvxCopyItemInfo Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByRef copy As Long) As Long
    Public Declare Function FreeMvxInfo Lib "MvSup2u.dll" (ByVal itemInfo As Long) As Long
    Public Declare Function MvxFindTitleValue Lib "MvSup2u.dll" (ByVal itemInfo As Long) As Long
    Public Declare Function MvxGetIntegerPropValue Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByVal propId As Long, ByRef value As Long) As Long
    Public Declare Function MvxGetStringPropValue Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByVal propId As Long, ByRef text As Long) As Long
    Public Declare Function MvxGetDatePropValueAsSystemTime Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByVal propId As Long, ByRef systemTime As MVSUP_SYSTEMTIME, ByVal keepGmt As Long) As Long
    Public Declare Function MvxGetDatePropValue Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByVal propId As Long, ByRef date_ As Date, ByVal keepGmt As Long) As Long
    Public Declare Function MvxGetMvHandlePropValue Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByVal mask As Long, ByRef propId As Long, ByRef type_ As Long, ByRef number As Long, ByRef title As Long) As Long
    Public Declare Function MvxGetCustomStringProp Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByVal name As Long, ByRef text As Long) As Long
    Public Declare Function MvxGetCustomIntegerProp Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByVal name As Long, ByRef value As Long) As Long
    Public Declare Function MvxGetCustomFileTimeProp Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByVal name As Long, ByRef fileTime As MVSUP_FILETIME) As Long
    Public Declare Function MvxGetCustomSystemTimeProp Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByVal name As Long, ByRef systemTime As MVSUP_SYSTEMTIME, ByVal keepGmt As Long) As Long
    Public Declare Function MvxGetCustomDateProp Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByVal name As Long, ByRef date_ As Date, ByVal keepGmt As Long) As Long
    Public Declare Function MvxHasProp Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByVal propId As Long) As Long
    Public Declare Function MvxHasCustomProp Lib "MvSup2u.dll" (ByVal itemInfo As Long, ByVal name As Long) As Long
    Public Declare Function MvxGetSuperclassFromItemInfo Lib "MvSup2u.dll" (ByVal itemInfo As Long) As Long

    ' ---- Property catalogue
    Public Declare Function PropIdFromPropertyName Lib "MvSup2u.dll" (ByVal name As Long) As Long
    Public Declare Function PropertyNameFromPropId Lib "MvSup2u.dll" (ByVal propId As Long) As Long
    Public Declare Function PropTypeFromPropId Lib "MvSup2u.dll" (ByVal propId As Long) As Long
    Public Declare Function GetItemPropId Lib "MvSup2u.dll" (ByVal bits As Long, ByVal itemType As Long) As Long

    ' ---- Item types and handles
    Public Declare Function GetMvxItemTypeAsStringTS Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetMvxItemTypeAsString Lib "MvSup2u.dll" (ByVal type_ As Long) As Long
    Public Declare Function GetMvxItemTypeAsStringA Lib "MvSup2u.dll" (ByVal type_ As Long) As Long
    Public Declare Function GetMvxItemTypeAsHttpStringTS Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetMvxItemTypeAsHttpString Lib "MvSup2u.dll" (ByVal type_ As Long) As Long
    Public Declare Function GetMvxObjTypeAsStringTS Lib "MvSup2u.dll" (ByVal objType As Long, ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetMvxObjTypeAsString Lib "MvSup2u.dll" (ByVal objType As Long) As Long
    Public Declare Function GetMvxItemTypeAsDisplayString Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetMvxObjTypeFromItemType Lib "MvSup2u.dll" (ByVal type_ As Long) As Long
    Public Declare Function GetMvxItemTypeFromObjType Lib "MvSup2u.dll" (ByVal objType As Long) As Long
    Public Declare Function GetMvxItemTypeFromString Lib "MvSup2u.dll" (ByVal text As Long) As Long
    Public Declare Function GetMvxItemHandleFromString Lib "MvSup2u.dll" (ByVal text As Long, ByRef number As Long) As Long
    Public Declare Function GetMvxItemTypeFromStringA Lib "MvSup2u.dll" (ByVal text As String) As Long
    Public Declare Function GetMvxItemHandleFromStringA Lib "MvSup2u.dll" (ByVal text As String, ByRef number As Long) As Long
    Public Declare Function CompareMvxItemType Lib "MvSup2u.dll" (ByVal text As Long, ByVal type_ As Long) As Long
    Public Declare Function GetMvxItemHandleAsString Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal number As Long, ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function GetMvxItemHandleAsHttpString Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal number As Long, ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function ToNumber Lib "MvSup2u.dll" (ByVal text As Long, ByVal prefix As Long) As Long
    Public Declare Function ToCollHandle Lib "MvSup2u.dll" (ByVal text As Long, ByVal allowBare As Long, ByVal allowShort As Long) As Long
    Public Declare Function ToFileHandle Lib "MvSup2u.dll" (ByVal text As Long, ByVal allowBare As Long, ByRef version As Long, ByVal allowShort As Long) As Long
    Public Declare Function ToGroupHandle Lib "MvSup2u.dll" (ByVal text As Long, ByVal allowBare As Long) As Long
    Public Declare Function ToUserHandle Lib "MvSup2u.dll" (ByVal text As Long, ByVal allowBare As Long) As Long
    Public Declare Function ToHandle Lib "MvSup2u.dll" (ByVal text As Long, ByRef type_ As Integer, ByRef number As Long, ByRef version As Long, ByVal allowShort As Long) As Long
    Public Declare Function GetMvxParentItemType Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal context1 As Long, ByVal context2 As Long, ByVal context3 As Long, ByVal object_ As Long) As Long
    Public Declare Function GetMvxParentItemTypeAsStringTS Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long, ByVal type_ As Long, ByVal x1 As Long, ByVal x2 As Long, ByVal x3 As Long, ByVal object_ As Long) As Long
    Public Declare Function GetMvxParentItemTypeAsString Lib "MvSup2u.dll" (ByVal type_ As Long, ByVal x1 As Long, ByVal x2 As Long, ByVal x3 As Long, ByVal object_ As Long) As Long
    Public Declare Function GetMvxParentObjTypeAsStringTS Lib "MvSup2u.dll" (ByVal buffer As Long, ByVal capacity As Long, ByVal objType As Long, ByVal x1 As Long, ByVal x2 As Long, ByVal x3 As Long, ByVal object_ As Long) As Long
    Public Declare Function GetMvxParentObjTypeAsString Lib "MvSup2u.dll" (ByVal objType As Long, ByVal x1 As Long, ByVal x2 As Long, ByVal x3 As Long, ByVal object_ As Long) As Long

    ' ---- Dates
    Public Declare Function MVCreationDateFromSystemTime Lib "MvSup2u.dll" (ByRef systemTime As MVSUP_SYSTEMTIME) As Long
    Public Declare Function SystemTimeFromMVCreationDate Lib "MvSup2u.dll" (ByVal text As Long, ByRef systemTime As MVSUP_SYSTEMTIME) As Long
    Public Declare Function SystemTimeFromMVCreationDateA Lib "MvSup2u.dll" (ByVal text As String, ByRef systemTime As MVSUP_SYSTEMTIME) As Long
    Public Declare Function MVModifiedDateFromSystemTime Lib "MvSup2u.dll" (ByRef systemTime As MVSUP_SYSTEMTIME) As Long
    Public Declare Function SystemTimeFromMVModifiedDate Lib "MvSup2u.dll" (ByVal text As Long, ByRef systemTime As MVSUP_SYSTEMTIME) As Long
    Public Declare Function SystemTimeFromMVModifiedDateA Lib "MvSup2u.dll" (ByVal text As String, ByRef systemTime As MVSUP_SYSTEMTIME) As Long
    Public Declare Function GmtToLocalTime Lib "MvSup2u.dll" (ByRef gmtTime As MVSUP_SYSTEMTIME, ByRef localTime As MVSUP_SYSTEMTIME) As Long
    Public Declare Function LocalTimeToGmt Lib "MvSup2u.dll" (ByRef localTime As MVSUP_SYSTEMTIME, ByRef gmtTime As MVSUP_SYSTEMTIME) As Long
    Public Declare Function DosGmtToLocalTime Lib "MvSup2u.dll" (ByVal dosDate As Integer, ByVal dosTime As Integer, ByRef localTime As MVSUP_SYSTEMTIME) As Long
    Public Declare Function DosGmtToDosLocalTime Lib "MvSup2u.dll" (ByVal dosDate As Integer, ByVal dosTime As Integer, ByRef localDosDate As Integer, ByRef localDosTime As Integer) As Long
    Public Declare Function OleDateLocalTimeFromGmt Lib "MvSup2u.dll" (ByVal gmtDate As Date, ByRef localDate As Date) As Long
    Public Declare Function OleDateGmtFromLocalTime Lib "MvSup2u.dll" (ByVal localDate As Date, ByRef gmtDate As Date) As Long
    Public Declare Function DOSTimeFromVariantTime Lib "MvSup2u.dll" (ByVal variantTime As Date, ByRef dosDate As Integer, ByRef dosTime As Integer) As Long
    Public Declare Function DOSTimeToVariantTime Lib "MvSup2u.dll" (ByVal dosDate As Integer, ByVal dosTime As Integer, ByRef variantTime As Date) As Long
    Public Declare Function TMFromSystemTime Lib "MvSup2u.dll" (ByRef systemTime As MVSUP_SYSTEMTIME, ByRef tmOut As MVSUP_TM) As Long
    Public Declare Function SetDayOfWeekInSystemTime Lib "MvSup2u.dll" (ByRef systemTime As MVSUP_SYSTEMTIME) As Long
    Public Declare Function OleDateFromTm Lib "MvSup2u.dll" (ByRef tmIn As MVSUP_TM, ByRef oleDate As Date) As Long
    Public Declare Function TmFromOleDate Lib "MvSup2u.dll" (ByVal oleDate As Date, ByRef tmOut As MVSUP_TM) As Long

    ' ---- Base64
    Public Declare Function Base64Encode Lib "MvSup2u.dll" (ByRef bytes As Byte, ByVal count As Long, ByRef chars As Long, ByRef charCount As Long) As Long
    Public Declare Function Base64EncodeW Lib "MvSup2u.dll" (ByVal units As Long, ByVal count As Long, ByRef chars As Long, ByRef charCount As Long) As Long
    Public Declare Function Base64Decode Lib "MvSup2u.dll" (ByVal chars As String, ByVal count As Long, ByRef bytes As Long, ByRef byteCount As Long) As Long
    Public Declare Function Base64DecodeW Lib "MvSup2u.dll" (ByVal chars As Long, ByVal count As Long, ByRef units As Long, ByRef unitCount As Long) As Long

    ' ---- MD5 and digest authentication
    Public Declare Function MD5GetDigest Lib "MvSup2u.dll" (ByRef data As Any, ByVal length As Long, ByRef digest As Byte) As Long
    Public Declare Function WWWAuthDigestCalcResponse Lib "MvSup2u.dll" (ByRef request As MVSUP_DIGEST_REQUEST) As Long

    Public Declare Function TimetToGMTDate Lib "MvSup2u.dll" (ByVal time_ As Currency, ByVal zoneSeconds As Long, ByVal buffer As Long, ByVal capacity As Long) As Long
    Public Declare Function TimetToGMTDateA Lib "MvSup2u.dll" (ByVal time_ As Currency, ByVal zoneSeconds As Long, ByVal buffer As String, ByVal capacity As Long) As Long
    Public Declare Function TimetFromGMTDate Lib "MvSup2u.dll" (ByVal text As Long, ByRef time_ As Currency, ByRef zoneSeconds As Long) As Long
    Public Declare Function TimetFromGMTDateA Lib "MvSup2u.dll" (ByVal text As String, ByRef time_ As Currency, ByRef zoneSeconds As Long) As Long
    Public Declare Function TimetFromFileTime Lib "MvSup2u.dll" (ByRef fileTime As MVSUP_FILETIME, ByRef time_ As Currency) As Long
    Public Declare Function TimetToFileTime Lib "MvSup2u.dll" (ByVal time_ As Currency, ByRef fileTime As MVSUP_FILETIME) As Long
    Public Declare Function TimetToOleDate Lib "MvSup2u.dll" (ByVal time_ As Currency, ByRef oleDate As Date) As Long
    Public Declare Function TimetFromOleDate Lib "MvSup2u.dll" (ByVal oleDate As Date, ByRef time_ As Currency) As Long
#End If

#If VBA7 Then
' The text at pointer (a wide string with a terminating NUL); "" for 0.
Public Function MvSupString(ByVal pointer As LongPtr) As String
#Else
Public Function MvSupString(ByVal pointer As Long) As String
#End If
    Dim length As Long
    If pointer = 0 Then Exit Function
    length = mvsup_lstrlenW(pointer)
    If length = 0 Then Exit Function
    MvSupString = String$(length, vbNullChar)
    mvsup_CopyMemory ByVal StrPtr(MvSupString), pointer, length * 2
End Function

' The text of a result buffer, up to its first NUL.
Public Function MvSupBufferText(ByVal buffer As String) As String
    Dim terminator As Long
    terminator = InStr(buffer, vbNullChar)
    If terminator > 0 Then MvSupBufferText = Left$(buffer, terminator - 1) Else MvSupBufferText = buffer
End Function

' Frees a block that the library handed out (GlobalAlloc memory).
#If VBA7 Then
Public Sub MvSupGlobalFree(ByVal block As LongPtr)
#Else
Public Sub MvSupGlobalFree(ByVal block As Long)
#End If
    If block <> 0 Then mvsup_GlobalFree block
End Sub

' time_t <-> seconds since 1970-01-01 UTC.
#If Win64 Then
Public Function MvSupTimeFromSeconds(ByVal seconds As Double) As LongLong
    MvSupTimeFromSeconds = CLngLng(seconds)
End Function
Public Function MvSupSecondsFromTime(ByVal time_ As LongLong) As Double
    MvSupSecondsFromTime = CDbl(time_)
End Function
#Else
Public Function MvSupTimeFromSeconds(ByVal seconds As Double) As Currency
    MvSupTimeFromSeconds = CCur(seconds / 10000#)
End Function
Public Function MvSupSecondsFromTime(ByVal time_ As Currency) As Double
    MvSupSecondsFromTime = CDbl(time_) * 10000#
End Function
#End If

' The response of an HTTP digest authentication: 32 lower-case hex digits,
' or "" when the library refused the request.
Public Function MvSupDigestResponse(ByVal nonceCount As Long, ByVal nonce As String, ByVal cnonce As String, _
                                    ByVal user As String, ByVal realm As String, ByVal password As String, _
                                    ByVal algorithm As String, ByVal method As String, ByVal qop As String, _
                                    ByVal digestUri As String) As String
    Dim texts(0 To 8) As String
    Dim bytes() As Byte
    Dim request As MVSUP_DIGEST_REQUEST
    Dim i As Long
    texts(0) = nonce: texts(1) = cnonce: texts(2) = user: texts(3) = realm: texts(4) = password
    texts(5) = algorithm: texts(6) = method: texts(7) = qop: texts(8) = digestUri
    ' Each text as ANSI bytes with a NUL, kept alive in texts() during the call.
    For i = 0 To 8
        texts(i) = StrConv(texts(i) & vbNullChar, vbFromUnicode)
    Next i
    request.nonceCount = nonceCount
    request.nonce = StrPtr(texts(0)): request.cnonce = StrPtr(texts(1)): request.user = StrPtr(texts(2))
    request.realm = StrPtr(texts(3)): request.password = StrPtr(texts(4)): request.algorithm = StrPtr(texts(5))
    request.method = StrPtr(texts(6)): request.qop = StrPtr(texts(7)): request.digestUri = StrPtr(texts(8))
    If WWWAuthDigestCalcResponse(request) <> MVSUP_S_OK Then Exit Function
    bytes = request.response
    ReDim Preserve bytes(0 To 31)
    MvSupDigestResponse = StrConv(bytes, vbUnicode)
End Function
