// mvsup trace on|off|status|show: switch the call-trace log and read it.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "command.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "output.h"

namespace mvsup::tool {
namespace {

namespace flag = trace::flag;

constexpr const wchar_t* kDefaultDirectory = L"%TEMP%\\Mervane Trace";

std::wstring expand(const std::wstring& text) {
  wchar_t buffer[32768];
  const DWORD n = ExpandEnvironmentStringsW(text.c_str(), buffer, 32768);
  return (n == 0 || n > 32768) ? text : std::wstring(buffer);
}

std::wstring read_machine_string(const wchar_t* name) {
  wchar_t buffer[1024];
  if (GetRegistryString(HKEY_LOCAL_MACHINE, trace::kMachineKey, name, buffer, 1024) != ERROR_SUCCESS) return {};
  return buffer;
}

std::wstring read_user_string(const wchar_t* name) {
  wchar_t buffer[300];
  GetStringSetting(trace::kComponentKey, name, L"", buffer, 300);
  return buffer;
}

std::wstring call_trace_directory() {
  const std::wstring path = read_machine_string(trace::kLogPathValue);
  return path.empty() ? std::wstring() : expand(path) + L"\\" + trace::kFolderName;
}

struct LogFile {
  std::wstring path;
  ULONGLONG written;
};

// Log files of the CallTrace folder, newest first, leaving out this process's own.
std::vector<LogFile> log_files() {
  std::vector<LogFile> files;
  const std::wstring directory = call_trace_directory();
  if (directory.empty()) return files;
  wchar_t own[32];
  std::swprintf(own, 32, L"-%lX-", GetCurrentProcessId());
  WIN32_FIND_DATAW data;
  unique_find find(FindFirstFileW((directory + L"\\*.log").c_str(), &data));
  if (!find) return files;
  do {
    if (std::wstring(data.cFileName).find(own) != std::wstring::npos) continue;
    const ULONGLONG written = (static_cast<ULONGLONG>(data.ftLastWriteTime.dwHighDateTime) << 32) |
                              data.ftLastWriteTime.dwLowDateTime;
    files.push_back({directory + L"\\" + data.cFileName, written});
  } while (FindNextFileW(find.get(), &data));
  std::sort(files.begin(), files.end(), [](const LogFile& a, const LogFile& b) { return a.written > b.written; });
  return files;
}

// The file this process writes, when tracing is active in it.
std::wstring own_log_file() {
  const std::wstring directory = call_trace_directory();
  if (directory.empty()) return {};
  wchar_t pattern[64];
  std::swprintf(pattern, 64, L"\\*-%lX-*.log", GetCurrentProcessId());
  WIN32_FIND_DATAW data;
  unique_find find(FindFirstFileW((directory + pattern).c_str(), &data));
  return find ? directory + L"\\" + data.cFileName : std::wstring();
}

std::wstring describe_flags(DWORD flags) {
  std::wstring text = L"level " + std::to_wstring(flags & flag::kLevelMask);
  const struct {
    uint32_t bit;
    const wchar_t* name;
  } names[] = {
      {flag::kActive, L"active"},
      {flag::kThreadInName, L"file per thread"},
      {flag::kNameByLibrary, L"file named by library"},
      {flag::kExtended, L"extended"},
      {flag::kIgnoreForced, L"forced scopes ignored"},
      {flag::kReloadEveryQuery, L"re-read at every query"},
      {flag::kMethodFilter, L"method filter"},
      {flag::kConsultEnable, L"EnableTracing consulted"},
  };
  for (const auto& entry : names)
    if (flags & entry.bit) text += std::wstring(L", ") + entry.name;
  if (flags & flag::kDetailMask) text += L", detail " + hex32(flags & flag::kDetailMask);
  return text;
}

int run_on(Args& args) {
  const std::wstring component = args.take_option(L"--component").value_or(L"SDK");
  const std::wstring level_text = args.take_option(L"--level").value_or(L"2");
  const auto directory = args.take_option(L"--dir");
  const auto methods = args.take_option(L"--methods");
  const auto libs = args.take_option(L"--libs");
  const bool per_thread = args.take_flag(L"--per-thread");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (!args.rest().empty()) return fail(L"unexpected argument " + args.rest().front());
  wchar_t* end = nullptr;
  const unsigned long level = wcstoul(level_text.c_str(), &end, 10);
  if (level_text.empty() || *end != L'\0' || level > 255) return fail(L"--level takes a number from 0 to 255");

  std::wstring path = directory.value_or(read_machine_string(trace::kLogPathValue));
  if (path.empty()) path = kDefaultDirectory;

  DWORD flags = level | (per_thread ? flag::kThreadInName : 0);
  DWORD enable = 0;
  if (methods) {
    flags |= flag::kMethodFilter;
    enable |= trace::enable::kOn;
  }
  if (libs) {
    enable |= trace::enable::kOn | trace::enable::kRequireLibrary;
    if (!methods) flags |= flag::kConsultEnable;
  }
  if (!methods && !libs) flags |= flag::kActive;

  if (LONG rc = SetRegistryString(HKEY_LOCAL_MACHINE, trace::kMachineKey, trace::kLogPathValue, path.c_str()))
    return fail(L"cannot write TraceLogPath (error " + std::to_wstring(rc) + L")");
  SetRegistryDWORD(HKEY_LOCAL_MACHINE, trace::kMachineKey, component.c_str(), flags);
  if (methods) SetStringSetting(trace::kComponentKey, trace::kMethodsValue, methods->c_str());
  if (libs) SetStringSetting(trace::kComponentKey, trace::kLibsValue, libs->c_str());
  if (enable) SetDwordSetting(trace::kComponentKey, trace::kEnableValue, enable);

  // The library never creates its folder; switching tracing on does.
  const std::wstring folder = expand(path) + L"\\" + trace::kFolderName;
  SHCreateDirectoryExW(nullptr, folder.c_str(), nullptr);
  if (GetFileAttributesW(folder.c_str()) == INVALID_FILE_ATTRIBUTES)
    return fail(L"cannot create " + folder);
  write_out(L"Tracing on for " + component + L": " + describe_flags(flags) + L"\nLogs go to " + folder +
            L"\nThe next process that loads the library traces.\n");
  return 0;
}

int run_off(Args& args) {
  const std::wstring component = args.take_option(L"--component").value_or(L"SDK");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  DeleteRegistryValue(HKEY_LOCAL_MACHINE, trace::kMachineKey, component.c_str());
  DeleteSetting(trace::kComponentKey, trace::kEnableValue);
  write_out(L"Tracing off for " + component + L" (the log folder is kept).\n");
  return 0;
}

int run_status(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  const std::wstring component = args.take_option(L"--component").value_or(L"SDK");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  const std::wstring path = read_machine_string(trace::kLogPathValue);
  DWORD flags = 0;
  const bool has_flags = GetRegistryDWORD(HKEY_LOCAL_MACHINE, trace::kMachineKey, component.c_str(), &flags) == 0;
  const DWORD enable = GetDwordSetting(trace::kComponentKey, trace::kEnableValue, 0);
  const std::wstring methods = read_user_string(trace::kMethodsValue);
  const std::wstring libs = read_user_string(trace::kLibsValue);
  const std::wstring own = own_log_file();
  if (as_json) {
    JsonWriter json;
    json.begin_object()
        .string(L"traceLogPath", path)
        .string(L"callTrace", call_trace_directory())
        .string(L"component", component)
        .string(L"flags", has_flags ? hex32(flags) : L"")
        .string(L"enableTracing", hex32(enable))
        .string(L"methodsToTrace", methods)
        .string(L"libsToTrace", libs)
        .string(L"thisProcessLog", own)
        .end_object();
    write_out(json.str());
    return 0;
  }
  std::wstring out;
  out += L"TraceLogPath     " + (path.empty() ? std::wstring(L"not set (tracing is off)") : path) + L"\n";
  if (!path.empty()) out += L"CallTrace        " + call_trace_directory() + L"\n";
  out += component + std::wstring(std::max<size_t>(1, 17 - component.size()), L' ') +
         (has_flags ? hex32(flags) + L" (" + describe_flags(flags) + L")" : std::wstring(L"not set")) + L"\n";
  out += L"EnableTracing    " + hex32(enable) + L"\n";
  out += L"MethodsToTrace   " + methods + L"\n";
  out += L"LibsToTrace      " + libs + L"\n";
  out += L"This process     " + (own.empty() ? std::wstring(L"writes no log (tracing is not active here)") : own) + L"\n";
  write_out(out);
  return 0;
}

// Prints what was appended to a file since `offset`; returns the new offset.
LONGLONG print_from(const std::wstring& path, LONGLONG offset) {
  unique_file file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                               nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file) return offset;
  LARGE_INTEGER position;
  position.QuadPart = offset;
  SetFilePointerEx(file.get(), position, nullptr, FILE_BEGIN);
  char chunk[65536];
  DWORD read = 0;
  while (ReadFile(file.get(), chunk, sizeof(chunk), &read, nullptr) && read > 0) {
    fwrite(chunk, 1, read, stdout);
    offset += read;
  }
  fflush(stdout);
  return offset;
}

int run_show(Args& args) {
  const bool follow = args.take_flag(L"--follow");
  const auto seconds = args.take_option(L"--for");
  const auto count_text = args.take_option(L"--files");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (call_trace_directory().empty()) return fail(L"TraceLogPath is not set (mvsup trace on sets it)");
  std::vector<LogFile> files = log_files();
  if (files.empty()) return fail(L"no log files in " + call_trace_directory());
  const size_t count = std::min<size_t>(files.size(), count_text ? std::max(1, _wtoi(count_text->c_str())) : 1);
  // Oldest of the chosen first, so the newest ends up at the bottom.
  for (size_t i = count; i-- > 0;) {
    if (count > 1) write_out(L"== " + files[i].path + L"\n");
    print_from(files[i].path, 0);
  }
  if (!follow) return 0;
  LONGLONG offset = print_from(files[0].path, 0);
  const ULONGLONG until = seconds ? GetTickCount64() + 1000ULL * _wtoi(seconds->c_str()) : ~0ULL;
  while (GetTickCount64() < until) {
    Sleep(250);
    offset = print_from(files[0].path, offset);
  }
  return 0;
}

int run_trace(Args& args) {
  return run_subcommand(args, L"trace", {{L"on", run_on}, {L"off", run_off}, {L"status", run_status}, {L"show", run_show}});
}

const CommandRegistration kTrace{{
    L"trace",
    L"switch the call-trace log on or off, show its state and its files",
    L"Usage: mvsup trace on [--level N] [--dir PATH] [--methods LIST] [--libs LIST]\n"
    L"                      [--per-thread] [--component NAME]\n"
    L"       mvsup trace off [--component NAME]\n"
    L"       mvsup trace status [--json] [--component NAME]\n"
    L"       mvsup trace show [--follow [--for SECONDS]] [--files N]\n\n"
    L"on      writes the machine's trace configuration (HKLM\\Software\\Corvell\\Mervane\n"
    L"        Client\\SETTINGS\\TraceLog) so that the next process that loads the library\n"
    L"        traces, and creates the CallTrace folder under the log directory.\n"
    L"        --level N     trace level (default 2: calls and free-text lines; 3 adds\n"
    L"                      hex dumps)\n"
    L"        --dir PATH    log directory (default: the current one, else\n"
    L"                      %TEMP%\\Mervane Trace); environment references allowed\n"
    L"        --methods L   trace only methods whose names occur in L (MethodsToTrace)\n"
    L"        --libs L      trace only when the library's name occurs in L (LibsToTrace)\n"
    L"        --per-thread  one file per thread\n"
    L"        --component   the component whose flags are set (default SDK, this library)\n"
    L"off     removes the component's flags and EnableTracing; the logs stay.\n"
    L"status  shows the configuration and the log file this process writes.\n"
    L"show    prints the newest log file of the CallTrace folder (--files N: the N\n"
    L"        newest), then with --follow keeps printing what is appended.\n",
    run_trace,
}};

}  // namespace
}  // namespace mvsup::tool
