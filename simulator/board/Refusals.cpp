#include "simulator/board/Refusals.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <deque>
#include <mutex>
#include <new>
#include <utility>

namespace simulator {
namespace {

// Of the call that this thread carries out. Plain bytes: it is emptied before every call.
thread_local char sReason[kMaxReason + 1];

struct Refusal {
    std::string call;
    std::string reason;
};
std::mutex sMutex;
// Guarded by sMutex; the latest comes last. Never destroyed, since clients call while the process exits.
std::deque<Refusal>& kept() {
    static auto& sKept = *new std::deque<Refusal>;
    return sKept;
}

}  // namespace

void complain(const std::string& reason) {
    fprintf(stderr, "board: %s\n", reason.c_str());
    giveReason(reason);
}

void giveReason(const std::string& reason) {
    if (sReason[0] != '\0') {
        return;
    }
    size_t length = std::min(reason.size(), kMaxReason);
    // Not in the middle of a character.
    while (length < reason.size() && length > 0 && (reason[length] & 0xc0) == 0x80) {
        --length;
    }
    memcpy(sReason, reason.data(), length);
    sReason[length] = '\0';
}

void forgetReason() {
    sReason[0] = '\0';
}

void keepRefusal(const std::string& call) {
    const std::lock_guard<std::mutex> lock(sMutex);
    std::deque<Refusal>& all = kept();
    all.erase(std::remove_if(all.begin(), all.end(), [&](const Refusal& one) { return one.call == call; }),
              all.end());
    if (sReason[0] != '\0' && call.size() <= kMaxCall) {
        all.push_back({call, sReason});
    }
    forgetReason();
    if (all.size() > kMostRefusals) {
        all.pop_front();
    }
}

std::string refusalOf(const std::string& call) {
    const std::lock_guard<std::mutex> lock(sMutex);
    for (const Refusal& one : kept()) {
        if (one.call == call) {
            return one.reason;
        }
    }
    return {};
}

}  // namespace simulator
