// What the simulated board reads of files that others may write: the first byte of the input chooses the file
// and who reads it, the rest is its content. What the board kept must not keep it from starting again.

#include <unistd.h>

#include <cstring>
#include <fstream>

#include "chiplayer/chiplayer.h"
#include "fuzz/Choices.h"
#include "fuzz/Input.h"
#include "fuzz/State.h"

using fapi_core::ZvtTvFApiHDMI_EDID_Data_t;

namespace {

const unsigned char* bytes(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}

/** Ends a module and begins it again: it reads what it keeps. */
template <int32_t (*End)(), int32_t (*Begin)()>
void restart() {
    fuzz::require(End() == 0 && Begin() == 0);
}

constexpr auto kRestartAudio = restart<a_zvttvfapi_aud_deinit, a_zvttvfapi_aud_init>;
constexpr auto kRestartInputs = restart<a_zvttvfapi_inpsrc_deinit, a_zvttvfapi_inpsrc_init>;
constexpr auto kRestartInformation = restart<a_zvttvfapi_info_deinit, a_zvttvfapi_info_init>;

void restartDisplay() {
    restart<a_zvttvfapi_disp_deinit, a_zvttvfapi_disp_init>();
    restart<a_zvttvfapi_disptst_deinit, a_zvttvfapi_disptst_init>();
}

void restartPeripherals() {
    restart<a_zvttvfapi_prphrl_deinit, a_zvttvfapi_prphrl_init>();
    ZvtTvFApiHDMI_EDID_Data_t edid;
    a_zvttvfapi_prphrl_get_hdmi_edid_data(1, &edid);
    a_zvttvfapi_prphrl_reload_hdcp(fapi_core::ZvtTvFApiReloadHdcp::STATE);
    unsigned char protocol;
    a_zvttvfapi_prphrl_get_rc_format(bytes("fuzz"), &protocol);
    const uint8_t address = 0;
    uint8_t read[256];
    a_zvttvfapi_prphrl_read_from_iic(0, 0x50, 0, 1, &address, sizeof(read), read);
}

/** A parameter that is set is read back, whatever the file was, unless the file is refused. */
void setParameter() {
    const unsigned char* const file = bytes("fuzz");
    const unsigned char* const parameter = bytes("section:key");
    unsigned char value[2048];
    a_zvttvfapi_info_get_ini_para(file, parameter, value, sizeof(value));
    if (a_zvttvfapi_info_set_ini_para(file, parameter, bytes(" the value ")) == 0) {
        fuzz::require(a_zvttvfapi_info_get_ini_para(file, parameter, value, sizeof(value)) == 0 &&
                      std::strcmp(reinterpret_cast<const char*>(value), " the value ") == 0);
    }
}

void setVariable() {
    unsigned char value[4096];
    a_zvttvfapi_sys_get_emmc_env_var(bytes("fuzz"), value, sizeof(value));
    if (a_zvttvfapi_sys_set_emmc_env_var(bytes("fuzz"), bytes("a value")) == 0) {
        fuzz::require(a_zvttvfapi_sys_get_emmc_env_var(bytes("fuzz"), value, sizeof(value)) == 0 &&
                      std::strcmp(reinterpret_cast<const char*>(value), "a value") == 0);
    }
    unsigned seconds;
    a_zvttvfapi_sys_get_rtc_time(&seconds);
    unsigned char path[128];
    a_zvttvfapi_sys_get_dataindex_path(path, sizeof(path));
}

void readIdentity() {
    unsigned char hash[16];
    unsigned length;
    a_zvttvfapi_sys_get_customer_hash(sizeof(hash), hash, &length);
}

constexpr const char* kPath = "/input";

struct File {
    const char* path;  // in the state folder
    void (*read)();
};

const File kFiles[] = {
        {"settings/audio.ini", kRestartAudio},
        {"audio/speaker.table", kRestartAudio},
        {"audio/aq.ini", kRestartAudio},
        {"files/input", [] { a_zvttvfapi_aud_load_aq_params(bytes(kPath)); }},
        {"settings/display.ini", restartDisplay},
        {"ini/panel.ini", restartDisplay},
        {"ini/pq.ini", restartDisplay},
        {"files/input", [] { a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp(bytes(kPath), 1800, 1070); }},
        {"files/input", [] { a_zvttvfapi_disp_upgrade_vexa_fw(bytes(kPath)); }},
        {"settings/inputs.ini", kRestartInputs},
        {"ini/tuner.ini", kRestartInputs},
        {"ini/ip.ini", kRestartInformation},
        {"ini/fuzz.ini", setParameter},
        {"ini/remotes.ini", restartPeripherals},
        {"ini/prphrl.ini", restartPeripherals},
        {"hdmi/edid-1-1.bin", restartPeripherals},
        {"hdcp/2.2.key", restartPeripherals},
        {"i2c/eeprom.bin", restartPeripherals},
        {"files/input", [] { a_zvttvfapi_prphrl_reload_hdcp_key(bytes("1.4"), bytes(kPath)); }},
        {"files/input", [] { a_zvttvfapi_sys_upgrade_fw(1, kPath); }},
        {"files/input", [] { a_zvttvfapi_sys_update_sys_key(bytes(kPath), true); }},
        {"emmc/env.txt", setVariable},
        {"emmc/fw_main.bin", [] { restart<a_zvttvfapi_sys_deinit, a_zvttvfapi_sys_init>(); }},
        {"identity.ini", readIdentity},
};

/** Orders that clients give: an event, a forced status, the state. */
void order(uint8_t command, const std::string& text) {
    a_zvttvfapi_sys_send_cmd_to_factory_svc(static_cast<fapi_core::ZvtTvFApiSysFactorySvcCmd_e>(command % 3),
                                            bytes(text.c_str()));
}

/** An EDID that a client sends. */
void replaceEdid(const std::string& content) {
    ZvtTvFApiHDMI_EDID_Data_t edid{};
    std::memcpy(edid.au8EdidData, content.data(), std::min(content.size(), sizeof(edid)));
    const auto size = static_cast<unsigned>(content.size());
    if (a_zvttvfapi_prphrl_set_hdmi_edid_data(2, 1, size, edid.au8EdidData) == 0) {
        ZvtTvFApiHDMI_EDID_Data_t shown;
        fuzz::require(a_zvttvfapi_prphrl_get_hdmi_edid_data(2, &shown) == 0 &&
                      std::memcmp(&shown, &edid, sizeof(edid)) == 0);
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    for (const char* folder : {"settings", "audio", "files", "ini", "hdmi", "hdcp", "i2c", "emmc"}) {
        std::filesystem::create_directories(fuzz::stateFolder() / folder);
    }
    for (const auto begin :
         {a_zvttvfapi_sys_init, a_zvttvfapi_aud_init, a_zvttvfapi_disp_init, a_zvttvfapi_disptst_init,
          a_zvttvfapi_info_init, a_zvttvfapi_inpsrc_init, a_zvttvfapi_net_init, a_zvttvfapi_prphrl_init}) {
        fuzz::require(begin() == 0);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::makeReady();
    fuzz::Choices choices(data, size);
    const uint8_t choice = choices.byte();
    const std::string content = choices.rest();
    const size_t number = choice & 31U;
    if (number < std::size(kFiles)) {
        const std::filesystem::path path = fuzz::stateFolder() / kFiles[number].path;
        {
            std::ofstream file(path, std::ios::binary);
            file << content;
            fuzz::require(file.flush().good());
        }
        kFiles[number].read();
        unlink(path.c_str());
    } else if (number == 31) {
        replaceEdid(content);
    } else {
        order(choice >> 5, content);
        a_zvttvfapi_sys_send_cmd_to_factory_svc(fapi_core::SYS_FACTORY_SVC_CMD_FORCE_STATUS, bytes("clear"));
    }
    return 0;
}
