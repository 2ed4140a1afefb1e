#pragma once

#include <cstdint>

#include "simulator/panel/Surface.h"

namespace simulator {

/**
 * Draws a BMP file with its top left corner at x, y. Taken are plain files of 24 or 32 bits a pixel without
 * compression, either way up, at most 4096 pixels wide and high. 32-bit pixels have an alpha when the file's
 * masks say so (BI_BITFIELDS with 8 bits each of red, green, blue and alpha, in the usual places), else they
 * hide what is below.
 *
 * Reads only the rows that are seen, one at a time. Returns kOk; kBadFile for any other file, one whose
 * pixels are not all there included: then nothing has been drawn, unless the file shrank meanwhile; or
 * those of the disk.
 */
int32_t drawBmp(int fd, int64_t x, int64_t y, Surface& surface);

}  // namespace simulator
