#pragma once

#include "core/types.h"

namespace testsupport {

// While alive, the allocation hooks count every allocation and refuse the `failAt`-th one and all
// after it (1-based; 0 refuses none). Also counts blocks still live, for leak checks in sweeps.
// With `operatorNew`, the standard containers' allocations are counted too, and a refused one
// throws std::bad_alloc as the standard says; their blocks are left to the leak sanitizer.
class ScopedAllocationFailure {
 public:
  explicit ScopedAllocationFailure(u64 failAt, bool operatorNew = false);
  ScopedAllocationFailure(const ScopedAllocationFailure&) = delete;
  ScopedAllocationFailure& operator=(const ScopedAllocationFailure&) = delete;
  ~ScopedAllocationFailure();

  // Allocations asked for so far, the refused one included.
  u64 Attempts() const;
  bool Failed() const { return Attempts() >= failAt && failAt != 0; }
  // Blocks allocated under this scope and not yet freed.
  i64 Live() const;

 private:
  u64 failAt;
};

}  // namespace testsupport
