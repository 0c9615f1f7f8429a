// The subcommands of "mvsup item" that live in their own files.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "command.h"

namespace mvsup::tool {

// mvsup item make OUT [--from FILE] [--force] [NAME=VALUE ...]
int run_item_make(Args& args);
// mvsup item get FILE NAME [--as KIND] [--local] [--json]
int run_item_get(Args& args);

// A property named on the command line: by a name of the catalogue (any
// case), by id ("0x80000040", "32") when ids are accepted, or else a custom
// property's name.
struct PropertyName {
  DWORD id = 0;       // 0: custom
  std::wstring name;  // as given
  bool custom() const { return id == 0; }
};
PropertyName resolve_property(const std::wstring& text, bool accept_ids);

// The word of an item type ("File", a custom class word), or "" when it has
// none.
std::wstring item_type_word(LONG type);

}  // namespace mvsup::tool
