// Message boxes in tests: a watcher thread that finds the boxes this process
// shows (top-level dialogs of class "#32770"), records what they said and
// how they were made, and presses a button, so that no test ever waits for a
// person. Run the test program under a display (the test command provides
// Xvfb).
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

namespace mvsup::test {

struct ShownBox {
  std::wstring caption;
  std::wstring text;      // the box's message (its static control 0xFFFF)
  LONG_PTR style = 0;     // GWL_STYLE
  // GWL_EXSTYLE. Wine 8 does not reflect MB_TOPMOST here (no WS_EX_TOPMOST
  // on the box, also not after it is shown), so a test cannot see it this way.
  LONG_PTR ex_style = 0;
  HWND owner = nullptr;   // GW_OWNER
  DWORD thread = 0;       // the thread that shows the box
};

class MessageBoxWatcher {
 public:
  // Starts watching; every box found is answered with `button` (IDOK unless
  // told otherwise; a box without that button is closed with WM_CLOSE).
  explicit MessageBoxWatcher(int button = IDOK);
  // Stops watching; boxes still open are closed first.
  ~MessageBoxWatcher();
  MessageBoxWatcher(const MessageBoxWatcher&) = delete;
  MessageBoxWatcher& operator=(const MessageBoxWatcher&) = delete;

  // The boxes seen so far, in the order they appeared.
  std::vector<ShownBox> boxes() const;
  // Waits until at least `count` boxes were seen; false on timeout.
  bool wait_for(size_t count, DWORD timeout_ms = 10000) const;

 private:
  struct State;
  std::shared_ptr<State> state_;
  HANDLE thread_ = nullptr;
};

}  // namespace mvsup::test
