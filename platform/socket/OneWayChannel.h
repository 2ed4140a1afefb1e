#pragma once

#include <utils/Errors.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "platform/binding/CheckedLock.h"
#include "platform/socket/Socket.h"

namespace android::hardware {

/**
 * Our connection to a peer for messages without a reply. Sending never waits: what can not go out at once is
 * queued, and goes out when the watching epoll instance reports room. Messages keep their order. What waits
 * for the peer, here or in the kernel, is at most kMaxOneWayBytes, as on the device.
 *
 * The peer welcomes a connection before anything is sent on it. One that it refuses, for lack of descriptors
 * or memory, costs nothing but time: it is opened anew, and what was queued goes out then. Any thread.
 */
class OneWayChannel {
  public:
    enum class State {
        Closed,    // no connection; messages may wait for one
        Greeting,  // connected, not welcomed yet: messages wait
        Open,
        Ended,  // the peer is gone: for good
    };

    State state() const { return mState.load(std::memory_order_relaxed); }

    /**
     * Takes a connected socket, on which the caller says hello after this, and has the epoll instance watch
     * it, under its descriptor as data.
     *
     * @return OK; -errno, and no connection, when it can not be watched; DEAD_OBJECT when it has ended
     */
    status_t open(UniqueFd fd, int epoll);

    /**
     * Sends one message whole or not at all.
     *
     * @return FAILED_TRANSACTION when too much waits already, NO_MEMORY, DEAD_OBJECT when the peer is gone
     */
    status_t send(Gather message);

    /**
     * Waits for the peer's welcome: what is sent after that arrives even if this process ends at once. A peer
     * that does not give it within that time is not waited for again on this connection.
     */
    void awaitWelcome(int milliseconds);

    /** Whether a message of this length would be taken now. */
    bool hasRoomFor(size_t bytes);

    /** What the watcher learns of a connection. */
    enum class Event {
        None,
        Refused,  // it ended before it was welcomed: to be closed with closeRefused()
        Lost,     // it ended after that: so has the peer
    };

    /** The watcher calls it when there is something to read or room to write. */
    Event update();

    /** The watcher is done with a connection that was refused; another may be opened. */
    void closeRefused();

    /** Nothing is sent any more. The watcher sees the end of file. */
    void end();

    /** The watcher is done with it, or the process is. */
    void close();

    /** Descriptor that is being watched, else -1. */
    int fd();
    size_t queuedBytes();

  private:
    status_t sendOrQueue(Gather message, bool* lags);
    bool fits(size_t bytes) REQUIRES(mLock);
    bool makeRoom(size_t bytes) REQUIRES(mLock);
    void append(const Gather& rest) REQUIRES(mLock);
    bool readWelcome() REQUIRES(mLock);
    bool flush() REQUIRES(mLock);
    void watchForRoom(bool wanted) REQUIRES(mLock);
    void closeFd() REQUIRES(mLock);

    CheckedMutex mLock;
    std::condition_variable mAnswered;        // no longer Greeting
    bool mAwaited GUARDED_BY(mLock) = false;  // in vain
    UniqueFd mFd GUARDED_BY(mLock);
    int mEpoll GUARDED_BY(mLock) = -1;
    std::atomic<State> mState{State::Closed};  // changed under the lock
    std::vector<uint8_t> mQueue GUARDED_BY(mLock);
    size_t mQueueStart GUARDED_BY(mLock) = 0;  // bytes of the queue that are out already
    size_t mKernelMost GUARDED_BY(mLock) =
            0;  // what the kernel may hold of ours; 0 while there is no connection
    MessageHeader mWelcome GUARDED_BY(mLock);  // as far as it has come
    size_t mWelcomeHave GUARDED_BY(mLock) = 0;
};

}  // namespace android::hardware
