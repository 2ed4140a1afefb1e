#include "simulator/panel/Configuration.h"

#include <zlib.h>

#include "simulator/board/Faults.h"
#include "simulator/board/Status.h"
#include "simulator/board/Text.h"
#include "simulator/storage/IniStore.h"

namespace simulator {
namespace {

// As many as a client's buffer takes, its terminator aside.
constexpr size_t kMaxVersion = 127;
// What the timing controller's record has room for.
constexpr size_t kMaxPanelName = 32;
// Beyond these the items of the PQ engine do not reach.
constexpr int64_t kMaxRange = 100;

constexpr char kDefaultVersion[] = "1.0.0";
constexpr const char* kWindowNames[kWindows] = {"main", "sub", "third"};
constexpr const char* kTypeNames[kPqTypes] = {"basic",    "color",  "sharpness", "noise_reduction",
                                              "contrast", "motion", "gamma"};

/** Reads parameters of one file. */
class Reader {
  public:
    explicit Reader(const char* file) : mFile(file), mStatus(boardIni().read(file, &mContents)) {
        mStatus = mStatus == kNotFound ? kOk : mStatus;
        mUnreadable = mStatus != kOk;
    }

    /** False when there is no such parameter. */
    bool text(const std::string& parameter, size_t mostBytes, std::string* value) {
        const auto found = mContents.parameters.find(parameter);
        if (found == mContents.parameters.end()) {
            return false;
        }
        if (found->second.text.size() > mostBytes) {
            fault(parameter, "is longer than " + std::to_string(mostBytes) + " bytes");
            return false;
        }
        *value = found->second.text;
        return true;
    }

    template <typename T>
    void number(const std::string& parameter, int64_t least, int64_t most, T* value) {
        std::string digits;
        int64_t found = 0;
        if (!text(parameter, 32, &digits)) {
            return;
        }
        if (!readNumber(digits, &found) || found < least || found > most) {
            fault(parameter, "is not a number from " + std::to_string(least) + " to " + std::to_string(most));
            return;
        }
        *value = static_cast<T>(found);
    }

    void fault(const std::string& parameter, const std::string& what) {
        mContents.faults[mContents.parameters[parameter].line] = parameter + " " + what;
        mStatus = kBadFile;
    }

    /** What was wrong is said. A line that means nothing does no harm. */
    int32_t end() {
        tellFaults(boardIni().pathOf(mFile), mUnreadable
                                                     ? std::vector<std::string>{"cannot be read (status " +
                                                                                std::to_string(mStatus) + ")"}
                                                     : mContents.faultLines());
        return mStatus;
    }

  private:
    const char* const mFile;
    IniContents mContents;
    int32_t mStatus;
    bool mUnreadable;
};

}  // namespace

uint32_t DriverParameters::tconChecksum() const {
    const std::string data = std::to_string(tconVersion) + " " + std::to_string(panelId) + " " + name;
    return static_cast<uint32_t>(
            crc32(0, reinterpret_cast<const Bytef*>(data.data()), static_cast<uInt>(data.size())));
}

PqData::PqData() {
    for (auto& window : versions) {
        for (std::string& version : window) {
            version = kDefaultVersion;
        }
    }
}

int32_t loadDriverParameters(DriverParameters* parameters) {
    DriverParameters found;
    Reader ini("panel");
    ini.text("name", kMaxPanelName, &found.name);
    ini.number("tcon:panel_id", 0, UINT16_MAX, &found.panelId);
    ini.number("tcon:version", 0, UINT32_MAX, &found.tconVersion);
    ini.number("tcon:enabled", 0, 1, &found.tconEnabled);
    ini.number("lvds:ssc", 0, 1, &found.sscEnabled);
    ini.number("lvds:ssc_khz", 1, 1000, &found.sscFrequency);
    ini.number("lvds:ssc_deviation", 0, 500, &found.sscDeviation);
    ini.number("backlight:pwm_min", 0, 100, &found.pwmMin);
    ini.number("backlight:pwm_max", 0, 100, &found.pwmMax);
    ini.number("frc:present", 0, 1, &found.frcPresent);
    if (found.pwmMin > found.pwmMax) {
        ini.fault("backlight:pwm_min", "is more than pwm_max");
    }
    const int32_t status = ini.end();
    *parameters = status == kOk ? found : *parameters;
    return status;
}

int32_t loadPqData(PqData* data) {
    PqData found;
    Reader ini("pq");
    const char* const axes[] = {"hue", "saturation", "luma"};
    for (unsigned i = 0; i < std::size(axes); ++i) {
        const std::string least = std::string("range:") + axes[i] + "_min";
        ini.number(least, -kMaxRange, kMaxRange, &found.range[i][0]);
        ini.number(std::string("range:") + axes[i] + "_max", -kMaxRange, kMaxRange, &found.range[i][1]);
        if (found.range[i][0] > found.range[i][1]) {
            ini.fault(least, "is more than its max");
        }
    }
    for (unsigned type = 0; type < kPqTypes; ++type) {
        for (unsigned window = 0; window < kWindows; ++window) {
            std::string* const version = &found.versions[window][type];
            ini.text(std::string("version:") + kTypeNames[type], kMaxVersion, version);
            // A window may have data of its own.
            ini.text(std::string("version:") + kWindowNames[window] + "_" + kTypeNames[type], kMaxVersion,
                     version);
        }
    }
    const int32_t status = ini.end();
    *data = status == kOk ? found : *data;
    return status;
}

}  // namespace simulator
