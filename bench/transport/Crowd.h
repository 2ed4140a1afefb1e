#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "bench/common/Process.h"

namespace bench {

/** Orders one round to a client process over its standard input; times are of CLOCK_MONOTONIC. */
struct RoundOrder {
    int64_t startNanoseconds;
    int64_t endNanoseconds;
};

/** Client processes that make tiny calls at the same time. Between rounds they sleep. */
class Crowd {
  public:
    /** @param arguments of bench-caller */
    Crowd(size_t size, const std::vector<std::string>& arguments);
    ~Crowd();

    /** Calls of all of them in a second. */
    double callsPerSecond(double seconds);

  private:
    struct Member;
    std::vector<std::unique_ptr<Member>> mMembers;
};

}  // namespace bench
