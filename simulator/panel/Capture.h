#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "simulator/panel/Picture.h"

namespace simulator {

/**
 * Writes the panel's picture as PNG to a path on the USB storage, the folder usb/ of the board's files. A
 * file of that name is replaced, by the whole new one or not at all; folders on the way must exist. On kOk it
 * is on the disk. kBadName for a path with "..", or one that names a folder; other statuses are the file's.
 */
int32_t captureToUsb(const char* path, Seen seen);

struct Captured {
    std::string path;  // as it was asked for
    PanelClock::time_point instant;
};

/** The last capture that came to be, and the instant it shows. */
std::optional<Captured> lastCapture();

}  // namespace simulator
