#include "simulator/board/OwnParameters.h"

#include <cstring>
#include <map>
#include <mutex>

#include "simulator/board/Board.h"
#include "simulator/board/BoardOrders.h"
#include "simulator/board/Refusals.h"
#include "simulator/board/Status.h"
#include "simulator/board/Text.h"

namespace simulator {
namespace {

const char* statusName(int32_t status) {
    switch (status) {
#define SIMULATOR_STATUS(constant, number, name, meaning) \
    case constant:                                        \
        return name;
        SIMULATOR_STATUSES(SIMULATOR_STATUS)
#undef SIMULATOR_STATUS
    }
    return "";
}

std::string refusal(const std::string& call) {
    if (!call.empty() && digitOf(call[0]) >= 0 && digitOf(call[0]) < 10) {
        return refusalOf(std::string(kOrderFunction) + " " + call);
    }
    const std::string reason = refusalOf(call);
    return reason.empty() ? refusalOf(call.substr(0, call.find(' '))) : reason;
}

using Tell = int32_t (*)(std::string* value);

std::mutex sMutex;
std::map<std::string, Tell>& added() {  // guarded by sMutex
    static auto& sAdded = *new std::map<std::string, Tell>;
    return sAdded;
}

Tell addedFor(const std::string& parameter) {
    const std::lock_guard<std::mutex> lock(sMutex);
    const auto found = added().find(parameter);
    return found == added().end() ? nullptr : found->second;
}

}  // namespace

void addOwnParameter(const std::string& parameter, int32_t (*tell)(std::string* value)) {
    const std::lock_guard<std::mutex> lock(sMutex);
    added()[parameter] = tell;
}

bool isOwnFile(const char* file) {
    return file != nullptr && (strcmp(file, "board") == 0 || strcmp(file, "board.ini") == 0);
}

int32_t ownParameter(const std::string& parameter, std::string* value) {
    const size_t colon = parameter.find(':');
    const std::string section = parameter.substr(0, colon);
    const std::string key = colon == std::string::npos ? "" : parameter.substr(colon + 1);
    int32_t status = 0;
    value->clear();
    if (parameter == "state:folder") {
        *value = boardState().path();
        return kOk;
    }
    if (parameter == "state:file") {
        return writeState(value);
    }
    if (const Tell tell = addedFor(parameter); tell != nullptr) {
        return tell(value);
    }
    if (section == "status" && readNumber(key, &status)) {
        *value = statusName(status);
    } else if (section == "refusal") {
        *value = refusal(key);
    }
    return value->empty() ? kNotFound : kOk;
}

}  // namespace simulator
