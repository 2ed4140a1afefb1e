// A process that has no memory or no threads left for a moment refuses what needs them, and goes on.

#include <new>
#include <system_error>

#include "tests/platform/TransportFixture.h"

namespace {

std::atomic<int> sRefusedIn{0};              // so many allocations from now, on any thread but the test's
std::atomic<size_t> sRefusedFrom{SIZE_MAX};  // every block of at least so many bytes, on any thread
std::atomic<bool> sNoThreads{false};
thread_local bool sIsTest = false;

bool refuses(size_t size) {
    return size >= sRefusedFrom || (!sIsTest && sRefusedIn > 0 && sRefusedIn.fetch_sub(1) == 1);
}

}  // namespace

// The linker leads the calls here (--wrap).
extern "C" {
void* __real_malloc(size_t size);
void* __wrap_malloc(size_t size);
void* __real__Znwm(size_t size);
void* __wrap__Znwm(size_t size);

void* __wrap_malloc(size_t size) {
    return refuses(size) ? nullptr : __real_malloc(size);
}

void* __wrap__Znwm(size_t size) {
    if (refuses(size)) {
        throw std::bad_alloc();
    }
    return __real__Znwm(size);
}

#ifdef __GLIBCXX__  // starts threads in its library, the other one in its header
void __real__ZNSt6thread15_M_start_threadESt10unique_ptrINS_6_StateESt14default_deleteIS1_EEPFvvE(
        std::thread* self, void* state, void (*)());
void __wrap__ZNSt6thread15_M_start_threadESt10unique_ptrINS_6_StateESt14default_deleteIS1_EEPFvvE(
        std::thread* self, void* state, void (*)());

void __wrap__ZNSt6thread15_M_start_threadESt10unique_ptrINS_6_StateESt14default_deleteIS1_EEPFvvE(
        std::thread* self, void* state, void (*depend)()) {
    if (sNoThreads) {
        throw std::system_error(EAGAIN, std::generic_category());
    }
    __real__ZNSt6thread15_M_start_threadESt10unique_ptrINS_6_StateESt14default_deleteIS1_EEPFvvE(self, state,
                                                                                                 depend);
}
#else
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                          void* argument);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                          void* argument);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                          void* argument) {
    return sNoThreads ? EAGAIN : __real_pthread_create(thread, attributes, start, argument);
}
#endif
}

namespace android::hardware {
namespace {

class ScarceTest : public testing::Test {
  protected:
    ScarceTest() {
        alarm(60);
        sIsTest = true;
    }
    ~ScarceTest() override { alarm(0); }
};

TEST_F(ScarceTest, AParcelThatLacksAnObjectIsNotSent) {
    const sp<Probe> object = new Probe;
    Parcel parcel;
    sRefusedFrom = 1;
    const status_t status = parcel.writeStrongBinder(object);
    sRefusedFrom = SIZE_MAX;
    EXPECT_EQ(NO_MEMORY, status);
    EXPECT_EQ(NO_MEMORY, parcel.error());
}

TEST_F(ScarceTest, AnyAllocationMayFailAndTheNextAttemptWorks) {
    int n = 0;
    bool reached = true;
    for (; reached && n < 500; ++n) {
        Partner server(3);
        const sp<Deaths> deaths = new Deaths;
        {
            Partner client;
            const auto attempt = [&] {
                std::vector<status_t> results;
                sp<IBinder> proxy;
                results.push_back(client.transport.resolve(server.reference, &proxy));
                if (proxy != nullptr) {
                    results.push_back(proxy->linkToDeath(deaths));
                    results.push_back(call(proxy, kNote, 1, nullptr, IBinder::FLAG_ONEWAY));
                    results.push_back(call(proxy, kAdd, 1));
                    results.push_back(call(proxy, 99, 1));
                    results.push_back(pass(proxy, new Probe));
                    results.push_back(pass(proxy, nullptr));
                    Parcel data;
                    Parcel reply;
                    results.push_back(proxy->transact(kSelf, data, &reply));
                }
                return results;
            };
            sRefusedIn = n + 1;
            for (const status_t status : attempt()) {
                EXPECT_NE(DEAD_OBJECT, status) << "allocation " << n;
            }
            reached = sRefusedIn.exchange(0) <= 0;
            EXPECT_EQ((std::vector<status_t>{OK, OK, OK, OK, UNKNOWN_TRANSACTION, OK, OK, OK}), attempt())
                    << "allocation " << n;
            EXPECT_EQ(0, deaths->count) << "allocation " << n;
            EXPECT_TRUE(eventually([&] {
                return client.transport.exports().size() == 1 && server.transport.exports().size() == 1;
            })) << "allocation "
                << n << ": what was not sent is nobody's";
        }
        EXPECT_TRUE(eventually([&] { return server.transport.peerCount() == 0; })) << "allocation " << n;
    }
    EXPECT_GT(n, 10) << "what fails is what the transports ask for";
    EXPECT_FALSE(reached);
}

TEST_F(ScarceTest, AMessageThatThereIsNoMemoryForIsRefusedAndItsObjectsAreReleased) {
    std::atomic<int> alive{0};
    Partner server(3);
    Transport client;
    client.pool().start();
    sp<IBinder> proxy;
    ASSERT_EQ(OK, client.resolve(server.reference, &proxy));
    const std::vector<uint8_t> payload(200'000, 7);
    const auto send = [&](uint32_t flags) {
        Parcel data;
        Parcel reply;
        size_t handle = 0;
        data.writeInt32(static_cast<int32_t>(payload.size()));
        data.writeBuffer(payload.data(), payload.size(), &handle);
        data.writeStrongBinder(new Probe(&alive));
        return proxy->transact(flags == 0 ? kSum : kNote, data, &reply, flags);
    };
    ASSERT_EQ(OK, send(0));
    sRefusedFrom = 150'000;
    EXPECT_EQ(NO_MEMORY, send(IBinder::FLAG_ONEWAY)) << "no room for a queue";
    sRefusedFrom = SIZE_MAX;
    EXPECT_TRUE(eventually([&] { return alive == 0 && client.exports().size() == 0; })) << alive;
    ASSERT_EQ(OK, send(IBinder::FLAG_ONEWAY));
    ASSERT_TRUE(eventually([&] { return server.object->noted().size() == 1; }));
    sRefusedFrom = 150'000;
    EXPECT_EQ(NO_MEMORY, send(0));
    EXPECT_EQ(NO_MEMORY, call(proxy, kBlob, 300'000)) << "results that this side has no memory for";
    EXPECT_EQ(OK, call(proxy, kAdd, 1));
    sRefusedFrom = SIZE_MAX;
    EXPECT_TRUE(eventually([&] { return alive == 0; })) << alive;
    EXPECT_EQ(OK, send(0));
    EXPECT_EQ(OK, send(IBinder::FLAG_ONEWAY));
    EXPECT_TRUE(eventually([&] { return server.object->noted().size() == 2; }));
    EXPECT_EQ(1u, server.transport.peerCount());
}

TEST_F(ScarceTest, WithoutNewThreadsAProcessGoesOnWithThoseThatItHas) {
    Partner server(6);
    auto client = std::make_unique<Transport>();
    sp<IBinder> proxy;
    sNoThreads = true;
    sp<IBinder> early;
    EXPECT_EQ(FAILED_TRANSACTION,
              client->resolve(server.reference, &early) != OK ? FAILED_TRANSACTION : call(early, kAdd, 1))
            << "with none at all, nothing is served";
    sNoThreads = false;
    ASSERT_EQ(OK, client->resolve(server.reference, &proxy));
    EXPECT_EQ(OK, call(proxy, kAdd, 1));
    sNoThreads = true;
    {
        Transport other;
        sp<IBinder> second;
        ASSERT_EQ(OK, other.resolve(server.reference, &second));
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(OK, call(i % 2 == 0 ? proxy : second, kAdd, 1));
        }
        const sp<Deaths> deaths = new Deaths;
        EXPECT_EQ(FAILED_TRANSACTION, second->linkToDeath(deaths)) << "of its own lack";
        EXPECT_EQ(OK, call(second, kAdd, 1));
        sNoThreads = false;
        EXPECT_EQ(OK, second->linkToDeath(deaths));
        EXPECT_EQ(0, deaths->count);
    }
    EXPECT_EQ(OK, call(proxy, kAdd, 1));
}

}  // namespace
}  // namespace android::hardware
