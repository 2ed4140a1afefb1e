#include "tools/fapictl/Signals.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace fapictl {

Bell::Bell() : mFd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (mFd < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
}

Bell::~Bell() {
    close(mFd);
}

void Bell::ring() const {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(mFd, &one, sizeof one);
}

bool Bell::rang() const {
    uint64_t count = 0;
    return read(mFd, &count, sizeof count) == sizeof count;
}

EndSignals::EndSignals() {
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

EndSignals::~EndSignals() {
    for (size_t i = 0; i < std::size(kSignals); ++i) {
        sigaction(kSignals[i], &mBefore[i], nullptr);
    }
}

const Bell& EndSignals::bell() {
    static const Bell& bell = *new Bell;
    return bell;
}

}  // namespace fapictl
