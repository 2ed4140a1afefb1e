#include <algorithm>
#include <initializer_list>
#include <utility>

#include "adapters/display/ZvtTvFApiDisplay.h"
#include "chiplayer/disp.h"
#include "tests/adapters/Forwarding.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FailingAllocation.h"
#include "tests/support/SoiledStack.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kTag = "ZvtTvFApiDisplay(server): ";

std::string resultLine(const std::string& method, const std::string& text) {
    return "E " + kTag + "<" + method + ":#> " + text;
}

class Display : public ::testing::Test {
  protected:
    // Notes what a getter delivers, and that it has not logged anything before.
    auto delivery() {
        delivered.clear();
        return [this](const auto& first, const auto&... rest) {
            EXPECT_THAT(log.takeLines(), IsEmpty());
            std::vector<int64_t> values;
            if constexpr (std::is_class_v<std::decay_t<decltype(first)>>) {
                image = imageOf(first);
            } else {
                values.push_back(first);
            }
            (values.push_back(rest), ...);
            delivered.push_back(values);
        };
    }

    FakeChipLayer chip;
    DeviceLog log;
    ::android::sp<ZvtTvFApiDisplay> display = new ZvtTvFApiDisplay();
    std::vector<uint8_t> image;
    std::vector<std::vector<int64_t>> delivered;
};

TEST_F(Display, ForwardersPassEveryArgumentAndTheStatusOnAndLogNothing) {
    const hidl_string cut("usb/a.png\0cut", 13);
    expectForwarded(chip, a_zvttvfapi_disp_switch_window, "a_zvttvfapi_disp_switch_window(4000000000)",
                    [&] { return display->a_hidl_a_zvttvfapi_disp_switch_window(4000000000); });
    expectForwarded(chip, a_zvttvfapi_disp_set_picture_param, "a_zvttvfapi_disp_set_picture_param(1, 2)",
                    [&] { return display->a_hidl_a_zvttvfapi_disp_set_picture_param(1, 2); });
    expectForwarded(chip, a_zvttvfapi_disp_panel_set_attr,
                    "a_zvttvfapi_disp_panel_set_attr(1, 2, 3, 4, 5, 6)",
                    [&] { return display->a_hidl_a_zvttvfapi_disp_panel_set_attr(1, 2, 3, 4, 5, 6); });
    expectForwarded(chip, a_zvttvfapi_disp_set_color_temperature,
                    "a_zvttvfapi_disp_set_color_temperature(1, 2, 3, 4, 5, 6)",
                    [&] { return display->a_hidl_a_zvttvfapi_disp_set_color_temperature(1, 2, 3, 4, 5, 6); });
    expectForwarded(chip, a_zvttvfapi_disp_upgrade_vexa_fw, "a_zvttvfapi_disp_upgrade_vexa_fw(\"usb/a.png\")",
                    [&] { return display->a_hidl_a_zvttvfapi_disp_upgrade_vexa_fw(cut); });
    expectForwarded(chip, a_zvttvfapi_disp_update_pq_ini_files, "a_zvttvfapi_disp_update_pq_ini_files()",
                    [&] { return display->a_hidl_a_zvttvfapi_disp_update_pq_ini_files(); });
    expectForwarded(chip, a_zvttvfapi_disp_set_output_timing, "a_zvttvfapi_disp_set_output_timing(3)",
                    [&] { return display->a_hidl_a_zvttvfapi_disp_set_output_timing(3); });
    expectForwarded(chip, a_zvttvfapi_disp_nty_drv_reload_param, "a_zvttvfapi_disp_nty_drv_reload_param()",
                    [&] { return display->a_hidl_a_zvttvfapi_disp_nty_drv_reload_param(); });
    expectForwarded(chip, a_zvttvfapi_disp_set_pq_value, "a_zvttvfapi_disp_set_pq_value(4, -5)",
                    [&] { return display->a_hidl_a_zvttvfapi_disp_set_pq_value(4, -5); });
    expectForwarded(chip, a_zvttvfapi_disp_capture_screen_to_usb,
                    "a_zvttvfapi_disp_capture_screen_to_usb(\"usb/a.png\", -1)",
                    [&] { return display->a_hidl_a_zvttvfapi_disp_capture_screen_to_usb(cut, -1); });
    expectForwarded(chip, a_zvttvfapi_disp_set_freerun_control, "a_zvttvfapi_disp_set_freerun_control(9)",
                    [&] { return display->a_hidl_a_zvttvfapi_disp_set_freerun_control(9); });
    EXPECT_THAT(log.takeLines(), IsEmpty());

    expectForwarded(chip, a_zvttvfapi_disp_set_over_scan, "a_zvttvfapi_disp_set_over_scan(-1, 2, -3, 4)",
                    [&] { return display->a_hidl_zvttvfapi_disp_set_over_scan(-1, 2, -3, 4); });
    std::vector<std::string> lines;
    for (const char* status : {"0", "12345", "-2", "-5"}) {  // and nothing while the library is not ready
        lines.push_back(resultLine("a_hidl_zvttvfapi_disp_set_over_scan",
                                   std::string("a_hidl_zvttvfapi_disp_set_over_scan ") + status));
    }
    EXPECT_EQ(log.takeLines(), lines);
}

TEST_F(Display, RecordsArriveWholeWhateverTheStatusAndThenLeaveOneLine) {
    const auto writes = [&](int32_t status) {
        return [=](auto* pstRecord) {
            EXPECT_EQ(imageOf(*pstRecord), std::vector<uint8_t>(sizeof(*pstRecord)));
            number(*pstRecord);
            return status;
        };
    };
    for (const int32_t status : {0, -9, -5}) {
        chip.on(a_zvttvfapi_disp_get_pq_range, writes(status));
        chip.on(a_zvttvfapi_disp_get_tcon_info, writes(status));
        chip.on(a_zvttvfapi_disp_get_frc_device_info, writes(status));
        const std::vector<std::vector<int64_t>> once = {{status}};
        const std::string result = " " + std::to_string(status);
        std::vector<uint8_t> numbers(44);
        std::iota(numbers.begin(), numbers.end(), uint8_t{1});

        soilStack();
        display->a_hidl_a_zvttvfapi_disp_get_pq_range(delivery()).isOk();
        EXPECT_EQ(delivered, once);
        EXPECT_EQ(image, std::vector(numbers.begin(), numbers.begin() + 24));
        EXPECT_THAT(log.takeLines(), ElementsAre(resultLine("a_hidl_a_zvttvfapi_disp_get_pq_range",
                                                            "a_zvttvfapi_disp_get_pq_range" + result)));
        soilStack();
        display->a_hidl_a_zvttvfapi_disp_get_frc_device_info(delivery()).isOk();
        EXPECT_EQ(delivered, once);
        EXPECT_EQ(image, std::vector(numbers.begin(), numbers.begin() + 8));
        EXPECT_THAT(log.takeLines(),
                    ElementsAre(resultLine("a_hidl_a_zvttvfapi_disp_get_frc_device_info",
                                           "a_zvttvfapi_disp_get_frc_device_info" + result)));
        soilStack();
        display->a_hidl_a_zvttvfapi_disp_get_tcon_info(delivery()).isOk();
        EXPECT_EQ(delivered, once);
        numbers[42] = 1;  // a flag byte of 43 is true
        numbers[43] = 0;  // padding
        EXPECT_EQ(image, numbers);
        EXPECT_THAT(log.takeLines(),
                    ElementsAre(resultLine("a_hidl_a_zvttvfapi_disp_get_tcon_info",
                                           "a_hidl_a_zvttvfapi_disp_get_tcon_info" + result)));
        EXPECT_EQ(chip.takeCalls().size(), 6u);
    }
}

TEST_F(Display, ValuesArriveBitForBitWhateverTheStatusAndAreLoggedTwice) {
    for (const int32_t status : {0, -9}) {
        chip.on(a_zvttvfapi_disp_get_lvds_ssc, [&](unsigned char& enable, unsigned int& a, unsigned int& b) {
            EXPECT_EQ(enable + a + b, 0u);
            enable = 2, a = 0xFFFFFFFF, b = 7;
            return status;
        });
        chip.on(a_zvttvfapi_disp_get_pwm_range, [&](unsigned int& a, unsigned int& b) {
            EXPECT_EQ(a + b, 0u);
            a = 5, b = 0x80000000;
            return status;
        });
        const std::string result = std::to_string(status);
        display->a_hidl_a_zvttvfapi_disp_get_lvds_ssc(delivery()).isOk();
        EXPECT_THAT(delivered, ElementsAre(ElementsAre(true, -1, 7, status)));
        EXPECT_THAT(log.takeLines(),
                    ElementsAre(resultLine("a_hidl_a_zvttvfapi_disp_get_lvds_ssc",
                                           "a_zvttvfapi_disp_get_lvds_ssc " + result + "[2][-1][7][-1][7]")));
        display->a_hidl_a_zvttvfapi_disp_get_pwm_range(delivery()).isOk();
        EXPECT_THAT(delivered, ElementsAre(ElementsAre(5, INT32_MIN, status)));
        EXPECT_THAT(log.takeLines(),
                    ElementsAre(resultLine("a_hidl_a_zvttvfapi_disp_get_pwm_range",
                                           "a_hidl_a_zvttvfapi_disp_get_pwm_range " + result +
                                                   "[5][-2147483648][5][-2147483648]")));
    }
}

TEST_F(Display, GettersDeliverNothingSilentlyWhileTheLibraryIsNotReady) {
    chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
    display->a_hidl_a_zvttvfapi_disp_get_pq_range(delivery()).isOk();
    EXPECT_THAT(delivered, ElementsAre(ElementsAre(-5)));
    EXPECT_EQ(image, std::vector<uint8_t>(24));
    display->a_hidl_a_zvttvfapi_disp_get_tcon_info(delivery()).isOk();
    EXPECT_THAT(delivered, ElementsAre(ElementsAre(-5)));
    EXPECT_EQ(image, std::vector<uint8_t>(44));
    display->a_hidl_a_zvttvfapi_disp_get_frc_device_info(delivery()).isOk();
    EXPECT_THAT(delivered, ElementsAre(ElementsAre(-5)));
    EXPECT_EQ(image, std::vector<uint8_t>(8));
    display->a_hidl_a_zvttvfapi_disp_get_lvds_ssc(delivery()).isOk();
    EXPECT_THAT(delivered, ElementsAre(ElementsAre(false, 0, 0, -5)));
    display->a_hidl_a_zvttvfapi_disp_get_pwm_range(delivery()).isOk();
    EXPECT_THAT(delivered, ElementsAre(ElementsAre(0, 0, -5)));
    EXPECT_TRUE(bool{display->a_hidl_a_zvttvfapi_disp_get_frc_connect_status()});
    EXPECT_EQ(chip.takeCalls(), std::vector<std::string>(6, kGuard));
    EXPECT_THAT(log.takeLines(), IsEmpty());
}

TEST_F(Display, TheConverterIsConnectedWhenTheLowByteSaysSo) {
    for (const auto& [answer, connected] : {std::pair{0, false}, {1, true}, {0x80, true}, {0x100, false}}) {
        chip.returns(a_zvttvfapi_disp_get_frc_connect_status, answer);
        EXPECT_EQ(bool{display->a_hidl_a_zvttvfapi_disp_get_frc_connect_status()}, connected) << answer;
    }
}

TEST_F(Display, WindowsAndKindsBeyondTheLastBecomeTheLast) {
    const auto version = [&](int window, int type) {
        chip.takeCalls();
        display->a_hidl_a_zvttvfapi_disp_get_pq_version(static_cast<ZvtTvFApiVideoWin>(window),
                                                        static_cast<ZvtTvFApiPqType>(type),
                                                        [](const hidl_string&, int32_t) {})
                .isOk();
        return chip.takeCalls().back();
    };
    for (int value = 0; value < 256; ++value) {
        const std::string window = std::to_string(std::min(value, 3));
        const std::string type = std::to_string(std::min(255 - value, 7));
        EXPECT_EQ(version(value, 255 - value),
                  "a_zvttvfapi_disp_get_pq_version(128, *, " + window + ", " + type + ")");
    }
}

TEST_F(Display, AVersionEndsAtItsFirstNulOrTheBuffersEnd) {
    struct {
        size_t written;
        int32_t ready;
        int32_t status;
    } const rows[] = {{0, 0, 0}, {127, 0, -9}, {128, 0, 0}, {0, -5, -5}};
    for (const auto& row : rows) {
        chip.returns(a_zvttvfapi_common_get_fapi_status, row.ready);
        chip.on(a_zvttvfapi_disp_get_pq_version, [&](unsigned int size, char* text, auto...) {
            EXPECT_TRUE(std::all_of(text, text + size, [](char byte) { return byte == 0; }));
            std::fill_n(text, row.written, 'v');
            return row.status;
        });
        int count = 0;
        display->a_hidl_a_zvttvfapi_disp_get_pq_version(ZvtTvFApiVideoWin::MAIN, ZvtTvFApiPqType::COLOR,
                                                        [&](const hidl_string& text, int32_t status) {
                                                            EXPECT_EQ(std::string(text.c_str(), text.size()),
                                                                      std::string(row.written, 'v'));
                                                            EXPECT_EQ(status, row.status);
                                                            EXPECT_THAT(log.takeLines(), IsEmpty());
                                                            ++count;
                                                        })
                .isOk();
        EXPECT_EQ(count, 1);
        std::vector<std::string> lines;
        if (row.ready == 0) {
            lines.push_back(resultLine("a_hidl_a_zvttvfapi_disp_get_pq_version",
                                       "a_zvttvfapi_disp_get_pq_version " + std::to_string(row.status)));
        }
        EXPECT_EQ(log.takeLines(), lines);
    }
}

TEST_F(Display, AParameterRecordIsPassedOnlyInItsStatedSize) {
    const std::string method = "a_hidl_a_zvttvfapi_disp_set_picture_param_struct";
    struct {
        uint32_t length;
        uint32_t size;
        int32_t ready;
        int refused;  // the allocation of this number
        int32_t status;
        std::vector<std::string> lines;
    } const rows[] = {
            {3, 3, 0, 0, -77, {}},
            {0, 0, 0, 0, -1, {resultLine(method, "invaild Arguments")}},
            {2, 0, 0, 0, -1, {resultLine(method, "invaild Arguments")}},
            {16, 12, 0, 0, -1, {resultLine(method, "invaild Arguments [16][12]")}},
            {0, 12, 0, 0, -1, {resultLine(method, "invaild Arguments [0][12]")}},
            {3, 3, 0, 1, -1, {}},
            {16, 12, -5, 0, -5, {}},
    };
    chip.on(a_zvttvfapi_disp_set_picture_param_struct, [](unsigned int, unsigned int size, void* data) {
        const auto* const bytes = static_cast<const uint8_t*>(data);
        EXPECT_THAT(std::vector(bytes, bytes + size), ElementsAre(9, 0, 8));
        return -77;
    });
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.length) + " " + std::to_string(row.size));
        chip.returns(a_zvttvfapi_common_get_fapi_status, row.ready);
        hidl_vec<uint8_t> vecData = {9, 0, 8};
        vecData.resize(row.length);
        const FailingAllocation allocation(row.refused);
        const Return<int32_t> status =
                display->a_hidl_a_zvttvfapi_disp_set_picture_param_struct(70000, vecData, row.size);
        EXPECT_EQ(int32_t{status}, row.status);
        EXPECT_EQ(log.takeLines(), row.lines);
        std::vector<std::string> calls = {kGuard};
        if (row.status == -77) {
            calls.push_back("a_zvttvfapi_disp_set_picture_param_struct(70000, 3, *)");
        }
        EXPECT_EQ(chip.takeCalls(), calls);
    }
}

TEST_F(Display, GammaTablesAreCountedIn16BitsAndEachRefusalHasItsMessage) {
    const std::string method = "a_hidl_a_zvttvfapi_disp_set_gamma_curve";
    struct {
        size_t red, green, blue;
        int refused;  // the allocation of this number
        int32_t result;
        int32_t status;
        const char* last;  // line
        size_t refusedBytes;
    } const rows[] = {
            {256, 256, 256, 0, 0, 0, "D a_hidl_a_zvttvfapi_disp_set_gamma_curve OK!\n", 0},
            {1, 65535, 65537, 0, 33, 33, "E a_hidl_a_zvttvfapi_disp_set_gamma_curve Fail!\n", 0},
            {0, 256, 256, 1, 0, -2, "E Invalid Gamma Table Size.\n", 0},
            {256, 65536, 256, 1, 0, -2, "E Invalid Gamma Table Size.\n", 0},
            {256, 256, 0, 1, 0, -2, "E Invalid Gamma Table Size.\n", 0},
            {65546, 20, 30, 1, 0, -4, "E Allocate pu16RedGammaData failed.\n", 20},
            {10, 65556, 30, 2, 0, -4, "E Allocate pu16GreenGammaData failed.\n", 40},
            {10, 20, 65566, 3, 0, -4, "E Allocate pu16BlueGammaData failed.\n", 60},
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
            EXPECT_TRUE(std::equal(entries, entries + uint16_t(source.size()), source.begin()));
        };
        chip.on(a_zvttvfapi_disp_set_gamma_curve,
                [&](const unsigned short* red, const unsigned short* green, const unsigned short* blue) {
                    expectEntries(red, vecRed), expectEntries(green, vecGreen), expectEntries(blue, vecBlue);
                    return row.result;
                });
        const FailingAllocation allocation(row.refused);
        const Return<int32_t> status =
                display->a_hidl_a_zvttvfapi_disp_set_gamma_curve(vecRed, vecGreen, vecBlue);
        EXPECT_EQ(int32_t{status}, row.status);
        EXPECT_EQ(allocation.refusedBytes(), row.refusedBytes);
        EXPECT_EQ(chip.takeCalls().size(), row.status == row.result ? 2u : 1u);
        const auto line = [&](const std::string& text) {
            return text.substr(0, 2) + kTag + "<" + method + ":#> " + text.substr(2);
        };
        const auto size = [](size_t entries) { return std::to_string(uint16_t(entries)) + ".\n"; };
        EXPECT_THAT(log.takeLines(),
                    ElementsAre(line("D a_hidl_a_zvttvfapi_disp_set_gamma_curve()...\n"),
                                line("I Red Gamma Data Size = " + size(row.red)),
                                line("I Green Gamma Data Size = " + size(row.green)),
                                line("I Blue Gamma Data Size = " + size(row.blue)), line(row.last)));
    }
    chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
    EXPECT_EQ(int32_t{display->a_hidl_a_zvttvfapi_disp_set_gamma_curve({}, {}, {})}, -5);
    EXPECT_THAT(log.takeLines(), IsEmpty());
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
