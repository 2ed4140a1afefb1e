#define LOG_TAG "ZvtTvFApiInformation(server)"

#include "adapters/information/ZvtTvFApiInformation.h"

#include "chiplayer/common.h"
#include "chiplayer/info.h"
#include "service/frame/Log.h"
#include "service/frame/Text.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::Void;

// Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiInformation follow.

Return<void> ZvtTvFApiInformation::a_hidl_zvttvfapi_info_get_ini_para(
        const hidl_string& strIniArg1, const hidl_string& strIniArg2,
        a_hidl_zvttvfapi_info_get_ini_para_cb _hidl_cb) {
    FAPI_LOGD("%s", __func__);
    TextBuffer<2048> strIniValue;
    const int32_t s32Ret =
            forward(a_zvttvfapi_info_get_ini_para, strIniArg1, strIniArg2, strIniValue, strIniValue.size());
    _hidl_cb(strIniValue.text(), s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiInformation::a_hidl_zvttvfapi_info_set_ini_para(const hidl_string& strIniArg1,
                                                                         const hidl_string& strIniArg2,
                                                                         const hidl_string& strIniValue) {
    FAPI_LOGD("%s", __func__);
    return forward(a_zvttvfapi_info_set_ini_para, strIniArg1, strIniArg2, strIniValue);
}

Return<void> ZvtTvFApiInformation::a_hidl_zvttvfapi_info_get_ip_enable_status(
        uint32_t u32IpId, a_hidl_zvttvfapi_info_get_ip_enable_status_cb _hidl_cb) {
    FAPI_LOGD("%s", __func__);
    uint8_t u8Enable = 0;
    const int32_t s32Ret = forward(a_zvttvfapi_info_get_ip_enable_status, u32IpId, &u8Enable);
    _hidl_cb(u8Enable != 0, s32Ret);
    return Void();
}

Return<void> ZvtTvFApiInformation::a_hidl_zvttvfapi_info_get_fapi_sw_version(
        a_hidl_zvttvfapi_info_get_fapi_sw_version_cb _hidl_cb) {
    FAPI_LOGD("%s", __func__);
    TextBuffer<128> strVersion;
    const int32_t s32Ret = forward(a_zvttvfapi_common_get_fapi_version, strVersion, strVersion.size());
    _hidl_cb(strVersion.text(), s32Ret);
    return Void();
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
