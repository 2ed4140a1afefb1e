// Module aud.

#include <cstring>

#include "simulator/audio/AqParameters.h"
#include "simulator/audio/Sound.h"
#include "simulator/audio/VolumeTables.h"
#include "simulator/board/ChipCall.h"
#include "simulator/board/Module.h"
#include "simulator/modules/ChipLayer.h"

using namespace simulator;
using Values = KeptNumbers::Values;

namespace {

Module& self() {
    static Module& sModule = *new Module("aud", describeSound);
    return sModule;
}

template <typename... Pointer>
bool given(Pointer... pointers) {
    return (... && (pointers != nullptr));
}

/** The number that a cell of 16 bits holds when it is signed. */
int16_t signedCell(unsigned short cell) {
    int16_t value;
    memcpy(&value, &cell, sizeof(value));
    return value;
}

/** Changes a group of the settings by a call that never throws; kOutOfRange unless the arguments are good. */
template <typename Edit>
int32_t change(bool good, size_t group, Edit edit) {
    return guarded([&] { return good ? soundSettings().change(group, edit) : kOutOfRange; });
}

// The numbers of a band of the parametric equaliser.
enum { kFrequency, kGain, kQ, kBandNumbers };

int32_t setBand(const unsigned short* band, unsigned number, const unsigned short* cell) {
    const bool good = given(band, cell) && *band < kParametricBands;
    return change(good, sound::kParametricEq, [&](Values& bands) {
        bands[kBandNumbers * *band + number] = number == kGain ? signedCell(*cell) : *cell;
    });
}

}  // namespace

int32_t a_zvttvfapi_aud_init() {
    return guarded([] {
        const int32_t status = self().init();
        if (status == kOk) {
            soundSettings().load();
            volumeTables().load();
            aqParameters().restart();
        }
        return status;
    });
}

int32_t a_zvttvfapi_aud_deinit() {
    return self().deinit();
}

int32_t a_zvttvfapi_aud_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    return self().registerHandler(pfnHandler);
}

int32_t a_zvttvfapi_aud_unreg_callback() {
    return self().unregisterHandler();
}

int32_t a_zvttvfapi_aud_adv_snd_enable(unsigned int* pu32Processing) {
    return change(given(pu32Processing), sound::kProcessing,
                  [&](Values& values) { values[0] = *pu32Processing; });
}

int32_t a_zvttvfapi_aud_adv_snd_enable_sub(unsigned int* pu32Processing, unsigned int* pu32Part,
                                           unsigned char* pu8Enable) {
    const bool good = given(pu32Processing, pu32Part, pu8Enable) && *pu32Processing >= 1 &&
                      *pu32Processing <= kProcessingCount &&
                      *pu32Part < kProcessings[*pu32Processing - 1].parts && *pu8Enable <= 1;
    return change(good, sound::kProcessingParts, [&](Values& masks) {
        int64_t& mask = masks[*pu32Processing - 1];
        const int64_t bit = 1 << *pu32Part;
        mask = *pu8Enable != 0 ? mask | bit : mask & ~bit;
    });
}

int32_t a_zvttvfapi_aud_adv_snd_set_param(unsigned int* pu32ParamSet) {
    return change(given(pu32ParamSet), sound::kParamSet, [&](Values& values) { values[0] = *pu32ParamSet; });
}

int32_t a_zvttvfapi_aud_adv_set_prescale(unsigned char* pu8Enable, unsigned short* pu16Gain) {
    return change(given(pu8Enable, pu16Gain), sound::kPrescale, [&](Values& values) {
        values = {*pu8Enable, signedCell(*pu16Gain)};
    });
}

int32_t a_zvttvfapi_aud_adv_set_NR(unsigned char* pu8Enable, unsigned short* pu16Level) {
    return change(given(pu8Enable, pu16Level), sound::kNoiseReduction, [&](Values& values) {
        values = {*pu8Enable, *pu16Level};
    });
}

int32_t a_zvttvfapi_aud_adv_set_speaker_delay(unsigned int* pu32Delay) {
    return change(given(pu32Delay), sound::kSpeakerDelay, [&](Values& values) { values[0] = *pu32Delay; });
}

int32_t a_zvttvfapi_aud_adv_get_speaker_delay(unsigned int* pu32Delay) {
    return guarded([&] {
        if (!given(pu32Delay)) {
            return kOutOfRange;
        }
        *pu32Delay = static_cast<unsigned>((*soundSettings().get())[sound::kSpeakerDelay][0]);
        return kOk;
    });
}

int32_t a_zvttvfapi_aud_adv_set_volume(unsigned int* pu32Path, unsigned int* pu32Volume) {
    return change(given(pu32Path, pu32Volume) && *pu32Path < kAudioPaths, sound::kVolume,
                  [&](Values& volumes) { volumes[*pu32Path] = *pu32Volume; });
}

int32_t a_zvttvfapi_aud_adv_get_volume(unsigned int* pu32Path, unsigned int* pu32Volume) {
    return guarded([&] {
        if (!given(pu32Path, pu32Volume) || *pu32Path >= kAudioPaths) {
            return kOutOfRange;
        }
        *pu32Volume = static_cast<unsigned>((*soundSettings().get())[sound::kVolume][*pu32Path]);
        return kOk;
    });
}

int32_t a_zvttvfapi_aud_adv_set_peq_q_value(unsigned short* pu16Band, unsigned short* pu16Q) {
    return setBand(pu16Band, kQ, pu16Q);
}

int32_t a_zvttvfapi_aud_adv_set_peq_freq_value(unsigned short* pu16Band, unsigned short* pu16Frequency) {
    return setBand(pu16Band, kFrequency, pu16Frequency);
}

int32_t a_zvttvfapi_aud_adv_set_peq_gain_value(unsigned short* pu16Band, unsigned short* pu16Gain) {
    return setBand(pu16Band, kGain, pu16Gain);
}

int32_t a_zvttvfapi_aud_adv_set_peq_value(unsigned short* pu16Band, unsigned short* pu16Q,
                                          unsigned short* pu16Frequency, unsigned short* pu16Gain) {
    const bool good = given(pu16Band, pu16Q, pu16Frequency, pu16Gain) && *pu16Band < kParametricBands;
    return change(good, sound::kParametricEq, [&](Values& bands) {
        int64_t* const band = &bands[kBandNumbers * *pu16Band];
        band[kFrequency] = *pu16Frequency;
        band[kGain] = signedCell(*pu16Gain);
        band[kQ] = *pu16Q;
    });
}

int32_t a_zvttvfapi_aud_adv_enable_basic_sound_effect(e_zvttvfapi_aud_basic_snd_type eType,
                                                      unsigned char u8Enable) {
    return change(static_cast<uint32_t>(eType) < kBasicEffects, sound::kEffects,
                  [&](Values& effects) { effects[static_cast<size_t>(eType)] = u8Enable; });
}

int32_t a_zvttvfapi_aud_basic_snd_set_param(e_zvttvfapi_aud_basic_snd_type eType,
                                            fapi_core::ZvtTvFApiAudBasicSoundParam_t const* pstParam) {
    if (!given(pstParam)) {
        return kOutOfRange;
    }
    switch (eType) {
        case AUD_BASIC_SND_BASS:
        case AUD_BASIC_SND_TREBLE:
        case AUD_BASIC_SND_BALANCE:
        case AUD_BASIC_SND_SURROUND:
        case AUD_BASIC_SND_AUTO_VOLUME:
            static_assert(AUD_BASIC_SND_AUTO_VOLUME == kLevelEffects - 1, "the types up to it have a level");
            return change(true, sound::kEffectLevel,
                          [&](Values& levels) { levels[eType] = pstParam->u32Level; });
        case AUD_BASIC_SND_GRAPHIC_EQ:
            return change(pstParam->u16GeqBandCount <= kGraphicBands, sound::kGraphicEq, [&](Values& levels) {
                for (unsigned i = 0; i < pstParam->u16GeqBandCount; ++i) {
                    levels[i] = pstParam->au32GeqLevel[i];
                }
            });
        case AUD_BASIC_SND_PARAMETRIC_EQ:
            return change(pstParam->u16PeqBandCount <= kParametricBands, sound::kParametricEq,
                          [&](Values& bands) {
                              for (unsigned i = 0; i < pstParam->u16PeqBandCount; ++i) {
                                  const fapi_core::ZvtTvFApiAudPeqBand_t& band = pstParam->astPeqBand[i];
                                  bands[kBandNumbers * i + kFrequency] = band.u32Frequency;
                                  bands[kBandNumbers * i + kGain] = band.s16Gain;
                                  bands[kBandNumbers * i + kQ] = band.u16Q;
                              }
                          });
    }
    return kOutOfRange;
}

int32_t a_zvttvfapi_aud_get_attr(unsigned int u32Type, void* pInput, void* pOutput) {
    return guarded([&] {
        if (u32Type != AUD_ATTR_PATH_STATE || !given(pInput, pOutput)) {
            return kOutOfRange;
        }
        const unsigned char path = *static_cast<unsigned char*>(pInput);
        if (path >= kAudioPaths) {
            return kOutOfRange;
        }
        const fapi_core::ZvtTvFApiAudPathState_t state = pathState(path);
        memcpy(pOutput, &state, sizeof(state));
        return kOk;
    });
}

int32_t a_zvttvfapi_aud_load_aq_params(unsigned char const* pu8Name) {
    return guarded([&] { return given(pu8Name) ? aqParameters().load(text(pu8Name)) : kOutOfRange; });
}

int32_t a_zvttvfapi_aud_set_volume_table(fapi_core::ZvtTvFApiAudioOutPathEnum ePath,
                                         unsigned short* pu16Table, unsigned short u16Count,
                                         unsigned char const* pu8Name) {
    return guarded([&] {
        const auto path = static_cast<uint32_t>(ePath);
        if (!given(pu16Table, pu8Name) || path >= kAudioPaths || u16Count == 0) {
            return kOutOfRange;
        }
        const std::string name(text(pu8Name), strnlen(text(pu8Name), VolumeTables::kMaxNameBytes + 1));
        return volumeTables().set(path, {name, {pu16Table, pu16Table + u16Count}});
    });
}
