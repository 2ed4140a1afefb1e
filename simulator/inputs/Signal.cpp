#include "simulator/inputs/Signal.h"
#include <strings.h>

#include <algorithm>
#include <cstdio>

#include "simulator/board/Text.h"

using namespace fapi_core;

namespace simulator {
namespace {

struct Source {
    const char* name;
    ZvtTvFApiInputSourceType_e type;
};
// By number.
constexpr Source kSources[] = {
        {"none", INPUT_SOURCE_TYPE_NONE},           {"atv", INPUT_SOURCE_TYPE_TUNER},
        {"dtv", INPUT_SOURCE_TYPE_TUNER},           {"av", INPUT_SOURCE_TYPE_COMPOSITE},
        {"component", INPUT_SOURCE_TYPE_COMPONENT}, {"vga", INPUT_SOURCE_TYPE_PC},
        {"hdmi1", INPUT_SOURCE_TYPE_HDMI},          {"hdmi2", INPUT_SOURCE_TYPE_HDMI},
        {"hdmi3", INPUT_SOURCE_TYPE_HDMI},          {"media", INPUT_SOURCE_TYPE_MEDIA}};
static_assert(std::size(kSources) == kInputSources && INPUT_SOURCE_MEDIA == kInputSources - 1,
              "one for each");

// The colour standards, by number, and the frames that they come with.
struct Standard {
    const char* name;
    uint16_t height;
    bool fiftyHertz;
};
constexpr Standard kStandards[] = {{"unknown", 0, false}, {"pal", 576, true},      {"ntsc", 480, false},
                                   {"secam", 576, true},  {"ntsc443", 480, false}, {"palm", 480, false},
                                   {"paln", 576, true},   {"pal60", 480, false}};
constexpr unsigned kStandardCount = 8;
static_assert(std::size(kStandards) == kStandardCount, "one for each");
constexpr uint16_t kAnalogueWidth = 720;

constexpr int64_t kMostWidth = 8192;
constexpr int64_t kMostHeight = 4320;
constexpr int64_t kLeastRate = 10'000;
constexpr int64_t kMostRate = 240'000;
constexpr int64_t kMostBitErrors = 1'000'000'000;
constexpr int64_t kMostLevel = 200;

/** The rate is near that number of whole frames, as 59.94 Hz is near 60. */
bool near(uint32_t rate, unsigned hertz) {
    return rate * 100ULL >= hertz * 99'800ULL && rate * 100ULL <= hertz * 100'200ULL;
}

// Lines and pixels with blanking, of the formats that television and computers agreed on.
struct Raster {
    uint16_t width;
    uint16_t height;
    unsigned hertz;
    uint16_t hTotal;
    uint16_t vTotal;
};
constexpr Raster kRasters[] = {
        {720, 480, 60, 858, 525},      {720, 576, 50, 864, 625},     {1280, 720, 60, 1650, 750},
        {1280, 720, 50, 1980, 750},    {1920, 1080, 60, 2200, 1125}, {1920, 1080, 50, 2640, 1125},
        {1920, 1080, 30, 2200, 1125},  {1920, 1080, 25, 2640, 1125}, {1920, 1080, 24, 2750, 1125},
        {3840, 2160, 60, 4400, 2250},  {3840, 2160, 50, 5280, 2250}, {3840, 2160, 30, 4400, 2250},
        {3840, 2160, 25, 5280, 2250},  {3840, 2160, 24, 5500, 2250}, {640, 480, 60, 800, 525},
        {800, 600, 60, 1056, 628},     {1024, 768, 60, 1344, 806},   {1280, 1024, 60, 1688, 1066},
        {1920, 1080, 120, 2200, 1125}, {3840, 2160, 120, 4400, 2250}};

bool readWithin(const std::string& text, int64_t least, int64_t most, int64_t* number) {
    return readNumber(text, number) && *number >= least && *number <= most;
}

/** Reads "59.94" as 59940; at most three digits behind the point. */
bool readRate(const std::string& text, int64_t* rate) {
    const size_t point = text.find('.');
    std::string decimals = point == std::string::npos ? "" : text.substr(point + 1);
    const bool good = point == std::string::npos || (!decimals.empty() && decimals.size() <= 3);
    decimals.resize(3, '0');
    return good && readWithin(text.substr(0, point) + decimals, kLeastRate, kMostRate, rate);
}

bool readTiming(const std::string& word, Signal* signal) {
    const size_t times = word.find('x');
    const size_t at = word.find('@');
    if (times == std::string::npos || at == std::string::npos || at < times) {
        return false;
    }
    std::string lines = word.substr(times + 1, at - times - 1);
    signal->interlaced = !lines.empty() && lines.back() == 'i';
    if (signal->interlaced || (!lines.empty() && lines.back() == 'p')) {
        lines.pop_back();
    }
    int64_t width = 0, height = 0, rate = 0;
    if (!readWithin(word.substr(0, times), 1, kMostWidth, &width) ||
        !readWithin(lines, 1, kMostHeight, &height) || !readRate(word.substr(at + 1), &rate)) {
        return false;
    }
    signal->width = static_cast<uint16_t>(width);
    signal->height = static_cast<uint16_t>(height);
    signal->rate = static_cast<uint32_t>(rate);
    return true;
}

}  // namespace

std::optional<ZvtTvFApiInputSource_e> sourceNamed(const std::string& name) {
    for (unsigned i = 0; i < kInputSources; ++i) {
        if (strcasecmp(name.c_str(), kSources[i].name) == 0) {
            return static_cast<ZvtTvFApiInputSource_e>(i);
        }
    }
    return std::nullopt;
}

const char* nameOf(ZvtTvFApiInputSource_e source) {
    return kSources[source].name;
}

const char* nameOf(ZvtTvFApiVideoStandard_e standard) {
    return kStandards[standard].name;
}

ZvtTvFApiInputSourceType_e typeOf(ZvtTvFApiInputSource_e source) {
    return kSources[source].type;
}

bool isAnalogueVideo(ZvtTvFApiInputSource_e source) {
    return source == INPUT_SOURCE_ATV || source == INPUT_SOURCE_AV;
}

std::optional<unsigned> adcOf(unsigned source) {
    static_assert(INPUT_SOURCE_VGA - INPUT_SOURCE_AV == kAdcs - 1, "they follow each other");
    return source >= INPUT_SOURCE_AV && source <= INPUT_SOURCE_VGA ? std::optional(source - INPUT_SOURCE_AV)
                                                                   : std::nullopt;
}

bool Signal::sameTiming(const Signal& other) const {
    return width == other.width && height == other.height && rate == other.rate &&
           interlaced == other.interlaced && standard == other.standard;
}

ZvtTvFApiVideoTiming Signal::timing() const {
    const auto raster = std::find_if(std::begin(kRasters), std::end(kRasters), [this](const Raster& known) {
        return width == known.width && height == known.height && near(rate, known.hertz);
    });
    // Others get the blanking that is usual: a quarter of a line, a twentieth of the lines.
    const auto hTotal = static_cast<uint16_t>(width + width / 4);
    const auto vTotal = static_cast<uint16_t>(height + height / 20);
    const bool known = raster != std::end(kRasters);
    return {width,     known ? raster->hTotal : hTotal, height, known ? raster->vTotal : vTotal, rate,
            interlaced};
}

std::string Signal::describe() const {
    char text[64];
    snprintf(text, sizeof(text), "%ux%u%s %u.%03u Hz", width, height, interlaced ? "i" : "p", rate / 1000,
             rate % 1000);
    return text;
}

std::vector<int64_t> Signal::numbers() const {
    return {present, width, height, rate, interlaced, standard, bitErrors, level};
}

Signal Signal::fromNumbers(const std::vector<int64_t>& numbers) {
    Signal signal;
    signal.present = numbers[0] != 0;
    signal.width = static_cast<uint16_t>(numbers[1]);
    signal.height = static_cast<uint16_t>(numbers[2]);
    signal.rate = static_cast<uint32_t>(numbers[3]);
    signal.interlaced = numbers[4] != 0;
    signal.standard = static_cast<ZvtTvFApiVideoStandard_e>(numbers[5]);
    signal.bitErrors = static_cast<int32_t>(numbers[6]);
    signal.level = static_cast<unsigned>(numbers[7]);
    return signal;
}

std::vector<Limits> Signal::limits() const {
    constexpr int64_t kMost[] = {1, kMostWidth,         kMostHeight,    kMostRate,
                                 1, kStandardCount - 1, kMostBitErrors, kMostLevel};
    const std::vector<int64_t> own = numbers();
    std::vector<Limits> all;
    for (size_t i = 0; i < own.size(); ++i) {
        all.push_back({0, kMost[i], own[i]});
    }
    return all;
}

std::string parseSignal(ZvtTvFApiInputSource_e source, const std::vector<std::string>& words,
                        Signal* signal) {
    *signal = Signal();
    signal->present = true;
    if (source == INPUT_SOURCE_NONE) {
        return "the source \"none\" has no signal";
    }
    if (words.empty() || !readTiming(words[0], signal)) {
        return "no timing such as 1920x1080@60 or 720x576i@50, 10 to 240 Hz";
    }
    if (isAnalogueVideo(source)) {
        signal->standard = near(signal->rate, 50) ? VIDEO_STANDARD_PAL : VIDEO_STANDARD_NTSC_M;
    }
    for (size_t i = 1; i < words.size(); ++i) {
        const std::string& word = words[i];
        int64_t number = 0;
        const auto* const standard = std::find_if(
                std::begin(kStandards) + 1, std::end(kStandards),
                [&](const Standard& known) { return strcasecmp(word.c_str(), known.name) == 0; });
        if (isAnalogueVideo(source) && standard != std::end(kStandards)) {
            signal->standard = static_cast<ZvtTvFApiVideoStandard_e>(standard - kStandards);
        } else if (source == INPUT_SOURCE_DTV && word.compare(0, 4, "ber=") == 0 &&
                   readWithin(word.substr(4), 0, kMostBitErrors, &number)) {
            signal->bitErrors = static_cast<int32_t>(number);
        } else if (adcOf(source) && word.compare(0, 6, "level=") == 0 &&
                   readWithin(word.substr(6), 1, kMostLevel, &number)) {
            signal->level = static_cast<unsigned>(number);
        } else {
            return std::string("\"") + word + "\" means nothing to the source " + nameOf(source);
        }
    }
    const Standard& standard = kStandards[signal->standard];
    if (isAnalogueVideo(source) &&
        (signal->width != kAnalogueWidth || signal->height != standard.height || !signal->interlaced ||
         !near(signal->rate, standard.fiftyHertz ? 50 : 60))) {
        return std::string(standard.name) + " is not " + words[0] + " but 720x576i@50 or 720x480i@59.94";
    }
    return {};
}

}  // namespace simulator
