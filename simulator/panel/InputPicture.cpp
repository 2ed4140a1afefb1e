#include "simulator/panel/InputPicture.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "simulator/panel/Osd.h"

namespace simulator {
namespace {

constexpr Argb kOpaque = 0xFF000000;
constexpr Argb kInk = 0xFFF0F0F0;
constexpr Argb kShade = 0xB0101420;

/** Saturation and value from 0 to 1. */
Argb colour(double hue, double saturation, double value) {
    const auto channel = [=](double offset) {
        const double place = std::fmod(offset + hue / 60, 6);
        const double share = std::clamp(std::min(place, 4 - place), 0.0, 1.0);
        return static_cast<Argb>(std::lround(255 * std::clamp(value * (1 - saturation * share), 0.0, 1.0)));
    };
    return kOpaque | channel(5) << 16 | channel(3) << 8 | channel(1);
}

/** The picture at a place: from 0 to 1 downwards, from 0 to its shape's width over its height to the right.
 */
Argb pixel(InputMotif motif, double hue, double x, double y, double width) {
    const double whole = 2 * std::acos(-1.0);
    switch (motif) {
        case InputMotif::Hills:
            for (int hill = 3; hill > 0; --hill) {
                const double top =
                        0.35 + 0.17 * hill + 0.07 * std::sin(whole * x * (0.4 + 0.3 * hill) + hill);
                if (y > top) {
                    return colour(hue, 0.75, 0.75 - 0.15 * hill);
                }
            }
            return colour(hue + 70, 0.55 - 0.5 * y, 0.95);
        case InputMotif::Stripes:
            return colour(hue + 40 * y, 0.8,
                          0.55 + 0.25 * std::sin(whole * (4 * x + 0.3 * std::sin(whole * y))));
        case InputMotif::Discs:
            for (int disc = 0; disc < 3; ++disc) {
                if (std::hypot(x - width * (0.22 + 0.28 * disc), y - 0.5) < 0.33) {
                    return colour(hue + 120 * disc, 0.6, 0.85 - 0.3 * y);
                }
            }
            return colour(hue, 0.35, 0.25 + 0.2 * y);
        case InputMotif::Tiles: {
            const double column = std::floor(x * 6);
            const double row = std::floor(y * 6);
            const bool gap = x * 6 - column < 0.12 || y * 6 - row < 0.12;
            return gap ? colour(hue, 0.5, 0.15)
                       : colour(hue, 0.3 + 0.06 * row, 0.45 + 0.06 * std::fmod(column * 3 + row * 2, 7));
        }
        case InputMotif::Diamonds: {
            // Few colours: a capture of the delivered state packs them well.
            const double ring = std::floor((std::abs(x - width / 2) + std::abs(y - 0.5)) * 10);
            return colour(hue + 4 * ring, 0.75, 0.85 - 0.12 * std::fmod(ring, 4));
        }
        case InputMotif::Film: {
            const bool edge = y < 0.14 || y > 0.86;
            const double along = std::fmod(x * 8, 1);
            const bool hole =
                    std::abs(y - 0.5) > 0.39 && std::abs(y - 0.5) < 0.47 && along > 0.3 && along < 0.8;
            return hole   ? colour(hue, 0.1, 0.95)
                   : edge ? colour(hue, 0.4, 0.1)
                          : colour(hue + 50 * y, 0.8, 0.8 - 0.4 * y);
        }
        case InputMotif::None:
            break;
    }
    return kOpaque;
}

/** Where the picture lies: as large as its shape allows, in the middle. */
Box placeOf(const InputSignal& input) {
    const int64_t across = input.wide ? input.width : 4;
    const int64_t down = input.wide ? input.height : 3;
    const int64_t width = std::clamp<int64_t>(kPictureHeight * across / down, 1, kPictureWidth);
    const int64_t height = std::clamp<int64_t>(kPictureWidth * down / across, 1, kPictureHeight);
    const int64_t left = (kPictureWidth - width) / 2;
    const int64_t top = (kPictureHeight - height) / 2;
    return {left, top, left + width, top + height};
}

void drawPicture(const InputSignal& input, Surface* surface) {
    surface->fill(surface->bounds(), kOpaque);
    const Box place = placeOf(input);
    const double shape = static_cast<double>(place.width()) / static_cast<double>(place.height());
    for (int64_t y = place.top, last = -1; y < place.bottom; ++y) {
        const int64_t line = (y - place.top) * input.height / place.height();
        Argb* const row = surface->row(y);
        if (line == last) {
            std::copy_n(surface->row(y - 1), kPictureWidth, row);
            continue;
        }
        last = line;
        int64_t lastColumn = -1;
        for (int64_t x = place.left; x < place.right; ++x) {
            const int64_t column = (x - place.left) * input.width / place.width();
            row[x] = column == lastColumn ? row[x - 1]
                                          : pixel(input.motif, input.hue,
                                                  (static_cast<double>(column) + 0.5) / input.width * shape,
                                                  (static_cast<double>(line) + 0.5) / input.height, shape);
            lastColumn = column;
        }
    }
}

}  // namespace

void drawInput(const InputSignal& input, Surface* surface) {
    if (input.locked && input.width > 0 && input.height > 0) {
        drawPicture(input, surface);
    }
    struct Line {
        std::string text;
        int64_t pixel;
    };
    const Line lines[] = {{input.name, 16}, {input.locked ? input.timing : "no signal", 8}};
    int64_t width = 0;
    for (const Line& line : lines) {
        width = std::max(width, textWidth(line.text, line.pixel));
    }
    constexpr int64_t kPadding = 40;
    constexpr int64_t kHeight = 9 * 16 + 7 * 8;
    int64_t y = (kPictureHeight - kHeight) / 2;
    const int64_t left = (kPictureWidth - width) / 2;
    if (input.locked) {
        surface->draw({{left - kPadding, y - kPadding, left + width + kPadding, y + kHeight + kPadding},
                       true,
                       kShade,
                       0,
                       0,
                       kPadding,
                       true});
    }
    for (const Line& line : lines) {
        drawText(line.text, (kPictureWidth - textWidth(line.text, line.pixel)) / 2, y, line.pixel, kInk,
                 surface);
        y += 9 * line.pixel;
    }
}

}  // namespace simulator
