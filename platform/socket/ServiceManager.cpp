#define LOG_TAG "hidl.registry"

#include "platform/socket/ServiceManager.h"

#include <log/log.h>

#include <exception>
#include <list>
#include <optional>
#include <thread>

#include "platform/binding/Backend.h"
#include "platform/binding/CheckedLock.h"
#include "platform/binding/Interfaces.h"
#include "platform/binding/StatusText.h"

using ::android::hidl::base::V1_0::DebugInfo;
using ::android::hidl::base::V1_0::IBase;
using ::android::hidl::manager::V1_0::IServiceNotification;

namespace android::hardware {

namespace {

/** How soon a name that could not be looked up is looked up again. */
constexpr int kRetryMilliseconds = 1000;

bool isSame(const ObjectReference& left, const ObjectReference& right) {
    return left.endpoint == right.endpoint && left.object == right.object && left.nonce == right.nonce;
}

DebugInfo::Architecture architectureOf(uint32_t pointerBytes) {
    return pointerBytes == 8   ? DebugInfo::Architecture::IS_64BIT
           : pointerBytes == 4 ? DebugInfo::Architecture::IS_32BIT
                               : DebugInfo::Architecture::UNKNOWN;
}

/** Says where it looked when there is nothing. */
status_t listAll(Registry& registry, std::vector<RegistryEntry>* entries) {
    const status_t status = registry.list(entries);
    ALOGE_IF(status != OK, "%s can not be listed: %s", registry.path().c_str(), statusText(status).c_str());
    ALOGI_IF(status == OK && entries->empty(), "nothing is registered in %s", registry.path().c_str());
    return status;
}

}  // namespace

/** Tells of registrations, on a thread that runs while somebody wants to be told. */
class ServiceManager::Notifier : public std::enable_shared_from_this<Notifier> {
  public:
    explicit Notifier(Registry& registry) : mRegistry(registry) {}

    bool add(const std::string& fqName, const std::string& instance,
             const sp<IServiceNotification>& callback) {
        Request request{fqName, instance, callback, {}, {}};
        ObjectReference reference;
        pid_t pid = 0;
        const status_t status = mRegistry.find(fqName, instance, &reference, &pid);
        if (status == OK) {
            request.before = reference;
        } else if (status != NAME_NOT_FOUND) {
            return refuse(statusText(status));
        }
        const CheckedLock lock(mLock);
        ALOGI_IF(status == NAME_NOT_FOUND && !mRunning, "waiting for %s/%s in %s", fqName.c_str(),
                 instance.c_str(), mRegistry.path().c_str());
        if (!mRunning && !start()) {
            return false;
        }
        mAdded.push_back(std::move(request));
        mRegistry.wakeWatches();
        return true;
    }

  private:
    struct Request {
        std::string fqName;
        std::string instance;
        sp<IServiceNotification> callback;
        std::optional<ObjectReference> before;  // what was there when it was made
        std::optional<ObjectReference> told;    // what it has been told of last
    };

    /** With mLock held and no thread running. */
    bool start() REQUIRES(mLock) {
        const status_t status = mWatch.start(mRegistry);
        if (status != OK) {
            return refuse(statusText(status));
        }
        try {
            std::thread([self = shared_from_this()] { self->run(); }).detach();
        } catch (const std::exception& error) {
            return refuse(error.what());
        }
        mRunning = true;
        return true;
    }

    static bool refuse(const std::string& reason) {
        ALOGE("registrations can not be watched: %s", reason.c_str());
        return false;
    }

    void run() {
        std::list<Request> requests;  // the thread's own, so that no lock is held while it calls
        while (true) {
            {
                const CheckedLock lock(mLock);
                requests.splice(requests.end(), mAdded);
                if (requests.empty()) {
                    mRunning = false;
                    return;
                }
            }
            bool complete = true;
            for (auto request = requests.begin(); request != requests.end();) {
                Told told = Told::Later;
                try {
                    told = update(*request);
                } catch (const std::exception& error) {
                    ALOGE("%s/%s: its notification failed: %s", request->fqName.c_str(),
                          request->instance.c_str(), error.what());
                }
                complete = complete && told != Told::Later;
                request = told == Told::Nobody ? requests.erase(request) : std::next(request);
            }
            mWatch.wait(complete ? -1 : kRetryMilliseconds);
        }
    }

    /** Whether a request's owner knows all, is to be told later, or is not there any more. */
    enum class Told { All, Later, Nobody };

    /** Tells of what is new. */
    Told update(Request& request) {
        ObjectReference reference;
        pid_t pid = 0;
        const status_t status = mRegistry.find(request.fqName, request.instance, &reference, &pid);
        if (status == NAME_NOT_FOUND) {
            request.told.reset();
            return Told::All;
        }
        if (status != OK) {
            // That we can not look now does not mean that it is gone.
            ALOGW("%s/%s can not be looked up: %s", request.fqName.c_str(), request.instance.c_str(),
                  statusText(status).c_str());
            return Told::Later;
        }
        if (request.told && isSame(*request.told, reference)) {
            return Told::All;
        }
        const bool preexisting = request.before && isSame(*request.before, reference);
        request.before.reset();
        request.told = reference;
        const Return<void> told =
                request.callback->onRegistration(request.fqName, request.instance, preexisting);
        ALOGW_IF(!told.isOk(), "%s/%s: its notification failed: %s", request.fqName.c_str(),
                 request.instance.c_str(), told.description().c_str());
        return told.isDeadObject() ? Told::Nobody : Told::All;
    }

    Registry& mRegistry;
    Registry::Watch mWatch;  // set before the thread starts, then the thread's own

    CheckedMutex mLock;
    std::list<Request> mAdded GUARDED_BY(mLock);
    bool mRunning GUARDED_BY(mLock) = false;
};

ServiceManager::ServiceManager(Registry& registry, Names& names)
    : mRegistry(registry), mNames(names), mNotifier(std::make_shared<Notifier>(registry)) {}

Return<sp<IBase>> ServiceManager::get(const hidl_string& fqName, const hidl_string& name) {
    return interfaceOf(mNames.get(fqName, name, false /* wait */));
}

Return<bool> ServiceManager::add(const hidl_string& name, const sp<IBase>& service) {
    return addTo(mNames, service, name) == OK;
}

Return<ServiceManager::Transport> ServiceManager::getTransport(const hidl_string& fqName,
                                                               const hidl_string& name) {
    ObjectReference reference;
    pid_t pid = 0;
    const status_t status = mRegistry.find(std::string(fqName), std::string(name), &reference, &pid);
    if (status == OK) {
        return Transport::HWBINDER;
    }
    if (status == NAME_NOT_FOUND || status == BAD_VALUE) {
        return Transport::EMPTY;
    }
    return Status::fromStatusT(status);
}

Return<bool> ServiceManager::registerForNotifications(const hidl_string& fqName, const hidl_string& name,
                                                      const sp<IServiceNotification>& callback) {
    return callback != nullptr && mNotifier->add(fqName, name, callback);
}

Return<void> ServiceManager::list(list_cb _hidl_cb) {
    std::vector<RegistryEntry> entries;
    const status_t status = listAll(mRegistry, &entries);
    if (status != OK) {
        return Status::fromStatusT(status);
    }
    hidl_vec<hidl_string> names;
    names.resize(entries.size());
    for (size_t i = 0; i < entries.size(); ++i) {
        names[i] = entries[i].fqName + "/" + entries[i].instance;
    }
    _hidl_cb(names);
    return Void();
}

Return<void> ServiceManager::listByInterface(const hidl_string& fqName, listByInterface_cb _hidl_cb) {
    std::vector<RegistryEntry> entries;
    const status_t status = listAll(mRegistry, &entries);
    if (status != OK) {
        return Status::fromStatusT(status);
    }
    std::vector<hidl_string> instances;
    for (const RegistryEntry& entry : entries) {
        if (fqName == entry.fqName.c_str()) {
            instances.emplace_back(entry.instance);
        }
    }
    _hidl_cb(instances);
    return Void();
}

Return<void> ServiceManager::debugDump(debugDump_cb _hidl_cb) {
    std::vector<RegistryEntry> entries;
    const status_t status = listAll(mRegistry, &entries);
    if (status != OK) {
        return Status::fromStatusT(status);
    }
    hidl_vec<InstanceDebugInfo> info;
    info.resize(entries.size());
    for (size_t i = 0; i < entries.size(); ++i) {
        info[i].interfaceName = entries[i].fqName;
        info[i].instanceName = entries[i].instance;
        info[i].pid = entries[i].pid;
        info[i].arch = architectureOf(entries[i].pointerBytes);
    }
    _hidl_cb(info);
    return Void();
}

Return<void> ServiceManager::registerPassthroughClient(const hidl_string& /* fqName */,
                                                       const hidl_string& /* name */) {
    return Void();
}

}  // namespace android::hardware
