#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <string>

namespace simulator {

// This room: the network interfaces of the board, which are not the host's.

/** eth0, up after each start, and wlan0. The MAC address is eth0's. Any thread. */
class NetworkInterfaces {
  public:
    static constexpr size_t kMacBytes = 6;
    using Mac = std::array<unsigned char, kMacBytes>;

    /** As after power-on, with the address that the boot environment has, else the one that it was delivered
     * with, which is made from the serial number; an unusable variable is said on standard error. */
    void start();

    /** Six groups of two hexadecimal digits, all separated by ':' or all by '-'. kOutOfRange for a group
     * address and for zeros, or a status of the boot environment, which keeps it. */
    int32_t setMac(const char* text);

    /** kNotFound for an interface that there is not. */
    int32_t setUp(const char* name, bool up);

    /** A line for each. */
    std::string describe() const;

  private:
    static constexpr size_t kCount = 2;

    mutable std::mutex mMutex;
    // All below guarded by mMutex.
    Mac mMac{};
    bool mUp[kCount] = {};
};

}  // namespace simulator
