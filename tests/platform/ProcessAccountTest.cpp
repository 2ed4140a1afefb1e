// What is counted of one other process: its endpoints, connections and threads, and the complaints about it.

#include <gtest/gtest.h>

#include "platform/binding/Complaints.h"
#include "platform/socket/Inbound.h"
#include "platform/socket/Limits.h"
#include "platform/socket/Transport.h"

namespace android::hardware {
namespace {

TEST(Process, IsOneHoweverManyEndpointsAndConnectionsItHasUpToItsShare) {
    Processes processes;
    std::shared_ptr<Process> process = processes.get({100, 1});
    EXPECT_EQ(processes.get({100, 1}), process);
    EXPECT_NE(processes.get({101, 1}), process);
    EXPECT_NE(processes.get({100, 2}), process);
    EXPECT_NE(processes.get({0, 1}), processes.get({0, 1})) << "of other namespaces nothing is known";
    size_t endpoints = 0;
    size_t connections = 0;
    while (endpoints <= kMaxEndpointsPerProcess && process->addEndpoint()) {
        ++endpoints;
    }
    while (connections <= kMaxCallConnections && process->addConnection()) {
        ++connections;
    }
    EXPECT_EQ(endpoints, kMaxEndpointsPerProcess);
    EXPECT_EQ(connections, kMaxCallConnections);
    process->removeEndpoint();
    process->removeConnection();
    EXPECT_TRUE(process->addEndpoint() && process->addConnection());
    process.reset();
    EXPECT_TRUE(processes.get({100, 1})->addEndpoint()) << "a number that is used again is another process";
}

TEST(Process, OfConnectionsThatWaitForAThreadTheFirstIsNext) {
    Transport transport;
    const std::shared_ptr<Peer> peer = transport.peerAt(randomEndpoint());
    Inbound first(transport.pool(), peer, UniqueFd(), false);
    Inbound second(transport.pool(), peer, UniqueFd(), false);
    Inbound third(transport.pool(), peer, UniqueFd(), false);
    Process process({100, 1});
    EXPECT_TRUE(process.beginServing(&first, 1));
    EXPECT_FALSE(process.hasParked());
    EXPECT_FALSE(process.beginServing(&second, 1));
    EXPECT_FALSE(process.beginServing(&third, 1));
    EXPECT_EQ(process.endServing(), &second);
    EXPECT_FALSE(process.beginServing(&first, 1)) << "its turn is the second's, and it is behind the third";
    EXPECT_TRUE(process.beginServing(&second, 1));
    Inbound control(transport.pool(), peer, UniqueFd(), true);
    EXPECT_TRUE(process.beginServing(&control, 1)) << "one-way messages wait for no call";
    EXPECT_EQ(process.endServing(), nullptr) << "and are nobody's turn";
    EXPECT_EQ(process.endServing(), &third);
    EXPECT_TRUE(process.beginServing(&third, 1) && process.hasParked());
    EXPECT_EQ(process.endServing(), &first);
    EXPECT_TRUE(process.beginServing(&first, 1) && !process.hasParked());
    EXPECT_EQ(process.endServing(), nullptr);
    EXPECT_TRUE(process.beginServing(&first, 1));
    EXPECT_EQ(process.endServing(), nullptr);
}

TEST(Complaints, OfEachProcessTheFirstAreLoggedThenEverFewer) {
    Complaints complaints;
    std::vector<uint32_t> logged;
    for (uint32_t i = 1; i <= 100; ++i) {
        if (const uint32_t number = complaints.count({100, 1}); number != 0) {
            EXPECT_EQ(number, i);
            logged.push_back(i);
        }
    }
    EXPECT_EQ(logged, (std::vector<uint32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 32, 64}));
    EXPECT_EQ(complaints.count({101, 1}), 1u);
    EXPECT_EQ(complaints.count({100, 1}), 0u) << "though another has begun";
}

}  // namespace
}  // namespace android::hardware
