#include "tools/fapictl/Watcher.h"

#include <hidl/HidlTransportSupport.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiCallbackManager.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Statuses.h"
#include "tools/fapictl/Text.h"

namespace fapictl {

using android::hardware::Return;
using android::hardware::Void;
using std::chrono::steady_clock;
using vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiCallbackManager;
using vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiManager;

namespace {

/** The service's last events may come in after the notice of its death: how long without one is the end. */
constexpr auto kAfterDeath = std::chrono::milliseconds(200);

}  // namespace

/** One registration with one service. */
struct Watches::Channel {
    using Listeners = std::vector<std::shared_ptr<EventListener>>;

    /** False when the service has died. */
    bool add(const std::shared_ptr<EventListener>& listener) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!dead) {
            listeners.push_back(listener);
        }
        return !dead;
    }
    void remove(const std::shared_ptr<EventListener>& listener) {
        const std::lock_guard<std::mutex> lock(mutex);
        listeners.erase(std::remove(listeners.begin(), listeners.end(), listener), listeners.end());
    }
    void tell(const Event& event) {
        const std::lock_guard<std::mutex> lock(mutex);
        last = steady_clock::now();
        for (const std::shared_ptr<EventListener>& listener : listeners) {
            listener->take(event);
        }
    }
    void die() {
        const std::lock_guard<std::mutex> lock(mutex);
        dead = true;
        last = steady_clock::now();
    }
    /** Waits until no more of the dead service's events come in, and says so. */
    void end() {
        Listeners told;
        while (true) {
            steady_clock::time_point quiet;
            {
                const std::lock_guard<std::mutex> lock(mutex);
                quiet = last + kAfterDeath;
                if (quiet <= steady_clock::now()) {
                    told.swap(listeners);
                    break;
                }
            }
            std::this_thread::sleep_until(quiet);
        }
        for (const std::shared_ptr<EventListener>& listener : told) {
            listener->died();
        }
    }

    std::mutex mutex;
    // Guarded by mutex.
    Listeners listeners;
    bool dead = false;
    steady_clock::time_point last;  // event, or the death
};

/** The service of an instance's name. Held while somebody registers with it. */
struct Watches::Place {
    std::mutex mutex;
    // Guarded by mutex.
    std::shared_ptr<Channel> channel;
    // Its death is told while we have both.
    sp<IBase> manager;
    sp<android::hardware::hidl_death_recipient> notice;
};

namespace {

/** What a manager calls. */
class Watcher : public IZvtTvFApiCallbackManager {
  public:
    using Object = vendor::zentrovi::tv::zvttvfactory::V1_0::ZvtTvFApiEventCommonObject;

    explicit Watcher(std::function<void(const Event&)> sink) : mSink(std::move(sink)) {}

#define FAPICTL_WATCH(method, module)                                                                   \
    android::hardware::Return<void> method(uint32_t type, const Object& object1, const Object& object2, \
                                           const Object& object3, const Object& object4) override {     \
        return take(module, type, {&object1, &object2, &object3, &object4});                            \
    }
    FAPICTL_WATCH(notifySysEvent, "sys")
    FAPICTL_WATCH(notifyDispEvent, "disp")
    FAPICTL_WATCH(notifyDispTstEvent, "disptst")
    FAPICTL_WATCH(notifyInfoEvent, "info")
    FAPICTL_WATCH(notifyInpSrcEvent, "inpsrc")
    FAPICTL_WATCH(notifyPrphrlEvent, "prphrl")
    FAPICTL_WATCH(notifyAudEvent, "aud")
    FAPICTL_WATCH(notifyNetEvent, "net")
    FAPICTL_WATCH(notifyTvEvent, "tv")
#undef FAPICTL_WATCH

  private:
    Return<void> take(const char* module, uint32_t type, const std::array<const Object*, 4>& objects) {
        Event event;
        event.time = std::chrono::system_clock::now();
        event.module = module;
        event.type = type;
        for (size_t i = 0; i < objects.size(); ++i) {
            const Object& object = *objects[i];
            event.records[i].value = object.u32Value;
            event.records[i].text.assign(object.strValue.c_str(), object.strValue.size());
            event.records[i].bytes.assign(object.vecValue.begin(), object.vecValue.end());
        }
        mSink(event);
        return Void();
    }

    const std::function<void(const Event&)> mSink;
};

class DeathNotice : public android::hardware::hidl_death_recipient {
  public:
    explicit DeathNotice(std::function<void()> died) : mDied(std::move(died)) {}
    void serviceDied(uint64_t, const android::wp<IBase>&) override { mDied(); }

  private:
    const std::function<void()> mDied;
};

/** Registers with a service's manager, which is returned. Throws Failure (Transport, Status). */
sp<IBase> subscribe(const sp<IBase>& service, const sp<Watcher>& watcher, const sp<DeathNotice>& notice) {
    // One thread: events are queued in the order in which they come in.
    android::hardware::configureRpcThreadpool(1, false);
    const sp<IZvtTvFApiManager> manager = IZvtTvFApiManager::castFrom(service);
    if (manager == nullptr) {
        throw Failure(Exit::Transport, "the service is no event manager");
    }
    if (const Return<bool> linked = manager->linkToDeath(notice, 0); !linked.isOk() || !linked) {
        Failure failure(Exit::Transport, "the service died before events could be watched");
        failure.dead = true;
        throw failure;
    }
    const Return<int32_t> status = manager->a_hidl_a_zvttvfapi_mngr_set_callback(watcher);
    if (!status.isOk()) {
        Failure failure(Exit::Transport, "events cannot be watched: " + escaped(status.description()));
        failure.dead = status.isDeadObject();
        throw failure;
    }
    const int32_t number = status;
    if (number != 0) {
        Failure failure(Exit::Status, "the service refused the callback: " + std::to_string(number) + " (" +
                                              statusName(number) + ")");
        failure.status = number;
        throw failure;
    }
    return manager;
}

}  // namespace

void Watches::Subscription::end() {
    if (mChannel != nullptr) {
        mChannel->remove(mListener);
    }
}

Watches::Watches() = default;

Watches::~Watches() = default;

Watches::Subscription Watches::add(Engine& engine, const Target& target,
                                   std::shared_ptr<EventListener> listener) {
    std::shared_ptr<Place> place;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        std::shared_ptr<Place>& known = mPlaces[target.instance];
        if (known == nullptr) {
            known = std::make_shared<Place>();
        }
        place = known;
    }
    const std::lock_guard<std::mutex> registering(place->mutex);
    if (place->channel == nullptr || !place->channel->add(listener)) {
        const auto channel = std::make_shared<Channel>();
        channel->listeners = {listener};
        const sp<IBase> service = engine.find(findInterface(engine.package(), "Manager"), target);
        // It stays with the runtime, and the channel with it.
        const sp<Watcher> watcher = new Watcher([channel](const Event& event) { channel->tell(event); });
        const sp<DeathNotice> notice = new DeathNotice([channel] {
            channel->die();
            try {
                std::thread([channel] { channel->end(); }).detach();
            } catch (const std::system_error&) {
                channel->end();
            }
        });
        place->manager = subscribe(service, watcher, notice);
        place->notice = notice;
        place->channel = channel;
    }
    Subscription subscription;
    subscription.mChannel = place->channel;
    subscription.mListener = std::move(listener);
    return subscription;
}

}  // namespace fapictl
