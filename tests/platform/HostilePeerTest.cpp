// Peers that break rules or make things up cost themselves something, and nobody else.

#include <cutils/native_handle.h>
#include <malloc.h>
#include <sys/eventfd.h>

#include "tests/platform/MessageBuilder.h"
#include "tests/platform/TransportFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LogCapture.h"

namespace android::hardware {
namespace {

using Bytes = std::vector<uint8_t>;

class Attacker {
  public:
    explicit Attacker(const Endpoint& target, const Endpoint& self = randomEndpoint())
        : mTarget(target), mSelf(self) {}

    UniqueFd connect(MessageKind kind, size_t trailing = 0) {
        Credentials credentials;
        UniqueFd fd = connectTo(mTarget, &credentials);
        EXPECT_TRUE(fd.ok());
        ObjectReference self{};
        std::memcpy(&self.object, mSelf.data(), 8);
        std::memcpy(&self.nonce, mSelf.data() + 8, 8);
        send(fd, MessageBuilder(kind).to(self, 0).trailing(trailing).bytes());
        return fd;
    }

    static void send(const UniqueFd& fd, const Bytes& bytes) {
        ::send(fd.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }
    /** True when the other end hangs up. */
    static bool isCut(const UniqueFd& fd) {
        setWaitLimits(fd.get(), 3000);
        uint8_t byte[256];
        ssize_t got;
        while ((got = receiveSome(fd.get(), byte, sizeof(byte), 0)) > 0) {
        }
        return got == 0 || errno == ECONNRESET;
    }
    /** The status of the next reply. */
    static status_t status(const UniqueFd& fd) {
        setWaitLimits(fd.get(), 3000);
        MessageHeader header{};
        const ssize_t got = receiveSome(fd.get(), &header, sizeof(header), MSG_WAITALL);
        return got == sizeof(header) ? header.status : 1;
    }

  private:
    const Endpoint mTarget;
    const Endpoint mSelf;
};

TEST_F(TransportTest, ABrokenRuleCostsItsPeerTheConnectionAndIsLogged) {
    const auto call = [this](uint32_t code = 0) { return MessageBuilder().to(reference, code); };
    const int handle[] = {sizeof(native_handle_t), 1, 0, 0};
    const int handles[] = {sizeof(native_handle_t), 2, 0, 0, 0};
    struct Case {
        const char* name;
        MessageKind connection;
        MessageBuilder message;
        const char* logged;
        size_t descriptors = 0;  // that come along
    };
    const Case cases[] = {
            {"a head that is wrong", MessageKind::HelloCall,
             call().lieInHead([](MessageHeader& head) { head.magic = 1; }), "magic"},
            {"a whole that is wrong", MessageKind::HelloCall, call().trailing(8),
             "ends with its last buffer"},
            {"descriptors that do not come", MessageKind::HelloCall,
             call().record(handle, sizeof(handle)).descriptors(1), "as many descriptors as it says"},
            {"a descriptor too few", MessageKind::HelloCall,
             call().record(handles, sizeof(handles)).descriptors(2), "as many descriptors as it says", 1},
            {"a descriptor too many", MessageKind::HelloCall,
             call().record(handle, sizeof(handle)).descriptors(1), "as many descriptors as it says", 2},
            {"reply to nothing", MessageKind::HelloCall, MessageBuilder(MessageKind::Reply), "carries calls"},
            {"descriptors of a one-way message", MessageKind::HelloControl,
             MessageBuilder(MessageKind::OneWay)
                     .to(reference, kNote)
                     .record(handle, sizeof(handle))
                     .descriptors(1),
             "descriptors come with calls"},
            {"call where one-way messages go", MessageKind::HelloControl, call(), "no calls"},
    };
    for (const Case& test : cases) {
        LogCapture log;
        Attacker attacker(server.endpoint());
        const UniqueFd other = attacker.connect(MessageKind::HelloCall);
        Attacker::send(other, call(kSelf).bytes());
        EXPECT_EQ(OK, Attacker::status(other)) << "it is in use";
        const UniqueFd fd = attacker.connect(test.connection);
        Bytes bytes = test.message.bytes();
        if (test.descriptors > 0) {
            Attacker::send(fd, MessageBuilder(MessageKind::Descriptors).bytes());
            EXPECT_EQ(OK, Attacker::status(fd)) << "they may come";
        }
        const int along[] = {STDIN_FILENO, STDIN_FILENO};
        iovec vector{bytes.data(), bytes.size()};
        EXPECT_TRUE(sendAll(fd.get(), {&vector, 1, bytes.size(), along, test.descriptors}));
        EXPECT_TRUE(Attacker::isCut(fd)) << test.name;
        EXPECT_TRUE(Attacker::isCut(other)) << test.name << ": all its connections end";
        EXPECT_TRUE(log.contains(test.logged)) << test.name;
        EXPECT_TRUE(log.contains("pid " + std::to_string(getpid()) + " uid " + std::to_string(getuid())));
    }
    Transport client;
    EXPECT_EQ(OK, hardware::call(objectFor(client), kAdd, 1));
    EXPECT_TRUE(eventually([&] { return server.peerCount() == 1; })) << "nothing of the others is left";
}

TEST_F(TransportTest, AnEndpointIsOneProcessWithOneConnectionForOneWayMessages) {
    Attacker attacker(server.endpoint());
    const UniqueFd calls = attacker.connect(MessageKind::HelloCall);
    const Bytes message = MessageBuilder().to(reference, kSelf).bytes();
    Attacker::send(calls, message);
    ASSERT_EQ(OK, Attacker::status(calls));
    ChildProcess impostor([&] { return Attacker::isCut(attacker.connect(MessageKind::HelloCall)) ? 0 : 1; });
    EXPECT_EQ(0, impostor.wait());
    const UniqueFd control = attacker.connect(MessageKind::HelloControl);
    EXPECT_EQ(OK, Attacker::status(control)) << "welcome";
    // A hello may come in pieces: the first has been read when a later connection is served.
    Credentials credentials;
    const UniqueFd slow = connectTo(server.endpoint(), &credentials);
    const Bytes hello = MessageBuilder(MessageKind::HelloCall).to({{}, 4711, 1}, 0).bytes();
    Attacker::send(slow, {hello.begin(), hello.begin() + 10});
    const UniqueFd quick = attacker.connect(MessageKind::HelloCall);
    Attacker::send(quick, message);
    EXPECT_EQ(OK, Attacker::status(quick));
    Attacker::send(slow, {hello.begin() + 10, hello.end()});
    Attacker::send(slow, message);
    EXPECT_EQ(OK, Attacker::status(slow));
    EXPECT_TRUE(Attacker::isCut(attacker.connect(MessageKind::HelloControl)));
    EXPECT_TRUE(Attacker::isCut(Attacker(server.endpoint()).connect(MessageKind::HelloCall, 8)));
    EXPECT_TRUE(
            Attacker::isCut(Attacker(server.endpoint(), server.endpoint()).connect(MessageKind::HelloCall)));
}

/** A process that an object's proxy and death link lead to; it does only what the test does for it. */
struct RawPeer : Attacker {
    explicit RawPeer(Partner& partner, const sp<Deaths>& deaths, const Endpoint& self = randomEndpoint())
        : Attacker(partner.transport.endpoint(), self) {
        const UniqueFd listening = listenOn(self);
        EXPECT_EQ(OK, partner.transport.resolve({self, 1, 1}, &proxy));
        EXPECT_EQ(OK, proxy->linkToDeath(deaths));
        for (UniqueFd* each : {&calls, &control}) {
            each->reset(accept4(listening.get(), nullptr, nullptr, SOCK_CLOEXEC));
        }
        send(control, MessageBuilder(MessageKind::Welcome).bytes());
    }

    sp<IBinder> proxy;
    UniqueFd calls;
    UniqueFd control;
};

TEST_F(TransportTest, AGonePeersLastMessagesAreServedBeforeItsDeathIsToldAndNoneLater) {
    std::atomic<size_t> noted{SIZE_MAX};  // when the death was told
    static std::mutex sGate;
    std::atomic<bool> waits{false};
    const UniqueFd event(eventfd(0, EFD_CLOEXEC));
    Partner partner(1);
    const sp<Deaths> deaths = new Deaths([&] { noted = partner.object->noted().size(); });
    // While the platform thread waits, the peer ends, and what it sent last is not accepted yet.
    sGate.lock();
    ASSERT_EQ(OK, partner.transport.whenReadable(event.get(), [&] {
        eventfd_t count;
        eventfd_read(event.get(), &count);
        waits = true;
        const std::lock_guard<std::mutex> passes(sGate);
    }));
    RawPeer last(partner, deaths);
    eventfd_write(event.get(), 1);
    ASSERT_TRUE(eventually([&] { return waits.load(); }));
    last.control.reset();
    Attacker::send(
            last.connect(MessageKind::HelloControl),
            MessageBuilder(MessageKind::OneWay).to(partner.reference, kNote).scalar<int32_t>(0).bytes());
    sGate.unlock();
    EXPECT_TRUE(eventually([&] { return deaths->count == 1; }));
    EXPECT_EQ(1u, noted);

    const LogCapture log;
    RawPeer busy(partner, deaths);
    const UniqueFd served = busy.connect(MessageKind::HelloCall);
    Attacker::send(served, MessageBuilder().to(partner.reference, kBlock).scalar<int32_t>(0).bytes());
    ASSERT_TRUE(eventually([&] { return partner.object->blocked == 1; }));
    busy.control.reset();
    EXPECT_TRUE(eventually([&] {
        busy.connect(MessageKind::HelloCall);
        return log.contains("a peer that has ended does not come back");
    }));
}

TEST_F(TransportTest, WhatDoesNotExistIsAnErrorReply) {
    LogCapture log;
    Attacker attacker(server.endpoint());
    const UniqueFd fd = attacker.connect(MessageKind::HelloCall);
    const auto& [endpoint, number, nonce] = reference;
    const std::pair<MessageBuilder, status_t> cases[] = {
            {MessageBuilder().to({endpoint, number + 1, nonce}, kAdd), DEAD_OBJECT},
            {MessageBuilder().to({endpoint, number, nonce + 1}, kAdd), DEAD_OBJECT},
            {MessageBuilder().to(reference, 77), NOT_ENOUGH_DATA},
            {MessageBuilder().to(reference, kAdd), NOT_ENOUGH_DATA},
            {MessageBuilder().to(reference, kKeep).object({randomEndpoint(), 1, 1}), DEAD_OBJECT},
            {MessageBuilder().to(reference, kKeep).object({endpoint, 4711, 1}), NAME_NOT_FOUND},
    };
    for (const auto& [message, expected] : cases) {
        Attacker::send(fd, message.bytes());
        EXPECT_EQ(expected, Attacker::status(fd));
    }
    EXPECT_TRUE(log.contains("refused method 77"));
    EXPECT_EQ(1u, server.peerCount());
}

TEST_F(TransportTest, ConnectionsThatSayHalfOfSomethingHoldNoThread) {
    Attacker attacker(server.endpoint());
    Credentials credentials;
    std::vector<UniqueFd> silent;
    for (size_t i = 0; i < 2 * kMaxPendingHellos; ++i) {
        silent.push_back(connectTo(server.endpoint(), &credentials));
        const uint32_t half = kMessageMagic;
        ASSERT_EQ(4, ::send(silent.back().get(), &half, sizeof(half), 0));
    }
    Bytes half = MessageBuilder().buffer(std::string(1000, 'h')).bytes();
    half.resize(half.size() - 500);
    for (size_t i = 0; i + 1 < kMaxCallConnections; ++i) {
        silent.push_back(attacker.connect(MessageKind::HelloCall));
        Attacker::send(silent.back(), half);
    }
    Transport client;
    const sp<IBinder> proxy = objectFor(client);
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(OK, call(proxy, kAdd, i));
    }
    EXPECT_TRUE(Attacker::isCut(silent.front())) << "the oldest of too many without a hello are dropped";
    const UniqueFd tooMany = attacker.connect(MessageKind::HelloCall);
    EXPECT_TRUE(Attacker::isCut(tooMany)) << "a peer's connections are limited";
}

TEST_F(TransportTest, APeerThatNeverReadsItsRepliesHoldsNoThread) {
    Attacker attacker(server.endpoint());
    std::vector<UniqueFd> deaf;
    for (size_t i = 0; i + 1 < kMaxCallConnections; ++i) {
        deaf.push_back(attacker.connect(MessageKind::HelloCall));
        for (int j = 0; j < 20; ++j) {
            Attacker::send(deaf.back(),
                           MessageBuilder().to(reference, kBlob).scalar<int32_t>(1000 * 1024).bytes());
        }
    }
    Transport client;
    const sp<IBinder> proxy = objectFor(client);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(OK, call(proxy, kAdd, i));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST_F(TransportTest, AStreamThatNeverPausesLeavesTheOnlyThreadToOthersInTurn) {
    struct Slow : Probe {
        status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                            TransactCallback callback) override {
            std::this_thread::sleep_for(code == kNote ? 100us : 0us);
            return Probe::onTransact(code, data, reply, flags, callback);
        }
    };
    Partner single(1);
    ObjectReference slow;
    ASSERT_EQ(OK, single.transport.publish(new Slow, &slow));
    Attacker attacker(slow.endpoint);
    const UniqueFd fd = attacker.connect(MessageKind::HelloControl);
    const Bytes one = MessageBuilder(MessageKind::OneWay).to(slow, kNote).scalar<int32_t>(0).bytes();
    Bytes many;
    for (int i = 0; i < 1000; ++i) {
        many.insert(many.end(), one.begin(), one.end());
    }
    std::atomic<bool> ends{false};
    std::thread stream([&] {
        while (!ends) {
            Attacker::send(fd, many);
        }
    });
    std::atomic<int> served{0};
    std::thread caller([&] {
        Transport client;
        served += call(get(client, slow), kAdd, 1) == OK ? 1 : 0;
    });
    EXPECT_TRUE(eventually([&] { return served == 1; }));
    ends = true;
    ::shutdown(fd.get(), SHUT_RDWR);
    stream.join();
    caller.join();
}

TEST_F(TransportTest, FloodsOfWhatBreaksNoRuleGrowNothing) {
    const ObjectReference made = publishMaker();
    Transport client;
    const sp<IBinder> child = getChild(get(client, made));
    const auto& name = dynamic_cast<const RemoteObject&>(*child->remoteProxy()).name();
    Attacker attacker(server.endpoint());
    const UniqueFd fd = attacker.connect(MessageKind::HelloControl);
    const size_t before = mallinfo2().uordblks;
    for (const MessageKind kind : {MessageKind::Release, MessageKind::HandOver}) {
        for (uint64_t i = 0; i < 20'000; ++i) {
            MessageBuilder message(kind);
            message.to({{}, i % 2 == 0 ? name.number : 1000 + i, i % 4 == 0 ? name.nonce : i},
                       static_cast<uint32_t>(i % 3 == 0 ? UINT32_MAX : i));
            if (kind == MessageKind::HandOver) {
                message.scalar(randomEndpoint());
            }
            Attacker::send(fd, message.bytes());
        }
    }
    // The last of them has been served when this one has.
    Attacker::send(fd, MessageBuilder(MessageKind::OneWay).to(reference, kNote).scalar<int32_t>(0).bytes());
    ASSERT_TRUE(eventually([&] { return object->noted().size() == 1; }));
    EXPECT_LT(mallinfo2().uordblks, before + 200'000);
    EXPECT_EQ(3u, server.exports().size());
    EXPECT_TRUE(eventually([&] { return server.peerCount() == 2; })) << "the client and the attacker";
    EXPECT_EQ(OK, call(child, kAdd, 1));
    EXPECT_EQ(2, alive);
}

TEST_F(TransportTest, ThousandsOfBrokenRulesWriteFewLines) {
    LogCapture log;
    for (int i = 0; i < 5000; ++i) {
        Attacker attacker(server.endpoint());
        const UniqueFd fd = attacker.connect(i % 2 == 0 ? MessageKind::HelloCall : MessageKind::Welcome);
        Attacker::send(fd, MessageBuilder(MessageKind::Reply).bytes());
        if (i % 10 == 0) {
            EXPECT_TRUE(Attacker::isCut(fd)) << i;
        }
    }
    EXPECT_TRUE(eventually([&] { return server.peerCount() == 0; }));
    EXPECT_LT(log.lines().size(), 40u);
    EXPECT_FALSE(log.lines().empty());
    Transport client;
    EXPECT_EQ(OK, call(get(client, reference), kAdd, 1));
}

/** Listens, and answers each call with what a function says. */
class HostileServer {
  public:
    using Answer = std::function<void(const UniqueFd& fd)>;

    explicit HostileServer(Answer answer)
        : mListening(listenOn(endpoint)), mThread([this, answer = std::move(answer)] { run(answer); }) {}
    ~HostileServer() {
        mEnding = true;
        mThread.join();
    }
    const Endpoint endpoint = randomEndpoint();

  private:
    void run(const Answer& answer) {
        std::vector<UniqueFd> connections;
        while (!mEnding) {
            if (UniqueFd fd(accept4(mListening.get(), nullptr, nullptr, SOCK_CLOEXEC)); fd.ok()) {
                setWaitLimits(fd.get(), 2000);
                connections.push_back(std::move(fd));
            }
            for (const UniqueFd& fd : connections) {
                MessageHeader head{};
                if (receiveSome(fd.get(), &head, sizeof(head), MSG_DONTWAIT) != sizeof(head) ||
                    head.kind != MessageKind::Call) {
                    continue;
                }
                uint8_t body[64];
                receiveSome(fd.get(), body, head.totalBytes - sizeof(head), 0);
                answer(fd);
            }
            std::this_thread::sleep_for(200us);
        }
    }

    UniqueFd mListening;
    std::atomic<bool> mEnding{false};
    std::thread mThread;
};

TEST_F(TransportTest, AHostileServerCostsItsCallersAnErrorAndNothingElse) {
    const auto answerOf = [](MessageKind kind, uint32_t extra = 0) {
        return MessageBuilder(kind).lieInHead([=](MessageHeader& head) { head.totalBytes += extra; }).bytes();
    };
    const auto send = [](const Bytes& bytes) {
        return [=](const UniqueFd& fd) { Attacker::send(fd, bytes); };
    };
    const Bytes reply = answerOf(MessageKind::Reply);
    Bytes two = reply;
    two.insert(two.end(), reply.begin(), reply.end());
    struct Case {
        std::string name;
        HostileServer::Answer answer;
        bool fails = true;
    };
    std::vector<Case> cases = {
            {"a cut reply",
             [&](const UniqueFd& fd) {
                 Attacker::send(fd, answerOf(MessageKind::Reply, 800));
                 ::shutdown(fd.get(), SHUT_RDWR);
             }},
            {"no reply", [](const UniqueFd& fd) { ::shutdown(fd.get(), SHUT_RDWR); }},
            {"a reply that is too long", send(answerOf(MessageKind::Reply, kMaxMessageBytes))},
            {"two replies", send(two)},
            {"wrong lengths inside", send(MessageBuilder(MessageKind::Reply)
                                                  .scalar<int64_t>(0)
                                                  .lieInHead([](auto& head) { head.pieceCount = 1000; })
                                                  .bytes())},
            {"a thousand calls, then a reply",
             [&](const UniqueFd& fd) {
                 for (int i = 0; i < 1000; ++i) {
                     Attacker::send(fd, answerOf(MessageKind::Call));
                     EXPECT_EQ(DEAD_OBJECT, Attacker::status(fd));
                 }
                 Attacker::send(fd, reply);
             },
             false},
    };
    for (const MessageKind kind :
         {MessageKind::HelloCall, MessageKind::HelloControl, MessageKind::OneWay, MessageKind::HandOver,
          MessageKind::Release, MessageKind::Welcome, static_cast<MessageKind>(77)}) {
        cases.push_back({"kind " + std::to_string(static_cast<int>(kind)), send(answerOf(kind))});
    }
    for (const Case& test : cases) {
        // All are one process, whose endpoints are limited.
        ASSERT_TRUE(eventually([&] { return server.peerCount() == 0; }));
        Transport client;
        const sp<IBinder> honest = objectFor(client);
        HostileServer hostile(test.answer);
        for (int i = 0; i < 3; ++i) {
            const status_t status = call(get(client, {hostile.endpoint, 1, 1}), kAdd, 1);
            EXPECT_EQ(test.fails, status != OK) << test.name;
        }
        EXPECT_EQ(OK, call(honest, kAdd, 1)) << test.name;
    }
}

}  // namespace
}  // namespace android::hardware
