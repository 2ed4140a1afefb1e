#pragma once

#include <cstdint>
#include <string>

namespace simulator {

// What engineers order of the board itself, as a command of a client or as a line of the event pipe. What is
// wrong with an order is said on standard error.

/**
 * Carries out one of:
 *
 *     ready                     the board is ready from now on
 *     not-ready MILLISECONDS    it is not ready for so long, at most a day
 *     not-ready                 it is not ready until told otherwise: by the pipe, since clients are refused
 *
 * or a forced status, see simulator/board/ForcedStatus.h. kOutOfRange when it is none of these.
 */
int32_t forceOrder(const std::string& order);

/**
 * Prints the state of the module of that name, or for an empty one of the whole board, on standard error and
 * into the file state.txt of the state folder. kNotFound when no such module shows anything, or a status of
 * the file; it is printed even so.
 */
int32_t printState(const std::string& module);

/** Writes that file with the state of the whole board, prints nothing, and tells the file's absolute path. */
int32_t writeState(std::string* path);

}  // namespace simulator
