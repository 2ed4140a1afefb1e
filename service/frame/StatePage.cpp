#define LOG_TAG "StatePage(server)"

#include "service/frame/StatePage.h"

#include <cutils/native_handle.h>
#include <poll.h>
#include <sys/socket.h>
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

/// Writes as much as there is room for. A socket's mode is not changed for that, as its owner shares it.
ssize_t writeSome(int fd, const char* bytes, size_t size) {
    const ssize_t sent = send(fd, bytes, size, MSG_DONTWAIT | MSG_NOSIGNAL);
    return sent < 0 && errno == ENOTSOCK ? write(fd, bytes, size) : sent;
}

bool isOnlyDelayed(int error) {
    return error == EINTR || error == EAGAIN || error == EWOULDBLOCK;
}

/// 0, or the error's number when not all of it was taken.
int writeAll(int fd, const char* bytes, size_t size) {
    const BrokenPipeSignalHeld held;
    const Clock::time_point end = Clock::now() + kPatience;
    while (size > 0) {
        if (!waitForRoom(fd, end)) {
            return errno;
        }
        const ssize_t written = writeSome(fd, bytes, size);
        if (written > 0) {
            bytes += written;
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
