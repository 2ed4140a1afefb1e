#pragma once

#include <functional>
#include <mutex>
#include <string>

#include "simulator/board/Dispatcher.h"

namespace simulator {

/**
 * The GPIO lines and the one monitor. A line is an input, low, until the board drives it; then what is
 * outside has no say until the line is let go. Nothing of it survives a restart. Any thread.
 */
class Gpio {
  public:
    static constexpr unsigned kLines = 64;
    enum Control { kLow = 0, kHigh = 1, kLetGo = 2 };
    enum Trigger { kBoth = 0, kRising = 1, kFalling = 2 };
    static constexpr unsigned kMaxIntervalMilliseconds = 60'000;

    /** Told of a change of the monitored line, on the dispatcher. */
    using Report = std::function<void(unsigned line, bool level)>;

    Gpio(Dispatcher& dispatcher, Report report) : mDispatcher(dispatcher), mReport(std::move(report)) {}

    /** Puts everything back as at the start. */
    void reset();

    /** Drives a line, or lets it go. kOutOfRange. */
    int32_t control(unsigned line, unsigned control);
    int32_t level(unsigned line, unsigned char* level) const;

    /**
     * Monitors a line. Interval 0 sees every change; else the line is looked at whenever so many milliseconds
     * have passed, and pulses between two looks are missed. Replaces what was monitored. kOutOfRange.
     */
    int32_t watch(unsigned line, unsigned trigger, unsigned interval);
    void unwatch();

    /** Sets the level that the world outside puts on a line. kOutOfRange; kDenied: the board drives it. */
    int32_t setOutside(unsigned line, bool level);

    std::string describe() const;

  private:
    struct Line {
        bool driven = false;
        bool level = false;    // what the board drives it to
        bool outside = false;  // what it is otherwise
        bool now() const { return driven ? level : outside; }
    };

    bool triggers(bool level) const { return mTrigger == kBoth || level == (mTrigger == kRising); }
    void changed(unsigned line);
    void look(unsigned watch);
    void report(unsigned watch, unsigned line, bool level);

    Dispatcher& mDispatcher;
    const Report mReport;

    mutable std::mutex mMutex;
    // All below guarded by mMutex.
    Line mLines[kLines];
    unsigned mWatched = kLines;  // none
    unsigned mTrigger = kBoth;
    std::chrono::milliseconds mInterval{0};
    Dispatcher::Clock::time_point mSince;
    unsigned mWatch =
            0;           // counts starts and stops, so that what is under way for an old one comes to nothing
    bool mSeen = false;  // the level when it was looked at last
    bool mLookDue = false;
};

}  // namespace simulator
