#include "platform/socket/Wait.h"

#include <errno.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>

#include "platform/socket/Inbound.h"
#include "platform/socket/Limits.h"
#include "platform/socket/Pool.h"
#include "platform/socket/Socket.h"

namespace android::hardware {

namespace {

/** The policy for batches while it lives. Leaves a thread alone that runs under another than the ordinary
 * one. */
class BatchPolicy {
  public:
    explicit BatchPolicy(bool wanted)
        : mSet(wanted && sched_getscheduler(0) == SCHED_OTHER && setPolicy(SCHED_BATCH)) {}
    ~BatchPolicy() {
        if (mSet) {
            const int error = errno;
            setPolicy(SCHED_OTHER);
            errno = error;
        }
    }
    BatchPolicy(const BatchPolicy&) = delete;
    BatchPolicy& operator=(const BatchPolicy&) = delete;

  private:
    static bool setPolicy(int policy) {
        const sched_param param{};
        return sched_setscheduler(0, policy, &param) == 0;
    }

    const bool mSet;
};

}  // namespace

ssize_t Wait::receive(void* memory, size_t size, bool mayWait, Descriptors* descriptors) {
    const int fd = mConnection.fd();
    const bool isAlone = !mPool.hasIdleThread();
    if (!mayWait || mConnection.othersWait()) {
        return receiveSome(fd, memory, size, MSG_DONTWAIT, descriptors);
    }
    if (isAlone && mPool.isCrowded()) {
        errno = EAGAIN;  // epoll tells soon enough
        return -1;
    }
    if (++mWaits == kWaitsUntilStream) {
        // Disarmed, it would still cost a look at it with every message that comes.
        mPool.unwatch(&mConnection);
    }
    const BatchPolicy policy(mWaits >= kWaitsUntilStream && mConnection.isControl());
    if (!isAlone) {
        return receiveSome(fd, memory, size, 0, descriptors);  // for kLingerMilliseconds
    }
    pollfd either[] = {{fd, POLLIN, 0}, {mPool.epoll(), POLLIN, 0}};
    poll(either, 2, kLingerMilliseconds);
    if (either[0].revents != 0) {
        return receiveSome(fd, memory, size, MSG_DONTWAIT, descriptors);
    }
    if (either[1].revents != 0) {
        mPool.noteCrowd();
    }
    errno = EAGAIN;
    return -1;
}

}  // namespace android::hardware
