#include "simulator/board/Faults.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <mutex>

#include "simulator/board/Board.h"
#include "simulator/board/Refusals.h"
#include "simulator/board/Status.h"

namespace simulator {

void tellFaults(const std::string& file, const std::vector<std::string>& faults) {
    static std::mutex& sMutex = *new std::mutex;
    static auto& sTold = *new std::map<std::string, std::vector<std::string>>;  // guarded by sMutex
    // A state folder that cannot be had has been said itself.
    if (!faults.empty() && boardState().openFolder("").status != kOk) {
        return;
    }
    const std::lock_guard<std::mutex> lock(sMutex);
    std::vector<std::string>& told = sTold[file];
    // What is written moves lines.
    const auto withoutNumber = [](const std::string& fault) {
        return fault.compare(0, 5, "line ") == 0 ? fault.substr(fault.find(':')) : fault;
    };
    for (const std::string& fault : faults) {
        giveReason(file + ": " + fault);
        if (std::none_of(told.begin(), told.end(), [&](const std::string& before) {
                return withoutNumber(before) == withoutNumber(fault);
            })) {
            fprintf(stderr, "board: %s: %s\n", file.c_str(), fault.c_str());
        }
    }
    told = faults;
}

}  // namespace simulator
