#define LOG_TAG "ZvtTvFApiInputSource(server)"

#include "adapters/inputsource/ZvtTvFApiInputSource.h"

#include "chiplayer/inpsrc.h"
#include "service/frame/Call.h"
#include "service/frame/Log.h"
#include "service/frame/Record.h"
#include "service/frame/Twin.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::Void;

FAPI_TWIN(ZvtTvFApiAdcPhase_t, u32RedPhase, u32GreenPhase, u32BluePhase);
FAPI_TWIN(ZvtTvFApiAdcGainOffset_t, u32RedGain, u32GreenGain, u32BlueGain, u32RedOffset, u32GreenOffset,
          u32BlueOffset);
FAPI_TWIN(ZvtTvFApiVideoTiming, u16HActive, u16HTotal, u16VActive, u16VTotal, u32FrameRate);
FAPI_TWIN_FLAG(ZvtTvFApiVideoTiming, bInterlaced, u8Interlaced);

// Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiInputSource follow.

Return<int32_t> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_auto_gain_offset(int32_t s32DevType) {
    FAPI_LOGE("a_hidl_zvttvfapi_inpsrc_auto_gain_offset u32DevType %d", s32DevType);
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_auto_gain_offset, s32DevType);
    FAPI_LOGE("a_hidl_zvttvfapi_inpsrc_auto_gain_offset: %d", s32Ret);
    return s32Ret;
}

Return<void> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_get_demod_info(
        a_hidl_zvttvfapi_inpsrc_get_demod_info_cb _hidl_cb) {
    if (!fapiReady()) {
        _hidl_cb(ZvtTvFApiDemodInfoParam_t(), FAPI_NOT_READY);
        return Void();
    }
    FAPI_LOGE_DOUBLED(FAPI_TEXT_TYPES_MISMATCH);
    _hidl_cb(ZvtTvFApiDemodInfoParam_t(), FAPI_FAIL);
    return Void();
}

Return<void> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_get_video_standard(
        a_hidl_zvttvfapi_inpsrc_get_video_standard_cb _hidl_cb) {
    uint8_t u8Standard = 0;
    if (!fapiReady()) {
        _hidl_cb(u8Standard, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_get_video_standard, &u8Standard);
    FAPI_LOGE("ZvtTvFApiIntputSource s32Ret %d", s32Ret);
    _hidl_cb(u8Standard, s32Ret);
    return Void();
}

Return<void> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_check_vd_signal_locked(
        a_hidl_zvttvfapi_inpsrc_check_vd_signal_locked_cb _hidl_cb) {
    uint8_t u8LockStatus = 0;
    if (!fapiReady()) {
        _hidl_cb(u8LockStatus, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_check_vd_signal_locked, &u8LockStatus);
    FAPI_LOGD("ZvtTvFApiIntputSource s32Ret %d", s32Ret);
    FAPI_LOGD("u8LockStatus %d", u8LockStatus);
    _hidl_cb(u8LockStatus, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_set_adc_phase(uint32_t u32Source,
                                                                            uint32_t u32RedPhase,
                                                                            uint32_t u32GreenPhase,
                                                                            uint32_t u32BluePhase) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret =
            callChip(a_zvttvfapi_inpsrc_set_adc_phase, u32Source, u32RedPhase, u32GreenPhase, u32BluePhase);
    FAPI_LOGE("a_hidl_zvttvfapi_inpsrc_set_AdcPhase %d", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_set_adc_gain_offset(
        uint32_t u32Source, uint32_t u32RedGain, uint32_t u32GreenGain, uint32_t u32BlueGain,
        uint32_t u32RedOffset, uint32_t u32GreenOffset, uint32_t u32BlueOffset) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_set_adc_gain_offset, u32Source, u32RedGain,
                                    u32GreenGain, u32BlueGain, u32RedOffset, u32GreenOffset, u32BlueOffset);
    FAPI_LOGE("a_hidl_zvttvfapi_inpsrc_SetAdcGainOffset %d", s32Ret);
    return s32Ret;
}

Return<void> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_get_adc_phase(
        uint32_t u32Source, a_hidl_zvttvfapi_inpsrc_get_adc_phase_cb _hidl_cb) {
    ZvtTvFApiAdcPhase_t stPhase;
    clearBytes(stPhase);
    if (!fapiReady()) {
        _hidl_cb(stPhase, FAPI_NOT_READY);
        return Void();
    }
    fapi_core::ZvtTvFApiAdcPhase_t stChipPhase;
    clearBytes(stChipPhase);
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_get_adc_phase, u32Source, &stChipPhase);
    copyTwin(stChipPhase, stPhase);
    FAPI_LOGE("ZvtTvFApiInputsource get adc phase s32Ret %d", s32Ret);
    _hidl_cb(stPhase, s32Ret);
    return Void();
}

Return<void> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_get_adc_gain_offset(
        uint32_t u32Source, a_hidl_zvttvfapi_inpsrc_get_adc_gain_offset_cb _hidl_cb) {
    ZvtTvFApiAdcGainOffset_t stGainOffset;
    clearBytes(stGainOffset);
    if (!fapiReady()) {
        _hidl_cb(stGainOffset, FAPI_NOT_READY);
        return Void();
    }
    fapi_core::ZvtTvFApiAdcGainOffset_t stChipGainOffset;
    clearBytes(stChipGainOffset);
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_get_adc_gain_offset, u32Source, &stChipGainOffset);
    copyTwin(stChipGainOffset, stGainOffset);
    FAPI_LOGE("ZvtTvFApiIntputSource get adc gain offset s32Ret %d", s32Ret);
    _hidl_cb(stGainOffset, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_vif_init() {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_vif_init);
    FAPI_LOG_OUTCOME("a_zvttvfapi_inpsrc_vif_init", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_set_factory_vd_para(uint32_t u32Param,
                                                                                  uint32_t u32Value) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_set_factory_vd_para, u32Param, u32Value);
    FAPI_LOGE("ZvtTvFApiIntputSource s32Ret %d", s32Ret);
    return s32Ret;
}

Return<void> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_get_factory_vd_para(
        uint32_t u32Param, a_hidl_zvttvfapi_inpsrc_get_factory_vd_para_cb _hidl_cb) {
    uint32_t u32Value = 0;
    if (!fapiReady()) {
        _hidl_cb(u32Value, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_get_factory_vd_para, u32Param, &u32Value);
    FAPI_LOGE("ZvtTvFApiIntputSource s32Ret %d", s32Ret);
    FAPI_LOGE("u32VdParam %d", u32Value);
    _hidl_cb(u32Value, s32Ret);
    return Void();
}

Return<void> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_get_current_input_source(
        a_hidl_zvttvfapi_inpsrc_get_current_input_source_cb _hidl_cb) {
    uint8_t u8InputSource = 0;
    if (!fapiReady()) {
        _hidl_cb(u8InputSource, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_get_current_input_source, &u8InputSource);
    FAPI_LOGE("getCurrentInputSource ret = %d, u8InputSource %d", s32Ret, u8InputSource);
    _hidl_cb(u8InputSource, s32Ret);
    return Void();
}

Return<void> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_get_current_input_source_type(
        a_hidl_zvttvfapi_inpsrc_get_current_input_source_type_cb _hidl_cb) {
    uint8_t u8InputSource = 0;
    if (!fapiReady()) {
        _hidl_cb(u8InputSource, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_get_current_input_source_type, &u8InputSource);
    FAPI_LOGE("getCurrentInputSourceType ret = %d, u8InputSource %d", s32Ret, u8InputSource);
    _hidl_cb(u8InputSource, s32Ret);
    return Void();
}

Return<void> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_get_input_timing(
        a_hidl_zvttvfapi_inpsrc_get_input_timing_cb _hidl_cb) {
    ZvtTvFApiVideoTiming stTiming;
    clearBytes(stTiming);
    if (!fapiReady()) {
        _hidl_cb(stTiming, FAPI_NOT_READY);
        return Void();
    }
    fapi_core::ZvtTvFApiVideoTiming stChipTiming;
    clearBytes(stChipTiming);
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_get_input_timing, stChipTiming);
    copyTwin(stChipTiming, stTiming);
    stTiming.bInterlaced = stChipTiming.u8Interlaced != 0;
    _hidl_cb(stTiming, s32Ret);
    FAPI_LOGE("a_zvttvfapi_inpsrc_get_input_timing %d", s32Ret);
    return Void();
}

Return<void> ZvtTvFApiInputSource::a_hidl_zvttvfapi_inpsrc_get_ber(
        a_hidl_zvttvfapi_inpsrc_get_ber_cb _hidl_cb) {
    int32_t s32Ber = 0;
    if (!fapiReady()) {
        _hidl_cb(s32Ber, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_inpsrc_get_ber, &s32Ber);
    FAPI_LOGE("(hild)s32Ber = %d", s32Ber);
    _hidl_cb(s32Ber, s32Ret);
    FAPI_LOGE("a_zvttvfapi_inpsrc_get_ber %d", s32Ret);
    return Void();
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
