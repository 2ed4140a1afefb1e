#include "platform/socket/CallConnections.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <atomic>
#include <chrono>
#include <new>
#include <thread>

#include "platform/socket/Limits.h"

namespace android::hardware {
namespace {

class CallConnectionsTest : public testing::Test {
  protected:
    using Lease = CallConnections::Lease;

    status_t borrow(Lease* lease) {
        return connections.borrow(
                [](void* context, status_t* status) {
                    auto& test = *static_cast<CallConnectionsTest*>(context);
                    if (test.throws) {
                        throw std::bad_alloc();
                    }
                    int fds[2] = {-1, -1};
                    *status = test.failure;
                    if (test.failure == OK && socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) == 0) {
                        test.others.emplace_back(fds[1]);
                    }
                    return UniqueFd(fds[0]);
                },
                this, lease);
    }
    /** Takes every place, and lets one more caller wait, whose result comes in time. */
    void fillAndWait() {
        for (Lease& lease : leases) {
            ASSERT_EQ(borrow(&lease), OK);
        }
        waiter = std::thread([this] {
            Lease lease;
            const status_t status = borrow(&lease);
            got = lease.fd();
            proven = lease.isProven();
            result = status;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_EQ(result, kWaiting);
    }
    bool isEnded(const UniqueFd& fd) {
        uint8_t byte;
        return receiveSome(fd.get(), &byte, 1, MSG_DONTWAIT) == 0;
    }

    static constexpr status_t kWaiting = 1;

    status_t failure = OK;
    bool throws = false;
    std::vector<UniqueFd> others;  // the ends that would be the peer's
    CallConnections connections;
    Lease leases[kMaxCallConnections];
    std::atomic<status_t> result{kWaiting};
    int got = -1;
    bool proven = false;
    std::thread waiter;
};

TEST_F(CallConnectionsTest, WhoComesTooLateGetsTheConnectionThatIsGivenBack) {
    fillAndWait();
    const int fd = leases[3].fd();
    leases[3].giveBack(true);
    waiter.join();
    EXPECT_EQ(result, OK);
    EXPECT_EQ(got, fd);
    EXPECT_TRUE(proven);
}

TEST_F(CallConnectionsTest, ALeaseThatIsDroppedFreesItsPlaceForANewConnection) {
    fillAndWait();
    { const Lease dropped = std::move(leases[3]); }
    waiter.join();
    EXPECT_EQ(result, OK);
    EXPECT_TRUE(isEnded(others[3]));
    EXPECT_EQ(others.size(), kMaxCallConnections + 1);
}

TEST_F(CallConnectionsTest, AtTheEndCallsAreCutAndWaitersRefused) {
    fillAndWait();
    connections.end();
    waiter.join();
    EXPECT_EQ(result, DEAD_OBJECT);
    for (const UniqueFd& other : others) {
        EXPECT_TRUE(isEnded(other));
    }
    leases[3].giveBack(true);
    Lease late;
    EXPECT_EQ(borrow(&late), DEAD_OBJECT);
}

TEST_F(CallConnectionsTest, AConnectionThatCanNotBeMadeTakesNoPlace) {
    for (size_t i = 0; i < kMaxCallConnections; ++i) {
        Lease none;
        failure = FAILED_TRANSACTION;
        EXPECT_EQ(borrow(&none), FAILED_TRANSACTION);
        throws = true;
        EXPECT_EQ(borrow(&none), NO_MEMORY);
        throws = false;
    }
    failure = OK;
    EXPECT_TRUE(connections.areDead());
    EXPECT_EQ(borrow(&leases[0]), OK);
}

TEST_F(CallConnectionsTest, TheyAreDeadWhenNoneIsInUseAndTheOtherSideHasClosedAll) {
    ASSERT_TRUE(borrow(&leases[0]) == OK && borrow(&leases[1]) == OK);
    leases[0].giveBack(true);
    others[0].reset();
    EXPECT_FALSE(connections.areDead()) << "one is in use";
    leases[1].giveBack(true);
    EXPECT_FALSE(connections.areDead()) << "one is open";
    others[1].reset();
    EXPECT_TRUE(connections.areDead());
}

}  // namespace
}  // namespace android::hardware
