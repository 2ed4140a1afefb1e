#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "chiplayer/types.h"

// Module inpsrc: input sources, their timing and calibration.
//
// Unless a comment says otherwise, functions return 0, or a status of the library's own: then nothing has
// changed. The service checks no number and no range: the library refuses those that it does not know. What a
// result points to holds zeros before the call, and what it holds after a failure reaches the client.
//
// The module raises an event, of a type below, whenever the signal of the current input source changes, a
// change of the source itself included.

namespace fapi_core {

/** An input source. AV, COMPONENT and VGA have an ADC. */
enum ZvtTvFApiInputSource_e : uint8_t {
    INPUT_SOURCE_NONE = 0,
    /** analogue tuner */
    INPUT_SOURCE_ATV = 1,
    /** digital tuner */
    INPUT_SOURCE_DTV = 2,
    /** composite video */
    INPUT_SOURCE_AV = 3,
    /** component video, YPbPr */
    INPUT_SOURCE_COMPONENT = 4,
    INPUT_SOURCE_VGA = 5,
    INPUT_SOURCE_HDMI1 = 6,
    INPUT_SOURCE_HDMI2 = 7,
    INPUT_SOURCE_HDMI3 = 8,
    /** files and streams */
    INPUT_SOURCE_MEDIA = 9,
};

/** What kind of input a source is. */
enum ZvtTvFApiInputSourceType_e : uint8_t {
    INPUT_SOURCE_TYPE_NONE = 0,
    INPUT_SOURCE_TYPE_TUNER = 1,
    /** decoded by the video decoder, as an analogue tuner's signal is */
    INPUT_SOURCE_TYPE_COMPOSITE = 2,
    INPUT_SOURCE_TYPE_COMPONENT = 3,
    INPUT_SOURCE_TYPE_PC = 4,
    INPUT_SOURCE_TYPE_HDMI = 5,
    INPUT_SOURCE_TYPE_MEDIA = 6,
};

/** A colour standard, as the video decoder (VD) recognises it. */
enum ZvtTvFApiVideoStandard_e : uint8_t {
    VIDEO_STANDARD_UNKNOWN = 0,
    VIDEO_STANDARD_PAL = 1,
    VIDEO_STANDARD_NTSC_M = 2,
    VIDEO_STANDARD_SECAM = 3,
    VIDEO_STANDARD_NTSC_443 = 4,
    VIDEO_STANDARD_PAL_M = 5,
    VIDEO_STANDARD_PAL_N = 6,
    VIDEO_STANDARD_PAL_60 = 7,
};

/** Sampling phase of the three channels of an ADC source, each in 1/64 of the sampling clock, 0 to 63. */
struct ZvtTvFApiAdcPhase_t {
    /** red, or Pr */
    uint32_t u32RedPhase;
    /** green, or Y */
    uint32_t u32GreenPhase;
    /** blue, or Pb */
    uint32_t u32BluePhase;
};
static_assert(std::has_unique_object_representations_v<ZvtTvFApiAdcPhase_t>, "no padding");
static_assert(sizeof(ZvtTvFApiAdcPhase_t) == 12, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAdcPhase_t, u32GreenPhase) == 4, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAdcPhase_t, u32BluePhase) == 8, "record layout is the library's");

/**
 * Calibration of the three channels of an ADC source: gains in 1/4096 (4096 leaves the signal as it is), 0 to
 * 16383, and offsets in steps of the 12-bit converter, 0 to 4095, 2048 being none.
 */
struct ZvtTvFApiAdcGainOffset_t {
    /** red, or Pr */
    uint32_t u32RedGain;
    /** green, or Y */
    uint32_t u32GreenGain;
    /** blue, or Pb */
    uint32_t u32BlueGain;
    uint32_t u32RedOffset;
    uint32_t u32GreenOffset;
    uint32_t u32BlueOffset;
};
static_assert(std::has_unique_object_representations_v<ZvtTvFApiAdcGainOffset_t>, "no padding");
static_assert(sizeof(ZvtTvFApiAdcGainOffset_t) == 24, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAdcGainOffset_t, u32BlueGain) == 8, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAdcGainOffset_t, u32RedOffset) == 12, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiAdcGainOffset_t, u32BlueOffset) == 20, "record layout is the library's");

/** The timing of an input signal; without a signal everything is 0. */
struct ZvtTvFApiVideoTiming {
    /** pixels of a line, without and with blanking */
    uint16_t u16HActive;
    uint16_t u16HTotal;
    /** lines of a frame, without and with blanking */
    uint16_t u16VActive;
    uint16_t u16VTotal;
    /** frames, or fields of an interlaced signal, in a thousand seconds: 59940 for 59.94 Hz */
    uint32_t u32FrameRate;
    /** 0 progressive, every other value interlaced */
    uint8_t u8Interlaced;
};
static_assert(sizeof(ZvtTvFApiVideoTiming) == 16, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiVideoTiming, u16HTotal) == 2, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiVideoTiming, u16VActive) == 4, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiVideoTiming, u16VTotal) == 6, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiVideoTiming, u32FrameRate) == 8, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiVideoTiming, u8Interlaced) == 12, "record layout is the library's");

}  // namespace fapi_core

// Events of the module. In both, the first record's number is the input source.
/** The signal was locked or lost: the second record's number is 1 or 0. */
inline constexpr unsigned int INPSRC_EVENT_SIGNAL_LOCK = 0x200001;
/**
 * The timing of a locked signal is another one: the second record's number is the frame rate, and its text
 * describes the timing ("1920x1080i 50.000 Hz").
 */
inline constexpr unsigned int INPSRC_EVENT_TIMING = 0x200002;

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_inpsrc_init();
int32_t a_zvttvfapi_inpsrc_deinit();
int32_t a_zvttvfapi_inpsrc_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_inpsrc_unreg_callback();

// ADC calibration. A source is a ZvtTvFApiInputSource_e; one without an ADC is refused. Values stay until the
// next calibration, whatever source is current.

/**
 * Finds gain and offset of a source's ADC from the reference signal at its input, and sets them; returns when
 * that is done. Without a signal, or when the search does not converge, the calibration stays as it was.
 */
int32_t a_zvttvfapi_inpsrc_auto_gain_offset(unsigned int u32DevType);

/** Sets the phases of a source's channels, in the record's order. */
int32_t a_zvttvfapi_inpsrc_set_adc_phase(unsigned int u32Source, unsigned int u32RedPhase,
                                         unsigned int u32GreenPhase, unsigned int u32BluePhase);

/** Sets the gains and offsets of a source's channels, in the record's order. */
int32_t a_zvttvfapi_inpsrc_set_adc_gain_offset(unsigned int u32Source, unsigned int u32RedGain,
                                               unsigned int u32GreenGain, unsigned int u32BlueGain,
                                               unsigned int u32RedOffset, unsigned int u32GreenOffset,
                                               unsigned int u32BlueOffset);

int32_t a_zvttvfapi_inpsrc_get_adc_phase(unsigned int u32Source, fapi_core::ZvtTvFApiAdcPhase_t* pstPhase);
int32_t a_zvttvfapi_inpsrc_get_adc_gain_offset(unsigned int u32Source,
                                               fapi_core::ZvtTvFApiAdcGainOffset_t* pstGainOffset);

// The video decoder (VD) and the analogue tuner's intermediate frequency (VIF).

/** Reads the standard, a ZvtTvFApiVideoStandard_e, that the video decoder recognises. */
int32_t a_zvttvfapi_inpsrc_get_video_standard(unsigned char* pu8Standard);

/** Reads whether the video decoder is locked to its signal: 1 or 0. */
int32_t a_zvttvfapi_inpsrc_check_vd_signal_locked(unsigned char* pu8Locked);

/** Puts the VIF stage back into the state that it has after power on. */
int32_t a_zvttvfapi_inpsrc_vif_init();

/** Sets a factory parameter of the video decoder, by the library's number. */
int32_t a_zvttvfapi_inpsrc_set_factory_vd_para(unsigned int u32Param, unsigned int u32Value);

int32_t a_zvttvfapi_inpsrc_get_factory_vd_para(unsigned int u32Param, unsigned int* pu32Value);

// The current input source and its signal.

/** Reads the current source, a ZvtTvFApiInputSource_e. */
int32_t a_zvttvfapi_inpsrc_get_current_input_source(unsigned char* pu8Source);

/** Reads the current source's type, a ZvtTvFApiInputSourceType_e. */
int32_t a_zvttvfapi_inpsrc_get_current_input_source_type(unsigned char* pu8Type);

/** Reads the timing of the current source's signal. */
int32_t a_zvttvfapi_inpsrc_get_input_timing(fapi_core::ZvtTvFApiVideoTiming& stTiming);

/** Reads the bit error rate of the digital tuner's signal: wrong bits in a thousand million. */
int32_t a_zvttvfapi_inpsrc_get_ber(int* ps32Ber);
