#include "simulator/panel/Settings.h"

#include <iterator>

namespace simulator {
namespace {

constexpr Limits kPicture[] = {{0, 100, 50}, {0, 100, 50}, {0, 100, 50},
                               {0, 100, 50}, {0, 100, 50}, {0, 100, 80}};
constexpr Limits kOverscan[] = {{-200, 200, 0}, {-200, 200, 0}, {-200, 200, 0}, {-200, 200, 0}};
constexpr Limits kWhitePoint[] = {{0, 2047, 1024}, {0, 2047, 1024}, {0, 2047, 1024},
                                  {0, 2047, 1024}, {0, 2047, 1024}, {0, 2047, 1024}};
constexpr Limits kPq[] = {{-100, 100, 0}, {-100, 100, 0}, {-100, 100, 0}, {0, 3, 0}, {0, 3, 0}, {0, 3, 0}};
constexpr Limits kLink[] = {{0, 1, 0}, {1, 16, 4}, {6, 10, 10}, {0, 1, 0}, {100, 600, 350}, {0, 3, 0}};
constexpr Limits kTiming[] = {{0, std::size(kTimings) - 1, 0}};
constexpr Limits kFirmware[] = {{0, UINT32_MAX, 0x010000}};
constexpr int64_t kMaxGamma = 1023;

static_assert(std::size(kPicture) == kPictureParameters && std::size(kPq) == kPqItems, "a field for each");

template <size_t kCount>
std::vector<Limits> list(const Limits (&limits)[kCount]) {
    return {std::begin(limits), std::end(limits)};
}

/** As delivered the levels pass unchanged. */
std::vector<Limits> gamma() {
    std::vector<Limits> limits;
    for (int64_t i = 0; i < kGammaEntries; ++i) {
        limits.push_back({0, kMaxGamma, (i * kMaxGamma * 2 + 255) / 510});
    }
    return limits;
}

}  // namespace

KeptNumbers& displaySettings() {
    // In the order of Setting.
    static KeptNumbers& sSettings = *new KeptNumbers(boardSettings(), "display",
                                                     {{"picture:main", list(kPicture)},
                                                      {"picture:sub", list(kPicture)},
                                                      {"picture:third", list(kPicture)},
                                                      {"picture:overscan", list(kOverscan)},
                                                      {"picture:white_point", list(kWhitePoint)},
                                                      {"picture:pq", list(kPq)},
                                                      {"link:attributes", list(kLink)},
                                                      {"link:timing", list(kTiming)},
                                                      {"gamma:red", gamma()},
                                                      {"gamma:green", gamma()},
                                                      {"gamma:blue", gamma()},
                                                      {"frc:firmware", list(kFirmware)}});
    return sSettings;
}

}  // namespace simulator
