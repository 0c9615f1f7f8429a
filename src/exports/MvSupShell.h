/** @file
   MvSup2u: shell integration. The namespace extension's folders and server
   list, item-ID list helpers, the library's icons and bitmaps, the IPC lock,
   and the script, form and message-box runners. */
#ifndef MVSUP_SHELL_H
#define MVSUP_SHELL_H

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>
#include <shlobj.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Client-owned interfaces ------------------------------------------------
   Include <initguid.h> before this header in one source file to define the
   GUIDs. */

/** Private interface of the namespace extension's root and server folders
    {F48AA345-6117-4051-96DB-D3161B6AAFE1}. An object that answers it has the
    IShellFolder layout: cast the pointer to IShellFolder* to call it. */
DEFINE_GUID(IID_IMvNsxFolder, 0xf48aa345, 0x6117, 0x4051, 0x96, 0xdb, 0xd3, 0x16, 0x1b, 0x6a, 0xaf, 0xe1);

/** The client's form runner (in-process class {A750EA9B-EEC3-402D-9FCD-5B3E428D3207},
    interface {576A779C-D33D-4443-A277-A46D9816981A}). */
DEFINE_GUID(CLSID_MvFormRunner, 0xa750ea9b, 0xeec3, 0x402d, 0x9f, 0xcd, 0x5b, 0x3e, 0x42, 0x8d, 0x32, 0x07);
/** The form runner's interface, IMvFormRunner. */
DEFINE_GUID(IID_IMvFormRunner, 0x576a779c, 0xd33d, 0x4443, 0xa2, 0x77, 0xa4, 0x6d, 0x98, 0x16, 0x98, 0x1a);

/** The client's message-box helper (in-process class
    {CF9AF527-2254-476B-B167-1E17047F911D}, dispatch interface
    {5E412A30-1E9D-48BB-870A-851660081024}). Its method
    MVSUP_DISPID_SHOWMESSAGEBOX takes (owner VT_I4, text VT_BSTR, caption
    VT_BSTR, type VT_I4, extra16 VT_I4, extra32 VT_I4) and returns the button
    as VT_I4. */
DEFINE_GUID(CLSID_MvMessageBoxHelper, 0xcf9af527, 0x2254, 0x476b, 0xb1, 0x67, 0x1e, 0x17, 0x04, 0x7f, 0x91, 0x1d);
/** The message-box helper's dispatch interface. */
DEFINE_GUID(IID_IMvMessageBoxHelper, 0x5e412a30, 0x1e9d, 0x48bb, 0x87, 0x0a, 0x85, 0x16, 0x60, 0x08, 0x10, 0x24);
/** DISPID of the message-box helper's method that shows a box. */
#define MVSUP_DISPID_SHOWMESSAGEBOX 0x1000F

#undef INTERFACE
#define INTERFACE IMvFormRunner
/** The form runner, as RunHTMLForm calls it. Implemented by the client's
    form-runner component, not by this library. */
DECLARE_INTERFACE_(IMvFormRunner, IUnknown) {
  /** IUnknown. */
  STDMETHOD(QueryInterface)(THIS_ REFIID riid, void** object) PURE;
  /** IUnknown. */
  STDMETHOD_(ULONG, AddRef)(THIS) PURE;
  /** IUnknown. */
  STDMETHOD_(ULONG, Release)(THIS) PURE;
  /** Opens the HTML form at formPath. flags and reserved are 0 from this
      library; *result is the runner's own answer, not used further. */
  STDMETHOD(RunForm)(THIS_ BSTR formPath, LONG flags, LONG reserved, VARIANT* result) PURE;
};
#undef INTERFACE

/* ---- Namespace folders and the server list -------------------------------- */

/** Finds the namespace extension's root folder: the first child of the
    desktop (or, with mode bit MVSUP_MODE_NSXASDRIVE, of My Computer) that
    binds as a folder answering IID_IMvNsxFolder.
    @param nsxFolder   receives the root folder (IID_IMvNsxFolder, IShellFolder
                       layout); the caller releases it. Set to null first.
    @param displayName optional buffer of at least 260 characters for the
                       folder's normal display name ("" when it has none).
    @param pidl        optional; receives the folder's absolute item-ID list
                       (shell allocator: free with CoTaskMemFree / IMalloc).
    @return S_OK; E_POINTER for a null nsxFolder; E_UNEXPECTED when the desktop
            or My Computer cannot be had; otherwise the HRESULT of the last
            child tried (nothing handed out).
    COM must be initialised on the calling thread. */
HRESULT WINAPI GetMvNsxFolder(void** nsxFolder, LPWSTR displayName, LPITEMIDLIST* pidl);

/** Binds to the server named serverName (exact, case-sensitive) among the
    server items of the root folder nsxFolder. Server items come first in the
    root's enumeration: the first item that is not a server item ends the
    search.
    @param nsxFolder    the root folder from GetMvNsxFolder (IShellFolder layout).
    @param serverName   the server's name, compared whole and case-sensitively.
    @param serverFolder receives the server's folder (IID_IMvNsxFolder); the
                        caller releases it.
    @param pidl         optional; receives the server item's one-item ID list
                        relative to the root (shell allocator).
    @return the HRESULT of the bind; E_POINTER for a null nsxFolder or
            serverFolder; E_UNEXPECTED when the root cannot be enumerated or no
            server matched. */
HRESULT WINAPI GetMvServerFolder(void* nsxFolder, LPCWSTR serverName, void** serverFolder, LPITEMIDLIST* pidl);

/** Lists every child of the root folder, in enumeration order, unfiltered.
    @param count receives the number of entries.
    @param list  receives an array of *count item-ID list pointers; the array
                 and every entry are GlobalAlloc blocks that the caller frees
                 with GlobalFree. Null when the root has no children.
    @return S_OK; E_POINTER for a null list or count; the HRESULT of
            GetMvNsxFolder when there is no root; E_UNEXPECTED when it cannot
            be enumerated; E_OUTOFMEMORY. */
HRESULT WINAPI GetServerList(LPITEMIDLIST** list, UINT* count);

/** Binds to a file-system folder by walking the shell namespace from My
    Computer, one path component at a time ("C:\", then each folder name).
    A component matches the first child (hidden ones included) whose
    in-folder parsing name begins with it, ignoring case.
    @param path   the folder's file-system path, e.g. `C:\Users\Public`.
    @param folder receives the folder with one reference; null otherwise.
    @return S_OK with a folder; S_FALSE when a component matched nothing;
            E_POINTER for a null folder; E_INVALIDARG for a null or empty
            path; a failing shell call's HRESULT. A child whose parsing name
            is empty ends the walk with S_OK and no folder. */
HRESULT WINAPI BindToFolderByFileSystemPath(LPCWSTR path, IShellFolder** folder);

/* ---- Item-ID list helpers --------------------------------------------------- */

/** Total size in bytes of the items of pidl, without the terminator; *count
    (optional) receives the number of items. A null pidl gives 0 and leaves
    *count unwritten. Thread-safe. */
UINT WINAPI GetIdlLen(LPCITEMIDLIST pidl, UINT* count);

/** A pointer into pidl at its last item; pidl itself for a list of one item
    or none; null for null. Nothing is allocated. */
LPITEMIDLIST WINAPI GetLastItemPidl(LPCITEMIDLIST pidl);

/** Dumps the first item of pidl (its cb bytes, the size field included):
    *hex gets "%02X " per byte, *text one character per byte ('.' for bytes
    below 32 or from 127 on). Both are GlobalAlloc blocks that the caller
    frees with GlobalFree.
    @return TRUE; FALSE with both outputs null for a null or empty item, a
            null output pointer, or when memory runs out. */
BOOL WINAPI IdlDump(LPCITEMIDLIST pidl, LPWSTR* hex, LPWSTR* text);

/* ---- Icons and bitmaps ------------------------------------------------------ */

/** Index into the server-map icon tables (0-13) for a server-map entry of
    the given level and flags; 7 higher when selected is not null.
    @return S_OK; E_POINTER for a null index. */
HRESULT WINAPI GetServerMapIconIndex(short level, DWORD flags, const void* selected, UINT* index);

/** Loads the server-map icon pair for level and flags. The selection
    argument of GetServerMapIconIndex is large, so a non-null large always
    gives a selected index (7-13). *largeIcon and *smallIcon (each optional) receive
    new icons that the caller destroys with DestroyIcon; *index (optional)
    the index. @return S_OK. */
HRESULT WINAPI LoadServerMapIcon(short level, DWORD flags, HICON* largeIcon, HICON* smallIcon, UINT* index);

/** Icon index of a committed item info: a position in the item icon tables
    (0-69), or, for a document shown unselected, the image-list key of its
    file extension (see GetMvxFileIconIndex). A null item reads as an empty
    one. @return S_OK; E_POINTER for a null index. */
HRESULT WINAPI GetMvxItemIconIndex(const BYTE* item, BOOL selected, UINT* index);

/** Loads the icon pair for the item's index: from the item tables, or, for
    a document key, the icons of its file type (LoadMvxFileIcon), falling
    back to the document pair. *largeIcon, *smallIcon and *index are optional; icons
    are the caller's to destroy (DestroyIcon). @return S_OK. */
HRESULT WINAPI LoadMvxItemIcon(const BYTE* item, BOOL selected, HICON* largeIcon, HICON* smallIcon, UINT* index);

/** The icon index of a document item's file type: 3 without an extension
    (from the file name "mervane_filename", else from the MIME type
    "getcontenttype"); for ".htm" the mail class index of its custom property
    OutlookMessageClass when there is one; otherwise 34 plus the extension's
    UTF-16 bytes summed into four byte lanes. @return S_OK; E_POINTER for a
    null index. */
HRESULT WINAPI GetMvxFileIconIndex(const BYTE* item, UINT* index);

/** The icon pair of a document item's file type: the mail class pair for an
    ".htm" with a mail class, otherwise ExtractIconFor on its extension.
    @return 0 when icons were found, 1 otherwise (outputs then null). */
int WINAPI LoadMvxFileIcon(const BYTE* item, HICON* largeIcon, HICON* smallIcon);

/** The icons Windows shows for a file extension (".txt"): DefaultIcon of its
    file type, the type's icon handler for "%1", the shell's own icon, and the
    library's generic document icons for whatever is still missing.
    @return FALSE with both outputs null when the extension has no file type;
            TRUE otherwise with both icons set (the caller destroys them). */
BOOL WINAPI ExtractIconFor(LPCWSTR extension, HICON* largeIcon, HICON* smallIcon);

/** value * (vertical pixels per logical inch of the display) / 96, rounded
    as MulDiv rounds. The display's resolution is read once per process. */
int WINAPI AdjustByScreenRes(int value);

/** Converts *size in place from screen pixels to HIMETRIC units (0.01 mm).
    @return TRUE; FALSE for a null size or when no screen DC can be had. */
BOOL WINAPI ConvertScreenDPtoHIMETRIC(SIZE* size);
/** Converts *size in place from HIMETRIC units (0.01 mm) to screen pixels.
    @return TRUE; FALSE for a null size or when no screen DC can be had. */
BOOL WINAPI ConvertScreenHIMETRICtoDP(SIZE* size);

/** Draws the device-independent bitmap file at path on dc at (x, y), full
    size, through a palette built from its colour table.
    @return TRUE when drawn. FALSE when the file cannot be opened or read, or
            is no bitmap this function can draw; for an unopenable file the
            text "Could not open picture file:" and the path, for an
            unreadable one "Could not read picture data", are drawn at (x, y)
            instead. A null dc or path gives FALSE and draws nothing. */
BOOL WINAPI PutBitmap(HDC dc, LPCWSTR path, int x, int y);

/* ---- IPC lock ---------------------------------------------------------------- */

/** Takes (add non-zero) or drops one lock in the namespace extension's
    shared block "MvNsx IPC Data Object". Dropping stamps GetTickCount() at
    offset 8 first. The shared count is changed without interlocking.
    @return the new lock count; -1 when the block does not exist or cannot be
            mapped (mapping failure also shows a message box). A drop from 0
            also returns -1. */
LONG WINAPI AddIpcLock(BOOL add);

/* ---- Script, form and message-box runners --------------------------------- */

/** Starts WSCRIPT.EXE on `<program directory>\Scripts\<scriptName>` with the
    arguments appended as they are; does not wait.
    @return S_OK when the process started; 0x80070002 when the script does
            not exist; E_INVALIDARG for a null or empty name; otherwise the
            last Win32 error as an HRESULT. */
HRESULT WINAPI RunVBScript(LPCWSTR scriptName, LPCWSTR arguments);

/** Hands `<program directory>\Scripts\Forms\<formName>` to a new form runner
    (CLSID_MvFormRunner) and returns its RunForm result, or the creation
    failure. COM must be initialised on the calling thread. */
HRESULT WINAPI RunHTMLForm(LPCWSTR formName);

/** Shows a message box through the message-box helper (CLSID_MvMessageBoxHelper)
    and returns the button (IDOK ...); IDABORT when the helper's answer is not
    VT_I4 or the call fails. Without the helper, a notice about the missing
    library is shown first, then MessageBoxW(owner, text, caption, type).
    COM must be initialised on the calling thread. */
int WINAPI RunMessageBox(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type, WORD extra16, DWORD extra32);

/** Shows MessageBoxW(NULL, text, caption, type) on a new thread and returns
    at once; owner is ignored. The strings are copied first.
    @return S_OK; E_FAIL when the thread cannot be started (and for a null
            text, which would show nothing). */
HRESULT WINAPI RunMessageBoxThread(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_SHELL_H */
