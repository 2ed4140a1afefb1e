#include <atomic>
#include <cstdio>
#include <cstring>
#include <string>

#include "simulator/Board.h"
#include "simulator/ChipCall.h"
#include "simulator/ChipLayer.h"
#include "simulator/Ips.h"
#include "simulator/Module.h"

using namespace simulator;

namespace {

Module& self() {
    static Module& sModule = *new Module("info");
    return sModule;
}

static_assert(kIpCount < 32, "a bit each, and one that tells that they have been read");
constexpr uint32_t kIpsRead = 1U << 31;

// Bit n: IP n is enabled. Asked often, so read from the file only at the first question and at each init.
std::atomic<uint32_t> sIps{0};

uint32_t readIps() {
    uint32_t ips = kIpsRead;
    bool readable = true;
    for (unsigned id = 0; id < kIpCount; ++id) {
        bool enabled = kIps[id].fused;
        char value[16];
        const std::string parameter = std::string("ip:") + kIps[id].key;
        const int32_t result =
                readable ? boardIni().get("ip", parameter.c_str(), value, sizeof(value)) : kNotFound;
        if (result == kOk && (strcmp(value, "0") == 0 || strcmp(value, "1") == 0)) {
            enabled = value[0] == '1';
        } else if (result == kOk || result == kTooLong) {
            fprintf(stderr, "board: ip.ini: the value of %s is not 0 or 1: ignored\n", kIps[id].key);
        } else if (result != kNotFound) {
            fprintf(stderr, "board: ip.ini cannot be read (status %d): ignored\n", result);
            readable = false;
        }
        ips |= enabled ? 1U << id : 0;
    }
    return ips;
}

}  // namespace

int32_t a_zvttvfapi_info_init() {
    return guarded([] {
        const int32_t result = self().init();
        if (result == kOk) {
            sIps = readIps();
        }
        return result;
    });
}
int32_t a_zvttvfapi_info_deinit() {
    return self().deinit();
}
int32_t a_zvttvfapi_info_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    return self().registerHandler(pfnHandler);
}
int32_t a_zvttvfapi_info_unreg_callback() {
    return self().unregisterHandler();
}

int32_t a_zvttvfapi_info_get_ini_para(unsigned char const* pu8Arg1, unsigned char const* pu8Arg2,
                                      unsigned char* pu8Value, unsigned int u32Size) {
    return guarded([&] {
        return boardIni().get(text(pu8Arg1), text(pu8Arg2), reinterpret_cast<char*>(pu8Value), u32Size);
    });
}

int32_t a_zvttvfapi_info_set_ini_para(unsigned char const* pu8Arg1, unsigned char const* pu8Arg2,
                                      unsigned char const* pu8Value) {
    return guarded([&] { return boardIni().set(text(pu8Arg1), text(pu8Arg2), text(pu8Value)); });
}

int32_t a_zvttvfapi_info_get_ip_enable_status(unsigned int u32IpId, unsigned char* pu8Enable) {
    if (u32IpId >= kIpCount || pu8Enable == nullptr) {
        return kOutOfRange;
    }
    uint32_t ips = sIps.load(std::memory_order_relaxed);
    if (ips == 0) {
        const int32_t result = guarded([&] {
            // An init in the meantime has read something newer.
            const uint32_t read = readIps();
            ips = sIps.compare_exchange_strong(ips, read) ? read : ips;
            return kOk;
        });
        if (result != kOk) {
            return result;
        }
    }
    *pu8Enable = ips >> u32IpId & 1U;
    return kOk;
}
