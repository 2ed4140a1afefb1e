#pragma once

#include <cstdint>

namespace simulator {

// The statuses of the simulated library. All below -100, clear of those that the service itself produces.

/** STATUS(constant, number, what clients call it, what it means); docs/board.md has the list from here. */
#define SIMULATOR_STATUSES(STATUS)                                                                           \
    STATUS(kOk, 0, "success", "done")                                                                        \
    STATUS(kNotFound, -101, "not found", "no such file, section, key or other thing of that name")           \
    STATUS(kOutOfRange, -102, "out of range",                                                                \
           "an argument is null, too long, out of its range, or holds characters that cannot be stored")     \
    STATUS(kIoError, -103, "I/O error", "the disk refused; what was stored before is still there")           \
    STATUS(kBusy, -104, "busy",                                                                              \
           "something else has held it for too long, or is under way; nothing was changed, try again")       \
    STATUS(kAlreadySetUp, -105, "already set up",                                                            \
           "the module is initialised already, or has a handler already")                                    \
    STATUS(kNotSetUp, -106, "not set up", "the module is not initialised, or has no handler")                \
    STATUS(kTooLong, -107, "too long",                                                                       \
           "the result does not fit the caller's buffer, which holds an empty text instead")                 \
    STATUS(kBadName, -108, "bad name", "the name of a file or parameter is not one that the board uses")     \
    STATUS(kBadFile, -109, "bad file",                                                                       \
           "the file is there, but too large, not a plain file, not what it should be, or not one whose "    \
           "parameter can be changed safely")                                                                \
    STATUS(kNoMemory, -110, "no memory", "no memory, no thread, or no descriptor")                           \
    STATUS(kExists, -111, "exists already", "there is something of this name already")                       \
    STATUS(kDenied, -112, "denied",                                                                          \
           "the board does not allow it: write-protected, or permissions forbid it")                         \
    STATUS(kFull, -113, "full", "the disk is full, or what the board reserves for this")                     \
    STATUS(kBadImage, -114, "bad image", "not a firmware image, not for this target, or damaged")            \
    STATUS(kNotTold, -115, "not told", "somebody who listens could not be told of the event")                \
    STATUS(kGivenUp, -116, "given up", "given up before its end, since the module is being shut down")       \
    STATUS(kAbsent, -117, "absent",                                                                          \
           "what the call works on is not there or is switched off: a device, a plane, a layer, a signal")   \
    STATUS(kNoConvergence, -118, "no convergence", "a search came to no result that lies within its limits") \
    STATUS(kSwitchedOff, -120, "switched off", "the bus or serial port has not been switched on")            \
    STATUS(kBadData, -121, "bad data",                                                                       \
           "the bytes are not what they should be: their form or a checksum is wrong")

#define SIMULATOR_STATUS(constant, number, name, meaning) constexpr int32_t constant = number;
SIMULATOR_STATUSES(SIMULATOR_STATUS)
#undef SIMULATOR_STATUS

}  // namespace simulator
