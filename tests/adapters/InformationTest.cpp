#include "adapters/information/ZvtTvFApiInformation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "chiplayer/common.h"
#include "chiplayer/info.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FakeChipLayer.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

using ::testing::ElementsAre;

// What a method has delivered, and how often.
struct Delivered {
    std::string strText;
    bool bFlag = false;
    int32_t s32Status = 0;
    int count = 0;

    auto text() {
        return [this](const hidl_string& text, int32_t status) {
            strText = std::string(text.c_str(), text.size()), s32Status = status, ++count;
        };
    }
    auto flag() {
        return [this](bool flag, int32_t status) { bFlag = flag, s32Status = status, ++count; };
    }
};

class Information : public ::testing::Test {
  protected:
    FakeChipLayer chip;
    ::android::sp<ZvtTvFApiInformation> information = new ZvtTvFApiInformation();
};

TEST_F(Information, PassesItsArgumentsOnAndTheLibrarysStatusBack) {
    for (const int32_t status : {0, 1, -1, -2, 12345}) {
        chip.returns(a_zvttvfapi_info_get_ini_para, status);
        chip.returns(a_zvttvfapi_info_set_ini_para, status);
        chip.returns(a_zvttvfapi_info_get_ip_enable_status, status);
        chip.returns(a_zvttvfapi_common_get_fapi_version, status);
        Delivered ini, ip, version;
        EXPECT_TRUE(information->a_hidl_zvttvfapi_info_get_ini_para("file", "", ini.text()).isOk());
        const Return<int32_t> set =
                information->a_hidl_zvttvfapi_info_set_ini_para("file", hidl_string("key\0cut", 7), "value");
        EXPECT_TRUE(information->a_hidl_zvttvfapi_info_get_ip_enable_status(4000000000, ip.flag()).isOk());
        EXPECT_TRUE(information->a_hidl_zvttvfapi_info_get_fapi_sw_version(version.text()).isOk());
        EXPECT_THAT(chip.takeCalls(),
                    ElementsAre("a_zvttvfapi_common_get_fapi_status()",
                                "a_zvttvfapi_info_get_ini_para(\"file\", \"\", *, 2048)",
                                "a_zvttvfapi_common_get_fapi_status()",
                                "a_zvttvfapi_info_set_ini_para(\"file\", \"key\", \"value\")",
                                "a_zvttvfapi_common_get_fapi_status()",
                                "a_zvttvfapi_info_get_ip_enable_status(4000000000, *)",
                                "a_zvttvfapi_common_get_fapi_status()",
                                "a_zvttvfapi_common_get_fapi_version(*, 128)"));
        EXPECT_THAT((std::vector{ini.s32Status, int32_t{set}, ip.s32Status, version.s32Status}),
                    ElementsAre(status, status, status, status));
        EXPECT_THAT((std::vector{ini.count, ip.count, version.count}), ElementsAre(1, 1, 1));
        EXPECT_EQ(ini.strText + version.strText, "") << "nothing was written";
        EXPECT_FALSE(ip.bFlag) << "nothing was written";
    }
}

TEST_F(Information, DeliversNothingAndMinusFiveWhileTheLibraryIsNotReady) {
    chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
    Delivered ini, ip, version;
    ip.bFlag = true;
    information->a_hidl_zvttvfapi_info_get_ini_para("file", "key", ini.text()).isOk();
    const Return<int32_t> set = information->a_hidl_zvttvfapi_info_set_ini_para("file", "key", "value");
    information->a_hidl_zvttvfapi_info_get_ip_enable_status(1, ip.flag()).isOk();
    information->a_hidl_zvttvfapi_info_get_fapi_sw_version(version.text()).isOk();
    EXPECT_EQ(chip.takeCalls(), std::vector<std::string>(4, "a_zvttvfapi_common_get_fapi_status()"));
    EXPECT_THAT((std::vector{ini.s32Status, int32_t{set}, ip.s32Status, version.s32Status}),
                ElementsAre(-5, -5, -5, -5));
    EXPECT_THAT((std::vector{ini.count, ip.count, version.count}), ElementsAre(1, 1, 1));
    EXPECT_EQ(ini.strText + version.strText, "");
    EXPECT_FALSE(ip.bFlag);
}

TEST_F(Information, DeliversTextsUpToOneByteLessThanTheBufferWhateverTheStatus) {
    struct {
        size_t ini;
        size_t version;
        int32_t status;
    } const rows[] = {{1, 1, 0}, {2047, 127, 0}, {2048, 128, 0}, {2047, 127, -9}};
    for (const auto& row : rows) {
        // Writes no terminator of its own.
        chip.on(a_zvttvfapi_info_get_ini_para, [&](const unsigned char*, const unsigned char*,
                                                   unsigned char* value, unsigned int size) {
            EXPECT_TRUE(std::all_of(value, value + size, [](unsigned char byte) { return byte == 0; }));
            std::fill_n(value, row.ini, 'i');
            return row.status;
        });
        chip.on(a_zvttvfapi_common_get_fapi_version, [&](char* text, unsigned int size) {
            EXPECT_TRUE(std::all_of(text, text + size, [](char byte) { return byte == 0; }));
            std::fill_n(text, row.version, 'v');
            return row.status;
        });
        Delivered ini, version;
        information->a_hidl_zvttvfapi_info_get_ini_para("file", "key", ini.text()).isOk();
        information->a_hidl_zvttvfapi_info_get_fapi_sw_version(version.text()).isOk();
        EXPECT_EQ(ini.strText, std::string(std::min<size_t>(row.ini, 2047), 'i'));
        EXPECT_EQ(version.strText, std::string(std::min<size_t>(row.version, 127), 'v'));
        EXPECT_THAT((std::vector{ini.s32Status, version.s32Status}), ElementsAre(row.status, row.status));
    }
}

TEST_F(Information, AnyNonZeroEnableByteIsTrueWhateverTheStatus) {
    for (const int byte : {0, 1, 2, 0x80, 0xFF}) {
        for (const int32_t status : {0, -3}) {
            chip.on(a_zvttvfapi_info_get_ip_enable_status, [&](unsigned int, unsigned char* pu8Enable) {
                EXPECT_EQ(*pu8Enable, 0);
                *pu8Enable = static_cast<unsigned char>(byte);
                return status;
            });
            Delivered ip;
            information->a_hidl_zvttvfapi_info_get_ip_enable_status(1, ip.flag()).isOk();
            EXPECT_EQ(ip.bFlag, byte != 0);
            EXPECT_EQ(ip.s32Status, status);
        }
    }
}

TEST_F(Information, WritesItsEntryTraceReadyOrNotAndNothingElse) {
    const auto callAll = [&] {
        Delivered any;
        information->a_hidl_zvttvfapi_info_get_ini_para("", "", any.text()).isOk();
        information->a_hidl_zvttvfapi_info_set_ini_para("", "", "").isOk();
        information->a_hidl_zvttvfapi_info_get_ip_enable_status(0, any.flag()).isOk();
        information->a_hidl_zvttvfapi_info_get_fapi_sw_version(any.text()).isOk();
    };
    const auto trace = [](const std::string& name) {
        return "D ZvtTvFApiInformation(server): <" + name + ":#> " + name;
    };
    chip.returns(a_zvttvfapi_info_set_ini_para, -1);
    for (const int32_t readiness : {-5, 0}) {
        chip.returns(a_zvttvfapi_common_get_fapi_status, readiness);
        DeviceLog log(1);
        callAll();
        EXPECT_THAT(log.takeLines(), ElementsAre(trace("a_hidl_zvttvfapi_info_get_ini_para"),
                                                 trace("a_hidl_zvttvfapi_info_set_ini_para"),
                                                 trace("a_hidl_zvttvfapi_info_get_ip_enable_status"),
                                                 trace("a_hidl_zvttvfapi_info_get_fapi_sw_version")));
    }
    DeviceLog silent(0);
    callAll();
    EXPECT_THAT(silent.takeLines(), ElementsAre());
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
