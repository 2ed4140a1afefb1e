#include "simulator/inputs/Settings.h"

using namespace fapi_core;

namespace simulator {
namespace {

Signal delivered(unsigned source) {
    const struct {
        ZvtTvFApiInputSource_e source;
        std::vector<std::string> words;
    } signals[] = {
            {INPUT_SOURCE_ATV, {"720x576i@50", "pal"}},    {INPUT_SOURCE_DTV, {"1920x1080i@50", "ber=120"}},
            {INPUT_SOURCE_AV, {"720x480i@59.94", "ntsc"}}, {INPUT_SOURCE_COMPONENT, {"1280x720@60"}},
            {INPUT_SOURCE_VGA, {"1024x768@60"}},           {INPUT_SOURCE_HDMI1, {"3840x2160@60"}}};
    Signal signal;
    for (const auto& known : signals) {
        if (known.source == source) {
            parseSignal(known.source, known.words, &signal);
        }
    }
    return signal;
}

std::vector<KeptNumbers::Group> groups() {
    std::vector<Limits> vd;
    for (const VdParameter& parameter : kVdParameters) {
        vd.push_back(parameter.limits);
    }
    std::vector<KeptNumbers::Group> all = {{"source:current", {{0, kInputSources - 1, INPUT_SOURCE_HDMI1}}},
                                           {"video_decoder:factory", vd}};
    const auto name = [](unsigned source) {
        return std::string(nameOf(static_cast<ZvtTvFApiInputSource_e>(source)));
    };
    for (unsigned source = 0; source < kInputSources; ++source) {
        all.push_back({"signal:" + name(source), delivered(source).limits()});
    }
    for (const auto& [section, numbers] : {std::pair("phase:", std::vector<Limits>(3, {0, 63, 32})),
                                           {"gain_offset:",
                                            {{0, 16383, 4096},
                                             {0, 16383, 4096},
                                             {0, 16383, 4096},
                                             {0, 4095, 2048},
                                             {0, 4095, 2048},
                                             {0, 4095, 2048}}}}) {
        for (unsigned source = 0; source < kInputSources; ++source) {
            if (adcOf(source)) {
                all.push_back({section + name(source), numbers});
            }
        }
    }
    return all;
}

}  // namespace

static_assert(std::size(kVdParameters) == kVdParameterCount, "one for each number");

KeptNumbers& inputSettings() {
    static KeptNumbers& sSettings = *new KeptNumbers(boardSettings(), "inputs", groups());
    return sSettings;
}

}  // namespace simulator
