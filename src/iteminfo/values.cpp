// Values of every kind: appending, reading in place, replacing; and the
// display-name reader of a committed item info.
#include "MvSupItemInfo.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "iteminfo/item_info.h"

namespace mvsup::iteminfo {

namespace {

template <typename Encoding>
PMVXVALUE add(HMVXINFO info, HMVXATTR attribute, const Encoding& value) noexcept {
  if (info == nullptr || attribute == nullptr) return nullptr;
  return add_value(*from_handle(info), *from_handle(attribute), value);
}

template <typename Encoding>
PMVXVALUE replace(HMVXINFO info, HMVXATTR attribute, int index, const Encoding& value) noexcept {
  if (info == nullptr || attribute == nullptr || index < 0) return nullptr;
  return replace_value(*from_handle(info), *from_handle(attribute), static_cast<size_t>(index), value);
}

// The data bytes from `offset` on when `bytes` of them lie inside the
// value's length; otherwise null.
BYTE* field(PMVXVALUE value, uint64_t offset, uint64_t bytes) noexcept {
  return offset + bytes <= value_length(value) ? value_data(value) + offset : nullptr;
}

template <typename T>
void put(T** out, void* pointer) noexcept {
  if (out != nullptr) *out = static_cast<T*>(pointer);
}

// The string at data offset `offset` when its terminator lies inside the
// value, with the offset just past that terminator.
struct TerminatedText {
  BYTE* text = nullptr;
  uint64_t end = 0;
};
TerminatedText text_at(PMVXVALUE value, uint64_t offset) noexcept {
  const uint32_t length = value_length(value);
  if (offset > length) return {};
  const std::optional<size_t> units = terminated_units(value_data(value) + offset, length - offset);
  if (!units) return {};
  return {value_data(value) + offset, offset + (*units + 1) * sizeof(wchar_t)};
}

// Finds the first value of the first attribute 16 of the first property 2,
// validating the whole block on the way.
struct TitleFinder {
  bool entry_seen = false;
  bool attribute_seen = false;
  const BYTE* value = nullptr;

  void on_header(uint32_t) noexcept {}
  void on_section(uint16_t, uint16_t) noexcept {}
  bool on_entry(const EntryView& entry) noexcept {
    if (entry_seen || entry.custom || entry.key != summary::kTitle) return false;
    entry_seen = true;
    return true;
  }
  bool on_attribute(const EntryView&, const AttributeView& attribute) noexcept {
    if (attribute_seen || attribute.id != kValuesAttribute) return false;
    attribute_seen = true;
    return true;
  }
  void on_value(const AttributeView&, const ValueView& view) noexcept {
    if (view.index == 0) value = view.block;
  }
};

}  // namespace

}  // namespace mvsup::iteminfo

using namespace mvsup;
using namespace mvsup::iteminfo;

extern "C" {

PMVXVALUE WINAPI MvxAddString(HMVXINFO info, HMVXATTR attribute, LPCWSTR text) {
  return add(info, attribute, encoding::String{text::view_or_empty(text)});
}

PMVXVALUE WINAPI MvxAddInteger(HMVXINFO info, HMVXATTR attribute, LONG value) {
  return add(info, attribute, encoding::Word{static_cast<uint32_t>(value)});
}

PMVXVALUE WINAPI MvxAddPropertyType(HMVXINFO info, HMVXATTR attribute, DWORD type) {
  return add(info, attribute, encoding::Word{type});
}

PMVXVALUE WINAPI MvxAddFloat(HMVXINFO info, HMVXATTR attribute, DWORD low, DWORD high) {
  return add(info, attribute, encoding::WordPair{low, high});
}

PMVXVALUE WINAPI MvxAddDateTime(HMVXINFO info, HMVXATTR attribute, DWORD high, DWORD low) {
  return add(info, attribute, encoding::WordPair{high, low});
}

PMVXVALUE WINAPI MvxAddBinary(HMVXINFO info, HMVXATTR attribute, const void* data, DWORD size) {
  if (data == nullptr && size != 0) return nullptr;
  return add(info, attribute, encoding::Binary{data, size});
}

PMVXVALUE WINAPI MvxAddMvHandle(HMVXINFO info, HMVXATTR attribute, MVXITEMTYPE type, DWORD number,
                                LPCWSTR title) {
  return add(info, attribute,
             encoding::Handle{static_cast<uint16_t>(type), number, text::view_or_empty(title)});
}

PMVXVALUE WINAPI MvxAddACE(HMVXINFO info, HMVXATTR attribute, MVXITEMTYPE principalType, DWORD principalNumber,
                           LPCWSTR principalName, DWORD access) {
  return add(info, attribute,
             encoding::AccessControlEntry{static_cast<uint16_t>(principalType), principalNumber,
                                          text::view_or_empty(principalName), access});
}

DWORD WINAPI MvxGetString(HMVXINFO info, PMVXVALUE value, LPWSTR* text) {
  if (info == nullptr || value == nullptr) {
    put(text, nullptr);
    return 0;
  }
  put(text, field(value, 0, sizeof(wchar_t)));
  return value_length(value);
}

void WINAPI MvxGetInteger(HMVXINFO info, PMVXVALUE value, LONG UNALIGNED** data) {
  put(data, info && value ? field(value, 0, 4) : nullptr);
}

void WINAPI MvxGetPropertyType(HMVXINFO info, PMVXVALUE value, DWORD UNALIGNED** data) {
  put(data, info && value ? field(value, 0, 4) : nullptr);
}

void WINAPI MvxGetFloat(HMVXINFO info, PMVXVALUE value, double UNALIGNED** data) {
  put(data, info && value ? field(value, 0, 8) : nullptr);
}

void WINAPI MvxGetDateTime(HMVXINFO info, PMVXVALUE value, DWORD UNALIGNED** high, DWORD UNALIGNED** low) {
  const bool valid = info != nullptr && value != nullptr;
  put(high, valid ? field(value, 0, 4) : nullptr);
  put(low, valid ? field(value, 4, 4) : nullptr);
}

BYTE* WINAPI MvxGetDateTimePacked(HMVXINFO info, PMVXVALUE value, BYTE** data) {
  BYTE* packed = info && value ? field(value, 0, 8) : nullptr;
  put(data, packed);
  return packed;
}

void WINAPI MvxGetBinary(HMVXINFO info, PMVXVALUE value, BYTE** data, DWORD* size) {
  const bool valid = info != nullptr && value != nullptr;
  put(data, valid ? value_data(value) : nullptr);
  if (size != nullptr) *size = valid ? value_length(value) : 0;
}

void WINAPI MvxGetMvHandle(HMVXINFO info, PMVXVALUE value, WORD UNALIGNED** type, DWORD UNALIGNED** number,
                           LPWSTR* title) {
  const bool valid = info != nullptr && value != nullptr;
  put(type, valid ? field(value, 0, 2) : nullptr);
  put(number, valid ? field(value, kHandleNumberOffset, 4) : nullptr);
  put(title, valid ? text_at(value, kHandleTitleOffset).text : nullptr);
}

void WINAPI MvxGetACE(HMVXINFO info, PMVXVALUE value, WORD UNALIGNED** principalType,
                      DWORD UNALIGNED** principalNumber, LPWSTR* principalName, DWORD UNALIGNED** access) {
  const bool valid = info != nullptr && value != nullptr;
  put(principalType, valid ? field(value, 0, 2) : nullptr);
  put(principalNumber, valid ? field(value, kHandleNumberOffset, 4) : nullptr);
  TerminatedText name;
  BYTE* access_field = nullptr;
  if (valid) {
    name = text_at(value, kHandleTitleOffset);
    if (name.text != nullptr) access_field = field(value, name.end, 4);
  }
  put(principalName, access_field ? name.text : nullptr);
  put(access, access_field);
}

PMVXVALUE WINAPI MvxReplaceInteger(HMVXINFO info, HMVXATTR attribute, int index, LONG value) {
  return replace(info, attribute, index, encoding::Word{static_cast<uint32_t>(value)});
}

PMVXVALUE WINAPI MvxReplaceFloat(HMVXINFO info, HMVXATTR attribute, int index, DWORD low, DWORD high) {
  return replace(info, attribute, index, encoding::WordPair{low, high});
}

PMVXVALUE WINAPI MvxReplaceDateTime(HMVXINFO info, HMVXATTR attribute, int index, DWORD high, DWORD low) {
  return replace(info, attribute, index, encoding::WordPair{high, low});
}

PMVXVALUE WINAPI MvxReplaceString(HMVXINFO info, HMVXATTR attribute, int index, LPCWSTR text) {
  return replace(info, attribute, index, encoding::String{text::view_or_empty(text)});
}

PMVXVALUE WINAPI MvxReplaceBinary(HMVXINFO info, HMVXATTR attribute, int index, const void* data, DWORD size) {
  if (data == nullptr && size != 0) return nullptr;
  return replace(info, attribute, index, encoding::Binary{data, size});
}

PMVXVALUE WINAPI MvxReplaceMvHandle(HMVXINFO info, HMVXATTR attribute, int index, MVXITEMTYPE type,
                                    DWORD number, LPCWSTR title) {
  return replace(info, attribute, index,
                 encoding::Handle{static_cast<uint16_t>(type), number, text::view_or_empty(title)});
}

LPWSTR WINAPI MvxFindTitleValue(BYTE* itemInfo) {
  trace::CallScope scope("MvxFindTitleValue", reinterpret_cast<uintptr_t>(itemInfo));
  if (itemInfo == nullptr) return nullptr;
  TitleFinder finder;
  if (const std::optional<Fault> fault = walk_committed(itemInfo, finder)) {
    trace::line(L"MvxFindTitleValue: item info %p does not hold together at offset %u: %hs\n",
                static_cast<void*>(itemInfo), static_cast<unsigned>(fault->offset), fault->reason);
    return nullptr;
  }
  if (finder.value == nullptr) return nullptr;
  BYTE* value = const_cast<BYTE*>(finder.value);
  auto* title = reinterpret_cast<LPWSTR>(text_at(value, 0).text);
  scope.res(reinterpret_cast<intptr_t>(title));
  return title;
}

}  // extern "C"
