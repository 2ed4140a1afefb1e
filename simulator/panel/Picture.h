#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "simulator/panel/PanelClock.h"
#include "simulator/panel/Settings.h"
#include "simulator/panel/Surface.h"
#include "simulator/panel/TestPattern.h"

namespace simulator {

/** Where the panel's timing comes from, by the number that clients choose it with. */
enum class FreeRun : uint32_t {
    Automatic,  // the input's clock; its own one without an input, the video is blue then
    Always,     // its own clock; the video is black
    Never,      // the input's clock: without one the panel is dark, unless a generator in the board runs
};
constexpr uint32_t kFreeRuns = 3;

enum OsdLayer { kBanner, kSubtitle, kOsdLayers };

/** Colours that follow each other in place of the video. */
struct BurnIn {
    std::vector<Light> colours;  // at least one
    std::chrono::seconds interval{};
    PanelClock::time_point start;
};

/** The graphics plane. */
struct Plane {
    Surface surface;
    bool shown = true;
    Box place = kWholePicture;
    uint8_t alpha = 255;
    uint16_t lineWidth = 1;
    Argb back = 0;
};

/** What the board loses when it is switched off. */
struct Layers {
    unsigned window = 0;
    FreeRun freeRun = FreeRun::Automatic;
    bool pqOn = true;
    TestPattern pattern;
    std::optional<PanelClock::time_point> patternEnd;
    std::optional<BurnIn> burnIn;
    std::unique_ptr<Plane> plane;
    bool osd[kOsdLayers] = {};
};

/** What of the layers the time has changed. */
struct Moment {
    bool patternEnded = false;
    size_t burnInColour = 0;

    static Moment of(const Layers& layers, PanelClock::time_point now);
    bool operator==(const Moment& other) const {
        return patternEnded == other.patternEnded && burnInColour == other.burnInColour;
    }
};

/** Which layers a picture is composed of, by the number that clients choose them with. */
enum class Seen : int32_t { All, Video, Graphics, Osd };
constexpr int32_t kSeens = 4;

/** The input's picture at the panel's size, transparent where nothing arrives; null when no source is chosen.
 */
struct InputLayer {
    bool locked = false;
    const Surface* surface = nullptr;
};

/**
 * What the panel shows, three bytes (red, green, blue) a pixel, row after row. From below: the video, a test
 * pattern on it, or the burn-in in place of both; the graphics plane; the OSD. Layers that are not asked for
 * are as if off, and without the video it is black. The video goes through its window, the overscan and the
 * PQ engine; all of it through white point, gamma, mirroring and the bits of the link.
 *
 * The memory does not depend on what clients set. Throws std::bad_alloc.
 */
std::vector<uint8_t> compose(const Settings& settings, const Layers& layers, const InputLayer& input,
                             const std::vector<std::string>& banner, Seen seen, PanelClock::time_point now);

}  // namespace simulator
