// The context manager of a device of the binder driver: every program that speaks HIDL finds services through
// it. Takes no arguments; HIDL_BINDER_DEVICE names a device other than /dev/hwbinder.

#define LOG_TAG "hwservicemanager"

#include <hidl/HidlTransportSupport.h>
#include <log/log.h>
#include <stdlib.h>

#include <cstdio>

#include "platform/kernel/KernelBackend.h"
#include "tools/hwservicemanager/Names.h"

using ::android::ALREADY_EXISTS;
using ::android::OK;
using ::android::sp;
using ::android::status_t;

int main(int argc, char** argv) {
    if (argc > 1) {
        std::fprintf(stderr, "%s: takes no arguments; HIDL_BINDER_DEVICE names its device\n", argv[0]);
        return 2;
    }
    setenv("HIDL_TRANSPORT", "binder", 1 /* overwrite */);
    // Four are for what waits for nobody.
    ::android::hardware::configureRpcThreadpool(Names::kMostAsked + 4, true /* callerWillJoin */);
    const sp<Names> names = new Names;
    const status_t status = ::android::hardware::becomeContextManager(names);
    if (status != OK) {
        std::fprintf(
                stderr, "%s: %s\n", argv[0],
                status == ALREADY_EXISTS
                        ? "the device has a context manager; end that first"
                        : "the device does not take this user's context manager: another user's was there");
        return 1;
    }
    ALOGI("ready");
    ::android::hardware::joinRpcThreadpool();
}
