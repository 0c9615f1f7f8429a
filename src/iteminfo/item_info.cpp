#include "iteminfo/item_info.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <new>

#include "MvSupItemInfo.h"
#include "frame/global_memory.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"

namespace mvsup::iteminfo {

namespace {

// Builds the open item info while the walker validates the block; values
// stay where they are in the block.
class Loader {
 public:
  explicit Loader(ItemInfo& info) : info_(info) {}

  void on_header(uint32_t) noexcept {}

  void on_section(uint16_t marker, uint16_t entry_count) {
    info_.properties = std::make_unique<PropertyMap>();
    info_.custom_properties = std::make_unique<CustomPropertyMap>();
    if (marker != kEntryTableMarker) as_committed_ = false;
    expected_body_ = kEntryTableStart + kTableEntrySize * entry_count;
  }

  // Whether the block of size_field bytes is laid out exactly as a commit of
  // what was loaded would lay it out: every entry kept, in map order, every
  // body unchanged and right after the one before, nothing after the last.
  bool as_committed(uint32_t size_field) const noexcept { return as_committed_ && expected_body_ == size_field; }

  // A key or name that is already present keeps the first entry; the later
  // one is dropped whole, and so is a custom entry without a name.
  bool on_entry(const EntryView& entry) {
    bool inserted = false;
    if (!entry.custom) {
      inserted = insert(*info_.properties, static_cast<int32_t>(entry.key));
    } else if (entry.name != nullptr) {
      std::wstring name(entry.name_units, L'\0');
      if (entry.name_units != 0) std::memcpy(name.data(), entry.name, entry.name_units * sizeof(wchar_t));
      inserted = insert(*info_.custom_properties, std::move(name));
    }
    if (!inserted || entry.body_offset != expected_body_ || (entry.custom && entry.key != kCustomPropertyKey) ||
        (!entry.custom && custom_seen_))
      as_committed_ = false;
    custom_seen_ = custom_seen_ || entry.custom;
    expected_body_ = entry.end_offset;
    if (inserted) {
      property_->item_moved = &info_.moved;
      property_->unchanged_body = entry.body_offset;
      property_->unchanged_length = entry.end_offset - entry.body_offset;
      next_attribute_ = entry.body_offset + kCountSize + kTableEntrySize * entry.attribute_count;
    }
    return inserted;
  }

  bool on_attribute(const EntryView&, const AttributeView& view) {
    // A body stays as it is only while its attributes ascend and follow
    // their table and each other without a gap.
    const int32_t id = static_cast<int32_t>(view.id);
    if (view.body_offset != next_attribute_ || (view.index != 0 && id <= previous_id_)) {
      mark_changed(info_, *property_);
      as_committed_ = false;
    }
    previous_id_ = id;
    next_attribute_ = view.body_offset + kCountSize;
    AttributeMap& attributes = property_->attributes;
    const size_t before = attributes.size();
    const auto it = attributes.try_emplace(attributes.end(), id, property_);
    if (attributes.size() == before) return false;
    attribute_ = &it->second;
    attribute_->values().reserve(view.value_count);
    return true;
  }

  void on_value(const AttributeView&, const ValueView& view) {
    attribute_->values().push_back(const_cast<BYTE*>(view.block));
    next_attribute_ = view.offset + kLengthSize + view.length;
  }

 private:
  template <typename Map, typename Key>
  bool insert(Map& map, Key&& key) {
    const size_t before = map.size();
    // Keys come in ascending order in any block we wrote: the end is the hint.
    const auto it = map.try_emplace(map.end(), std::forward<Key>(key));
    if (map.size() == before) return false;
    if (std::next(it) != map.end()) as_committed_ = false;
    property_ = &it->second;
    return true;
  }

  ItemInfo& info_;
  Property* property_ = nullptr;
  Attribute* attribute_ = nullptr;
  uint32_t next_attribute_ = 0;  // where an unchanged body has its next attribute
  int32_t previous_id_ = 0;
  uint32_t expected_body_ = kHeaderSize;  // where a committed block has its next body
  bool custom_seen_ = false;
  bool as_committed_ = true;
};

bool ranges_overlap(const BYTE* a, size_t a_size, const BYTE* b, size_t b_size) noexcept {
  const auto a_start = reinterpret_cast<uintptr_t>(a);
  const auto b_start = reinterpret_cast<uintptr_t>(b);
  return a_start < b_start + b_size && b_start < a_start + a_size;
}

void store_dos_date_time(BYTE* header, uint32_t date_offset, uint32_t time_offset, const BYTE* data) noexcept {
  // Stored high half first; FILETIME wants the low half first.
  const FILETIME file_time{load_u32(data + 4), load_u32(data)};
  WORD date = 0;
  WORD time = 0;
  // A date outside the DOS range (1980-2107) leaves the fields as carried.
  if (!::FileTimeToDosDateTime(&file_time, &date, &time)) return;
  store_u16(header + date_offset, date);
  store_u16(header + time_offset, time);
}

bool is_content_length_id(uint32_t id) noexcept {
  for (const uint32_t candidate : summary::kContentLengthIds)
    if (candidate == id) return true;
  return false;
}

// The ids that summarise reads, in the order a commit meets them (ascending
// as signed 32-bit: the last size id met wins).
constexpr auto kSummarisedIds = [] {
  std::array<int32_t, 5 + std::size(summary::kContentLengthIds)> ids{
      static_cast<int32_t>(summary::kHandle), static_cast<int32_t>(summary::kOwner),
      static_cast<int32_t>(summary::kCreationDate), static_cast<int32_t>(summary::kLastModified),
      static_cast<int32_t>(summary::kParents)};
  size_t next = 5;
  for (const uint32_t id : summary::kContentLengthIds) ids[next++] = static_cast<int32_t>(id);
  std::sort(ids.begin(), ids.end());
  return ids;
}();

// The header fields that one property's first value gives. A value too
// short for its field leaves the field as carried over.
void summarise(BYTE* header, uint32_t id, const Property& property) noexcept {
  const bool listed = id == summary::kHandle || id == summary::kOwner || id == summary::kCreationDate ||
                      id == summary::kLastModified || id == summary::kParents || is_content_length_id(id);
  if (!listed) return;
  const auto it = property.attributes.find(static_cast<int32_t>(kValuesAttribute));
  if (it == property.attributes.end() || it->second.value_count() == 0) return;
  const BYTE* first = it->second.values().front();
  const uint32_t length = value_length(first);
  const BYTE* data = first + kLengthSize;
  const bool holds_handle = length >= kHandleTitleOffset;
  switch (id) {
    case summary::kHandle:
      if (holds_handle) {
        store_u16(header + header::kItemType, load_u16(data));
        store_u32(header + header::kItemNumber, load_u32(data + kHandleNumberOffset));
      }
      break;
    case summary::kOwner:
      if (holds_handle) store_u32(header + header::kOwnerNumber, load_u32(data + kHandleNumberOffset));
      break;
    case summary::kCreationDate:
      if (length >= 8) store_dos_date_time(header, header::kCreatedDate, header::kCreatedTime, data);
      break;
    case summary::kLastModified:
      if (length >= 8) store_dos_date_time(header, header::kModifiedDate, header::kModifiedTime, data);
      break;
    case summary::kParents:
      // The first parent recorded survives later changes of the parents.
      if (holds_handle && load_u32(header + header::kFirstParent) == 0)
        store_u32(header + header::kFirstParent, load_u32(data + kHandleNumberOffset));
      store_u32(header + header::kParentCount, static_cast<uint16_t>(it->second.value_count()));
      break;
    default:  // the content-length ids: the last one committed wins
      if (length >= 4) store_u32(header + header::kContentSize, load_u32(data));
      break;
  }
}

// Writes one entry body at out and returns its end. Each value is copied
// whole, its reference moved onto the copy, and the old block freed unless
// it lay inside the old buffer. Values that follow each other in the old
// buffer (as those of an unchanged attribute do) are copied as one run.
BYTE* write_body(Property& property, BYTE* out, const BYTE* old_buffer, uint32_t old_size) noexcept {
  store_u16(out, static_cast<uint16_t>(property.attributes.size()));
  BYTE* const table = out + kCountSize;
  BYTE* slot = table;
  BYTE* body = table + kTableEntrySize * property.attributes.size();
  for (auto& [id, attribute] : property.attributes) {
    store_u32(slot, static_cast<uint32_t>(id));
    store_u32(slot + 4, static_cast<uint32_t>(body - table));
    slot += kTableEntrySize;
    ValueList& values = attribute.values();
    store_u16(body, static_cast<uint16_t>(values.size()));
    body += kCountSize;
    const BYTE* run = nullptr;
    size_t run_bytes = 0;
    BYTE* run_target = body;
    for (BYTE*& value : values) {
      const uint32_t bytes = value_cost(value);
      if (lies_inside(old_buffer, old_size, value)) {
        if (value != run + run_bytes || body != run_target + run_bytes) {
          if (run_bytes != 0) std::memcpy(run_target, run, run_bytes);
          run = value;
          run_bytes = 0;
          run_target = body;
        }
        run_bytes += bytes;
      } else {
        std::memcpy(body, value, bytes);
        free_value_block(value);
      }
      value = body;
      body += bytes;
    }
    if (run_bytes != 0) std::memcpy(run_target, run, run_bytes);
  }
  return body;
}

// Writes one property's body at out and returns its end. A body that is
// still unchanged in the old buffer is copied whole; its values' references
// follow it by the property's shift, applied when they are next looked at.
BYTE* commit_property(Property& property, BYTE* destination, BYTE* out, const BYTE* old_buffer,
                      uint32_t old_size) noexcept {
  BYTE* end;
  const uint64_t kept_end = uint64_t{property.unchanged_body} + property.unchanged_length;
  if (property.unchanged_body != 0 && old_buffer != nullptr && kept_end <= old_size) {
    const BYTE* source = old_buffer + property.unchanged_body;
    std::memcpy(out, source, property.unchanged_length);
    property.shift += reinterpret_cast<uintptr_t>(out) - reinterpret_cast<uintptr_t>(source);
    end = out + property.unchanged_length;
  } else {
    end = write_body(property, out, old_buffer, old_size);
  }
  property.unchanged_body = static_cast<uint32_t>(out - destination);
  property.unchanged_length = static_cast<uint32_t>(end - out);
  return end;
}

}  // namespace

ItemInfo* open_item_info(BYTE* block, Fault* fault) noexcept {
  try {
    auto info = std::make_unique<ItemInfo>();
    info->buffer = block;
    if (block == nullptr) return info.release();
    Loader loader(*info);
    const uint32_t size_field = load_u32(block);
    if (const std::optional<Fault> found = walk_committed(block, loader)) {
      trace::line(L"MvxOpen: item info %p does not hold together at offset %u: %hs\n", static_cast<void*>(block),
                  static_cast<unsigned>(found->offset), found->reason);
      if (fault != nullptr) *fault = *found;
      return nullptr;
    }
    // A size field of 40 or less is an empty item info, committed as 40 bytes.
    info->commit_size = std::max(size_field, kHeaderSize);
    info->buffer_current = loader.as_committed(size_field);
    return info.release();
  } catch (...) {
    return nullptr;
  }
}

uint32_t commit_item_info(ItemInfo& info, BYTE* destination) noexcept {
  BYTE* const old_buffer = info.buffer;
  const uint32_t old_size = buffer_size(info);
  if (old_buffer != nullptr && ranges_overlap(destination, info.commit_size, old_buffer, old_size)) return 0;

  if (old_buffer != nullptr && info.buffer_current && old_size <= info.commit_size) {
    std::memcpy(destination, old_buffer, old_size);
    info.moved += reinterpret_cast<uintptr_t>(destination) - reinterpret_cast<uintptr_t>(old_buffer);
    info.buffer = destination;
    if (info.properties)
      for (const int32_t id : kSummarisedIds)
        if (const auto it = info.properties->find(id); it != info.properties->end())
          summarise(destination, static_cast<uint32_t>(id), it->second);
    return old_size;
  }

  // The header is carried over as far as the old size field reaches (it is
  // shorter than the header only in an empty item info); the rest is zero.
  const uint32_t carried = std::min(old_size, kHeaderSize);
  if (carried != 0) std::memcpy(destination, old_buffer, carried);
  std::memset(destination + carried, 0, kHeaderSize - carried);

  if (!info.properties && !info.custom_properties) {
    info.buffer = destination;
    info.buffer_current = true;
    store_u32(destination + header::kSize, kHeaderSize);
    return kHeaderSize;
  }

  const size_t ids = info.properties ? info.properties->size() : 0;
  const size_t names = info.custom_properties ? info.custom_properties->size() : 0;
  store_u16(destination + kSectionStart, kEntryTableMarker);
  store_u16(destination + kSectionStart + 2, static_cast<uint16_t>(ids + names));
  BYTE* const table = destination + kEntryTableStart;
  BYTE* slot = table;
  BYTE* out = table + kTableEntrySize * (ids + names);
  if (info.properties) {
    for (auto& [id, property] : *info.properties) {
      store_u32(slot, static_cast<uint32_t>(id));
      store_u32(slot + 4, static_cast<uint32_t>(out - table));
      slot += kTableEntrySize;
      out = commit_property(property, destination, out, old_buffer, old_size);
      summarise(destination, static_cast<uint32_t>(id), property);
    }
  }
  if (info.custom_properties) {
    for (auto& [name, property] : *info.custom_properties) {
      store_u32(slot, kCustomPropertyKey);
      store_u32(slot + 4, static_cast<uint32_t>(out - table));
      slot += kTableEntrySize;
      out = commit_property(property, destination, out, old_buffer, old_size);
    }
  }
  const auto total = static_cast<uint32_t>(out - destination);
  info.buffer = destination;
  info.buffer_current = true;
  store_u32(destination + header::kSize, total);
  return total;
}

BYTE* allocate_committed(uint32_t size, const BYTE* source) noexcept {
  if (size > UINT32_MAX - 4) return nullptr;
  auto* block = static_cast<BYTE*>(global_alloc_output(GMEM_FIXED | GMEM_ZEROINIT, size_t{size} + 4));
  if (block == nullptr) return nullptr;
  if (source != nullptr)
    std::memcpy(block, source, size);
  else
    store_u32(block + header::kSize, size);
  return block;
}

HRESULT update_item_info(ItemInfo& info, BYTE** committed) noexcept {
  unique_hglobal block(global_alloc_output(GMEM_FIXED | GMEM_ZEROINIT, info.commit_size));
  if (!block) return E_OUTOFMEMORY;
  if (commit_item_info(info, static_cast<BYTE*>(block.get())) == 0) return E_FAIL;
  if (*committed != nullptr) ::GlobalFree(*committed);
  *committed = static_cast<BYTE*>(block.release());
  return S_OK;
}

void close_item_info(ItemInfo* info) noexcept {
  const std::unique_ptr<ItemInfo> owned(info);
  // Without a buffer there is no telling which blocks are the caller's: an
  // item info that never had one leaves its value blocks alone.
  if (info == nullptr || info->buffer == nullptr) return;
  // A buffer that is still what a commit would write holds every value.
  if (info->buffer_current) return;
  const uint32_t size = buffer_size(*info);
  const auto release = [&](Property& property) {
    for (auto& [id, attribute] : property.attributes)
      for (BYTE* block : attribute.values())
        if (!lies_inside(info->buffer, size, block)) free_value_block(block);
  };
  if (info->properties)
    for (auto& [id, property] : *info->properties) release(property);
  if (info->custom_properties)
    for (auto& [name, property] : *info->custom_properties) release(property);
}

}  // namespace mvsup::iteminfo

using namespace mvsup;
using namespace mvsup::iteminfo;

extern "C" {

HRESULT WINAPI MvxCreateItemInfo(BYTE** itemInfo) {
  trace::CallScope scope("MvxCreateItemInfo");
  if (itemInfo == nullptr) return scope.hr(E_POINTER);
  BYTE* block = allocate_committed(kHeaderSize, nullptr);
  if (block == nullptr) return scope.hr(E_OUTOFMEMORY);
  *itemInfo = block;
  return scope.hr(S_OK);
}

HRESULT WINAPI MvxCopyItemInfo(const BYTE* itemInfo, BYTE** copy) {
  trace::CallScope scope("MvxCopyItemInfo", reinterpret_cast<uintptr_t>(itemInfo));
  if (itemInfo == nullptr || copy == nullptr) return scope.hr(E_POINTER);
  const uint32_t size = load_u32(itemInfo);
  if (size < kHeaderSize) return scope.hr(E_INVALIDARG);
  BYTE* block = allocate_committed(size, itemInfo);
  if (block == nullptr) return scope.hr(E_OUTOFMEMORY);
  *copy = block;
  return scope.hr(S_OK);
}

HGLOBAL WINAPI FreeMvxInfo(BYTE* itemInfo) {
  trace::CallScope scope("FreeMvxInfo", reinterpret_cast<uintptr_t>(itemInfo));
  const HGLOBAL result = ::GlobalFree(itemInfo);
  scope.res(reinterpret_cast<intptr_t>(result));
  return result;
}

HMVXINFO WINAPI MvxOpen(BYTE* itemInfo) {
  trace::CallScope scope("MvxOpen", reinterpret_cast<uintptr_t>(itemInfo));
  const HMVXINFO info = to_handle(open_item_info(itemInfo));
  scope.res(reinterpret_cast<intptr_t>(info));
  return info;
}

void WINAPI MvxClose(HMVXINFO info) {
  trace::CallScope scope("MvxClose", reinterpret_cast<uintptr_t>(info));
  close_item_info(from_handle(info));
}

DWORD WINAPI MvxGetCommitSpace(HMVXINFO info) { return info ? from_handle(info)->commit_size : 0; }

DWORD WINAPI MvxCommit(HMVXINFO info, BYTE* destination) {
  trace::CallScope scope("MvxCommit", reinterpret_cast<uintptr_t>(info));
  if (info == nullptr || destination == nullptr) return scope.res(0);
  return scope.res(commit_item_info(*from_handle(info), destination));
}

HRESULT WINAPI MvxUpdateItemInfo(HMVXINFO info, BYTE** itemInfo) {
  trace::CallScope scope("MvxUpdateItemInfo", reinterpret_cast<uintptr_t>(info));
  if (info == nullptr) return scope.hr(S_OK);
  if (itemInfo == nullptr) return scope.hr(E_POINTER);
  return scope.hr(update_item_info(*from_handle(info), itemInfo));
}

}  // extern "C"
