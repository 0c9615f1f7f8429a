#include "types/item_types.h"

#include <climits>

#include "MvSupTypes.h"
#include "frame/library_state.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "types/client_item.h"
#include "types/custom_types.h"

namespace mvsup::types {

namespace {

constexpr bool table_is_indexed_by_type() {
  for (size_t i = 0; i < std::size(kBuiltinTypes); ++i)
    if (kBuiltinTypes[i].type != static_cast<ItemType>(i)) return false;
  return std::size(kBuiltinTypes) == kLastBuiltin + 1;
}
static_assert(table_is_indexed_by_type(), "kBuiltinTypes[t] describes type t");

struct TypeWord {
  std::wstring_view word;
  ItemType type;
  // Matched as a plain prefix, without looking at the character after it.
  bool plain_prefix = false;
};

// The order decides: "BulletinBoard" before "Bulletin"; "ContElem" is a
// plain prefix, so "ContElement-5" is a content element, as servers have
// always sent it.
constexpr TypeWord kParseOrder[] = {
    {L"File", 3},           {L"Document", 3},     {L"Collection", 2},  {L"Server", 1},
    {L"Calendar", 5},       {L"BulletinBoard", 6}, {L"Bulletin", 8},   {L"URL", 7},
    {L"SavedQuery", 9},     {L"Event", 10},       {L"User", 14},       {L"Group", 15},
    {L"MVClient", 0},       {L"Rendition", 11},   {L"Version", 12},    {L"Subscription", 13},
    {L"Object", 17},        {L"ContElem", 18, true}, {L"MailMessage", 19}, {L"Workspace", 20},
    {L"Wiki", 21},          {L"Weblog", 22},
};

bool matches(std::wstring_view text, const TypeWord& candidate) noexcept {
  if (!text::starts_with_ignore_case(text, candidate.word)) return false;
  if (candidate.plain_prefix || text.size() == candidate.word.size()) return true;
  return text[candidate.word.size()] == L'-';
}

bool is_c_space(wchar_t c) noexcept { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

}  // namespace

const BuiltinType* builtin(ItemType type) noexcept {
  if (type < 0 || type > kLastBuiltin) return nullptr;
  return &kBuiltinTypes[type];
}

std::wstring type_word(ItemType type, bool http) noexcept {
  try {
    if (const BuiltinType* entry = builtin(type); entry && !entry->word.empty()) {
      if (type == kFile) return std::wstring(http ? kHttpFileWord : frame::document_class_word());
      return std::wstring(entry->word);
    }
    return custom::word_from_type(type);
  } catch (...) {
    return {};
  }
}

LONG object_type_from_item_type(ItemType type) noexcept {
  if (const BuiltinType* entry = builtin(type)) return entry->object_type;
  // Custom types keep their number in both numberings.
  return type >= kFirstCustom ? type : kNoObjectType;
}

ItemType item_type_from_object_type(LONG object_type) noexcept {
  if (object_type >= kFirstCustom) return object_type;
  if (object_type < 0) return kNoObjectType;
  // The first entry wins: object type 0 is a document (3), not type 4.
  for (const BuiltinType& entry : kBuiltinTypes)
    if (entry.object_type == object_type) return entry.type;
  return kNoObjectType;
}

int load_string(UINT id, wchar_t* buffer, int capacity) noexcept {
  if (buffer == nullptr || capacity < 1) return 0;
  buffer[0] = L'\0';
  int length = ::LoadStringW(frame::resource_module(), id, buffer, capacity);
  // A satellite from an older release may lack a newer string.
  if (length <= 0 && frame::resource_module() != frame::own_module())
    length = ::LoadStringW(frame::own_module(), id, buffer, capacity);
  if (length <= 0) {
    buffer[0] = L'\0';
    return 0;
  }
  return length;
}

int display_string(ItemType type, wchar_t* buffer, int capacity) noexcept {
  if (buffer == nullptr || capacity < 1) return 0;
  if (const BuiltinType* entry = builtin(type); entry && entry->display_id != 0) {
    load_string(entry->display_id, buffer, capacity);
    return 1;
  }
  const std::wstring custom_text = custom::display_from_type(type);
  if (!custom_text.empty()) {
    text::copy_truncated(buffer, static_cast<size_t>(capacity), custom_text);
    return 1;
  }
  load_string(kUnknownDisplayId, buffer, capacity);
  return 0;
}

ItemType type_from_string(std::wstring_view text) noexcept {
  for (const TypeWord& candidate : kParseOrder)
    if (matches(text, candidate)) return candidate.type;
  return custom::type_from_word(text);
}

long leading_decimal(std::wstring_view text) noexcept {
  size_t i = 0;
  while (i < text.size() && is_c_space(text[i])) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == L'+' || text[i] == L'-')) negative = text[i++] == L'-';
  long long value = 0;
  constexpr long long kLimit = static_cast<long long>(LONG_MAX) + 1;
  for (; i < text.size() && text[i] >= L'0' && text[i] <= L'9'; ++i)
    if (value <= kLimit) value = value * 10 + (text[i] - L'0');
  if (negative) value = -value;
  if (value > LONG_MAX) return LONG_MAX;
  if (value < LONG_MIN) return LONG_MIN;
  return static_cast<long>(value);
}

Handle parse_handle(std::wstring_view text) noexcept {
  Handle handle{type_from_string(text), 0};
  if (const size_t dash = text.find(L'-'); dash != std::wstring_view::npos)
    handle.number = leading_decimal(text.substr(dash + 1));
  return handle;
}

int compare_type(std::wstring_view text, ItemType type) noexcept {
  constexpr size_t kMaxWordLength = 96;
  const std::wstring_view word = text.substr(0, text.find(L'-'));
  if (word.size() >= kMaxWordLength) return -1;
  const int order = word.compare(type_word(type));
  return order < 0 ? -1 : order > 0 ? 1 : 0;
}

ItemType parent_type(ItemType type, LONG context1, LONG context2, IUnknown* object) noexcept {
  if (const BuiltinType* entry = builtin(type)) {
    switch (entry->deciding) {
      case ParentContext::First:
        return context1 != 0 ? entry->parent_if_context : entry->parent;
      case ParentContext::Second:
        return context2 != 0 ? entry->parent_if_context : entry->parent;
      case ParentContext::None:
        break;
    }
    return entry->parent;
  }
  // Custom classes all live in collections; the class is only looked at for
  // the trace.
  if (type >= kFirstCustom && object != nullptr) {
    const std::wstring class_text = client_item::class_string(object);
    trace::line(L"GetMvxParentItemType: ItemType=%ld, Class=%ls\n", static_cast<long>(type), class_text.c_str());
  }
  return kCollection;
}

}  // namespace mvsup::types

using namespace mvsup;

namespace {

// One static buffer per family of the functions without TS.
wchar_t g_word_buffer[80];
char g_word_buffer_narrow[80];
wchar_t g_parent_buffer[96];

LPWSTR copy_out(LPWSTR buffer, int capacity, std::wstring_view text) noexcept {
  if (buffer != nullptr && capacity > 0) text::copy_truncated(buffer, static_cast<size_t>(capacity), text);
  return buffer;
}

// Constant text for the built-in words, the shared buffer for the others.
LPCWSTR word_for_caller(types::ItemType type, bool http) noexcept {
  if (const types::BuiltinType* entry = types::builtin(type); entry && !entry->word.empty()) {
    if (type == types::kFile) return http ? types::kHttpFileWord.data() : frame::document_class_word();
    return entry->word.data();
  }
  return copy_out(g_word_buffer, static_cast<int>(std::size(g_word_buffer)), types::type_word(type, http));
}

}  // namespace

extern "C" {

LPWSTR WINAPI GetMvxItemTypeAsStringTS(MVXITEMTYPE type, LPWSTR buffer, int capacity) {
  trace::CallScope scope("GetMvxItemTypeAsStringTS");
  return copy_out(buffer, capacity, types::type_word(type));
}

LPCWSTR WINAPI GetMvxItemTypeAsString(MVXITEMTYPE type) {
  trace::CallScope scope("GetMvxItemTypeAsString");
  return word_for_caller(type, false);
}

LPCSTR WINAPI GetMvxItemTypeAsStringA(MVXITEMTYPE type) {
  trace::CallScope scope("GetMvxItemTypeAsStringA");
  try {
    text::copy_narrow_truncated(g_word_buffer_narrow, std::size(g_word_buffer_narrow), types::type_word(type));
  } catch (...) {
    g_word_buffer_narrow[0] = '\0';
  }
  return g_word_buffer_narrow;
}

LPWSTR WINAPI GetMvxItemTypeAsHttpStringTS(MVXITEMTYPE type, LPWSTR buffer, int capacity) {
  trace::CallScope scope("GetMvxItemTypeAsHttpStringTS");
  return copy_out(buffer, capacity, types::type_word(type, true));
}

LPCWSTR WINAPI GetMvxItemTypeAsHttpString(MVXITEMTYPE type) {
  trace::CallScope scope("GetMvxItemTypeAsHttpString");
  return word_for_caller(type, true);
}

LPWSTR WINAPI GetMvxObjTypeAsStringTS(LONG objType, LPWSTR buffer, int capacity) {
  trace::CallScope scope("GetMvxObjTypeAsStringTS");
  return copy_out(buffer, capacity, types::type_word(types::item_type_from_object_type(objType)));
}

LPCWSTR WINAPI GetMvxObjTypeAsString(LONG objType) {
  trace::CallScope scope("GetMvxObjTypeAsString");
  return word_for_caller(types::item_type_from_object_type(objType), false);
}

int WINAPI GetMvxItemTypeAsDisplayString(MVXITEMTYPE type, LPWSTR buffer, int capacity) {
  trace::CallScope scope("GetMvxItemTypeAsDisplayString");
  return scope.res(types::display_string(type, buffer, capacity));
}

LONG WINAPI GetMvxObjTypeFromItemType(MVXITEMTYPE type) { return types::object_type_from_item_type(type); }

MVXITEMTYPE WINAPI GetMvxItemTypeFromObjType(LONG objType) { return types::item_type_from_object_type(objType); }

MVXITEMTYPE WINAPI GetMvxItemTypeFromString(LPCWSTR text) {
  trace::CallScope scope("GetMvxItemTypeFromString");
  if (text == nullptr) return scope.res(types::kUnknown);
  return scope.res(types::type_from_string(text));
}

MVXITEMTYPE WINAPI GetMvxItemHandleFromString(LPCWSTR text, long* number) {
  trace::CallScope scope("GetMvxItemHandleFromString");
  const types::Handle handle = types::parse_handle(text::view_or_empty(text));
  if (number != nullptr) *number = handle.number;
  return scope.res(handle.type);
}

MVXITEMTYPE WINAPI GetMvxItemTypeFromStringA(LPCSTR text) {
  trace::CallScope scope("GetMvxItemTypeFromStringA");
  try {
    return scope.res(types::type_from_string(text::to_wide(text::view_or_empty(text))));
  } catch (...) {
    return scope.res(types::kUnknown);
  }
}

MVXITEMTYPE WINAPI GetMvxItemHandleFromStringA(LPCSTR text, long* number) {
  trace::CallScope scope("GetMvxItemHandleFromStringA");
  types::Handle handle{types::kUnknown, 0};
  try {
    handle = types::parse_handle(text::to_wide(text::view_or_empty(text)));
  } catch (...) {
  }
  if (number != nullptr) *number = handle.number;
  return scope.res(handle.type);
}

int WINAPI CompareMvxItemType(LPCWSTR text, MVXITEMTYPE type) {
  trace::CallScope scope("CompareMvxItemType");
  return scope.res(types::compare_type(text::view_or_empty(text), type));
}

MVXITEMTYPE WINAPI GetMvxParentItemType(MVXITEMTYPE type, LONG context1, LONG context2, LONG, IUnknown* object) {
  trace::CallScope scope("GetMvxParentItemType");
  return scope.res(types::parent_type(type, context1, context2, object));
}

// The string forms pass their second and third context values exchanged.
LPWSTR WINAPI GetMvxParentItemTypeAsStringTS(LPWSTR buffer, int capacity, MVXITEMTYPE type, LONG x1, LONG, LONG x3,
                                             IUnknown* object) {
  trace::CallScope scope("GetMvxParentItemTypeAsStringTS");
  return copy_out(buffer, capacity, types::type_word(types::parent_type(type, x1, x3, object)));
}

LPCWSTR WINAPI GetMvxParentItemTypeAsString(MVXITEMTYPE type, LONG x1, LONG, LONG x3, IUnknown* object) {
  trace::CallScope scope("GetMvxParentItemTypeAsString");
  return copy_out(g_parent_buffer, static_cast<int>(std::size(g_parent_buffer)),
                  types::type_word(types::parent_type(type, x1, x3, object)));
}

LPWSTR WINAPI GetMvxParentObjTypeAsStringTS(LPWSTR buffer, int capacity, LONG objType, LONG x1, LONG, LONG x3,
                                            IUnknown* object) {
  trace::CallScope scope("GetMvxParentObjTypeAsStringTS");
  const types::ItemType type = types::item_type_from_object_type(objType);
  return copy_out(buffer, capacity, types::type_word(types::parent_type(type, x1, x3, object)));
}

LPCWSTR WINAPI GetMvxParentObjTypeAsString(LONG objType, LONG x1, LONG, LONG x3, IUnknown* object) {
  trace::CallScope scope("GetMvxParentObjTypeAsString");
  const types::ItemType type = types::item_type_from_object_type(objType);
  return copy_out(g_parent_buffer, static_cast<int>(std::size(g_parent_buffer)),
                  types::type_word(types::parent_type(type, x1, x3, object)));
}

}  // extern "C"
