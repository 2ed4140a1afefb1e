#pragma once

#include <hwbinder/IBinder.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <string>

namespace android::hidl::base::V1_0 {
struct IBase;
}

// What a transport that offers names as an object needs of interfaces, which it knows nothing of.

namespace android::hardware {

class Names;

/** The interface of an object of any kind: the local object itself, or a proxy. Null for null. */
sp<::android::hidl::base::V1_0::IBase> interfaceOf(const sp<IBinder>& object);

/**
 * Makes an object known under the names of its interface chain but IBase's, and lets calls to it run.
 *
 * @return as Names::add(); UNEXPECTED_NULL for null; INVALID_OPERATION for one without an interface of its
 * own
 */
status_t addTo(Names& names, const sp<::android::hidl::base::V1_0::IBase>& service,
               const std::string& instance);

}  // namespace android::hardware
