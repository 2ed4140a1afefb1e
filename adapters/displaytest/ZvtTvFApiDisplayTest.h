#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiDisplayTest.h>

#include <cstdint>

#include "service/frame/FapiInterface.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;

/// Test patterns, graphics-layer patterns and burn-in. No state: any number of calls may run side by side.
class ZvtTvFApiDisplayTest : public FapiInterface<IZvtTvFApiDisplayTest> {
  public:
    // Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiDisplayTest follow.
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_set_burning_mode(bool bEnable) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_gen_test_pattern(
            uint32_t u32Pattern, const ZvtTvFApiDispTstPattern& stPattern) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp(const hidl_string& strPath,
                                                                           uint32_t u32X,
                                                                           uint32_t u32Y) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_on(uint32_t u32Width,
                                                                       uint32_t u32Height) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_off() override;
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_show() override;
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_hide() override;
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_set_osd_layer_on_off(uint32_t u32Layer, bool bOn) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_set_pq_on_off(bool bOn) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line(
            const ZvtTvFApiGOPPatternLine_t& stLine) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect(
            const ZvtTvFApiGOPPatternRect_t& stRect) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_bitmap(
            const ZvtTvFApiGOPPatternBitmap_t& stBitmap) override;
    Return<int32_t> a_hidl_a_zvttvfapi_disptst_gop_pattern_set_attr(
            const ZvtTvFApiGOPPatternAttr_t& stAttr) override;
    Return<int32_t> a_hidl_zvttvfapi_disptst_set_burning_mode_adv(
            bool bEnable, uint8_t u8Interval, const hidl_vec<ZvtTvFApiColor>& vecColors) override;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
