/** @file
 *  MvSup2u: the item info container - one item's record, its attributes,
 *  values and access-control entries.
 *
 *  Two forms of one record:
 *  - a committed item info: one block of global memory (GlobalAlloc, fixed,
 *    zero-filled) in the persisted layout, passed as a BYTE* to its first
 *    byte. Its first u32 is its size in bytes (at least 40). It is freed
 *    with FreeMvxInfo (or GlobalFree).
 *  - an open item info (HMVXINFO): the editable form that MvxOpen makes over
 *    a committed item info without copying it, destroyed by MvxClose. It
 *    belongs to one thread at a time.
 *
 *  Opaque references into an open item info (valid until the referenced
 *  element is deleted or the item info is closed):
 *  - HMVXPROP: a property
 *  - HMVXATTR: an attribute of a property
 *  - HMVXPOS: an iteration position: the address of one of the item info's
 *    cursors; starting an iteration resets that cursor.
 *
 *  PMVXVALUE points at a value block: a u32 length L, then L bytes of data.
 *  It stays valid until the value is replaced by a larger one, deleted,
 *  committed away or the item info is closed. Blocks are not aligned: the
 *  pointers that the readers hand out may be odd.
 *
 *  Null handles, references or values give the neutral result of the
 *  function's type (0, null, nothing) and change nothing. The only
 *  exception that leaves this interface is the out-of-range error of
 *  MvxGetAttributeValue.
 */
#ifndef MVSUP_ITEMINFO_H
#define MVSUP_ITEMINFO_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifndef MVXITEMTYPE_DEFINED
#define MVXITEMTYPE_DEFINED
/** An item type (signed 32-bit): built-in values 0-22 (16 = unknown),
 *  custom types 33-255. Stored in a value as its low 16 bits. */
typedef LONG MVXITEMTYPE;
#endif

/** An open item info (MvxOpen ... MvxClose). */
typedef struct MvxOpenInfo_* HMVXINFO;
/** A property of an open item info. */
typedef struct MvxProperty_* HMVXPROP;
/** An attribute of a property. */
typedef struct MvxAttribute_* HMVXATTR;
/** An iteration position: the address of one of the item info's cursors. */
typedef struct MvxPosition_* HMVXPOS;
/** A value block: a u32 length L, then L bytes of data (not aligned). */
typedef BYTE* PMVXVALUE;

/** @name Attribute ids with a fixed meaning
 *  @{ */
#define MVX_ATTRIBUTE_PROPERTY_TYPE 1 /**< one property-type code */
#define MVX_ATTRIBUTE_CUSTOM_NAME 2   /**< the name of a custom property */
#define MVX_ATTRIBUTE_VALUES 16       /**< the property's values */
/** @} */

/** @name Lifecycle
 *  @{ */

/** *itemInfo receives a new empty committed item info (44 zero-filled
 *  bytes, size field 40).
 *  @return S_OK; E_POINTER for a null itemInfo; E_OUTOFMEMORY (*itemInfo
 *  unchanged).
 *  @ownership The caller frees *itemInfo with FreeMvxInfo.
 *  @threads Any thread.
 */
HRESULT WINAPI MvxCreateItemInfo(BYTE** itemInfo);
/** *copy receives a new block of size + 4 zero-filled bytes holding the
 *  first size bytes of itemInfo (size = its size field).
 *  @return S_OK; E_INVALIDARG when the size field is below 40, E_POINTER
 *  for a null argument, E_OUTOFMEMORY; *copy is unchanged on failure.
 *  @ownership The caller frees *copy with FreeMvxInfo; itemInfo stays the
 *  caller's.
 *  @threads Any thread, while no thread changes itemInfo.
 */
HRESULT WINAPI MvxCopyItemInfo(const BYTE* itemInfo, BYTE** copy);
/** Frees a committed item info: GlobalFree(itemInfo).
 *  @return what GlobalFree returned: null on success, itemInfo on failure.
 *  @ownership Takes the block back; the caller no longer owns it.
 *  @threads Any thread; no item info may still be open over the block.
 */
HGLOBAL WINAPI FreeMvxInfo(BYTE* itemInfo);
/** Opens itemInfo (null, or a block whose size field is 40 or less: an
 *  empty item info) for editing.
 *  The block is not copied: values are read in place, and the in-place
 *  replacements change it at once. Every count, offset and length is
 *  checked against the size field, and no two bodies may overlap (they may
 *  lie in any order); the size field must not exceed the block's real size.
 *  Nothing past the size field is read.
 *  @return the open item info; null when memory runs out or when the block
 *  does not hold together.
 *  @ownership The caller destroys the result with MvxClose, and keeps the
 *  block alive until then, or until a commit has moved the open item info
 *  onto another block.
 *  @threads Any thread; the open item info then belongs to one thread at a
 *  time.
 */
HMVXINFO WINAPI MvxOpen(BYTE* itemInfo);
/** Destroys the open item info and frees the value blocks that lie outside
 *  its current block; never frees the block itself.
 *  @ownership An item info opened over null and never committed frees no
 *  value block: its values then belong to the caller (process-heap blocks:
 *  HeapFree(GetProcessHeap(), 0, value)).
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxClose(HMVXINFO info);
/** The commit size: what MvxCommit writes, kept exact by every change.
 *  After opening a block from which entries were dropped (duplicates,
 *  unnamed custom entries) it still counts them, and a commit writes less.
 *  @return the size in bytes; 0 for null.
 *  @ownership Nothing is handed out.
 *  @threads The open item info's thread (one thread at a time).
 */
DWORD WINAPI MvxGetCommitSpace(HMVXINFO info);
/** Writes the committed form into destination, which must hold
 *  MvxGetCommitSpace bytes and must not overlap the current block.
 *  Header bytes are carried over from the old block, with the summary
 *  fields derived from the properties.
 *  @return the bytes written; 0 (nothing written) for a null argument or an
 *  overlapping destination.
 *  @ownership destination stays the caller's; the open item info then
 *  refers to destination only, and the old block may be freed.
 *  @threads The open item info's thread (one thread at a time).
 */
DWORD WINAPI MvxCommit(HMVXINFO info, BYTE* destination);
/** Commits into a new block of MvxGetCommitSpace bytes, frees the block
 *  that *itemInfo held (when not null) and stores the new one there.
 *  @return S_OK; E_OUTOFMEMORY or E_FAIL with *itemInfo unchanged;
 *  E_POINTER for a null itemInfo; S_OK and nothing done for a null info.
 *  @ownership The new block is the caller's, freed with FreeMvxInfo; the
 *  old one is freed here.
 *  @threads The open item info's thread (one thread at a time).
 */
HRESULT WINAPI MvxUpdateItemInfo(HMVXINFO info, BYTE** itemInfo);

/** @} */

/** @name Attributes
 *  @{ */

/** The attribute with that id, created when absent (the existing one when
 *  present).
 *  @return the attribute; null for a null info or property, or when memory
 *  runs out.
 *  @ownership A reference into the open item info, valid until the
 *  attribute is deleted or the item info is closed.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXATTR WINAPI MvxAddAttribute(HMVXINFO info, HMVXPROP property, DWORD id);
/** The attribute with that id.
 *  @return the attribute, or null when absent (or for null arguments).
 *  @ownership A reference into the open item info, valid until the
 *  attribute is deleted or the item info is closed.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXATTR WINAPI MvxFindAttribute(HMVXINFO info, HMVXPROP property, DWORD id);
/** The number of attributes of the property.
 *  @return the count; 0 for null arguments.
 *  @ownership Nothing is handed out.
 *  @threads The open item info's thread (one thread at a time).
 */
SHORT WINAPI MvxGetAttributeCount(HMVXINFO info, HMVXPROP property);
/** Position of the first attribute in ascending id (compared as signed
 *  32-bit).
 *  @return the position, or null when there is none.
 *  @ownership The item info's own attribute cursor, reset by this call.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXPOS WINAPI MvxGetHeadAttribute(HMVXINFO info, HMVXPROP property);
/** The attribute at *position, its id written to *id (id may be null); the
 *  position moves on and becomes null after the last attribute.
 *  @return the attribute; null when *position is null, at its end, or not
 *  this item info's attribute position.
 *  @ownership A reference into the open item info.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXATTR WINAPI MvxGetNextAttribute(HMVXINFO info, DWORD* id, HMVXPOS* position);
/** Deletes every value and then every attribute of the property.
 *  @ownership Nothing is handed out.
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxDeleteAllAttributes(HMVXINFO info, HMVXPROP property);

/** @} */

/** @name Values of an attribute
 *  @{ */

/** The number of values of the attribute.
 *  @return the count; 0 for null arguments.
 *  @ownership Nothing is handed out.
 *  @threads The open item info's thread (one thread at a time).
 */
int WINAPI MvxGetAttributeValuesCount(HMVXINFO info, HMVXATTR attribute);
/** The value at index (zero-based).
 *  An index outside 0..count-1 raises std::out_of_range with what()
 *  "invalid vector<T> subscript" - the one exception of this interface - as
 *  a C++ exception of Microsoft's runtime (code 0xE06D7363): a caller built
 *  with Microsoft's compiler catches it as std::out_of_range,
 *  std::logic_error or std::exception (by reference or by value) or with
 *  catch (...), on 32-bit and 64-bit builds alike. The object refers to a
 *  static text; the catching runtime destroys it. It carries no run-time
 *  type information: typeid and dynamic_cast on the caught object are not
 *  supported. A caller built with MinGW's g++ cannot catch it with any C++
 *  clause, not even catch (...): to its runtime it is a foreign structured
 *  exception, and unless the caller handles that itself (a vectored or
 *  unhandled-exception handler) the process ends. Such callers check the
 *  index against MvxGetAttributeValuesCount first.
 *  @return the value block; null for a null item info or attribute.
 *  @ownership A pointer into the item info, valid as long as the value.
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxGetAttributeValue(HMVXINFO info, HMVXATTR attribute, int index);
/** Position of the attribute's first value.
 *  @return the position, or null when there is none.
 *  @ownership The item info's own value cursor, reset by this call.
 *  @threads The open item info's thread (one thread at a time).
 */
HMVXPOS WINAPI MvxGetHeadAttributeValue(HMVXINFO info, HMVXATTR attribute);
/** As MvxGetNextAttribute, for the value position.
 *  @return the value block; null at the end or for a position that is not
 *  this item info's value position.
 *  @ownership A pointer into the item info, valid as long as the value.
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxGetNextAttributeValue(HMVXINFO info, HMVXPOS* position);
/** Deletes the value at index (nothing for an index out of range); later
 *  values move up one place.
 *  @ownership Nothing is handed out.
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxDeleteAttributeValue(HMVXINFO info, HMVXATTR attribute, int index);
/** Deletes every value of the attribute.
 *  @ownership Nothing is handed out.
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxDeleteAllAttributeValues(HMVXINFO info, HMVXATTR attribute);

/** @} */

/** @name Appending values
 *  Each makes a new value block, appends it to the attribute and returns
 *  it; null (nothing added) for a null info or attribute, when memory runs
 *  out, or when the item info would exceed 4 GB. Strings are copied with
 *  their terminator; a null string is stored as the empty string.
 *  @{ */

/** A string value.
 *  @return the new value block, or null (nothing added).
 *  @ownership The block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxAddString(HMVXINFO info, HMVXATTR attribute, LPCWSTR text);
/** A 32-bit integer value.
 *  @return the new value block, or null (nothing added).
 *  @ownership The block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxAddInteger(HMVXINFO info, HMVXATTR attribute, LONG value);
/** A property-type code.
 *  @return the new value block, or null (nothing added).
 *  @ownership The block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxAddPropertyType(HMVXINFO info, HMVXATTR attribute, DWORD type);
/** The double as its two 32-bit halves, low half first (stored as the IEEE
 *  double in little-endian order).
 *  @return the new value block, or null (nothing added).
 *  @ownership The block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxAddFloat(HMVXINFO info, HMVXATTR attribute, DWORD low, DWORD high);
/** A FILETIME as high half, then low half: stored in that order.
 *  @return the new value block, or null (nothing added).
 *  @ownership The block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxAddDateTime(HMVXINFO info, HMVXATTR attribute, DWORD high, DWORD low);
/** size bytes of data (data may be null only when size is 0).
 *  @return the new value block, or null (nothing added).
 *  @ownership The block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxAddBinary(HMVXINFO info, HMVXATTR attribute, const void* data, DWORD size);
/** A handle: u16 item type, u32 item number, title (null = empty).
 *  @return the new value block, or null (nothing added).
 *  @ownership The block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxAddMvHandle(HMVXINFO info, HMVXATTR attribute, MVXITEMTYPE type, DWORD number,
                                LPCWSTR title);
/** An access-control entry: u16 principal type, u32 principal number, name
 *  (null = empty), u32 access.
 *  @return the new value block, or null (nothing added).
 *  @ownership The block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxAddACE(HMVXINFO info, HMVXATTR attribute, MVXITEMTYPE principalType, DWORD principalNumber,
                           LPCWSTR principalName, DWORD access);

/** @} */

/** @name Reading values
 *  The out arguments receive pointers into the value block (not copies),
 *  valid as long as the value. Every out argument may be null. All are set
 *  to null (sizes to 0) for a null info or value, and a field that does not
 *  fit inside the value's length is handed out as null.
 *  @{ */

/** *text: the string.
 *  @return L (bytes, terminator included); 0 for null.
 *  @ownership Pointers into the value block, valid as long as the value;
 *  never freed by the caller.
 *  @threads The open item info's thread (one thread at a time).
 */
DWORD WINAPI MvxGetString(HMVXINFO info, PMVXVALUE value, LPWSTR* text);
/** The first data byte; null when L < 4.
 *  @ownership Pointers into the value block, valid as long as the value;
 *  never freed by the caller.
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxGetInteger(HMVXINFO info, PMVXVALUE value, LONG UNALIGNED** data);
/** The first data byte; null when L < 4.
 *  @ownership Pointers into the value block, valid as long as the value;
 *  never freed by the caller.
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxGetPropertyType(HMVXINFO info, PMVXVALUE value, DWORD UNALIGNED** data);
/** The first data byte; null when L < 8.
 *  @ownership Pointers into the value block, valid as long as the value;
 *  never freed by the caller.
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxGetFloat(HMVXINFO info, PMVXVALUE value, double UNALIGNED** data);
/** The high half (first 4 data bytes) and the low half (next 4).
 *  @ownership Pointers into the value block, valid as long as the value;
 *  never freed by the caller.
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxGetDateTime(HMVXINFO info, PMVXVALUE value, DWORD UNALIGNED** high, DWORD UNALIGNED** low);
/** The 8 data bytes (high half first).
 *  @return the pointer it writes to *data (null when L < 8).
 *  @ownership Pointers into the value block, valid as long as the value;
 *  never freed by the caller.
 *  @threads The open item info's thread (one thread at a time).
 */
BYTE* WINAPI MvxGetDateTimePacked(HMVXINFO info, PMVXVALUE value, BYTE** data);
/** The data bytes and their number.
 *  @ownership Pointers into the value block, valid as long as the value;
 *  never freed by the caller.
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxGetBinary(HMVXINFO info, PMVXVALUE value, BYTE** data, DWORD* size);
/** A handle's type, number and title. The title is handed out only when
 *  its terminator lies inside the value.
 *  @ownership Pointers into the value block, valid as long as the value;
 *  never freed by the caller.
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxGetMvHandle(HMVXINFO info, PMVXVALUE value, WORD UNALIGNED** type, DWORD UNALIGNED** number,
                           LPWSTR* title);
/** An access-control entry. *access points just after the name's
 *  terminator; the name and access are handed out only when that terminator
 *  and the 4 access bytes lie inside the value.
 *  @ownership Pointers into the value block, valid as long as the value;
 *  never freed by the caller.
 *  @threads The open item info's thread (one thread at a time).
 */
void WINAPI MvxGetACE(HMVXINFO info, PMVXVALUE value, WORD UNALIGNED** principalType,
                      DWORD UNALIGNED** principalNumber, LPWSTR* principalName, DWORD UNALIGNED** access);

/** @} */

/** @name Replacing values
 *  Replacing the value at index (nothing, and null, for an index out of
 *  range). When the new data fits in the block's L it is written in place:
 *  L, the commit size and any bytes after the new data stay as they were,
 *  and a block inside the committed item info changes that block at once.
 *  Otherwise a new block takes the value's place (the old one is freed when
 *  it lies outside the committed item info) and the commit size grows by
 *  the difference. Each returns the value's block.
 *  @{ */

/** Replaces the value at index with an integer.
 *  @return the value's block; null for an index out of range or null
 *  arguments.
 *  @ownership A new block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxReplaceInteger(HMVXINFO info, HMVXATTR attribute, int index, LONG value);
/** Replaces the value at index with a double (low half first).
 *  @return the value's block; null for an index out of range or null
 *  arguments.
 *  @ownership A new block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxReplaceFloat(HMVXINFO info, HMVXATTR attribute, int index, DWORD low, DWORD high);
/** Replaces the value at index with a FILETIME (high half first).
 *  @return the value's block; null for an index out of range or null
 *  arguments.
 *  @ownership A new block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxReplaceDateTime(HMVXINFO info, HMVXATTR attribute, int index, DWORD high, DWORD low);
/** Replaces the value at index with a string (null: empty).
 *  @return the value's block; null for an index out of range or null
 *  arguments.
 *  @ownership A new block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxReplaceString(HMVXINFO info, HMVXATTR attribute, int index, LPCWSTR text);
/** Replaces the value at index with size bytes of data.
 *  @return the value's block; null for an index out of range or null
 *  arguments.
 *  @ownership A new block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxReplaceBinary(HMVXINFO info, HMVXATTR attribute, int index, const void* data, DWORD size);
/** Replaces the value at index with a handle.
 *  @return the value's block; null for an index out of range or null
 *  arguments.
 *  @ownership A new block belongs to the open item info (see MvxClose).
 *  @threads The open item info's thread (one thread at a time).
 */
PMVXVALUE WINAPI MvxReplaceMvHandle(HMVXINFO info, HMVXATTR attribute, int index, MVXITEMTYPE type,
                                    DWORD number, LPCWSTR title);

/** @} */

/** The string in the first value of attribute 16 of property 2 (the display
 *  name) of a committed item info.
 *  @return a pointer into itemInfo; null when the block cannot be opened,
 *  when the property, attribute or value is missing, or when the value
 *  holds no terminated string.
 *  @ownership Points into the caller's block, valid as long as it.
 *  @threads Any thread, while no thread changes the block.
 */
LPWSTR WINAPI MvxFindTitleValue(BYTE* itemInfo);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_ITEMINFO_H */
