/** @file
   MvSup2u: object persistence and streams. COM objects are saved through
   their IPersistStream implementation and loaded back; bytes are moved
   between streams and global memory.

   The saved form is exactly what the object's own IPersistStream::Save
   writes: no header, class identifier or length is added, so the caller must
   know which class to create before loading.

   Every function returns an HRESULT. Objects and streams passed in stay the
   caller's: no function releases them, and every stream or interface that a
   function makes or asks for is released before it returns, except the
   stream that SerializeObject2 hands out. Memory streams made here are
   CreateStreamOnHGlobal streams; global memory handed out is freed by the
   caller with GlobalFree. A null object or stream where one is needed gives
   E_POINTER unless a function says otherwise. The caller must have
   initialised COM on its thread; the functions keep no state and are as
   thread-safe as the objects and streams they are given. */
#ifndef MVSUP_STREAMS_H
#define MVSUP_STREAMS_H

#include <windows.h>
#include <objbase.h>
#include <objidl.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Saves an object into a stream through its IPersistStream interface.

    Sets *size (when size is not null) to 0, asks the object for
    IPersistStream (its failure is returned) and calls
    Save(stream, clearDirty) at the stream's current position. After a
    successful save *size receives the stream's whole size (the low 32 bits,
    bytes that were in the stream before included) and the stream is set
    back to its start.

    @return the result of that seek; the failure of Save or of the size
            query (the stream is set back to its start after a failed size
            query as well); E_POINTER for a null object or stream.
    Ownership: nothing is handed out; the object and the stream stay the
    caller's. */
HRESULT WINAPI SerializeObject(IUnknown* object, IStream* stream, BOOL clearDirty, ULONG* size);

/** Saves an object into a new memory stream.

    A null object returns S_OK and touches neither *stream nor *size.
    Otherwise *stream receives a new memory stream (its memory is freed when
    it is released) and SerializeObject(object, *stream, clearDirty, size)
    runs on it, so the stream is at its start afterwards.

    @return the result of SerializeObject; the failure of the stream's
            creation (*stream is then null); E_POINTER for a null stream
            pointer.
    Ownership: the stream in *stream is the caller's in every case, also
    when the save failed; release it with IStream::Release. */
HRESULT WINAPI SerializeObject2(IUnknown* object, BOOL clearDirty, ULONG* size, IStream** stream);

/** Saves an object into a new block of global memory.

    Clears *memory and *size, saves the object through its IPersistStream
    interface into a memory stream that keeps its memory, and hands out that
    memory and the saved byte count. As it always has, the result of Save is
    not looked at: whatever the object wrote before a failure is handed out.

    @return S_OK; the failure of the IPersistStream query, of the stream's
            creation, of GetHGlobalFromStream or of the size query (no
            memory is then handed out); E_POINTER for a null object or a
            null memory pointer. size may be null: the block is handed out
            all the same.
    Ownership: the caller frees *memory with GlobalFree. The block may be
    larger than *size; only the first *size bytes are the object's. */
HRESULT WINAPI SaveObjectToHGlobal(IUnknown* object, BOOL clearDirty, HGLOBAL* memory, ULONG* size);

/** Loads an object from a block of global memory.

    Makes a stream over memory (CreateStreamOnHGlobal with deleteOnRelease),
    asks the object for IPersistStream and calls Load on the stream from its
    start.

    @return the result of Load; the failure of the stream's creation or of
            the IPersistStream query; E_POINTER for a null object (the
            stream is still made and released, so that deleteOnRelease
            holds); E_INVALIDARG for null memory.
    Ownership: with deleteOnRelease TRUE the block is freed before the
    function returns, whatever the result (unless the stream could not be
    made); otherwise it stays the caller's. */
HRESULT WINAPI LoadObjectFromHGlobal(HGLOBAL memory, BOOL deleteOnRelease, IUnknown* object);

/** Loads an object from count bytes at a stream's current position.

    The bytes are copied into a new memory stream with IStream::CopyTo; if
    the bytes read or written differ from count, the result is E_FAIL and
    Load is not called. Otherwise, if the copy succeeded, the object's
    IPersistStream::Load runs on the copy from its start. The source is left
    after the bytes it gave.

    @return the result of Load; E_FAIL for a short copy; the failure of the
            copy, of the stream's creation or of the IPersistStream query;
            E_POINTER for a null source or object.
    Ownership: nothing is handed out. */
HRESULT WINAPI LoadObjectFromStream(IStream* source, ULONG count, IUnknown* object);

/** As LoadObjectFromStream, except that the bytes are copied with
    CopyStream (a count of 0 copies nothing and loads from an empty stream)
    and the counts of the copy are not compared with count.

    @return the result of Load; the failure of the copy, of the stream's
            creation or of the IPersistStream query; E_POINTER for a null
            source or object.
    Ownership: nothing is handed out. */
HRESULT WINAPI DeserializeObject(IStream* source, ULONG count, IUnknown* object);

/** Copies count bytes from source to target (IStream::CopyTo from both
    current positions).

    @return S_OK for a count of 0 without touching either stream (null
            streams included); otherwise the result of CopyTo, or E_POINTER
            for a null source or target.
    Ownership: nothing is handed out. */
HRESULT WINAPI CopyStream(IStream* source, IStream* target, ULONG count);

/** Reads count bytes at a stream's current position into a new block of
    global memory.

    Sets *memory to null, allocates count zeroed bytes (GMEM_FIXED, so the
    handle is also the block's address) and reads into them. Only a read
    that returns S_OK with exactly count bytes hands out the block.

    @return S_OK; E_FAIL for any other read (the block is freed);
            E_INVALIDARG for a count of 0; E_OUTOFMEMORY when the block
            cannot be allocated; E_POINTER for a null source or memory
            pointer.
    Ownership: the caller frees *memory with GlobalFree. */
HRESULT WINAPI CopyStreamToHeap(IStream* source, ULONG count, HGLOBAL* memory);

/** The size of a stream: IStream::Stat without the name; on success *size
    receives the low 32 bits of the size, on failure it is left as it was.

    @return the result of Stat; E_POINTER for a null stream or size.
    Ownership: nothing is handed out. */
HRESULT WINAPI GetStreamLength(IStream* stream, ULONG* size);

/** Writes byteCount bytes of text at a stream's current position; the
    caller decides whether a terminator is included. The two names are one
    operation (text is any bytes: UTF-16 or ANSI).

    @return the result of Write (a short write that Write reports as a
            success is not an error here); S_OK without writing for null
            text; E_POINTER for a null stream.
    Ownership: nothing is handed out. */
HRESULT WINAPI SerializeStringProp(ULONG byteCount, const void* text, IStream* stream);

/** The same operation as SerializeStringProp, under the name that narrow
    callers use. */
HRESULT WINAPI SerializeStringPropA(ULONG byteCount, const void* text, IStream* stream);

#ifdef __cplusplus
}
#endif

#endif /* MVSUP_STREAMS_H */
