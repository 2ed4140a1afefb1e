#pragma once

#include <cstdint>
#include <regex>
#include <string>
#include <vector>

#include "service/frame/Debug.h"
#include "tests/support/LogCapture.h"

/// The lines that the device code logs while it lives, one at a time, with the debug flag at the given value.
class DeviceLog {
  public:
    explicit DeviceLog(uint8_t u8Flag = 1) { u8TvFactoryDebug = u8Flag; }
    /// Puts back the flag as it was when the program started.
    ~DeviceLog() { u8TvFactoryDebug = 1; }

    /// A line as "D Tag: <name:#> text": priority, tag, and the text to the letter, except that the source
    /// line's number reads #, in a doubled prefix too if it is the same number.
    static std::string shown(const LogLine& line) {
        static const std::regex doubled(R"(^(<[^>]*:(\d+)> .*\()\2\)\])"), number(R"(^(<[^>]*:)\d+> )");
        const std::string text = std::regex_replace(line.text, doubled, "$1#)]");
        return std::string(1, "??VDIWEFS"[line.priority]) + ' ' + line.tag + ": " +
               std::regex_replace(text, number, "$1#> ");
    }

    /// The lines since the last time, in order.
    std::vector<std::string> takeLines() {
        std::vector<std::string> lines;
        for (const LogLine& line : mLog.takeLines()) {
            lines.push_back(shown(line));
        }
        return lines;
    }

  private:
    LogCapture mLog;
};
