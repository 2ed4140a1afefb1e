#pragma once

#include "simulator/inputs/Signal.h"
#include "simulator/storage/KeptNumbers.h"

namespace simulator {

/** What the set keeps of its inputs, groups of a KeptNumbers; of each source or ADC one, from its first on.
 */
namespace inputs {
enum : size_t {
    kCurrent,  // the current source
    kFactoryVd,
    kSignals,
    kPhases = kSignals + kInputSources,
    kGainOffsets = kPhases + kAdcs,
};
}  // namespace inputs

/** Made on first use, never destroyed. The signals are the world's, not the set's: a restart leaves cables in
 * place. */
KeptNumbers& inputSettings();

/** The factory parameters of the video decoder, by number. */
struct VdParameter {
    const char* name;
    Limits limits;
};
constexpr VdParameter kVdParameters[] = {{"gain control: 0 automatic, 1 fixed", {0, 1, 0}},
                                         {"fixed gain", {0, 255, 128}},
                                         {"colour killer, on below", {0, 255, 32}},
                                         {"colour killer, off above", {0, 255, 48}},
                                         {"slice level of the sync pulses", {0, 127, 40}},
                                         {"comb filter: 0 off, 1 two lines, 2 three lines", {0, 2, 2}},
                                         {"delay of luma against chroma", {0, 15, 8}},
                                         {"time constant of the line loop", {0, 3, 1}}};
constexpr unsigned kVdParameterCount = 8;

}  // namespace simulator
