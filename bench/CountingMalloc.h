#pragma once

#include <cstdint>

namespace TORVA35::bench {

/// What the process took from the heap, through whatever function, since `StartCounting`.
struct HeapUse {
  std::int64_t allocations = 0;
  std::int64_t allocated = 0;  ///< bytes of all allocations together
  std::int64_t peak = 0;       ///< most bytes alive at once, beyond those that were alive at the start
};

void StartCounting();
HeapUse StopCounting();

}  // namespace TORVA35::bench
