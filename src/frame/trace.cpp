#include "frame/trace.h"

#include <cstring>
#include <string>
#include <string_view>

#include "frame/library_state.h"
#include "frame/text.h"
#include "frame/win32_handles.h"
#include "settings/registry.h"
#include "settings/settings.h"

namespace mvsup::trace {

std::atomic<uint32_t> g_flags{0};

namespace {

// Names and the file name, set once at initialisation (under the loader
// lock) and only read afterwards.
struct TracerNames {
  std::string component = "UnknownComponent";
  std::string library = "UnknownLibrary";
  std::string compile_date;
  std::wstring component_wide = L"UnknownComponent";
  std::wstring log_directory;  // expanded TraceLogPath
  std::wstring file_prefix;    // <dir>\CallTrace\<base>-MMDDHH-
};

TracerNames& names() {
  static TracerNames instance;
  return instance;
}

uint32_t load() noexcept { return g_flags.load(std::memory_order_relaxed); }
void store(uint32_t flags) noexcept { g_flags.store(flags, std::memory_order_relaxed); }
void set_bits(uint32_t bits) noexcept { store(load() | bits); }
void clear_bits(uint32_t bits) noexcept { store(load() & ~bits); }

// Substring test in the ANSI code page, as the lists are matched.
bool list_holds(const wchar_t* value_name, std::string_view what) {
  wchar_t list[257] = {};
  settings::get_string(kComponentKey, value_name, nullptr, list, 257);
  if (what.empty()) return false;
  return text::to_narrow(list).find(what) != std::string::npos;
}

DWORD read_enable_tracing() noexcept { return settings::get_dword(kComponentKey, kEnableValue, 0); }

// Applies EnableTracing to active/extended; with the library filter when asked.
void apply_enable_tracing(bool with_library_filter) noexcept {
  const DWORD enable = read_enable_tracing();
  uint32_t flags = load() & ~(flag::kActive | flag::kExtended);
  if (enable & enable::kOn) {
    bool on = true;
    if (with_library_filter && (enable & enable::kRequireLibrary)) {
      try {
        on = list_holds(kLibsValue, names().library);
      } catch (...) {
        on = false;
      }
    }
    if (on) flags |= flag::kActive;
  }
  if (enable & enable::kExtended) flags |= flag::kExtended;
  store(flags);
}

void reload() noexcept {
  const uint32_t old = load();
  DWORD fresh = 0;
  if (old & flag::kFromMachineKey) {
    registry::get_dword(HKEY_LOCAL_MACHINE, kMachineKey, names().component_wide.c_str(), &fresh);
    fresh |= flag::kFromMachineKey;
  } else {
    fresh = settings::get_dword(kComponentKey, names().component_wide.c_str(), 0);
  }
  store(fresh | (old & flag::kKeptOnReload));
}

// The method filter, evaluated when a named scope opens.
bool method_filter_matches(const char* method) noexcept {
  const DWORD enable = read_enable_tracing();
  if (load() & flag::kActive) {
    if (!(enable & enable::kOn)) clear_bits(flag::kActive);
    if (!(enable & enable::kExtended)) clear_bits(flag::kExtended);
    return false;
  }
  if (!(enable & enable::kOn)) return false;
  try {
    if (!list_holds(kMethodsValue, method)) return false;
    if ((enable & enable::kRequireLibrary) && !list_holds(kLibsValue, names().library)) return false;
  } catch (...) {
    return false;
  }
  set_bits(flag::kActive | ((enable & enable::kExtended) ? flag::kExtended : 0));
  return true;
}

std::wstring file_name_for_thread() {
  const TracerNames& n = names();
  if (n.file_prefix.empty()) return {};
  const uint32_t flags = load();
  const DWORD thread = (flags & flag::kThreadInName) ? ::GetCurrentThreadId() : 0;
  std::wstring middle;
  if (flags & flag::kNameByLibrary)
    middle = text::to_wide(text::format("%s-%lX", n.library.c_str(), static_cast<unsigned long>(thread)));
  else
    middle = text::to_wide(text::format("%lX-%lX", static_cast<unsigned long>(::GetCurrentProcessId()),
                                        static_cast<unsigned long>(thread)));
  return n.file_prefix + middle + L".log";
}

// Serialises the writes of this process. Taken only while a record is being
// written, so tracing that is off never touches it.
SRWLOCK g_write_lock = SRWLOCK_INIT;

// Appends one whole record: open, one write, close. Records of concurrent
// threads never interleave (the write lock), and the file is opened for
// appending only; line ends are written as CRLF, as a text-mode stream would.
void append(std::string_view record) noexcept {
  if (record.empty() || !(load() & flag::kActive)) return;
  try {
    const std::wstring path = file_name_for_thread();
    if (path.empty()) return;
    std::string bytes;
    bytes.reserve(record.size() + record.size() / 16);
    for (char c : record) {
      if (c == '\n') bytes += '\r';
      bytes += c;
    }
    ::AcquireSRWLockExclusive(&g_write_lock);
    scope_exit unlock([] { ::ReleaseSRWLockExclusive(&g_write_lock); });
    unique_file file(::CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                   nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return;
    DWORD written = 0;
    ::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    file.reset();
  } catch (...) {
    // A record that cannot be formatted or written is lost, never reported.
  }
}

std::string time_stamp() {
  SYSTEMTIME now;
  ::GetSystemTime(&now);
  return text::format("%02d:%02d:%02d:%04d", now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);
}

std::string base_name_for_file(int flag_argument) {
  const TracerNames& n = names();
  if (flag_argument != 0) return n.library;
  char path[257] = {};
  ::GetModuleFileNameA(nullptr, path, 256);
  std::string_view base(path);
  if (const size_t slash = base.rfind('\\'); slash != std::string_view::npos) base.remove_prefix(slash + 1);
  if (const size_t dot = base.rfind('.'); dot != std::string_view::npos) base = base.substr(0, dot);
  return base.empty() ? n.component : std::string(base);
}

}  // namespace

int level_slow() noexcept {
  if (load() & flag::kReloadEveryQuery) reload();
  const uint32_t flags = load();
  if ((flags & flag::kConsultEnable) && (flags & flag::kLevelMask)) apply_enable_tracing(true);
  const uint32_t now = load();
  return (now & flag::kActive) ? static_cast<int>(now & flag::kLevelMask) : 0;
}

unsigned detail() noexcept {
  if (load() & flag::kReloadEveryQuery) reload();
  if (load() & flag::kDetailMask) apply_enable_tracing(false);
  const uint32_t now = load();
  return (now & flag::kActive) ? (now & flag::kDetailMask) : 0;
}

void configure_from_machine_key(const wchar_t* component) noexcept {
  try {
    TracerNames& n = names();
    n.component_wide = component;
    n.log_directory = registry::expand_environment(
        registry::read_string(HKEY_LOCAL_MACHINE, kMachineKey, kLogPathValue).c_str());
    DWORD flags = 0;
    registry::get_dword(HKEY_LOCAL_MACHINE, kMachineKey, component, &flags);
    store(flags | flag::kFromMachineKey);
  } catch (...) {
    store(0);
  }
}

void initialise(const char* component, const char* library, const char* compile_date, int flag_argument) noexcept {
  try {
    TracerNames& n = names();
    n.component = (component && *component) ? component : "UnknownComponent";
    n.library = (library && *library) ? library : "UnknownLibrary";
    n.compile_date = compile_date ? compile_date : "";
    if (n.log_directory.empty()) {
      // No log path: tracing stays off for the life of the process.
      n.file_prefix.clear();
      store(0);
      return;
    }
    SYSTEMTIME local;
    ::GetLocalTime(&local);
    const std::string stem = text::format("%s-%02d%02d%02d-", base_name_for_file(flag_argument).c_str(),
                                          local.wMonth, local.wDay, local.wHour);
    n.file_prefix = n.log_directory + L"\\" + kFolderName + L"\\" + text::to_wide(stem);
  } catch (...) {
    store(0);
    return;
  }
  if (level() > 0) {
    raw("\n********** COMPONENT '%s' *** LIBRARY '%s' *** COMPILED %s **********\n", names().component.c_str(),
        names().library.c_str(), names().compile_date.c_str());
    if (flag_argument == 0) set_bits(flag::kBannerWritten);
  }
}

void start(const wchar_t* component, const char* component_narrow, const char* library,
           const char* compile_date) noexcept {
  configure_from_machine_key(component);
  if (load() & flag::kInitialiseMask) initialise(component_narrow, library, compile_date, 0);
}

std::wstring log_file_name() { return file_name_for_thread(); }

void write_line(const char* format, va_list args) noexcept {
  try {
    append(text::vformat(format, args));
  } catch (...) {
  }
}

void write_line(const wchar_t* format, va_list args) noexcept {
  try {
    append(text::to_narrow(text::vformat(format, args)));
  } catch (...) {
  }
}

void write_raw(const char* format, va_list args) noexcept { write_line(format, args); }

void raw(const char* format, ...) noexcept {
  va_list args;
  va_start(args, format);
  write_raw(format, args);
  va_end(args);
}

void write_dump(const void* address, size_t length) noexcept {
  try {
    const auto* bytes = static_cast<const unsigned char*>(address);
    std::string out = text::format("[Address=0x%llX, Length=%d bytes, MaxRow=%d]\n",
                                   static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(address)), static_cast<int>(length), 0);
    if (bytes != nullptr) {
      for (size_t row = 0; row < length; row += 16) {
        const size_t count = length - row < 16 ? length - row : 16;
        out += text::format("%08X ", static_cast<unsigned>(row));
        for (size_t i = 0; i < 16; ++i)
          out += i < count ? text::format(" %02X", bytes[row + i]) : std::string("   ");
        out += "  ";
        for (size_t i = 0; i < count; ++i) {
          const unsigned char c = bytes[row + i];
          out += (c >= 0x20 && c < 0x7F) ? static_cast<char>(c) : '.';
        }
        out += '\n';
      }
    }
    append(out);
  } catch (...) {
  }
}

std::string format_res(int32_t res) {
  if (res > -800 && res < 100) return text::format("%d", res);
  return text::format("%x", static_cast<uint32_t>(res));
}

void CallScope::open() noexcept {
  opened_ = true;
  if (name_ != nullptr && (load() & flag::kMethodFilter) && method_filter_matches(name_)) {
    scope_flags_ |= 0x01;
    if (load() & flag::kConsultEnable) {
      clear_bits(flag::kConsultEnable);
      scope_flags_ |= 0x02;
    }
  }
  if (level_ == kForcedLevel) {
    scope_flags_ |= 0x04;
    if (!(load() & flag::kIgnoreForced)) {
      uint32_t flags = (load() & ~flag::kBannerWritten) | level_ | flag::kExtended;
      if (!(flags & flag::kActive)) {
        flags |= flag::kActive;
        scope_flags_ |= 0x08;
      }
      if (flags & flag::kReloadEveryQuery) {
        flags &= ~flag::kReloadEveryQuery;
        scope_flags_ |= 0x10;
      }
      if (flags & flag::kConsultEnable) {
        flags &= ~flag::kConsultEnable;
        scope_flags_ |= 0x20;
      }
      store(flags);
    }
  }
  if (level() < level_) return;
  try {
    const std::string& library = names().library;
    const std::string stamp = time_stamp();
    if (name_ == nullptr)
      append(text::format("==== START LINE-%d [%s] @ %s\n\tModule: %s\n", static_cast<int>(id_), library.c_str(),
                          stamp.c_str(), module_ ? module_ : ""));
    else if (id_ == 0)
      append(text::format("==== START %s [%s] @ %s\n", name_, library.c_str(), stamp.c_str()));
    else
      append(text::format("==== START %s (%08X) [%s] @ %s\n", name_, id_, library.c_str(), stamp.c_str()));
  } catch (...) {
  }
}

void CallScope::close() noexcept {
  if (level() >= level_) {
    try {
      const std::string& library = names().library;
      const std::string stamp = time_stamp();
      const std::string res = format_res(res_);
      const unsigned hr = static_cast<uint32_t>(hr_);
      if (name_ == nullptr)
        append(text::format("---- STOP LINE-%d [%s] @ %s:\n HR=%08X, RES=%s\n\n", static_cast<int>(id_),
                            library.c_str(), stamp.c_str(), hr, res.c_str()));
      else if (id_ == 0)
        append(text::format("---- STOP %s [%s] @ %s:\n HR=%08X, RES=%s\n\n", name_, library.c_str(), stamp.c_str(),
                            hr, res.c_str()));
      else
        append(text::format("---- STOP %s (%08X) [%s] @ %s:\n HR=%08X, RES=%s\n\n", name_, id_, library.c_str(),
                            stamp.c_str(), hr, res.c_str()));
    } catch (...) {
    }
  }
  if (scope_flags_ & 0x01) clear_bits(flag::kActive | flag::kExtended);
  if (scope_flags_ & 0x02) set_bits(flag::kConsultEnable);
  if (scope_flags_ & 0x04) clear_bits(flag::kExtended);
  if (scope_flags_ & 0x08) clear_bits(flag::kActive);
  if (scope_flags_ & 0x10) set_bits(flag::kReloadEveryQuery);
  if (scope_flags_ & 0x20) set_bits(flag::kConsultEnable);
}

}  // namespace mvsup::trace
