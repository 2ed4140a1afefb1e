#include "bench/transport/Allocations.h"

#include <errno.h>

#include <atomic>
#include <cstddef>

namespace {

std::atomic<bool> sCounting{false};
std::atomic<uint64_t> sCount{0};

/** When nobody counts, it costs a test of a flag, so that the same server is timed and counted. */
inline void note() {
    if (__builtin_expect(sCounting.load(std::memory_order_relaxed), false)) {
        sCount.fetch_add(1, std::memory_order_relaxed);
    }
}

}  // namespace

// The executable's definitions come before the C library's, for every library; operator new ends up here too.
extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size) {
    note();
    return __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    note();
    return __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size) {
    note();
    return __libc_realloc(memory, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    note();
    return __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, size_t alignment, size_t size) {
    note();
    *memory = __libc_memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}
}

namespace bench {

void startCountingAllocations() {
    sCount = 0;
    sCounting = true;
}

uint64_t stopCountingAllocations() {
    sCounting = false;
    return sCount;
}

}  // namespace bench
