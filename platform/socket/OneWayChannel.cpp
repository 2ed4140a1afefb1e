#include "platform/socket/OneWayChannel.h"

#include <linux/sockios.h>
#include <sched.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <new>

#include "platform/socket/Limits.h"

namespace android::hardware {

namespace {

/** The most that the queue holds: one message of kMaxOneWayBytes has a head and references beside them. */
constexpr size_t kQueueBytes = kMaxOneWayBytes + sizeof(MessageHeader) + sizeof(ObjectReference);

/** A sender stops when the buffer is full, which it notices only after its last piece. */
constexpr size_t kKernelExcess = 128 * 1024;

size_t sendBufferOf(int fd) {
    int size = 0;
    socklen_t length = sizeof(size);
    getsockopt(fd, SOL_SOCKET, SO_SNDBUF, &size, &length);
    return static_cast<size_t>(size) + kKernelExcess;
}

}  // namespace

status_t OneWayChannel::open(UniqueFd fd, int epoll) {
    const CheckedLock lock(mLock);
    if (mState == State::Ended) {
        return DEAD_OBJECT;
    }
    epoll_event event{};
    event.events = EPOLLIN | EPOLLRDHUP;
    event.data.fd = fd.get();
    if (epoll_ctl(epoll, EPOLL_CTL_ADD, fd.get(), &event) != 0) {
        return -errno;
    }
    mKernelMost = sendBufferOf(fd.get());
    mFd = std::move(fd);
    mEpoll = epoll;
    mWelcomeHave = 0;
    mAwaited = false;
    mState = State::Greeting;
    return OK;
}

status_t OneWayChannel::send(Gather message) {
    bool lags = false;
    const status_t status = sendOrQueue(message, &lags);
    if (lags) {
        sched_yield();  // the peer, or our platform thread, may be waiting for this very processor
    }
    return status;
}

/** @param lags set when the queue has grown enough to let others run before more is sent */
status_t OneWayChannel::sendOrQueue(Gather message, bool* lags) {
    const CheckedLock lock(mLock);
    if (mState == State::Greeting && readWelcome()) {
        flush();
    }
    if (mState == State::Ended) {
        return DEAD_OBJECT;
    }
    if (!fits(message.bytes)) {
        return FAILED_TRANSACTION;
    }
    // Before anything is out: the rest of a message whose beginning is out must have a place.
    if (!makeRoom(message.bytes)) {
        return NO_MEMORY;
    }
    const size_t queued = mQueue.size() - mQueueStart;
    if (mState == State::Open && queued == 0) {
        if (sendSome(mFd.get(), &message, MSG_DONTWAIT) < 0 && !wouldBlock(errno)) {
            return isLack(errno) ? NO_MEMORY : DEAD_OBJECT;  // its end is about to be noticed
        }
        if (message.bytes == 0) {
            return OK;
        }
        append(message);
        watchForRoom(true);
        *lags = true;
        return OK;
    }
    append(message);
    *lags = queued / kYieldQueueBytes != (queued + message.bytes) / kYieldQueueBytes;
    return OK;
}

/** Whether so many bytes more may wait for the peer. */
bool OneWayChannel::fits(size_t bytes) {
    const size_t queued = mQueue.size() - mQueueStart;
    if (queued + bytes + mKernelMost <= kMaxOneWayBytes) {
        return true;
    }
    // Before the peer's welcome, only our hello is in the kernel.
    // The kernel counts its own overhead too, so that many small messages may be refused a little sooner.
    int unread = 0;
    if (mState == State::Open && ioctl(mFd.get(), SIOCOUTQ, &unread) != 0) {
        unread = 0;
    }
    const size_t waiting = queued + static_cast<size_t>(unread);
    return waiting == 0 ? bytes <= kQueueBytes : waiting + bytes <= kMaxOneWayBytes;
}

bool OneWayChannel::hasRoomFor(size_t bytes) {
    const CheckedLock lock(mLock);
    return fits(bytes);
}

/** All the room that the queue may ever need is reserved at once; untouched, it costs
 * nothing. */
bool OneWayChannel::makeRoom(size_t bytes) {
    if (mQueue.capacity() - mQueue.size() >= bytes) {
        return true;
    }
    mQueue.erase(mQueue.begin(), mQueue.begin() + static_cast<ptrdiff_t>(mQueueStart));
    mQueueStart = 0;
    try {
        mQueue.reserve(kQueueBytes);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return mQueue.capacity() - mQueue.size() >= bytes;
}

void OneWayChannel::append(const Gather& rest) {
    for (size_t i = 0; i < rest.count; ++i) {
        const auto* bytes = static_cast<const uint8_t*>(rest.vectors[i].iov_base);
        mQueue.insert(mQueue.end(), bytes, bytes + rest.vectors[i].iov_len);
    }
}

/** True when the peer has welcomed us; then the connection is open. */
bool OneWayChannel::readWelcome() {
    auto* bytes = reinterpret_cast<uint8_t*>(&mWelcome);
    const ssize_t got =
            receiveSome(mFd.get(), bytes + mWelcomeHave, sizeof(mWelcome) - mWelcomeHave, MSG_DONTWAIT);
    if (got <= 0) {
        return false;
    }
    mWelcomeHave += static_cast<size_t>(got);
    if (mWelcomeHave < sizeof(mWelcome) || mWelcome.magic != kMessageMagic ||
        mWelcome.kind != MessageKind::Welcome) {
        return false;
    }
    mState = State::Open;
    mAnswered.notify_all();
    return true;
}

/** Sends what is queued, as far as the socket takes it. False when the connection has
 * ended. */
bool OneWayChannel::flush() {
    if (mQueue.size() > mQueueStart) {
        iovec vector{mQueue.data() + mQueueStart, mQueue.size() - mQueueStart};
        Gather gather{&vector, 1, vector.iov_len};
        const size_t before = gather.bytes;
        if (sendSome(mFd.get(), &gather, MSG_DONTWAIT) < 0 && !wouldBlock(errno) && !isLack(errno)) {
            return false;
        }
        mQueueStart += before - gather.bytes;
    }
    if (mQueueStart == mQueue.size()) {
        if (mQueue.size() > kYieldQueueBytes) {
            std::vector<uint8_t>().swap(mQueue);  // gives back what it has touched
        }
        mQueue.clear();
        mQueueStart = 0;
    }
    watchForRoom(!mQueue.empty());
    return true;
}

void OneWayChannel::awaitWelcome(int milliseconds) {
    CheckedLock lock(mLock);
    if (mState == State::Greeting && !mAwaited) {
        mAwaited = !mAnswered.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                       [this] { return mState != State::Greeting; });
    }
}

OneWayChannel::Event OneWayChannel::update() {
    const CheckedLock lock(mLock);
    if (!mFd.ok()) {
        return Event::None;
    }
    if (mState == State::Greeting && !readWelcome()) {
        if (mWelcomeHave == sizeof(mWelcome)) {
            return Event::Lost;  // it says something else
        }
        uint8_t byte;
        if (receiveSome(mFd.get(), &byte, 1, MSG_DONTWAIT | MSG_PEEK) < 0 && wouldBlock(errno)) {
            return Event::None;
        }
        return Event::Refused;
    }
    uint8_t byte;
    // Nothing is sent to us on a connection that was welcomed: it has ended, or its peer has lost its mind.
    const bool quiet = receiveSome(mFd.get(), &byte, 1, MSG_DONTWAIT) < 0 && wouldBlock(errno);
    return quiet && mState != State::Ended && flush() ? Event::None : Event::Lost;
}

void OneWayChannel::closeRefused() {
    const CheckedLock lock(mLock);
    closeFd();
    if (mState == State::Greeting) {
        mState = State::Closed;
        mAnswered.notify_all();
    }
}

void OneWayChannel::watchForRoom(bool wanted) {
    epoll_event event{};
    event.events = EPOLLIN | EPOLLRDHUP | (wanted ? static_cast<uint32_t>(EPOLLOUT) : 0u);
    event.data.fd = mFd.get();
    epoll_ctl(mEpoll, EPOLL_CTL_MOD, mFd.get(), &event);
}

void OneWayChannel::end() {
    const CheckedLock lock(mLock);
    if (mState == State::Ended) {
        return;
    }
    mState = State::Ended;
    mAnswered.notify_all();
    std::vector<uint8_t>().swap(mQueue);
    mQueueStart = 0;
    if (mFd.ok()) {
        ::shutdown(mFd.get(), SHUT_RDWR);
    }
}

void OneWayChannel::close() {
    end();
    const CheckedLock lock(mLock);
    closeFd();
}

void OneWayChannel::closeFd() {
    if (mFd.ok()) {
        // Closing does not end the watch while a child that was forked meanwhile has the descriptor too.
        epoll_ctl(mEpoll, EPOLL_CTL_DEL, mFd.get(), nullptr);
    }
    mFd.reset();
    mKernelMost = 0;
}

int OneWayChannel::fd() {
    const CheckedLock lock(mLock);
    return mFd.get();
}

size_t OneWayChannel::queuedBytes() {
    const CheckedLock lock(mLock);
    return mQueue.size() - mQueueStart;
}

}  // namespace android::hardware
