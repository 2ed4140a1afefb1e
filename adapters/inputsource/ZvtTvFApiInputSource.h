#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiInputSource.h>

#include <cstdint>

#include "service/frame/FapiInterface.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::Return;

/// Input sources: calibration, video decoder, timing and bit error rate. No state: any number of calls may
/// run side by side.
class ZvtTvFApiInputSource : public FapiInterface<IZvtTvFApiInputSource> {
  public:
    // Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiInputSource follow.
    Return<int32_t> a_hidl_zvttvfapi_inpsrc_auto_gain_offset(int32_t s32DevType) override;
    Return<void> a_hidl_zvttvfapi_inpsrc_get_demod_info(
            a_hidl_zvttvfapi_inpsrc_get_demod_info_cb _hidl_cb) override;
    Return<void> a_hidl_zvttvfapi_inpsrc_get_video_standard(
            a_hidl_zvttvfapi_inpsrc_get_video_standard_cb _hidl_cb) override;
    Return<void> a_hidl_zvttvfapi_inpsrc_check_vd_signal_locked(
            a_hidl_zvttvfapi_inpsrc_check_vd_signal_locked_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_inpsrc_set_adc_phase(uint32_t u32Source, uint32_t u32RedPhase,
                                                          uint32_t u32GreenPhase,
                                                          uint32_t u32BluePhase) override;
    Return<int32_t> a_hidl_zvttvfapi_inpsrc_set_adc_gain_offset(uint32_t u32Source, uint32_t u32RedGain,
                                                                uint32_t u32GreenGain, uint32_t u32BlueGain,
                                                                uint32_t u32RedOffset,
                                                                uint32_t u32GreenOffset,
                                                                uint32_t u32BlueOffset) override;
    Return<void> a_hidl_zvttvfapi_inpsrc_get_adc_phase(
            uint32_t u32Source, a_hidl_zvttvfapi_inpsrc_get_adc_phase_cb _hidl_cb) override;
    Return<void> a_hidl_zvttvfapi_inpsrc_get_adc_gain_offset(
            uint32_t u32Source, a_hidl_zvttvfapi_inpsrc_get_adc_gain_offset_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_inpsrc_vif_init() override;
    Return<int32_t> a_hidl_zvttvfapi_inpsrc_set_factory_vd_para(uint32_t u32Param,
                                                                uint32_t u32Value) override;
    Return<void> a_hidl_zvttvfapi_inpsrc_get_factory_vd_para(
            uint32_t u32Param, a_hidl_zvttvfapi_inpsrc_get_factory_vd_para_cb _hidl_cb) override;
    Return<void> a_hidl_zvttvfapi_inpsrc_get_current_input_source(
            a_hidl_zvttvfapi_inpsrc_get_current_input_source_cb _hidl_cb) override;
    Return<void> a_hidl_zvttvfapi_inpsrc_get_current_input_source_type(
            a_hidl_zvttvfapi_inpsrc_get_current_input_source_type_cb _hidl_cb) override;
    Return<void> a_hidl_zvttvfapi_inpsrc_get_input_timing(
            a_hidl_zvttvfapi_inpsrc_get_input_timing_cb _hidl_cb) override;
    Return<void> a_hidl_zvttvfapi_inpsrc_get_ber(a_hidl_zvttvfapi_inpsrc_get_ber_cb _hidl_cb) override;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
