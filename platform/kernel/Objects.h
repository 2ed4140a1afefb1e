#pragma once

#include <atomic>
#include <unordered_map>

#include "platform/binding/CheckedLock.h"
#include "platform/binding/Proxy.h"
#include "platform/kernel/Driver.h"
#include "platform/kernel/Transaction.h"

namespace android::hardware {

class KernelTransport;

/** An object of another process, by the number that the driver has given it here. */
class KernelProxy final : public Proxy {
  public:
    KernelProxy(KernelTransport& transport, uint32_t handle) : mTransport(transport), mHandle(handle) {}
    ~KernelProxy() override;

    uint32_t handle() const { return mHandle; }

  private:
    status_t send(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) override;
    status_t watch() override;

    KernelTransport& mTransport;
    const uint32_t mHandle;
};

/**
 * The proxies of other processes' objects, and what the driver counts for this process because of them: each
 * proxy holds its handle strongly once. Any thread. Proxies are not owned: each takes itself out when it
 * ends.
 *
 * The driver gives a number to another object as soon as nothing holds it. So whatever changes what is held
 * is written at once, with the lock held.
 */
class Handles {
  public:
    explicit Handles(Driver& driver) : mDriver(driver) {}

    /**
     * The proxy of a handle that a message holds, or of handle 0; a new one if it has none. May throw
     * std::bad_alloc.
     */
    sp<KernelProxy> get(KernelTransport& transport, uint32_t handle);

    /** A proxy ends. */
    void forget(KernelProxy* proxy);

    /** Asks the driver for one notice of the death of what is behind the handle. */
    status_t watch(KernelProxy* proxy);

    /** That notice has come: takes the links of the proxy, if there still is one. Takes no memory. */
    void takeLinks(binder_uintptr_t cookie, DeathLinks* links);

  private:
    struct Known {
        KernelProxy* address = nullptr;
        wp<KernelProxy> proxy;
        binder_uintptr_t cookie = 0;  // under which its death is told; 0: it was not asked for
        bool isDead = false;          // that has been told: it is told once, whatever proxy it has by then
    };

    void write(uint32_t command, uint32_t handle) REQUIRES(mLock);
    status_t ask(KernelProxy* proxy);
    void unask(std::unordered_map<uint32_t, Known>::iterator known) REQUIRES(mLock);

    Driver& mDriver;
    CheckedMutex mLock;
    std::unordered_map<uint32_t, Known> mKnown GUARDED_BY(mLock);
    // A number of its own for each request: an old one's notice may come when its handle has a new meaning.
    std::unordered_map<binder_uintptr_t, uint32_t> mWatched GUARDED_BY(mLock);
    binder_uintptr_t mLastCookie GUARDED_BY(mLock) = 0;
};

/**
 * What the driver is told of an object of this process: its two addresses, as they come back with each call.
 * The driver's references are counted in the object itself.
 */
class LocalObject {
  public:
    static void describe(BHwBinder* object, flat_binder_object* form);
    /** Null when the object is about to end. Its memory is still there as the driver holds it weakly. */
    static sp<BHwBinder> find(binder_uintptr_t address, binder_uintptr_t cookie);
    /** Carries out BR_INCREFS, BR_ACQUIRE, BR_RELEASE or BR_DECREFS; the last two may end the object. */
    static void count(uint32_t command, const binder_ptr_cookie& object);
};

}  // namespace android::hardware
