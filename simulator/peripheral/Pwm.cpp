#include "simulator/peripheral/Pwm.h"

#include <algorithm>

#include "simulator/board/Status.h"

namespace simulator {
namespace {

struct Range {
    uint32_t least, most;
};
constexpr Range kRanges[] = {{Pwm::kMinHertz, Pwm::kMaxHertz}, {0, 100}, {0, 1}};

}  // namespace

void Pwm::reset() {
    const std::lock_guard<std::mutex> lock(mMutex);
    std::fill(std::begin(mOutputs), std::end(mOutputs), Output());
}

int32_t Pwm::set(unsigned attribute, unsigned channel, uint32_t value) {
    if (attribute >= kAttributes || channel >= kChannels || value < kRanges[attribute].least ||
        value > kRanges[attribute].most) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    mOutputs[channel].values[attribute] = value;
    return kOk;
}

int32_t Pwm::get(unsigned attribute, unsigned channel, uint32_t* value) const {
    if (attribute >= kAttributes || channel >= kChannels || value == nullptr) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    *value = mOutputs[channel].values[attribute];
    return kOk;
}

std::string Pwm::describe() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    std::string text;
    for (unsigned i = 0; i < kChannels; ++i) {
        const auto& values = mOutputs[i].values;
        if (!std::equal(std::begin(values), std::end(values), Output().values)) {
            text += "pwm " + std::to_string(i) + " " + std::to_string(values[kFrequency]) + " Hz " +
                    std::to_string(values[kDuty]) + " % " + (values[kEnable] != 0 ? "on" : "off") + "\n";
        }
    }
    return text;
}

}  // namespace simulator
