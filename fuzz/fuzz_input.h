#pragma once

#include <cstdint>
#include <cstring>

#include "core/byte_buffer.h"

// The fuzzer's bytes in a block of exactly their length (granule 1), so that a read past the input
// lands outside the block and reaches the sanitizer. False for an input a block can't hold.
inline bool CopyInput(const uint8_t* data, size_t size, CByteBuffer& bytes) {
  if (size > UINT32_MAX || !bytes.SetSize(static_cast<u32>(size))) return false;
  if (size) std::memcpy(bytes.Data(), data, size);
  return true;
}
