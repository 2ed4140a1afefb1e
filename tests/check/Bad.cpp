// A chip-layer library that breaks a promise of each kind, one a function. The functions that are not here do
// nothing, and some are left out (CMakeLists.txt).

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "chiplayer/chiplayer.h"

namespace {

fapi_core::ZvtTvFApiEventHandler sAudHandler, sSysHandler;
const unsigned char* sName;
bool sReady = false;
std::mutex sMutex;

void raise(fapi_core::ZvtTvFApiEventHandler handler, unsigned int type) {
    const fapi_core::ZvtTvFApiEventCommonObject none;
    handler(type, none, none, none, none);
}

}  // namespace

// Not found: by another name, with C linkage, with other parameters, hidden.
int32_t a_zvttvfapi_sys_synch_fs() {
    return 0;
}
__attribute__((visibility("hidden"))) int32_t a_zvttvfapi_disp_set_freerun_control(unsigned int) {
    return 0;
}
extern "C" int32_t withoutParameters() asm("a_zvttvfapi_inpsrc_vif_init");
int32_t withoutParameters() {
    return a_zvttvfapi_disp_set_freerun_control(0);
}
int32_t a_zvttvfapi_net_set_mac(unsigned char const*) {
    return 0;
}

// Ends or holds up the service.
int32_t a_zvttvfapi_disp_switch_window(unsigned int u32Window) {
    if (u32Window == UINT32_MAX) {
        raise(nullptr, 0);
    }
    return 0;
}
int32_t a_zvttvfapi_disp_set_pq_value(unsigned int, int s32Value) {
    return s32Value == INT32_MIN ? pause() : 0;
}
int32_t a_zvttvfapi_sys_set_wdt(unsigned char) {
    std::fputs("the watchdog bites\n", stderr);
    std::exit(3);
}
int32_t a_zvttvfapi_prphrl_enable_cec(unsigned char) {
    throw std::runtime_error("no antenna");
}

int32_t a_zvttvfapi_aud_adv_snd_enable(unsigned int*) {
    static std::atomic<int> sCallers{0};
    if (++sCallers > 1) {
        std::abort();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return --sCallers;
}

// Goes beyond its arguments.
int32_t a_zvttvfapi_common_get_fapi_version(char* pcVersion, unsigned int) {
    std::strcpy(pcVersion, "1.0");
    return 0;
}
int32_t a_zvttvfapi_info_get_ini_para(unsigned char const*, unsigned char const*, unsigned char* pu8Value,
                                      unsigned int u32Size) {
    std::memset(pu8Value, 'x', u32Size);
    return 0;
}
int32_t a_zvttvfapi_sys_get_customer_hash(unsigned int u32Size, unsigned char*,
                                          unsigned int* pu32LengthRead) {
    *pu32LengthRead = u32Size + 1;
    return 0;
}
int32_t a_zvttvfapi_disp_get_tcon_info(fapi_core::ZvtTvFApiDispTconInfo* pstInfo) {
    reinterpret_cast<char*>(pstInfo)[-1] = 0;
    return 0;
}
int32_t a_zvttvfapi_prphrl_std_factory_uart_write(unsigned char const* pu8Data, unsigned char u8Count) {
    return pu8Data[u8Count];
}
int32_t a_zvttvfapi_aud_adv_set_volume(unsigned int*, unsigned int* pu32Volume) {
    ++*pu32Volume;
    return 0;
}
int32_t a_zvttvfapi_prphrl_get_rc_format(unsigned char const* pu8Name, unsigned char* pu8Protocol) {
    *pu8Protocol = sName == nullptr ? 0 : *sName;
    sName = pu8Name;
    return 0;
}

// Leaves something behind, or says what is not its own to say.
int32_t a_zvttvfapi_prphrl_enable_iic(int) {
    return dup(STDERR_FILENO) < 0 ? -300 : 0;
}
int32_t a_zvttvfapi_disptst_set_osd_layer_on_off(unsigned int, unsigned char) {
    std::thread([] { pause(); }).detach();
    return 0;
}
int32_t a_zvttvfapi_inpsrc_get_ber(int*) {
    std::puts("ber");
    return std::fflush(stdout);
}
int32_t a_zvttvfapi_aud_adv_snd_set_param(unsigned int*) {
    return -2;
}

// Modules and their events.
int32_t a_zvttvfapi_net_init() {
    static int sCalls = 0;
    return sCalls++ == 0 ? 0 : -300;
}
int32_t a_zvttvfapi_aud_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    sAudHandler = pfnHandler;
    return 0;
}
int32_t a_zvttvfapi_aud_init() {
    const std::lock_guard<std::mutex> lock(sMutex);
    raise(sAudHandler, 1 << 16);
    return 0;
}
int32_t a_zvttvfapi_aud_adv_get_speaker_delay(unsigned int*) {
    const std::lock_guard<std::mutex> lock(sMutex);
    return 0;
}
int32_t a_zvttvfapi_sys_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    sSysHandler = pfnHandler;
    static std::once_flag sRaising;
    std::call_once(sRaising, [] {
        std::thread([] {
            for (;; std::this_thread::sleep_for(std::chrono::milliseconds(20))) {
                raise(sSysHandler, 0x10001);
            }
        }).detach();
    });
    return 0;
}
int32_t a_zvttvfapi_disp_init() {
    sReady = true;
    return 0;
}
int32_t a_zvttvfapi_disp_get_pwm_range(unsigned int&, unsigned int&) {
    if (!sReady) {
        std::abort();
    }
    return 0;
}
