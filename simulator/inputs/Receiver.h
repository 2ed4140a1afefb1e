#pragma once

#include <mutex>
#include <string>

#include "simulator/board/Dispatcher.h"
#include "simulator/board/Module.h"
#include "simulator/inputs/Settings.h"

namespace simulator {

// This room: the input sources. What arrives at each, the lock on the current one, the calibration of the
// ADCs.

/**
 * The current input source and the circuit that locks to its signal. Signals and source are inputSettings()';
 * the lock is lost and found here, which takes time and raises the module's events. Any thread.
 */
class Receiver {
  public:
    struct State {
        fapi_core::ZvtTvFApiInputSource_e source = fapi_core::INPUT_SOURCE_NONE;
        bool locked = false;
        /** As it was locked; not present without a lock. */
        Signal signal;
    };
    /** Told of each change before its event is, on the thread that made it; it must not call the receiver. */
    using Listener = void (*)(const State& state);

    Receiver(Module& module, Listener changed) : mModule(module), mChanged(changed) {}

    /** Finds the current source as it was, its signal locked: that hardware runs on while the service
     * restarts. */
    void start();
    /** Loses the lock without an event. */
    void stop();

    State state() const;

    // What the world does. A status of the settings' file: then nothing has changed.

    /** Another signal arrives at a source, or none. */
    int32_t setSignal(fapi_core::ZvtTvFApiInputSource_e source, const Signal& signal);
    int32_t select(fapi_core::ZvtTvFApiInputSource_e source);

    /** The analogue tuner's stages start anew: a lock to its signal is lost, and found again. */
    void restartTuner();

  private:
    // With mMutex held.
    void lose();
    void search();
    Signal arriving() const;

    void found(uint64_t search);

    Module& mModule;
    const Listener mChanged;
    mutable std::mutex mMutex;
    // All below guarded by mMutex. Events are handed to mEvents under it, so that they come in its order.
    State mState;
    bool mRunning = false;
    uint64_t mSearch = 0;  // the latest; those before it find nothing

    Dispatcher mEvents;
};

}  // namespace simulator
