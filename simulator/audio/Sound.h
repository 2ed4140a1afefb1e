#pragma once

#include <cstdint>
#include <string>

#include "chiplayer/aud.h"
#include "simulator/storage/KeptNumbers.h"

namespace simulator {

// This room: the sound. Settings, volume tables and AQ files.

constexpr unsigned kAudioPaths = 9;
/** Names of the paths, in their numbers' order, as files and the state show them. */
extern const char* const kAudioPathNames[kAudioPaths];

/** An advanced processing, numbered from 1. */
struct Processing {
    const char* name;
    unsigned parts;
};
constexpr Processing kProcessings[] = {
        {"virtual surround", 4}, {"dialogue", 3}, {"bass enhancement", 2}, {"night mode", 2}};
constexpr unsigned kProcessingCount = 4;
constexpr unsigned kParamSets = 8;

constexpr unsigned kBasicEffects = 7;
/** The types from 0 on that have a level. */
constexpr unsigned kLevelEffects = 5;
constexpr unsigned kGraphicBands = 8;
constexpr unsigned kParametricBands = 33;

/** What the set keeps of its sound, groups of a KeptNumbers. */
namespace sound {
enum : size_t {
    kProcessing,       // its number, 0 for none
    kProcessingParts,  // of each processing, a mask
    kParamSet,
    kPrescale,        // on, gain
    kNoiseReduction,  // on, level
    kSpeakerDelay,
    kVolume,        // of each path
    kEffects,       // of each basic effect, whether it is on
    kEffectLevel,   // of each that has one
    kGraphicEq,     // of each band
    kParametricEq,  // of each band: frequency, gain, Q
};
}  // namespace sound

/** Limits of one band of the parametric equaliser, in the order of the numbers above. */
std::vector<Limits> peqBandLimits(int64_t frequency);

/** The sound's settings; made on first use, never destroyed. */
KeptNumbers& soundSettings();

/** Fills the state of a path below kAudioPaths. */
fapi_core::ZvtTvFApiAudPathState_t pathState(uint32_t path);

std::string describeSound();

}  // namespace simulator
