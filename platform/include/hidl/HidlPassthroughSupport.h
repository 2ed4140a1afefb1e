#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/TaskRunner.h>
#include <log/log.h>
#include <utils/StrongPointer.h>

namespace android::hardware::details {

/** Objects are not wrapped for use inside their own process on the host: always null, with an error logged.
 */
template <typename Interface>
sp<Interface> wrapPassthrough(const sp<Interface>& /* object */) {
    ALOGE("%s can not be wrapped for pass-through", Interface::descriptor);
    return nullptr;
}

}  // namespace android::hardware::details
