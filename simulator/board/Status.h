#pragma once

#include <cstdint>

namespace simulator {

// The statuses of the simulated library. All below -100, clear of those that the service itself produces.

constexpr int32_t kOk = 0;
/** No such file, section or key. */
constexpr int32_t kNotFound = -101;
/** An argument is null, too long, out of its range, or holds characters that cannot be stored. */
constexpr int32_t kOutOfRange = -102;
/** The disk refused; what was stored before is still there. */
constexpr int32_t kIoError = -103;
/** Something else has held it for too long, or is under way; nothing was changed, try again. */
constexpr int32_t kBusy = -104;
/** The module is initialised already, or has a handler already. */
constexpr int32_t kAlreadySetUp = -105;
/** The module is not initialised, or has no handler. */
constexpr int32_t kNotSetUp = -106;
/** The result does not fit the caller's buffer, which holds an empty text instead. */
constexpr int32_t kTooLong = -107;
/** The name of a file or parameter is not one that the board uses. */
constexpr int32_t kBadName = -108;
/** The file is there, but too large, not a plain file, or not one whose parameter can be changed safely. */
constexpr int32_t kBadFile = -109;
/** No memory. */
constexpr int32_t kNoMemory = -110;
/** There is something of this name already. */
constexpr int32_t kExists = -111;
/** The board does not allow it: write-protected, or permissions forbid it. */
constexpr int32_t kDenied = -112;
/** The disk is full, or what the board reserves for this. */
constexpr int32_t kFull = -113;
/** Not a firmware image, not for this target, or damaged. */
constexpr int32_t kBadImage = -114;
/** Somebody who listens could not be told of the event. */
constexpr int32_t kNotTold = -115;
/** Given up before its end, since the module is being shut down. */
constexpr int32_t kGivenUp = -116;
/** What the call works on is not there or is switched off: a device, a plane, a layer. */
constexpr int32_t kAbsent = -117;
/** A search came to no result that lies within its limits. */
constexpr int32_t kNoConvergence = -118;
/** The bus or serial port has not been switched on. */
constexpr int32_t kSwitchedOff = -120;
/** The bytes are not what they should be: their form or a checksum is wrong. */
constexpr int32_t kBadData = -121;

}  // namespace simulator
