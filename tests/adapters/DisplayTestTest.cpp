#include "adapters/displaytest/ZvtTvFApiDisplayTest.h"

#include "chiplayer/disptst.h"
#include "tests/adapters/Forwarding.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FailingAllocation.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kTag = "ZvtTvFApiDisplayTest(server): ";

class DisplayTest : public ::testing::Test {
  protected:
    FakeChipLayer chip;
    DeviceLog log;
    ::android::sp<ZvtTvFApiDisplayTest> test = new ZvtTvFApiDisplayTest();
};

TEST_F(DisplayTest, ForwardersPassEveryArgumentAndTheStatusOn) {
    const hidl_string cut("usb/a.bmp\0cut", 13);
    expectForwarded(chip, a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp,
                    "a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp(\"usb/a.bmp\", 1, 2)",
                    [&] { return test->a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp(cut, 1, 2); });
    expectForwarded(chip, a_zvttvfapi_disptst_gen_gop_test_pattern_on,
                    "a_zvttvfapi_disptst_gen_gop_test_pattern_on(4000000000, 2)",
                    [&] { return test->a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_on(4000000000, 2); });
    expectForwarded(chip, a_zvttvfapi_disptst_gen_gop_test_pattern_off,
                    "a_zvttvfapi_disptst_gen_gop_test_pattern_off()",
                    [&] { return test->a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_off(); });
    expectForwarded(chip, a_zvttvfapi_disptst_gen_gop_test_pattern_show,
                    "a_zvttvfapi_disptst_gen_gop_test_pattern_show()",
                    [&] { return test->a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_show(); });
    expectForwarded(chip, a_zvttvfapi_disptst_gen_gop_test_pattern_hide,
                    "a_zvttvfapi_disptst_gen_gop_test_pattern_hide()",
                    [&] { return test->a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_hide(); });
    expectForwarded(chip, a_zvttvfapi_disptst_set_osd_layer_on_off,
                    "a_zvttvfapi_disptst_set_osd_layer_on_off(3, 1)",
                    [&] { return test->a_hidl_a_zvttvfapi_disptst_set_osd_layer_on_off(3, true); });
    expectForwarded(chip, a_zvttvfapi_disptst_set_pq_on_off, "a_zvttvfapi_disptst_set_pq_on_off(0)",
                    [&] { return test->a_hidl_a_zvttvfapi_disptst_set_pq_on_off(false); });
    EXPECT_THAT(log.takeLines(), IsEmpty());

    expectForwarded(chip, a_zvttvfapi_disptst_set_burning_mode, "a_zvttvfapi_disptst_set_burning_mode(1)",
                    [&] { return test->a_hidl_a_zvttvfapi_disptst_set_burning_mode(true); });
    std::vector<std::string> lines;
    for (const char* status : {"0", "3039", "fffffffe", "fffffffb"}) {  // and none while not ready
        lines.push_back("I " + kTag + "<a_hidl_a_zvttvfapi_disptst_set_burning_mode:#> s32Ret=" + status +
                        " enable:1\n");
    }
    EXPECT_EQ(log.takeLines(), lines);
}

TEST_F(DisplayTest, RecordsArriveByteForByteWithTheirPaddingZeroed) {
    std::vector<uint8_t> image;
    const auto take = [&](const auto& stRecord) {
        image = imageOf(stRecord);
        return 0;
    };
    // The bytes 1, 2, 3 and so on; from sends them, padding included.
    const auto expectImage = [&](size_t size, std::initializer_list<size_t> padding) {
        std::vector<uint8_t> expected(size);
        std::iota(expected.begin(), expected.end(), uint8_t{1});
        for (const size_t at : padding) {
            expected[at] = 0;
        }
        EXPECT_EQ(image, expected);
    };
    ZvtTvFApiDispTstPattern stPattern;
    number(stPattern);
    chip.on(a_zvttvfapi_disptst_gen_test_pattern,
            [&](unsigned int, auto stRecord) { return take(stRecord); });
    test->a_hidl_a_zvttvfapi_disptst_gen_test_pattern(1, stPattern).isOk();
    expectImage(80, {13, 14, 15, 57, 58, 59, 73, 74, 75});

    ZvtTvFApiGOPPatternLine_t stLine;
    number(stLine);
    chip.on(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line, take);
    test->a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line(stLine).isOk();
    expectImage(20, {});

    ZvtTvFApiGOPPatternRect_t stRect;
    number(stRect);
    chip.on(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect, take);
    test->a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect(stRect).isOk();
    expectImage(28, {});

    ZvtTvFApiGOPPatternAttr_t stAttr;
    number(stAttr);
    chip.on(a_zvttvfapi_disptst_gop_pattern_set_attr, take);
    test->a_hidl_a_zvttvfapi_disptst_gop_pattern_set_attr(stAttr).isOk();
    expectImage(16, {1});

    chip.takeCalls();
    expectForwarded(chip, a_zvttvfapi_disptst_gen_test_pattern,
                    "a_zvttvfapi_disptst_gen_test_pattern(4000000000, {})",
                    [&] { return test->a_hidl_a_zvttvfapi_disptst_gen_test_pattern(4000000000, stPattern); });
    expectForwarded(chip, a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line,
                    "a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line({})",
                    [&] { return test->a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line(stLine); });
    expectForwarded(chip, a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect,
                    "a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect({})",
                    [&] { return test->a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect(stRect); });
    expectForwarded(chip, a_zvttvfapi_disptst_gop_pattern_set_attr,
                    "a_zvttvfapi_disptst_gop_pattern_set_attr({})",
                    [&] { return test->a_hidl_a_zvttvfapi_disptst_gop_pattern_set_attr(stAttr); });
    EXPECT_THAT(log.takeLines(), IsEmpty());
}

TEST_F(DisplayTest, ABitmapIsRefusedAloud) {
    const std::string method = "a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_bitmap";
    const auto draw = [&] {
        return int32_t{test->a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_bitmap({})};
    };
    EXPECT_EQ(draw(), -1);
    EXPECT_THAT(log.takeLines(),
                ElementsAre("E " + kTag + "<" + method + ":#> [" + method +
                            "(#)]FAIL: types & a_zvttvfapi_types are mismatch! Please check it!\n"));
    chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
    EXPECT_EQ(draw(), -5);
    EXPECT_THAT(log.takeLines(), IsEmpty());
    EXPECT_THAT(chip.takeCalls(), ElementsAre(kGuard, kGuard));
}

TEST_F(DisplayTest, BurnInColoursAreCountedIn8BitsAndEachRefusalHasItsMessage) {
    struct {
        size_t colors;
        int32_t ready;
        int refused;  // the allocation of this number
        int32_t status;
        size_t count;  // that reach the library
        size_t refusedBytes;
        const char* message;
    } const rows[] = {
            {3, 0, 0, -77, 3, 0, nullptr},
            {255, 0, 0, -77, 255, 0, nullptr},
            {256, 0, 0, -77, 0, 0, nullptr},
            {300, 0, 0, -77, 44, 0, nullptr},
            {0, 0, 0, -2, 0, 0, "vecColors is empty!\n"},
            {0, 0, 1, -4, 0, sizeof(_ZvtFApiDisptstBurnModeParam),
             "Create pstDefaultBurnModeParam failed!\n"},
            {259, 0, 2, -4, 0, 18, "Create ptmpBurnModeParam->pColorTable failed!\n"},
            {0, -5, 1, -5, 0, 0, nullptr},
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
        const Return<int32_t> status =
                test->a_hidl_zvttvfapi_disptst_set_burning_mode_adv(enable, 200, vecColors);
        EXPECT_EQ(int32_t{status}, row.status);
        EXPECT_EQ(allocation.refusedBytes(), row.refusedBytes);
        EXPECT_EQ(chip.takeCalls().size(), row.status == -77 ? 2u : 1u);
        std::vector<std::string> lines;
        if (row.message != nullptr) {
            lines.push_back("E " + kTag + "<a_hidl_zvttvfapi_disptst_set_burning_mode_adv:#> " + row.message);
        }
        EXPECT_EQ(log.takeLines(), lines);
    }
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
