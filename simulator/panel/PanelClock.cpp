#include "simulator/panel/PanelClock.h"

#include <mutex>
#include <optional>

namespace simulator {
namespace {

using std::chrono::steady_clock;

struct State {
    std::mutex mutex;
    // All below guarded by mutex.
    steady_clock::time_point zero = steady_clock::now();
    std::optional<PanelClock::time_point> stopped;

    PanelClock::time_point now() const {
        return stopped ? *stopped
                       : PanelClock::time_point(
                                 std::chrono::floor<PanelClock::duration>(steady_clock::now() - zero));
    }
};

State& state() {
    static State& sState = *new State;
    return sState;
}

}  // namespace

PanelClock::time_point PanelClock::now() {
    State& clock = state();
    const std::lock_guard<std::mutex> lock(clock.mutex);
    return clock.now();
}

bool PanelClock::stopped() {
    State& clock = state();
    const std::lock_guard<std::mutex> lock(clock.mutex);
    return clock.stopped.has_value();
}

void PanelClock::stop() {
    State& clock = state();
    const std::lock_guard<std::mutex> lock(clock.mutex);
    clock.stopped = clock.now();
}

void PanelClock::go() {
    State& clock = state();
    const std::lock_guard<std::mutex> lock(clock.mutex);
    if (clock.stopped) {
        clock.zero = steady_clock::now() - clock.stopped->time_since_epoch();
        clock.stopped.reset();
    }
}

void PanelClock::forward(duration time) {
    State& clock = state();
    const std::lock_guard<std::mutex> lock(clock.mutex);
    if (clock.stopped) {
        *clock.stopped += time;
    } else {
        clock.zero -= time;
    }
}

}  // namespace simulator
