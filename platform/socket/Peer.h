#pragma once

#include <hwbinder/Parcel.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/socket/Exports.h"
#include "platform/socket/OneWayChannel.h"

namespace android::hardware {

class Proxy;
class Transport;

/**
 * One other process: our connections to it, its connections to us, the proxies of its objects and what it
 * holds of ours. It ends once, when the process is seen to be gone or has broken a rule, and stays ended: a
 * process that comes back is another peer, under another endpoint.
 */
class Peer : public std::enable_shared_from_this<Peer> {
  public:
    Peer(Transport& transport, const Endpoint& endpoint) : mTransport(transport), mEndpoint(endpoint) {}
    ~Peer();

    const Endpoint& endpoint() const { return mEndpoint; }
    /** Filled in by the transport with the first connection, read-only after. */
    Credentials credentials;

    // Calling its objects.

    /** One two-way call; see IBinder::transact(). */
    status_t call(MessageHeader head, const Parcel& data, Parcel* reply);
    /** One one-way call. */
    status_t post(MessageHeader head, const Parcel& data);
    /** Checks that it can be called, by having a connection for the first call ready. */
    status_t reach();
    /** Opens the connection on which one-way messages go out and the peer's death is noticed. */
    status_t ensureControl();

    // Proxies.

    /**
     * The proxy of one object of the peer.
     *
     * @param sentByPeer the peer sent us the reference and counts it; else the peer is told that we have it
     */
    status_t proxyOf(const ObjectReference& reference, bool sentByPeer, sp<IBinder>* proxy);
    /** A proxy that was found, but not counted by the peer: of an object that is exported for good. */
    sp<IBinder> proxyOfPinned(const ObjectReference& reference);
    void forgetProxy(Proxy* proxy);
    /** A peer that has ended already is reported to the new link as well, soon after. */
    status_t link(Proxy* proxy, const sp<IBinder::DeathRecipient>& recipient);
    status_t unlink(Proxy* proxy, const sp<IBinder::DeathRecipient>& recipient);

    // Its side.

    /** What it holds of our objects; guarded by the transport's Exports. */
    Holds holds;
    /**
     * The peer has dropped references that we sent it. While a call of ours to it is in progress they still
     * count: its answer may be about to bring one of them back.
     *
     * @return null, or the rule that it breaks
     */
    const char* release(uint64_t object, uint64_t count);
    /**
     * Counts a connection that the peer has made.
     *
     * @return null, or the rule that it breaks
     */
    const char* addInbound(int fd, bool control);
    void removeInbound(int fd, bool control);
    /** Logs a refused call of the peer; of a flood of them, ever fewer. */
    void complain(const MessageHeader& head, status_t status);

    // Its end.

    /**
     * Its process is gone: nothing is sent to it from here on. What it holds, and its connections to us, last
     * until its one-way messages have been read: it may have sent some just before. Any thread, any number of
     * times. Links are reported by bury().
     */
    void markGone();
    /** Ends it for breaking a rule, and says so in the log. */
    void drop(const char* rule);
    /** Reports its death to every link that has not been told. On the platform thread, without locks. */
    void bury();
    OneWayChannel& control() { return mControl; }

  private:
    /** A connection that one call at a time has for itself. */
    struct CallConnection {
        UniqueFd fd;
        bool proven = false;  // a reply has come over it
    };
    struct Known {
        Proxy* address;
        wp<Proxy> proxy;
        uint64_t received;  // references that the peer counts for us
        std::vector<wp<IBinder::DeathRecipient>> links;
    };
    class Resolver : public ObjectResolver {
      public:
        explicit Resolver(Peer& peer) : mPeer(peer) {}
        status_t resolve(const ObjectReference& reference, sp<IBinder>* object) override;

      protected:
        ~Resolver() = default;
        Peer& mPeer;
    };
    class RequestResolver final : public Resolver {
        using Resolver::Resolver;
    };
    class ReplyResolver final : public Resolver {
      public:
        using Resolver::Resolver;
        void messageRead() override { mPeer.endCall(); }
    };

    void end();

    status_t beginCall(CallConnection* connection);
    void endCall();
    status_t borrow(CallConnection* connection);
    void giveBack(CallConnection connection);
    void discard(CallConnection connection);
    status_t afterBreak(CallConnection connection);
    status_t exchange(MessageHeader head, const Parcel& data, CallConnection connection, Message* message);
    status_t receiveReply(int fd, Message* message);
    sp<IBinder> proxyFor(const ObjectReference& reference, uint64_t received);

    Transport& mTransport;
    const Endpoint mEndpoint;
    OneWayChannel mControl;
    std::mutex mControlOpening;

    std::mutex mLock;  // guards the rest
    std::condition_variable mConnectionFree;
    std::vector<CallConnection> mIdle;
    size_t mCallConnections = 0;
    size_t mCalls = 0;                                 // in progress, until their answers are read
    std::unordered_map<uint64_t, uint64_t> mReleases;  // that wait for them, by object
    std::unordered_map<uint64_t, Known> mProxies;
    std::unordered_set<int> mInbound;
    bool mInboundControl = false;
    bool mDead = false;
    bool mEnded = false;
    bool mBuried = false;

    std::atomic<uint32_t> mComplaints{0};

  public:
    /** Resolves references that this peer sent. */
    RequestResolver resolver{*this};

  private:
    ReplyResolver mReplyResolver{*this};
};

/** An object of another process. */
class Proxy final : public IBinder {
  public:
    Proxy(std::shared_ptr<Peer> peer, uint64_t object, uint64_t nonce)
        : mPeer(std::move(peer)), mObject(object), mNonce(nonce) {}
    ~Proxy() override { mPeer->forgetProxy(this); }

    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                      TransactCallback callback) override;
    status_t linkToDeath(const sp<DeathRecipient>& recipient) override {
        return mPeer->link(this, recipient);
    }
    status_t unlinkToDeath(const sp<DeathRecipient>& recipient) override {
        return mPeer->unlink(this, recipient);
    }

    uint64_t object() const { return mObject; }
    ObjectReference reference() const { return {mPeer->endpoint(), mObject, mNonce}; }

  private:
    const std::shared_ptr<Peer> mPeer;
    const uint64_t mObject;
    const uint64_t mNonce;
};

}  // namespace android::hardware
