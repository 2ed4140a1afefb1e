// Module prphrl: lifecycle, keys, GPIO, PWM, ADC and I2C. The serial console is in prphrlserial.cpp, HDMI in
// prphrlhdmi.cpp.

#include "simulator/ChipCall.h"
#include "simulator/ChipLayer.h"
#include "simulator/peripheral/Peripherals.h"

using namespace simulator;

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
