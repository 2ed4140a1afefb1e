#pragma once

#include <signal.h>

#include <cstdint>
#include <iterator>

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
 */
class EndSignals {
  public:
    EndSignals();
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;

    /** Lives for ever: a handler may still be running when the signals are given back. */
    static const Bell& bell();

  private:
    static constexpr int kSignals[] = {SIGINT, SIGTERM};
    struct sigaction mBefore[std::size(kSignals)] = {};
};

}  // namespace fapictl
