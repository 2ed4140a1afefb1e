#define LOG_TAG "hidl"

#include <android/hidl/base/1.0/BpHwBase.h>
#include <hidl/ServiceManagement.h>
#include <log/log.h>

#include <new>
#include <vector>

#include "platform/binding/Backend.h"
#include "platform/binding/Interfaces.h"

using ::android::hidl::base::V1_0::BnHwBase;
using ::android::hidl::base::V1_0::BpHwBase;
using ::android::hidl::base::V1_0::IBase;
using ::android::hidl::manager::V1_0::IServiceManager;

namespace android::hardware {

sp<IServiceManager> defaultServiceManager() {
    return Backend::self().names().manager();
}

sp<IBase> interfaceOf(const sp<IBinder>& object) {
    return fromBinder<IBase, BpHwBase, BnHwBase>(object);
}

status_t addTo(Names& names, const sp<IBase>& service, const std::string& instance) {
    if (service == nullptr) {
        return UNEXPECTED_NULL;
    }
    std::vector<std::string> interfaces;
    bool lacksMemory = false;
    const Return<void> asked = service->interfaceChain([&](const hidl_vec<hidl_string>& chain) {
        try {
            for (const hidl_string& name : chain) {
                if (name != IBase::descriptor) {
                    interfaces.emplace_back(name);
                }
            }
        } catch (const std::bad_alloc&) {  // who calls this knows no exceptions
            lacksMemory = true;
        }
    });
    if (lacksMemory) {
        return NO_MEMORY;
    }
    const sp<IBinder> object = getOrCreateCachedBinder(service.get());
    if (!asked.isOk() || interfaces.empty() || object == nullptr) {
        ALOGE("an object without an interface of its own can not be registered as %s", instance.c_str());
        return INVALID_OPERATION;
    }
    const status_t status = names.add(interfaces, instance, object);
    if (status == OK) {
        Backend::self().startThreadPool();
    }
    return status;
}

namespace details {

status_t registerAsServiceInternal(const sp<IBase>& service, const std::string& instance) {
    try {
        return addTo(Backend::self().names(), service, instance);
    } catch (const std::bad_alloc&) {
        return NO_MEMORY;
    }
}

sp<IBinder> getServiceBinder(const char* descriptor, const std::string& instance, bool retry, bool getStub) {
    if (getStub) {
        ALOGE("%s/%s can not be loaded into this process", descriptor, instance.c_str());
        return nullptr;
    }
    try {
        return Backend::self().names().get(descriptor, instance, retry);
    } catch (const std::bad_alloc&) {
        ALOGE("no memory to ask for %s/%s", descriptor, instance.c_str());
        return nullptr;
    }
}

}  // namespace details

}  // namespace android::hardware
