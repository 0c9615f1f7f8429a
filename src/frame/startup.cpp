// Process attach and detach, and the settings read behind the mode word.
#include <string>
#include <utility>

#include "frame/build_identity.h"
#include "frame/library_state.h"
#include "frame/mode_bits.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "locale/satellite.h"
#include "settings/registry.h"
#include "settings/settings.h"
#include "storage/directories.h"

namespace mvsup::frame {

namespace detail {
extern int g_max_path;
extern DWORD g_max_items;
extern wchar_t g_illegal_chars[mode::kIllegalCharsCapacity];
extern HMODULE g_own_module;
extern HMODULE g_resource_module;
extern HMODULE g_satellite_module;
}  // namespace detail

namespace {

bool read_bit(const mode::BitSource& source) noexcept {
  switch (source.source) {
    case mode::Source::MachineClientKey:
      return registry::get_dword_or(HKEY_LOCAL_MACHINE, mode::kClientKey, source.value_name, 0) != 0;
    case mode::Source::UserClientKey:
      return registry::get_dword_or(HKEY_CURRENT_USER, mode::kClientKey, source.value_name, 0) != 0;
    case mode::Source::ComponentSettings:
      return settings::get_dword(source.component, source.value_name, source.default_value) != 0;
    case mode::Source::None:
      break;
  }
  return false;
}

void start_tracer() noexcept {
  trace::start(kComponentName, kComponentNameNarrow, kLibraryName, compile_date());
}

}  // namespace

int read_settings(bool reload_only) noexcept {
  // A reload drops every bit that SetMvSupMode set without persisting it; the
  // user registry root is left as it is. Other threads keep reading the old
  // words until the new ones are complete: each is published with one store.
  DWORD mode = mode::kInitialised;
  const wchar_t* class_word = kFileClassWord;
  for (const mode::BitSource& source : mode::kBitSources) {
    if (!read_bit(source)) continue;
    mode |= source.bit;
    // The component settings read after this one come from the machine.
    if (source.bit == mode::kRunAsService) set_user_root(HKEY_LOCAL_MACHINE);
    if (source.bit == mode::kHalcyoDocClassId) class_word = kDocumentClassWord;
  }
  set_mode_word(mode);
  set_document_class_word(class_word);
  if (reload_only) return 1;

  detail::g_max_items = settings::get_dword(mode::kMaxItemsComponent, mode::kMaxItemsValue, mode::kDefaultMaxItems);
  settings::get_string(mode::kIllegalCharsComponent, mode::kIllegalCharsValue, mode::kDefaultIllegalChars,
                       detail::g_illegal_chars, mode::kIllegalCharsCapacity);
  wchar_t work[mode::kWorkDirectoryCapacity] = {};
  detail::g_max_path = mode::max_path_for_work_directory(directories::work(work, mode::kWorkDirectoryCapacity));
  trace::line("InitLib: Mode=%08lX, UserKey=%lX, MaxPath=%d, MaxItems=%lu\n", static_cast<unsigned long>(mode),
              static_cast<unsigned long>(reinterpret_cast<ULONG_PTR>(user_root())), detail::g_max_path,
              static_cast<unsigned long>(detail::g_max_items));
  return 1;
}

void on_process_attach(HMODULE self) noexcept {
  detail::g_own_module = self;
  detail::g_resource_module = self;
  start_tracer();
  {
    trace::CallScope scope("DLL_PROCESS_ATTACH", reinterpret_cast<uintptr_t>(self));
    read_settings(false);
    // In service mode the trace configuration is read again, now that the
    // user registry root is the machine.
    if (mode_word() & mode::kRunAsService) start_tracer();
    if (HMODULE satellite = locale::load_satellite(kComponentName)) {
      detail::g_satellite_module = satellite;
      detail::g_resource_module = satellite;
    }
  }
}

void on_process_detach() noexcept {
  trace::CallScope scope("DLL_PROCESS_DETACH", reinterpret_cast<uintptr_t>(detail::g_own_module));
  detail::g_resource_module = detail::g_own_module;
  if (HMODULE satellite = std::exchange(detail::g_satellite_module, nullptr)) ::FreeLibrary(satellite);
}

}  // namespace mvsup::frame

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      mvsup::frame::on_process_attach(instance);
      break;
    case DLL_PROCESS_DETACH:
      mvsup::frame::on_process_detach();
      break;
    default:
      break;
  }
  return TRUE;
}
