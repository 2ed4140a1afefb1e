#include "tools/fapictl/LineWriter.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <iterator>
#include <string_view>

namespace fapictl {

void LineWriter::write(std::string line) {
    line += '\n';
    std::unique_lock<std::mutex> lock(mMutex);
    mRoom.wait(lock,
               [&] { return mClosed || mWaiting.empty() || mWaiting.size() + line.size() <= kWaiting; });
    if (mClosed) {
        return;
    }
    if (mWaiting.empty()) {
        mWaiting = std::move(line);
    } else {
        mWaiting += line;
    }
    if (mBusy) {
        return;
    }
    mBusy = true;
    while (!mWaiting.empty() && !mClosed) {
        const std::string text = std::move(mWaiting);
        mWaiting.clear();
        lock.unlock();
        mRoom.notify_all();
        const bool written = writeAll(text);
        lock.lock();
        if (!written && !mClosed) {
            mClosed = true;
            mFailed.ring();
        }
    }
    mBusy = false;
    lock.unlock();
    mRoom.notify_all();
}

void LineWriter::drain() {
    std::unique_lock<std::mutex> lock(mMutex);
    mRoom.wait(lock, [&] { return mClosed || (!mBusy && mWaiting.empty()); });
}

void LineWriter::close() {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mClosed = true;
    }
    mClosing.ring();
    mRoom.notify_all();
}

bool LineWriter::writeAll(const std::string& text) const {
    std::string_view rest = text;
    while (!rest.empty()) {
        pollfd fds[] = {{mFd, POLLOUT, 0}, {mClosing.fd(), POLLIN, 0}};
        if (poll(fds, std::size(fds), -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        if (fds[1].revents != 0) {
            return false;
        }
        // A pipe that is said to be writable takes so much at once; more could block where close() cannot end
        // it.
        const ssize_t count = ::write(mFd, rest.data(), std::min<size_t>(rest.size(), PIPE_BUF));
        if (count < 0 && errno != EINTR && errno != EAGAIN) {
            return false;
        }
        rest.remove_prefix(count > 0 ? static_cast<size_t>(count) : 0);
    }
    return true;
}

}  // namespace fapictl
