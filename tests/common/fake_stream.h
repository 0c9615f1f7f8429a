// A hand-written IStream over bytes in memory that counts its calls and its
// references and can be told to misbehave: short reads, short writes, a
// short CopyTo, a lying Stat, and any method failing on a chosen call.
//
// The object lives where the test puts it (usually on the stack): Release
// never deletes it, so a leaked or missing reference shows as a count, not
// as a crash. The test holds the first reference.
#pragma once

#include <windows.h>
#include <objidl.h>

#include <array>
#include <optional>
#include <string>

namespace mvsup::test {

class FakeStream final : public IStream {
 public:
  enum class Method { Read, Write, Seek, SetSize, CopyTo, Commit, Revert, LockRegion, UnlockRegion, Stat, Clone, Count };

  explicit FakeStream(std::string bytes = {}) : bytes_(std::move(bytes)) {}
  FakeStream(const FakeStream&) = delete;
  FakeStream& operator=(const FakeStream&) = delete;
  virtual ~FakeStream() = default;

  // ---- what happened
  ULONG references() const { return references_; }
  int calls(Method method) const { return calls_[static_cast<size_t>(method)]; }
  int total_calls() const;
  const std::string& bytes() const { return bytes_; }
  ULONGLONG position() const { return position_; }
  void set_position(ULONGLONG position) { position_ = position; }

  // ---- faults
  // Makes `method` return `hr` on its `call`-th call (1-based), or on every
  // call from the `call`-th on when `sticky`. A failing call does nothing.
  void fail(Method method, HRESULT hr, int call = 1, bool sticky = true);
  // Each Read hands over at most `bytes` and returns `status` (S_OK or
  // S_FALSE) from then on.
  void limit_reads(ULONG bytes, HRESULT status = S_OK) {
    read_limit_ = bytes;
    read_status_ = status;
  }
  // Each Write stores at most `bytes` and still returns S_OK.
  void limit_writes(ULONG bytes) { write_limit_ = bytes; }
  // CopyTo moves at most `bytes` and reports what it moved, with S_OK.
  void limit_copies(ULONG bytes) { copy_limit_ = bytes; }
  // Stat reports this size instead of the real one.
  void report_size(ULONGLONG size) { reported_size_ = size; }

  // ---- IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override { return --references_; }

  // ---- ISequentialStream
  HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* read) override;
  HRESULT STDMETHODCALLTYPE Write(const void* buffer, ULONG count, ULONG* written) override;

  // ---- IStream
  HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
  HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) override;
  HRESULT STDMETHODCALLTYPE CopyTo(IStream* target, ULARGE_INTEGER count, ULARGE_INTEGER* read,
                                   ULARGE_INTEGER* written) override;
  HRESULT STDMETHODCALLTYPE Commit(DWORD flags) override;
  HRESULT STDMETHODCALLTYPE Revert() override;
  HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) override;
  HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) override;
  HRESULT STDMETHODCALLTYPE Stat(STATSTG* stat, DWORD flags) override;
  HRESULT STDMETHODCALLTYPE Clone(IStream** clone) override;

 private:
  // Counts the call; the injected failure for it, if any.
  std::optional<HRESULT> enter(Method method);

  std::string bytes_;
  ULONGLONG position_ = 0;
  ULONG references_ = 1;
  std::array<int, static_cast<size_t>(Method::Count)> calls_{};
  struct Fault {
    HRESULT hr = S_OK;
    int call = 0;  // 0: none
    bool sticky = false;
  };
  std::array<Fault, static_cast<size_t>(Method::Count)> faults_{};
  std::optional<ULONG> read_limit_;
  HRESULT read_status_ = S_OK;
  std::optional<ULONG> write_limit_;
  std::optional<ULONG> copy_limit_;
  std::optional<ULONGLONG> reported_size_;
};

// The reference count of a COM object, read without changing it.
inline ULONG reference_count(IUnknown* object) {
  object->AddRef();
  return object->Release();
}

}  // namespace mvsup::test
