#define LOG_TAG "ZvtTvFApiManager(server)"

#include "manager/ClientDeathRecipient.h"

#include "manager/ClientRegistry.h"
#include "service/frame/Log.h"
#include "service/frame/Scratch.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::Mutex;

void ClientDeathRecipient::serviceDied(uint64_t cookie,
                                       const ::android::wp<::android::hidl::base::V1_0::IBase>& /*who*/) {
    FAPI_LOGE("Client disconnect %llu", static_cast<unsigned long long>(cookie));
    // Both outlive the lock. The last reference to the client may end it, which runs whatever waits for that;
    // and neither an event nor another's death is to wait for the log.
    decltype(sCbList)::node_type dead;
    Scratch<uint64_t> remaining;
    {
        const Mutex::Autolock lock(sCbMutex);
        dead = sCbList.extract(cookie);
        sCbPids.erase(cookie);
        if (u8TvFactoryDebug != 0) {
            remaining = Scratch<uint64_t>::uncleared(sCbList.size());
            size_t noted = 0;
            for (const auto& [other, callback] : sCbList) {
                if (remaining) {
                    remaining[noted++] = other;
                } else {
                    FAPI_LOGE("cblist %llu\n", static_cast<unsigned long long>(other));
                }
            }
        }
    }
    for (size_t i = 0; i < remaining.size(); ++i) {
        FAPI_LOGE("cblist %llu\n", static_cast<unsigned long long>(remaining[i]));
    }
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
