#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/socket/Message.h"

namespace fuzz {

/**
 * Takes the bytes as a connection does: the head is checked, then the whole. The copy has the announced size
 * exactly, so that one byte too far is noticed.
 *
 * @return empty when they are refused, or shorter than they say
 */
android::hardware::Message receive(const uint8_t* data, size_t size);

/** Ends the process, with the input kept, unless it holds. */
void require(bool condition);

}  // namespace fuzz
