#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace fapictl {

/**
 * Threads for work that may block. No more than kMost at a time; what is beyond waits for one of them. Work
 * that does not come back keeps its thread, and what it uses, until the process ends.
 */
class Workers {
  public:
    static constexpr int kMost = 80;

    Workers() : mState(std::make_shared<State>()) {}
    /** What has not begun by then is dropped. */
    ~Workers();
    Workers(const Workers&) = delete;

    /** Throws std::system_error when there is no thread at all to be had. */
    void run(std::function<void()> work);

    /** Waits a moment for what is under way. Returns the number of threads that are still at work. */
    int finish();

  private:
    struct State {
        std::mutex mutex;
        std::condition_variable changed;
        // Guarded by mutex.
        std::deque<std::function<void()>> waiting;
        int threads = 0;
        int idle = 0;
        bool ended = false;
    };

    static void work(const std::shared_ptr<State>& state);

    const std::shared_ptr<State> mState;
};

}  // namespace fapictl
