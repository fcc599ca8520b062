#pragma once

#include "core/types.h"

// An element that counts its constructions and destructions, so container tests see leaks and
// double destruction.
struct Counted {
  static inline i64 alive = 0;
  u32 value = 0;
  Counted() { ++alive; }
  explicit Counted(u32 v) : value(v) { ++alive; }
  Counted(const Counted& other) : value(other.value) { ++alive; }
  Counted(Counted&& other) noexcept : value(other.value) { ++alive; }
  Counted& operator=(const Counted&) = default;
  Counted& operator=(Counted&&) = default;
  ~Counted() { --alive; }
};
