#include "bench/common/Rounds.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "bench/common/Process.h"

namespace bench {

namespace {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

/** Keeps what one run came to and prints nothing: our tables are made of many runs. */
class Collector final : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred) {
                fail(run.error_message);
            }
            mNanoseconds = run.GetAdjustedRealTime();
        }
    }
    double nanoseconds() const { return mNanoseconds; }

  private:
    double mNanoseconds = 0;
};

}  // namespace

Row compare(const std::string& workload, Unit unit, Limit limit, int rounds, const Measure& baseline,
            const Measure& ours) {
    std::vector<double> theirFigures, ourFigures, ratios, differences;
    for (int round = 0; round < rounds; ++round) {
        double theirs = 0;
        double own = 0;
        if (round % 2 == 0) {
            theirs = baseline();
            own = ours();
        } else {
            own = ours();
            theirs = baseline();
        }
        theirFigures.push_back(theirs);
        ourFigures.push_back(own);
        ratios.push_back(own / theirs);
        differences.push_back(own - theirs);
    }
    return {workload, unit, median(theirFigures), median(ourFigures), median(ratios), median(differences),
            limit};
}

Row single(const std::string& workload, Unit unit, Limit limit, double ours) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    return {workload, unit, kNone, ours, kNone, kNone, limit};
}

Measure timeOf(double seconds, std::function<void()> body) {
    return [seconds, body = std::move(body)] {
        benchmark::ClearRegisteredBenchmarks();
        benchmark::RegisterBenchmark("round",
                                     [&body](benchmark::State& state) {
                                         for (auto _ : state) {
                                             body();
                                         }
                                     })
                ->UseRealTime()
                ->MinTime(seconds);
        Collector collector;
        benchmark::RunSpecifiedBenchmarks(&collector, "round");
        return collector.nanoseconds();
    };
}

std::string conditions(bool pinned, const Options& options) {
    return std::string(pinned ? "both ends on one CPU" : "not bound to a CPU") + ", medians of " +
           std::to_string(options.rounds) + " alternating rounds";
}

}  // namespace bench
