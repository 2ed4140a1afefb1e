#pragma once

#include <string>

namespace simulator {

/**
 * What the system says on its console: it obeys the lines that come in as orders of
 * simulator/board/DriveOrders.h, and speaks only when spoken to. One thread.
 */
class Console {
  public:
    /** Takes what has come in; returns what goes out: the echo, answers, the next prompt. */
    std::string feed(const std::string& bytes);

  private:
    std::string mLine;
    bool mAfterReturn = false;
};

}  // namespace simulator
