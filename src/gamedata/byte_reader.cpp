#include "gamedata/byte_reader.h"

#include <cstring>

bool ByteReader::Take(u32 n, const u8*& out) {
  // Compared with what is left, never as position + n, which could wrap.
  if (Remaining() < n) {
    out = nullptr;
    return false;
  }
  out = bytes.Data() + position;
  position += n;
  return true;
}

bool ByteReader::ReadU32(u32& out) {
  const u8* p;
  const bool taken = Take(4, p);
  out = taken ? LoadU32LE(p) : 0;
  return taken;
}

bool ByteReader::ReadF32(f32& out) {
  const u8* p;
  const bool taken = Take(4, p);
  out = taken ? LoadF32LE(p) : 0.0f;
  return taken;
}

bool ByteReader::ReadBytes(void* out, u32 n) {
  const u8* p;
  if (!Take(n, p)) {
    std::memset(out, 0, n);
    return false;
  }
  // memcpy must not see the null pointers of an empty block.
  if (n) std::memcpy(out, p, n);
  return true;
}

bool ByteReader::Skip(u32 n) {
  const u8* ignored;
  return Take(n, ignored);
}
