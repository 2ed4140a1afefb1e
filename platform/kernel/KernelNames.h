#pragma once

#include <android/hidl/manager/1.0/IServiceManager.h>

#include <set>

#include "platform/binding/Backend.h"
#include "platform/binding/CheckedLock.h"
#include "platform/kernel/KernelTransport.h"

namespace android::hardware {

/** Names as the context manager of the device keeps them. */
class KernelNames final : public Names {
  public:
    explicit KernelNames(KernelTransport& transport);
    ~KernelNames();

    status_t add(const std::vector<std::string>& fqNames, const std::string& instance,
                 const sp<IBinder>& object) override;
    sp<IBinder> get(const std::string& fqName, const std::string& instance, bool wait) override;
    sp<::android::hidl::manager::V1_0::IServiceManager> manager() override;

  private:
    class Arrivals;

    bool waitFor(const std::string& fqName, const std::string& instance);

    KernelTransport& mTransport;
    const sp<Arrivals> mArrivals;

    CheckedMutex mLock;
    std::set<std::string> mWanted GUARDED_BY(mLock);  // names whose registration we are told of
};

/** The stub of an object of this process. */
sp<BHwBinder> localObjectOf(const sp<::android::hidl::base::V1_0::IBase>& object);

}  // namespace android::hardware
