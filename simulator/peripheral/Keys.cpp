#include "simulator/peripheral/Keys.h"

#include <linux/input-event-codes.h>

#include <cstdio>
#include <cstdlib>

#include "simulator/board/Status.h"

namespace simulator {
namespace {

/** The keypad's keys, by the steps of the ladder: the first key's value is 0, the next one's kStep. */
constexpr uint32_t kLadder[] = {KEY_POWER,     KEY_MENU,       KEY_SWITCHVIDEOMODE, KEY_CHANNELDOWN,
                                KEY_CHANNELUP, KEY_VOLUMEDOWN, KEY_VOLUMEUP};
constexpr unsigned kStep = 128;
/** How far from its own value a key is still recognised. */
constexpr unsigned kTolerance = 40;
constexpr unsigned kKeys = sizeof(kLadder) / sizeof(kLadder[0]);

/** 0 for none. */
uint32_t keyAt(unsigned value) {
    const unsigned step = (value + kStep / 2) / kStep;
    const int distance = static_cast<int>(value) - static_cast<int>(step * kStep);
    return step < kKeys && static_cast<unsigned>(std::abs(distance)) <= kTolerance ? kLadder[step] : 0;
}

}  // namespace

void Keys::reset() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mState = State();
}

void Keys::readKeypad(bool on) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mState.readsKeypad = on;
    mState.pressed = on ? mState.pressed : 0;
    scanKeypad();
}

void Keys::reportAdc(bool on) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mState.reportsAdc = on;
}

int Keys::measure(unsigned channel, unsigned range) const {
    if (channel >= kChannels || range > 1) {
        return -1;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    const unsigned value = mState.values[channel];
    return static_cast<int>(range == 0 ? value / 4 : value > 255 ? 255 : value);
}

void Keys::enableBlocking(bool on) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mState.blocking = on;
}

void Keys::invertBlocking(bool on) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mState.inverted = on;
}

int32_t Keys::block(uint64_t customCode, uint64_t keyCode) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const std::pair<uint64_t, uint64_t> key(customCode, keyCode);
    if (mState.blocked.size() >= kMaxBlocked && mState.blocked.count(key) == 0) {
        return kFull;
    }
    mState.blocked.insert(key);
    return kOk;
}

int32_t Keys::setAdc(unsigned channel, unsigned value) {
    if (channel >= kChannels || value > kMaxValue) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    setAdcLocked(channel, value);
    return kOk;
}

int32_t Keys::pressKey(uint32_t code, bool pressed) {
    const std::lock_guard<std::mutex> lock(mMutex);
    for (unsigned i = 0; i < kKeys; ++i) {
        if (kLadder[i] == code) {
            setAdcLocked(kKeypadChannel, pressed ? i * kStep : kMaxValue);
            return kOk;
        }
    }
    return kNotFound;
}

int32_t Keys::pressRemoteKey(uint64_t customCode, uint32_t code, bool pressed) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const bool listed = mState.blocked.count({customCode, code}) > 0;
    if (mState.blocking && listed != mState.inverted) {
        return kDenied;
    }
    mListener.key(code, Source::kRemote, pressed);
    return kOk;
}

void Keys::setAdcLocked(unsigned channel, unsigned value) {
    const bool changed = mState.values[channel] != value;
    mState.values[channel] = value;
    if (changed && mState.reportsAdc && channel == kKeypadChannel) {
        mListener.adc(channel, value);
    }
    scanKeypad();
}

void Keys::scanKeypad() {
    const uint32_t now = mState.readsKeypad ? keyAt(mState.values[kKeypadChannel]) : 0;
    if (now == mState.pressed) {
        return;
    }
    if (mState.pressed != 0) {
        mListener.key(mState.pressed, Source::kKeypad, false);
    }
    mState.pressed = now;
    if (mState.pressed != 0) {
        mListener.key(mState.pressed, Source::kKeypad, true);
    }
}

std::string Keys::describe() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    std::string text = std::string("keypad ") + (mState.readsKeypad ? "on" : "off") + ", its adc " +
                       (mState.reportsAdc ? "reported" : "not reported") + "\nadc";
    for (const unsigned value : mState.values) {
        text += " " + std::to_string(value);
    }
    text += std::string("\nir blocking ") + (mState.blocking ? "on" : "off") +
            (mState.inverted ? ", inverted" : "") + "\n";
    for (const auto& [customCode, keyCode] : mState.blocked) {
        char line[64];
        snprintf(line, sizeof(line), "ir blocked 0x%llx 0x%llx\n",
                 static_cast<unsigned long long>(customCode), static_cast<unsigned long long>(keyCode));
        text += line;
    }
    return text;
}

}  // namespace simulator
