// Rich text from HTML and plain text without the exports' trace scopes, for
// the library's own callers.
#pragma once

#include <windows.h>
#include <objidl.h>

namespace mvsup::text {

enum class Encapsulation { PlainText, Html };

// MultiByteStreamFromWideChar.
HRESULT multi_byte_stream(IStream* input, IStream** output, bool copy_when_not_unicode) noexcept;

// CreateRTFStreamOnPlainText (kind PlainText, no base) and
// CreateRTFStreamOnHTML.
HRESULT create_rich_text(IStream* source, IStream** rtf, Encapsulation kind, const char* base_href) noexcept;

}  // namespace mvsup::text
