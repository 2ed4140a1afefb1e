#include "simulator/ChipLayer.h"
#include "simulator/Module.h"

using namespace simulator;

namespace {

Module& self() {
    static Module& sModule = *new Module("aud");
    return sModule;
}

}  // namespace

int32_t a_zvttvfapi_aud_init() {
    return self().init();
}
int32_t a_zvttvfapi_aud_deinit() {
    return self().deinit();
}
int32_t a_zvttvfapi_aud_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    return self().registerHandler(pfnHandler);
}
int32_t a_zvttvfapi_aud_unreg_callback() {
    return self().unregisterHandler();
}
