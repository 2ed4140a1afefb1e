#include "simulator/audio/Sound.h"

#include <iterator>

#include "simulator/audio/AqParameters.h"
#include "simulator/audio/VolumeTables.h"

namespace simulator {
namespace {

constexpr Limits kSwitch = {0, 1, 0};
constexpr int64_t kLevelMost = 100;
constexpr int64_t kFactoryVolume = 30;
constexpr int64_t kNeutral = 50;

// [Hz] The bands as delivered: from the lowest frequency to the highest, each 1.24 times (the 32nd root of
// 1000) the one before. Written down: to compute them costs every start 0.1 MiB of the mathematical library's
// memory.
constexpr int64_t kBandFrequencies[kParametricBands] = {
        20,  25,  31,   38,   47,   59,   73,   91,   112,  140,  173,  215,  267,   331,   411,   510,  632,
        785, 974, 1209, 1500, 1861, 2310, 2866, 3557, 4413, 5477, 6796, 8434, 10466, 12988, 16117, 20000};

std::vector<Limits> several(size_t count, Limits limits) {
    return std::vector<Limits>(count, limits);
}

std::vector<KeptNumbers::Group> groups() {
    std::vector<Limits> parts;
    for (const Processing& processing : kProcessings) {
        parts.push_back({0, (1 << processing.parts) - 1, 0});
    }
    const Limits neutral = {0, kLevelMost, kNeutral};
    const Limits off = {0, kLevelMost, 0};
    std::vector<Limits> bands;
    for (const int64_t frequency : kBandFrequencies) {
        const std::vector<Limits> limits = peqBandLimits(frequency);
        bands.insert(bands.end(), limits.begin(), limits.end());
    }
    return {{"processing:number", {{0, kProcessingCount, 0}}},
            {"processing:parts", parts},
            {"processing:param_set", {{0, kParamSets - 1, 0}}},
            {"prescale:on_gain", {kSwitch, {-200, 200, 0}}},
            {"noise_reduction:on_level", {kSwitch, {0, kLevelMost, kNeutral}}},
            {"speaker:delay", {{0, 250, 0}}},
            {"volume:paths", several(kAudioPaths, {0, kLevelMost, kFactoryVolume})},
            {"effects:on", several(kBasicEffects, kSwitch)},
            // Bass, treble, balance; surround, automatic volume.
            {"effects:level", {neutral, neutral, neutral, off, off}},
            {"effects:graphic_eq", several(kGraphicBands, neutral)},
            {"effects:parametric_eq", bands}};
}

}  // namespace

const char* const kAudioPathNames[kAudioPaths] = {"speaker", "headphone", "line_out",  "scart1",   "scart2",
                                                  "spdif",   "hdmi_arc",  "bluetooth", "subwoofer"};
static_assert(std::size(kProcessings) == kProcessingCount, "one for each number");

std::vector<Limits> peqBandLimits(int64_t frequency) {
    return {{20, 20000, frequency}, {-120, 120, 0}, {10, 2000, 100}};
}

KeptNumbers& soundSettings() {
    static KeptNumbers& sSettings = *new KeptNumbers(boardSettings(), "audio", groups());
    return sSettings;
}

fapi_core::ZvtTvFApiAudPathState_t pathState(uint32_t path) {
    const auto settings = soundSettings().get();
    const auto table = volumeTables().get(path);
    const auto first = [&](size_t group) { return static_cast<uint32_t>((*settings)[group][0]); };
    fapi_core::ZvtTvFApiAudPathState_t state{};
    state.u32Path = path;
    state.u32Volume = static_cast<uint32_t>((*settings)[sound::kVolume][path]);
    state.u32Delay = path == static_cast<uint32_t>(fapi_core::ZvtTvFApiAudioOutPathEnum::SPEAKER)
                             ? first(sound::kSpeakerDelay)
                             : 0;
    for (unsigned effect = 0; effect < kBasicEffects; ++effect) {
        state.u32BasicEffects |= (*settings)[sound::kEffects][effect] != 0 ? 1U << effect : 0;
    }
    state.u32Processing = first(sound::kProcessing);
    if (state.u32Processing != 0) {
        state.u32ProcessingParts =
                static_cast<uint32_t>((*settings)[sound::kProcessingParts][state.u32Processing - 1]);
    }
    state.u32ParamSet = first(sound::kParamSet);
    state.u8PrescaleOn = static_cast<uint8_t>(first(sound::kPrescale));
    state.s16Prescale = static_cast<int16_t>((*settings)[sound::kPrescale][1]);
    state.u8NoiseReductionOn = static_cast<uint8_t>(first(sound::kNoiseReduction));
    state.u16NoiseReduction = static_cast<uint16_t>((*settings)[sound::kNoiseReduction][1]);
    if (table != nullptr) {
        state.u16TableSize = static_cast<uint16_t>(table->gains.size());
        state.u16TableEntry = table->gains[state.u32Volume * (table->gains.size() - 1) / kLevelMost];
    }
    state.u8Mute = state.u32Volume == 0 || (table != nullptr && state.u16TableEntry == 0);
    return state;
}

std::string describeSound() {
    return soundSettings().describe() + volumeTables().describe() + aqParameters().describe();
}

}  // namespace simulator
