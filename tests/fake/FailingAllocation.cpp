#include "tests/fake/FailingAllocation.h"

#include <cstddef>
#include <cstring>
#include <new>

namespace {

thread_local int sRefused = 0;  // 0: none
thread_local int sAsked = 0;

template <typename Allocate>
void* unlessRefused(std::size_t size, Allocate allocate) {
    if (++sAsked == sRefused) {
        return nullptr;
    }
    try {
        // Never zero by chance: who relies on zeros has to write them.
        return std::memset(allocate(size), 0xA5, size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace

// The linker leads every call of the two operators here (--wrap); to define them anew would clash with a
// sanitizer's.
extern "C" {

void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t&) noexcept;
void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t&) noexcept;

void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t&) noexcept {
    return unlessRefused(size, [](std::size_t bytes) { return ::operator new(bytes); });
}

void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t&) noexcept {
    return unlessRefused(size, [](std::size_t bytes) { return ::operator new[](bytes); });
}
}

FailingAllocation::FailingAllocation(int nth) {
    sRefused = nth;
    sAsked = 0;
}

FailingAllocation::~FailingAllocation() {
    sRefused = 0;
}

int FailingAllocation::asked() const {
    return sAsked;
}
