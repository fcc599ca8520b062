#include "fbx/sdk/fbx_binary_writer.h"

#include <libdeflate.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>

#include "fbx/sdk/fbx_file_id.h"
#include "platform/parallel_for.h"

namespace {

constexpr u8 kMagic[23] = {'K', 'a', 'y', 'd', 'a', 'r', 'a', ' ', 'F',  'B',  'X', ' ',
                           'B', 'i', 'n', 'a', 'r', 'y', ' ', ' ', 0x00, 0x1A, 0x00};
constexpr u32 kHeaderSize = 27;
constexpr u32 kRecordHeaderSize = 13;  // EndOffset, NumProperties, PropertyListLen (u32), NameLen (u8)
constexpr u32 kArrayHeaderSize = 12;   // count, encoding, stored length
constexpr u32 kFooterZeros = 120;
constexpr u8 kEndMagic[16] = {0xF8, 0x5A, 0x8C, 0x6A, 0xDE, 0xF5, 0xD9, 0x7E,
                              0xEC, 0xE9, 0x0C, 0xE3, 0x75, 0x8F, 0x29, 0x0B};
constexpr int kDeflateLevel = 1;
constexpr u32 kMaxCompressors = 8;

struct CompressorDeleter {
  void operator()(libdeflate_compressor* c) const { libdeflate_free_compressor(c); }
};

bool IsArray(char code) {
  return code == 'f' || code == 'd' || code == 'l' || code == 'i' || code == 'b' || code == 'c';
}

// The stored form of every deflated array, in the order the writer meets them.
struct Packed {
  TArray<CByteBuffer> streams;
  u32 next = 0;
};

bool IsLarge(const FbxRecordValue& property) {
  return IsArray(property.code) && property.bytes.Size() > kFbxDeflateAbove;
}

// Lists the arrays to deflate in the order the writer meets them. Names were checked as records
// were added.
bool CollectLarge(const FbxRecord& record, TArray<const FbxRecordValue*>& large) {
  for (const FbxRecordValue& property : record.properties) {
    if (!IsLarge(property)) continue;
    const FbxRecordValue** slot = large.Append();
    if (!slot) return false;
    *slot = &property;
  }
  for (const FbxRecord& child : record.children) {
    if (!CollectLarge(child, large)) return false;
  }
  return true;
}

// Deflates the large arrays on every processor: they are independent, and compression is most of
// the time a file takes to write. Each worker has a compressor of its own.
bool Pack(const FbxRecord& document, Packed& packed) {
  TArray<const FbxRecordValue*> large;
  if (!CollectLarge(document, large) || !packed.streams.SetSize(large.Count())) return false;
  if (large.Count() == 0) return true;
  // Inside a batch the files themselves are spread over the processors.
  u32 workers = InsideParallelFor() ? 1 : ProcessorCount();
  if (workers > kMaxCompressors) workers = kMaxCompressors;
  if (workers > large.Count()) workers = large.Count();
  std::unique_ptr<libdeflate_compressor, CompressorDeleter> compressors[kMaxCompressors];
  // Each worker deflates into a scratch block of its own, reused from array to array, and keeps
  // only the bytes written: the stored form needs no zeroed room for the compressor's worst case.
  CByteBuffer scratch[kMaxCompressors];
  for (u32 i = 0; i < workers; ++i) {
    compressors[i].reset(libdeflate_alloc_compressor(kDeflateLevel));
    if (!compressors[i]) return false;
  }
  // Largest first, so that no large array is left to one worker at the end while the others idle.
  TArray<u32> order;
  if (!order.Reserve(large.Count()) || !order.SetSize(large.Count())) return false;
  for (u32 i = 0; i < large.Count(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(),
                   [&](u32 a, u32 b) { return large[a]->bytes.Size() > large[b]->bytes.Size(); });
  std::atomic<bool> failed{false};
  auto deflate = [&](u32 worker, u32 next) {
    const u32 item = order[next];
    libdeflate_compressor* compressor = compressors[worker].get();
    const CByteBuffer& raw = large[item]->bytes;
    CByteBuffer& room = scratch[worker];
    const size_t bound = libdeflate_zlib_compress_bound(compressor, raw.Size());
    if (bound > UINT32_MAX || !room.SetSizeForOverwrite(static_cast<u32>(bound))) {
      failed = true;
      return;
    }
    const size_t size = libdeflate_zlib_compress(compressor, raw.Data(), raw.Size(), room.Data(), bound);
    CByteBuffer& stream = packed.streams[item];
    if (size == 0 || !stream.SetSizeForOverwrite(static_cast<u32>(size))) {
      failed = true;
      return;
    }
    std::memcpy(stream.Data(), room.Data(), size);
  };
  ParallelFor(large.Count(), workers, deflate);
  return !failed;
}

u64 PropertySize(const FbxRecordValue& property, const Packed& packed, u32& packedIndex) {
  switch (property.code) {
    case 'C': return 1 + 1;
    case 'Y': return 1 + 2;
    case 'I':
    case 'F': return 1 + 4;
    case 'D':
    case 'L': return 1 + 8;
    case 'S':
    case 'R': return 1 + 4 + u64(property.bytes.Size());
    default:
      if (IsLarge(property)) return 1 + kArrayHeaderSize + u64(packed.streams[packedIndex++].Size());
      return 1 + kArrayHeaderSize + u64(property.bytes.Size());
  }
}

u64 PropertiesSize(const FbxRecord& record, const Packed& packed, u32& packedIndex) {
  u64 size = 0;
  for (const FbxRecordValue& property : record.properties) size += PropertySize(property, packed, packedIndex);
  return size;
}

u64 RecordSize(const FbxRecord& record, const Packed& packed, u32& packedIndex) {
  u64 size = kRecordHeaderSize + u64(std::strlen(record.name.Text())) + PropertiesSize(record, packed, packedIndex);
  for (const FbxRecord& child : record.children) size += RecordSize(child, packed, packedIndex);
  if (record.children.Count() || record.block) size += kRecordHeaderSize;
  return size;
}

// Writes into a buffer sized beforehand, so every write fits.
class Emitter {
 public:
  explicit Emitter(u8* start) : base(start) {}
  u32 Position() const { return at; }
  void Bytes(const void* data, u32 size) {
    if (size) std::memcpy(base + at, data, size);
    at += size;
  }
  void Zeros(u32 size) {
    std::memset(base + at, 0, size);
    at += size;
  }
  template <class T>
  void Value(T value) {
    Bytes(&value, sizeof(T));
  }
  void PatchU32(u32 position, u32 value) { std::memcpy(base + position, &value, 4); }

 private:
  u8* base;
  u32 at = 0;
};

void EmitProperty(Emitter& out, const FbxRecordValue& property, Packed& packed) {
  out.Value<char>(property.code);
  switch (property.code) {
    case 'C': out.Value<u8>(static_cast<u8>(property.integer)); return;
    case 'Y': out.Value<i16>(static_cast<i16>(property.integer)); return;
    case 'I': out.Value<i32>(static_cast<i32>(property.integer)); return;
    case 'L': out.Value<i64>(property.integer); return;
    case 'F': out.Value<f32>(static_cast<f32>(property.real)); return;
    case 'D': out.Value<f64>(property.real); return;
    case 'S':
    case 'R':
      out.Value<u32>(property.bytes.Size());
      out.Bytes(property.bytes.Data(), property.bytes.Size());
      return;
    default: {
      const bool deflated = IsLarge(property);
      const CByteBuffer& stored = deflated ? packed.streams[packed.next++] : property.bytes;
      out.Value<u32>(property.count);
      out.Value<u32>(deflated ? 1 : 0);
      out.Value<u32>(stored.Size());
      out.Bytes(stored.Data(), stored.Size());
    }
  }
}

void EmitRecord(Emitter& out, const FbxRecord& record, Packed& packed) {
  const u32 start = out.Position();
  u32 packedIndex = packed.next;
  const u64 propertyBytes = PropertiesSize(record, packed, packedIndex);
  const u32 nameLength = static_cast<u32>(std::strlen(record.name.Text()));
  out.Value<u32>(0);  // EndOffset, patched once the record is written
  out.Value<u32>(record.properties.Count());
  out.Value<u32>(static_cast<u32>(propertyBytes));
  out.Value<u8>(static_cast<u8>(nameLength));
  out.Bytes(record.name.Text(), nameLength);
  for (const FbxRecordValue& property : record.properties) EmitProperty(out, property, packed);
  for (const FbxRecord& child : record.children) EmitRecord(out, child, packed);
  if (record.children.Count() || record.block) out.Zeros(kRecordHeaderSize);
  out.PatchU32(start, out.Position());
}

}  // namespace

bool WriteFbxBinary(const FbxRecord& document, const char* creationTime, CByteBuffer& out) {
  Packed packed;
  if (!Pack(document, packed)) return false;

  u32 packedIndex = 0;
  u64 size = kHeaderSize + kRecordHeaderSize;
  for (const FbxRecord& record : document.children) size += RecordSize(record, packed, packedIndex);
  // Footer: its id, zeros to the next multiple of 16 (16 when already there), 4 zeros, the
  // version, 120 zeros and the end magic.
  const u64 afterId = size + 16;
  const u64 padding = 16 - afterId % 16;
  const u64 total = afterId + padding + 4 + 4 + kFooterZeros + sizeof(kEndMagic);
  if (total > UINT32_MAX || !out.SetSize(static_cast<u32>(total))) return false;

  Emitter emit(out.Data());
  emit.Bytes(kMagic, sizeof(kMagic));
  emit.Value<u32>(kFbxFileVersion);
  for (const FbxRecord& record : document.children) EmitRecord(emit, record, packed);
  emit.Zeros(kRecordHeaderSize);
  u8 footerId[16];
  FbxFooterId(creationTime, footerId);
  emit.Bytes(footerId, 16);
  emit.Zeros(static_cast<u32>(padding) + 4);
  emit.Value<u32>(kFbxFileVersion);
  emit.Zeros(kFooterZeros);
  emit.Bytes(kEndMagic, sizeof(kEndMagic));
  return emit.Position() == total;
}
