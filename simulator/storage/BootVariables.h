#pragma once

#include <cstddef>
#include <cstdint>

namespace simulator {

// What the board makes of two variables of its boot environment (simulator/storage/Emmc.h).

/** The real-time clock, in seconds since 1970: the host's, ahead by the variable rtc_offset. kOutOfRange when
 * that is no number, said on standard error, or leads out of 1970 to 2106. */
int32_t readClock(unsigned* seconds);

/** Where the data index is: the variable dataindex_path, else a file that is made now. The buffer of size
 * bytes may be filled to its end, else there is a NUL behind the path; kTooLong. */
int32_t dataIndexPath(unsigned char* buffer, size_t size);

}  // namespace simulator
