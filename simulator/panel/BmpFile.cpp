#include "simulator/panel/BmpFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "simulator/board/StateDirectory.h"
#include "simulator/board/Status.h"

namespace simulator {
namespace {

constexpr int64_t kMaxSide = 4096;
constexpr size_t kFileHeader = 14;
// Of the information header, what all its versions begin with, and the colour masks behind it.
constexpr size_t kInfoHeader = 40;
constexpr size_t kMasks = 16;
constexpr uint32_t kUncompressed = 0;
constexpr uint32_t kBitFields = 3;

/** Reads exactly that much; a file that ends before is a bad one. */
int32_t readAt(int fd, int64_t offset, uint8_t* bytes, size_t count) {
    for (size_t done = 0; done < count;) {
        const ssize_t got = pread(fd, bytes + done, count - done, offset + static_cast<int64_t>(done));
        if (got == 0) {
            return kBadFile;
        }
        if (got < 0 && errno != EINTR) {
            return statusOf(errno);
        }
        done += got < 0 ? 0 : static_cast<size_t>(got);
    }
    return kOk;
}

uint32_t little(const uint8_t* bytes, unsigned count) {
    uint32_t value = 0;
    for (unsigned i = 0; i < count; ++i) {
        value |= static_cast<uint32_t>(bytes[i]) << (8 * i);
    }
    return value;
}

struct Layout {
    int64_t width = 0;
    int64_t height = 0;
    bool topDown = false;
    unsigned pixelBytes = 0;
    bool alpha = false;
    int64_t offset = 0;
    int64_t rowBytes = 0;
};

int32_t readLayout(int fd, Layout* layout) {
    struct stat status {};
    if (fstat(fd, &status) != 0) {
        return statusOf(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return kBadFile;
    }
    uint8_t header[kFileHeader + kInfoHeader + kMasks] = {};
    const uint8_t* const info = header + kFileHeader;
    const uint8_t* const masks = info + kInfoHeader;
    if (const int32_t result = readAt(fd, 0, header, kFileHeader + kInfoHeader); result != kOk) {
        return result;
    }
    const uint32_t compression = little(info + 16, 4);
    if (compression == kBitFields) {
        if (const int32_t result = readAt(fd, 0, header, sizeof(header)); result != kOk) {
            return result;
        }
    }
    const uint32_t infoBytes = little(info, 4);
    const int64_t height = static_cast<int32_t>(little(info + 8, 4));
    const uint32_t bits = little(info + 14, 2);
    layout->width = static_cast<int32_t>(little(info + 4, 4));
    layout->height = height < 0 ? -height : height;
    layout->topDown = height < 0;
    layout->pixelBytes = bits / 8;
    layout->offset = little(header + 10, 4);
    layout->rowBytes = (layout->width * layout->pixelBytes + 3) / 4 * 4;

    const bool usualMasks =
            little(masks, 4) == 0xFF0000 && little(masks + 4, 4) == 0xFF00 && little(masks + 8, 4) == 0xFF;
    // Headers of 40 and 52 bytes have no alpha mask: there, something else stands in its place.
    layout->alpha = compression == kBitFields && infoBytes >= 56 && little(masks + 12, 4) == 0xFF000000;
    const bool readable =
            (bits == 24 || bits == 32) && little(info + 12, 2) == 1 &&
            (compression == kUncompressed || (compression == kBitFields && bits == 32 && usualMasks));
    const bool fits = layout->width > 0 && layout->width <= kMaxSide && layout->height > 0 &&
                      layout->height <= kMaxSide &&
                      layout->offset + layout->rowBytes * layout->height <= status.st_size;
    return header[0] == 'B' && header[1] == 'M' && infoBytes >= kInfoHeader && readable && fits ? kOk
                                                                                                : kBadFile;
}

}  // namespace

int32_t drawBmp(int fd, int64_t x, int64_t y, Surface& surface) {
    Layout layout;
    if (const int32_t result = readLayout(fd, &layout); result != kOk) {
        return result;
    }
    const Box seen = Box{x, y, x + layout.width, y + layout.height}.within(surface.bounds());
    std::vector<uint8_t> bytes(static_cast<size_t>(layout.rowBytes));
    for (int64_t line = seen.top; line < seen.bottom; ++line) {
        const int64_t fromTop = line - y;
        const int64_t row = layout.topDown ? fromTop : layout.height - 1 - fromTop;
        const int32_t result = readAt(fd, layout.offset + row * layout.rowBytes, bytes.data(), bytes.size());
        if (result != kOk) {
            return result;
        }
        Argb* const pixels = surface.row(line);
        for (int64_t column = seen.left; column < seen.right; ++column) {
            const uint8_t* const pixel = &bytes[static_cast<size_t>((column - x) * layout.pixelBytes)];
            pixels[column] = little(pixel, 3) | (layout.alpha ? Argb{pixel[3]} << 24 : 0xFF000000U);
        }
    }
    return kOk;
}

}  // namespace simulator
