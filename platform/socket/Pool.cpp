#define LOG_TAG "hidl.transport"

#include "platform/socket/Pool.h"

#include <log/log.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <new>
#include <thread>

#include "platform/socket/Inbound.h"
#include "platform/socket/Limits.h"
#include "platform/socket/Peer.h"

namespace android::hardware {

Pool::Pool()
    : mEpoll(epoll_create1(EPOLL_CLOEXEC)),
      mWake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      mLeave(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      mDeaths(eventfd(1, EFD_CLOEXEC | EFD_NONBLOCK)) {
    for (UniqueFd* source : {&mWake, &mLeave, &mDeaths}) {
        epoll_event event{};
        event.events = source == &mDeaths ? 0u : uint32_t{EPOLLIN};  // that one is armed when there is work
        event.data.ptr = source;
        LOG_ALWAYS_FATAL_IF(
                !mEpoll.ok() || epoll_ctl(mEpoll.get(), EPOLL_CTL_ADD, source->get(), &event) != 0,
                "no epoll instance: %s", strerror(errno));
    }
}

void Pool::stop() {
    mEnding = true;
    eventfd_write(mWake.get(), 1);
    {
        CheckedLock lock(mLock);
        mThreadEnded.notify_all();
        mThreadEnded.wait(lock, [this] { return mThreads == 0; });
    }
    while (!mConnections.empty()) {
        remove(*mConnections.begin());
    }
}

void Pool::setMaxThreads(size_t maxThreads, bool callerWillJoin) {
    const CheckedLock lock(mLock);
    mMost = maxThreads;
    mMaxSpawned = maxThreads - (callerWillJoin && maxThreads > 0 ? 1 : 0);
}

void Pool::start() {
    const CheckedLock lock(mLock);
    mServing = true;
    // Connections that came before wait in the epoll instance; the first thread finds them.
    if (!mConnections.empty() || mFirstToBury != nullptr) {
        spawnIfNeeded();
    }
}

void Pool::join() {
    {
        const CheckedLock lock(mLock);
        mServing = true;
        ++mThreads;
    }
    ++mIdle;
    run(true);
}

size_t Pool::mostSpawned() const {
    return mMaxSpawned + std::min(mWorkingOnDeaths, kMaxDeathThreads);
}

/** Keeps one thread free for the next connection, as far as the maximum allows. */
void Pool::spawnIfNeeded() {
    if (!mServing || mEnding || mIdle.load() > 0 || mSpawned >= mostSpawned()) {
        return;
    }
    // Counted before it runs, so that its caller does not start another.
    ++mIdle;
    ++mThreads;
    ++mSpawned;
    try {
        std::thread thread([this] { run(false); });
        pthread_setname_np(thread.native_handle(), "hidl-pool");
        thread.detach();
        mThreadsRefused = 0;
    } catch (const std::exception& error) {  // std::system_error or std::bad_alloc
        --mIdle;
        --mThreads;
        --mSpawned;
        if (const uint32_t count = ++mThreadsRefused; (count & (count - 1)) == 0) {
            ALOGW("calls are served by %zu threads, as there is no other: %s (%u times)", mThreads.load(),
                  error.what(), count);
        }
    }
}

bool Pool::isReady() {
    const CheckedLock lock(mLock);
    spawnIfNeeded();
    return mThreads > 0 || !mServing || mMaxSpawned == 0;
}

bool Pool::add(std::unique_ptr<Inbound>& connection) {
    const CheckedLock lock(mLock);
    mConnections.insert(connection.get());
    // The end of one that its maker has closed already is reported at once, whatever is asked for: under a
    // name that threads pass over, as the connection is the caller's until it is armed.
    epoll_event event{};
    event.events = EPOLLONESHOT;
    event.data.ptr = this;
    if (epoll_ctl(mEpoll.get(), EPOLL_CTL_ADD, connection->fd(), &event) != 0) {
        mConnections.erase(connection.get());
        return false;
    }
    connection->watched = true;
    connection.release();
    return true;
}

void Pool::arm(Inbound* connection, uint32_t events) {
    epoll_event event{};
    // Of a peer that only waits for room, that it will send nothing more is no news: it would wake us for
    // ever.
    event.events = events | EPOLLONESHOT | ((events & EPOLLIN) != 0 ? static_cast<uint32_t>(EPOLLRDHUP) : 0u);
    event.data.ptr = connection;
    const std::lock_guard<std::mutex> turn(connection->turn);
    const int fd = connection->fd();
    const int operation = connection->watched ? EPOLL_CTL_MOD : EPOLL_CTL_ADD;
    connection->watched = true;
    // From here on the connection belongs to whichever thread epoll wakes for it. Only one that was taken out
    // may find no memory: then it is this thread's until there is some.
    while (epoll_ctl(mEpoll.get(), operation, fd, &event) != 0) {
        LOG_ALWAYS_FATAL_IF(errno != ENOMEM && errno != ENOSPC, "a connection can not be watched: %s",
                            strerror(errno));
        usleep(kRetryMilliseconds * 1000);
    }
}

void Pool::unwatch(Inbound* connection) {
    if (epoll_ctl(mEpoll.get(), EPOLL_CTL_DEL, connection->fd(), nullptr) == 0) {
        connection->watched = false;
    }
}

void Pool::remove(Inbound* connection) {
    {
        const CheckedLock lock(mLock);
        mConnections.erase(connection);
    }
    delete connection;
}

size_t Pool::shareOfOneProcess() const {
    const size_t most = mMost.load(std::memory_order_relaxed);
    return std::max(most - std::min(most, kThreadsLeftToOthers), std::min<size_t>(most, 2));
}

/** Serves a connection, if its process may have a thread more; else it waits for one of those that it has. */
void Pool::serve(Inbound* connection) {
    {
        const std::lock_guard<std::mutex> turn(connection->turn);  // whoever armed it is done
    }
    const std::shared_ptr<Process> process = connection->sharedProcess();
    if (!process->beginServing(connection, shareOfOneProcess())) {
        return;
    }
    bool goesOn = false;
    try {
        goesOn = connection->serve();
    } catch (const std::bad_alloc&) {
        ALOGE("a connection ends for lack of memory");
    }
    if (!goesOn) {
        remove(connection);
    }
    if (Inbound* const next = process->endServing(); next != nullptr) {
        arm(next, EPOLLIN | EPOLLOUT);
    }
}

bool Pool::bury(const std::shared_ptr<Peer>& peer) {
    const CheckedLock lock(mLock);
    if (mFirstToBury == nullptr) {
        mFirstToBury = peer;
    } else {
        mLastToBury->nextToBury = peer;
    }
    mLastToBury = peer.get();
    armDeaths();
    spawnIfNeeded();
    return mThreads > 0 || !mServing;
}

/** Has epoll wake one thread more for deaths, as long as there is work and so many may do
 * it. */
void Pool::armDeaths() {
    if (mDeathsArmed || mWorkingOnDeaths >= kMaxDeathThreads || (mFirstToBury == nullptr && mLinks.empty())) {
        return;
    }
    epoll_event event{};
    event.events = EPOLLIN | EPOLLONESHOT;
    event.data.ptr = &mDeaths;
    mDeathsArmed = epoll_ctl(mEpoll.get(), EPOLL_CTL_MOD, mDeaths.get(), &event) == 0;
}

/**
 * Releases what one dead peer held, or tells one recipient, and so on until there is nothing left. Each is
 * taken out first, so that others go on with the rest if it blocks.
 */
void Pool::buryAll() {
    CheckedLock lock(mLock);
    while (mFirstToBury != nullptr || !mLinks.empty()) {
        DeathLinks links;
        std::shared_ptr<Peer> peer;
        if (!mLinks.empty()) {
            links.splice(links.end(), mLinks, mLinks.begin());
        } else {
            peer = std::move(mFirstToBury);
            mFirstToBury = std::move(peer->nextToBury);
        }
        armDeaths();  // others go on with the rest if this one blocks
        lock.unlock();
        if (peer != nullptr) {
            peer->takeLinks(&links);
            lock.lock();
            mLinks.splice(mLinks.end(), links);
            armDeaths();  // others tell them if a destructor keeps this thread
            lock.unlock();
            peer->releaseHeld();
            peer.reset();
            lock.lock();
            continue;
        }
        links.front().report();
        links.clear();
        lock.lock();
    }
}

/**
 * This thread, which has been told not to count while it ran what may block, counts again. If another was
 * spawned in its place, one of the spawned has to end first: no more than the maximum serve at one time.
 */
void Pool::countAgain(bool joined) {
    CheckedLock lock(mLock);
    --mWorkingOnDeaths;
    armDeaths();
    mSurplus = mSpawned > mostSpawned();
    if (mSurplus) {
        eventfd_write(mLeave.get(), 1);
    }
    if (mSurplus && joined) {
        mThreadEnded.wait(lock, [this]() REQUIRES(mLock) { return mEnding || mSpawned <= mostSpawned(); });
    }
}

/** More threads were spawned than are needed now: this one, which was spawned, is to end. */
bool Pool::isSurplus() {
    if (!mSurplus.load(std::memory_order_relaxed)) {
        return false;
    }
    const CheckedLock lock(mLock);
    const bool surplus = mSpawned > mostSpawned();
    mSpawned -= surplus ? 1 : 0;
    mSurplus = mSpawned > mostSpawned();
    if (surplus) {
        mThreadEnded.notify_all();
    }
    return surplus;
}

/** One thread's life; it is counted as idle when it comes here. */
void Pool::run(bool joined) {
    bool isCounted = true;  // among the spawned
    while (!mEnding) {
        if (!joined && isSurplus()) {
            isCounted = false;
            break;
        }
        epoll_event event;
        const int count = epoll_wait(mEpoll.get(), &event, 1, -1);
        if (count < 0 && errno != EINTR) {
            LOG_ALWAYS_FATAL("epoll_wait: %s", strerror(errno));
        }
        if (count <= 0 || event.data.ptr == &mWake || event.data.ptr == this) {
            continue;
        }
        if (event.data.ptr == &mLeave) {
            if (!mSurplus) {
                eventfd_t leave;
                eventfd_read(mLeave.get(), &leave);
            } else if (joined) {
                usleep(1000);  // one that was spawned is about to go
            }
            continue;
        }
        const bool isDeath = event.data.ptr == &mDeaths;
        if (mIdle.fetch_sub(1) == 1 || isDeath) {
            const CheckedLock lock(mLock);
            mWorkingOnDeaths += isDeath ? 1 : 0;
            mDeathsArmed = mDeathsArmed && !isDeath;
            spawnIfNeeded();
        }
        if (isDeath) {
            buryAll();
            countAgain(joined);
        } else {
            serve(static_cast<Inbound*>(event.data.ptr));
        }
        ++mIdle;
    }
    --mIdle;
    const CheckedLock lock(mLock);
    mSpawned -= !joined && isCounted ? 1 : 0;
    --mThreads;
    mThreadEnded.notify_all();
}

}  // namespace android::hardware
