#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The baseline: what two programs do that send each other messages of a known length and nothing else.

namespace bench {

/** Bytes that one call moves. It is the first message of a connection. */
struct Exchange {
    uint64_t request;
    uint64_t reply;
};

/** False when the other end is gone. */
bool readFully(int fd, void* memory, size_t size);
bool writeFully(int fd, const void* memory, size_t size);

/** A connection that carries the same exchange over and over. */
class RawClient {
  public:
    /** Waits until the server listens. */
    RawClient(const std::string& socketPath, Exchange exchange);
    ~RawClient();
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;

    void call();

  private:
    int mFd;
    std::vector<char> mRequest;
    std::vector<char> mReply;
};

}  // namespace bench
