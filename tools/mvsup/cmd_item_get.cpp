// mvsup item get: one value of a committed item info, read the way a client
// component reads it - with the library's one-call readers, without opening
// the block.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "MvSup2u.h"
#include "binary_io.h"
#include "frame/text.h"
#include "frame/win32_handles.h"
#include "item_commands.h"
#include "output.h"

namespace mvsup::tool {

namespace {

enum class Reader { String, Integer, Date, Handle };

struct ReaderName {
  Reader reader;
  const wchar_t* word;  // for --as
};
constexpr ReaderName kReaders[] = {
    {Reader::String, L"string"}, {Reader::Integer, L"integer"}, {Reader::Date, L"date"}, {Reader::Handle, L"handle"}};

std::optional<Reader> reader_of_word(const std::wstring& word) {
  for (const ReaderName& entry : kReaders)
    if (word == entry.word) return entry.reader;
  return std::nullopt;
}

// The reader for a property type, as the value kinds go.
std::optional<Reader> reader_of_type(DWORD type) {
  switch (type) {
    case 1: case 2: case 3: case 7: case 9: case 10: case 14: return Reader::String;
    case 4: case 5: return Reader::Integer;
    case 8: case 17: return Reader::Date;
    case 11: case 12: case 19: return Reader::Handle;
    default: return std::nullopt;
  }
}

constexpr DWORD kHandleReaderIds[] = {MVX_PROP_HANDLE, MVX_PROP_PARENTS, MVX_PROP_ENTITYOWNER, MVX_PROP_MODIFIED_BY,
                                      MVX_PROP_LOCKED_BY};

bool has_handle_reader(DWORD id) {
  for (const DWORD candidate : kHandleReaderIds)
    if (candidate == id) return true;
  return false;
}

// The type in a custom property's attribute 1; 1 (text) when it has none.
DWORD custom_type(BYTE* block, const std::wstring& name) {
  DWORD type = 1;
  HMVXINFO info = MvxOpen(block);
  HMVXATTR attribute = MvxFindAttribute(info, MvxFindCustomProperty(info, name.c_str()), MVX_ATTRIBUTE_PROPERTY_TYPE);
  if (MvxGetAttributeValuesCount(info, attribute) > 0) {
    DWORD UNALIGNED* stored = nullptr;
    MvxGetPropertyType(info, MvxGetAttributeValue(info, attribute, 0), &stored);
    if (stored != nullptr) type = *stored;
  }
  MvxClose(info);
  return type;
}

std::wstring date_text(const SYSTEMTIME& time, bool local) {
  if (time.wYear == 0 && time.wMonth == 0 && time.wDay == 0) return L"none";
  wchar_t text[64];
  std::swprintf(text, 64, L"%04u-%02u-%02u %02u:%02u:%02u %ls", time.wYear, time.wMonth, time.wDay, time.wHour,
                time.wMinute, time.wSecond, local ? L"local" : L"UTC");
  return text;
}

std::wstring handle_text(MVXITEMTYPE type, DWORD number, LPCWSTR title) {
  const std::wstring word = item_type_word(type);
  std::wstring text = word.empty() ? L"type " + std::to_wstring(type) + L" number " + std::to_wstring(number)
                                   : word + L"-" + std::to_wstring(number);
  if (title != nullptr && *title != L'\0') text += L" \"" + std::wstring(title) + L"\"";
  return text;
}

struct Answer {
  const wchar_t* function;
  LONG result;  // 0 / S_OK: found
  std::wstring value;
};

Answer read(BYTE* block, const PropertyName& property, Reader reader, bool local) {
  const wchar_t* name = property.name.c_str();
  const BOOL keep_gmt = local ? FALSE : TRUE;
  switch (reader) {
    case Reader::String: {
      LPWSTR text = nullptr;
      const Answer answer =
          property.custom()
              ? Answer{L"MvxGetCustomStringProp", MvxGetCustomStringProp(block, name, &text), {}}
              : Answer{L"MvxGetStringPropValue", MvxGetStringPropValue(block, property.id, &text), {}};
      return {answer.function, answer.result, text ? text : L""};
    }
    case Reader::Integer: {
      LONG value = 0;
      const Answer answer =
          property.custom()
              ? Answer{L"MvxGetCustomIntegerProp", MvxGetCustomIntegerProp(block, name, &value), {}}
              : Answer{L"MvxGetIntegerPropValue", MvxGetIntegerPropValue(block, property.id, &value), {}};
      return {answer.function, answer.result, std::to_wstring(value)};
    }
    case Reader::Date: {
      SYSTEMTIME time{};
      const Answer answer =
          property.custom()
              ? Answer{L"MvxGetCustomSystemTimeProp", MvxGetCustomSystemTimeProp(block, name, &time, keep_gmt), {}}
              : Answer{L"MvxGetDatePropValueAsSystemTime",
                       MvxGetDatePropValueAsSystemTime(block, property.id, &time, keep_gmt), {}};
      return {answer.function, answer.result, date_text(time, local)};
    }
    case Reader::Handle: {
      MVXITEMTYPE type = 0;
      DWORD number = 0;
      LPWSTR title = nullptr;
      const int result = MvxGetMvHandlePropValue(block, property.id, nullptr, &type, &number, &title);
      return {L"MvxGetMvHandlePropValue", result, handle_text(type, number, title)};
    }
  }
  return {L"", 1, {}};
}

}  // namespace

int run_item_get(Args& args) {
  const std::optional<std::wstring> as = args.take_option(L"--as");
  const bool local = args.take_flag(L"--local");
  const bool as_json = args.take_flag(L"--json");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().size() != 2) return fail(L"item get takes a file and a property name (see mvsup item --help)");
  const std::wstring& path = args.rest()[0];
  const PropertyName property = resolve_property(args.rest()[1], true);

  std::wstring error;
  const std::optional<std::string> bytes = read_input(path, &error);
  if (!bytes) return fail(error);
  const DWORD size = bytes->size() >= 4 ? *reinterpret_cast<const DWORD UNALIGNED*>(bytes->data()) : 0;
  if (size < 40 || size > bytes->size())
    return fail(path + L": not a committed item info (its size field must be 40 to " + std::to_wstring(bytes->size()) +
                L")");
  // The readers want the block as a client has it: in global memory.
  unique_hglobal memory(::GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, size_t{size} + 4));
  if (!memory) return fail(L"out of memory");
  auto* block = static_cast<BYTE*>(memory.get());
  std::memcpy(block, bytes->data(), size);

  std::optional<Reader> reader;
  const DWORD type = property.custom()                    ? custom_type(block, property.name)
                     : property.id == MVX_PROP_CLIENT_DATA ? 2
                                                          : static_cast<DWORD>(PropTypeFromPropId(property.id));
  if (as) {
    reader = reader_of_word(*as);
    if (!reader) return fail(L"--as takes string, integer, date or handle");
  } else {
    reader = reader_of_type(type);
    if (!reader)
      return fail(property.name + L" has the property type " + std::to_wstring(type) +
                  L", which no one-call reader reads (see mvsup item dump)");
  }
  if (*reader == Reader::Handle && (property.custom() || !has_handle_reader(property.id)))
    return fail(L"the handle reader reads only handle, parents, entityowner, modified_by and lockdiscovery");

  const Answer answer = read(block, property, *reader, local);
  if (answer.result != 0) {
    wchar_t code[16];
    std::swprintf(code, 16, answer.result == 1 ? L"%ld" : L"0x%08lX", static_cast<long>(answer.result));
    return fail(property.name + L": no value in " + path + L" (" + answer.function + L" answered " + code + L")");
  }
  if (as_json) {
    JsonWriter json;
    json.begin_object().string(L"property", property.name);
    if (!property.custom()) json.string(L"id", hex32(property.id));
    json.string(L"reader", answer.function).string(L"value", answer.value).end_object();
    write_out(json.str());
  } else {
    write_out(answer.value + L"\n");
  }
  return 0;
}

}  // namespace mvsup::tool
