#define LOG_TAG "ZvtTvFApiAudio(server)"

#include "adapters/audio/ZvtTvFApiAudio.h"

#include <cstddef>

#include "chiplayer/aud.h"
#include "service/frame/Call.h"
#include "service/frame/Log.h"
#include "service/frame/Scratch.h"
#include "service/frame/Twin.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::Void;

template <>
struct ChipTwin<ZvtTvFApiAudioOutPathEnum> {
    using type = fapi_core::ZvtTvFApiAudioOutPathEnum;
    static constexpr type last = type::UNKNOWN;
};
FAPI_TWIN_VALUE(ZvtTvFApiAudioOutPathEnum, SPEAKER);
FAPI_TWIN_VALUE(ZvtTvFApiAudioOutPathEnum, HEADPHONE);
FAPI_TWIN_VALUE(ZvtTvFApiAudioOutPathEnum, LINE_OUT);
FAPI_TWIN_VALUE(ZvtTvFApiAudioOutPathEnum, SCART1);
FAPI_TWIN_VALUE(ZvtTvFApiAudioOutPathEnum, SCART2);
FAPI_TWIN_VALUE(ZvtTvFApiAudioOutPathEnum, SPDIF);
FAPI_TWIN_VALUE(ZvtTvFApiAudioOutPathEnum, HDMI_ARC);
FAPI_TWIN_VALUE(ZvtTvFApiAudioOutPathEnum, BLUETOOTH);
FAPI_TWIN_VALUE(ZvtTvFApiAudioOutPathEnum, SUBWOOFER);
FAPI_TWIN_VALUE(ZvtTvFApiAudioOutPathEnum, UNKNOWN);

FAPI_TWIN(ZvtTvFApiAudPeqBand_t, u32Frequency, s16Gain, u16Q);
FAPI_TWIN(ZvtTvFApiAudBasicSoundParam_t, u32Level, u16GeqBandCount, au32GeqLevel, u16PeqBandCount,
          astPeqBand);

// Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiAudio follow.

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_snd_enable(int32_t s32Processing) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_zvttvfapi_aud_adv_snd_enable()...\n");
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_snd_enable, cell(s32Processing));
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_snd_enable", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_snd_enable_sub(int32_t s32Processing,
                                                                        int32_t s32Part, bool bEnable) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_snd_enable_sub()...\n");
    const int32_t s32Ret =
            callChip(a_zvttvfapi_aud_adv_snd_enable_sub, cell(s32Processing), cell(s32Part), cell(bEnable));
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_snd_enable_sub", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_snd_set_param(int32_t s32ParamSet) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_snd_set_param()...\n");
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_snd_set_param, cell(s32ParamSet));
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_snd_set_param", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_set_prescale(bool bEnable, int16_t s16Gain) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_set_prescale()...\n");
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_set_prescale, cell(bEnable), cell(s16Gain));
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_set_prescale", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_set_NR(bool bEnable, int16_t s16Level) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_set_NR()...\n");
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_set_NR, cell(bEnable), cell(s16Level));
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_set_NR", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_set_speaker_delay(int32_t s32Delay) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_set_speaker_delay()...\n");
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_set_speaker_delay, cell(s32Delay));
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_set_speaker_delay", s32Ret);
    return s32Ret;
}

Return<void> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_get_speaker_delay(
        a_hidl_zvttvfapi_aud_adv_get_speaker_delay_cb _hidl_cb) {
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_get_speaker_delay()...\n");
    uint32_t u32Delay = 0;
    if (!fapiReady()) {
        _hidl_cb(FAPI_NOT_READY, 0);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_get_speaker_delay, &u32Delay);
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_get_speaker_delay", s32Ret);
    _hidl_cb(s32Ret, static_cast<int32_t>(u32Delay));
    return Void();
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_set_volume(int32_t s32Path, int32_t s32Volume) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_set_volume()...\n");
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_set_volume, cell(s32Path), cell(s32Volume));
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_set_volume", s32Ret);
    return s32Ret;
}

Return<void> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_get_volume(
        int32_t s32Path, a_hidl_zvttvfapi_aud_adv_get_volume_cb _hidl_cb) {
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_get_volume()...\n");
    uint32_t u32Volume = 0;
    if (!fapiReady()) {
        _hidl_cb(FAPI_NOT_READY, 0);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_get_volume, cell(s32Path), &u32Volume);
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_get_volume", s32Ret);
    _hidl_cb(s32Ret, static_cast<int32_t>(u32Volume));
    return Void();
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_set_peq_q_value(int16_t s16Band, int16_t s16Q) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_set_peq_q_value()...\n");
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_set_peq_q_value, cell(s16Band), cell(s16Q));
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_set_peq_q_value", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_set_peq_freq_value(int16_t s16Band,
                                                                            int16_t s16Frequency) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_set_peq_freq_value()...\n");
    const int32_t s32Ret =
            callChip(a_zvttvfapi_aud_adv_set_peq_freq_value, cell(s16Band), cell(s16Frequency));
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_set_peq_freq_value", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_set_peq_gain_value(int16_t s16Band,
                                                                            int16_t s16Gain) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_set_peq_gain_value()...\n");
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_set_peq_gain_value, cell(s16Band), cell(s16Gain));
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_set_peq_gain_value", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_set_peq_value(int16_t s16Band, int16_t s16Q,
                                                                       int16_t s16Frequency,
                                                                       int16_t s16Gain) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_set_peq_value()...\n");
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_set_peq_value, cell(s16Band), cell(s16Q),
                                    cell(s16Frequency), cell(s16Gain));
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_set_peq_value", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_enable_basic_sound_effect(int32_t s32Type,
                                                                                   bool bEnable) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_enable_basic_sound_effect()...\n");
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_enable_basic_sound_effect,
                                    static_cast<e_zvttvfapi_aud_basic_snd_type>(s32Type), bEnable);
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_adv_enable_basic_sound_effect", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_basic_snd_set_param(
        int32_t s32Type, const ZvtTvFApiAudBasicSoundParam_t& stParam) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_basic_snd_set_param()...\n");
    FAPI_LOGD("[%s(%d)]Type = [%u]\n", __func__, __LINE__, s32Type);
    fapi_core::ZvtTvFApiAudBasicSoundParam_t stChipParam;
    copyTwin(stParam, stChipParam);
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_basic_snd_set_param,
                                    static_cast<e_zvttvfapi_aud_basic_snd_type>(s32Type), &stChipParam);
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_basic_snd_set_param", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_adv_snd_set_dolby_dap_param(
        const ZvtTvFApiAdvSndDolbyDapParams_t&) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_zvttvfapi_aud_adv_snd_set_dolby_dap_param()...\n");
    // One line for each field: none has a counterpart in the chip-layer library.
    for (int field = 0; field < 8; ++field) {
        FAPI_LOGE_DOUBLED(FAPI_TEXT_TYPES_MISMATCH);
    }
    FAPI_LOGE("Parsing parameters from hidl to fapi_core FAIL!\n");
    FAPI_LOGE("a_hidl_zvttvfapi_aud_adv_snd_set_dolby_dap_param Fail!\n");
    return FAPI_INVALID_ARGUMENT;
}

Return<void> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_get_attr(uint32_t u32Type,
                                                           const hidl_vec<uint8_t>& vecInput,
                                                           uint32_t u32Size,
                                                           a_hidl_zvttvfapi_aud_get_attr_cb _hidl_cb) {
    FAPI_LOGD("a_hidl_zvttvfapi_aud_get_attr()...\n");
    if (!fapiReady()) {
        _hidl_cb({}, FAPI_NOT_READY);
        return Void();
    }
    // What is short of its size includes what is empty.
    if (u32Size == 0 || vecInput.size() < u32Size) {
        FAPI_LOGE_DOUBLED(FAPI_TEXT_INVALID_INPUT);
        _hidl_cb({}, FAPI_INVALID_ARGUMENT);
        return Void();
    }
    auto pInputParam = Scratch<uint8_t>::uncleared(u32Size);
    if (!pInputParam) {
        FAPI_LOGE_DOUBLED("malloc pInputParam fail \n");
        _hidl_cb({}, FAPI_FAIL);
        return Void();
    }
    pInputParam.copyFrom(vecInput);

    switch (u32Type) {
        case AUD_ATTR_PATH_STATE:
            break;
        case 0x0:
        case 0x1003:
        case 0x1004:
        case 0x1202:
            FAPI_LOGE_DOUBLED(FAPI_TEXT_NOT_IMPLEMENTED);
            FAPI_LOGE_DOUBLED(FAPI_TEXT_PLEASE_IMPLEMENT);
            _hidl_cb({}, FAPI_FAIL);
            return Void();
        default:
            FAPI_LOGE_DOUBLED("Invalid attr type!\n");
            _hidl_cb({}, FAPI_INVALID_ARGUMENT);
            return Void();
    }

    alignas(std::max_align_t) uint8_t au8Output[sizeof(fapi_core::ZvtTvFApiAudPathState_t)] = {};
    const int32_t s32Ret =
            callChip(a_zvttvfapi_aud_get_attr, u32Type, pInputParam, static_cast<void*>(au8Output));
    FAPI_LOG_OUTCOME("a_zvttvfapi_aud_get_attr", s32Ret);
    hidl_vec<uint8_t> vecOutput;
    if (s32Ret == FAPI_OK) {
        vecOutput.setToExternal(au8Output, sizeof(au8Output));
    }
    _hidl_cb(vecOutput, s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_set_aq_param(const hidl_string& strName) {
    return forward(a_zvttvfapi_aud_load_aq_params, strName);
}

// No guard: the library answers for itself, ready or not.
Return<int32_t> ZvtTvFApiAudio::a_hidl_zvttvfapi_aud_set_volume_table(ZvtTvFApiAudioOutPathEnum ePath,
                                                                      const hidl_vec<uint16_t>& vecTable,
                                                                      const hidl_string& strName) {
    countCall();
    FAPI_LOGD("a_hidl_zvttvfapi_aud_set_volume_table()...\n");
    const auto u16Count = static_cast<uint16_t>(vecTable.size());
    FAPI_LOGI("Volume Table Size = %d.\n", u16Count);
    if (u16Count == 0) {
        FAPI_LOGE("Invalid Volume Table Size.\n");
        return FAPI_INVALID_ARGUMENT;
    }
    auto pu16Data = Scratch<uint16_t>::uncleared(u16Count);
    if (!pu16Data) {
        FAPI_LOGE("Allocate pu16Data failed.\n");
        return FAPI_NO_MEMORY;
    }
    pu16Data.copyFrom(vecTable);
    const int32_t s32Ret = callChip(a_zvttvfapi_aud_set_volume_table, ePath, pu16Data, u16Count, strName);
    FAPI_LOG_OUTCOME("a_hidl_zvttvfapi_aud_set_volume_table", s32Ret);
    return s32Ret;
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
