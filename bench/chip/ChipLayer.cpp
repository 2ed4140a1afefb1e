// The functions that the measured methods call, as cheap as can be: what is left is the cost of the way
// there.

#include <cstring>

#include "chiplayer/common.h"
#include "chiplayer/info.h"

int32_t a_zvttvfapi_common_get_fapi_status() {
    return 0;
}

int32_t a_zvttvfapi_common_get_fapi_version(char* pcVersion, unsigned int) {
    std::memcpy(pcVersion, "1", 2);
    return 0;
}

int32_t a_zvttvfapi_info_get_ini_para(unsigned char const*, unsigned char const*, unsigned char* pu8Value,
                                      unsigned int) {
    std::memset(pu8Value, 'v', 100);
    pu8Value[100] = '\0';
    return 0;
}

int32_t a_zvttvfapi_info_set_ini_para(unsigned char const*, unsigned char const*, unsigned char const*) {
    return 0;
}

int32_t a_zvttvfapi_info_get_ip_enable_status(unsigned int u32IpId, unsigned char* pu8Enable) {
    *pu8Enable = u32IpId & 1;
    return 0;
}
