#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiDisplay.h>

#include <cstdint>

#include "service/frame/FapiInterface.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;

/// Picture quality, panel, FRC device, output timing and screen capture. No state: any number of calls may
/// run side by side.
class ZvtTvFApiDisplay : public FapiInterface<IZvtTvFApiDisplay> {
  public:
    // Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiDisplay follow.
    Return<int32_t> a_hidl_a_zvttvfapi_disp_switch_window(uint32_t u32Window) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disp_set_picture_param(uint32_t u32Param, uint32_t u32Value) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disp_panel_set_attr(uint32_t u32Link, uint32_t u32Lanes,
                                                           uint32_t u32BitDepth, uint32_t u32Mapping,
                                                           uint32_t u32Swing, uint32_t u32Mirror) override;
    Return<int32_t> a_hidl_zvttvfapi_disp_set_over_scan(int32_t s32Left, int32_t s32Right, int32_t s32Top,
                                                        int32_t s32Bottom) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disp_set_color_temperature(uint32_t u32RedGain, uint32_t u32GreenGain,
                                                                  uint32_t u32BlueGain, uint32_t u32RedOffset,
                                                                  uint32_t u32GreenOffset,
                                                                  uint32_t u32BlueOffset) override;
    Return<void> a_hidl_a_zvttvfapi_disp_get_pq_range(
            a_hidl_a_zvttvfapi_disp_get_pq_range_cb _hidl_cb) override;
    Return<void> a_hidl_a_zvttvfapi_disp_get_tcon_info(
            a_hidl_a_zvttvfapi_disp_get_tcon_info_cb _hidl_cb) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disp_set_picture_param_struct(uint32_t u32Type,
                                                                     const hidl_vec<uint8_t>& vecData,
                                                                     uint32_t u32Size) override;
    Return<void> a_hidl_a_zvttvfapi_disp_get_lvds_ssc(
            a_hidl_a_zvttvfapi_disp_get_lvds_ssc_cb _hidl_cb) override;
    Return<void> a_hidl_a_zvttvfapi_disp_get_pwm_range(
            a_hidl_a_zvttvfapi_disp_get_pwm_range_cb _hidl_cb) override;
    Return<void> a_hidl_a_zvttvfapi_disp_get_frc_device_info(
            a_hidl_a_zvttvfapi_disp_get_frc_device_info_cb _hidl_cb) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disp_upgrade_vexa_fw(const hidl_string& strPath) override;
    Return<void> a_hidl_a_zvttvfapi_disp_get_pq_version(
            ZvtTvFApiVideoWin eWindow, ZvtTvFApiPqType eType,
            a_hidl_a_zvttvfapi_disp_get_pq_version_cb _hidl_cb) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disp_update_pq_ini_files() override;
    Return<int32_t> a_hidl_a_zvttvfapi_disp_set_output_timing(uint32_t u32Timing) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disp_nty_drv_reload_param() override;
    Return<int32_t> a_hidl_a_zvttvfapi_disp_set_pq_value(uint32_t u32Item, int32_t s32Value) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disp_capture_screen_to_usb(const hidl_string& strPath,
                                                                  int32_t s32Option) override;
    Return<bool> a_hidl_a_zvttvfapi_disp_get_frc_connect_status() override;
    Return<int32_t> a_hidl_a_zvttvfapi_disp_set_gamma_curve(const hidl_vec<uint16_t>& vecRed,
                                                            const hidl_vec<uint16_t>& vecGreen,
                                                            const hidl_vec<uint16_t>& vecBlue) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disp_set_freerun_control(uint32_t u32Mode) override;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
