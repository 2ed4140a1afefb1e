#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "simulator/board/Module.h"

namespace simulator {

// What upgrades of the board and of the frame-rate converter have in common.

/** A number of 32 bits in an image, the lowest byte first. */
uint32_t wordAt(const std::string& image, size_t position);

/** CRC-32 of a part of an image. */
uint32_t checksumOf(const std::string& image, size_t begin, size_t end);

/** How long an upgrade takes: the variable of the environment, up to an hour, 3000 unless it is set; what is
 * wrong with it is said on standard error. [ms] */
uint32_t upgradeMilliseconds(const char* variable);

/** Raises a progress event: record 1 has the percentage and the path, record 2 a number and "running", "done"
 * or "failed", record 3 the status. An event that fails is said on standard error. */
void tellProgress(Module& module, uint32_t type, unsigned percent, const std::string& path, uint32_t number,
                  const char* phase, int32_t status);

}  // namespace simulator
