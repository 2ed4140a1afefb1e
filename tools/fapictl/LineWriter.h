#pragma once

#include <condition_variable>
#include <mutex>
#include <string>

#include "tools/fapictl/Signals.h"

namespace fapictl {

/**
 * Writes whole lines to a descriptor, for any number of threads: the one that finds nobody writing also
 * writes what the others bring meanwhile, so that a line alone costs no other thread's wake-up. A reader that
 * does not read makes them wait once kWaiting bytes wait for it.
 */
class LineWriter {
  public:
    static constexpr size_t kWaiting = 8 << 20;

    /** The descriptor is the caller's; SIGPIPE has to be ignored. */
    explicit LineWriter(int fd) : mFd(fd) {}

    /** Adds the line's end. Says nothing of lines that nobody will read: see failed(). */
    void write(std::string line);

    /** Waits until all is written, or cannot be. */
    void drain();
    /** Lets everybody go who waits; nothing is written from then on. From any thread, more than once. */
    void close();
    /** Rings when the reader is gone, or the file takes no more. */
    const Bell& failed() const { return mFailed; }

  private:
    bool writeAll(const std::string& text) const;

    const int mFd;
    const Bell mFailed;
    const Bell mClosing;
    std::mutex mMutex;
    std::condition_variable mRoom;
    // Guarded by mMutex.
    std::string mWaiting;
    bool mBusy = false;
    bool mClosed = false;
};

}  // namespace fapictl
