// The property catalogue: the server's property names, their ids and their
// property-type codes, as one table. The lookups are untraced, allocate
// nothing and are safe from any thread.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string_view>

namespace mvsup::catalogue {

// Ids that the item info treats specially.
namespace id {
inline constexpr uint32_t kDisplayName = 0x2;
inline constexpr uint32_t kHandle = 0x20;
inline constexpr uint32_t kEntityOwner = 0x40;
inline constexpr uint32_t kCreationDate = 0x80;
inline constexpr uint32_t kLastModified = 0x100;
inline constexpr uint32_t kModifiedBy = 0x200;
inline constexpr uint32_t kParents = 0x400;
inline constexpr uint32_t kClientData = 0x10000;
inline constexpr uint32_t kContentLength = 0x80000040;
inline constexpr uint32_t kLockDiscovery = 0x80000800;
inline constexpr uint32_t kMemberLength = 0x40000010;
}  // namespace id

inline constexpr uint32_t kClassMask = 0xF0000000;

struct Property {
  uint32_t id;
  int type;
  // What PropertyNameFromPropId gives; empty for ids known only by type.
  std::wstring_view name;
  // Names that PropIdFromPropertyName accepts, primary first; usually the
  // first is `name`, but not for the ids whose name is write-only.
  std::wstring_view accepted[2];
};

namespace detail {
constexpr Property named(uint32_t id, std::wstring_view name, int type) { return {id, type, name, {name, {}}}; }
constexpr Property named(uint32_t id, std::wstring_view name, std::wstring_view alias, int type) {
  return {id, type, name, {name, alias}};
}
constexpr Property unnamed(uint32_t id, int type) { return {id, type, {}, {{}, {}}}; }
// A name given by id that the name lookup does not read back.
constexpr Property shown_as(uint32_t id, std::wstring_view shown, std::wstring_view accepted, int type) {
  return {id, type, shown, {accepted, {}}};
}
}  // namespace detail

// In catalogue order: the name lookup takes the first match.
inline constexpr Property kProperties[] = {
    // Shared by every item.
    detail::named(0x2, L"displayname", L"title", 1),
    detail::named(0x4, L"summary", 1),
    detail::named(0x8, L"description", 2),
    detail::named(0x10, L"keywords", 1),
    detail::named(0x20, L"handle", 11),
    detail::named(0x40, L"entityowner", 12),
    detail::named(0x80, L"creationdate", L"create_date", 8),
    detail::named(0x100, L"getlastmodified", L"modified_date", 8),
    detail::named(0x200, L"modified_by", 12),
    detail::named(0x400, L"parents", 19),
    detail::named(0x800, L"acl", 13),
    detail::named(0x2000, L"private", 4),
    detail::named(0x4000, L"subscriptions", 19),
    detail::named(0x8000, L"children", 19),
    detail::named(0x10000, L"client_data", 2),
    detail::named(0x40000, L"expiration_date", 8),
    detail::named(0x80000, L"isRecord", 4),
    detail::named(0x100000, L"readyForDeclare", 4),
    // Documents.
    detail::named(0x80000002, L"document", 14),
    detail::named(0x80000004, L"getcontenttype", L"content_type", 1),
    detail::named(0x80000008, L"author", 1),
    detail::named(0x80000010, L"max_versions", 5),
    detail::named(0x80000040, L"getcontentlength", L"size", 5),
    detail::named(0x80000080, L"abstract", 1),
    detail::named(0x80000100, L"file1_comment", 1),
    detail::named(0x80000200, L"mervane_filename", 14),
    detail::named(0x80000400, L"highest_version_used", 5),
    detail::shown_as(0x80000800, L"locked_by", L"lockdiscovery", 12),
    detail::named(0x80001000, L"isInteract", 4),
    // Collections.
    detail::named(0x40000002, L"logo", 3),
    detail::named(0x40000004, L"bg_image", 3),
    detail::named(0x40000008, L"sort_order", 7),
    detail::named(0x40000010, L"memberlength", L"n_items", 5),
    // Bulletin boards, calendars, URLs, groups.
    detail::named(0xC0000002, L"expire", 7),
    detail::named(0x20000002, L"default_scale", 4),
    detail::named(0xA0000002, L"url", 3),
    detail::named(0x90000002, L"change_access", 4),
    // Servers.
    detail::named(0xE0000002, L"read_only", L"server.readonly", 4),
    detail::named(0xE0000004, L"site_access", L"siteaccess", 1),
    detail::named(0xE0000008, L"http_protocol", 1),
    detail::named(0xE0000010, L"schemata", 0),
    detail::named(0xE0000020, L"auto_login", 4),
    detail::named(0xE0000040, L"domains", 1),
    // Users.
    detail::named(0x10000002, L"first_name", 1),
    detail::named(0x10000004, L"last_name", 1),
    detail::named(0x10000008, L"email", 9),
    detail::named(0x10000010, L"mailstop", 1),
    detail::named(0x10000020, L"phone", 1),
    detail::named(0x10000040, L"use_upload_helper", 7),
    detail::named(0x10000080, L"username", 1),
    detail::named(0x10000100, L"password", 10),
    detail::named(0x10000200, L"last_login", 8),
    detail::named(0x10000400, L"homepage", 3),
    detail::named(0x10000800, L"getrmrole", 1),
    detail::named(0x10001000, L"can_declare", 4),
    detail::named(0x10002000, L"getclassificationdatalist", 1),
    // Events.
    detail::named(0x30000002, L"year", L"__year__", 5),
    detail::named(0x30000004, L"month", L"__month__", 5),
    detail::named(0x30000008, L"__day__", 5),
    detail::named(0x30000010, L"start", L"__start__", 5),
    detail::named(0x30000020, L"__end__", 5),
    detail::named(0x30000040, L"num_repeat", L"__num_repeat__", 5),
    detail::named(0x30000080, L"repeat", L"__repeat__", 7),
    // Known by type only.
    detail::unnamed(0x1000, 13),
    detail::unnamed(0xE0000080, 18),
    detail::unnamed(0xE0000100, 18),
    detail::shown_as(0x30000100, L"has_time", {}, 4),
    detail::unnamed(0x70000002, 5),
};

// The class bits that GetItemPropId adds for an item type; 0 for a type
// without a class.
uint32_t class_bits(LONG item_type) noexcept;

const Property* find(uint32_t property_id) noexcept;
// 0 for an unknown name.
uint32_t id_from_name(std::wstring_view name) noexcept;
// Empty for an id without a name.
std::wstring_view name_from_id(uint32_t property_id) noexcept;
int type_from_id(uint32_t property_id) noexcept;
uint32_t item_prop_id(uint32_t bits, LONG item_type) noexcept;

}  // namespace mvsup::catalogue
