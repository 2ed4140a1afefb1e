#pragma once

#include <new>
#include <system_error>

#include "simulator/board/Status.h"

// What the bodies of the chip-layer functions share.

namespace simulator {

/** What body returns; a lack of memory or threads as a status: nothing may be thrown at the caller. */
template <typename Body>
int32_t guarded(Body body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return kNoMemory;
    } catch (const std::system_error&) {
        return kNoMemory;
    }
}

inline const char* text(unsigned char const* bytes) {
    return reinterpret_cast<const char*>(bytes);
}

}  // namespace simulator
