#include "simulator/panel/TestPattern.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "simulator/board/Status.h"

namespace simulator {
namespace {

using Colour = fapi_core::ZvtTvFApiDispTstColor;

constexpr Colour kBars[] = {{1023, 1023, 1023, 255, {}}, {1023, 1023, 0, 255, {}}, {0, 1023, 1023, 255, {}},
                            {0, 1023, 0, 255, {}},       {1023, 0, 1023, 255, {}}, {1023, 0, 0, 255, {}},
                            {0, 0, 1023, 255, {}},       {0, 0, 0, 255, {}}};
constexpr int64_t kBarCount = std::size(kBars);

constexpr int64_t kOwnColumns = 16;
constexpr int64_t kOwnRows = 9;

/** Which fields of the record a kind of pattern uses; the background is around all that have any. */
struct Uses {
    bool any;
    bool foreground;
    bool line;
    bool direction;
};
constexpr Uses kUses[kPatternKinds] = {
        {false, false, false, false},  // Off
        {true, true, false, false},    // Plain
        {true, true, false, true},     // Ramp
        {true, false, false, true},    // Bars
        {true, true, false, false},    // Checkerboard
        {true, false, true, false},    // Grid
        {true, true, true, false},     // Window
        {true, false, true, false},    // Geometry
        {true, true, false, true},     // Burst
        {true, true, false, false},    // ZonePlate
};

bool good(const Colour& colour) {
    return std::max({colour.u32Red, colour.u32Green, colour.u32Blue}) <= kMaxLevel;
}

Light mixed(const Light& from, const Light& to, float share) {
    return {from.red + (to.red - from.red) * share, from.green + (to.green - from.green) * share,
            from.blue + (to.blue - from.blue) * share};
}

Light on(const Light& below, const Colour& colour) {
    const Light above = {static_cast<float>(colour.u32Red), static_cast<float>(colour.u32Green),
                         static_cast<float>(colour.u32Blue)};
    return mixed(below, above, static_cast<float>(colour.u8Alpha) / 255);
}

}  // namespace

int32_t TestPattern::set(uint32_t kind, const fapi_core::ZvtTvFApiDispTstPattern& pattern) {
    if (kind >= kPatternKinds) {
        return kOutOfRange;
    }
    fapi_core::ZvtTvFApiDispTstPattern drawn = pattern;
    if (pattern.u8Invert == 1) {
        std::swap(drawn.stForeground, drawn.stBackground);
    }
    const Uses& uses = kUses[kind];
    if ((uses.any && (pattern.u8Invert > 1 || !good(drawn.stBackground))) ||
        (uses.foreground && !good(drawn.stForeground)) || (uses.line && !good(pattern.stLine)) ||
        (uses.direction && pattern.u8Vertical > 1)) {
        return kOutOfRange;
    }
    mKind = static_cast<PatternKind>(kind);
    mPattern = drawn;
    const int64_t x = pattern.u32X;
    const int64_t y = pattern.u32Y;
    mArea = {x, y, pattern.u32Width == 0 ? kPictureWidth : x + pattern.u32Width,
             pattern.u32Height == 0 ? kPictureHeight : y + pattern.u32Height};
    if (mKind == PatternKind::Window && x == 0 && y == 0 && pattern.u32Width == 0 && pattern.u32Height == 0) {
        mArea = {kPictureWidth / 4, kPictureHeight / 4, kPictureWidth * 3 / 4, kPictureHeight * 3 / 4};
    }
    mColumns = pattern.u32Columns == 0 ? kOwnColumns : pattern.u32Columns;
    mRows = pattern.u32Rows == 0 ? kOwnRows : pattern.u32Rows;
    mLineWidth = std::max<int64_t>(pattern.u16LineWidth, 1);
    return kOk;
}

Light TestPattern::at(int x, int y, const Light& video) const {
    if (mKind == PatternKind::Off) {
        return video;
    }
    if (!mArea.contains(x, y)) {
        return on(video, mPattern.stBackground);
    }
    const int64_t inX = x - mArea.left;
    const int64_t inY = y - mArea.top;
    const auto either = [&](bool foreground) {
        return on(video, foreground ? mPattern.stForeground : mPattern.stBackground);
    };
    switch (mKind) {
        case PatternKind::Off:
            break;
        case PatternKind::Plain:
            return either(true);
        case PatternKind::Ramp:
            return ramp(inX, inY, video);
        case PatternKind::Bars:
            return on(video, bar(inX, inY));
        case PatternKind::Checkerboard: {
            const int64_t cell = inX * mColumns / mArea.width() + inY * mRows / mArea.height();
            return either(cell % 2 == 0);
        }
        case PatternKind::Grid:
            return on(video, onGrid(inX, inY) ? mPattern.stLine : mPattern.stBackground);
        case PatternKind::Window:
            return mArea.shrunkBy(mLineWidth).contains(x, y) ? either(true) : on(video, mPattern.stLine);
        case PatternKind::Geometry:
            return on(video, onGrid(inX, inY) || onCircleOrDiagonal(inX, inY) ? mPattern.stLine
                                                                              : mPattern.stBackground);
        case PatternKind::Burst:
            return either(inStripe(inX, inY));
        case PatternKind::ZonePlate:
            return mixed(either(false), either(true), static_cast<float>(ring(inX, inY)));
    }
    return video;
}

TestPattern::Way TestPattern::way(int64_t x, int64_t y) const {
    return mPattern.u8Vertical == 1 ? Way{y, mArea.height(), mPattern.u32Rows}
                                    : Way{x, mArea.width(), mPattern.u32Columns};
}

Light TestPattern::ramp(int64_t x, int64_t y, const Light& video) const {
    const auto [place, length, asked] = way(x, y);
    const int64_t steps = asked == 0 ? length : asked;
    const double share =
            steps == 1 ? 0 : static_cast<double>(place * steps / length) / static_cast<double>(steps - 1);
    return mixed(on(video, mPattern.stForeground), on(video, mPattern.stBackground),
                 static_cast<float>(share));
}

const Colour& TestPattern::bar(int64_t x, int64_t y) const {
    const auto [place, length, asked] = way(x, y);
    const int64_t bars = asked == 0 ? kBarCount : asked;
    const int64_t number = place * bars / length;
    return kBars[(mPattern.u8Invert == 1 ? bars - 1 - number : number) % kBarCount];
}

bool TestPattern::onGrid(int64_t x, int64_t y) const {
    const auto onLine = [this](int64_t place, int64_t cells, int64_t length) {
        return place < mLineWidth || place >= length - mLineWidth ||
               place * cells / length != (place - mLineWidth) * cells / length;
    };
    return onLine(x, mColumns, mArea.width()) || onLine(y, mRows, mArea.height());
}

bool TestPattern::onCircleOrDiagonal(int64_t x, int64_t y) const {
    const double width = static_cast<double>(mArea.width());
    const double height = static_cast<double>(mArea.height());
    const double lineWidth = static_cast<double>(mLineWidth);
    const double fromMiddleX = static_cast<double>(x) + 0.5 - width / 2;
    const double fromMiddleY = static_cast<double>(y) + 0.5 - height / 2;
    const double radius = std::min(width, height) * 0.48;
    const double away = std::hypot(fromMiddleX, fromMiddleY);
    if (std::abs(away - radius) <= lineWidth / 2) {
        return true;
    }
    // The diagonals go through the middle with the area's slope: how far across them the pixel lies.
    const double length = std::hypot(width, height);
    const double across = std::abs(std::abs(fromMiddleX) * height - std::abs(fromMiddleY) * width) / length;
    return across <= lineWidth / 2;
}

bool TestPattern::inStripe(int64_t x, int64_t y) const {
    constexpr int64_t kGroups = 6;
    constexpr int64_t kWidestStripe = 32;
    const auto [place, length, asked] = way(x, y);
    const int64_t groups = asked == 0 ? kGroups : asked;
    const int64_t group = place * groups / length;
    const int64_t begin = (group * length + groups - 1) / groups;
    const int64_t stripe = std::max<int64_t>(kWidestStripe >> std::min<int64_t>(group, 5), 1);
    return (place - begin) / stripe % 2 == 0;
}

double TestPattern::ring(int64_t x, int64_t y) const {
    constexpr double kPi = 3.14159265358979323846;
    const double fromMiddleX = static_cast<double>(x) + 0.5 - static_cast<double>(mArea.width()) / 2;
    const double fromMiddleY = static_cast<double>(y) + 0.5 - static_cast<double>(mArea.height()) / 2;
    // A ring is two pixels wide, the narrowest there is, where the picture's edge is half its width away.
    const double phase = kPi * (fromMiddleX * fromMiddleX + fromMiddleY * fromMiddleY) / kPictureWidth;
    return 0.5 + 0.5 * std::cos(phase);
}

}  // namespace simulator
