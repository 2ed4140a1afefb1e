#pragma once

#include <utils/Errors.h>
#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace android::hardware {

class BHwBinder;
class Parcel;
class Proxy;

/**
 * One object that calls can be made on, in this process (BHwBinder) or in another (a proxy that the
 * transport makes). Every operation may be called on any thread.
 */
class IBinder : public virtual RefBase {
  public:
    /**
     * Given the finished reply; must be called before onTransact() returns, as the reply's buffers end then.
     * Refers to a function that lives until then: a call hands it down through several stubs by value.
     */
    class TransactCallback {
      public:
        TransactCallback(std::nullptr_t = nullptr) {}
        template <typename F, typename = std::enable_if_t<!std::is_same_v<F, TransactCallback>>>
        TransactCallback(const F& function)
            : mFunction(&function),
              mCall([](const void* f, Parcel& reply) { (*static_cast<const F*>(f))(reply); }) {}

        void operator()(Parcel& reply) const { mCall(mFunction, reply); }

      private:
        const void* mFunction = nullptr;
        void (*mCall)(const void* function, Parcel& reply) = nullptr;
    };

    enum : uint32_t { FLAG_ONEWAY = 1u };

    class DeathRecipient : public virtual RefBase {
      public:
        /** Called once, on a thread of the pool or beside it, with no lock held. */
        virtual void binderDied(const wp<IBinder>& who) = 0;
    };

    /**
     * Makes one call. A two-way call returns when the reply is in *reply; a one-way call as soon as the
     * message is queued, in the order of the calls made on this object.
     *
     * @return OK; DEAD_OBJECT when the object's process is gone; FAILED_TRANSACTION when the message exceeds
     *     kMaxTransactionBytes, too much waits for the object's process already (kMaxOneWayBytes), or one of
     * the two processes lacks what a call takes; INVALID_OPERATION in a process that was forked after it got
     * the object; UNKNOWN_TRANSACTION, BAD_TYPE and other statuses that the object itself answered with.
     */
    virtual status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                              TransactCallback callback = nullptr) = 0;

    /**
     * Asks for one binderDied(). The link holds no strong reference to the recipient, and lasts no longer
     * than this reference to the object.
     *
     * @return DEAD_OBJECT when the process is already known to be gone; INVALID_OPERATION for a local object;
     *     FAILED_TRANSACTION or NO_MEMORY when the process lacks what a link takes: it may be tried again
     */
    virtual status_t linkToDeath(const sp<DeathRecipient>& recipient) = 0;

    /** @return NAME_NOT_FOUND when the recipient is not linked (any more). */
    virtual status_t unlinkToDeath(const sp<DeathRecipient>& recipient) = 0;

    /** This object if it lives in this process, else null. */
    virtual BHwBinder* localBinder() { return nullptr; }
    /** This object if it stands for one of another process, else null. */
    virtual Proxy* remoteProxy() { return nullptr; }
};

/** An object of this process. Generated stubs derive from it. */
class BHwBinder : public IBinder {
  public:
    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                      TransactCallback callback = nullptr) final {
        return onTransact(code, data, reply, flags, callback);
    }

    status_t linkToDeath(const sp<DeathRecipient>&) final { return INVALID_OPERATION; }
    status_t unlinkToDeath(const sp<DeathRecipient>&) final { return INVALID_OPERATION; }
    BHwBinder* localBinder() final { return this; }

  protected:
    virtual status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                                TransactCallback callback) = 0;

    /** Security contexts exist on the device only. */
    void setRequestingSid(bool) {}

    // Set by generated stubs. Scheduling of calls is left to the kernel here.
    int mSchedPolicy = 0;
    int mSchedPriority = 0;
};

}  // namespace android::hardware
