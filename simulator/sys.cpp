#include "simulator/ChipLayer.h"
#include "simulator/EventPipe.h"
#include "simulator/Module.h"
#include "simulator/Status.h"

using namespace simulator;

namespace {

Module& self() {
    static Module& sModule = *new Module("sys");
    return sModule;
}

}  // namespace

int32_t a_zvttvfapi_sys_init() {
    const int32_t status = self().init();
    if (status == kOk) {
        startEventPipe();
    }
    return status;
}
int32_t a_zvttvfapi_sys_deinit() {
    return self().deinit();
}
int32_t a_zvttvfapi_sys_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    return self().registerHandler(pfnHandler);
}
int32_t a_zvttvfapi_sys_unreg_callback() {
    return self().unregisterHandler();
}
