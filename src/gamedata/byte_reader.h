#pragma once

#include <bit>

#include "core/byte_buffer.h"
#include "core/types.h"

// Cursor over the bytes of one game file. Every read first checks that what it asks for is still
// in the buffer; a read that fails moves nothing and fills its output with zeros. The numbers of
// the game's models and rigs are little-endian.
//
// `bytes` is borrowed and must outlive the reader; `position` never passes `bytes.Size()`.
class ByteReader {
 public:
  explicit ByteReader(const CByteBuffer& source) : bytes(source) {}

  u32 Position() const { return position; }
  u32 Remaining() const { return bytes.Size() - position; }
  // Whether `n` more bytes are there; `n` is 64-bit so a product of two file numbers fits unwrapped.
  bool Has(u64 n) const { return n <= Remaining(); }

  [[nodiscard]] bool ReadU32(u32& out);
  [[nodiscard]] bool ReadF32(f32& out);
  // Copies the next `n` bytes to `out`.
  [[nodiscard]] bool ReadBytes(void* out, u32 n);
  [[nodiscard]] bool Skip(u32 n);
  // Points `out` at the next `n` bytes in place, valid while `bytes` is unchanged. The pointer
  // may be null for an empty buffer and n 0.
  [[nodiscard]] bool Take(u32 n, const u8*& out);

 private:
  const CByteBuffer& bytes;
  u32 position = 0;
};

// Assembled byte by byte so the host's order doesn't matter; compilers make it one load.
inline u32 LoadU32LE(const u8* p) { return u32(p[0]) | (u32(p[1]) << 8) | (u32(p[2]) << 16) | (u32(p[3]) << 24); }
inline f32 LoadF32LE(const u8* p) { return std::bit_cast<f32>(LoadU32LE(p)); }
