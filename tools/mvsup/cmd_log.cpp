// mvsup log list|find|compact|clear: the file-creation log.
#include <windows.h>

#include <string>
#include <vector>

#include "MvSup2u.h"
#include "command.h"
#include "frame/text.h"
#include "output.h"
#include "storage/creation_log_format.h"

namespace mvsup::tool {
namespace {

std::wstring log_path() {
  wchar_t directory[MAX_PATH] = {};
  const int length = GetLogDirectoryPath(directory, MAX_PATH);
  return creation_log::log_file_name(std::wstring_view(directory, length > 0 ? static_cast<size_t>(length) : 0));
}

bool read_log(const std::wstring& path, std::string* text) {
  HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                            nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  char chunk[65536];
  DWORD read = 0;
  while (ReadFile(file, chunk, sizeof(chunk), &read, nullptr) && read > 0) text->append(chunk, read);
  CloseHandle(file);
  return true;
}

struct Entry {
  std::wstring state, time, path, creator;
  bool exists;
};

std::vector<Entry> entries(const std::string& text) {
  std::vector<Entry> out;
  creation_log::for_each_record(text, [&](const creation_log::Record& record) {
    const std::wstring path = text::to_wide(record.path);
    out.push_back({std::wstring(1, static_cast<wchar_t>(static_cast<unsigned char>(record.state))),
                   text::to_wide(record.time), path, text::to_wide(record.creator),
                   !path.empty() && GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES});
    return true;
  });
  return out;
}

int run_list(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (!args.rest().empty()) return fail(L"unexpected argument " + args.rest().front());
  const std::wstring path = log_path();
  if (path.empty()) return fail(L"no log directory (the Location settings give none)");
  std::string text;
  const bool present = read_log(path, &text);
  const std::vector<Entry> list = entries(text);
  if (as_json) {
    JsonWriter json;
    json.begin_object().string(L"log", path).boolean(L"present", present).begin_array(L"records");
    for (const Entry& e : list)
      json.begin_object()
          .string(L"state", e.state)
          .string(L"time", e.time)
          .string(L"path", e.path)
          .string(L"creator", e.creator)
          .boolean(L"exists", e.exists)
          .end_object();
    json.end_array().end_object();
    write_out(json.str());
    return 0;
  }
  std::wstring out = L"Log " + path + (present ? L"" : L" (not there)") + L"\n";
  for (const Entry& e : list)
    out += e.state + L" " + e.time + L"  " + e.creator + L"  " + e.path + (e.exists ? L"" : L"  [gone]") + L"\n";
  out += std::to_wstring(list.size()) + L" records\n";
  write_out(out);
  return 0;
}

int run_find(Args& args) {
  const auto creator = args.take_option(L"--creator");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().size() != 1) return fail(L"log find takes one PATH");
  const std::wstring& path = args.rest().front();
  const HRESULT result = GetIsLoggedFile(path.c_str(), creator ? creator->c_str() : nullptr);
  if (FAILED(result)) return fail(L"cannot read the log " + log_path());
  std::wstring out = path + (result == S_OK ? L": logged" : L": not logged");
  if (creator) out += L" by " + *creator;
  write_out(out + L"\n");
  return 0;
}

int run_compact(Args& args) {
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  std::string before;
  read_log(log_path(), &before);
  if (const HRESULT result = UpdateLogFile(); FAILED(result)) return fail(L"compaction failed: " + hex32(result));
  std::string after;
  read_log(log_path(), &after);
  write_out(L"Compacted: " + std::to_wstring(entries(before).size()) + L" records before, " +
            std::to_wstring(entries(after).size()) + L" kept\n");
  return 0;
}

int run_clear(Args& args) {
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (!ClearFileCreationLog()) return fail(L"cannot delete " + log_path());
  write_out(L"Deleted " + log_path() + L"\n");
  return 0;
}

int run_log(Args& args) {
  return run_subcommand(args, L"log",
                        {{L"list", run_list}, {L"find", run_find}, {L"compact", run_compact}, {L"clear", run_clear}});
}

const CommandRegistration kLog{{
    L"log",
    L"show and maintain the file-creation log",
    L"Usage: mvsup log list [--json]\n"
    L"       mvsup log find PATH [--creator NAME]\n"
    L"       mvsup log compact\n"
    L"       mvsup log clear\n\n"
    L"The file-creation log (MvFileCreation.log in the log directory) records the\n"
    L"files that the client's components created.\n"
    L"list     every record: state (+ live, - obsolete), UTC time, creator, path;\n"
    L"         [gone] marks a file that no longer exists.\n"
    L"find     whether PATH was logged (by NAME), by the library's own rule: the first\n"
    L"         live record of the path decides.\n"
    L"compact  drops the records of files that are gone and rewrites legacy records.\n"
    L"clear    deletes the log.\n",
    run_log,
}};

}  // namespace
}  // namespace mvsup::tool
