#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "chiplayer/types.h"

// Module disp: picture quality, panel, timing and screen capture.
//
// Functions run on any thread and side by side, the same one included. Unless a comment says otherwise they
// return 0, or a negative status of the library's own: then nothing has changed, and what was written to the
// results still reaches the client. What is called a number of the library's (a parameter, an item, a timing,
// a mode) is the library's to define; the service passes it unchecked, so the library refuses what it does
// not know.

namespace fapi_core {

/** A video window. The service passes no value beyond UNKNOWN, which the library refuses. */
enum class ZvtTvFApiVideoWin : uint8_t {
    MAIN = 0,
    SUB = 1,
    THIRD = 2,
    UNKNOWN = 3,
};

/** A kind of picture-quality data. The service passes no value beyond UNKNOWN, which the library refuses. */
enum class ZvtTvFApiPqType : uint8_t {
    BASIC = 0,
    COLOR = 1,
    SHARPNESS = 2,
    NOISE_REDUCTION = 3,
    CONTRAST = 4,
    MOTION = 5,
    GAMMA = 6,
    UNKNOWN = 7,
};

/** The lowest and highest value that each axis of the PQ engine's colour model takes. */
struct ZvtTvFApiDispHsyModelRange {
    int32_t s32HueMin;
    int32_t s32HueMax;
    int32_t s32SaturationMin;
    int32_t s32SaturationMax;
    int32_t s32LumaMin;
    int32_t s32LumaMax;
};
static_assert(sizeof(ZvtTvFApiDispHsyModelRange) == 24, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispHsyModelRange, s32LumaMax) == 20, "record layout is the library's");

/** What the timing controller runs on. */
struct ZvtTvFApiDispTconInfo {
    /** version of the timing controller's data */
    uint32_t u32Version;
    /** checksum over that data */
    uint32_t u32Checksum;
    /** number of the panel that the data is for */
    uint16_t u16PanelId;
    /** name of that panel, zeros behind it; all 32 bytes may be in use */
    uint8_t au8PanelName[32];
    /** whether the chip's own timing controller drives the panel: 0 no, every other value yes */
    uint8_t u8Enabled;
    uint8_t u8Reserved;
};
static_assert(std::has_unique_object_representations_v<ZvtTvFApiDispTconInfo>, "no padding");
static_assert(sizeof(ZvtTvFApiDispTconInfo) == 44, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTconInfo, u16PanelId) == 8, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTconInfo, au8PanelName) == 10, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTconInfo, u8Enabled) == 42, "record layout is the library's");

/** The external frame-rate converter. */
struct ZvtTvFApiDispExtFrcDeviceInfo {
    /** version of the firmware that it runs */
    uint32_t u32FwVersion;
    /** which device it is */
    uint16_t u16ChipId;
    /** revision of the chip */
    uint8_t u8Revision;
    /** 0 running, 1 its firmware is being written */
    uint8_t u8State;
};
static_assert(sizeof(ZvtTvFApiDispExtFrcDeviceInfo) == 8, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispExtFrcDeviceInfo, u16ChipId) == 4, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispExtFrcDeviceInfo, u8Revision) == 6, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispExtFrcDeviceInfo, u8State) == 7, "record layout is the library's");

}  // namespace fapi_core

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_disp_init();
int32_t a_zvttvfapi_disp_deinit();
int32_t a_zvttvfapi_disp_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_disp_unreg_callback();

/** Makes the window of this number, counted as in ZvtTvFApiVideoWin, the one that is seen and adjusted. */
int32_t a_zvttvfapi_disp_switch_window(unsigned int u32Window);

/** Sets one picture parameter (brightness, contrast, ...), by the library's number, in the current window. */
int32_t a_zvttvfapi_disp_set_picture_param(unsigned int u32Param, unsigned int u32Value);

/**
 * Sets how the panel is driven: kind of link and number of its lanes, bits of each colour component, order of
 * the bits on the link (both kinds are numbers of the library's), swing of the signal in mV, and mirroring
 * (bit 0 left to right, bit 1 top to bottom).
 */
int32_t a_zvttvfapi_disp_panel_set_attr(unsigned int u32Link, unsigned int u32Lanes, unsigned int u32BitDepth,
                                        unsigned int u32Mapping, unsigned int u32Swing,
                                        unsigned int u32Mirror);

/**
 * Sets how much of the picture lies beyond each edge of the panel, in tenths of a percent of the picture's
 * width or height. Negative values leave a black margin instead.
 */
int32_t a_zvttvfapi_disp_set_over_scan(int s32Left, int s32Right, int s32Top, int s32Bottom);

/** Sets the white point: gains of which 1024 is 1.0, and offsets of which 1024 is none, in levels of 10 bits.
 */
int32_t a_zvttvfapi_disp_set_color_temperature(unsigned int u32RedGain, unsigned int u32GreenGain,
                                               unsigned int u32BlueGain, unsigned int u32RedOffset,
                                               unsigned int u32GreenOffset, unsigned int u32BlueOffset);

/** Writes the ranges of the colour model to *pstRange, which the service has zeroed. */
int32_t a_zvttvfapi_disp_get_pq_range(fapi_core::ZvtTvFApiDispHsyModelRange* pstRange);

/** Writes the description of the timing controller to *pstInfo, which the service has zeroed. */
int32_t a_zvttvfapi_disp_get_tcon_info(fapi_core::ZvtTvFApiDispTconInfo* pstInfo);

/**
 * Sets the picture parameters of one type at once. pvData holds the u32Size bytes of the library's record for
 * that type, as the client gave them: the library checks that the type exists and that the size is its
 * record's. u32Size is never 0. The bytes are lent for the call, at an address that suits any record.
 */
int32_t a_zvttvfapi_disp_set_picture_param_struct(unsigned int u32Type, unsigned int u32Size, void* pvData);

/**
 * Reads the spread spectrum of the panel's link: whether it is on (0 or 1), the frequency of the modulation
 * in kHz, and how far it moves the clock in hundredths of a percent. All three are 0 before.
 */
int32_t a_zvttvfapi_disp_get_lvds_ssc(unsigned char& u8Enable, unsigned int& u32Frequency,
                                      unsigned int& u32Deviation);

/** Reads the lowest and highest duty of the backlight's PWM, in percent. Both are 0 before. */
int32_t a_zvttvfapi_disp_get_pwm_range(unsigned int& u32Min, unsigned int& u32Max);

/** Writes the description of the external frame-rate converter to *pstInfo, which the service has zeroed. */
int32_t a_zvttvfapi_disp_get_frc_device_info(fapi_core::ZvtTvFApiDispExtFrcDeviceInfo* pstInfo);

/**
 * Begins to write the firmware file of this path to the frame-rate converter, and returns 0 once it has
 * begun: how far it has got and how it ended are events of the module. The path is NUL-terminated and lent
 * for the call.
 */
int32_t a_zvttvfapi_disp_upgrade_vexa_fw(unsigned char const* pu8Path);

/**
 * Writes the version of one kind of picture-quality data of one window into pcVersion, a buffer of u32Size
 * bytes. The service passes 128 bytes, zeroed; a text that fills them needs no NUL.
 */
int32_t a_zvttvfapi_disp_get_pq_version(unsigned int u32Size, char* pcVersion,
                                        fapi_core::ZvtTvFApiVideoWin eWindow,
                                        fapi_core::ZvtTvFApiPqType eType);

/** Reads the picture-quality data anew from its ini files. */
int32_t a_zvttvfapi_disp_update_pq_ini_files();

/** Sets the panel's timing, by the library's number. */
int32_t a_zvttvfapi_disp_set_output_timing(unsigned int u32Timing);

/** Has the display driver load its parameters again. */
int32_t a_zvttvfapi_disp_nty_drv_reload_param();

/** Sets one item of the PQ engine, by the library's number. */
int32_t a_zvttvfapi_disp_set_pq_value(unsigned int u32Item, int s32Value);

/**
 * Writes what the panel shows to a file of this path on the USB storage. The option is a number of the
 * library's; 0 is the whole picture. Returns 0 once the file is complete. The path is NUL-terminated and lent
 * for the call.
 */
int32_t a_zvttvfapi_disp_capture_screen_to_usb(unsigned char const* pu8Path, int s32Option);

/**
 * Tells whether the frame-rate converter answers: the result's low 8 bits are 0 when it does not, anything
 * else when it does. Not a status.
 */
int32_t a_zvttvfapi_disp_get_frc_connect_status();

/**
 * Sets the gamma curve: for each 8-bit input level of a colour, the panel's level, 0 to 1023. The library
 * reads 256 entries of each table, whose lengths it is not told: each table has the client's entries, their
 * number taken modulo 65,536 and at least one, and zeros up to 256 if they are fewer. The tables are the
 * service's, for the call; the library may write to them.
 */
int32_t a_zvttvfapi_disp_set_gamma_curve(unsigned short* pu16Red, unsigned short* pu16Green,
                                         unsigned short* pu16Blue);

/** Sets whether and how the output runs on its own clock rather than the input's, by the library's number. */
int32_t a_zvttvfapi_disp_set_freerun_control(unsigned int u32Mode);
