#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

#include "simulator/board/Module.h"

namespace simulator {

/**
 * A thread that does one thing after another, so that events can be raised from wherever they arise, with
 * locks held there, and come in the order in which they arose. Any thread.
 */
class Dispatcher {
  public:
    using Clock = std::chrono::steady_clock;
    using Task = std::function<void()>;

    /** Far more than a board's handler ever leaves behind; what comes while so many wait is refused. */
    static constexpr size_t kMaxWaiting = 4096;

    Dispatcher();
    /** Waits for the task at hand and drops the others. Not on the dispatcher's own thread. */
    ~Dispatcher();
    Dispatcher(const Dispatcher&) = delete;
    Dispatcher& operator=(const Dispatcher&) = delete;

    /** Does it after all that was given before, but not before the given time. False: refused, for lack of
     * memory or of room, which is said on standard error; the latter once until there is room again. */
    bool run(Task task, Clock::time_point when = {});

    /** Raises the event after all that was given before. */
    void raise(Module& module, uint32_t type, Module::Payload payload);

    /** Raises the event at once, holding no lock, for use in a task. A failure is said on standard error. */
    static void deliver(Module& module, uint32_t type, const Module::Payload& payload);

  private:
    void serve();

    std::mutex mMutex;
    // All below guarded by mMutex.
    std::condition_variable mChanged;
    std::multimap<Clock::time_point, Task> mWaiting;  // those of the same time in the order they came
    bool mEnding = false;
    bool mOverflowing = false;

    std::thread mThread;
};

}  // namespace simulator
