#pragma once

#include <memory>

#include "platform/binding/Backend.h"

namespace android::hardware {

/**
 * Calls through the kernel's binder driver, names through the context manager of the device.
 * HIDL_BINDER_DEVICE names the device, else it is /dev/hwbinder; where it can not be used, the process ends
 * with a message that says why and what to do.
 */
std::unique_ptr<Backend> makeKernelBackend();

/**
 * Makes an object of this process the names of its device, for as long as the process lives. The process uses
 * the binder driver, and has not asked for names before.
 *
 * @return ALREADY_EXISTS when another process has done so; PERMISSION_DENIED where one of another user had
 */
status_t becomeContextManager(const sp<::android::hidl::manager::V1_0::IServiceManager>& manager);

}  // namespace android::hardware
