// Module info.

#include "simulator/board/ChipCall.h"
#include "simulator/board/Module.h"
#include "simulator/modules/ChipLayer.h"
#include "simulator/storage/IniStore.h"
#include "simulator/storage/Ips.h"

using namespace simulator;

namespace {

Module& self() {
    static Module& sModule = *new Module("info");
    return sModule;
}

}  // namespace

int32_t a_zvttvfapi_info_init() {
    return guarded([] {
        const int32_t result = self().init();
        if (result == kOk) {
            reloadIps();
        }
        return result;
    });
}
int32_t a_zvttvfapi_info_deinit() {
    return self().deinit();
}
int32_t a_zvttvfapi_info_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    return self().registerHandler(pfnHandler);
}
int32_t a_zvttvfapi_info_unreg_callback() {
    return self().unregisterHandler();
}

int32_t a_zvttvfapi_info_get_ini_para(unsigned char const* pu8Arg1, unsigned char const* pu8Arg2,
                                      unsigned char* pu8Value, unsigned int u32Size) {
    return guarded([&] {
        return boardIni().get(text(pu8Arg1), text(pu8Arg2), reinterpret_cast<char*>(pu8Value), u32Size);
    });
}

int32_t a_zvttvfapi_info_set_ini_para(unsigned char const* pu8Arg1, unsigned char const* pu8Arg2,
                                      unsigned char const* pu8Value) {
    return guarded([&] { return boardIni().set(text(pu8Arg1), text(pu8Arg2), text(pu8Value)); });
}

int32_t a_zvttvfapi_info_get_ip_enable_status(unsigned int u32IpId, unsigned char* pu8Enable) {
    return guarded([&] {
        if (u32IpId >= kIpCount || pu8Enable == nullptr) {
            return kOutOfRange;
        }
        *pu8Enable = ipEnabled(u32IpId) ? 1 : 0;
        return kOk;
    });
}
