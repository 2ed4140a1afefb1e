#pragma once

#include <cstdint>
#include <string>

/**
 * What the library that takes the board's place does from now on; null where there is none. It writes every
 * byte of its outputs, and reads every byte that it is given.
 *
 * @param outputs 0: they stay as they are; else the byte that fills them, or for 1 ever other bytes: so there
 * are texts without end, and the greatest counts
 * @param results 0: 0; else one of the extremes, or for 1 ever another one. That it is ready stays true.
 */
[[gnu::weak]] void setAnswers(uint8_t outputs, uint8_t results);

/**
 * Raises an event of one of the modules that have a handler, chosen by the number: its first record is of the
 * extremes, its second has the text as text and bytes. Null where there is no such library.
 */
[[gnu::weak]] void raiseEvent(uint8_t module, uint32_t type, const std::string& text);
