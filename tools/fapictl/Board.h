#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "tools/fapictl/Engine.h"
#include "tools/fapictl/Signals.h"

// What only a simulated board has, for whoever looks at it: its picture, its serial ports, its printed state.
namespace fapictl {

/** The simulated board's state folder; as the environment says it, which has to be the service's. */
std::string stateDirectory();

/** Throws Failure (NotFound) where there is no simulated board; one that is not ready may be one. */
void requireBoard(Engine& engine, const Target& target);

/**
 * Has the board print its state, and brings it. Throws Failure: NotFound where there is no simulated board,
 * Status when the board refuses, Output when what the service wrote is not here.
 */
std::string boardState(Engine& engine, const Target& target);

/**
 * Looks at the panel while somebody wants to know, and tells of pictures that differ from the one before.
 * Whoever is told must not block.
 */
class PanelWatcher {
  public:
    using Changed = std::function<void(const std::string& layers, uint64_t revision)>;

    PanelWatcher(const Package& package, Target target);
    ~PanelWatcher();
    PanelWatcher(const PanelWatcher&) = delete;

    /** From now on this one is told of pictures of the layers, of the newest at once; "" for no more. */
    void look(uint64_t who, const std::string& layers, Changed changed);
    void leave(uint64_t who) { look(who, "", nullptr); }

    /** The newest picture of the layers as a PNG file; null when there is none. */
    std::shared_ptr<const std::string> picture(const std::string& layers) const;

  private:
    struct State;

    const std::shared_ptr<State> mState;
};

/**
 * The two serial ports as a terminal has them, each opened once for all who look. What the board writes goes
 * to each of them, to a new one the last of it first. Whoever is told must not block.
 */
class SerialTerminals {
  public:
    static constexpr size_t kPorts = 2;
    static constexpr size_t kKept = 16 << 10;

    using Received = std::function<void(size_t port, const std::string& bytes)>;

    SerialTerminals();
    ~SerialTerminals();
    SerialTerminals(const SerialTerminals&) = delete;

    /** Throws Failure: NotFound when no board runs, Output when the port cannot be opened. */
    void open(uint64_t who, size_t port, Received received);
    void close(uint64_t who, size_t port);
    void leave(uint64_t who);

    /** Returns how many bytes the port took. Throws Failure (Output). */
    size_t type(size_t port, const std::string& bytes);

  private:
    struct Port {
        int fd = -1;
        std::string kept;
        std::map<uint64_t, Received> listeners;
    };

    void read();
    /** Requires the lock. Throws Failure (Output). */
    int opened(size_t port);

    const Bell mChanged;
    std::mutex mMutex;
    // Guarded by mMutex.
    Port mPorts[kPorts];
    bool mEnded = false;
    std::thread mReader;
};

}  // namespace fapictl
