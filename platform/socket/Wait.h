#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>

namespace android::hardware {

class Descriptors;
class Inbound;
class Pool;

/**
 * How a pool thread that has just served a connection waits for more to come on it, before it gives it back
 * to the epoll instance: a caller in a loop is so served with two system calls a call. A thread that only
 * ever receives without waiting would serve the same calls, more slowly.
 *
 * While another thread is free, it waits on the connection alone; else on the epoll instance too, so that
 * nobody waits for it. One-way messages that come in a stream are waited for under the kernel's policy for
 * batches: the thread does not push aside the one that sends them, which is often about to send to other
 * clients, and finds several messages at once. The messages themselves are served under the ordinary policy:
 * what their handlers start inherits nothing.
 */
class Wait {
  public:
    Wait(Pool& pool, Inbound& connection) : mPool(pool), mConnection(connection) {}

    /**
     * One receive on the connection.
     *
     * @param descriptors takes those that come along; null where none are expected
     * @param mayWait something was served since the last one: more is likely to come at once
     * @return as recv(); EAGAIN when it is time to give the connection back
     */
    ssize_t receive(void* memory, size_t size, bool mayWait, Descriptors* descriptors);

  private:
    Pool& mPool;
    Inbound& mConnection;
    int mWaits = 0;
};

}  // namespace android::hardware
