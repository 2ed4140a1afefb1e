#pragma once

#include <atomic>
#include <cstdint>

/**
 * What a test and the process that it lets run out of memory share: a file that both have mapped, zero at
 * first. The process has the library no-memory preloaded, and the file's path in NO_MEMORY.
 */
struct NoMemory {
    std::atomic<int64_t> refuseIn;  // so many allocations from now, one fails; 0 or less: none
    std::atomic<int64_t> live;      // blocks that are in use
};
