#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "simulator/panel/Configuration.h"
#include "simulator/panel/InputPicture.h"
#include "simulator/panel/Picture.h"
#include "simulator/panel/Settings.h"

namespace simulator {

// This room: what is to be seen. Settings of the display, its layers, the picture that they make.

/**
 * The panel and all that feeds it, which the modules disp and disptst share. Any thread.
 *
 * What the flash keeps is changed there first. Every function returns kOk or a status, and then has changed
 * nothing.
 */
class Panel {
  public:
    using Change = std::pair<Setting, Settings::Values>;

    /** Reads what the flash keeps; what is wrong with it is said on standard error, and has its factory
     * value. */
    Panel();

    /** Reads settings and panel.ini anew. */
    int32_t reloadDriver();
    /** Reads pq.ini anew. Items beyond a narrower range act as its nearest end until they are set again. */
    int32_t reloadPq();

    int32_t change(const std::vector<Change>& changes);
    int32_t changePicture(size_t parameter, int64_t value);
    int32_t changePicture(const Settings::Values& parameters);
    /** All the items of the PQ engine, or one of them, within the ranges of pq.ini. */
    int32_t changePq(const Settings::Values& items);
    int32_t changePqItem(size_t item, int64_t value);

    DriverParameters driver() const;
    PqData pqData() const;

    /** Calls body with the layers, which nobody else sees or changes meanwhile; returns what it returns. */
    template <typename Body>
    int32_t withLayers(Body body) {
        const std::lock_guard<std::mutex> lock(mMutex);
        const int32_t result = body(mLayers);
        changed();
        return result;
    }
    /** The same, for those who only look. */
    template <typename Body>
    void lookAtLayers(Body body) const {
        const std::lock_guard<std::mutex> lock(mMutex);
        body(static_cast<const Layers&>(mLayers));
    }

    /**
     * Another number whenever what is seen may be another picture, by a change or by the time. It does not
     * begin at the same number in each run of the service. Composes nothing.
     */
    uint64_t revision() const;

    /** The panel is fed with this from now on. Draws nothing yet. */
    void setInput(const InputSignal& input);

    /** As compose(), at that instant. */
    std::vector<uint8_t> picture(Seen seen, PanelClock::time_point instant) const;

    /** What the OSD's banner says. */
    std::vector<std::string> banner() const;

  private:
    // With mMutex held, which makes a change and its number one.
    void changed() { ++mRevision; }
    void followTime() const;

    int32_t changeLocked(const std::vector<Change>& changes);
    Setting pictureSetting() const;
    bool inPqRange(size_t item, int64_t value) const;
    void clampPq(Settings::Values& items) const;
    Settings seenSettings() const;
    std::vector<std::string> bannerLocked() const;

    mutable std::mutex mMutex;
    // All below guarded by mMutex.
    DriverParameters mDriver;
    PqData mPqData;
    Layers mLayers;
    InputSignal mInput;
    mutable std::unique_ptr<Surface> mInputPicture;  // of mInput; drawn when it is first seen
    mutable uint64_t mRevision;
    mutable Moment mMoment;  // which the revision stands for
};

/** Made on first use, never destroyed. */
Panel& panel();

}  // namespace simulator
