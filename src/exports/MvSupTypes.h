/** @file
 *  MvSup2u: item types, object types, handles and custom item types.
 *
 *  An item type (MVXITEMTYPE) names a kind of repository item: 0-22 are
 *  built in, 16 (MVXITEMTYPE_UNKNOWN) is the answer for anything
 *  unrecognised, 33-255 are custom types that the client numbers per user.
 *  The object type is the second numbering of the same kinds used by the
 *  automation layer. A handle is a type and an unsigned number, written
 *  `<type word>-<number>`.
 *
 *  Text arguments: a null pointer counts as the empty string everywhere.
 *  Buffers: "capacity" is in characters. The ...TS functions and every
 *  function that takes a buffer copy at most capacity - 1 characters and a
 *  terminator, return the buffer, and write nothing when the buffer is null
 *  or the capacity is below 1; they are safe to call from several threads
 *  at once. The functions without TS that return text return a pointer to
 *  a buffer of the library: constant text for the built-in types, otherwise
 *  a static buffer shared by the whole family that the next call of that
 *  family (on any thread) overwrites. Nothing returned here is freed by the
 *  caller.
 */
#ifndef MVSUP_TYPES_H
#define MVSUP_TYPES_H

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifndef MVXITEMTYPE_DEFINED
#define MVXITEMTYPE_DEFINED
/** An item type (signed 32-bit): built-in values 0-22 (16 = unknown),
 *  custom types 33-255. */
typedef LONG MVXITEMTYPE;
#endif

/** @name Item types
 *  @{ */
#define MVXITEMTYPE_MVCLIENT        0 /**< the client itself */
#define MVXITEMTYPE_SERVER          1 /**< a server */
#define MVXITEMTYPE_COLLECTION      2 /**< a collection */
#define MVXITEMTYPE_FILE            3 /**< a document */
#define MVXITEMTYPE_FILEVERSIONS    4  /**< between a document and its versions; no text form */
#define MVXITEMTYPE_CALENDAR        5 /**< a calendar */
#define MVXITEMTYPE_BULLETINBOARD   6 /**< a bulletin board */
#define MVXITEMTYPE_URL             7 /**< a URL item */
#define MVXITEMTYPE_BULLETIN        8 /**< a bulletin */
#define MVXITEMTYPE_SAVEDQUERY      9 /**< a saved query */
#define MVXITEMTYPE_EVENT           10 /**< an event */
#define MVXITEMTYPE_RENDITION       11 /**< a rendition */
#define MVXITEMTYPE_VERSION         12 /**< a document version */
#define MVXITEMTYPE_SUBSCRIPTION    13 /**< a subscription */
#define MVXITEMTYPE_USER            14 /**< a user */
#define MVXITEMTYPE_GROUP           15 /**< a group */
#define MVXITEMTYPE_UNKNOWN         16 /**< anything unrecognised */
#define MVXITEMTYPE_OBJECT          17 /**< an object */
#define MVXITEMTYPE_CONTELEM        18 /**< a content element */
#define MVXITEMTYPE_MAILMESSAGE     19 /**< a mail message */
#define MVXITEMTYPE_WORKSPACE       20 /**< a workspace */
#define MVXITEMTYPE_WIKI            21 /**< a wiki */
#define MVXITEMTYPE_WEBLOG          22 /**< a weblog */
#define MVXITEMTYPE_FIRSTCUSTOM     33 /**< the first custom type */
#define MVXITEMTYPE_LASTCUSTOM      255 /**< the last custom type */
/** @} */

/** @name Bits of a class record's "Flags" (MvxGetClientDefinedCustomItemType)
 *  @{ */
#define MVXCLASSFLAG_CONTAINER      0x1UL /**< items of the class hold other items */
#define MVXCLASSFLAG_CHILDRENMAPPED 0x2UL /**< the class's child types have been mapped */
/** @} */

/** @struct IMvxClientItem
 *  The client's item interface.
 *  Objects handed to GetMvxParentItemType, the GetMvxParent...AsString
 *  functions, MvxGetSuperclassItemType(A) and MvxIsCustomContainerType are
 *  asked for this interface with QueryInterface; an object without it is
 *  treated as if none was given. Each getter returns S_OK and a BSTR that
 *  the library frees with SysFreeString (a null BSTR counts as empty); a
 *  failed getter counts as an empty string. The library keeps no reference
 *  after the call returns.
 */
/** IID of IMvxClientItem, {19b23c07-1aed-4d8c-881f-84eb776290d7}.
 *  Defined (storage allocated) in a translation unit that includes
 *  <initguid.h> before this header, as with the SDK's own interfaces.
 */
DEFINE_GUID(IID_IMvxClientItem, 0x19b23c07, 0x1aed, 0x4d8c, 0x88, 0x1f, 0x84, 0xeb, 0x77, 0x62, 0x90, 0xd7);

#undef INTERFACE
#define INTERFACE IMvxClientItem
DECLARE_INTERFACE_(IMvxClientItem, IUnknown) {
  BEGIN_INTERFACE
  /** IUnknown::QueryInterface. */
  STDMETHOD(QueryInterface)(THIS_ REFIID riid, void** object) PURE;
  /** IUnknown::AddRef. */
  STDMETHOD_(ULONG, AddRef)(THIS) PURE;
  /** IUnknown::Release. */
  STDMETHOD_(ULONG, Release)(THIS) PURE;
  /** The item's class word (e.g. "Invoice"). */
  STDMETHOD(GetClassString)(THIS_ BSTR* classString) PURE;
  /** The key of the item's server below `MVSUP\CustomTypes\Classes`. */
  STDMETHOD(GetServerKeyString)(THIS_ BSTR* serverKey) PURE;
  END_INTERFACE
};
#undef INTERFACE

/** @name Text forms
 *  @{ */

/** The type word: "Collection", "File" ...
 *  Type 3 gives the document class word ("File", or "Document" when
 *  `MVSUP\Settings` HalcyoDocClassId is set). Types 4, 16, 23-32 and
 *  negative ones give the empty text; 33 and above the custom type's class
 *  word (empty when unassigned).
 *  @return buffer (null when buffer is null).
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
LPWSTR WINAPI GetMvxItemTypeAsStringTS(MVXITEMTYPE type, LPWSTR buffer, int capacity);
/** The type word, as GetMvxItemTypeAsStringTS.
 *  @return the text (never null).
 *  @ownership A buffer of the library: constant text for the built-in
 *  types, otherwise a static buffer of 80 characters shared by the family and
 *  overwritten by its next call; not freed by the caller.
 *  @threads One thread at a time for the whole family (use the TS
 *  variant otherwise).
 */
LPCWSTR WINAPI GetMvxItemTypeAsString(MVXITEMTYPE type);
/** The same in the ANSI code page.
 *  @return the text (never null).
 *  @ownership A buffer of the library: constant text for the built-in
 *  types, otherwise a static buffer of 80 bytes shared by the family and
 *  overwritten by its next call; not freed by the caller.
 *  @threads One thread at a time for the whole family (use the TS
 *  variant otherwise).
 */
LPCSTR WINAPI GetMvxItemTypeAsStringA(MVXITEMTYPE type);
/** As GetMvxItemTypeAsStringTS, except that type 3 always gives "File".
 *  @return buffer.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
LPWSTR WINAPI GetMvxItemTypeAsHttpStringTS(MVXITEMTYPE type, LPWSTR buffer, int capacity);
/** As GetMvxItemTypeAsString, except that type 3 always gives "File".
 *  @return the text (never null).
 *  @ownership A buffer of the library: constant text for the built-in
 *  types, otherwise a static buffer of 80 characters shared by the family and
 *  overwritten by its next call; not freed by the caller.
 *  @threads One thread at a time for the whole family (use the TS
 *  variant otherwise).
 */
LPCWSTR WINAPI GetMvxItemTypeAsHttpString(MVXITEMTYPE type);
/** The word of the item type that the object type maps to.
 *  @return buffer.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
LPWSTR WINAPI GetMvxObjTypeAsStringTS(LONG objType, LPWSTR buffer, int capacity);
/** The word of the item type that the object type maps to.
 *  @return the text (never null).
 *  @ownership A buffer of the library: constant text for the built-in
 *  types, otherwise a static buffer of 80 characters shared by the family and
 *  overwritten by its next call; not freed by the caller.
 *  @threads One thread at a time for the whole family (use the TS
 *  variant otherwise).
 */
LPCWSTR WINAPI GetMvxObjTypeAsString(LONG objType);
/** The localised display name (from the language satellite when one is
 *  loaded).
 *  @return 1 for a built-in type with a display name or a custom type with
 *  a class word (or label); otherwise loads "Unknown Object Type" and
 *  returns 0. A null buffer or a capacity below 1 returns 0 and writes
 *  nothing.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetMvxItemTypeAsDisplayString(MVXITEMTYPE type, LPWSTR buffer, int capacity);

/** @} */

/** @name Object types
 *  @{ */

/** The object type of an item type.
 *  @return the object type; -1 for types without an object type (0, 16,
 *  17, 23-32, negative ones); types above 32 map to themselves.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
LONG WINAPI GetMvxObjTypeFromItemType(MVXITEMTYPE type);
/** The item type of an object type.
 *  Not the inverse of GetMvxObjTypeFromItemType for type 4 (4 -> 0 -> 3).
 *  @return the item type; -1 for 3, 12, 21-32 and negative values; values
 *  above 32 map to themselves.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
MVXITEMTYPE WINAPI GetMvxItemTypeFromObjType(LONG objType);

/** @} */

/** @name Parsing
 *  @{ */

/** Type of a type word or handle ("File-12", "collection").
 *  Built-in words are matched ignoring case when followed by '-' or the end
 *  of the text ("Files-1" is no file); "ContElem" matches as a plain
 *  prefix. Anything else is looked up among the custom types.
 *  @return the item type; 16 when unknown.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
MVXITEMTYPE WINAPI GetMvxItemTypeFromString(LPCWSTR text);
/** As GetMvxItemTypeFromString; *number (optional) receives the decimal
 *  value after the first '-' (leading digits, wcstol rules, clamped to the
 *  range of a LONG), or 0 when there is none.
 *  @return the item type; 16 when unknown.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
MVXITEMTYPE WINAPI GetMvxItemHandleFromString(LPCWSTR text, long* number);
/** GetMvxItemTypeFromString for ANSI text.
 *  @return the item type; 16 when unknown.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
MVXITEMTYPE WINAPI GetMvxItemTypeFromStringA(LPCSTR text);
/** GetMvxItemHandleFromString for ANSI text.
 *  @return the item type; 16 when unknown.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
MVXITEMTYPE WINAPI GetMvxItemHandleFromStringA(LPCSTR text, long* number);
/** Compares the type word of text (the part before the first '-') with the
 *  word of type, ordinally and case-sensitively: "collection-5" is not
 *  type 2.
 *  @return 0 when equal, else -1 or 1; a type word of 96 characters or more
 *  gives -1.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
int WINAPI CompareMvxItemType(LPCWSTR text, MVXITEMTYPE type);

/** @} */

/** @name Formatting
 *  @{ */

/** The handle text `<word>-<number>` (number unsigned; at most 320
 *  characters of word).
 *  With a buffer and capacity > 0: clears all capacity characters, copies
 *  at most capacity - 1.
 *  @return the number of characters copied; with a null buffer or a
 *  capacity below 1, the length of the whole text (nothing written).
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetMvxItemHandleAsString(MVXITEMTYPE type, DWORD number, LPWSTR buffer, int capacity);
/** The same with the http word (type 3 always "File").
 *  @return as GetMvxItemHandleAsString.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
int WINAPI GetMvxItemHandleAsHttpString(MVXITEMTYPE type, DWORD number, LPWSTR buffer, int capacity);

/** @} */

/** @name Handle recognisers: the number, or -1 when text is no such handle
 *  @{ */

/** The number after prefix: prefix has 1-31 characters and starts text
 *  (ignoring case), and the rest is an optional sign and digits only (a
 *  lone sign reads as 0).
 *  @return the number, or -1.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
long WINAPI ToNumber(LPCWSTR text, LPCWSTR prefix);
/** A collection handle: `c<digits>` (only with allowShort),
 *  `collection-<digits>`, a bare number (only with allowBare).
 *  @return the number, or -1.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
long WINAPI ToCollHandle(LPCWSTR text, BOOL allowBare, BOOL allowShort);
/** A document handle: `f<digits>` (only with allowShort), `file-<digits>`,
 *  `document-<digits>`, a bare number (only with allowBare).
 *  Except on the short form, when the text holds a '/' *version (optional)
 *  receives the decimal value after the last '/', whether or not a handle
 *  was recognised; otherwise *version is left as it was.
 *  @return the number, or -1.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
long WINAPI ToFileHandle(LPCWSTR text, BOOL allowBare, long* version, BOOL allowShort);
/** A group handle: `group-<digits>`, a bare number (only with allowBare).
 *  @return the number, or -1.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
long WINAPI ToGroupHandle(LPCWSTR text, BOOL allowBare);
/** A user handle: `user-<digits>`, a bare number (only with allowBare).
 *  @return the number, or -1.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
long WINAPI ToUserHandle(LPCWSTR text, BOOL allowBare);
/** Any handle: collections and files as above (no bare numbers), then the
 *  other built-in words, then a handle inside longer text
 *  (`see C:\work\Weblog-12.htm` gives 22 and 12).
 *  *type receives the item type or 65535 when nothing is found, *number the
 *  number or -1; version as for ToFileHandle. Out pointers are optional.
 *  @return 0, always.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
int WINAPI ToHandle(LPCWSTR text, WORD* type, long* number, long* version, BOOL allowShort);

/** @} */

/** @name Parent types
 *  @{ */

/** The type of the parent level of an item of the given type.
 *  context1 decides for saved queries, users and groups, context2 for
 *  collections and workspaces; context3 is not used. For a custom type the
 *  object (optional) is asked for its class string; the answer stays 2.
 *  @return the parent's item type; -1 for the client (type 0); 2 for types
 *  outside 0-22.
 *  @ownership object stays the caller's; no reference is kept.
 *  @threads Any thread; with an object, as the object allows.
 */
MVXITEMTYPE WINAPI GetMvxParentItemType(MVXITEMTYPE type, LONG context1, LONG context2, LONG context3,
                                        IUnknown* object);
/** The word of GetMvxParentItemType(type, x1, x3, x2, object): the second
 *  and third context values are exchanged, as callers have always passed
 *  them.
 *  @return buffer.
 *  @ownership The buffer is the caller's; object stays the caller's.
 *  @threads Any thread; with an object, as the object allows.
 */
LPWSTR WINAPI GetMvxParentItemTypeAsStringTS(LPWSTR buffer, int capacity, MVXITEMTYPE type, LONG x1, LONG x2,
                                             LONG x3, IUnknown* object);
/** As GetMvxParentItemTypeAsStringTS, into a shared buffer of 96
 *  characters (also used by GetMvxParentObjTypeAsString).
 *  @return the text (never null).
 *  @ownership A static buffer of the library, overwritten by the next call;
 *  not freed by the caller. object stays the caller's.
 *  @threads One thread at a time.
 */
LPCWSTR WINAPI GetMvxParentItemTypeAsString(MVXITEMTYPE type, LONG x1, LONG x2, LONG x3, IUnknown* object);
/** The same for an object type, mapped to its item type first.
 *  @return buffer.
 *  @ownership The buffer is the caller's; object stays the caller's.
 *  @threads Any thread; with an object, as the object allows.
 */
LPWSTR WINAPI GetMvxParentObjTypeAsStringTS(LPWSTR buffer, int capacity, LONG objType, LONG x1, LONG x2, LONG x3,
                                            IUnknown* object);
/** The same for an object type, into the buffer of
 *  GetMvxParentItemTypeAsString.
 *  @return the text (never null).
 *  @ownership A static buffer of the library, overwritten by the next call;
 *  not freed by the caller. object stays the caller's.
 *  @threads One thread at a time.
 */
LPCWSTR WINAPI GetMvxParentObjTypeAsString(LONG objType, LONG x1, LONG x2, LONG x3, IUnknown* object);

/** @} */

/** @name Custom item types
 *  Kept per user under the component settings key `MVSUP\CustomTypes`:
 *  "Maps" holds one DWORD n per class word (item type n + 32), named by the
 *  class word encoded as four hex digits per UTF-16 unit; "Names" holds
 *  labels; `Classes\<server>\<class word>` holds the superclass word
 *  (default value) and "Flags". A class word is the text before the first
 *  '-' (at most 383 characters). Nothing is cached: every call reads the
 *  registry.
 *  @{ */

/** The custom item type of a class word.
 *  @return the type; 16 for empty text or a class word without a number.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
MVXITEMTYPE WINAPI MvxGetCustomItemType(LPCWSTR text);
/** The class word of a custom type; empty below 33 or when unassigned.
 *  @return buffer.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
LPWSTR WINAPI MvxGetCustomItemTypeAsStringTS(MVXITEMTYPE type, LPWSTR buffer, int capacity);
/** As MvxGetCustomItemTypeAsStringTS, into a shared buffer of 80
 *  characters.
 *  @return the text (never null).
 *  @ownership A buffer of the library: constant text for the built-in
 *  types, otherwise a static buffer of 80 characters shared by the family and
 *  overwritten by its next call; not freed by the caller.
 *  @threads One thread at a time for the whole family (use the TS
 *  variant otherwise).
 */
LPCWSTR WINAPI MvxGetCustomItemTypeAsString(MVXITEMTYPE type);
/** The class word, or the label stored in "Names" under the plain class
 *  word (first 80 characters).
 *  MvxSetCustomItemLabel stores labels under the encoded class word, which
 *  this does not read: kept as it has always been.
 *  @return buffer.
 *  @ownership The buffer is the caller's.
 *  @threads Any thread.
 */
LPWSTR WINAPI MvxGetCustomItemTypeAsDisplayStringTS(MVXITEMTYPE type, LPWSTR buffer, int capacity);
/** As MvxGetCustomItemTypeAsDisplayStringTS, into a shared buffer of 320
 *  characters.
 *  @return the text (never null).
 *  @ownership A buffer of the library: constant text for the built-in
 *  types, otherwise a static buffer of 320 characters shared by the family and
 *  overwritten by its next call; not freed by the caller.
 *  @threads One thread at a time for the whole family (use the TS
 *  variant otherwise).
 */
LPCWSTR WINAPI MvxGetCustomItemTypeAsDisplayString(MVXITEMTYPE type);
/** Assigns the next number (one above the highest assignment; gaps are not
 *  reused) even when the class word has one already, and puts the new type
 *  in *type (optional).
 *  @return 1, or 0 when "Maps" can be neither opened nor created or the
 *  class word is empty (then *type is 16).
 *  @ownership Nothing is handed out.
 *  @threads Any thread; two threads assigning at once may be given the same
 *  number (the registry is read, then written).
 */
int WINAPI MvxCreateCustomItemType(LPCWSTR text, MVXITEMTYPE* type);
/** Stores a label that differs (ignoring case) from the whole text, else
 *  deletes it.
 *  @return 1 on success; 0 for an empty class word or when the label
 *  cannot be written.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
int WINAPI MvxSetCustomItemLabel(LPCWSTR text, LPCWSTR label);
/** Removes the class word's label and number.
 *  @return 1 when the number was deleted; 0 otherwise (also for null or
 *  empty text).
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
int WINAPI MvxDeleteCustomItemType(LPCWSTR text);
/** Reads the record `Classes\<classKey>\<class word>`: the superclass
 *  word into superclass (optional, 40 characters; left empty when the
 *  stored word does not fit) and the flags into *flags (optional); both are
 *  cleared first.
 *  @return the class word's type, assigning a number when it has none; 0
 *  when there is no such record (or classKey is empty, or the key name
 *  would exceed 254 characters).
 *  @ownership superclass is the caller's buffer of 40 characters.
 *  @threads Any thread (see MvxCreateCustomItemType on assigning numbers).
 */
MVXITEMTYPE WINAPI MvxGetClientDefinedCustomItemType(LPCWSTR text, LPCWSTR classKey, LPWSTR superclass,
                                                     DWORD* flags);
/** The item type of the class word's superclass (a number is assigned to
 *  an unknown superclass word).
 *  With an object, only the record of the object's server is read;
 *  without, the servers under "Classes" are tried in order.
 *  @return the type; 0 when no record or no superclass is found.
 *  @ownership object stays the caller's; no reference is kept.
 *  @threads Any thread (see MvxCreateCustomItemType on assigning numbers).
 */
MVXITEMTYPE WINAPI MvxGetSuperclassItemType(LPCWSTR text, IUnknown* object);
/** MvxGetSuperclassItemType for ANSI text.
 *  @return as MvxGetSuperclassItemType.
 *  @ownership object stays the caller's; no reference is kept.
 *  @threads Any thread (see MvxCreateCustomItemType on assigning numbers).
 */
MVXITEMTYPE WINAPI MvxGetSuperclassItemTypeA(LPCSTR text, IUnknown* object);
/** Whether the class record found as for MvxGetSuperclassItemType has the
 *  container flag.
 *  @return 1 when it has, else 0.
 *  @ownership object stays the caller's; no reference is kept.
 *  @threads Any thread.
 */
int WINAPI MvxIsCustomContainerType(LPCWSTR text, IUnknown* object);
/** Writes the class record's Flags: 0 without children; with children 2,
 *  plus 1 unless the first of childTypes is "Version", "Rendition" or
 *  "ContElem" (any case).
 *  A null childTypes or first entry counts as a container. The server text
 *  is cut before "mvcgi/mv.py/".
 *  @return 1 on success, else 0 (also when server and class word are
 *  longer than 228 characters together).
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
int WINAPI MvxMapChildItemTypes(LPCWSTR server, LPCWSTR classWord, BOOL hasChildren, const LPCWSTR* childTypes);
/** Writes the superclass word into the class record (same key rules) and
 *  assigns the class word a number unless it has one.
 *  @return 1 on success, else 0.
 *  @ownership Nothing is handed out.
 *  @threads Any thread (see MvxCreateCustomItemType on assigning numbers).
 */
int WINAPI MvxMapSuperclassItemType(LPCWSTR server, LPCWSTR classWord, LPCWSTR superclassWord);
/** The type of a committed item info (the item type in its header) when it
 *  is below 33 or above 255; for a custom type, the type of the word in its
 *  custom string property "MVClient BaseType" (GetMvxItemTypeFromString).
 *  @return the type; 16 when that property is missing or empty (or the
 *  block does not hold together), for a null block or one whose size field
 *  is below 40.
 *  @ownership The block stays the caller's.
 *  @threads Any thread, while no thread changes the block.
 */
MVXITEMTYPE WINAPI MvxGetSuperclassFromItemInfo(const BYTE* itemInfo);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_TYPES_H */
