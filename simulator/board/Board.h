#pragma once

#include "simulator/board/StateDirectory.h"

namespace simulator {

// This room: the board itself. Its start and readiness, its folder of state, what every module has, statuses
// that are forced, orders from outside, registers. It knows no other room.

/** Version text of the simulated library. */
constexpr const char* kBoardVersion = "sim-1.0.0";

/**
 * Whether the board takes calls, as $ZVTTV_BOARD_READY asks when the library is loaded:
 * "yes" or absent: from the start; "no": never; a number: that many milliseconds after the library was
 * loaded, at most a day. Anything else is reported on standard error and taken as "no".
 *
 * Costs one load of an atomic once it is ready.
 */
bool boardReady();

/** Makes it not ready for that many milliseconds from now on, kNeverReady for good; 0 makes it ready. */
void setBoardReadyIn(uint32_t milliseconds);
constexpr uint32_t kNeverReady = UINT32_MAX;

/** The board's flash; made on first use, never destroyed. */
const StateDirectory& boardState();

}  // namespace simulator
