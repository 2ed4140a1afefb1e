#define LOG_TAG "ZvtTvFApiManager(server)"

#include <new>

#include "manager/ClientRegistry.h"
#include "manager/EventRecord.h"
#include "manager/ZvtTvFApiManager.h"
#include "service/frame/Log.h"
#include "service/frame/Status.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::Mutex;

namespace {

using ChipEventObject = ZvtTvFApiManager::ChipEventObject;

/// The callback method of one handler.
using Notification = Return<void> (IZvtTvFApiCallbackManager::*)(uint32_t, const ZvtTvFApiEventCommonObject&,
                                                                 const ZvtTvFApiEventCommonObject&,
                                                                 const ZvtTvFApiEventCommonObject&,
                                                                 const ZvtTvFApiEventCommonObject&);

/// What every handler does: converts the records, once for all clients and before the lock, then tells each
/// client. A client that can not be told costs the others nothing; only its death removes it. Without memory
/// for the records nobody is told, and the result says so.
int relay(const char* name, EventModule module, Notification notify, uint32_t u32EvtType,
          const ChipEventObject& stObj1, const ChipEventObject& stObj2, const ChipEventObject& stObj3,
          const ChipEventObject& stObj4) {
    const HidlEventRecord first(stObj1);
    const HidlEventRecord second(stObj2);
    const HidlEventRecord third(stObj3);
    const HidlEventRecord fourth(stObj4);
    if (!first || !second || !third || !fourth) {
        return FAPI_FAIL;
    }
    const Mutex::Autolock lock(sCbMutex);
    FAPI_LOG(ANDROID_LOG_DEBUG, name, "u32EvtType = %d\n", static_cast<int>(u32EvtType));
    EventCount& count = sEventCounts[module];
    int s32Ret = FAPI_OK;
    for (const auto& [cookie, callback] : sCbList) {
        const Return<void> told = (callback.get()->*notify)(u32EvtType, first.hidl(), second.hidl(),
                                                            third.hidl(), fourth.hidl());
        if (told.isOk()) {
            ++count.u64Relayed;
        } else {
            ++count.u64Refused;
            s32Ret = FAPI_FAIL;
        }
    }
    return s32Ret;
}

/// Bits of a posted event's type that choose its handler, in the order in which they are tested.
constexpr struct {
    uint32_t u32Mask;
    fapi_core::ZvtTvFApiEventHandler handler;
} kRoutes[] = {
        {1u << 16, ZvtTvFApiManager::onSysEvent},    {1u << 17, ZvtTvFApiManager::onNetEvent},
        {1u << 18, ZvtTvFApiManager::onDispEvent},   {1u << 19, ZvtTvFApiManager::onDispTstEvent},
        {1u << 20, ZvtTvFApiManager::onPrphrlEvent}, {1u << 21, ZvtTvFApiManager::onInpSrcEvent},
        {1u << 22, ZvtTvFApiManager::onAudEvent},    {1u << 23, ZvtTvFApiManager::onInfoEvent},
        {1u << 24, ZvtTvFApiManager::onTvEvent},
};

}  // namespace

// Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiManager follow.

Return<int32_t> ZvtTvFApiManager::a_hidl_a_zvttvfapi_mngr_post_event(
        uint32_t u32EvtType, const ZvtTvFApiEventCommonObject& stObj1,
        const ZvtTvFApiEventCommonObject& stObj2, const ZvtTvFApiEventCommonObject& stObj3,
        const ZvtTvFApiEventCommonObject& stObj4) {
    countCall();
    try {
        const ChipEventObject first = toTwin(stObj1);
        const ChipEventObject second = toTwin(stObj2);
        const ChipEventObject third = toTwin(stObj3);
        const ChipEventObject fourth = toTwin(stObj4);
        for (const auto& route : kRoutes) {
            if ((u32EvtType & route.u32Mask) != 0) {
                return route.handler(u32EvtType, first, second, third, fourth);
            }
        }
        return FAPI_INVALID_ARGUMENT;
    } catch (const std::bad_alloc&) {
        return FAPI_FAIL;
    }
}

// The handlers.

int ZvtTvFApiManager::onSysEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                                 const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                                 const ChipEventObject& stObj4) {
    return relay(__func__, EVENT_SYS, &IZvtTvFApiCallbackManager::notifySysEvent, u32EvtType, stObj1, stObj2,
                 stObj3, stObj4);
}

int ZvtTvFApiManager::onNetEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                                 const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                                 const ChipEventObject& stObj4) {
    return relay(__func__, EVENT_NET, &IZvtTvFApiCallbackManager::notifyNetEvent, u32EvtType, stObj1, stObj2,
                 stObj3, stObj4);
}

int ZvtTvFApiManager::onDispEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                                  const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                                  const ChipEventObject& stObj4) {
    return relay(__func__, EVENT_DISP, &IZvtTvFApiCallbackManager::notifyDispEvent, u32EvtType, stObj1,
                 stObj2, stObj3, stObj4);
}

int ZvtTvFApiManager::onDispTstEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                                     const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                                     const ChipEventObject& stObj4) {
    return relay(__func__, EVENT_DISPTST, &IZvtTvFApiCallbackManager::notifyDispTstEvent, u32EvtType, stObj1,
                 stObj2, stObj3, stObj4);
}

int ZvtTvFApiManager::onPrphrlEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                                    const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                                    const ChipEventObject& stObj4) {
    return relay(__func__, EVENT_PRPHRL, &IZvtTvFApiCallbackManager::notifyPrphrlEvent, u32EvtType, stObj1,
                 stObj2, stObj3, stObj4);
}

int ZvtTvFApiManager::onInpSrcEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                                    const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                                    const ChipEventObject& stObj4) {
    return relay(__func__, EVENT_INPSRC, &IZvtTvFApiCallbackManager::notifyInpSrcEvent, u32EvtType, stObj1,
                 stObj2, stObj3, stObj4);
}

int ZvtTvFApiManager::onAudEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                                 const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                                 const ChipEventObject& stObj4) {
    return relay(__func__, EVENT_AUD, &IZvtTvFApiCallbackManager::notifyAudEvent, u32EvtType, stObj1, stObj2,
                 stObj3, stObj4);
}

int ZvtTvFApiManager::onInfoEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                                  const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                                  const ChipEventObject& stObj4) {
    return relay(__func__, EVENT_INFO, &IZvtTvFApiCallbackManager::notifyInfoEvent, u32EvtType, stObj1,
                 stObj2, stObj3, stObj4);
}

int ZvtTvFApiManager::onTvEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                                const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                                const ChipEventObject& stObj4) {
    return relay(__func__, EVENT_TV, &IZvtTvFApiCallbackManager::notifyTvEvent, u32EvtType, stObj1, stObj2,
                 stObj3, stObj4);
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
