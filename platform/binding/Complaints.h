#pragma once

#include <sys/types.h>

#include <array>
#include <cstdint>

#include "platform/binding/CheckedLock.h"

namespace android::hardware {

/**
 * Who is at the other end of a connection, as the kernel noted it when the connection was made, or whose call
 * it is, as the driver says. A process of another PID namespace has no number here: its pid is 0.
 */
struct Credentials {
    pid_t pid = 0;
    uid_t uid = 0;
};

/**
 * Which complaints about other processes are written to the log: of each process the first few, then every
 * time that their number has doubled, so that who misbehaves in a loop does not fill the log. Any thread;
 * takes no memory.
 */
class Complaints {
  public:
    /**
     * Counts a complaint about a process.
     *
     * @return its number if it is to be logged, else 0
     */
    uint32_t count(const Credentials& who);

  private:
    static constexpr uint32_t kAlwaysLogged = 16;
    /** A process that was quiet for so long begins anew. */
    static constexpr int64_t kForgottenSeconds = 60;

    struct Culprit {
        uint32_t count = 0;
        int64_t lastSecond = 0;
    };

    CheckedMutex mLock;
    std::array<Culprit, 64> mCulprits GUARDED_BY(mLock);  // by pid; those that meet here share a count
};

}  // namespace android::hardware
