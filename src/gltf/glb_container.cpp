#include "gltf/glb_container.h"

#include <cstring>

namespace {

constexpr u32 kGlbMagic = 0x46546C67;  // "glTF"
constexpr u32 kGlbVersion = 2;
constexpr u32 kChunkJson = 0x4E4F534A;  // "JSON"
constexpr u32 kChunkBin = 0x004E4942;   // "BIN\0"
constexpr u32 kHeaderSize = 12;
constexpr u32 kChunkHeaderSize = 8;
constexpr u64 kMaxFileSize = 0xFFFFFFFF;  // the header's length is 32 bits

u64 Padded(u64 size) { return (size + 3) & ~u64(3); }

void PutU32(u8* at, u32 value) {
  for (u32 i = 0; i < 4; ++i) at[i] = u8(value >> (8 * i));  // little-endian, whatever the host
}

bool EmitChunk(const GlbSink& sink, u32 type, const void* data, u64 size, u8 padding) {
  u8 header[kChunkHeaderSize];
  PutU32(header, u32(Padded(size)));
  PutU32(header + 4, type);
  const u8 pad[3] = {padding, padding, padding};
  const u64 padSize = Padded(size) - size;
  return sink(header, sizeof(header)) && (size == 0 || sink(data, size)) && (padSize == 0 || sink(pad, padSize));
}

u64 FileSize(const GltfDocument& document) {
  const bool hasBin = !document.bin.empty();
  return kHeaderSize + kChunkHeaderSize + Padded(document.json.size()) +
         (hasBin ? kChunkHeaderSize + Padded(document.bin.size()) : 0);
}

}  // namespace

bool FitsGlb(const GltfDocument& document) { return FileSize(document) <= kMaxFileSize; }

bool EmitGlb(const GltfDocument& document, const GlbSink& sink) {
  const bool hasBin = !document.bin.empty();
  const u64 total = FileSize(document);
  if (total > kMaxFileSize) return false;
  u8 header[kHeaderSize];
  PutU32(header, kGlbMagic);
  PutU32(header + 4, kGlbVersion);
  PutU32(header + 8, u32(total));
  if (!sink(header, sizeof(header))) return false;
  // The JSON chunk is padded with spaces, which leave the text valid; the binary one with zeros.
  if (!EmitChunk(sink, kChunkJson, document.json.data(), document.json.size(), ' ')) return false;
  return !hasBin || EmitChunk(sink, kChunkBin, document.bin.data(), document.bin.size(), 0);
}
