/** @file
 *  MvSup2u: the property catalogue.
 *
 *  Maps the server's property names to property ids and gives each id its
 *  property-type code. A property id is class bits (top 4 bits, by item
 *  class; 0 for the properties that every item has) ORed with one property
 *  bit. All four functions are pure table lookups, safe from any thread.
 */
#ifndef MVSUP_CATALOGUE_H
#define MVSUP_CATALOGUE_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/** The id of a property name ("displayname", also "title"; "size" ...),
 *  compared ignoring case.
 *  @return the id; 0 for a null or unknown name.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
DWORD WINAPI PropIdFromPropertyName(LPCWSTR name);
/** The primary name of an id.
 *  0x80000800 gives "locked_by", although only "lockdiscovery" is read
 *  back as that id; 0x30000100 gives "has_time", which is not read back at
 *  all.
 *  @return the name; the empty string for an id without a name (never
 *  null).
 *  @ownership Constant text of the library that is never freed.
 *  @threads Any thread.
 */
LPCWSTR WINAPI PropertyNameFromPropId(DWORD propId);
/** The property-type code (1-19) of an id.
 *  @return the code; 0 for an unknown id or one that is not converted from
 *  text.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
int WINAPI PropTypeFromPropId(DWORD propId);
/** bits ORed with the class bits of the item type (e.g. 0x80000000 for
 *  type 3).
 *  @return the id; bits unchanged for a type without a class.
 *  @ownership Nothing is handed out.
 *  @threads Any thread.
 */
DWORD WINAPI GetItemPropId(DWORD bits, LONG itemType);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_CATALOGUE_H */
