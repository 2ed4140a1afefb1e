#include "tools/fapictl/Engine.h"

#include <android/hidl/manager/1.0/IServiceManager.h>
#include <hidl/HidlTransportSupport.h>
#include <hidl/ServiceManagement.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <set>
#include <thread>
#include <tuple>

#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"

namespace fapictl {

using std::chrono::steady_clock;

/** Hears of every registration that somebody has asked about; called on a thread of the runtime. */
class Engine::Arrivals : public IServiceNotification {
  public:
    using Key = std::pair<std::string, std::string>;  // descriptor, instance

    android::hardware::Return<void> onRegistration(const android::hardware::hidl_string& name,
                                                   const android::hardware::hidl_string& instance,
                                                   bool) override {
        const std::lock_guard<std::mutex> lock(mMutex);
        mHeard.emplace(name, instance);
        ++mCount;
        mChanged.notify_all();
        return android::hardware::Void();
    }

    /** Whether that is new: the registry forgets no listener, so it is asked once about each. */
    bool listenFor(const Interface& interface, const std::string& instance) {
        const Key key(interface.descriptor, instance);
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            if (!mListened.insert(key).second) {
                return false;
            }
        }
        if (!interface.notify(instance, this)) {
            const std::lock_guard<std::mutex> lock(mMutex);
            mListened.erase(key);
            throw Failure(Exit::Transport, "the service registry cannot be watched");
        }
        return true;
    }

    /** Who has been heard of, and after how many reports. */
    std::set<Key> heard(uint64_t& count) {
        const std::lock_guard<std::mutex> lock(mMutex);
        count = mCount;
        return mHeard;
    }
    /** Waits for a report beyond that many; false when none was in time. */
    bool waitForMore(uint64_t count, std::optional<steady_clock::time_point> deadline) {
        std::unique_lock<std::mutex> lock(mMutex);
        const auto more = [&] { return mCount != count; };
        if (deadline) {
            return mChanged.wait_until(lock, *deadline, more);
        }
        mChanged.wait(lock, more);
        return true;
    }

  private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    // Guarded by mMutex.
    std::set<Key> mListened;
    std::set<Key> mHeard;
    uint64_t mCount = 0;
};

/** The services that were found and live. Its links to their deaths hold it. */
class Engine::Kept : public std::enable_shared_from_this<Kept> {
  public:
    using Key = std::pair<const Interface*, std::string>;

    /** Null when it is not known, or has died. */
    sp<IBase> get(const Key& key) {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto at = mServices.find(key);
        return at == mServices.end() ? nullptr : at->second.service;
    }

    /** Does not keep one whose death would not be told. */
    void put(const Key& key, const sp<IBase>& service) {
        const sp<Notice> notice = new Notice(weak_from_this(), key);
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            mServices[key] = {service, notice};
        }
        const android::hardware::Return<bool> linked = service->linkToDeath(notice, 0);
        if (!linked.isOk() || !linked) {
            drop(key, *notice);
        }
    }

  private:
    class Notice : public android::hardware::hidl_death_recipient {
      public:
        Notice(std::weak_ptr<Kept> kept, Key key) : mKept(std::move(kept)), mKey(std::move(key)) {}
        void serviceDied(uint64_t, const android::wp<IBase>&) override {
            if (const std::shared_ptr<Kept> kept = mKept.lock()) {
                kept->drop(mKey, *this);
            }
        }

      private:
        const std::weak_ptr<Kept> mKept;
        const Key mKey;
    };
    struct Entry {
        sp<IBase> service;
        sp<Notice> notice;
    };

    /** Another service may have that name by now. */
    void drop(const Key& key, const Notice& notice) {
        Entry dropped;  // its end runs code of the runtime
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto at = mServices.find(key);
        if (at != mServices.end() && at->second.notice.get() == &notice) {
            dropped = std::move(at->second);
            mServices.erase(at);
        }
    }

    std::mutex mMutex;
    std::map<Key, Entry> mServices;  // guarded by mMutex
};

Engine::Engine(const Package& package, Services services)
    : mPackage(package), mKept(services == Services::Keep ? std::make_shared<Kept>() : nullptr) {}

Engine::~Engine() = default;

sp<IBase> Engine::find(const Interface& interface, const Target& target) {
    const Kept::Key key(&interface, target.instance);
    if (mKept != nullptr) {
        if (sp<IBase> kept = mKept->get(key); kept != nullptr) {
            return kept;
        }
    }
    if (target.seconds) {
        wait({&interface}, target);
    }
    sp<IBase> service = interface.find(target.instance);
    if (service == nullptr) {
        throw Failure(Exit::NotFound, interface.descriptor + "/" + target.instance + " is not registered" +
                                              (target.seconds ? " in time" : "; is the service running?"));
    }
    if (mKept != nullptr) {
        mKept->put(key, service);
    }
    return service;
}

Answer Engine::call(const Interface& interface, const Method& method, const Json& arguments,
                    const Target& target) {
    const sp<IBase> service = find(interface, target);
    const auto start = steady_clock::now();
    Reply reply = method.call(*service, arguments);
    Answer answer;
    answer.milliseconds = std::chrono::duration<double, std::milli>(steady_clock::now() - start).count();
    if (!reply.failure.empty()) {
        Failure failure(Exit::Transport,
                        (reply.dead ? "the service died during the call: " : "the call failed: ") +
                                escaped(reply.failure));
        failure.dead = reply.dead;
        throw failure;
    }
    answer.results = std::move(reply.results);
    if (const std::optional<size_t> outcome = method.outcome()) {
        const Json& value = answer.results[*outcome];
        if (value.is_boolean()) {
            answer.failed = !value.get<bool>();
        } else {
            answer.status = value.get<int64_t>();
            answer.failed = *answer.status != 0;
            answer.statusName = mStatuses.name(mPackage, target.instance, *answer.status);
            if (!isServiceStatus(*answer.status)) {
                answer.reason = mStatuses.refusal(mPackage, target.instance, method, arguments);
            }
        }
    }
    return answer;
}

std::vector<const Interface*> Engine::wait(const std::vector<const Interface*>& interfaces,
                                           const Target& target) {
    std::optional<steady_clock::time_point> deadline;
    if (target.seconds) {
        deadline = steady_clock::now() + std::chrono::duration_cast<steady_clock::duration>(
                                                 std::chrono::duration<double>(*target.seconds));
    }
    sp<Arrivals> arrivals;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mArrivals == nullptr) {
            // They come in as calls: they need a thread of their own.
            android::hardware::configureRpcThreadpool(1, false);
            mArrivals = new Arrivals;
        }
        arrivals = mArrivals;
    }
    std::set<const Interface*> heardBefore;  // or not: they may also have gone since then
    for (const Interface* interface : interfaces) {
        if (!arrivals->listenFor(*interface, target.instance)) {
            heardBefore.insert(interface);
        }
    }
    while (true) {
        uint64_t count = 0;
        const std::set<Arrivals::Key> heard = arrivals->heard(count);
        const std::vector<Instance> registered =
                heardBefore.empty() ? std::vector<Instance>() : registeredServices();
        const auto isThere = [&](const Interface* one) {
            return heard.count({one->descriptor, target.instance}) > 0 &&
                   (heardBefore.count(one) == 0 ||
                    std::any_of(registered.begin(), registered.end(), [&](const Instance& instance) {
                        return instance.interface == one->descriptor && instance.name == target.instance;
                    }));
        };
        std::vector<const Interface*> missing = interfaces;
        missing.erase(std::remove_if(missing.begin(), missing.end(), isThere), missing.end());
        if (missing.empty() || !arrivals->waitForMore(count, deadline)) {
            return missing;
        }
    }
}

Failure refused(const std::string& what, const Answer& answer) {
    Failure failure(Exit::Status,
                    what + ": status " + std::to_string(*answer.status) + " (" + answer.statusName + ")");
    failure.status = answer.status;
    return failure;
}

void Engine::waitUntilReady(const Target& target, steady_clock::time_point begin) {
    constexpr auto kPause = std::chrono::milliseconds(20);
    constexpr int64_t kNotReady = -5;
    const Interface& information = findInterface(mPackage, "Information");
    const Method& version = findMethod(information, "get_fapi_sw_version");
    while (true) {
        Target left = target;
        if (target.seconds) {
            const std::chrono::duration<double> spent = steady_clock::now() - begin;
            left.seconds = std::max(0.0, *target.seconds - spent.count());
        }
        try {
            if (call(information, version, Json::array(), left).status != kNotReady) {
                return;
            }
        } catch (const Failure& failure) {
            // It may be on its way back.
            if (!failure.dead && failure.code != Exit::NotFound) {
                throw;
            }
        }
        if (left.seconds && *left.seconds <= 0) {
            throw Failure(Exit::NotFound, "not ready within " + Json(*target.seconds).dump() + " s");
        }
        std::this_thread::sleep_for(kPause);
    }
}

Failure notInTime(size_t missing, size_t wanted, const Target& target) {
    return {Exit::NotFound, std::to_string(missing) + " of " + std::to_string(wanted) +
                                    " not registered within " + Json(*target.seconds).dump() + " s"};
}

std::vector<Instance> registeredServices() {
    using android::hidl::manager::V1_0::IServiceManager;
    const sp<IServiceManager> manager = android::hardware::defaultServiceManager();
    if (manager == nullptr) {
        throw Failure(Exit::Transport, "there is no service registry");
    }
    std::vector<Instance> instances;
    const auto status = manager->debugDump([&](const auto& infos) {
        for (const IServiceManager::InstanceDebugInfo& info : infos) {
            instances.push_back({info.interfaceName, info.instanceName, info.pid});
        }
    });
    if (!status.isOk()) {
        throw Failure(Exit::Transport, "the service registry did not answer: " + status.description());
    }
    std::sort(instances.begin(), instances.end(), [](const Instance& a, const Instance& b) {
        return std::tie(a.interface, a.name) < std::tie(b.interface, b.name);
    });
    return instances;
}

std::vector<const Interface*> selectServices(const Package& package, const std::vector<std::string>& names) {
    std::vector<const Interface*> wanted;
    for (const std::string& name : names.empty() ? std::vector<std::string>{"*"} : names) {
        for (const Interface* interface : selectInterfaces(package, name)) {
            if (interface->isService) {
                wanted.push_back(interface);
            } else if (!isPattern(name)) {
                throw Failure(Exit::Usage,
                              shortName(*interface) + " is implemented by clients, it is never registered");
            }
        }
    }
    std::sort(wanted.begin(), wanted.end(), [](auto a, auto b) { return a->descriptor < b->descriptor; });
    wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());
    return wanted;
}

const Interface& findCallable(const Package& package, const std::string& name) {
    const Interface& interface = findInterface(package, name);
    if (!interface.isService) {
        throw Failure(Exit::Usage, shortName(interface) + " is implemented by clients, it cannot be called");
    }
    return interface;
}

}  // namespace fapictl
