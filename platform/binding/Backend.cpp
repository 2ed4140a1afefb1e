#define LOG_TAG "hidl"

#include "platform/binding/Backend.h"

#include <log/log.h>
#include <stdlib.h>

#include <atomic>
#include <memory>
#include <string_view>

#include "platform/binding/UniqueFd.h"
#include "platform/kernel/KernelBackend.h"
#include "platform/socket/SocketBackend.h"

const char* hidl_transport_help() {
    return "  HIDL_TRANSPORT          socket (default) or binder\n"
           "  HIDL_RUNTIME_DIR        with socket: where names are registered (default: /tmp/hidl-UID)\n"
           "  HIDL_BINDER_DEVICE      with binder: the driver's device (default: /dev/hwbinder)\n";
}

namespace android::hardware {

namespace {

std::atomic<Backend*> gBackend{nullptr};

std::unique_ptr<Backend> makeBackend() {
    const char* const wanted = getenv("HIDL_TRANSPORT");
    const std::string_view transport = wanted == nullptr ? "" : wanted;
    if (transport == "binder") {
        return makeKernelBackend();
    }
    LOG_ALWAYS_FATAL_IF(transport != "" && transport != "socket",
                        "HIDL_TRANSPORT is \"%s\"; it may be \"socket\" (the default) or \"binder\"", wanted);
    return makeSocketBackend();
}

}  // namespace

Backend& Backend::self() {
    // What the parent has is not the child's: its threads are not there, and its locks may be taken for ever.
    static const bool watchesForks = [] {
        atForkInChild([] { gBackend = nullptr; });
        return true;
    }();
    (void)watchesForks;
    Backend* known = gBackend;
    if (known == nullptr) {
        std::unique_ptr<Backend> made = makeBackend();
        if (gBackend.compare_exchange_strong(known, made.get())) {
            known = made.release();
        }
    }
    return *known;
}

}  // namespace android::hardware
