// mvsup ipc [take|drop]: the namespace extension's IPC lock.
#include <windows.h>

#include <cstring>
#include <string>

#include "MvSup2u.h"
#include "command.h"
#include "frame/win32_handles.h"
#include "output.h"
#include "shell/ipc_lock.h"

namespace mvsup::tool {
namespace {

struct BlockState {
  bool present = false;
  LONG count = 0;
  DWORD release_tick = 0;
};

// The shared block as it is now, read without changing it.
BlockState read_block() {
  BlockState state;
  unique_handle mapping(OpenFileMappingW(FILE_MAP_READ, FALSE, shell::kIpcBlockName));
  if (!mapping) return state;
  unique_view view(MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0));
  if (!view) return state;
  state.present = true;
  std::memcpy(&state.count, static_cast<const BYTE*>(view.get()) + 4, sizeof(state.count));
  std::memcpy(&state.release_tick, static_cast<const BYTE*>(view.get()) + 8, sizeof(state.release_tick));
  return state;
}

int report(const BlockState& state, bool as_json) {
  const DWORD idle = GetTickCount() - state.release_tick;
  if (as_json) {
    JsonWriter json;
    json.begin_object().boolean(L"present", state.present);
    if (state.present)
      json.number(L"locks", state.count).number(L"last_release_tick", state.release_tick).number(L"idle_ms", idle);
    write_out(json.end_object().str());
    return 0;
  }
  if (!state.present) {
    write_out(L"Shared block \"" + std::wstring(shell::kIpcBlockName) +
              L"\": not there (the namespace extension is not running)\n");
    return 0;
  }
  std::wstring text = L"Locks held:   " + std::to_wstring(state.count) + L"\n";
  text += state.release_tick == 0 ? L"Last release: none\n"
                                  : L"Last release: tick " + std::to_wstring(state.release_tick) + L", " +
                                        std::to_wstring(idle / 1000) + L" s ago\n";
  write_out(text);
  return 0;
}

int run_ipc(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  if (args.rest().size() > 1) return fail(L"unexpected argument " + args.rest()[1]);
  if (args.rest().empty()) return report(read_block(), as_json);
  const std::wstring& verb = args.rest().front();
  if (verb != L"take" && verb != L"drop") return fail(L"ipc takes take, drop or nothing (see mvsup ipc --help)");
  if (!read_block().present) return fail(L"the shared block is not there: the namespace extension is not running");
  const LONG count = AddIpcLock(verb == L"take" ? TRUE : FALSE);
  const BlockState after = read_block();
  // -1 is both a failure and a count that a drop from 0 leaves.
  if (count == -1 && !(after.present && after.count == -1)) return fail(L"the shared block cannot be written");
  return report(after, as_json);
}

const CommandRegistration kIpc{{
    L"ipc",
    L"the namespace extension's IPC lock: show, take or drop one",
    L"Usage: mvsup ipc [take|drop] [--json]\n\n"
    L"Without an argument, shows the lock count and the time of the last release\n"
    L"in the namespace extension's shared block \"MvNsx IPC Data Object\".\n"
    L"take / drop: AddIpcLock(TRUE / FALSE), then shows the block. The lock is\n"
    L"the extension's: a lock taken here stays until dropped.\n\n"
    L"  --json   {\"present\", \"locks\", \"last_release_tick\", \"idle_ms\"}\n",
    run_ipc,
}};

}  // namespace
}  // namespace mvsup::tool
