#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "bench/common/Process.h"
#include "bench/common/Rounds.h"

namespace bench {

/**
 * Tells what happens in a folder. It lasts as long as the program, as ending a watch takes the kernel some
 * milliseconds.
 */
class FolderWatch {
  public:
    /** @param events of inotify */
    FolderWatch(const std::string& folder, uint32_t events);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /** Forgets what has happened so far. */
    void drain() const;

    /** Waits until something happens to a file with this text in its name. */
    void await(const std::string& name) const;

  private:
    const int mFd;
};

/** The process under test, and how to tell that it is ready. */
struct Subject {
    std::function<std::unique_ptr<Child>()> start;
    std::function<void()> awaitReady;
};

/** Nanoseconds from the start of the process until it is ready. The subject outlives the measure. */
Measure startOf(const Subject& subject);

/** A figure in kB of one of the process's files under /proc, in bytes. */
double procBytes(pid_t pid, const std::string& file, const std::string& label);

}  // namespace bench
