// Compiled with NativeMethods.cs by the test command (never run): the
// declarations must compile, and be usable the way the README shows.
using System;
using System.Runtime.InteropServices;
using System.Text;
using Microsoft.Win32.SafeHandles;
using MvSup2u;

static class DeclarationsInUse
{
    static void Main()
    {
        var handle = new StringBuilder(64);
        NativeMethods.GetMvxItemHandleAsString(NativeMethods.MVXITEMTYPE_FILE, 12, handle, handle.Capacity);
        Console.WriteLine($"{handle} is item type {NativeMethods.GetMvxItemTypeFromString(handle.ToString())}");
        NativeMethods.Base64Encode(new byte[] { 1, 2, 3 }, 3, out IntPtr chars, out uint count);
        Console.WriteLine(Marshal.PtrToStringAnsi(chars, (int)count));
        NativeMethods.GlobalFree(chars);

        using (MvxItemInfoHandle info = CreateItemInfo())
        {
            if (NativeMethods.MvxGetStringPropValue(info, 2, out IntPtr title) == 0)
                Console.WriteLine(Marshal.PtrToStringUni(title));
        }
        if (NativeMethods.OpenSettingsKey("MVSUP\\Settings", 0, 0x20019, out SafeRegistryHandle key) == 0)
            key.Dispose();
        var now = new SYSTEMTIME();
        if (!NativeMethods.GmtToLocalTime(ref now, out SYSTEMTIME local))
            Console.WriteLine(Marshal.GetLastWin32Error());
        var request = new MVSUP_DIGEST_REQUEST
        {
            nonceCount = 1, nonce = "n", cnonce = "c", user = "u", realm = "r", password = "p",
            algorithm = "MD5", method = "GET", qop = "auth", digestUri = "/"
        };
        NativeMethods.WWWAuthDigestCalcResponse(ref request);
        Console.WriteLine(request.response + local.wYear);
    }

    static MvxItemInfoHandle CreateItemInfo()
    {
        NativeMethods.MvxCreateItemInfo(out MvxItemInfoHandle info);
        return info;
    }
}
