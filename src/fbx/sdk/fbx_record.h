#pragma once

#include "core/array.h"
#include "core/byte_buffer.h"
#include "core/types.h"
#include "core/value_string.h"

constexpr u32 kFbxValueGranule = 16;

// One property of a binary FBX record: a type code and its value. Scalars live in `integer` or
// `real`; strings, raw bytes and arrays keep their little-endian bytes in `bytes`.
struct FbxRecordValue {
  char code = 0;  // Y C I F D L S R f d l i
  i64 integer = 0;
  f64 real = 0;
  // A small step: a scene has thousands of short strings, and a large array is sized once.
  CByteBuffer bytes{kFbxValueGranule};
  u32 count = 0;          // array elements
  bool deflated = false;  // an array whose `bytes` are already its zlib stream, as the file stores it
};

// A record of a binary FBX file: a name, its properties and its child records. A `block` record is
// closed by a null record even without children, as readers expect of every scope.
struct FbxRecord {
  CStringA name;
  TArray<FbxRecordValue> properties;
  TArray<FbxRecord> children;
  bool block = false;

  // Builders; each gives null or false when memory is refused. Names are at most 255 bytes. A child
  // stays where AddChild put it only until the next child of this record is added.
  FbxRecord* AddChild(const char* childName, bool isBlock = false);
  [[nodiscard]] bool AddInt16(i16 value) { return AddScalar('Y', value, 0); }
  [[nodiscard]] bool AddBool(bool value) { return AddScalar('C', value ? 1 : 0, 0); }
  [[nodiscard]] bool AddChar(char value) { return AddScalar('C', value, 0); }
  [[nodiscard]] bool AddInt32(i32 value) { return AddScalar('I', value, 0); }
  [[nodiscard]] bool AddInt64(i64 value) { return AddScalar('L', value, 0); }
  [[nodiscard]] bool AddFloat(f32 value) { return AddScalar('F', 0, value); }
  [[nodiscard]] bool AddDouble(f64 value) { return AddScalar('D', 0, value); }
  // A text of `size` bytes, which may hold NULs (as the "Name\0\1Class" form does).
  [[nodiscard]] bool AddString(const char* text, u32 size);
  [[nodiscard]] bool AddString(const char* text);
  [[nodiscard]] bool AddRaw(const void* data, u32 size);
  [[nodiscard]] bool AddDoubles(const f64* values, u32 count) { return AddArray('d', values, count, 8); }
  [[nodiscard]] bool AddFloats(const f32* values, u32 count) { return AddArray('f', values, count, 4); }
  [[nodiscard]] bool AddInt32s(const i32* values, u32 count) { return AddArray('i', values, count, 4); }
  [[nodiscard]] bool AddInt64s(const i64* values, u32 count) { return AddArray('l', values, count, 8); }

  // An array of `count` elements to be filled in place; null when memory is refused. The storage
  // moves when another property is added.
  [[nodiscard]] f64* AddDoubles(u32 count) { return static_cast<f64*>(AddArrayStorage('d', count, 8)); }
  [[nodiscard]] i32* AddInt32s(u32 count) { return static_cast<i32*>(AddArrayStorage('i', count, 4)); }

 private:
  void* AddArrayStorage(char code, u32 count, u32 elementSize);
  bool AddScalar(char code, i64 integer, f64 real);
  bool AddArray(char code, const void* values, u32 count, u32 elementSize);
};

// Bytes that one element of an array property of `code` takes.
u32 FbxElementSize(char code);
