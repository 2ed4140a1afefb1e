#pragma once

#include <hidl/HidlSupport.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiCallbackManager.h>

#include <array>
#include <functional>

#include "tools/fapictl/Events.h"
#include "tools/fapictl/Filter.h"

namespace fapictl {

/** What the manager calls; registered until the process ends, so it outlives whoever made it. */
class Watcher : public vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiCallbackManager {
  public:
    using Object = vendor::zentrovi::tv::zvttvfactory::V1_0::ZvtTvFApiEventCommonObject;

    /**
     * @param filter what it does not take is dropped
     * @param sink takes each event, one after the other, on the thread that receives them
     */
    Watcher(EventFilter filter, std::function<void(Event)> sink)
        : mFilter(std::move(filter)), mSink(std::move(sink)) {}

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
    android::hardware::Return<void> take(const char* module, uint32_t type,
                                         const std::array<const Object*, 4>& objects);

    const EventFilter mFilter;
    const std::function<void(Event)> mSink;
};

/**
 * Registers a watcher with the service's manager. Throws Failure (Transport, Status).
 *
 * @param notice told of the service's death, while the result lives; may be null
 */
sp<IBase> subscribe(const sp<IBase>& service, const sp<Watcher>& watcher,
                    const sp<android::hardware::hidl_death_recipient>& notice);

}  // namespace fapictl
