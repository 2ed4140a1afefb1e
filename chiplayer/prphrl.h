#pragma once

#include <cstddef>
#include <cstdint>

#include "chiplayer/types.h"

// Module prphrl: UART, buses, GPIO, PWM, keys, HDMI, CEC and infrared.
//
// Common to all functions: they run on any thread and side by side, the same one included, and return 0 or a
// status of the library's own, which reaches the client unchanged, unless the function says otherwise. A flag
// is 0 or 1. Texts are NUL-terminated, may be empty, may hold any bytes that a client has sent, and are lent
// for the call, as buffers are. What is called a number of the library's is the library's to define; the
// service passes it unchecked, so the library refuses what it does not know. A cell that a function fills
// reaches the client after a failure too, as the service had preset it if the library left it alone.
//
// Events that the module raises, by type, with what their records carry:
//
//     0x100001  bytes came in on the factory UART: 1.u32Value the port, 1.vecValue the bytes
//     0x100002  bytes came in on the standard factory UART: the same
//     0x100003  the monitored GPIO line has changed: 1.u32Value the line, 2.u32Value its level, 0 or 1
//     0x100004  a key: 1.u32Value its code, 1.strValue where it is ("keypad", or "ir" on a remote control),
//               2.u32Value 1 pressed or 0 released
//     0x100005  the keypad's ADC has another value: 1.u32Value the channel, 2.u32Value the value
//     0x100006  a source has begun or ceased to see an HDMI port: 1.u32Value the port, 2.u32Value 1 or 0

namespace fapi_core {

/** The line settings with which the standard factory UART starts. */
enum class ZvtTvFApiStdFactoryUartConfig : uint8_t {
    /** the console's own, 115200 baud 8N1 */
    DEFAULT = 0,
    /** 9600 baud 8N1 */
    SLOW = 1,
    /** what a_zvttvfapi_prphrl_std_factory_uart_custom_config has set */
    CUSTOM = 2,
    /** stands for every other value of a client's; to be refused */
    UNKNOWN = 3,
};
static_assert(sizeof(ZvtTvFApiStdFactoryUartConfig) == 1, "passed by value as 8 bits");

/** What of a PWM output is set or read. */
enum class ZvtTvFApiPwmAttr : int32_t {
    /** in Hz */
    FREQUENCY = 0,
    /** share of a period during which the output is high, in percent, 0 to 100 */
    DUTY = 1,
    /** 1 the output runs, 0 it rests */
    ENABLE = 2,
    /** stands for every other value of a client's; to be refused */
    UNKNOWN = 3,
};
static_assert(sizeof(ZvtTvFApiPwmAttr) == 4, "passed by value as 32 bits");

/** A PWM output. Which of them a board has is the library's to know. */
enum class ZvtTvFApiPwmChannel : int32_t {
    CHANNEL_0 = 0,
    CHANNEL_1 = 1,
    CHANNEL_2 = 2,
    CHANNEL_3 = 3,
    CHANNEL_4 = 4,
    CHANNEL_5 = 5,
    CHANNEL_6 = 6,
    CHANNEL_7 = 7,
    CHANNEL_8 = 8,
    CHANNEL_9 = 9,
    CHANNEL_10 = 10,
    CHANNEL_11 = 11,
    CHANNEL_12 = 12,
    CHANNEL_13 = 13,
    CHANNEL_14 = 14,
    CHANNEL_15 = 15,
    CHANNEL_16 = 16,
    CHANNEL_17 = 17,
    /** stands for every other value of a client's; to be refused */
    UNKNOWN = 18,
};
static_assert(sizeof(ZvtTvFApiPwmChannel) == 4, "passed by value as 32 bits");

/** What a_zvttvfapi_prphrl_reload_hdcp reloads. */
enum class ZvtTvFApiReloadHdcp : uint8_t {
    /** the state of HDCP: authentication starts anew, with the keys that are installed */
    STATE = 0,
};
static_assert(sizeof(ZvtTvFApiReloadHdcp) == 1, "passed by value as 8 bits");

/** The EDID of an HDMI port: two blocks of 128 bytes. */
struct ZvtTvFApiHDMI_EDID_Data_t {
    uint8_t au8EdidData[256];
};
static_assert(sizeof(ZvtTvFApiHDMI_EDID_Data_t) == 256, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiHDMI_EDID_Data_t, au8EdidData) == 0, "record layout is the library's");

}  // namespace fapi_core

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_prphrl_init();
int32_t a_zvttvfapi_prphrl_deinit();
int32_t a_zvttvfapi_prphrl_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_prphrl_unreg_callback();

// Factory UART: the board's serial console, for text.

/**
 * Gives the console of that port to the factory UART. Mode (what the console is used for) and speed are
 * numbers of the library's. Not a status: the low eight bits are 1 when it is done, anything else is a
 * failure; the other bits are not read.
 */
int32_t a_zvttvfapi_prphrl_start_factory_uart(signed char s8Mode, signed char s8Port, signed char s8Speed);

/** Gives the console of that port back to the system. The result is read as that of the start. */
int32_t a_zvttvfapi_prphrl_stop_factory_uart(signed char s8Port);

/**
 * Sends u32Count bytes to the factory UART. Not a status: any bit set in the low eight means that they were
 * sent; the other bits are not read.
 *
 * The count is the client's, not checked against the text: so many bytes can be read through pu8Text in any
 * case, and those beyond the text are 0. A NUL within the count does not end the text.
 */
int32_t a_zvttvfapi_prphrl_write_factory_uart(unsigned char const* pu8Text, unsigned int u32Count);

// Standard factory UART: the same console, for bytes and with line settings of its own.

/** Starts it on that port. The mode is a number of the library's. */
int32_t a_zvttvfapi_prphrl_std_factory_uart_start(signed char s8Port, signed char s8Mode,
                                                  fapi_core::ZvtTvFApiStdFactoryUartConfig eConfig);

/** Stops it; the console is the system's again. */
int32_t a_zvttvfapi_prphrl_std_factory_uart_stop();

/** Sends u8Count bytes, at least one. Returns 0 only when all are sent. */
int32_t a_zvttvfapi_prphrl_std_factory_uart_write(unsigned char const* pu8Data, unsigned char u8Count);

/**
 * Sets what ZvtTvFApiStdFactoryUartConfig::CUSTOM stands for on that port, from the next start on: the rate
 * in baud, and the format (data bits, parity, stop bits) as a number of the library's.
 */
int32_t a_zvttvfapi_prphrl_std_factory_uart_custom_config(signed char s8Port, unsigned char u8Format,
                                                          unsigned int u32BaudRate);

/**
 * Connects the console to, or disconnects it from, the pipe of that name, so that another program of the
 * board reads and writes it. Which names there are is the library's to define.
 */
int32_t a_zvttvfapi_prphrl_set_uart_pipe_mode(unsigned char u8Enable, unsigned char const* pu8Name);

/**
 * Moves the console to the second serial device (true) or back to the first. Nobody reads the result: the
 * client is told 0 whatever happened.
 */
int32_t a_zvttvfapi_prphrl_switch_to_ttys1(bool bEnable);

// Keys.

/**
 * Starts reading the board's keypad: keys raise events from now on. Not a status: any bit set in the low
 * eight means that it is done; the other bits are not read.
 */
int32_t a_zvttvfapi_prphrl_start_keypad();

/** Ends what start_keypad began, with a result that is read alike. */
int32_t a_zvttvfapi_prphrl_stop_keypad();

/** Starts (1) or stops (0) reporting the keypad's ADC values as events. */
int32_t a_zvttvfapi_prphrl_start_adc(unsigned char u8Enable);

/**
 * Puts the number of the protocol that the remote control of this name speaks into *pu8Protocol, which holds
 * 255 (unknown) before. Names and numbers are the library's.
 */
int32_t a_zvttvfapi_prphrl_get_rc_format(unsigned char const* pu8Name, unsigned char* pu8Protocol);

// I2C. Ports are numbered by the library. A device's address has 7 bits and stands in the low ones.

/** Lets the board's master drive the bus of that port. */
int32_t a_zvttvfapi_prphrl_enable_iic(int s32Port);

/** Takes the master off the bus, so that another one, outside, can drive it. */
int32_t a_zvttvfapi_prphrl_disable_iic(int s32Port);

/**
 * Writes u16AddrCount address bytes (a register or memory address, most significant byte first) to a device,
 * then reads u16Size bytes from it into pu8Data. How the bus goes from the one to the other is a number of
 * the library's; 0 is a repeated start.
 *
 * u16Size is at least 1, u16AddrCount may be 0 although there are bytes: a client's 65,536 arrive as 0. The
 * whole of pu8Data, zeroed before, reaches the client after a failure too.
 */
int32_t a_zvttvfapi_prphrl_read_from_iic(int s32Port, unsigned short u16SlaveAddr, unsigned short u16Mode,
                                         unsigned short u16AddrCount, unsigned char const* pu8Addr,
                                         unsigned short u16Size, unsigned char* pu8Data);

/**
 * Writes u16AddrCount address bytes and behind them u16Size bytes of data, at least 1, to a device in one
 * transfer. u16AddrCount 0 writes the data alone; pu8Addr is never null.
 */
int32_t a_zvttvfapi_prphrl_write_to_iic(int s32Port, unsigned short u16SlaveAddr, unsigned short u16AddrCount,
                                        unsigned char const* pu8Addr, unsigned short u16Size,
                                        unsigned char const* pu8Data);

/**
 * Looks up the address of one of the board's devices: the kind of device and, where a board has several of a
 * kind, which one from 0 on. Kinds are numbers of the library's. *pu16SlaveAddr holds 0 before.
 */
int32_t a_zvttvfapi_prphrl_get_iic_slave_address(unsigned short u16Device, unsigned short u16Index,
                                                 unsigned short* pu16SlaveAddr);

// GPIO. Lines are numbered by the library. Levels are 0 low and 1 high.

/** Drives a line to a level. */
int32_t a_zvttvfapi_prphrl_control_gpio(unsigned int u32Gpio, unsigned int u32Level);

/**
 * Puts a line's level into *pu8Level, which holds 0 before. Called in every state, also while
 * a_zvttvfapi_common_get_fapi_status reports that the library is not ready: it has to answer then, too.
 */
int32_t a_zvttvfapi_prphrl_get_gpio_status(unsigned int u32Gpio, unsigned char* pu8Level);

/**
 * Watches a line and raises an event when it changes. Trigger: 0 on every change, 1 when it rises, 2 when it
 * falls. Looks at least every u32Interval milliseconds; 0 is the library's own pace. There is one monitor: a
 * start while it runs replaces what it watches.
 */
int32_t a_zvttvfapi_prphrl_gpio_monitor_start(unsigned int u32Gpio, unsigned int u32Trigger,
                                              unsigned int u32Interval);

/** Ends the monitor. To stop what does not run is no failure. */
int32_t a_zvttvfapi_prphrl_gpio_monitor_stop();

// PWM and ADC.

/** Sets an attribute of a PWM output. */
int32_t a_zvttvfapi_prphrl_pwm_set_attr(fapi_core::ZvtTvFApiPwmAttr eAttr,
                                        fapi_core::ZvtTvFApiPwmChannel eChannel, unsigned int u32Value);

/** Reads an attribute of a PWM output into *pu32Value, which holds 0 before. */
int32_t a_zvttvfapi_prphrl_pwm_get_attr(fapi_core::ZvtTvFApiPwmAttr eAttr,
                                        fapi_core::ZvtTvFApiPwmChannel eChannel, unsigned int* pu32Value);

/**
 * Not a status: the value of a channel of the successive-approximation ADC, measured in a mode (its range)
 * that is a number of the library's. The client gets the low eight bits, so that a failure is best told by 0.
 */
int32_t a_zvttvfapi_prphrl_get_sar_adc(unsigned int u32Channel, unsigned int u32Mode);

// HDMI, CEC and eARC. Ports are numbered by the library.

/** Reads the port's EDID, as a source sees it. The record is zeroed before. */
int32_t a_zvttvfapi_prphrl_get_hdmi_edid_data(unsigned int u32Port,
                                              fapi_core::ZvtTvFApiHDMI_EDID_Data_t* pstEdid);

/**
 * Replaces the port's EDID of a version (see set_hdmi_edid_version) by the u32Size bytes at pu8Data.
 *
 * The size is the client's, not checked against the bytes that came with it: 256 can be read through pu8Data
 * in any case, those that the client did not send are 0, and no more may be read. A size that is no EDID's,
 * like bytes that are none, is refused.
 */
int32_t a_zvttvfapi_prphrl_set_hdmi_edid_data(unsigned int u32Port, signed char s8Version,
                                              unsigned int u32Size, unsigned char const* pu8Data);

/** Chooses which of its EDIDs the port shows to a source. Versions are numbers of the library's. */
int32_t a_zvttvfapi_prphrl_set_hdmi_edid_version(unsigned int u32Port, signed char s8Version);

/**
 * Sets the port's hot-plug detect line: 1 plugged, 0 unplugged. Called in every state, also while
 * a_zvttvfapi_common_get_fapi_status reports that the library is not ready.
 */
int32_t a_zvttvfapi_prphrl_set_hdmi_hpd(unsigned char u8Port, unsigned char u8Plugged);

/** Installs an HDCP key of a kind, which the library names, from the file at the path. */
int32_t a_zvttvfapi_prphrl_reload_hdcp_key(unsigned char const* pu8KeyType, unsigned char const* pu8KeyPath);

/** Reloads HDCP. The service asks for the state alone. */
int32_t a_zvttvfapi_prphrl_reload_hdcp(fapi_core::ZvtTvFApiReloadHdcp eReload);

/** Switches CEC on (1) or off (0). */
int32_t a_zvttvfapi_prphrl_enable_cec(unsigned char u8Enable);

/** Puts the CEC state, a number of the library's, into the one byte at ps8Status, which holds 0 before. */
int32_t a_zvttvfapi_prphrl_get_cec_status(signed char* ps8Status);

/** Puts the eARC state, a number of the library's, into *ps32Status, which holds 0 before. */
int32_t a_zvttvfapi_prphrl_get_earc_status(int* ps32Status);

// Keys of remote controls that the board ignores.

/** Switches the blocking on (1) or off (0); the list stays. */
int32_t a_zvttvfapi_prphrl_enable_ir_block_key(unsigned char u8Enable);

/** Adds a key to the list: the code of the remote control that sends it, and its own code. */
int32_t a_zvttvfapi_prphrl_add_ir_block_key(unsigned long long u64CustomCode, unsigned long long u64KeyCode);

/** 1: the keys on the list pass and all others are blocked; 0: the keys on the list are blocked. */
int32_t a_zvttvfapi_prphrl_invert_ir_block_key(unsigned char u8Invert);
