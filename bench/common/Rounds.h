#pragma once

#include <functional>
#include <string>

#include "bench/common/Table.h"

namespace bench {

/** Gives one round's figure. */
using Measure = std::function<double()>;

/**
 * Measures baseline and ours by turns, the one first in every other round, so that whatever changes on the
 * machine meanwhile meets both. Figures are medians.
 */
Row compare(const std::string& workload, Unit unit, Limit limit, int rounds, const Measure& baseline,
            const Measure& ours);

/** A figure without a baseline. */
Row single(const std::string& workload, Unit unit, Limit limit, double ours);

/** Nanoseconds that one call of a function takes, as Google Benchmark measures it for at least that long. */
Measure timeOf(double seconds, std::function<void()> body);

/** "both ends on one CPU, medians of 7 rounds", for headings. */
std::string conditions(bool pinned, const Options& options);

}  // namespace bench
