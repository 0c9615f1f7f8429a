/** @file
   MvSup2u: local files. The file-creation log (the record of the files that
   the client's components create on the local disk), safe file names,
   temporary files, path tests and the clean-up of directory trees that the
   client owns.

   Paths are UTF-16 unless a function ends in A (ANSI code page); capacities
   are in characters. Strings passed in stay the caller's; nothing here hands
   out memory. */
#ifndef MVSUP_FILES_H
#define MVSUP_FILES_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- The file-creation log ----

   One text file, "MvFileCreation.log" in the log directory (see
   GetLogDirectoryPath), shared by every client process. Each line is one
   record in the ANSI code page:

       <<+> <TIME=m/d h:m:s> <PATH=path> <CREATER=creator>>  CR LF

   with the UTC time of logging (no year, no zero padding). The log's full
   name is worked out once per process, on the first call that finds a log
   directory, and must fit in 108 characters with its terminator; without it
   the log "cannot be opened".

   Concurrency: each record is appended with one write to a handle opened for
   appending only, under a lock shared by the processes of the session, so
   records written at the same time by several processes never tear or
   merge. Compaction (UpdateLogFile and the deleting functions, which compact
   afterwards) reads the log, deletes it and writes back the records it
   keeps. It holds the same lock throughout, so appends made through this
   library wait for it; a record that anything else appends to the file
   between the compaction's read and its delete is lost. The log is a record
   of convenience, and this is accepted. Readers take no lock: a record
   being appended is either seen whole or not at all. */

/**
 * Appends one record for a file that a component created.
 *
 * @param path     full path of the created file (at most 259 characters).
 * @param creator  name of the creating component (at most 79 characters).
 * @return 1 when the record was written; 0 when either argument is null or
 *         empty, too long, or holds '<', '>' or a line break (it could not be
 *         read back whole), or when the log cannot be opened or written.
 * Thread safety: any thread, any process.
 */
int WINAPI LogFileCreation(LPCWSTR path, LPCWSTR creator);

/**
 * Tells whether a file was logged, by whom.
 *
 * Looks for the first live record whose PATH equals path, ignoring case
 * (ordinal, as the file system compares names). Later records with the same
 * PATH are not looked at: a file logged first by one creator and then by
 * another belongs to the first.
 *
 * @param path     the file's full path.
 * @param creator  the creator to check, or NULL for any creator.
 * @return 0 when that first record exists and its CREATER equals creator
 *         (ignoring case) or creator is NULL; 1 when there is no such record,
 *         when the first record names another creator, or when path is NULL;
 *         E_FAIL (0x80004005) when the log cannot be opened or read. A
 *         missing log is created empty, as appending would.
 * Thread safety: any thread, any process.
 */
HRESULT WINAPI GetIsLoggedFile(LPCWSTR path, LPCWSTR creator);

/**
 * Deletes one logged file and compacts the log.
 *
 * @param path     the file's full path.
 * @param creator  the creator that must have logged it, or NULL for any.
 * @return the result of GetIsLoggedFile when that is not 0 (nothing is
 *         deleted); otherwise the file's read-only attribute is cleared and
 *         the file deleted: 0 on success (the log is then compacted), else the
 *         Win32 error as 0x80070000 | (error & 0xFFFF), traced at level 2 as
 *         "DeleteLoggedFile failed to delete '...' (error N)".
 * Thread safety: any thread.
 */
HRESULT WINAPI DeleteLoggedFile(LPCWSTR path, LPCWSTR creator);

/**
 * Compacts the log: legacy records that carry "MVCMS" in PATH and the file's
 * path in CREATER get the two values swapped in place (the record keeps its
 * length); records whose PATH no longer names an existing file or directory,
 * obsolete records ("<<->") and text that is no record are dropped; the log
 * is deleted and the remaining records are written back (an empty log when
 * none remain).
 *
 * @return S_OK; E_FAIL when the log cannot be opened or read; the Win32 error
 *         as an HRESULT when it cannot be deleted (the log is then left as it
 *         was) or written back.
 * Thread safety: see the concurrency note above.
 */
HRESULT WINAPI UpdateLogFile(void);

/**
 * Deletes the logged files that lie in a directory, then compacts the log.
 *
 * Selection: every distinct PATH of the live records that lies in
 * directory (compared ignoring case, on whole path components: `C:\Work`
 * selects `C:\Work\a.doc`, never `C:\Workshop\a.doc`). With flag 0 only files
 * directly in directory are selected; with flag 1 (or any non-zero flag) also
 * the files in its sub-directories, at any depth. A PATH equal to directory
 * itself is selected too, so a file's own path selects that file. Trailing
 * backslashes of directory are ignored. The first-match rule of
 * GetIsLoggedFile does not matter here: the creator is not looked at.
 * Each selected file has its read-only attribute cleared and is deleted; the
 * trace shows "Deletion path: ..." and then "Deleted" or "Failed" for each
 * (level 2). A file that is already gone counts as deleted.
 *
 * @param directory  the directory (or file) whose logged files go.
 * @param failures   optional; receives the number of selected files that
 *                   could not be deleted (0 when the call returns 0).
 * @param flag       0: the directory's own files; non-zero: the whole tree.
 * @return 1 when the log was read (whether or not anything was selected);
 *         0 when directory is NULL or empty or the log cannot be read.
 * Thread safety: any thread.
 */
int WINAPI DeleteLoggedFilesOf(LPCWSTR directory, int* failures, int flag);

/**
 * Deletes the files that one creator logged, then compacts the log.
 *
 * Selection: every distinct PATH whose first live record names creator
 * (ignoring case): exactly the files for which DeleteLoggedFile(path,
 * creator) would act. Each has its read-only attribute cleared and is
 * deleted, traced like DeleteLoggedFilesOf.
 *
 * @param creator  the creating component's name.
 * @param handled  optional; receives the number of selected files that are
 *                 gone afterwards (deleted now, or already missing); 0 when
 *                 the call fails before selecting.
 * @return S_OK when every selected file is gone; the HRESULT of the first
 *         deletion that failed otherwise (the others are still attempted);
 *         E_POINTER for a NULL creator; E_FAIL when the log cannot be read.
 * Thread safety: any thread.
 */
HRESULT WINAPI DeleteFilesLoggedBy(LPCWSTR creator, int* handled);

/**
 * Deletes the log file itself.
 * @return non-zero when it was deleted; 0 otherwise (also when there is none).
 */
BOOL WINAPI ClearFileCreationLog(void);

/**
 * Uninstall clean-up: deletes the logged files in the program directory's
 * tree (DeleteLoggedFilesOf with flag 1), deletes the log, and removes the
 * data directory when it is empty.
 *
 * @return 0 when the log could not be deleted or the data directory could not
 *         be removed (a data directory path that names a file counts as that);
 *         otherwise 1 when the logged files were handled with at most one
 *         failure, else 0.
 */
int WINAPI CleanUpForUninstall(void);

/* ---- File names ---- */

/**
 * Checks a file title (a name without directory).
 * @param title              the title; NULL counts as empty.
 * @param rejectTrailingDot  non-zero: a title ending in '.' is invalid.
 * @return 1 when the title is not empty and holds none of the illegal path
 *         characters (IllegalPathNameChars, by default :\/\*?"<>|), else 0.
 */
int WINAPI ValidateFileTitle(LPCWSTR title, int rejectTrailingDot);

/**
 * Makes a name safe in place: every character below 33 (controls and the
 * blank) and every illegal path character becomes '_', and then a '.' in the
 * last position becomes '_'. The length does not change.
 * @return name (NULL for NULL).
 */
LPWSTR WINAPI UnderscoreFileName(LPWSTR name);

/**
 * The same rule for a name in the ANSI code page. Double-byte characters are
 * kept whole (their trail bytes are never replaced).
 * @return name (NULL for NULL).
 */
LPSTR WINAPI UnderscoreFileNameA(LPSTR name);

/**
 * Builds a path next to a module: the module's full path with everything
 * after its last backslash replaced by fileName, or, when fileName is NULL,
 * the module's directory (without a trailing backslash).
 * @param module    the module; NULL for the process's executable.
 * @param fileName  the name to put in place of the module's, or NULL.
 * @param buffer    receives the path.
 * @param capacity  size of buffer in characters.
 * @return 1 on success; 0 when the module path cannot be read or the result
 *         does not fit (buffer then holds the empty string), or when buffer
 *         is NULL or capacity below 1 (nothing written).
 */
int WINAPI BuildFileNameFromModulePath(HMODULE module, LPCWSTR fileName, LPWSTR buffer, int capacity);

/* ---- Temporary files ---- */

/**
 * Creates a new empty file with a unique name in the system's temporary
 * directory (GetTempFileName with an automatic number).
 * @param prefix  up to three characters used at the front of the name; NULL
 *                for none.
 * @param buffer  receives the file's full path; at least MAX_PATH (260)
 *                characters.
 * @return 0 on success, else the Win32 error (ERROR_INVALID_PARAMETER for a
 *         NULL buffer). The file is the caller's to delete.
 */
DWORD WINAPI BuildTempFileName(LPCWSTR prefix, LPWSTR buffer);

/**
 * Writes bytes to a new temporary file (made by BuildTempFileName, opened
 * not shared and with the temporary attribute, written in one write).
 * @param prefix        as for BuildTempFileName.
 * @param data          the bytes; may be NULL only when count is 0.
 * @param count         number of bytes.
 * @param nameBuffer    receives the file's full path (MAX_PATH characters).
 * @param bytesWritten  optional; receives the number of bytes written.
 * @return 0 on success (the file is the caller's to delete), else the Win32
 *         error; after a failed open or write the file is deleted again and
 *         nameBuffer emptied. ERROR_INVALID_PARAMETER for a NULL nameBuffer,
 *         or NULL data with a non-zero count.
 */
DWORD WINAPI WriteToTempFile(LPCWSTR prefix, const void* data, DWORD count, LPWSTR nameBuffer, DWORD* bytesWritten);

/* ---- Path tests ---- */

/**
 * @return 1 when the file is open elsewhere in a way that forbids reading it
 *         exclusively (opening it unshared fails with a sharing or lock
 *         violation), else 0 (also for a missing file or NULL).
 */
int WINAPI IsFileShared(LPCWSTR path);

/**
 * @return non-zero when path names a directory or a root ("\", "X:\",
 *         "\\server\"), 0 otherwise (also for NULL). Roots are recognised
 *         from the text alone; other paths are looked up (a wildcard path
 *         answers for its first match other than "." and "..").
 */
int WINAPI IsDirName(LPCWSTR path);

/**
 * @return 1 when path names a file; 0 for directories, roots, missing paths
 *         and NULL.
 */
int WINAPI IsFileName(LPCWSTR path);

/** @return the number of backslashes in the current directory. */
int WINAPI GetCurrentDirNestLevel(void);

/**
 * Free bytes of a volume as a 32-bit number: sectors per cluster x bytes per
 * sector x free clusters, computed modulo 2^32 (a volume with 5 GB free
 * reports 5 GB - 4 GiB).
 * @param root  the volume's root, e.g. "C:\"; NULL for the current drive.
 * @return the free bytes modulo 2^32; 0 when the volume cannot be queried.
 */
DWORD WINAPI GetTotalFreeDiskSpace(LPCWSTR root);

/* ---- Directory clean-up ---- */

/**
 * Empties a directory tree that lies under a base directory.
 *
 * Makes dir the current directory and walks it depth first: sub-directories
 * are emptied, then removed; files are deleted only when deleteFiles is
 * non-zero. Before every removal the entry's full path (current directory,
 * backslash, name) is checked, in this order: the current directory can be
 * read; it is shorter than 259 characters; a path holding "\\" lies in the
 * cache or work directory; the full path has at most 259 characters; it contains
 * the base directory (with a trailing backslash; ignoring case; anywhere, not
 * only at its start); it has at least two backslashes; and the entry really
 * lies under the base (judged by the final path of an open handle, so a path
 * reached through a link is judged by where it leads: inside an absolute base
 * that exists, else containing the base text).
 * A failed check traces "MVSUP2U.DLL: \<message\>" and the reason, shows a
 * top-level message box without owner (caption "MVSUP2U.DLL", text from the
 * resource module, strings 4928-4932), removes nothing more and makes the
 * call return 0.
 *
 * Links: a directory is entered only when it really is where its path says
 * (the final path of its handle is the current directory's plus its name); a
 * file or directory is removed only through a handle whose final path is its
 * own. A junction, symbolic link or host link that leads elsewhere is
 * therefore never entered and nothing is removed through it; the link itself
 * is removed only where the platform can remove a link on its own, and
 * otherwise left in place and counted as a failure.
 *
 * @param base         the base directory; NULL or empty: 0, nothing done.
 * @param dir          the directory to empty.
 * @param failures     optional; 1 is added for each entry that could not be
 *                     removed (the walk goes on).
 * @param deleteFiles  non-zero: delete files too; 0: remove only directories
 *                     that become empty.
 * @return 1 when the walk finished; 0 when dir could not be entered or a
 *         check refused. The process's current directory is changed: after a
 *         finished walk it is dir; after a refusal it is the directory in
 *         which the refusal happened; when dir cannot be entered it is
 *         unchanged.
 * Thread safety: changes the process's current directory; call from one
 * thread at a time.
 */
int WINAPI DeleteDirContents(LPCWSTR base, LPCWSTR dir, int* failures, int deleteFiles);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_FILES_H */
