// mvsup icon FILE|.EXT: which icon a document gets, and why.
#include <windows.h>

#include <string>

#include "MvSup2u.h"
#include "command.h"
#include "output.h"
#include "shell/icon_tables.h"

namespace mvsup::tool {
namespace {

namespace icons = shell::icons;

constexpr DWORD kFileNameProperty = 0x80000200;
constexpr DWORD kContentTypeProperty = 0x80000004;

std::wstring classes_value(const std::wstring& key) {
  wchar_t value[MAX_PATH] = {};
  DWORD bytes = sizeof(value);
  if (RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, value, &bytes) != ERROR_SUCCESS)
    return {};
  return value;
}

// The extension the library takes from a name: the title's last '.' on.
std::wstring extension_of(const std::wstring& name) {
  const size_t title = name.find_last_of(L"\\/");
  const std::wstring file_title = title == std::wstring::npos ? name : name.substr(title + 1);
  const size_t dot = file_title.rfind(L'.');
  if (dot == std::wstring::npos || dot + 1 == file_title.size()) return {};
  return file_title.substr(dot);
}

struct Explanation {
  std::wstring name, extension, extension_from, reason, file_type, default_icon, handler, icons;
  UINT index = 0;
  bool registered = false;
};

Explanation explain(const std::wstring& name, const std::wstring& mime, const std::wstring& mail_class) {
  Explanation out;
  out.name = name;
  BYTE* item = nullptr;
  MvxPutMvHandlePropValue(0x20, 3, 1, L"", &item);
  if (!name.empty()) MvxPutStringPropValue(kFileNameProperty, name.c_str(), &item);
  if (!mime.empty()) MvxPutStringPropValue(kContentTypeProperty, mime.c_str(), &item);
  if (!mail_class.empty()) MvxPutCustomStringProp(L"OutlookMessageClass", mail_class.c_str(), 1, &item);
  GetMvxFileIconIndex(item, &out.index);

  out.extension = extension_of(name);
  if (!out.extension.empty()) {
    out.extension_from = L"the file name";
  } else if (!mime.empty()) {
    wchar_t extension[16] = {};
    if (GetFileExtFromMimeType2(mime.c_str(), extension, 16) == S_OK) out.extension = extension;
    out.extension_from = L"the content type " + mime;
  }
  if (out.index == icons::item_index::kDocument) {
    out.reason = L"no extension: the document icon";
  } else if (out.index < icons::kItemIconCount) {
    out.reason = L"mail saved as .htm, class " + mail_class;
  } else {
    out.reason = L"image-list key of \"" + out.extension + L"\": its UTF-16 bytes summed into four byte lanes, plus 34";
  }

  if (!out.extension.empty()) {
    out.file_type = classes_value(out.extension);
    out.registered = !out.file_type.empty();
    if (out.registered) {
      out.default_icon = classes_value(out.file_type + L"\\DefaultIcon");
      if (out.default_icon == L"%1") out.handler = classes_value(out.file_type + L"\\shellex\\IconHandler");
    }
  }
  HICON large = nullptr, small = nullptr;
  const int missing = LoadMvxFileIcon(item, &large, &small);
  if (large) DestroyIcon(large);
  if (small) DestroyIcon(small);
  UINT item_index = 0;
  GetMvxItemIconIndex(item, FALSE, &item_index);
  FreeMvxInfo(item);
  if (item_index < icons::kItemIconCount) {
    out.icons = L"the library's pair " + std::to_wstring(icons::kItemLargeIcons[item_index] & 0xFFFF) + L" / " +
                std::to_wstring(icons::kItemSmallIcons[item_index] & 0xFFFF);
  } else if (missing == 0) {
    out.icons = L"the file type's icons (ExtractIconFor), the library's generic pair where Windows has none";
  } else {
    out.icons = L"file type not registered: the document pair " +
                std::to_wstring(icons::kItemLargeIcons[icons::item_index::kDocument]) + L" / " +
                std::to_wstring(icons::kItemSmallIcons[icons::item_index::kDocument]);
  }
  return out;
}

int run_icon(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  const std::wstring mime = args.take_option(L"--mime").value_or(L"");
  const std::wstring mail_class = args.take_option(L"--class").value_or(L"");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().size() > 1) return fail(L"unexpected argument " + args.rest()[1]);
  if (args.rest().empty() && mime.empty()) return fail(L"icon needs a file name or .EXT (see mvsup icon --help)");
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const Explanation e = explain(args.rest().empty() ? L"" : args.rest().front(), mime, mail_class);
  CoUninitialize();
  if (as_json) {
    JsonWriter json;
    json.begin_object()
        .string(L"name", e.name)
        .string(L"extension", e.extension)
        .number(L"index", e.index)
        .string(L"reason", e.reason)
        .string(L"file_type", e.file_type)
        .string(L"default_icon", e.default_icon)
        .string(L"icon_handler", e.handler)
        .string(L"icons", e.icons)
        .end_object();
    write_out(json.str());
    return 0;
  }
  std::wstring text;
  text += L"Extension:    " + (e.extension.empty() ? L"none" : e.extension + L" (from " + e.extension_from + L")") + L"\n";
  text += L"Icon index:   " + std::to_wstring(e.index) + L" (" + hex32(e.index) + L"): " + e.reason + L"\n";
  text += L"File type:    " + (e.registered ? e.file_type : std::wstring(L"not registered")) + L"\n";
  if (e.registered)
    text += L"DefaultIcon:  " + (e.default_icon.empty() ? std::wstring(L"none") : e.default_icon) +
            (e.handler.empty() ? L"" : L" (icon handler " + e.handler + L")") + L"\n";
  text += L"Icons:        " + e.icons + L"\n";
  write_out(text);
  return 0;
}

const CommandRegistration kIcon{{
    L"icon",
    L"which icon index and pair a document file gets, and why",
    L"Usage: mvsup icon FILE|.EXT [--mime TYPE] [--class MAILCLASS] [--json]\n\n"
    L"Makes a document item info named FILE and asks the library for its icon:\n"
    L"the extension (from the name, else from --mime), the icon index and the\n"
    L"rule that gave it, the file type registered for the extension, its\n"
    L"DefaultIcon or icon handler, and where the icons come from.\n\n"
    L"  --mime TYPE       the item's content type (used when FILE has no extension)\n"
    L"  --class CLASS     the item's OutlookMessageClass (for .htm mail)\n"
    L"  --json            one JSON object instead\n",
    run_icon,
}};

}  // namespace
}  // namespace mvsup::tool
