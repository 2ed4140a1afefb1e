#pragma once

#include "bench/common/Process.h"
#include "bench/common/Table.h"

namespace bench {

/** What a tiny call costs when a server has other clients too that ask for nothing. */
Table measureGrowth(const TemporaryFolder& folder, const Options& options);

}  // namespace bench
