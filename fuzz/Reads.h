#pragma once

#include <hwbinder/Parcel.h>

#include <cstddef>
#include <cstdint>

namespace fuzz {

/** How many bytes at an input's start say what a stub reads. */
constexpr size_t kReads = 16;

/**
 * Reads as a stub would that expects what the byte says. Readers may write to what they were given, so every
 * byte of it is written.
 */
void read(const android::hardware::Parcel& parcel, uint8_t what);

}  // namespace fuzz
