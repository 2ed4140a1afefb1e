#pragma once

#include <errno.h>
#include <sys/types.h>
#include <sys/uio.h>

#include <cstddef>
#include <string>

#include "platform/binding/Complaints.h"
#include "platform/binding/UniqueFd.h"
#include "platform/socket/Message.h"

namespace android::hardware {

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
    size_t bytes;                      // left in all vectors
    const int* descriptors = nullptr;  // go out with the first byte
    size_t descriptorCount = 0;

    /** Drops what has been sent from the front. */
    void advance(size_t sent);
};

/** One sendmsg(), repeated when a signal interrupts it. -1 with errno set, else the bytes sent. */
ssize_t sendSome(int fd, Gather* gather, int flags);

/**
 * Sends all of it, waiting for room however long that takes. False when the connection has ended, or nothing
 * has been sent because of the descriptors; errno says which: see areRefused().
 */
bool sendAll(int fd, Gather gather);

/** A failed send is the kernel's answer to descriptors: too many are on their way to others already. */
inline bool areRefused(int error) {
    return error == ETOOMANYREFS;
}

/** Waits until there is something to read, an end included, however long that takes. */
void waitForInput(int fd);

/** A socket operation without MSG_DONTWAIT ran out of time, or one with it would have had to wait. */
inline bool wouldBlock(int error) {
    return error == EAGAIN || error == EWOULDBLOCK;
}

/** The kernel lacks memory for it at this moment: that says nothing of the other end. */
inline bool isLack(int error) {
    return error == ENOMEM || error == ENOBUFS;
}

/** One recv(), repeated when a signal interrupts it. */
ssize_t receiveSome(int fd, void* memory, size_t size, int flags);

/**
 * The same with the descriptors that come along. It costs a receive 0.2 us more, 2 % of a call, so it is used
 * where descriptors have been announced; what comes elsewhere is closed by the kernel.
 */
ssize_t receiveSome(int fd, void* memory, size_t size, int flags, Descriptors* descriptors);

}  // namespace android::hardware
