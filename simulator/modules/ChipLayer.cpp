// The functions that the library exports: each returns the status that it was told to, if any, or does its
// work.

#pragma GCC visibility push(default)
#include "chiplayer/chiplayer.h"
#pragma GCC visibility pop
#include "simulator/board/ForcedStatus.h"

#include <ChipFunctions.inc>
