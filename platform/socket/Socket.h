#pragma once

#include <sys/types.h>
#include <sys/uio.h>

#include <cstddef>
#include <string>
#include <utility>

#include "platform/socket/Message.h"

namespace android::hardware {

/** Owns a descriptor. */
class UniqueFd {
  public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : mFd(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : mFd(other.release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        reset(other.release());
        return *this;
    }
    ~UniqueFd() { reset(); }

    int get() const { return mFd; }
    bool ok() const { return mFd >= 0; }
    int release() { return std::exchange(mFd, -1); }
    void reset(int fd = -1);

  private:
    int mFd = -1;
};

/** Who is at the other end of a connection, as the kernel noted it when the connection was made. */
struct Credentials {
    pid_t pid = 0;
    uid_t uid = 0;
};

/** A name that nobody can guess. */
Endpoint randomEndpoint();
uint64_t randomNumber();
std::string toString(const Endpoint& endpoint);

/**
 * Listens under the endpoint's name: an abstract Unix stream socket, which ends with the process.
 *
 * @return a socket that does not block, or none with errno set
 */
UniqueFd listenOn(const Endpoint& endpoint);

/**
 * Connects to a process without ever waiting for it, and checks that it runs under our user or root's.
 *
 * @return a socket that blocks unless told otherwise call by call; none with errno set: ECONNREFUSED nobody
 *     listens there, EPERM another user does, EAGAIN its queue of connections is full, EMFILE and the like
 */
UniqueFd connectTo(const Endpoint& endpoint, Credentials* credentials);

/** The same check for an accepted connection. */
bool mayConnect(const Credentials& credentials);

/** False with errno set when the kernel does not tell. */
bool readCredentials(int fd, Credentials* credentials);

/** Sets how long a receive or send without MSG_DONTWAIT waits. */
void setWaitLimits(int fd, int milliseconds);

/** What is left of a gathered message that is being sent. */
struct Gather {
    iovec* vectors;
    size_t count;
    size_t bytes;  // left in all vectors

    /** Drops what has been sent from the front. */
    void advance(size_t sent);
};

/** One sendmsg(), repeated when a signal interrupts it. -1 with errno set, else the bytes sent. */
ssize_t sendSome(int fd, Gather* gather, int flags);

/** One recv(), repeated when a signal interrupts it. */
ssize_t receiveSome(int fd, void* memory, size_t size, int flags);

}  // namespace android::hardware
