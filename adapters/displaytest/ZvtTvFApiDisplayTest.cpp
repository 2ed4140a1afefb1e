#define LOG_TAG "ZvtTvFApiDisplayTest(server)"

#include "adapters/displaytest/ZvtTvFApiDisplayTest.h"

#include "chiplayer/disptst.h"
#include "service/frame/Call.h"
#include "service/frame/Log.h"
#include "service/frame/Scratch.h"
#include "service/frame/Twin.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

FAPI_TWIN(ZvtTvFApiDispTstColor, u32Red, u32Green, u32Blue, u8Alpha);
FAPI_TWIN(ZvtTvFApiDispTstPattern, stForeground, u32X, u32Y, u32Width, u32Height, u32Columns, u32Rows,
          u16LineWidth, u8Vertical, u8Invert, stBackground, stLine, u32Duration);
FAPI_TWIN(ZvtTvFApiGOPPatternLine_t, u32StartX, u32StartY, u32EndX, u32EndY, u32Color);
FAPI_TWIN(ZvtTvFApiGOPPatternRect_t, u32X, u32Y, u32Width, u32Height, u32FillColor, u32BorderColor, u8Fill,
          u8BorderWidth, u8CornerRadius, u8Blend);
FAPI_TWIN(ZvtTvFApiGOPPatternAttr_t, u8Alpha, u16X, u16Y, u16Width, u16Height, u16LineWidth, u32BackColor);
FAPI_TWIN(ZvtTvFApiColor, u16Red, u16Green, u16Blue);

// Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiDisplayTest follow.

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_set_burning_mode(bool bEnable) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    const int32_t s32Ret = callChip(a_zvttvfapi_disptst_set_burning_mode, bEnable);
    FAPI_LOGI("s32Ret=%x enable:%d\n", s32Ret, bEnable);
    return s32Ret;
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_gen_test_pattern(
        uint32_t u32Pattern, const ZvtTvFApiDispTstPattern& stPattern) {
    return forward(a_zvttvfapi_disptst_gen_test_pattern, u32Pattern, stPattern);
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp(
        const hidl_string& strPath, uint32_t u32X, uint32_t u32Y) {
    return forward(a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp, strPath, u32X, u32Y);
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_on(uint32_t u32Width,
                                                                                         uint32_t u32Height) {
    return forward(a_zvttvfapi_disptst_gen_gop_test_pattern_on, u32Width, u32Height);
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_off() {
    return forward(a_zvttvfapi_disptst_gen_gop_test_pattern_off);
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_show() {
    return forward(a_zvttvfapi_disptst_gen_gop_test_pattern_show);
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_hide() {
    return forward(a_zvttvfapi_disptst_gen_gop_test_pattern_hide);
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_set_osd_layer_on_off(uint32_t u32Layer,
                                                                                      bool bOn) {
    return forward(a_zvttvfapi_disptst_set_osd_layer_on_off, u32Layer, bOn);
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_set_pq_on_off(bool bOn) {
    return forward(a_zvttvfapi_disptst_set_pq_on_off, bOn);
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line(
        const ZvtTvFApiGOPPatternLine_t& stLine) {
    return forward(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line, stLine);
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect(
        const ZvtTvFApiGOPPatternRect_t& stRect) {
    return forward(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect, stRect);
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_bitmap(
        const ZvtTvFApiGOPPatternBitmap_t&) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    FAPI_LOGE_DOUBLED(FAPI_TEXT_TYPES_MISMATCH);
    return FAPI_FAIL;
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_a_zvttvfapi_disptst_gop_pattern_set_attr(
        const ZvtTvFApiGOPPatternAttr_t& stAttr) {
    return forward(a_zvttvfapi_disptst_gop_pattern_set_attr, stAttr);
}

Return<int32_t> ZvtTvFApiDisplayTest::a_hidl_zvttvfapi_disptst_set_burning_mode_adv(
        bool bEnable, uint8_t u8Interval, const hidl_vec<ZvtTvFApiColor>& vecColors) {
    if (!fapiReady()) {
        return FAPI_NOT_READY;
    }
    auto pstParam = Scratch<_ZvtFApiDisptstBurnModeParam>::zeroed(1);
    if (!pstParam) {
        FAPI_LOGE("Create pstDefaultBurnModeParam failed!\n");
        return FAPI_NO_MEMORY;
    }
    if (vecColors.size() == 0) {
        FAPI_LOGE("vecColors is empty!\n");
        return FAPI_INVALID_ARGUMENT;
    }
    const auto u8Count = static_cast<uint8_t>(vecColors.size());
    auto pstColors = Scratch<fapi_core::ZvtTvFApiColor>::uncleared(u8Count);
    if (!pstColors) {
        FAPI_LOGE("Create ptmpBurnModeParam->pColorTable failed!\n");
        return FAPI_NO_MEMORY;
    }
    for (size_t i = 0; i < u8Count; ++i) {
        pstColors[i] = toTwin(vecColors[i]);
    }
    pstParam[0].pColorTable = pstColors.get();
    pstParam[0].u8ColorCount = u8Count;
    pstParam[0].u8Interval = u8Interval;
    return callChip(a_zvttvfapi_disptst_set_burning_mode_adv, bEnable, pstParam);
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
