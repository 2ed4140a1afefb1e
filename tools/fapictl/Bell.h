#pragma once

#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <system_error>

namespace fapictl {

/** A count of occurrences that poll() can wait for. */
class Bell {
  public:
    Bell() : mFd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (mFd < 0) {
            throw std::system_error(errno, std::generic_category(), "eventfd");
        }
    }
    ~Bell() { close(mFd); }
    Bell(const Bell&) = delete;

    /** May be called in a signal handler. Fails only when the count is at its limit, which is as good. */
    void ring() const {
        const uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = write(mFd, &one, sizeof one);
    }
    /** Whether it has rung since it was last asked. */
    bool rang() const {
        uint64_t count = 0;
        return read(mFd, &count, sizeof count) == sizeof count;
    }
    int fd() const { return mFd; }

  private:
    const int mFd;
};

/** While it lives, the signals that ask a process to end only ring a bell; the second one ends the process.
 */
class EndSignals {
  public:
    EndSignals() {
        bell().rang();
        struct sigaction action = {};
        action.sa_handler = [](int) {
            const int error = errno;
            bell().ring();
            errno = error;
        };
        action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
        for (size_t i = 0; i < std::size(kSignals); ++i) {
            sigaction(kSignals[i], nullptr, &mBefore[i]);
            // A shell's background jobs ignore Ctrl-C, and go on doing so.
            if (mBefore[i].sa_handler != SIG_IGN) {
                sigaction(kSignals[i], &action, nullptr);
            }
        }
    }
    ~EndSignals() {
        for (size_t i = 0; i < std::size(kSignals); ++i) {
            sigaction(kSignals[i], &mBefore[i], nullptr);
        }
    }
    EndSignals(const EndSignals&) = delete;

    /** Lives for ever: a handler may still be running when the signals are given back. */
    static const Bell& bell() {
        static const Bell& bell = *new Bell;
        return bell;
    }

  private:
    static constexpr int kSignals[] = {SIGINT, SIGTERM};
    struct sigaction mBefore[std::size(kSignals)] = {};
};

}  // namespace fapictl
