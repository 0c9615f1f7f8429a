#include "common/message_boxes.h"

#include <algorithm>
#include <mutex>

namespace mvsup::test {

namespace {
constexpr int kMessageTextControl = 0xFFFF;
constexpr DWORD kPollMilliseconds = 20;
}  // namespace

struct MessageBoxWatcher::State {
  int button = IDOK;
  HANDLE stop = nullptr;
  mutable std::mutex mutex;
  std::vector<ShownBox> seen;
  std::vector<HWND> answered;

  ~State() {
    if (stop) CloseHandle(stop);
  }

  static std::wstring window_text(HWND window) {
    wchar_t text[2048] = {};
    GetWindowTextW(window, text, static_cast<int>(std::size(text)));
    return text;
  }

  void answer(HWND box) {
    {
      std::lock_guard lock(mutex);
      if (std::find(answered.begin(), answered.end(), box) != answered.end()) return;
      answered.push_back(box);
      ShownBox shown;
      shown.caption = window_text(box);
      if (HWND message = GetDlgItem(box, kMessageTextControl)) shown.text = window_text(message);
      shown.style = GetWindowLongPtrW(box, GWL_STYLE);
      shown.ex_style = GetWindowLongPtrW(box, GWL_EXSTYLE);
      shown.owner = GetWindow(box, GW_OWNER);
      shown.thread = GetWindowThreadProcessId(box, nullptr);
      seen.push_back(std::move(shown));
    }
    if (HWND control = GetDlgItem(box, button))
      PostMessageW(box, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), reinterpret_cast<LPARAM>(control));
    else
      PostMessageW(box, WM_CLOSE, 0, 0);
  }

  static BOOL CALLBACK visit(HWND window, LPARAM self) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != GetCurrentProcessId() || !IsWindowVisible(window)) return TRUE;
    wchar_t class_name[16] = {};
    GetClassNameW(window, class_name, static_cast<int>(std::size(class_name)));
    if (std::wstring_view(class_name) == L"#32770") reinterpret_cast<State*>(self)->answer(window);
    return TRUE;
  }

  void sweep() {
    EnumWindows(visit, reinterpret_cast<LPARAM>(this));
    // A window handle may be reused by a later box: forget the ones gone.
    std::lock_guard lock(mutex);
    std::erase_if(answered, [](HWND window) { return !IsWindow(window); });
  }

  static DWORD WINAPI run(void* parameter) {
    auto* state = static_cast<State*>(parameter);
    while (WaitForSingleObject(state->stop, kPollMilliseconds) == WAIT_TIMEOUT) state->sweep();
    state->sweep();
    return 0;
  }
};

MessageBoxWatcher::MessageBoxWatcher(int button) : state_(std::make_shared<State>()) {
  state_->button = button;
  state_->stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  thread_ = CreateThread(nullptr, 0, State::run, state_.get(), 0, nullptr);
}

MessageBoxWatcher::~MessageBoxWatcher() {
  SetEvent(state_->stop);
  if (thread_) {
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
  }
}

std::vector<ShownBox> MessageBoxWatcher::boxes() const {
  std::lock_guard lock(state_->mutex);
  return state_->seen;
}

bool MessageBoxWatcher::wait_for(size_t count, DWORD timeout_ms) const {
  const ULONGLONG deadline = GetTickCount64() + timeout_ms;
  for (;;) {
    {
      std::lock_guard lock(state_->mutex);
      if (state_->seen.size() >= count) return true;
    }
    if (GetTickCount64() >= deadline) return false;
    Sleep(kPollMilliseconds);
  }
}

}  // namespace mvsup::test
