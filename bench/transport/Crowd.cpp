#include "bench/transport/Crowd.h"

#include <sys/socket.h>
#include <unistd.h>

#include <chrono>

#include "bench/transport/Raw.h"

namespace bench {

struct Crowd::Member {
    explicit Member(const std::vector<std::string>& arguments) {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
            failOnCall("socketpair");
        }
        mOrders = ends[0];
        mChild = std::make_unique<Child>(sibling("bench-caller"), arguments, ends[1]);
        close(ends[1]);
    }
    ~Member() {
        mChild.reset();  // before its standard input ends and it with it
        close(mOrders);
    }

    uint64_t receive() const {
        uint64_t calls = 0;
        if (!readFully(mOrders, &calls, sizeof(calls))) {
            fail("a client process has ended");
        }
        return calls;
    }

    int mOrders;
    std::unique_ptr<Child> mChild;
};

Crowd::Crowd(size_t size, const std::vector<std::string>& arguments) {
    constexpr size_t kStartedTogether = 16;  // not to be measured: a server's queue of connections has an end
    size_t called = 0;
    while (mMembers.size() < size) {
        mMembers.push_back(std::make_unique<Member>(arguments));
        if (mMembers.size() % kStartedTogether == 0 || mMembers.size() == size) {
            for (; called < mMembers.size(); ++called) {
                mMembers[called]->receive();  // it has made its first call
            }
        }
    }
}

Crowd::~Crowd() = default;

double Crowd::callsPerSecond(double seconds) {
    constexpr int64_t kHeadStart = 20'000'000;  // for all of them to have got the order
    const int64_t now = std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    const RoundOrder order{now + kHeadStart, now + kHeadStart + static_cast<int64_t>(seconds * 1e9)};
    for (const auto& member : mMembers) {
        writeFully(member->mOrders, &order, sizeof(order));
    }
    uint64_t calls = 0;
    for (const auto& member : mMembers) {
        calls += member->receive();
    }
    return static_cast<double>(calls) / seconds;
}

}  // namespace bench
