#include "platform/socket/ProxyTable.h"

#include <gtest/gtest.h>

#include "platform/socket/Transport.h"

namespace android::hardware {
namespace {

/** A table beside the peer's own, so that its proxies are taken out by hand. */
class ProxyTableTest : public testing::Test {
  protected:
    using Owed = std::pair<uint64_t, uint32_t>;  // number, count; zero: nothing

    Owed owed() {
        ObjectName name;
        uint32_t count = 0;
        return table.nextOwed(&name, &count) ? Owed(name.number, count) : Owed();
    }
    void forget(sp<RemoteObject>& proxy) {
        table.forget(proxy.get());
        proxy.clear();
    }

    const Endpoint endpoint = randomEndpoint();
    const UniqueFd listening = listenOn(endpoint);
    Transport transport;
    const std::shared_ptr<Peer> peer = transport.peerAt(endpoint);
    ProxyTable table;
};

TEST_F(ProxyTableTest, AnObjectHasOneProxyAndAllReferencesAreOwedWhenItEnds) {
    sp<RemoteObject> proxy = table.get(peer, {7, 1}, 1);
    sp<RemoteObject> same = table.get(peer, {7, 1}, 2);
    EXPECT_EQ(proxy, same);
    table.owe({7, 1}, 1);
    EXPECT_EQ(owed(), Owed()) << "while it lives";
    same.clear();
    forget(proxy);
    EXPECT_TRUE(table.empty());
    EXPECT_EQ(owed(), Owed(7, 4));
    table.paid({7, 1}, 1);

    proxy = table.get(peer, {7, 1}, 0);
    EXPECT_EQ(owed(), Owed()) << "a new proxy keeps what is owed";
    proxy.clear();  // ends, and is not taken out before it has a successor
    proxy = table.get(peer, {7, 1}, 1);
    const sp<RemoteObject> predecessor = ProxyTable().get(peer, {7, 1}, 0);
    table.forget(predecessor.get());
    EXPECT_FALSE(table.empty());
    forget(proxy);
    EXPECT_TRUE(table.empty());
    table.owe({8, 1}, 5);
    EXPECT_EQ(owed(), Owed(7, 4));
    table.paid({7, 1}, 4);
    EXPECT_EQ(owed(), Owed(8, 5)) << "never had a proxy";
    table.paid({8, 1}, 5);
    EXPECT_EQ(owed(), Owed());
}

TEST_F(ProxyTableTest, AnEndedPeersLinksAreTakenOnceAndNothingIsOwedToIt) {
    class Deaths : public IBinder::DeathRecipient {
        void binderDied(const wp<IBinder>&) override {}
    };
    const sp<Deaths> deaths = new Deaths;
    sp<RemoteObject> linked = table.get(peer, {1, 1}, 1);
    ASSERT_EQ(linked->linkToDeath(deaths), OK);
    sp<RemoteObject> successor = table.get(peer, {2, 1}, 1);
    forget(successor);
    EXPECT_EQ(owed(), Owed(2, 1));  // is being given back
    successor = table.get(peer, {2, 1}, 1);
    table.owe({3, 1}, 1);

    DeathLinks links;
    table.end(&links);
    EXPECT_EQ(links.size(), 1u);
    table.end(&links);
    EXPECT_EQ(links.size(), 1u);
    EXPECT_EQ(linked->linkToDeath(deaths), DEAD_OBJECT);
    EXPECT_EQ(table.get(peer, {1, 1}, 1), nullptr);
    table.paid({2, 1}, 1);  // came too late
    table.owe({4, 1}, 1);
    forget(linked);
    forget(successor);
    EXPECT_EQ(owed(), Owed());
    EXPECT_TRUE(table.empty());
}

}  // namespace
}  // namespace android::hardware
