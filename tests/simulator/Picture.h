#pragma once

#include <gtest/gtest.h>
#include <png.h>

#include <cstdint>
#include <string>
#include <vector>

/** A captured picture, decoded. */
class Picture {
  public:
    explicit Picture(const std::string& path) : mRgb(1920 * 1080 * 3) {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        if (png_image_begin_read_from_file(&image, path.c_str()) == 0 || image.width != 1920 ||
            image.height != 1080) {
            ADD_FAILURE() << path << ": " << image.message << ", " << image.width << "x" << image.height;
            return;
        }
        image.format = PNG_FORMAT_RGB;
        EXPECT_NE(png_image_finish_read(&image, nullptr, mRgb.data(), 0, nullptr), 0) << image.message;
    }

    /** 0xRRGGBB */
    uint32_t at(int x, int y) const {
        const uint8_t* pixel = &mRgb[static_cast<size_t>(y * 1920 + x) * 3];
        return static_cast<uint32_t>(pixel[0] << 16 | pixel[1] << 8 | pixel[2]);
    }

  private:
    std::vector<uint8_t> mRgb;
};
