// A client of the factory service: reads the version of the chip-layer library, shows events as they come,
// and is back as soon as a service that died is.
//
// factory-client [SECONDS]     ends when there has been no service, or none that was ready, for so long (10)

#include <android/hidl/manager/1.0/IServiceNotification.h>
#include <hidl/HidlSupport.h>
#include <hidl/HidlTransportSupport.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiCallbackManager.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiInformation.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

using android::sp;
using android::wp;
using android::hardware::hidl_string;
using android::hardware::Return;
using android::hardware::Void;
using android::hidl::base::V1_0::IBase;
using android::hidl::manager::V1_0::IServiceNotification;
using Clock = std::chrono::steady_clock;
using namespace vendor::zentrovi::tv::zvttvfactory::V1_0;

constexpr int32_t kNotReady = -5;  // the service is there, the chip-layer library is not yet
constexpr auto kPause = std::chrono::milliseconds(200);  // until the library is asked again

/** Called by the service, on the one thread of our pool: what takes long would delay the events behind it. */
class Events : public IZvtTvFApiCallbackManager {
    using Record = ZvtTvFApiEventCommonObject;

    static Return<void> show(const char* module, uint32_t type, const Record& first) {
        std::cout << "event of " << module << ": " << type << ", " << first.u32Value << ", "
                  << std::string(first.strValue) << std::endl;
        return Void();
    }

#define SHOW(method, module)                                                                             \
    Return<void> method(uint32_t type, const Record& first, const Record&, const Record&, const Record&) \
            override {                                                                                   \
        return show(module, type, first);                                                                \
    }
    SHOW(notifySysEvent, "sys")
    SHOW(notifyDispEvent, "disp")
    SHOW(notifyDispTstEvent, "disptst")
    SHOW(notifyInfoEvent, "info")
    SHOW(notifyInpSrcEvent, "inpsrc")
    SHOW(notifyPrphrlEvent, "prphrl")
    SHOW(notifyAudEvent, "aud")
    SHOW(notifyNetEvent, "net")
    SHOW(notifyTvEvent, "tv")
#undef SHOW
};

/** Something that another thread tells this one. */
class Bell {
  public:
    void ring() {
        const std::lock_guard<std::mutex> lock(mMutex);
        mRung = true;
        mChanged.notify_all();
    }
    void wait() {
        std::unique_lock<std::mutex> lock(mMutex);
        mChanged.wait(lock, [this] { return mRung; });
    }
    /** True once for what was rung; false when the time has come first. */
    bool take(Clock::time_point until) {
        std::unique_lock<std::mutex> lock(mMutex);
        return mChanged.wait_until(lock, until, [this] { return mRung; }) && std::exchange(mRung, false);
    }

  private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    bool mRung = false;  // guarded by mMutex
};

/** Told of each service that is registered; of one that was before, too. */
class Registration : public IServiceNotification, public Bell {
    Return<void> onRegistration(const hidl_string&, const hidl_string&, bool) override {
        ring();
        return Void();
    }
};

/** Told when the service has died. */
class Death : public android::hardware::hidl_death_recipient, public Bell {
    void serviceDied(uint64_t, const wp<IBase>&) override { ring(); }
};

/** Uses the service until it dies. False if it could not be used: it may be tried again. */
static bool useService(const sp<Events>& events) {
    // Null if there is none; getService() would wait for one, without end.
    const sp<IZvtTvFApiManager> manager = IZvtTvFApiManager::tryGetService();
    const sp<IZvtTvFApiInformation> information = IZvtTvFApiInformation::tryGetService();
    if (manager == nullptr || information == nullptr) {
        return false;
    }
    // Before anything else, so that no death goes unnoticed. The link lasts as long as the proxy and
    // the recipient do.
    const sp<Death> death = new Death;
    const Return<bool> linked = manager->linkToDeath(death, 0);
    if (!linked.isOk() || !linked) {
        return false;
    }
    // Results come to a function, which is called before the method returns, and only if the call went well.
    int32_t status = kNotReady;
    std::string version;
    const Return<void> asked = information->a_hidl_zvttvfapi_info_get_fapi_sw_version(
            [&](const hidl_string& strVersion, int32_t s32Status) {
                version = strVersion;
                status = s32Status;
            });
    if (!asked.isOk() || status == kNotReady) {
        return false;
    }
    // Of each service anew: it forgets its clients when it dies.
    const Return<int32_t> registered = manager->a_hidl_a_zvttvfapi_mngr_set_callback(events);
    if (!registered.isOk() || registered != 0) {
        return false;
    }
    std::cout << "connected: version " << version << ", status " << status << std::endl;
    death->wait();
    std::cout << "the service died" << std::endl;
    return true;
}

int main(int argc, char** argv) {
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 10;
    if (seconds <= 0) {
        std::cerr << "Usage: factory-client [SECONDS]" << std::endl;
        return 2;
    }
    const auto patience = std::chrono::seconds(seconds);
    // How many threads may call our objects, this one not among them. Events come one after the other.
    android::hardware::configureRpcThreadpool(1, false);
    const sp<Events> events = new Events;
    const sp<Registration> registration = new Registration;
    if (!IZvtTvFApiManager::registerForNotifications("default", registration)) {
        std::cerr << "the service manager cannot be asked" << std::endl;
        return 1;
    }
    auto until = Clock::now() + patience;
    while (registration->take(until)) {
        bool used = useService(events);
        while (!used && Clock::now() < until) {
            std::this_thread::sleep_for(kPause);
            used = useService(events);
        }
        if (used) {
            until = Clock::now() + patience;
        }
    }
    std::cerr << "no service that is ready for " << seconds << " s" << std::endl;
    return 1;
}
