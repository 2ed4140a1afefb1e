#include "platform/binding/UniqueFd.h"

#include <fcntl.h>
#include <log/log.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>

namespace android::hardware {

namespace {

// A bit per descriptor that the runtime owns. One beyond is not replaced in a child, only refused there.
constexpr int kTracked = 64 * 1024;
std::array<std::atomic<uint64_t>, kTracked / 64> gOwned;
std::atomic<uint32_t> gGeneration{0};
std::array<std::atomic<void (*)()>, 8> gInChild;
std::atomic<size_t> gInChildCount{0};

void replaceDescriptors() {
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int word = 0; word < kTracked / 64; ++word) {
        uint64_t owned = gOwned[static_cast<size_t>(word)].load(std::memory_order_relaxed);
        while (owned != 0) {
            const int fd = word * 64 + __builtin_ctzll(owned);
            owned &= owned - 1;
            if (nothing >= 0) {
                dup3(nothing, fd, O_CLOEXEC);
            } else {
                close(fd);  // no descriptor at all is left to the child
            }
        }
    }
    if (nothing >= 0) {
        close(nothing);
    }
}

void inChild() {
    gGeneration.fetch_add(1, std::memory_order_relaxed);
    replaceDescriptors();
    for (size_t i = 0; i < gInChildCount.load(std::memory_order_relaxed); ++i) {
        gInChild[i].load(std::memory_order_relaxed)();
    }
}

void watchForks() {
    static const int failed = pthread_atfork(nullptr, nullptr, inChild);
    LOG_ALWAYS_FATAL_IF(failed != 0, "forks can not be watched: no memory");
}

void setOwned(int fd, bool owned) {
    if (fd < 0 || fd >= kTracked) {
        return;
    }
    auto& word = gOwned[static_cast<size_t>(fd / 64)];
    const uint64_t bit = uint64_t{1} << (fd % 64);
    if (owned) {
        watchForks();
        word.fetch_or(bit, std::memory_order_relaxed);
    } else {
        word.fetch_and(~bit, std::memory_order_relaxed);
    }
}

}  // namespace

int UniqueFd::release() {
    setOwned(mFd, false);
    return std::exchange(mFd, -1);
}

void UniqueFd::reset(int fd) {
    if (mFd >= 0) {
        setOwned(mFd, false);
        close(mFd);
    }
    mFd = fd;
    setOwned(fd, true);
}

uint32_t processGeneration() {
    return gGeneration.load(std::memory_order_relaxed);
}

void atForkInChild(void (*function)()) {
    watchForks();
    const size_t index = gInChildCount.load();
    LOG_ALWAYS_FATAL_IF(index >= gInChild.size(), "too many wait for forks");
    gInChild[index] = function;
    gInChildCount = index + 1;
}

}  // namespace android::hardware
