#include "tools/fapictl/Watcher.h"

#include <hidl/HidlTransportSupport.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Statuses.h"
#include "tools/fapictl/Text.h"

namespace fapictl {

using android::hardware::Return;
using android::hardware::Void;
using vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiManager;

Return<void> Watcher::take(const char* module, uint32_t type, const std::array<const Object*, 4>& objects) {
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
    if (mFilter.takes(event)) {
        mSink(std::move(event));
    }
    return Void();
}

sp<IBase> subscribe(const sp<IBase>& service, const sp<Watcher>& watcher,
                    const sp<android::hardware::hidl_death_recipient>& notice) {
    // One thread: events are queued in the order in which they come in.
    android::hardware::configureRpcThreadpool(1, false);
    const sp<IZvtTvFApiManager> manager = IZvtTvFApiManager::castFrom(service);
    if (manager == nullptr) {
        throw Failure(Exit::Transport, "the service is no event manager");
    }
    if (notice != nullptr) {
        if (const Return<bool> linked = manager->linkToDeath(notice, 0); !linked.isOk() || !linked) {
            throw Failure(Exit::Transport, "the service died before events could be watched");
        }
    }
    const Return<int32_t> status = manager->a_hidl_a_zvttvfapi_mngr_set_callback(watcher);
    if (!status.isOk()) {
        throw Failure(Exit::Transport, "events cannot be watched: " + escaped(status.description()));
    }
    const int32_t number = status;
    if (number != 0) {
        throw Failure(Exit::Status, "the service refused the callback: " + std::to_string(number) + " (" +
                                            statusName(number) + ")");
    }
    return manager;
}

}  // namespace fapictl
