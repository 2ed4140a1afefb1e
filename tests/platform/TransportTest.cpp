// Two transports in one process stand for two processes: they share nothing but sockets. What needs real
// processes (kill, stop, other users, descriptor limits) is in ProcessTest.cpp.

#include "platform/socket/Transport.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <filesystem>
#include <functional>
#include <thread>

#include "platform/socket/Limits.h"
#include "tests/support/LogCapture.h"

namespace android::hardware {
namespace {

using namespace std::chrono_literals;

bool eventually(const std::function<bool()>& condition) {
    for (int i = 0; i < 2000; ++i) {
        if (condition()) {
            return true;
        }
        std::this_thread::sleep_for(2ms);
    }
    return false;
}

enum Method : uint32_t { kAdd = 1, kKeep, kBlob, kBlock, kNote, kSelf, kSum, kReturn, kPolicy };

/** An object with methods of every shape that the transport tells apart. */
class Probe : public BHwBinder {
  public:
    explicit Probe(std::atomic<int>* alive = nullptr) : mAlive(alive) {
        if (mAlive != nullptr) {
            ++*mAlive;
        }
    }
    ~Probe() override {
        if (mAlive != nullptr) {
            --*mAlive;
        }
    }

    status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                        TransactCallback callback) override {
        int32_t number = 0;
        status_t status = code == kSelf || code == kKeep || code == kReturn ? OK : data.readInt32(&number);
        if (status != OK) {
            return status;
        }
        std::vector<uint8_t> blob;
        size_t handle = 0;
        switch (code) {
            case kAdd:
                reply->writeInt32(number + 1);
                break;
            case kKeep: {
                sp<IBinder> object;
                status = data.readNullableStrongBinder(&object);
                const std::lock_guard<std::mutex> lock(mLock);
                kept = object;
                reply->writeInt32(object == nullptr ? 0 : 1);
                break;
            }
            case kBlob:
                blob.assign(static_cast<size_t>(number), 0xA5);
                reply->writeBuffer(blob.data(), blob.size(), &handle);
                break;
            case kBlock: {
                std::unique_lock<std::mutex> lock(mLock);
                ++blocked;
                mChanged.notify_all();
                mChanged.wait(lock, [this] { return released; });
                break;
            }
            case kNote: {
                const std::lock_guard<std::mutex> lock(mLock);
                notes.push_back(number);
                break;
            }
            case kPolicy: {
                const std::lock_guard<std::mutex> lock(mLock);
                notes.push_back(sched_getscheduler(0));
                break;
            }
            case kSelf:
                reply->writeStrongBinder(new Probe(mAlive));
                break;
            case kReturn: {
                sp<IBinder> object;
                status = data.readNullableStrongBinder(&object);
                reply->writeStrongBinder(object);
                break;
            }
            case kSum: {
                const void* bytes = nullptr;
                status = data.readBuffer(static_cast<size_t>(number), &handle, &bytes);
                if (status == OK) {
                    reply->writeInt32(static_cast<const uint8_t*>(bytes)[number - 1]);
                }
                break;
            }
            default:
                return UNKNOWN_TRANSACTION;
        }
        if (status == OK && (flags & FLAG_ONEWAY) == 0) {
            callback(*reply);
        }
        return status;
    }

    void release() {
        const std::lock_guard<std::mutex> lock(mLock);
        released = true;
        mChanged.notify_all();
    }
    std::vector<int> noted() {
        const std::lock_guard<std::mutex> lock(mLock);
        return notes;
    }

    sp<IBinder> kept;
    std::atomic<int> blocked{0};
    bool released = false;
    std::vector<int> notes;

  private:
    std::atomic<int>* const mAlive;
    std::mutex mLock;
    std::condition_variable mChanged;
};

class Deaths : public IBinder::DeathRecipient {
  public:
    void binderDied(const wp<IBinder>&) override { ++count; }
    std::atomic<int> count{0};
};

status_t call(const sp<IBinder>& object, uint32_t code, int32_t argument, int32_t* result = nullptr,
              uint32_t flags = 0) {
    Parcel data;
    Parcel reply;
    data.writeInt32(argument);
    const status_t status = object->transact(code, data, &reply, flags);
    return status == OK && result != nullptr ? reply.readInt32(result) : status;
}

status_t pass(const sp<IBinder>& object, const sp<IBinder>& argument) {
    Parcel data;
    Parcel reply;
    data.writeStrongBinder(argument);
    return object->transact(kKeep, data, &reply);
}

class TransportTest : public testing::Test {
  protected:
    TransportTest() {
        server.setMaxThreads(4, false);
        server.startThreadPool();
        EXPECT_EQ(OK, server.publish(object, &reference));
    }
    ~TransportTest() override { object->release(); }

    sp<IBinder> objectFor(Transport& client) {
        client.startThreadPool();
        sp<IBinder> proxy;
        EXPECT_EQ(OK, client.resolve(reference, &proxy));
        return proxy;
    }

    std::atomic<int> alive{0};  // outlives the objects that the server keeps
    const sp<Probe> object = new Probe;
    ObjectReference reference;
    Transport server;
};

TEST_F(TransportTest, ACallReturnsTheObjectsAnswerOrItsError) {
    Transport client;
    const sp<IBinder> proxy = objectFor(client);
    int32_t result = 0;
    EXPECT_EQ(OK, call(proxy, kAdd, 41, &result));
    EXPECT_EQ(42, result);
    EXPECT_EQ(UNKNOWN_TRANSACTION, call(proxy, 99, 0));
    EXPECT_EQ(OK, call(proxy, kAdd, 1, &result)) << "a refused call leaves the connection usable";
}

TEST_F(TransportTest, MessagesUpToTheLimitPassAndLongerOnesFailForTheirCallAlone) {
    Transport client;
    const sp<IBinder> proxy = objectFor(client);
    constexpr int32_t kHead = sizeof(MessageHeader) + sizeof(BufferEntry);
    const std::vector<std::pair<int32_t, status_t>> results = {
            {0, OK},
            {4096, OK},
            {200 * 1024, OK},
            {kMaxMessageBytes - kHead, OK},
            {kMaxMessageBytes - kHead + 1, FAILED_TRANSACTION},
            {8 * kMaxMessageBytes, FAILED_TRANSACTION},
    };
    for (const auto& [size, expected] : results) {
        Parcel data;
        Parcel reply;
        data.writeInt32(size);
        ASSERT_EQ(expected, proxy->transact(kBlob, data, &reply)) << size;
        if (expected == OK) {
            size_t handle = 0;
            const void* bytes = nullptr;
            ASSERT_EQ(OK, reply.readBuffer(static_cast<size_t>(size), &handle, &bytes)) << size;
            if (size > 0) {
                EXPECT_EQ(0xA5, static_cast<const uint8_t*>(bytes)[size - 1]);
            }
        }
    }
    for (const auto& [size, expected] : {std::pair(5000, OK), std::pair(900 * 1024, OK),
                                         std::pair(int(kMaxMessageBytes), FAILED_TRANSACTION)}) {
        const std::vector<uint8_t> argument(static_cast<size_t>(size), 7);
        Parcel data;
        Parcel reply;
        data.writeInt32(size);
        size_t handle = 0;
        ASSERT_EQ(OK, data.writeBuffer(argument.data(), argument.size(), &handle));
        ASSERT_EQ(expected, proxy->transact(kSum, data, &reply)) << size;
        int32_t last = 0;
        if (expected == OK) {
            EXPECT_EQ(OK, reply.readInt32(&last));
            EXPECT_EQ(7, last);
        }
    }
}

TEST_F(TransportTest, AStreamOfOneWayMessagesIsAwaitedInBatchesAndServedLikeAnyOther) {
    const auto threadsInBatches = [] {
        size_t count = 0;
        for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
            count += sched_getscheduler(std::stoi(thread.path().filename())) == SCHED_BATCH ? 1 : 0;
        }
        return count;
    };
    const sched_param param{};
    if (sched_setscheduler(0, SCHED_BATCH, &param) != 0 || sched_setscheduler(0, SCHED_OTHER, &param) != 0) {
        SUCCEED() << "where policies can not be set, streams are awaited as all else is";
        return;
    }
    Transport client;
    const sp<IBinder> proxy = objectFor(client);
    size_t sent = 0;
    const auto sendOne = [&] {
        EXPECT_EQ(OK, call(proxy, kPolicy, 0, nullptr, IBinder::FLAG_ONEWAY));
        ++sent;
        ASSERT_TRUE(eventually([&] { return object->noted().size() == sent; }));
        EXPECT_EQ(SCHED_OTHER, object->noted().back()) << "what a handler starts inherits its policy";
    };
    size_t inBatches = 0;
    while (inBatches == 0 && sent < 1000) {
        sendOne();
        inBatches = threadsInBatches();
    }
    EXPECT_EQ(1u, inBatches);
    EXPECT_TRUE(eventually([&] { return threadsInBatches() == 0; }));
    sendOne();  // epoll listens again
}

TEST_F(TransportTest, AnObjectLivesAsLongAsAPeerHoldsIt) {
    const sp<Probe> maker = new Probe(&alive);
    ObjectReference made;
    ASSERT_EQ(OK, server.publish(maker, &made));
    auto client = std::make_unique<Transport>();
    client->startThreadPool();
    sp<IBinder> proxy;
    ASSERT_EQ(OK, client->resolve(made, &proxy));

    const auto get = [&] {
        Parcel data;
        Parcel reply;
        EXPECT_EQ(OK, proxy->transact(kSelf, data, &reply));
        sp<IBinder> child;
        EXPECT_EQ(OK, reply.readNullableStrongBinder(&child));
        return child;
    };
    sp<IBinder> first = get();
    const sp<IBinder> second = get();
    EXPECT_EQ(3, alive);
    EXPECT_EQ(OK, call(first, kAdd, 1));
    first.clear();
    EXPECT_TRUE(eventually([&] { return alive == 2; })) << "released when its last proxy goes";
    EXPECT_EQ(OK, call(second, kAdd, 1)) << "and the other one stays";

    // A third process gets it from the second: it is its holder too, whatever the second does then.
    Transport third;
    third.setMaxThreads(2, false);
    third.startThreadPool();
    const sp<Probe> keeper = new Probe;
    ObjectReference kept;
    ASSERT_EQ(OK, third.publish(keeper, &kept));
    sp<IBinder> keeperProxy;
    ASSERT_EQ(OK, client->resolve(kept, &keeperProxy));
    ASSERT_EQ(OK, pass(keeperProxy, second));
    EXPECT_TRUE(eventually([&] { return call(keeper->kept, kAdd, 1) == OK; }));

    proxy.clear();
    keeperProxy.clear();
    const_cast<sp<IBinder>&>(second).clear();
    client.reset();
    EXPECT_EQ(OK, call(keeper->kept, kAdd, 1));
    EXPECT_EQ(2, alive);
    keeper->kept.clear();
    EXPECT_TRUE(eventually([&] { return alive == 1; }));
}

TEST_F(TransportTest, TheSameRemoteObjectIsTheSameProxyAndOnesOwnIsTheObjectItself) {
    Transport client;
    client.setMaxThreads(2, false);
    const sp<IBinder> proxy = objectFor(client);
    sp<IBinder> again;
    ASSERT_EQ(OK, client.resolve(reference, &again));
    EXPECT_EQ(proxy, again);

    ASSERT_EQ(OK, pass(proxy, proxy));
    EXPECT_EQ(object.get(), object->kept.get()) << "the server gets its own object back, not a proxy";
    object->kept.clear();
    ASSERT_EQ(OK, pass(proxy, nullptr));
    EXPECT_EQ(nullptr, object->kept);
}

TEST_F(TransportTest, AnObjectComesBackToItsOwnerThoughTheOtherSideLetsGoAtOnce) {
    Transport client;
    client.setMaxThreads(2, false);
    const sp<IBinder> proxy = objectFor(client);
    for (int i = 0; i < 300; ++i) {
        const sp<Probe> mine = new Probe;
        Parcel data;
        Parcel reply;
        data.writeStrongBinder(mine);
        ASSERT_EQ(OK, proxy->transact(kReturn, data, &reply));
        sp<IBinder> back;
        ASSERT_EQ(OK, reply.readNullableStrongBinder(&back)) << i;
        ASSERT_EQ(mine.get(), back.get());
    }
    EXPECT_TRUE(eventually([&] { return client.exports().size() == 0; }));
}

TEST_F(TransportTest, OneWayCallsReachTheirObjectInOrder) {
    Transport client;
    client.setMaxThreads(4, false);
    const sp<IBinder> proxy = objectFor(client);
    constexpr int kCount = 1000;
    for (int i = 0; i < kCount; ++i) {
        ASSERT_EQ(OK, call(proxy, kNote, i, nullptr, IBinder::FLAG_ONEWAY));
    }
    ASSERT_TRUE(eventually([&] { return object->noted().size() == kCount; }));
    const std::vector<int> notes = object->noted();
    EXPECT_TRUE(std::is_sorted(notes.begin(), notes.end()));
}

TEST_F(TransportTest, AReceiverThatIsBusyDelaysNoSenderAndLosesOnlyItsOwnOverflow) {
    Transport receiver;
    receiver.setMaxThreads(1, false);
    const sp<IBinder> proxy = objectFor(receiver);
    const sp<Probe> listener = new Probe;
    ASSERT_EQ(OK, pass(proxy, listener));
    const sp<IBinder> toListener = object->kept;
    ASSERT_EQ(OK, call(toListener, kBlock, 0, nullptr, IBinder::FLAG_ONEWAY));
    ASSERT_TRUE(eventually([&] { return listener->blocked == 1; }));

    const std::vector<uint8_t> payload(4000, 1);
    int accepted = 0;
    status_t status = OK;
    const auto start = std::chrono::steady_clock::now();
    while (status == OK && accepted < 10000) {
        Parcel data;
        data.writeInt32(accepted);
        size_t handle = 0;
        data.writeBuffer(payload.data(), payload.size(), &handle);
        status = toListener->transact(kNote, data, nullptr, IBinder::FLAG_ONEWAY);
        accepted += status == OK ? 1 : 0;
    }
    EXPECT_EQ(FAILED_TRANSACTION, status);
    EXPECT_GE(accepted * 4000u, kMaxOneWayQueueBytes / 2);
    EXPECT_LT(accepted * 4000u, 4 * kMaxOneWayQueueBytes) << "the queue is bounded";
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    EXPECT_EQ(OK, call(proxy, kAdd, 1)) << "others are served meanwhile";

    listener->release();
    ASSERT_TRUE(eventually([&] { return listener->noted().size() == static_cast<size_t>(accepted); }));
    const std::vector<int> notes = listener->noted();
    EXPECT_TRUE(std::is_sorted(notes.begin(), notes.end())) << "what was accepted arrives, in order";
    EXPECT_EQ(OK, call(toListener, kNote, accepted, nullptr, IBinder::FLAG_ONEWAY));
}

TEST_F(TransportTest, EveryLinkReportsThePeersDeathOnce) {
    const sp<Deaths> deaths = new Deaths;
    const sp<Deaths> withdrawn = new Deaths;
    {
        Transport client;
        const sp<IBinder> proxy = objectFor(client);
        const sp<Probe> listener = new Probe;
        ASSERT_EQ(OK, pass(proxy, listener));
        EXPECT_EQ(OK, object->kept->linkToDeath(deaths));
        EXPECT_EQ(OK, object->kept->linkToDeath(deaths));
        EXPECT_EQ(OK, object->kept->linkToDeath(withdrawn));
        EXPECT_EQ(OK, object->kept->unlinkToDeath(withdrawn));
        EXPECT_EQ(NAME_NOT_FOUND, object->kept->unlinkToDeath(withdrawn));
        EXPECT_EQ(0, deaths->count);
    }
    EXPECT_TRUE(eventually([&] { return deaths->count == 2; }));
    EXPECT_EQ(DEAD_OBJECT, call(object->kept, kAdd, 1));
    EXPECT_EQ(DEAD_OBJECT, call(object->kept, kNote, 1, nullptr, IBinder::FLAG_ONEWAY));
    EXPECT_EQ(OK, object->kept->linkToDeath(deaths)) << "a link that comes too late is told all the same";
    EXPECT_TRUE(eventually([&] { return deaths->count == 3; }));
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(3, deaths->count);
    EXPECT_EQ(0, withdrawn->count);
    object->kept.clear();
    EXPECT_TRUE(eventually([&] { return server.peerCount() == 0; }));
}

TEST_F(TransportTest, ThreadsStartAsCallsNeedThemAndNeverExceedTheMaximum) {
    Transport client;
    const sp<IBinder> proxy = objectFor(client);
    EXPECT_EQ(OK, call(proxy, kAdd, 1));
    EXPECT_LE(server.threadCount(), 2u);
    std::vector<std::thread> callers;
    for (int i = 0; i < 6; ++i) {
        callers.emplace_back([&] { EXPECT_EQ(OK, call(proxy, kBlock, 0)); });
    }
    EXPECT_TRUE(eventually([&] { return object->blocked == 4; }));
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(4, object->blocked);
    EXPECT_EQ(4u, server.threadCount());
    object->release();
    for (std::thread& caller : callers) {
        caller.join();
    }
    EXPECT_EQ(6, object->blocked) << "waiting calls were served in the end";
}

TEST_F(TransportTest, MoreCallersThanConnectionsTakeTurns) {
    Transport client;
    const sp<IBinder> proxy = objectFor(client);
    std::atomic<int> wrong{0};
    std::vector<std::thread> callers;
    for (size_t i = 0; i < 3 * kMaxCallConnections; ++i) {
        callers.emplace_back([&, i] {
            for (int j = 0; j < 50; ++j) {
                int32_t result = 0;
                const auto argument = static_cast<int32_t>(1000 * i) + j;
                wrong += call(proxy, kAdd, argument, &result) != OK || result != argument + 1;
            }
        });
    }
    for (std::thread& caller : callers) {
        caller.join();
    }
    EXPECT_EQ(0, wrong);
}

// Hostile peers. Each speaks to the server over plain sockets.

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
    const auto withEntry = [](BufferEntry entry) {
        return [entry](MessageHeader& head, std::vector<uint8_t>& body) {
            head.bufferCount = 1;
            body.resize(32);
            std::memcpy(body.data(), &entry, sizeof(entry));
            head.totalBytes = sizeof(head) + 32;
        };
    };
    const std::vector<Case> cases = {
            {"wrong magic", MessageKind::HelloCall, [](auto& head, auto&) { head.magic = 1; }, "magic"},
            {"too large", MessageKind::HelloCall,
             [](auto& head, auto&) { head.totalBytes = kMaxMessageBytes + 8; }, "1 MiB"},
            {"shorter than a head", MessageKind::HelloCall, [](auto& head, auto&) { head.totalBytes = 8; },
             "covers its header"},
            {"odd length", MessageKind::HelloCall, [](auto& head, auto&) { head.totalBytes = 51; },
             "multiple of 8"},
            {"scalars outside", MessageKind::HelloCall, [](auto& head, auto&) { head.scalarBytes = 1; },
             "scalars"},
            {"more buffers than room", MessageKind::HelloCall,
             [](auto& head, auto&) { head.bufferCount = UINT32_MAX; }, "buffer table"},
            {"buffer outside", MessageKind::HelloCall, withEntry({1000, kNoParent, 0, 0}), "buffer lies"},
            {"bytes behind the last buffer", MessageKind::HelloCall, withEntry({8, kNoParent, 0, 0}),
             "ends with its last buffer"},
            {"its own parent", MessageKind::HelloCall, withEntry({16, 0, 0, 0}), "parent"},
            {"reply to nothing", MessageKind::HelloCall,
             [](auto& head, auto&) { head.kind = MessageKind::Reply; }, "carries calls"},
            {"call where one-way messages go", MessageKind::HelloControl, [](auto&, auto&) {}, "no calls"},
            {"release of what it does not hold", MessageKind::HelloControl,
             [](auto& head, auto&) {
                 head.kind = MessageKind::Release;
                 head.code = 1;
             },
             "releases what it holds"},
    };
    for (const Case& test : cases) {
        LogCapture log;
        Attacker attacker(server.endpoint());
        const UniqueFd other = attacker.connect(MessageKind::HelloCall);
        MessageHeader first{};
        first.kind = MessageKind::Call;
        Attacker::send(other, Attacker::head(first, 0));
        EXPECT_EQ(DEAD_OBJECT, Attacker::status(other)) << "it is in use";
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
    for (size_t i = 0; i < kMaxCallConnections; ++i) {
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
    for (size_t i = 0; i < kMaxCallConnections; ++i) {
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
    ObjectSlot slot{1, {randomEndpoint(), 1, 1}};
    std::vector<uint8_t> body(sizeof(slot));
    MessageHeader header{};
    header.kind = MessageKind::Call;
    header.object = reference.object;
    header.nonce = reference.nonce;
    header.code = kKeep;
    header = Attacker::head(header, sizeof(slot));
    header.scalarBytes = sizeof(slot);
    std::memcpy(body.data(), &slot, sizeof(slot));
    Attacker::send(fd, header, body);
    EXPECT_EQ(DEAD_OBJECT, Attacker::status(fd));
    slot.reference = {server.endpoint(), 4711, 1};
    std::memcpy(body.data(), &slot, sizeof(slot));
    Attacker::send(fd, header, body);
    EXPECT_EQ(NAME_NOT_FOUND, Attacker::status(fd));
    EXPECT_EQ(1u, server.peerCount());
}

}  // namespace
}  // namespace android::hardware
