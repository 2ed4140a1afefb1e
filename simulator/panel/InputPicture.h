#pragma once

#include <string>

#include "simulator/panel/Surface.h"

namespace simulator {

/** What a still picture of an input shows. */
enum class InputMotif { None, Hills, Stripes, Discs, Tiles, Diamonds, Film };

/** What the panel is told of its input. */
struct InputSignal {
    InputMotif motif = InputMotif::None;  // none: no source is chosen
    unsigned hue = 0;                     // of the picture, in degrees
    std::string name;
    bool locked = false;
    // Of a locked one.
    std::string timing;
    int width = 0;
    int height = 0;
    bool wide = true;  // else the picture is 4:3, whatever its pixels
};

/**
 * Draws the still picture that arrives, in its own pixels and shape, with the source's name and timing;
 * without a lock the name and "no signal" on nothing. Equal signals give equal pixels.
 */
void drawInput(const InputSignal& input, Surface* surface);

}  // namespace simulator
