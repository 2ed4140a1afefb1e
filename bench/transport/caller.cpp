// bench-caller <instance> | keep <instance> | raw <socket path> <request bytes> <reply bytes>: one of several
// client processes. Makes tiny calls to bench-server, to which it first gives an object of its own with
// "keep", or calls of the given size to bench-raw-server, for as long as its standard input orders, and
// answers there with how many.

#include <android/log.h>
#include <unistd.h>
#include <zvttv/bench/1.0/IBenchServer.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>

#include "bench/transport/Crowd.h"
#include "bench/transport/Raw.h"
#include "bench/transport/Workloads.h"

namespace {

using Clock = std::chrono::steady_clock;
using ::android::sp;
using ::android::hardware::Return;
using ::android::hardware::Void;
using ::zvttv::bench::V1_0::IBenchProbe;
using ::zvttv::bench::V1_0::IBenchServer;

class Probe final : public IBenchProbe {
  public:
    Return<void> isOdd(uint32_t number, isOdd_cb callback) override {
        callback(number % 2 == 1, 0);
        return Void();
    }
};

/** Asking for the time at every call would be a part of what is measured. */
constexpr uint64_t kCallsBetweenLooks = 16;

template <typename Call>
int serveOrders(const Call& call) {
    call();
    uint64_t calls = 1;
    bench::RoundOrder order;
    while (bench::writeFully(STDIN_FILENO, &calls, sizeof(calls)) &&
           bench::readFully(STDIN_FILENO, &order, sizeof(order))) {
        const Clock::time_point start{std::chrono::nanoseconds(order.startNanoseconds)};
        const Clock::time_point end{std::chrono::nanoseconds(order.endNanoseconds)};
        std::this_thread::sleep_until(start);
        for (calls = 0; Clock::now() < end; calls += kCallsBetweenLooks) {
            for (uint64_t i = 0; i < kCallsBetweenLooks; ++i) {
                call();
            }
        }
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    __android_log_set_minimum_priority(ANDROID_LOG_WARN);
    const std::string first = argc > 1 ? argv[1] : "";
    if (first == "raw" && argc == 5) {
        bench::RawClient client(argv[2], {std::stoull(argv[3]), std::stoull(argv[4])});
        return serveOrders([&] { client.call(); });
    }
    if (argc != (first == "keep" ? 3 : 2)) {
        std::fprintf(stderr,
                     "usage: bench-caller <instance> | keep <instance> | raw <path> <request> <reply>\n");
        return 2;
    }
    const sp<bench::IZvtTvFApiInformation> information =
            bench::IZvtTvFApiInformation::getService(argv[argc - 1]);
    if (information == nullptr) {
        std::fprintf(stderr, "bench-caller: no service\n");
        return 2;
    }
    if (first == "keep") {
        const sp<IBenchServer> server = IBenchServer::getService(argv[2]);
        if (server == nullptr || !server->keep(new Probe).isOk()) {
            std::fprintf(stderr, "bench-caller: its object is not kept\n");
            return 2;
        }
    }
    return serveOrders([&] { bench::tinyCall(*information); });
}
