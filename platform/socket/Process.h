#pragma once

#include <atomic>
#include <memory>
#include <unordered_map>

#include "platform/binding/CheckedLock.h"
#include "platform/socket/Socket.h"

namespace android::hardware {

class Inbound;

/**
 * One other process, whatever number of endpoints it has, and what it takes of us at this moment: see
 * Limits.h. Any thread; takes no memory.
 */
class Process {
  public:
    explicit Process(const Credentials& credentials) : mCredentials(credentials) {}

    const Credentials& credentials() const { return mCredentials; }

    bool addEndpoint();
    void removeEndpoint();
    /** A connection for its calls. */
    bool addConnection();
    void removeConnection();

    /**
     * A thread wants to serve one of its connections.
     *
     * @param most threads that it may have at one time; its one-way messages are served beside them
     * @return false when it has them already: then the connection waits until endServing() gives it out
     */
    bool beginServing(Inbound* connection, size_t most);
    /**
     * A thread has done so.
     *
     * @return the connection that has waited longest, if any: the caller has epoll wake a thread for it
     */
    Inbound* endServing();
    /** Some of its connections wait for a thread. */
    bool hasParked() const { return mParkedFirst.load(std::memory_order_relaxed) != nullptr; }

  private:
    const Credentials mCredentials;

    CheckedMutex mLock;
    size_t mEndpoints GUARDED_BY(mLock) = 0;
    size_t mConnections GUARDED_BY(mLock) = 0;
    size_t mServing GUARDED_BY(mLock) = 0;
    size_t mMost GUARDED_BY(mLock) = 1;  // of those, as far as they do not serve one-way messages
    std::atomic<Inbound*> mParkedFirst{
            nullptr};  // linked through Inbound::nextParked; changed under the lock
    Inbound* mParkedLast GUARDED_BY(mLock) = nullptr;
};

/** The processes that we talk to. Any thread. */
class Processes {
  public:
    /**
     * A process by what the kernel says of it. Those of other PID namespaces have no number, so each of their
     * endpoints counts as a process of its own. May throw std::bad_alloc.
     */
    std::shared_ptr<Process> get(const Credentials& credentials);

  private:
    CheckedMutex mLock;
    std::unordered_map<pid_t, std::weak_ptr<Process>> mProcesses GUARDED_BY(mLock);
};

}  // namespace android::hardware
