#include "assets/pack_index.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "assets/block_reader.h"
#include "assets/normalize_path.h"
#include "platform/path_case.h"

namespace {

// Seeks take a signed 32-bit distance from the start of a pack, so chunks and data lie below 2 GiB.
constexpr u32 kMaxFileOffset = 0x7FFFFFFF;
constexpr u32 kLastPackNumber = 0xFFFFFFFF;
constexpr u32 kChunkHeaderSize = 8;
constexpr u32 kEntryFixedSize = 16;
// Headers counted to size the table, and the most entries it is sized for before reading: a corrupt
// header must not make a huge table. A game beyond either grows its table as it is read.
constexpr u32 kMaxCountedChunks = 0x10000;
constexpr u32 kMaxAnnouncedEntries = 1 << 20;
// Entries parsed and hashed together before they are looked up.
constexpr u32 kBatchEntries = 16;

// Brent's cycle finding over the chunk chain: no memory per chunk, and a chain that comes back to a
// chunk already read is caught within a few laps.
class ChainLoopCheck {
 public:
  // False when `offset` closes a loop.
  bool Visit(u32 offset) {
    if (offset == saved) return false;
    if (steps == power) {
      saved = offset;
      power *= 2;
      steps = 0;
    }
    ++steps;
    return true;
  }

 private:
  u32 saved = 0;  // the first chunk lies at offset 0
  u64 power = 1;
  u64 steps = 1;
};

// Entries that the chunk headers of `file` announce, to size the table before the directory is
// read. Only a hint: a chain that is cut short or loops just ends the count, and the reading of the
// directory finds the fault.
u32 AnnouncedEntries(const FileHandle& file) {
  ChainLoopCheck loopCheck;
  u64 total = 0;
  u32 offset = 0;
  for (u32 chunk = 0; chunk < kMaxCountedChunks; ++chunk) {
    u8 header[kChunkHeaderSize];
    if (!file.ReadExact(offset, header, sizeof(header))) break;
    ByteReader reader(header, sizeof(header));
    u32 nextChunk = 0;
    u32 entryCount = 0;
    (void)reader.ReadU32BE(nextChunk);
    (void)reader.ReadU32BE(entryCount);
    total += entryCount;
    if (nextChunk == 0 || nextChunk > kMaxFileOffset || !loopCheck.Visit(nextChunk)) break;
    offset = nextChunk;
  }
  // No more entries than the file has room for.
  const u64 room = file.Size() / kEntryFixedSize;
  return u32(std::min<u64>({total, room, UINT32_MAX}));
}

}  // namespace

bool PackIndex::Open(const char* folder, bool anyCase) {
  Clear();
  if (!folder) return false;
  const u32 startCapacity = entries.Capacity();
  if (!ReadPacks(folder, anyCase) ||
      !entries.ShrinkToGrowthFrom(startCapacity, [this](u32 index, const CStringA&) { return hashes[index]; })) {
    Clear();
    return false;
  }
  return true;
}

// Opens the packs up to the first missing number, then reads their directories in turn; false on
// the first fault.
bool PackIndex::ReadPacks(const char* folder, bool anyCase) {
  TStringBufferA<261> root;
  NormalizePath(folder, root);
  TStringBufferA<261> path;
  TStringBufferA<261> found;
  u64 announced = 0;
  for (u32 number = 0; number != kLastPackNumber; ++number) {
    path.Format("%s\\assets_%.3u.pack", root.Text(), number);
    FileHandle file;
    if (!file.Open(path.Text()) && !(anyCase && MatchPathCase(path.Text(), found) && file.Open(found.Text()))) break;
    TOwned<PackFile> node(MemNew<PackFile>(std::move(file)));
    if (!node) return false;
    PackFile* added = node.get();
    if (tail) {
      tail->next = std::move(node);
    } else {
      head = std::move(node);
    }
    tail = added;
    ++count;
    announced += AnnouncedEntries(added->file);
  }
  // Room for what the packs announce at once, rather than growing step by step through them. A
  // refusal here is no fault: the table grows as entries come.
  (void)entries.GrowFor(u32(std::min<u64>(announced, kMaxAnnouncedEntries)),
                        [this](u32 index, const CStringA&) { return hashes[index]; });
  CByteBuffer nameScratch;
  CByteBuffer block(BlockReader::kBlockSize);
  for (const PackFile* pack = head.get(); pack; pack = pack->next.get()) {
    if (!ReadDirectory(pack->file, block, nameScratch)) return false;
  }
  return true;
}

// The last occurrence of a name decides its location, the first its place in the walk.
bool PackIndex::Record(const FileHandle& file, const char* name, u32 hash, const ParsedEntry& parsed) {
  PackEntry* slot = nullptr;
  CStringA key;
  u32 bucket = 0;
  if (entries.Capacity() != 0) {
    key.Borrow(name);
    bucket = hash % entries.BucketCount();
    const u32 found = entries.FindInBucket(bucket, key, [&](u32 index) { return hashes[index] == hash; });
    if (found < entries.Count()) slot = &entries.ValueAt(found);
  }
  if (!slot) {
    const char* stored = names.Add(reinterpret_cast<const u8*>(name), parsed.nameLength);
    u32* storedHash = stored ? hashes.Append() : nullptr;
    if (!storedHash) return false;
    *storedHash = hash;
    key.Borrow(stored);
    slot = entries.InsertAt(bucket, std::move(key), [this](u32 index, const CStringA&) { return hashes[index]; });
    if (!slot) return false;
  }
  *slot = PackEntry{&file, parsed.dataOffset, parsed.dataSize};
  return true;
}

// Directory chunk: nextChunk, entryCount, then entries of nameLength, name bytes, dataOffset,
// dataSize and a reserved word. All big-endian u32; the reserved word is never interpreted.
bool PackIndex::ReadDirectory(const FileHandle& file, CByteBuffer& block, CByteBuffer& nameScratch) {
  BlockReader reader(file, block);
  ChainLoopCheck loopCheck;
  // Chunks that don't overlap can't hold more directory bytes than the file. Counting them bounds
  // a corrupt pack whose chunks reread each other's bytes, which would otherwise cost time that
  // grows with the square of its size.
  u64 directoryBytes = 0;
  const auto consume = [&](u64 bytes) { return (directoryBytes += bytes) <= file.Size(); };
  u32 chunkOffset = 0;
  for (;;) {
    reader.Seek(chunkOffset);
    ByteReader chunk(nullptr, 0);
    u32 nextChunk;
    u32 entryCount;
    if (!reader.TakeReader(kChunkHeaderSize, chunk) || !consume(kChunkHeaderSize)) return false;
    (void)chunk.ReadU32BE(nextChunk);
    (void)chunk.ReadU32BE(entryCount);
    for (u32 e = 0; e < entryCount;) {
      // A batch of entries is parsed and hashed before any is looked up, so that the table's
      // buckets for all of them are fetched from memory at once rather than one miss at a time.
      const u32 batch = std::min(kBatchEntries, entryCount - e);
      ParsedEntry parsed[kBatchEntries];
      u32 scratchUsed = 0;
      for (u32 b = 0; b < batch; ++b) {
        // The name's length, then the name and the three words behind it, taken as one record.
        ByteReader entry(nullptr, 0);
        u32 nameLength;
        if (!reader.TakeReader(sizeof(u32), entry) || !entry.ReadU32BE(nameLength)) return false;
        if (nameLength > UINT32_MAX - kEntryFixedSize || !consume(u64(kEntryFixedSize) + nameLength)) return false;
        const u8* nameBytes;
        if (!reader.TakeReader(nameLength + kEntryFixedSize - sizeof(u32), entry) ||
            !entry.Take(nameLength, nameBytes) || u64(scratchUsed) + nameLength + 1 > UINT32_MAX ||
            !nameScratch.SetSizeForOverwrite(scratchUsed + nameLength + 1)) {
          return false;
        }
        if (nameLength) std::memcpy(nameScratch.Data() + scratchUsed, nameBytes, nameLength);
        nameScratch.Data()[scratchUsed + nameLength] = 0;
        parsed[b].nameAt = scratchUsed;
        parsed[b].nameLength = nameLength;
        scratchUsed += nameLength + 1;
        // The reserved word behind these two is never interpreted.
        (void)entry.ReadU32BE(parsed[b].dataOffset);
        (void)entry.ReadU32BE(parsed[b].dataSize);
      }
      const char* texts[kBatchEntries];
      u32 hashOf[kBatchEntries];
      for (u32 b = 0; b < batch; ++b) texts[b] = reinterpret_cast<const char*>(nameScratch.Data()) + parsed[b].nameAt;
      HashKeys(texts, batch, hashOf);
      if (entries.Capacity() != 0) {
        for (u32 b = 0; b < batch; ++b) entries.PrefetchBucket(hashOf[b] % entries.BucketCount());
      }
      for (u32 b = 0; b < batch; ++b) {
        if (!Record(file, texts[b], hashOf[b], parsed[b])) return false;
      }
      e += batch;
    }
    if (nextChunk == 0) return true;
    if (nextChunk > kMaxFileOffset || !loopCheck.Visit(nextChunk)) return false;
    chunkOffset = nextChunk;
  }
}

void PackIndex::Clear() {
  // Entries borrow the handles and the names, so they go first.
  entries.Clear();
  names.Clear();
  (void)hashes.SetSize(0);
  while (head) head = std::move(head->next);
  tail = nullptr;
  count = 0;
}

const PackEntry* PackIndex::Find(const char* name) const {
  if (!name || entries.Capacity() == 0) return nullptr;
  CStringA probe;
  probe.Borrow(name);
  const u32 found = entries.Find(probe);
  return found < entries.Count() ? &entries.ValueAt(found) : nullptr;
}

bool PackIndex::FetchEntry(const PackEntry* entry, CByteBuffer& bytes) {
  if (!entry || !entry->file || entry->offset > kMaxFileOffset) return false;
  // Data that runs past the end of its pack can't be read whole; refuse before allocating for it.
  if (u64(entry->offset) + entry->size > entry->file->Size()) return false;
  // The read fills every byte, or the fetch fails.
  if (!bytes.SetSizeForOverwrite(entry->size)) return false;
  return entry->file->ReadExact(entry->offset, bytes.Data(), entry->size);
}
