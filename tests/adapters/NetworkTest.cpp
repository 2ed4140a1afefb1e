#include "adapters/network/ZvtTvFApiNetwork.h"

#include "chiplayer/net.h"
#include "tests/adapters/Adapter.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

class Network : public Adapter<ZvtTvFApiNetwork> {
  protected:
    Network() : Adapter("ZvtTvFApiNetwork", "net") {}
};

TEST_F(Network, PassesTextsOnAndLogsEveryOutcomeAsAnError) {
    const hidl_string cut("eth0\0cut", 8);
    expectRows({
            {METHOD(a_hidl_zvttvfapi_net_set_mac, "02:00:00:00:00:01"), "set_mac(*)", "-7",
             " E a_zvttvfapi_net_set_mac Fail!\n"},
            {METHOD(a_hidl_zvttvfapi_net_set_interface_updown, cut, true),
             "set_interface_updown(\"eth0\", 1)", "-7", " E a_zvttvfapi_net_set_interface_updown Fail!\n"},
    });
    chip.returnsOtherwise(0);
    EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_net_set_interface_updown, cut, true).lines,
              " E a_zvttvfapi_net_set_interface_updown OK!\n");
    for (const hidl_string& strMac :
         {hidl_string(), hidl_string("02:00"), hidl_string(std::string(99, '0'))}) {
        chip.on(a_zvttvfapi_net_set_mac, [&](unsigned int* pu32Mac) {
            EXPECT_EQ(static_cast<const void*>(pu32Mac), strMac.c_str()) << "lent, not copied";
            return 0;
        });
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_net_set_mac, strMac).lines, " E a_zvttvfapi_net_set_mac OK!\n");
    }
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
