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

bool IsLarge(const FbxRecordValue& property) {
  return IsArray(property.code) && !property.deflated && property.bytes.Size() > kFbxDeflateAbove;
}

// Lists the arrays still to deflate. Names were checked as records were added.
bool CollectLarge(FbxRecord& record, TArray<FbxRecordValue*>& large) {
  for (FbxRecordValue& property : record.properties) {
    if (!IsLarge(property)) continue;
    FbxRecordValue** slot = large.Append();
    if (!slot) return false;
    *slot = &property;
  }
  for (FbxRecord& child : record.children) {
    if (!CollectLarge(child, large)) return false;
  }
  return true;
}

// Deflates the large arrays on every processor: they are independent, and compression is most of
// the time a file takes to write. Each worker has a compressor of its own. Each array's raw bytes
// give way to its stream as soon as it is deflated, so the document shrinks while it is packed.
bool Pack(FbxRecord& document) {
  TArray<FbxRecordValue*> large;
  if (!CollectLarge(document, large)) return false;
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
  std::stable_sort(large.begin(), large.end(),
                   [](const FbxRecordValue* a, const FbxRecordValue* b) { return a->bytes.Size() > b->bytes.Size(); });
  std::atomic<bool> failed{false};
  auto deflate = [&](u32 worker, u32 item) {
    libdeflate_compressor* compressor = compressors[worker].get();
    FbxRecordValue& property = *large[item];
    CByteBuffer& room = scratch[worker];
    const size_t bound = libdeflate_zlib_compress_bound(compressor, property.bytes.Size());
    if (bound > UINT32_MAX || !room.SetSizeForOverwrite(static_cast<u32>(bound))) {
      failed = true;
      return;
    }
    const size_t size =
        libdeflate_zlib_compress(compressor, property.bytes.Data(), property.bytes.Size(), room.Data(), bound);
    CByteBuffer stream(property.bytes.Granule());
    if (size == 0 || !stream.SetSizeForOverwrite(static_cast<u32>(size))) {
      failed = true;
      return;
    }
    std::memcpy(stream.Data(), room.Data(), size);
    property.bytes = std::move(stream);
    property.deflated = true;
  };
  ParallelFor(large.Count(), workers, deflate);
  return !failed;
}

u64 PropertySize(const FbxRecordValue& property) {
  switch (property.code) {
    case 'C': return 1 + 1;
    case 'Y': return 1 + 2;
    case 'I':
    case 'F': return 1 + 4;
    case 'D':
    case 'L': return 1 + 8;
    case 'S':
    case 'R': return 1 + 4 + u64(property.bytes.Size());
    default: return 1 + kArrayHeaderSize + u64(property.bytes.Size());
  }
}

u64 PropertiesSize(const FbxRecord& record) {
  u64 size = 0;
  for (const FbxRecordValue& property : record.properties) size += PropertySize(property);
  return size;
}

u64 RecordSize(const FbxRecord& record) {
  u64 size = kRecordHeaderSize + u64(std::strlen(record.name.Text())) + PropertiesSize(record);
  for (const FbxRecord& child : record.children) size += RecordSize(child);
  if (record.children.Count() || record.block) size += kRecordHeaderSize;
  return size;
}

// Hands the file's bytes to the sink in order, gathered into blocks of a fixed size; a large
// array goes to the sink straight from the document. The whole file is never held at once.
class Emitter {
 public:
  explicit Emitter(FbxByteSink& to) : sink(to) {}
  [[nodiscard]] bool Init() { return block.SetSizeForOverwrite(kBlockSize); }
  u64 Position() const { return position; }
  void Bytes(const void* data, u32 size) {
    position += size;
    if (size > kBlockSize - used) {
      Flush();
      if (size >= kBlockSize) {
        ok = ok && sink.Put(data, size);
        return;
      }
    }
    if (size) std::memcpy(block.Data() + used, data, size);
    used += size;
  }
  void Zeros(u32 size) {
    static constexpr u8 kZeros[kFooterZeros] = {};
    for (u32 step = 0; size; size -= step) {
      step = size < sizeof(kZeros) ? size : u32(sizeof(kZeros));
      Bytes(kZeros, step);
    }
  }
  template <class T>
  void Value(T value) {
    Bytes(&value, sizeof(T));
  }
  // False when the sink refused any of the bytes.
  [[nodiscard]] bool Finish() {
    Flush();
    return ok;
  }

 private:
  static constexpr u32 kBlockSize = 1 << 20;

  void Flush() {
    if (used) ok = ok && sink.Put(block.Data(), used);
    used = 0;
  }

  FbxByteSink& sink;
  CByteBuffer block;
  u32 used = 0;
  u64 position = 0;
  bool ok = true;
};

void EmitProperty(Emitter& out, const FbxRecordValue& property) {
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
    default:
      out.Value<u32>(property.count);
      out.Value<u32>(property.deflated ? 1 : 0);
      out.Value<u32>(property.bytes.Size());
      out.Bytes(property.bytes.Data(), property.bytes.Size());
  }
}

// The end offset comes first in a record, so it is counted before the record is written.
void EmitRecord(Emitter& out, const FbxRecord& record) {
  const u32 nameLength = static_cast<u32>(std::strlen(record.name.Text()));
  out.Value<u32>(static_cast<u32>(out.Position() + RecordSize(record)));
  out.Value<u32>(record.properties.Count());
  out.Value<u32>(static_cast<u32>(PropertiesSize(record)));
  out.Value<u8>(static_cast<u8>(nameLength));
  out.Bytes(record.name.Text(), nameLength);
  for (const FbxRecordValue& property : record.properties) EmitProperty(out, property);
  for (const FbxRecord& child : record.children) EmitRecord(out, child);
  if (record.children.Count() || record.block) out.Zeros(kRecordHeaderSize);
}

// Gathers the bytes into one buffer.
class BufferSink final : public FbxByteSink {
 public:
  explicit BufferSink(CByteBuffer& buffer) : out(buffer) {}
  bool Put(const void* data, u32 size) override {
    const u32 at = out.Size();
    const u64 needed = u64(at) + size;
    if (needed > UINT32_MAX) return false;
    // Room doubles, so a file gathered block by block is copied a bounded number of times.
    if (needed > out.Capacity() &&
        !out.Reserve(u32(std::min<u64>(UINT32_MAX, std::max(needed, 2 * u64(out.Capacity())))))) {
      return false;
    }
    if (!out.SetSizeForOverwrite(u32(needed))) return false;
    std::memcpy(out.Data() + at, data, size);
    return true;
  }

 private:
  CByteBuffer& out;
};

}  // namespace

FbxWriteResult WriteFbxBinary(FbxRecord& document, const char* creationTime, FbxByteSink& sink) {
  if (!Pack(document)) return FbxWriteResult::kOutOfMemory;
  u64 size = kHeaderSize + kRecordHeaderSize;
  for (const FbxRecord& record : document.children) size += RecordSize(record);
  // Footer: its id, zeros to the next multiple of 16 (16 when already there), 4 zeros, the
  // version, 120 zeros and the end magic.
  const u64 afterId = size + 16;
  const u64 padding = 16 - afterId % 16;
  const u64 total = afterId + padding + 4 + 4 + kFooterZeros + sizeof(kEndMagic);
  if (total > UINT32_MAX) return FbxWriteResult::kTooLarge;
  Emitter emit(sink);
  if (!emit.Init()) return FbxWriteResult::kOutOfMemory;
  emit.Bytes(kMagic, sizeof(kMagic));
  emit.Value<u32>(kFbxFileVersion);
  for (const FbxRecord& record : document.children) EmitRecord(emit, record);
  emit.Zeros(kRecordHeaderSize);
  u8 footerId[16];
  FbxFooterId(creationTime, footerId);
  emit.Bytes(footerId, 16);
  emit.Zeros(static_cast<u32>(padding) + 4);
  emit.Value<u32>(kFbxFileVersion);
  emit.Zeros(kFooterZeros);
  emit.Bytes(kEndMagic, sizeof(kEndMagic));
  if (!emit.Finish()) return FbxWriteResult::kSinkFailed;
  return emit.Position() == total ? FbxWriteResult::kWritten : FbxWriteResult::kSizeMismatch;
}

bool WriteFbxBinary(FbxRecord& document, const char* creationTime, CByteBuffer& out) {
  out.Release();
  BufferSink sink(out);
  return WriteFbxBinary(document, creationTime, sink) == FbxWriteResult::kWritten;
}
