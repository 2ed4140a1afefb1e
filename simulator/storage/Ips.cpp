#include "simulator/storage/Ips.h"

#include <atomic>
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
    IniContents contents;
    const int32_t status = boardIni().read("ip", &contents);
    for (unsigned id = 0; id < kIpCount; ++id) {
        bool enabled = kIps[id].fused;
        if (const auto found = contents.parameters.find(std::string("ip:") + kIps[id].key);
            found != contents.parameters.end()) {
            const std::string& value = found->second.text;
            enabled = value == "0" || value == "1" ? value == "1" : enabled;
            if (value != "0" && value != "1") {
                contents.faults[found->second.line] =
                        "the value of " + found->first + " is not 0 or 1: ignored";
            }
        }
        ips |= enabled ? 1U << id : 0;
    }
    std::vector<std::string> faults = contents.faultLines();
    if (status != kOk && status != kNotFound) {
        faults = {"cannot be read (status " + std::to_string(status) + "): ignored"};
    }
    tellFaults(boardIni().pathOf("ip"), faults);
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
