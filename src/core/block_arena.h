#pragma once

#include <atomic>
#include <mutex>

#include "core/types.h"

// Large blocks cut from one stretch of reserved address space that the system is asked to back
// with 2 MiB pages. A freed block is kept (joined with free neighbours) and handed out again, so
// an export that frees one stage's arrays and makes the next stage's touches no fresh memory:
// in a short process, faulting fresh pages in cost more than all of the mesh decoding.
//
// Nothing is reserved until the first block is asked for. Blocks are whole 4 KiB pages, the
// first 64 bytes of each its header, so a block holds anything aligned to 64 bytes or less.
// When the reservation is spent, or the system refuses more memory, Allocate gives null and the
// caller takes the block elsewhere.
class CBlockArena {
 public:
  static constexpr size_t kAlignment = 64;

  explicit constexpr CBlockArena(size_t reserve) : reserveSize(reserve) {}
  ~CBlockArena();
  CBlockArena(const CBlockArena&) = delete;
  CBlockArena& operator=(const CBlockArena&) = delete;

  // A block of at least `size` bytes, or null.
  [[nodiscard]] void* Allocate(size_t size);
  // `block` came from this arena's Allocate.
  void Free(void* block);
  bool Owns(const void* block) const {
    const uintptr_t at = reinterpret_cast<uintptr_t>(block);
    const uintptr_t start = base.load(std::memory_order_acquire);
    return start != 0 && at - start < reserveSize;
  }
  // For tests, with no other thread at the arena. Bytes between the start and the highest block's end.
  size_t Used() const { return top; }
  // Bytes the blocks in use take, headers and rounding included.
  size_t Taken() const { return taken; }

 private:
  struct Header;

  [[nodiscard]] bool Reserve();
  Header* At(size_t offset) const;
  size_t OffsetOf(const Header* header) const;
  Header* TakeFree(size_t size);
  Header* TakeTop(size_t size);
  void Split(Header* header, size_t size);
  void Link(Header* header);
  void Unlink(Header* header);
  void SetPrevSizeAfter(const Header* header);
  void ReleaseAboveTop();

  const size_t reserveSize;
  std::atomic<uintptr_t> base{0};  // 0 until reserved; 2 MiB aligned
  bool refused = false;            // the reservation was asked for once and refused
  size_t top = 0;                  // end of the highest block; free space above it
  size_t topPrevSize = 0;          // size of the block that ends at `top`, 0 for none
  size_t committed = 0;            // bytes from the start that may be touched
  size_t touched = 0;              // end of what may hold pages: nothing above it does
  size_t taken = 0;
  Header* freeList = nullptr;
  std::mutex lock;  // sleeps rather than spins: a holder may be in a system call
};
