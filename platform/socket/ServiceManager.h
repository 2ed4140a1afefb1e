#pragma once

#include <android/hidl/manager/1.0/IServiceManager.h>

#include <memory>

#include "platform/socket/Registry.h"

namespace android::hardware {

/** A registry as an object of this process. */
class ServiceManager final : public ::android::hidl::manager::V1_0::IServiceManager {
  public:
    /** The registry is used until the process ends. */
    explicit ServiceManager(Registry& registry);

    // Methods from ::android::hidl::manager::V1_0::IServiceManager follow.
    Return<bool> registerForNotifications(
            const hidl_string& fqName, const hidl_string& name,
            const sp<::android::hidl::manager::V1_0::IServiceNotification>& callback) override;
    Return<void> list(list_cb _hidl_cb) override;
    Return<void> debugDump(debugDump_cb _hidl_cb) override;

  private:
    class Notifier;

    Registry& mRegistry;
    const std::shared_ptr<Notifier> mNotifier;
};

}  // namespace android::hardware
