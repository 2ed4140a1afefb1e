#pragma once

#include <utils/Errors.h>

#include <mutex>
#include <vector>

#include "platform/src/Socket.h"

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
    bool isOpen();
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
    bool append(const Gather& rest);
    void watchForRoom(bool wanted);
    void breakOff();

    std::mutex mLock;
    UniqueFd mFd;
    int mEpoll = -1;
    bool mBroken = false;
    std::vector<uint8_t> mQueue;
    size_t mQueueStart = 0;  // bytes of the queue that are out already
};

}  // namespace android::hardware
