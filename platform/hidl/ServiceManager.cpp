#define LOG_TAG "hidl.registry"

#include "platform/hidl/ServiceManager.h"

#include <log/log.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <list>
#include <optional>
#include <system_error>
#include <thread>

#include "platform/hidl/StatusText.h"

using ::android::hidl::manager::V1_0::IServiceNotification;

namespace android::hardware {

namespace {

bool isSame(const ObjectReference& left, const ObjectReference& right) {
    return left.endpoint == right.endpoint && left.object == right.object && left.nonce == right.nonce;
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
            return false;
        }
        const std::lock_guard lock(mLock);
        if (!mRunning && !start()) {
            return false;
        }
        mAdded.push_back(std::move(request));
        eventfd_write(mWake.get(), 1);
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
    bool start() {
        const status_t status = mWatch.start(mRegistry);
        mWake = UniqueFd(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
        if (status != OK || !mWake.ok()) {
            ALOGE("registrations can not be watched: %s",
                  status != OK ? statusText(status).c_str() : strerror(errno));
            return false;
        }
        try {
            std::thread([self = shared_from_this()] { self->run(); }).detach();
        } catch (const std::system_error& error) {
            ALOGE("registrations can not be watched: %s", error.what());
            return false;
        }
        mRunning = true;
        return true;
    }

    void run() {
        std::list<Request> requests;  // the thread's own, so that no lock is held while it calls
        while (true) {
            {
                const std::lock_guard lock(mLock);
                requests.splice(requests.end(), mAdded);
                if (requests.empty()) {
                    mRunning = false;
                    return;
                }
            }
            requests.remove_if([&](Request& request) { return !update(request); });
            wait();
        }
    }

    /** Tells of what is new; false when there is nobody to tell. */
    bool update(Request& request) {
        ObjectReference reference;
        pid_t pid = 0;
        if (mRegistry.find(request.fqName, request.instance, &reference, &pid) != OK) {
            request.told.reset();
            return true;
        }
        if (request.told && isSame(*request.told, reference)) {
            return true;
        }
        const bool preexisting = request.before && isSame(*request.before, reference);
        request.before.reset();
        request.told = reference;
        const Return<void> told =
                request.callback->onRegistration(request.fqName, request.instance, preexisting);
        ALOGW_IF(!told.isOk(), "%s/%s: its notification failed: %s", request.fqName.c_str(),
                 request.instance.c_str(), told.description().c_str());
        return !told.isDeadObject();
    }

    void wait() {
        pollfd waiting[] = {{mWatch.fd(), POLLIN, 0}, {mWake.get(), POLLIN, 0}};
        poll(waiting, 2, -1);
        eventfd_t count = 0;
        eventfd_read(mWake.get(), &count);
        mWatch.wait(0);
    }

    Registry& mRegistry;
    Registry::Watch mWatch;  // set before the thread starts
    UniqueFd mWake;          // likewise

    std::mutex mLock;  // guards the rest
    std::list<Request> mAdded;
    bool mRunning = false;
};

ServiceManager::ServiceManager(Registry& registry)
    : mRegistry(registry), mNotifier(std::make_shared<Notifier>(registry)) {}

Return<bool> ServiceManager::registerForNotifications(const hidl_string& fqName, const hidl_string& name,
                                                      const sp<IServiceNotification>& callback) {
    return callback != nullptr && mNotifier->add(fqName, name, callback);
}

Return<void> ServiceManager::list(list_cb _hidl_cb) {
    std::vector<RegistryEntry> entries;
    const status_t status = mRegistry.list(&entries);
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

Return<void> ServiceManager::debugDump(debugDump_cb _hidl_cb) {
    std::vector<RegistryEntry> entries;
    const status_t status = mRegistry.list(&entries);
    if (status != OK) {
        return Status::fromStatusT(status);
    }
    hidl_vec<InstanceDebugInfo> info;
    info.resize(entries.size());
    for (size_t i = 0; i < entries.size(); ++i) {
        info[i] = {entries[i].fqName, entries[i].instance, entries[i].pid};
    }
    _hidl_cb(info);
    return Void();
}

}  // namespace android::hardware
