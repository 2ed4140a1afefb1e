#include "adapters/inputsource/ZvtTvFApiInputSource.h"

#include "chiplayer/inpsrc.h"
#include "tests/adapters/Adapter.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

class InputSource : public Adapter<ZvtTvFApiInputSource> {
  protected:
    InputSource() : Adapter("ZvtTvFApiInputSource", "inpsrc") {}

    // Lets a function find its output, the last argument, zeroed and fill it.
    template <typename... Arguments, typename Fill>
    void writes(int32_t (*function)(Arguments...), Fill fill) {
        chip.on(function, [fill](auto&&... arguments) {
            auto& output = std::get<sizeof...(arguments) - 1>(std::tie(arguments...));
            const auto take = [&](auto& cell) {
                EXPECT_EQ(imageOf(cell), Bytes(sizeof(cell)));
                fill(cell);
                return -7;
            };
            if constexpr (std::is_pointer_v<std::decay_t<decltype(output)>>) {
                return take(*output);
            } else {
                return take(output);
            }
        });
    }
    static auto value(int64_t value) {
        return [value](auto& cell) { cell = static_cast<std::decay_t<decltype(cell)>>(value); };
    }
};

TEST_F(InputSource, PassesArgumentsOnDeliversWhateverTheStatusAndLogsAroundTheDelivery) {
    const auto fill = [](auto& record) { number(record); };
    writes(a_zvttvfapi_inpsrc_get_video_standard, value(200));
    writes(a_zvttvfapi_inpsrc_check_vd_signal_locked, value(201));
    writes(a_zvttvfapi_inpsrc_get_factory_vd_para, value(4100000000));
    writes(a_zvttvfapi_inpsrc_get_current_input_source, value(202));
    writes(a_zvttvfapi_inpsrc_get_current_input_source_type, value(203));
    writes(a_zvttvfapi_inpsrc_get_ber, value(-2000000000));
    writes(a_zvttvfapi_inpsrc_get_adc_phase, fill);
    writes(a_zvttvfapi_inpsrc_get_adc_gain_offset, fill);
    const std::string entry = " E a_hidl_zvttvfapi_inpsrc_auto_gain_offset u32DevType -1";
    const std::string status = " E ZvtTvFApiIntputSource s32Ret -7";
    expectRows({
            {METHOD(a_hidl_zvttvfapi_inpsrc_auto_gain_offset, -1), "auto_gain_offset(4294967295)", "-7",
             entry + " E a_hidl_zvttvfapi_inpsrc_auto_gain_offset: -7", "-5", true, entry},
            {METHOD(a_hidl_zvttvfapi_inpsrc_set_adc_phase, 4000000000, 2, 3, 4),
             "set_adc_phase(4000000000, 2, 3, 4)", "-7", " E a_hidl_zvttvfapi_inpsrc_set_AdcPhase -7"},
            {METHOD(a_hidl_zvttvfapi_inpsrc_set_adc_gain_offset, 1, 2, 3, 4, 5, 6, 4000000000),
             "set_adc_gain_offset(1, 2, 3, 4, 5, 6, 4000000000)", "-7",
             " E a_hidl_zvttvfapi_inpsrc_SetAdcGainOffset -7"},
            {METHOD(a_hidl_zvttvfapi_inpsrc_set_factory_vd_para, 1, 4000000000),
             "set_factory_vd_para(1, 4000000000)", "-7", status},
            {METHOD(a_hidl_zvttvfapi_inpsrc_vif_init, ), "vif_init()", "-7",
             " E a_zvttvfapi_inpsrc_vif_init Fail!\n"},
            {METHOD(a_hidl_zvttvfapi_inpsrc_get_video_standard, results()), "get_video_standard(*)", "200 -7",
             status, "0 -5"},
            {METHOD(a_hidl_zvttvfapi_inpsrc_check_vd_signal_locked, results()), "check_vd_signal_locked(*)",
             "201 -7", " D ZvtTvFApiIntputSource s32Ret -7 D u8LockStatus 201", "0 -5"},
            {METHOD(a_hidl_zvttvfapi_inpsrc_get_factory_vd_para, 4000000000, results()),
             "get_factory_vd_para(4000000000, *)", "4100000000 -7", status + " E u32VdParam -194967296",
             "0 -5"},
            {METHOD(a_hidl_zvttvfapi_inpsrc_get_current_input_source, results()),
             "get_current_input_source(*)", "202 -7", " E getCurrentInputSource ret = -7, u8InputSource 202",
             "0 -5"},
            {METHOD(a_hidl_zvttvfapi_inpsrc_get_current_input_source_type, results()),
             "get_current_input_source_type(*)", "203 -7",
             " E getCurrentInputSourceType ret = -7, u8InputSource 203", "0 -5"},
            {METHOD(a_hidl_zvttvfapi_inpsrc_get_ber, results()), "get_ber(*)", "-2000000000 -7",
             " E (hild)s32Ber = -2000000000| E a_zvttvfapi_inpsrc_get_ber -7", "0 -5"},
            {METHOD(a_hidl_zvttvfapi_inpsrc_get_adc_phase, 4000000000, results()),
             "get_adc_phase(4000000000, *)", show(sequence(12)) + " -7",
             " E ZvtTvFApiInputsource get adc phase s32Ret -7", show(Bytes(12)) + " -5"},
            {METHOD(a_hidl_zvttvfapi_inpsrc_get_adc_gain_offset, 4000000000, results()),
             "get_adc_gain_offset(4000000000, *)", show(sequence(24)) + " -7",
             " E ZvtTvFApiIntputSource get adc gain offset s32Ret -7", show(Bytes(24)) + " -5"},
            {METHOD(a_hidl_zvttvfapi_inpsrc_get_demod_info, results()), "",
             show(ZvtTvFApiDemodInfoParam_t()) + " -1",
             " E [a_hidl_zvttvfapi_inpsrc_get_demod_info(#)]"
             "FAIL: types & a_zvttvfapi_types are mismatch! Please check it!\n",
             show(ZvtTvFApiDemodInfoParam_t()) + " -5"},
    });
    chip.returnsOtherwise(0);
    EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_inpsrc_vif_init, ).lines, " D a_zvttvfapi_inpsrc_vif_init OK!\n");
}

TEST_F(InputSource, AnyInterlacedByteButZeroIsTrue) {
    for (const uint8_t byte : {0, 1, 5, 255}) {
        writes(a_zvttvfapi_inpsrc_get_input_timing, [=](auto& stTiming) {
            number(stTiming);
            stTiming.u8Interlaced = byte;
        });
        Bytes expected = sequence(12);
        expected.push_back(byte != 0);
        expected.resize(16);
        expectRows({{METHOD(a_hidl_zvttvfapi_inpsrc_get_input_timing, results()), "get_input_timing({})",
                     show(expected) + " -7", "| E a_zvttvfapi_inpsrc_get_input_timing -7",
                     show(Bytes(16)) + " -5"}});
    }
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
