#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "platform/socket/Call.h"
#include "platform/socket/MessageReader.h"
#include "platform/socket/Peer.h"

namespace android::hardware {

class Pool;

/**
 * A connection that a peer has made to us. At any time one thread at most serves it: the one that epoll woke
 * for it, until it arms it again. A slow or silent peer therefore holds no thread: what has come so far, or
 * what has not gone out yet, stays here.
 */
class Inbound final : private Answer {
  public:
    Inbound(Pool& pool, std::shared_ptr<Peer> peer, UniqueFd fd, bool control);
    ~Inbound();

    /** Counts it as one of its peer's. Null, or the rule that it breaks; then it is of no use. */
    const char* begin();
    /** There was memory for it. */
    bool ok() const { return mReader.ok(); }
    int fd() const { return mFd.get(); }
    /** It carries one-way messages, not calls. */
    bool isControl() const { return mControl; }
    Process& process() const { return *mPeer->process(); }
    std::shared_ptr<Process> sharedProcess() const { return mPeer->sharedProcess(); }

    /** It will be served: of one for one-way messages, the peer is told so, and sends from then on. */
    void welcome();

    /**
     * Serves what can be served now and arms the connection again.
     *
     * @return false when it has ended and the caller is to delete it
     */
    bool serve();

    /** Other connections of the peer's process wait for one of its threads. */
    bool othersWait() const { return process().hasParked(); }

    /**
     * Held while it is armed, and by the thread that epoll has woken for it before it does anything else:
     * that thread sees all that the one before has done.
     */
    std::mutex turn;

    // Of those that keep it, guarded by their locks.

    /** It is in the epoll instance, armed or not. The pool's. */
    bool watched = false;
    /** The next that waits for a thread of its process. */
    Inbound* nextParked = nullptr;
    /** It has waited, and counts as being served since its turn has come. */
    bool hasTurn = false;

  private:
    enum class Step { Served, MoreIsNeeded, Ended };

    bool send(Gather gather) override;
    bool takesDescriptors() const override { return mTakesDescriptors; }
    bool isBroken() const override { return mBroken; }
    Step serveNext();
    const char* serveMessage(const MessageHeader& head, uint8_t* bytes);
    const char* serveCall(const MessageHeader& head, uint8_t* bytes);
    bool isTurnOver();
    bool queueRest(const Gather& rest);
    bool flush();

    Pool& mPool;
    const std::shared_ptr<Peer> mPeer;
    UniqueFd mFd;
    const bool mControl;
    MessageReader mReader;
    std::unique_ptr<Descriptors> mDescriptors;  // of the next call; null unless announced
    bool mTakesDescriptors = false;             // the call that is served has brought some
    std::vector<uint8_t> mOut;                  // rest of a reply
    size_t mOutStart = 0;
    int64_t mTurnBegan = 0;  // since others wait; 0: none do
    bool mBegun = false;
    bool mWelcomed = false;
    bool mBroken = false;
};

}  // namespace android::hardware
