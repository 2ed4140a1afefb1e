#define LOG_TAG "ZvtTvFApiPeripheral(server)"

#include "adapters/peripheral/ZvtTvFApiPeripheral.h"

#include <algorithm>

#include "chiplayer/prphrl.h"
#include "service/frame/Call.h"
#include "service/frame/Log.h"
#include "service/frame/Scratch.h"
#include "service/frame/Twin.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::Void;

template <>
struct ChipTwin<ZvtTvFApiStdFactoryUartConfig> {
    using type = fapi_core::ZvtTvFApiStdFactoryUartConfig;
    static constexpr type last = type::UNKNOWN;
};
FAPI_TWIN_VALUE(ZvtTvFApiStdFactoryUartConfig, DEFAULT);
FAPI_TWIN_VALUE(ZvtTvFApiStdFactoryUartConfig, SLOW);
FAPI_TWIN_VALUE(ZvtTvFApiStdFactoryUartConfig, CUSTOM);
FAPI_TWIN_VALUE(ZvtTvFApiStdFactoryUartConfig, UNKNOWN);

template <>
struct ChipTwin<ZvtTvFApiPwmAttr> {
    using type = fapi_core::ZvtTvFApiPwmAttr;
    static constexpr type last = type::UNKNOWN;
};
FAPI_TWIN_VALUE(ZvtTvFApiPwmAttr, FREQUENCY);
FAPI_TWIN_VALUE(ZvtTvFApiPwmAttr, DUTY);
FAPI_TWIN_VALUE(ZvtTvFApiPwmAttr, ENABLE);
FAPI_TWIN_VALUE(ZvtTvFApiPwmAttr, UNKNOWN);

template <>
struct ChipTwin<ZvtTvFApiPwmChannel> {
    using type = fapi_core::ZvtTvFApiPwmChannel;
    static constexpr type last = type::UNKNOWN;
};
// Both number their channels without a gap.
FAPI_TWIN_VALUE(ZvtTvFApiPwmChannel, CHANNEL_0);
FAPI_TWIN_VALUE(ZvtTvFApiPwmChannel, CHANNEL_17);
FAPI_TWIN_VALUE(ZvtTvFApiPwmChannel, UNKNOWN);

FAPI_TWIN_VALUE(ZvtTvFApiReloadHdcp, STATE);

using ChipEdid = fapi_core::ZvtTvFApiHDMI_EDID_Data_t;
FAPI_TWIN(ZvtTvFApiHDMI_EDID_Data_t, au8EdidData);

// Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiPeripheral follow.
//
// Nothing is logged while the library is not ready: a method that has a line to write asks for itself,
// instead of leaving it to forward(), after which -5 may be the library's own result.

Return<bool> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_set_factory_uart_onoff(bool bEnable, int8_t s8Mode,
                                                                                 int8_t s8Port,
                                                                                 int8_t s8Speed) {
    if (!fapiReady()) {
        return false;
    }
    uint8_t u8Ret = 0;
    if (bEnable) {
        u8Ret = lowByte(callChip(a_zvttvfapi_prphrl_start_factory_uart, s8Mode, s8Port, s8Speed));
        FAPI_LOGE("set_factory_uart_start s32Ret %d", u8Ret);
    } else {
        u8Ret = lowByte(callChip(a_zvttvfapi_prphrl_stop_factory_uart, s8Port));
        FAPI_LOGE("set_factory_uart_stop s32Ret %d", u8Ret);
    }
    return u8Ret == 1;
}

Return<bool> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_write_factory_uart(const hidl_string& strText,
                                                                             uint32_t u32Count) {
    if (!fapiReady()) {
        return false;
    }
    // The library reads as many bytes as it is told to send, so that many have to be there.
    Scratch<uint8_t> pu8Longer;
    if (u32Count > strText.size()) {
        pu8Longer = Scratch<uint8_t>::zeroed(u32Count);
        if (!pu8Longer) {
            return false;
        }
        std::copy_n(strText.c_str(), strText.size(), pu8Longer.get());
    }
    const uint8_t u8Ret =
            lowByte(pu8Longer ? callChip(a_zvttvfapi_prphrl_write_factory_uart, pu8Longer, u32Count)
                              : callChip(a_zvttvfapi_prphrl_write_factory_uart, strText, u32Count));
    FAPI_LOGD("write_factory_uart s32Ret %d", u8Ret);
    return u8Ret != 0;
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_set_std_factory_uart_onoff(
        bool bEnable, int8_t s8Port, int8_t s8Mode, ZvtTvFApiStdFactoryUartConfig eConfig) {
    return bEnable ? forward(a_zvttvfapi_prphrl_std_factory_uart_start, s8Port, s8Mode, eConfig)
                   : forward(a_zvttvfapi_prphrl_std_factory_uart_stop);
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_write_std_factory_uart(
        const hidl_vec<uint8_t>& vecData) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_prphrl_write_std_factory_uart()...\n");
    const uint8_t u8Count = lowByte(vecData.size());
    FAPI_LOGI("Writting data Size = %d.\n", u8Count);
    if (u8Count == 0) {
        FAPI_LOGE("Invalid data Size.\n");
        return FAPI_INVALID_ARGUMENT;
    }
    auto pu16Data = Scratch<uint8_t>::zeroed(u8Count);
    if (!pu16Data) {
        FAPI_LOGE("Allocate pu16Data failed.\n");
        return FAPI_NO_MEMORY;
    }
    pu16Data.copyFrom(vecData);
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_std_factory_uart_write, pu16Data, u8Count);
    FAPI_LOG_OUTCOME("a_hidl_zvttvfapi_prphrl_write_std_factory_uart", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_set_std_factory_uart_custom_config(
        int8_t s8Port, uint8_t u8Format, uint32_t u32BaudRate) {
    return forward(a_zvttvfapi_prphrl_std_factory_uart_custom_config, s8Port, u8Format, u32BaudRate);
}

Return<bool> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_get_keypad_code(bool bStart) {
    if (!fapiReady()) {
        return false;
    }
    const int32_t s32Ret =
            callChip(bStart ? a_zvttvfapi_prphrl_start_keypad : a_zvttvfapi_prphrl_stop_keypad);
    const bool bDone = lowByte(s32Ret) != 0;
    FAPI_LOGE("get_keypad_code s32Ret %d", bDone);
    return bDone;
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_get_adc_in_keypad(bool bEnable) {
    if (!fapiReady()) {
        return FAPI_OK;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_start_adc, bEnable);
    FAPI_LOGD("get_adc_in_keypad s32Ret %d", s32Ret);
    return s32Ret;
}

Return<void> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_get_rc_format(
        const hidl_string& strName, a_hidl_zvttvfapi_prphrl_get_rc_format_cb _hidl_cb) {
    uint8_t u8Protocol = 0xFF;  // unknown
    if (!fapiReady()) {
        _hidl_cb(u8Protocol, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_get_rc_format, strName, &u8Protocol);
    FAPI_LOGD("ZvtTvFApiPeripheral u8Protocol %d", u8Protocol);
    _hidl_cb(u8Protocol, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_enable_iic(int32_t s32Port) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_enable_iic, s32Port);
    FAPI_LOGD("a_zvttvfapi_prphrl_enable_iic port=%d s32Ret=%d", s32Port, s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_disable_iic(int32_t s32Port) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_disable_iic, s32Port);
    FAPI_LOGD("a_zvttvfapi_prphrl_disable_iic port=%d s32Ret=%d", s32Port, s32Ret);
    return s32Ret;
}

Return<void> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_read_from_i2c(
        int32_t s32Port, uint16_t u16SlaveAddr, uint16_t u16Mode, const hidl_vec<uint8_t>& vecAddr,
        uint16_t u16Size, a_hidl_zvttvfapi_prphrl_read_from_i2c_cb _hidl_cb) {
    hidl_vec<uint8_t> vecData;
    if (!fapiReady()) {
        _hidl_cb(vecData, FAPI_NOT_READY);
        return Void();
    }
    // Both buffers are tried, so that the log tells everything that is wrong with the arguments.
    Scratch<uint8_t> pu8Out;
    if (u16Size == 0) {
        FAPI_LOGE("Invalid u16Size.\n");
    } else {
        pu8Out = Scratch<uint8_t>::zeroed(u16Size);
    }
    if (!pu8Out) {
        FAPI_LOGE("Allocate pu8Out failed.\n");
    }
    Scratch<uint8_t> pcAddr;
    if (vecAddr.size() == 0) {
        FAPI_LOGE("Invalid u32Length.\n");
    } else {
        pcAddr = Scratch<uint8_t>::zeroed(vecAddr.size());
    }
    if (!pcAddr) {
        FAPI_LOGE("Allocate pcAddr failed.\n");
    }
    if (!pu8Out || !pcAddr) {
        _hidl_cb(vecData, FAPI_FAIL);
        return Void();
    }
    pcAddr.copyFrom(vecAddr);
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_read_from_iic, s32Port, u16SlaveAddr, u16Mode,
                                    static_cast<uint16_t>(vecAddr.size()), pcAddr, u16Size, pu8Out);
    FAPI_LOGD("a_hidl_zvttvfapi_prphrl_read_from_iic s32Ret=%d", s32Ret);
    for (int i = 0; i < u16Size; ++i) {
        FAPI_LOGD("IIC Return Read data[%d] = 0x%x\n", i, pu8Out[i]);
    }
    vecData.setToExternal(pu8Out.get(), pu8Out.size());
    _hidl_cb(vecData, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_write_to_i2c(int32_t s32Port,
                                                                          uint16_t u16SlaveAddr,
                                                                          const hidl_vec<uint8_t>& vecAddr,
                                                                          uint16_t u16Size,
                                                                          const hidl_vec<uint8_t>& vecData) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    Scratch<uint8_t> pu8Buf;
    if (u16Size == 0) {
        FAPI_LOGE("Invalid u16Size.\n");
    } else {
        pu8Buf = Scratch<uint8_t>::zeroed(u16Size);
    }
    if (!pu8Buf) {
        FAPI_LOGE("Allocate pu8Buf failed.\n");
    }
    if (vecAddr.size() == 0) {
        FAPI_LOGD("No specific address. Get I2C data directly\n");
    }
    // Never without a byte: the library is to get an address that it may read.
    auto pu8Addr = Scratch<uint8_t>::zeroed(std::max<size_t>(vecAddr.size(), 1));
    if (!pu8Addr) {
        FAPI_LOGE("Allocate pu8Addr failed.\n");
        return FAPI_FAIL;
    }
    if (!pu8Buf) {
        return FAPI_FAIL;
    }
    pu8Buf.copyFrom(vecData);
    pu8Addr.copyFrom(vecAddr);
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_write_to_iic, s32Port, u16SlaveAddr,
                                    static_cast<uint16_t>(vecAddr.size()), pu8Addr, u16Size, pu8Buf);
    FAPI_LOGD("a_hidl_zvttvfapi_prphrl_write_to_iic s32Ret=%d", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_control_gpio(uint32_t u32Gpio,
                                                                          uint32_t u32Level) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_control_gpio, u32Gpio, u32Level);
    FAPI_LOGD("a_hidl_zvttvfapi_prphrl_control_gpio s32Ret=%d", s32Ret);
    return s32Ret;
}

Return<void> ZvtTvFApiPeripheral::a_hidl_a_zvttvfapi_prphrl_get_gpio_status(
        uint32_t u32Gpio, a_hidl_a_zvttvfapi_prphrl_get_gpio_status_cb _hidl_cb) {
    countCall();
    uint8_t u8GpioStatus = 0;
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_get_gpio_status, u32Gpio, &u8GpioStatus);
    FAPI_LOGD("a_zvttvfapi_prphrl_get_gpio_status s32Ret=%d", s32Ret);
    FAPI_LOGD("u8GpioStatus %d", u8GpioStatus);
    _hidl_cb(u8GpioStatus, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_set_gpio_monitor_onoff(bool bEnable,
                                                                                    uint32_t u32Gpio,
                                                                                    uint32_t u32Trigger,
                                                                                    uint32_t u32Interval) {
    return bEnable ? forward(a_zvttvfapi_prphrl_gpio_monitor_start, u32Gpio, u32Trigger, u32Interval)
                   : forward(a_zvttvfapi_prphrl_gpio_monitor_stop);
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_reload_hdcp_key(const hidl_string& strKeyType,
                                                                             const hidl_string& strKeyPath) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_reload_hdcp_key, strKeyType, strKeyPath);
    FAPI_LOGD("a_hidl_zvttvfapi_prphrl_reload_hdcp_key s32Ret=%d", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_enable_cec(bool bEnable) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_enable_cec, bEnable);
    FAPI_LOGD("a_hidl_zvttvfapi_prphrl_enable_cec s32Ret=%d", s32Ret);
    return s32Ret;
}

Return<void> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_get_cec_status(
        a_hidl_zvttvfapi_prphrl_get_cec_status_cb _hidl_cb) {
    int32_t s32CecStatus = 0;
    if (!fapiReady()) {
        _hidl_cb(s32CecStatus, FAPI_NOT_READY);
        return Void();
    }
    // The library fills the lowest byte alone, which is the first one on every CPU that the service is built
    // for: a state of -1 is 255 here.
    const int32_t s32Ret =
            callChip(a_zvttvfapi_prphrl_get_cec_status, reinterpret_cast<signed char*>(&s32CecStatus));
    FAPI_LOGD("CEC status %d", s32CecStatus);
    FAPI_LOGD("a_hidl_zvttvfapi_prphrl_get_cec_status s32Ret=%d", s32Ret);
    _hidl_cb(s32CecStatus, s32Ret);
    return Void();
}

Return<void> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_get_earc_status(
        a_hidl_zvttvfapi_prphrl_get_earc_status_cb _hidl_cb) {
    int32_t s32EarcStatus = 0;
    if (!fapiReady()) {
        _hidl_cb(s32EarcStatus, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_get_earc_status, &s32EarcStatus);
    FAPI_LOGD("EArc status %d", s32EarcStatus);
    FAPI_LOGD("a_hidl_zvttvfapi_prphrl_get_earc_status s32Ret=%d", s32Ret);
    _hidl_cb(s32EarcStatus, s32Ret);
    return Void();
}

Return<void> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_get_iic_slave_address(
        uint16_t u16Device, uint16_t u16Index, a_hidl_zvttvfapi_prphrl_get_iic_slave_address_cb _hidl_cb) {
    uint16_t u16SlaveAddr = 0;
    if (!fapiReady()) {
        _hidl_cb(u16SlaveAddr, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret =
            callChip(a_zvttvfapi_prphrl_get_iic_slave_address, u16Device, u16Index, &u16SlaveAddr);
    FAPI_LOGD("a_zvttvfapi_prphrl_get_iic_slave_address s32Ret %d", s32Ret);
    _hidl_cb(u16SlaveAddr, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_pwm_set_attr(ZvtTvFApiPwmAttr eAttr,
                                                                          ZvtTvFApiPwmChannel eChannel,
                                                                          uint32_t u32Value) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_pwm_set_attr, eAttr, eChannel, u32Value);
    FAPI_LOGD("a_zvttvfapi_prphrl_pwm_set_attr s32Ret=%d", s32Ret);
    return s32Ret;
}

Return<void> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_pwm_get_attr(
        ZvtTvFApiPwmAttr eAttr, ZvtTvFApiPwmChannel eChannel,
        a_hidl_zvttvfapi_prphrl_pwm_get_attr_cb _hidl_cb) {
    uint32_t u32Value = 0;
    if (!fapiReady()) {
        _hidl_cb(u32Value, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_pwm_get_attr, eAttr, eChannel, &u32Value);
    FAPI_LOGD("value: %d", u32Value);
    FAPI_LOGD("a_zvttvfapi_prphrl_pwm_get_attr s32Ret=%d", s32Ret);
    _hidl_cb(u32Value, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_set_hdmi_edid_version(int32_t s32Port,
                                                                                   int8_t s8Version) {
    return forward(a_zvttvfapi_prphrl_set_hdmi_edid_version, s32Port, s8Version);
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_set_uart_pipe_mode(bool bEnable,
                                                                                const hidl_string& strName) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_set_uart_pipe_mode, bEnable, strName);
    FAPI_LOGD("a_zvttvfapi_prphrl_set_uart_pipe_mode s32Ret=%d", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_enable_ir_block_key(bool bEnable) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_enable_ir_block_key, bEnable);
    FAPI_LOGD("a_zvttvfapi_prphrl_enable_ir_block_key s32Ret=%d", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_add_ir_block_key(uint64_t u64CustomCode,
                                                                              uint64_t u64KeyCode) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_add_ir_block_key, u64CustomCode, u64KeyCode);
    FAPI_LOGD("a_zvttvfapi_prphrl_add_ir_block_key s32Ret=%d", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_invert_ir_block_key(bool bInvert) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_invert_ir_block_key, bInvert);
    FAPI_LOGD("a_zvttvfapi_prphrl_invert_ir_block_key s32Ret=%d", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_set_hdmi_hpd(uint8_t u8Port, bool bPlugged) {
    countCall();
    return callChip(a_zvttvfapi_prphrl_set_hdmi_hpd, u8Port, bPlugged);
}

Return<void> ZvtTvFApiPeripheral::a_hidl_a_zvttvfapi_prphrl_get_hdmi_edid_data(
        uint32_t u32Port, a_hidl_a_zvttvfapi_prphrl_get_hdmi_edid_data_cb _hidl_cb) {
    ZvtTvFApiHDMI_EDID_Data_t stEdid = {};
    if (!fapiReady()) {
        _hidl_cb(stEdid, FAPI_NOT_READY);
        return Void();
    }
    ChipEdid stChipEdid = {};
    const int32_t s32Ret = callChip(a_zvttvfapi_prphrl_get_hdmi_edid_data, u32Port, &stChipEdid);
    FAPI_LOGD("a_hidl_zvttvfapi_prphrl_get_hdmi_edid_data s32Ret=%d", s32Ret);
    for (int i = 0; i < int(sizeof(stChipEdid.au8EdidData)); ++i) {
        FAPI_LOGD("Edid data[%d] = 0x%x\n", i, stChipEdid.au8EdidData[i]);
    }
    copyTwin(stChipEdid, stEdid);
    _hidl_cb(stEdid, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_a_zvttvfapi_prphrl_set_hdmi_edid_data(
        int32_t s32Port, int8_t s8Version, int32_t s32Size, const hidl_vec<uint8_t>& vecData) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    if (vecData.size() == 0) {
        FAPI_LOGD("No specific data !!\n");
    }
    // The library is not told how many bytes came, and may read a whole EDID.
    auto pu8Data = Scratch<uint8_t>::zeroed(std::max(vecData.size(), sizeof(ChipEdid)));
    if (!pu8Data) {
        FAPI_LOGE("Allocate pu8Data failed.\n");
        return FAPI_FAIL;
    }
    pu8Data.copyFrom(vecData);
    const int32_t s32Ret =
            callChip(a_zvttvfapi_prphrl_set_hdmi_edid_data, s32Port, s8Version, s32Size, pu8Data);
    FAPI_LOGD("a_zvttvfapi_prphrl_set_hdmi_edid_data s32Ret=%d", s32Ret);
    return s32Ret;
}

Return<uint8_t> ZvtTvFApiPeripheral::a_hidl_a_zvttvfapi_prphrl_get_sar_adc(int32_t s32Channel,
                                                                           int32_t s32Mode) {
    if (!fapiReady()) {
        return uint8_t(0);
    }
    return lowByte(callChip(a_zvttvfapi_prphrl_get_sar_adc, s32Channel, s32Mode));
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_a_zvttvfapi_prphrl_reload_hdcp(ZvtTvFApiReloadHdcp eReload) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    if (eReload != ZvtTvFApiReloadHdcp::STATE) {
        return FAPI_INVALID_ARGUMENT;
    }
    return callChip(a_zvttvfapi_prphrl_reload_hdcp, fapi_core::ZvtTvFApiReloadHdcp::STATE);
}

Return<int32_t> ZvtTvFApiPeripheral::a_hidl_zvttvfapi_prphrl_switch_to_ttys1(bool bEnable) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    (void)callChip(a_zvttvfapi_prphrl_switch_to_ttys1, bEnable);
    return FAPI_OK;
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
