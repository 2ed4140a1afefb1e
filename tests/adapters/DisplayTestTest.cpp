#include "adapters/displaytest/ZvtTvFApiDisplayTest.h"

#include "chiplayer/disptst.h"
#include "tests/adapters/Adapter.h"
#include "tests/fake/FailingAllocation.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

class DisplayTest : public Adapter<ZvtTvFApiDisplayTest> {
  protected:
    DisplayTest() : Adapter("ZvtTvFApiDisplayTest", "disptst") {}
};

TEST_F(DisplayTest, PassesEveryArgumentAndTheStatusOnAndRefusesABitmapAloud) {
    const hidl_string cut("usb/a.bmp\0cut", 13);
    expectRows({
            {METHOD(a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp, cut, 1, 2),
             "gen_gop_test_pattern_by_bmp(\"usb/a.bmp\", 1, 2)"},
            {METHOD(a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_on, 4000000000, 2),
             "gen_gop_test_pattern_on(4000000000, 2)"},
            {METHOD(a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_off, ), "gen_gop_test_pattern_off()"},
            {METHOD(a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_show, ), "gen_gop_test_pattern_show()"},
            {METHOD(a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_hide, ), "gen_gop_test_pattern_hide()"},
            {METHOD(a_hidl_a_zvttvfapi_disptst_set_osd_layer_on_off, 3, true), "set_osd_layer_on_off(3, 1)"},
            {METHOD(a_hidl_a_zvttvfapi_disptst_set_pq_on_off, false), "set_pq_on_off(0)"},
            {METHOD(a_hidl_a_zvttvfapi_disptst_set_burning_mode, true), "set_burning_mode(1)", "-7",
             " I s32Ret=fffffff9 enable:1\n"},
            {METHOD(a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_bitmap, {}), "", "-1",
             " E [a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_bitmap(#)]"
             "FAIL: types & a_zvttvfapi_types are mismatch! Please check it!\n"},
    });
}

TEST_F(DisplayTest, RecordsArriveByteForByteWithTheirPaddingZeroed) {
    Bytes image;
    const auto take = [&](const auto& stRecord) {
        image = imageOf(stRecord);
        return -7;
    };
    chip.on(a_zvttvfapi_disptst_gen_test_pattern,
            [&](unsigned int, auto stRecord) { return take(stRecord); });
    chip.on(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line, take);
    chip.on(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect, take);
    chip.on(a_zvttvfapi_disptst_gop_pattern_set_attr, take);
    ZvtTvFApiDispTstPattern stPattern;
    ZvtTvFApiGOPPatternLine_t stLine;
    ZvtTvFApiGOPPatternRect_t stRect;
    ZvtTvFApiGOPPatternAttr_t stAttr;
    number(stPattern), number(stLine), number(stRect), number(stAttr);
    expectRows({{METHOD(a_hidl_a_zvttvfapi_disptst_gen_test_pattern, 4000000000, stPattern),
                 "gen_test_pattern(4000000000, {})"}});
    EXPECT_EQ(image, sequence(80, {13, 14, 15, 57, 58, 59, 73, 74, 75}));
    expectRows({{METHOD(a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line, stLine),
                 "gen_gop_test_pattern_draw_line({})"}});
    EXPECT_EQ(image, sequence(20));
    expectRows({{METHOD(a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect, stRect),
                 "gen_gop_test_pattern_draw_rect({})"}});
    EXPECT_EQ(image, sequence(28));
    expectRows(
            {{METHOD(a_hidl_a_zvttvfapi_disptst_gop_pattern_set_attr, stAttr), "gop_pattern_set_attr({})"}});
    EXPECT_EQ(image, sequence(16, {1}));
}

TEST_F(DisplayTest, BurnInColoursAreCountedIn8BitsAndEachRefusalHasItsMessage) {
    struct {
        size_t colors;
        int32_t ready;
        int refused;  // the allocation of this number
        int32_t status;
        size_t count;  // that reach the library
        size_t refusedBytes;
        std::string lines;
    } const rows[] = {
            {3, 0, 0, -77, 3, 0, ""},
            {255, 0, 0, -77, 255, 0, ""},
            {256, 0, 0, -77, 0, 0, ""},
            {300, 0, 0, -77, 44, 0, ""},
            {0, 0, 0, -2, 0, 0, " E vecColors is empty!\n"},
            {0, 0, 1, -4, 0, sizeof(_ZvtFApiDisptstBurnModeParam),
             " E Create pstDefaultBurnModeParam failed!\n"},
            {259, 0, 2, -4, 0, 18, " E Create ptmpBurnModeParam->pColorTable failed!\n"},
            {0, -5, 1, -5, 0, 0, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.colors) + " " + std::to_string(row.status));
        chip.returns(a_zvttvfapi_common_get_fapi_status, row.ready);
        hidl_vec<ZvtTvFApiColor> vecColors;
        vecColors.resize(row.colors);
        for (size_t i = 0; i < row.colors; ++i) {
            const auto base = static_cast<uint16_t>(10 * i);
            vecColors[i] = {base, static_cast<uint16_t>(base + 1), static_cast<uint16_t>(base + 2)};
        }
        const bool enable = row.colors != 3;
        chip.on(a_zvttvfapi_disptst_set_burning_mode_adv,
                [&](unsigned char u8Enable, const _ZvtFApiDisptstBurnModeParam* pstParam) {
                    EXPECT_EQ(u8Enable, enable ? 1 : 0);
                    EXPECT_EQ(pstParam->u8Interval, 200);
                    EXPECT_EQ(pstParam->u8ColorCount, row.count);
                    EXPECT_NE(pstParam->pColorTable, nullptr);
                    EXPECT_EQ(0, std::memcmp(pstParam->pColorTable, vecColors.data(), row.count * 6));
                    return -77;
                });
        const FailingAllocation allocation(row.refused);
        const Outcome outcome =
                OUTCOME(a_hidl_zvttvfapi_disptst_set_burning_mode_adv, enable, 200, vecColors);
        EXPECT_EQ(outcome.answer, show(row.status));
        EXPECT_EQ(allocation.refusedBytes(), row.refusedBytes);
        EXPECT_EQ(chip.takeCalls().size(), row.status == -77 ? 2u : 1u);
        EXPECT_EQ(outcome.lines, row.lines);
    }
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
