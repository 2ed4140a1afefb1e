#include "platform/socket/OneWayChannel.h"

#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "tests/platform/MessageBuilder.h"

namespace android::hardware {
namespace {

using Event = OneWayChannel::Event;
using State = OneWayChannel::State;

class OneWayChannelTest : public testing::Test {
  protected:
    void connect() {
        int fds[2];
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds), 0);
        peer = UniqueFd(fds[1]);
        ASSERT_EQ(channel->open(UniqueFd(fds[0]), epoll.get()), OK);
    }
    void welcome() {
        const std::vector<uint8_t> bytes = MessageBuilder(MessageKind::Welcome).bytes();
        ASSERT_EQ(::send(peer.get(), bytes.data(), 10, 0), 10);
        EXPECT_EQ(channel->update(), Event::None) << "it comes in pieces";
        ASSERT_EQ(::send(peer.get(), &bytes[10], bytes.size() - 10, 0),
                  static_cast<ssize_t>(bytes.size()) - 10);
    }
    status_t send(const std::string& bytes) {
        iovec vector{const_cast<char*>(bytes.data()), bytes.size()};
        return channel->send({&vector, 1, bytes.size()});
    }
    /** What the peer can read while the channel is updated as room comes. */
    std::string read() {
        std::string all(kMaxTransactionBytes, '\0');
        size_t have = 0;
        for (ssize_t got = 0; got >= 0; channel->update()) {
            have += static_cast<size_t>(got);
            got = receiveSome(peer.get(), &all[have], all.size() - have, MSG_DONTWAIT);
        }
        return all.substr(0, have);
    }

    const UniqueFd epoll{epoll_create1(EPOLL_CLOEXEC)};
    UniqueFd peer;
    std::unique_ptr<OneWayChannel> channel = std::make_unique<OneWayChannel>();
};

TEST_F(OneWayChannelTest, NothingGoesOutBeforeThePeerWelcomesItAndNothingIsLostIfItRefuses) {
    EXPECT_EQ(send("without a connection, "), OK);
    connect();
    EXPECT_EQ(send("unwelcome, "), OK);
    ASSERT_EQ(::send(peer.get(), &kMessageMagic, 4, 0), 4) << "no more than the beginning";
    EXPECT_EQ(channel->update(), Event::None);
    EXPECT_EQ(read(), "");
    peer.reset();
    EXPECT_EQ(channel->update(), Event::Refused);
    channel->closeRefused();
    EXPECT_TRUE(channel->state() == State::Closed && channel->fd() == -1);
    EXPECT_EQ(send("refused, "), OK);

    connect();
    EXPECT_EQ(read(), "");
    welcome();
    EXPECT_EQ(send("welcome, "), OK) << "which the sender notices before the watcher does";
    EXPECT_EQ(channel->state(), State::Open);
    EXPECT_EQ(send("open"), OK);
    EXPECT_EQ(read(), "without a connection, unwelcome, refused, welcome, open");
    EXPECT_EQ(channel->queuedBytes(), 0u);
}

TEST_F(OneWayChannelTest, WhatWaitsForAPeerThatDoesNotReadIsLimitedAndArrivesInOrder) {
    for (const bool open : {false, true}) {
        SCOPED_TRACE(open);
        channel = std::make_unique<OneWayChannel>();
        connect();
        if (open) {
            welcome();
        }
        std::string accepted;
        status_t status = OK;
        while (accepted.size() <= kMaxOneWayBytes) {
            const std::string message(4064, static_cast<char>('A' + accepted.size() % 61));
            status = send(message);
            if (status != OK) {
                break;
            }
            accepted += message;
        }
        EXPECT_EQ(status, FAILED_TRANSACTION);
        // The kernel counts its own overhead, of what it has.
        EXPECT_GT(accepted.size(), kMaxOneWayBytes - (open ? kMaxOneWayBytes / 4 : 4064));
        EXPECT_LE(accepted.size(), kMaxOneWayBytes);
        if (!open) {
            welcome();
            EXPECT_EQ(channel->update(), Event::None);
        }
        std::string arrived(100'000, '\0');
        ASSERT_EQ(receiveSome(peer.get(), arrived.data(), arrived.size(), MSG_DONTWAIT), 100'000);
        EXPECT_EQ(send("though the kernel has room"), OK);
        EXPECT_TRUE(arrived + read() == accepted + "though the kernel has room");
        epoll_event event{};
        EXPECT_EQ(epoll_wait(epoll.get(), &event, 1, 0), 0) << "nobody waits for room any more";
        // One of the longest transactions has its head beside it.
        EXPECT_TRUE(channel->hasRoomFor(kMaxOneWayBytes + sizeof(MessageHeader)));
        EXPECT_FALSE(channel->hasRoomFor(kMaxMessageBytes));
        EXPECT_EQ(send(std::string(kMaxMessageBytes, 'm')), FAILED_TRANSACTION);
        EXPECT_EQ(read(), "") << "whole or not at all";
    }
}

TEST_F(OneWayChannelTest, ItsEndIsNoticedByWhoAwaitsTheWelcome) {
    connect();
    const auto start = std::chrono::steady_clock::now();
    std::thread waiter([this] { channel->awaitWelcome(20'000); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    channel->end();
    waiter.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(OneWayChannelTest, ItEndsForGoodWithItsPeer) {
    connect();
    welcome();
    EXPECT_EQ(channel->update(), Event::None);
    peer.reset();
    EXPECT_EQ(send("into the void"), DEAD_OBJECT);
    EXPECT_EQ(channel->update(), Event::Lost);
    channel->end();
    EXPECT_EQ(channel->state(), State::Ended);
    EXPECT_EQ(send("later"), DEAD_OBJECT);
    EXPECT_EQ(channel->queuedBytes(), 0u);
    EXPECT_EQ(channel->open(UniqueFd(dup(epoll.get())), epoll.get()), DEAD_OBJECT);
    channel->close();
    EXPECT_EQ(channel->fd(), -1);
}

}  // namespace
}  // namespace android::hardware
