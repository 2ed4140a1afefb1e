#include "simulator/board/Board.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "simulator/board/Text.h"

namespace simulator {
namespace {

constexpr int64_t kReady = 0;
constexpr int64_t kNever = INT64_MAX;
constexpr uint32_t kMaxDelayMilliseconds = 24U * 60 * 60 * 1000;

int64_t now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

int64_t readyTime() {
    const char* text = getenv("ZVTTV_BOARD_READY");
    if (text == nullptr || text[0] == '\0' || strcmp(text, "yes") == 0) {
        return kReady;
    }
    if (strcmp(text, "no") == 0) {
        return kNever;
    }
    uint32_t delay = 0;
    if (!readNumber(text, &delay) || delay > kMaxDelayMilliseconds) {
        fprintf(stderr,
                "board: ZVTTV_BOARD_READY is \"%s\", not \"yes\", \"no\" or a number of milliseconds "
                "up to %u: the board stays not ready\n",
                text, kMaxDelayMilliseconds);
        return kNever;
    }
    return now() + int64_t{delay} * 1'000'000;
}

/** kReady, kNever, or the time from which on it is ready, in nanoseconds of the monotonic clock. */
std::atomic<int64_t> sReadyAt{readyTime()};

}  // namespace

bool boardReady() {
    int64_t readyAt = sReadyAt.load(std::memory_order_relaxed);
    if (readyAt == kReady) {
        return true;
    }
    if (readyAt == kNever || now() < readyAt) {
        return false;
    }
    // Unless it has been set anew meanwhile.
    sReadyAt.compare_exchange_strong(readyAt, kReady, std::memory_order_relaxed);
    return true;
}

void setBoardReadyIn(uint32_t milliseconds) {
    sReadyAt.store(milliseconds == 0             ? kReady
                   : milliseconds == kNeverReady ? kNever
                                                 : now() + int64_t{milliseconds} * 1'000'000,
                   std::memory_order_relaxed);
}

const StateDirectory& boardState() {
    static const StateDirectory& sState = *new StateDirectory(StateDirectory::fromEnvironment());
    return sState;
}

}  // namespace simulator
