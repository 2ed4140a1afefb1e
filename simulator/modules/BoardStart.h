#pragma once

#include <cstdint>

// What the custom library has of the board, which is the other library's. One that takes that library's place
// may lack it: then these are null.

#pragma GCC visibility push(default)

/** Keeps the state folder for this process; ends it when another service has that (StateDirectory::claim()).
 */
[[gnu::weak]] void boardStartClaim();

/** Makes what is missing of what a set leaves the factory with; 0 or a status. */
[[gnu::weak]] int32_t boardStartDeliver();

/** The variables that the board knows and the state folder that they choose: whole lines, for good. */
[[gnu::weak]] const char* boardStartHelp();

#pragma GCC visibility pop
