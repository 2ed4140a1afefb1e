#pragma once

#include <hwbinder/IBinder.h>

#include <list>

#include "platform/binding/CheckedLock.h"
#include "platform/binding/UniqueFd.h"

namespace android::hardware {

/** One wish to be told of an object's death. Made with the link, so that telling takes no memory. */
struct DeathLink {
    wp<IBinder::DeathRecipient> recipient;
    wp<IBinder> who;

    /** Tells the recipient, if it is still there. Without locks, as it may do anything. */
    void report() const {
        if (const sp<IBinder::DeathRecipient> alive = recipient.promote(); alive != nullptr) {
            alive->binderDied(who);
        }
    }
};
using DeathLinks = std::list<DeathLink>;

/**
 * An object of another process. What travels is the transport's, which derives from it; what is the same for
 * all are the links to its death. Any thread.
 */
class Proxy : public IBinder {
  public:
    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                      TransactCallback callback) final;
    status_t linkToDeath(const sp<DeathRecipient>& recipient) final;
    status_t unlinkToDeath(const sp<DeathRecipient>& recipient) final;
    Proxy* remoteProxy() final { return this; }

    /** It has died: appends its links to those given; later ones are refused. Takes no memory. */
    void takeLinks(DeathLinks* links);

  protected:
    /** True in a child that was forked since: nothing that it refers to is the child's. */
    bool isParents() const { return mGeneration != processGeneration(); }

  private:
    /** IBinder::transact() without the callback; may throw std::bad_alloc. */
    virtual status_t send(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) = 0;
    /** Sees to it that the death of the object's process is noticed; may throw std::bad_alloc. */
    virtual status_t watch() = 0;

    const uint32_t mGeneration = processGeneration();
    CheckedMutex mLock;
    DeathLinks mLinks GUARDED_BY(mLock);
    bool mDead GUARDED_BY(mLock) = false;
};

}  // namespace android::hardware
