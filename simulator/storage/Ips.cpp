#include "simulator/storage/Ips.h"

#include <atomic>
#include <cstring>
#include <string>
#include <vector>

#include "simulator/board/Faults.h"
#include "simulator/board/Status.h"
#include "simulator/storage/IniStore.h"

namespace simulator {
namespace {

static_assert(kIpCount < 32, "a bit each, and one that tells that they have been read");
constexpr uint32_t kIpsRead = 1U << 31;

// Bit n: IP n is enabled. Asked often, so read from the file only at the first question and at each init.
std::atomic<uint32_t> sIps{0};

uint32_t readIps() {
    uint32_t ips = kIpsRead;
    bool readable = true;
    std::vector<std::string> faults;
    for (unsigned id = 0; id < kIpCount; ++id) {
        bool enabled = kIps[id].fused;
        char value[16];
        const std::string parameter = std::string("ip:") + kIps[id].key;
        const int32_t result =
                readable ? boardIni().get("ip", parameter.c_str(), value, sizeof(value)) : kNotFound;
        if (result == kOk && (strcmp(value, "0") == 0 || strcmp(value, "1") == 0)) {
            enabled = value[0] == '1';
        } else if (result == kOk || result == kTooLong) {
            faults.push_back(std::string("the value of ") + kIps[id].key + " is not 0 or 1: ignored");
        } else if (result != kNotFound) {
            faults.push_back("cannot be read (status " + std::to_string(result) + "): ignored");
            readable = false;
        }
        ips |= enabled ? 1U << id : 0;
    }
    tellFaults("ini/ip.ini", faults);
    return ips;
}

}  // namespace

bool ipEnabled(unsigned id) {
    uint32_t ips = sIps.load(std::memory_order_relaxed);
    if (ips == 0) {
        // A reload in the meantime has read something newer.
        const uint32_t read = readIps();
        ips = sIps.compare_exchange_strong(ips, read) ? read : ips;
    }
    return (ips >> id & 1U) != 0;
}

void reloadIps() {
    sIps = readIps();
}

}  // namespace simulator
