#define LOG_TAG "ZvtTvFApiManager(server)"

#include "manager/ZvtTvFApiManager.h"

#include "chiplayer/chiplayer.h"
#include "manager/ClientDeathRecipient.h"
#include "service/frame/Log.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

// Handlers come before the modules that call them: an event raised by a module's initialisation is not lost.
ZvtTvFApiManager::ZvtTvFApiManager() {
    FAPI_LOGD(".");
    if (initCallback() != 0) {
        FAPI_LOGE("[%s] Register callback to mdoules failed\n", __func__);
    }
    if (initModules() != 0) {
        FAPI_LOGE("[%s] Initialized mdoules failed\n", __func__);
    }
    mDeathRecipient = new ClientDeathRecipient();
    FAPI_LOGE("[%s] Start ZvtTvFApi SDK Service: version:%s\n", __func__, kVersion);
}

ZvtTvFApiManager::~ZvtTvFApiManager() {
    if (deinitModules() != 0) {
        FAPI_LOGE("[%s] Deinitialized mdoules failed\n", __func__);
    }
    if (deinitCallback() != 0) {
        FAPI_LOGE("[%s] Unregister callback to mdoules failed\n", __func__);
    }
}

Return<int32_t> ZvtTvFApiManager::initCallback() {
    FAPI_LOGD(".");
    int32_t s32Ret = a_zvttvfapi_aud_reg_callback(onAudEvent);
    s32Ret |= a_zvttvfapi_disp_reg_callback(onDispEvent);
    s32Ret |= a_zvttvfapi_disptst_reg_callback(onDispTstEvent);
    s32Ret |= a_zvttvfapi_info_reg_callback(onInfoEvent);
    s32Ret |= a_zvttvfapi_inpsrc_reg_callback(onInpSrcEvent);
    s32Ret |= a_zvttvfapi_net_reg_callback(onNetEvent);
    s32Ret |= a_zvttvfapi_prphrl_reg_callback(onPrphrlEvent);
    s32Ret |= a_zvttvfapi_sys_reg_callback(onSysEvent);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiManager::initModules() {
    FAPI_LOGD(".");
    int32_t s32Ret = a_zvttvfapi_sys_init();
    s32Ret |= a_zvttvfapi_aud_init();
    s32Ret |= a_zvttvfapi_disp_init();
    s32Ret |= a_zvttvfapi_disptst_init();
    s32Ret |= a_zvttvfapi_info_init();
    s32Ret |= a_zvttvfapi_inpsrc_init();
    s32Ret |= a_zvttvfapi_net_init();
    s32Ret |= a_zvttvfapi_prphrl_init();
    return s32Ret;
}

Return<int32_t> ZvtTvFApiManager::deinitModules() {
    FAPI_LOGD(".");
    int32_t s32Ret = a_zvttvfapi_aud_deinit();
    s32Ret |= a_zvttvfapi_disp_deinit();
    s32Ret |= a_zvttvfapi_disptst_deinit();
    s32Ret |= a_zvttvfapi_info_deinit();
    s32Ret |= a_zvttvfapi_inpsrc_deinit();
    s32Ret |= a_zvttvfapi_net_deinit();
    s32Ret |= a_zvttvfapi_prphrl_deinit();
    s32Ret |= a_zvttvfapi_sys_deinit();
    return s32Ret;
}

Return<int32_t> ZvtTvFApiManager::deinitCallback() {
    FAPI_LOGD(".");
    int32_t s32Ret = a_zvttvfapi_aud_unreg_callback();
    s32Ret |= a_zvttvfapi_disp_unreg_callback();
    s32Ret |= a_zvttvfapi_disptst_unreg_callback();
    s32Ret |= a_zvttvfapi_info_unreg_callback();
    s32Ret |= a_zvttvfapi_inpsrc_unreg_callback();
    s32Ret |= a_zvttvfapi_net_unreg_callback();
    s32Ret |= a_zvttvfapi_prphrl_unreg_callback();
    s32Ret |= a_zvttvfapi_sys_unreg_callback();
    return s32Ret;
}

// Nobody can ask for events yet, so a handler has nobody to tell and nothing fails.

int ZvtTvFApiManager::onAudEvent(unsigned int u32EvtType, const Object&, const Object&, const Object&,
                                 const Object&) {
    FAPI_LOGD("u32EvtType = %d\n", static_cast<int>(u32EvtType));
    return 0;
}

int ZvtTvFApiManager::onDispEvent(unsigned int u32EvtType, const Object&, const Object&, const Object&,
                                  const Object&) {
    FAPI_LOGD("u32EvtType = %d\n", static_cast<int>(u32EvtType));
    return 0;
}

int ZvtTvFApiManager::onDispTstEvent(unsigned int u32EvtType, const Object&, const Object&, const Object&,
                                     const Object&) {
    FAPI_LOGD("u32EvtType = %d\n", static_cast<int>(u32EvtType));
    return 0;
}

int ZvtTvFApiManager::onInfoEvent(unsigned int u32EvtType, const Object&, const Object&, const Object&,
                                  const Object&) {
    FAPI_LOGD("u32EvtType = %d\n", static_cast<int>(u32EvtType));
    return 0;
}

int ZvtTvFApiManager::onInpSrcEvent(unsigned int u32EvtType, const Object&, const Object&, const Object&,
                                    const Object&) {
    FAPI_LOGD("u32EvtType = %d\n", static_cast<int>(u32EvtType));
    return 0;
}

int ZvtTvFApiManager::onNetEvent(unsigned int u32EvtType, const Object&, const Object&, const Object&,
                                 const Object&) {
    FAPI_LOGD("u32EvtType = %d\n", static_cast<int>(u32EvtType));
    return 0;
}

int ZvtTvFApiManager::onPrphrlEvent(unsigned int u32EvtType, const Object&, const Object&, const Object&,
                                    const Object&) {
    FAPI_LOGD("u32EvtType = %d\n", static_cast<int>(u32EvtType));
    return 0;
}

int ZvtTvFApiManager::onSysEvent(unsigned int u32EvtType, const Object&, const Object&, const Object&,
                                 const Object&) {
    FAPI_LOGD("u32EvtType = %d\n", static_cast<int>(u32EvtType));
    return 0;
}

int ZvtTvFApiManager::onTvEvent(unsigned int u32EvtType, const Object&, const Object&, const Object&,
                                const Object&) {
    FAPI_LOGD("u32EvtType = %d\n", static_cast<int>(u32EvtType));
    return 0;
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
