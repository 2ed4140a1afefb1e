#include "simulator/upgrade/Image.h"

#include <zlib.h>

#include <cstdio>
#include <cstdlib>
#include <new>

#include "simulator/board/Status.h"
#include "simulator/board/Text.h"

namespace simulator {

uint32_t wordAt(const std::string& image, size_t position) {
    uint32_t number = 0;
    for (size_t i = 4; i-- > 0;) {
        number = number << 8 | static_cast<unsigned char>(image[position + i]);
    }
    return number;
}

uint32_t checksumOf(const std::string& image, size_t begin, size_t end) {
    return static_cast<uint32_t>(crc32(crc32(0, nullptr, 0),
                                       reinterpret_cast<const Bytef*>(image.data()) + begin,
                                       static_cast<uInt>(end - begin)));
}

uint32_t upgradeMilliseconds(const char* variable) {
    constexpr uint32_t kDefault = 3000;
    constexpr uint32_t kMost = 60 * 60 * 1000;
    const char* const text = getenv(variable);
    if (text == nullptr || text[0] == '\0') {
        return kDefault;
    }
    uint32_t milliseconds = 0;
    if (!readNumber(text, &milliseconds) || milliseconds > kMost) {
        fprintf(stderr, "board: %s is \"%s\", not a number of milliseconds up to %u: %u is used\n", variable,
                text, kMost, kDefault);
        return kDefault;
    }
    return milliseconds;
}

void tellProgress(Module& module, uint32_t type, unsigned percent, const std::string& path, uint32_t number,
                  const char* phase, int32_t status) {
    try {
        Module::Payload payload;
        payload.objects[0].u32Value = percent;
        payload.objects[0].strValue = path;
        payload.objects[1].u32Value = number;
        payload.objects[1].strValue = phase;
        payload.objects[2].u32Value = static_cast<uint32_t>(status);
        const int32_t told = module.raise(type, payload);
        if (told != kOk && told != kNotSetUp) {
            fprintf(stderr, "board: event 0x%x: the handler's result is %d\n", type, told);
        }
    } catch (const std::bad_alloc&) {
        fprintf(stderr, "board: no memory for event 0x%x\n", type);
    }
}

}  // namespace simulator
