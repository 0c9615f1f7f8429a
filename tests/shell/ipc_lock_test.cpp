// AddIpcLock against a shared block that another process made, as the
// namespace extension does; a second client process takes and drops locks
// through the library alongside this one.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "MvSup2u.h"
#include "common/message_boxes.h"
#include "common/paths.h"
#include "common/registry_sandbox.h"
#include "common/trace_log.h"
#include "frame/win32_handles.h"

namespace mvsup::test {
namespace {

constexpr const wchar_t* kBlockName = L"MvNsx IPC Data Object";
const std::wstring kFixtureExe = exe_directory() + L"\\MvIpcFixture.exe";

// Runs the fixture program and returns its exit code (0xDEAD when it could
// not be run); with keep_running, returns at once with the process handle.
DWORD run_fixture(const std::wstring& arguments, HANDLE* keep_running = nullptr) {
  std::wstring command = L"\"" + kFixtureExe + L"\" " + arguments;
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(kFixtureExe.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &process))
    return 0xDEAD;
  CloseHandle(process.hThread);
  if (keep_running != nullptr) {
    *keep_running = process.hProcess;
    return 0;
  }
  WaitForSingleObject(process.hProcess, 30000);
  DWORD code = 0xDEAD;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hProcess);
  return code;
}

// The extension's side: a host process that owns the block while this
// object lives.
class BlockHost {
 public:
  explicit BlockHost(bool unmappable = false, LONG count = 0) {
    static int serial = 0;
    const std::wstring tag = std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++serial);
    const std::wstring ready_name = L"MvIpcTestReady-" + tag;
    quit_name_ = L"MvIpcTestQuit-" + tag;
    unique_handle ready(CreateEventW(nullptr, TRUE, FALSE, ready_name.c_str()));
    quit_.reset(CreateEventW(nullptr, TRUE, FALSE, quit_name_.c_str()));
    std::wstring arguments = L"host " + ready_name + L" " + quit_name_;
    arguments += unmappable ? L" unmappable " : L" open ";
    arguments += std::to_wstring(count);
    HANDLE process = nullptr;
    if (run_fixture(arguments, &process) == 0xDEAD) {
      ADD_FAILURE() << "cannot start MvIpcFixture.exe";
      return;
    }
    process_.reset(process);
    HANDLE waits[] = {ready.get(), process_.get()};
    if (WaitForMultipleObjects(2, waits, FALSE, 20000) != WAIT_OBJECT_0) ADD_FAILURE() << "host did not start";
  }
  ~BlockHost() {
    SetEvent(quit_.get());
    if (process_) WaitForSingleObject(process_.get(), 20000);
  }

 private:
  std::wstring quit_name_;
  unique_handle quit_;
  unique_handle process_;
};

struct BlockFields {
  LONG count = 0;
  DWORD release_tick = 0;
};

// Read independently of the library.
BlockFields read_block() {
  BlockFields fields;
  unique_handle mapping(OpenFileMappingW(FILE_MAP_READ, FALSE, kBlockName));
  if (!mapping) {
    ADD_FAILURE() << "no shared block";
    return fields;
  }
  unique_view view(MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0));
  if (!view) {
    ADD_FAILURE() << "cannot map the shared block";
    return fields;
  }
  std::memcpy(&fields.count, static_cast<BYTE*>(view.get()) + 4, 4);
  std::memcpy(&fields.release_tick, static_cast<BYTE*>(view.get()) + 8, 4);
  return fields;
}

class IpcLock : public RegistrySandbox {};

TEST_F(IpcLock, WithoutTheBlockEveryCallFailsQuietly) {
  MessageBoxWatcher boxes;
  EXPECT_EQ(AddIpcLock(TRUE), -1);
  EXPECT_EQ(AddIpcLock(FALSE), -1);
  Sleep(300);  // a box would have been found by now
  EXPECT_TRUE(boxes.boxes().empty());
  // The library never makes the block itself.
  unique_handle mapping(OpenFileMappingW(FILE_MAP_READ, FALSE, kBlockName));
  EXPECT_FALSE(mapping);
}

TEST_F(IpcLock, TwoProcessesShareTheCountAndDropsStampTheTime) {
  BlockHost host;
  EXPECT_EQ(read_block().count, 0);

  EXPECT_EQ(AddIpcLock(TRUE), 1);
  EXPECT_EQ(run_fixture(L"take"), 2u);
  EXPECT_EQ(read_block().count, 2);
  EXPECT_EQ(read_block().release_tick, 0u) << "a take stamps nothing";

  const DWORD before = GetTickCount();
  EXPECT_EQ(run_fixture(L"drop"), 1u);
  const DWORD after = GetTickCount();
  const BlockFields fields = read_block();
  EXPECT_EQ(fields.count, 1);
  EXPECT_LE(fields.release_tick - before, after - before) << "the other process's drop stamped its tick";

  Sleep(50);
  const DWORD second_drop = GetTickCount();
  EXPECT_EQ(AddIpcLock(FALSE), 0);
  EXPECT_GE(read_block().release_tick, second_drop);
  // Nothing keeps the count from going below zero: -1 is then both a count
  // and the failure value.
  EXPECT_EQ(AddIpcLock(FALSE), -1);
  EXPECT_EQ(read_block().count, -1);
  EXPECT_EQ(AddIpcLock(TRUE), 0);
}

TEST_F(IpcLock, CountsAnExistingValue) {
  BlockHost host(false, 41);
  EXPECT_EQ(AddIpcLock(TRUE), 42);
  EXPECT_EQ(read_block().count, 42);
}

TEST_F(IpcLock, BlockThatGivesNoWritableViewIsReported) {
  BlockHost host(true);
  MessageBoxWatcher boxes;
  EXPECT_EQ(AddIpcLock(TRUE), -1);
  ASSERT_TRUE(boxes.wait_for(1));
  const ShownBox box = boxes.boxes().front();
  EXPECT_EQ(box.caption, L"MVSUP2U.DLL");
  EXPECT_EQ(box.text,
            L"Mervane Client Inter-Process Communication failed.  You may be low on system memory.  Try exiting "
            L"other applications or restarting your system.  If the problem persists, you may need to increase "
            L"your system memory.");
  EXPECT_EQ(box.owner, nullptr);
}

TEST_F(IpcLock, TraceLinesOfATakeAndOfAMissingBlock) {
  TraceLogFolder log(0x10002);  // active, level 2; read when the child loads the library
  EXPECT_EQ(run_fixture(L"take"), static_cast<DWORD>(-1));
  {
    BlockHost host;
    EXPECT_EQ(run_fixture(L"take"), 1u);
    EXPECT_EQ(run_fixture(L"drop"), 0u);
  }
  const std::string text = log.read_all();
  const size_t missing = text.find("AddIpcLock()\nIpcDataObject open failed.\n");
  const size_t taken = text.find("AddIpcLock()\nAdded IpcLock - cRef=1\n");
  const size_t dropped = text.find("AddIpcLock()\nAdded IpcLock - cRef=0\n");
  EXPECT_NE(missing, std::string::npos) << text;
  EXPECT_NE(taken, std::string::npos) << text;
  EXPECT_NE(dropped, std::string::npos) << text;
}

}  // namespace
}  // namespace mvsup::test
