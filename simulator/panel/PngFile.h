#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

namespace simulator {

/**
 * Writes a picture of the panel's size, three bytes (red, green, blue) a pixel, row after row, as PNG into a
 * file opened for writing; flushed, not synchronised. Returns kOk, kNoMemory, or what the
 * disk refuses.
 */
int32_t writePng(FILE* file, const std::vector<uint8_t>& rgb);

}  // namespace simulator
