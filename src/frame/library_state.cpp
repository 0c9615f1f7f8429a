#include "frame/library_state.h"

#include "frame/mode_bits.h"

namespace mvsup::frame {

namespace {

// Written at process attach and by SetMvSupMode or a reload; atomics keep the
// unsynchronised reads of other threads well defined.
std::atomic<DWORD> g_mode{0};
std::atomic<HKEY> g_user_root{HKEY_CURRENT_USER};
std::atomic<const wchar_t*> g_document_class_word{kFileClassWord};

}  // namespace

// The limits and modules are written only at attach/detach under the loader lock.
namespace detail {
int g_max_path = 130;
DWORD g_max_items = mode::kDefaultMaxItems;
wchar_t g_illegal_chars[mode::kIllegalCharsCapacity] = L":\\/*?\"<>|";
HMODULE g_own_module = nullptr;
HMODULE g_resource_module = nullptr;
HMODULE g_satellite_module = nullptr;
}  // namespace detail

DWORD mode_word() noexcept { return g_mode.load(std::memory_order_relaxed); }
void set_mode_word(DWORD mode) noexcept { g_mode.store(mode, std::memory_order_relaxed); }

HKEY user_root() noexcept { return g_user_root.load(std::memory_order_relaxed); }
void set_user_root(HKEY root) noexcept { g_user_root.store(root, std::memory_order_relaxed); }

int max_path() noexcept { return detail::g_max_path; }
DWORD max_items() noexcept { return detail::g_max_items; }
const wchar_t* illegal_path_chars() noexcept { return detail::g_illegal_chars; }
const wchar_t* document_class_word() noexcept { return g_document_class_word.load(std::memory_order_relaxed); }
void set_document_class_word(const wchar_t* word) noexcept {
  g_document_class_word.store(word, std::memory_order_relaxed);
}
HMODULE own_module() noexcept { return detail::g_own_module; }
HMODULE resource_module() noexcept { return detail::g_resource_module; }

}  // namespace mvsup::frame
