// mvsup item: committed item info blocks - dump one for a person to read,
// write an empty one; "make" and "get" live in their own files.
#include <windows.h>

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <cwchar>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "command.h"
#include "frame/text.h"
#include "frame/win32_handles.h"
#include "iteminfo/block_format.h"
#include "iteminfo/value_kinds.h"
#include "item_commands.h"
#include "output.h"

namespace mvsup::tool {

PropertyName resolve_property(const std::wstring& text, bool accept_ids) {
  if (accept_ids && !text.empty() && text[0] >= L'0' && text[0] <= L'9') {
    wchar_t* end = nullptr;
    const unsigned long id = std::wcstoul(text.c_str(), &end, 0);
    if (end != nullptr && *end == L'\0' && id != 0) return {static_cast<DWORD>(id), text};
  }
  return {PropIdFromPropertyName(text.c_str()), text};
}

std::wstring item_type_word(LONG type) {
  wchar_t word[400];
  return GetMvxItemTypeAsStringTS(type, word, 400);
}

namespace {

namespace ii = mvsup::iteminfo;

std::optional<std::vector<BYTE>> read_file(const std::wstring& path, std::wstring* error) {
  unique_file file(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
  LARGE_INTEGER size{};
  if (!file || !::GetFileSizeEx(file.get(), &size)) {
    *error = text::format(L"cannot open %ls (error %lu)", path.c_str(), ::GetLastError());
    return std::nullopt;
  }
  if (size.QuadPart > MAXDWORD) {
    *error = path + L": larger than any item info (4 GiB)";
    return std::nullopt;
  }
  std::vector<BYTE> bytes(static_cast<size_t>(size.QuadPart));
  DWORD read = 0;
  if (!bytes.empty() && (!::ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr) ||
                         read != bytes.size())) {
    *error = text::format(L"cannot read %ls (error %lu)", path.c_str(), ::GetLastError());
    return std::nullopt;
  }
  return bytes;
}

// ---- The block as read -------------------------------------------------------

struct ValueRecord {
  ii::ValueView view;
};

struct AttributeRecord {
  ii::AttributeView view;
  std::vector<ValueRecord> values;
};

struct EntryRecord {
  ii::EntryView view;
  std::wstring name;
  const char* dropped = nullptr;  // why opening leaves it out
  std::vector<AttributeRecord> attributes;
};

struct Block {
  uint32_t size = 0;
  bool has_section = false;
  uint16_t marker = 0;
  uint16_t entry_count = 0;
  std::vector<EntryRecord> entries;
};

// Records everything, and marks what the library drops on opening.
class Recorder {
 public:
  explicit Recorder(Block& block) : block_(block) {}
  void on_header(uint32_t size) { block_.size = size; }
  void on_section(uint16_t marker, uint16_t count) {
    block_.has_section = true;
    block_.marker = marker;
    block_.entry_count = count;
  }
  bool on_entry(const ii::EntryView& view) {
    EntryRecord entry{view, {}, nullptr, {}};
    if (view.custom) {
      if (view.name == nullptr) {
        entry.dropped = "custom entry without a name";
      } else {
        entry.name.resize(view.name_units);
        std::memcpy(entry.name.data(), view.name, view.name_units * sizeof(wchar_t));
        if (!names_.insert(entry.name).second) entry.dropped = "name already present";
      }
    } else if (!ids_.insert(view.key).second) {
      entry.dropped = "id already present";
    }
    block_.entries.push_back(std::move(entry));
    return true;
  }
  bool on_attribute(const ii::EntryView&, const ii::AttributeView& view) {
    block_.entries.back().attributes.push_back({view, {}});
    return true;
  }
  void on_value(const ii::AttributeView&, const ii::ValueView& view) {
    block_.entries.back().attributes.back().values.push_back({view});
  }

 private:
  Block& block_;
  std::set<uint32_t> ids_;
  std::set<std::wstring> names_;
};

// ---- Text --------------------------------------------------------------------

std::wstring quoted(const BYTE* bytes, size_t units) {
  std::wstring out = L"\"";
  for (size_t i = 0; i < units; ++i) {
    const wchar_t c = static_cast<wchar_t>(ii::load_u16(bytes + 2 * i));
    if (c == L'"' || c == L'\\')
      out += std::wstring(L"\\") + c;
    else if (c < 0x20)
      out += text::format(L"\\x%02x", static_cast<unsigned>(c));
    else
      out += c;
  }
  return out + L"\"";
}

std::wstring hex_bytes(const BYTE* bytes, size_t count) {
  std::wstring out;
  for (size_t i = 0; i < count; ++i) out += text::format(i == 0 ? L"%02x" : L" %02x", bytes[i]);
  return out;
}

std::wstring dos_date_time(WORD date, WORD time) {
  if (date == 0 && time == 0) return L"none";
  return text::format(L"%04u-%02u-%02u %02u:%02u:%02u", 1980u + (date >> 9), (date >> 5) & 15u, date & 31u, time >> 11,
                (time >> 5) & 63u, (time & 31u) * 2);
}

std::wstring file_time(uint32_t high, uint32_t low) {
  if (high == 0 && low == 0) return L"0 (no date)";
  const FILETIME value{low, high};
  SYSTEMTIME utc{};
  if (!::FileTimeToSystemTime(&value, &utc)) return text::format(L"0x%08x%08x (out of range)", high, low);
  return text::format(L"%04u-%02u-%02u %02u:%02u:%02u UTC", utc.wYear, utc.wMonth, utc.wDay, utc.wHour, utc.wMinute,
                utc.wSecond);
}

// One value by its kind; anything that does not have the kind's shape is
// shown as hex.
std::wstring describe_value(ii::ValueKind kind, const ii::ValueView& value) {
  const BYTE* data = value.block + ii::kLengthSize;
  const uint32_t length = value.length;
  const auto terminated = [&](uint32_t offset) -> std::optional<size_t> {
    if (offset > length) return std::nullopt;
    return ii::terminated_units(data + offset, length - offset);
  };
  switch (kind) {
    case ii::ValueKind::String:
      if (const auto units = terminated(0)) {
        std::wstring shown = quoted(data, *units);
        const size_t tail = length - (*units + 1) * 2;
        if (tail != 0) shown += text::format(L" (+%lu bytes after the terminator)", static_cast<unsigned long>(tail));
        return shown;
      }
      break;
    case ii::ValueKind::Integer:
      if (length == 4) return text::format(L"%ld", static_cast<long>(static_cast<int32_t>(ii::load_u32(data))));
      break;
    case ii::ValueKind::PropertyType:
      if (length == 4) {
        const uint32_t type = ii::load_u32(data);
        return text::format(L"type %lu (%hs values)", static_cast<unsigned long>(type),
                      ii::value_kind_name(ii::value_kind_of_type(type)));
      }
      break;
    case ii::ValueKind::Float:
      if (length == 8) {
        double number;
        std::memcpy(&number, data, sizeof number);
        return text::format(L"%.17g", number);
      }
      break;
    case ii::ValueKind::DateTime:
      if (length == 8) return file_time(ii::load_u32(data), ii::load_u32(data + 4));
      break;
    case ii::ValueKind::Handle:
      if (const auto units = terminated(ii::kHandleTitleOffset)) {
        const WORD type = ii::load_u16(data);
        const auto number = static_cast<unsigned long>(ii::load_u32(data + ii::kHandleNumberOffset));
        const std::wstring word = item_type_word(type);
        return (word.empty() ? text::format(L"handle type %u number %lu", type, number)
                             : text::format(L"handle %ls-%lu (type %u)", word.c_str(), number, type)) +
               L" title " + quoted(data + ii::kHandleTitleOffset, *units);
      }
      break;
    default:
      break;
  }
  return text::format(L"hex [%lu] ", static_cast<unsigned long>(length)) + hex_bytes(data, length);
}

// The kind of attribute 16's values: from the first value of attribute 1,
// else, for an id-keyed property, from the type the catalogue gives its id
// (properties filled from server text carry no attribute 1).
ii::ValueKind values_kind(const EntryRecord& entry) {
  for (const AttributeRecord& attribute : entry.attributes) {
    if (attribute.view.id != ii::kTypeAttribute || attribute.values.empty()) continue;
    const ii::ValueView& first = attribute.values.front().view;
    return first.length == 4 ? ii::value_kind_of_type(ii::load_u32(first.block + ii::kLengthSize))
                             : ii::ValueKind::Unknown;
  }
  if (entry.view.custom) return ii::ValueKind::Unknown;
  return ii::value_kind_of_type(static_cast<uint32_t>(PropTypeFromPropId(entry.view.key)));
}

// "0x00000020 handle" - with the catalogue's name when it has one.
std::wstring property_title(uint32_t id) {
  std::wstring title = text::format(L"property 0x%08lx", static_cast<unsigned long>(id));
  const std::wstring name = PropertyNameFromPropId(id);
  if (!name.empty()) title += L" " + name;
  return title;
}

class Printer {
 public:
  Printer(const std::vector<BYTE>& bytes, bool with_offsets) : bytes_(bytes.data()), with_offsets_(with_offsets) {}

  void line(uint32_t offset, int depth, const std::wstring& text) {
    if (with_offsets_) out_ += text::format(L"%08lx  ", static_cast<unsigned long>(offset));
    out_ += std::wstring(2 * depth, L' ') + text + L"\n";
  }

  void field(uint32_t offset, const wchar_t* name, const std::wstring& value) {
    std::wstring label = name;
    label.resize(14, L' ');
    line(offset, 1, label + value);
  }

  std::wstring print(const std::wstring& path, const Block& block) {
    namespace h = ii::header;
    const auto u16 = [&](uint32_t at) { return ii::load_u16(bytes_ + at); };
    const auto u32 = [&](uint32_t at) { return ii::load_u32(bytes_ + at); };
    const auto number = [](uint32_t value) { return std::to_wstring(value); };
    out_ += text::format(L"Item info %ls\n", path.c_str());
    line(0, 0, L"Header");
    field(h::kSize, L"size", number(u32(h::kSize)) + L" bytes");
    if (block.size < ii::kHeaderSize) {
      // Nothing past the size field belongs to the block.
      line(h::kSize, 0, L"No header: an empty item info");
      return out_;
    }
    field(h::kCarried4, L"(offset 4)", text::format(L"0x%04x", u16(h::kCarried4)));
    const std::wstring type_word = item_type_word(u16(h::kItemType));
    field(h::kItemType, L"type",
          number(u16(h::kItemType)) + (type_word.empty() ? L"" : L" (" + type_word + L")"));
    field(h::kItemNumber, L"number", number(u32(h::kItemNumber)));
    field(h::kContentSize, L"content size", number(u32(h::kContentSize)));
    field(h::kModifiedDate, L"modified", dos_date_time(u16(h::kModifiedDate), u16(h::kModifiedTime)));
    field(h::kCreatedDate, L"created", dos_date_time(u16(h::kCreatedDate), u16(h::kCreatedTime)));
    field(h::kCarried20, L"(offset 20)", text::format(L"0x%08lx", static_cast<unsigned long>(u32(h::kCarried20))));
    field(h::kParentCount, L"parents", number(u32(h::kParentCount)));
    field(h::kFirstParent, L"first parent", number(u32(h::kFirstParent)));
    field(h::kOwnerNumber, L"owner", number(u32(h::kOwnerNumber)));
    if (!block.has_section) {
      line(ii::kHeaderSize, 0, L"No properties");
      return out_;
    }
    line(ii::kSectionStart, 0,
         text::format(L"Properties: %u entries (marker %u)", static_cast<unsigned>(block.entry_count),
                static_cast<unsigned>(block.marker)));
    for (const EntryRecord& entry : block.entries) print_entry(entry);
    return out_;
  }

 private:
  void print_entry(const EntryRecord& entry) {
    std::wstring title = entry.view.custom
                             ? (entry.view.name ? L"custom " + quoted(entry.view.name, entry.view.name_units)
                                                : text::format(L"custom entry (key 0x%08lx)",
                                                         static_cast<unsigned long>(entry.view.key)))
                             : property_title(entry.view.key);
    title += text::format(L"  %u attribute%ls", static_cast<unsigned>(entry.view.attribute_count),
                    entry.view.attribute_count == 1 ? L"" : L"s");
    if (with_offsets_) title += text::format(L"  (slot 0x%lx)", static_cast<unsigned long>(entry.view.table_offset));
    if (entry.dropped) title += text::format(L"  - dropped on opening: %hs", entry.dropped);
    line(entry.view.body_offset, 1, title);
    const ii::ValueKind kind16 = values_kind(entry);
    for (const AttributeRecord& attribute : entry.attributes) {
      const uint32_t id = attribute.view.id;
      std::wstring heading = text::format(L"attribute %lu  %u value%ls", static_cast<unsigned long>(id),
                                    static_cast<unsigned>(attribute.view.value_count),
                                    attribute.view.value_count == 1 ? L"" : L"s");
      if (with_offsets_) heading += text::format(L"  (slot 0x%lx)", static_cast<unsigned long>(attribute.view.table_offset));
      line(attribute.view.body_offset, 2, heading);
      const ii::ValueKind kind = id == ii::kTypeAttribute   ? ii::ValueKind::PropertyType
                                 : id == ii::kNameAttribute ? ii::ValueKind::String
                                 : id == ii::kValuesAttribute ? kind16
                                                            : ii::ValueKind::Unknown;
      for (const ValueRecord& value : attribute.values)
        line(value.view.offset, 3, text::format(L"[%lu] ", static_cast<unsigned long>(value.view.index)) +
                                       describe_value(kind, value.view));
    }
  }

  const BYTE* bytes_;
  bool with_offsets_;
  std::wstring out_;
};

// ---- Commands ----------------------------------------------------------------

int run_dump(Args& args) {
  const bool with_offsets = args.take_flag(L"--hex");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().size() != 1) return fail(L"item dump takes one file (see mvsup item --help)");
  const std::wstring& path = args.rest()[0];
  std::wstring error;
  const std::optional<std::vector<BYTE>> bytes = read_file(path, &error);
  if (!bytes) return fail(error);
  Block block;
  Recorder recorder(block);
  if (const std::optional<ii::Fault> fault = ii::walk_block(bytes->data(), bytes->size(), recorder)) {
    return fail(text::format(L"%ls: not a valid item info: offset %lu (0x%lx): %hs", path.c_str(),
                       static_cast<unsigned long>(fault->offset), static_cast<unsigned long>(fault->offset),
                       fault->reason));
  }
  std::wstring text = Printer(*bytes, with_offsets).print(path, block);
  // The size field itself is always there, whatever it says.
  const size_t used = std::max<size_t>(block.size, sizeof(uint32_t));
  if (bytes->size() > used)
    text += text::format(L"(%lu bytes past the size field are not part of it)\n",
                   static_cast<unsigned long>(bytes->size() - used));
  write_out(text);
  return 0;
}

int run_new(Args& args) {
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().size() != 1) return fail(L"item new takes one file (see mvsup item --help)");
  const std::wstring& path = args.rest()[0];
  BYTE* created = nullptr;
  if (const HRESULT hr = MvxCreateItemInfo(&created); FAILED(hr))
    return fail(text::format(L"MvxCreateItemInfo failed (0x%08lx)", static_cast<unsigned long>(hr)));
  const DWORD size = ii::load_u32(created);
  unique_file file(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
  DWORD written = 0;
  const bool ok = file && ::WriteFile(file.get(), created, size, &written, nullptr) && written == size;
  const DWORD error = ::GetLastError();
  FreeMvxInfo(created);
  if (!ok) {
    return fail(error == ERROR_FILE_EXISTS ? path + L" exists; not overwritten"
                                           : text::format(L"cannot write %ls (error %lu)", path.c_str(), error));
  }
  write_out(text::format(L"%ls: empty item info, %lu bytes\n", path.c_str(), static_cast<unsigned long>(size)));
  return 0;
}

int run_item(Args& args) {
  return run_subcommand(args, L"item",
                        {{L"dump", run_dump}, {L"new", run_new}, {L"make", run_item_make}, {L"get", run_item_get}});
}

const CommandRegistration kItem{{
    L"item",
    L"make, read and dump committed item info blocks",
    L"Usage: mvsup item dump FILE [--hex]\n"
    L"       mvsup item new FILE\n"
    L"       mvsup item make OUT [--from FILE] [--force] [NAME=VALUE ...]\n"
    L"       mvsup item get FILE NAME [--as KIND] [--local] [--json]\n\n"
    L"dump   Checks that FILE holds together as a committed item info (every count,\n"
    L"       offset and length against its size field, as the library does when it\n"
    L"       opens one) and prints it: the header fields by name (type with its\n"
    L"       word, number, content size, dates, parents, owner), then every entry\n"
    L"       with its attributes and values. Properties show their catalogue name.\n"
    L"       Attribute 1 is shown as the property type, attribute 2 as a string,\n"
    L"       the values of attribute 16 by the kind that attribute 1 (or else the\n"
    L"       catalogue) gives: string, integer, float, date-time, handle (with its\n"
    L"       type word); anything else as hex. Entries that opening would drop are\n"
    L"       marked. A block that does not hold together gives an error naming the\n"
    L"       first offset at fault.\n"
    L"  --hex  start each line with the offset of what it shows\n\n"
    L"new    Writes an empty committed item info (40 bytes) to FILE, which must not\n"
    L"       exist yet.\n\n"
    L"make   Builds a committed item info from the server's property text, as a\n"
    L"       client component does, and writes it to OUT: each NAME is filled with\n"
    L"       AddItemPropToMvxInfo. A name of the catalogue (any case, see mvsup\n"
    L"       props) gives the id-keyed property, its text converted by the\n"
    L"       catalogue's type (handles \"File-12\", \"title (Collection-7)\" texts,\n"
    L"       dates in the creation form 2006-08-14T09:05:00Z or, for\n"
    L"       getlastmodified, the HTTP form \"Mon, 14 Aug 2006 09:05:00 GMT\");\n"
    L"       client_data and unknown names give custom properties holding text.\n"
    L"       A name given several times gets several values, in order\n"
    L"       (parents=\"A (Collection-1)\" parents=\"B (Collection-2)\"). Texts\n"
    L"       that convert to nothing are reported as notes.\n"
    L"  --from FILE  NAME=VALUE lines from a UTF-8 file (\"-\": standard input),\n"
    L"               before those on the command line; blank lines and lines\n"
    L"               starting with '#' are skipped; the value is everything after\n"
    L"               the first '=', as it stands\n"
    L"  --force      overwrite OUT when it exists\n\n"
    L"get    Reads one value of FILE with the library's one-call readers, without\n"
    L"       opening it, and prints it: strings as they are, integers in decimal,\n"
    L"       dates as YYYY-MM-DD hh:mm:ss UTC (\"none\" for the empty date),\n"
    L"       handles as Word-Number \"title\". NAME is a catalogue name (any case),\n"
    L"       a property id (0x80000040 or decimal), or a custom property's name.\n"
    L"       The reader follows the property's type: the catalogue's for ids, the\n"
    L"       one in attribute 1 for custom properties. A property without a value\n"
    L"       is an error naming the reader's answer.\n"
    L"  --as KIND    read with another reader: string, integer, date or handle\n"
    L"               (\"--as integer\" on a custom text shows the integer rules)\n"
    L"  --local      dates converted to local time\n"
    L"  --json       {\"property\", \"id\", \"reader\", \"value\"}\n",
    run_item,
}};

}  // namespace
}  // namespace mvsup::tool
