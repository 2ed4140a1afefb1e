#pragma once

#include <string>

#include "simulator/board/Module.h"

namespace simulator {

/** One line of the pipe, read. */
struct EventOrder {
    Module* module = nullptr;
    uint32_t type = 0;
    Module::Payload payload;
};

/**
 * Reads an order: `MODULE TYPE [RECORD...]`, separated by blanks; MODULE is a module's short name, TYPE a
 * number, decimal or hexadecimal after 0x, and the records are those of simulator/board/EventRecords.h. The
 * line is at most 2 MiB long and holds no NUL.
 *
 *     disp 0x10005 value=3,text=signal - bytes=00ff
 *
 * @return empty, or what is wrong with it
 */
std::string readEventOrder(const std::string& line, EventOrder* order);

/**
 * Carries out one order: raises an event, `force ...` and `state ...` as simulator/board/BoardOrders.h has
 * them, or what simulator/board/DriveOrders.h knows. What is wrong with the line, and a handler that fails,
 * is said on standard error. kOutOfRange for the line, kNotSetUp for a module without a handler, kNotTold for
 * the handler, or the order's own status.
 */
int32_t carryOutOrder(const std::string& line);

/**
 * Lets whoever may write into the state directory raise events: each line written to the named pipe `raise`
 * there is an order, which is carried out on a thread of the board. Called again, it does nothing.
 */
void startEventPipe();

}  // namespace simulator
