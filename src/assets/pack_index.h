#pragma once

#include <utility>

#include "assets/name_store.h"
#include "core/array.h"
#include "core/byte_buffer.h"
#include "core/hash_map.h"
#include "core/memory_hooks.h"
#include "core/string_buffer.h"
#include "core/value_string.h"
#include "platform/file_handle.h"

// Where one file of a game lies: `file` is borrowed from the index's open packs.
struct PackEntry {
  const FileHandle* file = nullptr;
  u32 offset = 0;
  u32 size = 0;
};

// One index over all packs of a game (assets_000.pack, assets_001.pack, ... up to the first number
// that can't be opened). Slots keep the walk order of a name's first occurrence (pack, chunk, place
// in chunk) and the location of its last. From the return of Open until the next Clear no entry
// moves, so PackEntry pointers may be kept for that long.
class PackIndex {
 public:
  PackIndex() = default;
  PackIndex(const PackIndex&) = delete;
  PackIndex& operator=(const PackIndex&) = delete;
  ~PackIndex() { Clear(); }

  // Replaces the whole index with the packs in `folder`. A missing first pack is no failure (the
  // index is just empty); a bad directory in any pack empties the index and closes every pack.
  // With `anyCase` a pack whose name differs from assets_NNN.pack only in case is found too, as
  // Windows finds it.
  [[nodiscard]] bool Open(const char* folder, bool anyCase = false);
  // Empties the table, keeping its storage, and closes all packs.
  void Clear();

  // Exact, case-sensitive lookup; null when absent.
  const PackEntry* Find(const char* name) const;
  [[nodiscard]] bool FetchByName(const char* name, CByteBuffer& bytes) const { return FetchEntry(Find(name), bytes); }
  // Reads the entry's bytes into `bytes`. False for a null entry, an offset at or past 2 GiB, data
  // running past the end of its pack, or memory refused.
  [[nodiscard]] static bool FetchEntry(const PackEntry* entry, CByteBuffer& bytes);

  // The walk: slots by index, in order of first occurrence.
  u32 EntryCount() const { return entries.Count(); }
  const char* NameAt(u32 index) const { return entries.KeyAt(index).Text(); }
  const PackEntry* EntryAt(u32 index) const { return &entries.ValueAt(index); }
  // Calls visit(name, entry) for each slot until it gives false; gives false if it was stopped.
  template <class Visitor>
  bool Walk(Visitor&& visit) const {
    for (u32 i = 0; i < entries.Count(); ++i) {
      if (!visit(NameAt(i), EntryAt(i))) return false;
    }
    return true;
  }

  u32 PackCount() const { return count; }
  u32 TableCapacity() const { return entries.Capacity(); }

 private:
  struct PackFile {
    explicit PackFile(FileHandle&& opened) : file(std::move(opened)) {}
    TOwned<PackFile> next;
    FileHandle file;
  };

  // One directory entry as read, its name in the reader's scratch.
  struct ParsedEntry {
    u32 nameAt = 0;
    u32 nameLength = 0;
    u32 dataOffset = 0;
    u32 dataSize = 0;
  };

  bool ReadPacks(const char* folder, bool anyCase);
  bool ReadDirectory(const FileHandle& file, CByteBuffer& block, CByteBuffer& nameScratch);
  bool Record(const FileHandle& file, const char* name, u32 hash, const ParsedEntry& parsed);

  TOwned<PackFile> head;
  PackFile* tail = nullptr;
  u32 count = 0;
  // The keys borrow their text from `names`, and `hashes` holds each slot's key hash, so that
  // neither a name nor a growth of the table costs an allocation or a hash per entry.
  NameStore names;
  TArray<u32> hashes;
  THashMap<CStringA, PackEntry> entries;
};
