#pragma once

#include <condition_variable>
#include <mutex>
#include <ostream>
#include <thread>

namespace fapictl {

/**
 * Ends the process when it lives longer than its seconds, and a tenth of one more for those who watch the
 * time themselves: a call to a service that is stopped comes back never, and cannot be taken back. The
 * message is that of Exit::Transport, and so is the code.
 */
class Watchdog {
  public:
    Watchdog(double seconds, std::ostream& err);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;

  private:
    std::mutex mMutex;
    std::condition_variable mDone;
    bool mIsDone = false;  // guarded by mMutex
    std::thread mThread;
};

}  // namespace fapictl
