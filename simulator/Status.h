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
/** Another process has held the state for too long; nothing was changed, try again. */
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

}  // namespace simulator
