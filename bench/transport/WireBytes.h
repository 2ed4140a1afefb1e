#pragma once

#include <functional>

#include "bench/transport/Raw.h"

namespace bench {

/** What one call moves over its connections, counted at the system calls of this program's own objects. It is
 * made twice. A one-way call has no reply. */
Exchange bytesOf(const std::function<void()>& call);

}  // namespace bench
