#pragma once

#include <cstdint>
#include <mutex>
#include <string>

namespace simulator {

/** The PWM outputs: at 1000 Hz, 0 %, resting, until set; nothing survives a restart. Any thread. */
class Pwm {
  public:
    static constexpr unsigned kChannels = 18;
    static constexpr uint32_t kMinHertz = 1;
    static constexpr uint32_t kMaxHertz = 1'000'000;
    enum Attribute { kFrequency = 0, kDuty = 1, kEnable = 2 };

    void reset();

    /** kOutOfRange for a channel, an attribute or a value that there is not. */
    int32_t set(unsigned attribute, unsigned channel, uint32_t value);
    int32_t get(unsigned attribute, unsigned channel, uint32_t* value) const;

    /** The outputs that are not as they were at the start. */
    std::string describe() const;

  private:
    static constexpr unsigned kAttributes = 3;
    struct Output {
        uint32_t values[kAttributes] = {1000, 0, 0};
    };
    mutable std::mutex mMutex;
    Output mOutputs[kChannels];  // guarded by mMutex
};

}  // namespace simulator
