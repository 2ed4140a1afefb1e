#pragma once

#include <hwbinder/Parcel.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/binding/CheckedLock.h"
#include "platform/socket/CallConnections.h"
#include "platform/socket/Exports.h"
#include "platform/socket/OneWayChannel.h"
#include "platform/socket/Process.h"
#include "platform/socket/ProxyTable.h"

namespace android::hardware {

class Transport;

/**
 * Another process under one of its endpoints: our connections to it, its connections to us, the proxies of
 * its objects and what it holds of ours.
 *
 * Its life has three states. It is alive until its process has gone, as its connections tell. Then it is
 * draining: nothing is sent to it, but what it sent before is still read and served. When that is done, or at
 * once if it has broken a rule, it has ended: its death is reported, and what it held is released. It stays
 * ended: a process that comes back is another peer. Our own lack of means ends nobody.
 */
class Peer final : public ObjectSource, public std::enable_shared_from_this<Peer> {
  public:
    Peer(Transport& transport, const Endpoint& endpoint) : mTransport(transport), mEndpoint(endpoint) {}
    ~Peer();

    Transport& transport() const { return mTransport; }
    const Endpoint& endpoint() const { return mEndpoint; }

    /**
     * Notes with a connection, made by either side, whose process it is.
     *
     * @return null, or the rule that it breaks
     */
    const char* admit(const Credentials& credentials);
    /** Null before the first connection; the same ever after. */
    Process* process() const { return mProcess.load(std::memory_order_acquire); }
    /** The same, for who may outlive the peer. After the first connection. */
    std::shared_ptr<Process> sharedProcess() const { return mKeptProcess; }
    /** All zero before the first connection. */
    Credentials credentials() const;

    // Calling its objects.

    /** One two-way call; see IBinder::transact(). May throw std::bad_alloc, as the next may. */
    status_t call(MessageHeader head, const Parcel& data, Parcel* reply);
    /** One one-way call. */
    status_t post(MessageHeader head, const Parcel& data);
    /** Checks that it can be called, by having a connection for the first call ready. */
    status_t reach();
    /**
     * Opens the connection on which one-way messages go out and its end is noticed, unless it is open.
     *
     * @return DEAD_OBJECT when it is not alive; FAILED_TRANSACTION or -errno for lack of means
     */
    status_t ensureControl();
    /** Opens the control connection again if it was refused. */
    void reopenControl();
    /** Its death will be noticed and reported; as ensureControl(), but OK while it is draining. */
    status_t watchDeath();

    // References to its objects.

    /**
     * The proxy of one of its objects.
     *
     * @param counted references that it counts for us with this one; given back in any case
     */
    status_t proxyOf(const ObjectReference& reference, uint64_t counted, sp<IBinder>* proxy);
    void forgetProxy(RemoteObject* proxy);
    /** Gives back references that nobody will use. */
    void giveBack(const ObjectName& object, uint64_t count);
    /** Tells it that another process, or itself, is about to get a reference to one of its objects from us.
     */
    status_t handOver(const RemoteObject& object, const Endpoint& receiver);

    // What it sends.

    /** What it holds of our objects; guarded by the transport's Exports. */
    Holds holds;
    // Objects in its messages.
    status_t takeObject(const uint8_t* form, sp<IBinder>* object) override;
    void dropObject(const uint8_t* form) override;
    /** It gives back references to an object of ours. Of one that it was told lies about, nothing is kept. */
    void givenBack(const ObjectName& object, uint64_t count);
    /** It gives somebody a reference to an object of ours. */
    void handedOver(uint64_t number, uint64_t nonce, const Endpoint& receiver);

    /**
     * Counts a connection that it has made.
     *
     * @return null, or the rule that it breaks
     */
    const char* addInbound(int fd, bool control);
    /** @param welcomed it was served: else its end says nothing of the peer */
    void removeInbound(int fd, bool control, bool welcomed);

    // Its end.

    /** Its process has gone: it is draining from now on. Any thread, any number of times. */
    void noteGone();
    /** All connections that it made before it went have been accepted: it ends with the last of them. */
    void heardOut();
    bool waitsForHearing() const { return mState == State::Draining && !mHeardOut; }
    /** Ends it for breaking a rule, and says so in the log. */
    void drop(const char* rule);
    /** Nothing is left between us and it but idle connections, all of which it has closed. */
    bool isAbandoned();
    void end();
    /** After its end: gives the links to its objects, which are to be told. Takes no memory. */
    void takeLinks(DeathLinks* links);
    /** After that, on a pool thread, as it may run code of anybody's: releases what it held. */
    void releaseHeld();
    /** The pool's: who is to be released after it. */
    std::shared_ptr<Peer> nextToBury;

    OneWayChannel& control() { return mControl; }
    void complain(const MessageHeader& head, status_t status);

  private:
    enum class State { Alive, Draining, Ended };

    UniqueFd connect(status_t* status);
    UniqueFd connectForCalls(status_t* status);
    status_t borrow(CallConnections::Lease* lease);
    status_t announceDescriptors(int fd);
    status_t afterBreak(bool proven);
    void payOwed();
    bool isUnused();

    Transport& mTransport;
    const Endpoint mEndpoint;
    const uint32_t mGeneration = processGeneration();

    CallConnections mConnections;
    ProxyTable mProxies;
    OneWayChannel mControl;
    std::mutex mControlOpening;  // nobody waits for a peer, or for code that is not ours, while holding it
    std::mutex mPaying;          // likewise

    CheckedMutex mLock;                     // guards changes of what follows
    std::shared_ptr<Process> mKeptProcess;  // set once
    std::atomic<Process*> mProcess{nullptr};
    std::atomic<State> mState{State::Alive};
    std::vector<int> mInbound GUARDED_BY(mLock);  // descriptors
    bool mInboundControl GUARDED_BY(mLock) = false;
    std::atomic<bool> mHeardOut{false};
    std::atomic<bool> mWantsControl{false};
};

}  // namespace android::hardware
