// bench-raw-server <path>: answers on a Unix socket, one thread for each connection. The baseline of calls,
// and of start and memory: a process that opens one socket.

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "bench/transport/Raw.h"

namespace {

void serve(int fd) {
    bench::Exchange exchange;
    if (bench::readFully(fd, &exchange, sizeof(exchange))) {
        std::vector<char> request(exchange.request);
        const std::vector<char> reply(exchange.reply, 'r');
        while (bench::readFully(fd, request.data(), request.size()) &&
               bench::writeFully(fd, reply.data(), reply.size())) {
        }
    }
    close(fd);
}

}  // namespace

int main(int argc, char** argv) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = argc == 2 ? argv[1] : "";
    if (path.empty() || path.size() >= sizeof(address.sun_path)) {
        std::fprintf(stderr, "usage: bench-raw-server <path of at most %zu bytes>\n",
                     sizeof(address.sun_path) - 1);
        return 2;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    unlink(path.c_str());
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
        listen(listener, 64) != 0) {
        std::perror("bench-raw-server");
        return 2;
    }
    while (true) {
        const int fd = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd < 0) {
            std::perror("bench-raw-server: accept");
            return 2;
        }
        std::thread(serve, fd).detach();
    }
}
