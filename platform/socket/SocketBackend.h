#pragma once

#include <memory>

#include "platform/binding/Backend.h"

namespace android::hardware {

/** Calls over Unix sockets, names in a private directory. */
std::unique_ptr<Backend> makeSocketBackend();

}  // namespace android::hardware
