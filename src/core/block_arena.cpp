#include "core/block_arena.h"

#include <sys/mman.h>

namespace {

constexpr size_t kPage = 4096;
constexpr size_t kHugePage = size_t(2) << 20;
// Address space is made usable in steps this large, each one system call.
constexpr size_t kCommitStep = 32 * kHugePage;
// Pages above the highest block are given back beyond this much: enough for the next export to
// reuse, without keeping a past peak for the rest of the session.
constexpr size_t kKeepAboveTop = size_t(64) << 20;
// A free remainder smaller than this stays with the block it was cut from.
constexpr size_t kMinSplit = 16 * kPage;

constexpr size_t RoundUp(size_t value, size_t step) { return (value + step - 1) / step * step; }

}  // namespace

struct CBlockArena::Header {
  size_t size;       // the whole block, this header included; a multiple of kPage
  size_t prevSize;   // of the block that ends where this one starts; 0 for the first block
  Header* nextFree;  // both links only while the block is free
  Header* prevFree;
  bool free;
};

CBlockArena::~CBlockArena() {
  static_assert(sizeof(Header) <= kAlignment);
  const uintptr_t start = base.load(std::memory_order_relaxed);
  if (start) (void)munmap(reinterpret_cast<void*>(start), reserveSize);
}

bool CBlockArena::Reserve() {
  if (refused || reserveSize == 0 || reserveSize % kHugePage != 0) return false;
  // An extra huge page of slack lets the start sit on a huge page boundary.
  const size_t mapped = reserveSize + kHugePage;
  void* block = mmap(nullptr, mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (block == MAP_FAILED) {
    refused = true;
    return false;
  }
  const uintptr_t at = reinterpret_cast<uintptr_t>(block);
  const uintptr_t start = RoundUp(at, kHugePage);
  if (start > at) (void)munmap(block, start - at);
  const size_t tail = at + mapped - (start + reserveSize);
  if (tail) (void)munmap(reinterpret_cast<void*>(start + reserveSize), tail);
  // Only advice: where the system keeps no huge pages the blocks are on small ones.
  (void)madvise(reinterpret_cast<void*>(start), reserveSize, MADV_HUGEPAGE);
  base.store(start, std::memory_order_release);
  return true;
}

CBlockArena::Header* CBlockArena::At(size_t offset) const {
  return reinterpret_cast<Header*>(base.load(std::memory_order_relaxed) + offset);
}

size_t CBlockArena::OffsetOf(const Header* header) const {
  return reinterpret_cast<uintptr_t>(header) - base.load(std::memory_order_relaxed);
}

void* CBlockArena::Allocate(size_t size) {
  if (size > reserveSize) return nullptr;  // also keeps the rounding below from wrapping
  const size_t need = RoundUp(size + kAlignment, kPage);
  const std::lock_guard guard(lock);
  if (!base.load(std::memory_order_relaxed) && !Reserve()) return nullptr;
  Header* header = TakeFree(need);
  if (!header) header = TakeTop(need);
  if (!header) return nullptr;
  taken += header->size;
  return reinterpret_cast<u8*>(header) + kAlignment;
}

void CBlockArena::Free(void* block) {
  Header* header = reinterpret_cast<Header*>(static_cast<u8*>(block) - kAlignment);
  const std::lock_guard guard(lock);
  taken -= header->size;
  const size_t end = OffsetOf(header) + header->size;
  if (end < top && At(end)->free) {
    Header* next = At(end);
    Unlink(next);
    header->size += next->size;
  }
  if (header->prevSize != 0) {
    Header* previous = At(OffsetOf(header) - header->prevSize);
    if (previous->free) {
      Unlink(previous);
      previous->size += header->size;
      header = previous;
    }
  }
  if (OffsetOf(header) + header->size == top) {
    // The space above the highest block is never a free block: it is where new blocks go.
    top = OffsetOf(header);
    topPrevSize = header->prevSize;
    ReleaseAboveTop();
    return;
  }
  Link(header);
  SetPrevSizeAfter(header);
}

// The smallest free block that fits, so that large free blocks stay whole for large arrays.
CBlockArena::Header* CBlockArena::TakeFree(size_t size) {
  Header* best = nullptr;
  for (Header* header = freeList; header; header = header->nextFree) {
    if (header->size >= size && (!best || header->size < best->size)) {
      best = header;
      if (header->size == size) break;
    }
  }
  if (!best) return nullptr;
  Unlink(best);
  Split(best, size);
  return best;
}

CBlockArena::Header* CBlockArena::TakeTop(size_t size) {
  if (size > reserveSize - top) return nullptr;
  const size_t end = top + size;
  if (end > committed) {
    const size_t target = RoundUp(end, kCommitStep) < reserveSize ? RoundUp(end, kCommitStep) : reserveSize;
    if (mprotect(At(committed), target - committed, PROT_READ | PROT_WRITE) != 0) return nullptr;
    committed = target;
  }
  Header* header = At(top);
  header->size = size;
  header->prevSize = topPrevSize;
  header->free = false;
  top = end;
  topPrevSize = size;
  if (top > touched) touched = top;
  return header;
}

void CBlockArena::Split(Header* header, size_t size) {
  if (header->size - size < kMinSplit) return;
  Header* rest = At(OffsetOf(header) + size);
  rest->size = header->size - size;
  rest->prevSize = size;
  header->size = size;
  Link(rest);
  SetPrevSizeAfter(rest);
}

void CBlockArena::Link(Header* header) {
  header->free = true;
  header->prevFree = nullptr;
  header->nextFree = freeList;
  if (freeList) freeList->prevFree = header;
  freeList = header;
}

void CBlockArena::Unlink(Header* header) {
  header->free = false;
  if (header->prevFree) header->prevFree->nextFree = header->nextFree;
  if (header->nextFree) header->nextFree->prevFree = header->prevFree;
  if (freeList == header) freeList = header->nextFree;
}

void CBlockArena::SetPrevSizeAfter(const Header* header) {
  const size_t end = OffsetOf(header) + header->size;
  if (end < top) At(end)->prevSize = header->size;
}

void CBlockArena::ReleaseAboveTop() {
  const size_t keep = RoundUp(top, kHugePage) + kKeepAboveTop;
  if (touched <= keep) return;
  (void)madvise(At(keep), touched - keep, MADV_DONTNEED);
  touched = keep;
}
