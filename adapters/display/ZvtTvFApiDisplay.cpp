#define LOG_TAG "ZvtTvFApiDisplay(server)"

#include "adapters/display/ZvtTvFApiDisplay.h"

#include <algorithm>

#include "chiplayer/disp.h"
#include "service/frame/Call.h"
#include "service/frame/Log.h"
#include "service/frame/Record.h"
#include "service/frame/Scratch.h"
#include "service/frame/Text.h"
#include "service/frame/Twin.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::Void;

template <>
struct ChipTwin<ZvtTvFApiVideoWin> {
    using type = fapi_core::ZvtTvFApiVideoWin;
    static constexpr type last = type::UNKNOWN;
};
FAPI_TWIN_VALUE(ZvtTvFApiVideoWin, MAIN);
FAPI_TWIN_VALUE(ZvtTvFApiVideoWin, SUB);
FAPI_TWIN_VALUE(ZvtTvFApiVideoWin, THIRD);
FAPI_TWIN_VALUE(ZvtTvFApiVideoWin, UNKNOWN);

template <>
struct ChipTwin<ZvtTvFApiPqType> {
    using type = fapi_core::ZvtTvFApiPqType;
    static constexpr type last = type::UNKNOWN;
};
FAPI_TWIN_VALUE(ZvtTvFApiPqType, BASIC);
FAPI_TWIN_VALUE(ZvtTvFApiPqType, COLOR);
FAPI_TWIN_VALUE(ZvtTvFApiPqType, SHARPNESS);
FAPI_TWIN_VALUE(ZvtTvFApiPqType, NOISE_REDUCTION);
FAPI_TWIN_VALUE(ZvtTvFApiPqType, CONTRAST);
FAPI_TWIN_VALUE(ZvtTvFApiPqType, MOTION);
FAPI_TWIN_VALUE(ZvtTvFApiPqType, GAMMA);
FAPI_TWIN_VALUE(ZvtTvFApiPqType, UNKNOWN);

FAPI_TWIN(ZvtTvFApiDispHsyModelRange, s32HueMin, s32HueMax, s32SaturationMin, s32SaturationMax, s32LumaMin,
          s32LumaMax);
FAPI_TWIN(ZvtTvFApiDispTconInfo, u32Version, u32Checksum, u16PanelId, au8PanelName);
FAPI_TWIN_FLAG(ZvtTvFApiDispTconInfo, bEnabled, u8Enabled);
FAPI_TWIN(ZvtTvFApiDispExtFrcDeviceInfo, u32FwVersion, u16ChipId, u8Revision, u8State);

namespace {

// The library is not told how many entries came, and reads so many.
constexpr uint16_t kGammaEntries = 256;

// The client's first u16Count entries, zeros up to what the library reads. Null without memory.
Scratch<uint16_t> gammaTable(const hidl_vec<uint16_t>& vecTable, uint16_t u16Count) {
    auto pu16Table = Scratch<uint16_t>::zeroed(std::max(u16Count, kGammaEntries));
    if (pu16Table) {
        std::copy_n(vecTable.data(), u16Count, pu16Table.get());
    }
    return pu16Table;
}

}  // namespace

// Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiDisplay follow.

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_switch_window(uint32_t u32Window) {
    return forward(a_zvttvfapi_disp_switch_window, u32Window);
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_set_picture_param(uint32_t u32Param,
                                                                            uint32_t u32Value) {
    return forward(a_zvttvfapi_disp_set_picture_param, u32Param, u32Value);
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_panel_set_attr(uint32_t u32Link, uint32_t u32Lanes,
                                                                         uint32_t u32BitDepth,
                                                                         uint32_t u32Mapping,
                                                                         uint32_t u32Swing,
                                                                         uint32_t u32Mirror) {
    return forward(a_zvttvfapi_disp_panel_set_attr, u32Link, u32Lanes, u32BitDepth, u32Mapping, u32Swing,
                   u32Mirror);
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_zvttvfapi_disp_set_over_scan(int32_t s32Left, int32_t s32Right,
                                                                      int32_t s32Top, int32_t s32Bottom) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_disp_set_over_scan, s32Left, s32Right, s32Top, s32Bottom);
    FAPI_LOGE("a_hidl_zvttvfapi_disp_set_over_scan %d", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_set_color_temperature(
        uint32_t u32RedGain, uint32_t u32GreenGain, uint32_t u32BlueGain, uint32_t u32RedOffset,
        uint32_t u32GreenOffset, uint32_t u32BlueOffset) {
    return forward(a_zvttvfapi_disp_set_color_temperature, u32RedGain, u32GreenGain, u32BlueGain,
                   u32RedOffset, u32GreenOffset, u32BlueOffset);
}

Return<void> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_get_pq_range(
        a_hidl_a_zvttvfapi_disp_get_pq_range_cb _hidl_cb) {
    ZvtTvFApiDispHsyModelRange stRange;
    clearBytes(stRange);
    if (!fapiReady()) {
        _hidl_cb(stRange, FAPI_NOT_READY);
        return Void();
    }
    fapi_core::ZvtTvFApiDispHsyModelRange stChipRange;
    clearBytes(stChipRange);
    const int32_t s32Ret = callChip(a_zvttvfapi_disp_get_pq_range, &stChipRange);
    copyTwin(stChipRange, stRange);
    _hidl_cb(stRange, s32Ret);
    FAPI_LOGE("a_zvttvfapi_disp_get_pq_range %d", s32Ret);
    return Void();
}

Return<void> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_get_tcon_info(
        a_hidl_a_zvttvfapi_disp_get_tcon_info_cb _hidl_cb) {
    ZvtTvFApiDispTconInfo stInfo;
    clearBytes(stInfo);
    if (!fapiReady()) {
        _hidl_cb(stInfo, FAPI_NOT_READY);
        return Void();
    }
    fapi_core::ZvtTvFApiDispTconInfo stChipInfo;
    clearBytes(stChipInfo);
    const int32_t s32Ret = callChip(a_zvttvfapi_disp_get_tcon_info, &stChipInfo);
    copyTwin(stChipInfo, stInfo);
    stInfo.bEnabled = stChipInfo.u8Enabled != 0;
    _hidl_cb(stInfo, s32Ret);
    FAPI_LOGE("a_hidl_a_zvttvfapi_disp_get_tcon_info %d", s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_set_picture_param_struct(
        uint32_t u32Type, const hidl_vec<uint8_t>& vecData, uint32_t u32Size) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    if (u32Size == 0) {
        FAPI_LOGE("invaild Arguments");
        return FAPI_FAIL;
    }
    if (vecData.size() != u32Size) {
        FAPI_LOGE("invaild Arguments [%d][%d]", static_cast<int>(vecData.size()), static_cast<int>(u32Size));
        return FAPI_FAIL;
    }
    auto pu8Data = Scratch<uint8_t>::zeroed(u32Size);
    if (!pu8Data) {
        return FAPI_FAIL;
    }
    pu8Data.copyFrom(vecData);
    return callChip(a_zvttvfapi_disp_set_picture_param_struct, u32Type, u32Size, pu8Data);
}

Return<void> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_get_lvds_ssc(
        a_hidl_a_zvttvfapi_disp_get_lvds_ssc_cb _hidl_cb) {
    uint8_t u8Enable = 0;
    uint32_t u32Frequency = 0;
    uint32_t u32Deviation = 0;
    if (!fapiReady()) {
        _hidl_cb(false, 0, 0, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_disp_get_lvds_ssc, u8Enable, u32Frequency, u32Deviation);
    const auto s32Frequency = static_cast<int32_t>(u32Frequency);
    const auto s32Deviation = static_cast<int32_t>(u32Deviation);
    _hidl_cb(u8Enable != 0, s32Frequency, s32Deviation, s32Ret);
    FAPI_LOGE("a_zvttvfapi_disp_get_lvds_ssc %d[%d][%d][%d][%d][%d]", s32Ret, u8Enable, s32Frequency,
              s32Deviation, s32Frequency, s32Deviation);
    return Void();
}

Return<void> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_get_pwm_range(
        a_hidl_a_zvttvfapi_disp_get_pwm_range_cb _hidl_cb) {
    uint32_t u32Min = 0;
    uint32_t u32Max = 0;
    if (!fapiReady()) {
        _hidl_cb(0, 0, FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_disp_get_pwm_range, u32Min, u32Max);
    const auto s32Min = static_cast<int32_t>(u32Min);
    const auto s32Max = static_cast<int32_t>(u32Max);
    _hidl_cb(s32Min, s32Max, s32Ret);
    FAPI_LOGE("a_hidl_a_zvttvfapi_disp_get_pwm_range %d[%d][%d][%d][%d]", s32Ret, s32Min, s32Max, s32Min,
              s32Max);
    return Void();
}

Return<void> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_get_frc_device_info(
        a_hidl_a_zvttvfapi_disp_get_frc_device_info_cb _hidl_cb) {
    ZvtTvFApiDispExtFrcDeviceInfo stInfo;
    clearBytes(stInfo);
    if (!fapiReady()) {
        _hidl_cb(stInfo, FAPI_NOT_READY);
        return Void();
    }
    fapi_core::ZvtTvFApiDispExtFrcDeviceInfo stChipInfo;
    clearBytes(stChipInfo);
    const int32_t s32Ret = callChip(a_zvttvfapi_disp_get_frc_device_info, &stChipInfo);
    copyTwin(stChipInfo, stInfo);
    _hidl_cb(stInfo, s32Ret);
    FAPI_LOGE("a_zvttvfapi_disp_get_frc_device_info %d", s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_upgrade_vexa_fw(const hidl_string& strPath) {
    return forward(a_zvttvfapi_disp_upgrade_vexa_fw, strPath);
}

Return<void> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_get_pq_version(
        ZvtTvFApiVideoWin eWindow, ZvtTvFApiPqType eType,
        a_hidl_a_zvttvfapi_disp_get_pq_version_cb _hidl_cb) {
    constexpr uint32_t u32Size = 128;
    TextBuffer<u32Size + 1>
            strVersion;  // and the terminator of a text that fills what the library is told of
    if (!fapiReady()) {
        _hidl_cb(strVersion.text(), FAPI_NOT_READY);
        return Void();
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_disp_get_pq_version, u32Size, strVersion, eWindow, eType);
    _hidl_cb(strVersion.text(), s32Ret);
    FAPI_LOGE("a_zvttvfapi_disp_get_pq_version %d", s32Ret);
    return Void();
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_update_pq_ini_files() {
    return forward(a_zvttvfapi_disp_update_pq_ini_files);
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_set_output_timing(uint32_t u32Timing) {
    return forward(a_zvttvfapi_disp_set_output_timing, u32Timing);
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_nty_drv_reload_param() {
    return forward(a_zvttvfapi_disp_nty_drv_reload_param);
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_set_pq_value(uint32_t u32Item, int32_t s32Value) {
    return forward(a_zvttvfapi_disp_set_pq_value, u32Item, s32Value);
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_capture_screen_to_usb(const hidl_string& strPath,
                                                                                int32_t s32Option) {
    return forward(a_zvttvfapi_disp_capture_screen_to_usb, strPath, s32Option);
}

Return<bool> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_get_frc_connect_status() {
    // FAPI_NOT_READY is read as an answer too, and so means true.
    return lowByte(forward(a_zvttvfapi_disp_get_frc_connect_status)) != 0;
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_set_gamma_curve(const hidl_vec<uint16_t>& vecRed,
                                                                          const hidl_vec<uint16_t>& vecGreen,
                                                                          const hidl_vec<uint16_t>& vecBlue) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGD("a_hidl_a_zvttvfapi_disp_set_gamma_curve()...\n");
    const auto u16RedSize = static_cast<uint16_t>(vecRed.size());
    const auto u16GreenSize = static_cast<uint16_t>(vecGreen.size());
    const auto u16BlueSize = static_cast<uint16_t>(vecBlue.size());
    FAPI_LOGI("Red Gamma Data Size = %d.\n", u16RedSize);
    FAPI_LOGI("Green Gamma Data Size = %d.\n", u16GreenSize);
    FAPI_LOGI("Blue Gamma Data Size = %d.\n", u16BlueSize);
    if (u16RedSize == 0 || u16GreenSize == 0 || u16BlueSize == 0) {
        FAPI_LOGE("Invalid Gamma Table Size.\n");
        return FAPI_INVALID_ARGUMENT;
    }
    auto pu16Red = gammaTable(vecRed, u16RedSize);
    if (!pu16Red) {
        FAPI_LOGE("Allocate pu16RedGammaData failed.\n");
        return FAPI_NO_MEMORY;
    }
    auto pu16Green = gammaTable(vecGreen, u16GreenSize);
    if (!pu16Green) {
        FAPI_LOGE("Allocate pu16GreenGammaData failed.\n");
        return FAPI_NO_MEMORY;
    }
    auto pu16Blue = gammaTable(vecBlue, u16BlueSize);
    if (!pu16Blue) {
        FAPI_LOGE("Allocate pu16BlueGammaData failed.\n");
        return FAPI_NO_MEMORY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_disp_set_gamma_curve, pu16Red, pu16Green, pu16Blue);
    FAPI_LOG_OUTCOME("a_hidl_a_zvttvfapi_disp_set_gamma_curve", s32Ret);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiDisplay::a_hidl_a_zvttvfapi_disp_set_freerun_control(uint32_t u32Mode) {
    return forward(a_zvttvfapi_disp_set_freerun_control, u32Mode);
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
