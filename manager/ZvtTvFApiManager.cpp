#define LOG_TAG "ZvtTvFApiManager(server)"

#include "manager/ZvtTvFApiManager.h"

#include <hwbinder/IPCThreadState.h>

#include <new>

#include "chiplayer/chiplayer.h"
#include "manager/ClientDeathRecipient.h"
#include "manager/ClientRegistry.h"
#include "service/frame/Log.h"
#include "service/frame/Status.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::Mutex;
using ::android::hardware::IPCThreadState;

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

// Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiManager follow; the other one is in
// EventRelay.cpp, and debug() in ManagerPage.cpp.

Return<int32_t> ZvtTvFApiManager::a_hidl_a_zvttvfapi_mngr_set_callback(
        const sp<IZvtTvFApiCallbackManager>& callback) {
    countCall();
    // The cookie is read without the lock, for the log alone: another registration may be about to take it.
    FAPI_LOGD(".%p %llu", static_cast<void*>(mDeathRecipient.get()),
              static_cast<unsigned long long>(sNextCookie.load()));
    if (callback == nullptr) {
        return FAPI_INVALID_ARGUMENT;
    }
    const pid_t pid = IPCThreadState::self()->getCallingPid();
    const Mutex::Autolock lock(sCbMutex);
    const uint64_t u64Cookie = sNextCookie;
    try {
        sCbList[u64Cookie] = callback;
    } catch (const std::bad_alloc&) {
        return FAPI_FAIL;
    }
    ++sNextCookie;
    try {
        sCbPids[u64Cookie] = pid;
    } catch (const std::bad_alloc&) {
        // Of use to people alone, who then see that it is unknown.
    }
    // A client that can not be linked stays registered: its end is then noticed by no one.
    try {
        (void)callback->linkToDeath(mDeathRecipient, u64Cookie).isOk();
    } catch (const std::bad_alloc&) {
        // No memory for the link is one way in which it fails, and no reason to refuse the client. The
        // transport reports its own lack; this is the proxy's generated code, which is built without
        // exceptions and lets go of nothing: its lock stays locked, which nobody takes again, as each
        // registration has a proxy of its own that is linked once.
    }
    return FAPI_OK;
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
