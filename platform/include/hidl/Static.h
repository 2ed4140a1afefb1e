#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hwbinder/IBinder.h>
#include <sched.h>
#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

#include <functional>
#include <mutex>
#include <string>
#include <unordered_map>

namespace android::hardware::details {

/**
 * A table of how objects are made, by interface name. Generated code fills it when it is loaded and empties
 * it when it is unloaded.
 */
template <typename Maker>
class ConstructorMap {
  public:
    void set(const std::string& descriptor, Maker maker) {
        const std::lock_guard lock(mLock);
        mMakers[descriptor] = std::move(maker);
    }
    /** Empty when there is none. */
    Maker get(const std::string& descriptor) const {
        const std::lock_guard lock(mLock);
        const auto found = mMakers.find(descriptor);
        return found == mMakers.end() ? Maker() : found->second;
    }
    void erase(const std::string& descriptor) {
        const std::lock_guard lock(mLock);
        mMakers.erase(descriptor);
    }

  private:
    mutable std::mutex mLock;
    std::unordered_map<std::string, Maker> mMakers;
};

using BnConstructorMap = ConstructorMap<std::function<sp<IBinder>(void*)>>;

/** Makers of stubs. Still there when static objects end. */
BnConstructorMap& getBnConstructorMap();

/**
 * Makers of pass-through wrappers: nothing on the host is ever wrapped. It keeps none, and looks at none, so
 * that the linker finds the wrappers, a quarter of a service, without a user.
 */
class NoConstructors {
  public:
    template <typename Maker>
    void set(const char* /* descriptor */, const Maker& /* maker */) const {}
    void erase(const char* /* descriptor */) const {}
};

inline constexpr NoConstructors getBsConstructorMap() {
    return {};
}

/** The stub of each local object that has one. */
class BnMap {
  public:
    /** The object's stub; if it has none, the given one, which becomes it. */
    sp<BHwBinder> getOrSet(const ::android::hidl::base::V1_0::IBase* object, const sp<BHwBinder>& stub);
    /** Null when it has none. */
    sp<BHwBinder> get(const ::android::hidl::base::V1_0::IBase* object) const;
    /** Called by a stub that ends. */
    void eraseIfEqual(const ::android::hidl::base::V1_0::IBase* object, const BHwBinder* stub);

  private:
    mutable std::mutex mLock;
    std::unordered_map<const ::android::hidl::base::V1_0::IBase*, wp<BHwBinder>> mStubs;
};

struct SchedPrio {
    int sched_policy;
    int prio;
};

/** What an object asked for before its stub was made: nothing, as neither can be asked for on the host. */
template <typename Value>
class NoRequests {
  public:
    template <typename Interface>
    Value get(const sp<Interface>& /* object */, Value fallback) const {
        return fallback;
    }
};

/** A global that is made when it is first used and never destroyed. */
template <typename T>
class Immortal {
  public:
    T* operator->() const {
        static T* const object = new T;
        return object;
    }
};

inline constexpr Immortal<BnMap> gBnMap;
inline constexpr Immortal<NoRequests<SchedPrio>> gServicePrioMap;
inline constexpr Immortal<NoRequests<bool>> gServiceSidMap;

}  // namespace android::hardware::details
