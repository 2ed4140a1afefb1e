#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiPeripheral.h>

#include <cstdint>

#include "service/frame/FapiInterface.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;

/// The board's UARTs, buses, GPIO, PWM, keys, HDMI ports, CEC and infrared. No state: any number of calls may
/// run side by side, and each owns its buffers. What may touch the same UART, bus or line at a time is the
/// chip-layer library's business.
class ZvtTvFApiPeripheral : public FapiInterface<IZvtTvFApiPeripheral> {
  public:
    // Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiPeripheral follow.
    Return<bool> a_hidl_zvttvfapi_prphrl_set_factory_uart_onoff(bool bEnable, int8_t s8Mode, int8_t s8Port,
                                                                int8_t s8Speed) override;
    Return<bool> a_hidl_zvttvfapi_prphrl_write_factory_uart(const hidl_string& strText,
                                                            uint32_t u32Count) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_set_std_factory_uart_onoff(
            bool bEnable, int8_t s8Port, int8_t s8Mode, ZvtTvFApiStdFactoryUartConfig eConfig) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_write_std_factory_uart(const hidl_vec<uint8_t>& vecData) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_set_std_factory_uart_custom_config(int8_t s8Port,
                                                                               uint8_t u8Format,
                                                                               uint32_t u32BaudRate) override;
    Return<bool> a_hidl_zvttvfapi_prphrl_get_keypad_code(bool bStart) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_get_adc_in_keypad(bool bEnable) override;
    Return<void> a_hidl_zvttvfapi_prphrl_get_rc_format(
            const hidl_string& strName, a_hidl_zvttvfapi_prphrl_get_rc_format_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_enable_iic(int32_t s32Port) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_disable_iic(int32_t s32Port) override;
    Return<void> a_hidl_zvttvfapi_prphrl_read_from_i2c(
            int32_t s32Port, uint16_t u16SlaveAddr, uint16_t u16Mode, const hidl_vec<uint8_t>& vecAddr,
            uint16_t u16Size, a_hidl_zvttvfapi_prphrl_read_from_i2c_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_write_to_i2c(int32_t s32Port, uint16_t u16SlaveAddr,
                                                         const hidl_vec<uint8_t>& vecAddr, uint16_t u16Size,
                                                         const hidl_vec<uint8_t>& vecData) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_control_gpio(uint32_t u32Gpio, uint32_t u32Level) override;
    Return<void> a_hidl_a_zvttvfapi_prphrl_get_gpio_status(
            uint32_t u32Gpio, a_hidl_a_zvttvfapi_prphrl_get_gpio_status_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_set_gpio_monitor_onoff(bool bEnable, uint32_t u32Gpio,
                                                                   uint32_t u32Trigger,
                                                                   uint32_t u32Interval) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_reload_hdcp_key(const hidl_string& strKeyType,
                                                            const hidl_string& strKeyPath) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_enable_cec(bool bEnable) override;
    Return<void> a_hidl_zvttvfapi_prphrl_get_cec_status(
            a_hidl_zvttvfapi_prphrl_get_cec_status_cb _hidl_cb) override;
    Return<void> a_hidl_zvttvfapi_prphrl_get_earc_status(
            a_hidl_zvttvfapi_prphrl_get_earc_status_cb _hidl_cb) override;
    Return<void> a_hidl_zvttvfapi_prphrl_get_iic_slave_address(
            uint16_t u16Device, uint16_t u16Index,
            a_hidl_zvttvfapi_prphrl_get_iic_slave_address_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_pwm_set_attr(ZvtTvFApiPwmAttr eAttr, ZvtTvFApiPwmChannel eChannel,
                                                         uint32_t u32Value) override;
    Return<void> a_hidl_zvttvfapi_prphrl_pwm_get_attr(
            ZvtTvFApiPwmAttr eAttr, ZvtTvFApiPwmChannel eChannel,
            a_hidl_zvttvfapi_prphrl_pwm_get_attr_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_set_hdmi_edid_version(int32_t s32Port, int8_t s8Version) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_set_uart_pipe_mode(bool bEnable,
                                                               const hidl_string& strName) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_enable_ir_block_key(bool bEnable) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_add_ir_block_key(uint64_t u64CustomCode,
                                                             uint64_t u64KeyCode) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_invert_ir_block_key(bool bInvert) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_set_hdmi_hpd(uint8_t u8Port, bool bPlugged) override;
    Return<void> a_hidl_a_zvttvfapi_prphrl_get_hdmi_edid_data(
            uint32_t u32Port, a_hidl_a_zvttvfapi_prphrl_get_hdmi_edid_data_cb _hidl_cb) override;
    Return<int32_t> a_hidl_a_zvttvfapi_prphrl_set_hdmi_edid_data(int32_t s32Port, int8_t s8Version,
                                                                 int32_t s32Size,
                                                                 const hidl_vec<uint8_t>& vecData) override;
    Return<uint8_t> a_hidl_a_zvttvfapi_prphrl_get_sar_adc(int32_t s32Channel, int32_t s32Mode) override;
    Return<int32_t> a_hidl_a_zvttvfapi_prphrl_reload_hdcp(ZvtTvFApiReloadHdcp eReload) override;
    Return<int32_t> a_hidl_zvttvfapi_prphrl_switch_to_ttys1(bool bEnable) override;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
