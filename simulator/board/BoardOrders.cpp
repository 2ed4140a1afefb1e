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
    std::string text;
    if (module.empty()) {
        text = std::string("[board]\nversion ") + kBoardVersion + "\nready " + (boardReady() ? "yes" : "no") +
               "\n" + describeForcedStatuses() + "\n";
    }
    const std::string modules = Module::describeAll(module);
    if (!module.empty() && modules.empty()) {
        complain("no module \"" + module + "\" that shows its state");
        return kNotFound;
    }
    text += modules;
    fprintf(stderr, "board: its state:\n%s", text.c_str());
    static StateFolder& sRoot = *new StateFolder(boardState(), "");
    return sRoot.replace(kStateFile, text, kStateFileMode);
}

}  // namespace simulator
