#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "platform/socket/Encoder.h"
#include "platform/socket/Peer.h"

namespace android::hardware {

class Transport;

/**
 * A connection that a peer has made to us. At any time one thread at most serves it: the one that epoll woke
 * for it, until it arms it again. A slow or silent peer therefore holds no thread: what has come so far, or
 * what has not gone out yet, stays here.
 */
class Inbound {
  public:
    Inbound(Transport& transport, std::shared_ptr<Peer> peer, UniqueFd fd, bool control);
    ~Inbound();

    int fd() const { return mFd.get(); }

    /** It is in the epoll instance, armed or not. The transport's. */
    bool watched = false;

    /**
     * Serves what can be served now and arms the connection again.
     *
     * @return false when it has ended and the caller is to delete it
     */
    bool serve();

    /** Comes before epoll may wake another thread for it: that thread sees all that this one has done. */
    void handOver() { mTurns.fetch_add(1, std::memory_order_release); }

    /** Sends a reply, or keeps what the peer does not take at once. */
    void sendReply(const Parcel& reply);

  private:
    enum class Read { Some, Nothing, End };

    Read readMore(bool wait);
    bool flush();
    bool queueReply(Gather rest);
    const char* serveBuffered(uint64_t* served, bool* turnOver);
    const char* serveMessage(const MessageHeader& head, uint8_t* bytes);
    void serveCall(const MessageHeader& head, uint8_t* bytes);
    void serveOneWay(const MessageHeader& head, uint8_t* bytes);
    void sendStatus(status_t status);
    void send(Gather gather);

    Transport& mTransport;
    const std::shared_ptr<Peer> mPeer;
    UniqueFd mFd;
    const bool mControl;
    const size_t mBlockBytes;  // what a read is offered, unless a message is longer
    Block mBlock;
    size_t mCapacity = 0;
    size_t mHave = 0;
    std::vector<uint8_t> mOut;  // rest of a reply
    size_t mOutStart = 0;
    std::atomic<uint32_t> mTurns{0};
    bool mBroken = false;
    bool mReplied = false;
};

}  // namespace android::hardware
