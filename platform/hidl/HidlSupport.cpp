#define LOG_TAG "hidl"

#include <hidl/HidlSupport.h>
#include <log/log.h>
#include <unistd.h>

namespace android::hardware {

hidl_handle::hidl_handle(const hidl_handle& other) {
    *this = other;
}

hidl_handle& hidl_handle::operator=(const hidl_handle& other) {
    if (this == &other) {
        return *this;
    }
    native_handle_t* copy = nullptr;
    if (other.mHandle != nullptr) {
        copy = native_handle_clone(other.mHandle);
        LOG_ALWAYS_FATAL_IF(copy == nullptr, "hidl_handle: %d descriptors can not be duplicated",
                            other.mHandle->numFds);
    }
    setTo(copy, copy != nullptr);
    return *this;
}

void hidl_handle::release() {
    if (mOwnsHandle) {
        // What it owns was never constant: see setTo().
        auto* owned = const_cast<native_handle_t*>(mHandle);
        native_handle_close(owned);
        native_handle_delete(owned);
    }
}

std::string toString(const hidl_handle& handle) {
    if (handle == nullptr) {
        return "null";
    }
    return "handle of " + std::to_string(handle->numFds) + " descriptors, " +
           std::to_string(handle->numInts) + " integers";
}

namespace details {

int32_t getPidIfSharable() {
    return getpid();
}

}  // namespace details

}  // namespace android::hardware
