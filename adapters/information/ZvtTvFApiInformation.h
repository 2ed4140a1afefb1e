#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiInformation.h>

#include <cstdint>

#include "service/frame/FapiInterface.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;

/// The chip-layer library's INI configuration and identity. No state: any number of calls may run side by
/// side.
class ZvtTvFApiInformation : public FapiInterface<IZvtTvFApiInformation> {
  public:
    // Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiInformation follow.
    Return<void> a_hidl_zvttvfapi_info_get_ini_para(const hidl_string& strIniArg1,
                                                    const hidl_string& strIniArg2,
                                                    a_hidl_zvttvfapi_info_get_ini_para_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_info_set_ini_para(const hidl_string& strIniArg1,
                                                       const hidl_string& strIniArg2,
                                                       const hidl_string& strIniValue) override;
    Return<void> a_hidl_zvttvfapi_info_get_ip_enable_status(
            uint32_t u32IpId, a_hidl_zvttvfapi_info_get_ip_enable_status_cb _hidl_cb) override;
    Return<void> a_hidl_zvttvfapi_info_get_fapi_sw_version(
            a_hidl_zvttvfapi_info_get_fapi_sw_version_cb _hidl_cb) override;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
