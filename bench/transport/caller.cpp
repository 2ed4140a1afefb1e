// bench-caller [<socket path> <request bytes> <reply bytes>]: one of several client processes. Makes tiny
// calls to bench-server, or calls of the given size to bench-raw-server, for as long as its standard input
// orders, and answers there with how many.

#include <unistd.h>

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
    if (argc == 4) {
        bench::RawClient client(argv[1], {std::stoull(argv[2]), std::stoull(argv[3])});
        return serveOrders([&] { client.call(); });
    }
    const auto information = bench::IZvtTvFApiInformation::getService("default");
    if (information == nullptr) {
        std::fprintf(stderr, "bench-caller: no service\n");
        return 2;
    }
    return serveOrders([&] { bench::tinyCall(*information); });
}
