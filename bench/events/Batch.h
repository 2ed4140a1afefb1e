#pragma once

#include <cstdint>

namespace bench {

/** Events after which a listener answers: few enough for a socket's buffer to hold them. */
constexpr uint32_t kBatch = 32;

/** Bit of an event's type that asks for an answer to this one. */
constexpr uint32_t kAnswerAtOnce = 0x8000;

}  // namespace bench
