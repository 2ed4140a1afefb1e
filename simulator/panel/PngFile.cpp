#include "simulator/panel/PngFile.h"

#include <png.h>

#include <cerrno>
#include <cstring>

#include "simulator/board/StateDirectory.h"
#include "simulator/board/Status.h"
#include "simulator/panel/Surface.h"

namespace simulator {

int32_t writePng(FILE* file, const std::vector<uint8_t>& rgb) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = kPictureWidth;
    image.height = kPictureHeight;
    image.format = PNG_FORMAT_RGB;
    // Packed three times as fast; patterns stay small all the same.
    image.flags = PNG_IMAGE_FLAG_FAST;
    constexpr int kEightBits = 0;
    constexpr int kRowsWithoutGap = 0;
    errno = 0;
    const bool written =
            png_image_write_to_stdio(&image, file, kEightBits, rgb.data(), kRowsWithoutGap, nullptr) != 0;
    const int error = errno;
    png_image_free(&image);
    if (!written) {
        // A lack of memory is in the message alone: "out of memory", zlib's "insufficient memory".
        return strcasestr(image.message, "memory") != nullptr ? kNoMemory : statusOf(error);
    }
    return fflush(file) == 0 && ferror(file) == 0 ? kOk : statusOf(errno);
}

}  // namespace simulator
