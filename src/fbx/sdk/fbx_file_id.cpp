#include "fbx/sdk/fbx_file_id.h"

namespace {

// Seconds, month, hour, day, the first two millisecond digits, year, minutes.
constexpr u32 kTimeCharacters[16] = {17, 18, 5, 6, 11, 12, 8, 9, 20, 21, 0, 1, 2, 3, 14, 15};
constexpr u8 kFileIdKey[16] = {0x18, 0xB3, 0x1A, 0xEA, 0x86, 0x24, 0xFC, 0xC3,
                               0x8E, 0xC9, 0x80, 0x23, 0x97, 0x25, 0xC2, 0xFF};
constexpr u8 kFooterIdKey[16] = {0xFA, 0xBC, 0x9B, 0x09, 0xD0, 0xC9, 0xE4, 0x67,
                                 0xB1, 0x76, 0xCA, 0x82, 0x1D, 0xFF, 0x19, 0x78};

void Pick(const char* creationTime, u8 (&p)[16]) {
  for (u32 i = 0; i < 16; ++i) p[i] = static_cast<u8>(creationTime[kTimeCharacters[i]]);
}

}  // namespace

void FbxFileId(const char* creationTime, u8 (&out)[16]) {
  Pick(creationTime, out);
  for (u32 i = 1; i < 16; ++i) out[i] ^= out[i - 1];
  for (u32 i = 0; i < 16; ++i) out[i] ^= kFileIdKey[i];
}

void FbxFooterId(const char* creationTime, u8 (&out)[16]) {
  u8 p[16];
  Pick(creationTime, p);
  for (u32 i = 0; i < 16; ++i) out[i] = p[i];
  for (u32 i = 2; i < 16; ++i) out[i] ^= out[i - 2];
  for (u32 i = 0; i < 16; ++i) out[i] ^= p[i];
  for (u32 i = 1; i < 16; ++i) out[i] ^= out[i - 1];
  for (u32 i = 0; i < 16; ++i) out[i] ^= kFooterIdKey[i];
}
