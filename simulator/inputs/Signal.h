#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "chiplayer/inpsrc.h"
#include "simulator/storage/KeptNumbers.h"

namespace simulator {

constexpr unsigned kInputSources = 10;

/** By its name, of either case; none for another. */
std::optional<fapi_core::ZvtTvFApiInputSource_e> sourceNamed(const std::string& name);
const char* nameOf(fapi_core::ZvtTvFApiInputSource_e source);
fapi_core::ZvtTvFApiInputSourceType_e typeOf(fapi_core::ZvtTvFApiInputSource_e source);

/** Whether the video decoder decodes it. */
bool isAnalogueVideo(fapi_core::ZvtTvFApiInputSource_e source);
/** Which ADC it has, 0 to kAdcs - 1; none for most. */
constexpr unsigned kAdcs = 3;
std::optional<unsigned> adcOf(unsigned source);

/** A colour standard's name, as orders write it. */
const char* nameOf(fapi_core::ZvtTvFApiVideoStandard_e standard);

/** What arrives at the input of a source. */
struct Signal {
    bool present = false;
    uint16_t width = 0;
    uint16_t height = 0;
    uint32_t rate = 0;  // frames, or fields of an interlaced signal, in 1000 s
    bool interlaced = false;
    /** Of the sources that the video decoder decodes; unknown for the others. */
    fapi_core::ZvtTvFApiVideoStandard_e standard = fapi_core::VIDEO_STANDARD_UNKNOWN;
    /** Of the digital tuner: wrong bits in a thousand million. */
    int32_t bitErrors = 0;
    /** Of a source with an ADC: amplitude, in percent of the nominal one. */
    unsigned level = 100;

    bool sameTiming(const Signal& other) const;
    fapi_core::ZvtTvFApiVideoTiming timing() const;
    /** "1920x1080i 50.000 Hz" */
    std::string describe() const;

    // As the board keeps it.
    std::vector<int64_t> numbers() const;
    static Signal fromNumbers(const std::vector<int64_t>& numbers);
    /** The numbers' limits; as delivered, they are this signal. */
    std::vector<Limits> limits() const;
};

/**
 * Reads the words `WIDTHxHEIGHT[i|p]@HERTZ [STANDARD] [ber=NUMBER] [level=PERCENT]`; a source to which one of
 * the last three means nothing does not take it.
 *
 * @return empty, or what is wrong with them
 */
std::string parseSignal(fapi_core::ZvtTvFApiInputSource_e source, const std::vector<std::string>& words,
                        Signal* signal);

}  // namespace simulator
