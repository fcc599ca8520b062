#pragma once

#include "core/byte_buffer.h"
#include "core/byte_reader.h"
#include "core/types.h"
#include "platform/file_handle.h"

// Sequential reads from a file through one large in-memory block, so that a directory of many small
// fields costs a few system calls instead of one per field. Every read delivers exactly the bytes
// asked for or fails: bytes past the end of the file are a failure, never zeros.
class BlockReader {
 public:
  static constexpr u32 kBlockSize = 256 * 1024;

  // `block` is scratch storage, kept by the caller so its capacity is reused from file to file.
  BlockReader(const FileHandle& source, CByteBuffer& scratch) : file(source), block(scratch) {}

  void Seek(u64 offset) { position = offset; }
  u64 Position() const { return position; }

  // The next `n` bytes, in memory until the next call, and moves past them. Null when the file ends
  // first or memory is refused.
  const u8* Take(u32 n);
  // The next `n` bytes as a reader of their own, valid until the next call; false as Take.
  [[nodiscard]] bool TakeReader(u32 n, ByteReader& out);

 private:
  bool Fill(u32 n);

  const FileHandle& file;
  CByteBuffer& block;
  u64 blockStart = 0;  // file offset of block.Data()[0]
  u32 blockBytes = 0;  // bytes of the file held from there
  u64 position = 0;    // file offset of the next read
};
