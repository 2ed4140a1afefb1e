#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "platform/binding/CheckedLock.h"
#include "platform/binding/Complaints.h"
#include "platform/kernel/Driver.h"
#include "platform/kernel/Objects.h"

namespace android::hardware {

/** Calls through one device of the binder driver: the process's objects, proxies and threads. Any thread. */
class KernelTransport final : public ObjectTranslator {
  public:
    explicit KernelTransport(std::unique_ptr<Driver> driver);

    Driver& driver() { return *mDriver; }
    Handles& handles() { return mHandles; }

    // Threads. None ends before the process does.

    /** How many threads may serve at one time, one of which comes through join() if the caller says so. */
    void setMaxThreads(size_t maxThreads, bool callerWillJoin);
    /** Lets calls be served. */
    void start();
    /** Serves on this thread; does not return. */
    [[noreturn]] void join();
    /** Starts a thread that the driver has asked for. It asks once: what fails now is owed. */
    void spawn();
    void spawnOwed() {
        if (mOwed.load(std::memory_order_relaxed)) {
            spawn();
        }
    }

    // Objects.

    status_t describe(const sp<IBinder>& object, flat_binder_object* form) override;
    status_t resolve(const flat_binder_object& form, sp<IBinder>* object) override;
    /** The object of ours that is called. */
    sp<BHwBinder> find(binder_uintptr_t address, binder_uintptr_t cookie);
    /** Carries out what the driver says of its references to an object of ours. */
    void count(uint32_t command, const binder_ptr_cookie& object);

    /** The context manager's object: what others call handle 0. */
    sp<IBinder> manager();
    /** Makes an object of ours that; as Driver::becomeContextManager(). It is kept. */
    status_t becomeManager(const sp<BHwBinder>& object);

    /**
     * Logs what another process has done wrong, or what has not been done for it.
     *
     * @param rule the broken one; null: the status says it
     */
    void complain(const Credentials& who, const char* what, uint32_t code, status_t status, const char* rule);

  private:
    void startThread(bool asked);

    const std::unique_ptr<Driver> mDriver;
    Handles mHandles;
    Complaints mComplaints;
    std::atomic<bool> mOwed{false};

    CheckedMutex mLock;
    bool mCallerWillJoin GUARDED_BY(mLock) = false;
    bool mStarted GUARDED_BY(mLock) = false;
    sp<BHwBinder> mManager GUARDED_BY(mLock);  // set once, before anybody can call it
};

}  // namespace android::hardware
