#include "common/memory_streams.h"

#include <cstring>

namespace mvsup::test {

IStream* memory_stream(const std::string& bytes, ULONGLONG position) {
  IStream* stream = nullptr;
  if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, &stream))) {
    ADD_FAILURE() << "CreateStreamOnHGlobal failed";
    return nullptr;
  }
  ULONG written = 0;
  EXPECT_EQ(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written), S_OK);
  LARGE_INTEGER move;
  move.QuadPart = static_cast<LONGLONG>(position);
  EXPECT_EQ(stream->Seek(move, STREAM_SEEK_SET, nullptr), S_OK);
  return stream;
}

ULONGLONG stream_position(IStream* stream) {
  LARGE_INTEGER zero{};
  ULARGE_INTEGER position{};
  EXPECT_EQ(stream->Seek(zero, STREAM_SEEK_CUR, &position), S_OK);
  return position.QuadPart;
}

std::string stream_bytes(IStream* stream) {
  const ULONGLONG position = stream_position(stream);
  STATSTG stat{};
  EXPECT_EQ(stream->Stat(&stat, STATFLAG_NONAME), S_OK);
  std::string bytes(static_cast<size_t>(stat.cbSize.QuadPart), '\0');
  LARGE_INTEGER move{};
  EXPECT_EQ(stream->Seek(move, STREAM_SEEK_SET, nullptr), S_OK);
  ULONG read = 0;
  if (!bytes.empty()) {
    EXPECT_EQ(stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read), S_OK);
  }
  EXPECT_EQ(read, bytes.size());
  move.QuadPart = static_cast<LONGLONG>(position);
  EXPECT_EQ(stream->Seek(move, STREAM_SEEK_SET, nullptr), S_OK);
  return bytes;
}

HGLOBAL global_block(const std::string& bytes) {
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
  if (memory == nullptr) {
    ADD_FAILURE() << "GlobalAlloc failed";
    return nullptr;
  }
  if (!bytes.empty()) std::memcpy(GlobalLock(memory), bytes.data(), bytes.size());
  GlobalUnlock(memory);
  return memory;
}

std::string global_bytes(HGLOBAL memory, size_t size) {
  if (memory == nullptr) return {};
  EXPECT_GE(GlobalSize(memory), size);
  const void* data = GlobalLock(memory);
  std::string bytes(static_cast<const char*>(data), size);
  GlobalUnlock(memory);
  return bytes;
}

}  // namespace mvsup::test
