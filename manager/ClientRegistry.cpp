#include "manager/ClientRegistry.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

::android::Mutex sCbMutex;
std::unordered_map<uint64_t, ::android::sp<IZvtTvFApiCallbackManager>> sCbList;
std::unordered_map<uint64_t, pid_t> sCbPids;
std::atomic<uint64_t> sNextCookie{0};
std::array<EventCount, EVENT_MODULES> sEventCounts;

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
