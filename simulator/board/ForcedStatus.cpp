#include "simulator/board/ForcedStatus.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "simulator/board/Text.h"

namespace simulator {
namespace {

constexpr char kPrefix[] = "a_zvttvfapi_";

ForcePoint* find(const std::string& name) {
    for (ForcePoint& point : forcePoints()) {
        if (name == point.function() || kPrefix + name == point.function()) {
            return &point;
        }
    }
    return nullptr;
}

template <typename Number>
bool readSigned(std::string_view text, Number* number) {
    const bool negative = !text.empty() && text[0] == '-';
    text.remove_prefix(negative ? 1 : 0);
    uint32_t magnitude = 0;
    const bool good = readAnyNumber(text, &magnitude);
    const int64_t value = negative ? -int64_t{magnitude} : int64_t{magnitude};
    *number = static_cast<Number>(value);
    // A status of 0x80000000 or above is meant as its bits.
    return good && (*number == value || (text.substr(0, 2) == "0x" && !negative));
}

bool forceFromEnvironment() {
    const char* orders = getenv("ZVTTV_BOARD_FORCE");
    std::istringstream list(orders == nullptr ? "" : orders);
    for (std::string order; std::getline(list, order, ';');) {
        const std::string fault = forceStatus(order);
        if (!fault.empty()) {
            fprintf(stderr, "board: ZVTTV_BOARD_FORCE: %s\n", fault.c_str());
        }
    }
    return true;
}

const bool sForcedFromEnvironment = forceFromEnvironment();

}  // namespace

// For what holds the board's parts without its functions.
__attribute__((weak)) ForcePoints forcePoints() {
    return {nullptr, nullptr};
}

bool ForcePoint::takeOne(int32_t* status) {
    uint64_t order = mOrder.load();
    uint64_t left;
    do {
        if (order == 0) {
            return false;  // another call was the last one
        }
        const uint64_t calls = order >> 32;
        left = calls == kAlways ? order : calls == 1 ? 0 : order - (uint64_t{1} << 32);
    } while (!mOrder.compare_exchange_weak(order, left));
    *status = static_cast<int32_t>(static_cast<uint32_t>(order));
    return true;
}

uint32_t ForcePoint::pending(int32_t* status) const {
    const uint64_t order = mOrder.load();
    *status = static_cast<int32_t>(static_cast<uint32_t>(order));
    return static_cast<uint32_t>(order >> 32);
}

std::string forceStatus(const std::string& order) {
    std::istringstream words(order);
    std::string function, status, calls, more;
    words >> function >> status >> calls >> more;
    if (function == "clear" && status.empty()) {
        for (ForcePoint& point : forcePoints()) {
            point.set(0, 0);
        }
        return {};
    }
    ForcePoint* const point = find(function);
    if (point == nullptr) {
        return "there is no function \"" + function + "\"";
    }
    if (status == "clear" && calls.empty()) {
        point->set(0, 0);
        return {};
    }
    int32_t forced = 0;
    if (!readSigned(status, &forced)) {
        return "\"" + status + "\" is not a status";
    }
    uint32_t count = calls.empty() ? 1 : ForcePoint::kAlways;
    if ((!calls.empty() && calls != "always" && (!readSigned(calls, &count) || count == 0)) ||
        !more.empty()) {
        return "\"" + calls + (more.empty() ? "" : " " + more) +
               "\" is neither a number of calls nor \"always\"";
    }
    point->set(forced, count);
    return {};
}

std::string describeForcedStatuses() {
    std::string text;
    for (const ForcePoint& point : forcePoints()) {
        int32_t status = 0;
        const uint32_t calls = point.pending(&status);
        if (calls != 0) {
            text += std::string(point.function()) + " " + std::to_string(status) + " " +
                    (calls == ForcePoint::kAlways ? "always" : std::to_string(calls)) + "\n";
        }
    }
    return text;
}

}  // namespace simulator
