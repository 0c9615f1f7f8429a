#include "common/fake_stream.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace mvsup::test {

int FakeStream::total_calls() const { return std::accumulate(calls_.begin(), calls_.end(), 0); }

void FakeStream::fail(Method method, HRESULT hr, int call, bool sticky) {
  faults_[static_cast<size_t>(method)] = Fault{hr, call, sticky};
}

std::optional<HRESULT> FakeStream::enter(Method method) {
  const size_t index = static_cast<size_t>(method);
  const int call = ++calls_[index];
  const Fault& fault = faults_[index];
  if (fault.call != 0 && (call == fault.call || (fault.sticky && call > fault.call))) return fault.hr;
  return std::nullopt;
}

HRESULT FakeStream::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (iid == IID_IUnknown || iid == IID_ISequentialStream || iid == IID_IStream) {
    *object = static_cast<IStream*>(this);
    AddRef();
    return S_OK;
  }
  *object = nullptr;
  return E_NOINTERFACE;
}

HRESULT FakeStream::Read(void* buffer, ULONG count, ULONG* read) {
  if (read) *read = 0;
  if (auto failure = enter(Method::Read)) return *failure;
  const ULONGLONG available = position_ < bytes_.size() ? bytes_.size() - position_ : 0;
  ULONG n = static_cast<ULONG>(std::min<ULONGLONG>(count, available));
  HRESULT status = S_OK;
  if (read_limit_) {
    n = std::min(n, *read_limit_);
    status = read_status_;
  }
  if (n) std::memcpy(buffer, bytes_.data() + position_, n);
  position_ += n;
  if (read) *read = n;
  return status;
}

HRESULT FakeStream::Write(const void* buffer, ULONG count, ULONG* written) {
  if (written) *written = 0;
  if (auto failure = enter(Method::Write)) return *failure;
  const ULONG n = write_limit_ ? std::min(count, *write_limit_) : count;
  if (position_ + n > bytes_.size()) bytes_.resize(position_ + n);
  if (n) std::memcpy(bytes_.data() + position_, buffer, n);
  position_ += n;
  if (written) *written = n;
  return S_OK;
}

HRESULT FakeStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) {
  if (auto failure = enter(Method::Seek)) return *failure;
  LONGLONG base = 0;
  switch (origin) {
    case STREAM_SEEK_SET: break;
    case STREAM_SEEK_CUR: base = static_cast<LONGLONG>(position_); break;
    case STREAM_SEEK_END: base = static_cast<LONGLONG>(bytes_.size()); break;
    default: return STG_E_INVALIDFUNCTION;
  }
  if (base + move.QuadPart < 0) return STG_E_INVALIDFUNCTION;
  position_ = static_cast<ULONGLONG>(base + move.QuadPart);
  if (position) position->QuadPart = position_;
  return S_OK;
}

HRESULT FakeStream::SetSize(ULARGE_INTEGER size) {
  if (auto failure = enter(Method::SetSize)) return *failure;
  bytes_.resize(static_cast<size_t>(size.QuadPart));
  return S_OK;
}

HRESULT FakeStream::CopyTo(IStream* target, ULARGE_INTEGER count, ULARGE_INTEGER* read, ULARGE_INTEGER* written) {
  if (read) read->QuadPart = 0;
  if (written) written->QuadPart = 0;
  if (auto failure = enter(Method::CopyTo)) return *failure;
  const ULONGLONG available = position_ < bytes_.size() ? bytes_.size() - position_ : 0;
  ULONGLONG n = std::min(count.QuadPart, available);
  if (copy_limit_) n = std::min<ULONGLONG>(n, *copy_limit_);
  ULONG stored = 0;
  const HRESULT hr = n ? target->Write(bytes_.data() + position_, static_cast<ULONG>(n), &stored) : S_OK;
  position_ += n;
  if (read) read->QuadPart = n;
  if (written) written->QuadPart = stored;
  return hr;
}

HRESULT FakeStream::Commit(DWORD) {
  if (auto failure = enter(Method::Commit)) return *failure;
  return S_OK;
}

HRESULT FakeStream::Revert() {
  if (auto failure = enter(Method::Revert)) return *failure;
  return S_OK;
}

HRESULT FakeStream::LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) {
  if (auto failure = enter(Method::LockRegion)) return *failure;
  return STG_E_INVALIDFUNCTION;
}

HRESULT FakeStream::UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) {
  if (auto failure = enter(Method::UnlockRegion)) return *failure;
  return STG_E_INVALIDFUNCTION;
}

HRESULT FakeStream::Stat(STATSTG* stat, DWORD) {
  if (auto failure = enter(Method::Stat)) return *failure;
  if (stat == nullptr) return STG_E_INVALIDPOINTER;
  *stat = STATSTG{};
  stat->type = STGTY_STREAM;
  stat->cbSize.QuadPart = reported_size_ ? *reported_size_ : bytes_.size();
  return S_OK;
}

HRESULT FakeStream::Clone(IStream** clone) {
  if (clone) *clone = nullptr;
  if (auto failure = enter(Method::Clone)) return *failure;
  return E_NOTIMPL;
}

}  // namespace mvsup::test
