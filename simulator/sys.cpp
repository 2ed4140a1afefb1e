// Module sys: its lifecycle and the control of the board. Files are in sysfiles.cpp, storage in
// sysstorage.cpp.

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "simulator/Board.h"
#include "simulator/BoardOrders.h"
#include "simulator/ChipCall.h"
#include "simulator/ChipLayer.h"
#include "simulator/Emmc.h"
#include "simulator/EventPipe.h"
#include "simulator/FirmwareUpgrade.h"
#include "simulator/Module.h"
#include "simulator/Registers.h"
#include "simulator/SecureStorage.h"

using namespace simulator;

namespace {

constexpr unsigned char kMius = 2;
constexpr unsigned short kMinModulationKilohertz = 20;
constexpr unsigned short kMaxModulationKilohertz = 100;
constexpr unsigned short kMaxDeviation = 300;  // 3 %

// The variable that the clock is set by: seconds that it is ahead of the host's.
constexpr char kClockVariable[] = "rtc_offset";

Registers& registers() {
    static Registers& sRegisters = *new Registers;
    return sRegisters;
}

std::string describe();

Module& self() {
    static Module& sModule = *new Module("sys", describe);
    return sModule;
}

FirmwareUpgrade& firmware() {
    static FirmwareUpgrade& sFirmware = *new FirmwareUpgrade(self(), *new Sandbox(boardState()), boardEmmc());
    return sFirmware;
}

int32_t readClock(unsigned* seconds) {
    char text[Emmc::kMaxValueBytes + 1];
    int64_t offset = 0;
    const int32_t status = boardEmmc().get(kClockVariable, text, sizeof(text));
    if (status == kOk) {
        const char* const end = text + strlen(text);
        const auto [rest, error] = std::from_chars(text, end, offset);
        if (error != std::errc() || rest != end) {
            fprintf(stderr, "board: the variable %s is \"%s\", not a number of seconds\n", kClockVariable,
                    text);
            return kOutOfRange;
        }
    } else if (status != kNotFound) {
        return status;
    }
    int64_t sum = 0;
    // The clock's 32 bits wrap around neither below 1970 nor beyond 2106.
    if (seconds == nullptr || __builtin_add_overflow(int64_t{time(nullptr)}, offset, &sum) || sum < 0 ||
        sum > int64_t{UINT32_MAX}) {
        return kOutOfRange;
    }
    *seconds = static_cast<unsigned>(sum);
    return kOk;
}

std::string describe() {
    unsigned seconds = 0;
    const int32_t clock = readClock(&seconds);
    uint32_t watchdog = 0;
    registers().read(kStatusBank, kWatchdogRegister, &watchdog);
    return std::string("watchdog ") + (watchdog != 0 ? "on" : "off") + "\nclock " +
           (clock == kOk ? std::to_string(seconds) : "status " + std::to_string(clock)) + "\n" +
           registers().describe() + firmware().describe() + boardEmmc().describe() +
           SecureStorage(boardState()).describe();
}

}  // namespace

int32_t a_zvttvfapi_sys_init() {
    return guarded([] {
        const int32_t status = self().init();
        if (status == kOk) {
            registers().reset();
            firmware().enable();
            startEventPipe();
        }
        return status;
    });
}

int32_t a_zvttvfapi_sys_deinit() {
    return guarded([] {
        firmware().disable();
        return self().deinit();
    });
}

int32_t a_zvttvfapi_sys_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    return self().registerHandler(pfnHandler);
}

int32_t a_zvttvfapi_sys_unreg_callback() {
    return self().unregisterHandler();
}

int32_t a_zvttvfapi_sys_set_wdt(unsigned char u8Enable) {
    return guarded([&] {
        if (u8Enable > 1) {
            return kOutOfRange;
        }
        registers().report({{kWatchdogRegister, u8Enable}});
        return kOk;
    });
}

int32_t a_zvttvfapi_sys_get_wdt_status() {
    return guarded([] {
        uint32_t enabled = 0;
        registers().read(kStatusBank, kWatchdogRegister, &enabled);
        return static_cast<int32_t>(enabled);
    });
}

int32_t a_zvttvfapi_sys_set_miu_ssc(unsigned char u8MiuId, unsigned short u16Modulation,
                                    unsigned short u16Deviation, unsigned char u8Enable) {
    return guarded([&] {
        if (u8MiuId >= kMius || u16Modulation < kMinModulationKilohertz ||
            u16Modulation > kMaxModulationKilohertz || u16Deviation > kMaxDeviation || u8Enable > 1) {
            return kOutOfRange;
        }
        const uint32_t first = kMiuRegisters + 4U * u8MiuId;
        registers().report({{first, u8Enable}, {first + 1, u16Modulation}, {first + 2, u16Deviation}});
        return kOk;
    });
}

int32_t a_zvttvfapi_sys_upgrade_fw(unsigned char u8Target, char const* pcPath) {
    return guarded([&] { return firmware().upgrade(u8Target, pcPath); });
}

int32_t a_zvttvfapi_sys_read_reg(unsigned int u32Bank, unsigned int u32Offset, unsigned int* pu32Value) {
    return guarded([&] { return registers().read(u32Bank, u32Offset, pu32Value); });
}

int32_t a_zvttvfapi_sys_write_reg(unsigned int u32Bank, unsigned int u32Offset, unsigned int u32Value) {
    return guarded([&] { return registers().write(u32Bank, u32Offset, u32Value); });
}

int32_t a_zvttvfapi_sys_send_cmd_to_factory_svc(fapi_core::ZvtTvFApiSysFactorySvcCmd_e eCmd,
                                                unsigned char const* pu8Text) {
    return guarded([&] {
        if (pu8Text == nullptr) {
            return kOutOfRange;
        }
        switch (eCmd) {
            case fapi_core::SYS_FACTORY_SVC_CMD_RAISE_EVENT:
                return carryOutOrder(text(pu8Text));
            case fapi_core::SYS_FACTORY_SVC_CMD_FORCE_STATUS:
                return forceOrder(text(pu8Text));
            case fapi_core::SYS_FACTORY_SVC_CMD_DUMP_STATE:
                return printState(text(pu8Text));
        }
        return kOutOfRange;
    });
}

int32_t a_zvttvfapi_sys_get_rtc_time(unsigned int* pu32Time) {
    return guarded([&] { return readClock(pu32Time); });
}
