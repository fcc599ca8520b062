#include "xml/memory_stream.h"

#include <cstring>

// A memory stream is always a local object of its reader, which keeps the first reference, so the
// count never frees it.
u32 CMemoryStream::Release() { return refCount ? --refCount : 0; }

HResult CMemoryStream::Read(void* buffer, u32 count, u32* got) {
  lock.Lock();
  if (got) *got = 0;
  HResult result = S_OK;
  if (count == 0) {
    result = E_INVALIDARG;
  } else if (!buffer || !data) {
    result = STG_E_INVALIDPOINTER;
  } else if (position >= size) {
    result = S_FALSE;
  } else {
    const u32 n = count < size - position ? count : size - position;
    std::memcpy(buffer, data + position, n);
    position += n;
    if (got) *got = n;
  }
  lock.Unlock();
  return result;
}

HResult CMemoryStream::Seek(i64 move, u32 origin, u64* newPosition) {
  lock.Lock();
  if (newPosition) *newPosition = 0;
  HResult result = S_OK;
  const u64 bits = static_cast<u64>(move);
  // A move with anything in its high half, a negative one included, is refused.
  if (bits >> 32) {
    result = STG_E_INVALIDPARAMETER;
  } else if (origin == STREAM_SEEK_SET) {
    position = static_cast<u32>(bits);
  } else if (origin == STREAM_SEEK_CUR) {
    position += static_cast<u32>(bits);
  } else if (origin == STREAM_SEEK_END) {
    position = size + static_cast<u32>(bits);
  } else {
    result = STG_E_SEEKERROR;
  }
  if (result == S_OK && newPosition) *newPosition = position;
  lock.Unlock();
  return result;
}

HResult CMemoryStream::Stat(StreamStat* record, u32) {
  if (!record) return E_POINTER;
  *record = StreamStat{};
  record->type = STGTY_STREAM;
  record->size = size;
  record->mode = STGM_READ;
  return S_OK;
}
