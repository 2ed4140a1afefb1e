#pragma once

#include "simulator/IniStore.h"

namespace simulator {

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

/** The board's configuration files; made on first use, never destroyed. */
IniStore& boardIni();

/** What modules keep of their settings, out of clients' reach: settings/ of the state folder. */
IniStore& boardSettings();

}  // namespace simulator
