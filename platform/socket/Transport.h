#pragma once

#include <hwbinder/Parcel.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_set>

#include "platform/socket/Encoder.h"
#include "platform/socket/Exports.h"
#include "platform/socket/Peer.h"

namespace android::hardware {

class Inbound;

/**
 * A process's calls to and from others.
 *
 * Threads: callers send and receive themselves. Calls from others run on pool threads, which wait on one
 * epoll instance for any connection that has something to read and are started as calls need them. One
 * platform thread accepts connections, drains one-way queues and reports deaths; no method of an object runs
 * on it, only death recipients do.
 *
 * A process that only makes calls has no thread and no listening socket of ours.
 */
class Transport final : public ObjectResolver {
  public:
    /** The process's own; it is never destroyed. */
    static Transport& self();

    Transport();
    /** Ends all threads; calls in progress are finished. No other thread may use it any more. */
    ~Transport();

    /**
     * Exports a local object for good and gives the reference that other processes find it by.
     *
     * @return INVALID_OPERATION for an object of another process; -errno when no socket can be had
     */
    status_t publish(const sp<IBinder>& object, ObjectReference* reference);

    /** Undoes publish(); who holds the object by now keeps it. */
    void withdraw(const ObjectReference& reference) { mExports.unpin(reference.object); }

    /**
     * Has the platform thread call a function whenever a descriptor is readable. Both last as long as the
     * transport; the function does not throw.
     */
    status_t whenReadable(int fd, std::function<void()> function);

    /** Object of a reference found in the registry; DEAD_OBJECT when its process can not be reached. */
    status_t resolve(const ObjectReference& reference, sp<IBinder>* object) override;

    /**
     * How many threads may run methods at one time; 1 until it is called.
     *
     * @param callerWillJoin one of them will come through joinThreadPool()
     */
    void setMaxThreads(size_t maxThreads, bool callerWillJoin);
    /** Lets calls from others run. */
    void startThreadPool();
    /** Runs calls on this thread until the transport ends, which the process's own never does. */
    void joinThreadPool();

    // For peers and connections.

    const Endpoint& endpoint() const { return mEndpoint; }
    Exports& exports() { return mExports; }
    status_t resolveFrom(const Peer& sender, const ObjectReference& reference, sp<IBinder>* object);
    status_t exportTo(Peer& peer, const sp<IBinder>& object, ObjectReference* reference);
    /** Watches a control connection for the peer's end; the platform thread will flush its channel. */
    bool watchControl(const std::shared_ptr<Peer>& peer, UniqueFd fd);
    /** Has the platform thread report a peer's end to links that came too late for the first report. */
    void buryLater(const std::shared_ptr<Peer>& peer);
    /** Notes who a peer is with its first connection; false when another process uses its endpoint. */
    bool admit(Peer& peer, const Credentials& credentials);
    void forget(const Peer& peer);
    /** Forgets a peer that no connection was ever made with. */
    void forgetStranger(const Peer& peer);
    /** A free thread waits for work, so the asking one may wait for its own connection. */
    bool mayLinger() const { return mIdleThreads.load(std::memory_order_relaxed) > 0; }
    /** Has epoll wake a thread for it; that may be before this returns. */
    void armInbound(Inbound* inbound, uint32_t events);
    /**
     * Takes it out of the epoll instance until it is armed. A disarmed connection costs a look at it with
     * every message that comes, which is worth saving while a thread waits for them.
     */
    void unwatchInbound(Inbound* inbound);

    // For tests.

    size_t peerCount();
    size_t threadCount() const { return mThreadCount.load(); }

  private:
    struct Greeter {
        UniqueFd fd;
        Credentials credentials;
        MessageHeader hello;
        size_t have = 0;
    };
    struct Watched {
        std::shared_ptr<Peer> peer;            // a control connection
        std::list<Greeter>::iterator greeter;  // else one that has not said who it is
        std::function<void()> function;        // else it is no connection
    };

    std::shared_ptr<Peer> peerAt(const Endpoint& endpoint);
    status_t listenOnce();
    void startPlatformThread();
    void runPlatformThread();
    void buryWaiting();
    void acceptConnections();
    bool refuseConnection();
    void hearOut(const Peer& peer);
    void readHello(std::list<Greeter>::iterator greeter);
    void welcome(Greeter& greeter);
    void dropGreeter(std::list<Greeter>::iterator greeter);
    void endInbound(Inbound* inbound);
    void runPool();
    void spawnIfNeeded();
    void wake();

    const Endpoint mEndpoint;
    Exports mExports;
    UniqueFd mPoolEpoll;
    UniqueFd mPlatformEpoll;
    UniqueFd mWake;      // an eventfd in both epoll instances, readable once the transport ends
    UniqueFd mBuryWake;  // an eventfd, readable while mToBury has peers
    UniqueFd mReserve;   // given up for a moment to refuse a connection when descriptors have run out
    UniqueFd mListener;  // guarded by mLock; what the platform thread needs of it is mListening
    std::atomic<int> mListening{-1};

    std::mutex mLock;  // guards the rest but the atomics
    std::map<Endpoint, std::shared_ptr<Peer>> mPeers;
    std::map<int, Watched> mWatched;  // by descriptor; entries are removed by the platform thread alone
    std::unordered_set<Inbound*> mInbounds;
    std::vector<std::shared_ptr<Peer>> mToBury;
    std::list<Greeter> mGreeters;  // oldest first; the platform thread's own
    std::thread mPlatformThread;
    std::list<std::thread> mPool;
    size_t mMaxSpawned = 1;
    bool mServing = false;

    std::atomic<size_t> mIdleThreads{0};
    std::atomic<size_t> mThreadCount{0};
    std::atomic<bool> mEnding{false};
};

}  // namespace android::hardware
