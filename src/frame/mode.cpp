// GetMvSupMode / SetMvSupMode: the exported face of the mode word.
#include "MvSupFrame.h"
#include "frame/library_state.h"
#include "frame/mode_bits.h"
#include "frame/trace.h"
#include "settings/registry.h"

namespace mvsup::frame {

namespace {
void persist_bit(const wchar_t* value_name, bool on) noexcept {
  // Failure to persist is ignored: the mode word changes all the same.
  registry::set_dword(HKEY_CURRENT_USER, mode::kClientKey, value_name, on ? 1 : 0);
}
}  // namespace

LONG get_mode(DWORD mask) noexcept {
  if (mask & mode::kReloadQuery) read_settings(true);
  return static_cast<LONG>(mode_word() & mask);
}

LONG set_mode(DWORD value, DWORD mask) noexcept {
  const DWORD previous = mode_word();
  if (mask & mode::kUserRootIsCurrentUser)
    set_user_root((value & mode::kUserRootIsCurrentUser) ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE);
  if (mask & mode::kNoRoaming) persist_bit(L"NoRoaming", value & mode::kNoRoaming);
  if (mask & mode::kLiteSDK) persist_bit(L"LiteSDK", value & mode::kLiteSDK);
  // Value is deliberately not masked: a bit set in value is set even when the
  // mask does not name it; only bits in mask can be cleared.
  set_mode_word((previous & ~mask) | value);
  return static_cast<LONG>(previous);
}

}  // namespace mvsup::frame

extern "C" {

LONG WINAPI GetMvSupMode(DWORD mask) {
  if (!(mask & mvsup::mode::kReloadQuery)) return mvsup::frame::get_mode(mask);
  mvsup::trace::CallScope scope("GetMvSupMode");
  return scope.res(mvsup::frame::get_mode(mask));
}

LONG WINAPI SetMvSupMode(DWORD value, DWORD mask) {
  mvsup::trace::CallScope scope("SetMvSupMode");
  return scope.res(mvsup::frame::set_mode(value, mask));
}

}  // extern "C"
