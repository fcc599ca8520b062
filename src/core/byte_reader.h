#pragma once

#include <bit>
#include <cstring>
#include <type_traits>

#include "core/byte_buffer.h"
#include "core/types.h"

// Loads from bytes known to be there, assembled byte by byte so the host's order doesn't matter;
// compilers make each one load.
inline u16 LoadU16LE(const u8* p) { return u16(p[0] | (p[1] << 8)); }
inline u32 LoadU32LE(const u8* p) { return u32(p[0]) | (u32(p[1]) << 8) | (u32(p[2]) << 16) | (u32(p[3]) << 24); }
inline u32 LoadU32BE(const u8* p) { return (u32(p[0]) << 24) | (u32(p[1]) << 16) | (u32(p[2]) << 8) | u32(p[3]); }
inline f32 LoadF32LE(const u8* p) { return std::bit_cast<f32>(LoadU32LE(p)); }

// The one cursor over a game file's bytes. Every read first compares what it asks for with what is
// left, never forming position + n from file numbers. The first read that doesn't fit fails the
// reader for good: it and every later read move nothing and give zeros, so a record can be read
// field by field and the reader tested once.
//
// Sequential reads go from `Position()`; the `...At` reads take a position from the start, for
// formats whose records point at each other. Positions are u64 so that sums of file words can't
// wrap. The bytes are borrowed and must outlive the reader.
class ByteReader {
 public:
  ByteReader(const u8* bytes, u32 byteCount) : data(bytes), size(byteCount) {}
  explicit ByteReader(const CByteBuffer& source) : ByteReader(source.Data(), source.Size()) {}

  bool Failed() const { return failed; }
  u32 Position() const { return position; }
  u32 Size() const { return size; }
  u32 Remaining() const { return size - position; }
  // Whether `n` more bytes are there; `n` is 64-bit so a product of two file numbers fits unwrapped.
  bool Has(u64 n) const { return !failed && n <= Remaining(); }

  // Moves to `at` from the start; past the end fails the reader.
  [[nodiscard]] bool Seek(u64 at);

  [[nodiscard]] bool ReadU32(u32& out);    // little-endian
  [[nodiscard]] bool ReadU32BE(u32& out);  // big-endian
  [[nodiscard]] bool ReadF32(f32& out);    // little-endian
  // Copies the next `n` bytes to `out`.
  [[nodiscard]] bool ReadBytes(void* out, u32 n);
  [[nodiscard]] bool Skip(u32 n);
  // Points `out` at the next `n` bytes in place, valid while the bytes are. The pointer may be null
  // for an empty buffer and n 0.
  [[nodiscard]] bool Take(u32 n, const u8*& out);

  // Whether `count` records of `recordSize` bytes lie at `at`; fails the reader if not.
  bool Fits(u64 at, u64 count, u64 recordSize);
  // A plain record in the file's (the host's, little-endian) order at `at`.
  template <class T>
  T LoadAt(u64 at) {
    static_assert(std::is_trivially_copyable_v<T>);
    T value{};
    if (Fits(at, 1, sizeof(T))) std::memcpy(&value, data + at, sizeof(T));
    return value;
  }
  u32 U32At(u64 at) { return LoadAt<u32>(at); }
  // The NUL-terminated text at `at`, whose NUL must lie inside the bytes; "" after a failure.
  const char* TextAt(u64 at);

 private:
  bool Fail() {
    failed = true;
    return false;
  }

  const u8* data;
  u32 size;
  u32 position = 0;  // never past `size`
  bool failed = false;
};

static_assert(std::endian::native == std::endian::little, "LoadAt copies records in the host's order");
