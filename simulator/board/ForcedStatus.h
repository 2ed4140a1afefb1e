#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace simulator {

/**
 * Where one chip-layer function can be told to return a status instead of doing its work. Orders find it by
 * the function's name. Any thread.
 */
class ForcePoint {
  public:
    static constexpr uint32_t kAlways = UINT32_MAX;

    constexpr explicit ForcePoint(const char* function) : mFunction(function) {}

    const char* function() const { return mFunction; }

    /** Whether the call at hand is to return *status. One relaxed load when nothing is forced. */
    bool take(int32_t* status) { return mOrder.load(std::memory_order_relaxed) != 0 && takeOne(status); }

    /** The next calls return the status: that many, kAlways for all, 0 for none. */
    void set(int32_t status, uint32_t calls) {
        mOrder.store(calls == 0 ? 0 : uint64_t{calls} << 32 | static_cast<uint32_t>(status));
    }

    /** What is left of an order, 0 calls for none. */
    uint32_t pending(int32_t* status) const;

  private:
    bool takeOne(int32_t* status);

    const char* const mFunction;
    // Calls left in the upper half, their status in the lower.
    std::atomic<uint64_t> mOrder{0};
};

/** One for each function that the library defines. forced.py writes them, and the functions that ask them. */
struct ForcePoints {
    ForcePoint* first;
    ForcePoint* last;

    ForcePoint* begin() const { return first; }
    ForcePoint* end() const { return last; }
};
ForcePoints forcePoints();

/**
 * Carries out an order:
 *
 *     FUNCTION STATUS           the next call returns STATUS and does nothing
 *     FUNCTION STATUS COUNT     the next COUNT calls do
 *     FUNCTION STATUS always    all calls do
 *     FUNCTION clear            none does any longer
 *     clear                     of no function
 *
 * FUNCTION is a chip-layer function's name, with or without its "a_zvttvfapi_"; numbers are decimal, or
 * hexadecimal after 0x. $ZVTTV_BOARD_FORCE holds orders that are carried out when the library is loaded,
 * separated by semicolons.
 *
 * @return empty, or what is wrong with it
 */
std::string forceStatus(const std::string& order);

/** The orders that are pending, a line each. */
std::string describeForcedStatuses();

}  // namespace simulator
