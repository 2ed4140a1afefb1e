#pragma once

#include <signal.h>

#include <chrono>
#include <cstdint>
#include <iterator>
#include <optional>
#include <thread>

namespace fapictl {

/** A count of occurrences that poll() can wait for. */
class Bell {
  public:
    Bell();
    ~Bell();
    Bell(const Bell&) = delete;

    /** May be called in a signal handler. Fails only when the count is at its limit, which is as good. */
    void ring() const;
    /** Whether it has rung since it was last asked. */
    bool rang() const;
    int fd() const { return mFd; }

  private:
    const int mFd;
};

/**
 * While it lives, the signals that ask a process to end only ring a bell; the second one ends the process.
 * One that has not ended a second after the first, since nobody reads what it writes, ends there, with 0.
 */
class EndSignals {
  public:
    EndSignals();
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;

    /** Lives for ever: a handler may still be running when the signals are given back. */
    static const Bell& bell();

    /** Waits until the descriptor can be read, the bell has rung or the time has come; false for the last. */
    static bool waitFor(int fd, std::optional<std::chrono::steady_clock::time_point> time);

  private:
    static constexpr int kSignals[] = {SIGINT, SIGTERM};
    struct sigaction mBefore[std::size(kSignals)] = {};
    const Bell mOver;
    std::thread mEnder;
};

}  // namespace fapictl
