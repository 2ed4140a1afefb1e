#pragma once

#include <chrono>

namespace simulator {

/**
 * The time that patterns and colours on the panel last by: since the board's first look at it, without the
 * while that it was stopped. Any thread.
 */
class PanelClock {
  public:
    using duration = std::chrono::milliseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<PanelClock>;
    static constexpr bool is_steady = false;  // it can be stopped

    static time_point now();

    static bool stopped();
    /** Stands still; nothing when it does already. */
    static void stop();
    /** Goes on from where it stands; nothing when it goes already. */
    static void go();
    /** Jumps forward, stopped or not. */
    static void forward(duration time);
};

}  // namespace simulator
