#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace simulator {

// Of an ADC source, by its number. kOutOfRange for another one, kBusy while a calibration of it is under way.

/**
 * Calibrates it by the signal at its input, which takes some of its frames, at most kMostFrames. kAbsent when
 * there is no signal, kNoConvergence, or a status of the settings: then its calibration is as it was.
 */
constexpr unsigned kMostFrames = 40;
int32_t calibrate(uint32_t source);

/** Sets its phases or its gains and offsets: the group of the first ADC in inputSettings(), and the numbers.
 */
int32_t setCalibration(uint32_t source, size_t firstGroup, const std::vector<int64_t>& numbers);

/** Reads them. */
int32_t getCalibration(uint32_t source, size_t firstGroup, std::vector<int64_t>* numbers);

}  // namespace simulator
