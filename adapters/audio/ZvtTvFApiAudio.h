#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiAudio.h>

#include <cstdint>

#include "service/frame/FapiInterface.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;

/// Sound processing, volume and volume tables. No state: any number of calls may run side by side.
class ZvtTvFApiAudio : public FapiInterface<IZvtTvFApiAudio> {
  public:
    // Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiAudio follow.
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_snd_enable(int32_t s32Processing) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_snd_enable_sub(int32_t s32Processing, int32_t s32Part,
                                                            bool bEnable) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_snd_set_param(int32_t s32ParamSet) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_set_prescale(bool bEnable, int16_t s16Gain) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_set_NR(bool bEnable, int16_t s16Level) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_set_speaker_delay(int32_t s32Delay) override;
    Return<void> a_hidl_zvttvfapi_aud_adv_get_speaker_delay(
            a_hidl_zvttvfapi_aud_adv_get_speaker_delay_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_set_volume(int32_t s32Path, int32_t s32Volume) override;
    Return<void> a_hidl_zvttvfapi_aud_adv_get_volume(
            int32_t s32Path, a_hidl_zvttvfapi_aud_adv_get_volume_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_set_peq_q_value(int16_t s16Band, int16_t s16Q) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_set_peq_freq_value(int16_t s16Band,
                                                                int16_t s16Frequency) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_set_peq_gain_value(int16_t s16Band, int16_t s16Gain) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_set_peq_value(int16_t s16Band, int16_t s16Q,
                                                           int16_t s16Frequency, int16_t s16Gain) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_enable_basic_sound_effect(int32_t s32Type,
                                                                       bool bEnable) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_basic_snd_set_param(
            int32_t s32Type, const ZvtTvFApiAudBasicSoundParam_t& stParam) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_adv_snd_set_dolby_dap_param(
            const ZvtTvFApiAdvSndDolbyDapParams_t& stParam) override;
    Return<void> a_hidl_zvttvfapi_aud_get_attr(uint32_t u32Type, const hidl_vec<uint8_t>& vecInput,
                                               uint32_t u32Size,
                                               a_hidl_zvttvfapi_aud_get_attr_cb _hidl_cb) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_set_aq_param(const hidl_string& strName) override;
    Return<int32_t> a_hidl_zvttvfapi_aud_set_volume_table(ZvtTvFApiAudioOutPathEnum ePath,
                                                          const hidl_vec<uint16_t>& vecTable,
                                                          const hidl_string& strName) override;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
