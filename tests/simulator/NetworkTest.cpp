#include "chiplayer/net.h"
#include "tests/simulator/SysFixture.h"

using namespace simulator;
using testing::HasSubstr;

namespace {

class Network : public SysFixture {
  protected:
    void SetUp() override {
        SysFixture::SetUp();
        restart();
    }
    void TearDown() override { a_zvttvfapi_net_deinit(); }

    static void restart() {
        a_zvttvfapi_net_deinit();
        ASSERT_EQ(a_zvttvfapi_net_init(), kOk);
    }

    static int32_t setMac(std::string text) {
        // As clients' texts arrive: without alignment.
        text.insert(0, 1, ' ');
        return a_zvttvfapi_net_set_mac(static_cast<unsigned*>(static_cast<void*>(text.data() + 1)));
    }
    static std::string described() {
        EXPECT_EQ(command(2, "net"), kOk);
        return contentOf(state() / "state.txt");
    }
};

}  // namespace

TEST_F(Network, TakesAWellFormedMacAddressAndKeepsItOverARestart) {
    const std::string delivered = described();
    for (const auto& [text, mac] :
         {std::pair("02:aB:cD:00:10:fF", "02:ab:cd:00:10:ff"), {"a4-02-B0-00-00-00", "a4:02:b0:00:00:00"}}) {
        EXPECT_EQ(setMac(text), kOk);
        for (const char* bad :
             {"", "02", "02:00:00:00:00", "02:00:00:00:00:0", "02:00:00:00:00:011",
              "02:00:00:00:00:01:", "020000000001", "02:00-00:00:00:01", "02-00-00-00-00:01",
              "02.00.00.00.00.01", "g2:00:00:00:00:01", "2:00:00:00:00:0001", "01:00:00:00:00:01",
              "ff:ff:ff:ff:ff:ff", "00:00:00:00:00:00", " 2:00:00:00:00:01", "+2:00:00:00:00:01"}) {
            EXPECT_EQ(setMac(bad), kOutOfRange) << bad;
        }
        EXPECT_THAT(described(), HasSubstr(std::string("eth0 up ") + mac));
        restart();
        EXPECT_THAT(described(), HasSubstr(std::string("eth0 up ") + mac));
    }
    // It is the boot loader's variable, and so can be read, and spoilt.
    unsigned char value[64] = {};
    EXPECT_EQ(a_zvttvfapi_sys_get_emmc_env_var(bytes("mac_address"), value, sizeof(value)), kOk);
    EXPECT_STREQ(reinterpret_cast<char*>(value), "a4:02:b0:00:00:00");
    EXPECT_EQ(a_zvttvfapi_sys_set_emmc_env_var(bytes("mac_address"), bytes("soon")), kOk);
    restart();
    EXPECT_EQ(described(), delivered);
}

TEST_F(Network, BringsItsOwnInterfacesUpAndDownUntilTheNextStart) {
    const std::string started = described();
    EXPECT_EQ(a_zvttvfapi_net_set_interface_updown("eth0", false), kOk);
    EXPECT_EQ(a_zvttvfapi_net_set_interface_updown("eth0", false), kOk);
    EXPECT_EQ(a_zvttvfapi_net_set_interface_updown("wlan0", true), kOk);
    for (const char* unknown : {"", "lo", "eth", "eth00", "ETH0"}) {
        EXPECT_EQ(a_zvttvfapi_net_set_interface_updown(unknown, false), kNotFound) << unknown;
    }
    EXPECT_THAT(described(), AllOf(HasSubstr("eth0 down"), HasSubstr("wlan0 up")));
    restart();
    EXPECT_EQ(described(), started);
}
