// bench-registry: from the registration of a service to the return of getService() in a process that waits
// for it, beside a byte to a process that waits for one. This program registers the services.

#include <android/log.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zvttv/bench/1.0/IBenchProbe.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "bench/common/CommandLine.h"
#include "bench/common/Process.h"
#include "bench/common/Rounds.h"
#include "bench/common/Table.h"
#include "bench/transport/Raw.h"

namespace {

using namespace bench;
using ::android::sp;
using ::android::hardware::Return;
using ::android::hardware::Void;
using ::zvttv::bench::V1_0::IBenchProbe;
using Clock = std::chrono::steady_clock;

constexpr double kMillisecond = 1e6;

/** Time for a process that runs to get to its wait. */
constexpr std::chrono::milliseconds kUntilItWaits(20);

class Probe final : public IBenchProbe {
  public:
    Return<void> isOdd(uint32_t number, isOdd_cb callback) override {
        callback(number % 2 == 1, 0);
        return Void();
    }
};

int64_t nanoseconds(Clock::time_point time) {
    return std::chrono::nanoseconds(time.time_since_epoch()).count();
}

/**
 * Nanoseconds from just before we do what a new process waits for until it has noticed.
 *
 * @param arguments its own
 * @param awaited gets the socket to it
 */
double untilNoticed(const std::vector<std::string>& arguments, const std::function<void(int)>& awaited) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        failOnCall("socketpair");
    }
    double passed = 0;
    {
        const Child waiter(sibling("bench-waiter"), arguments, ends[1]);
        close(ends[1]);
        char runs;
        if (!readFully(ends[0], &runs, 1)) {
            fail("a process that is to wait has ended");
        }
        std::this_thread::sleep_for(kUntilItWaits);
        const Clock::time_point start = Clock::now();
        awaited(ends[0]);
        int64_t noticed = 0;
        if (!readFully(ends[0], &noticed, sizeof(noticed))) {
            fail("a process that waits has ended");
        }
        passed = static_cast<double>(noticed - nanoseconds(start));
    }
    close(ends[0]);
    if (passed <= 0) {
        fail("a process did not wait");
    }
    return passed;
}

/** Median of some waits. */
double repeated(const std::function<double()>& wait) {
    constexpr size_t kWaits = 9;
    std::vector<double> times;
    while (times.size() < kWaits) {
        times.push_back(wait());
    }
    std::nth_element(times.begin(), times.begin() + kWaits / 2, times.end());
    return times[kWaits / 2];
}

Table measure(bool pinned, const Options& options) {
    std::optional<OneCpu> binding;
    if (pinned) {
        binding.emplace();
    }
    Table table{"Waiting for a service: " + conditions(pinned, options), {}};
    const std::string wait = "registration to getService() in a waiting process, beside one byte";
    if (!options.wants(wait)) {
        return table;
    }
    const auto byte = [] { return untilNoticed({}, [](int socket) { writeFully(socket, "", 1); }); };
    const auto service = [] {
        static int number = 0;  // names stay taken: each is used once
        const std::string instance = "awaited-" + std::to_string(number++);
        return untilNoticed({instance}, [&](int) {
            const sp<IBenchProbe> probe = new Probe;
            if (probe->registerAsService(instance) != android::OK) {
                fail("can not register");
            }
        });
    };
    table.rows.push_back(compare(
            wait, Unit::Nanoseconds, {Limit::Kind::AtMost, kMillisecond}, options.rounds,
            [&] { return repeated(byte); }, [&] { return repeated(service); }));
    return table;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    parseOptions(argc, argv, "Measures how soon a process that waits for a service has it.", &options);
    __android_log_set_minimum_priority(ANDROID_LOG_WARN);
    const TemporaryFolder folder;
    setenv("HIDL_RUNTIME_DIR", (folder / "runtime").c_str(), 1);
    return report({measure(true, options), measure(false, options)}, options);
}
