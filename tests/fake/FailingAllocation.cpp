#include "tests/fake/FailingAllocation.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

thread_local FailingAllocation::Of sKind;
thread_local int sRefused = 0;  // 0: none
thread_local int sAsked = 0;
thread_local size_t sRefusedBytes = 0;

thread_local const void* sWatched = nullptr;
thread_local size_t sWatchedSize = 0;
thread_local std::vector<uint8_t> sWatchedBytes;

bool refuses(size_t size, FailingAllocation::Of kind = FailingAllocation::Of::Blocks) {
    if (kind != sKind) {
        return false;
    }
    const bool refused = ++sAsked == sRefused;
    if (refused) {
        sRefusedBytes = size;
    }
    return refused;
}

}  // namespace

// The linker leads every call of these functions here (--wrap); to define them anew would clash with a
// sanitizer's.
extern "C" {

void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void __real_free(void* block);
void* __real__Znam(size_t size);
void* __real__Znwm(size_t size);

void* __wrap_malloc(size_t size);
void* __wrap_calloc(size_t count, size_t size);
void __wrap_free(void* block);
void* __wrap__Znam(size_t size);
void* __wrap__Znwm(size_t size);

void* __wrap_malloc(size_t size) {
    void* const block = refuses(size) ? nullptr : __real_malloc(size);
    // Never zero by chance: who relies on zeros has to write them.
    return block == nullptr ? nullptr : std::memset(block, 0xA5, size);
}

void* __wrap_calloc(size_t count, size_t size) {
    return refuses(count * size) ? nullptr : __real_calloc(count, size);
}

void __wrap_free(void* block) {
    if (block != nullptr && block == sWatched) {
        const auto* const bytes = static_cast<const uint8_t*>(block);
        sWatchedBytes.assign(bytes, bytes + sWatchedSize);
        sWatched = nullptr;
    }
    __real_free(block);
}

void* __wrap__Znam(size_t size) {
    if (refuses(size)) {
        throw std::bad_alloc();
    }
    return __real__Znam(size);
}

void* __wrap__Znwm(size_t size) {
    if (refuses(size, FailingAllocation::Of::Objects)) {
        throw std::bad_alloc();
    }
    return __real__Znwm(size);
}
}

FailingAllocation::FailingAllocation(int nth, Of kind) {
    sKind = kind;
    sRefused = nth;
    sAsked = 0;
    sRefusedBytes = 0;
}

FailingAllocation::~FailingAllocation() {
    sRefused = 0;
}

int FailingAllocation::asked() const {
    return sAsked;
}

size_t FailingAllocation::refusedBytes() const {
    return sRefusedBytes;
}

FreedBlock::FreedBlock(const void* block, size_t size) {
    sWatched = block;
    sWatchedSize = size;
    sWatchedBytes.clear();
}

FreedBlock::~FreedBlock() {
    sWatched = nullptr;
}

const std::vector<uint8_t>& FreedBlock::bytes() const {
    return sWatchedBytes;
}
