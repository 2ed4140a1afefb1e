#include "tools/fapictl/Signals.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace fapictl {
namespace {

constexpr int kMillisecondsToEnd = 1000;

}  // namespace

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
    mEnder = std::thread([this] {
        pollfd fds[] = {{mOver.fd(), POLLIN, 0}, {bell().fd(), POLLIN, 0}};
        while (poll(fds, std::size(fds), -1) < 0) {
        }
        if (fds[0].revents == 0 && poll(fds, 1, kMillisecondsToEnd) == 0) {
            _exit(0);
        }
    });
}

EndSignals::~EndSignals() {
    mOver.ring();
    mEnder.join();
    for (size_t i = 0; i < std::size(kSignals); ++i) {
        sigaction(kSignals[i], &mBefore[i], nullptr);
    }
}

bool EndSignals::waitFor(int fd, std::optional<std::chrono::steady_clock::time_point> time) {
    using std::chrono::steady_clock;
    pollfd fds[] = {{fd, POLLIN, 0}, {bell().fd(), POLLIN, 0}};
    timespec left = {};
    if (time) {
        const auto duration = std::max(*time - steady_clock::now(), steady_clock::duration::zero());
        const auto whole = std::chrono::floor<std::chrono::seconds>(duration);
        left.tv_sec = whole.count();
        left.tv_nsec = std::chrono::nanoseconds(duration - whole).count();
    }
    const int ready = ppoll(fds, std::size(fds), time ? &left : nullptr, nullptr);
    if (ready < 0 && errno != EINTR) {
        throw std::system_error(errno, std::generic_category(), "ppoll");
    }
    return ready != 0;
}

const Bell& EndSignals::bell() {
    static const Bell& bell = *new Bell;
    return bell;
}

}  // namespace fapictl
