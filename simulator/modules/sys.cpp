// Module sys: files, storage and keys, firmware, registers, and the control of the board.

#include "simulator/board/BoardOrders.h"
#include "simulator/board/ChipCall.h"
#include "simulator/board/EventPipe.h"
#include "simulator/board/Module.h"
#include "simulator/board/OwnParameters.h"
#include "simulator/board/Refusals.h"
#include "simulator/board/Registers.h"
#include "simulator/modules/ChipLayer.h"
#include "simulator/storage/BootVariables.h"
#include "simulator/storage/Emmc.h"
#include "simulator/storage/Files.h"
#include "simulator/storage/SecureStorage.h"
#include "simulator/upgrade/FirmwareUpgrade.h"

using namespace simulator;

namespace {

constexpr unsigned char kMius = 2;
constexpr unsigned short kMinModulationKilohertz = 20;
constexpr unsigned short kMaxModulationKilohertz = 100;
constexpr unsigned short kMaxDeviation = 300;  // 3 %

SecureStorage& secureStorage() {
    static SecureStorage& sStorage = *new SecureStorage;
    return sStorage;
}

Registers& registers() {
    static Registers& sRegisters = *new Registers;
    return sRegisters;
}

int32_t obey(fapi_core::ZvtTvFApiSysFactorySvcCmd_e command, const char* order) {
    switch (command) {
        case fapi_core::SYS_FACTORY_SVC_CMD_RAISE_EVENT:
            return carryOutOrder(order);
        case fapi_core::SYS_FACTORY_SVC_CMD_FORCE_STATUS:
            return forceOrder(order);
        case fapi_core::SYS_FACTORY_SVC_CMD_DUMP_STATE:
            return printState(order);
    }
    complain("there is no command " + std::to_string(command));
    return kOutOfRange;
}

std::string describe();

Module& self() {
    static Module& sModule = *new Module("sys", describe);
    return sModule;
}

FirmwareUpgrade& firmware() {
    static FirmwareUpgrade& sFirmware = *new FirmwareUpgrade(self());
    return sFirmware;
}

std::string describe() {
    unsigned seconds = 0;
    const int32_t clock = readClock(&seconds);
    uint32_t watchdog = 0;
    registers().read(kStatusBank, kWatchdogRegister, &watchdog);
    return std::string("watchdog ") + (watchdog != 0 ? "on" : "off") + "\nclock " +
           (clock == kOk ? std::to_string(seconds) : "status " + std::to_string(clock)) + "\n" +
           registers().describe() + firmware().describe() + boardEmmc().describe() +
           secureStorage().describe();
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
        const int32_t status = obey(eCmd, text(pu8Text));
        if (status != kOk) {
            keepRefusal(std::string(kOrderFunction) + " " + std::to_string(eCmd) + " " + text(pu8Text));
        }
        return status;
    });
}

int32_t a_zvttvfapi_sys_get_rtc_time(unsigned int* pu32Time) {
    return guarded([&] { return readClock(pu32Time); });
}

int32_t a_zvttvfapi_sys_check_file(unsigned char const* pu8Path) {
    return guarded([&] { return files::check(text(pu8Path)); });
}

int32_t a_zvttvfapi_sys_check_folder(unsigned char const* pu8Path) {
    return guarded([&] { return files::checkFolder(text(pu8Path)); });
}

int32_t a_zvttvfapi_sys_create_file(unsigned char const* pu8Path) {
    return guarded([&] { return files::create(text(pu8Path)); });
}

int32_t a_zvttvfapi_sys_create_folder(unsigned char const* pu8Path) {
    return guarded([&] { return files::createFolder(text(pu8Path)); });
}

int32_t a_zvttvfapi_sys_remove_file(unsigned char const* pu8Path) {
    return guarded([&] { return files::remove(text(pu8Path)); });
}

int32_t a_zvttvfapi_sys_copy_file(unsigned char const* pu8SrcPath, unsigned char const* pu8DstPath,
                                  bool bCopyOption) {
    return guarded([&] { return files::copy(text(pu8SrcPath), text(pu8DstPath), bCopyOption); });
}

int32_t a_zvttvfapi_sys_change_file_mode(unsigned char const* pu8Path, unsigned int u32Mode) {
    return guarded([&] { return files::setMode(text(pu8Path), u32Mode); });
}

int32_t a_zvttvfapi_sys_sync_fs() {
    return guarded([] { return files::sync(); });
}

int32_t a_zvttvfapi_sys_get_file_checksum(unsigned char const* pu8Path, unsigned int* pu32Checksum) {
    return guarded([&] { return files::checksum(text(pu8Path), pu32Checksum); });
}

int32_t a_zvttvfapi_sys_read_file(unsigned char const* pu8Path, unsigned char* pu8Data,
                                  unsigned int u32Length, unsigned long long u64Offset,
                                  unsigned int* pu32LengthRead) {
    return guarded([&] { return files::read(text(pu8Path), pu8Data, u32Length, u64Offset, pu32LengthRead); });
}

int32_t a_zvttvfapi_sys_read_file_one_line(unsigned char const* pu8Path, unsigned char* pu8Data,
                                           unsigned int u32Length, unsigned long long u64Offset) {
    return guarded([&] { return files::readLine(text(pu8Path), pu8Data, u32Length, u64Offset); });
}

int32_t a_zvttvfapi_sys_write_file(unsigned char const* pu8Path, unsigned char const* pu8Data,
                                   unsigned int u32Length, unsigned char const* pu8Mode) {
    return guarded([&] { return files::write(text(pu8Path), pu8Data, u32Length, text(pu8Mode)); });
}

int32_t a_zvttvfapi_sys_get_emmc_env_var(unsigned char const* pu8Name, unsigned char* pu8Value,
                                         unsigned int u32Size) {
    return guarded(
            [&] { return boardEmmc().get(text(pu8Name), reinterpret_cast<char*>(pu8Value), u32Size); });
}

int32_t a_zvttvfapi_sys_set_emmc_env_var(unsigned char const* pu8Name, unsigned char const* pu8Value) {
    return guarded([&] { return boardEmmc().set(text(pu8Name), text(pu8Value)); });
}

int32_t a_zvttvfapi_sys_update_sys_key(unsigned char const* pu8KeyPath, bool bReplace) {
    return guarded([&] { return secureStorage().putSystemKey(text(pu8KeyPath), bReplace); });
}

int32_t a_zvttvfapi_sys_secure_storage_encrypt_key(unsigned char const* pu8StorageName,
                                                   unsigned char const* pu8KeyName,
                                                   unsigned char const* pu8UserKey, unsigned char u8KeySize) {
    return guarded([&] {
        return secureStorage().put(text(pu8StorageName), text(pu8KeyName), pu8UserKey, u8KeySize);
    });
}

int32_t a_zvttvfapi_sys_write_emmc(unsigned char* pu8EmmcName, unsigned int u32Offset, unsigned int u32Length,
                                   unsigned char* pu8Data) {
    return guarded([&] { return boardEmmc().write(text(pu8EmmcName), u32Offset, u32Length, pu8Data); });
}

int32_t a_zvttvfapi_sys_read_emmc(unsigned char* pu8EmmcName, unsigned int u32Offset, unsigned int u32Length,
                                  unsigned char* pu8Data) {
    return guarded([&] { return boardEmmc().read(text(pu8EmmcName), u32Offset, u32Length, pu8Data); });
}

int32_t a_zvttvfapi_sys_get_customer_hash(unsigned int u32Size, unsigned char* pu8Hash,
                                          unsigned int* pu32LengthRead) {
    return guarded([&] {
        if (pu8Hash == nullptr || pu32LengthRead == nullptr) {
            return kOutOfRange;
        }
        *pu32LengthRead = 0;
        if (u32Size < kCustomerHashBytes) {
            return kTooLong;
        }
        const int32_t status = customerHash(pu8Hash);
        *pu32LengthRead = status == kOk ? kCustomerHashBytes : 0;
        return status;
    });
}

int32_t a_zvttvfapi_sys_get_dataindex_path(unsigned char* pu8Path, unsigned int u32Size) {
    return guarded([&] { return dataIndexPath(pu8Path, u32Size); });
}
