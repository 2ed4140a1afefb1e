#pragma once

#include <cstdint>

namespace bench {

/** Counts the heap allocations of every thread of this process from now on. */
void startCountingAllocations();

/** Stops; how many there were. */
uint64_t stopCountingAllocations();

}  // namespace bench
