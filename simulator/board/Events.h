#pragma once

#include <cstdint>

// The events that the board raises by itself: the module's bit and a number. Records that are not named are
// empty. Those of the input sources are in chiplayer/inpsrc.h.

namespace simulator {

/**
 * How far a firmware upgrade is. Record 1: percent, 0 to 100, and the image's path; record 2: the target's
 * number and "running", "done" or "failed"; record 3: the status, 0 unless it failed. The last one is "done"
 * or "failed", and comes before the call returns; an upgrade that is given up ends without.
 */
constexpr uint32_t kSysUpgradeProgress = 0x10001;

/**
 * How far the upgrade of the frame-rate converter is. Record 1: percent, 0 to 100, and the image's path;
 * record 2: the version of the firmware in the image and "running", "done" or "failed"; record 3: the status,
 * 0 unless it failed. The last one is "done" or "failed"; an upgrade that was aborted because the module was
 * shut down ends without.
 */
constexpr uint32_t kDispFrcUpgradeProgress = 0x40001;

/** The frame-rate converter has begun (record 1: 1) or ceased (0) to answer, since it starts anew. */
constexpr uint32_t kDispFrcConnection = 0x40002;

/**
 * Bytes have come in on the factory UART, on the standard factory UART. Record 1: the port, and the bytes; a
 * line without its end when the UART was started by lines.
 */
constexpr uint32_t kPrphrlFactoryUart = 0x100001;
constexpr uint32_t kPrphrlStdUart = 0x100002;

/** The monitored GPIO line has changed. Record 1: the line; record 2: its level. */
constexpr uint32_t kPrphrlGpio = 0x100003;

/** A key. Record 1: its code, and "keypad" or "ir"; record 2: 1 pressed, 0 released. */
constexpr uint32_t kPrphrlKey = 0x100004;

/** The keypad's ADC has another value. Record 1: the channel; record 2: the value, 0 to 1023. */
constexpr uint32_t kPrphrlAdc = 0x100005;

/** A source has begun (record 2: 1) or ceased (0) to see an HDMI port. Record 1: the port. */
constexpr uint32_t kPrphrlHdmi = 0x100006;

}  // namespace simulator
