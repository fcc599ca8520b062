#pragma once

#include <mutex>

#include "core/value_string.h"
#include "platform/file_handle.h"
#include "xml/stream.h"

// Makes every folder above the last component of `path` (the last is taken as a file name). With a
// drive letter the drive itself isn't made. Folders made stay when a later one fails.
[[nodiscard]] bool MakeFoldersForPath(const char16_t* path);

// A stream over a file on disk, opened for reading only. Made on the heap with MemNew and ended by
// its last Release.
class CFileStream final : public IStream {
 public:
  CFileStream() = default;
  CFileStream(const CFileStream&) = delete;
  CFileStream& operator=(const CFileStream&) = delete;
  ~CFileStream() override = default;

  // Closes any open file, makes the folders above `path` and opens it for reading.
  [[nodiscard]] bool Open(const char16_t* path);

  HResult QueryInterface(InterfaceId id, void** object) override { return QueryStreamInterface(this, id, object); }
  u32 AddRef() override { return ++refCount; }
  u32 Release() override;
  HResult Read(void* buffer, u32 count, u32* got) override;
  HResult Write(const void* buffer, u32 count, u32* written) override;
  HResult Seek(i64 move, u32 origin, u64* newPosition) override;
  HResult SetSize(u64 size) override;
  HResult CopyTo(IStream*, u64, u64*, u64*) override { return STG_E_UNIMPLEMENTEDFUNCTION; }
  HResult Commit(u32) override { return STG_E_UNIMPLEMENTEDFUNCTION; }
  HResult Revert() override { return STG_E_UNIMPLEMENTEDFUNCTION; }
  HResult LockRegion(u64, u64, u32) override { return STG_E_UNIMPLEMENTEDFUNCTION; }
  HResult UnlockRegion(u64, u64, u32) override { return STG_E_UNIMPLEMENTEDFUNCTION; }
  HResult Stat(StreamStat* record, u32 flags) override;
  HResult Clone(IStream**) override { return STG_E_UNIMPLEMENTEDFUNCTION; }

 private:
  u32 refCount = 1;
  FileHandle file;
  u64 position = 0;
  CStringW path;  // the path last opened
  bool readOnly = false;
  std::recursive_mutex lock;
};
