#include "simulator/inputs/Receiver.h"

#include <cstdio>

#include "simulator/board/Status.h"

using namespace fapi_core;

namespace simulator {
namespace {

// How long a lock takes: tuners search, HDMI negotiates, the others measure some frames.
std::chrono::milliseconds lockTime(ZvtTvFApiInputSource_e source) {
    switch (typeOf(source)) {
        case INPUT_SOURCE_TYPE_TUNER:
            return std::chrono::milliseconds(400);
        case INPUT_SOURCE_TYPE_HDMI:
            return std::chrono::milliseconds(250);
        default:
            return std::chrono::milliseconds(120);
    }
}

Module::Payload lockEvent(ZvtTvFApiInputSource_e source, bool locked) {
    Module::Payload payload;
    payload.objects[0].u32Value = source;
    payload.objects[1].u32Value = locked;
    return payload;
}

}  // namespace

Signal Receiver::arriving() const {
    return Signal::fromNumbers((*inputSettings().get())[inputs::kSignals + mState.source]);
}

void Receiver::start() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mState.source = static_cast<ZvtTvFApiInputSource_e>((*inputSettings().get())[inputs::kCurrent][0]);
    mState.signal = arriving();
    mState.locked = mState.signal.present;
    mRunning = true;
    mChanged(mState);
}

void Receiver::stop() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mRunning = false;
    mState = State();
    ++mSearch;
    mChanged(mState);
}

Receiver::State Receiver::state() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mState;
}

void Receiver::lose() {
    ++mSearch;
    if (mState.locked) {
        mState.locked = false;
        mState.signal = Signal();
        mChanged(mState);
        mEvents.raise(mModule, INPSRC_EVENT_SIGNAL_LOCK, lockEvent(mState.source, false));
    }
}

void Receiver::search() {
    const uint64_t search = ++mSearch;
    if (arriving().present &&
        !mEvents.run([this, search] { found(search); }, Dispatcher::Clock::now() + lockTime(mState.source))) {
        fprintf(stderr, "board: the signal of %s is not locked: too many orders wait\n",
                nameOf(mState.source));
    }
}

void Receiver::found(uint64_t search) {
    Module::Payload payload;
    uint32_t type = INPSRC_EVENT_SIGNAL_LOCK;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (search != mSearch) {
            return;
        }
        payload = lockEvent(mState.source, true);
        mState.signal = arriving();
        if (mState.locked) {
            type = INPSRC_EVENT_TIMING;
            payload.objects[1].u32Value = mState.signal.rate;
            payload.objects[1].strValue = mState.signal.describe();
        }
        mState.locked = true;
        mChanged(mState);
        mEvents.raise(mModule, type, payload);
    }
}

int32_t Receiver::setSignal(ZvtTvFApiInputSource_e source, const Signal& signal) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const int32_t status = inputSettings().change(
            inputs::kSignals + source, [&](KeptNumbers::Values& numbers) { numbers = signal.numbers(); });
    if (status != kOk || source != mState.source || !mRunning) {
        return status;
    }
    if (!signal.present) {
        lose();
    } else if (mState.locked && signal.sameTiming(mState.signal)) {
        ++mSearch;
        mState.signal = signal;
    } else {
        search();
    }
    return kOk;
}

int32_t Receiver::select(ZvtTvFApiInputSource_e source) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const int32_t status = inputSettings().change(inputs::kCurrent,
                                                  [&](KeptNumbers::Values& current) { current[0] = source; });
    if (status != kOk || source == mState.source || !mRunning) {
        return status;
    }
    mState = {source, false, Signal()};
    mChanged(mState);
    mEvents.raise(mModule, INPSRC_EVENT_SIGNAL_LOCK, lockEvent(source, false));
    search();
    return kOk;
}

void Receiver::restartTuner() {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mState.source == INPUT_SOURCE_ATV && mRunning) {
        lose();
        search();
    }
}

}  // namespace simulator
