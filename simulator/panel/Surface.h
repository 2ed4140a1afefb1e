#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace simulator {

/** The size of the panel's picture, in pixels; no layer is larger. */
constexpr int kPictureWidth = 1920;
constexpr int kPictureHeight = 1080;

/** 0xAARRGGBB: an alpha of 0 is transparent, 255 hides what lies below. Colours are not premultiplied. */
using Argb = uint32_t;

/** A rectangle in pixels; right and bottom are the first ones outside. Empty when they do not lie beyond. */
struct Box {
    int64_t left;
    int64_t top;
    int64_t right;
    int64_t bottom;

    Box within(const Box& other) const;
    Box shrunkBy(int64_t pixels) const {
        return {left + pixels, top + pixels, right - pixels, bottom - pixels};
    }
    bool contains(int64_t x, int64_t y) const { return x >= left && x < right && y >= top && y < bottom; }
    int64_t width() const { return right - left; }
    int64_t height() const { return bottom - top; }
};

constexpr Box kWholePicture = {0, 0, kPictureWidth, kPictureHeight};

struct Rectangle {
    Box box;
    bool filled;
    Argb fill;
    int64_t borderWidth;  // inwards
    Argb border;
    int64_t cornerRadius;
    bool blend;  // false: replaces pixels, their alpha included
};

/**
 * A layer's pixels. What lies outside is not drawn: any coordinates and sizes of 32 bits will do, and the
 * work is bounded by the layer's size.
 */
class Surface {
  public:
    /**
     * Transparent all over. The memory is that of the whole picture whatever the size, which must be from 1
     * to the picture's. Throws std::bad_alloc.
     */
    explicit Surface(int width = kPictureWidth, int height = kPictureHeight);

    int width() const { return mWidth; }
    int height() const { return mHeight; }
    Box bounds() const { return {0, 0, mWidth, mHeight}; }

    const Argb* row(int64_t y) const { return &mPixels[static_cast<size_t>(y) * kPictureWidth]; }
    Argb* row(int64_t y) { return &mPixels[static_cast<size_t>(y) * kPictureWidth]; }

    void fill(const Box& box, Argb colour, bool blend = false);
    void draw(const Rectangle& rectangle);

    /** A line, both ends included, `width` pixels wide across the direction in which it is shorter. */
    void line(int64_t fromX, int64_t fromY, int64_t toX, int64_t toY, int64_t width, Argb colour);

  private:
    int mWidth;
    int mHeight;
    std::vector<Argb> mPixels;
};

/** What is seen where `above` lies on `below`. */
Argb over(Argb above, Argb below);

}  // namespace simulator
