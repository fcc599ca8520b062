#pragma once

#include "core/types.h"

// A file opened read-only, owned by this object. Reads name their offset (pread), so no position
// is shared between readers of one handle.
class FileHandle {
 public:
  FileHandle() = default;
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  FileHandle(FileHandle&& other) noexcept : fd(other.fd), size(other.size) { other.fd = -1; }
  FileHandle& operator=(FileHandle&& other) noexcept;
  ~FileHandle() { Close(); }

  // Opens an existing regular file for reading. The system's paths use `\`; it becomes `/` here.
  // A missing file, a folder or a refused permission is a plain false.
  [[nodiscard]] bool Open(const char* path);
  void Close();
  bool IsOpen() const { return fd >= 0; }

  // Size at the moment of opening.
  u64 Size() const { return size; }

  // Reads up to `count` bytes at `offset`; gives the number delivered, which is short only at the
  // end of the file or on an error.
  u64 ReadAt(u64 offset, void* dest, u64 count) const;
  // True only when exactly `count` bytes were delivered.
  [[nodiscard]] bool ReadExact(u64 offset, void* dest, u64 count) const { return ReadAt(offset, dest, count) == count; }

 private:
  int fd = -1;
  u64 size = 0;
};

// Writes `path` with every `\` turned into `/` into `out`, which holds `capacity` bytes.
// False when it does not fit.
bool ToPlatformPath(const char* path, char* out, u64 capacity);
