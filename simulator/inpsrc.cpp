#include "simulator/ChipLayer.h"
#include "simulator/Module.h"

using namespace simulator;

namespace {

Module& self() {
    static Module& sModule = *new Module("inpsrc");
    return sModule;
}

}  // namespace

int32_t a_zvttvfapi_inpsrc_init() {
    return self().init();
}
int32_t a_zvttvfapi_inpsrc_deinit() {
    return self().deinit();
}
int32_t a_zvttvfapi_inpsrc_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    return self().registerHandler(pfnHandler);
}
int32_t a_zvttvfapi_inpsrc_unreg_callback() {
    return self().unregisterHandler();
}
