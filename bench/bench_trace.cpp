// The cost of tracing when it is off: traced exports against the same work
// done without the library, side by side.
#include <windows.h>

#include <cstdio>

#include "MvSup2u.h"
#include "bench.h"

namespace mvsup::bench {
namespace {

constexpr const wchar_t* kKey = L"Software\\Corvell\\Mervane Client\\Bench";

__attribute__((noinline)) DWORD raw_registry_dword() {
  HKEY key = nullptr;
  DWORD value = 0, size = sizeof(value), type = 0;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key) == ERROR_SUCCESS) {
    RegQueryValueExW(key, L"Value", nullptr, &type, reinterpret_cast<BYTE*>(&value), &size);
    RegCloseKey(key);
  }
  return value;
}

__attribute__((noinline)) int raw_ansi_to_utf8(const char* text, char* out, int size) {
  wchar_t wide[64];
  const int n = MultiByteToWideChar(CP_ACP, 0, text, -1, wide, 64);
  return WideCharToMultiByte(CP_UTF8, 0, wide, n, out, size, nullptr, nullptr);
}

// Best time per call of each side over alternating rounds, so that drift in
// the machine's load hits both sides alike.
template <typename Traced, typename Untraced>
void compare(const char* what, Traced traced_call, Untraced untraced_call, int calls, int rounds) {
  double traced = 1e30, untraced = 1e30;
  for (int round = 0; round < rounds; ++round) {
    traced = std::min(traced, seconds_per_call(traced_call, calls, 1));
    untraced = std::min(untraced, seconds_per_call(untraced_call, calls, 1));
  }
  std::printf("  %-42s %10.1f ns  untraced %10.1f ns  ratio %.3f\n", what, traced * 1e9, untraced * 1e9,
              traced / untraced);
}

void run() {
  std::printf("  tracing is off (no TraceLogPath); each figure is the best of alternating rounds\n");
  SetRegistryDWORD(HKEY_CURRENT_USER, kKey, L"Value", 42);
  compare(
      "GetRegistryDWORD vs RegOpen/Query/Close",
      [] {
        DWORD value = 0;
        keep(GetRegistryDWORD(HKEY_CURRENT_USER, kKey, L"Value", &value));
      },
      [] { keep(raw_registry_dword()); }, 500, 40);
  static char out[64];
  compare(
      "ANSIStringToUTF8 vs the same two conversions", [] { keep(ANSIStringToUTF8("caf\xe9 cr\xe8me", out, 64)); },
      [] { keep(raw_ansi_to_utf8("caf\xe9 cr\xe8me", out, 64)); }, 100000, 20);
  std::printf("  goal: ratio within 1.02 for the traced exports (registry-bound, like most)\n");
  DeleteSettingsKey(L"..", L"Bench");
}

const BenchRegistration kRegistration("trace", run);

}  // namespace
}  // namespace mvsup::bench
