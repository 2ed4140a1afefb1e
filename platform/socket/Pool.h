#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_set>

#include "platform/binding/CheckedLock.h"
#include "platform/binding/Proxy.h"
#include "platform/socket/Socket.h"

namespace android::hardware {

class Inbound;
class Peer;

/**
 * The threads that serve what other processes send, and report their deaths. They wait on one epoll instance
 * for any connection that has something to read, and are started as work needs them, up to the maximum. Where
 * the system gives no more threads, those that are there go on; with none at all, nothing is accepted.
 *
 * A thread that runs death recipients, or destructors of what a dead process held, does not count: another is
 * started for calls in its place, up to kMaxDeathThreads of them.
 */
class Pool {
  public:
    Pool();

    /** Ends all threads and connections; calls in progress are finished. Before its own end. */
    void stop() NO_THREAD_SAFETY_ANALYSIS;  // once no thread is left, it needs no lock

    /**
     * How many threads may serve at one time; 1 until it is called.
     *
     * @param callerWillJoin one of them will come through join()
     */
    void setMaxThreads(size_t maxThreads, bool callerWillJoin);
    /** Lets calls be served. */
    void start();
    /** Serves on this thread until the pool ends. */
    void join();

    /** Threads serve, or wait for the pool's start. False when there is none and none can be had. */
    bool isReady();

    /**
     * Takes a new connection over and counts it among those watched. False, and it is still the caller's,
     * when the kernel can not watch it. May throw std::bad_alloc.
     */
    bool add(std::unique_ptr<Inbound>& connection);
    /** Has epoll wake a thread for a connection that was added; that may be before this returns. */
    void arm(Inbound* connection, uint32_t events);
    /** Takes it out of the epoll instance until it is armed. */
    void unwatch(Inbound* connection);

    /**
     * Releases on a pool thread what a peer held, and reports its death. Takes no memory.
     *
     * @return false when no thread is there to do it: isReady() tries to have one
     */
    bool bury(const std::shared_ptr<Peer>& peer);
    /** Does that on this thread, as long as there is anything left. */
    void buryAll();

    /** A free thread waits for work, so one that is not may wait for its own connection. */
    bool hasIdleThread() const { return mIdle.load(std::memory_order_relaxed) > 0; }
    /** A thread that waited for its connection found others to be served first. */
    void noteCrowd() { mCrowd.store(kCrowdWaits, std::memory_order_relaxed); }
    /** That was not long ago: waiting for one connection is not worth while. Asked once per wait. */
    bool isCrowded() {
        const int left = mCrowd.load(std::memory_order_relaxed);
        if (left > 0) {
            mCrowd.store(left - 1, std::memory_order_relaxed);
        }
        return left > 0;
    }
    int epoll() const { return mEpoll.get(); }
    size_t threadCount() const { return mThreads.load(); }

  private:
    /** How many waits are left out when one has found a crowd; then one tries again. */
    static constexpr int kCrowdWaits = 32;

    void run(bool joined);
    void serve(Inbound* connection);
    void armDeaths() REQUIRES(mLock);
    void countAgain(bool joined);
    bool isSurplus();
    size_t mostSpawned() const REQUIRES(mLock);
    void spawnIfNeeded() REQUIRES(mLock);
    size_t shareOfOneProcess() const;
    void remove(Inbound* connection);

    UniqueFd mEpoll;
    UniqueFd mWake;    // an eventfd, readable once the pool ends
    UniqueFd mLeave;   // an eventfd, readable when a spawned thread is to end
    UniqueFd mDeaths;  // an eventfd, always readable; armed for one thread at a time while there is work on
                       // deaths

    CheckedMutex mLock;  // guards the rest but the atomics
    std::condition_variable mThreadEnded;
    std::unordered_set<Inbound*> mConnections GUARDED_BY(mLock);
    std::shared_ptr<Peer> mFirstToBury GUARDED_BY(mLock);  // linked through Peer::nextToBury
    Peer* mLastToBury GUARDED_BY(mLock) = nullptr;
    DeathLinks mLinks GUARDED_BY(mLock);  // to be told
    size_t mMaxSpawned GUARDED_BY(mLock) = 1;
    size_t mSpawned GUARDED_BY(mLock) = 0;
    size_t mWorkingOnDeaths GUARDED_BY(mLock) = 0;
    bool mDeathsArmed GUARDED_BY(mLock) = false;
    uint32_t mThreadsRefused GUARDED_BY(mLock) = 0;  // by the system, since it gave one
    bool mServing GUARDED_BY(mLock) = false;

    std::atomic<size_t> mMost{1};  // of all threads, the joining one included
    std::atomic<size_t> mIdle{0};
    std::atomic<size_t> mThreads{0};
    std::atomic<bool> mSurplus{false};  // a thread more was spawned than are needed now
    std::atomic<int> mCrowd{0};         // waits that are to be left out
    std::atomic<bool> mEnding{false};
};

}  // namespace android::hardware
