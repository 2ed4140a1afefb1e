#define LOG_TAG "ZvtTvFApiManager(server)"

#include "manager/ClientDeathRecipient.h"

#include "manager/ClientRegistry.h"
#include "service/frame/Log.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

void ClientDeathRecipient::serviceDied(uint64_t cookie,
                                       const ::android::wp<::android::hidl::base::V1_0::IBase>& /*who*/) {
    FAPI_LOGE("Client disconnect %llu", static_cast<unsigned long long>(cookie));
    const std::lock_guard<std::mutex> lock(sCbMutex);
    sCbList.erase(cookie);
    sCbPids.erase(cookie);
    for (const auto& [remaining, callback] : sCbList) {
        FAPI_LOGE("cblist %llu\n", static_cast<unsigned long long>(remaining));
    }
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
