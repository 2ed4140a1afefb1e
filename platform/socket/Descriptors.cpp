#include "platform/socket/Descriptors.h"

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

}  // namespace android::hardware
