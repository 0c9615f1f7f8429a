// Object persistence and streams: objects saved and loaded through their
// IPersistStream implementation, bytes moved between streams and global
// memory. Every stream and interface made or asked for here is held by an
// owning wrapper, so it is released on every path.
#include "MvSupStreams.h"
#include "automation/persistence.h"
#include "frame/com_streams.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"

namespace mvsup::automation {

namespace {

HRESULT persistence_of(IUnknown* object, com_ptr<IPersistStream>& persist) noexcept {
  return object->QueryInterface(IID_IPersistStream, persist.put_void());
}

// Loads the object from the whole of `stream`, which the caller has filled.
HRESULT load_from_start(IStream* stream, IUnknown* object) noexcept {
  HRESULT hr = rewind(stream);
  if (FAILED(hr)) return hr;
  com_ptr<IPersistStream> persist;
  hr = persistence_of(object, persist);
  if (FAILED(hr)) return hr;
  return persist->Load(stream);
}

enum class CopyCheck { CountsMustMatch, AsCopied };

HRESULT load_from_copy(IStream* source, ULONG count, IUnknown* object, CopyCheck check) noexcept {
  if (source == nullptr || object == nullptr) return E_POINTER;
  com_ptr<IStream> copy;
  HRESULT hr = new_memory_stream(copy);
  if (FAILED(hr)) return hr;
  if (check == CopyCheck::AsCopied) {
    hr = copy_stream(source, copy.get(), count);
  } else {
    ULARGE_INTEGER read{}, written{};
    hr = source->CopyTo(copy.get(), large(count), &read, &written);
    if (read.QuadPart != count || written.QuadPart != count) return E_FAIL;
  }
  if (FAILED(hr)) return hr;
  return load_from_start(copy.get(), object);
}

}  // namespace

HRESULT serialize_object(IUnknown* object, IStream* stream, BOOL clear_dirty, ULONG* size) noexcept {
  if (size) *size = 0;
  if (object == nullptr || stream == nullptr) return E_POINTER;
  com_ptr<IPersistStream> persist;
  HRESULT hr = persistence_of(object, persist);
  if (FAILED(hr)) return hr;
  hr = persist->Save(stream, clear_dirty);
  if (FAILED(hr)) return hr;
  const HRESULT size_hr = size ? stream_length(stream, size) : S_OK;
  hr = rewind(stream);
  return FAILED(size_hr) ? size_hr : hr;
}

HRESULT serialize_object_to_new_stream(IUnknown* object, BOOL clear_dirty, ULONG* size, IStream** stream) noexcept {
  if (object == nullptr) return S_OK;
  if (stream == nullptr) return E_POINTER;
  com_ptr<IStream> created;
  *stream = nullptr;
  const HRESULT hr = new_memory_stream(created);
  if (FAILED(hr)) return hr;
  *stream = created.release();
  return serialize_object(object, *stream, clear_dirty, size);
}

HRESULT save_object_to_hglobal(IUnknown* object, BOOL clear_dirty, HGLOBAL* memory, ULONG* size) noexcept {
  if (memory == nullptr) return E_POINTER;
  *memory = nullptr;
  if (size) *size = 0;
  if (object == nullptr) return E_POINTER;
  // The block is ours until it is handed out, so that a failure frees it.
  unique_hglobal block(::GlobalAlloc(GMEM_MOVEABLE, 0));
  if (!block) return E_OUTOFMEMORY;
  com_ptr<IStream> stream;
  HRESULT hr = ::CreateStreamOnHGlobal(block.get(), FALSE, stream.put());
  if (FAILED(hr)) return hr;
  com_ptr<IPersistStream> persist;
  hr = persistence_of(object, persist);
  if (FAILED(hr)) return hr;
  // Save's result is not looked at: what the object wrote is handed out.
  persist->Save(stream.get(), clear_dirty);
  HGLOBAL written = nullptr;
  hr = ::GetHGlobalFromStream(stream.get(), &written);
  if (FAILED(hr)) return hr;
  // A moveable block keeps its handle when the stream grows it; own
  // whatever handle the stream reports, all the same.
  block.release();
  block.reset(written);
  if (size) {
    hr = stream_length(stream.get(), size);
    if (FAILED(hr)) {
      *size = 0;
      return hr;
    }
  }
  *memory = block.release();
  return hr;
}

HRESULT load_object_from_hglobal(HGLOBAL memory, BOOL delete_on_release, IUnknown* object) noexcept {
  if (memory == nullptr) return E_INVALIDARG;
  com_ptr<IStream> stream;
  const HRESULT hr = ::CreateStreamOnHGlobal(memory, delete_on_release, stream.put());
  if (FAILED(hr)) return hr;
  if (object == nullptr) return E_POINTER;
  return load_from_start(stream.get(), object);
}

HRESULT load_object_from_stream(IStream* source, ULONG count, IUnknown* object) noexcept {
  return load_from_copy(source, count, object, CopyCheck::CountsMustMatch);
}

HRESULT deserialize_object(IStream* source, ULONG count, IUnknown* object) noexcept {
  return load_from_copy(source, count, object, CopyCheck::AsCopied);
}

HRESULT copy_stream(IStream* source, IStream* target, ULONG count) noexcept {
  if (count == 0) return S_OK;
  if (source == nullptr || target == nullptr) return E_POINTER;
  return source->CopyTo(target, large(count), nullptr, nullptr);
}

HRESULT copy_stream_to_heap(IStream* source, ULONG count, HGLOBAL* memory) noexcept {
  if (memory == nullptr) return E_POINTER;
  *memory = nullptr;
  if (count == 0) return E_INVALIDARG;
  if (source == nullptr) return E_POINTER;
  unique_hglobal block(::GlobalAlloc(GPTR, count));
  if (!block) return E_OUTOFMEMORY;
  ULONG read = 0;
  const HRESULT hr = source->Read(block.get(), count, &read);
  if (hr != S_OK || read != count) return E_FAIL;
  *memory = block.release();
  return S_OK;
}

HRESULT stream_length(IStream* stream, ULONG* size) noexcept {
  if (stream == nullptr || size == nullptr) return E_POINTER;
  ULARGE_INTEGER length;
  const HRESULT hr = stream_size(stream, &length);
  if (SUCCEEDED(hr)) *size = length.LowPart;
  return hr;
}

HRESULT serialize_string_prop(ULONG byte_count, const void* text, IStream* stream) noexcept {
  if (text == nullptr) return S_OK;
  if (stream == nullptr) return E_POINTER;
  ULONG written = 0;
  return stream->Write(text, byte_count, &written);
}

}  // namespace mvsup::automation

extern "C" {

HRESULT WINAPI SerializeObject(IUnknown* object, IStream* stream, BOOL clearDirty, ULONG* size) {
  mvsup::trace::CallScope scope("SerializeObject");
  return scope.hr(mvsup::automation::serialize_object(object, stream, clearDirty, size));
}

HRESULT WINAPI SerializeObject2(IUnknown* object, BOOL clearDirty, ULONG* size, IStream** stream) {
  mvsup::trace::CallScope scope("SerializeObject2");
  return scope.hr(mvsup::automation::serialize_object_to_new_stream(object, clearDirty, size, stream));
}

HRESULT WINAPI SaveObjectToHGlobal(IUnknown* object, BOOL clearDirty, HGLOBAL* memory, ULONG* size) {
  mvsup::trace::CallScope scope("SaveObjectToHGlobal");
  return scope.hr(mvsup::automation::save_object_to_hglobal(object, clearDirty, memory, size));
}

HRESULT WINAPI LoadObjectFromHGlobal(HGLOBAL memory, BOOL deleteOnRelease, IUnknown* object) {
  mvsup::trace::CallScope scope("LoadObjectFromHGlobal");
  return scope.hr(mvsup::automation::load_object_from_hglobal(memory, deleteOnRelease, object));
}

HRESULT WINAPI LoadObjectFromStream(IStream* source, ULONG count, IUnknown* object) {
  mvsup::trace::CallScope scope("LoadObjectFromStream");
  return scope.hr(mvsup::automation::load_object_from_stream(source, count, object));
}

HRESULT WINAPI DeserializeObject(IStream* source, ULONG count, IUnknown* object) {
  mvsup::trace::CallScope scope("DeserializeObject");
  return scope.hr(mvsup::automation::deserialize_object(source, count, object));
}

HRESULT WINAPI CopyStream(IStream* source, IStream* target, ULONG count) {
  mvsup::trace::CallScope scope("CopyStream");
  return scope.hr(mvsup::automation::copy_stream(source, target, count));
}

HRESULT WINAPI CopyStreamToHeap(IStream* source, ULONG count, HGLOBAL* memory) {
  mvsup::trace::CallScope scope("CopyStreamToHeap");
  return scope.hr(mvsup::automation::copy_stream_to_heap(source, count, memory));
}

HRESULT WINAPI GetStreamLength(IStream* stream, ULONG* size) {
  mvsup::trace::CallScope scope("GetStreamLength");
  return scope.hr(mvsup::automation::stream_length(stream, size));
}

HRESULT WINAPI SerializeStringProp(ULONG byteCount, const void* text, IStream* stream) {
  mvsup::trace::CallScope scope("SerializeStringProp");
  return scope.hr(mvsup::automation::serialize_string_prop(byteCount, text, stream));
}

HRESULT WINAPI SerializeStringPropA(ULONG byteCount, const void* text, IStream* stream) {
  mvsup::trace::CallScope scope("SerializeStringPropA");
  return scope.hr(mvsup::automation::serialize_string_prop(byteCount, text, stream));
}

}  // extern "C"
