#include <hidl/Static.h>

namespace android::hardware::details {

BnConstructorMap& getBnConstructorMap() {
    static auto* const map = new BnConstructorMap;
    return *map;
}

sp<BHwBinder> BnMap::getOrSet(const ::android::hidl::base::V1_0::IBase* object, const sp<BHwBinder>& stub) {
    const std::lock_guard lock(mLock);
    wp<BHwBinder>& entry = mStubs[object];
    sp<BHwBinder> present = entry.promote();
    if (present == nullptr) {
        entry = stub;
        present = stub;
    }
    return present;
}

sp<BHwBinder> BnMap::get(const ::android::hidl::base::V1_0::IBase* object) const {
    const std::lock_guard lock(mLock);
    const auto found = mStubs.find(object);
    return found == mStubs.end() ? nullptr : found->second.promote();
}

void BnMap::eraseIfEqual(const ::android::hidl::base::V1_0::IBase* object, const BHwBinder* stub) {
    const std::lock_guard lock(mLock);
    const auto found = mStubs.find(object);
    if (found != mStubs.end() && found->second.unsafe_get() == stub) {
        mStubs.erase(found);
    }
}

}  // namespace android::hardware::details
