#pragma once

#include <string>

#include "simulator/board/Dispatcher.h"
#include "simulator/board/Module.h"
#include "simulator/peripheral/Gpio.h"
#include "simulator/peripheral/HdmiPorts.h"
#include "simulator/peripheral/I2cBuses.h"
#include "simulator/peripheral/Keys.h"
#include "simulator/peripheral/Pwm.h"
#include "simulator/peripheral/SerialPorts.h"

namespace simulator {

// This room: what is connected to the board. Serial ports, buses, lines, keys, HDMI.

/** Module prphrl: the board's peripherals, and the events that they raise. */
class Peripherals {
  public:
    Peripherals();

    Module module;
    Dispatcher dispatcher;
    Gpio gpio;
    Keys keys;
    Pwm pwm;
    I2cBuses buses;
    HdmiPorts hdmi;
    SerialPorts serial;

    /** The module's own, with everything that comes with them. */
    int32_t init();
    int32_t deinit();
};

/** Made on first use, never destroyed, since events may be under way while the process exits. */
Peripherals& peripherals();

/** The number of the protocol that the remote control of that name speaks. kNotFound, kBadName, kBadData. */
int32_t remoteProtocol(const char* name, unsigned char* protocol);

}  // namespace simulator
