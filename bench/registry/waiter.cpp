// bench-waiter [<instance>]: says on its standard input that it runs, waits for a service that is not there
// yet, and says when it had it; without an instance, waits for a byte there instead. Times are of
// CLOCK_MONOTONIC.

#include <android/log.h>
#include <unistd.h>
#include <zvttv/bench/1.0/IBenchProbe.h>

#include <chrono>
#include <cstdio>

#include "bench/transport/Raw.h"

int main(int argc, char** argv) {
    __android_log_set_minimum_priority(ANDROID_LOG_WARN);
    if (!bench::writeFully(STDIN_FILENO, "", 1)) {
        return 2;
    }
    if (argc == 2) {
        if (zvttv::bench::V1_0::IBenchProbe::getService(argv[1]) == nullptr) {
            std::fprintf(stderr, "bench-waiter: no service\n");
            return 2;
        }
    } else {
        char byte;
        if (!bench::readFully(STDIN_FILENO, &byte, 1)) {
            return 2;
        }
    }
    const int64_t got = std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    bench::writeFully(STDIN_FILENO, &got, sizeof(got));
    pause();  // whoever started it ends it
    return 0;
}
