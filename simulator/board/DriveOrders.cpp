#include "simulator/board/DriveOrders.h"

#include <mutex>
#include <sstream>

#include "simulator/board/Text.h"

namespace simulator {
namespace {

std::mutex sMutex;
std::vector<DriveOrder>& known() {  // guarded by sMutex
    static auto& sKnown = *new std::vector<DriveOrder>;
    return sKnown;
}

bool find(const std::string& word, DriveOrder* found) {
    const std::lock_guard<std::mutex> lock(sMutex);
    for (const DriveOrder& order : known()) {
        if (word == order.word) {
            *found = order;
            return true;
        }
    }
    return false;
}

}  // namespace

void addDriveOrders(const std::vector<DriveOrder>& orders) {
    const std::lock_guard<std::mutex> lock(sMutex);
    known().insert(known().end(), orders.begin(), orders.end());
}

bool isDriveOrder(const std::string& line) {
    std::istringstream words(line);
    std::string first;
    DriveOrder order;
    words >> first;
    return find(first, &order);
}

std::string drive(const std::string& line) {
    std::istringstream words(line);
    std::string first;
    words >> first;
    DriveOrder order;
    if (!find(first, &order)) {
        return "there is no order \"" + first + "\"";
    }
    std::vector<std::string> arguments;
    for (std::string word; words >> word;) {
        arguments.push_back(word);
    }
    const std::string fault = order.obey(arguments);
    return fault.empty() ? "" : fault + " (" + order.usage + ")";
}

std::string driveUsage() {
    const std::lock_guard<std::mutex> lock(sMutex);
    std::string text;
    for (const DriveOrder& order : known()) {
        text += std::string(order.usage) + "\n";
    }
    return text;
}

bool readDriveNumber(const std::string& text, uint64_t most, uint64_t* number) {
    return readAnyNumber(text, number) && *number <= most;
}

}  // namespace simulator
