#pragma once

#include <hwbinder/Parcel.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "platform/binding/CheckedLock.h"
#include "platform/binding/Complaints.h"
#include "platform/socket/Exports.h"
#include "platform/socket/Listener.h"
#include "platform/socket/Peer.h"
#include "platform/socket/Pool.h"
#include "platform/socket/Process.h"

namespace android::hardware {

/**
 * A process's calls to and from others.
 *
 * Threads: callers send and receive themselves, and serve what is called back meanwhile. Other calls from
 * others run on the pool. One platform thread accepts connections, drains one-way queues and notices the ends
 * of processes; it runs nobody's code but ours.
 *
 * A process that only makes calls has no thread of ours.
 */
class Transport {
  public:
    Transport();
    /** Ends all threads; calls in progress are finished. No other thread may use it any more. */
    ~Transport();

    /**
     * Exports a local object for good and gives the reference that other processes find it by. As many times
     * as wanted, each undone by a withdraw() of its own.
     *
     * @return INVALID_OPERATION for an object of another process; -errno, FAILED_TRANSACTION or NO_MEMORY
     * when no socket, thread or memory can be had
     */
    status_t publish(const sp<IBinder>& object, ObjectReference* reference);

    /** Undoes one publish(); who holds the object by now keeps it. */
    void withdraw(const ObjectReference& reference) { mExports.unpin(reference.object); }

    /** Object of a reference found in the registry; DEAD_OBJECT when its process can not be reached. */
    status_t resolve(const ObjectReference& reference, sp<IBinder>* object);

    /**
     * Has the platform thread call a function whenever a descriptor is readable. Both last as long as the
     * transport; the function does not throw. Once.
     */
    status_t whenReadable(int fd, std::function<void()> function);

    Pool& pool() { return mPool; }

    // For peers and connections.

    const Endpoint& endpoint() const { return mEndpoint; }
    Exports& exports() { return mExports; }
    Processes& processes() { return mProcesses; }
    Complaints& complaints() { return mComplaints; }
    /** Gives the reference under which a peer will know an object. May throw std::bad_alloc. */
    status_t exportTo(Peer& peer, const sp<IBinder>& object, ObjectReference* reference);
    /** The peer of an endpoint; a new one if there is none. May throw std::bad_alloc. */
    std::shared_ptr<Peer> peerAt(const Endpoint& endpoint);
    void forget(const Peer& peer);
    /** Gives a peer up, and forgets one that no connection was ever made with and nobody else has. */
    void forgetStranger(std::shared_ptr<Peer>&& peer);
    /**
     * Listens under our endpoint. Before it is told to anybody, so that only who is gone can not be reached;
     * who only calls accepts nobody, but can be watched all the same.
     */
    status_t listenOnce();
    /** Says on a new connection who we are, and what it is for. False when the connection has ended. */
    bool sendHello(int fd, MessageKind kind) const;
    /**
     * Watches a control connection to a peer and says hello on it: not before, as the peer takes the end of
     * one that it has welcomed for ours. May throw std::bad_alloc.
     */
    status_t watchControl(const std::shared_ptr<Peer>& peer, UniqueFd fd);
    /** A peer has gone: accepts what it may have sent just before, then tells it so. */
    void hearOut(Peer& peer);
    /** What failed for lack of means is tried again soon. */
    void retryLater();

    // For tests.

    size_t peerCount();

  private:
    status_t serveOthers();
    status_t startPlatformThread() REQUIRES(mLock);
    void runPlatformThread();
    void handle(int fd);
    template <typename Function>
    void forEachPeer(Function function);
    void forgetDeadPeers();
    void welcome(UniqueFd fd, const Credentials& who, const MessageHeader& hello);
    void wake();

    const Endpoint mEndpoint;
    Complaints mComplaints;
    Processes mProcesses;
    Exports mExports;
    Pool mPool;
    UniqueFd mEpoll;  // the platform thread's
    UniqueFd mWake;   // an eventfd, readable when there is news for it
    Listener mListener;

    CheckedMutex mLock;  // guards the rest but the atomics
    UniqueFd mListening GUARDED_BY(mLock);
    std::map<Endpoint, std::shared_ptr<Peer>> mPeers GUARDED_BY(mLock);
    std::map<int, std::shared_ptr<Peer>> mWatched
            GUARDED_BY(mLock);  // by the descriptor of its control connection
    int mOtherFd GUARDED_BY(mLock) = -1;
    std::function<void()> mOther;  // set before its descriptor is watched, then the platform thread's
    std::thread mPlatformThread GUARDED_BY(mLock);

    std::atomic<bool> mHasGone{false};  // peers wait for being heard out
    std::atomic<bool> mRetries{false};
    std::atomic<bool> mEnding{false};
};

}  // namespace android::hardware
