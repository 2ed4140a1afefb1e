#include "simulator/board/BoardOrders.h"

#include <cstdio>
#include <sstream>

#include "simulator/board/Board.h"
#include "simulator/board/ForcedStatus.h"
#include "simulator/board/Module.h"
#include "simulator/board/Refusals.h"
#include "simulator/board/Status.h"
#include "simulator/board/Text.h"

namespace simulator {
namespace {

constexpr char kStateFile[] = "state.txt";
constexpr mode_t kStateFileMode = 0600;
constexpr uint32_t kMaxNotReadyMilliseconds = 24U * 60 * 60 * 1000;

std::string obey(const std::string& order) {
    std::istringstream words(order);
    std::string what, duration, more;
    words >> what >> duration >> more;
    if (what == "ready" && duration.empty()) {
        setBoardReadyIn(0);
        return {};
    }
    if (what != "not-ready") {
        return forceStatus(order);
    }
    uint32_t milliseconds = kNeverReady;
    if (!duration.empty()) {
        if (!readNumber(duration, &milliseconds) || milliseconds > kMaxNotReadyMilliseconds ||
            !more.empty()) {
            return "\"" + duration + "\" is not a number of milliseconds up to a day's";
        }
    }
    setBoardReadyIn(milliseconds);
    return {};
}

std::string wholeState() {
    return std::string("[board]\nversion ") + kBoardVersion + "\nready " + (boardReady() ? "yes" : "no") +
           "\n" + describeForcedStatuses() + "\n" + Module::describeAll("");
}

int32_t keepState(const std::string& text) {
    static StateFolder& sRoot = *new StateFolder(boardState(), "");
    return sRoot.replace(kStateFile, text, kStateFileMode);
}

}  // namespace

int32_t forceOrder(const std::string& order) {
    const std::string fault = obey(order);
    if (!fault.empty()) {
        complain("nothing forced: " + fault);
        return kOutOfRange;
    }
    return kOk;
}

int32_t printState(const std::string& module) {
    const std::string text = module.empty() ? wholeState() : Module::describeAll(module);
    if (text.empty()) {
        complain("no module \"" + module + "\" that shows its state");
        return kNotFound;
    }
    fprintf(stderr, "board: its state:\n%s", text.c_str());
    return keepState(text);
}

int32_t writeState(std::string* path) {
    const int32_t status = keepState(wholeState());
    if (status == kOk) {
        *path = boardState().path() + "/" + kStateFile;
    }
    return status;
}

}  // namespace simulator
