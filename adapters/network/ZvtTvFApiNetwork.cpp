#define LOG_TAG "ZvtTvFApiNetwork(server)"

#include "adapters/network/ZvtTvFApiNetwork.h"

#include "chiplayer/net.h"
#include "service/frame/Call.h"
#include "service/frame/Log.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

// Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiNetwork follow.

Return<int32_t> ZvtTvFApiNetwork::a_hidl_zvttvfapi_net_set_mac(const hidl_string& strMac) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_net_set_mac, lend(strMac));
    FAPI_LOGE_OUTCOME("a_zvttvfapi_net_set_mac", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiNetwork::a_hidl_zvttvfapi_net_set_interface_updown(const hidl_string& strIfName,
                                                                            bool bUp) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_net_set_interface_updown, strIfName, bUp);
    FAPI_LOGE_OUTCOME("a_zvttvfapi_net_set_interface_updown", s32Ret);
    return s32Ret;
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
