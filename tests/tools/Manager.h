#pragma once

#include <unistd.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

namespace fapictl {

/** Relays what is posted; some types mean something else to it. */
class Manager : public vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiManager {
    using Callback = vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiCallbackManager;
    using Object = vendor::zentrovi::tv::zvttvfactory::V1_0::ZvtTvFApiEventCommonObject;
    template <class T>
    using Return = android::hardware::Return<T>;

  public:
    static constexpr uint32_t kCountClients = 1;   // the status is the number of registrations
    static constexpr uint32_t kDie = 0x10dead;     // soon after the event has been relayed
    static constexpr uint32_t kRefuseClients = 2;  // that register from now on

    Return<int32_t> a_hidl_a_zvttvfapi_mngr_set_callback(const android::sp<Callback>& callback) override {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (callback == nullptr || mRefuse) {
            return -2;
        }
        mCallbacks.push_back(callback);
        return 0;
    }

    Return<int32_t> a_hidl_a_zvttvfapi_mngr_post_event(uint32_t type, const Object& object1,
                                                       const Object& object2, const Object& object3,
                                                       const Object& object4) override {
        const std::lock_guard<std::mutex> lock(mMutex);
        mRefuse = mRefuse || type == kRefuseClients;
        if (type == kCountClients) {
            return static_cast<int32_t>(mCallbacks.size());
        }
        using Notify = Return<void> (Callback::*)(uint32_t, const Object&, const Object&, const Object&,
                                                  const Object&);
        static constexpr Notify kMethods[] = {
                &Callback::notifySysEvent,     &Callback::notifyNetEvent,    &Callback::notifyDispEvent,
                &Callback::notifyDispTstEvent, &Callback::notifyPrphrlEvent, &Callback::notifyInpSrcEvent,
                &Callback::notifyAudEvent,     &Callback::notifyInfoEvent,   &Callback::notifyTvEvent};
        const unsigned module = type >> 16 == 0 ? 32 : static_cast<unsigned>(__builtin_ctz(type >> 16));
        if (module >= std::size(kMethods)) {
            return -2;
        }
        int32_t status = 0;
        for (const auto& callback : mCallbacks) {
            if (!(callback.get()->*kMethods[module])(type, object1, object2, object3, object4).isOk()) {
                status = -1;
            }
        }
        if (type == kDie) {
            // A client may not get what it has not read when the sender dies.
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            _exit(0);
        }
        return status;
    }

  private:
    std::mutex mMutex;
    std::vector<android::sp<Callback>> mCallbacks;
    bool mRefuse = false;
};

}  // namespace fapictl
