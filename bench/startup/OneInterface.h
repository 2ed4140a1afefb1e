#pragma once

#include "bench/common/Process.h"
#include "bench/common/Table.h"
#include "bench/startup/Subject.h"

namespace bench {

/**
 * The start and the idle memory of a server of one interface, beside those of the same over the D-Bus
 * reference library, whose clients connect to it without a bus.
 *
 * @param created tells what is created in the folder
 */
Table measureOneInterface(const TemporaryFolder& folder, const FolderWatch& created, const Options& options);

}  // namespace bench
