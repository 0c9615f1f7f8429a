// Which value kind a property of a given property type holds in its values
// attribute. The kind is never stored in a value block; readers take it from
// here. Self-contained: the support tool decodes values with it.
#pragma once

#include <cstdint>

namespace mvsup::iteminfo {

enum class ValueKind : uint8_t {
  Unknown,
  String,
  Integer,
  PropertyType,
  Float,
  DateTime,
  Binary,
  Handle,
  AccessControlEntry,
};

struct PropertyTypeKind {
  uint32_t type;
  ValueKind kind;
};

inline constexpr PropertyTypeKind kPropertyTypeKinds[] = {
    {1, ValueKind::String},     {2, ValueKind::String},    {3, ValueKind::String},   {4, ValueKind::Integer},
    {5, ValueKind::Integer},    {6, ValueKind::Float},     {7, ValueKind::String},   {8, ValueKind::DateTime},
    {9, ValueKind::String},     {10, ValueKind::String},   {11, ValueKind::Handle},  {12, ValueKind::Handle},
    {14, ValueKind::String},    {17, ValueKind::DateTime}, {19, ValueKind::Handle},
};

constexpr ValueKind value_kind_of_type(uint32_t property_type) noexcept {
  for (const PropertyTypeKind& entry : kPropertyTypeKinds)
    if (entry.type == property_type) return entry.kind;
  return ValueKind::Unknown;
}

constexpr const char* value_kind_name(ValueKind kind) noexcept {
  switch (kind) {
    case ValueKind::String: return "string";
    case ValueKind::Integer: return "integer";
    case ValueKind::PropertyType: return "property type";
    case ValueKind::Float: return "float";
    case ValueKind::DateTime: return "date-time";
    case ValueKind::Binary: return "binary";
    case ValueKind::Handle: return "handle";
    case ValueKind::AccessControlEntry: return "access-control entry";
    case ValueKind::Unknown: break;
  }
  return "unknown";
}

}  // namespace mvsup::iteminfo
