// bench-transport: calls between processes, beside ping-pong of the same bytes over a raw socket.

#include <android/log.h>
#include <zvttv/bench/1.0/IBenchServer.h>

#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "bench/common/CommandLine.h"
#include "bench/common/Process.h"
#include "bench/common/Rounds.h"
#include "bench/common/Table.h"
#include "bench/transport/Crowd.h"
#include "bench/transport/Growth.h"
#include "bench/transport/Raw.h"
#include "bench/transport/WireBytes.h"
#include "bench/transport/Workloads.h"

namespace {

using namespace bench;
using ::android::sp;
using ::zvttv::bench::V1_0::IBenchServer;

constexpr size_t kCrowd = 8;
/** Instance of a server with one thread. */
constexpr char kPoolOfOne[] = "pool-of-one";

void bytesCall(IBenchServer& server, uint32_t count) {
    size_t got = 0;
    server.bytes(count, [&](const auto& bytes) { got = bytes.size(); }).assertOk();
    if (got != count) {
        fail("the server sent " + std::to_string(got) + " bytes for " + std::to_string(count));
    }
}

std::string withBytes(const std::string& workload, const Exchange& exchange) {
    return workload + " (" + std::to_string(exchange.request) + " B out, " + std::to_string(exchange.reply) +
           " B back)";
}

double allocationsOfTinyCall(IBenchServer& server, IZvtTvFApiInformation& information) {
    constexpr int kCalls = 1000;
    // What the two calls around them allocate is measured, and taken off.
    server.countAllocations().assertOk();
    const uint64_t around = server.allocations();
    server.countAllocations().assertOk();
    for (int i = 0; i < kCalls; ++i) {
        tinyCall(information);
    }
    const uint64_t all = server.allocations();
    return static_cast<double>(all - around) / kCalls;
}

/**
 * One set of servers, clients and figures. Limits hold on one CPU, where wake-ups cost both sides the same;
 * that of many processes holds on all CPUs too, which it is to keep busy.
 */
Table measure(bool pinned, const TemporaryFolder& folder, const Options& options) {
    std::optional<OneCpu> binding;
    if (pinned) {
        binding.emplace();
    }
    const std::string rawSocket = folder / "raw";
    const Child rawServer(sibling("bench-raw-server"), {rawSocket});
    const Child ownServer(sibling("bench-server"), {"default", kServiceThreads});
    const Child poolOfOne(sibling("bench-server"), {kPoolOfOne, "1"});
    const sp<IZvtTvFApiInformation> information = IZvtTvFApiInformation::getService("default");
    const sp<IBenchServer> server = IBenchServer::getService("default");
    if (information == nullptr || server == nullptr) {
        fail("bench-server is not registered");
    }

    struct Workload {
        const char* name;
        double timesAtMost;
        std::function<void()> call;
    };
    const std::vector<Workload> workloads{
            {"tiny call", 1.08, [&] { tinyCall(*information); }},
            {"two texts in, 100 bytes out", 1.12, [&] { textCall(*information); }},
            {"64 KiB result", 1.1, [&] { bytesCall(*server, 64 * 1024); }},
            {"512 KiB result", 1.08, [&] { bytesCall(*server, 512 * 1024); }},
    };
    const auto limit = [&](Limit::Kind kind, double value) { return pinned ? Limit{kind, value} : Limit{}; };

    Table table{"Calls between processes: " + conditions(pinned, options), {}};
    for (const Workload& workload : workloads) {
        if (!options.wants(workload.name)) {
            continue;
        }
        const Exchange exchange = bytesOf(workload.call);
        RawClient raw(rawSocket, exchange);
        table.rows.push_back(compare(withBytes(workload.name, exchange), Unit::Nanoseconds,
                                     limit(Limit::Kind::TimesAtMost, workload.timesAtMost), options.rounds,
                                     timeOf(options.seconds, [&] { raw.call(); }),
                                     timeOf(options.seconds, workload.call)));
    }

    struct Server {
        const char* pool;
        const char* instance;
    };
    for (const Server& kind :
         {Server{"a server's pool of ten", "default"}, Server{"a server's pool of one", kPoolOfOne}}) {
        const std::string name = "tiny calls of " + std::to_string(kCrowd) + " processes, " + kind.pool;
        if (!options.wants(name)) {
            continue;
        }
        const Exchange exchange = bytesOf(workloads[0].call);
        Crowd raw(kCrowd,
                  {"raw", rawSocket, std::to_string(exchange.request), std::to_string(exchange.reply)});
        Crowd own(kCrowd, {kind.instance});
        table.rows.push_back(compare(
                withBytes(name, exchange), Unit::CallsPerSecond,
                {Limit::Kind::TimesAtLeast, pinned ? 0.8 : 0.75}, options.rounds,
                [&] { return raw.callsPerSecond(options.seconds); },
                [&] { return own.callsPerSecond(options.seconds); }));
    }
    const std::string allocationsName = "heap allocations in the server, tiny call";
    if (options.wants(allocationsName)) {
        table.rows.push_back(single(allocationsName, Unit::Count, limit(Limit::Kind::AtMost, 4),
                                    allocationsOfTinyCall(*server, *information)));
    }
    return table;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    parseOptions(argc, argv,
                 "Measures calls between two processes beside raw sockets that move the same bytes.",
                 &options);

    __android_log_set_minimum_priority(ANDROID_LOG_WARN);
    const TemporaryFolder folder;
    setenv("HIDL_RUNTIME_DIR", (folder / "runtime").c_str(), 1);
    return report(
            {measure(true, folder, options), measure(false, folder, options), measureGrowth(folder, options)},
            options);
}
