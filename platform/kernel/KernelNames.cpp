#define LOG_TAG "hidl.kernel"

#include "platform/kernel/KernelNames.h"

#include <android/hidl/base/1.0/BpHwBase.h>
#include <android/hidl/manager/1.0/BnHwServiceManager.h>
#include <android/hidl/manager/1.0/BpHwServiceManager.h>
#include <android/hidl/manager/1.0/IServiceNotification.h>
#include <hidl/HidlTransportSupport.h>
#include <log/log.h>

#include <chrono>
#include <condition_variable>

#include "platform/binding/StatusText.h"

using ::android::hidl::base::V1_0::BnHwBase;
using ::android::hidl::base::V1_0::BpHwBase;
using ::android::hidl::base::V1_0::IBase;
using ::android::hidl::manager::V1_0::BnHwServiceManager;
using ::android::hidl::manager::V1_0::BpHwServiceManager;
using ::android::hidl::manager::V1_0::IServiceManager;
using ::android::hidl::manager::V1_0::IServiceNotification;

namespace android::hardware {

namespace {

/**
 * How soon who waits for a name asks again, whatever it was told: a context manager that was started anew
 * does not know who waited, and the only thread that could be told may be the one that waits.
 */
constexpr std::chrono::milliseconds kAskAgain(500);

template <typename T>
status_t statusOf(const Return<T>& answer) {
    if (answer.isOk()) {
        return OK;
    }
    return answer.status().transactionError();
}

/** Says what went wrong with a name. */
status_t explain(const char* what, const std::string& name, status_t status) {
    ALOGE("%s %s: %s", name.c_str(), what, statusText(status).c_str());
    return status;
}

}  // namespace

/** Wakes who waits for a name whenever one of those that are wanted has come. */
class KernelNames::Arrivals final : public IServiceNotification {
  public:
    Return<void> onRegistration(const hidl_string&, const hidl_string&, bool) override {
        const CheckedLock lock(mLock);
        ++mCount;
        mCame.notify_all();
        return Void();
    }

    uint64_t count() {
        const CheckedLock lock(mLock);
        return mCount;
    }
    void waitBeyond(uint64_t count) {
        CheckedLock lock(mLock);
        mCame.wait_for(lock, kAskAgain, [&]() REQUIRES(mLock) { return mCount > count; });
    }

  private:
    CheckedMutex mLock;
    std::condition_variable mCame;
    uint64_t mCount GUARDED_BY(mLock) = 0;
};

KernelNames::KernelNames(KernelTransport& transport) : mTransport(transport), mArrivals(new Arrivals) {}

KernelNames::~KernelNames() = default;

sp<IServiceManager> KernelNames::manager() {
    return fromBinder<IServiceManager, BpHwServiceManager, BnHwServiceManager>(mTransport.manager());
}

status_t KernelNames::add(const std::vector<std::string>& fqNames, const std::string& instance,
                          const sp<IBinder>& object) {
    const std::string name = (fqNames.empty() ? "" : fqNames.front()) + "/" + instance;
    const auto service = fromBinder<IBase, BpHwBase, BnHwBase>(object);
    if (service == nullptr) {
        return BAD_VALUE;
    }
    // The context manager asks the object for its names itself, on this thread.
    const Return<bool> added = manager()->add(instance, service);
    if (!added.isOk()) {
        return explain("is not registered", name, statusOf(added));
    }
    return added ? OK : explain("is not registered", name, ALREADY_EXISTS);
}

sp<IBinder> KernelNames::get(const std::string& fqName, const std::string& instance, bool wait) {
    const std::string name = fqName + "/" + instance;
    bool waiting = false;
    while (true) {
        const uint64_t known = mArrivals->count();
        const Return<sp<IBase>> found = manager()->get(fqName, instance);
        if (!found.isOk()) {
            explain("can not be looked up", name, statusOf(found));
            return nullptr;
        }
        const sp<IBase> object = found;
        if (object != nullptr) {
            return getOrCreateCachedBinder(object.get());
        }
        if (!wait) {
            ALOGI("%s is not registered on %s", name.c_str(), mTransport.driver().path().c_str());
            return nullptr;
        }
        if (!waiting) {
            waiting = true;
            ALOGI("waiting for %s on %s", name.c_str(), mTransport.driver().path().c_str());
            waitFor(fqName, instance);
            continue;  // it may have come in between
        }
        mArrivals->waitBeyond(known);
    }
}

/** Has the context manager tell us of a name. Where it does not, we ask by ourselves. */
bool KernelNames::waitFor(const std::string& fqName, const std::string& instance) {
    {
        const CheckedLock lock(mLock);
        if (!mWanted.insert(fqName + "/" + instance).second) {
            return true;
        }
    }
    const Return<bool> told = manager()->registerForNotifications(fqName, instance, mArrivals);
    const bool isTold = told.isOk() && told;
    ALOGW_IF(!isTold, "nobody tells of %s/%s: it is asked for", fqName.c_str(), instance.c_str());
    return isTold;
}

sp<BHwBinder> localObjectOf(const sp<IBase>& object) {
    const sp<IBinder> binder = object == nullptr ? nullptr : getOrCreateCachedBinder(object.get());
    return binder == nullptr ? nullptr : binder->localBinder();
}

}  // namespace android::hardware
