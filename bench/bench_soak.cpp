// Soak: 1,000,000 calls of everything that hands out memory or allocates on
// the way, with the process's private bytes before and after each run. A
// leak of even a few bytes per call shows as megabytes; the figures must
// stay flat (the heap keeps what it has grown to, so a small rise on the
// first run of a kind is its working set, not a leak).
#include <windows.h>
#include <psapi.h>

#include <cstdio>
#include <functional>
#include <string>

#include "MvSup2u.h"
#include "bench.h"

namespace mvsup::bench {
namespace {

constexpr int kCalls = 1'000'000;
// Growth below this over a million calls is noise of the heap, not a leak
// (one byte per call would be 1 MB).
constexpr SIZE_T kFlatBytes = 256 * 1024;

// Committed private memory of the process: the system's own count where it
// keeps one (Wine 8 reports 0), else the committed private regions summed.
SIZE_T private_bytes() {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  counters.cb = sizeof counters;
  if (GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                           sizeof counters) &&
      counters.PrivateUsage != 0)
    return counters.PrivateUsage;
  SYSTEM_INFO system;
  GetSystemInfo(&system);
  SIZE_T total = 0;
  MEMORY_BASIC_INFORMATION region;
  for (auto* at = static_cast<BYTE*>(system.lpMinimumApplicationAddress);
       at < system.lpMaximumApplicationAddress && VirtualQuery(at, &region, sizeof region) == sizeof region;
       at = static_cast<BYTE*>(region.BaseAddress) + region.RegionSize) {
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) total += region.RegionSize;
  }
  return total;
}

bool soak(const char* what, const std::function<void()>& call) {
  const SIZE_T start = private_bytes();
  const double seconds = seconds_per_call(call, kCalls, 1) * kCalls;
  const SIZE_T end = private_bytes();
  const long long growth = static_cast<long long>(end) - static_cast<long long>(start);
  const bool flat = growth < static_cast<long long>(kFlatBytes);
  std::printf("  %-44s %9llu KiB %9llu KiB %+8lld KiB  %5.1f s  %s\n", what,
              static_cast<unsigned long long>(start / 1024), static_cast<unsigned long long>(end / 1024),
              growth / 1024, seconds, flat ? "flat" : "GROWS");
  std::fflush(stdout);
  return flat;
}

void item_info_cycle() {
  BYTE* block = nullptr;
  MvxCreateItemInfo(&block);
  HMVXINFO info = MvxOpen(block);
  MvxAddString(info, MvxAddAttribute(info, MvxAddProperty(info, 0x2), 16), L"Quarterly figures");
  MvxAddMvHandle(info, MvxAddAttribute(info, MvxAddProperty(info, 0x20), 16), 3, 4711, L"Doc");
  MvxAddDateTime(info, MvxAddAttribute(info, MvxAddProperty(info, 0x100), 16), 0x01c6bf9a, 0x3c1b4000);
  MvxAddInteger(info, MvxAddAttribute(info, MvxAddCustomProperty(info, L"pages"), 16), 12);
  MvxUpdateItemInfo(info, &block);
  MvxClose(info);
  FreeMvxInfo(block);
}

void run() {
  std::printf("  %d calls each; private bytes before and after\n", kCalls);
  std::printf("  %-44s %13s %13s %12s %7s\n", "", "start", "end", "growth", "time");
  int grew = 0;

  grew += !soak("item info: create, open, add 4, commit, close, free", item_info_cycle);

  BYTE* source = nullptr;
  MvxCreateItemInfo(&source);
  {
    HMVXINFO info = MvxOpen(source);
    MvxAddString(info, MvxAddAttribute(info, MvxAddProperty(info, 0x2), 16), L"Quarterly figures");
    MvxUpdateItemInfo(info, &source);
    MvxClose(info);
  }
  grew += !soak("MvxCopyItemInfo + FreeMvxInfo", [&] {
    BYTE* copy = nullptr;
    MvxCopyItemInfo(source, &copy);
    FreeMvxInfo(copy);
  });
  grew += !soak("MvxPutStringPropValue + FreeMvxInfo", [&] {
    BYTE* copy = nullptr;
    MvxCopyItemInfo(source, &copy);
    MvxPutStringPropValue(0x2, L"Annual figures", &copy);
    FreeMvxInfo(copy);
  });
  FreeMvxInfo(source);

  const std::string bytes(300, 'b');
  const std::string base64(400, 'Q');
  const std::wstring wide_base64(400, L'Q');
  const std::string quoted = "caf=C3=A9 =\r\nline two " + std::string(200, 'q');
  const std::wstring wide_quoted(quoted.begin(), quoted.end());
  const std::wstring hex(64, L'a');
  grew += !soak("Base64Encode + GlobalFree", [&] {
    LPSTR out = nullptr;
    DWORD count = 0;
    Base64Encode(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()), &out, &count);
    GlobalFree(out);
  });
  grew += !soak("Base64Decode + GlobalFree", [&] {
    BYTE* out = nullptr;
    DWORD count = 0;
    Base64Decode(base64.data(), static_cast<DWORD>(base64.size()), &out, &count);
    GlobalFree(out);
  });
  grew += !soak("Base64DecodeW + GlobalFree", [&] {
    LPWSTR out = nullptr;
    DWORD count = 0;
    Base64DecodeW(wide_base64.data(), static_cast<DWORD>(wide_base64.size()), &out, &count);
    GlobalFree(out);
  });
  grew += !soak("QuotedPrintable_DecodeA + GlobalFree", [&] {
    LPSTR out = nullptr;
    DWORD count = 0;
    QuotedPrintable_DecodeA(quoted.data(), static_cast<DWORD>(quoted.size()), &out, &count);
    GlobalFree(out);
  });
  grew += !soak("QuotedPrintable_Decode + GlobalFree", [&] {
    LPWSTR out = nullptr;
    DWORD count = 0;
    QuotedPrintable_Decode(wide_quoted.data(), static_cast<DWORD>(wide_quoted.size()), &out, &count);
    GlobalFree(out);
  });
  grew += !soak("HexStringFromBinaryString + SysFreeString", [&] {
    BSTR out = nullptr;
    HexStringFromBinaryString(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()), &out);
    SysFreeString(out);
  });
  grew += !soak("BinaryStringFromHexString + GlobalFree", [&] {
    BYTE* out = nullptr;
    DWORD count = 0;
    BinaryStringFromHexString(hex.c_str(), &out, &count);
    GlobalFree(out);
  });

  wchar_t text[400];
  grew += !soak("GetMvxItemTypeAsStringTS", [&] { keep(GetMvxItemTypeAsStringTS(3, text, 400)); });
  grew += !soak("GetMvxItemTypeAsHttpStringTS", [&] { keep(GetMvxItemTypeAsHttpStringTS(2, text, 400)); });
  grew += !soak("GetMvxObjTypeAsStringTS", [&] { keep(GetMvxObjTypeAsStringTS(3, text, 400)); });
  grew += !soak("GetMvxParentItemTypeAsStringTS", [&] {
    keep(GetMvxParentItemTypeAsStringTS(text, 400, 3, 0, 0, 0, nullptr));
  });
  std::printf("  %s\n", grew == 0 ? "every run flat" : "SOME RUNS GREW");
}

const BenchRegistration kSoak("soak", run);

}  // namespace
}  // namespace mvsup::bench
