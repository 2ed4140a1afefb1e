#pragma once

#include <cstddef>
#include <vector>

#include "simulator/storage/KeptNumbers.h"

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

struct Timing {
    unsigned width;
    unsigned height;
    unsigned hertz;
};
/** The panel's timings, by the number that clients choose them with. */
constexpr Timing kTimings[] = {
        {3840, 2160, 60}, {3840, 2160, 50}, {1920, 1080, 60}, {1920, 1080, 50}, {1920, 1080, 120}};

/** All of them at one moment. */
class Settings {
  public:
    using Values = KeptNumbers::Values;

    explicit Settings(const KeptNumbers& kept) : mValues(*kept.get()) {}

    Values& operator[](Setting setting) { return mValues[static_cast<size_t>(setting)]; }
    const Values& operator[](Setting setting) const { return mValues[static_cast<size_t>(setting)]; }

  private:
    std::vector<Values> mValues;
};

/** Where they are kept, each a group; made on first use, never destroyed. */
KeptNumbers& displaySettings();

}  // namespace simulator
