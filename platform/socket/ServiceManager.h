#pragma once

#include <android/hidl/manager/1.0/IServiceManager.h>

#include <memory>

#include "platform/socket/Registry.h"

namespace android::hardware {

class Names;

/** A registry as an object of this process. */
class ServiceManager final : public ::android::hidl::manager::V1_0::IServiceManager {
  public:
    /**
     * @param registry is used until the process ends
     * @param names what it holds, as objects
     */
    ServiceManager(Registry& registry, Names& names);

    // Methods from ::android::hidl::manager::V1_0::IServiceManager follow.
    Return<sp<::android::hidl::base::V1_0::IBase>> get(const hidl_string& fqName,
                                                       const hidl_string& name) override;
    /** An object of this process only: who registers another's would keep its name when it dies. */
    Return<bool> add(const hidl_string& name, const sp<::android::hidl::base::V1_0::IBase>& service) override;
    Return<Transport> getTransport(const hidl_string& fqName, const hidl_string& name) override;
    Return<void> list(list_cb _hidl_cb) override;
    Return<void> listByInterface(const hidl_string& fqName, listByInterface_cb _hidl_cb) override;
    Return<bool> registerForNotifications(
            const hidl_string& fqName, const hidl_string& name,
            const sp<::android::hidl::manager::V1_0::IServiceNotification>& callback) override;
    /** Who uses a service is not known here: there is no process that all of them ask. */
    Return<void> debugDump(debugDump_cb _hidl_cb) override;
    /** Notes nothing: no library is loaded as a service on a host. */
    Return<void> registerPassthroughClient(const hidl_string& fqName, const hidl_string& name) override;

  private:
    class Notifier;

    Registry& mRegistry;
    Names& mNames;
    const std::shared_ptr<Notifier> mNotifier;
};

}  // namespace android::hardware
