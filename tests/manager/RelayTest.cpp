#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cutils/native_handle.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstring>
#include <functional>
#include <future>
#include <list>
#include <new>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "manager/ClientDeathRecipient.h"
#include "manager/ClientRegistry.h"
#include "manager/ZvtTvFApiManager.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FailingAllocation.h"
#include "tests/fake/FakeChipLayer.h"
#include "tests/support/SoiledStack.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

using ::android::Mutex;
using ::android::hardware::hidl_string;
using ::android::hardware::Status;
using ::android::hardware::Void;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using Chip = fapi_core::ZvtTvFApiEventCommonObject;
using Hidl = ZvtTvFApiEventCommonObject;

/// A client in the service's own process: remembers what it was told, its links, and may fail or call back.
class Client : public IZvtTvFApiCallbackManager {
  public:
    ~Client() override {
        if (onEnd) {
            onEnd();
        }
    }

    struct Event {
        std::string method;
        uint32_t type;
        std::vector<Hidl> records;
        std::vector<int> padding;  // what lay between the records' fields
    };

    Return<void> tell(const char* method, uint32_t type, const Hidl& one, const Hidl& two, const Hidl& three,
                      const Hidl& four) {
        if (onEvent) {
            onEvent(type);
        }
        if (fails) {
            return Status::fromStatusT(::android::DEAD_OBJECT);
        }
        events.push_back({method, type, {one, two, three, four}, {}});
        for (const Hidl* record : {&one, &two, &three, &four}) {
            const auto* const begin = reinterpret_cast<const uint8_t*>(&record->u32Value + 1);
            const auto* const end = reinterpret_cast<const uint8_t*>(&record->strValue);
            events.back().padding.insert(events.back().padding.end(), begin, end);
        }
        return Void();
    }

#define CLIENT_METHOD(method)                                                               \
    Return<void> method(uint32_t type, const Hidl& one, const Hidl& two, const Hidl& three, \
                        const Hidl& four) override {                                        \
        return tell(#method, type, one, two, three, four);                                  \
    }
    CLIENT_METHOD(notifySysEvent)
    CLIENT_METHOD(notifyDispEvent)
    CLIENT_METHOD(notifyDispTstEvent)
    CLIENT_METHOD(notifyInfoEvent)
    CLIENT_METHOD(notifyInpSrcEvent)
    CLIENT_METHOD(notifyPrphrlEvent)
    CLIENT_METHOD(notifyAudEvent)
    CLIENT_METHOD(notifyNetEvent)
    CLIENT_METHOD(notifyTvEvent)
#undef CLIENT_METHOD

    Return<bool> linkToDeath(const sp<hidl_death_recipient>& recipient, uint64_t cookie) override {
        recipients.push_back(recipient);
        cookies.push_back(cookie);
        if (linksWithoutMemory) {
            throw std::bad_alloc();
        }
        return linkable;
    }

    std::vector<Event> events;
    std::vector<uint64_t> cookies;
    std::vector<sp<hidl_death_recipient>> recipients;
    std::function<void(uint32_t)> onEvent;
    std::function<void()> onEnd;
    bool fails = false;
    bool linkable = true;
    bool linksWithoutMemory = false;
};

class RelayTest : public testing::Test {
  protected:
    RelayTest() {
        sCbList.clear();
        sCbPids.clear();
        sEventCounts = {};
        sNextCookie = 0;
        log.takeLines();
    }
    ~RelayTest() override { sCbList.clear(); }

    sp<Client> registered() {
        sp<Client> client = new Client;
        EXPECT_EQ(0, int32_t(manager->a_hidl_a_zvttvfapi_mngr_set_callback(client)));
        return client;
    }
    int32_t post(uint32_t type, const Hidl& first = {}) {
        return manager->a_hidl_a_zvttvfapi_mngr_post_event(type, first, {}, {}, {});
    }

    /// Whether an event reaches the clients while this waits for it.
    bool delivers() {
        deliveries.push_back(std::async(std::launch::async, [this] { post(0x10000); }));
        return deliveries.back().wait_for(std::chrono::seconds(5)) == std::future_status::ready;
    }

    /// The lines that debug() writes.
    std::vector<std::string> page() const {
        int ends[2];
        EXPECT_EQ(0, pipe(ends));
        NATIVE_HANDLE_DECLARE_STORAGE(storage, 1, 0);
        native_handle_t* const handle = native_handle_init(storage, 1, 0);
        handle->data[0] = ends[1];
        EXPECT_TRUE(manager->debug(handle, {}).isOk());
        close(ends[1]);
        std::vector<char> bytes(65536);
        const ssize_t size = read(ends[0], bytes.data(), bytes.size());
        close(ends[0]);
        EXPECT_LE(size, ssize_t{StatePage::kMostBytes});
        std::istringstream text(std::string(bytes.data(), static_cast<size_t>(size)));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    FakeChipLayer chip;
    DeviceLog log;
    const sp<ZvtTvFApiManager> manager = new ZvtTvFApiManager;
    const Chip empty;
    std::list<std::future<void>> deliveries;
};

std::string line(char priority, const std::string& name, const std::string& text) {
    return std::string(1, priority) + " ZvtTvFApiManager(server): <" + name + ":#> " + text;
}

TEST_F(RelayTest, CookiesCountRegistrationsFromZeroAndLinkEachOfThem) {
    const sp<Client> first = registered();
    const sp<Client> second = registered();
    EXPECT_EQ(0, int32_t(manager->a_hidl_a_zvttvfapi_mngr_set_callback(first)));
    EXPECT_THAT(first->cookies, ElementsAre(0, 2));
    EXPECT_THAT(second->cookies, ElementsAre(1));
    const std::vector<std::string> lines = log.takeLines();
    ASSERT_EQ(3u, lines.size());
    char address[32];
    snprintf(address, sizeof(address), ".%p", static_cast<void*>(first->recipients[0].get()));
    for (size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(line('D', "a_hidl_a_zvttvfapi_mngr_set_callback",
                       std::string(address) + " " + std::to_string(i)),
                  lines[i]);
    }
    EXPECT_EQ(0, post(0x10000));
    EXPECT_EQ(2u, first->events.size()) << "registered twice, told twice";
    EXPECT_EQ(1u, second->events.size());
}

TEST_F(RelayTest, ANullCallbackIsRefusedAndTakesNoCookie) {
    EXPECT_EQ(-2, int32_t(manager->a_hidl_a_zvttvfapi_mngr_set_callback(nullptr)));
    EXPECT_THAT(registered()->cookies, ElementsAre(0));
    EXPECT_EQ(0, post(0x10000));
}

TEST_F(RelayTest, ACallbackThatCanNotBeLinkedStaysRegisteredUnderItsCookie) {
    for (const bool withoutMemory : {false, true}) {
        const sp<Client> client = new Client;
        client->linkable = false;
        client->linksWithoutMemory = withoutMemory;
        EXPECT_EQ(0, int32_t(manager->a_hidl_a_zvttvfapi_mngr_set_callback(client)));
        EXPECT_EQ(0, post(0x10000));
        EXPECT_EQ(1u, client->events.size());
    }
    EXPECT_THAT(registered()->cookies, ElementsAre(2));
}

TEST_F(RelayTest, ADeathRemovesItsOwnEntryAndLogsTheRemainingOnes) {
    const sp<Client> first = registered();
    const sp<Client> second = registered();
    const sp<Client> third = registered();
    log.takeLines();
    const sp<hidl_death_recipient> recipient = first->recipients[0];
    recipient->serviceDied(1, nullptr);
    const std::vector<std::string> lines = log.takeLines();
    ASSERT_EQ(3u, lines.size());
    EXPECT_EQ(line('E', "serviceDied", "Client disconnect 1"), lines[0]);
    EXPECT_THAT(std::vector<std::string>(lines.begin() + 1, lines.end()),
                UnorderedElementsAre(line('E', "serviceDied", "cblist 0\n"),
                                     line('E', "serviceDied", "cblist 2\n")));
    recipient->serviceDied(UINT64_MAX, nullptr);
    EXPECT_EQ(line('E', "serviceDied", "Client disconnect 18446744073709551615"), log.takeLines().at(0));
    EXPECT_EQ(0, post(0x10000));
    EXPECT_THAT(second->events, IsEmpty());
    EXPECT_EQ(1u, first->events.size() * third->events.size());
    EXPECT_EQ(1, second->getStrongCount()) << "the registry has let go of it";
    EXPECT_THAT(registered()->cookies, ElementsAre(3)) << "a cookie is never used again";
}

TEST_F(RelayTest, NoEventWaitsForTheEndOfADeadClientOrForTheLogOfItsDeath) {
    static std::vector<bool> sDelivered;
    static std::function<void()> sTry;
    sTry = [this] { sDelivered.push_back(delivers()); };
    const sp<Client> staying = registered();
    for (const bool withMemoryForTheLog : {false, true}) {
        sp<Client> client = registered();
        client->onEnd = sTry;
        const sp<hidl_death_recipient> recipient = client->recipients[0];
        const uint64_t cookie = client->cookies[0];
        client.clear();
        if (withMemoryForTheLog) {
            __android_log_set_logger([](const __android_logger_data*, const char* text) {
                if (std::strstr(text, "cblist 0") != nullptr) {
                    sTry();
                }
            });
            recipient->serviceDied(cookie, nullptr);
            EXPECT_THAT(std::exchange(sDelivered, {}), ElementsAre(true, true));
        } else {
            log.takeLines();
            const FailingAllocation failing(1);
            recipient->serviceDied(cookie, nullptr);
            EXPECT_EQ(sizeof(uint64_t), failing.refusedBytes());
            EXPECT_EQ(log.takeLines().at(1), line('E', "serviceDied", "cblist 0\n"));
            EXPECT_THAT(std::exchange(sDelivered, {}), ElementsAre(true));
        }
    }
}

TEST_F(RelayTest, EachHandlerCallsItsMethodWithTheEventUnchanged) {
    struct {
        fapi_core::ZvtTvFApiEventHandler handler;
        const char* name;
        const char* method;
    } const rows[] = {
            {ZvtTvFApiManager::onSysEvent, "onSysEvent", "notifySysEvent"},
            {ZvtTvFApiManager::onNetEvent, "onNetEvent", "notifyNetEvent"},
            {ZvtTvFApiManager::onDispEvent, "onDispEvent", "notifyDispEvent"},
            {ZvtTvFApiManager::onDispTstEvent, "onDispTstEvent", "notifyDispTstEvent"},
            {ZvtTvFApiManager::onPrphrlEvent, "onPrphrlEvent", "notifyPrphrlEvent"},
            {ZvtTvFApiManager::onInpSrcEvent, "onInpSrcEvent", "notifyInpSrcEvent"},
            {ZvtTvFApiManager::onAudEvent, "onAudEvent", "notifyAudEvent"},
            {ZvtTvFApiManager::onInfoEvent, "onInfoEvent", "notifyInfoEvent"},
            {ZvtTvFApiManager::onTvEvent, "onTvEvent", "notifyTvEvent"},
    };
    const sp<Client> client = registered();
    log.takeLines();
    uint32_t mask = 0x10000;
    for (const auto& row : rows) {
        // A module's event goes its module's way, whatever bits its type has; a posted one goes by its
        // lowest.
        const uint32_t foreign = 0x01FF0005;
        soilStack();
        EXPECT_EQ(0,
                  row.handler(foreign, {1, "one", {1}}, {2, "two", {2}}, {3, "", {}}, {4, "four", {4, 0}}));
        soilStack();
        EXPECT_EQ(0, post(0xFE000000 | (0x1FF0000 & ~(mask - 1)) | 7));
        ASSERT_EQ(2u, client->events.size()) << row.name;
        for (const Client::Event& event : client->events) {
            EXPECT_EQ(row.method, event.method);
            EXPECT_EQ(event.padding, std::vector<int>(4 * 4)) << "bytes of the service's stack";
        }
        EXPECT_EQ(foreign, client->events[0].type);
        EXPECT_THAT(client->events[0].records, ElementsAre(Hidl{1, "one", {1}}, Hidl{2, "two", {2}},
                                                           Hidl{3, "", {}}, Hidl{4, "four", {4, 0}}));
        EXPECT_EQ(line('D', row.name, "u32EvtType = 33488901\n"), log.takeLines().at(0));
        client->events.clear();
        mask <<= 1;
    }
    for (const uint32_t none : {0u, 0xFFFFu, 0x2000000u, 0xFE00FFFFu}) {
        EXPECT_EQ(-2, post(none));
    }
    EXPECT_THAT(client->events, IsEmpty());
    EXPECT_THAT(log.takeLines(), IsEmpty());
}

TEST_F(RelayTest, NobodyToTellIsASuccess) {
    log.takeLines();
    EXPECT_EQ(0, ZvtTvFApiManager::onTvEvent(0xFFFFFFFF, empty, empty, empty, empty));
    EXPECT_THAT(log.takeLines(), ElementsAre(line('D', "onTvEvent", "u32EvtType = -1\n")));
}

TEST_F(RelayTest, TextsEndAtTheirFirstNulAndBytesDoNot) {
    const sp<Client> client = registered();
    const std::string text("ab\0cd", 5);
    Hidl posted{9, hidl_string(text.data(), text.size()), {0, 1, 0}};
    EXPECT_EQ(0, post(0x10000, posted));
    EXPECT_EQ(0, ZvtTvFApiManager::onSysEvent(1, {9, text, {0, 1, 0}}, empty, empty, empty));
    ASSERT_EQ(2u, client->events.size());
    for (const Client::Event& event : client->events) {
        EXPECT_EQ((Hidl{9, "ab", {0, 1, 0}}), event.records[0]);
    }
}

TEST_F(RelayTest, AnEventWithoutMemoryForItsBytesIsLostForAllAndSaysSo) {
    const sp<Client> client = registered();
    const Chip big{0, "", std::vector<uint8_t>(900 * 1024, 0x5A)};
    EXPECT_EQ(0, ZvtTvFApiManager::onAudEvent(5, big, big, big, big));
    ASSERT_EQ(1u, client->events.size());
    EXPECT_EQ(900u * 1024, client->events[0].records[3].vecValue.size());
    for (int nth = 1; nth <= 4; ++nth) {
        FailingAllocation failing(nth);
        EXPECT_EQ(-1, ZvtTvFApiManager::onAudEvent(5, big, big, big, big)) << nth;
    }
    EXPECT_EQ(1u, client->events.size());
}

TEST_F(RelayTest, ThePageTellsOfClientsAndEventsWithinItsBounds) {
    const sp<Client> clients[] = {registered(), registered(), registered()};
    const std::string pid = "pid " + std::to_string(getpid());
    clients[2]->fails = true;
    {
        const Mutex::Autolock lock(sCbMutex);
        sCbPids.erase(1);  // for lack of memory
    }
    EXPECT_EQ(-1, post(0x10000));
    EXPECT_EQ(-1, ZvtTvFApiManager::onTvEvent(0, empty, empty, empty, empty));
    clients[0]->recipients[0]->serviceDied(0, nullptr);
    EXPECT_EQ(-1, post(0x10000));
    chip.takeCalls();
    log.takeLines();
    std::vector<std::string> lines = page();
    EXPECT_THAT(chip.takeCalls(), ElementsAre("a_zvttvfapi_common_get_fapi_status()"));
    EXPECT_THAT(log.takeLines(), IsEmpty());
    EXPECT_EQ(lines[4], "events to clients: 5 relayed, 3 refused");
    EXPECT_EQ(lines[5], "events of sys: 3 relayed, 2 refused");
    EXPECT_EQ(lines[6], "events of net: 0 relayed, 0 refused");
    EXPECT_EQ(lines[13], "events of tv: 2 relayed, 1 refused");
    EXPECT_THAT(std::vector<std::string>(lines.begin() + 14, lines.end()),
                ElementsAre("clients: 2", "client 1: pid unknown", "client 2: " + pid));

    // Every number at its longest.
    sNextCookie = UINT64_MAX - 1000;
    {
        const Mutex::Autolock lock(sCbMutex);
        sEventCounts.fill({UINT64_MAX, UINT64_MAX});
        for (int i = 0; i < 1000; ++i) {
            sCbPids[sNextCookie] = INT_MAX;
            sCbList[sNextCookie++] = clients[0];
        }
    }
    lines = page();
    ASSERT_EQ(14u + 1 + 50 + 1, lines.size());
    EXPECT_EQ("clients: 1002", lines[14]);
    EXPECT_EQ("client 1: pid unknown", lines[15]);
    EXPECT_EQ("client " + std::to_string(UINT64_MAX - 1000) + ": pid 2147483647", lines[17]);
    EXPECT_EQ("clients not shown: 952", lines.back());
}

TEST_F(RelayTest, APageIsOfOneMomentWhileClientsComeAndDie) {
    std::atomic<bool> over{false};
    std::thread reader([&] {  // one: the fake library notes its calls without a lock
        while (!over) {
            const std::vector<std::string> lines = page();
            ASSERT_GE(lines.size(), 15u);
            EXPECT_EQ("clients: " + std::to_string(lines.size() - 15), lines[14]);
        }
    });
    for (int i = 0; i < 300; ++i) {
        const sp<Client> client = registered();
        post(0x10000);
        client->recipients[0]->serviceDied(client->cookies[0], nullptr);
    }
    over = true;
    reader.join();
}

TEST_F(RelayTest, AClientThatFailsCostsTheOthersNothingAndStays) {
    const sp<Client> first = registered();
    const sp<Client> second = registered();
    const sp<Client> third = registered();
    second->fails = true;
    EXPECT_EQ(-1, post(0x10000));
    EXPECT_EQ(-1, post(0x10000));
    EXPECT_EQ(2u, first->events.size());
    EXPECT_EQ(2u, third->events.size());
    second->fails = false;
    EXPECT_EQ(0, post(0x10000));
    EXPECT_EQ(1u, second->events.size());
}

TEST_F(RelayTest, ModulesThatRaiseAtOnceAreDeliveredOneByOneInTheSameOrderForEveryClient) {
    const sp<Client> clients[] = {registered(), registered()};
    std::atomic<int> inside{0};
    std::atomic<bool> overlapped{false};
    clients[0]->onEvent = [&](uint32_t) { overlapped = overlapped || ++inside != 1; };
    clients[1]->onEvent = [&](uint32_t) { overlapped = overlapped || --inside != 0; };
    const fapi_core::ZvtTvFApiEventHandler handlers[] = {
            ZvtTvFApiManager::onSysEvent,    ZvtTvFApiManager::onNetEvent,
            ZvtTvFApiManager::onDispEvent,   ZvtTvFApiManager::onDispTstEvent,
            ZvtTvFApiManager::onPrphrlEvent, ZvtTvFApiManager::onInpSrcEvent,
            ZvtTvFApiManager::onAudEvent,    ZvtTvFApiManager::onInfoEvent};
    constexpr uint32_t kEach = 200;
    {
        const Mutex::Autolock lock(sCbMutex);
        if (sCbList.begin()->first != 0) {  // in the map's order
            std::swap(clients[0]->onEvent, clients[1]->onEvent);
        }
    }
    std::vector<std::thread> threads;
    for (uint32_t module = 0; module < 8; ++module) {
        threads.emplace_back([&, module] {
            for (uint32_t i = 0; i < kEach; ++i) {
                EXPECT_EQ(0, handlers[module](module << 16 | i, empty, empty, empty, empty));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_FALSE(overlapped);
    ASSERT_EQ(8 * kEach, clients[0]->events.size());
    ASSERT_EQ(8 * kEach, clients[1]->events.size());
    std::vector<uint32_t> next(8, 0);
    for (size_t i = 0; i < clients[0]->events.size(); ++i) {
        const uint32_t type = clients[0]->events[i].type;
        ASSERT_EQ(type, clients[1]->events[i].type);
        ASSERT_EQ(next[type >> 16]++, type & 0xFFFF) << "a module's events keep their order";
    }
}

TEST_F(RelayTest, ARegistrationWaitsForADeliveryInProgress) {
    const sp<Client> client = registered();
    std::atomic<bool> delivering{false};
    std::atomic<bool> done{false};
    client->onEvent = [&](uint32_t) {
        delivering = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        done = true;
    };
    std::thread raiser([&] { EXPECT_EQ(0, ZvtTvFApiManager::onNetEvent(1, empty, empty, empty, empty)); });
    while (!delivering) {
        std::this_thread::yield();
    }
    const sp<Client> late = registered();
    EXPECT_TRUE(done);
    raiser.join();
    EXPECT_THAT(late->events, IsEmpty());
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
