#include "tools/fapictl/Watchdog.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <utility>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Model.h"

namespace fapictl {

namespace {

constexpr double kGrace = 0.1;

}  // namespace

Watchdog::Watchdog(double seconds, std::function<void()> late)
    : mThread([this, seconds, late = std::move(late)] {
          std::unique_lock<std::mutex> lock(mMutex);
          if (!mDone.wait_for(lock, std::chrono::duration<double>(seconds), [this] { return mIsDone; })) {
              late();
          }
      }) {}

Watchdog::Watchdog(double seconds, std::ostream& err)
    : Watchdog(seconds + kGrace, [seconds, &err] {
          err << "fapictl: no answer within " << Json(seconds).dump() << " s" << std::endl;
          // What was printed before stays; nothing else is waited for.
          std::fflush(stdout);
          _exit(static_cast<int>(Exit::Transport));
      }) {}

Watchdog::Watchdog(std::chrono::steady_clock::time_point time, std::ostream& err)
    : Watchdog(std::chrono::duration<double>(time - std::chrono::steady_clock::now()).count() + 1, [&err] {
          err << "fapictl: nobody reads the output" << std::endl;
          _exit(static_cast<int>(Exit::Output));
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
