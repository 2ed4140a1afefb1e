// Module prphrl: keys, GPIO, PWM, ADC, I2C, the serial ports, HDMI.

#include <algorithm>
#include <cstdio>

#include "simulator/board/ChipCall.h"
#include "simulator/modules/ChipLayer.h"
#include "simulator/peripheral/Peripherals.h"

using namespace simulator;
using fapi_core::ZvtTvFApiStdFactoryUartConfig;

namespace {

// What starting and stopping the keypad returns in place of a status.
constexpr int32_t kDone = 1;
constexpr int32_t kFailed = 0;

/** Does it with the flag, which has to be one. */
template <typename Switch>
int32_t switched(unsigned char flag, Switch with) {
    return flag > 1 ? kOutOfRange : guarded([&] {
        with(flag == 1);
        return kOk;
    });
}

int32_t readKeypad(bool on) {
    const int32_t status = guarded([on] {
        peripherals().keys.readKeypad(on);
        return kOk;
    });
    return status == kOk ? kDone : kFailed;
}

/** The factory UART's rates by their number. */
constexpr uint32_t kRates[] = {115'200, 9'600, 19'200, 38'400, 57'600, 230'400, 921'600};
constexpr LineSettings kSlow = {9'600, 0};

bool isPort(int port) {
    return port >= 0 && port < SerialPorts::kPorts;
}

/** The factory UART's functions return 1 or 0; why it is 0 is said here. */
template <typename Body>
int32_t oneOrZero(const char* what, Body body) {
    const int32_t status = guarded(body);
    if (status != kOk) {
        fprintf(stderr, "board: the factory UART cannot %s: status %d\n", what, status);
    }
    return status == kOk ? 1 : 0;
}

}  // namespace

int32_t a_zvttvfapi_prphrl_init() {
    return guarded([] { return peripherals().init(); });
}
int32_t a_zvttvfapi_prphrl_deinit() {
    return guarded([] { return peripherals().deinit(); });
}
int32_t a_zvttvfapi_prphrl_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    return guarded([=] { return peripherals().module.registerHandler(pfnHandler); });
}
int32_t a_zvttvfapi_prphrl_unreg_callback() {
    return guarded([] { return peripherals().module.unregisterHandler(); });
}

int32_t a_zvttvfapi_prphrl_start_keypad() {
    return readKeypad(true);
}

int32_t a_zvttvfapi_prphrl_stop_keypad() {
    return readKeypad(false);
}

int32_t a_zvttvfapi_prphrl_start_adc(unsigned char u8Enable) {
    return switched(u8Enable, [](bool on) { peripherals().keys.reportAdc(on); });
}

int32_t a_zvttvfapi_prphrl_get_rc_format(unsigned char const* pu8Name, unsigned char* pu8Protocol) {
    return guarded([=] { return remoteProtocol(text(pu8Name), pu8Protocol); });
}

int32_t a_zvttvfapi_prphrl_enable_ir_block_key(unsigned char u8Enable) {
    return switched(u8Enable, [](bool on) { peripherals().keys.enableBlocking(on); });
}

int32_t a_zvttvfapi_prphrl_add_ir_block_key(unsigned long long u64CustomCode, unsigned long long u64KeyCode) {
    return guarded([=] { return peripherals().keys.block(u64CustomCode, u64KeyCode); });
}

int32_t a_zvttvfapi_prphrl_invert_ir_block_key(unsigned char u8Invert) {
    return switched(u8Invert, [](bool on) { peripherals().keys.invertBlocking(on); });
}

int32_t a_zvttvfapi_prphrl_enable_iic(int s32Port) {
    return guarded([=] { return peripherals().buses.enable(s32Port, true); });
}

int32_t a_zvttvfapi_prphrl_disable_iic(int s32Port) {
    return guarded([=] { return peripherals().buses.enable(s32Port, false); });
}

int32_t a_zvttvfapi_prphrl_read_from_iic(int s32Port, unsigned short u16SlaveAddr, unsigned short u16Mode,
                                         unsigned short u16AddrCount, unsigned char const* pu8Addr,
                                         unsigned short u16Size, unsigned char* pu8Data) {
    return guarded([=] {
        return peripherals().buses.read(s32Port, u16SlaveAddr, u16Mode, pu8Addr, u16AddrCount, pu8Data,
                                        u16Size);
    });
}

int32_t a_zvttvfapi_prphrl_write_to_iic(int s32Port, unsigned short u16SlaveAddr, unsigned short u16AddrCount,
                                        unsigned char const* pu8Addr, unsigned short u16Size,
                                        unsigned char const* pu8Data) {
    return guarded([=] {
        return peripherals().buses.write(s32Port, u16SlaveAddr, pu8Addr, u16AddrCount, pu8Data, u16Size);
    });
}

int32_t a_zvttvfapi_prphrl_get_iic_slave_address(unsigned short u16Device, unsigned short u16Index,
                                                 unsigned short* pu16SlaveAddr) {
    return guarded([=] { return peripherals().buses.addressOf(u16Device, u16Index, pu16SlaveAddr); });
}

int32_t a_zvttvfapi_prphrl_control_gpio(unsigned int u32Gpio, unsigned int u32Level) {
    return guarded([=] { return peripherals().gpio.control(u32Gpio, u32Level); });
}

int32_t a_zvttvfapi_prphrl_get_gpio_status(unsigned int u32Gpio, unsigned char* pu8Level) {
    return guarded([=] { return peripherals().gpio.level(u32Gpio, pu8Level); });
}

int32_t a_zvttvfapi_prphrl_gpio_monitor_start(unsigned int u32Gpio, unsigned int u32Trigger,
                                              unsigned int u32Interval) {
    return guarded([=] { return peripherals().gpio.watch(u32Gpio, u32Trigger, u32Interval); });
}

int32_t a_zvttvfapi_prphrl_gpio_monitor_stop() {
    return guarded([] {
        peripherals().gpio.unwatch();
        return kOk;
    });
}

int32_t a_zvttvfapi_prphrl_pwm_set_attr(fapi_core::ZvtTvFApiPwmAttr eAttr,
                                        fapi_core::ZvtTvFApiPwmChannel eChannel, unsigned int u32Value) {
    return guarded([=] {
        return peripherals().pwm.set(static_cast<unsigned>(eAttr), static_cast<unsigned>(eChannel), u32Value);
    });
}

int32_t a_zvttvfapi_prphrl_pwm_get_attr(fapi_core::ZvtTvFApiPwmAttr eAttr,
                                        fapi_core::ZvtTvFApiPwmChannel eChannel, unsigned int* pu32Value) {
    return guarded([=] {
        return peripherals().pwm.get(static_cast<unsigned>(eAttr), static_cast<unsigned>(eChannel),
                                     pu32Value);
    });
}

/** A failure reads as 0. */
int32_t a_zvttvfapi_prphrl_get_sar_adc(unsigned int u32Channel, unsigned int u32Mode) {
    int32_t value = 0;
    guarded([&] {
        value = peripherals().keys.measure(u32Channel, u32Mode);
        return kOk;
    });
    return value < 0 ? 0 : value;
}

int32_t a_zvttvfapi_prphrl_start_factory_uart(signed char s8Mode, signed char s8Port, signed char s8Speed) {
    return oneOrZero("start", [=]() -> int32_t {
        if (s8Speed < 0 || static_cast<size_t>(s8Speed) >= sizeof(kRates) / sizeof(kRates[0])) {
            return kOutOfRange;
        }
        return peripherals().serial.start(SerialPorts::kFactory, s8Port, s8Mode, {kRates[s8Speed], 0});
    });
}

int32_t a_zvttvfapi_prphrl_stop_factory_uart(signed char s8Port) {
    return oneOrZero("stop", [=] {
        return isPort(s8Port) ? peripherals().serial.stop(SerialPorts::kFactory, s8Port) : kOutOfRange;
    });
}

int32_t a_zvttvfapi_prphrl_write_factory_uart(unsigned char const* pu8Text, unsigned int u32Count) {
    return oneOrZero("send", [=] {
        return pu8Text == nullptr ? kOutOfRange
                                  : peripherals().serial.send(SerialPorts::kFactory, pu8Text, u32Count);
    });
}

int32_t a_zvttvfapi_prphrl_std_factory_uart_start(signed char s8Port, signed char s8Mode,
                                                  ZvtTvFApiStdFactoryUartConfig eConfig) {
    return guarded([=]() -> int32_t {
        if (!isPort(s8Port)) {
            return kOutOfRange;
        }
        LineSettings settings;
        switch (eConfig) {
            case ZvtTvFApiStdFactoryUartConfig::DEFAULT:
                break;
            case ZvtTvFApiStdFactoryUartConfig::SLOW:
                settings = kSlow;
                break;
            case ZvtTvFApiStdFactoryUartConfig::CUSTOM:
                settings = peripherals().serial.custom(s8Port);
                break;
            default:
                return kOutOfRange;
        }
        return peripherals().serial.start(SerialPorts::kStd, s8Port, s8Mode, settings);
    });
}

int32_t a_zvttvfapi_prphrl_std_factory_uart_stop() {
    return guarded([] { return peripherals().serial.stop(SerialPorts::kStd, SerialPorts::kAnyPort); });
}

int32_t a_zvttvfapi_prphrl_std_factory_uart_write(unsigned char const* pu8Data, unsigned char u8Count) {
    return guarded([=] {
        return pu8Data == nullptr || u8Count == 0
                       ? kOutOfRange
                       : peripherals().serial.send(SerialPorts::kStd, pu8Data, u8Count);
    });
}

int32_t a_zvttvfapi_prphrl_std_factory_uart_custom_config(signed char s8Port, unsigned char u8Format,
                                                          unsigned int u32BaudRate) {
    return guarded([=] {
        const LineSettings settings{u32BaudRate, u8Format};
        if (!isPort(s8Port) || !settings.good()) {
            return kOutOfRange;
        }
        peripherals().serial.setCustom(s8Port, settings);
        return kOk;
    });
}

int32_t a_zvttvfapi_prphrl_set_uart_pipe_mode(unsigned char u8Enable, unsigned char const* pu8Name) {
    return guarded([=] {
        if (u8Enable > 1 || pu8Name == nullptr) {
            return kOutOfRange;
        }
        SerialPorts& serial = peripherals().serial;
        return u8Enable == 1 ? serial.connectPipe(text(pu8Name)) : serial.disconnectPipe(text(pu8Name));
    });
}

int32_t a_zvttvfapi_prphrl_switch_to_ttys1(bool bEnable) {
    return guarded([=] {
        peripherals().serial.moveConsole(bEnable ? 1 : 0);
        return kOk;
    });
}

int32_t a_zvttvfapi_prphrl_get_hdmi_edid_data(unsigned int u32Port,
                                              fapi_core::ZvtTvFApiHDMI_EDID_Data_t* pstEdid) {
    return guarded([=]() -> int32_t {
        Edid edid;
        const int32_t status = pstEdid == nullptr ? kOutOfRange : peripherals().hdmi.edid(u32Port, &edid);
        if (status == kOk) {
            static_assert(sizeof(pstEdid->au8EdidData) == kEdidBytes, "all of it is copied");
            std::copy(edid.begin(), edid.end(), pstEdid->au8EdidData);
        }
        return status;
    });
}

int32_t a_zvttvfapi_prphrl_set_hdmi_edid_data(unsigned int u32Port, signed char s8Version,
                                              unsigned int u32Size, unsigned char const* pu8Data) {
    return guarded([=] { return peripherals().hdmi.replaceEdid(u32Port, s8Version, u32Size, pu8Data); });
}

int32_t a_zvttvfapi_prphrl_set_hdmi_edid_version(unsigned int u32Port, signed char s8Version) {
    return guarded([=] { return peripherals().hdmi.chooseEdid(u32Port, s8Version); });
}

int32_t a_zvttvfapi_prphrl_set_hdmi_hpd(unsigned char u8Port, unsigned char u8Plugged) {
    return guarded([=] {
        return u8Plugged > 1 ? kOutOfRange : peripherals().hdmi.setHotPlug(u8Port, u8Plugged == 1);
    });
}

int32_t a_zvttvfapi_prphrl_reload_hdcp_key(unsigned char const* pu8KeyType, unsigned char const* pu8KeyPath) {
    return guarded([=] {
        return pu8KeyType == nullptr || pu8KeyPath == nullptr
                       ? kOutOfRange
                       : peripherals().hdmi.installKey(text(pu8KeyType), text(pu8KeyPath));
    });
}

int32_t a_zvttvfapi_prphrl_reload_hdcp(fapi_core::ZvtTvFApiReloadHdcp eReload) {
    return guarded([=] {
        return eReload != fapi_core::ZvtTvFApiReloadHdcp::STATE ? kOutOfRange
                                                                : peripherals().hdmi.authenticate();
    });
}

int32_t a_zvttvfapi_prphrl_enable_cec(unsigned char u8Enable) {
    return guarded([=] {
        if (u8Enable > 1) {
            return kOutOfRange;
        }
        peripherals().hdmi.enableCec(u8Enable == 1);
        return kOk;
    });
}

int32_t a_zvttvfapi_prphrl_get_cec_status(signed char* ps8Status) {
    return guarded([=] {
        if (ps8Status == nullptr) {
            return kOutOfRange;
        }
        *ps8Status = static_cast<signed char>(peripherals().hdmi.cecState());
        return kOk;
    });
}

int32_t a_zvttvfapi_prphrl_get_earc_status(int* ps32Status) {
    return guarded([=] {
        if (ps32Status == nullptr) {
            return kOutOfRange;
        }
        *ps32Status = peripherals().hdmi.audioReturn();
        return kOk;
    });
}
