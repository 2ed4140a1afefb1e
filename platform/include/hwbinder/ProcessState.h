#pragma once

#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

namespace android::hardware {

/** The process's share of the transport; the singleton exists because generated code calls it. */
class ProcessState : public RefBase {
  public:
    static sp<ProcessState> self();

    /**
     * Starts serving calls on pool threads and watching peers for their death. Threads are started as calls
     * need them, up to the maximum. Calling it again changes nothing.
     */
    void startThreadPool();

  private:
    ProcessState() = default;
};

}  // namespace android::hardware
