#pragma once

#include <sys/types.h>

namespace android::hardware {

/** Whose call the calling thread serves: the innermost one's caller, and this process while it serves none.
 */
class IPCThreadState {
  public:
    /** Never null, and good on any thread. */
    static IPCThreadState* self();

    /** 0 where it is not known: of a one-way message through the driver, of a process of another namespace.
     */
    pid_t getCallingPid() const;
    uid_t getCallingUid() const;

  private:
    IPCThreadState() = default;
};

}  // namespace android::hardware
