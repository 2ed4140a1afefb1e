#include "bench/transport/Raw.h"

#include <errno.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace bench {

bool readFully(int fd, void* memory, size_t size) {
    auto* place = static_cast<char*>(memory);
    while (size > 0) {
        const ssize_t got = read(fd, place, size);
        if (got <= 0) {
            return false;
        }
        place += got;
        size -= static_cast<size_t>(got);
    }
    return true;
}

bool writeFully(int fd, const void* memory, size_t size) {
    const auto* place = static_cast<const char*>(memory);
    while (size > 0) {
        const ssize_t put = write(fd, place, size);
        if (put <= 0) {
            return false;
        }
        place += put;
        size -= static_cast<size_t>(put);
    }
    return true;
}

RawClient::RawClient(const std::string& socketPath, Exchange exchange)
    : mFd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)),
      mRequest(exchange.request),
      mReply(exchange.reply) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, socketPath.c_str(), socketPath.size() + 1);
    int waits = 0;
    while (connect(mFd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
        if (++waits > 5000 || (errno != ENOENT && errno != ECONNREFUSED)) {
            std::perror("bench: no connection to the raw server");
            std::exit(2);
        }
        usleep(1000);
    }
    writeFully(mFd, &exchange, sizeof(exchange));
}

RawClient::~RawClient() {
    close(mFd);
}

void RawClient::call() {
    if (!writeFully(mFd, mRequest.data(), mRequest.size()) || !readFully(mFd, mReply.data(), mReply.size())) {
        std::perror("bench: the raw server is gone");
        std::exit(2);
    }
}

}  // namespace bench
