#define LOG_TAG "hidl"

#include "platform/socket/SocketBackend.h"

#include <log/log.h>
#include <unistd.h>

#include <mutex>
#include <optional>

#include "platform/binding/StatusText.h"
#include "platform/socket/Call.h"
#include "platform/socket/Registry.h"
#include "platform/socket/ServiceManager.h"
#include "platform/socket/Transport.h"

using ::android::hidl::manager::V1_0::IServiceManager;

namespace android::hardware {

namespace {

/** How soon a service whose process is there but can not be reached is tried again. */
constexpr int kUnreachableMilliseconds = 200;

class SocketNames final : public Names {
  public:
    explicit SocketNames(Transport& transport)
        : mTransport(transport),
          mRegistry(Registry::defaultPath()),
          mManager(new ServiceManager(mRegistry, *this)) {}

    status_t add(const std::vector<std::string>& fqNames, const std::string& instance,
                 const sp<IBinder>& object) override {
        ObjectReference reference;
        status_t status = mTransport.publish(object, &reference);
        if (status == OK) {
            keepNames();
            status = takeAll(fqNames, instance, reference);
            if (status != OK) {
                mTransport.withdraw(reference);
            }
        }
        return status;
    }

    sp<IBinder> get(const std::string& fqName, const std::string& instance, bool wait) override {
        const char* const name = fqName.c_str();
        Registry::Watch watch;
        bool watching = false;
        while (true) {
            ObjectReference reference;
            pid_t pid = 0;
            sp<IBinder> object;
            status_t status = mRegistry.find(fqName, instance, &reference, &pid);
            const bool found = status == OK;
            if (found) {
                status = mTransport.resolve(reference, &object);
                if (status == OK) {
                    return object;
                }
                ALOGW("%s/%s, process %d, can not be reached: %s", name, instance.c_str(), pid,
                      statusText(status).c_str());
            } else if (status != NAME_NOT_FOUND) {
                ALOGE("%s/%s can not be looked up in %s: %s", name, instance.c_str(),
                      mRegistry.path().c_str(), statusText(status).c_str());
                return nullptr;
            }
            if (!wait) {
                ALOGI_IF(!found, "%s/%s is not registered in %s", name, instance.c_str(),
                         mRegistry.path().c_str());
                return nullptr;
            }
            if (watching) {
                watch.wait(found ? kUnreachableMilliseconds : -1);
                continue;
            }
            // It may have come before the watch: look again before waiting.
            status = watch.start(mRegistry);
            if (status != OK) {
                ALOGE("%s/%s can not be waited for: %s", name, instance.c_str(), statusText(status).c_str());
                return nullptr;
            }
            watching = true;
            ALOGI("waiting for %s/%s in %s", name, instance.c_str(), mRegistry.path().c_str());
        }
    }

    sp<IServiceManager> manager() override { return mManager; }

  private:
    /**
     * Has names that are held put back when their files are deleted. A process that can not watch them
     * registers all the same, and tries again with its next registration.
     */
    void keepNames() {
        int changes = -1;
        status_t status = mRegistry.changes(&changes);
        if (status == OK) {
            status = mTransport.whenReadable(changes, [this] { mRegistry.restore(); });
        }
        ALOGW_IF(status != OK, "names whose files are deleted will be lost: %s", statusText(status).c_str());
    }

    /** All of them or none: what was taken before stays taken. */
    status_t takeAll(const std::vector<std::string>& names, const std::string& instance,
                     const ObjectReference& reference) {
        for (size_t i = 0; i < names.size(); ++i) {
            const status_t status = mRegistry.take(names[i], instance, reference);
            if (status != OK) {
                ALOGE("%s/%s is not registered: %s", names[i].c_str(), instance.c_str(),
                      status == ALREADY_EXISTS ? "a live process holds the name"
                                               : statusText(status).c_str());
                while (i-- > 0) {
                    mRegistry.release(names[i], instance);
                }
                return status;
            }
        }
        return OK;
    }

    Transport& mTransport;
    Registry mRegistry;
    const sp<IServiceManager> mManager;
};

class SocketBackend final : public Backend {
  public:
    void setMaxThreads(size_t maxThreads, bool callerWillJoin) override {
        mTransport.pool().setMaxThreads(maxThreads, callerWillJoin);
    }
    void startThreadPool() override { mTransport.pool().start(); }
    void joinThreadPool() override { mTransport.pool().join(); }
    Names& names() override {
        // When it is first asked for: until then a program may say where names are kept.
        std::call_once(mNamesMade, [this] { mNames.emplace(mTransport); });
        return *mNames;
    }
    Credentials caller() override {
        const Peer* const peer = peerServed();
        return peer != nullptr ? peer->credentials() : Credentials{getpid(), getuid()};
    }

  private:
    Transport mTransport;
    std::once_flag mNamesMade;
    std::optional<SocketNames> mNames;
};

}  // namespace

std::unique_ptr<Backend> makeSocketBackend() {
    return std::make_unique<SocketBackend>();
}

}  // namespace android::hardware
