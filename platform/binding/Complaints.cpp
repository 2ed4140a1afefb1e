#include "platform/binding/Complaints.h"

#include <time.h>

namespace android::hardware {

uint32_t Complaints::count(const Credentials& who) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const CheckedLock lock(mLock);
    Culprit& culprit = mCulprits[static_cast<size_t>(who.pid) % mCulprits.size()];
    if (now.tv_sec - culprit.lastSecond > kForgottenSeconds) {
        culprit = {};
    }
    culprit.lastSecond = now.tv_sec;
    const uint32_t count = ++culprit.count;
    return count <= kAlwaysLogged || (count & (count - 1)) == 0 ? count : 0;
}

}  // namespace android::hardware
