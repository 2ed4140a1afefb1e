#include "tests/fake/FakeChipLayer.h"

#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <type_traits>

#include "chiplayer/chiplayer.h"

namespace {

FakeChipLayer* sCurrent = nullptr;

// Data that the service hands over with its length.
template <typename T>
struct Data {
    T* data;
    size_t size;
    operator T*() const { return data; }  // NOLINT(google-explicit-constructor)
};

template <typename T>
void describe(std::ostream& out, const Data<T>& argument) {
    out << '<' << std::hex << std::setfill('0');
    for (size_t i = 0; i < argument.size; ++i) {
        out << std::setw(2) << +argument.data[i];
    }
    out << std::dec << '>';
}

template <typename T>
void describe(std::ostream& out, const T& argument) {
    if constexpr (std::is_same_v<T, const char*> || std::is_same_v<T, const unsigned char*>) {
        out << '"' << argument << '"';
    } else if constexpr (std::is_enum_v<T>) {
        out << +static_cast<std::underlying_type_t<T>>(argument);
    } else if constexpr (std::is_arithmetic_v<T>) {
        out << +argument;
    } else {
        out << (std::is_pointer_v<T> ? "*" : "{}");
    }
}

}  // namespace

FakeChipLayer::FakeChipLayer() {
    sCurrent = this;
}

FakeChipLayer::~FakeChipLayer() {
    sCurrent = nullptr;
}

FakeChipLayer& FakeChipLayer::current() {
    if (sCurrent == nullptr) {
        std::fputs("a chip-layer function was called without a FakeChipLayer\n", stderr);
        std::abort();
    }
    return *sCurrent;
}

template <typename Function, typename... Arguments>
typename std::function<Function>::result_type FakeChipLayer::called(const char* name, Function* function,
                                                                    Arguments&&... arguments) {
    std::ostringstream call;
    [[maybe_unused]] const char* separator = "";
    call << name << '(';
    ((call << std::exchange(separator, ", "), describe(call, arguments)), ...);
    call << ')';
    mCalls.push_back(call.str());
    const auto action = mActions.find(keyOf(function));
    if (action == mActions.end()) {
        return static_cast<typename std::function<Function>::result_type>(mOtherwise);
    }
    return std::any_cast<std::function<Function>&>(action->second)(std::forward<Arguments>(arguments)...);
}

// FAKE(result, name, parameter types...): one line makes a whole fake function.
#define FAKE(...) FAKE_FORM(__VA_ARGS__, 7, 6, 5, 4, 3, 2, 1, 0, )(__VA_ARGS__)
#define FAKE_FORM(_result, _name, _1, _2, _3, _4, _5, _6, _7, count, ...) FAKE_##count
#define CALLED(...) return FakeChipLayer::current().called(__func__, __VA_ARGS__)
// clang-format off
#define FAKE_0(R, name) R name() { CALLED(name); }
#define FAKE_1(R, name, A) R name(A a) { CALLED(name, a); }
#define FAKE_2(R, name, A, B) R name(A a, B b) { CALLED(name, a, b); }
#define FAKE_3(R, name, A, B, C) R name(A a, B b, C c) { CALLED(name, a, b, c); }
#define FAKE_4(R, name, A, B, C, D) R name(A a, B b, C c, D d) { CALLED(name, a, b, c, d); }
#define FAKE_5(R, name, A, B, C, D, E) R name(A a, B b, C c, D d, E e) { CALLED(name, a, b, c, d, e); }
#define FAKE_6(R, name, A, B, C, D, E, F) \
    R name(A a, B b, C c, D d, E e, F f) { CALLED(name, a, b, c, d, e, f); }
#define FAKE_7(R, name, A, B, C, D, E, F, G) \
    R name(A a, B b, C c, D d, E e, F f, G g) { CALLED(name, a, b, c, d, e, f, g); }
// clang-format on

#define FAKE_MODULE(m)                                                              \
    FAKE(int32_t, a_zvttvfapi_##m##_init)                                           \
    FAKE(int32_t, a_zvttvfapi_##m##_deinit)                                         \
    FAKE(int32_t, a_zvttvfapi_##m##_reg_callback, fapi_core::ZvtTvFApiEventHandler) \
    FAKE(int32_t, a_zvttvfapi_##m##_unreg_callback)

FAKE_MODULE(aud)
FAKE_MODULE(disp)
FAKE_MODULE(disptst)
FAKE_MODULE(info)
FAKE_MODULE(inpsrc)
FAKE_MODULE(net)
FAKE_MODULE(prphrl)
FAKE_MODULE(sys)

FAKE(int, _a_zvttvfapi_custom_init)
FAKE(int, _a_zvttvfapi_custom_init_debug_level)

FAKE(int32_t, a_zvttvfapi_common_get_fapi_status)
FAKE(int32_t, a_zvttvfapi_common_get_fapi_version, char*, unsigned int)

FAKE(int32_t, a_zvttvfapi_info_get_ini_para, const unsigned char*, const unsigned char*, unsigned char*,
     unsigned int)
FAKE(int32_t, a_zvttvfapi_info_set_ini_para, const unsigned char*, const unsigned char*, const unsigned char*)
FAKE(int32_t, a_zvttvfapi_info_get_ip_enable_status, unsigned int, unsigned char*)

FAKE(int32_t, a_zvttvfapi_sys_get_emmc_env_var, const unsigned char*, unsigned char*, unsigned int)
FAKE(int32_t, a_zvttvfapi_sys_set_emmc_env_var, const unsigned char*, const unsigned char*)
FAKE(int32_t, a_zvttvfapi_sys_update_sys_key, const unsigned char*, bool)
int32_t a_zvttvfapi_sys_secure_storage_encrypt_key(const unsigned char* a, const unsigned char* b,
                                                   const unsigned char* c, unsigned char d) {
    CALLED(a_zvttvfapi_sys_secure_storage_encrypt_key, a, b, Data<const unsigned char>{c, d}, d);
}
FAKE(int32_t, a_zvttvfapi_sys_check_file, const unsigned char*)
FAKE(int32_t, a_zvttvfapi_sys_copy_file, const unsigned char*, const unsigned char*, bool)
FAKE(int32_t, a_zvttvfapi_sys_set_wdt, unsigned char)
FAKE(int32_t, a_zvttvfapi_sys_get_wdt_status)
FAKE(int32_t, a_zvttvfapi_sys_set_miu_ssc, unsigned char, unsigned short, unsigned short, unsigned char)
FAKE(int32_t, a_zvttvfapi_sys_upgrade_fw, unsigned char, const char*)
int32_t a_zvttvfapi_sys_write_emmc(unsigned char* a, unsigned int b, unsigned int c, unsigned char* d) {
    CALLED(a_zvttvfapi_sys_write_emmc, a, b, c, Data<unsigned char>{d, c});
}
FAKE(int32_t, a_zvttvfapi_sys_read_emmc, unsigned char*, unsigned int, unsigned int, unsigned char*)
FAKE(int32_t, a_zvttvfapi_sys_remove_file, const unsigned char*)
FAKE(int32_t, a_zvttvfapi_sys_create_file, const unsigned char*)
FAKE(int32_t, a_zvttvfapi_sys_create_folder, const unsigned char*)
FAKE(int32_t, a_zvttvfapi_sys_check_folder, const unsigned char*)
FAKE(int32_t, a_zvttvfapi_sys_read_file_one_line, const unsigned char*, unsigned char*, unsigned int,
     unsigned long long)
FAKE(int32_t, a_zvttvfapi_sys_read_file, const unsigned char*, unsigned char*, unsigned int,
     unsigned long long, unsigned int*)
FAKE(int32_t, a_zvttvfapi_sys_get_file_checksum, const unsigned char*, unsigned int*)
int32_t a_zvttvfapi_sys_write_file(const unsigned char* a, const unsigned char* b, unsigned int c,
                                   const unsigned char* d) {
    CALLED(a_zvttvfapi_sys_write_file, a, Data<const unsigned char>{b, c}, c, d);
}
FAKE(int32_t, a_zvttvfapi_sys_change_file_mode, const unsigned char*, unsigned int)
FAKE(int32_t, a_zvttvfapi_sys_read_reg, unsigned int, unsigned int, unsigned int*)
FAKE(int32_t, a_zvttvfapi_sys_write_reg, unsigned int, unsigned int, unsigned int)
FAKE(int32_t, a_zvttvfapi_sys_send_cmd_to_factory_svc, fapi_core::ZvtTvFApiSysFactorySvcCmd_e,
     const unsigned char*)
FAKE(int32_t, a_zvttvfapi_sys_get_rtc_time, unsigned int*)
FAKE(int32_t, a_zvttvfapi_sys_sync_fs)
FAKE(int32_t, a_zvttvfapi_sys_get_customer_hash, unsigned int, unsigned char*, unsigned int*)
FAKE(int32_t, a_zvttvfapi_sys_get_dataindex_path, unsigned char*, unsigned int)

FAKE(int32_t, a_zvttvfapi_disp_switch_window, unsigned int)
FAKE(int32_t, a_zvttvfapi_disp_set_picture_param, unsigned int, unsigned int)
FAKE(int32_t, a_zvttvfapi_disp_panel_set_attr, unsigned int, unsigned int, unsigned int, unsigned int,
     unsigned int, unsigned int)
FAKE(int32_t, a_zvttvfapi_disp_set_over_scan, int, int, int, int)
FAKE(int32_t, a_zvttvfapi_disp_set_color_temperature, unsigned int, unsigned int, unsigned int, unsigned int,
     unsigned int, unsigned int)
FAKE(int32_t, a_zvttvfapi_disp_get_pq_range, fapi_core::ZvtTvFApiDispHsyModelRange*)
FAKE(int32_t, a_zvttvfapi_disp_get_tcon_info, fapi_core::ZvtTvFApiDispTconInfo*)
FAKE(int32_t, a_zvttvfapi_disp_set_picture_param_struct, unsigned int, unsigned int, void*)
FAKE(int32_t, a_zvttvfapi_disp_get_lvds_ssc, unsigned char&, unsigned int&, unsigned int&)
FAKE(int32_t, a_zvttvfapi_disp_get_pwm_range, unsigned int&, unsigned int&)
FAKE(int32_t, a_zvttvfapi_disp_get_frc_device_info, fapi_core::ZvtTvFApiDispExtFrcDeviceInfo*)
FAKE(int32_t, a_zvttvfapi_disp_upgrade_vexa_fw, const unsigned char*)
FAKE(int32_t, a_zvttvfapi_disp_get_pq_version, unsigned int, char*, fapi_core::ZvtTvFApiVideoWin,
     fapi_core::ZvtTvFApiPqType)
FAKE(int32_t, a_zvttvfapi_disp_update_pq_ini_files)
FAKE(int32_t, a_zvttvfapi_disp_set_output_timing, unsigned int)
FAKE(int32_t, a_zvttvfapi_disp_nty_drv_reload_param)
FAKE(int32_t, a_zvttvfapi_disp_set_pq_value, unsigned int, int)
FAKE(int32_t, a_zvttvfapi_disp_capture_screen_to_usb, const unsigned char*, int)
FAKE(int32_t, a_zvttvfapi_disp_get_frc_connect_status)
FAKE(int32_t, a_zvttvfapi_disp_set_gamma_curve, unsigned short*, unsigned short*, unsigned short*)
FAKE(int32_t, a_zvttvfapi_disp_set_freerun_control, unsigned int)

FAKE(int32_t, a_zvttvfapi_disptst_set_burning_mode, unsigned char)
FAKE(int32_t, a_zvttvfapi_disptst_gen_test_pattern, unsigned int, fapi_core::ZvtTvFApiDispTstPattern)
FAKE(int32_t, a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp, const unsigned char*, unsigned int,
     unsigned int)
FAKE(int32_t, a_zvttvfapi_disptst_gen_gop_test_pattern_on, unsigned int, unsigned int)
FAKE(int32_t, a_zvttvfapi_disptst_gen_gop_test_pattern_off)
FAKE(int32_t, a_zvttvfapi_disptst_gen_gop_test_pattern_show)
FAKE(int32_t, a_zvttvfapi_disptst_gen_gop_test_pattern_hide)
FAKE(int32_t, a_zvttvfapi_disptst_set_osd_layer_on_off, unsigned int, unsigned char)
FAKE(int32_t, a_zvttvfapi_disptst_set_pq_on_off, unsigned char)
FAKE(int32_t, a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line, fapi_core::ZvtTvFApiGOPPatternLine_t)
FAKE(int32_t, a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect, fapi_core::ZvtTvFApiGOPPatternRect_t)
FAKE(int32_t, a_zvttvfapi_disptst_gop_pattern_set_attr, fapi_core::ZvtTvFApiGOPPatternAttr_t)
FAKE(int32_t, a_zvttvfapi_disptst_set_burning_mode_adv, unsigned char, _ZvtFApiDisptstBurnModeParam*)

FAKE(int32_t, a_zvttvfapi_prphrl_start_factory_uart, signed char, signed char, signed char)
FAKE(int32_t, a_zvttvfapi_prphrl_stop_factory_uart, signed char)
FAKE(int32_t, a_zvttvfapi_prphrl_write_factory_uart, const unsigned char*, unsigned int)
FAKE(int32_t, a_zvttvfapi_prphrl_std_factory_uart_start, signed char, signed char,
     fapi_core::ZvtTvFApiStdFactoryUartConfig)
FAKE(int32_t, a_zvttvfapi_prphrl_std_factory_uart_stop)
int32_t a_zvttvfapi_prphrl_std_factory_uart_write(const unsigned char* a, unsigned char b) {
    CALLED(a_zvttvfapi_prphrl_std_factory_uart_write, Data<const unsigned char>{a, b}, b);
}
FAKE(int32_t, a_zvttvfapi_prphrl_std_factory_uart_custom_config, signed char, unsigned char, unsigned int)
FAKE(int32_t, a_zvttvfapi_prphrl_start_keypad)
FAKE(int32_t, a_zvttvfapi_prphrl_stop_keypad)
FAKE(int32_t, a_zvttvfapi_prphrl_start_adc, unsigned char)
FAKE(int32_t, a_zvttvfapi_prphrl_get_rc_format, const unsigned char*, unsigned char*)
FAKE(int32_t, a_zvttvfapi_prphrl_enable_iic, int)
FAKE(int32_t, a_zvttvfapi_prphrl_disable_iic, int)
int32_t a_zvttvfapi_prphrl_read_from_iic(int a, unsigned short b, unsigned short c, unsigned short d,
                                         const unsigned char* e, unsigned short f, unsigned char* g) {
    CALLED(a_zvttvfapi_prphrl_read_from_iic, a, b, c, d, Data<const unsigned char>{e, d}, f, g);
}
int32_t a_zvttvfapi_prphrl_write_to_iic(int a, unsigned short b, unsigned short c, const unsigned char* d,
                                        unsigned short e, const unsigned char* f) {
    CALLED(a_zvttvfapi_prphrl_write_to_iic, a, b, c, Data<const unsigned char>{d, c}, e,
           Data<const unsigned char>{f, e});
}
FAKE(int32_t, a_zvttvfapi_prphrl_control_gpio, unsigned int, unsigned int)
FAKE(int32_t, a_zvttvfapi_prphrl_get_gpio_status, unsigned int, unsigned char*)
FAKE(int32_t, a_zvttvfapi_prphrl_gpio_monitor_start, unsigned int, unsigned int, unsigned int)
FAKE(int32_t, a_zvttvfapi_prphrl_gpio_monitor_stop)
FAKE(int32_t, a_zvttvfapi_prphrl_reload_hdcp_key, const unsigned char*, const unsigned char*)
FAKE(int32_t, a_zvttvfapi_prphrl_enable_cec, unsigned char)
FAKE(int32_t, a_zvttvfapi_prphrl_get_cec_status, signed char*)
FAKE(int32_t, a_zvttvfapi_prphrl_get_earc_status, int*)
FAKE(int32_t, a_zvttvfapi_prphrl_get_iic_slave_address, unsigned short, unsigned short, unsigned short*)
FAKE(int32_t, a_zvttvfapi_prphrl_pwm_set_attr, fapi_core::ZvtTvFApiPwmAttr, fapi_core::ZvtTvFApiPwmChannel,
     unsigned int)
FAKE(int32_t, a_zvttvfapi_prphrl_pwm_get_attr, fapi_core::ZvtTvFApiPwmAttr, fapi_core::ZvtTvFApiPwmChannel,
     unsigned int*)
FAKE(int32_t, a_zvttvfapi_prphrl_set_hdmi_edid_version, unsigned int, signed char)
FAKE(int32_t, a_zvttvfapi_prphrl_set_uart_pipe_mode, unsigned char, const unsigned char*)
FAKE(int32_t, a_zvttvfapi_prphrl_enable_ir_block_key, unsigned char)
FAKE(int32_t, a_zvttvfapi_prphrl_add_ir_block_key, unsigned long long, unsigned long long)
FAKE(int32_t, a_zvttvfapi_prphrl_invert_ir_block_key, unsigned char)
FAKE(int32_t, a_zvttvfapi_prphrl_set_hdmi_hpd, unsigned char, unsigned char)
FAKE(int32_t, a_zvttvfapi_prphrl_get_hdmi_edid_data, unsigned int, fapi_core::ZvtTvFApiHDMI_EDID_Data_t*)
int32_t a_zvttvfapi_prphrl_set_hdmi_edid_data(unsigned int a, signed char b, unsigned int c,
                                              const unsigned char* d) {
    CALLED(a_zvttvfapi_prphrl_set_hdmi_edid_data, a, b, c, Data<const unsigned char>{d, 256});
}
FAKE(int32_t, a_zvttvfapi_prphrl_get_sar_adc, unsigned int, unsigned int)
FAKE(int32_t, a_zvttvfapi_prphrl_reload_hdcp, fapi_core::ZvtTvFApiReloadHdcp)
FAKE(int32_t, a_zvttvfapi_prphrl_switch_to_ttys1, bool)

#define CELL(p)                                \
    Data<std::remove_pointer_t<decltype(p)>> { \
        p, 1                                   \
    }
// FAKE_CELLS(name, types...): a fake function that takes each argument by address.
#define FAKE_CELLS(...) FAKE_CELLS_FORM(__VA_ARGS__, 4, 3, 2, 1, )(__VA_ARGS__)
#define FAKE_CELLS_FORM(_name, _1, _2, _3, _4, count, ...) FAKE_CELLS_##count
// clang-format off
#define FAKE_CELLS_1(name, A) int32_t name(A* a) { CALLED(name, CELL(a)); }
#define FAKE_CELLS_2(name, A, B) int32_t name(A* a, B* b) { CALLED(name, CELL(a), CELL(b)); }
#define FAKE_CELLS_3(name, A, B, C) \
    int32_t name(A* a, B* b, C* c) { CALLED(name, CELL(a), CELL(b), CELL(c)); }
#define FAKE_CELLS_4(name, A, B, C, D) \
    int32_t name(A* a, B* b, C* c, D* d) { CALLED(name, CELL(a), CELL(b), CELL(c), CELL(d)); }
// clang-format on

FAKE_CELLS(a_zvttvfapi_aud_adv_snd_enable, unsigned int)
FAKE_CELLS(a_zvttvfapi_aud_adv_snd_enable_sub, unsigned int, unsigned int, unsigned char)
FAKE_CELLS(a_zvttvfapi_aud_adv_snd_set_param, unsigned int)
FAKE_CELLS(a_zvttvfapi_aud_adv_set_prescale, unsigned char, unsigned short)
FAKE_CELLS(a_zvttvfapi_aud_adv_set_NR, unsigned char, unsigned short)
FAKE_CELLS(a_zvttvfapi_aud_adv_set_speaker_delay, unsigned int)
FAKE_CELLS(a_zvttvfapi_aud_adv_get_speaker_delay, unsigned int)
FAKE_CELLS(a_zvttvfapi_aud_adv_set_volume, unsigned int, unsigned int)
FAKE_CELLS(a_zvttvfapi_aud_adv_get_volume, unsigned int, unsigned int)
FAKE_CELLS(a_zvttvfapi_aud_adv_set_peq_q_value, unsigned short, unsigned short)
FAKE_CELLS(a_zvttvfapi_aud_adv_set_peq_freq_value, unsigned short, unsigned short)
FAKE_CELLS(a_zvttvfapi_aud_adv_set_peq_gain_value, unsigned short, unsigned short)
FAKE_CELLS(a_zvttvfapi_aud_adv_set_peq_value, unsigned short, unsigned short, unsigned short, unsigned short)
FAKE(int32_t, a_zvttvfapi_aud_adv_enable_basic_sound_effect, e_zvttvfapi_aud_basic_snd_type, unsigned char)
FAKE(int32_t, a_zvttvfapi_aud_basic_snd_set_param, e_zvttvfapi_aud_basic_snd_type,
     const fapi_core::ZvtTvFApiAudBasicSoundParam_t*)
FAKE(int32_t, a_zvttvfapi_aud_get_attr, unsigned int, void*, void*)
FAKE(int32_t, a_zvttvfapi_aud_load_aq_params, const unsigned char*)
int32_t a_zvttvfapi_aud_set_volume_table(fapi_core::ZvtTvFApiAudioOutPathEnum a, unsigned short* b,
                                         unsigned short c, const unsigned char* d) {
    CALLED(a_zvttvfapi_aud_set_volume_table, a, Data<unsigned short>{b, c}, c, d);
}

FAKE(int32_t, a_zvttvfapi_inpsrc_auto_gain_offset, unsigned int)
FAKE(int32_t, a_zvttvfapi_inpsrc_get_video_standard, unsigned char*)
FAKE(int32_t, a_zvttvfapi_inpsrc_check_vd_signal_locked, unsigned char*)
FAKE(int32_t, a_zvttvfapi_inpsrc_set_adc_phase, unsigned int, unsigned int, unsigned int, unsigned int)
FAKE(int32_t, a_zvttvfapi_inpsrc_set_adc_gain_offset, unsigned int, unsigned int, unsigned int, unsigned int,
     unsigned int, unsigned int, unsigned int)
FAKE(int32_t, a_zvttvfapi_inpsrc_get_adc_phase, unsigned int, fapi_core::ZvtTvFApiAdcPhase_t*)
FAKE(int32_t, a_zvttvfapi_inpsrc_get_adc_gain_offset, unsigned int, fapi_core::ZvtTvFApiAdcGainOffset_t*)
FAKE(int32_t, a_zvttvfapi_inpsrc_vif_init)
FAKE(int32_t, a_zvttvfapi_inpsrc_set_factory_vd_para, unsigned int, unsigned int)
FAKE(int32_t, a_zvttvfapi_inpsrc_get_factory_vd_para, unsigned int, unsigned int*)
FAKE(int32_t, a_zvttvfapi_inpsrc_get_current_input_source, unsigned char*)
FAKE(int32_t, a_zvttvfapi_inpsrc_get_current_input_source_type, unsigned char*)
FAKE(int32_t, a_zvttvfapi_inpsrc_get_input_timing, fapi_core::ZvtTvFApiVideoTiming&)
FAKE(int32_t, a_zvttvfapi_inpsrc_get_ber, int*)

FAKE(int32_t, a_zvttvfapi_net_set_mac, unsigned int*)
FAKE(int32_t, a_zvttvfapi_net_set_interface_updown, const char*, bool)
