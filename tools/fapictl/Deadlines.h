#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

namespace fapictl {

/**
 * Calls functions at their times, on a thread of its own, which is started with the first and sleeps until
 * the earliest. From any thread.
 */
class Deadlines {
  public:
    using Clock = std::chrono::steady_clock;
    using Key = std::pair<Clock::time_point, uint64_t>;

    Deadlines() = default;
    /** Functions whose time has not come are not called. */
    ~Deadlines();
    Deadlines(const Deadlines&) = delete;

    Key add(Clock::time_point time, std::function<void()> function);
    /** The function may just be running. */
    void remove(const Key& key);

  private:
    void run();

    std::mutex mMutex;
    std::condition_variable mSooner;
    // Guarded by mMutex.
    std::map<Key, std::function<void()>> mFunctions;
    uint64_t mCount = 0;
    bool mEnding = false;
    Clock::time_point mWakes = Clock::time_point::max();  // the thread, unless it is told
    std::thread mThread;
};

}  // namespace fapictl
