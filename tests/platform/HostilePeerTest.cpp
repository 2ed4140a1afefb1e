// Peers that break rules or make things up cost themselves something, and nobody else.

#include <cutils/native_handle.h>
#include <malloc.h>

#include "tests/platform/TransportFixture.h"
#include "tests/support/LogCapture.h"

namespace android::hardware {
namespace {

class Attacker {
  public:
    explicit Attacker(const Endpoint& target) : mTarget(target) {}

    UniqueFd connect(MessageKind kind) {
        Credentials credentials;
        UniqueFd fd = connectTo(mTarget, &credentials);
        EXPECT_TRUE(fd.ok());
        MessageHeader hello{};
        hello.kind = kind;
        std::memcpy(&hello.object, mSelf.data(), 8);
        std::memcpy(&hello.nonce, mSelf.data() + 8, 8);
        send(fd, head(hello, 0));
        return fd;
    }

    static MessageHeader head(MessageHeader header, size_t body) {
        header.magic = kMessageMagic;
        header.totalBytes = static_cast<uint32_t>(sizeof(header) + body);
        return header;
    }
    static void send(const UniqueFd& fd, const MessageHeader& header, const std::vector<uint8_t>& body = {}) {
        std::vector<uint8_t> bytes(sizeof(header));
        std::memcpy(bytes.data(), &header, sizeof(header));
        bytes.insert(bytes.end(), body.begin(), body.end());
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
    const Endpoint mSelf = randomEndpoint();
};

TEST_F(TransportTest, ABrokenRuleCostsItsPeerTheConnectionAndIsLogged) {
    struct Case {
        const char* name;
        MessageKind connection;
        std::function<void(MessageHeader&, std::vector<uint8_t>&)> lie;
        const char* logged;
    };
    const std::vector<Case> cases = {
            {"a head that is wrong", MessageKind::HelloCall, [](auto& head, auto&) { head.magic = 1; },
             "magic"},
            {"a whole that is wrong", MessageKind::HelloCall,
             [](auto& head, auto& body) {
                 body.resize(8);
                 head.totalBytes += 8;
             },
             "ends with its last buffer"},
            {"descriptors that do not come", MessageKind::HelloCall,
             [](auto& head, auto& body) {
                 const ParcelPiece pieces[] = {{16, kNoParent, 0, 0}, {1, kIsDescriptors, 0, 0}};
                 native_handle_t handle{};
                 body.resize(sizeof(pieces) + 16);
                 std::memcpy(body.data(), pieces, sizeof(pieces));
                 handle.version = sizeof(handle);
                 handle.numFds = 1;
                 std::memcpy(body.data() + sizeof(pieces), &handle, sizeof(handle));
                 head.totalBytes += static_cast<uint32_t>(body.size());
                 head.pieceCount = 2;
                 head.descriptorCount = 1;
             },
             "as many descriptors as it says"},
            {"reply to nothing", MessageKind::HelloCall,
             [](auto& head, auto&) { head.kind = MessageKind::Reply; }, "carries calls"},
            {"call where one-way messages go", MessageKind::HelloControl, [](auto&, auto&) {}, "no calls"},
    };
    for (const Case& test : cases) {
        LogCapture log;
        Attacker attacker(server.endpoint());
        const UniqueFd other = attacker.connect(MessageKind::HelloCall);
        MessageHeader first{};
        first.kind = MessageKind::Call;
        first.object = reference.object;
        first.nonce = reference.nonce;
        first.code = kSelf;
        Attacker::send(other, Attacker::head(first, 0));
        EXPECT_EQ(OK, Attacker::status(other)) << "it is in use";
        const UniqueFd fd = attacker.connect(test.connection);
        MessageHeader header{};
        header.kind = MessageKind::Call;
        header.object = reference.object;
        header.nonce = reference.nonce;
        header = Attacker::head(header, 0);
        std::vector<uint8_t> body;
        test.lie(header, body);
        Attacker::send(fd, header, body);
        EXPECT_TRUE(Attacker::isCut(fd)) << test.name;
        EXPECT_TRUE(Attacker::isCut(other)) << test.name << ": all its connections end";
        EXPECT_TRUE(log.contains(test.logged)) << test.name;
        EXPECT_TRUE(log.contains("pid " + std::to_string(getpid()) + " uid " + std::to_string(getuid())));
    }
    Transport client;
    EXPECT_EQ(OK, call(objectFor(client), kAdd, 1));
    EXPECT_TRUE(eventually([&] { return server.peerCount() == 1; })) << "nothing of the others is left";
}

TEST_F(TransportTest, AnObjectOrMethodThatDoesNotExistIsAnErrorReply) {
    LogCapture log;
    Attacker attacker(server.endpoint());
    const UniqueFd fd = attacker.connect(MessageKind::HelloCall);
    const std::vector<std::tuple<uint64_t, uint64_t, uint32_t, status_t>> cases = {
            {reference.object + 1, reference.nonce, kAdd, DEAD_OBJECT},
            {reference.object, reference.nonce + 1, kAdd, DEAD_OBJECT},
            {reference.object, reference.nonce, 77, NOT_ENOUGH_DATA},
            {reference.object, reference.nonce, kAdd, NOT_ENOUGH_DATA},
    };
    for (const auto& [number, nonce, code, expected] : cases) {
        MessageHeader header{};
        header.kind = MessageKind::Call;
        header.object = number;
        header.nonce = nonce;
        header.code = code;
        Attacker::send(fd, Attacker::head(header, 0));
        EXPECT_EQ(expected, Attacker::status(fd));
    }
    EXPECT_TRUE(log.contains("refused method 77"));
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
    for (size_t i = 0; i + 1 < kMaxCallConnections; ++i) {
        silent.push_back(attacker.connect(MessageKind::HelloCall));
        MessageHeader header{};
        header.kind = MessageKind::Call;
        header = Attacker::head(header, 1000);
        Attacker::send(silent.back(), header, std::vector<uint8_t>(500));
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
    MessageHeader header{};
    header.kind = MessageKind::Call;
    header.object = reference.object;
    header.nonce = reference.nonce;
    header.code = kBlob;
    header = Attacker::head(header, 8);
    header.scalarBytes = 4;
    const int32_t size = 1000 * 1024;
    std::vector<uint8_t> body(8);
    std::memcpy(body.data(), &size, sizeof(size));
    for (size_t i = 0; i + 1 < kMaxCallConnections; ++i) {
        deaf.push_back(attacker.connect(MessageKind::HelloCall));
        for (int j = 0; j < 20; ++j) {
            Attacker::send(deaf.back(), header, body);
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

TEST_F(TransportTest, AReferenceToNobodyIsAnErrorForItsCallAlone) {
    Attacker attacker(server.endpoint());
    const UniqueFd fd = attacker.connect(MessageKind::HelloCall);
    struct {
        ParcelPiece piece;
        ObjectReference reference;
    } slot{{1, kIsObject, 0, 0}, {randomEndpoint(), 1, 1}};
    std::vector<uint8_t> body(sizeof(slot));
    MessageHeader header{};
    header.kind = MessageKind::Call;
    header.object = reference.object;
    header.nonce = reference.nonce;
    header.code = kKeep;
    header = Attacker::head(header, sizeof(slot));
    header.pieceCount = header.objectCount = 1;
    std::memcpy(body.data(), &slot, sizeof(slot));
    Attacker::send(fd, header, body);
    EXPECT_EQ(DEAD_OBJECT, Attacker::status(fd));
    slot.reference = {server.endpoint(), 4711, 1};
    std::memcpy(body.data(), &slot, sizeof(slot));
    Attacker::send(fd, header, body);
    EXPECT_EQ(NAME_NOT_FOUND, Attacker::status(fd));
    EXPECT_EQ(1u, server.peerCount());
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
            MessageHeader header{};
            header.kind = kind;
            header.object = i % 2 == 0 ? name.number : 1000 + i;
            header.nonce = i % 4 == 0 ? name.nonce : i;
            header.code = static_cast<uint32_t>(i % 3 == 0 ? UINT32_MAX : i);
            const bool handsOver = kind == MessageKind::HandOver;
            header = Attacker::head(header, handsOver ? sizeof(Endpoint) : 0);
            header.scalarBytes = handsOver ? sizeof(Endpoint) : 0;
            const Endpoint nobody = randomEndpoint();
            Attacker::send(
                    fd, header,
                    handsOver ? std::vector<uint8_t>(nobody.begin(), nobody.end()) : std::vector<uint8_t>());
        }
    }
    // The last of them has been served when this one has.
    MessageHeader header{};
    header.kind = MessageKind::OneWay;
    header.object = reference.object;
    header.nonce = reference.nonce;
    header.code = kNote;
    header = Attacker::head(header, 8);
    header.scalarBytes = 4;
    Attacker::send(fd, header, std::vector<uint8_t>(8));
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
        MessageHeader header{};
        header.kind = MessageKind::Reply;
        Attacker::send(fd, Attacker::head(header, 0));
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
        MessageHeader header{};
        header.kind = kind;
        header = Attacker::head(header, 0);
        header.totalBytes += extra;
        return header;
    };
    struct Case {
        std::string name;
        HostileServer::Answer answer;
        bool fails;
    };
    std::vector<Case> cases = {
            {"a cut reply",
             [&](const UniqueFd& fd) {
                 Attacker::send(fd, answerOf(MessageKind::Reply, 800));
                 ::shutdown(fd.get(), SHUT_RDWR);
             },
             true},
            {"no reply", [](const UniqueFd& fd) { ::shutdown(fd.get(), SHUT_RDWR); }, true},
            {"a reply that is too long",
             [&](const UniqueFd& fd) { Attacker::send(fd, answerOf(MessageKind::Reply, kMaxMessageBytes)); },
             true},
            {"two replies",
             [&](const UniqueFd& fd) {
                 std::vector<uint8_t> second(sizeof(MessageHeader));
                 const MessageHeader header = answerOf(MessageKind::Reply);
                 std::memcpy(second.data(), &header, sizeof(header));
                 Attacker::send(fd, header, second);
             },
             true},
            {"wrong lengths inside",
             [&](const UniqueFd& fd) {
                 MessageHeader header = answerOf(MessageKind::Reply, 8);
                 header.pieceCount = 1000;
                 Attacker::send(fd, header, std::vector<uint8_t>(8));
             },
             true},
            {"a thousand calls, then a reply",
             [&](const UniqueFd& fd) {
                 for (int i = 0; i < 1000; ++i) {
                     Attacker::send(fd, answerOf(MessageKind::Call));
                     EXPECT_EQ(DEAD_OBJECT, Attacker::status(fd));
                 }
                 Attacker::send(fd, answerOf(MessageKind::Reply));
             },
             false},
    };
    for (const MessageKind kind :
         {MessageKind::HelloCall, MessageKind::HelloControl, MessageKind::OneWay, MessageKind::HandOver,
          MessageKind::Release, MessageKind::Welcome, static_cast<MessageKind>(77)}) {
        cases.push_back({"kind " + std::to_string(static_cast<int>(kind)),
                         [&, kind](const UniqueFd& fd) { Attacker::send(fd, answerOf(kind)); }, true});
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
