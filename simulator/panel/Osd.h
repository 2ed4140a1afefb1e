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

/** Writes in the same letters, the pixels of which are that large; x, y is the top left corner. */
void drawText(const std::string& text, int64_t x, int64_t y, int64_t pixel, Argb ink, Surface* surface);
/** Without the gap behind the last letter. */
int64_t textWidth(const std::string& text, int64_t pixel);

}  // namespace simulator
