#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiNetwork.h>

#include <cstdint>

#include "service/frame/FapiInterface.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;

/// MAC address and network interfaces. No state: any number of calls may run side by side.
class ZvtTvFApiNetwork : public FapiInterface<IZvtTvFApiNetwork> {
  public:
    // Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiNetwork follow.
    Return<int32_t> a_hidl_zvttvfapi_net_set_mac(const hidl_string& strMac) override;
    Return<int32_t> a_hidl_zvttvfapi_net_set_interface_updown(const hidl_string& strIfName,
                                                              bool bUp) override;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
