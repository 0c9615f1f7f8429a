/* Resource identifiers shared by the library, its satellites and its code. */
#ifndef MVSUP_RESOURCE_IDS_H
#define MVSUP_RESOURCE_IDS_H

#define MVSUP_VERSION_MAJOR 2
#define MVSUP_VERSION_MINOR 0
#define MVSUP_VERSION_PATCH 0
#define MVSUP_VERSION_BUILD 0
#define MVSUP_VERSION_TEXT "2.0.0.0"

/* Display names of the item types. */
#define IDS_ITEMTYPE_DOCUMENT        4942
#define IDS_ITEMTYPE_COLLECTION      4943
#define IDS_ITEMTYPE_SERVER          4944
#define IDS_ITEMTYPE_CALENDAR        4945
#define IDS_ITEMTYPE_TOPIC           4946
#define IDS_ITEMTYPE_DISCUSSION      4947
#define IDS_ITEMTYPE_URL             4948
#define IDS_ITEMTYPE_SAVEDQUERY      4949
#define IDS_ITEMTYPE_EVENT           4950
#define IDS_ITEMTYPE_USER            4951
#define IDS_ITEMTYPE_GROUP           4952
#define IDS_ITEMTYPE_CLIENT          4953
#define IDS_ITEMTYPE_UNKNOWN         4954
#define IDS_ITEMTYPE_RENDITION       4959
#define IDS_ITEMTYPE_VERSION         4960
#define IDS_ITEMTYPE_SUBSCRIPTION    4961
#define IDS_ITEMTYPE_OBJECT          4962
#define IDS_ITEMTYPE_CONTENTELEMENT  4965
#define IDS_ITEMTYPE_MAILMESSAGE     5090
#define IDS_ITEMTYPE_WORKSPACE       5102
#define IDS_ITEMTYPE_WIKI            5103
#define IDS_ITEMTYPE_WEBLOG          5104

/* Messages of the check of the custom type assignments at user set-up. */
#define IDS_CUSTOMTYPES_REPAIRING    5120
#define IDS_CUSTOMTYPES_NOT_REPAIRED 5121
#define IDS_CUSTOMTYPES_REPAIRED     5122

/* Messages of the path check before a directory clean-up removes anything. */
#define IDS_CLEANUP_NO_CURRENT_DIR   4928
#define IDS_CLEANUP_DOUBLE_SLASH     4929
#define IDS_CLEANUP_TOO_SHORT        4930
#define IDS_CLEANUP_TOO_LONG         4931
#define IDS_CLEANUP_NOT_UNDER_BASE   4932
/* Format names of files without a table entry. */
#define IDS_FORMAT_ALL_FILES         4935
#define IDS_FORMAT_EXECUTABLE        4936
#define IDS_FORMAT_SYSTEM_EXTENSION  4937

#endif /* MVSUP_RESOURCE_IDS_H */
