#include "adapters/information/ZvtTvFApiInformation.h"

#include <algorithm>

#include "chiplayer/info.h"
#include "tests/adapters/Adapter.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

class Information : public Adapter<ZvtTvFApiInformation> {
  protected:
    Information() : Adapter("ZvtTvFApiInformation", "info") {}
};

TEST_F(Information, PassesArgumentsOnAndTheStatusBackAndWritesItsEntryTraceReadyOrNot) {
    const auto row = [](auto call, const std::string& chipCall, const std::string& nothing,
                        const std::string& name) {
        const std::string trace = " D a_hidl_zvttvfapi_info_" + name;
        return Row{call, chipCall, nothing + "-7", trace, nothing + "-5", true, trace};
    };
    expectRows({
            row(METHOD(a_hidl_zvttvfapi_info_get_ini_para, "file", "", results()),
                "get_ini_para(\"file\", \"\", *, 2048)", "'' ", "get_ini_para"),
            row(METHOD(a_hidl_zvttvfapi_info_set_ini_para, "file", hidl_string("key\0cut", 7), "value"),
                "set_ini_para(\"file\", \"key\", \"value\")", "", "set_ini_para"),
            row(METHOD(a_hidl_zvttvfapi_info_get_ip_enable_status, 4000000000, results()),
                "get_ip_enable_status(4000000000, *)", "0 ", "get_ip_enable_status"),
            row(METHOD(a_hidl_zvttvfapi_info_get_fapi_sw_version, results()),
                "a_zvttvfapi_common_get_fapi_version(*, 128)", "'' ", "get_fapi_sw_version"),
    });
}

TEST_F(Information, DeliversTextsUpToOneByteLessThanTheBufferWhateverTheStatus) {
    int32_t result = 0;
    // Writes no terminator of its own.
    const auto fill = [&](auto* text, unsigned int size, size_t count) {
        EXPECT_TRUE(std::all_of(text, text + size, [](auto byte) { return byte == 0; }));
        std::fill_n(text, count, 'x');
        return result;
    };
    for (const auto& [below, status] : {std::pair{127, 0}, {1, 0}, {0, 0}, {1, -9}}) {
        result = status;
        chip.on(a_zvttvfapi_info_get_ini_para, [&, below = below](auto, auto, auto* text, auto size) {
            return fill(text, size, size - below);
        });
        chip.on(a_zvttvfapi_common_get_fapi_version,
                [&, below = below](auto* text, auto size) { return fill(text, size, size - below); });
        const auto expected = [&, below = below](size_t size) {
            return show(hidl_string(std::string(size - std::max(below, 1), 'x'))) + ' ' + show(result);
        };
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_info_get_ini_para, "", "", results()).answer, expected(2048));
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_info_get_fapi_sw_version, results()).answer, expected(128));
    }
}

TEST_F(Information, AnyNonZeroEnableByteIsTrueWhateverTheStatus) {
    for (const int byte : {0, 1, 2, 0x80, 0xFF}) {
        chip.on(a_zvttvfapi_info_get_ip_enable_status, [&](unsigned int, unsigned char* pu8Enable) {
            EXPECT_EQ(*pu8Enable, 0);
            *pu8Enable = static_cast<unsigned char>(byte);
            return -3;
        });
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_info_get_ip_enable_status, 1, results()).answer,
                  byte == 0 ? "0 -3" : "1 -3");
    }
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
