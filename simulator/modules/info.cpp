// Module info.

#include <cstring>
#include <string>

#include "simulator/board/ChipCall.h"
#include "simulator/board/Faults.h"
#include "simulator/board/Module.h"
#include "simulator/board/OwnParameters.h"
#include "simulator/board/Refusals.h"
#include "simulator/modules/ChipLayer.h"
#include "simulator/storage/IniStore.h"
#include "simulator/storage/Ips.h"

using namespace simulator;

namespace {

Module& self() {
    static Module& sModule = *new Module("info");
    return sModule;
}

int32_t getOwn(const char* parameter, char* buffer, size_t size) {
    if (parameter == nullptr || buffer == nullptr || size == 0) {
        return kOutOfRange;
    }
    std::string value;
    const int32_t status = ownParameter(parameter, &value);
    if (value.size() >= size) {
        buffer[0] = '\0';
        return kTooLong;
    }
    memcpy(buffer, value.c_str(), value.size() + 1);
    return status;
}

/** A file that a client or an engineer may have made before: what is in it is not to be missed silently. */
void tellHiddenFile() {
    IniContents contents;
    if (boardIni().read("board", &contents) != kNotFound) {
        tellFaults(boardIni().pathOf("board"), {"is not read: that name is the board's own"});
    }
}

}  // namespace

int32_t a_zvttvfapi_info_init() {
    return guarded([] {
        const int32_t result = self().init();
        if (result == kOk) {
            reloadIps();
            tellHiddenFile();
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
    char* const buffer = reinterpret_cast<char*>(pu8Value);
    return guarded([&] {
        return isOwnFile(text(pu8Arg1)) ? getOwn(text(pu8Arg2), buffer, u32Size)
                                        : boardIni().get(text(pu8Arg1), text(pu8Arg2), buffer, u32Size);
    });
}

int32_t a_zvttvfapi_info_set_ini_para(unsigned char const* pu8Arg1, unsigned char const* pu8Arg2,
                                      unsigned char const* pu8Value) {
    return guarded([&] {
        if (isOwnFile(text(pu8Arg1))) {
            complain("the file board is the board's own and cannot be changed");
            return kDenied;
        }
        return boardIni().set(text(pu8Arg1), text(pu8Arg2), text(pu8Value));
    });
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
