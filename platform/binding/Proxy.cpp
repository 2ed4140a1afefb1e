#define LOG_TAG "hidl.proxy"

#include "platform/binding/Proxy.h"

#include <log/log.h>

#include <algorithm>
#include <new>

namespace android::hardware {

status_t Proxy::transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags, TransactCallback) {
    if (isParents()) {
        ALOGE("an object that the parent process got can not be called after fork(): get it anew");
        return INVALID_OPERATION;
    }
    try {
        return send(code, data, reply, flags);
    } catch (const std::bad_alloc&) {
        return NO_MEMORY;
    }
}

status_t Proxy::linkToDeath(const sp<DeathRecipient>& recipient) {
    if (isParents()) {
        return INVALID_OPERATION;
    }
    status_t status = NO_MEMORY;
    const DeathLink* mine = nullptr;
    try {
        DeathLinks link;
        link.push_back({recipient, this});
        mine = &link.front();
        {
            const CheckedLock lock(mLock);
            if (mDead) {
                return DEAD_OBJECT;
            }
            mLinks.splice(mLinks.end(), link);
        }
        status = watch();  // a death that it meets is told at once, by another thread
    } catch (const std::bad_alloc&) {
    }
    if (status == OK || mine == nullptr) {
        return status;
    }
    DeathLinks unwatched;  // ends outside the lock
    const CheckedLock lock(mLock);
    const auto link =
            std::find_if(mLinks.begin(), mLinks.end(), [&](const DeathLink& each) { return &each == mine; });
    if (link == mLinks.end()) {
        return OK;  // it is being told
    }
    unwatched.splice(unwatched.end(), mLinks, link);
    return status;
}

status_t Proxy::unlinkToDeath(const sp<DeathRecipient>& recipient) {
    if (isParents()) {
        return INVALID_OPERATION;
    }
    DeathLinks last;  // ends outside the lock
    const CheckedLock lock(mLock);
    const auto link = std::find_if(mLinks.rbegin(), mLinks.rend(),
                                   [&](const DeathLink& each) { return each.recipient == recipient; });
    if (link == mLinks.rend()) {
        return NAME_NOT_FOUND;
    }
    last.splice(last.end(), mLinks, std::next(link).base());
    return OK;
}

void Proxy::takeLinks(DeathLinks* links) {
    const CheckedLock lock(mLock);
    mDead = true;
    links->splice(links->end(), mLinks);
}

}  // namespace android::hardware
