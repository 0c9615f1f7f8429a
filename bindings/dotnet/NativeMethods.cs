// NativeMethods.cs - declarations of MvSup2u.dll for .NET callers (P/Invoke).
//
// Add this file to the project and put MvSup2u.dll of the process's
// architecture (x86_64 for 64-bit processes, i686 for 32-bit ones) beside
// the program. Every function is stdcall with its exact exported name.
//
// How values travel:
// - Text is UTF-16 (LPWStr) unless the function's name ends in A (LPStr).
//   Result buffers are StringBuilders made with their capacity.
// - Text the library returns as a pointer (a static buffer, or a pointer
//   into an item info) is an IntPtr: read it with Marshal.PtrToStringUni
//   (Marshal.PtrToStringAnsi for the A functions). Never declare such a
//   result as string: the marshaller would free memory the library owns.
// - Blocks the library hands out (Base64 output, registry data) are IntPtrs
//   that the caller frees with NativeMethods.GlobalFree.
// - Committed item infos are MvxItemInfoHandle: a SafeHandle that frees the
//   block with FreeMvxInfo.
// - Functions that report failure through the last error have
//   SetLastError = true: read it with Marshal.GetLastWin32Error().
using System;
using System.Runtime.InteropServices;
using System.Text;
using Microsoft.Win32.SafeHandles;

namespace MvSup2u
{
    /// <summary>A committed item info (a block of global memory), freed with FreeMvxInfo.</summary>
    public sealed class MvxItemInfoHandle : SafeHandleZeroOrMinusOneIsInvalid
    {
        public MvxItemInfoHandle() : base(true) { }

        protected override bool ReleaseHandle()
        {
            return NativeMethods.FreeMvxInfo(handle) == IntPtr.Zero;
        }
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct SYSTEMTIME
    {
        public ushort wYear;
        public ushort wMonth;
        public ushort wDayOfWeek;
        public ushort wDay;
        public ushort wHour;
        public ushort wMinute;
        public ushort wSecond;
        public ushort wMilliseconds;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct FILETIME
    {
        public uint dwLowDateTime;
        public uint dwHighDateTime;
    }

    /// <summary>The C run-time's struct tm.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct Tm
    {
        public int tm_sec;
        public int tm_min;
        public int tm_hour;
        public int tm_mday;
        public int tm_mon;
        public int tm_year;
        public int tm_wday;
        public int tm_yday;
        public int tm_isdst;
    }

    /// <summary>One digest-authentication request; WWWAuthDigestCalcResponse fills response.</summary>
    [StructLayout(LayoutKind.Sequential, CharSet = CharSet.Ansi)]
    public struct MVSUP_DIGEST_REQUEST
    {
        public uint nonceCount;
        [MarshalAs(UnmanagedType.LPStr)] public string nonce;
        [MarshalAs(UnmanagedType.LPStr)] public string cnonce;
        [MarshalAs(UnmanagedType.LPStr)] public string user;
        [MarshalAs(UnmanagedType.LPStr)] public string realm;
        [MarshalAs(UnmanagedType.LPStr)] public string password;
        [MarshalAs(UnmanagedType.LPStr)] public string algorithm;
        [MarshalAs(UnmanagedType.LPStr)] public string method;
        [MarshalAs(UnmanagedType.LPStr)] public string qop;
        [MarshalAs(UnmanagedType.LPStr)] public string digestUri;
        [MarshalAs(UnmanagedType.ByValTStr, SizeConst = 33)] public string response;
    }

    public static class NativeMethods
    {
        public const string Library = "MvSup2u.dll";

        /// <summary>HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE for the registry helpers.</summary>
        public static readonly IntPtr HKEY_CURRENT_USER = new IntPtr(unchecked((int)0x80000001));
        public static readonly IntPtr HKEY_LOCAL_MACHINE = new IntPtr(unchecked((int)0x80000002));

        public const int MVXITEMTYPE_COLLECTION = 2;
        public const int MVXITEMTYPE_FILE = 3;
        public const int MVXITEMTYPE_UNKNOWN = 16;

        /// <summary>Frees a block the library handed out (GlobalAlloc memory).</summary>
        [DllImport("kernel32.dll", ExactSpelling = true, SetLastError = true)]
        public static extern IntPtr GlobalFree(IntPtr block);

        // ---- Registry helpers
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetRegistryDWORD(IntPtr root, [MarshalAs(UnmanagedType.LPWStr)] string subKey, [MarshalAs(UnmanagedType.LPWStr)] string name, out uint value);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern uint GetRegistryDWORDEx(IntPtr root, [MarshalAs(UnmanagedType.LPWStr)] string subKey, [MarshalAs(UnmanagedType.LPWStr)] string name, uint defaultValue);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int SetRegistryDWORD(IntPtr root, [MarshalAs(UnmanagedType.LPWStr)] string subKey, [MarshalAs(UnmanagedType.LPWStr)] string name, uint value);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetRegistryString(IntPtr root, [MarshalAs(UnmanagedType.LPWStr)] string subKey, [MarshalAs(UnmanagedType.LPWStr)] string name, [MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, uint capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetRegistryStringEx(IntPtr root, [MarshalAs(UnmanagedType.LPWStr)] string subKey, [MarshalAs(UnmanagedType.LPWStr)] string name, [MarshalAs(UnmanagedType.LPWStr)] string defaultText, [MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, uint capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int SetRegistryString(IntPtr root, [MarshalAs(UnmanagedType.LPWStr)] string subKey, [MarshalAs(UnmanagedType.LPWStr)] string name, [MarshalAs(UnmanagedType.LPWStr)] string text);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetRegistryBinary(IntPtr root, [MarshalAs(UnmanagedType.LPWStr)] string subKey, [MarshalAs(UnmanagedType.LPWStr)] string name, out IntPtr data, out uint size);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int SetRegistryBinary(IntPtr root, [MarshalAs(UnmanagedType.LPWStr)] string subKey, [MarshalAs(UnmanagedType.LPWStr)] string name, byte[] data, uint size);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int DeleteRegistrySubKey(IntPtr root, [MarshalAs(UnmanagedType.LPWStr)] string subKey, [MarshalAs(UnmanagedType.LPWStr)] string childKey);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int DeleteRegistryValue(IntPtr root, [MarshalAs(UnmanagedType.LPWStr)] string subKey, [MarshalAs(UnmanagedType.LPWStr)] string name);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int FindRegistryDWORD(IntPtr root, [MarshalAs(UnmanagedType.LPWStr)] string subKey, uint matchFlags, int maxValues, [MarshalAs(UnmanagedType.LPWStr)] string pattern, out uint value);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr GetRootUserRegistryKey();

        // ---- Component settings
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern uint GetDwordSetting([MarshalAs(UnmanagedType.LPWStr)] string component, [MarshalAs(UnmanagedType.LPWStr)] string name, uint defaultValue);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int SetDwordSetting([MarshalAs(UnmanagedType.LPWStr)] string component, [MarshalAs(UnmanagedType.LPWStr)] string name, uint value);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetStringSetting([MarshalAs(UnmanagedType.LPWStr)] string component, [MarshalAs(UnmanagedType.LPWStr)] string name, [MarshalAs(UnmanagedType.LPWStr)] string defaultText, [MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, uint capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetStringSettingA([MarshalAs(UnmanagedType.LPWStr)] string component, [MarshalAs(UnmanagedType.LPWStr)] string name, [MarshalAs(UnmanagedType.LPWStr)] string defaultText, [MarshalAs(UnmanagedType.LPStr)] StringBuilder buffer, uint capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int SetStringSetting([MarshalAs(UnmanagedType.LPWStr)] string component, [MarshalAs(UnmanagedType.LPWStr)] string name, [MarshalAs(UnmanagedType.LPWStr)] string text);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetExpandedStringSetting([MarshalAs(UnmanagedType.LPWStr)] string component, [MarshalAs(UnmanagedType.LPWStr)] string name, [MarshalAs(UnmanagedType.LPWStr)] string defaultText, [MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, uint capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetBinarySetting([MarshalAs(UnmanagedType.LPWStr)] string component, [MarshalAs(UnmanagedType.LPWStr)] string name, out IntPtr data, out uint size);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int SetBinarySetting([MarshalAs(UnmanagedType.LPWStr)] string component, [MarshalAs(UnmanagedType.LPWStr)] string name, byte[] data, uint size);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int FindDwordSetting([MarshalAs(UnmanagedType.LPWStr)] string component, uint matchFlags, int maxValues, [MarshalAs(UnmanagedType.LPWStr)] string pattern, out uint value);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int DeleteSetting([MarshalAs(UnmanagedType.LPWStr)] string component, [MarshalAs(UnmanagedType.LPWStr)] string name);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int DeleteSettingsKey([MarshalAs(UnmanagedType.LPWStr)] string component, [MarshalAs(UnmanagedType.LPWStr)] string childKey);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool SettingsKeyExists([MarshalAs(UnmanagedType.LPWStr)] string component, [MarshalAs(UnmanagedType.LPWStr)] string subKey);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int OpenSettingsKey([MarshalAs(UnmanagedType.LPWStr)] string component, uint options, uint access, out SafeRegistryHandle key);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int CreateSettingsKey([MarshalAs(UnmanagedType.LPWStr)] string component, [MarshalAs(UnmanagedType.LPWStr)] string keyClass, uint options, uint access, IntPtr security, out SafeRegistryHandle key, out uint disposition);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetModulePathFromRegistry([MarshalAs(UnmanagedType.LPWStr)] string classId, [MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, uint capacity);

        // ---- Client directories
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetProgramDirectoryPath([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetProgramLangDirectoryPath([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetDataDirectoryPath([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetDataLangDirectoryPath([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetWorkDirectoryPath([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetCacheDirectoryPath([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetHomeDirectoryPath([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetScriptDirectoryPath([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetScriptLangDirectoryPath([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetLogDirectoryPath([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool GetPersonalDirectory([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);

        // ---- Committed item infos and their readers
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxCreateItemInfo(out MvxItemInfoHandle itemInfo);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxCopyItemInfo(MvxItemInfoHandle itemInfo, out MvxItemInfoHandle copy);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr FreeMvxInfo(IntPtr itemInfo);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr MvxFindTitleValue(MvxItemInfoHandle itemInfo);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxGetIntegerPropValue(MvxItemInfoHandle itemInfo, uint propId, out int value);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxGetStringPropValue(MvxItemInfoHandle itemInfo, uint propId, out IntPtr text);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxGetDatePropValueAsSystemTime(MvxItemInfoHandle itemInfo, uint propId, out SYSTEMTIME systemTime, [MarshalAs(UnmanagedType.Bool)] bool keepGmt);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxGetDatePropValue(MvxItemInfoHandle itemInfo, uint propId, out double date, [MarshalAs(UnmanagedType.Bool)] bool keepGmt);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxGetMvHandlePropValue(MvxItemInfoHandle itemInfo, uint mask, out uint propId, out int type, out uint number, out IntPtr title);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxGetCustomStringProp(MvxItemInfoHandle itemInfo, [MarshalAs(UnmanagedType.LPWStr)] string name, out IntPtr text);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxGetCustomIntegerProp(MvxItemInfoHandle itemInfo, [MarshalAs(UnmanagedType.LPWStr)] string name, out int value);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxGetCustomFileTimeProp(MvxItemInfoHandle itemInfo, [MarshalAs(UnmanagedType.LPWStr)] string name, out FILETIME fileTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxGetCustomSystemTimeProp(MvxItemInfoHandle itemInfo, [MarshalAs(UnmanagedType.LPWStr)] string name, out SYSTEMTIME systemTime, [MarshalAs(UnmanagedType.Bool)] bool keepGmt);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxGetCustomDateProp(MvxItemInfoHandle itemInfo, [MarshalAs(UnmanagedType.LPWStr)] string name, out double date, [MarshalAs(UnmanagedType.Bool)] bool keepGmt);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxHasProp(MvxItemInfoHandle itemInfo, uint propId);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxHasCustomProp(MvxItemInfoHandle itemInfo, [MarshalAs(UnmanagedType.LPWStr)] string name);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MvxGetSuperclassFromItemInfo(MvxItemInfoHandle itemInfo);

        // ---- Property catalogue
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern uint PropIdFromPropertyName([MarshalAs(UnmanagedType.LPWStr)] string name);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr PropertyNameFromPropId(uint propId);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int PropTypeFromPropId(uint propId);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern uint GetItemPropId(uint bits, int itemType);

        // ---- Item types and handles
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr GetMvxItemTypeAsStringTS(int type, [MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr GetMvxItemTypeAsString(int type);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr GetMvxItemTypeAsStringA(int type);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr GetMvxItemTypeAsHttpStringTS(int type, [MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr GetMvxItemTypeAsHttpString(int type);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr GetMvxObjTypeAsStringTS(int objType, [MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr GetMvxObjTypeAsString(int objType);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetMvxItemTypeAsDisplayString(int type, [MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetMvxObjTypeFromItemType(int type);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetMvxItemTypeFromObjType(int objType);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetMvxItemTypeFromString([MarshalAs(UnmanagedType.LPWStr)] string text);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetMvxItemHandleFromString([MarshalAs(UnmanagedType.LPWStr)] string text, out int number);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetMvxItemTypeFromStringA([MarshalAs(UnmanagedType.LPStr)] string text);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetMvxItemHandleFromStringA([MarshalAs(UnmanagedType.LPStr)] string text, out int number);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int CompareMvxItemType([MarshalAs(UnmanagedType.LPWStr)] string text, int type);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetMvxItemHandleAsString(int type, uint number, [MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetMvxItemHandleAsHttpString(int type, uint number, [MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int ToNumber([MarshalAs(UnmanagedType.LPWStr)] string text, [MarshalAs(UnmanagedType.LPWStr)] string prefix);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int ToCollHandle([MarshalAs(UnmanagedType.LPWStr)] string text, [MarshalAs(UnmanagedType.Bool)] bool allowBare, [MarshalAs(UnmanagedType.Bool)] bool allowShort);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int ToFileHandle([MarshalAs(UnmanagedType.LPWStr)] string text, [MarshalAs(UnmanagedType.Bool)] bool allowBare, ref int version, [MarshalAs(UnmanagedType.Bool)] bool allowShort);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int ToGroupHandle([MarshalAs(UnmanagedType.LPWStr)] string text, [MarshalAs(UnmanagedType.Bool)] bool allowBare);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int ToUserHandle([MarshalAs(UnmanagedType.LPWStr)] string text, [MarshalAs(UnmanagedType.Bool)] bool allowBare);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int ToHandle([MarshalAs(UnmanagedType.LPWStr)] string text, out ushort type, out int number, ref int version, [MarshalAs(UnmanagedType.Bool)] bool allowShort);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int GetMvxParentItemType(int type, int context1, int context2, int context3, [MarshalAs(UnmanagedType.IUnknown)] object item);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr GetMvxParentItemTypeAsStringTS([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity, int type, int x1, int x2, int x3, [MarshalAs(UnmanagedType.IUnknown)] object item);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr GetMvxParentItemTypeAsString(int type, int x1, int x2, int x3, [MarshalAs(UnmanagedType.IUnknown)] object item);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr GetMvxParentObjTypeAsStringTS([MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, int capacity, int objType, int x1, int x2, int x3, [MarshalAs(UnmanagedType.IUnknown)] object item);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr GetMvxParentObjTypeAsString(int objType, int x1, int x2, int x3, [MarshalAs(UnmanagedType.IUnknown)] object item);

        // ---- Dates
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr MVCreationDateFromSystemTime(ref SYSTEMTIME systemTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool SystemTimeFromMVCreationDate([MarshalAs(UnmanagedType.LPWStr)] string text, out SYSTEMTIME systemTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool SystemTimeFromMVCreationDateA([MarshalAs(UnmanagedType.LPStr)] string text, out SYSTEMTIME systemTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int TimetToGMTDate(long time, int zoneSeconds, [MarshalAs(UnmanagedType.LPWStr)] StringBuilder buffer, uint capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int TimetToGMTDateA(long time, int zoneSeconds, [MarshalAs(UnmanagedType.LPStr)] StringBuilder buffer, uint capacity);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int TimetFromGMTDate([MarshalAs(UnmanagedType.LPWStr)] string text, out long time, out int zoneSeconds);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int TimetFromGMTDateA([MarshalAs(UnmanagedType.LPStr)] string text, out long time, out int zoneSeconds);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern IntPtr MVModifiedDateFromSystemTime(ref SYSTEMTIME systemTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int SystemTimeFromMVModifiedDate([MarshalAs(UnmanagedType.LPWStr)] string text, out SYSTEMTIME systemTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int SystemTimeFromMVModifiedDateA([MarshalAs(UnmanagedType.LPStr)] string text, out SYSTEMTIME systemTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool GmtToLocalTime(ref SYSTEMTIME gmtTime, out SYSTEMTIME localTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool LocalTimeToGmt(ref SYSTEMTIME localTime, out SYSTEMTIME gmtTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool DosGmtToLocalTime(ushort dosDate, ushort dosTime, out SYSTEMTIME localTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool DosGmtToDosLocalTime(ushort dosDate, ushort dosTime, out ushort localDosDate, out ushort localDosTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool OleDateLocalTimeFromGmt(double gmtDate, out double localDate);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool OleDateGmtFromLocalTime(double localDate, out double gmtDate);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool DOSTimeFromVariantTime(double variantTime, out ushort dosDate, out ushort dosTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool DOSTimeToVariantTime(ushort dosDate, ushort dosTime, out double variantTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool TimetFromFileTime(ref FILETIME fileTime, out long time);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool TimetToFileTime(long time, out FILETIME fileTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool TMFromSystemTime(ref SYSTEMTIME systemTime, out Tm tmOut);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool SetDayOfWeekInSystemTime(ref SYSTEMTIME systemTime);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool OleDateFromTm(ref Tm tmIn, out double oleDate);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool TmFromOleDate(double oleDate, out Tm tmOut);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool TimetToOleDate(long time, out double oleDate);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        [return: MarshalAs(UnmanagedType.Bool)]
        public static extern bool TimetFromOleDate(double oleDate, out long time);

        // ---- Base64
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int Base64Encode(byte[] bytes, uint count, out IntPtr chars, out uint charCount);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int Base64EncodeW([MarshalAs(UnmanagedType.LPWStr)] string units, uint count, out IntPtr chars, out uint charCount);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int Base64Decode([MarshalAs(UnmanagedType.LPStr)] string chars, uint count, out IntPtr bytes, out uint byteCount);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int Base64DecodeW([MarshalAs(UnmanagedType.LPWStr)] string chars, uint count, out IntPtr units, out uint unitCount);

        // ---- MD5 and digest authentication
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int MD5GetDigest(byte[] data, uint length, [Out] byte[] digest);
        [DllImport(Library, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Unicode, ExactSpelling = true)]
        public static extern int WWWAuthDigestCalcResponse(ref MVSUP_DIGEST_REQUEST request);
    }
}
