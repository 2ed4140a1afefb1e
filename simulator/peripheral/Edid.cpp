#include "simulator/peripheral/Edid.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace simulator {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint8_t kHeader[] = {0x00, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x00};
/** Where the first block tells the number of those behind it. */
constexpr size_t kExtensions = 126;

// The visible picture in millimetres.
constexpr unsigned kWidth = 1210;
constexpr unsigned kHeight = 680;

void append(Bytes* block, const Bytes& bytes) {
    block->insert(block->end(), bytes.begin(), bytes.end());
}

uint8_t low(unsigned value) {
    return static_cast<uint8_t>(value & 0xff);
}

struct Timing {
    unsigned kilohertz;  // pixel clock, a multiple of 10
    unsigned across, acrossBlank, acrossFront, acrossSync;
    unsigned down, downBlank, downFront, downSync;
};
constexpr Timing k2160p60 = {594'000, 3840, 560, 176, 88, 2160, 90, 8, 10};
constexpr Timing k1080p60 = {148'500, 1920, 280, 88, 44, 1080, 45, 4, 5};
constexpr Timing k720p60 = {74'250, 1280, 370, 110, 40, 720, 30, 5, 5};

/** The 18 bytes of a detailed timing, both syncs positive. */
Bytes detailed(const Timing& timing) {
    const unsigned clock = timing.kilohertz / 10;
    return {low(clock),
            low(clock >> 8),
            low(timing.across),
            low(timing.acrossBlank),
            low(timing.across >> 8 << 4 | timing.acrossBlank >> 8),
            low(timing.down),
            low(timing.downBlank),
            low(timing.down >> 8 << 4 | timing.downBlank >> 8),
            low(timing.acrossFront),
            low(timing.acrossSync),
            low(timing.downFront << 4 | timing.downSync),
            low(timing.acrossFront >> 8 << 6 | timing.acrossSync >> 8 << 4),
            low(kWidth),
            low(kHeight),
            low(kWidth >> 8 << 4 | kHeight >> 8),
            0,
            0,
            0x1e};
}

/** Three letters, five bits each. */
Bytes manufacturer(const char (&letters)[4]) {
    unsigned packed = 0;
    for (int i = 0; i < 3; ++i) {
        packed = packed << 5 | static_cast<unsigned>(letters[i] - 'A' + 1);
    }
    return {low(packed >> 8), low(packed)};
}

void finish(Bytes* block) {
    block->resize(kEdidBlock - 1);
    block->push_back(low(0U - std::accumulate(block->begin(), block->end(), 0U)));
}

Bytes baseBlock(unsigned port, bool wide) {
    Bytes block(std::begin(kHeader), std::end(kHeader));
    append(&block, manufacturer("SIM"));
    append(&block, {low(port), wide ? uint8_t{2} : uint8_t{1}});  // product
    append(&block, {0x01, 0x00, 0x00, 0x00});                     // serial number
    append(&block, {1, 2024 - 1990, 1, 3});                       // week, year; version 1.3
    append(&block, {0x80, kWidth / 10, kHeight / 10});            // digital; cm
    append(&block, {120, 0x0e});                                  // gamma 2.2; sRGB, first timing preferred
    append(&block, {0xee, 0x91, 0xa3, 0x54, 0x4c, 0x99, 0x26, 0x0f, 0x50, 0x54});  // its primaries
    append(&block, {0x21, 0x08, 0x00});        // 640x480, 800x600 and 1024x768 at 60 Hz
    append(&block, {0x81, 0xc0, 0xd1, 0xc0});  // 1280x720, 1920x1080 at 60 Hz
    append(&block, Bytes(12, 0x01));           // no more of these
    append(&block, detailed(wide ? k2160p60 : k1080p60));
    append(&block, detailed(wide ? k1080p60 : k720p60));
    append(&block, {0x00, 0x00, 0x00, 0xfc, 0x00, 'S', 'I', 'M', ' ', 'T', 'V', 0x0a});
    block.resize(108, ' ');
    // Up to 62 Hz, 135 kHz, and a pixel clock of 150 or 600 MHz; no formula beyond that.
    append(&block,
           {0x00, 0x00, 0x00, 0xfd, 0x00, 23, 62, 15, 135, wide ? uint8_t{60} : uint8_t{15}, 0x00, 0x0a});
    block.resize(kExtensions, ' ');
    block.push_back(1);
    finish(&block);
    return block;
}

/** Tag and length, then the bytes. */
void appendData(Bytes* block, unsigned tag, const Bytes& bytes) {
    block->push_back(low(tag << 5 | static_cast<unsigned>(bytes.size())));
    append(block, bytes);
}

Bytes extensionBlock(unsigned port, bool wide) {
    constexpr unsigned kAudio = 1, kVideo = 2, kVendor = 3, kSpeakers = 4, kExtended = 7;
    Bytes block = {0x02, 0x03, 0x00, 0xf1};  // underscan, audio, YCbCr, one native timing
    Bytes video = {16, 31, 4, 19, 5, 20, 32, 3, 18, 1};
    if (wide) {
        // 2160p at 60, 50, 30, 25 and 24 Hz.
        video = {97, 96, 95, 94, 93, 16, 31, 4, 19, 5, 20, 32, 3, 18, 1};
    }
    appendData(&block, kVideo, video);
    appendData(&block, kAudio, {0x09, 0x07, 0x07});  // LPCM, two channels, up to 48 kHz, 16 to 24 bits
    appendData(&block, kSpeakers, {0x01, 0x00, 0x00});
    const uint8_t clock = wide ? 300 / 5 : 150 / 5;
    appendData(&block, kVendor, {0x03, 0x0c, 0x00, low(port << 4), 0x00, 0x00, clock});
    if (wide) {
        // 600 MHz, with status and control channel.
        appendData(&block, kVendor, {0xd8, 0x5d, 0xc4, 0x01, 600 / 5, 0x80, 0x00});
    }
    appendData(&block, kExtended, {0x00, 0xcf});        // both ways of scanning, quantisation selectable
    appendData(&block, kExtended, {0x05, 0xc0, 0x00});  // BT.2020 RGB and YCbCr
    block[2] = static_cast<uint8_t>(block.size());
    finish(&block);
    return block;
}

bool sumsUp(const uint8_t* block) {
    return std::accumulate(block, block + kEdidBlock, 0U) % 256 == 0;
}

}  // namespace

Edid makeEdid(unsigned port, bool wide) {
    const Bytes base = baseBlock(port, wide);
    const Bytes extension = extensionBlock(port, wide);
    Edid edid;
    std::copy(base.begin(), base.end(), edid.begin());
    std::copy(extension.begin(), extension.end(), edid.begin() + kEdidBlock);
    return edid;
}

std::string edidFault(const uint8_t* bytes, size_t count) {
    if (count != kEdidBlock && count != kEdidBytes) {
        return "it has " + std::to_string(count) + " bytes, not 128 or 256";
    }
    if (!std::equal(std::begin(kHeader), std::end(kHeader), bytes)) {
        return "it does not begin with 00 ff ff ff ff ff ff 00";
    }
    if (bytes[kExtensions] != count / kEdidBlock - 1) {
        return "its first block tells of " + std::to_string(bytes[kExtensions]) + " more";
    }
    for (size_t at = 0; at < count; at += kEdidBlock) {
        if (!sumsUp(bytes + at)) {
            return "the checksum of block " + std::to_string(at / kEdidBlock) + " is wrong";
        }
    }
    return {};
}

}  // namespace simulator
