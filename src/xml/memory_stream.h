#pragma once

#include "core/byte_buffer.h"
#include "core/spin_lock.h"
#include "xml/stream.h"

// A read-only stream over bytes that are already in memory, without copying them. A reader puts
// one on its stack over a fetched file and holds its only reference; the buffer must outlive it and
// stay unchanged.
class CMemoryStream final : public IStream {
 public:
  explicit CMemoryStream(const CByteBuffer& bytes) : size(bytes.Size()), data(bytes.Data()) {}
  CMemoryStream(const CMemoryStream&) = delete;
  CMemoryStream& operator=(const CMemoryStream&) = delete;
  ~CMemoryStream() override = default;

  HResult QueryInterface(InterfaceId id, void** object) override { return QueryStreamInterface(this, id, object); }
  u32 AddRef() override { return ++refCount; }
  u32 Release() override;
  HResult Read(void* buffer, u32 count, u32* got) override;
  HResult Write(const void*, u32, u32*) override { return E_NOTIMPL; }
  HResult Seek(i64 move, u32 origin, u64* newPosition) override;
  HResult SetSize(u64) override { return E_NOTIMPL; }
  HResult CopyTo(IStream*, u64, u64*, u64*) override { return E_NOTIMPL; }
  HResult Commit(u32) override { return E_NOTIMPL; }
  HResult Revert() override { return E_NOTIMPL; }
  HResult LockRegion(u64, u64, u32) override { return E_NOTIMPL; }
  HResult UnlockRegion(u64, u64, u32) override { return E_NOTIMPL; }
  HResult Stat(StreamStat* record, u32 flags) override;
  HResult Clone(IStream**) override { return E_NOTIMPL; }

 private:
  u32 refCount = 1;
  u32 size;
  u32 position = 0;  // may lie past `size`
  const u8* data;    // not owned
  CSpinLock lock;
};
