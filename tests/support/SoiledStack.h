#pragma once

#include <cstddef>
#include <cstdint>

/** Leaves bytes that are not zero where the frames of the next calls will lie. */
[[gnu::noinline]] inline void soilStack() {
    constexpr size_t kDeeperThanAnyCall = 32 * 1024;
    volatile uint8_t bytes[kDeeperThanAnyCall];
    for (volatile uint8_t& byte : bytes) {
        byte = 0xA5;
    }
}
