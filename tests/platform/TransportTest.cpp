// Calls between transports.

#include <filesystem>

#include "tests/platform/TransportFixture.h"

namespace android::hardware {
namespace {

TEST_F(TransportTest, MessagesUpToTheLimitPassAndLongerOnesFailForTheirCallAlone) {
    Transport client;
    const sp<IBinder> proxy = objectFor(client);
    constexpr int32_t kHead = 40 + 8;  // what a buffer takes beside its bytes
    const std::vector<std::pair<int32_t, status_t>> results = {
            {0, OK},
            {4096, OK},
            {200 * 1024, OK},
            {kMaxTransactionBytes - kHead, OK},
            {kMaxTransactionBytes - kHead + 1, FAILED_TRANSACTION},
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

TEST_F(TransportTest, OneWayCallsReachTheirObjectInOrder) {
    Transport client;
    client.pool().setMaxThreads(4, false);
    const sp<IBinder> proxy = objectFor(client);
    constexpr int kCount = 1000;
    for (int i = 0; i < kCount; ++i) {
        ASSERT_EQ(OK, call(proxy, kNote, i, nullptr, IBinder::FLAG_ONEWAY));
    }
    ASSERT_TRUE(eventually([&] { return object->noted().size() == kCount; }));
    const std::vector<int> notes = object->noted();
    EXPECT_TRUE(std::is_sorted(notes.begin(), notes.end()));
}

TEST_F(TransportTest, ThreadsStartAsCallsNeedThemAndNeverExceedTheMaximum) {
    Partner pair(2);
    struct Served {
        Transport& by;
        Probe& object;
        const ObjectReference& published;
        int atOnce;  // of one process's calls
        size_t most;
    };
    for (const Served& served : {Served{server, *object, reference, 4, 6},
                                 Served{pair.transport, *pair.object, pair.reference, 2, 2}}) {
        Transport client;
        const sp<IBinder> proxy = get(client, served.published);
        EXPECT_EQ(OK, call(proxy, kAdd, 1));
        EXPECT_LE(served.by.pool().threadCount(), 2u);
        std::vector<std::thread> callers;
        for (int i = 0; i < 6; ++i) {
            callers.emplace_back([&] { EXPECT_EQ(OK, call(proxy, kBlock, 0)); });
        }
        EXPECT_TRUE(eventually([&] { return served.object.blocked == served.atOnce; }));
        std::this_thread::sleep_for(50ms);
        EXPECT_EQ(served.atOnce, served.object.blocked);
        EXPECT_LE(served.by.pool().threadCount(), served.most);
        served.object.release();
        for (std::thread& caller : callers) {
            caller.join();
        }
        EXPECT_EQ(6, served.object.blocked) << "waiting calls were served in the end";
    }
}

TEST_F(TransportTest, CallsNestAsDeepAsTheLimitWithoutAnyOtherThread) {
    Transport client;  // without a pool
    sp<IBinder> proxy = get(client, reference);
    const sp<Probe> mine = new Probe;
    for (const auto& [depth, expected] : {std::pair(2, OK),
                                          {32, OK},
                                          {2 * kMaxNestedCalls, OK},
                                          {2 * kMaxNestedCalls + 2, FAILED_TRANSACTION},
                                          {1000, FAILED_TRANSACTION},
                                          {3, OK}}) {
        int32_t reached = 0;
        EXPECT_EQ(expected, Probe::nest(proxy, depth, mine, &reached)) << depth;
        EXPECT_EQ(expected == OK ? depth : 0, reached);
    }
}

TEST_F(TransportTest, MoreThreadsThanConnectionsNestTheirCallsAndNoneHangs) {
    server.pool().setMaxThreads(10, false);
    for (const size_t threads : {size_t{12}, 3 * kMaxCallConnections}) {
        // Both clients are one process, whose connections are limited.
        ASSERT_TRUE(eventually([&] { return server.peerCount() == 0; }));
        Transport client;
        const sp<IBinder> proxy = get(client, reference);
        std::atomic<int> wrong{0};
        std::vector<std::thread> callers;
        for (size_t i = 0; i < threads; ++i) {
            callers.emplace_back([&] {
                const sp<Probe> mine = new Probe;
                for (int j = 0; j < 20; ++j) {
                    int32_t reached = 0;
                    wrong += Probe::nest(proxy, 1 + j % 6, mine, &reached) != OK || reached != 1 + j % 6;
                }
            });
        }
        for (std::thread& caller : callers) {
            caller.join();
        }
        EXPECT_EQ(0, wrong) << threads;
    }
}

TEST_F(TransportTest, AReplyThatIsOnlyPartlyOutIsFinishedAlthoughItsTurnIsOver) {
    struct Slow : Probe {
        status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                            TransactCallback callback) override {
            std::this_thread::sleep_for(code == kBlob ? 10ms : 0ms);
            return Probe::onTransact(code, data, reply, flags, callback);
        }
    };
    Transport single;
    single.pool().start();
    ObjectReference slow;
    ASSERT_EQ(OK, single.publish(new Slow, &slow));
    Transport client;
    const sp<IBinder> proxy = get(client, slow);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(OK, call(proxy, kAdd, 1));
        EXPECT_EQ(OK, call(proxy, kBlob, 700 * 1024));
    }
}

TEST_F(TransportTest, WhatIsCalledOnceTheResultsAreOutGoesAWayOfItsOwn) {
    struct Asking : Probe {
        status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                            TransactCallback callback) override {
            const status_t status = Probe::onTransact(code, data, reply, flags, callback);
            if (code == kAdd) {
                asked += call(kept, kAdd, 1) == OK ? 1 : 0;
            }
            return status;
        }
        std::atomic<int> asked{0};
    };
    const sp<Asking> asking = new Asking;
    ObjectReference published;
    ASSERT_EQ(OK, server.publish(asking, &published));
    Partner client;
    const sp<IBinder> proxy = get(client.transport, published);
    ASSERT_EQ(OK, pass(proxy, client.object));
    for (int i = 1; i <= 50; ++i) {
        EXPECT_EQ(OK, call(proxy, kAdd, 1));
        EXPECT_TRUE(eventually([&] { return asking->asked == i; }));
    }
    asking->takeKept();
}

TEST_F(TransportTest, OneWayMessagesToABusyProcessDelayNobodyAndAreTakenAndRefusedAsOnTheDevice) {
    Transport receiver;
    receiver.pool().setMaxThreads(1, false);
    const sp<IBinder> proxy = objectFor(receiver);
    const sp<Probe> listener = new Probe;
    ASSERT_EQ(OK, pass(proxy, listener));
    const sp<IBinder> toListener = object->kept;
    int32_t taken = 0;
    const auto post = [&](size_t bytes) {
        const std::vector<uint8_t> payload(bytes, 1);
        Parcel data;
        size_t handle = 0;
        data.writeInt32(taken);
        data.writeBuffer(payload.data(), payload.size(), &handle);
        const status_t status = toListener->transact(kNote, data, nullptr, IBinder::FLAG_ONEWAY);
        taken += status == OK ? 1 : 0;
        return status;
    };
    constexpr size_t kHead = 8 + 40 + 8;
    EXPECT_EQ(OK, post(kMaxOneWayBytes - kHead)) << "an idle process takes the largest";
    EXPECT_EQ(FAILED_TRANSACTION, post(kMaxOneWayBytes - kHead + 8)) << "but nothing beyond it";
    ASSERT_TRUE(eventually([&] { return listener->noted().size() == 1; }));
    for (const size_t bytes : {60'000, 4'000}) {
        listener->released = false;
        ASSERT_EQ(OK, call(toListener, kBlock, 0, nullptr, IBinder::FLAG_ONEWAY));
        ASSERT_TRUE(eventually([&] { return listener->blocked == (bytes == 4'000 ? 2 : 1); }));
        const int before = taken;
        const auto start = std::chrono::steady_clock::now();
        while (taken < 1000 && post(bytes) == OK) {
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
        if (bytes == 60'000) {
            EXPECT_EQ(8, taken - before);
        }
        EXPECT_GE((taken - before) * bytes, kMaxOneWayBytes / 2);
        EXPECT_LT((taken - before) * bytes, kMaxOneWayBytes + kControlBlockBytes);  // which has been read
        EXPECT_EQ(OK, call(proxy, kAdd, 1)) << "others are served meanwhile";
        listener->release();
        EXPECT_TRUE(eventually([&] { return listener->noted().size() == static_cast<size_t>(taken); }));
    }
    const std::vector<int> notes = listener->noted();
    EXPECT_TRUE(std::is_sorted(notes.begin(), notes.end())) << "what was taken arrives, in order";
    EXPECT_EQ(OK, post(60'000));
}

}  // namespace
}  // namespace android::hardware
