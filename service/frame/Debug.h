#pragma once

#include <cstdint>

/// The process-wide switch of all log lines: non-zero lets them through. Set once at start-up, before any
/// interface object exists, and only read afterwards, so it needs no lock. The executable exports it, so that
/// a chip-layer library can follow it.
extern uint8_t u8TvFactoryDebug;
