// Module disp: the panel's settings, the frame-rate converter beside it, and pictures of what it shows.

#include <algorithm>
#include <cstring>

#include "simulator/board/ChipCall.h"
#include "simulator/board/Module.h"
#include "simulator/board/OwnParameters.h"
#include "simulator/modules/ChipLayer.h"
#include "simulator/panel/Capture.h"
#include "simulator/panel/Panel.h"
#include "simulator/upgrade/FrcDevice.h"

using namespace simulator;

namespace {

Module& self();

FrcDevice& frc() {
    static FrcDevice& sFrc = *new FrcDevice(self(), [](uint32_t version) {
        return guarded([version] { return panel().change({{Setting::FrcFirmware, {version}}}); });
    });
    return sFrc;
}

std::string describe() {
    std::string text;
    for (const std::string& line : panel().banner()) {
        text += line + "\n";
    }
    return text + "FRC " + (frc().upgrading() ? "is being upgraded" : "is not being upgraded") +
           (frc().answers() ? ", answers\n" : ", does not answer\n");
}

Module& self() {
    static Module& sModule = *new Module("disp", describe);
    return sModule;
}

/** The records of a_zvttvfapi_disp_set_picture_param_struct, by type: each is six 32-bit numbers. */
enum RecordType { kPictureRecord, kWhitePointRecord, kPqRecord, kRecordTypes };
constexpr size_t kRecordNumbers = 6;

Settings::Values gammaValues(const unsigned short* table) {
    return Settings::Values(table, table + kGammaEntries);
}

}  // namespace

int32_t a_zvttvfapi_disp_init() {
    return guarded([] {
        const int32_t result = self().init();
        if (result == kOk) {
            panel();
            addOwnParameter("picture:revision", [](std::string* value) {
                *value = std::to_string(panel().revision());
                return kOk;
            });
            addOwnParameter("picture:captured", [](std::string* value) -> int32_t {
                const std::optional<Captured> captured = lastCapture();
                if (!captured) {
                    return kNotFound;
                }
                *value = std::to_string(captured->instant.time_since_epoch().count()) + " " + captured->path;
                return kOk;
            });
        }
        return result;
    });
}
int32_t a_zvttvfapi_disp_deinit() {
    return guarded([] {
        frc().abort();
        const int32_t result = self().deinit();
        return result != kOk ? result : panel().withLayers([](Layers& layers) {
            layers.window = 0;
            layers.freeRun = FreeRun::Automatic;
            return kOk;
        });
    });
}
int32_t a_zvttvfapi_disp_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    return self().registerHandler(pfnHandler);
}
int32_t a_zvttvfapi_disp_unreg_callback() {
    return self().unregisterHandler();
}

int32_t a_zvttvfapi_disp_switch_window(unsigned int u32Window) {
    return guarded([=]() -> int32_t {
        if (u32Window >= kWindows) {
            return kOutOfRange;
        }
        return panel().withLayers([=](Layers& layers) {
            layers.window = u32Window;
            return kOk;
        });
    });
}

int32_t a_zvttvfapi_disp_set_picture_param(unsigned int u32Param, unsigned int u32Value) {
    return guarded([=] { return panel().changePicture(u32Param, u32Value); });
}

int32_t a_zvttvfapi_disp_panel_set_attr(unsigned int u32Link, unsigned int u32Lanes, unsigned int u32BitDepth,
                                        unsigned int u32Mapping, unsigned int u32Swing,
                                        unsigned int u32Mirror) {
    return guarded([=] {
        return panel().change(
                {{Setting::Link, {u32Link, u32Lanes, u32BitDepth, u32Mapping, u32Swing, u32Mirror}}});
    });
}

int32_t a_zvttvfapi_disp_set_over_scan(int s32Left, int s32Right, int s32Top, int s32Bottom) {
    return guarded([=] {
        return panel().change({{Setting::Overscan, {s32Left, s32Right, s32Top, s32Bottom}}});
    });
}

int32_t a_zvttvfapi_disp_set_color_temperature(unsigned int u32RedGain, unsigned int u32GreenGain,
                                               unsigned int u32BlueGain, unsigned int u32RedOffset,
                                               unsigned int u32GreenOffset, unsigned int u32BlueOffset) {
    return guarded([=] {
        return panel().change(
                {{Setting::WhitePoint,
                  {u32RedGain, u32GreenGain, u32BlueGain, u32RedOffset, u32GreenOffset, u32BlueOffset}}});
    });
}

int32_t a_zvttvfapi_disp_get_pq_range(fapi_core::ZvtTvFApiDispHsyModelRange* pstRange) {
    return guarded([=]() -> int32_t {
        if (pstRange == nullptr) {
            return kOutOfRange;
        }
        const PqData data = panel().pqData();
        *pstRange = {data.range[0][0], data.range[0][1], data.range[1][0],
                     data.range[1][1], data.range[2][0], data.range[2][1]};
        return kOk;
    });
}

int32_t a_zvttvfapi_disp_get_tcon_info(fapi_core::ZvtTvFApiDispTconInfo* pstInfo) {
    return guarded([=]() -> int32_t {
        if (pstInfo == nullptr) {
            return kOutOfRange;
        }
        const DriverParameters driver = panel().driver();
        *pstInfo = {};
        pstInfo->u32Version = driver.tconVersion;
        pstInfo->u32Checksum = driver.tconChecksum();
        pstInfo->u16PanelId = static_cast<uint16_t>(driver.panelId);
        memcpy(pstInfo->au8PanelName, driver.name.data(),
               std::min(driver.name.size(), sizeof(pstInfo->au8PanelName)));
        pstInfo->u8Enabled = driver.tconEnabled ? 1 : 0;
        return kOk;
    });
}

int32_t a_zvttvfapi_disp_set_picture_param_struct(unsigned int u32Type, unsigned int u32Size, void* pvData) {
    return guarded([=]() -> int32_t {
        uint32_t numbers[kRecordNumbers];
        if (u32Type >= kRecordTypes || u32Size != sizeof(numbers) || pvData == nullptr) {
            return kOutOfRange;
        }
        memcpy(numbers, pvData, sizeof(numbers));
        Settings::Values values(numbers, numbers + kRecordNumbers);
        switch (static_cast<RecordType>(u32Type)) {
            case kPictureRecord:
                return panel().changePicture(values);
            case kWhitePointRecord:
                return panel().change({{Setting::WhitePoint, values}});
            case kPqRecord:
                // These are signed.
                std::transform(numbers, numbers + kRecordNumbers, values.begin(),
                               [](uint32_t number) { return static_cast<int32_t>(number); });
                return panel().changePq(values);
            case kRecordTypes:
                break;
        }
        return kOutOfRange;
    });
}

int32_t a_zvttvfapi_disp_get_lvds_ssc(unsigned char& u8Enable, unsigned int& u32Frequency,
                                      unsigned int& u32Deviation) {
    return guarded([&] {
        const DriverParameters driver = panel().driver();
        u8Enable = driver.sscEnabled ? 1 : 0;
        u32Frequency = driver.sscFrequency;
        u32Deviation = driver.sscDeviation;
        return kOk;
    });
}

int32_t a_zvttvfapi_disp_get_pwm_range(unsigned int& u32Min, unsigned int& u32Max) {
    return guarded([&] {
        const DriverParameters driver = panel().driver();
        u32Min = driver.pwmMin;
        u32Max = driver.pwmMax;
        return kOk;
    });
}

int32_t a_zvttvfapi_disp_get_frc_device_info(fapi_core::ZvtTvFApiDispExtFrcDeviceInfo* pstInfo) {
    return guarded([=]() -> int32_t {
        constexpr uint16_t kChip = 0x5A10;
        constexpr uint8_t kRevision = 2;
        if (pstInfo == nullptr) {
            return kOutOfRange;
        }
        if (!panel().driver().frcPresent) {
            return kAbsent;
        }
        if (!frc().answers()) {
            return kBusy;
        }
        const auto version = static_cast<uint32_t>(Settings(displaySettings())[Setting::FrcFirmware][0]);
        *pstInfo = {version, kChip, kRevision, static_cast<uint8_t>(frc().upgrading() ? 1 : 0)};
        return kOk;
    });
}

int32_t a_zvttvfapi_disp_upgrade_vexa_fw(unsigned char const* pu8Path) {
    return guarded([=]() -> int32_t {
        return panel().driver().frcPresent ? frc().beginUpgrade(text(pu8Path)) : kAbsent;
    });
}

int32_t a_zvttvfapi_disp_get_pq_version(unsigned int u32Size, char* pcVersion,
                                        fapi_core::ZvtTvFApiVideoWin eWindow,
                                        fapi_core::ZvtTvFApiPqType eType) {
    return guarded([=]() -> int32_t {
        const auto window = static_cast<unsigned>(eWindow);
        const auto type = static_cast<unsigned>(eType);
        if (pcVersion == nullptr || u32Size == 0) {
            return kOutOfRange;
        }
        pcVersion[0] = '\0';
        if (window >= kWindows || type >= kPqTypes) {
            return kOutOfRange;
        }
        const PqData data = panel().pqData();
        const std::string& version = data.versions[window][type];
        if (version.size() >= u32Size) {
            return kTooLong;
        }
        memcpy(pcVersion, version.c_str(), version.size() + 1);
        return kOk;
    });
}

int32_t a_zvttvfapi_disp_update_pq_ini_files() {
    return guarded([] { return panel().reloadPq(); });
}

int32_t a_zvttvfapi_disp_set_output_timing(unsigned int u32Timing) {
    return guarded([=] { return panel().change({{Setting::Timing, {u32Timing}}}); });
}

int32_t a_zvttvfapi_disp_nty_drv_reload_param() {
    return guarded([] { return panel().reloadDriver(); });
}

int32_t a_zvttvfapi_disp_set_pq_value(unsigned int u32Item, int s32Value) {
    return guarded([=] { return panel().changePqItem(u32Item, s32Value); });
}

int32_t a_zvttvfapi_disp_capture_screen_to_usb(unsigned char const* pu8Path, int s32Option) {
    return guarded([=]() -> int32_t {
        return s32Option < 0 || s32Option >= kSeens
                       ? kOutOfRange
                       : captureToUsb(text(pu8Path), static_cast<Seen>(s32Option));
    });
}

int32_t a_zvttvfapi_disp_get_frc_connect_status() {
    // Not a status: without memory to look, it does not answer.
    int32_t answers = 0;
    guarded([&] {
        answers = panel().driver().frcPresent && frc().answers() ? 1 : 0;
        return kOk;
    });
    return answers;
}

int32_t a_zvttvfapi_disp_set_gamma_curve(unsigned short* pu16Red, unsigned short* pu16Green,
                                         unsigned short* pu16Blue) {
    return guarded([=]() -> int32_t {
        if (pu16Red == nullptr || pu16Green == nullptr || pu16Blue == nullptr) {
            return kOutOfRange;
        }
        return panel().change({{Setting::GammaRed, gammaValues(pu16Red)},
                               {Setting::GammaGreen, gammaValues(pu16Green)},
                               {Setting::GammaBlue, gammaValues(pu16Blue)}});
    });
}

int32_t a_zvttvfapi_disp_set_freerun_control(unsigned int u32Mode) {
    return guarded([=]() -> int32_t {
        if (u32Mode >= kFreeRuns) {
            return kOutOfRange;
        }
        return panel().withLayers([=](Layers& layers) {
            layers.freeRun = static_cast<FreeRun>(u32Mode);
            return kOk;
        });
    });
}
