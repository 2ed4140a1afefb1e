#define LOG_TAG "ZvtTvFApiSystem(server)"

#include "adapters/system/ZvtTvFApiSystem.h"

#include <algorithm>
#include <cstring>

#include "chiplayer/sys.h"
#include "service/frame/Call.h"
#include "service/frame/Log.h"
#include "service/frame/Scratch.h"
#include "service/frame/Text.h"
#include "service/frame/Twin.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::Void;

template <>
struct ChipTwin<ZvtTvFApiSysFactorySvcCmd_e> {
    using type = fapi_core::ZvtTvFApiSysFactorySvcCmd_e;
    static constexpr type last = fapi_core::SYS_FACTORY_SVC_CMD_DUMP_STATE;
};

FAPI_TWIN_VALUE(ZvtTvFApiSysFactorySvcCmd_e, SYS_FACTORY_SVC_CMD_RAISE_EVENT);
FAPI_TWIN_VALUE(ZvtTvFApiSysFactorySvcCmd_e, SYS_FACTORY_SVC_CMD_FORCE_STATUS);
FAPI_TWIN_VALUE(ZvtTvFApiSysFactorySvcCmd_e, SYS_FACTORY_SVC_CMD_DUMP_STATE);

// Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiSystem follow.

Return<void> ZvtTvFApiSystem::a_hidl_zvttvfapi_sys_get_emmc_env_var(
        const hidl_string& strVarName, a_hidl_zvttvfapi_sys_get_emmc_env_var_cb _hidl_cb) {
    if (!fapiReady()) {
        _hidl_cb({}, FAPI_NOT_READY);
        return Void();
    }
    TextBuffer<1024> strVarValue;
    const int32_t s32Ret =
            callChip(a_zvttvfapi_sys_get_emmc_env_var, strVarName, strVarValue, strVarValue.size());
    FAPI_LOGD("%s = %s\n", strVarName.c_str(), strVarValue.c_str());
    _hidl_cb(s32Ret == FAPI_OK ? strVarValue.text() : hidl_string(), s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_zvttvfapi_sys_set_emmc_env_var(const hidl_string& strVarName,
                                                                       const hidl_string& strVarValue) {
    return forward(a_zvttvfapi_sys_set_emmc_env_var, strVarName, strVarValue);
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_update_system_key(const hidl_string& strKeyPath,
                                                                          bool bReplace) {
    return forward(a_zvttvfapi_sys_update_sys_key, strKeyPath, bReplace);
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_secure_storage_encrypt_key(
        const hidl_string& strStorageName, const hidl_string& strKeyName,
        const hidl_vec<uint8_t>& vecUserKey) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_a_zvttvfapi_sys_secure_storage_encrypt_key()...\n");
    const uint8_t u8UserKeySize = lowByte(vecUserKey.size());
    FAPI_LOGI("u8UserKeySize = %d.\n", u8UserKeySize);
    auto pu8UserKey = Scratch<uint8_t>::zeroed(u8UserKeySize);
    if (u8UserKeySize == 0 || !pu8UserKey) {
        FAPI_LOGE("Allocate pu8UserKey failed.\n");
        return FAPI_FAIL;
    }
    pu8UserKey.copyFrom(vecUserKey);
    for (int i = 0; i < u8UserKeySize; ++i) {
        FAPI_LOGE("[%d] vec[%u], usrKey[%u]", i, vecUserKey[i], pu8UserKey[i]);
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_secure_storage_encrypt_key, strStorageName, strKeyName,
                                    pu8UserKey, u8UserKeySize);
    pu8UserKey.wipe();
    return s32Ret;
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_check_file(const hidl_string& strPath) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_check_file, strPath);
    FAPI_LOGD("s32Ret=%x\n", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_copy_file(const hidl_string& strSrcPath,
                                                                  const hidl_string& strDstPath,
                                                                  bool bCopyOption) {
    return forward(a_zvttvfapi_sys_copy_file, strSrcPath, strDstPath, bCopyOption);
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_zvttvfapi_sys_set_wdt(bool bEnable) {
    return forward(a_zvttvfapi_sys_set_wdt, bEnable);
}

Return<bool> ZvtTvFApiSystem::a_hidl_zvttvfapi_sys_get_wdt_status() {
    return fapiReady() && lowByte(callChip(a_zvttvfapi_sys_get_wdt_status)) != 0;
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_zvttvfapi_sys_set_miu_ssc(uint8_t u8MiuId, uint16_t u16Modulation,
                                                                  uint16_t u16Deviation, bool bEnable) {
    return forward(a_zvttvfapi_sys_set_miu_ssc, u8MiuId, u16Modulation, u16Deviation, bEnable);
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_zvttvfapi_sys_upgrade_fw(uint8_t u8Target,
                                                                 const hidl_string& strPath) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("start to upgrad %d at %s\n", u8Target, strPath.c_str());
    return callChip(a_zvttvfapi_sys_upgrade_fw, u8Target, strPath);
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_zvttvfapi_sys_write_emmc(const hidl_string& strEmmcName,
                                                                 uint32_t u32Offset,
                                                                 const hidl_vec<uint8_t>& vecData) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    if (vecData.size() == 0) {
        FAPI_LOGE("Invalid u32Length.\n");
        return FAPI_INVALID_ARGUMENT;
    }
    auto pu8Data = Scratch<uint8_t>::zeroed(vecData.size());
    if (!pu8Data) {
        FAPI_LOGE("Allocate pu8Data failed.\n");
        return FAPI_NO_MEMORY;
    }
    pu8Data.copyFrom(vecData);
    return callChip(a_zvttvfapi_sys_write_emmc, lend(strEmmcName), u32Offset,
                    static_cast<uint32_t>(pu8Data.size()), pu8Data);
}

Return<void> ZvtTvFApiSystem::a_hidl_zvttvfapi_sys_read_emmc(const hidl_string& strEmmcName,
                                                             uint32_t u32Offset, uint32_t u32Length,
                                                             a_hidl_zvttvfapi_sys_read_emmc_cb _hidl_cb) {
    if (!fapiReady()) {
        _hidl_cb({}, FAPI_NOT_READY);
        return Void();
    }
    // Zeroed, since all of it is delivered, however much the library fills.
    auto pu8Data = Scratch<uint8_t>::zeroed(u32Length);
    if (!pu8Data) {
        FAPI_LOGE("Allocate the memory failed.");
        _hidl_cb({}, FAPI_NO_MEMORY);
        return Void();
    }
    const int32_t s32Ret =
            callChip(a_zvttvfapi_sys_read_emmc, lend(strEmmcName), u32Offset, u32Length, pu8Data);
    hidl_vec<uint8_t> vecBytes;
    vecBytes.setToExternal(pu8Data.get(), pu8Data.size());
    _hidl_cb(vecBytes, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_remove_file(const hidl_string& strPath) {
    return forward(a_zvttvfapi_sys_remove_file, strPath);
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_create_file(const hidl_string& strPath) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_create_file, strPath);
    FAPI_LOGD("s32Ret=%x\n", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_create_folder(const hidl_string& strPath) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_create_folder, strPath);
    FAPI_LOGD("s32Ret=%x\n", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_check_folder(const hidl_string& strPath) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_check_folder, strPath);
    FAPI_LOGD("s32Ret=%x\n", s32Ret);
    return s32Ret;
}

Return<void> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_read_file_one_line(
        const hidl_string& strPath, uint32_t u32Length, uint64_t u64Offset,
        a_hidl_a_zvttvfapi_sys_read_file_one_line_cb _hidl_cb) {
    hidl_string strLine;
    if (!fapiReady()) {
        _hidl_cb(strLine, FAPI_NOT_READY);
        return Void();
    }
    auto pu8Data = Scratch<uint8_t>::zeroed(u32Length);
    if (!pu8Data) {
        FAPI_LOGE("Allocate the memory failed.");
        FAPI_LOGD("s32Ret=%x\n", FAPI_NO_MEMORY);
        _hidl_cb(strLine, FAPI_NO_MEMORY);
        return Void();
    }
    const int32_t s32Ret =
            callChip(a_zvttvfapi_sys_read_file_one_line, strPath, pu8Data, u32Length, u64Offset);
    if (s32Ret == FAPI_OK && !copyText(pu8Data.get(), pu8Data.size(), &strLine)) {
        FAPI_LOGE_DOUBLED(FAPI_TEXT_EXCEPTION);
        _hidl_cb(strLine, FAPI_FAIL);
        return Void();
    }
    FAPI_LOGD("s32Ret=%x\n", s32Ret);
    _hidl_cb(strLine, s32Ret);
    return Void();
}

Return<void> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_read_file(const hidl_string& strPath, uint32_t u32Length,
                                                               uint64_t u64Offset,
                                                               a_hidl_a_zvttvfapi_sys_read_file_cb _hidl_cb) {
    hidl_string strData;
    uint32_t u32DataLengthRead = 0;
    if (!fapiReady()) {
        _hidl_cb(strData, FAPI_NOT_READY);
        return Void();
    }
    auto pu8Data = Scratch<uint8_t>::zeroed(uint64_t{u32Length} + 1);
    if (!pu8Data) {
        FAPI_LOGE("Allocate the memory failed.");
        FAPI_LOGD("s32Ret=%x\n", FAPI_NO_MEMORY);
        _hidl_cb(strData, FAPI_NO_MEMORY);
        return Void();
    }
    int32_t s32Ret =
            callChip(a_zvttvfapi_sys_read_file, strPath, pu8Data, u32Length, u64Offset, &u32DataLengthRead);
    if (s32Ret == FAPI_OK && (u32DataLengthRead == 0 || u32DataLengthRead > u32Length)) {
        FAPI_LOGD("u32DataLengthRead(%d) is out of bound\n", u32DataLengthRead);
        s32Ret = FAPI_FAIL;
    } else if (s32Ret == FAPI_OK) {
        pu8Data[u32DataLengthRead] = '\0';
        FAPI_LOGD("pu8Data=%s\n", reinterpret_cast<const char*>(pu8Data.get()));
        if (!copyText(pu8Data.get(), u32DataLengthRead, &strData)) {
            FAPI_LOGE_DOUBLED(FAPI_TEXT_EXCEPTION);
            _hidl_cb(strData, FAPI_FAIL);
            return Void();
        }
    }
    FAPI_LOGD("strData=%s\n", strData.c_str());
    FAPI_LOGD("s32Ret=%x\n", s32Ret);
    _hidl_cb(strData, s32Ret);
    return Void();
}

Return<void> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_read_file_byte(
        const hidl_string& strPath, uint32_t u32Length, uint64_t u64Offset,
        a_hidl_a_zvttvfapi_sys_read_file_byte_cb _hidl_cb) {
    uint32_t u32DataLengthRead = 0;
    if (!fapiReady()) {
        _hidl_cb({}, FAPI_NOT_READY);
        return Void();
    }
    // Zeroed, since the library may count bytes, in a failing call say, that it has not written.
    auto pu8Data = Scratch<uint8_t>::zeroed(u32Length);
    if (!pu8Data) {
        FAPI_LOGE("Allocate the memory failed.");
        FAPI_LOGD("s32Ret=%x, data read: %d\n", FAPI_NO_MEMORY, u32DataLengthRead);
        _hidl_cb({}, FAPI_NO_MEMORY);
        return Void();
    }
    int32_t s32Ret =
            callChip(a_zvttvfapi_sys_read_file, strPath, pu8Data, u32Length, u64Offset, &u32DataLengthRead);
    hidl_vec<uint8_t> vecBytes;
    if (u32DataLengthRead > u32Length) {
        FAPI_LOGD("u32DataLengthRead(%d) is out of bound\n", u32DataLengthRead);
        s32Ret = FAPI_FAIL;
    } else {
        vecBytes.setToExternal(pu8Data.get(), u32DataLengthRead);
    }
    FAPI_LOGD("s32Ret=%x, data read: %d\n", s32Ret, u32DataLengthRead);
    _hidl_cb(vecBytes, s32Ret);
    return Void();
}

Return<void> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_get_file_checksum(
        const hidl_string& strPath, a_hidl_a_zvttvfapi_sys_get_file_checksum_cb _hidl_cb) {
    uint32_t u32Checksum = 0;
    if (!fapiReady()) {
        _hidl_cb(u32Checksum, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_get_file_checksum, strPath, &u32Checksum);
    FAPI_LOGD("s32Ret=%x, u32Checksum: %d\n", s32Ret, u32Checksum);
    _hidl_cb(u32Checksum, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_write_file(const hidl_string& strPath,
                                                                   const hidl_string& strData, bool bAppend,
                                                                   bool bAddCrLf) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const auto u32TextLength = static_cast<uint32_t>(std::strlen(strData.c_str()));
    const uint32_t u32Length = u32TextLength + (bAddCrLf ? 2 : 0);
    if (u32Length == 0) {
        FAPI_LOGE("Invalid u32Length.\n");
        return FAPI_INVALID_ARGUMENT;
    }
    auto pu8Data = Scratch<uint8_t>::zeroed(uint64_t{u32Length} + 1);
    if (!pu8Data) {
        FAPI_LOGE("Allocate the memory failed.");
        return FAPI_NO_MEMORY;
    }
    std::copy_n(strData.c_str(), u32TextLength, pu8Data.get());
    if (bAddCrLf) {
        pu8Data[u32Length - 2] = '\r';
        pu8Data[u32Length - 1] = '\n';
    }
    const unsigned char au8Mode[4] = {static_cast<unsigned char>(bAppend ? 'a' : 'w'), '+'};
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_write_file, strPath, pu8Data, u32Length, au8Mode);
    FAPI_LOGD("s32Ret=%x\n", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_write_file_byte(const hidl_string& strPath,
                                                                        const hidl_vec<uint8_t>& vecData,
                                                                        const hidl_string& strMode) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    if (vecData.size() == 0) {
        FAPI_LOGE("Invalid u32Length.\n");
        return FAPI_INVALID_ARGUMENT;
    }
    auto pu8Data = Scratch<uint8_t>::zeroed(vecData.size());
    if (!pu8Data) {
        FAPI_LOGE("Allocate pu8Data failed.\n");
        return FAPI_NO_MEMORY;
    }
    pu8Data.copyFrom(vecData);
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_write_file, strPath, pu8Data,
                                    static_cast<uint32_t>(pu8Data.size()), strMode);
    FAPI_LOGD("s32Ret=%x\n", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_change_file_mode(const hidl_string& strPath,
                                                                         uint32_t u32Mode) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_change_file_mode, strPath, u32Mode);
    FAPI_LOGD("s32Ret=%x\n", s32Ret);
    return s32Ret;
}

Return<void> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_read_reg(uint32_t u32Bank, uint32_t u32Offset,
                                                              a_hidl_a_zvttvfapi_sys_read_reg_cb _hidl_cb) {
    uint32_t u32Value = 0;
    if (!fapiReady()) {
        _hidl_cb(u32Value, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_read_reg, u32Bank, u32Offset, &u32Value);
    FAPI_LOGD("s32Ret=%x \n", s32Ret);
    _hidl_cb(s32Ret == FAPI_OK ? u32Value : 0, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_write_reg(uint32_t u32Bank, uint32_t u32Offset,
                                                                  uint32_t u32Value) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_write_reg, u32Bank, u32Offset, u32Value);
    FAPI_LOGD("s32Ret=%x \n", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_send_cmd_to_factory_svc(
        ZvtTvFApiSysFactorySvcCmd_e eCmd, const hidl_string& strText) {
    return forward(a_zvttvfapi_sys_send_cmd_to_factory_svc, eCmd, strText);
}

Return<void> ZvtTvFApiSystem::a_hidl_a_zvttvfapi_sys_get_rtc_time(
        a_hidl_a_zvttvfapi_sys_get_rtc_time_cb _hidl_cb) {
    uint32_t u32Time = 0;
    if (!fapiReady()) {
        _hidl_cb(u32Time, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_get_rtc_time, &u32Time);
    FAPI_LOGD("a_zvttvfapi_sys_get_rtc_time s32Ret %d", s32Ret);
    _hidl_cb(u32Time, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiSystem::a_hidl_zvttvfapi_sys_sync_fs() {
    return forward(a_zvttvfapi_sys_sync_fs);
}

Return<void> ZvtTvFApiSystem::a_hidl_zvttvfapi_sys_get_customer_hash(
        a_hidl_zvttvfapi_sys_get_customer_hash_cb _hidl_cb) {
    uint32_t u32ReadLength = 0;
    if (!fapiReady()) {
        _hidl_cb({}, FAPI_NOT_READY);
        return Void();
    }
    constexpr uint32_t kHashSize = 16;
    auto pu8Data = Scratch<uint8_t>::zeroed(kHashSize);
    if (!pu8Data) {
        FAPI_LOGE("Allocate pu8Data failed.\n");
        _hidl_cb({}, FAPI_FAIL);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_sys_get_customer_hash, kHashSize, pu8Data, &u32ReadLength);
    FAPI_LOGD("u32ReadLength %u", u32ReadLength);
    if (s32Ret != FAPI_OK) {
        FAPI_LOGE("a_hidl_zvttvfapi_sys_get_customer_hash fail.\n");
        _hidl_cb({}, FAPI_FAIL);
        return Void();
    }
    if (u32ReadLength > kHashSize) {
        FAPI_LOGD("u32DataLengthRead(%d) is out of bound\n", u32ReadLength);
        _hidl_cb({}, FAPI_FAIL);
        return Void();
    }
    hidl_vec<uint8_t> vecBytes;
    vecBytes.setToExternal(pu8Data.get(), u32ReadLength);
    _hidl_cb(vecBytes, FAPI_OK);
    return Void();
}

Return<void> ZvtTvFApiSystem::a_hidl_zvttvfapi_sys_get_dataindex_path(
        a_hidl_zvttvfapi_sys_get_dataindex_path_cb _hidl_cb) {
    hidl_string strPath;
    if (!fapiReady()) {
        _hidl_cb(strPath, FAPI_NOT_READY);
        return Void();
    }
    // One byte more than the library is told of: what it fills to the end still has a terminator.
    constexpr uint32_t kPathSize = 128;
    auto pu8Path = Scratch<uint8_t>::zeroed(kPathSize + 1);
    if (!pu8Path) {
        _hidl_cb(strPath, FAPI_NO_MEMORY);
        return Void();
    }
    int32_t s32Ret = callChip(a_zvttvfapi_sys_get_dataindex_path, pu8Path, kPathSize);
    if (s32Ret == FAPI_OK && !copyText(pu8Path.get(), kPathSize, &strPath)) {
        FAPI_LOGE_DOUBLED(FAPI_TEXT_EXCEPTION);
        s32Ret = FAPI_FAIL;
    }
    _hidl_cb(strPath, s32Ret);
    return Void();
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
