#include "platform/socket/Socket.h"

#include <errno.h>
#include <fcntl.h>
#include <log/log.h>
#include <poll.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "platform/socket/Limits.h"

namespace android::hardware {

namespace {

constexpr char kNamePrefix[] = "zvttv-hidl/";

void fillRandom(void* memory, size_t size) {
    // Requests of up to 256 bytes are never cut short.
    const ssize_t got = getrandom(memory, size, 0);
    LOG_ALWAYS_FATAL_IF(got != static_cast<ssize_t>(size), "the kernel gives no random bytes: %s",
                        strerror(errno));
}

/** The address's length depends on the name's: an abstract name has no terminator. */
socklen_t makeAddress(const Endpoint& endpoint, sockaddr_un* address) {
    const std::string name = kNamePrefix + toString(endpoint);
    std::memset(address, 0, sizeof(*address));
    address->sun_family = AF_UNIX;
    std::memcpy(address->sun_path + 1, name.data(), name.size());
    return static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
}

/** Room for the descriptors of one message, as the kernel wants them. */
class ControlSpace {
  public:
    /** For as many as a message may have. */
    explicit ControlSpace(msghdr* head) {
        head->msg_control = mBytes;
        head->msg_controllen = CMSG_SPACE(kMaxDescriptors * sizeof(int));
    }
    /** With those that are to be sent; nothing if there are none. */
    ControlSpace(const int* descriptors, size_t count, msghdr* head) {
        if (count == 0) {
            return;
        }
        head->msg_control = mBytes;
        head->msg_controllen = CMSG_SPACE(count * sizeof(int));
        std::memset(mBytes, 0, head->msg_controllen);
        cmsghdr* const control = CMSG_FIRSTHDR(head);
        control->cmsg_level = SOL_SOCKET;
        control->cmsg_type = SCM_RIGHTS;
        control->cmsg_len = CMSG_LEN(count * sizeof(int));
        std::memcpy(CMSG_DATA(control), descriptors, count * sizeof(int));
    }
    ControlSpace(const ControlSpace&) = delete;
    ControlSpace& operator=(const ControlSpace&) = delete;

  private:
    alignas(cmsghdr) uint8_t mBytes[CMSG_SPACE(kMaxDescriptors * sizeof(int))];
};

}  // namespace

Endpoint randomEndpoint() {
    Endpoint endpoint;
    fillRandom(endpoint.data(), endpoint.size());
    return endpoint;
}

uint64_t randomNumber() {
    uint64_t number;
    fillRandom(&number, sizeof(number));
    return number;
}

std::string toString(const Endpoint& endpoint) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : endpoint) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

UniqueFd listenOn(const Endpoint& endpoint) {
    UniqueFd fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_un address;
    const socklen_t length = makeAddress(endpoint, &address);
    if (!fd.ok() || bind(fd.get(), reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        listen(fd.get(), kBacklog) != 0) {
        return UniqueFd();
    }
    return fd;
}

bool readCredentials(int fd, Credentials* credentials) {
    ucred kernel{};
    socklen_t length = sizeof(kernel);
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &kernel, &length) != 0) {
        return false;
    }
    credentials->pid = kernel.pid;
    credentials->uid = kernel.uid;
    return true;
}

bool mayConnect(const Credentials& credentials) {
    return credentials.uid == geteuid() || credentials.uid == 0;
}

UniqueFd connectTo(const Endpoint& endpoint, Credentials* credentials) {
    // Not blocking while it connects, so that a full queue of connections is an error and not a wait.
    UniqueFd fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_un address;
    const socklen_t length = makeAddress(endpoint, &address);
    if (!fd.ok() || connect(fd.get(), reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        !readCredentials(fd.get(), credentials)) {
        return UniqueFd();
    }
    if (!mayConnect(*credentials)) {
        ALOGW("pid %d uid %u listens on an endpoint of ours: a peer runs under our user or root's",
              credentials->pid, credentials->uid);
        errno = EPERM;
        return UniqueFd();
    }
    const int flags = fcntl(fd.get(), F_GETFL);
    if (flags < 0 || fcntl(fd.get(), F_SETFL, flags & ~O_NONBLOCK) != 0) {
        return UniqueFd();
    }
    return fd;
}

void setWaitLimits(int fd, int milliseconds) {
    timeval limit{};
    limit.tv_sec = milliseconds / 1000;
    limit.tv_usec = (milliseconds % 1000) * 1000;
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
}

void Gather::advance(size_t sent) {
    bytes -= sent;
    while (count > 0 && sent >= vectors->iov_len) {
        sent -= vectors->iov_len;
        ++vectors;
        --count;
    }
    if (count > 0) {
        vectors->iov_base = static_cast<uint8_t*>(vectors->iov_base) + sent;
        vectors->iov_len -= sent;
    }
}

ssize_t sendSome(int fd, Gather* gather, int flags) {
    msghdr head{};
    head.msg_iov = gather->vectors;
    head.msg_iovlen = gather->count;
    const ControlSpace control(gather->descriptors, gather->descriptorCount, &head);
    ssize_t sent;
    do {
        // Most messages are one piece, which the kernel takes sooner without a list.
        sent = gather->count == 1 && gather->descriptorCount == 0
                       ? send(fd, gather->vectors->iov_base, gather->vectors->iov_len, flags | MSG_NOSIGNAL)
                       : sendmsg(fd, &head, flags | MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    if (sent > 0) {
        gather->advance(static_cast<size_t>(sent));
        gather->descriptorCount = 0;
    }
    return sent;
}

bool sendAll(int fd, Gather gather) {
    while (gather.bytes > 0) {
        if (sendSome(fd, &gather, 0) >= 0) {
            continue;
        }
        if (!wouldBlock(errno) && !isLack(errno)) {
            return false;
        }
        if (isLack(errno)) {
            usleep(1000);
        }
        pollfd room{fd, POLLOUT, 0};
        poll(&room, 1, -1);
    }
    return true;
}

void waitForInput(int fd) {
    pollfd input{fd, POLLIN, 0};
    poll(&input, 1, -1);
}

ssize_t receiveSome(int fd, void* memory, size_t size, int flags) {
    ssize_t got;
    do {
        got = recv(fd, memory, size, flags);
    } while (got < 0 && errno == EINTR);
    return got;
}

ssize_t receiveSome(int fd, void* memory, size_t size, int flags, Descriptors* descriptors) {
    if (descriptors == nullptr) {
        return receiveSome(fd, memory, size, flags);
    }
    iovec vector{memory, size};
    msghdr head{};
    head.msg_iov = &vector;
    head.msg_iovlen = 1;
    const ControlSpace space(&head);
    const size_t room = head.msg_controllen;
    ssize_t got;
    do {
        head.msg_controllen = room;
        got = recvmsg(fd, &head, flags | MSG_CMSG_CLOEXEC);
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
        return got;
    }
    size_t came = 0;
    for (cmsghdr* control = CMSG_FIRSTHDR(&head); control != nullptr; control = CMSG_NXTHDR(&head, control)) {
        if (control->cmsg_level == SOL_SOCKET && control->cmsg_type == SCM_RIGHTS) {
            int fds[kMaxDescriptors];
            came = (control->cmsg_len - CMSG_LEN(0)) / sizeof(int);
            std::memcpy(fds, CMSG_DATA(control), came * sizeof(int));
            descriptors->add(fds, came);
        }
    }
    if ((head.msg_flags & MSG_CTRUNC) != 0) {
        // The kernel has closed the rest: either there was no room for more here, or none in this process.
        if (came == kMaxDescriptors) {
            descriptors->noteOverfull();
        } else {
            descriptors->noteLack();
        }
    }
    return got;
}

}  // namespace android::hardware
