#include "simulator/peripheral/Console.h"

#include "simulator/board/DriveOrders.h"

namespace simulator {
namespace {

constexpr size_t kMaxLine = 256;
constexpr char kBackspace = '\b';
constexpr char kDelete = 0x7f;

std::string onTerminal(const std::string& lines) {
    std::string out;
    for (const char c : lines) {
        out += c == '\n' ? "\r\n" : std::string(1, c);
    }
    return out;
}

std::string answer(const std::string& line) {
    if (line.find_first_not_of(' ') == std::string::npos) {
        return "";
    }
    if (line == "help") {
        return driveUsage();
    }
    const std::string fault = drive(line);
    return (fault.empty() ? "ok" : fault + " (try \"help\")") + "\n";
}

}  // namespace

std::string Console::feed(const std::string& bytes) {
    std::string out;
    for (const char c : bytes) {
        const bool secondEnd = c == '\n' && mAfterReturn;
        mAfterReturn = c == '\r';
        if (secondEnd) {
            continue;
        }
        if (c == '\r' || c == '\n') {
            out += "\r\n" + onTerminal(answer(mLine)) + "board> ";
            mLine.clear();
        } else if ((c == kBackspace || c == kDelete) && !mLine.empty()) {
            mLine.pop_back();
            out += "\b \b";
        } else if (c >= ' ' && c < kDelete && mLine.size() < kMaxLine) {
            mLine += c;
            out += c;
        }
    }
    return out;
}

}  // namespace simulator
