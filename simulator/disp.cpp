#include "simulator/ChipLayer.h"
#include "simulator/Module.h"

using namespace simulator;

namespace {

Module& self() {
    static Module& sModule = *new Module("disp");
    return sModule;
}

}  // namespace

int32_t a_zvttvfapi_disp_init() {
    return self().init();
}
int32_t a_zvttvfapi_disp_deinit() {
    return self().deinit();
}
int32_t a_zvttvfapi_disp_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    return self().registerHandler(pfnHandler);
}
int32_t a_zvttvfapi_disp_unreg_callback() {
    return self().unregisterHandler();
}
