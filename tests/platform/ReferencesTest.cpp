// Who holds an object, and who hears of its death.

#include "tests/platform/TransportFixture.h"

namespace android::hardware {
namespace {

TEST_F(TransportTest, TheSameRemoteObjectIsTheSameProxyAndOnesOwnIsTheObjectItself) {
    Transport client;
    client.pool().setMaxThreads(2, false);
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
    client.pool().setMaxThreads(2, false);
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

TEST_F(TransportTest, EveryLinkReportsThePeersDeathOnce) {
    const sp<Deaths> deaths = new Deaths;
    const sp<Deaths> withdrawn = new Deaths;
    {
        Transport client;
        const sp<IBinder> proxy = objectFor(client);
        const sp<Probe> listener = new Probe;
        ASSERT_EQ(OK, pass(proxy, listener));
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(OK, object->kept->linkToDeath(deaths));
        }
        EXPECT_EQ(OK, object->kept->unlinkToDeath(deaths)) << "one of them";
        EXPECT_EQ(OK, object->kept->linkToDeath(withdrawn));
        EXPECT_EQ(OK, object->kept->unlinkToDeath(withdrawn));
        EXPECT_EQ(NAME_NOT_FOUND, object->kept->unlinkToDeath(withdrawn));
        EXPECT_EQ(0, deaths->count);
    }
    EXPECT_TRUE(eventually([&] { return deaths->count == 2; }));
    EXPECT_EQ(DEAD_OBJECT, call(object->kept, kAdd, 1));
    EXPECT_EQ(DEAD_OBJECT, call(object->kept, kNote, 1, nullptr, IBinder::FLAG_ONEWAY));
    EXPECT_EQ(DEAD_OBJECT, object->kept->linkToDeath(deaths)) << "a link that comes too late";
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(2, deaths->count);
    EXPECT_EQ(0, withdrawn->count);
    object->kept.clear();
    EXPECT_TRUE(eventually([&] { return server.peerCount() == 0; }));
}

TEST_F(TransportTest, AReferenceOutlivesWhoeverHandedItOn) {
    const ObjectReference made = publishMaker();
    Partner third;
    for (const bool giverEnds : {false, true}) {
        auto giver = std::make_unique<Transport>();
        for (int i = 0; i < 200; ++i) {
            if (giverEnds) {
                giver = std::make_unique<Transport>();
            }
            {
                const sp<IBinder> keeper = get(*giver, third.reference);
                ASSERT_EQ(OK, pass(keeper, getChild(get(*giver, made))));
            }
            if (giverEnds) {
                giver.reset();
                // All are one process, whose endpoints are limited.
                ASSERT_TRUE(eventually(
                        [&] { return server.peerCount() <= 1 && third.transport.peerCount() <= 1; }));
            }
            int32_t result = 0;
            ASSERT_EQ(OK, call(third.object->kept, kAdd, i, &result)) << i << giverEnds;
            ASSERT_EQ(i + 1, result);
        }
    }
    EXPECT_TRUE(eventually([&] { return alive == 2; })) << "the maker and the last child";
    EXPECT_EQ(OK, call(third.object->kept, kAdd, 1));
    third.object->kept.clear();
    EXPECT_TRUE(eventually([&] { return alive == 1 && server.exports().size() == 2; }));
}

TEST_F(TransportTest, AProcessThatOnlyCallsKeepsWhatItIsHandedAndIsNotTakenForDead) {
    struct Giver : Probe {
        status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                            TransactCallback callback) override {
            if (code != kSelf) {
                return Probe::onTransact(code, data, reply, flags, callback);
            }
            reply->writeStrongBinder(takeKept());
            callback(*reply);
            return OK;
        }
    };
    const sp<Giver> giver = new Giver;
    Partner between;
    ObjectReference given;
    ASSERT_EQ(OK, between.transport.publish(giver, &given));
    const ObjectReference maker = publishMaker();
    Transport caller;
    const sp<IBinder> toServer = get(caller, reference);
    const sp<IBinder> toGiver = get(caller, given);
    for (int i = 0; i < 20; ++i) {
        giver->kept = getChild(get(between.transport, maker));
        sp<IBinder> child = getChild(toGiver);
        ASSERT_NE(nullptr, child);
        EXPECT_EQ(OK, call(child, kAdd, 1));
        EXPECT_EQ(OK, call(toServer, kAdd, 1));
        EXPECT_EQ(2, alive);
        child.clear();
        EXPECT_TRUE(eventually([&] { return alive == 1; }));
    }
}

TEST_F(TransportTest, AReferenceThatSomebodyMadeUpHarmsNobodyWhoHasTheRealOne) {
    const ObjectReference made = publishMaker();
    Partner victim;
    Transport liar;
    const sp<IBinder> toVictim = get(liar, victim.reference);
    // What a liar claims to hold, it has as a proxy of its own making.
    const auto claim = [&](ObjectReference lie) {
        sp<IBinder> proxy;
        return liar.resolve(lie, &proxy) == OK ? proxy : nullptr;
    };
    const sp<IBinder> child = getChild(get(victim.transport, made));
    const auto& remote = dynamic_cast<const RemoteObject&>(*child->remoteProxy());
    const ObjectReference real{server.endpoint(), remote.name().number, remote.name().nonce};
    const ObjectReference lies[] = {
            {made.endpoint, made.object, made.nonce + 1},
            {made.endpoint, 4711, 1},
            {real.endpoint, real.object, real.nonce + 1},
    };
    for (const ObjectReference& lie : lies) {
        ASSERT_EQ(OK, pass(toVictim, claim(lie)));
        EXPECT_EQ(DEAD_OBJECT, call(victim.object->kept, kAdd, 1));
        EXPECT_EQ(OK, call(get(victim.transport, made), kAdd, 1)) << "the real one beside the lie";
        EXPECT_EQ(OK, call(child, kAdd, 1));
        victim.object->kept.clear();
        std::this_thread::sleep_for(20ms);  // for what might be given back
        EXPECT_EQ(OK, call(get(victim.transport, made), kAdd, 1)) << "and after it";
        EXPECT_EQ(OK, call(child, kAdd, 1));
    }
    EXPECT_EQ(2, alive);
}

TEST_F(TransportTest, RecipientsAndDestructorsThatBlockOrCallDelayNobody) {
    Partner other;
    struct Gate {
        std::mutex closed;
        std::atomic<int> answered{0};
    };
    static Gate sGate;  // outlives those that wait at it
    Gate* const gate = &sGate;
    gate->closed.lock();
    const std::function<void()> block = [gate] { const std::lock_guard<std::mutex> waits(gate->closed); };
    const std::function<void()> ask = [gate, toOther = get(server, other.reference)] {
        gate->answered += call(toOther, kAdd, 1) == OK ? 1 : 0;
    };
    const sp<Deaths> blocking = new Deaths(block);
    const sp<Deaths> calling = new Deaths(ask);
    const sp<Deaths> ordinary = new Deaths;
    std::vector<sp<IBinder>> linked;
    constexpr int kVictims = 3;
    server.pool().setMaxThreads(2, false);
    for (int i = 0; i < kVictims; ++i) {
        Partner client;
        ASSERT_EQ(OK, pass(get(client.transport, reference), new Probe));
        linked.push_back(object->kept);
        for (const sp<Deaths>& each : {blocking, calling, ordinary}) {
            ASSERT_EQ(OK, linked.back()->linkToDeath(each));
        }
        for (const std::function<void()>& end : {block, ask}) {
            sp<Probe> held = new Probe;
            held->onEnd = end;
            ASSERT_EQ(OK, pass(get(server, client.reference), held));
            client.held.push_back(client.object->takeKept());
        }
    }
    EXPECT_TRUE(eventually([&] { return blocking->count == kVictims; })) << blocking->count;
    EXPECT_TRUE(eventually([&] { return ordinary->count == kVictims; })) << ordinary->count;
    EXPECT_TRUE(eventually([&] { return gate->answered >= kVictims; })) << gate->answered;
    for (int i = 0; i < 3; ++i) {
        Transport client;
        EXPECT_EQ(OK, call(get(client, reference), kAdd, 1)) << "a new connection is served";
    }
    gate->closed.unlock();
    EXPECT_TRUE(eventually([&] { return gate->answered == 2 * kVictims; })) << gate->answered;
    EXPECT_EQ(kVictims, ordinary->count);
}

TEST_F(TransportTest, MoreRecipientsThanMayBlockDelayNoCallAndAPoolOfOneIsOneAgain) {
    static std::mutex sGate;
    std::mutex* const gate = &sGate;
    gate->lock();
    const sp<Deaths> blocking = new Deaths([gate] { const std::lock_guard<std::mutex> waits(*gate); });
    Transport single;
    single.pool().setMaxThreads(1, true);
    std::thread joined([&] { single.pool().join(); });
    ObjectReference published;
    const sp<Probe> keeper = new Probe;
    ASSERT_EQ(OK, single.publish(keeper, &published));
    constexpr int kLinks = static_cast<int>(kMaxDeathThreads) + 8;
    {
        Partner victim;
        ASSERT_EQ(OK, pass(get(victim.transport, published), new Probe));
        for (int i = 0; i < kLinks; ++i) {
            ASSERT_EQ(OK, keeper->kept->linkToDeath(blocking));
        }
    }
    EXPECT_TRUE(eventually([&] { return blocking->count >= static_cast<int>(kMaxDeathThreads); }));
    {
        Transport client;
        EXPECT_EQ(OK, call(get(client, published), kAdd, 1));
    }
    gate->unlock();
    EXPECT_TRUE(eventually([&] { return blocking->count == kLinks && single.pool().threadCount() == 1; }));
    single.pool().stop();
    joined.join();
}

TEST_F(TransportTest, WhatIsGivenBackIsReleasedWhileOtherCallsOfThePeerAreRunning) {
    const ObjectReference made = publishMaker();
    Transport client;
    const sp<IBinder> proxy = objectFor(client);
    const sp<IBinder> maker = get(client, made);
    std::thread caller([&] { EXPECT_EQ(OK, call(proxy, kBlock, 0)); });
    EXPECT_TRUE(eventually([&] { return object->blocked == 1; }));
    std::vector<sp<IBinder>> children;
    for (int i = 0; i < 100; ++i) {
        children.push_back(getChild(maker));
    }
    EXPECT_EQ(101, alive);
    children.resize(1);
    EXPECT_TRUE(eventually([&] { return alive == 2; })) << alive << " left while a call runs";
    EXPECT_EQ(OK, call(children[0], kAdd, 1)) << "and one stays";
    object->release();
    caller.join();
}

TEST_F(TransportTest, ObjectsThatNobodyReadsAreReleasedWhileTheirReceiverLives) {
    Transport client;
    const sp<IBinder> proxy = objectFor(client);
    ObjectReference gone;
    const sp<Probe> shortLived = new Probe;
    ASSERT_EQ(OK, server.publish(shortLived, &gone));
    const sp<IBinder> toGone = get(client, gone);
    server.withdraw(gone);
    struct Case {
        const char* name;
        sp<IBinder> target;
        uint32_t code;
        uint32_t flags;
        status_t expected;
    };
    const Case cases[] = {
            {"unknown object", toGone, kKeep, 0, DEAD_OBJECT},
            {"unknown method", proxy, 99, 0, UNKNOWN_TRANSACTION},
            {"malformed arguments", proxy, kSum, 0, BAD_VALUE},
            {"arguments that a method does not have", proxy, kAdd, 0, OK},
            {"one-way to an unknown object", toGone, kKeep, IBinder::FLAG_ONEWAY, OK},
            {"one-way that nobody reads", proxy, kNote, IBinder::FLAG_ONEWAY, OK},
    };
    for (const Case& test : cases) {
        const size_t before = client.exports().size();
        for (int i = 0; i < 10; ++i) {
            Parcel data;
            Parcel reply;
            data.writeInt32(8);
            data.writeStrongBinder(new Probe(&alive));
            data.writeStrongBinder(new Probe(&alive));
            EXPECT_EQ(test.expected, test.target->transact(test.code, data, &reply, test.flags)) << test.name;
        }
        EXPECT_TRUE(eventually([&] { return alive == 0 && client.exports().size() == before; }))
                << test.name << ": " << alive;
    }
    const sp<IBinder> dead = get(client, Partner().reference);
    {
        Parcel data;
        Parcel reply;
        data.writeStrongBinder(new Probe(&alive));
        data.writeStrongBinder(dead);
        EXPECT_EQ(DEAD_OBJECT, proxy->transact(kKeep, data, &reply));
    }
    EXPECT_TRUE(eventually([&] { return alive == 0; })) << "a message that can not be sent keeps nothing";
    EXPECT_EQ(OK, call(proxy, kAdd, 1));
}

TEST_F(TransportTest, AnObjectThatCallsAtItsEndMayEndWhileItsHolderIsBeingConnected) {
    for (int i = 0; i < 50; ++i) {
        Transport client;
        const sp<IBinder> proxy = objectFor(client);
        std::atomic<int> answered{0};
        std::vector<std::thread> senders;
        for (int j = 0; j < 4; ++j) {
            senders.emplace_back([&] {
                sp<Probe> mine = new Probe;
                mine->onEnd = [&] { answered += call(proxy, kAdd, 1) == OK ? 1 : 0; };
                Parcel data;
                data.writeInt32(0);
                data.writeStrongBinder(mine);
                mine.clear();
                Parcel reply;
                EXPECT_EQ(UNKNOWN_TRANSACTION, proxy->transact(99, data, &reply));
            });
        }
        for (std::thread& sender : senders) {
            sender.join();
        }
        EXPECT_TRUE(eventually([&] { return answered == 4; }));
    }
}

}  // namespace
}  // namespace android::hardware
