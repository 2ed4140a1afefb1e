#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace simulator {

/** The video windows, as ZvtTvFApiVideoWin counts them. */
constexpr unsigned kWindows = 3;

/** What one window has of its own, in the order of clients' numbers; 0 to 100. */
enum PictureParameter {
    kBrightness,
    kContrast,
    kSaturation,
    kHue,
    kSharpness,
    kBacklight,
    kPictureParameters
};

/** The items of the PQ engine, in the order of clients' numbers. */
enum PqItem { kPqHue, kPqSaturation, kPqLuma, kNoiseReduction, kDynamicContrast, kMotion, kPqItems };

constexpr unsigned kGammaEntries = 256;

/** What the set's flash keeps of the display: groups of numbers, each set as a whole. */
enum class Setting {
    PictureMain,  // the PictureParameters of a window
    PictureSub,
    PictureThird,
    Overscan,    // left, right, top, bottom, in tenths of a percent
    WhitePoint,  // gains and then offsets of red, green, blue; 1024 is 1.0 and none
    Pq,          // the PqItems
    Link,        // kind, lanes, bits of a component, mapping, swing in mV, mirroring
    Timing,      // its number in kTimings
    GammaRed,    // kGammaEntries levels of 10 bits
    GammaGreen,
    GammaBlue,
    FrcFirmware,  // its version
};
constexpr unsigned kSettings = 12;

struct Timing {
    unsigned width;
    unsigned height;
    unsigned hertz;
};
/** The panel's timings, by the number that clients choose them with. */
constexpr Timing kTimings[] = {
        {3840, 2160, 60}, {3840, 2160, 50}, {1920, 1080, 60}, {1920, 1080, 50}, {1920, 1080, 120}};

class Settings {
  public:
    using Values = std::vector<int64_t>;

    /** As the set leaves the factory. */
    Settings();

    const Values& operator[](Setting setting) const { return mValues[static_cast<size_t>(setting)]; }

    /** kOutOfRange, and no change, when it takes another number of values or one of them is out of range. */
    int32_t set(Setting setting, const Values& values);

    /** As a file: a line for each setting, its name, an equals sign, its values. */
    std::string text() const;

    /** The settings of a file; those without a line keep their values. Returns what is wrong with it, or
     * nothing. */
    std::string read(const std::string& text);

  private:
    std::array<Values, kSettings> mValues;
};

/**
 * Reads the settings from display/settings.txt in the state folder. kOk without such a file too: then they
 * are those of the factory. kBadFile (what is wrong with it is said on standard error), kIoError: they stay
 * as they are.
 */
int32_t loadSettings(Settings* settings);

/**
 * Reads the file anew, changes some settings in it and here, and writes it: on kOk all of them are on the
 * disk. kOutOfRange, kBadFile, kBusy, kIoError: nothing has changed here, nor there, except that after
 * kIoError the change may not survive a power cut.
 */
int32_t changeSettings(Settings* settings, const std::vector<std::pair<Setting, Settings::Values>>& changes);

}  // namespace simulator
