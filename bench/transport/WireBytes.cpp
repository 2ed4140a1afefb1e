#include "bench/transport/WireBytes.h"

#include <sys/socket.h>

#include "bench/common/Process.h"

namespace {

bench::Exchange sMoved;

/** Adds what a system call moved. */
ssize_t counted(ssize_t moved, uint64_t* sum) {
    if (moved > 0) {
        *sum += static_cast<uint64_t>(moved);
    }
    return moved;
}

}  // namespace

// The linker leads the transport's calls of send, sendmsg and recv here (--wrap).
extern "C" {

ssize_t __real_send(int fd, const void* memory, size_t size, int flags);
ssize_t __real_sendmsg(int fd, const msghdr* message, int flags);
ssize_t __real_recv(int fd, void* memory, size_t size, int flags);
ssize_t __wrap_send(int fd, const void* memory, size_t size, int flags);
ssize_t __wrap_sendmsg(int fd, const msghdr* message, int flags);
ssize_t __wrap_recv(int fd, void* memory, size_t size, int flags);

ssize_t __wrap_send(int fd, const void* memory, size_t size, int flags) {
    return counted(__real_send(fd, memory, size, flags), &sMoved.request);
}

ssize_t __wrap_sendmsg(int fd, const msghdr* message, int flags) {
    return counted(__real_sendmsg(fd, message, flags), &sMoved.request);
}

ssize_t __wrap_recv(int fd, void* memory, size_t size, int flags) {
    return counted(__real_recv(fd, memory, size, flags), &sMoved.reply);
}
}

namespace bench {

Exchange bytesOf(const std::function<void()>& call) {
    call();  // the first one greets, too
    sMoved = {};
    call();
    if (sMoved.request == 0) {
        fail("the transport uses other system calls than the ones that are counted");
    }
    return sMoved;
}

}  // namespace bench
