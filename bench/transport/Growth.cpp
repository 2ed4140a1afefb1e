#include "bench/transport/Growth.h"

#include <sys/resource.h>

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "bench/common/Rounds.h"
#include "bench/transport/Crowd.h"
#include "bench/transport/Raw.h"
#include "bench/transport/WireBytes.h"
#include "bench/transport/Workloads.h"

namespace bench {

namespace {

constexpr std::array<size_t, 3> kCounts{1, 100, 1000};

/** How much more a call may cost with any of the counts than with the first. */
constexpr double kGrowthAtMost = 1.25;

/** Both servers with as many clients, of which one calls: ours, in this process. */
class Crowded {
  public:
    Crowded(size_t count, const TemporaryFolder& folder)
        : mInstance("with-" + std::to_string(count)),
          mRawSocket(folder / ("raw-" + mInstance)),
          mCount(count) {
        const OneCpu binding;
        mServers.push_back(
                std::make_unique<Child>(sibling("bench-raw-server"), std::vector<std::string>{mRawSocket}));
        mServers.push_back(std::make_unique<Child>(sibling("bench-server"),
                                                   std::vector<std::string>{mInstance, kServiceThreads}));
        mInformation = IZvtTvFApiInformation::getService(mInstance);
        if (mInformation == nullptr) {
            fail("bench-server is not registered");
        }
        mExchange = bytesOf([this] { call(); });
        mRaw = std::make_unique<RawClient>(mRawSocket, mExchange);
        mRaw->call();
    }

    /** Starts the clients that do not call, on all CPUs, of which each has made a call and had one object
     * kept. */
    void fill() {
        mOthers.emplace(mCount - 1, std::vector<std::string>{"keep", mInstance});
        mRawOthers.emplace(mCount - 1,
                           std::vector<std::string>{"raw", mRawSocket, std::to_string(mExchange.request),
                                                    std::to_string(mExchange.reply)});
    }

    void call() const { tinyCall(*mInformation); }
    void callRaw() const { mRaw->call(); }

  private:
    const std::string mInstance;
    const std::string mRawSocket;
    const size_t mCount;
    std::vector<std::unique_ptr<Child>> mServers;
    ::android::sp<IZvtTvFApiInformation> mInformation;
    Exchange mExchange{};
    std::unique_ptr<RawClient> mRaw;
    std::optional<Crowd> mOthers;
    std::optional<Crowd> mRawOthers;
};

/** Each client takes some descriptors, here and in its server. */
void allowDescriptors() {
    rlimit limit;
    constexpr rlim_t kNeeded = 8192;
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_max < kNeeded) {
        fail("a thousand clients take " + std::to_string(kNeeded) + " descriptors: see ulimit -Hn");
    }
    limit.rlim_cur = limit.rlim_max;
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0) {
        failOnCall("setrlimit");
    }
}

std::string grouped(size_t count) {
    return count < 1000 ? std::to_string(count) : std::to_string(count / 1000) + ",000";
}

}  // namespace

Table measureGrowth(const TemporaryFolder& folder, const Options& options) {
    Table table{"A tiny call while other clients are connected and idle: " + conditions(true, options), {}};
    const auto beside = [](size_t count) { return "tiny call, connected clients: " + grouped(count); };
    const auto growth = [](size_t count) { return "growth of ours from 1 client to " + grouped(count); };
    bool wanted = false;
    for (const size_t count : kCounts) {
        wanted = wanted || options.wants(beside(count)) || options.wants(growth(count));
    }
    if (!wanted) {
        return table;
    }
    allowDescriptors();
    std::array<std::unique_ptr<Crowded>, kCounts.size()> all;
    for (size_t i = 0; i < kCounts.size(); ++i) {
        all[i] = std::make_unique<Crowded>(kCounts[i], folder);
        all[i]->fill();
    }
    const OneCpu binding;
    for (size_t i = 0; i < kCounts.size(); ++i) {
        if (options.wants(beside(kCounts[i]))) {
            table.rows.push_back(compare(beside(kCounts[i]), Unit::Nanoseconds, Limit{}, options.rounds,
                                         timeOf(options.seconds, [&] { all[i]->callRaw(); }),
                                         timeOf(options.seconds, [&] { all[i]->call(); })));
        }
    }
    for (size_t i = 1; i < kCounts.size(); ++i) {
        if (options.wants(growth(kCounts[i]))) {
            table.rows.push_back(compare(growth(kCounts[i]), Unit::Nanoseconds,
                                         {Limit::Kind::TimesAtMost, kGrowthAtMost}, options.rounds,
                                         timeOf(options.seconds, [&] { all[0]->call(); }),
                                         timeOf(options.seconds, [&] { all[i]->call(); })));
        }
    }
    return table;
}

}  // namespace bench
