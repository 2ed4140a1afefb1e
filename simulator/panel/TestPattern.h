#pragma once

#include <cstdint>

#include "chiplayer/disptst.h"
#include "simulator/panel/Surface.h"

namespace simulator {

/** A colour of the video path: levels of 10 bits. */
struct Light {
    float red = 0;
    float green = 0;
    float blue = 0;
};

constexpr unsigned kMaxLevel = 1023;

/** The video test patterns, by the number that clients choose them with. */
enum class PatternKind : uint32_t {
    Off,    // the video again
    Plain,  // the area in the foreground's colour
    Ramp,   // from the foreground's colour to the background's, smooth or in `columns` steps
    Bars,   // white yellow cyan green magenta red blue black, as often as `columns` asks; inverted: backwards
    Checkerboard,  // `columns` by `rows` cells, 16 by 9 if not said
    Grid,          // lines around as many cells, on the background
    Window,        // the area, the middle of the panel if not said, with a border
    Geometry,      // a grid with its diagonals and a circle
    Burst,  // `columns` groups of stripes, 6 if not said, each half as wide as those before, 32 pixels first
    ZonePlate,  // rings that get narrower outwards
};
constexpr uint32_t kPatternKinds = 10;

/** A pattern of the generator in the video path. It fills a picture; nothing of it takes memory. */
class TestPattern {
  public:
    TestPattern() = default;

    /**
     * kOutOfRange for a kind that there is not, and for a level or flag that there is not in a field that the
     * kind uses; then the pattern stays as it was.
     */
    int32_t set(uint32_t kind, const fapi_core::ZvtTvFApiDispTstPattern& pattern);

    PatternKind kind() const { return mKind; }
    uint32_t duration() const { return mPattern.u32Duration; }

    /** What is seen at a pixel of the picture, where the pattern lies over the given video. */
    Light at(int x, int y, const Light& video) const;

  private:
    using Colour = fapi_core::ZvtTvFApiDispTstColor;

    /** A place along the direction in which the pattern goes on, and how many columns or rows are asked for.
     */
    struct Way {
        int64_t place;
        int64_t length;
        int64_t asked;
    };
    Way way(int64_t x, int64_t y) const;

    Light ramp(int64_t x, int64_t y, const Light& video) const;
    const Colour& bar(int64_t x, int64_t y) const;
    bool onGrid(int64_t x, int64_t y) const;
    bool onCircleOrDiagonal(int64_t x, int64_t y) const;
    bool inStripe(int64_t x, int64_t y) const;
    double ring(int64_t x, int64_t y) const;

    PatternKind mKind = PatternKind::Off;
    fapi_core::ZvtTvFApiDispTstPattern mPattern{};
    // Worked out of mPattern. The columns and rows are those of boards and grids.
    Box mArea = kWholePicture;
    int64_t mColumns = 1;
    int64_t mRows = 1;
    int64_t mLineWidth = 1;
};

}  // namespace simulator
