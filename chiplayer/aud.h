#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "chiplayer/types.h"

// Module aud: sound effects, parameters and volume tables.
//
// Unless a comment says otherwise, functions return 0, or a status of the library's own: then nothing has
// changed. The service checks no range: the library refuses what lies outside the ranges that are given here,
// and numbers that it does not know.
//
// The advanced functions (_adv_) take their inputs by address. Each argument is the caller's own, for the
// call only; the library does not write to an input. Cells said to be signed hold a two's complement number.

namespace fapi_core {

/** Where sound goes. The service passes no value beyond UNKNOWN, which the library refuses. */
enum class ZvtTvFApiAudioOutPathEnum : uint32_t {
    SPEAKER = 0,
    HEADPHONE = 1,
    LINE_OUT = 2,
    SCART1 = 3,
    SCART2 = 4,
    SPDIF = 5,
    HDMI_ARC = 6,
    BLUETOOTH = 7,
    SUBWOOFER = 8,
    UNKNOWN = 9,
};

/** One band of the parametric equaliser. */
struct ZvtTvFApiAudPeqBand_t {
    /** middle of the band, 20 to 20000 Hz */
    uint32_t u32Frequency;
    /** in 0.1 dB, -120 to 120 */
    int16_t s16Gain;
    /** Q factor in units of 0.01, 10 to 2000 */
    uint16_t u16Q;
};
static_assert(std::has_unique_object_representations_v<ZvtTvFApiAudPeqBand_t>, "no padding");
static_assert(sizeof(ZvtTvFApiAudPeqBand_t) == 8, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAudPeqBand_t, s16Gain) == 4, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAudPeqBand_t, u16Q) == 6, "record layout is the library's");

/**
 * Parameters of the basic sound effects, those of all types in one record: an effect reads what is said at
 * its type and nothing else. Padding is zero.
 */
struct ZvtTvFApiAudBasicSoundParam_t {
    /** the level of an effect that has one, 0 to 100 */
    uint32_t u32Level;
    /** how many of the graphic equaliser's bands are given, 0 to 8; the others keep their level */
    uint16_t u16GeqBandCount;
    /** levels of its bands from the lowest on, 0 to 100; 50 leaves a band as it is */
    uint32_t au32GeqLevel[8];
    /** how many of the parametric equaliser's bands are given, 0 to 33; the others stay as they are */
    uint16_t u16PeqBandCount;
    /** its bands, those that the functions for one band number from 0 */
    ZvtTvFApiAudPeqBand_t astPeqBand[33];
};
static_assert(sizeof(ZvtTvFApiAudBasicSoundParam_t) == 308, "record layout is the library's");
static_assert(alignof(ZvtTvFApiAudBasicSoundParam_t) == 4, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAudBasicSoundParam_t, u16GeqBandCount) == 4,
              "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAudBasicSoundParam_t, au32GeqLevel) == 8, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAudBasicSoundParam_t, u16PeqBandCount) == 40,
              "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAudBasicSoundParam_t, astPeqBand) == 44, "record layout is the library's");

/**
 * What attribute AUD_ATTR_PATH_STATE answers. Clients decode it byte by byte: every field is little-endian,
 * and what is reserved is 0.
 */
struct ZvtTvFApiAudPathState_t {
    /** the path that was asked for, as in ZvtTvFApiAudioOutPathEnum */
    uint32_t u32Path;
    /** of the path, 0 to 100 */
    uint32_t u32Volume;
    /** of the loudspeakers, in ms; 0 on another path */
    uint32_t u32Delay;
    /** bit n: the basic sound effect of type n is on */
    uint32_t u32BasicEffects;
    /** the advanced processing that is on, 0 for none */
    uint32_t u32Processing;
    /** bit n: part n of that processing is on */
    uint32_t u32ProcessingParts;
    /** the parameter set that it works with */
    uint32_t u32ParamSet;
    /** in 0.1 dB, whether it is on or not */
    int16_t s16Prescale;
    /** level of the noise reduction, whether it is on or not */
    uint16_t u16NoiseReduction;
    /** 0 or 1 */
    uint8_t u8PrescaleOn;
    /** 0 or 1 */
    uint8_t u8NoiseReductionOn;
    /** 1 while the path gives no sound: its volume is 0, or its volume table says so */
    uint8_t u8Mute;
    uint8_t u8Reserved;
    /** number of entries of the path's volume table, 0 without one */
    uint16_t u16TableSize;
    /** the table's entry for the volume, 0 without a table */
    uint16_t u16TableEntry;
};
static_assert(std::has_unique_object_representations_v<ZvtTvFApiAudPathState_t>, "no padding");
static_assert(sizeof(ZvtTvFApiAudPathState_t) == 40, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAudPathState_t, s16Prescale) == 28, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAudPathState_t, u8PrescaleOn) == 32, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAudPathState_t, u16TableSize) == 36, "record layout is the library's");

}  // namespace fapi_core

/**
 * Types of the basic sound effects, and the parameters that each reads. A client's number arrives as it is:
 * every other value is possible, negative ones too, and is refused.
 */
enum e_zvttvfapi_aud_basic_snd_type : int32_t {
    /** u32Level: 50 leaves low tones as they are */
    AUD_BASIC_SND_BASS = 0,
    /** u32Level: 50 leaves high tones as they are */
    AUD_BASIC_SND_TREBLE = 1,
    /** u32Level: 0 left channel only, 50 both alike, 100 right channel only */
    AUD_BASIC_SND_BALANCE = 2,
    /** u32Level: width of the surround sound */
    AUD_BASIC_SND_SURROUND = 3,
    /** u32Level: how far loud and quiet passages are brought together */
    AUD_BASIC_SND_AUTO_VOLUME = 4,
    /** u16GeqBandCount, au32GeqLevel */
    AUD_BASIC_SND_GRAPHIC_EQ = 5,
    /** u16PeqBandCount, astPeqBand */
    AUD_BASIC_SND_PARAMETRIC_EQ = 6,
};

/**
 * The attribute that a_zvttvfapi_aud_get_attr answers: the state of one audio path. Input: the path's number
 * in the first byte. Output: a ZvtTvFApiAudPathState_t.
 */
inline constexpr unsigned int AUD_ATTR_PATH_STATE = 0x1001;

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_aud_init();
int32_t a_zvttvfapi_aud_deinit();
int32_t a_zvttvfapi_aud_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_aud_unreg_callback();

/** Puts an advanced sound processing, by the library's number, in place of the one before; 0 is none. */
int32_t a_zvttvfapi_aud_adv_snd_enable(unsigned int* pu32Processing);

/**
 * Switches one part of an advanced processing on (1) or off (0), whether the processing is on or not. Parts
 * are numbered from 0, at most 32 of them.
 */
int32_t a_zvttvfapi_aud_adv_snd_enable_sub(unsigned int* pu32Processing, unsigned int* pu32Part,
                                           unsigned char* pu8Enable);

/** Lets the advanced processing work with one of the library's parameter sets, by its number from 0. */
int32_t a_zvttvfapi_aud_adv_snd_set_param(unsigned int* pu32ParamSet);

/**
 * Switches the prescaler on (1) or off (0) and sets its gain, signed: in 0.1 dB, -200 to 200, ahead of all
 * effects.
 */
int32_t a_zvttvfapi_aud_adv_set_prescale(unsigned char* pu8Enable, unsigned short* pu16Gain);

/** Switches the noise reduction on (1) or off (0) and sets its level, 0 to 100. */
int32_t a_zvttvfapi_aud_adv_set_NR(unsigned char* pu8Enable, unsigned short* pu16Level);

/** Delays the loudspeakers' sound, so that it meets the picture: 0 to 250 ms. */
int32_t a_zvttvfapi_aud_adv_set_speaker_delay(unsigned int* pu32Delay);

/**
 * Reads that delay into *pu32Delay, which holds 0 before. What the cell holds after a failure reaches the
 * client.
 */
int32_t a_zvttvfapi_aud_adv_get_speaker_delay(unsigned int* pu32Delay);

/** Sets the volume, 0 to 100, of a path, numbered as in ZvtTvFApiAudioOutPathEnum. */
int32_t a_zvttvfapi_aud_adv_set_volume(unsigned int* pu32Path, unsigned int* pu32Volume);

/** Reads a path's volume into *pu32Volume, under the same terms as the delay. */
int32_t a_zvttvfapi_aud_adv_get_volume(unsigned int* pu32Path, unsigned int* pu32Volume);

// The parametric equaliser, one band at a time: bands 0 to 32, values as in ZvtTvFApiAudPeqBand_t. A gain is
// signed. The last function sets a whole band or nothing of it.
int32_t a_zvttvfapi_aud_adv_set_peq_q_value(unsigned short* pu16Band, unsigned short* pu16Q);
int32_t a_zvttvfapi_aud_adv_set_peq_freq_value(unsigned short* pu16Band, unsigned short* pu16Frequency);
int32_t a_zvttvfapi_aud_adv_set_peq_gain_value(unsigned short* pu16Band, unsigned short* pu16Gain);
int32_t a_zvttvfapi_aud_adv_set_peq_value(unsigned short* pu16Band, unsigned short* pu16Q,
                                          unsigned short* pu16Frequency, unsigned short* pu16Gain);

/** Switches a basic sound effect on (1) or off (0); its parameters stay. */
int32_t a_zvttvfapi_aud_adv_enable_basic_sound_effect(e_zvttvfapi_aud_basic_snd_type eType,
                                                      unsigned char u8Enable);

/** Sets the parameters of a basic sound effect, whether it is on or not. The record is lent for the call. */
int32_t a_zvttvfapi_aud_basic_snd_set_param(e_zvttvfapi_aud_basic_snd_type eType,
                                            fapi_core::ZvtTvFApiAudBasicSoundParam_t const* pstParam);

/**
 * Answers an attribute's query. The service asks for AUD_ATTR_PATH_STATE alone, and gives 40 zeroed bytes for
 * the output, which reaches the client only with status 0.
 *
 * pInput holds one byte at least; how many there are the library is not told, so it reads no more than the
 * attribute's input. Both buffers are aligned for any type and gone after the call.
 */
int32_t a_zvttvfapi_aud_get_attr(unsigned int u32Type, void* pInput, void* pOutput);

/**
 * Loads the audio quality (AQ) parameters from the file of that path; all of them or, when the file is not a
 * valid one, none. What a path is relative to is the library's to define.
 */
int32_t a_zvttvfapi_aud_load_aq_params(unsigned char const* pu8Name);

/**
 * Gives a path its volume table: u16Count entries, at least one, from the lowest volume to the highest, each
 * a linear gain, 0 silent and 4096 as it is. Of n entries the one for volume v is number v * (n - 1) / 100,
 * rounded down. The name is the table's own, for those who look for it later; it may be empty.
 *
 * Called whether or not the library is ready: it answers with a status. Table and name are lent for the
 * call.
 */
int32_t a_zvttvfapi_aud_set_volume_table(fapi_core::ZvtTvFApiAudioOutPathEnum ePath,
                                         unsigned short* pu16Table, unsigned short u16Count,
                                         unsigned char const* pu8Name);
