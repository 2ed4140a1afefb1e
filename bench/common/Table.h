#pragma once

#include <string>
#include <vector>

namespace bench {

/** What a figure is a number of. Figures are kept in the first unit named and shown in what suits them. */
enum class Unit { Nanoseconds, CallsPerSecond, Bytes, Count };

/** What ours may be. Times, sizes and counts are the better the smaller they are, rates the larger. */
struct Limit {
    enum class Kind {
        None,
        TimesAtMost,   // the baseline's, so many times
        TimesAtLeast,  // the same, of a rate
        MoreAtMost,    // than the baseline, in the figure's unit
        AtMost,        // whatever the baseline is
    };
    Kind kind = Kind::None;
    double value = 0;
};

struct Row {
    std::string workload;
    Unit unit;
    double baseline;
    double ours;
    double ratio;       // median of the rounds' own, which noise that lasts longer than a round does not move
    double difference;  // likewise
    Limit limit;

    bool ok() const;
};

/** Rows that were measured under the same conditions. */
struct Table {
    std::string heading;  // the conditions
    std::vector<Row> rows;
};

/** What every program of the benchmark takes from its command line. */
struct Options {
    bool json = false;
    bool check = false;
    int rounds = 7;
    double seconds = 0.2;  // of one side of one round
    std::string only;      // workloads without this text in their name are left out

    bool wants(const std::string& workload) const { return workload.find(only) != std::string::npos; }
};

/**
 * Prints the tables for people, or as JSON.
 *
 * @return the program's exit status: 1 when a limit is exceeded and that was asked about
 */
int report(const std::vector<Table>& tables, const Options& options);

}  // namespace bench
