#include "simulator/panel/Surface.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace simulator {
namespace {

/** The row of a box with round corners, from its left to its right end. */
Box rowOf(const Box& box, int64_t radius, int64_t y) {
    const int64_t limit = std::max<int64_t>(std::min({radius, box.width() / 2, box.height() / 2}), 0);
    const int64_t fromEnd = std::min(y - box.top, box.bottom - 1 - y);
    int64_t inset = 0;
    if (fromEnd < limit) {
        // Through the pixels' middles.
        const double r = static_cast<double>(limit);
        const double rise = r - static_cast<double>(fromEnd) - 0.5;
        inset = std::lround(r - std::sqrt(r * r - rise * rise));
    }
    return {box.left + inset, y, box.right - inset, y + 1};
}

}  // namespace

Box Box::within(const Box& other) const {
    return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom)};
}

Argb over(Argb above, Argb below) {
    const uint32_t a = above >> 24;
    const uint32_t belowWeight = (below >> 24) * (255 - a);  // of 255 * 255, as is a * 255
    const uint32_t weight = a * 255 + belowWeight;
    if (weight == 0) {
        return 0;
    }
    Argb result = (weight + 127) / 255 << 24;
    for (unsigned shift = 0; shift < 24; shift += 8) {
        const uint32_t sum = (above >> shift & 0xFF) * a * 255 + (below >> shift & 0xFF) * belowWeight;
        result |= (sum + weight / 2) / weight << shift;
    }
    return result;
}

Surface::Surface(int width, int height)
    : mWidth(width), mHeight(height), mPixels(static_cast<size_t>(kPictureWidth) * kPictureHeight) {}

void Surface::fill(const Box& box, Argb colour, bool blend) {
    const Box seen = box.within(bounds());
    if (seen.left >= seen.right) {
        return;
    }
    for (int64_t y = seen.top; y < seen.bottom; ++y) {
        Argb* const pixels = row(y);
        if (!blend) {
            std::fill(pixels + seen.left, pixels + seen.right, colour);
            continue;
        }
        for (int64_t x = seen.left; x < seen.right; ++x) {
            pixels[x] = over(colour, pixels[x]);
        }
    }
}

void Surface::draw(const Rectangle& rectangle) {
    const Box inner = rectangle.box.shrunkBy(rectangle.borderWidth);
    const int64_t innerRadius = rectangle.cornerRadius - rectangle.borderWidth;
    const Box seen = rectangle.box.within(bounds());
    for (int64_t y = seen.top; y < seen.bottom; ++y) {
        const Box outerRow = rowOf(rectangle.box, rectangle.cornerRadius, y);
        const bool hasInside = y >= inner.top && y < inner.bottom && inner.left < inner.right;
        const Box innerRow =
                hasInside ? rowOf(inner, innerRadius, y) : Box{outerRow.right, y, outerRow.right, y + 1};
        fill({outerRow.left, y, innerRow.left, y + 1}, rectangle.border, rectangle.blend);
        fill({innerRow.right, y, outerRow.right, y + 1}, rectangle.border, rectangle.blend);
        if (rectangle.filled) {
            fill(innerRow, rectangle.fill, rectangle.blend);
        }
    }
}

void Surface::line(int64_t fromX, int64_t fromY, int64_t toX, int64_t toY, int64_t width, Argb colour) {
    const bool flat = std::abs(toX - fromX) >= std::abs(toY - fromY);
    // Along the longer way, one step a pixel; across it, a run of the line's width.
    const int64_t from = flat ? fromX : fromY;
    const int64_t to = flat ? toX : toY;
    const double crossFrom = static_cast<double>(flat ? fromY : fromX);
    const double crossWay = static_cast<double>(flat ? toY - fromY : toX - fromX);
    const double way = from == to ? 1 : static_cast<double>(to - from);
    const int64_t first = std::max<int64_t>(std::min(from, to), 0);
    const int64_t last = std::min<int64_t>(std::max(from, to), (flat ? mWidth : mHeight) - 1);
    for (int64_t at = first; at <= last; ++at) {
        const double share = static_cast<double>(at - from) / way;
        const int64_t run = std::llround(crossFrom + crossWay * share) - (width - 1) / 2;
        fill(flat ? Box{at, run, at + 1, run + width} : Box{run, at, run + width, at + 1}, colour);
    }
}

}  // namespace simulator
