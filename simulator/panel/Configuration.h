#pragma once

#include <cstdint>
#include <string>

#include "simulator/panel/Settings.h"

namespace simulator {

// What engineers write into the board's ini files about the display. A parameter that is missing, or a whole
// file, has the value that stands here.

/** What the driver reads of panel.ini. */
struct DriverParameters {
    std::string name = "SIM-55UHD";
    uint32_t panelId = 55;
    uint32_t tconVersion = 0x010000;
    bool tconEnabled = true;
    bool sscEnabled = true;
    uint32_t sscFrequency = 30;  // kHz
    uint32_t sscDeviation = 50;  // 0.01 %
    uint32_t pwmMin = 5;         // percent
    uint32_t pwmMax = 100;
    bool frcPresent = true;

    /** CRC-32 of what the timing controller is told of: its version and panel as text. */
    uint32_t tconChecksum() const;
};

constexpr unsigned kPqTypes = 7;

/** pq.ini: the ranges of the colour model, and the version of each kind of data of each window. */
struct PqData {
    /** Least and most of hue, saturation and luma, as the PqItems count them. */
    int32_t range[3][2] = {{-50, 50}, {-50, 50}, {-50, 50}};
    std::string versions[kWindows][kPqTypes];

    PqData();
};

/**
 * Reads a file anew. kBadFile when a value is not what it must be, or another status when the file cannot be
 * read; what is wrong is said on standard error, and nothing has changed.
 */
int32_t loadDriverParameters(DriverParameters* parameters);
int32_t loadPqData(PqData* data);

}  // namespace simulator
