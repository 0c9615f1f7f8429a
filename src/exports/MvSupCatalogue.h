/* MvSup2u: the property catalogue. Maps the server's property names to
   property ids and gives each id its property-type code. A property id is
   class bits (top 4 bits, by item class; 0 for the properties that every item
   has) ORed with one property bit. All four functions are pure table lookups,
   safe from any thread. */
#ifndef MVSUP_CATALOGUE_H
#define MVSUP_CATALOGUE_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The id of a property name ("displayname", also "title"; "size" ...),
   compared ignoring case; 0 for a null or unknown name. */
DWORD WINAPI PropIdFromPropertyName(LPCWSTR name);
/* The primary name of an id: constant text that is never freed; the empty
   string for an id without a name. 0x80000800 gives "locked_by", although
   only "lockdiscovery" is read back as that id; 0x30000100 gives "has_time",
   which is not read back at all. */
LPCWSTR WINAPI PropertyNameFromPropId(DWORD propId);
/* The property-type code (1-19) of an id; 0 for an unknown id or one that is
   not converted from text. */
int WINAPI PropTypeFromPropId(DWORD propId);
/* bits ORed with the class bits of the item type (e.g. 0x80000000 for type
   3); bits unchanged for a type without a class. */
DWORD WINAPI GetItemPropId(DWORD bits, LONG itemType);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_CATALOGUE_H */
