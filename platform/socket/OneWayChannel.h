#pragma once

#include <utils/Errors.h>

#include <atomic>
#include <mutex>
#include <vector>

#include "platform/socket/Socket.h"

namespace android::hardware {

/**
 * Our connection to a peer for messages without a reply. Sending never waits: what the socket does not take
 * is queued, up to kMaxOneWayQueueBytes, and goes out when the watching epoll instance reports room. Messages
 * keep their order. Any thread.
 */
class OneWayChannel {
  public:
    /** Takes a connected socket that is (about to be) watched for input by the epoll instance. */
    void open(UniqueFd fd, int epoll);
    bool isOpen() const { return mOpen.load(std::memory_order_relaxed); }
    /** It was open, and ends with its peer. */
    bool isBroken();

    /**
     * Sends one message whole or not at all.
     *
     * @return FAILED_TRANSACTION when the queue has no room for it, DEAD_OBJECT when the peer is gone
     */
    status_t send(Gather message);

    /** Sends what is queued, as far as the socket takes it. */
    void flush();

    /** Ends both directions; the watcher sees the end of file. */
    void shutdown();

    /** The watcher is done with it. */
    void close();

    size_t queuedBytes();

  private:
    /** @param lags set when the queue has grown enough to let others run before more is sent */
    status_t sendOrQueue(Gather message, bool* lags);
    bool append(const Gather& rest);
    void watchForRoom(bool wanted);
    void breakOff();

    std::mutex mLock;
    UniqueFd mFd;
    int mEpoll = -1;
    bool mBroken = false;
    std::atomic<bool> mOpen{false};  // it has a descriptor and is not broken; changed under the lock
    std::vector<uint8_t> mQueue;
    size_t mQueueStart = 0;  // bytes of the queue that are out already
};

}  // namespace android::hardware
