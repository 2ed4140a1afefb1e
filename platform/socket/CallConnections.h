#pragma once

#include <condition_variable>
#include <cstddef>
#include <vector>

#include "platform/binding/CheckedLock.h"
#include "platform/socket/Socket.h"

namespace android::hardware {

/**
 * Our connections for calls to one peer. A call has one for itself, from its request to its reply; the next
 * one takes the connection that was used last, as the peer's thread may still be waiting there. Any thread.
 */
class CallConnections {
  public:
    /** Makes a connection on which the hello is out. On failure *status says why. May throw std::bad_alloc.
     */
    using Connect = UniqueFd (*)(void* context, status_t* status);

    /** A connection for one call; it is closed with this object unless it was given back. */
    class Lease {
      public:
        Lease() = default;
        Lease(Lease&& other) noexcept { *this = std::move(other); }
        Lease& operator=(Lease&& other) noexcept {
            std::swap(mOwner, other.mOwner);
            std::swap(mFd, other.mFd);
            std::swap(mProven, other.mProven);
            return *this;
        }
        ~Lease();

        int fd() const { return mFd.get(); }
        /** A reply has come over it: the peer ends it only when it ends with us. */
        bool isProven() const { return mProven; }
        /** For the next call: what it carried has been read to its end. */
        void giveBack(bool proven);

      private:
        friend class CallConnections;

        CallConnections* mOwner = nullptr;
        UniqueFd mFd;
        bool mProven = false;
    };

    /**
     * @param connect called, without locks, when there is no idle connection and one may be made
     * @return OK; DEAD_OBJECT after end(); NO_MEMORY; else what connect said
     */
    status_t borrow(Connect connect, void* context, Lease* lease);

    /** Closes the idle ones and cuts those in use: their calls fail. Later ones are refused. */
    void end();

    /** All idle ones have been ended by the other side, and none is in use. True when there is none. */
    bool areDead();
    size_t count();

  private:
    struct Idle {
        UniqueFd fd;
        bool proven;
    };

    void forget(int fd) REQUIRES(mLock);

    CheckedMutex mLock;
    std::condition_variable mFree;
    std::vector<Idle> mIdle GUARDED_BY(mLock);
    std::vector<int> mBusy GUARDED_BY(mLock);
    size_t mCount GUARDED_BY(mLock) = 0;  // idle, in use and being made
    bool mEnded GUARDED_BY(mLock) = false;
};

}  // namespace android::hardware
