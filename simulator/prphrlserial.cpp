// Module prphrl: the serial console and its users.

#include <cstdio>

#include "simulator/ChipCall.h"
#include "simulator/ChipLayer.h"
#include "simulator/peripheral/Peripherals.h"

using namespace simulator;
using fapi_core::ZvtTvFApiStdFactoryUartConfig;

namespace {

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
