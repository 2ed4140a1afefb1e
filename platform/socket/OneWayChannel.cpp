#include "platform/socket/OneWayChannel.h"

#include <errno.h>
#include <sched.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <new>

#include "platform/socket/Limits.h"

namespace android::hardware {

void OneWayChannel::open(UniqueFd fd, int epoll) {
    const std::lock_guard<std::mutex> lock(mLock);
    mFd = std::move(fd);
    mEpoll = epoll;
    mOpen = !mBroken;
}

bool OneWayChannel::isBroken() {
    const std::lock_guard<std::mutex> lock(mLock);
    return mBroken;
}

status_t OneWayChannel::send(Gather message) {
    bool lags = false;
    const status_t status = sendOrQueue(message, &lags);
    if (lags) {
        sched_yield();  // the peer, or our platform thread, may be waiting for this very processor
    }
    return status;
}

status_t OneWayChannel::sendOrQueue(Gather message, bool* lags) {
    const std::lock_guard<std::mutex> lock(mLock);
    if (!mFd.ok() || mBroken) {
        return DEAD_OBJECT;
    }
    if (mQueue.empty()) {
        const size_t whole = message.bytes;
        if (sendSome(mFd.get(), &message, MSG_DONTWAIT) < 0 && errno != EAGAIN && errno != EWOULDBLOCK) {
            breakOff();
            return DEAD_OBJECT;
        }
        if (message.bytes == 0) {
            return OK;
        }
        if (!append(message)) {
            if (message.bytes < whole) {
                breakOff();  // half a message is out and its rest is lost
                return DEAD_OBJECT;
            }
            return FAILED_TRANSACTION;
        }
        watchForRoom(true);
        *lags = true;
        return OK;
    }
    const size_t queued = mQueue.size() - mQueueStart;
    if (message.bytes > kMaxOneWayQueueBytes - std::min(kMaxOneWayQueueBytes, queued) || !append(message)) {
        return FAILED_TRANSACTION;
    }
    *lags = queued / kYieldQueueBytes != (queued + message.bytes) / kYieldQueueBytes;
    return OK;
}

bool OneWayChannel::append(const Gather& rest) {
    const size_t before = mQueue.size();
    try {
        for (size_t i = 0; i < rest.count; ++i) {
            const auto* bytes = static_cast<const uint8_t*>(rest.vectors[i].iov_base);
            mQueue.insert(mQueue.end(), bytes, bytes + rest.vectors[i].iov_len);
        }
    } catch (const std::bad_alloc&) {
        mQueue.resize(before);
        return false;
    }
    return true;
}

void OneWayChannel::flush() {
    const std::lock_guard<std::mutex> lock(mLock);
    if (!mFd.ok() || mBroken || mQueue.empty()) {
        return;
    }
    iovec vector{mQueue.data() + mQueueStart, mQueue.size() - mQueueStart};
    Gather gather{&vector, 1, vector.iov_len};
    const size_t before = gather.bytes;
    if (sendSome(mFd.get(), &gather, MSG_DONTWAIT) < 0 && errno != EAGAIN && errno != EWOULDBLOCK) {
        breakOff();
        return;
    }
    mQueueStart += before - gather.bytes;
    if (mQueueStart == mQueue.size()) {
        std::vector<uint8_t>().swap(mQueue);
        mQueueStart = 0;
        watchForRoom(false);
    } else if (mQueueStart >= kMaxOneWayQueueBytes / 4) {
        mQueue.erase(mQueue.begin(), mQueue.begin() + static_cast<ptrdiff_t>(mQueueStart));
        mQueueStart = 0;
    }
}

void OneWayChannel::watchForRoom(bool wanted) {
    epoll_event event{};
    event.events = EPOLLIN | EPOLLRDHUP | (wanted ? static_cast<uint32_t>(EPOLLOUT) : 0u);
    event.data.fd = mFd.get();
    epoll_ctl(mEpoll, EPOLL_CTL_MOD, mFd.get(), &event);
}

void OneWayChannel::breakOff() {
    mBroken = true;
    mOpen = false;
    std::vector<uint8_t>().swap(mQueue);
    mQueueStart = 0;
    ::shutdown(mFd.get(), SHUT_RDWR);
}

void OneWayChannel::shutdown() {
    const std::lock_guard<std::mutex> lock(mLock);
    if (mFd.ok() && !mBroken) {
        breakOff();
    }
}

void OneWayChannel::close() {
    const std::lock_guard<std::mutex> lock(mLock);
    mBroken = true;
    mOpen = false;
    if (mFd.ok()) {
        // Closing does not end the watch while a child that was forked meanwhile has the descriptor too.
        epoll_ctl(mEpoll, EPOLL_CTL_DEL, mFd.get(), nullptr);
    }
    mFd.reset();
    std::vector<uint8_t>().swap(mQueue);
    mQueueStart = 0;
}

size_t OneWayChannel::queuedBytes() {
    const std::lock_guard<std::mutex> lock(mLock);
    return mQueue.size() - mQueueStart;
}

}  // namespace android::hardware
