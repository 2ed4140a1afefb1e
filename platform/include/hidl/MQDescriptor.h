#pragma once

#include <cstdint>

namespace android::hardware {

enum MQFlavor : uint32_t { kSynchronizedReadWrite = 1, kUnsynchronizedWrite = 2 };

/** Place of a fast message queue's description in a record. The host has no such queues. */
template <typename T, MQFlavor flavor>
class MQDescriptor {
    uint64_t mReserved[4] = {};
};

}  // namespace android::hardware
