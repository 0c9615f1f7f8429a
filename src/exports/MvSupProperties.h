/** @file
 *  MvSup2u: properties and custom properties of an item info.
 *
 *  Properties are keyed by a property id (see MvSupCatalogue.h), custom
 *  properties by a name compared exactly (case-sensitive, code unit by code
 *  unit). A property keeps its property-type code in attribute 1, its values
 *  in attribute 16 and, when custom, its name in attribute 2 (see
 *  MvSupItemInfo.h for item infos, attributes and values).
 *
 *  Two sets of functions:
 *  - on an open item info (HMVXINFO): adding, finding, counting, iterating and
 *    deleting properties, and filling one from the server's text. Not traced.
 *  - one-call accessors on a committed item info (BYTE*): each reads or
 *    writes one property without the caller opening anything. Traced.
 *
 *  The committed-item-info readers never allocate: they validate the whole
 *  block as MvxOpen does (a block that does not hold together "cannot be
 *  opened") and hand out pointers into it, valid as long as the block. A null
 *  block reads as an empty item info. Every out pointer is optional; outputs
 *  are cleared first (pointers to null, numbers and structures to zero) and
 *  written only on success. A string is handed out only when its terminator
 *  lies inside its value; a value too short for its kind (a handle below 6
 *  bytes or without a terminated title, an integer below 4 bytes, a date
 *  below 8) counts as missing.
 *
 *  The writers take the committed item info by an in/out argument: they open
 *  *itemInfo (null: start from an empty item info), change the property, and
 *  commit into a new block that replaces *itemInfo (the old block is freed
 *  with GlobalFree; the new one is the caller's, freed with FreeMvxInfo).
 *  The caller's block is never written to: on any failure *itemInfo and its
 *  bytes stay as they were and the failure is returned - 1 when the block
 *  cannot be opened, E_OUTOFMEMORY or E_FAIL from committing, E_POINTER for a
 *  null itemInfo or name. A writer empties attribute 16 and then adds the one
 *  new value, so a property with several values ends with one.
 *
 *  Readers of a committed item info may run on any number of threads at
 *  once while no thread changes the block; writers replace the block and
 *  need it to themselves.
 */
#ifndef MVSUP_PROPERTIES_H
#define MVSUP_PROPERTIES_H

#include <windows.h>
#include <oleauto.h>

#include "MvSupItemInfo.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @name Property ids with a meaning of their own to these functions
 *  @{ */
#define MVX_PROP_HANDLE 0x00000020u       /**< "handle": the item's own handle */
#define MVX_PROP_ENTITYOWNER 0x00000040u  /**< "entityowner" */
#define MVX_PROP_MODIFIED_BY 0x00000200u  /**< "modified_by" */
#define MVX_PROP_PARENTS 0x00000400u      /**< "parents" */
#define MVX_PROP_CLIENT_DATA 0x00010000u  /**< "client_data": kept as a custom property */
#define MVX_PROP_LOCKED_BY 0x80000800u    /**< "lockdiscovery" / "locked_by" */
/** @} */

/** @name Fields of a handle value, for MvxModifyMvHandlePropValue
 *  @{ */
#define MVX_HANDLE_TYPE 0x1u   /**< the item type */
#define MVX_HANDLE_NUMBER 0x2u /**< the item number */
#define MVX_HANDLE_TITLE 0x4u  /**< the title */
/** @} */
/** The handle number that the readers give as number 0 with an empty title:
 *  what MvxClearProp writes into a handle it clears. */
#define MVX_HANDLE_CLEARED_NUMBER 0xFFFFFFFFu

/** @name On an open item info
 *  @{ */

/** The property with that id, created when absent (the existing one when
 *  present).
 *  @return the property; null for a null info or when memory runs out.
 *  @ownership A reference into the open item info, valid until the property
 *  is deleted or the item info is closed.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXPROP WINAPI MvxAddProperty(HMVXINFO info, DWORD propId);
/** The custom property with that name; when created, its attribute 2 holds
 *  the name as a string.
 *  @return the property; null for a null info or name, or when memory runs
 *  out.
 *  @ownership A reference into the open item info, valid until the property
 *  is deleted or the item info is closed.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXPROP WINAPI MvxAddCustomProperty(HMVXINFO info, LPCWSTR name);
/** The property with that id.
 *  @return the property, or null when absent (or for a null info).
 *  @ownership A reference into the open item info.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXPROP WINAPI MvxFindProperty(HMVXINFO info, DWORD propId);
/** The custom property with that name (compared exactly).
 *  @return the property, or null when absent (or for null arguments).
 *  @ownership A reference into the open item info.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXPROP WINAPI MvxFindCustomProperty(HMVXINFO info, LPCWSTR name);
/** Number of properties as a signed 16-bit count.
 *  @return the count; 0 for a null info.
 *  @ownership Nothing is handed out.
 *  @threads The open item info's thread (one thread at a time).
 */
SHORT WINAPI MvxGetPropertyCount(HMVXINFO info);
/** Number of custom properties as a signed 16-bit count.
 *  @return the count; 0 for a null info.
 *  @ownership Nothing is handed out.
 *  @threads The open item info's thread (one thread at a time).
 */
SHORT WINAPI MvxGetCustomPropertyCount(HMVXINFO info);

/** Starts a walk over the properties.
 *  Iteration: the head function resets the item info's one cursor of its
 *  kind and returns its position (null when there is nothing to walk); each
 *  next call returns the element at the position and moves on, setting
 *  *position to null after the last one. Null when *position is null, at
 *  its end, or not this item info's position of that kind. Ids go in
 *  ascending order compared as signed 32-bit (ids with the top bit set
 *  first), names in code-unit order. Deleting properties during a walk is
 *  safe: the walk goes on with the properties that remain.
 *  @return the position, or null.
 *  @ownership The item info's own property cursor.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXPOS WINAPI MvxGetHeadProperty(HMVXINFO info);
/** The property at *position; *propId (optional) receives the property's
 *  id.
 *  @return the property; null at the end or for a foreign position.
 *  @ownership A reference into the open item info.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXPROP WINAPI MvxGetNextProperty(HMVXINFO info, DWORD* propId, HMVXPOS* position);
/** Starts a walk over the custom properties (see MvxGetHeadProperty).
 *  @return the position, or null.
 *  @ownership The item info's own custom property cursor.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXPOS WINAPI MvxGetHeadCustomProperty(HMVXINFO info);
/** The custom property at *position.
 *  *name (optional) receives a pointer to the string in the first value of
 *  the property's attribute 2 (valid as long as that value), or null when
 *  that attribute or value is missing or holds no terminated string.
 *  @return the property; null at the end or for a foreign position.
 *  @ownership References into the open item info.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXPROP WINAPI MvxGetNextCustomProperty(HMVXINFO info, LPWSTR* name, HMVXPOS* position);

/** Deletes the property with every attribute and value; nothing when
 *  absent. An item info emptied this way commits to 40 bytes again.
 *  @ownership Nothing is handed out.
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxDeleteProperty(HMVXINFO info, DWORD propId);
/** Deletes the custom property with every attribute and value; nothing
 *  when absent.
 *  @ownership Nothing is handed out.
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxDeleteCustomProperty(HMVXINFO info, LPCWSTR name);

/** Fills one property from the server's text values (count entries of
 *  values; a null entry counts as empty text). A name of the catalogue
 *  (PropIdFromPropertyName, any case) gives the id-keyed property and its
 *  type - except "client_data", kept as the custom property "client_data"
 *  with type 2; any other name gives a custom property of that name with
 *  type 1 in attribute 1. Attribute 16 is emptied and each text converted by
 *  the type and added:
 *  @code{.unparsed}
 *    1 2 3 7 9 10 14  the text as a string
 *    4 5              integer: wcstol rules, base 10 (clamped to a LONG)
 *    6                double: optional blanks and sign, then decimal
 *                     floating-point text (no locale); 0.0 when none
 *    8                empty text: date-time 0/0; for "getlastmodified"
 *                     (0x100) the HTTP date form, time as written with its
 *                     zone ignored; for any other id the creation-date form.
 *                     A text that does not read as a date stores nothing.
 *    11               a handle string ("File-12"): type and number, no title
 *    12 19            "title (Handle-N)": the handle string between the last
 *                     '(' and the last ')' after it, the title before that
 *                     '(' without trailing blanks; nothing when there is no
 *                     such pair or the number is 0
 *    any other        nothing
 *  @endcode
 *  reserved is not used.
 *  @return 1; 0 (nothing changed) for a null info, a null or empty name, a
 *  negative count, or null values with a positive count; 0 also when memory
 *  runs out (what was added stays).
 *  @ownership The values stay the caller's; they are copied.
 *  @threads The open item info's thread (one thread at a time).
 */
int WINAPI AddItemPropToMvxInfo(DWORD reserved, HMVXINFO info, LPCWSTR name, int count, const LPCWSTR* values);

/** @} */

/** @name Readers of a committed item info
 *  @{ */

/** The first 4 bytes of the first value of attribute 16. 0, or 1 when the
 *  property, attribute 16 or a value is missing or the block cannot be
 *  opened.
 *  @ownership Pointers handed out point into the caller's block, valid as
 *  long as it; nothing is allocated.
 *  @threads Any thread, while no thread changes the block.
 */
int WINAPI MvxGetIntegerPropValue(const BYTE* itemInfo, DWORD propId, LONG* value);
/** The string of the first value of attribute 16, a pointer into itemInfo.
 *  0x10000 ("client_data") is read from the custom property "client_data".
 *  For the handle-valued ids 0x20, 0x400, 0x40, 0x200 and 0x80000800 it is
 *  the title of the first handle, or "" when that handle's number is
 *  0xFFFFFFFF. An attribute 16 without values gives "" and 0 (not for the
 *  handle-valued ids, where it is missing). 1 when the property, attribute
 *  or value is missing or the block cannot be opened.
 *  @ownership Pointers handed out point into the caller's block, valid as
 *  long as it; nothing is allocated.
 *  @threads Any thread, while no thread changes the block.
 */
int WINAPI MvxGetStringPropValue(const BYTE* itemInfo, DWORD propId, LPWSTR* text);
/** The first date-time value as a SYSTEMTIME: UTC when keepGmt is non-zero,
 *  else converted to local time. Both halves 0 give an all-zero SYSTEMTIME.
 *  0, or 1 when missing, when the block cannot be opened, or when the value
 *  is no date the platform can convert (*systemTime all zero).
 *  @ownership Pointers handed out point into the caller's block, valid as
 *  long as it; nothing is allocated.
 *  @threads Any thread, while no thread changes the block.
 */
int WINAPI MvxGetDatePropValueAsSystemTime(const BYTE* itemInfo, DWORD propId, SYSTEMTIME* systemTime,
                                           BOOL keepGmt);
/** The same as an OLE date; an all-zero SYSTEMTIME gives 0.0. Dates outside
 *  the OLE range (years 100-9999) give 1.
 *  @ownership Pointers handed out point into the caller's block, valid as
 *  long as it; nothing is allocated.
 *  @threads Any thread, while no thread changes the block.
 */
int WINAPI MvxGetDatePropValue(const BYTE* itemInfo, DWORD propId, DATE* date, BOOL keepGmt);
/** The first handle of the first of the handle-valued properties, tried in
 *  the order 0x20, 0x400, 0x40, 0x200, 0x80000800, that the mask selects
 *  (mask AND id not 0) and whose attribute 16 holds a handle: its id, type,
 *  number and title (a pointer into itemInfo) are written out; a number of
 *  0xFFFFFFFF is written as 0 with the title "". 0, or 1 when no property
 *  qualifies or the block cannot be opened.
 *  @ownership Pointers handed out point into the caller's block, valid as
 *  long as it; nothing is allocated.
 *  @threads Any thread, while no thread changes the block.
 */
int WINAPI MvxGetMvHandlePropValue(const BYTE* itemInfo, DWORD mask, DWORD* propId, MVXITEMTYPE* type,
                                   DWORD* number, LPWSTR* title);

/** The string of the first value of the custom property's attribute 16 (a
 *  pointer into itemInfo; "" when the attribute has no values). S_OK;
 *  E_FAIL when the property or its attribute 16 is missing or the value
 *  holds no terminated string; E_UNEXPECTED when the block cannot be opened;
 *  E_POINTER for a null name.
 *  @ownership Pointers handed out point into the caller's block, valid as
 *  long as it; nothing is allocated.
 *  @threads Any thread, while no thread changes the block.
 */
HRESULT WINAPI MvxGetCustomStringProp(const BYTE* itemInfo, LPCWSTR name, LPWSTR* text);
/** The custom property as an integer. When its type (attribute 1) is 1, the
 *  first value is read as text: "0x" (exactly these two characters) and
 *  hexadecimal digits as an unsigned number (clamped to 0xFFFFFFFF), other
 *  text by wcstol rules, base 10; when that gives 0 and the text does not
 *  begin with the digit '0', the result is the first 4 bytes of the text (its
 *  first two code units) - kept for callers that store short codes as text.
 *  For any other type, the first 4 bytes of the first value. Bytes that lie
 *  past a value shorter than 4 bytes read as 0. Codes as
 *  MvxGetCustomStringProp; no value is E_FAIL. Traced with the line
 *  "PropName: <name>".
 *  @ownership Pointers handed out point into the caller's block, valid as
 *  long as it; nothing is allocated.
 *  @threads Any thread, while no thread changes the block.
 */
HRESULT WINAPI MvxGetCustomIntegerProp(const BYTE* itemInfo, LPCWSTR name, LONG* value);
/** The first date-time value of the custom property: as stored (UTC), or as a
 *  SYSTEMTIME / OLE date converted to local time unless keepGmt is non-zero;
 *  0/0 gives a zero FILETIME, an all-zero SYSTEMTIME, 0.0. Codes as
 *  MvxGetCustomStringProp; a value that cannot be converted is E_FAIL.
 *  @ownership Pointers handed out point into the caller's block, valid as
 *  long as it; nothing is allocated.
 *  @threads Any thread, while no thread changes the block.
 */
HRESULT WINAPI MvxGetCustomFileTimeProp(const BYTE* itemInfo, LPCWSTR name, FILETIME* fileTime);
/** The first date-time value of the custom property as a SYSTEMTIME, in
 *  local time unless keepGmt is non-zero (see MvxGetCustomFileTimeProp).
 *  @return as MvxGetCustomFileTimeProp.
 *  @ownership Pointers handed out point into the caller's block, valid as
 *  long as it; nothing is allocated.
 *  @threads Any thread, while no thread changes the block.
 */
HRESULT WINAPI MvxGetCustomSystemTimeProp(const BYTE* itemInfo, LPCWSTR name, SYSTEMTIME* systemTime,
                                          BOOL keepGmt);
/** The first date-time value of the custom property as an OLE date, in
 *  local time unless keepGmt is non-zero (see MvxGetCustomFileTimeProp).
 *  @return as MvxGetCustomFileTimeProp.
 *  @ownership Pointers handed out point into the caller's block, valid as
 *  long as it; nothing is allocated.
 *  @threads Any thread, while no thread changes the block.
 */
HRESULT WINAPI MvxGetCustomDateProp(const BYTE* itemInfo, LPCWSTR name, DATE* date, BOOL keepGmt);

/** S_OK when the property exists (its values are not looked at), S_FALSE
 *  when not, E_UNEXPECTED when the block cannot be opened. 0x10000 is
 *  answered for the custom property "client_data".
 *  @ownership Pointers handed out point into the caller's block, valid as
 *  long as it; nothing is allocated.
 *  @threads Any thread, while no thread changes the block.
 */
HRESULT WINAPI MvxHasProp(const BYTE* itemInfo, DWORD propId);
/** The same for a custom property; E_POINTER for a null name.
 *  @ownership Pointers handed out point into the caller's block, valid as
 *  long as it; nothing is allocated.
 *  @threads Any thread, while no thread changes the block.
 */
HRESULT WINAPI MvxHasCustomProp(const BYTE* itemInfo, LPCWSTR name);

/** @} */

/** @name Writers of a committed item info
 *  @{ */

/** Attribute 16 of the id-keyed property set to one integer.
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxPutIntegerPropValue(DWORD propId, LONG value, BYTE** itemInfo);
/** Attribute 16 set to one string (null: ""). 0x10000 goes to the custom
 *  property "client_data", whose attribute 1 is set to the type 2.
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxPutStringPropValue(DWORD propId, LPCWSTR text, BYTE** itemInfo);
/** Attribute 16 set to one date-time: 0.0 stores 0/0; any other date is
 *  taken as UTC (no zone conversion), to the second. E_INVALIDARG, with the
 *  block untouched, for a date that has no FILETIME (before 1601, after
 *  9999, not a number).
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxPutDatePropValue(DWORD propId, DATE date, BYTE** itemInfo);
/** Attribute 16 set to one handle (type stored as its low 16 bits; null
 *  title: "").
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxPutMvHandlePropValue(DWORD propId, MVXITEMTYPE type, DWORD number, LPCWSTR title,
                                       BYTE** itemInfo);
/** Changes fields of the first handle of one handle-valued property. The ids
 *  0x20, 0x400, 0x40, 0x200, 0x80000800 are walked in this order; an id is
 *  selected when it ANDed with its mask is not 0 (mask for ids up to
 *  0x0FFFFFFF, classMask for the others). The first selected property whose
 *  attribute 16 holds a handle is the one worked on; its id goes to *propId
 *  (optional). flags is a combination of MVX_HANDLE_TYPE, MVX_HANDLE_NUMBER
 *  and MVX_HANDLE_TITLE: the fields it names are compared with type, number
 *  and title (null: "") and, when any differs, replaced by them; the fields
 *  it does not name and the property's other values stay as they are.
 *  Returns S_OK, with *itemInfo replaced by a new block when a field
 *  changed and left as it is when every named field already held its value;
 *  1 when no selected property holds a handle or the block cannot be opened
 *  (nothing changed); E_INVALIDARG when flags names no field or has other
 *  bits. MvxClearProp uses MVX_HANDLE_NUMBER (2) alone, with the number
 *  MVX_HANDLE_CLEARED_NUMBER.
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxModifyMvHandlePropValue(DWORD mask, DWORD classMask, DWORD* propId, DWORD flags,
                                          MVXITEMTYPE type, DWORD number, LPCWSTR title, BYTE** itemInfo);

/** The custom property's attribute 1 set to type (0 is taken as 1) and
 *  attribute 16 to one string (null: ""). E_INVALIDARG, with the block
 *  untouched, for a type other than 0, 1, 2, 3, 7, 9, 10 or 14.
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxPutCustomStringProp(LPCWSTR name, LPCWSTR text, DWORD type, BYTE** itemInfo);
/** Attribute 1 set to 5, attribute 16 to the integer.
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxPutCustomIntegerProp(LPCWSTR name, LONG value, BYTE** itemInfo);
/** Attribute 1 set to 8, attribute 16 to one date-time. The FILETIME is
 *  stored as it is; the SYSTEMTIME and the OLE date are taken as UTC (an OLE
 *  date of 0.0 stores 0/0). E_POINTER for a null time; E_INVALIDARG, with
 *  the block untouched, for an impossible SYSTEMTIME or a date without a
 *  FILETIME.
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxPutCustomFileTimeProp(LPCWSTR name, const FILETIME* fileTime, BYTE** itemInfo);
/** The custom property set to one date-time from a SYSTEMTIME taken as
 *  UTC (see MvxPutCustomFileTimeProp).
 *  @return as MvxPutCustomFileTimeProp.
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxPutCustomSystemTimeProp(LPCWSTR name, const SYSTEMTIME* systemTime, BYTE** itemInfo);
/** The custom property set to one date-time from an OLE date taken as UTC;
 *  0.0 stores 0/0 (see MvxPutCustomFileTimeProp).
 *  @return as MvxPutCustomFileTimeProp.
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxPutCustomDateProp(LPCWSTR name, DATE date, BYTE** itemInfo);

/** Deletes the property (as MvxDeleteProperty) and replaces the block, also
 *  when there was nothing to delete. 0x10000 deletes the custom property
 *  "client_data" as well, so that MvxHasProp answers S_FALSE afterwards.
 *  Traced with the line "PropId: <id as 8 hex digits>".
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxDeleteProp(DWORD propId, BYTE** itemInfo);
/** Deletes the custom property (as MvxDeleteCustomProperty) and replaces
 *  the block, also when there was nothing to delete.
 *  @return as MvxDeleteProp.
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxDeleteCustomProp(LPCWSTR name, BYTE** itemInfo);

/** Stores the empty value of the type that the catalogue gives the id:
 *  "" for the string types (1 2 3 7 9 10 14), the integer 0 for 4 and 5,
 *  the date 0.0 for 8 and 17. For the handle types (11 12 19) the first
 *  handle of the property, when it has one, gets the number
 *  MVX_HANDLE_CLEARED_NUMBER (MvxModifyMvHandlePropValue with the id as its
 *  mask and MVX_HANDLE_NUMBER), so that it keeps its type and reads as
 *  number 0 with an empty title; a property without a handle gets one handle
 *  of type 0, number 0, no title. Any other type returns 1 and changes
 *  nothing.
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxClearProp(DWORD propId, BYTE** itemInfo);
/** By type: 4 and 5 the integer 0 (stored with type 5), 8 and 17 the date
 *  0/0 (type 8), any other type the empty string with that type (0 is taken
 *  as 1).
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed with GlobalFree. On failure the block stays as it was.
 *  @threads Any thread; the block must not be used elsewhere meanwhile.
 */
HRESULT WINAPI MvxClearCustomProp(LPCWSTR name, DWORD type, BYTE** itemInfo);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_PROPERTIES_H */
