/** @file
 *  MvSup2u: library start-up state, the mode word.
 *
 *  The mode word is a set of process-wide flags: read from the client's
 *  registry settings when the library is loaded, read with GetMvSupMode and
 *  changed with SetMvSupMode.
 */
#ifndef MVSUP_FRAME_H
#define MVSUP_FRAME_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @name Bits of the mode word
 *  Each named by the registry value that sets it.
 *  @{ */
#define MVSUP_MODE_RUNASSERVICE                  0x00000001UL /**< HKLM client key RunAsService */
#define MVSUP_MODE_USERROOT_CURRENTUSER          0x00000002UL /**< only through SetMvSupMode */
#define MVSUP_MODE_NOROAMING                     0x00000004UL /**< HKCU client key NoRoaming */
#define MVSUP_MODE_PRIVATELOGDIR                 0x00000008UL /**< `MVSUP\Settings` PrivateLogDir */
#define MVSUP_MODE_ICONFROMSHFILEINFO            0x00000010UL /**< `MVSUP\Settings` IconFromSHFileInfo (default 1) */
#define MVSUP_MODE_REMOTEFILENAMEASLOCALFILENAME 0x00000020UL /**< `MvNsx\Settings` */
#define MVSUP_MODE_PREPENDHANDLETOFILENAME       0x00000040UL /**< `MvNsx\Settings` */
#define MVSUP_MODE_USECRYPTOR                    0x00000080UL /**< `MVSUP\Settings` UseCryptor */
#define MVSUP_MODE_HALCYODOCCLASSID              0x00000100UL /**< `MVSUP\Settings` HalcyoDocClassId */
#define MVSUP_MODE_NSXASDRIVE                    0x00010000UL /**< HKLM client key NsxAsDrive */
#define MVSUP_MODE_RELOAD                        0x00100000UL /**< query bit: re-read the settings first */
#define MVSUP_MODE_ENABLEMACRO                   0x01000000UL /**< `MvNsx\Settings` EnableMacro */
#define MVSUP_MODE_LITESDK                       0x40000000UL /**< HKCU client key LiteSDK */
#define MVSUP_MODE_INITIALISED                   0x80000000UL /**< set by start-up */
/** @} */

/** The mode word AND mask.
 *  With MVSUP_MODE_RELOAD in mask the mode bits are re-read from the
 *  registry first (bits set by SetMvSupMode without being persisted are
 *  dropped); the reload bit itself is never stored.
 *  @return the mode word AND mask; never fails.
 *  @threads Any thread. A reload rewrites the process-wide mode word, as
 *  SetMvSupMode does (see there).
 */
LONG WINAPI GetMvSupMode(DWORD mask);

/** Mode word := (mode AND NOT mask) OR value.
 *  value is not masked, so bits in value are set even when mask lacks them.
 *  Mask bit 0x2 selects the user registry root (HKCU when value has 0x2,
 *  else HKLM); mask bits 0x4 and 0x40000000 also persist NoRoaming /
 *  LiteSDK under HKCU.
 *  @return the mode word as it was before the call; never fails (a
 *  registry value that cannot be written is not reported).
 *  @threads Any thread; readers on other threads see the old or the new
 *  word. Changes are not serialised: two threads changing the mode at once
 *  may lose one of the changes.
 */
LONG WINAPI SetMvSupMode(DWORD value, DWORD mask);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_FRAME_H */
