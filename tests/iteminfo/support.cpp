#include "iteminfo/support.h"

#include <string>

namespace mvsup::test {

HMVXPROP AddProperty(HMVXINFO info, DWORD id) { return MvxAddProperty(info, id); }

HMVXPROP AddCustomProperty(HMVXINFO info, std::wstring_view name) {
  return MvxAddCustomProperty(info, std::wstring(name).c_str());
}

HMVXPROP FindProperty(HMVXINFO info, DWORD id) { return MvxFindProperty(info, id); }

HMVXPROP FindCustomProperty(HMVXINFO info, std::wstring_view name) {
  return MvxFindCustomProperty(info, std::wstring(name).c_str());
}

void DeleteProperty(HMVXINFO info, DWORD id) { MvxDeleteProperty(info, id); }

void DeleteCustomProperty(HMVXINFO info, std::wstring_view name) {
  MvxDeleteCustomProperty(info, std::wstring(name).c_str());
}

}  // namespace mvsup::test
