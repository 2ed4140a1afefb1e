#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace simulator {

constexpr size_t kEdidBlock = 128;
constexpr size_t kEdidBytes = 2 * kEdidBlock;
using Edid = std::array<uint8_t, kEdidBytes>;

/**
 * The EDID that the board leaves the factory with: a 55" panel whose HDMI port has the physical address
 * port.0.0.0. Without wide it is 1920x1080 and what HDMI 1.4 can say, with it 3840x2160 at 60 Hz as of
 * HDMI 2.0.
 */
Edid makeEdid(unsigned port, bool wide);

/**
 * Whether a source could read these bytes: one block or two, as the first one says, with its header and their
 * checksums. Empty, or what is wrong.
 */
std::string edidFault(const uint8_t* bytes, size_t count);

}  // namespace simulator
