#include "assets/block_reader.h"

bool BlockReader::Fill(u32 n) {
  if (position >= blockStart && position + n <= blockStart + blockBytes) return true;
  // Checked before any allocation: a length from a corrupt file must not make us allocate it.
  const u64 fileSize = file.Size();
  if (position > fileSize || n > fileSize - position) return false;
  u64 want = n > kBlockSize ? n : kBlockSize;
  if (want > fileSize - position) want = fileSize - position;
  if (!block.SetSize(static_cast<u32>(want))) return false;
  const u64 got = file.ReadAt(position, block.Data(), want);
  blockStart = position;
  blockBytes = static_cast<u32>(got);
  return got >= n;
}

const u8* BlockReader::Take(u32 n) {
  if (!Fill(n)) return nullptr;
  const u8* bytes = block.Data() + (position - blockStart);
  position += n;
  return bytes;
}

bool BlockReader::TakeReader(u32 n, ByteReader& out) {
  const u8* bytes = Take(n);
  if (!bytes) return false;
  out = ByteReader(bytes, n);
  return true;
}
