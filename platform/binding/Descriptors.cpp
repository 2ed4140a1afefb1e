#include "platform/binding/Descriptors.h"

#include <unistd.h>

namespace android::hardware {

void Descriptors::add(const int* fds, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (mCount < mFds.size()) {
            mFds[mCount++] = fds[i];
        } else {
            close(fds[i]);
            mOverfull = true;
        }
    }
}

Descriptors::~Descriptors() {
    for (size_t i = 0; i < mCount; ++i) {
        close(mFds[i]);
    }
}

ParcelMemory keeperOf(std::unique_ptr<Descriptors> descriptors) {
    if (descriptors == nullptr) {
        return {};
    }
    return {descriptors.release(), sizeof(Descriptors),
            [](void* memory, size_t) { delete static_cast<Descriptors*>(memory); }};
}

}  // namespace android::hardware
