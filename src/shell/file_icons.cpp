// Icons of file types: the image-list key of a document's extension, and
// the icons Windows shows for an extension (its file type's DefaultIcon, its
// icon handler, or the shell's own choice), with the library's generic
// document icons for whatever is still missing.
#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>

#include <climits>
#include <cwchar>
#include <string>
#include <string_view>

#include "MvSupFiles.h"
#include "MvSupShell.h"
#include "content/content_types.h"
#include "frame/library_state.h"
#include "frame/mode_bits.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "iteminfo/property_accessors.h"
#include "shell/icons.h"
#include "storage/directories.h"

namespace mvsup::shell::icons {

namespace {

constexpr DWORD kFileNameProperty = 0x80000200;  // "mervane_filename"
constexpr DWORD kContentTypeProperty = 0x80000004;  // "getcontenttype"
constexpr const wchar_t* kMessageClassProperty = L"OutlookMessageClass";
constexpr size_t kMessageClassLength = 40;
constexpr std::wstring_view kHtmlExtension = L".htm";
constexpr size_t kExtensionLength = 15;
constexpr UINT kKeyBase = 34;

constexpr size_t kFileTypeCapacity = 256;
constexpr size_t kIconPathCapacity = MAX_PATH;
constexpr size_t kHandlerCapacity = 64;
constexpr const wchar_t* kIconLoaderCreator = L"MVSUP.IconLoader";
constexpr const wchar_t* kDummyName = L"dummy";

// The first string value of an id-keyed property, if terminated inside it.
std::wstring string_property(const BYTE* item, DWORD id) {
  const auto found = iteminfo::accessors::find_property(item, id);
  if (!found || !found->exists || found->first_value == nullptr) return {};
  uint32_t length = 0;
  std::memcpy(&length, found->first_value, sizeof(length));
  const auto* text = reinterpret_cast<const wchar_t*>(found->first_value + sizeof(length));
  const size_t units = length / sizeof(wchar_t);
  for (size_t i = 0; i < units; ++i) {
    wchar_t c;
    std::memcpy(&c, text + i, sizeof(c));
    if (c == L'\0') return std::wstring(text, text + i);
  }
  return {};
}

// The item's extension (with its dot): from its file name, else from its
// content type; empty when neither gives one.
std::wstring item_extension(const BYTE* item) {
  const std::wstring file_name = string_property(item, kFileNameProperty);
  const std::wstring_view from_name = content::extension_of(file_name);
  if (!from_name.empty()) return std::wstring(from_name);
  const std::wstring mime_type = string_property(item, kContentTypeProperty);
  if (mime_type.empty()) return {};
  const content::ExtensionAnswer answer = content::extension_for_mime_type(mime_type);
  return answer.hr == S_OK ? answer.answer.text : std::wstring();
}

UINT message_class_index(const BYTE* item) {
  std::wstring message_class = custom_text(item, kMessageClassProperty);
  if (message_class.size() > kMessageClassLength) message_class.resize(kMessageClassLength);
  return class_index(kMailMessageClasses, message_class);
}

// The extension's UTF-16 bytes summed into the four byte lanes of a word.
UINT extension_key(std::wstring_view extension) noexcept {
  BYTE lanes[4] = {};
  size_t position = 0;
  for (wchar_t unit : extension) {
    for (BYTE byte : {static_cast<BYTE>(unit & 0xFF), static_cast<BYTE>(unit >> 8)}) {
      lanes[position % 4] = static_cast<BYTE>(lanes[position % 4] + byte);
      ++position;
    }
  }
  const UINT word = lanes[0] | (UINT{lanes[1]} << 8) | (UINT{lanes[2]} << 16) | (UINT{lanes[3]} << 24);
  return word + kKeyBase;
}

// A string value of HKEY_CLASSES_ROOT (environment references expanded),
// cut to capacity - 1 characters; empty when missing. (RegGetValue expands
// REG_EXPAND_SZ data and filters it as REG_SZ.)
std::wstring classes_value(const std::wstring& key, size_t capacity) {
  std::wstring value(capacity, L'\0');
  DWORD bytes = static_cast<DWORD>(capacity * sizeof(wchar_t));
  const LSTATUS status = ::RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr,
                                        RRF_RT_REG_SZ, nullptr, value.data(), &bytes);
  if (status != ERROR_SUCCESS) return {};
  value.resize(wcsnlen(value.c_str(), capacity - 1));
  return value;
}

std::wstring unquoted(std::wstring text) {
  if (text.size() >= 2 && text.front() == L'"' && text.back() == L'"') text = text.substr(1, text.size() - 2);
  return text;
}

// The icons found so far; outputs are handed over at the end.
struct IconPair {
  unique_hicon large;
  unique_hicon small;

  void extract(const std::wstring& path, int index) noexcept {
    HICON found_large = nullptr, found_small = nullptr;
    // Some systems write stray values into both outputs when nothing was
    // extracted: only a count above 0 (and not -1) hands out icons, and only
    // real icons are kept.
    const UINT count = ::ExtractIconExW(path.c_str(), index, &found_large, &found_small, 1);
    if (count == 0 || count == UINT_MAX) return;
    adopt(large, found_large);
    adopt(small, found_small);
  }

  static bool is_icon(HICON icon) noexcept {
    ICONINFO info = {};
    if (icon == nullptr || !::GetIconInfo(icon, &info)) return false;
    if (info.hbmColor) ::DeleteObject(info.hbmColor);
    if (info.hbmMask) ::DeleteObject(info.hbmMask);
    return true;
  }

  static void adopt(unique_hicon& slot, HICON icon) noexcept {
    if (!is_icon(icon)) return;
    if (slot)
      ::DestroyIcon(icon);
    else
      slot.reset(icon);
  }
};

// "path,index" of a DefaultIcon value: the text after the first comma, its
// leading spaces skipped, is the icon's index (0 when there is none).
void extract_default_icon(const std::wstring& value, IconPair& icons) {
  const size_t comma = value.find(L',');
  int index = 0;
  if (comma != std::wstring::npos) {
    const wchar_t* number = value.c_str() + comma + 1;
    while (*number == L' ') ++number;
    index = static_cast<int>(std::wcstol(number, nullptr, 10));
  }
  icons.extract(unquoted(value.substr(0, comma)), index);
}

// A server path of the handler's class: cut at the first "/" (its switches)
// and trailing blanks removed.
std::wstring server_path(const std::wstring& clsid_text, const wchar_t* server) {
  std::wstring path = classes_value(L"CLSID\\" + clsid_text + L"\\" + server, kIconPathCapacity);
  path = path.substr(0, path.find(L'/'));
  while (!path.empty() && (path.back() == L' ' || path.back() == L'\t')) path.pop_back();
  return unquoted(path);
}

// Icons per file: ask the type's icon handler for a file of this extension,
// then the handler's own servers.
void extract_with_handler(const std::wstring& file_type, const wchar_t* extension, IconPair& icons) {
  const std::wstring clsid_text = classes_value(file_type + L"\\shellex\\IconHandler", kHandlerCapacity);
  CLSID clsid;
  if (clsid_text.empty() || FAILED(::CLSIDFromString(clsid_text.c_str(), &clsid))) return;
  com_ptr<IExtractIconW> handler;
  if (SUCCEEDED(::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IExtractIconW, handler.put_void()))) {
    com_ptr<IPersistFile> file;
    if (SUCCEEDED(handler->QueryInterface(IID_IPersistFile, file.put_void()))) {
      const std::wstring name = std::wstring(kDummyName) + extension;
      file->Load(name.c_str(), STGM_READ);
    }
    wchar_t location[kIconPathCapacity] = {};
    int index = 0;
    UINT flags = 0;
    if (SUCCEEDED(handler->GetIconLocation(GIL_FORSHELL, location, kIconPathCapacity, &index, &flags))) {
      const UINT sizes = MAKELONG(::GetSystemMetrics(SM_CXICON), ::GetSystemMetrics(SM_CXSMICON));
      HICON found_large = nullptr, found_small = nullptr;
      const HRESULT hr = handler->Extract(location, static_cast<UINT>(index), &found_large, &found_small, sizes);
      if (hr == S_OK) {
        IconPair::adopt(icons.large, found_large);
        IconPair::adopt(icons.small, found_small);
      } else if (hr == S_FALSE) {
        icons.extract(location, index);
      }
    }
  }
  if (icons.large) return;
  const std::wstring local_server = server_path(clsid_text, L"LocalServer32");
  if (!local_server.empty()) {
    trace::line(L"Extracting 2nd icon set from localserver: %ls\n", local_server.c_str());
    icons.extract(local_server, 1);
    if (!icons.large) {
      trace::line(L"Extracting 1st icon set\n");
      icons.extract(local_server, 0);
    }
  }
  if (icons.large) return;
  const std::wstring inproc_server = server_path(clsid_text, L"InprocServer32");
  if (!inproc_server.empty()) {
    trace::line(L"Extracting 1st icon set from inprocserver: %ls\n", inproc_server.c_str());
    icons.extract(inproc_server, 0);
  }
}

// The shell's icons for an empty file of the extension, made once in the
// client's data directory and recorded in the file-creation log.
void extract_from_shell(const wchar_t* extension, IconPair& icons) {
  wchar_t data[MAX_PATH];
  if (directories::data(data, MAX_PATH) == 0) return;
  const std::wstring path = std::wstring(data) + L"\\" + kDummyName + extension;
  if (::GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
    unique_file file(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY,
                                   nullptr));
    if (file) {
      file.reset();
      ::LogFileCreation(path.c_str(), kIconLoaderCreator);
    }
  }
  SHFILEINFOW info = {};
  if (!icons.large && ::SHGetFileInfoW(path.c_str(), 0, &info, sizeof(info), SHGFI_ICON))
    IconPair::adopt(icons.large, info.hIcon);
  info = {};
  if (!icons.small && ::SHGetFileInfoW(path.c_str(), 0, &info, sizeof(info), SHGFI_ICON | SHGFI_SMALLICON))
    IconPair::adopt(icons.small, info.hIcon);
}

BOOL find_icons(const wchar_t* extension, IconPair& icons) {
  if (extension == nullptr || *extension == L'\0') return FALSE;
  const std::wstring file_type = classes_value(extension, kFileTypeCapacity);
  if (file_type.empty()) return FALSE;
  const std::wstring default_icon = classes_value(file_type + L"\\DefaultIcon", kIconPathCapacity);
  if (default_icon == L"%1")
    extract_with_handler(file_type, extension, icons);
  else if (!default_icon.empty())
    extract_default_icon(default_icon, icons);
  if (!icons.large) {
    if (icons.small) {
      icons.large.reset(load_icon(kGenericLargeIcon, true));
      return TRUE;
    }
    if (frame::mode_word() & mode::kIconFromSHFileInfo) extract_from_shell(extension, icons);
  }
  if (!icons.small) icons.small.reset(load_icon(kGenericSmallIcon, false));
  if (!icons.large) icons.large.reset(load_icon(kGenericLargeIcon, true));
  return TRUE;
}

}  // namespace

BOOL extract_icon_for(const wchar_t* extension, HICON* large, HICON* small) noexcept {
  if (large != nullptr) *large = nullptr;
  if (small != nullptr) *small = nullptr;
  IconPair icons;
  BOOL found = FALSE;
  try {
    found = find_icons(extension, icons);
  } catch (...) {
    return FALSE;
  }
  if (!found) return FALSE;
  if (large != nullptr) *large = icons.large.release();
  if (small != nullptr) *small = icons.small.release();
  return TRUE;
}

UINT file_icon_index(const BYTE* item) noexcept {
  try {
    const std::wstring extension = item_extension(item);
    if (extension.empty() || extension == L".") return item_index::kDocument;
    if (text::equals_ignore_case(extension, kHtmlExtension)) {
      const UINT mail_class = message_class_index(item);
      if (mail_class != 0) return mail_class;
    }
    return extension_key(extension);
  } catch (...) {
    return item_index::kDocument;
  }
}

bool load_file_icons(const BYTE* item, HICON* large, HICON* small) noexcept {
  *large = *small = nullptr;
  try {
    std::wstring extension = item_extension(item);
    if (text::equals_ignore_case(extension, kHtmlExtension)) {
      const UINT mail_class = message_class_index(item);
      if (mail_class != 0) {
        *large = load_icon(kItemLargeIcons[mail_class], true);
        *small = load_icon(kItemSmallIcons[mail_class], false);
        return true;
      }
    }
    if (extension.size() > kExtensionLength) extension.resize(kExtensionLength);
    return extract_icon_for(extension.c_str(), large, small) != FALSE;
  } catch (...) {
    return false;
  }
}

}  // namespace mvsup::shell::icons

extern "C" {

HRESULT WINAPI GetMvxFileIconIndex(const BYTE* item, UINT* index) {
  mvsup::trace::CallScope scope("GetMvxFileIconIndex");
  if (index == nullptr) return scope.hr(E_POINTER);
  *index = mvsup::shell::icons::file_icon_index(item);
  return scope.hr(S_OK);
}

int WINAPI LoadMvxFileIcon(const BYTE* item, HICON* large, HICON* small) {
  mvsup::trace::CallScope scope("LoadMvxFileIcon");
  HICON found_large = nullptr, found_small = nullptr;
  const bool found = mvsup::shell::icons::load_file_icons(item, &found_large, &found_small);
  if (large != nullptr) *large = found_large; else if (found_large) ::DestroyIcon(found_large);
  if (small != nullptr) *small = found_small; else if (found_small) ::DestroyIcon(found_small);
  return scope.res(found ? 0 : 1);
}

BOOL WINAPI ExtractIconFor(LPCWSTR extension, HICON* large, HICON* small) {
  mvsup::trace::CallScope scope("ExtractIconFor");
  return scope.res(mvsup::shell::icons::extract_icon_for(extension, large, small));
}

}  // extern "C"
