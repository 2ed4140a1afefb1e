#include "adapters/inputsource/ZvtTvFApiInputSource.h"

#include <functional>
#include <string>
#include <vector>

#include "chiplayer/inpsrc.h"
#include "tests/adapters/Forwarding.h"
#include "tests/fake/DeviceLog.h"
#include "tests/support/SoiledStack.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Lines = std::vector<std::string>;

class InputSource : public ::testing::Test {
  protected:
    // Takes a getter's results; what was logged up to then is kept apart.
    auto delivery() {
        return [this](const auto& value, int32_t s32Status) {
            before = log.takeLines();
            if constexpr (std::is_class_v<std::decay_t<decltype(value)>>) {
                image = imageOf(value);
            } else {
                number = value;
            }
            status = s32Status;
            ++count;
        };
    }

    // "D text" as the line that a_hidl_zvttvfapi_inpsrc_<name> logs.
    static Lines linesOf(const std::string& name, const Lines& texts) {
        const std::string method = "a_hidl_zvttvfapi_inpsrc_" + name;
        Lines lines;
        for (const std::string& text : texts) {
            lines.push_back(text.substr(0, 2) + "ZvtTvFApiInputSource(server): <" + method + ":#> " +
                            text.substr(2));
        }
        return lines;
    }

    FakeChipLayer chip;
    DeviceLog log;
    ::android::sp<ZvtTvFApiInputSource> source = new ZvtTvFApiInputSource();
    Lines before;
    std::vector<uint8_t> image;
    int64_t number = -1;
    int32_t status = 0;
    int count = 0;
};

TEST_F(InputSource, SettersPassArgumentsAndStatusOnAndLogBehindTheCall) {
    // The lines of one call with each of expectForwarded()'s statuses, which stands at the $.
    const auto perStatus = [](const std::string& name, const Lines& texts) {
        Lines lines;
        for (const char* passedOn : {"0", "12345", "-2", "-5"}) {
            for (std::string text : texts) {
                const size_t place = text.find('$');
                lines.push_back(place == std::string::npos ? text : text.replace(place, 1, passedOn));
            }
        }
        return linesOf(name, lines);
    };
    const std::string entry = "E a_hidl_zvttvfapi_inpsrc_auto_gain_offset u32DevType -1";
    expectForwarded(chip, a_zvttvfapi_inpsrc_auto_gain_offset,
                    "a_zvttvfapi_inpsrc_auto_gain_offset(4294967295)",
                    [&] { return source->a_hidl_zvttvfapi_inpsrc_auto_gain_offset(-1); });
    Lines lines = perStatus("auto_gain_offset", {entry, "E a_hidl_zvttvfapi_inpsrc_auto_gain_offset: $"});
    lines.push_back(lines.front());  // while the library is not ready, too
    EXPECT_EQ(log.takeLines(), lines);
    expectForwarded(chip, a_zvttvfapi_inpsrc_set_adc_phase,
                    "a_zvttvfapi_inpsrc_set_adc_phase(4000000000, 2, 3, 4)",
                    [&] { return source->a_hidl_zvttvfapi_inpsrc_set_adc_phase(4000000000, 2, 3, 4); });
    EXPECT_EQ(log.takeLines(), perStatus("set_adc_phase", {"E a_hidl_zvttvfapi_inpsrc_set_AdcPhase $"}));
    expectForwarded(chip, a_zvttvfapi_inpsrc_set_adc_gain_offset,
                    "a_zvttvfapi_inpsrc_set_adc_gain_offset(1, 2, 3, 4, 5, 6, 4000000000)", [&] {
                        return source->a_hidl_zvttvfapi_inpsrc_set_adc_gain_offset(1, 2, 3, 4, 5, 6,
                                                                                   4000000000);
                    });
    EXPECT_EQ(log.takeLines(),
              perStatus("set_adc_gain_offset", {"E a_hidl_zvttvfapi_inpsrc_SetAdcGainOffset $"}));
    expectForwarded(chip, a_zvttvfapi_inpsrc_set_factory_vd_para,
                    "a_zvttvfapi_inpsrc_set_factory_vd_para(1, 4000000000)",
                    [&] { return source->a_hidl_zvttvfapi_inpsrc_set_factory_vd_para(1, 4000000000); });
    EXPECT_EQ(log.takeLines(), perStatus("set_factory_vd_para", {"E ZvtTvFApiIntputSource s32Ret $"}));
    expectForwarded(chip, a_zvttvfapi_inpsrc_vif_init, "a_zvttvfapi_inpsrc_vif_init()",
                    [&] { return source->a_hidl_zvttvfapi_inpsrc_vif_init(); });
    const std::string fail = "E a_zvttvfapi_inpsrc_vif_init Fail!\n";
    EXPECT_EQ(log.takeLines(),
              linesOf("vif_init", {"D a_zvttvfapi_inpsrc_vif_init OK!\n", fail, fail, fail}));
}

TEST_F(InputSource, GettersDeliverTheUnsignedValueWhateverTheStatusAndLogAroundTheDelivery) {
    const auto writes = [](auto value) {
        return [value](auto* cell) {
            EXPECT_EQ(*cell, 0);
            *cell = value;
            return 7;
        };
    };
    const auto expectDelivered = [this](const std::string& name, const std::string& arguments, int64_t value,
                                        const auto& call, const Lines& linesBefore, const Lines& linesAfter) {
        SCOPED_TRACE(name);
        count = 0;
        EXPECT_TRUE(call().isOk());
        EXPECT_EQ(number, value);
        EXPECT_EQ(status, 7);
        EXPECT_THAT(chip.takeCalls(),
                    ElementsAre(kGuard, "a_zvttvfapi_inpsrc_" + name + "(" + arguments + ")"));
        EXPECT_EQ(before, linesOf(name, linesBefore));
        EXPECT_EQ(log.takeLines(), linesOf(name, linesAfter));
        EXPECT_EQ(count, 1);
        chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
        EXPECT_TRUE(call().isOk());
        EXPECT_EQ(number, 0);
        EXPECT_EQ(status, -5);
        EXPECT_THAT(chip.takeCalls(), ElementsAre(kGuard));
        EXPECT_THAT(before, IsEmpty());
        EXPECT_THAT(log.takeLines(), IsEmpty());
        EXPECT_EQ(count, 2);
        chip.returns(a_zvttvfapi_common_get_fapi_status, 0);
    };
    chip.on(a_zvttvfapi_inpsrc_get_video_standard, writes(uint8_t{200}));
    expectDelivered("get_video_standard", "*", 200,
                    [&] { return source->a_hidl_zvttvfapi_inpsrc_get_video_standard(delivery()); },
                    {"E ZvtTvFApiIntputSource s32Ret 7"}, {});
    chip.on(a_zvttvfapi_inpsrc_check_vd_signal_locked, writes(uint8_t{201}));
    expectDelivered("check_vd_signal_locked", "*", 201,
                    [&] { return source->a_hidl_zvttvfapi_inpsrc_check_vd_signal_locked(delivery()); },
                    {"D ZvtTvFApiIntputSource s32Ret 7", "D u8LockStatus 201"}, {});
    chip.on(a_zvttvfapi_inpsrc_get_factory_vd_para,
            [&](unsigned int, unsigned int* cell) { return writes(4100000000U)(cell); });
    expectDelivered(
            "get_factory_vd_para", "4000000000, *", 4100000000,
            [&] { return source->a_hidl_zvttvfapi_inpsrc_get_factory_vd_para(4000000000, delivery()); },
            {"E ZvtTvFApiIntputSource s32Ret 7", "E u32VdParam -194967296"}, {});
    chip.on(a_zvttvfapi_inpsrc_get_current_input_source, writes(uint8_t{202}));
    expectDelivered("get_current_input_source", "*", 202,
                    [&] { return source->a_hidl_zvttvfapi_inpsrc_get_current_input_source(delivery()); },
                    {"E getCurrentInputSource ret = 7, u8InputSource 202"}, {});
    chip.on(a_zvttvfapi_inpsrc_get_current_input_source_type, writes(uint8_t{203}));
    expectDelivered("get_current_input_source_type", "*", 203,
                    [&] { return source->a_hidl_zvttvfapi_inpsrc_get_current_input_source_type(delivery()); },
                    {"E getCurrentInputSourceType ret = 7, u8InputSource 203"}, {});
    chip.on(a_zvttvfapi_inpsrc_get_ber, writes(-2000000000));
    expectDelivered("get_ber", "*", -2000000000,
                    [&] { return source->a_hidl_zvttvfapi_inpsrc_get_ber(delivery()); },
                    {"E (hild)s32Ber = -2000000000"}, {"E a_zvttvfapi_inpsrc_get_ber 7"});
}

TEST_F(InputSource, RecordsArriveWholeWhateverTheStatusAndWithoutForeignBytes) {
    const auto fills = [](auto& record) {
        for (const uint8_t byte : imageOf(record)) {
            EXPECT_EQ(byte, 0);
        }
        ::number(record);
        return 7;
    };
    uint8_t flag = 0;
    chip.on(a_zvttvfapi_inpsrc_get_adc_phase, [&](unsigned int, auto* record) { return fills(*record); });
    chip.on(a_zvttvfapi_inpsrc_get_adc_gain_offset,
            [&](unsigned int, auto* record) { return fills(*record); });
    chip.on(a_zvttvfapi_inpsrc_get_input_timing, [&](auto& record) {
        const int32_t result = fills(record);
        record.u8Interlaced = flag;
        return result;
    });
    std::vector<uint8_t> numbered(24);
    std::iota(numbered.begin(), numbered.end(), uint8_t{1});
    const auto first = [&](size_t size) { return std::vector(numbered.begin(), numbered.begin() + size); };

    soilStack();
    source->a_hidl_zvttvfapi_inpsrc_get_adc_phase(4000000000, delivery()).isOk();
    EXPECT_EQ(image, first(12));
    EXPECT_EQ(before, linesOf("get_adc_phase", {"E ZvtTvFApiInputsource get adc phase s32Ret 7"}));
    soilStack();
    source->a_hidl_zvttvfapi_inpsrc_get_adc_gain_offset(4000000000, delivery()).isOk();
    EXPECT_EQ(image, first(24));
    EXPECT_EQ(before,
              linesOf("get_adc_gain_offset", {"E ZvtTvFApiIntputSource get adc gain offset s32Ret 7"}));
    EXPECT_EQ(chip.takeCalls(), (Lines{kGuard, "a_zvttvfapi_inpsrc_get_adc_phase(4000000000, *)", kGuard,
                                       "a_zvttvfapi_inpsrc_get_adc_gain_offset(4000000000, *)"}));
    for (const int byte : {0, 1, 5, 255}) {
        flag = static_cast<uint8_t>(byte);
        soilStack();
        source->a_hidl_zvttvfapi_inpsrc_get_input_timing(delivery()).isOk();
        std::vector<uint8_t> expected = first(12);
        expected.push_back(byte != 0);
        expected.resize(16);
        EXPECT_EQ(image, expected);
        EXPECT_THAT(before, IsEmpty());
        EXPECT_EQ(log.takeLines(), linesOf("get_input_timing", {"E a_zvttvfapi_inpsrc_get_input_timing 7"}));
    }
    EXPECT_EQ(status, 7);
    EXPECT_EQ(count, 6);

    chip.takeCalls();
    chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
    const std::function<Return<void>()> calls[] = {
            [&] { return source->a_hidl_zvttvfapi_inpsrc_get_adc_phase(1, delivery()); },
            [&] { return source->a_hidl_zvttvfapi_inpsrc_get_adc_gain_offset(1, delivery()); },
            [&] { return source->a_hidl_zvttvfapi_inpsrc_get_input_timing(delivery()); },
    };
    for (const auto& call : calls) {
        soilStack();
        EXPECT_TRUE(call().isOk());
        EXPECT_EQ(image, std::vector<uint8_t>(image.size()));
        EXPECT_EQ(status, -5);
    }
    EXPECT_EQ(count, 9);
    EXPECT_EQ(chip.takeCalls(), Lines(3, kGuard));
    EXPECT_THAT(log.takeLines(), IsEmpty());
}

TEST_F(InputSource, DemodulatorInformationFailsWithFourEmptyTextsAndWithoutACall) {
    for (const int32_t readiness : {0, -5}) {
        chip.returns(a_zvttvfapi_common_get_fapi_status, readiness);
        count = 0;
        source->a_hidl_zvttvfapi_inpsrc_get_demod_info([&](const auto& info, int32_t s32Status) {
                  EXPECT_EQ(info, ZvtTvFApiDemodInfoParam_t());
                  status = s32Status, ++count;
              }).isOk();
        EXPECT_EQ(count, 1);
        EXPECT_EQ(status, readiness == 0 ? -1 : -5);
        EXPECT_EQ(chip.takeCalls(), Lines{kGuard});
        const Lines mismatch = {
                "E [a_hidl_zvttvfapi_inpsrc_get_demod_info(#)]"
                "FAIL: types & a_zvttvfapi_types are mismatch! Please check it!\n"};
        EXPECT_EQ(log.takeLines(), linesOf("get_demod_info", readiness == 0 ? mismatch : Lines()));
    }
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
