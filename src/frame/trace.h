// The call-trace log. One process-wide tracer; every traced export opens a
// CallScope, which writes START on entry and STOP with the scope's results on
// every return path. When tracing is off a record costs one load and a
// compare: the flag word is read inline and nothing else happens.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <string>

namespace mvsup::trace {

namespace flag {
inline constexpr uint32_t kLevelMask = 0x000000FF;
inline constexpr uint32_t kDetailMask = 0x0000F000;
inline constexpr uint32_t kActive = 0x00010000;
inline constexpr uint32_t kThreadInName = 0x00100000;
inline constexpr uint32_t kNameByLibrary = 0x00200000;
inline constexpr uint32_t kExtended = 0x01000000;
inline constexpr uint32_t kBannerWritten = 0x02000000;
inline constexpr uint32_t kIgnoreForced = 0x04000000;
inline constexpr uint32_t kFromMachineKey = 0x08000000;
inline constexpr uint32_t kReloadEveryQuery = 0x10000000;
inline constexpr uint32_t kMethodFilter = 0x40000000;
inline constexpr uint32_t kConsultEnable = 0x80000000;
// Bits that survive a reload of the configuration.
inline constexpr uint32_t kKeptOnReload = 0x0F010000;
// Bits that make start-up initialise the tracer.
inline constexpr uint32_t kInitialiseMask = kConsultEnable | kMethodFilter | kReloadEveryQuery | kActive;
}  // namespace flag

// Values of EnableTracing.
namespace enable {
inline constexpr DWORD kOn = 0x1;
inline constexpr DWORD kExtended = 0x10000;
inline constexpr DWORD kRequireLibrary = 0x80000000;
}  // namespace enable

inline constexpr const wchar_t* kMachineKey = L"Software\\Corvell\\Mervane Client\\SETTINGS\\TraceLog";
inline constexpr const wchar_t* kComponentKey = L"Settings\\TraceLog";
inline constexpr const wchar_t* kLogPathValue = L"TraceLogPath";
inline constexpr const wchar_t* kEnableValue = L"EnableTracing";
inline constexpr const wchar_t* kMethodsValue = L"MethodsToTrace";
inline constexpr const wchar_t* kLibsValue = L"LibsToTrace";
inline constexpr const wchar_t* kFolderName = L"CallTrace";
inline constexpr int kForcedLevel = 5;

// The flag word. Read inline on every record; updated with plain
// read-modify-write, as the tracer has always done.
extern std::atomic<uint32_t> g_flags;

// Slow paths; only reached when a flag asks for more than the inline check.
int level_slow() noexcept;

// Current trace level threshold while tracing is active, else 0.
inline int level() noexcept {
  const uint32_t flags = g_flags.load(std::memory_order_relaxed);
  if (flags & (flag::kReloadEveryQuery | flag::kConsultEnable)) return level_slow();
  return (flags & flag::kActive) ? static_cast<int>(flags & flag::kLevelMask) : 0;
}

// Detail bits (flags & 0xF000) while tracing is active, else 0.
unsigned detail() noexcept;

// Reads TraceLogPath and the component's flags from the machine key.
void configure_from_machine_key(const wchar_t* component) noexcept;
// Sets the names, builds the file name and writes the banner. flag non-zero
// names the file after the library instead of the executable.
void initialise(const char* component, const char* library, const char* compile_date, int flag) noexcept;
// Start-up: configure from the machine key and initialise when the flags ask.
void start(const wchar_t* component, const char* component_narrow, const char* library,
           const char* compile_date) noexcept;

// Full path of the log file that the calling thread writes; empty when
// tracing has no log path.
std::wstring log_file_name();

void write_line(const char* format, va_list args) noexcept;
void write_line(const wchar_t* format, va_list args) noexcept;
void write_raw(const char* format, va_list args) noexcept;
void write_dump(const void* address, size_t length) noexcept;

// Free-text line, written at level 2 and above.
inline void line(const char* format, ...) noexcept __attribute__((format(__MINGW_PRINTF_FORMAT, 1, 2)));
inline void line(const char* format, ...) noexcept {
  if (level() < 2) return;
  va_list args;
  va_start(args, format);
  write_line(format, args);
  va_end(args);
}

inline void line(const wchar_t* format, ...) noexcept {
  if (level() < 2) return;
  va_list args;
  va_start(args, format);
  write_line(format, args);
  va_end(args);
}

// Text written whenever tracing is active (banner-like output).
void raw(const char* format, ...) noexcept __attribute__((format(__MINGW_PRINTF_FORMAT, 1, 2)));

// Hex dump, written at level 3 and above.
inline void dump(const void* address, size_t length) noexcept {
  if (level() < 3) return;
  write_dump(address, length);
}

// Bracket of one traced call. Construct at the top of a function; set hr()
// and res() before returning; the destructor writes STOP and undoes what the
// scope changed in the tracer.
class CallScope {
 public:
  explicit CallScope(const char* name, uintptr_t id = 0, uint8_t level = 1) noexcept
      : name_(name), id_(static_cast<uint32_t>(id)), level_(level) {
    if (needs_open(level)) open();
  }

  // A scope named by a source line instead of a method name.
  CallScope(int line, const char* module, uint8_t level = 1) noexcept
      : module_(module), id_(static_cast<uint32_t>(line)), level_(level) {
    if (needs_open(level)) open();
  }

  CallScope(const CallScope&) = delete;
  CallScope& operator=(const CallScope&) = delete;

  ~CallScope() {
    if (opened_) close();
  }

  // Record the function's result (HR) or secondary result (RES); each returns
  // its argument so that `return scope.hr(E_FAIL);` reads naturally.
  template <typename T>
  T hr(T value) noexcept {
    hr_ = static_cast<int32_t>(value);
    return value;
  }
  template <typename T>
  T res(T value) noexcept {
    res_ = static_cast<int32_t>(static_cast<intptr_t>(value));
    return value;
  }

 private:
  static bool needs_open(uint8_t level) noexcept {
    const uint32_t flags = g_flags.load(std::memory_order_relaxed);
    return level == kForcedLevel ||
           (flags & (flag::kActive | flag::kMethodFilter | flag::kReloadEveryQuery | flag::kConsultEnable));
  }
  void open() noexcept;
  void close() noexcept;

  const char* name_ = nullptr;
  const char* module_ = nullptr;
  uint32_t id_ = 0;
  uint8_t level_ = 1;
  uint8_t scope_flags_ = 0;
  bool opened_ = false;
  int32_t hr_ = 0;
  int32_t res_ = 0;
};

// Text of a RES value: decimal for small codes, lower-case hex otherwise.
std::string format_res(int32_t res);

}  // namespace mvsup::trace
