#include <zlib.h>

#include <condition_variable>
#include <mutex>

#include "tests/simulator/PanelFixture.h"

using namespace simulator;

namespace {

std::string image(uint32_t version, const std::string& payload) {
    std::string text = "VEXA";
    const auto sum =
            crc32(0, reinterpret_cast<const Bytef*>(payload.data()), static_cast<uInt>(payload.size()));
    for (const uint32_t word : {version, static_cast<uint32_t>(payload.size()), static_cast<uint32_t>(sum)}) {
        for (int i = 0; i < 4; ++i) {
            text += static_cast<char>(word >> (8 * i));
        }
    }
    return text + payload;
}

std::mutex sMutex;
std::condition_variable sRaised;
std::vector<std::string> sEvents;  // guarded by sMutex

using Object = const fapi_core::ZvtTvFApiEventCommonObject&;
int record(unsigned type, Object first, Object second, Object third, Object) {
    const std::lock_guard<std::mutex> lock(sMutex);
    sEvents.push_back(type == 0x40001 ? std::to_string(first.u32Value) + first.strValue + " " +
                                                std::to_string(second.u32Value) + second.strValue + " " +
                                                std::to_string(static_cast<int32_t>(third.u32Value))
                                      : std::to_string(type) + " " + std::to_string(first.u32Value));
    sRaised.notify_all();
    return 0;
}

bool raised(size_t count) {
    std::unique_lock<std::mutex> lock(sMutex);
    return sRaised.wait_for(lock, std::chrono::seconds(30), [=] { return sEvents.size() >= count; });
}

}  // namespace

class FrcDeviceTest : public PanelFixture {
  protected:
    void SetUp() override {
        PanelFixture::SetUp();
        setenv("ZVTTV_FRC_UPGRADE_MS", "0", 1);
        sEvents.clear();
        ASSERT_EQ(a_zvttvfapi_disp_reg_callback(record), 0);
        ASSERT_EQ(a_zvttvfapi_disp_init(), 0);
    }
    void TearDown() override {
        a_zvttvfapi_disp_deinit();
        ASSERT_EQ(a_zvttvfapi_disp_unreg_callback(), 0);
    }

    static int32_t upgrade(const std::string& content) {
        write(state() / "files/fw", content);
        return a_zvttvfapi_disp_upgrade_vexa_fw(bytes("/fw"));
    }
    /** Version and state. */
    static std::string info() {
        fapi_core::ZvtTvFApiDispExtFrcDeviceInfo info{};
        const int32_t status = a_zvttvfapi_disp_get_frc_device_info(&info);
        return status != 0 ? std::to_string(status)
                           : std::to_string(info.u32FwVersion) + " " + std::to_string(info.u8State);
    }
};

TEST_F(FrcDeviceTest, RunsTheNewFirmwareWhenItHasBeenWrittenAndAfterARestart) {
    ASSERT_EQ(upgrade(image(123, "firmware")), 0);
    ASSERT_TRUE(raised(14));
    std::vector<std::string> expected;
    for (int percent = 0; percent <= 100; percent += 10) {
        expected.push_back(std::to_string(percent) + "/fw 123running 0");
    }
    expected.insert(expected.end(), {"262146 0", "262146 1", "100/fw 123done 0"});
    EXPECT_EQ(sEvents, expected);
    EXPECT_EQ(info(), "123 0");
    EXPECT_NE(contentOf(state() / "settings/display.ini").find("[frc]\nfirmware = 123\n"), std::string::npos);
    EXPECT_EQ(a_zvttvfapi_disp_get_frc_connect_status(), 1);
}

TEST_F(FrcDeviceTest, SaysWhenTheNewVersionCannotBeKept) {
    write(state() / "settings/display.ini/not a file", "");
    ASSERT_EQ(upgrade(image(7, "firmware")), 0);
    ASSERT_TRUE(raised(14));
    EXPECT_EQ(sEvents.back(), "100/fw 7failed " + std::to_string(kBadFile));
    EXPECT_EQ(info(), "65536 0");
}

TEST_F(FrcDeviceTest, TakesOneUpgradeAtATimeAndForgetsItWhenTheModuleIsShutDown) {
    setenv("ZVTTV_FRC_UPGRADE_MS", "600000", 1);
    ASSERT_EQ(upgrade(image(9, "firmware")), 0);
    ASSERT_TRUE(raised(1));
    EXPECT_EQ(info(), "65536 1");
    EXPECT_EQ(upgrade(image(10, "firmware")), kBusy);
    ASSERT_EQ(a_zvttvfapi_disp_deinit(), 0);
    EXPECT_EQ(info(), "65536 0");
    ASSERT_EQ(a_zvttvfapi_disp_init(), 0);
    setenv("ZVTTV_FRC_UPGRADE_MS", "0", 1);
    ASSERT_EQ(upgrade(image(11, "firmware")), 0);
    ASSERT_TRUE(raised(15));
    EXPECT_EQ(info(), "11 0");
}

TEST_F(FrcDeviceTest, RefusesWhatIsNoImage) {
    const std::string good = image(1, "firmware");
    std::string damaged = good;
    damaged.back() ^= 1;
    for (const std::string& bad :
         {std::string(), good.substr(0, 15), image(1, ""), good.substr(0, good.size() - 1), good + "x",
          "W" + good.substr(1), damaged}) {
        EXPECT_EQ(upgrade(bad), kBadImage) << bad.size();
    }
    EXPECT_EQ(a_zvttvfapi_disp_upgrade_vexa_fw(bytes("/missing")), kNotFound);
    EXPECT_EQ(a_zvttvfapi_disp_upgrade_vexa_fw(bytes("/")), kBadFile);
    EXPECT_EQ(info(), "65536 0");
    EXPECT_TRUE(sEvents.empty());
}
