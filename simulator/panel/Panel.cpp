#include "simulator/panel/Panel.h"

#include <algorithm>

#include "simulator/board/Status.h"

namespace simulator {
namespace {

constexpr const char* kWindowNames[kWindows] = {"MAIN", "SUB", "THIRD"};
constexpr const char* kFreeRunNames[kFreeRuns] = {"AUTO", "ON", "OFF"};

std::string number(int64_t value) {
    return std::to_string(value);
}

/** 0x010203 as 1.2.3 */
std::string versionText(int64_t version) {
    return number(version >> 16) + "." + number(version >> 8 & 0xFF) + "." + number(version & 0xFF);
}

}  // namespace

Panel::Panel()
    : mRevision(static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                              std::chrono::system_clock::now().time_since_epoch())
                                              .count())) {
    // Whatever is wrong has been said, and the set starts all the same.
    displaySettings();
    loadDriverParameters(&mDriver);
    loadPqData(&mPqData);
}

int32_t Panel::reloadDriver() {
    const std::lock_guard<std::mutex> lock(mMutex);
    const int32_t result = displaySettings().load();
    const int32_t driver = loadDriverParameters(&mDriver);
    changed();
    return result != kOk ? result : driver;
}

int32_t Panel::reloadPq() {
    const std::lock_guard<std::mutex> lock(mMutex);
    const int32_t result = loadPqData(&mPqData);
    changed();
    return result;
}

int32_t Panel::change(const std::vector<Change>& changes) {
    const std::lock_guard<std::mutex> lock(mMutex);
    return changeLocked(changes);
}

int32_t Panel::changeLocked(const std::vector<Change>& changes) {
    std::vector<std::pair<size_t, Settings::Values>> groups;
    for (const auto& [setting, values] : changes) {
        groups.emplace_back(static_cast<size_t>(setting), values);
    }
    changed();
    return displaySettings().set(groups);
}

Setting Panel::pictureSetting() const {
    return static_cast<Setting>(static_cast<unsigned>(Setting::PictureMain) + mLayers.window);
}

int32_t Panel::changePicture(size_t parameter, int64_t value) {
    if (parameter >= kPictureParameters) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    changed();
    return displaySettings().change(static_cast<size_t>(pictureSetting()),
                                    [&](Settings::Values& values) { values[parameter] = value; });
}

int32_t Panel::changePicture(const Settings::Values& parameters) {
    const std::lock_guard<std::mutex> lock(mMutex);
    return changeLocked({{pictureSetting(), parameters}});
}

bool Panel::inPqRange(size_t item, int64_t value) const {
    return item >= std::size(mPqData.range) ||
           (value >= mPqData.range[item][0] && value <= mPqData.range[item][1]);
}

int32_t Panel::changePq(const Settings::Values& items) {
    const std::lock_guard<std::mutex> lock(mMutex);
    for (size_t item = 0; item < items.size(); ++item) {
        if (!inPqRange(item, items[item])) {
            return kOutOfRange;
        }
    }
    return changeLocked({{Setting::Pq, items}});
}

int32_t Panel::changePqItem(size_t item, int64_t value) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (item >= kPqItems || !inPqRange(item, value)) {
        return kOutOfRange;
    }
    changed();
    return displaySettings().change(static_cast<size_t>(Setting::Pq), [&](Settings::Values& items) {
        clampPq(items);
        items[item] = value;
    });
}

/** Within the ranges of pq.ini, which may be narrower than when the items were set. */
void Panel::clampPq(Settings::Values& items) const {
    for (size_t axis = 0; axis < std::size(mPqData.range); ++axis) {
        items[axis] = std::clamp<int64_t>(items[axis], mPqData.range[axis][0], mPqData.range[axis][1]);
    }
}

DriverParameters Panel::driver() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mDriver;
}

PqData Panel::pqData() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mPqData;
}

/** With the PQ items that act. */
Settings Panel::seenSettings() const {
    Settings seen(displaySettings());
    clampPq(seen[Setting::Pq]);
    return seen;
}

void Panel::setInput(const InputSignal& input) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mInput = input;
    mInputPicture.reset();
    changed();
}

std::vector<uint8_t> Panel::picture(Seen seen, PanelClock::time_point instant) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mInput.motif != InputMotif::None && mInputPicture == nullptr) {
        auto drawn = std::make_unique<Surface>();
        drawInput(mInput, drawn.get());
        mInputPicture = std::move(drawn);
    }
    return compose(seenSettings(), mLayers, {mInput.locked, mInputPicture.get()}, bannerLocked(), seen,
                   instant);
}

void Panel::followTime() const {
    const Moment moment = Moment::of(mLayers, PanelClock::now());
    if (!(moment == mMoment)) {
        mMoment = moment;
        ++mRevision;
    }
}

uint64_t Panel::revision() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    followTime();
    return mRevision;
}

std::vector<std::string> Panel::banner() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return bannerLocked();
}

std::vector<std::string> Panel::bannerLocked() const {
    const Settings seen = seenSettings();
    const Settings::Values& picture = seen[pictureSetting()];
    const Settings::Values& pq = seen[Setting::Pq];
    const Settings::Values& white = seen[Setting::WhitePoint];
    const Settings::Values& link = seen[Setting::Link];
    const Timing& timing = kTimings[seen[Setting::Timing][0]];
    const int64_t duty =
            mDriver.pwmMin + (int64_t{mDriver.pwmMax} - mDriver.pwmMin) * picture[kBacklight] / 100;
    const auto list = [](const Settings::Values& values, size_t begin, size_t end) {
        std::string text;
        for (size_t i = begin; i < end; ++i) {
            text += " " + number(values[i]);
        }
        return text;
    };
    return {mDriver.name + "  " + number(timing.width) + "x" + number(timing.height) + " " +
                    number(timing.hertz) + " Hz, " + number(link[2]) + " bit, " + number(link[1]) + " lanes",
            std::string("Window ") + kWindowNames[mLayers.window] + ", free run " +
                    kFreeRunNames[static_cast<unsigned>(mLayers.freeRun)] + ", PQ " +
                    (mLayers.pqOn ? "ON" : "OFF"),
            "Brightness " + number(picture[kBrightness]) + ", contrast " + number(picture[kContrast]) +
                    ", saturation " + number(picture[kSaturation]),
            "Hue " + number(picture[kHue]) + ", sharpness " + number(picture[kSharpness]) + ", backlight " +
                    number(picture[kBacklight]) + " (PWM " + number(duty) + "%)",
            "PQ" + list(pq, 0, pq.size()) + ", overscan" + list(seen[Setting::Overscan], 0, 4),
            "White gain" + list(white, 0, 3) + ", offset" + list(white, 3, 6),
            "FRC firmware " + (mDriver.frcPresent ? versionText(seen[Setting::FrcFirmware][0]) : "none")};
}

Panel& panel() {
    static Panel& sPanel = *new Panel;
    return sPanel;
}

}  // namespace simulator
