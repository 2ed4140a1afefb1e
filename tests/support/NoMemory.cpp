// Takes the allocator's place in a process that has this library preloaded: counts its blocks and refuses the
// one that a test has asked for, on whatever thread and in whatever library.

#include "tests/support/NoMemory.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);
}

namespace {

NoMemory sNone{};
NoMemory* sShared = &sNone;

// What is allocated before is counted apart, and never refused.
[[gnu::constructor]] void begin() {
    const char* const path = getenv("NO_MEMORY");
    const int file = path == nullptr ? -1 : open(path, O_RDWR | O_CLOEXEC);
    void* const shared = mmap(nullptr, sizeof(NoMemory), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (shared == MAP_FAILED) {
        abort();
    }
    close(file);
    sShared = static_cast<NoMemory*>(shared);
}

template <typename Allocate>
void* unlessRefused(Allocate allocate) {
    NoMemory& shared = *sShared;
    if (shared.refuseIn > 0 && shared.refuseIn.fetch_sub(1) == 1) {
        errno = ENOMEM;
        return nullptr;
    }
    void* const block = allocate();
    shared.live += block != nullptr;
    return block;
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

void* malloc(size_t size) {
    return unlessRefused([&] { return __libc_malloc(size); });
}

void* calloc(size_t count, size_t size) {
    return unlessRefused([&] { return __libc_calloc(count, size); });
}

void* aligned_alloc(size_t alignment, size_t size) {
    return unlessRefused([&] { return __libc_memalign(alignment, size); });
}

void* memalign(size_t alignment, size_t size) {
    return aligned_alloc(alignment, size);
}

int posix_memalign(void** block, size_t alignment, size_t size) {
    *block = aligned_alloc(alignment, size);
    return *block == nullptr ? ENOMEM : 0;
}

void free(void* block) {
    sShared->live -= block != nullptr;
    __libc_free(block);
}

void* realloc(void* block, size_t size) {
    if (block == nullptr) {
        return malloc(size);
    }
    void* const moved = unlessRefused([&] { return __libc_realloc(block, size); });
    sShared->live -= moved != nullptr;  // it was there before
    return moved;
}
}
