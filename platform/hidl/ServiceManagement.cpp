#define LOG_TAG "hidl"

#include <hidl/ServiceManagement.h>
#include <log/log.h>

#include <vector>

#include "platform/hidl/ServiceManager.h"
#include "platform/hidl/StatusText.h"
#include "platform/socket/Registry.h"
#include "platform/socket/Transport.h"

using ::android::hidl::base::V1_0::IBase;
using ::android::hidl::manager::V1_0::IServiceManager;

namespace android::hardware {

namespace {

/** How soon a service whose process is there but can not be reached is tried again. */
constexpr int kUnreachableMilliseconds = 200;

/** The process's own; never destroyed, as names are held until the process ends. */
Registry& registry() {
    static auto* const instance = new Registry(Registry::defaultPath());
    return *instance;
}

/**
 * Has names that are held put back when their files are deleted. A process that can not watch them registers
 * all the same, and tries again with its next registration.
 */
void keepNames() {
    int changes = -1;
    status_t status = registry().changes(&changes);
    if (status == OK) {
        status = Transport::self().whenReadable(changes, [] { registry().restore(); });
    }
    ALOGW_IF(status != OK, "names whose files are deleted will be lost: %s", statusText(status).c_str());
}

/** All of them or none: what was taken before stays taken. */
status_t takeAll(const std::vector<std::string>& names, const std::string& instance,
                 const ObjectReference& reference) {
    for (size_t i = 0; i < names.size(); ++i) {
        const status_t status = registry().take(names[i], instance, reference);
        if (status != OK) {
            ALOGE("%s/%s is not registered: %s", names[i].c_str(), instance.c_str(),
                  status == ALREADY_EXISTS ? "a live process holds the name" : statusText(status).c_str());
            while (i-- > 0) {
                registry().release(names[i], instance);
            }
            return status;
        }
    }
    return OK;
}

}  // namespace

sp<IServiceManager> defaultServiceManager() {
    static auto* const manager = new sp<IServiceManager>(new ServiceManager(registry()));
    return *manager;
}

namespace details {

status_t registerAsServiceInternal(const sp<IBase>& service, const std::string& instance) {
    if (service == nullptr) {
        return UNEXPECTED_NULL;
    }
    std::vector<std::string> names;
    const Return<void> asked = service->interfaceChain([&](const hidl_vec<hidl_string>& chain) {
        for (const hidl_string& name : chain) {
            if (name != IBase::descriptor) {
                names.emplace_back(name);
            }
        }
    });
    const sp<IBinder> object = getOrCreateCachedBinder(service.get());
    if (!asked.isOk() || names.empty() || object == nullptr) {
        ALOGE("an object without an interface of its own can not be registered as %s", instance.c_str());
        return INVALID_OPERATION;
    }
    ObjectReference reference;
    status_t status = Transport::self().publish(object, &reference);
    if (status == OK) {
        keepNames();
        status = takeAll(names, instance, reference);
        if (status != OK) {
            Transport::self().withdraw(reference);
        }
    }
    if (status == OK) {
        Transport::self().startThreadPool();
    }
    return status;
}

sp<IBinder> getServiceBinder(const char* descriptor, const std::string& instance, bool retry, bool getStub) {
    if (getStub) {
        ALOGE("%s/%s can not be loaded into this process", descriptor, instance.c_str());
        return nullptr;
    }
    Registry::Watch watch;
    bool watching = false;
    while (true) {
        ObjectReference reference;
        pid_t pid = 0;
        sp<IBinder> object;
        status_t status = registry().find(descriptor, instance, &reference, &pid);
        const bool found = status == OK;
        if (found) {
            status = Transport::self().resolve(reference, &object);
            if (status == OK) {
                return object;
            }
            ALOGW("%s/%s, process %d, can not be reached: %s", descriptor, instance.c_str(), pid,
                  statusText(status).c_str());
        } else if (status != NAME_NOT_FOUND) {
            ALOGE("%s/%s can not be looked up in %s: %s", descriptor, instance.c_str(),
                  registry().path().c_str(), statusText(status).c_str());
            return nullptr;
        }
        if (!retry) {
            ALOGI_IF(!found, "%s/%s is not registered in %s", descriptor, instance.c_str(),
                     registry().path().c_str());
            return nullptr;
        }
        if (watching) {
            watch.wait(found ? kUnreachableMilliseconds : -1);
            continue;
        }
        // It may have come before the watch: look again before waiting.
        status = watch.start(registry());
        if (status != OK) {
            ALOGE("%s/%s can not be waited for: %s", descriptor, instance.c_str(),
                  statusText(status).c_str());
            return nullptr;
        }
        watching = true;
        ALOGI("waiting for %s/%s in %s", descriptor, instance.c_str(), registry().path().c_str());
    }
}

}  // namespace details

}  // namespace android::hardware
