// Item types and object types: the catalogue of built-in types, their words,
// display strings and parents, and the parsing of type words and handle
// strings. Untraced implementations behind the exported type functions, for
// the library's own use; all of it is safe from several threads at once.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <string>
#include <string_view>

#include "resources/resource_ids.h"

namespace mvsup::types {

using ItemType = LONG;

inline constexpr ItemType kClient = 0;
inline constexpr ItemType kServer = 1;
inline constexpr ItemType kCollection = 2;
inline constexpr ItemType kFile = 3;
inline constexpr ItemType kFileVersions = 4;
inline constexpr ItemType kUnknown = 16;
inline constexpr ItemType kWorkspace = 20;
inline constexpr ItemType kLastBuiltin = 22;
inline constexpr ItemType kFirstCustom = 33;
inline constexpr ItemType kLastCustom = 255;
inline constexpr LONG kNoObjectType = -1;
inline constexpr ItemType kNoParent = -1;

// The word that the http form writes for documents, whatever the document
// class word is.
inline constexpr std::wstring_view kHttpFileWord = L"File";

// Which context value chooses between the two parents of a type.
enum class ParentContext { None, First, Second };

struct BuiltinType {
  ItemType type;
  std::wstring_view word;  // empty: the type has no text form
  UINT display_id;         // 0: no display string of its own
  LONG object_type;
  ItemType parent;              // parent when the deciding context value is 0
  ItemType parent_if_context;   // parent when it is not 0
  ParentContext deciding;
};

inline constexpr BuiltinType kBuiltinTypes[] = {
    {0, L"MVClient", IDS_ITEMTYPE_CLIENT, -1, -1, -1, ParentContext::None},
    {1, L"Server", IDS_ITEMTYPE_SERVER, 2, 0, 0, ParentContext::None},
    {2, L"Collection", IDS_ITEMTYPE_COLLECTION, 1, 1, 2, ParentContext::Second},
    {3, L"File", IDS_ITEMTYPE_DOCUMENT, 0, 2, 2, ParentContext::None},
    {4, L"", 0, 0, 3, 3, ParentContext::None},
    {5, L"Calendar", IDS_ITEMTYPE_CALENDAR, 4, 2, 2, ParentContext::None},
    {6, L"BulletinBoard", IDS_ITEMTYPE_DISCUSSION, 5, 2, 2, ParentContext::None},
    {7, L"URL", IDS_ITEMTYPE_URL, 6, 2, 2, ParentContext::None},
    {8, L"Bulletin", IDS_ITEMTYPE_TOPIC, 7, 6, 6, ParentContext::None},
    {9, L"SavedQuery", IDS_ITEMTYPE_SAVEDQUERY, 10, 1, 2, ParentContext::First},
    {10, L"Event", IDS_ITEMTYPE_EVENT, 11, 5, 5, ParentContext::None},
    {11, L"Rendition", IDS_ITEMTYPE_RENDITION, 15, 12, 12, ParentContext::None},
    {12, L"Version", IDS_ITEMTYPE_VERSION, 14, 4, 4, ParentContext::None},
    {13, L"Subscription", IDS_ITEMTYPE_SUBSCRIPTION, 13, 2, 2, ParentContext::None},
    {14, L"User", IDS_ITEMTYPE_USER, 8, 1, 15, ParentContext::First},
    {15, L"Group", IDS_ITEMTYPE_GROUP, 9, 1, 15, ParentContext::First},
    {16, L"", 0, -1, 2, 2, ParentContext::None},
    {17, L"Object", IDS_ITEMTYPE_OBJECT, -1, 2, 2, ParentContext::None},
    {18, L"ContElem", IDS_ITEMTYPE_CONTENTELEMENT, 16, 11, 11, ParentContext::None},
    {19, L"MailMessage", IDS_ITEMTYPE_MAILMESSAGE, 17, 2, 2, ParentContext::None},
    {20, L"Workspace", IDS_ITEMTYPE_WORKSPACE, 18, 1, 20, ParentContext::Second},
    {21, L"Wiki", IDS_ITEMTYPE_WIKI, 19, 2, 2, ParentContext::None},
    {22, L"Weblog", IDS_ITEMTYPE_WEBLOG, 20, 2, 2, ParentContext::None},
};

// String-table id of "Unknown Object Type".
inline constexpr UINT kUnknownDisplayId = IDS_ITEMTYPE_UNKNOWN;

// Null outside 0-22.
const BuiltinType* builtin(ItemType type) noexcept;

// The text form: the built-in word (the document class word for type 3),
// else the custom type's class word; empty when there is none. http: type 3
// gives "File".
std::wstring type_word(ItemType type, bool http = false) noexcept;

LONG object_type_from_item_type(ItemType type) noexcept;
ItemType item_type_from_object_type(LONG object_type) noexcept;

// Display name into a caller's buffer (capacity >= 1). Returns 1 for a type
// with a display name of its own (built in, or custom with a class word),
// else writes "Unknown Object Type" and returns 0.
int display_string(ItemType type, wchar_t* buffer, int capacity) noexcept;

// Loads a string of the library's string table: from the language satellite
// when it has the id, else from the library itself. Returns the length.
int load_string(UINT id, wchar_t* buffer, int capacity) noexcept;

// The type of a type word or handle string; custom words are looked up in
// the settings; 16 when unknown.
ItemType type_from_string(std::wstring_view text) noexcept;

struct Handle {
  ItemType type;
  long number;
};

// A handle string "<word>-<number>": the type as type_from_string, the
// number by wcstol rules from the text after the first '-' (0 without one).
Handle parse_handle(std::wstring_view text) noexcept;

// Decimal value of the leading number of text by wcstol rules (base 10):
// leading white space, an optional sign, digits; clamped to the range of a
// long; 0 when there are no digits.
long leading_decimal(std::wstring_view text) noexcept;

// CompareMvxItemType: 0 when the type word of text equals the type's word,
// case-sensitively; else -1 or 1.
int compare_type(std::wstring_view text, ItemType type) noexcept;

// Parent of a type; context3 is not used. For custom types the object is
// asked for its class string.
ItemType parent_type(ItemType type, LONG context1, LONG context2, IUnknown* object) noexcept;

}  // namespace mvsup::types
