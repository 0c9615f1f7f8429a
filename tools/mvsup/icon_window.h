// The window of "mvsup icons --window".
#pragma once

#include <string>

namespace mvsup::tool {

// Shows every item, mail and server-map icon as the library loads it, and
// the bitmap file through PutBitmap; returns when the window is closed.
int show_icon_window(const std::wstring& bitmap);

}  // namespace mvsup::tool
