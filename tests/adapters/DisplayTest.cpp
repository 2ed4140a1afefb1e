#include "adapters/display/ZvtTvFApiDisplay.h"

#include <algorithm>

#include "chiplayer/disp.h"
#include "tests/adapters/Adapter.h"
#include "tests/fake/FailingAllocation.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

class Display : public Adapter<ZvtTvFApiDisplay> {
  protected:
    Display() : Adapter("ZvtTvFApiDisplay", "disp") {}
};

TEST_F(Display, PassesArgumentsOnDeliversWhateverTheStatusAndLogsBehindTheDelivery) {
    const hidl_string cut("usb/a.png\0cut", 13);
    const hidl_vec<uint8_t> vecData = {9, 0, 8};
    const auto writes = [](auto* pstRecord) {
        EXPECT_EQ(imageOf(*pstRecord), Bytes(sizeof(*pstRecord)));
        number(*pstRecord);
        return -7;
    };
    chip.on(a_zvttvfapi_disp_get_pq_range, writes);
    chip.on(a_zvttvfapi_disp_get_tcon_info, writes);
    chip.on(a_zvttvfapi_disp_get_frc_device_info, writes);
    Bytes tcon = sequence(44, {43});  // padding
    tcon[42] = 1;                     // a flag byte of 43 is true
    chip.on(a_zvttvfapi_disp_get_lvds_ssc, [](unsigned char& enable, unsigned int& a, unsigned int& b) {
        EXPECT_EQ(enable + a + b, 0u);
        enable = 2, a = 0xFFFFFFFF, b = 7;
        return -7;
    });
    chip.on(a_zvttvfapi_disp_get_pwm_range, [](unsigned int& a, unsigned int& b) {
        EXPECT_EQ(a + b, 0u);
        a = 5, b = 0x80000000;
        return -7;
    });
    expectRows({
            {METHOD(a_hidl_a_zvttvfapi_disp_switch_window, 4000000000), "switch_window(4000000000)"},
            {METHOD(a_hidl_a_zvttvfapi_disp_set_picture_param, 1, 2), "set_picture_param(1, 2)"},
            {METHOD(a_hidl_a_zvttvfapi_disp_panel_set_attr, 1, 2, 3, 4, 5, 6),
             "panel_set_attr(1, 2, 3, 4, 5, 6)"},
            {METHOD(a_hidl_a_zvttvfapi_disp_set_color_temperature, 1, 2, 3, 4, 5, 6),
             "set_color_temperature(1, 2, 3, 4, 5, 6)"},
            {METHOD(a_hidl_a_zvttvfapi_disp_upgrade_vexa_fw, cut), "upgrade_vexa_fw(\"usb/a.png\")"},
            {METHOD(a_hidl_a_zvttvfapi_disp_update_pq_ini_files, ), "update_pq_ini_files()"},
            {METHOD(a_hidl_a_zvttvfapi_disp_set_output_timing, 3), "set_output_timing(3)"},
            {METHOD(a_hidl_a_zvttvfapi_disp_nty_drv_reload_param, ), "nty_drv_reload_param()"},
            {METHOD(a_hidl_a_zvttvfapi_disp_set_pq_value, 4, -5), "set_pq_value(4, -5)"},
            {METHOD(a_hidl_a_zvttvfapi_disp_capture_screen_to_usb, cut, -1),
             "capture_screen_to_usb(\"usb/a.png\", -1)"},
            {METHOD(a_hidl_a_zvttvfapi_disp_set_freerun_control, 9), "set_freerun_control(9)"},
            {METHOD(a_hidl_zvttvfapi_disp_set_over_scan, -1, 2, -3, 4), "set_over_scan(-1, 2, -3, 4)", "-7",
             " E a_hidl_zvttvfapi_disp_set_over_scan -7"},
            {METHOD(a_hidl_a_zvttvfapi_disp_set_picture_param_struct, 70000, vecData, 3),
             "set_picture_param_struct(70000, 3, *)"},
            {METHOD(a_hidl_a_zvttvfapi_disp_get_pq_range, results()), "get_pq_range(*)",
             show(sequence(24)) + " -7", "| E a_zvttvfapi_disp_get_pq_range -7", show(Bytes(24)) + " -5"},
            {METHOD(a_hidl_a_zvttvfapi_disp_get_frc_device_info, results()), "get_frc_device_info(*)",
             show(sequence(8)) + " -7", "| E a_zvttvfapi_disp_get_frc_device_info -7",
             show(Bytes(8)) + " -5"},
            {METHOD(a_hidl_a_zvttvfapi_disp_get_tcon_info, results()), "get_tcon_info(*)", show(tcon) + " -7",
             "| E a_hidl_a_zvttvfapi_disp_get_tcon_info -7", show(Bytes(44)) + " -5"},
            {METHOD(a_hidl_a_zvttvfapi_disp_get_lvds_ssc, results()), "get_lvds_ssc(0, 0, 0)", "1 -1 7 -7",
             "| E a_zvttvfapi_disp_get_lvds_ssc -7[2][-1][7][-1][7]", "0 0 0 -5"},
            {METHOD(a_hidl_a_zvttvfapi_disp_get_pwm_range, results()), "get_pwm_range(0, 0)",
             "5 -2147483648 -7",
             "| E a_hidl_a_zvttvfapi_disp_get_pwm_range -7[5][-2147483648][5][-2147483648]", "0 0 -5"},
            {METHOD(a_hidl_a_zvttvfapi_disp_get_pq_version, ZvtTvFApiVideoWin::SUB, ZvtTvFApiPqType::BASIC,
                    results()),
             "get_pq_version(128, *, 1, 0)", "'' -7", "| E a_zvttvfapi_disp_get_pq_version -7", "'' -5"},
            {METHOD(a_hidl_a_zvttvfapi_disp_get_frc_connect_status, ), "get_frc_connect_status()", "1", "",
             "1"},
    });
}

TEST_F(Display, TheConverterIsConnectedWhenTheLowByteSaysSo) {
    for (const auto& [answer, connected] : {std::pair{0, "0"}, {1, "1"}, {0x80, "1"}, {0x100, "0"}}) {
        chip.returnsOtherwise(answer);
        chip.returns(a_zvttvfapi_common_get_fapi_status, 0);
        EXPECT_EQ(OUTCOME(a_hidl_a_zvttvfapi_disp_get_frc_connect_status, ).answer, connected) << answer;
    }
}

TEST_F(Display, WindowsAndKindsBeyondTheLastBecomeTheLast) {
    for (int value = 0; value < 256; ++value) {
        OUTCOME(a_hidl_a_zvttvfapi_disp_get_pq_version, static_cast<ZvtTvFApiVideoWin>(value),
                static_cast<ZvtTvFApiPqType>(255 - value), results());
        EXPECT_EQ(calls(), "?get_pq_version(128, *, " + show(std::min(value, 3)) + ", " +
                                   show(std::min(255 - value, 7)) + ")");
    }
}

TEST_F(Display, AVersionEndsAtItsFirstNulOrTheBuffersEnd) {
    for (const size_t written : {0, 127, 128}) {
        chip.on(a_zvttvfapi_disp_get_pq_version, [&](unsigned int size, char* text, auto...) {
            EXPECT_TRUE(std::all_of(text, text + size, [](char byte) { return byte == 0; }));
            std::fill_n(text, written, 'v');
            return -9;
        });
        EXPECT_EQ(OUTCOME(a_hidl_a_zvttvfapi_disp_get_pq_version, {}, {}, results()).answer,
                  show(hidl_string(std::string(written, 'v'))) + " -9");
    }
}

TEST_F(Display, AParameterRecordIsPassedOnlyInItsStatedSize) {
    struct {
        uint32_t length;
        uint32_t size;
        int refused;  // the allocation of this number
        std::string lines;
    } const rows[] = {
            {0, 0, 0, " E invaild Arguments"},
            {2, 0, 0, " E invaild Arguments"},
            {16, 12, 0, " E invaild Arguments [16][12]"},
            {0, 12, 0, " E invaild Arguments [0][12]"},
            {3, 3, 1, ""},
    };
    hidl_vec<uint8_t> vecData = {9, 0, 8};
    chip.on(a_zvttvfapi_disp_set_picture_param_struct, [&](unsigned int, unsigned int size, void* data) {
        EXPECT_EQ(Bytes(static_cast<uint8_t*>(data), static_cast<uint8_t*>(data) + size), Bytes(vecData));
        return -77;
    });
    EXPECT_EQ(OUTCOME(a_hidl_a_zvttvfapi_disp_set_picture_param_struct, 1, vecData, 3).answer, "-77");
    calls();
    for (const auto& row : rows) {
        vecData.resize(row.length);
        const FailingAllocation allocation(row.refused);
        const Outcome outcome =
                OUTCOME(a_hidl_a_zvttvfapi_disp_set_picture_param_struct, 1, vecData, row.size);
        EXPECT_EQ(outcome.answer, "-1");
        EXPECT_EQ(outcome.lines, row.lines);
        EXPECT_EQ(calls(), "?");
    }
}

TEST_F(Display, GammaTablesAreCountedIn16BitsReach256EntriesAndEachRefusalHasItsMessage) {
    struct {
        size_t red, green, blue;
        int refused;  // the allocation of this number
        int32_t result;
        int32_t status;
        const char* last;  // line
        size_t refusedBytes;
    } const rows[] = {
            {256, 256, 256, 0, 0, 0, " D a_hidl_a_zvttvfapi_disp_set_gamma_curve OK!\n", 0},
            {1, 65535, 65537, 0, 33, 33, " E a_hidl_a_zvttvfapi_disp_set_gamma_curve Fail!\n", 0},
            {0, 256, 256, 1, 0, -2, " E Invalid Gamma Table Size.\n", 0},
            {256, 65536, 256, 1, 0, -2, " E Invalid Gamma Table Size.\n", 0},
            {256, 256, 0, 1, 0, -2, " E Invalid Gamma Table Size.\n", 0},
            {65536 + 300, 20, 30, 1, 0, -4, " E Allocate pu16RedGammaData failed.\n", 600},
            {10, 65536 + 257, 30, 2, 0, -4, " E Allocate pu16GreenGammaData failed.\n", 514},
            {10, 20, 65536 + 30, 3, 0, -4, " E Allocate pu16BlueGammaData failed.\n", 512},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.last);
        const auto table = [](size_t size, uint16_t first) {
            hidl_vec<uint16_t> entries;
            entries.resize(size);
            std::iota(entries.begin(), entries.end(), first);
            return entries;
        };
        const auto vecRed = table(row.red, 100), vecGreen = table(row.green, 200),
                   vecBlue = table(row.blue, 300);
        const auto expectEntries = [](const unsigned short* entries, const hidl_vec<uint16_t>& source) {
            const auto* const end = entries + uint16_t(source.size());
            EXPECT_TRUE(std::equal(entries, end, source.begin()));
            EXPECT_EQ(std::count(end, std::max(end, entries + 256), 0),
                      std::max<long>(0, entries + 256 - end))
                    << "the library reads so many";
        };
        chip.on(a_zvttvfapi_disp_set_gamma_curve,
                [&](const unsigned short* red, const unsigned short* green, const unsigned short* blue) {
                    expectEntries(red, vecRed), expectEntries(green, vecGreen), expectEntries(blue, vecBlue);
                    return row.result;
                });
        const FailingAllocation allocation(row.refused);
        const Outcome outcome = OUTCOME(a_hidl_a_zvttvfapi_disp_set_gamma_curve, vecRed, vecGreen, vecBlue);
        EXPECT_EQ(outcome.answer, show(row.status));
        EXPECT_EQ(allocation.refusedBytes(), row.refusedBytes);
        EXPECT_EQ(calls(), row.status == row.result ? "?set_gamma_curve(*, *, *)" : "?");
        const auto size = [](const std::string& colour, size_t entries) {
            return " I " + colour + " Gamma Data Size = " + show(uint16_t(entries)) + ".\n";
        };
        EXPECT_EQ(outcome.lines, " D a_hidl_a_zvttvfapi_disp_set_gamma_curve()...\n" + size("Red", row.red) +
                                         size("Green", row.green) + size("Blue", row.blue) + row.last);
    }
    chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
    EXPECT_EQ(OUTCOME(a_hidl_a_zvttvfapi_disp_set_gamma_curve, {}, {}, {}).answer, "-5");
    EXPECT_EQ(mOutcome.lines, "");
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
