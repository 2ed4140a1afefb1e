#pragma once

#include <android/hidl/manager/1.0/IServiceManager.h>
#include <hidl/HidlTransportSupport.h>
#include <log/log.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <string>

namespace android::hardware {

/** The registry of services, as an object of this process. Never null. */
sp<::android::hidl::manager::V1_0::IServiceManager> defaultServiceManager();

namespace details {

/**
 * Registers an object under all names of its interface chain but IBase's, and lets calls to it run.
 *
 * @return OK; ALREADY_EXISTS when a live process, this one included, holds one of the names; BAD_VALUE for a
 *     name that the registry can not hold; PERMISSION_DENIED when the registry's directory is not
 * trustworthy. On failure no name stays taken.
 */
status_t registerAsServiceInternal(const sp<::android::hidl::base::V1_0::IBase>& service,
                                   const std::string& instance);

/**
 * The registered object; with retry, waits until there is one.
 *
 * @return null when there is none, and when the registry can not be used
 */
sp<IBinder> getServiceBinder(const char* descriptor, const std::string& instance, bool retry, bool getStub);

template <typename Proxy>
sp<typename Proxy::Pure> getServiceInternal(const std::string& instance, bool retry, bool getStub) {
    using Interface = typename Proxy::Pure;
    return fromBinder<Interface, Proxy, ::android::hidl::base::V1_0::BnHwBase>(
            getServiceBinder(Interface::descriptor, instance, retry, getStub));
}

}  // namespace details

}  // namespace android::hardware
