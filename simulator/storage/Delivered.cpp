#include "simulator/storage/Delivered.h"

#include <string>

#include "simulator/board/Board.h"
#include "simulator/board/Status.h"
#include "simulator/storage/Identity.h"
#include "simulator/storage/IniStore.h"
#include "simulator/storage/Ips.h"

namespace simulator {
namespace {

/** The configuration that a set leaves the factory with. */
struct DefaultFile {
    const char* name;
    const char* text;
};
constexpr DefaultFile kPanel = {
        "panel.ini",
        "; The panel. Change it here or through the information interface: file \"panel\",\n"
        "; parameter \"timing:refresh_hz\".\n"
        "name = SIM-55UHD\n"
        "\n"
        "[timing]\n"
        "width = 3840\n"
        "height = 2160\n"
        "refresh_hz = 60\n"
        "\n"
        "[backlight]\n"
        "; Percent.\n"
        "default = 80\n"
        "pwm_hz = 200\n"
        "pwm_min = 5\n"
        "pwm_max = 100\n"
        "\n"
        "; The rest, the name and the range of the PWM: read by the display driver, when it starts and\n"
        "; when it is told to reload its parameters.\n"
        "[lvds]\n"
        "ssc = 1\n"
        "ssc_khz = 30\n"
        "; Hundredths of a percent.\n"
        "ssc_deviation = 50\n"
        "\n"
        "[tcon]\n"
        "panel_id = 55\n"
        "; 0x010000, 1.0.0.\n"
        "version = 65536\n"
        "enabled = 1\n"
        "\n"
        "[frc]\n"
        "; Whether there is a frame-rate converter.\n"
        "present = 1\n"};

constexpr DefaultFile kPq = {
        "pq.ini",
        "; Picture-quality data, read when the service starts and when it is told to update it.\n"
        "[range]\n"
        "hue_min = -50\n"
        "hue_max = 50\n"
        "saturation_min = -50\n"
        "saturation_max = 50\n"
        "luma_min = -50\n"
        "luma_max = 50\n"
        "\n"
        "[version]\n"
        "; A window may have its own: main_basic, sub_basic, third_basic.\n"
        "basic = 1.0.0\n"
        "color = 1.0.0\n"
        "sharpness = 1.0.0\n"
        "noise_reduction = 1.0.0\n"
        "contrast = 1.0.0\n"
        "motion = 1.0.0\n"
        "gamma = 1.0.0\n"};

constexpr DefaultFile kTuner = {"tuner.ini",
                                "; The tuners.\n"
                                "[terrestrial]\n"
                                "enabled = 1\n"
                                "; kHz\n"
                                "scan_start = 474000\n"
                                "scan_end = 858000\n"
                                "bandwidth = 8000\n"
                                "\n"
                                "[satellite]\n"
                                "enabled = 1\n"
                                "; MHz, low and high local oscillator\n"
                                "lo_low = 9750\n"
                                "lo_high = 10600\n"};

/** The file that lists the numbered IPs; as delivered, the fuses decide. */
std::string ipDefaults() {
    std::string text =
            "; Licensed blocks of the chip: remove the semicolon to overrule a fuse, 1 enables, 0 disables.\n"
            "; Read when the service starts. The number before each is the one that clients ask for.\n"
            "[ip]\n";
    for (unsigned id = 0; id < kIpCount; ++id) {
        text += "; " + std::to_string(id) + ": " + kIps[id].what + "\n; " + kIps[id].key + " = " +
                (kIps[id].fused ? "1" : "0") + "\n";
    }
    return text;
}

}  // namespace

int32_t deliver() {
    Identity identity;
    int32_t result = readIdentity(&identity);
    // Where engineers put files, who may look for it before the board has needed it.
    const int32_t made = boardState().openFolder("files").status;
    result = result == kOk ? made : result;
    const std::string ips = ipDefaults();
    for (const DefaultFile& file : {kPanel, kPq, kTuner, DefaultFile{"ip.ini", ips.c_str()}}) {
        // By the way that clients' parameters take: one of them may be setting the first.
        const int32_t created = boardIni().create(file.name, file.text);
        result = result == kOk ? created : result;
    }
    return result;
}

}  // namespace simulator
