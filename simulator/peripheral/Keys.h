#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <utility>

namespace simulator {

/**
 * The board's keypad, a ladder of resistors on channel 0 of the successive-approximation ADC, the other
 * channels, and the infrared receiver with its list of blocked keys. Nothing of it survives a restart. Any
 * thread.
 */
class Keys {
  public:
    static constexpr unsigned kChannels = 4;
    static constexpr unsigned kKeypadChannel = 0;
    /** Ten bits. */
    static constexpr unsigned kMaxValue = 1023;
    static constexpr size_t kMaxBlocked = 256;

    enum class Source { kKeypad, kRemote };
    /** What is told of keys and of the keypad's ADC; called with a lock held, in the order of what happens.
     */
    struct Listener {
        std::function<void(uint32_t code, Source source, bool pressed)> key;
        std::function<void(unsigned channel, unsigned value)> adc;
    };

    explicit Keys(Listener listener) : mListener(std::move(listener)) {}

    /** Puts everything back as at the start. */
    void reset();

    /** A key that is held down already counts as pressed now. */
    void readKeypad(bool on);
    void reportAdc(bool on);

    /**
     * A channel's value on eight bits. Range 0: the whole of the ten bits, in steps of 4; range 1: the lowest
     * quarter in steps of 1, 255 above it. -1 for a channel or range that there is not.
     */
    int measure(unsigned channel, unsigned range) const;

    void enableBlocking(bool on);
    void invertBlocking(bool on);
    /** kFull. A key that is on the list already stays on it. */
    int32_t block(uint64_t customCode, uint64_t keyCode);

    // What the world outside does.
    /** kOutOfRange. On the keypad's channel, a value near a key's presses it and any other releases it. */
    int32_t setAdc(unsigned channel, unsigned value);
    /** Puts the keypad's channel to the value of that key, or of none. kNotFound: the keypad has no such key.
     */
    int32_t pressKey(uint32_t code, bool pressed);
    /** A key of a remote control. kDenied when it is blocked, and nobody hears of it. */
    int32_t pressRemoteKey(uint64_t customCode, uint32_t code, bool pressed);

    std::string describe() const;

  private:
    void setAdcLocked(unsigned channel, unsigned value);
    void scanKeypad();

    const Listener mListener;

    struct State {
        unsigned values[kChannels] = {kMaxValue, 512, 512, 512};  // no key; half of the range
        bool readsKeypad = false;
        bool reportsAdc = false;
        uint32_t pressed = 0;  // the keypad's key that was told of, 0 for none
        bool blocking = false;
        bool inverted = false;
        std::set<std::pair<uint64_t, uint64_t>> blocked;
    };
    mutable std::mutex mMutex;
    State mState;  // guarded by mMutex
};

}  // namespace simulator
