#include "common/import_hook.h"

#include <cstring>

namespace mvsup::test {

namespace {

void** find_slot(HMODULE module, const char* dll, const char* function) {
  auto* base = reinterpret_cast<BYTE*>(module);
  if (base == nullptr) return nullptr;
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& imports = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  if (imports.VirtualAddress == 0) return nullptr;
  for (auto* entry = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
       entry->Name != 0; ++entry) {
    if (_stricmp(reinterpret_cast<const char*>(base + entry->Name), dll) != 0 || entry->OriginalFirstThunk == 0)
      continue;
    const auto* names = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + entry->OriginalFirstThunk);
    auto* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + entry->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++slots) {
      if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
      const auto* by_name = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
      if (std::strcmp(reinterpret_cast<const char*>(by_name->Name), function) == 0)
        return reinterpret_cast<void**>(&slots->u1.Function);
    }
  }
  return nullptr;
}

void write_slot(void** slot, const void* value) {
  DWORD protection = 0;
  if (!VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection)) return;
  *slot = const_cast<void*>(value);
  VirtualProtect(slot, sizeof *slot, protection, &protection);
}

}  // namespace

ImportHook::ImportHook(HMODULE module, const char* dll, const char* function, const void* replacement) {
  slot_ = find_slot(module, dll, function);
  if (slot_ == nullptr) return;
  original_ = *slot_;
  write_slot(slot_, replacement);
}

ImportHook::~ImportHook() {
  if (slot_ != nullptr) write_slot(slot_, original_);
}

}  // namespace mvsup::test
