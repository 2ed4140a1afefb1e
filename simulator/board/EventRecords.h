#pragma once

#include <string>
#include <string_view>

#include "simulator/board/Module.h"

namespace simulator {

/**
 * Reads the payload records of an event, up to four, as docs/board.md describes them: between blanks, or, if
 * there is a bar between blanks, between bars.
 *
 *     value=3,text=signal - bytes=00ff
 *     value=3 text="no signal" | - | bytes=6869 ("hi")
 *
 * @return empty, or what is wrong with them
 */
std::string readEventRecords(std::string_view text, Module::Payload* payload);

}  // namespace simulator
