// Module prphrl: HDMI ports, HDCP, CEC and eARC.

#include <algorithm>

#include "simulator/ChipCall.h"
#include "simulator/ChipLayer.h"
#include "simulator/peripheral/Peripherals.h"

using namespace simulator;

int32_t a_zvttvfapi_prphrl_get_hdmi_edid_data(unsigned int u32Port,
                                              fapi_core::ZvtTvFApiHDMI_EDID_Data_t* pstEdid) {
    return guarded([=]() -> int32_t {
        Edid edid;
        const int32_t status = pstEdid == nullptr ? kOutOfRange : peripherals().hdmi.edid(u32Port, &edid);
        if (status == kOk) {
            static_assert(sizeof(pstEdid->au8EdidData) == kEdidBytes, "all of it is copied");
            std::copy(edid.begin(), edid.end(), pstEdid->au8EdidData);
        }
        return status;
    });
}

int32_t a_zvttvfapi_prphrl_set_hdmi_edid_data(unsigned int u32Port, signed char s8Version,
                                              unsigned int u32Size, unsigned char const* pu8Data) {
    return guarded([=] { return peripherals().hdmi.replaceEdid(u32Port, s8Version, u32Size, pu8Data); });
}

int32_t a_zvttvfapi_prphrl_set_hdmi_edid_version(unsigned int u32Port, signed char s8Version) {
    return guarded([=] { return peripherals().hdmi.chooseEdid(u32Port, s8Version); });
}

int32_t a_zvttvfapi_prphrl_set_hdmi_hpd(unsigned char u8Port, unsigned char u8Plugged) {
    return guarded([=] {
        return u8Plugged > 1 ? kOutOfRange : peripherals().hdmi.setHotPlug(u8Port, u8Plugged == 1);
    });
}

int32_t a_zvttvfapi_prphrl_reload_hdcp_key(unsigned char const* pu8KeyType, unsigned char const* pu8KeyPath) {
    return guarded([=] {
        return pu8KeyType == nullptr || pu8KeyPath == nullptr
                       ? kOutOfRange
                       : peripherals().hdmi.installKey(text(pu8KeyType), text(pu8KeyPath));
    });
}

int32_t a_zvttvfapi_prphrl_reload_hdcp(fapi_core::ZvtTvFApiReloadHdcp eReload) {
    return guarded([=] {
        return eReload != fapi_core::ZvtTvFApiReloadHdcp::STATE ? kOutOfRange
                                                                : peripherals().hdmi.authenticate();
    });
}

int32_t a_zvttvfapi_prphrl_enable_cec(unsigned char u8Enable) {
    return guarded([=] {
        if (u8Enable > 1) {
            return kOutOfRange;
        }
        peripherals().hdmi.enableCec(u8Enable == 1);
        return kOk;
    });
}

int32_t a_zvttvfapi_prphrl_get_cec_status(signed char* ps8Status) {
    return guarded([=] {
        if (ps8Status == nullptr) {
            return kOutOfRange;
        }
        *ps8Status = static_cast<signed char>(peripherals().hdmi.cecState());
        return kOk;
    });
}

int32_t a_zvttvfapi_prphrl_get_earc_status(int* ps32Status) {
    return guarded([=] {
        if (ps32Status == nullptr) {
            return kOutOfRange;
        }
        *ps32Status = peripherals().hdmi.audioReturn();
        return kOk;
    });
}
