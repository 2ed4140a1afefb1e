#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiSystem.h>

#include <cstdint>

#include "service/frame/FapiInterface.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;

/// The board's files, storage, keys, watchdog, registers, firmware and clock. No state: any number of calls
/// may run side by side, and each owns its buffers. What may touch the same file, area or register at a time
/// is the chip-layer library's business.
class ZvtTvFApiSystem : public FapiInterface<IZvtTvFApiSystem> {
  public:
    // Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiSystem follow.
    Return<void> a_hidl_zvttvfapi_sys_get_emmc_env_var(
            const hidl_string& strVarName, a_hidl_zvttvfapi_sys_get_emmc_env_var_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_sys_set_emmc_env_var(const hidl_string& strVarName,
                                                          const hidl_string& strVarValue) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_update_system_key(const hidl_string& strKeyPath,
                                                             bool bReplace) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_secure_storage_encrypt_key(
            const hidl_string& strStorageName, const hidl_string& strKeyName,
            const hidl_vec<uint8_t>& vecUserKey) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_check_file(const hidl_string& strPath) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_copy_file(const hidl_string& strSrcPath,
                                                     const hidl_string& strDstPath,
                                                     bool bCopyOption) override;
    Return<int32_t> a_hidl_zvttvfapi_sys_set_wdt(bool bEnable) override;
    Return<bool> a_hidl_zvttvfapi_sys_get_wdt_status() override;
    Return<int32_t> a_hidl_zvttvfapi_sys_set_miu_ssc(uint8_t u8MiuId, uint16_t u16Modulation,
                                                     uint16_t u16Deviation, bool bEnable) override;
    Return<int32_t> a_hidl_zvttvfapi_sys_upgrade_fw(uint8_t u8Target, const hidl_string& strPath) override;
    Return<int32_t> a_hidl_zvttvfapi_sys_write_emmc(const hidl_string& strEmmcName, uint32_t u32Offset,
                                                    const hidl_vec<uint8_t>& vecData) override;
    Return<void> a_hidl_zvttvfapi_sys_read_emmc(const hidl_string& strEmmcName, uint32_t u32Offset,
                                                uint32_t u32Length,
                                                a_hidl_zvttvfapi_sys_read_emmc_cb _hidl_cb) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_remove_file(const hidl_string& strPath) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_create_file(const hidl_string& strPath) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_create_folder(const hidl_string& strPath) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_check_folder(const hidl_string& strPath) override;
    Return<void> a_hidl_a_zvttvfapi_sys_read_file_one_line(
            const hidl_string& strPath, uint32_t u32Length, uint64_t u64Offset,
            a_hidl_a_zvttvfapi_sys_read_file_one_line_cb _hidl_cb) override;
    Return<void> a_hidl_a_zvttvfapi_sys_read_file(const hidl_string& strPath, uint32_t u32Length,
                                                  uint64_t u64Offset,
                                                  a_hidl_a_zvttvfapi_sys_read_file_cb _hidl_cb) override;
    Return<void> a_hidl_a_zvttvfapi_sys_read_file_byte(
            const hidl_string& strPath, uint32_t u32Length, uint64_t u64Offset,
            a_hidl_a_zvttvfapi_sys_read_file_byte_cb _hidl_cb) override;
    Return<void> a_hidl_a_zvttvfapi_sys_get_file_checksum(
            const hidl_string& strPath, a_hidl_a_zvttvfapi_sys_get_file_checksum_cb _hidl_cb) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_write_file(const hidl_string& strPath, const hidl_string& strData,
                                                      bool bAppend, bool bAddCrLf) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_write_file_byte(const hidl_string& strPath,
                                                           const hidl_vec<uint8_t>& vecData,
                                                           const hidl_string& strMode) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_change_file_mode(const hidl_string& strPath,
                                                            uint32_t u32Mode) override;
    Return<void> a_hidl_a_zvttvfapi_sys_read_reg(uint32_t u32Bank, uint32_t u32Offset,
                                                 a_hidl_a_zvttvfapi_sys_read_reg_cb _hidl_cb) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_write_reg(uint32_t u32Bank, uint32_t u32Offset,
                                                     uint32_t u32Value) override;
    Return<int32_t> a_hidl_a_zvttvfapi_sys_send_cmd_to_factory_svc(ZvtTvFApiSysFactorySvcCmd_e eCmd,
                                                                   const hidl_string& strText) override;
    Return<void> a_hidl_a_zvttvfapi_sys_get_rtc_time(
            a_hidl_a_zvttvfapi_sys_get_rtc_time_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_sys_sync_fs() override;
    Return<void> a_hidl_zvttvfapi_sys_get_customer_hash(
            a_hidl_zvttvfapi_sys_get_customer_hash_cb _hidl_cb) override;
    Return<void> a_hidl_zvttvfapi_sys_get_dataindex_path(
            a_hidl_zvttvfapi_sys_get_dataindex_path_cb _hidl_cb) override;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
