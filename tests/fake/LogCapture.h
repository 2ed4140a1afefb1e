#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Collects the lines that reach the log while it lives, one at a time, with the debug flag at the given
/// value.
class LogCapture {
  public:
    explicit LogCapture(uint8_t u8Flag = 1);
    /// Puts back the flag and the log as they were when the program started.
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// The lines since the last time, in order, as "D Tag: <name:#> text": priority, tag, and the text to the
    /// letter, except that the source line's number reads #, in a doubled prefix too if it is the same
    /// number.
    std::vector<std::string> takeLines();
};
