#include "adapters/network/ZvtTvFApiNetwork.h"

#include "chiplayer/net.h"
#include "tests/adapters/Forwarding.h"
#include "tests/fake/DeviceLog.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

class Network : public ::testing::Test {
  protected:
    // Of one call with each of expectForwarded()'s statuses, the first of which is 0.
    static std::vector<std::string> linesOf(const std::string& name) {
        const std::string line =
                "E ZvtTvFApiNetwork(server): <a_hidl_zvttvfapi_net_" + name + ":#> a_zvttvfapi_net_" + name;
        return {line + " OK!\n", line + " Fail!\n", line + " Fail!\n", line + " Fail!\n"};
    }

    FakeChipLayer chip;
    ::android::sp<ZvtTvFApiNetwork> network = new ZvtTvFApiNetwork();
};

TEST_F(Network, PassesTextsOnAndLogsEveryOutcomeAsAnError) {
    DeviceLog log;
    const hidl_string cut("eth0\0cut", 8);
    expectForwarded(chip, a_zvttvfapi_net_set_mac, "a_zvttvfapi_net_set_mac(*)",
                    [&] { return network->a_hidl_zvttvfapi_net_set_mac("02:00:00:00:00:01"); });
    EXPECT_EQ(log.takeLines(), linesOf("set_mac"));
    expectForwarded(chip, a_zvttvfapi_net_set_interface_updown,
                    "a_zvttvfapi_net_set_interface_updown(\"eth0\", 1)",
                    [&] { return network->a_hidl_zvttvfapi_net_set_interface_updown(cut, true); });
    EXPECT_EQ(log.takeLines(), linesOf("set_interface_updown"));
}

TEST_F(Network, LendsTheClientsOwnTextWhateverItsLengthAndLogsNothingWithoutTheFlag) {
    DeviceLog silent(0);
    for (const hidl_string& strMac :
         {hidl_string(), hidl_string("02:00"), hidl_string(std::string(99, '0'))}) {
        const void* lent = nullptr;
        chip.on(a_zvttvfapi_net_set_mac, [&](unsigned int* pu32Mac) {
            lent = pu32Mac;
            return 0;
        });
        EXPECT_TRUE(network->a_hidl_zvttvfapi_net_set_mac(strMac).isOk());
        EXPECT_EQ(lent, strMac.c_str());
    }
    EXPECT_THAT(silent.takeLines(), ::testing::IsEmpty());
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
