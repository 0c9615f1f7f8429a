// mvsup info: the effective configuration as the library sees it.
#include <windows.h>

#include <string>
#include <vector>

#include "MvSup2u.h"
#include "command.h"
#include "frame/mode_bits.h"
#include "output.h"

namespace mvsup::tool {
namespace {

std::wstring root_name(HKEY root) {
  if (root == HKEY_LOCAL_MACHINE) return L"HKEY_LOCAL_MACHINE";
  if (root == HKEY_CURRENT_USER) return L"HKEY_CURRENT_USER";
  return hex32(static_cast<uint32_t>(reinterpret_cast<ULONG_PTR>(root)));
}

std::wstring short_root(HKEY root) { return root == HKEY_LOCAL_MACHINE ? L"HKLM" : L"HKCU"; }

struct BitReport {
  DWORD bit;
  std::wstring name;
  std::wstring where;  // registry key the value came from, or how the bit is set
  bool stored;         // the value exists (false: the default applied)
};

BitReport describe_bit(DWORD bit) {
  for (const mode::BitSource& source : mode::kBitSources) {
    if (source.bit != bit) continue;
    HKEY root = HKEY_CURRENT_USER;
    std::wstring key = mode::kClientKey;
    if (source.source == mode::Source::MachineClientKey) {
      root = HKEY_LOCAL_MACHINE;
    } else if (source.source == mode::Source::ComponentSettings) {
      root = GetRootUserRegistryKey();
      key += L"\\";
      key += source.component;
    }
    DWORD value = 0;
    const bool stored = GetRegistryDWORD(root, key.c_str(), source.value_name, &value) == ERROR_SUCCESS;
    return {bit, source.value_name, short_root(root) + L"\\" + key, stored};
  }
  if (bit == mode::kUserRootIsCurrentUser) return {bit, L"(user root chosen)", L"SetMvSupMode", false};
  if (bit == mode::kInitialised) return {bit, L"(initialised)", L"start-up", false};
  return {bit, L"(unnamed)", L"SetMvSupMode", false};
}

struct Directory {
  const wchar_t* name;
  int (WINAPI* getter)(LPWSTR, int);
};

constexpr Directory kDirectories[] = {
    {L"Program", GetProgramDirectoryPath},   {L"ProgramLang", GetProgramLangDirectoryPath},
    {L"Data", GetDataDirectoryPath},         {L"DataLang", GetDataLangDirectoryPath},
    {L"Work", GetWorkDirectoryPath},         {L"Cache", GetCacheDirectoryPath},
    {L"Home", GetHomeDirectoryPath},         {L"Script", GetScriptDirectoryPath},
    {L"ScriptLang", GetScriptLangDirectoryPath}, {L"Log", GetLogDirectoryPath},
};

struct Info {
  DWORD mode;
  std::vector<BitReport> bits;
  HKEY user_root;
  int max_path;
  DWORD max_items;
  std::wstring illegal_chars;
  std::vector<std::pair<std::wstring, std::wstring>> directories;  // empty path: not set
  DWORD lang_id;
  std::wstring satellite_path;
  bool satellite_exists;
  bool satellite_loaded;
};

Info gather() {
  Info info{};
  info.mode = static_cast<DWORD>(GetMvSupMode(~MVSUP_MODE_RELOAD));
  for (int i = 0; i < 32; ++i)
    if (info.mode & (1u << i)) info.bits.push_back(describe_bit(1u << i));
  info.user_root = GetRootUserRegistryKey();

  wchar_t buffer[MAX_PATH + 1];
  info.max_path = mode::max_path_for_work_directory(GetWorkDirectoryPath(buffer, mode::kWorkDirectoryCapacity));
  info.max_items = GetDwordSetting(mode::kMaxItemsComponent, mode::kMaxItemsValue, mode::kDefaultMaxItems);
  wchar_t illegal[mode::kIllegalCharsCapacity];
  GetStringSetting(mode::kIllegalCharsComponent, mode::kIllegalCharsValue, mode::kDefaultIllegalChars, illegal,
                   mode::kIllegalCharsCapacity);
  info.illegal_chars = illegal;

  for (const Directory& directory : kDirectories) {
    const int length = directory.getter(buffer, MAX_PATH);
    info.directories.emplace_back(directory.name, length > 0 ? std::wstring(buffer, length) : std::wstring());
  }
  info.directories.emplace_back(L"Personal", GetPersonalDirectory(buffer, MAX_PATH) ? buffer : L"");

  info.lang_id = GetDwordSetting(L"MvAxess\\Settings", L"LangId", 0) & 0xFFFF;
  // The satellite lives in the program language directory.
  if (GetProgramLangDirectoryPath(buffer, MAX_PATH) > 0) {
    info.satellite_path = std::wstring(buffer) + L"\\SDKSatellite.dll";
    info.satellite_exists = GetFileAttributesW(info.satellite_path.c_str()) != INVALID_FILE_ATTRIBUTES;
    info.satellite_loaded = GetModuleHandleW(info.satellite_path.c_str()) != nullptr;
  }
  return info;
}

std::wstring lang_hex(DWORD lang_id) {
  wchar_t text[8];
  std::swprintf(text, 8, L"0x%04lX", static_cast<unsigned long>(lang_id));
  return text;
}

void print_text(const Info& info) {
  std::wstring out;
  out += L"Mode word        " + hex32(info.mode) + L"\n";
  for (const BitReport& bit : info.bits) {
    std::wstring name = bit.name;
    name.resize(std::max<size_t>(name.size(), 30), L' ');
    out += L"  " + hex32(bit.bit) + L"  " + name + L"  " + bit.where;
    if (bit.where.find(L'\\') != std::wstring::npos && !bit.stored) out += L" (default)";
    out += L"\n";
  }
  out += L"User registry    " + root_name(info.user_root) + L"\n";
  out += L"Max path         " + std::to_wstring(info.max_path) + L"\n";
  out += L"Max items        " + std::to_wstring(info.max_items) + L"\n";
  out += L"Illegal chars    " + info.illegal_chars + L"\n";
  out += L"Directories\n";
  for (const auto& [name, path] : info.directories) {
    std::wstring label = name;
    label.resize(12, L' ');
    out += L"  " + label + L"  " + (path.empty() ? std::wstring(L"not set") : path) + L"\n";
  }
  out += L"LangId           " + lang_hex(info.lang_id) + L"\n";
  out += L"Satellite        ";
  if (info.satellite_path.empty())
    out += L"none (program directory not set)\n";
  else
    out += info.satellite_path +
           (info.satellite_loaded ? L" (loaded)" : info.satellite_exists ? L" (present, not loaded)" : L" (missing)") +
           L"\n";
  write_out(out);
}

void print_json(const Info& info) {
  JsonWriter json;
  json.begin_object();
  json.string(L"mode", hex32(info.mode));
  json.begin_array(L"modeBits");
  for (const BitReport& bit : info.bits) {
    json.begin_object()
        .string(L"bit", hex32(bit.bit))
        .string(L"name", bit.name)
        .string(L"source", bit.where)
        .boolean(L"stored", bit.stored)
        .end_object();
  }
  json.end_array();
  json.string(L"userRegistryRoot", root_name(info.user_root));
  json.number(L"maxPath", info.max_path);
  json.number(L"maxItems", info.max_items);
  json.string(L"illegalPathChars", info.illegal_chars);
  json.begin_object(L"directories");
  for (const auto& [name, path] : info.directories) {
    if (path.empty())
      json.null(name);
    else
      json.string(name, path);
  }
  json.end_object();
  json.string(L"langId", lang_hex(info.lang_id));
  json.begin_object(L"satellite");
  if (info.satellite_path.empty())
    json.null(L"path");
  else
    json.string(L"path", info.satellite_path);
  json.boolean(L"exists", info.satellite_exists).boolean(L"loaded", info.satellite_loaded);
  json.end_object();
  json.end_object();
  write_out(json.str());
}

int run_info(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (!args.rest().empty()) return fail(L"info takes no arguments");
  const Info info = gather();
  if (as_json)
    print_json(info);
  else
    print_text(info);
  return 0;
}

const CommandRegistration kInfo{{
    L"info",
    L"show the configuration as the library sees it",
    L"Usage: mvsup info [--json]\n\n"
    L"Shows the effective configuration of the library in this process: the mode\n"
    L"word with each set bit, its registry value and where it was read; the user\n"
    L"registry root; the limits (max path, max folder items, illegal path\n"
    L"characters); every client directory (or \"not set\"); the language id and the\n"
    L"satellite library it selects.\n\n"
    L"  --json   the same as one JSON object\n",
    run_info,
}};

}  // namespace
}  // namespace mvsup::tool
