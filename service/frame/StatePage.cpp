#define LOG_TAG "StatePage(server)"

#include "service/frame/StatePage.h"

#include <cutils/native_handle.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <ctime>

#include "service/frame/Log.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

namespace {

using Clock = std::chrono::steady_clock;

/// How long a reader may take for a whole page, which any that reads at all takes at once.
constexpr std::chrono::milliseconds kPatience{1000};

/// Keeps the signal of a pipe without a reader, which would end the process, from this thread while it lives,
/// and takes back one that was raised meanwhile. The process's own way with that signal stays as it is.
class BrokenPipeSignalHeld {
  public:
    BrokenPipeSignalHeld() {
        sigemptyset(&mSignal);
        sigaddset(&mSignal, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        mWasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &mSignal, &mBefore);
    }
    ~BrokenPipeSignalHeld() {
        const timespec atOnce{};
        while (!mWasPending && sigtimedwait(&mSignal, nullptr, &atOnce) < 0 && errno == EINTR) {
        }
        pthread_sigmask(SIG_SETMASK, &mBefore, nullptr);
    }
    BrokenPipeSignalHeld(const BrokenPipeSignalHeld&) = delete;
    BrokenPipeSignalHeld& operator=(const BrokenPipeSignalHeld&) = delete;

  private:
    sigset_t mSignal;
    sigset_t mBefore;
    bool mWasPending;
};

/// Waits until the descriptor takes bytes, or can say why it does not. False, with errno, when it is too
/// late.
bool waitForRoom(int fd, Clock::time_point end) {
    pollfd polled{fd, POLLOUT, 0};
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        const int ready = poll(&polled, 1, left > 0 ? static_cast<int>(left) : 0);
        if (ready == 0) {
            errno = ETIMEDOUT;
        }
        if (ready >= 0 || errno != EINTR) {
            return ready > 0;
        }
    }
}

/// A pipe of our own that holds a page. Out of it a page goes to another pipe without waiting, whatever
/// others do there meanwhile: that pipe's own mode is not to be changed, as its owner shares it.
class OwnPipe {
  public:
    OwnPipe() : mMade(pipe2(mEnds, O_CLOEXEC | O_NONBLOCK) == 0) {}
    ~OwnPipe() {
        if (mMade) {
            close(mEnds[0]);
            close(mEnds[1]);
        }
    }
    OwnPipe(const OwnPipe&) = delete;
    OwnPipe& operator=(const OwnPipe&) = delete;

    /// False, with errno, when it does not take all of them.
    bool fill(const char* bytes, size_t size) {
        return mMade && write(mEnds[1], bytes, size) == static_cast<ssize_t>(size);
    }
    ssize_t pass(int fd, size_t size) {
        return splice(mEnds[0], nullptr, fd, nullptr, size, SPLICE_F_NONBLOCK);
    }

  private:
    int mEnds[2];
    const bool mMade;
};

bool isOnlyDelayed(int error) {
    return error == EINTR || error == EAGAIN || error == EWOULDBLOCK;
}

/// 0, or the error's number when not all of it was taken.
int writeAll(int fd, const char* bytes, size_t size) {
    const BrokenPipeSignalHeld held;
    const Clock::time_point end = Clock::now() + kPatience;
    struct stat status {};
    if (fstat(fd, &status) != 0) {
        return errno;
    }
    if (!S_ISFIFO(status.st_mode)) {
        return EINVAL;  // a write to it might wait for whoever gave it
    }
    OwnPipe own;
    if (!own.fill(bytes, size)) {
        return errno;
    }
    while (size > 0) {
        if (!waitForRoom(fd, end)) {
            return errno;
        }
        const ssize_t written = own.pass(fd, size);
        if (written > 0) {
            size -= static_cast<size_t>(written);
        } else if (written < 0 && !isOnlyDelayed(errno)) {
            return errno;
        }
    }
    return 0;
}

}  // namespace

StatePage::StatePage(const char* descriptor) : mDescriptor(descriptor) {
    line("interface: %s", descriptor);
}

void StatePage::line(const char* format, ...) {
    const size_t room = mText.size() - mSize;
    va_list values;
    va_start(values, format);
    const int length = std::vsnprintf(&mText[mSize], room, format, values);
    va_end(values);
    // What ended the text here becomes the line's end.
    if (length >= 0 && static_cast<size_t>(length) < room) {
        mSize += static_cast<size_t>(length);
        mText[mSize++] = '\n';
    }
}

void StatePage::writeTo(const ::android::hardware::hidl_handle& handle) const {
    const native_handle_t* const native = handle.getNativeHandle();
    if (native == nullptr || native->numFds < 1) {
        return;
    }
    const int error = writeAll(native->data[0], mText.data(), mSize);
    if (error != 0) {
        FAPI_LOGE("The state of %s could not be written: error %d\n", mDescriptor, error);
    }
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
