#pragma once

#include <cstring>
#include <new>
#include <utility>

#include "core/hash.h"
#include "core/memory_hooks.h"
#include "core/types.h"
#include "core/value_string.h"

// Hash and copy of the two key kinds: a u32 key stands for its own hash; a string key hashes its
// characters with HashKey, whatever its form.
inline u32 HashOfKey(u32 key) { return key; }
inline u32 HashOfKey(const CStringA& key) { return HashKey(key.Text()); }
inline bool KeysEqual(u32 a, u32 b) { return a == b; }
[[nodiscard]] inline bool CopyKey(u32& to, u32 from) {
  to = from;
  return true;
}
[[nodiscard]] inline bool CopyKey(CStringA& to, const CStringA& from) { return to.CopyFrom(from); }

// Dense chained hash map in one allocation: `capacity` entries (key then value) packed in
// insertion order, `capacity` next links, then `2 * capacity - 1` bucket heads. A chain ends at any
// index not below `count`, so the live entries are exactly entries[0 .. count-1] and iteration is a
// walk over them. All-zero is a valid empty table.
template <class K, class V>
class THashMap {
 public:
  struct Entry {
    K key;
    V value;
  };

  THashMap() = default;
  THashMap(const THashMap&) = delete;
  THashMap& operator=(const THashMap&) = delete;
  ~THashMap() { Release(); }

  u32 Count() const { return count; }
  u32 Capacity() const { return capacity; }
  u32 BucketCount() const { return capacity ? 2 * capacity - 1 : 0; }
  const K& KeyAt(u32 index) const { return Entries()[index].key; }
  V& ValueAt(u32 index) { return Entries()[index].value; }
  const V& ValueAt(u32 index) const { return Entries()[index].value; }

  // Only defined while capacity is not 0.
  u32 Bucket(const K& key) const { return HashOfKey(key) % BucketCount(); }

  // Asks for the bucket's head to be brought into cache ahead of a lookup. Only while capacity is
  // not 0.
  void PrefetchBucket(u32 bucket) const { __builtin_prefetch(&Heads()[bucket]); }

  // Index of the matching entry, or `count`.
  u32 Find(const K& key) const {
    if (count == 0) return 0;
    return FindInBucket(Bucket(key), key);
  }
  u32 FindInBucket(u32 bucket, const K& key) const {
    return FindInBucket(bucket, key, [](u32) { return true; });
  }
  // The same, comparing only the keys of entries for which `mayMatch(index)` holds: a caller that
  // keeps each entry's hash passes over the other keys of the chain without reading them.
  template <class MayMatch>
  u32 FindInBucket(u32 bucket, const K& key, MayMatch&& mayMatch) const {
    for (u32 i = Heads()[bucket]; i < count; i = Next()[i]) {
      if (mayMatch(i) && KeysEqual(Entries()[i].key, key)) return i;
    }
    return count;
  }

  // The value under `key`, inserting a default value under a copy of the key on a miss.
  // Null when memory is refused; the table is then unchanged.
  V* FindOrInsert(const K& key) {
    u32 bucket = 0;
    if (capacity != 0) {
      bucket = Bucket(key);
      const u32 found = FindInBucket(bucket, key);
      if (found < count) return &Entries()[found].value;
    }
    K copy;
    if (!CopyKey(copy, key)) return nullptr;
    return InsertAt(bucket, std::move(copy));
  }

  // Insertion after a miss in `bucket` (any value while capacity is 0); the key is moved in and
  // the value is default-constructed. Null when memory is refused.
  V* InsertAt(u32 bucket, K&& key) {
    return InsertAt(bucket, std::move(key), [](u32, const K& k) { return HashOfKey(k); });
  }

  // The same for a caller that keeps the hash of every entry: `hashAt(index, key)` gives it, for
  // the new key too (at index Count()), so that growing hashes no key again.
  template <class HashAt>
  V* InsertAt(u32 bucket, K&& key, HashAt&& hashAt) {
    if (count >= capacity) {
      // Grow only when an entry is added to a full table: 0, 1, 3, 7, 15... The bucket count
      // 2 * capacity - 1 then keeps the load below one half without any bookkeeping.
      if (capacity > kMaxCapacity / 2 || !Rehash(2 * capacity + 1, hashAt)) return nullptr;
      bucket = hashAt(count, key) % BucketCount();
    }
    const u32 index = count++;
    Entry* entry = ::new (&Entries()[index]) Entry{std::move(key), V()};
    // Newest first in its chain.
    Next()[index] = Heads()[bucket];
    Heads()[bucket] = index;
    return &entry->value;
  }

  // For a caller that knows roughly how many entries are coming: the capacity that the growth
  // steps above reach for `entries`, taken in one move instead of step by step. The table then
  // differs from one filled entry by entry only in its capacity, which ShrinkToGrowthFrom puts
  // right once the entries are in. False when memory is refused; the table is then unchanged.
  template <class HashAt>
  [[nodiscard]] bool GrowFor(u32 entries, HashAt&& hashAt) {
    const u32 target = GrownCapacity(capacity, entries);
    return target == 0 || target == capacity || Rehash(target, hashAt);
  }
  // Brings the capacity back to what the growth steps from `start` give for the entries held, after
  // a GrowFor that asked for more than came. False when memory is refused; the table is then
  // unchanged.
  template <class HashAt>
  [[nodiscard]] bool ShrinkToGrowthFrom(u32 start, HashAt&& hashAt) {
    if (start == 0 && count == 0) {
      Release();  // no entry ever came, so no block would have been made
      return true;
    }
    const u32 target = GrownCapacity(start, count);
    return target >= capacity || Rehash(target, hashAt);
  }

  // Moves the last entry into the hole, so erasing costs no shifting; iteration order changes
  // only in that the former last entry takes the erased one's place.
  bool Erase(const K& key) {
    if (count == 0) return false;
    u32* link = &Heads()[Bucket(key)];
    while (*link < count && !KeysEqual(Entries()[*link].key, key)) link = &Next()[*link];
    if (*link >= count) return false;
    const u32 hole = *link;
    *link = Next()[hole];
    const u32 last = --count;
    Entry* entries = Entries();
    if (hole != last) {
      u32* lastLink = &Heads()[Bucket(entries[last].key)];
      while (*lastLink != last) lastLink = &Next()[*lastLink];
      entries[hole].key = std::move(entries[last].key);
      entries[hole].value = std::move(entries[last].value);
      Next()[hole] = Next()[last];
      *lastLink = hole;
    }
    entries[last].~Entry();
    return true;
  }

  // Empties the table and keeps the allocation for the next fill.
  void Clear() {
    if (capacity == 0) return;
    DestroyEntries();
    std::memset(Heads(), 0xFF, size_t(BucketCount()) * sizeof(u32));
  }

  void Release() {
    if (capacity == 0) return;
    DestroyEntries();
    MemAlignedFree(data);
    data = nullptr;
    capacity = 0;
  }

 private:
  // Keeps 2 * capacity - 1 and every byte size in range.
  static constexpr u32 kMaxCapacity = 0x3FFFFFFF;

  // The capacity that growing from `from` reaches for `entries` entries; 0 past kMaxCapacity.
  static u32 GrownCapacity(u32 from, u32 entries) {
    u32 grown = from;
    while (grown < entries) {
      if (grown > kMaxCapacity / 2) return 0;
      grown = 2 * grown + 1;
    }
    return grown;
  }

  static size_t LinksOffset(u32 cap) { return size_t(cap) * sizeof(Entry); }
  static size_t HeadsOffset(u32 cap) { return LinksOffset(cap) + size_t(cap) * sizeof(u32); }
  static size_t BlockSize(u32 cap) { return HeadsOffset(cap) + (size_t(2) * cap - 1) * sizeof(u32); }

  Entry* Entries() const { return reinterpret_cast<Entry*>(data); }
  u32* Next() const { return reinterpret_cast<u32*>(data + LinksOffset(capacity)); }
  u32* Heads() const { return reinterpret_cast<u32*>(data + HeadsOffset(capacity)); }

  void DestroyEntries() {
    for (u32 i = 0; i < count; ++i) Entries()[i].~Entry();
    count = 0;
  }

  // Indices stay; entries are relinked in ascending order, so every chain is newest first again.
  template <class HashAt>
  bool Rehash(u32 newCapacity, HashAt& hashAt) {
    auto* block = static_cast<char*>(MemAlignedAllocate(BlockSize(newCapacity), alignof(Entry)));
    if (!block) return false;
    auto* heads = reinterpret_cast<u32*>(block + HeadsOffset(newCapacity));
    auto* next = reinterpret_cast<u32*>(block + LinksOffset(newCapacity));
    std::memset(heads, 0xFF, (size_t(2) * newCapacity - 1) * sizeof(u32));
    auto* moved = reinterpret_cast<Entry*>(block);
    const u32 buckets = 2 * newCapacity - 1;
    for (u32 i = 0; i < count; ++i) {
      Entry& old = Entries()[i];
      ::new (&moved[i]) Entry{std::move(old.key), std::move(old.value)};
      old.~Entry();
      const u32 bucket = hashAt(i, moved[i].key) % buckets;
      next[i] = heads[bucket];
      heads[bucket] = i;
    }
    if (data) MemAlignedFree(data);
    data = block;
    capacity = newCapacity;
    return true;
  }

  char* data = nullptr;
  u32 count = 0;
  u32 capacity = 0;
};
