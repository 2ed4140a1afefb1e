#include <sys/random.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include "simulator/ChipLayer.h"
#include "simulator/Ips.h"
#include "simulator/StateDirectory.h"
#include "simulator/Status.h"

using namespace simulator;

namespace {

constexpr int kDefaultDebugLevel = 1;
constexpr mode_t kFileMode = 0644;

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
        "pwm_hz = 200\n"};

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

/** Creates the board's identity once; it stays the same however often the software is replaced. */
int32_t createIdentity(int root) {
    unsigned char bytes[8];
    if (getrandom(bytes, sizeof(bytes), 0) != static_cast<ssize_t>(sizeof(bytes))) {
        return kIoError;
    }
    std::string text = "; Made on the first start.\nmodel = SIM-55UHD\nserial = SIM";
    for (const unsigned char byte : bytes) {
        char digits[3];
        snprintf(digits, sizeof(digits), "%02X", byte);
        text += digits;
    }
    return createFile(root, "identity.ini", text + "\n", kFileMode);
}

int32_t prepareState() {
    const StateDirectory state = StateDirectory::fromEnvironment();
    const Descriptor root = state.openRoot();
    const Descriptor ini = root ? state.openFolder("ini") : Descriptor();
    if (!ini) {
        return kIoError;
    }
    const FolderLock rootLock(root.get());
    const FolderLock iniLock(ini.get());
    for (const FolderLock* lock : {&rootLock, &iniLock}) {
        if (lock->status() != kOk) {
            return lock->status();
        }
    }
    int32_t result = createIdentity(root.get());
    const std::string ips = ipDefaults();
    for (const DefaultFile& file : {kPanel, kTuner, DefaultFile{"ip.ini", ips.c_str()}}) {
        const int32_t created = createFile(ini.get(), file.name, file.text, kFileMode);
        result = result == kOk ? created : result;
    }
    return result;
}

}  // namespace

/** Makes what is missing of the board's identity and of the configuration files; 0 or a status. */
int _a_zvttvfapi_custom_init() {
    try {
        return prepareState();
    } catch (const std::bad_alloc&) {
        return kNoMemory;
    }
}

/** $ZVTTV_DEBUG_LEVEL, an integer; 1 when absent, or when it is none, which is said on standard error. */
int _a_zvttvfapi_custom_init_debug_level() {
    const char* text = getenv("ZVTTV_DEBUG_LEVEL");
    if (text == nullptr || text[0] == '\0') {
        return kDefaultDebugLevel;
    }
    char* end = nullptr;
    errno = 0;
    const long level = strtol(text, &end, 0);
    if (end == text || *end != '\0' || errno != 0 || level < INT_MIN || level > INT_MAX) {
        fprintf(stderr, "board: ZVTTV_DEBUG_LEVEL is \"%s\", not an integer: %d is used\n", text,
                kDefaultDebugLevel);
        return kDefaultDebugLevel;
    }
    return static_cast<int>(level);
}
