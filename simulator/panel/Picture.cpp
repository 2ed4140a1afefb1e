#include "simulator/panel/Picture.h"

#include <algorithm>
#include <cmath>

#include "simulator/panel/Osd.h"

namespace simulator {
namespace {

constexpr float kFull = kMaxLevel;

// Where each window is.
constexpr Box kWindowPlaces[kWindows] = {
        kWholePicture,
        {kPictureWidth / 2, kPictureHeight / 2, kPictureWidth, kPictureHeight},
        {kPictureWidth / 2, 0, kPictureWidth, kPictureHeight / 2}};

constexpr Light kNoInput = {0, 0, 600};

using Row = std::vector<Light>;

Light lightOf(Argb colour) {
    const auto level = [colour](unsigned shift) {
        return static_cast<float>(colour >> shift & 0xFF) * kFull / 255;
    };
    return {level(16), level(8), level(0)};
}

void blend(Argb above, Light* below) {
    const float alpha = static_cast<float>(above >> 24) / 255;
    const Light light = lightOf(above);
    below->red += (light.red - below->red) * alpha;
    below->green += (light.green - below->green) * alpha;
    below->blue += (light.blue - below->blue) * alpha;
}

/** The processing of one window's video, in the order: sharpness, colour matrix, contrast curve. */
class PqEngine {
  public:
    PqEngine(const Settings::Values& picture, const Settings::Values& pq)
        : mSharpness(static_cast<float>(picture[kSharpness] - 50) / 50),
          mCurve(static_cast<float>(pq[kDynamicContrast]) / 3) {
        // Luma and the two colour differences of BT.709: contrast and brightness act on the first, saturation
        // and hue, an angle, on the others.
        constexpr double kRed = 0.2126;
        constexpr double kGreen = 0.7152;
        constexpr double kBlue = 0.0722;
        constexpr double kDegree = 3.14159265358979323846 / 180;
        const double gain =
                static_cast<double>(picture[kContrast]) / 50 * (1 + static_cast<double>(pq[kPqLuma]) / 100);
        const double colour = gain * static_cast<double>(picture[kSaturation]) / 50 *
                              (1 + static_cast<double>(pq[kPqSaturation]) / 100);
        const double angle = kDegree * static_cast<double>(picture[kHue] - 50 + pq[kPqHue]);
        // Half of the range at either end.
        mOffset = static_cast<float>(static_cast<double>(picture[kBrightness] - 50) / 100 * kFull);
        const double toLuma[3] = {kRed, kGreen, kBlue};
        const double toBlue = 1.8556;
        const double toRed = 1.5748;
        for (int from = 0; from < 3; ++from) {
            const double y = toLuma[from];
            const double cb = ((from == 2 ? 1 : 0) - y) / toBlue;
            const double cr = ((from == 0 ? 1 : 0) - y) / toRed;
            const double b = colour * (cb * std::cos(angle) - cr * std::sin(angle));
            const double r = colour * (cb * std::sin(angle) + cr * std::cos(angle));
            mMatrix[0][from] = static_cast<float>(gain * y + toRed * r);
            mMatrix[1][from] =
                    static_cast<float>(gain * y - (kRed * toRed * r + kBlue * toBlue * b) / kGreen);
            mMatrix[2][from] = static_cast<float>(gain * y + toBlue * b);
        }
    }

    void process(Light* begin, const Light* end) const {
        sharpen(begin, end);
        for (Light* light = begin; light != end; ++light) {
            *light = {channel(0, *light), channel(1, *light), channel(2, *light)};
        }
    }

  private:
    /** Adds what a pixel differs by from its neighbours, or takes it away. */
    void sharpen(Light* begin, const Light* end) const {
        if (mSharpness == 0) {
            return;
        }
        Light before = *begin;
        for (Light* light = begin; light != end; ++light) {
            const Light here = *light;
            const Light& after = light + 1 == end ? here : light[1];
            const auto edge = [this](float left, float middle, float right) {
                return middle + mSharpness * (middle - (left + middle + right) / 3);
            };
            *light = {edge(before.red, here.red, after.red), edge(before.green, here.green, after.green),
                      edge(before.blue, here.blue, after.blue)};
            before = here;
        }
    }

    float channel(int to, const Light& light) const {
        const float* const weights = mMatrix[to];
        const float level =
                weights[0] * light.red + weights[1] * light.green + weights[2] * light.blue + mOffset;
        const float share = std::clamp(level / kFull, 0.0F, 1.0F);
        const float curved = share * share * (3 - 2 * share);
        return (share + (curved - share) * mCurve) * kFull;
    }

    float mMatrix[3][3];
    float mOffset;
    float mSharpness;
    float mCurve;
};

/** The video layer. */
class Video {
  public:
    Video(const Settings& settings, const Layers& layers, const InputLayer& input, PanelClock::time_point now)
        : mLayers(layers),
          mInput(input),
          mOverscan(settings[Setting::Overscan]),
          mPq(settings[static_cast<Setting>(static_cast<unsigned>(Setting::PictureMain) + layers.window)],
              settings[Setting::Pq]),
          mPlace(kWindowPlaces[layers.window]) {
        const Moment moment = Moment::of(layers, now);
        if (!moment.patternEnded) {
            mPattern = layers.pattern;
        }
        if (layers.burnIn) {
            mBurnIn = layers.burnIn->colours[moment.burnInColour];
        }
    }

    /** Whether there is a timing for the panel. */
    bool timed() const {
        return mLayers.freeRun != FreeRun::Never || mInput.locked || mBurnIn ||
               mPattern.kind() != PatternKind::Off;
    }

    void draw(int y, Row* row) const {
        if (mBurnIn) {
            std::fill(row->begin(), row->end(), *mBurnIn);
            return;
        }
        if (y < mPlace.top || y >= mPlace.bottom) {
            return;
        }
        const bool black = mLayers.freeRun == FreeRun::Always;
        const std::optional<int> sourceY =
                source(y - mPlace.top, mPlace.height(), mOverscan[2], mOverscan[3], kPictureHeight);
        const Argb* const inputRow =
                sourceY && mInput.surface != nullptr && !black ? mInput.surface->row(*sourceY) : nullptr;
        for (int64_t x = mPlace.left; sourceY && x < mPlace.right; ++x) {
            const std::optional<int> sourceX =
                    source(x - mPlace.left, mPlace.width(), mOverscan[0], mOverscan[1], kPictureWidth);
            if (sourceX) {
                Light video = black ? Light{} : kNoInput;
                if (inputRow != nullptr) {
                    blend(inputRow[*sourceX], &video);
                }
                (*row)[static_cast<size_t>(x)] = mPattern.at(*sourceX, *sourceY, video);
            }
        }
        if (mLayers.pqOn) {
            mPq.process(row->data() + mPlace.left, row->data() + mPlace.right);
        }
    }

  private:
    /** The pixel of the picture that is seen at a place of the window, or none in its margin. */
    static std::optional<int> source(int64_t place, int64_t length, int64_t beyondFirst, int64_t beyondLast,
                                     int64_t pictureLength) {
        // In thousandths of the picture, times twice the window's length: the pixels' middles count.
        const int64_t seen = 1000 - beyondFirst - beyondLast;
        const int64_t whole = 2 * length * 1000;
        const int64_t at = beyondFirst * 2 * length + (2 * place + 1) * seen;
        if (at < 0 || at >= whole) {
            return std::nullopt;
        }
        return static_cast<int>(at * pictureLength / whole);
    }

    const Layers& mLayers;
    const InputLayer mInput;
    const Settings::Values& mOverscan;
    const PqEngine mPq;
    const Box mPlace;
    TestPattern mPattern;
    std::optional<Light> mBurnIn;
};

void drawPlane(const Plane& plane, int y, Row* row) {
    const Box seen = plane.place.within(kWholePicture);
    if (!plane.shown || y < seen.top || y >= seen.bottom) {
        return;
    }
    const int64_t planeY = (y - plane.place.top) * plane.surface.height() / plane.place.height();
    const Argb* const pixels = plane.surface.row(planeY);
    for (int64_t x = seen.left; x < seen.right; ++x) {
        const int64_t planeX = (x - plane.place.left) * plane.surface.width() / plane.place.width();
        const Argb pixel = over(pixels[planeX], plane.back);
        const Argb alpha = ((pixel >> 24) * plane.alpha + 127) / 255;
        blend((pixel & 0xFFFFFF) | alpha << 24, &(*row)[static_cast<size_t>(x)]);
    }
}

/** What becomes of the levels behind the layers: white point, gamma, and the link's bits. */
class Output {
  public:
    explicit Output(const Settings& settings) : mMirror(static_cast<unsigned>(settings[Setting::Link][5])) {
        const Settings::Values& white = settings[Setting::WhitePoint];
        const int64_t steps = (1 << settings[Setting::Link][2]) - 1;
        for (unsigned colour = 0; colour < 3; ++colour) {
            const Settings::Values& gamma =
                    settings[static_cast<Setting>(static_cast<unsigned>(Setting::GammaRed) + colour)];
            for (unsigned level = 0; level <= kMaxLevel; ++level) {
                const double balanced = level * static_cast<double>(white[colour]) / 1024 +
                                        static_cast<double>(white[3 + colour] - 1024);
                const double place = std::clamp(balanced / kMaxLevel, 0.0, 1.0) * (kGammaEntries - 1);
                const auto below = static_cast<size_t>(place);
                const size_t above = std::min<size_t>(below + 1, kGammaEntries - 1);
                const double share = place - static_cast<double>(below);
                const double out = static_cast<double>(gamma[below]) * (1 - share) +
                                   static_cast<double>(gamma[above]) * share;
                const double step = std::floor(out / kMaxLevel * static_cast<double>(steps) + 0.5);
                mBytes[colour][level] =
                        static_cast<uint8_t>(std::lround(step / static_cast<double>(steps) * 255));
            }
        }
    }

    void write(const Row& row, int y, std::vector<uint8_t>* rgb) const {
        constexpr unsigned kLeftToRight = 1;
        constexpr unsigned kTopToBottom = 2;
        const int outY = (mMirror & kTopToBottom) != 0 ? kPictureHeight - 1 - y : y;
        uint8_t* const out = rgb->data() + static_cast<size_t>(outY) * kPictureWidth * 3;
        for (int x = 0; x < kPictureWidth; ++x) {
            const int outX = (mMirror & kLeftToRight) != 0 ? kPictureWidth - 1 - x : x;
            const Light& light = row[static_cast<size_t>(x)];
            out[outX * 3] = byte(0, light.red);
            out[outX * 3 + 1] = byte(1, light.green);
            out[outX * 3 + 2] = byte(2, light.blue);
        }
    }

  private:
    uint8_t byte(unsigned colour, float level) const {
        return mBytes[colour][static_cast<unsigned>(std::clamp(level + 0.5F, 0.0F, kFull))];
    }

    unsigned mMirror;
    uint8_t mBytes[3][kMaxLevel + 1];
};

}  // namespace

Moment Moment::of(const Layers& layers, PanelClock::time_point now) {
    Moment moment;
    moment.patternEnded = layers.patternEnd && now >= *layers.patternEnd;
    if (layers.burnIn) {
        const BurnIn& burnIn = *layers.burnIn;
        const auto passed = std::max((now - burnIn.start) / burnIn.interval, decltype(now - now)::rep{0});
        moment.burnInColour = static_cast<size_t>(passed) % burnIn.colours.size();
    }
    return moment;
}

std::vector<uint8_t> compose(const Settings& settings, const Layers& layers, const InputLayer& input,
                             const std::vector<std::string>& banner, Seen seen, PanelClock::time_point now) {
    std::vector<uint8_t> rgb(static_cast<size_t>(kPictureWidth) * kPictureHeight * 3);
    const Video video(settings, layers, input, now);
    if (!video.timed()) {
        return rgb;
    }
    const bool withVideo = seen == Seen::All || seen == Seen::Video;
    const bool withPlane = (seen == Seen::All || seen == Seen::Graphics) && layers.plane != nullptr;
    const bool withOsd =
            (seen == Seen::All || seen == Seen::Osd) && (layers.osd[kBanner] || layers.osd[kSubtitle]);
    std::optional<Surface> osd;
    if (withOsd) {
        drawOsd(layers.osd[kBanner] ? banner : std::vector<std::string>(), layers.osd[kSubtitle],
                &osd.emplace());
    }
    const Output output(settings);
    Row row(kPictureWidth);
    for (int y = 0; y < kPictureHeight; ++y) {
        std::fill(row.begin(), row.end(), Light{});
        if (withVideo) {
            video.draw(y, &row);
        }
        if (withPlane) {
            drawPlane(*layers.plane, y, &row);
        }
        for (int x = 0; osd && x < kPictureWidth; ++x) {
            blend(osd->row(y)[x], &row[static_cast<size_t>(x)]);
        }
        output.write(row, y, &rgb);
    }
    return rgb;
}

}  // namespace simulator
