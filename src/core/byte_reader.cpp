#include "core/byte_reader.h"

bool ByteReader::Seek(u64 at) {
  if (failed || at > size) return Fail();
  position = u32(at);
  return true;
}

bool ByteReader::Take(u32 n, const u8*& out) {
  out = nullptr;
  if (!Has(n)) return Fail();
  out = data + position;
  position += n;
  return true;
}

bool ByteReader::ReadU32(u32& out) {
  const u8* p;
  const bool taken = Take(4, p);
  out = taken ? LoadU32LE(p) : 0;
  return taken;
}

bool ByteReader::ReadU32BE(u32& out) {
  const u8* p;
  const bool taken = Take(4, p);
  out = taken ? LoadU32BE(p) : 0;
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
    if (n) std::memset(out, 0, n);
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

bool ByteReader::Fits(u64 at, u64 count, u64 recordSize) {
  if (failed) return false;
  if (at > size || (recordSize && count > (size - at) / recordSize)) return Fail();
  return true;
}

const char* ByteReader::TextAt(u64 at) {
  if (!Fits(at, 1, 1)) return "";
  if (!std::memchr(data + at, 0, size_t(size - at))) {
    Fail();
    return "";
  }
  return reinterpret_cast<const char*>(data + at);
}
