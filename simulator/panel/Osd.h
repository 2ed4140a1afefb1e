#pragma once

#include <string>
#include <vector>

#include "simulator/panel/Surface.h"

namespace simulator {

/**
 * Draws what the set shows over the picture: the banner's lines, when there are any, in a translucent box at
 * the top, and a subtitle at the bottom. Capitals, digits and the usual signs can be read; other characters
 * are a box.
 */
void drawOsd(const std::vector<std::string>& banner, bool subtitle, Surface* surface);

}  // namespace simulator
