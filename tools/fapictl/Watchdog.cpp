#include "tools/fapictl/Watchdog.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Model.h"

namespace fapictl {

Watchdog::Watchdog(double seconds, std::ostream& err)
    : mThread([this, seconds, &err] {
          constexpr double kGrace = 0.1;
          std::unique_lock<std::mutex> lock(mMutex);
          if (!mDone.wait_for(lock, std::chrono::duration<double>(seconds + kGrace),
                              [this] { return mIsDone; })) {
              err << "fapictl: no answer within " << Json(seconds).dump() << " s" << std::endl;
              // What was printed before stays; nothing else is waited for.
              std::fflush(stdout);
              _exit(static_cast<int>(Exit::Transport));
          }
      }) {}

Watchdog::~Watchdog() {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsDone = true;
    }
    mDone.notify_one();
    mThread.join();
}

}  // namespace fapictl
