// Object persistence and streams without the exports' trace scopes, for the
// library's own callers.
#pragma once

#include <windows.h>
#include <objidl.h>

namespace mvsup::automation {

HRESULT serialize_object(IUnknown* object, IStream* stream, BOOL clear_dirty, ULONG* size) noexcept;
HRESULT serialize_object_to_new_stream(IUnknown* object, BOOL clear_dirty, ULONG* size, IStream** stream) noexcept;
HRESULT save_object_to_hglobal(IUnknown* object, BOOL clear_dirty, HGLOBAL* memory, ULONG* size) noexcept;
HRESULT load_object_from_hglobal(HGLOBAL memory, BOOL delete_on_release, IUnknown* object) noexcept;
HRESULT load_object_from_stream(IStream* source, ULONG count, IUnknown* object) noexcept;
HRESULT deserialize_object(IStream* source, ULONG count, IUnknown* object) noexcept;
HRESULT copy_stream(IStream* source, IStream* target, ULONG count) noexcept;
HRESULT copy_stream_to_heap(IStream* source, ULONG count, HGLOBAL* memory) noexcept;
HRESULT stream_length(IStream* stream, ULONG* size) noexcept;
HRESULT serialize_string_prop(ULONG byte_count, const void* text, IStream* stream) noexcept;

}  // namespace mvsup::automation
