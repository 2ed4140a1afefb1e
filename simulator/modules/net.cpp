// Module net.

#include "simulator/board/ChipCall.h"
#include "simulator/board/Module.h"
#include "simulator/modules/ChipLayer.h"
#include "simulator/network/NetworkInterfaces.h"

using namespace simulator;

namespace {

NetworkInterfaces& interfaces() {
    static NetworkInterfaces& sInterfaces = *new NetworkInterfaces;
    return sInterfaces;
}

Module& self() {
    static Module& sModule = *new Module("net", [] { return interfaces().describe(); });
    return sModule;
}

}  // namespace

int32_t a_zvttvfapi_net_init() {
    return guarded([] {
        const int32_t status = self().init();
        if (status == kOk) {
            interfaces().start();
        }
        return status;
    });
}

int32_t a_zvttvfapi_net_deinit() {
    return self().deinit();
}

int32_t a_zvttvfapi_net_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    return self().registerHandler(pfnHandler);
}

int32_t a_zvttvfapi_net_unreg_callback() {
    return self().unregisterHandler();
}

int32_t a_zvttvfapi_net_set_mac(unsigned int* pu32Mac) {
    return guarded([&] {
        return pu32Mac == nullptr ? kOutOfRange : interfaces().setMac(reinterpret_cast<const char*>(pu32Mac));
    });
}

int32_t a_zvttvfapi_net_set_interface_updown(char const* pcIfName, bool bUp) {
    return guarded([&] { return pcIfName == nullptr ? kOutOfRange : interfaces().setUp(pcIfName, bUp); });
}
