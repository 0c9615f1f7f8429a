// Attributes of a property and the value lists they hold. Pure in-memory
// accessors: not traced.
#include "MvSupItemInfo.h"
#include "frame/msvc_exception.h"
#include "iteminfo/item_info.h"

using namespace mvsup::iteminfo;
using mvsup::frame::raise_out_of_range;

extern "C" {

HMVXATTR WINAPI MvxAddAttribute(HMVXINFO info, HMVXPROP property, DWORD id) {
  if (info == nullptr || property == nullptr) return nullptr;
  return to_handle(add_attribute(*from_handle(info), *from_handle(property), id));
}

HMVXATTR WINAPI MvxFindAttribute(HMVXINFO info, HMVXPROP property, DWORD id) {
  if (info == nullptr || property == nullptr) return nullptr;
  return to_handle(find_attribute(*from_handle(property), id));
}

SHORT WINAPI MvxGetAttributeCount(HMVXINFO info, HMVXPROP property) {
  if (info == nullptr || property == nullptr) return 0;
  return static_cast<SHORT>(from_handle(property)->attributes.size());
}

HMVXPOS WINAPI MvxGetHeadAttribute(HMVXINFO info, HMVXPROP property) {
  if (info == nullptr || property == nullptr) return nullptr;
  return head_attribute(*from_handle(info), *from_handle(property));
}

HMVXATTR WINAPI MvxGetNextAttribute(HMVXINFO info, DWORD* id, HMVXPOS* position) {
  if (info == nullptr) return nullptr;
  return to_handle(next_attribute(*from_handle(info), id, position));
}

void WINAPI MvxDeleteAllAttributes(HMVXINFO info, HMVXPROP property) {
  if (info == nullptr || property == nullptr) return;
  delete_all_attributes(*from_handle(info), *from_handle(property));
}

int WINAPI MvxGetAttributeValuesCount(HMVXINFO info, HMVXATTR attribute) {
  if (info == nullptr || attribute == nullptr) return 0;
  return static_cast<int>(from_handle(attribute)->value_count());
}

PMVXVALUE WINAPI MvxGetAttributeValue(HMVXINFO info, HMVXATTR attribute, int index) {
  if (info == nullptr || attribute == nullptr) return nullptr;
  const ValueList& values = from_handle(attribute)->values();
  // No object with a destructor is alive here: the raise leaves this frame
  // without running any.
  if (index < 0 || static_cast<size_t>(index) >= values.size()) raise_out_of_range("invalid vector<T> subscript");
  return values[static_cast<size_t>(index)];
}

HMVXPOS WINAPI MvxGetHeadAttributeValue(HMVXINFO info, HMVXATTR attribute) {
  if (info == nullptr || attribute == nullptr) return nullptr;
  return head_value(*from_handle(info), *from_handle(attribute));
}

PMVXVALUE WINAPI MvxGetNextAttributeValue(HMVXINFO info, HMVXPOS* position) {
  if (info == nullptr) return nullptr;
  return next_value(*from_handle(info), position);
}

void WINAPI MvxDeleteAttributeValue(HMVXINFO info, HMVXATTR attribute, int index) {
  if (info == nullptr || attribute == nullptr || index < 0) return;
  delete_value(*from_handle(info), *from_handle(attribute), static_cast<size_t>(index));
}

void WINAPI MvxDeleteAllAttributeValues(HMVXINFO info, HMVXATTR attribute) {
  if (info == nullptr || attribute == nullptr) return;
  delete_all_values(*from_handle(info), *from_handle(attribute));
}

}  // extern "C"
