#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <ostream>
#include <thread>

namespace fapictl {

/** Acts, once, when it lives longer than its seconds. */
class Watchdog {
  public:
    /** @param late called on a thread of its own, which the destructor waits for */
    Watchdog(double seconds, std::function<void()> late);
    /**
     * Ends the process, and gives a tenth of a second more to those who watch the time themselves: a call to
     * a service that is stopped comes back never, and cannot be taken back. The message is that of
     * Exit::Transport, and so is the code.
     */
    Watchdog(double seconds, std::ostream& err);
    /**
     * Ends the process a second after the time has come: who prints until then has a reader that does not
     * read. The code is that of Exit::Output.
     */
    Watchdog(std::chrono::steady_clock::time_point time, std::ostream& err);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;

  private:
    std::mutex mMutex;
    std::condition_variable mDone;
    bool mIsDone = false;  // guarded by mMutex
    std::thread mThread;
};

}  // namespace fapictl
