#include "simulator/peripheral/Gpio.h"

#include "simulator/board/Status.h"

namespace simulator {

void Gpio::reset() {
    unwatch();
    const std::lock_guard<std::mutex> lock(mMutex);
    for (Line& line : mLines) {
        line = Line();
    }
}

int32_t Gpio::control(unsigned line, unsigned control) {
    if (line >= kLines || control > kLetGo) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    mLines[line].driven = control != kLetGo;
    mLines[line].level = control == kHigh;
    changed(line);
    return kOk;
}

int32_t Gpio::level(unsigned line, unsigned char* level) const {
    if (line >= kLines || level == nullptr) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    *level = mLines[line].now() ? 1 : 0;
    return kOk;
}

int32_t Gpio::watch(unsigned line, unsigned trigger, unsigned interval) {
    if (line >= kLines || trigger > kFalling || interval > kMaxIntervalMilliseconds) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    ++mWatch;
    mWatched = line;
    mTrigger = trigger;
    mInterval = std::chrono::milliseconds(interval);
    mSince = Dispatcher::Clock::now();
    mSeen = mLines[line].now();
    mLookDue = false;
    return kOk;
}

void Gpio::unwatch() {
    const std::lock_guard<std::mutex> lock(mMutex);
    ++mWatch;
    mWatched = kLines;
}

int32_t Gpio::setOutside(unsigned line, bool level) {
    if (line >= kLines) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    mLines[line].outside = level;
    if (mLines[line].driven) {
        return kDenied;
    }
    changed(line);
    return kOk;
}

void Gpio::changed(unsigned line) {
    const bool level = mLines[line].now();
    if (line != mWatched || mLookDue || level == mSeen) {
        return;
    }
    if (mInterval.count() != 0) {
        // Until it changes there is nothing to see: only the first look after a change needs to be taken.
        const auto looks = (Dispatcher::Clock::now() - mSince) / mInterval + 1;
        mLookDue = mDispatcher.run([this, watch = mWatch] { look(watch); }, mSince + looks * mInterval);
        return;
    }
    mSeen = level;
    if (triggers(level)) {
        mDispatcher.run([this, watch = mWatch, line, level] { report(watch, line, level); });
    }
}

void Gpio::look(unsigned watch) {
    unsigned line;
    bool level;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (watch != mWatch) {
            return;
        }
        mLookDue = false;
        line = mWatched;
        level = mLines[line].now();
        if (level == mSeen) {
            return;
        }
        mSeen = level;
        if (!triggers(level)) {
            return;
        }
    }
    mReport(line, level);
}

void Gpio::report(unsigned watch, unsigned line, bool level) {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (watch != mWatch) {
            return;
        }
    }
    mReport(line, level);
}

std::string Gpio::describe() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    std::string text;
    for (unsigned i = 0; i < kLines; ++i) {
        if (mLines[i].driven || mLines[i].outside || i == mWatched) {
            text += "gpio " + std::to_string(i) + (mLines[i].driven ? " out " : " in ") +
                    (mLines[i].now() ? "1" : "0") + (i == mWatched ? " monitored" : "") + "\n";
        }
    }
    return text;
}

}  // namespace simulator
