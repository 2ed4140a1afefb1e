#pragma once

#include <cstdint>
#include <string>
#include <vector>

// This room: the way in. One file a module with the chip layer's functions: each hands its arguments to a
// room and passes the result back. It knows all rooms, and none knows it.

// The declarations of the functions that a module's source defines, as the library exports them: everything
// else in the library is compiled hidden.
#pragma GCC visibility push(default)
#include "chiplayer/chiplayer.h"
#pragma GCC visibility pop

// The library's functions themselves are generated: each asks whether a status is forced, and calls the one
// of that name in the sources, which has another name for the linker.
#include <ChipNames.inc>
