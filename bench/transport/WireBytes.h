#pragma once

#include <functional>

#include "bench/transport/Raw.h"

namespace bench {

/** What one call moves over its connection, counted at the system calls of this program's own objects. */
Exchange bytesOf(const std::function<void()>& call);

}  // namespace bench
