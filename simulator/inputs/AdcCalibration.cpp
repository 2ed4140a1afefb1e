#include "simulator/inputs/AdcCalibration.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <mutex>
#include <thread>

#include "simulator/board/Status.h"
#include "simulator/inputs/Settings.h"

namespace simulator {
namespace {

constexpr unsigned kChannels = 3;
constexpr double kUnityGain = 4096;
constexpr int64_t kMostGain = 16383;
constexpr int64_t kNoOffset = 2048;
constexpr int64_t kMostCode = 4095;
// Nominal black and white of 8-bit video, in steps of the 12-bit converter.
constexpr int64_t kBlack = 16 * 16;
constexpr int64_t kWhite = 235 * 16;
constexpr int64_t kTolerance = 1;

/** What the analogue circuit in front of a channel makes of the reference signal, in steps of the converter.
 */
struct FrontEnd {
    double black;
    double white;
};

// The spread of real parts: each channel of each ADC has its own error.
constexpr FrontEnd kFrontEnds[kAdcs][kChannels] = {{{118, 3390}, {131, 3420}, {125, 3365}},
                                                   {{96, 3010}, {142, 3150}, {104, 2985}},
                                                   {{61, 2790}, {48, 2840}, {83, 2755}}};

std::mutex sCalibrating[kAdcs];

int64_t convert(double level, int64_t gain, int64_t offset) {
    const double code = std::round(level * static_cast<double>(gain) / kUnityGain) +
                        static_cast<double>(offset - kNoOffset);
    return static_cast<int64_t>(std::clamp(code, 0.0, static_cast<double>(kMostCode)));
}

/** Half of it, but at least one step. */
int64_t half(int64_t distance) {
    return (distance + (distance > 0) - (distance < 0)) / 2;
}

Signal signalAt(uint32_t source) {
    return Signal::fromNumbers((*inputSettings().get())[inputs::kSignals + source]);
}

/**
 * One step of the search for a channel's calibration: converts black and white of the reference signal and
 * moves gain and offset towards those that bring them to their nominal values. Returns whether they are there
 * already.
 */
bool calibrationStep(const FrontEnd& channel, int64_t* gain, int64_t* offset) {
    const int64_t black = convert(channel.black, *gain, *offset);
    const int64_t white = convert(channel.white, *gain, *offset);
    if (std::abs(black - kBlack) <= kTolerance && std::abs(white - kWhite) <= kTolerance) {
        return true;
    }
    const int64_t span = white - black;
    if (black == 0 || white == kMostCode) {
        // Cut off: neither says how far it is away. Less gain brings both into reach, then the offset the
        // black.
        *gain = white == kMostCode ? *gain - *gain / 4 : *gain;
        *offset += black == 0 ? kBlack : half(kBlack - black);
    } else {
        const int64_t wanted = span <= 0 ? 2 * *gain + 1 : *gain * (kWhite - kBlack) / span;
        *gain += half(wanted - *gain);
        *offset += half(kBlack - black);
    }
    *gain = std::clamp<int64_t>(*gain, 0, kMostGain);
    *offset = std::clamp<int64_t>(*offset, 0, kMostCode);
    return false;
}

}  // namespace

int32_t calibrate(uint32_t source) {
    const std::optional<unsigned> adc = adcOf(source);
    if (!adc) {
        return kOutOfRange;
    }
    const std::unique_lock<std::mutex> calibrating(sCalibrating[*adc], std::try_to_lock);
    if (!calibrating) {
        return kBusy;
    }
    KeptNumbers::Values found = (*inputSettings().get())[inputs::kGainOffsets + *adc];
    for (unsigned frame = 0; frame < kMostFrames; ++frame) {
        const Signal signal = signalAt(source);
        if (!signal.present || signal.rate == 0) {
            return kAbsent;
        }
        std::this_thread::sleep_for(std::chrono::duration<double>(1000.0 / signal.rate));
        bool done = true;
        for (unsigned channel = 0; channel < kChannels; ++channel) {
            FrontEnd frontEnd = kFrontEnds[*adc][channel];
            frontEnd.white = frontEnd.black + (frontEnd.white - frontEnd.black) * signal.level / 100;
            done = calibrationStep(frontEnd, &found[channel], &found[kChannels + channel]) && done;
        }
        if (done) {
            return inputSettings().change(inputs::kGainOffsets + *adc,
                                          [&](KeptNumbers::Values& numbers) { numbers = found; });
        }
    }
    return kNoConvergence;
}

int32_t setCalibration(uint32_t source, size_t firstGroup, const std::vector<int64_t>& numbers) {
    const std::optional<unsigned> adc = adcOf(source);
    if (!adc) {
        return kOutOfRange;
    }
    const std::unique_lock<std::mutex> calibrating(sCalibrating[*adc], std::try_to_lock);
    if (!calibrating) {
        return kBusy;
    }
    return inputSettings().change(firstGroup + *adc,
                                  [&](KeptNumbers::Values& changed) { changed = numbers; });
}

int32_t getCalibration(uint32_t source, size_t firstGroup, std::vector<int64_t>* numbers) {
    const std::optional<unsigned> adc = adcOf(source);
    if (!adc) {
        return kOutOfRange;
    }
    *numbers = (*inputSettings().get())[firstGroup + *adc];
    return kOk;
}

}  // namespace simulator
